#include "platform/adodb/Fields.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace ADODB {

using namespace Platform;

namespace {

constexpr const char* Self = "ADODB.Recordset";

/// Returns the connection that a client passes: a connection, or the connection string of one that is opened for it.
Ref<Connection> ConnectionFrom(const Variant& given) {
    if (!given.Is<String>()) return To<Ref<Connection>>(given);
    Ref<Connection> own = New<Connection>();
    own->Open(given.As<String>());
    return own;
}

/// What a client asks for; the property's where it doesn't say.
template <class E>
E AskedOr(E asked, E unspecified, E property) {
    return asked == unspecified ? property : Known(asked, Self);
}

void OpenAsAsked(Recordset& recordset, const Variant& source, const Variant& activeConnection,
                 CursorTypeEnum cursorType, LockTypeEnum lockType, Long options) {
    if (recordset.State() != adStateClosed) RaiseAdo(adErrObjectOpen, Self);
    const CursorTypeEnum cursor = AskedOr(cursorType, adOpenUnspecified, recordset.CursorType());
    const LockTypeEnum lock = AskedOr(lockType, adLockUnspecified, recordset.LockType());
    const String statement = source.Is<Empty>() ? recordset.Source() : To<String>(source);
    const Ref<Connection> connection =
        activeConnection.Is<Empty>() ? recordset.ActiveConnection() : ConnectionFrom(activeConnection);
    recordset.Open(statement, connection, cursor, lock, options);
}

void PutActiveConnection(Recordset& recordset, const Variant& connection) {
    recordset.SetActiveConnection(ConnectionFrom(connection));
}

Platform::detail::Line ActiveConnectionProperty() {
    using namespace Platform::detail;
    constexpr const char* name = "ActiveConnection";
    return {{GetMember<&Recordset::ActiveConnection, Ref<Connection>>(name),
             PutMember<&PutActiveConnection, Variant>(name),
             PutMember<&Recordset::SetActiveConnection, Ref<Connection>>(name)}};
}

void PutLocation(Recordset& recordset, CursorLocationEnum location) {
    recordset.SetCursorLocation(Known(location, Self));
}

ObjectStateEnum StateOf(Recordset& recordset) { return static_cast<ObjectStateEnum>(recordset.State()); }

PositionEnum PositionOf(Recordset& recordset) { return static_cast<PositionEnum>(recordset.AbsolutePosition()); }

Ref<FieldsObject> FieldsOf(Recordset& recordset) { return New<FieldsObject>(recordset); }

// The arguments of a put, and of the get beside it, are values.
Variant GetCollect(Recordset& recordset, Variant index) { return FieldAt(recordset, index).Value(); }

void PutCollect(Recordset& recordset, Variant index, Variant value) { FieldAt(recordset, index).SetValue(value); }

Platform::detail::Line CollectProperty() {
    Platform::detail::Line line = ReadOnly<&GetCollect>("Collect", {"Index"});
    line.members.push_back(Operation<&PutCollect>("Collect", {"Index", "Value"}).members.front());
    line.members.back().Kind = MemberKind::Put;
    return line;
}

}  // namespace

const Interface& Recordset::Describe() const {
    static const Interface& self = InterfaceOf<Recordset>({
        ValueProperty<&Recordset::Source, &Recordset::SetSource>("Source"),
        ActiveConnectionProperty(),
        ValueProperty<&Recordset::CursorType, &Recordset::SetCursorType>("CursorType"),
        ValueProperty<&Recordset::LockType, &Recordset::SetLockType>("LockType"),
        ValueProperty<&Recordset::CursorLocation, &PutLocation>("CursorLocation"),
        ReadOnly<&StateOf>("State"),
        Operation<&OpenAsAsked>(
            "Open", {Optional("Source"), Optional("ActiveConnection"), Optional("CursorType", adOpenUnspecified),
                     Optional("LockType", adLockUnspecified), Optional("Options", adCmdUnspecified)}),
        Operation<&Recordset::Close>("Close"),
        Operation<&Recordset::Requery>("Requery"),
        ReadOnly<&Recordset::Eof>("EOF"),
        ReadOnly<&Recordset::Bof>("BOF"),
        ReadOnly<&Recordset::RecordCount>("RecordCount"),
        ReadOnly<&PositionOf>("AbsolutePosition"),
        Operation<&Recordset::MoveFirst>("MoveFirst"),
        Operation<&Recordset::MoveLast>("MoveLast"),
        Operation<&Recordset::MoveNext>("MoveNext"),
        Operation<&Recordset::MovePrevious>("MovePrevious"),
        Operation<&Recordset::Move>("Move", {"NumRecords"}),
        ReadOnly<&FieldsOf>("Fields", {}, DefaultMember),
        CollectProperty(),
        ReadOnly<&Recordset::EditMode>("EditMode"),
        Operation<&Recordset::AddNew>("AddNew"),
        Operation<&Recordset::Update>("Update"),
        Operation<&Recordset::CancelUpdate>("CancelUpdate"),
        Operation<&Recordset::Delete>("Delete", {Optional("AffectRecords", adAffectCurrent)}),
    });
    return self;
}

}  // namespace ADODB

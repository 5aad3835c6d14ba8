#include "platform/adodb/Fields.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace ADODB {

using namespace Platform;

namespace {

/// Returns the connection that a client passes: a connection, or the connection string of one that is opened for it.
Ref<Connection> ConnectionFrom(const Variant& given) {
    if (!given.Is<String>()) return To<Ref<Connection>>(given);
    Ref<Connection> own = New<Connection>();
    own->Open(given.As<String>());
    return own;
}

/// Returns the value that a client passes, or that of the property if the client leaves it out.
template <class E>
E AskedOr(E asked, E unspecified, E property) {
    return asked == unspecified ? property : Known(asked, RecordsetSource);
}

void OpenAsAsked(Recordset& recordset, const Variant& source, const Variant& activeConnection,
                 CursorTypeEnum cursorType, LockTypeEnum lockType, Long options) {
    if (recordset.State() != adStateClosed) RaiseAdo(adErrObjectOpen, RecordsetSource);
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
    constexpr const char* help = "The connection, or a connection string; null disconnects an open client recordset.";
    return {{GetMember<&Recordset::ActiveConnection, Ref<Connection>>(name, help),
             PutMember<&PutActiveConnection, Variant>(name, help),
             PutMember<&Recordset::SetActiveConnection, Ref<Connection>>(name, help)}};
}

void PutLocation(Recordset& recordset, CursorLocationEnum location) {
    recordset.SetCursorLocation(Known(location, RecordsetSource));
}

ObjectStateEnum RecordsetState(Recordset& recordset) { return static_cast<ObjectStateEnum>(recordset.State()); }

PositionEnum PositionOf(Recordset& recordset) { return static_cast<PositionEnum>(recordset.AbsolutePosition()); }

Ref<FieldsObject> FieldsOf(Recordset& recordset) { return New<FieldsObject>(recordset); }

// The arguments of a put, and of the get beside it, are values.
Variant GetCollect(Recordset& recordset, Variant index) { return FieldAt(recordset, index).Value(); }

void PutCollect(Recordset& recordset, Variant index, Variant value) { FieldAt(recordset, index).SetValue(value); }

Platform::detail::Line CollectProperty() {
    constexpr const char* help = "The value of a column in the current row; a put begins an edit.";
    const NamedArgument index{"Index", "The name of the column in any case, or its position from 0."};
    Platform::detail::Line line = ReadOnly<&GetCollect>("Collect", help, {index});
    line.members.push_back(
        Operation<&PutCollect>("Collect", help, {index, {"Value", "The new value."}}).members.front());
    line.members.back().Kind = MemberKind::Put;
    return line;
}

}  // namespace

const Interface& Recordset::Describe() const {
    static const Interface& self = InterfaceOf<Recordset>(
        "The rows of a statement: a snapshot with a cursor, which can be edited.",
        {
            ValueProperty<&Recordset::Source, &Recordset::SetSource>(
                "Source", "The SQL statement, which Open uses if its own argument is left out."),
            ActiveConnectionProperty(),
            ValueProperty<&Recordset::CursorType, &Recordset::SetCursorType>(
                "CursorType", "The kind of cursor: 0 forward-only, 1 keyset, 2 dynamic, 3 static."),
            ValueProperty<&Recordset::LockType, &Recordset::SetLockType>(
                "LockType", "The kind of lock: 1 read-only, 2 pessimistic, 3 optimistic, 4 batch optimistic."),
            ValueProperty<&Recordset::CursorLocation, &PutLocation>(
                "CursorLocation", "Where the rows are kept: 2 server, 3 client; overrides the connection's setting."),
            ReadOnly<&RecordsetState>("State", "The state: 0 closed, 1 open."),
            Operation<&OpenAsAsked>(
                "Open", "Runs a statement; the first row becomes current. Raises 3705 if the recordset is open.",
                {Optional("Source", "The SQL statement, or a table name with the option adCmdTable."),
                 Optional("ActiveConnection", "An open connection, or a connection string."),
                 Optional("CursorType", "The kind of cursor; if left out, the property CursorType is used.",
                          adOpenUnspecified),
                 Optional("LockType", "The kind of lock; if left out, the property LockType is used.",
                          adLockUnspecified),
                 Optional("Options", "How to read the source: 1 SQL text, 2 table name.", adCmdUnspecified)}),
            Operation<&Recordset::Close>("Close", "Releases the rows; raises 3219 while an edit is pending."),
            Operation<&Recordset::Requery>("Requery", "Runs the statement again; the first row becomes current."),
            ReadOnly<&Recordset::Eof>("EOF", "True after the last row, and if there are no rows."),
            ReadOnly<&Recordset::Bof>("BOF", "True before the first row, and if there are no rows."),
            ReadOnly<&Recordset::RecordCount>("RecordCount",
                                              "The number of rows; -1 for a forward-only server cursor."),
            ReadOnly<&PositionOf>("AbsolutePosition",
                                  "The position of the current row, from 1; -1 without rows, -2 at BOF, -3 at EOF."),
            Operation<&Recordset::MoveFirst>("MoveFirst", "Moves to the first row; raises 3021 if there are no rows."),
            Operation<&Recordset::MoveLast>("MoveLast", "Moves to the last row; raises 3021 if there are no rows."),
            Operation<&Recordset::MoveNext>("MoveNext",
                                            "Moves to the next row, or from the last row to EOF; raises 3021 at EOF."),
            Operation<&Recordset::MovePrevious>(
                "MovePrevious", "Moves to the previous row, or from the first row to BOF; raises 3021 at BOF."),
            Operation<&Recordset::Move>("Move", "Moves by a number of rows, at most to BOF or EOF.",
                                        {{"NumRecords", "The number of rows; negative to move backward."}}),
            ReadOnly<&FieldsOf>("Fields", "The columns of the recordset, at the current row.", {}, DefaultMember),
            CollectProperty(),
            ReadOnly<&Recordset::EditMode>("EditMode", "The pending edit: 0 none, 1 a changed row, 2 a new row."),
            Operation<&Recordset::AddNew>(
                "AddNew", "Begins a new row, which becomes the current one; a pending edit is written first."),
            Operation<&Recordset::Update>(
                "Update", "Writes the pending edit; does nothing without one. The row stays the current one."),
            Operation<&Recordset::CancelUpdate>("CancelUpdate", "Discards the pending edit or the new row."),
            Operation<&Recordset::Delete>(
                "Delete", "Deletes the current row from the table; the position doesn't change.",
                {Optional("AffectRecords", "Must be 1, the current row; any other value raises 3001.",
                          adAffectCurrent)}),
        });
    return self;
}

}  // namespace ADODB

#include "platform/adodb/providers/byname/ByNameSession.h"
#include "platform/component/dispatch/ByName.h"
#include "platform/runtime/Convert.h"

#include <map>

namespace ADODB {

using namespace Platform;

namespace {

class ByNameCursor final : public Cursor {
public:
    explicit ByNameCursor(const Ref<Object>& recordset) : object_(recordset), recordset_(recordset) {}

    bool Eof() const override { return CBool(recordset_.Call("EOF")); }
    bool Bof() const override { return CBool(recordset_.Call("BOF")); }
    Long RecordCount() const override { return Whole("RecordCount"); }
    Long AbsolutePosition() const override { return Whole("AbsolutePosition"); }
    CursorTypeEnum CursorType() const override { return static_cast<CursorTypeEnum>(Whole("CursorType")); }
    LockTypeEnum LockType() const override { return static_cast<LockTypeEnum>(Whole("LockType")); }
    EditModeEnum EditMode() const override { return static_cast<EditModeEnum>(Whole("EditMode")); }

    void MoveFirst() override { recordset_.Call("MoveFirst"); }
    void MoveLast() override { recordset_.Call("MoveLast"); }
    void MoveNext() override { recordset_.Call("MoveNext"); }
    void MovePrevious() override { recordset_.Call("MovePrevious"); }
    void Move(Long rows) override { CallWith("Move", rows); }

    Long FieldCount() const override { return CLng(ByName(ObjectFrom(recordset_.Call("Fields"))).Call("Count")); }
    bool HasField(std::string_view name) const override { return Find(String(name)).has_value(); }
    Long ColumnOf(std::string_view name) override;
    Long ColumnOf(Long ordinal) override;
    const Column& ColumnAt(Long column) override;
    Variant Value(Long column) const override { return OrNull(FieldAt(column).Call("Value")); }
    Variant OriginalValue(Long column) const override { return OrNull(FieldAt(column).Call("OriginalValue")); }
    void SetValue(Long column, const Variant& value) override;

    void AddNew() override { recordset_.Call("AddNew"); }
    void Update() override { recordset_.Call("Update"); }
    void CancelUpdate() override { recordset_.Call("CancelUpdate"); }
    void Delete(AffectEnum affectRecords) override { CallWith("Delete", Long{affectRecords}); }
    void Requery() override;
    void Close() override { recordset_.Call("Close"); }
    void SetActiveConnection(const Ref<Object>& connection) override { recordset_.Put("ActiveConnection", connection); }
    Ref<Object> Adapted() const override { return object_; }

private:
    /// A column has no empty value: some recordsets return `Empty` for a column of a new row.
    static Variant OrNull(Variant value) {
        const bool none = value.Is<Empty>() || (value.Is<Ref<Object>>() && !value.As<Ref<Object>>());
        return none ? Variant(Null{}) : value;
    }
    static Ref<Object> ObjectFrom(const Variant& value) { return To<Ref<Object>>(value); }
    Long Whole(const char* property) const { return CLng(recordset_.Call(property)); }
    void CallWith(const char* operation, Long argument) const {
        ByName::Argument given = argument;
        recordset_.Call(operation, {&given, 1});
    }
    const Variant& KeyOf(Long column) const;
    ByName FieldOf(const Variant& key) const { return ByName(ObjectFrom(recordset_.ItemOf("Fields", key))); }
    ByName FieldAt(Long column) const { return FieldOf(KeyOf(column)); }
    /// Returns the index of a name in `keys_`, which is appended if the other side has the column; otherwise none.
    std::optional<Long> Find(const String& name) const;
    Long Append(const Variant& key) const;

    Ref<Object> object_;
    ByName recordset_;
    mutable std::vector<Variant> keys_;                     // of the columns that were asked for: a name or an ordinal
    mutable std::map<String, std::optional<Long>> byName_;  // indexes in `keys_`; none for a column that is missing
    std::map<Long, Long> byOrdinal_;                        // indexes in `keys_`
    std::map<Long, Column> described_;
};

const Variant& ByNameCursor::KeyOf(Long column) const {
    if (column < 0 || static_cast<std::size_t>(column) >= keys_.size()) RaiseAdo(adErrItemNotFound, RecordsetSource);
    return keys_[static_cast<std::size_t>(column)];
}

Long ByNameCursor::Append(const Variant& key) const {
    FieldOf(key);  // raises 3265 if there is no such column
    keys_.push_back(key);
    return static_cast<Long>(keys_.size()) - 1;
}

std::optional<Long> ByNameCursor::Find(const String& name) const {
    if (const auto known = byName_.find(name); known != byName_.end()) return known->second;
    try {
        return byName_[name] = Append(name);
    } catch (const Error& failure) {
        if (failure.Number != adErrItemNotFound) throw;
        return byName_[name] = std::nullopt;
    }
}

Long ByNameCursor::ColumnOf(std::string_view name) {
    if (const std::optional<Long> column = Find(String(name))) return *column;
    RaiseAdo(adErrItemNotFound, RecordsetSource);
}

Long ByNameCursor::ColumnOf(Long ordinal) {
    const auto known = byOrdinal_.find(ordinal);
    return known != byOrdinal_.end() ? known->second : byOrdinal_[ordinal] = Append(ordinal);
}

const Column& ByNameCursor::ColumnAt(Long column) {
    const ByName field = FieldAt(column);
    Column& described = described_[column];
    described.Name = CStr(field.Call("Name"));
    described.Type = static_cast<DataTypeEnum>(CLng(field.Call("Type")));
    described.DefinedSize = CLng(field.Call("DefinedSize"));
    return described;
}

void ByNameCursor::SetValue(Long column, const Variant& value) {
    const Variant& key = KeyOf(column);
    if (recordset_.Has("Collect"))
        recordset_.Put("Collect", value, key);
    else
        FieldOf(key).Put("Value", value);
}

void ByNameCursor::Requery() {
    recordset_.Call("Requery");
    keys_.clear();
    byName_.clear();
    byOrdinal_.clear();
}

}  // namespace

std::unique_ptr<Cursor> CursorByName(const Ref<Object>& recordset) { return std::make_unique<ByNameCursor>(recordset); }

}  // namespace ADODB

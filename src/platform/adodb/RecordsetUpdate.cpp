#include "platform/adodb/Recordset.h"

namespace ADODB {

using namespace Platform;

namespace {

[[noreturn]] void RaiseNoOneTable() {
    RaiseAdo(adErrFeatureNotAvailable, RecordsetSource,
             "The rows come from no table or from several, and can't be changed.");
}

}  // namespace

EditModeEnum Recordset::EditMode() const {
    if (rowsElsewhere_) return rowsElsewhere_->EditMode();
    Result();
    if (edit_) return edit_->mode;
    if (bof_ || eof_ || onDeleted_) RaiseAdo(adErrNoCurrentRecord, RecordsetSource);
    return adEditNone;
}

const String& Recordset::BaseTable() const {
    const String* table = nullptr;
    for (Long i = 0; i < columns_->Count(); ++i) {
        const Column& column = columns_->At(i);
        if (column.Table.empty()) continue;
        if (!table) table = &column.Table;
        if (!EqualsIgnoringCase(*table, column.Table)) RaiseNoOneTable();
    }
    if (!table) RaiseNoOneTable();
    return *table;
}

void Recordset::RequireUpdatable() const {
    Result();
    if (actualLock_ == adLockReadOnly) RaiseAdo(adErrFeatureNotAvailable, RecordsetSource);
    if (!connection_) RaiseAdo(adErrInvalidConnection, RecordsetSource);
    BaseTable();
}

void Recordset::AddNew() {
    if (rowsElsewhere_) return rowsElsewhere_->AddNew();
    RequireUpdatable();
    Update();
    edit_ = Edit{adEditAdd, std::vector<std::optional<Variant>>(static_cast<std::size_t>(columns_->Count()))};
}

void Recordset::Assign(Long ordinal, const Variant& value) {
    if (rowsElsewhere_) return rowsElsewhere_->SetValue(ordinal, value);
    RequireUpdatable();
    if (!edit_) RequireCurrent();
    const Column& column = ColumnAt(ordinal);
    if (column.Table.empty())
        RaiseAdo(adErrFeatureNotAvailable, RecordsetSource,
                 "Column " + column.Name + " is computed and can't be changed.");
    Variant stored = StoredForm(value, column);
    if (!edit_)
        edit_ =
            Edit{adEditInProgress, std::vector<std::optional<Variant>>(static_cast<std::size_t>(columns_->Count()))};
    edit_->assigned[static_cast<std::size_t>(ordinal)] = std::move(stored);
}

void Recordset::CancelUpdate() {
    if (rowsElsewhere_) return rowsElsewhere_->CancelUpdate();
    Result();
    edit_.reset();
}

void Recordset::Update() {
    if (rowsElsewhere_) return rowsElsewhere_->Update();
    Result();
    if (!edit_) return;
    if (edit_->mode == adEditAdd)
        Insert();
    else
        Change();
    edit_.reset();
}

std::int64_t Recordset::Post(const String& statement, const std::vector<Variant>& values) {
    if (!connection_) RaiseAdo(adErrInvalidConnection, RecordsetSource);
    return connection_->Change(statement, values);
}

void Recordset::Insert() {
    const Session& session = connection_->Opened();
    String names, marks;
    std::vector<Variant> values;
    for (Long i = 0; i < columns_->Count(); ++i) {
        const auto& assigned = edit_->assigned[static_cast<std::size_t>(i)];
        if (!assigned) continue;
        names += (names.empty() ? "" : ",") + session.Quoted(columns_->At(i).Origin);
        marks += marks.empty() ? "?" : ",?";
        values.push_back(*assigned);
    }
    const String rest = names.empty() ? " DEFAULT VALUES" : " (" + names + ") VALUES (" + marks + ")";
    Long counter = Columns::Missing;
    for (Long i = 0; i < columns_->Count() && counter == Columns::Missing; ++i)
        if (columns_->At(i).Counter) counter = i;
    const std::string_view counterName =
        counter == Columns::Missing ? std::string_view() : std::string_view(columns_->At(counter).Origin);
    const std::int64_t number =
        connection_->Insert("INSERT INTO " + session.Quoted(BaseTable()) + rest, values, counterName);
    rows_.all.push_back(EditedRow(counter, number));
    GoTo(RowCount() - 1);
}

void Recordset::Change() {
    const Session& session = connection_->Opened();
    String sets;
    std::vector<Variant> values;
    for (Long i = 0; i < columns_->Count(); ++i) {
        if (!IsChanged(i)) continue;
        sets += (sets.empty() ? "" : ",") + session.Quoted(columns_->At(i).Origin) + "=?";
        values.push_back(*edit_->assigned[static_cast<std::size_t>(i)]);
    }
    if (values.empty()) return;
    const String where = WhereRow(values);
    if (Post("UPDATE " + session.Quoted(BaseTable()) + " SET " + sets + where, values) == 0)
        RaiseAdo(ConcurrencyViolation, RecordsetSource);
    rows_.all[static_cast<std::size_t>(position_)] = EditedRow(Columns::Missing, 0);
}

void Recordset::Delete(AffectEnum AffectRecords) {
    if (rowsElsewhere_) return rowsElsewhere_->Delete(AffectRecords);
    Result();
    if (AffectRecords != adAffectCurrent) RaiseAdo(adErrInvalidArgument, RecordsetSource);
    RequireUpdatable();
    RequireNoEdit();
    RequireCurrent();
    std::vector<Variant> values;
    const String where = WhereRow(values);
    if (Post("DELETE FROM " + connection_->Opened().Quoted(BaseTable()) + where, values) == 0)
        RaiseAdo(ConcurrencyViolation, RecordsetSource);
    rows_.all.erase(rows_.all.begin() + position_);
    onDeleted_ = true;
}

Variant Recordset::StoredAt(Long ordinal) const {
    const Cell& cell = Current().At(ordinal);
    switch (cell.kind) {
        case Cell::Kind::Null: return Null{};
        case Cell::Kind::Whole:
            return std::in_range<Long>(cell.whole) ? Variant(static_cast<Long>(cell.whole)) : Variant(cell.whole);
        case Cell::Kind::Real: return cell.real;
        case Cell::Kind::Text: return String(cell.Text());
    }
    return Null{};
}

bool Recordset::IsChanged(Long ordinal) const {
    if (!edit_) return false;
    const auto& assigned = edit_->assigned[static_cast<std::size_t>(ordinal)];
    return assigned && *assigned != StoredAt(ordinal);
}

String Recordset::WhereRow(std::vector<Variant>& values) const {
    const Session& session = connection_->Opened();
    String where;
    bool keyed = false;
    for (Long i = 0; i < columns_->Count(); ++i) {
        const Column& column = columns_->At(i);
        if (!column.Key && !IsChanged(i)) continue;
        keyed = keyed || column.Key;
        where += (where.empty() ? " WHERE " : " AND ") + session.Quoted(column.Origin);
        const bool isNull = Current().At(i).kind == Cell::Kind::Null;
        where += isNull ? " IS NULL" : "=?";
        if (!isNull) values.push_back(StoredAt(i));
    }
    if (!keyed) RaiseAdo(Failed, RecordsetSource, "Insufficient key column information for updating or refreshing.");
    return where;
}

Row Recordset::EditedRow(Long counter, std::int64_t counterValue) {
    std::vector<Cell> cells(static_cast<std::size_t>(columns_->Count()));
    for (Long i = 0; i < columns_->Count(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (edit_->assigned[at])
            cells[at] = CellOf(*edit_->assigned[at]);
        else if (edit_->mode == adEditInProgress)
            cells[at] = Current().At(i);
        else if (i == counter)
            cells[at] = Cell::Of(counterValue);
    }
    return rows_.store.Add(cells);
}

}  // namespace ADODB

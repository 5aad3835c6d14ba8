#include "console/maintenance/ClinicCopy.h"

#include "console/DatabaseName.h"
#include "console/NewDatabase.h"
#include "console/Sha256.h"
#include "console/Server.h"
#include "console/patients/PatientStore.h"
#include "frame/Statement.h"
#include "platform/adodb/Transaction.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace Console {
namespace {

using namespace OXClass;

/// What becomes of the rows that a table of the target has.
enum class Present { Refused, Replaced };

struct Table {
    const char* name;
    const char* key;  ///< empty for a table with one row at most
    Present present = Present::Refused;
    bool ofProgram = false;  ///< a database of an older version may lack it
};

constexpr Table Tables[] = {
    {"Root_T", "RootID", Present::Replaced},
    {"GlobalList_T", "GlobalListID"},
    {"Patient_T", "PatientID"},
    {"Doctor_T", "drID"},
    {"Clinic_T", "ClinicID"},
    {"ImageBild_T", "ImageBildID"},
    {"Comments_T", "CommentID"},
    {"Study_T", "Study_ID"},
    {"Series_T", "Series_ID"},
    {"TemplateCard_T", "TemplateID", Present::Replaced},
    {"TemplateAttribute_T", "TemplateImageId", Present::Replaced},
    {"ImageCard_T", "ImageCardID"},
    {"ImageAttribute_T", "ImageAttributeID"},
    {"ImageManipulation_T", "ImageManipulationID"},
    {"StandardGroupName", "StandardNameID", Present::Replaced},
    {"PatientIssuer_T", "PatientID", Present::Refused, true},
    {"ClinicIdentity_T", "", Present::Replaced, true},
    {"ImportedImage_T", "SOPInstanceUID", Present::Refused, true},
};

using Row = std::vector<Variant>;

/// A column that is copied.
struct CopiedColumn {
    std::string name;
    bool blankIsNull = false;
};

bool IsText(ADODB::DataTypeEnum type) { return type == ADODB::adVarWChar || type == ADODB::adLongVarWChar; }

Ref<Recordset> NoRows(const Ref<Connection>& con, const Table& table) {
    return con->Execute(sql("SELECT * FROM ", Clause(table.name), " WHERE 1 = 0"));
}

/// Returns the columns of a table of the source. Throws `UserError` for one that the target lacks.
std::vector<CopiedColumn> ColumnsOf(const Table& table, const Ref<Connection>& source, const Ref<Connection>& target) {
    const Ref<Recordset> from = NoRows(source, table), to = NoRows(target, table);
    const bool server = IsServer(target);
    std::vector<CopiedColumn> columns;
    for (Long i = 0; i < from->FieldCount(); ++i) {
        const String name = from->Fields(i).Name();
        try {
            columns.push_back({name, server && !IsText(to->Fields(name).Type())});
        } catch (const Error& failure) {
            if (failure.Number != ADODB::adErrItemNotFound) throw;
            throw UserError(fmt::format("{}: the target has no column {}; nothing was copied", table.name, name));
        }
    }
    return columns;
}

std::string NamesOf(const std::vector<CopiedColumn>& columns) {
    std::string names;
    for (const CopiedColumn& column : columns) names += (names.empty() ? "" : ", ") + column.name;
    return names;
}

/// Returns a value as SQL.
std::string LiteralOf(const Variant& value) {
    if (value.Is<Null>() || value.Is<Empty>()) return "NULL";
    if (value.Is<double>()) return fmt::format("{}", value.As<double>());
    if (value.Is<Date>()) return "'" + FormatDate(value.As<Date>(), "yyyy-mm-dd hh:nn:ss") + "'";
    if (value.Is<String>()) return "'" + Replace(value.As<String>(), "'", "''") + "'";
    return CStr(value);
}

/// Returns type and value as bytes that differ for different values.
std::string BytesOf(const Variant& value) {
    if (value.Is<Null>() || value.Is<Empty>()) return "null;";
    if (value.Is<double>()) return fmt::format("real {};", value.As<double>());
    if (value.Is<Date>()) return fmt::format("date {};", value.As<Date>().Days);
    if (value.Is<String>()) return fmt::format("text {} {};", value.As<String>().size(), value.As<String>());
    return "whole " + CStr(value) + ";";
}

/// The rows of a table in the order of their keys, page by page.
class Pages {
public:
    Pages(Ref<Connection> con, const Table& table, const std::vector<CopiedColumn>& columns)
        : con_(std::move(con)), table_(table), columns_(columns) {}

    /// Returns the next rows; none at the end.
    std::vector<Row> Next() {
        std::vector<Row> rows;
        if (ended_) return rows;
        const Ref<Recordset> read = con_->Execute(Statement());
        for (; !read->Eof(); read->MoveNext()) {
            rows.push_back(RowOf(read));
            if (*table_.key) last_ = LiteralOf(read->Fields(table_.key).Value());
        }
        ended_ = !*table_.key || rows.size() < PageSize;
        return rows;
    }

private:
    static constexpr std::size_t PageSize = 500;

    std::string Statement() const {
        std::string text = fmt::format("SELECT {} FROM {}", NamesOf(columns_), table_.name);
        if (!*table_.key) return text;
        if (last_) text += fmt::format(" WHERE {} > {}", table_.key, *last_);
        return text + fmt::format(" ORDER BY {} LIMIT {}", table_.key, PageSize);
    }

    Row RowOf(const Ref<Recordset>& read) const {
        Row row;
        row.reserve(columns_.size());
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            Variant value = read->Fields(static_cast<Long>(i)).Value();
            const bool blank = value.Is<String>() && value.As<String>().empty();
            row.push_back(blank && columns_[i].blankIsNull ? Variant(Null()) : std::move(value));
        }
        return row;
    }

    Ref<Connection> con_;
    const Table& table_;
    const std::vector<CopiedColumn>& columns_;
    std::optional<std::string> last_;
    bool ended_ = false;
};

/// The copy of one table.
class TableCopy {
public:
    TableCopy(const Table& table, const Ref<Connection>& source, const Ref<Connection>& target)
        : table_(table), source_(source), target_(target), columns_(ColumnsOf(table, source, target)) {}

    void Copy(Progress& progress) {
        Pages pages(source_, table_, columns_);
        for (std::vector<Row> rows = pages.Next(); !rows.empty(); rows = pages.Next()) {
            std::string values;
            std::size_t first = 0;
            for (std::size_t i = 0; i < rows.size(); ++i) {
                values += (values.empty() ? "" : ", ") + ValuesOf(rows[i]);
                progress.Step();
                if (values.size() < MostBytes && i + 1 < rows.size()) continue;
                Insert(values, std::span(rows).subspan(first, i + 1 - first));
                values.clear();
                first = i + 1;
            }
        }
    }

    /// Compares the rows of both sides. Throws `UserError` for the first value that differs.
    CopiedTable Compare(Progress& progress) {
        Pages from(source_, table_, columns_), to(target_, table_, columns_);
        Sha256 sent, stored;
        CopiedTable copied{table_.name, 0, {}};
        for (;;) {
            const std::vector<Row> wanted = from.Next(), found = to.Next();
            if (wanted.empty() && found.empty()) break;
            if (wanted.size() != found.size()) ThrowDifferent("the numbers of rows differ");
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                CompareRow(wanted[i], found[i], sent, stored);
                progress.Step();
            }
            copied.rows += wanted.size();
        }
        copied.sha256 = sent.Hex();
        if (stored.Hex() != copied.sha256) ThrowDifferent("the checksums differ");
        return copied;
    }

private:
    static constexpr std::size_t MostBytes = 262'144;

    static std::string ValuesOf(const Row& row) {
        std::string values;
        for (const Variant& value : row) values += (values.empty() ? "(" : ", ") + LiteralOf(value);
        return values + ")";
    }

    void Run(const std::string& statement) const { target_->Execute(statement, nullptr, ADODB::adExecuteNoRecords); }

    void Insert(const std::string& values, std::span<const Row> rows) const {
        try {
            Run(fmt::format("INSERT INTO {} ({}) VALUES {}", table_.name, NamesOf(columns_), values));
        } catch (Error& failure) {
            failure.Statement.clear();  // too long for a message
            if (failure.Number == ADODB::ConnectionLost || failure.Number == ADODB::NoTransaction) throw;
            for (const Row& row : rows) RefuseIfRejected(row);
            throw;
        }
    }

    /// Throws `UserError` if the target rejects one of the values of a row.
    void RefuseIfRejected(const Row& row) const {
        for (std::size_t i = 0; i < row.size(); ++i) {
            try {
                TryValue(row, i);
            } catch (const Error& failure) {
                Refuse(row, i, failure.Description);
            }
        }
    }

    /// Stores one value of a row, with its key, and removes it.
    void TryValue(const Row& row, std::size_t column) const {
        std::vector<CopiedColumn> columns{columns_[column]};
        Row values{row[column]};
        if (*table_.key && column != KeyColumn()) {
            columns.push_back(columns_[KeyColumn()]);
            values.push_back(row[KeyColumn()]);
        }
        Run(fmt::format("INSERT INTO {} ({}) VALUES {}", table_.name, NamesOf(columns), ValuesOf(values)));
        if (*table_.key)
            Run(fmt::format("DELETE FROM {} WHERE {} = {}", table_.name, table_.key, LiteralOf(row[KeyColumn()])));
    }

    std::size_t KeyColumn() const {
        const auto key = std::ranges::find_if(
            columns_, [&](const CopiedColumn& column) { return EqualsIgnoringCase(column.name, table_.key); });
        return static_cast<std::size_t>(key - columns_.begin());
    }

    [[noreturn]] void Refuse(const Row& row, std::size_t column, const std::string& why) const {
        const std::string where =
            *table_.key ? fmt::format("{}, {} {}", table_.name, table_.key, CStr(row[KeyColumn()])) : table_.name;
        throw UserError(fmt::format("{}: the target can't take the {} {} ({}); nothing was copied", where,
                                    columns_[column].name, LiteralOf(row[column]), why));
    }

    [[noreturn]] void ThrowDifferent(const char* how) const {
        throw UserError(fmt::format("{}: {} after the copy; nothing was copied", table_.name, how));
    }

    void CompareRow(const Row& wanted, const Row& found, Sha256& sent, Sha256& stored) const {
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const std::string one = BytesOf(wanted[i]), other = BytesOf(found[i]);
            if (one != other) Refuse(wanted, i, "it would store " + LiteralOf(found[i]));
            sent.Add(one.data(), one.size());
            stored.Add(other.data(), other.size());
        }
    }

    const Table& table_;
    Ref<Connection> source_, target_;
    std::vector<CopiedColumn> columns_;
};

/// Returns true for a table that a database of an older version lacks.
bool IsMissing(const Ref<Connection>& con, const Table& table) { return table.ofProgram && !HasTable(con, table.name); }

bool HasRows(const Ref<Connection>& con, const Table& table) {
    return !con->Execute(sql("SELECT 1 FROM ", Clause(table.name), " LIMIT 1"))->Eof();
}

/// Makes a database of the target into one with all tables and no rows. Throws `UserError` if it has rows of a clinic.
void PrepareTarget(const Ref<Connection>& target) {
    if (MayBecomeClinic(target)) CreateClinicTables(target);
    LockWriters(target);
    CreateProgramTables(target);
    for (const Table& table : Tables) {
        if (table.present == Present::Replaced)
            target->Execute(sql("DELETE FROM ", Clause(table.name)));
        else if (!IsMissing(target, table) && HasRows(target, table))
            throw UserError(fmt::format("the target has rows in {} already and is not changed; name an empty database",
                                        table.name));
    }
}

/// Returns true if two connections are to the same database, as far as their settings tell.
bool AreOfOneDatabase(const Ref<Connection>& one, const Ref<Connection>& other) {
    if (one->ConnectionString() == other->ConnectionString()) return true;
    const std::string file = SettingsOf(one->ConnectionString()).Value("Data Source");
    const std::string otherFile = SettingsOf(other->ConnectionString()).Value("Data Source");
    std::error_code missing;
    return std::filesystem::equivalent(file, otherFile, missing);
}

}  // namespace

std::vector<CopiedTable> CopyClinic(const Database& source, const Ref<Connection>& target) {
    if (AreOfOneDatabase(source.Con(), target))
        throw UserError("the target is the clinic itself; name another database");
    ReadOneState(source.Con());
    const ADODB::Transaction reading(source.Con());
    ADODB::Transaction writing(target);
    PrepareTarget(target);
    std::vector<TableCopy> copies;
    std::size_t rows = 0;
    for (const Table& table : Tables) {
        if (IsMissing(source.Con(), table) || IsMissing(target, table)) continue;
        copies.emplace_back(table, source.Con(), target);
        rows += static_cast<std::size_t>(source.Number(fmt::format("SELECT count(*) FROM {}", table.name)));
    }
    {
        Progress progress("rows copied", rows);
        for (TableCopy& copy : copies) copy.Copy(progress);
    }
    std::vector<CopiedTable> copied;
    copied.reserve(copies.size());
    {
        Progress progress("rows compared", rows);
        for (TableCopy& copy : copies) copied.push_back(copy.Compare(progress));
    }
    AlignCounters(target);
    writing.Commit();
    return copied;
}

std::vector<CopiedTable> CopyClinicToNewFile(const Database& source, const std::filesystem::path& file) {
    NewDatabase made(file);
    const Ref<Connection> target = New<Connection>();
    target->Open(ConnectionStringOf(made.Made().string(), "Create"));
    std::vector<CopiedTable> copied = CopyClinic(source, target);
    target->Execute("PRAGMA journal_mode = DELETE");  // the file can be read without a log beside it
    target->Close();
    made.Finish();
    return copied;
}

}  // namespace Console

#include "console/Clinic.h"

#include "frame/Statement.h"
#include "frame/StoredName.h"
#include "platform/runtime/Services.h"

#include <cstdlib>
#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace Platform;

constexpr Long ApplicationMark = 0x4F58434C;  // what schema/sqlite.sql writes into each database
constexpr Long KnownVersion = 1;

std::string DatabaseOf(const Options& options) {
    if (!options.database.empty()) return options.database;
    const char* const fromEnvironment = std::getenv("OXCLASS_DB");
    if (fromEnvironment && *fromEnvironment) return fromEnvironment;
    throw Complaint(
        "no database is named; use --db FILE or set OXCLASS_DB, or make one with: oxclass init clinic.db");
}

bool IsConnectionString(const std::string& database) { return Contains(LCase(database), "provider="); }

/// Opens for writing, or where that is not allowed for reading.
void OpenAsAllowed(const Ref<Connection>& con, const std::string& database) {
    try {
        con->Open(ConnectionStringOf(database));
    } catch (const Error& failure) {
        if (failure.Number != ADODB::NoPermission || IsConnectionString(database)) throw;
        con->Open(ConnectionStringOf(database, "Read"));
    }
}

}  // namespace

/// Prints each statement with its time to standard error.
class Clinic::Trace final : public ADODB::ConnectionEvents {
public:
    void ExecuteComplete(const ADODB::ExecuteReport& report) override {
        const std::string outcome =
            report.Failure
                ? "failed: " + report.Failure->Description
                : fmt::format("{} rows", report.RecordsAffected >= 0 ? report.RecordsAffected : report.Rows);
        fmt::print(stderr, "[{:8.3f} ms, {}] {}\n", report.Seconds * 1000, outcome, report.Source);
    }
    void BeginTransComplete(Long level) override { fmt::print(stderr, "[begin transaction {}]\n", level); }
    void CommitTransComplete() override { fmt::print(stderr, "[commit]\n"); }
    void RollbackTransComplete() override { fmt::print(stderr, "[roll back]\n"); }
};

std::string ConnectionStringOf(const std::string& database, const std::string& mode) {
    if (IsConnectionString(database)) return database;
    const std::string quoted = "'" + Replace(database, "'", "''") + "'";
    return "Provider=SQLite;Data Source=" + quoted + (mode.empty() ? "" : ";Mode=" + mode);
}

Clinic::Clinic(const Options& options) : con_(New<Connection>()) {
    const std::string database = DatabaseOf(options);
    if (!IsConnectionString(database) && !fs::exists(database))
        throw Complaint(fmt::format("there is no database {0}; make one with: oxclass init {0}", database));
    try {
        OpenAsAllowed(con_, database);
        RequireClinic(database);
    } catch (const Error& failure) {
        throw Complaint(
            fmt::format("{} can't be opened: {}; see that you may read and write it and its folder, or "
                        "copy it to a folder of yours",
                        database, failure.Description));
    }
    if (options.trace) {
        trace_ = std::make_unique<Trace>();
        con_->Advise(*trace_);
    }
}

Clinic::~Clinic() {
    if (trace_) con_->Unadvise(*trace_);
}

void Clinic::RequireClinic(const std::string& name) const {
    const Long mark = CLng(con_->Execute("PRAGMA application_id")->Fields(0).Value());
    const Long version = CLng(con_->Execute("PRAGMA user_version")->Fields(0).Value());
    if (mark != ApplicationMark)
        throw Complaint(
            fmt::format("{} is no clinic database; make one under another name with: oxclass init", name));
    if (version > KnownVersion)
        throw Complaint(
            fmt::format("{} was made by a newer program (tables of version {}, this program knows {}); "
                        "use that program",
                        name, version, KnownVersion));
}

Ref<Recordset> Clinic::Read(const std::string& statement) const {
    Ref<Recordset> rows = New<Recordset>();
    rows->Open(statement, con_);
    return rows;
}

Long Clinic::Number(const std::string& statement) const { return CLng(Read(statement)->Fields(0).Value()); }

List Clinic::ListOf(const std::string& statement) const {
    const Ref<Recordset> rows = Read(statement);
    std::vector<List::Column> columns;
    for (Long i = 0; i < rows->FieldCount(); ++i) {
        const String& name = rows->Fields(i).Name();
        columns.push_back({Replace(LCase(name), " ", "_"), name});
    }
    List list(std::move(columns));
    for (; !rows->Eof(); rows->MoveNext()) {
        std::vector<nlohmann::ordered_json> row;
        row.reserve(static_cast<std::size_t>(rows->FieldCount()));
        for (Long i = 0; i < rows->FieldCount(); ++i) row.push_back(AsJson(rows->Fields(i).Value()));
        list.Add(std::move(row));
    }
    return list;
}

std::string Undoubled(const std::string& description) { return Replace(description, "''", "'"); }

std::string WithoutQuotes(const std::string& text) { return Replace(text, "'", "\u2019"); }

void ComplainOfTextBoxes(const std::function<void()>& work) {
    std::string told;
    const auto before = std::exchange(
        TheHost().MsgBox, [&](const String& prompt, Long) { told += (told.empty() ? "" : "; ") + prompt; });
    try {
        work();
    } catch (...) {
        TheHost().MsgBox = before;
        throw;
    }
    TheHost().MsgBox = before;
    if (!told.empty()) throw Complaint(told);
}

void RunScript(const Ref<Connection>& con, std::string_view script) {
    bool quoted = false, comment = false;
    std::size_t start = 0;
    for (std::size_t at = 0; at < script.size(); ++at) {
        const char c = script[at];
        if (comment) {
            comment = c != '\n';
        } else if (c == '\'') {
            quoted = !quoted;
        } else if (!quoted && script.substr(at, 2) == "--") {
            comment = true;
        } else if (!quoted && c == ';') {
            con->Execute(String(script.substr(start, at + 1 - start)));
            start = at + 1;
        }
    }
}

fs::path StoredPath(const std::string& root, const std::string& storedName) {
    const std::string file = OXClass::FileBelow(root, storedName);
    if (file.empty())
        throw Complaint(fmt::format("the stored file name \"{}\" leads out of its root", storedName));
    return file;
}

}  // namespace Console

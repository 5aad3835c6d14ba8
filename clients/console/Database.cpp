#include "console/Database.h"

#include "console/DatabaseFile.h"
#include "console/DatabaseName.h"
#include "console/Server.h"
#include "frame/Statement.h"
#include "frame/StoredName.h"
#include "platform/runtime/Services.h"

#include <cstdlib>
#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace Platform;

std::string DatabaseOf(const Options& options) {
    if (!options.database.empty()) return options.database;
    const char* const fromEnvironment = std::getenv("OXCLASS_DB");
    if (fromEnvironment && *fromEnvironment) return fromEnvironment;
    throw UserError("no database is named; use --db FILE or set OXCLASS_DB, or make one with: oxclass init clinic.db");
}

/// While this object lives, another handler receives the text boxes.
class TextBoxes {
public:
    explicit TextBoxes(std::function<void(const String&, Long)> handler)
        : before_(std::exchange(TheHost().MsgBox, std::move(handler))) {}
    ~TextBoxes() { TheHost().MsgBox = before_; }
    TextBoxes(const TextBoxes&) = delete;

private:
    std::function<void(const String&, Long)> before_;
};

/// Returns true if a file could not be opened because of the rights of the file, of its folder or of its log.
bool IsOfRights(const Error& failure) {
    constexpr Long primary = 0xFF, cannotOpen = 14;  // the engine's code
    return failure.Number == ADODB::NoPermission || (failure.NativeError & primary) == cannotOpen;
}

/// Opens the database for writing, or for reading if writing is not allowed. In a folder where the engine can't create
/// its lock file, the file is opened as an immutable one, which is possible only if it has no log.
void OpenAsAllowed(const Ref<Connection>& con, const std::string& database) {
    if (IsConnectionString(database)) return OpenServer(con, database);
    for (const char* const mode : {"ReadWrite", "Read"}) {
        try {
            return con->Open(ConnectionStringOf(database, mode));
        } catch (const Error& failure) {
            if (!IsOfRights(failure)) throw;
            if (mode == std::string_view("Read") && HasLog(database)) throw;
        }
    }
    con->Open(ConnectionStringOf(database, "Snapshot"));
}

/// Throws `UserError` unless the open database has the marks of a clinic database, as its engine reads them.
void RequireClinic(const Ref<Connection>& con, const std::string& name) {
    if (IsServer(con)) return RequireServerClinic(con, name);
    const auto mark = [&](const char* pragma) { return CLng(con->Execute(pragma)->Fields(0).Value()); };
    RequireMarks(name, mark("PRAGMA application_id"), mark("PRAGMA user_version"));
}

/// Throws `UserError` for a file that isn't a clinic database, before it is opened for writing: opening turns
/// a file of another program into one with a log.
void RequireClinicFile(const std::string& file) {
    if (IsClinicFile(file)) return;
    const Ref<Connection> reader = New<Connection>();
    reader->Open(ConnectionStringOf(file, "Read"));
    RequireClinic(reader, file);
}

}  // namespace

/// Prints each statement with its time to standard error.
class Database::Trace final : public ADODB::ConnectionEvents {
public:
    void ExecuteComplete(const ADODB::ExecuteReport& report) override {
        const std::string outcome =
            report.Failure ? "failed: " + report.Failure->Description
                           : fmt::format("{} rows", report.RecordsAffected >= 0 ? report.RecordsAffected : report.Rows);
        fmt::print(stderr, "[{:8.3f} ms, {}] {}\n", report.Seconds * 1000, outcome, report.Source);
    }
    void BeginTransComplete(Long level) override { fmt::print(stderr, "[begin transaction {}]\n", level); }
    void CommitTransComplete() override { fmt::print(stderr, "[commit]\n"); }
    void RollbackTransComplete() override { fmt::print(stderr, "[roll back]\n"); }
};

Database::Database(const Options& options) : con_(New<Connection>()) {
    const std::string database = DatabaseOf(options), name = ShownName(database);
    try {
        const ADODB::ConnectionString settings(ConnectionStringOf(database));
        if (EqualsIgnoringCase(settings.Value("Provider"), "SQLite")) RequireClinicFile(settings.Value("Data Source"));
        OpenAsAllowed(con_, database);
        RequireClinic(con_, name);
    } catch (const Error& failure) {
        throw UserError(fmt::format("{} can't be opened: {}", name, ExplanationOf(failure)));
    }
    if (options.trace) {
        trace_ = std::make_unique<Trace>();
        con_->Advise(*trace_);
    }
}

Database::~Database() {
    if (trace_) con_->Unadvise(*trace_);
}

Ref<Recordset> Database::Read(const std::string& statement) const {
    Ref<Recordset> rows = New<Recordset>();
    rows->Open(statement, con_);
    return rows;
}

Long Database::Number(const std::string& statement) const { return CLng(Read(statement)->Fields(0).Value()); }

List Database::ListOf(const std::string& statement) const {
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

void WithoutTextBoxes(const std::function<void()>& work) {
    const TextBoxes boxes([](const String&, Long) {});
    work();
}

void ThrowTextBoxes(const std::function<void()>& work) {
    std::string told;
    {
        const TextBoxes boxes([&](const String& prompt, Long) { told += (told.empty() ? "" : "; ") + prompt; });
        work();
    }
    if (!told.empty()) throw UserError(told);
}

fs::path StoredPath(const std::string& root, const std::string& storedName) {
    const std::string file = OXClass::FileBelow(root, storedName);
    if (file.empty()) throw UserError(fmt::format("the stored file name \"{}\" leads out of its root", storedName));
    return file;
}

}  // namespace Console

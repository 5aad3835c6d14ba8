#include "platform/adodb/providers/sqlite/SqliteSession.h"

#include "platform/adodb/providers/CachingSession.h"
#include "platform/adodb/providers/sqlite/SqliteErrors.h"
#include "platform/adodb/providers/sqlite/SqliteStatements.h"
#include "platform/runtime/Convert.h"

#include <limits>
#include <sqlite3.h>

namespace ADODB {

using namespace Platform;

namespace {

constexpr int WaitForLock_ms = 15'000;

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

/// One run of a statement. The destructor resets the statement and clears its parameters.
class StatementRun {
public:
    explicit StatementRun(sqlite3_stmt* compiled) : compiled_(compiled) {}
    StatementRun(StatementRun&& other) noexcept : compiled_(std::exchange(other.compiled_, nullptr)) {}
    StatementRun& operator=(StatementRun&&) = delete;
    ~StatementRun() {
        if (!compiled_) return;
        sqlite3_reset(compiled_);
        sqlite3_clear_bindings(compiled_);
    }
    sqlite3_stmt* Compiled() const noexcept { return compiled_; }

private:
    sqlite3_stmt* compiled_;
};

/// The rows of a statement whose first step is made.
class SqliteRows final : public RowReader {
public:
    /// `code` is the result of the first step: `SQLITE_ROW` or `SQLITE_DONE`.
    SqliteRows(StatementRun run, int code, std::string_view text) : run_(std::move(run)), code_(code), text_(text) {}

    bool Next() override {
        if (begun_) {
            code_ = sqlite3_step(run_.Compiled());
            if (code_ != SQLITE_ROW && code_ != SQLITE_DONE) RaiseSqlite(sqlite3_db_handle(run_.Compiled()), text_);
        }
        begun_ = true;
        return code_ == SQLITE_ROW;
    }

    /// Reads the value through the engine's value object: this needs no mutex in a session of one thread, and avoids
    /// the error check that each access by column makes.
    Cell At(Long ordinal) const override {
        sqlite3_value* const value = sqlite3_column_value(run_.Compiled(), ordinal);
        switch (sqlite3_value_type(value)) {
            case SQLITE_INTEGER: return Cell::Of(static_cast<std::int64_t>(sqlite3_value_int64(value)));
            case SQLITE_FLOAT: return Cell::Of(sqlite3_value_double(value));
            case SQLITE_NULL: return {};
            case SQLITE_BLOB: return TextCell(value, sqlite3_value_blob(value));
            default: return TextCell(value, sqlite3_value_text(value));
        }
    }

private:
    static Cell TextCell(sqlite3_value* value, const void* bytes) {
        const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
        return Cell::Of(std::string_view(static_cast<const char*>(bytes), size));
    }

    StatementRun run_;
    int code_;
    std::string_view text_;
    bool begun_ = false;
};

class SqliteSession final : public CachingSession<SqliteStatement> {
public:
    SqliteSession(Database database, bool readOnly)
        : database_(std::move(database)), statements_(database_.get()), readOnly_(readOnly) {}

    Outcome Run(std::string_view text) override {
        SqliteStatement& statement = statements_.For(text, literals_);
        StatementRun run(statement.Compiled());
        Bind(run.Compiled(), text);
        const std::int64_t before = sqlite3_total_changes64(database_.get());
        const int code = sqlite3_step(run.Compiled());
        // Each later call replaces the engine's error: it is raised before the columns are read.
        if (code != SQLITE_ROW && code != SQLITE_DONE) RaiseSqlite(database_.get(), text);
        // The engine compiles anew when a table has changed, and the columns with it.
        if (sqlite3_stmt_status(run.Compiled(), SQLITE_STMTSTATUS_REPREPARE, 1) > 0) statement.ForgetColumns();
        Outcome outcome;
        outcome.columns = statement.ResultColumns(database_.get());
        if (outcome.columns) {
            outcome.reader = std::make_unique<SqliteRows>(std::move(run), code, text);
        } else {
            const bool changed = sqlite3_total_changes64(database_.get()) != before;
            outcome.affected = changed ? sqlite3_changes64(database_.get()) : 0;
        }
        return outcome;
    }

    std::int64_t Change(std::string_view text, std::span<const Variant> values) override {
        SqliteStatement& statement = statements_.ForMarked(text);
        const StatementRun run(statement.Compiled());
        for (std::size_t i = 0; i < values.size(); ++i)
            Bind(statement.Compiled(), static_cast<int>(i) + 1, CellOf(values[i]), text);
        Finish(statement.Compiled(), text);
        return sqlite3_changes64(database_.get());
    }

    std::int64_t Insert(std::string_view text, std::span<const Variant> values, std::string_view) override {
        Change(text, values);
        return sqlite3_last_insert_rowid(database_.get());
    }

    String Quoted(std::string_view name) const override { return '"' + Replace(name, "\"", "\"\"") + '"'; }

    // The outermost transaction takes the write lock at once: two writers then wait for each other at
    // the begin, where waiting helps, and not at the first write, where it can't.
    void Begin(Long level) override {
        Command(level == 1 ? (readOnly_ ? "BEGIN" : "BEGIN IMMEDIATE") : "SAVEPOINT level" + CStr(level));
    }
    void Commit(Long level) override { Command(level == 1 ? "COMMIT" : "RELEASE level" + CStr(level)); }
    void RollBack(Long level) override {
        if (sqlite3_get_autocommit(database_.get())) return;  // a failure has rolled it back already
        if (level > 1) Command("ROLLBACK TO level" + CStr(level));
        Command(level == 1 ? "ROLLBACK" : "RELEASE level" + CStr(level));
    }
    bool InTransaction() const override { return sqlite3_get_autocommit(database_.get()) == 0; }
    Long MostLevels() const override { return 5; }

    bool IsBroken() const override { return false; }
    void SetCommandTimeout(Long) override {}

private:
    SqliteStatement* Cached(std::span<const StatementPiece> pieces) override {
        return statements_.ForPieces(pieces, literals_);
    }
    SqliteStatement* For(std::string_view text) override { return &statements_.For(text, literals_); }

    void RunToEnd(SqliteStatement* statement, std::string_view text) override {
        const StatementRun run(statement->Compiled());
        Bind(run.Compiled(), text);
        Finish(run.Compiled(), text);
    }

    /// Runs a statement to its end.
    void Finish(sqlite3_stmt* compiled, std::string_view text) {
        int code = SQLITE_ROW;
        while (code == SQLITE_ROW) code = sqlite3_step(compiled);
        if (code != SQLITE_DONE) RaiseSqlite(database_.get(), text);
    }

    void Command(const String& text) {
        if (sqlite3_exec(database_.get(), text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            RaiseSqlite(database_.get(), text);
    }

    void Bind(sqlite3_stmt* compiled, std::string_view statement) {
        unquoted_.clear();
        unquoted_.reserve(literals_.size());  // bound texts point into it
        for (std::size_t i = 0; i < literals_.size(); ++i) {
            const Literal& literal = literals_[i];
            Cell cell;
            if (!literal.isText) {
                cell = Cell::Of(literal.number);
            } else if (literal.body.find('\'') == std::string_view::npos) {
                cell = Cell::Of(literal.body);
            } else {
                cell = Cell::Of(std::string_view(unquoted_.emplace_back(Unquoted(literal.body))));
            }
            Bind(compiled, static_cast<int>(i) + 1, cell, statement);
        }
    }

    /// Binds a value. A bound text isn't copied: it must live until the run ends.
    void Bind(sqlite3_stmt* compiled, int at, const Cell& cell, std::string_view statement) {
        int code = SQLITE_OK;
        switch (cell.kind) {
            case Cell::Kind::Null: code = sqlite3_bind_null(compiled, at); break;
            case Cell::Kind::Whole: code = sqlite3_bind_int64(compiled, at, cell.whole); break;
            case Cell::Kind::Real: code = sqlite3_bind_double(compiled, at, cell.real); break;
            case Cell::Kind::Text:
                code = sqlite3_bind_text64(compiled, at, cell.text ? cell.text : "", cell.length, SQLITE_STATIC,
                                           SQLITE_UTF8);
                break;
        }
        if (code != SQLITE_OK) RaiseSqlite(database_.get(), statement);
    }

    Database database_;
    SqliteStatements statements_;
    bool readOnly_;
    std::vector<std::string> unquoted_;  // of the literals of the statement that ran last; its rows may not be read yet
};

int FlagsOf(const String& mode) {
    if (EqualsIgnoringCase(mode, "Read")) return SQLITE_OPEN_READONLY;
    if (EqualsIgnoringCase(mode, "Snapshot")) return SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
    if (EqualsIgnoringCase(mode, "ReadWrite")) return SQLITE_OPEN_READWRITE;
    if (EqualsIgnoringCase(mode, "Create")) return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    RaiseAdo(MultipleStepFailed, ConnectionSource,
             "Mode=" + mode + " can't be honoured; it is Read, Snapshot, ReadWrite or Create.");
}

/// Returns a file name as a URI that declares the file immutable to the engine.
String SnapshotName(const String& file) {
    constexpr std::string_view plain = "/-._~";
    String name = file.starts_with("//") ? "file://" : "file:";
    for (const char c : file) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (letter || plain.find(c) != std::string_view::npos) {
            name += c;
            continue;
        }
        constexpr std::string_view digits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        name += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
    }
    return name + "?immutable=1";
}

void RequireKnownSettings(const ConnectionString& settings) {
    const String unknown =
        settings.FirstUnknown({"Provider", "Data Source", "Mode", "User ID", "Password", "Persist Security Info"});
    if (!unknown.empty())
        RaiseAdo(MultipleStepFailed, ConnectionSource, "The setting \"" + unknown + "\" is not known.");
    if (!settings.Value("Password").empty())
        RaiseAdo(MultipleStepFailed, ConnectionSource, "A password can't be honoured: a file has no users.");
    if (settings.Value("Data Source").empty())
        RaiseAdo(MultipleStepFailed, ConnectionSource, "The connection string names no Data Source.");
}

void SetUp(sqlite3* database, bool readOnly) {
    sqlite3_extended_result_codes(database, 1);
    sqlite3_busy_timeout(database, WaitForLock_ms);
    sqlite3_db_config(database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);  // "name" is a name, never a text
    sqlite3_db_config(database, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    const char* const set = readOnly ? "SELECT count(*) FROM sqlite_schema"  // fails if it is not a database
                                     : "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;";
    if (sqlite3_exec(database, set, nullptr, nullptr, nullptr) != SQLITE_OK) RaiseSqlite(database, set);
}

}  // namespace

std::unique_ptr<Session> OpenSqlite(const ConnectionString& settings, Long) {
    RequireKnownSettings(settings);
    const int flags = FlagsOf(settings.Value("Mode", "ReadWrite"));
    const String file = settings.Value("Data Source");
    const String name = (flags & SQLITE_OPEN_URI) != 0 ? SnapshotName(file) : file;
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    Database database(opened);
    if (code != SQLITE_OK) RaiseSqlite(opened, {});
    SetUp(opened, (flags & SQLITE_OPEN_READONLY) != 0);
    // The engine opens a file without write permission for reading, even if writing was requested.
    return std::make_unique<SqliteSession>(std::move(database), sqlite3_db_readonly(opened, "main") == 1);
}

String SqliteEngine() { return String("SQLite ") + sqlite3_libversion(); }

}  // namespace ADODB

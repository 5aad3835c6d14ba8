#include "console/Server.h"

#include "Schema.h"
#include "console/DatabaseFile.h"
#include "console/DatabaseName.h"
#include "frame/SchemaVersion.h"
#include "frame/Statement.h"

#include <fmt/format.h>
#include <iostream>
#include <map>
#include <termios.h>
#include <unistd.h>

namespace Console {
namespace {

using namespace OXClass;

/// While this object lives, the terminal does not show what is typed.
class WithoutEcho {
public:
    WithoutEcho() {
        tcgetattr(STDIN_FILENO, &before_);
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~WithoutEcho() { tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_); }
    WithoutEcho(const WithoutEcho&) = delete;

private:
    termios before_{};
};

std::string TypedPassword(const std::string& user) {
    const WithoutEcho silent;
    fmt::print(stderr, "Password{}: ", user.empty() ? "" : " of " + Printable(user));
    std::string password;
    std::getline(std::cin, password);
    fmt::print(stderr, "\n");
    return password;
}

/// The engines of the servers that were opened, by the connection strings of their connections.
std::map<String, Engine>& KnownServers() {
    static std::map<String, Engine> servers;
    return servers;
}

/// Returns what the server says about itself; empty for an engine without this function.
String VersionOf(const Ref<Connection>& con) {
    try {
        return con->Execute("SELECT version()")->Fields(0).As<String>();
    } catch (const Error& failure) {
        if (failure.Number != ADODB::ErrorsInCommand) throw;
        return {};
    }
}

/// Returns the engine of a connection that was just opened. Throws `UserError` for one that is not supported. A
/// provider that is not built in and does not say what its engine is has one like SQLite.
Engine EngineAt(const Ref<Connection>& con) {
    const String provider = SettingsOf(con->ConnectionString()).Value("Provider");
    if (EqualsIgnoringCase(provider, "SQLite")) return Engine::SQLite;
    const String version = VersionOf(con);
    if (Platform::Contains(version, "PostgreSQL")) return Engine::PostgreSQL;
    if (Platform::Contains(version, "MariaDB")) return Engine::MariaDB;
    if (!EqualsIgnoringCase(provider, "MSDASQL")) return Engine::SQLite;
    throw UserError("the database engine is not supported; use a file, PostgreSQL, or MariaDB by its own ODBC driver");
}

/// Opens the connection. If the server asks for a password that was not given, asks the user for it.
void OpenOrAsk(const Ref<Connection>& con, const std::string& database) {
    try {
        con->Open(database);
    } catch (const Error& failure) {
        const ADODB::ConnectionString settings(database);
        const bool given = !settings.Value("Password").empty() || !settings.Value("Password File").empty();
        if (failure.Number != ADODB::LoginFailed || given || isatty(STDIN_FILENO) == 0) throw;
        con->Open(database, {}, TypedPassword(settings.Value("User ID")));
    }
}

/// Sets how long a statement waits for a lock, in seconds. Lets a select and the begin of a transaction in a cluster
/// wait until the node has what the others have committed.
void PrepareMariaDb(const Ref<Connection>& con, Long longestWait) {
    con->Execute(sql("SET SESSION innodb_lock_wait_timeout = ", longestWait));
    const Ref<Recordset> cluster = con->Execute(
        "SELECT 1 FROM information_schema.session_variables WHERE variable_name = 'WSREP_ON' AND variable_value = "
        "'ON'");
    if (!cluster->Eof()) con->Execute("SET SESSION wsrep_sync_wait = 1");
}

/// Creates the tables of the program that are missing, if the user may do so.
void CompleteProgramTables(const Ref<Connection>& con) {
    if (HasProgramTables(con)) return;
    try {
        RunScript(con, schema::program_sql);
    } catch (const Error& failure) {
        if (failure.Number != ADODB::NoPermission) throw;
    }
}

/// Creates the tables, each of which commits, and begins the caller's transaction again in front of the mark, which is
/// the last statement of the schema's script.
void CreateMariaDbTables(const Ref<Connection>& con) {
    constexpr std::string_view tables = schema::mariadb_sql;
    const std::size_t mark = tables.rfind("INSERT INTO schemaversion_t");
    RunScript(con, tables.substr(0, mark));
    RunScript(con, schema::program_sql);
    con->Execute("START TRANSACTION");
    RunScript(con, tables.substr(mark));
}

}  // namespace

Engine EngineOf(const Ref<Connection>& con) {
    const auto known = KnownServers().find(con->ConnectionString());
    return known == KnownServers().end() ? Engine::SQLite : known->second;
}

void OpenServer(const Ref<Connection>& con, const std::string& database) {
    constexpr Long longestWait = 600;  // in seconds, for other writers
    con->SetCommandTimeout(longestWait);
    OpenOrAsk(con, database);
    const Engine engine = EngineAt(con);
    if (engine == Engine::SQLite) return;
    KnownServers()[con->ConnectionString()] = engine;
    if (engine == Engine::MariaDB) PrepareMariaDb(con, longestWait);
}

bool HasTable(const Ref<Connection>& con, const std::string& table) {
    try {
        con->Execute(sql("SELECT 1 FROM ", Clause(table), " WHERE 1 = 0"));
        return true;
    } catch (const Error& failure) {
        if (failure.Number == ADODB::NoTable) return false;
        throw;
    }
}

bool HasProgramTables(const Ref<Connection>& con) {
    return HasTable(con, "PatientIssuer_T") && HasTable(con, "ClinicIdentity_T");
}

std::string IsWhole(const Ref<Connection>& con, const std::string& column) {
    return IsServer(con) ? column + " IS NOT NULL" : "typeof(" + column + ") = 'integer'";
}

void RequireServerClinic(const Ref<Connection>& con, const std::string& name) {
    const Long version = SchemaVersionOf(con);
    if (version == 0)
        throw UserError(
            fmt::format("{} is not a clinic database; make its tables, if it is empty, with: oxclass init \"{}\" "
                        "--root DIR",
                        name, name));
    RequireMarks(name, ApplicationMark, version);
    if (EngineOf(con) == Engine::MariaDB) CompleteProgramTables(con);
}

void LockWriters(const Ref<Connection>& con) {
    if (IsServer(con)) con->Execute("UPDATE SchemaVersion_T SET Writes = Writes + 1 WHERE Application = 'OXClass'");
}

bool MayBecomeClinic(const Ref<Connection>& con) {
    if (EngineOf(con) == Engine::MariaDB && HasTable(con, "SchemaVersion_T")) return SchemaVersionOf(con) == 0;
    return !HasTable(con, "SchemaVersion_T") && !HasTable(con, "Patient_T");
}

void CreateClinicTables(const Ref<Connection>& con) {
    const Engine engine = EngineOf(con);
    if (engine == Engine::MariaDB) {
        CreateMariaDbTables(con);
    } else {
        RunScript(con, engine == Engine::PostgreSQL ? schema::postgresql_sql : schema::sqlite_sql);
        RunScript(con, schema::program_sql);
    }
    RunScript(con, schema::layouts_sql);
    AlignCounters(con);
}

void ReadOneState(const Ref<Connection>& con) {
    switch (EngineOf(con)) {
        case Engine::SQLite: break;
        case Engine::PostgreSQL:
            con->Execute("SET SESSION CHARACTERISTICS AS TRANSACTION ISOLATION LEVEL REPEATABLE READ");
            break;
        case Engine::MariaDB: con->Execute("SET SESSION TRANSACTION ISOLATION LEVEL REPEATABLE READ"); break;
    }
}

void AlignCounters(const Ref<Connection>& con) {
    if (EngineOf(con) != Engine::PostgreSQL) return;
    const Ref<Recordset> counters = con->Execute(
        "SELECT c.relname, a.attname FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid "
        "WHERE a.attidentity <> '' AND c.relkind = 'r' AND pg_table_is_visible(c.oid)");
    for (; !counters->Eof(); counters->MoveNext()) {
        const String table = counters->Fields(0).As<String>(), key = counters->Fields(1).As<String>();
        con->Execute(sql("SELECT setval(pg_get_serial_sequence('", FixSqlString(table), "', '", FixSqlString(key),
                         "'), greatest(max(", Clause(key), "), 1), coalesce(max(", Clause(key), "), 0) > 0) FROM ",
                         Clause(table)));
    }
}

void RaiseCounter(const Ref<Connection>& con, const std::string& table, const std::string& key) {
    if (EngineOf(con) != Engine::PostgreSQL) return;
    const std::string counter =
        sql("pg_get_serial_sequence('", FixSqlString(LCase(table)), "', '", FixSqlString(LCase(key)), "')");
    con->Execute(sql("SELECT setval(", Clause(counter), ", greatest(nextval(", Clause(counter), "), max(", Clause(key),
                     "))) FROM ", Clause(table)));
}

}  // namespace Console

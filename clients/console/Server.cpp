#include "console/Server.h"

#include "Schema.h"
#include "console/DatabaseFile.h"
#include "console/patients/PatientStore.h"
#include "frame/Statement.h"
#include "platform/adodb/ConnectionString.h"

#include <fmt/format.h>
#include <iostream>
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

bool MayHavePassword(const std::string& database) {
    const std::string small = LCase(database);
    return Platform::Contains(small, "password") || Platform::Contains(small, "pwd");
}

/// Returns the settings of a connection string. The failure to parse a text quotes a part of it, which may belong to
/// the password; throws a `UserError` without it then.
ADODB::ConnectionString SettingsOf(const std::string& database) {
    try {
        return ADODB::ConnectionString(database);
    } catch (const Error&) {
        if (!MayHavePassword(database)) throw;
        throw UserError(
            "the connection string can't be read; put a value with \";\" or quotes into quotes, as in Password='a;b'");
    }
}

}  // namespace

Engine EngineOf(const Ref<Connection>& con) {
    const String provider = ADODB::ConnectionString(con->ConnectionString()).Value("Provider");
    return EqualsIgnoringCase(provider, "PostgreSQL") ? Engine::PostgreSQL : Engine::SQLite;
}

bool NamesServer(const std::string& database) {
    return IsConnectionString(database) && !EqualsIgnoringCase(SettingsOf(database).Value("Provider"), "SQLite");
}

std::string ShownName(const std::string& database) {
    if (!IsConnectionString(database) || !MayHavePassword(database)) return database;
    return SettingsOf(database).TextWithout({"Password", "Pwd"});
}

void OpenServer(const Ref<Connection>& con, const std::string& database) {
    constexpr Long longestWait = 600;  // in seconds, for other writers
    con->SetCommandTimeout(longestWait);
    try {
        con->Open(database);
    } catch (const Error& failure) {
        const ADODB::ConnectionString settings(database);
        const bool given = !settings.Value("Password").empty() || !settings.Value("Password File").empty();
        if (failure.Number != ADODB::LoginFailed || given || isatty(STDIN_FILENO) == 0) throw;
        con->Open(database, {}, TypedPassword(settings.Value("User ID")));
    }
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

std::string IsWhole(const Ref<Connection>& con, const std::string& column) {
    return IsServer(con) ? column + " IS NOT NULL" : "typeof(" + column + ") = 'integer'";
}

void RequireServerClinic(const Ref<Connection>& con, const std::string& name) {
    const bool marked = HasTable(con, "SchemaVersion_T");
    const Ref<Recordset> mark =
        marked ? con->Execute("SELECT Version FROM SchemaVersion_T WHERE Application = 'OXClass'") : nullptr;
    if (!mark || mark->Eof())
        throw UserError(
            fmt::format("{} is not a clinic database; make its tables, if it is empty, with: oxclass init \"{}\" "
                        "--root DIR",
                        name, name));
    RequireMarks(name, ApplicationMark, CLng(mark->Fields(0).Value()));
}

void LockWriters(const Ref<Connection>& con) {
    if (IsServer(con)) con->Execute("UPDATE SchemaVersion_T SET Version = Version WHERE Application = 'OXClass'");
}

void CreateClinicTables(const Ref<Connection>& con) {
    RunScript(con, IsServer(con) ? schema::postgresql_sql : schema::sqlite_sql);
    RunScript(con, schema::layouts_sql);
    RunScript(con, schema::program_sql);
    AlignCounters(con);
}

void AlignCounters(const Ref<Connection>& con) {
    if (!IsServer(con)) return;
    const Ref<Recordset> counters = con->Execute(
        "SELECT c.relname, a.attname FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid "
        "WHERE a.attidentity <> '' AND c.relkind = 'r' AND c.relnamespace = current_schema()::regnamespace");
    for (; !counters->Eof(); counters->MoveNext()) {
        const String table = counters->Fields(0).As<String>(), key = counters->Fields(1).As<String>();
        con->Execute(sql("SELECT setval(pg_get_serial_sequence('", FixSqlString(table), "', '", FixSqlString(key),
                         "'), greatest(max(", Clause(key), "), 1), coalesce(max(", Clause(key), "), 0) > 0) FROM ",
                         Clause(table)));
    }
}

}  // namespace Console

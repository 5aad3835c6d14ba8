#include "kit/Engine.h"

#include "Schema.h"
#include "platform/runtime/Convert.h"

#include <cstdlib>
#include <sqlite3.h>
#include <stdexcept>
#include <unistd.h>

namespace TestKit {
namespace {

/// Returns the connection string of the server; empty for SQLite.
const String& Server() {
    static const char* const fromEnvironment = std::getenv("OXCLASS_TEST_SERVER");
    static const String server = fromEnvironment ? fromEnvironment : "";
    return server;
}

/// Returns a connection to the server that uses no clinic.
Ref<Connection> Administrator() {
    Ref<Connection> connection = New<Connection>();
    connection->Open(Server() + (TestedEngine() == Engine::PostgreSQL ? ";Database=postgres" : ""));
    return connection;
}

String NewName() {
    static int count = 0;
    return "test_" + std::to_string(getpid()) + "_" + std::to_string(++count);
}

/// A database of the server that no test uses at the moment; empty if there is none.
String& IdleDatabase() {
    static String name;
    return name;
}

/// Returns a text that differs after a table, a column or a trigger was created, changed or dropped.
String Definitions(const Ref<Connection>& con) {
    return con
        ->Execute(
            "SELECT (SELECT string_agg(concat(oid, relname, relkind), ',' ORDER BY oid) FROM pg_class"
            " WHERE relnamespace = 'public'::regnamespace) ||"
            " (SELECT string_agg(concat(attrelid, attname, atttypid, attnotnull), ',' ORDER BY attrelid, attnum)"
            " FROM pg_attribute JOIN pg_class c ON c.oid = attrelid WHERE c.relnamespace = 'public'::regnamespace) ||"
            " (SELECT count(*) FROM pg_trigger)")
        ->Fields(0)
        .As<String>();
}

/// Deletes all rows and lets all counters start at 1.
void Empty(const Ref<Connection>& con) {
    con->Execute(
        "DO $$ DECLARE one record; found boolean; BEGIN"
        " FOR one IN SELECT relname, relkind FROM pg_class WHERE relnamespace = 'public'::regnamespace"
        "   AND relname <> 'schemaversion_t' LOOP"
        "   IF one.relkind = 'r' THEN"
        "     EXECUTE 'SELECT EXISTS (SELECT FROM ' || one.relname || ')' INTO found;"
        "     IF found THEN EXECUTE 'DELETE FROM ' || one.relname; END IF;"
        "   ELSIF one.relkind = 'S' THEN"
        "     EXECUTE 'SELECT is_called OR last_value <> 1 FROM ' || one.relname INTO found;"
        "     IF found THEN PERFORM setval(one.relname::regclass, 1, false); END IF;"
        "   END IF;"
        " END LOOP; END $$");
}

/// The database of the test that runs.
String& MariaDbInUse() {
    static String name;
    return name;
}

/// Creates a database with the tables of the clinic, without rows.
void CreateMariaDb(const String& name) {
    MariaDbInUse() = name;
    const Ref<Connection> con = Administrator();
    con->Execute("CREATE DATABASE " + name + " CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin");
    const Ref<ADODB::Recordset> tables =
        con->Execute("SELECT table_name FROM information_schema.tables WHERE table_schema = 'clinic'");
    for (; !tables->Eof(); tables->MoveNext()) {
        const String table = tables->Fields(0).As<String>();
        con->Execute("CREATE TABLE " + name + "." + table + " LIKE clinic." + table);
    }
}

/// Deletes a database. A connection that the test has left may hold locks, and ends first.
void DropMariaDb(const String& name) {
    const Ref<Connection> con = Administrator();
    const Ref<ADODB::Recordset> others =
        con->Execute("SELECT id FROM information_schema.processlist WHERE db = '" + name + "'");
    for (; !others->Eof(); others->MoveNext()) try {
            con->Execute("KILL " + others->Fields(0).As<String>());
        } catch (const Error&) {  // it has ended meanwhile
        }
    con->Execute("DROP DATABASE " + name);
}

}  // namespace

Engine TestedEngine() {
    if (Server().empty()) return Engine::SQLite;
    const String provider = ADODB::ConnectionString(Server()).Value("Provider");
    return EqualsIgnoringCase(provider, "PostgreSQL") ? Engine::PostgreSQL : Engine::MariaDB;
}

const char* ProviderName() {
    switch (TestedEngine()) {
        case Engine::PostgreSQL: return "PostgreSQL";
        case Engine::MariaDB: return "MSDASQL";
        default: return "SQLite";
    }
}

String NoSuchTable(const String& name) {
    if (TestedEngine() == Engine::SQLite) return "no such table: " + name;
    if (TestedEngine() == Engine::MariaDB) return "Table '" + MariaDbInUse() + "." + LCase(name) + "' doesn't exist";
    return "relation \"" + LCase(name) + "\" does not exist";
}

String NoSuchColumn(const String& name) {
    if (TestedEngine() == Engine::SQLite) return "no such column: " + name;
    if (TestedEngine() == Engine::MariaDB) return "Unknown column '" + name + "' in 'SELECT'";
    return "column \"" + LCase(name) + "\" does not exist";
}

void RunOnFile(const std::filesystem::path& path, std::string_view script) {
    sqlite3* database = nullptr;
    char* message = nullptr;
    sqlite3_open(path.c_str(), &database);
    sqlite3_exec(database, ("BEGIN;" + String(script) + "COMMIT;").c_str(), nullptr, nullptr, &message);
    sqlite3_close(database);
    if (message) throw std::runtime_error(message);
}

TestDatabase::TestDatabase(const std::filesystem::path& folder) {
    if (TestedEngine() == Engine::SQLite) {
        settings_ = "Provider=SQLite;Data Source=" + (folder / "clinic.db").string();
        RunScript(schema::sqlite_sql);
        return;
    }
    if (TestedEngine() == Engine::MariaDB) {
        name_ = NewName();
        CreateMariaDb(name_);
        settings_ = Server() + ";Database=" + name_;
        return;
    }
    name_ = std::exchange(IdleDatabase(), {});
    if (name_.empty()) {
        name_ = NewName();
        Administrator()->Execute("CREATE DATABASE " + name_ + " TEMPLATE clinic");
    }
    settings_ = Server() + ";Database=" + name_;
    const Ref<Connection> con = New<Connection>();
    con->Open(settings_);
    definitions_ = Definitions(con);
}

TestDatabase::~TestDatabase() {
    if (name_.empty()) return;
    if (TestedEngine() == Engine::MariaDB) {
        DropMariaDb(name_);
        return;
    }
    {
        const Ref<Connection> con = New<Connection>();
        con->Open(settings_);
        // A connection that the test has left may hold locks.
        con->Execute("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = '" + name_ +
                     "' AND pid <> pg_backend_pid()");
        if (IdleDatabase().empty() && Definitions(con) == definitions_) {
            Empty(con);
            IdleDatabase() = name_;
            return;
        }
    }
    Administrator()->Execute("DROP DATABASE " + name_ + " WITH (FORCE)");
}

void TestDatabase::RunScript(std::string_view script) const {
    if (name_.empty()) return RunOnFile(ADODB::ConnectionString(settings_).Value("Data Source"), script);
    const Ref<Connection> con = New<Connection>();
    con->Open(settings_);
    con->BeginTrans();
    for (std::size_t at = 0; at < script.size();) {
        const std::size_t end = std::min(script.find(";\n", at), script.size());
        const String statement(script.substr(at, end - at));
        con->Execute(statement);
        AlignCounter(con, statement);
        at = end + 2;
        if (script.find_first_not_of(" \n", at) == std::string_view::npos) break;
    }
    con->CommitTrans();
}

String ManyRows(Long count, const std::function<String(Long)>& row) {
    String rows;
    for (Long i = 1; i <= count; ++i) rows += (i == 1 ? "(" : ",(") + row(i) + ")";
    return rows;
}

void AlignCounter(const Ref<Connection>& con, const String& statement) {
    if (CounterFollowsKeys()) return;
    const std::size_t into = LCase(statement).find("insert into ");
    if (into == String::npos) return;
    const std::size_t start = into + 12;
    const String table = statement.substr(start, statement.find_first_of(" (\n", start) - start);
    const auto counter = con->Execute(
        "SELECT attname FROM pg_attribute WHERE attidentity <> '' AND attrelid = to_regclass('" + table + "')");
    if (counter->Eof()) return;
    const String key = counter->Fields(0).As<String>();
    con->Execute("SELECT setval(pg_get_serial_sequence('" + table + "', '" + key + "'), greatest(max(" + key +
                 "), 1), max(" + key + ") > 0) FROM " + table);
}

}  // namespace TestKit

#include "kit/Engine.h"

#include "Schema.h"
#include "platform/runtime/Convert.h"

#include <cstdlib>
#include <sqlite3.h>
#include <stdexcept>
#include <unistd.h>

namespace TestKit {

/// A database of the server with its connection.
struct ServerDatabase {
    String name;
    Ref<Connection> con;
    String definitions;  ///< as `Definitions` returned them when it was created
};

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

/// Executes a select and returns its first value, as a text.
String Answer(const Ref<Connection>& con, const String& select) { return con->Execute(select)->Fields(0).As<String>(); }

/// Returns the first values of all rows of a select.
std::vector<String> Answers(const Ref<Connection>& con, const String& select) {
    std::vector<String> answers;
    const Ref<ADODB::Recordset> rows = con->Execute(select);
    for (; !rows->Eof(); rows->MoveNext()) answers.push_back(rows->Fields(0).As<String>());
    return answers;
}

/// The database of the server that no test uses at the moment; without a name if there is none.
ServerDatabase& IdleDatabase() {
    static auto& idle = *new ServerDatabase;  // its connection must not outlive what it uses
    return idle;
}

/// Returns a text that differs after a table, a column, an index, a constraint or a trigger was created, changed or
/// dropped.
String Definitions(const Ref<Connection>& con) {
    if (TestedEngine() == Engine::PostgreSQL)
        return Answer(
            con,
            "SELECT (SELECT string_agg(concat(oid, relname, relkind), ',' ORDER BY oid) FROM pg_class"
            " WHERE relnamespace = 'public'::regnamespace) ||"
            " (SELECT string_agg(concat(attrelid, attname, atttypid, attnotnull), ',' ORDER BY attrelid, attnum)"
            " FROM pg_attribute JOIN pg_class c ON c.oid = attrelid WHERE c.relnamespace = 'public'::regnamespace) ||"
            " (SELECT count(*) FROM pg_trigger)");
    return Answer(
        con,
        "SELECT concat_ws(';', (SELECT group_concat(concat_ws(' ', table_name, column_name, column_type, is_nullable,"
        " column_default, extra, collation_name) ORDER BY table_name, ordinal_position)"
        " FROM information_schema.columns WHERE table_schema = database()),"
        " (SELECT group_concat(concat_ws(' ', table_name, index_name, column_name, non_unique)"
        " ORDER BY table_name, index_name, seq_in_index)"
        " FROM information_schema.statistics WHERE table_schema = database()),"
        " (SELECT count(*) FROM information_schema.table_constraints WHERE table_schema = database()),"
        " (SELECT count(*) FROM information_schema.triggers WHERE trigger_schema = database()))");
}

/// Deletes all rows of a PostgreSQL database and lets all counters start at 1.
void EmptyPostgres(const Ref<Connection>& con) {
    con->Execute(
        "DO $$ DECLARE one record; found boolean; BEGIN"
        " FOR one IN SELECT oid, relname, relkind FROM pg_class WHERE relnamespace = 'public'::regnamespace"
        "   AND relname <> 'schemaversion_t' LOOP"
        "   IF one.relkind = 'r' THEN"
        "     EXECUTE 'SELECT EXISTS (SELECT FROM ' || one.relname || ')' INTO found;"
        // A large file of deleted rows would be read again by each later test.
        "     IF pg_relation_size(one.oid) > 65536 THEN EXECUTE 'TRUNCATE ' || one.relname;"
        "     ELSIF found THEN EXECUTE 'DELETE FROM ' || one.relname; END IF;"
        "   ELSIF one.relkind = 'S' THEN"
        "     EXECUTE 'SELECT is_called OR last_value <> 1 FROM ' || one.relname INTO found;"
        "     IF found THEN PERFORM setval(one.relname::regclass, 1, false); END IF;"
        "   END IF;"
        " END LOOP; END $$");
}

/// Returns the tables of a clinic on MariaDB.
const std::vector<String>& MariaDbTables(const Ref<Connection>& con) {
    static const std::vector<String> tables =
        Answers(con, "SELECT table_name FROM information_schema.tables WHERE table_schema = 'clinic'");
    return tables;
}

/// Does the same as `EmptyPostgres` with MariaDB, where a truncated table is as a new one.
void EmptyMariaDb(const Ref<Connection>& con) {
    String used =
        "SELECT table_name FROM information_schema.tables WHERE table_schema = database() AND auto_increment > 1";
    for (const String& table : MariaDbTables(con))
        used.append(" UNION SELECT '").append(table).append("' FROM dual WHERE EXISTS (SELECT 1 FROM ").append(table) +=
            ")";
    for (const String& table : Answers(con, used)) con->Execute("TRUNCATE TABLE " + table);
}

/// The database of the test that runs.
String& DatabaseInUse() {
    static String name;
    return name;
}

/// Creates a database with the tables of the clinic, without rows.
void CreateOnServer(const String& name) {
    const Ref<Connection> con = Administrator();
    if (TestedEngine() == Engine::PostgreSQL) {
        con->Execute("CREATE DATABASE " + name + " TEMPLATE clinic");
        return;
    }
    con->Execute("CREATE DATABASE " + name + " CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin");
    for (const String& table : MariaDbTables(con))
        con->Execute(String("CREATE TABLE ").append(name) + "." + table + " LIKE clinic." + table);
}

/// Returns a database without rows that no test uses.
ServerDatabase TakeDatabase() {
    ServerDatabase taken = std::exchange(IdleDatabase(), {});
    if (!taken.name.empty()) return taken;
    taken.name = NewName();
    CreateOnServer(taken.name);
    taken.con = New<Connection>();
    taken.con->Open(Server() + ";Database=" + taken.name);
    taken.definitions = Definitions(taken.con);
    return taken;
}

/// Ends the other connections to a database: those that a test has left may hold locks.
void EndOthers(const ServerDatabase& database) {
    if (TestedEngine() == Engine::PostgreSQL) {
        database.con->Execute("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = '" +
                              database.name + "' AND pid <> pg_backend_pid()");
        return;
    }
    for (const String& id : Answers(database.con, "SELECT id FROM information_schema.processlist WHERE db = '" +
                                                      database.name + "' AND id <> connection_id()"))
        try {
            database.con->Execute("KILL " + id);
        } catch (const Error&) {  // it has ended meanwhile
        }
}

/// Ends the use of a database. It is kept for the next test unless this test has changed its tables.
void ReturnDatabase(ServerDatabase& database) {
    EndOthers(database);
    if (Definitions(database.con) != database.definitions) {
        database.con->Close();
        Administrator()->Execute("DROP DATABASE " + database.name);
        return;
    }
    if (TestedEngine() == Engine::PostgreSQL)
        EmptyPostgres(database.con);
    else
        EmptyMariaDb(database.con);
    IdleDatabase() = std::move(database);
}

}  // namespace

bool IsOwnConnection() {
    static const bool byName = std::getenv("OXCLASS_TEST_BY_NAME") != nullptr;
    return !byName;
}

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
    if (TestedEngine() == Engine::MariaDB) return "Table '" + DatabaseInUse() + "." + LCase(name) + "' doesn't exist";
    return "relation \"" + LCase(name) + "\" does not exist";
}

String NoSuchColumn(const String& name) {
    if (TestedEngine() == Engine::SQLite) return "no such column: " + name;
    if (TestedEngine() == Engine::MariaDB) return "Unknown column '" + name + "' in 'SELECT'";
    return "column \"" + LCase(name) + "\" does not exist";
}

TestDatabase::TestDatabase(const std::filesystem::path& folder) {
    if (TestedEngine() == Engine::SQLite) {
        settings_ = "Provider=SQLite;Data Source=" + (folder / "clinic.db").string();
        RunScript(schema::sqlite_sql);
        return;
    }
    server_ = std::make_unique<ServerDatabase>(TakeDatabase());
    DatabaseInUse() = server_->name;
    settings_ = Server() + ";Database=" + server_->name;
}

TestDatabase::~TestDatabase() {
    if (server_) ReturnDatabase(*server_);
}

void TestDatabase::RunScript(std::string_view script) const {
    if (!server_) return RunOnFile(ADODB::ConnectionString(settings_).Value("Data Source"), script);
    const Ref<Connection>& con = server_->con;
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

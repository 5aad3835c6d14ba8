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

/// Runs a statement on the server, outside of the tests' databases.
void Administer(const String& statement) {
    static const Ref<Connection> server = [] {
        Ref<Connection> connection = New<Connection>();
        connection->Open(Server() + ";Database=postgres");
        return connection;
    }();
    server->Execute(statement);
}

String NewName() {
    static int count = 0;
    return "test_" + std::to_string(getpid()) + "_" + std::to_string(++count);
}

}  // namespace

Engine TestedEngine() { return Server().empty() ? Engine::SQLite : Engine::PostgreSQL; }

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
    name_ = NewName();
    Administer("CREATE DATABASE " + name_ + " TEMPLATE clinic");
    settings_ = Server() + ";Database=" + name_;
}

TestDatabase::~TestDatabase() {
    if (!name_.empty()) Administer("DROP DATABASE " + name_ + " WITH (FORCE)");
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

void AlignCounter(const Ref<Connection>& con, const String& statement) {
    if (TestedEngine() == Engine::SQLite) return;
    const std::size_t into = LCase(statement).find("insert into ");
    if (into == String::npos) return;
    const std::size_t start = into + 12;
    const String table = statement.substr(start, statement.find_first_of(" (\n", start) - start);
    const auto counter = con->Execute("SELECT attname FROM pg_attribute WHERE attidentity <> '' AND attrelid = to_regclass('" +
                                      table + "')");
    if (counter->Eof()) return;
    const String key = counter->Fields(0).As<String>();
    con->Execute("SELECT setval(pg_get_serial_sequence('" + table + "', '" + key + "'), max(" + key + ")) FROM " + table);
}

}  // namespace TestKit

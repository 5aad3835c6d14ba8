#pragma once

#include "platform/adodb/Recordset.h"

#include <filesystem>
#include <functional>
#include <memory>

/// The database engine that the tests run on: SQLite, or the server that OXCLASS_TEST_SERVER describes by a connection
/// string without a database, as tests/servers starts it. The tests are the same for all engines. Where engines differ,
/// a test asks one of the questions below.
namespace TestKit {

using namespace Platform;
using ADODB::Connection;

enum class Engine { SQLite, PostgreSQL, MariaDB };

/// Returns the engine that the tests run on.
Engine TestedEngine();

/// False if the tests use each connection by name, as an object of another component: with OXCLASS_TEST_BY_NAME. Rows
/// are then read by the other component's recordset, which has its own slots and reads all rows when it is opened, and
/// a connection that is released is still open there.
bool IsOwnConnection();

/// Returns the name of the provider in the connection string of the engine.
const char* ProviderName();

/// Returns the source of the failures that the engine reports.
inline String EngineName() { return TestedEngine() == Engine::MariaDB ? "MariaDB" : ProviderName(); }

/// Return how the engine describes a table or a column that does not exist, and the SQLSTATE of the latter.
String NoSuchTable(const String& name);
String NoSuchColumn(const String& name);
inline String NoSuchColumnState() { return TestedEngine() == Engine::PostgreSQL ? "42703" : "42S22"; }

/// True if the engine distinguishes a parameter in a text, such as "?", from another error of syntax.
inline bool ReportsParameters() { return TestedEngine() == Engine::SQLite; }

/// True if names of columns that are not quoted keep their letter case in the database. PostgreSQL folds them to small
/// letters.
inline bool KeepsCaseOfNames() { return TestedEngine() != Engine::PostgreSQL; }

/// True if a column keeps a value of any type: a text in a column of numbers, a date that no calendar has. Servers
/// check the types of their columns, so that rows can't be damaged in this way.
inline bool KeepsValuesOfOtherTypes() { return TestedEngine() == Engine::SQLite; }

/// True if a statement that changes a table's definition is undone with its transaction.
inline bool RollsBackDefinitions() { return TestedEngine() != Engine::MariaDB; }

/// True if the columns for names ignore the case of A to Z only, and distinguish all other characters. With MariaDB
/// they ignore the case of all letters.
inline bool IgnoresCaseOfLatinLettersOnly() { return TestedEngine() != Engine::MariaDB; }

/// True if a text that is longer than its column is stored by a statement. Servers reject it.
inline bool KeepsLongTexts() { return TestedEngine() == Engine::SQLite; }

/// True if a test may use functions, and define tables and triggers, as SQLite writes them.
inline bool HasSqliteDefinitions() { return TestedEngine() == Engine::SQLite; }

/// True if a key that a statement chooses itself moves the counter of the table. With PostgreSQL the counter follows
/// its own sequence.
inline bool CounterFollowsKeys() { return TestedEngine() != Engine::PostgreSQL; }

/// Ends a test that an engine can't run; `question` is one of the questions above.
#define OXCLASS_ONLY_IF(question) \
    if (!(question)) GTEST_SKIP() << "this engine can't run it: " #question

/// True if the database is a file, which a test can open, lock or damage by itself.
inline bool IsFile() { return TestedEngine() == Engine::SQLite; }

struct ServerDatabase;

/// A clinic database for one test, with all tables and no rows, whose counters start at 1. On a server the destructor
/// ends all connections to it and empties it, and the next test of the program uses it again; it deletes the database
/// if the test has changed a table's definition.
class TestDatabase {
public:
    /// `folder` is where an engine of files creates it.
    explicit TestDatabase(const std::filesystem::path& folder);
    ~TestDatabase();
    TestDatabase(const TestDatabase&) = delete;

    /// Returns the connection string.
    const String& Settings() const noexcept { return settings_; }

    /// Runs the statements of a script in one transaction.
    void RunScript(std::string_view script) const;

private:
    String settings_;
    std::unique_ptr<ServerDatabase> server_;  // null for SQLite
};

/// Runs the statements of a script in one transaction on an SQLite database, which is created if it is missing.
void RunOnFile(const std::filesystem::path& path, std::string_view script);

/// Returns rows for an INSERT, "(...),(...)": `row` returns the text of each one, for the numbers from 1 to `count`.
String ManyRows(Long count, const std::function<String(Long)>& row);

/// Moves the counter of the table that a statement has inserted into behind its greatest key, as an embedded engine
/// does by itself. Does nothing for another statement.
void AlignCounter(const Ref<Connection>& con, const String& statement);

}  // namespace TestKit

#pragma once

#include "kit/Engine.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// The environment of the tests of the classes: a real database file with the real tables, and a log of every statement
/// that was sent.
namespace TestKit {

using ADODB::Recordset;

/// Numbers of errors, as a client of a connection or a recordset receives them.
constexpr Long SyntaxError = static_cast<Long>(0x80040E14);
constexpr Long TooLong = static_cast<Long>(0x80040E21);
constexpr Long ConstraintViolated = static_cast<Long>(0x80040E2F);
constexpr Long MissingTable = static_cast<Long>(0x80040E37);
constexpr Long MissingColumn = 3265;

/// A folder for one test, which the destructor deletes.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// Creates a clinic database of SQLite with all tables and layouts in the folder, and returns its path.
String NewDatabase(const TemporaryFolder& folder, const String& name);

/// Stores the text of each statement, as the connection announces it, and each step of a transaction as
/// "BeginTrans", "CommitTrans", "RollbackTrans".
class StatementLog : public ADODB::ConnectionEvents {
public:
    void WillExecute(ADODB::ExecuteRequest& request) override { statements.push_back(request.Source); }
    void BeginTransComplete(Long) override { statements.emplace_back("BeginTrans"); }
    void CommitTransComplete() override { statements.emplace_back("CommitTrans"); }
    void RollbackTransComplete() override { statements.emplace_back("RollbackTrans"); }

    std::vector<String> statements;
};

/// Keeps how each statement is opened: "cursor type lock type options", as "0 1 1".
class ModeLog : public ADODB::ConnectionEvents {
public:
    void WillExecute(ADODB::ExecuteRequest& request) override {
        seen.push_back(CStr(Long{request.CursorType}) + " " + CStr(Long{request.LockType}) + " " +
                       CStr(request.Options));
    }

    std::vector<String> seen;
};

/// What it keeps of a statement that Execute runs, and of a recordset that is opened to read or to write.
constexpr const char* executed = "0 1 -1";
constexpr const char* plainRead = "0 1 1";
constexpr const char* updatable = "1 3 1";

/// Returns a connection that is opened with these settings, by name if the tests connect so.
Ref<Connection> OpenedAsTested(const String& settings);

/// A test with a database of the tested engine: all tables and no rows, opened as `con`; `log` holds what was sent
/// since the test's body began or since it was cleared.
class WithDatabase : public ::testing::Test {
protected:
    WithDatabase();
    ~WithDatabase() override;

    /// Runs a statement that is not logged.
    void Run(const String& statement);

    /// Drops an index. The statement is not logged.
    void DropIndex(const String& index, const String& table);

    /// Returns the first column of the first row of a select; `Empty` without a row. The statement is not logged.
    Variant Ask(const String& select);

    /// Returns the first column of all rows of a select, separated by commas. The statement is not logged.
    String AskAll(const String& select);

    /// Loads the standard layouts.
    void LoadLayouts();

    /// Another connection to the same database.
    Ref<Connection> Connect() const;

    const std::vector<String>& Sent() const { return log.statements; }

    TemporaryFolder folder;
    TestDatabase database{folder.Path()};
    Ref<Connection> con;
    StatementLog log;
};

/// The text boxes that were shown while this object lives; none reaches standard error.
class TextBoxes {
public:
    TextBoxes();
    ~TextBoxes();
    TextBoxes(const TextBoxes&) = delete;

    std::vector<String> shown;

private:
    std::function<void(const String&, Long)> before_;
};

/// The calling thread has another locale while this object lives.
class InLocale {
public:
    explicit InLocale(const Locale& locale) : before_(UserLocale()) { SetUserLocale(locale); }
    ~InLocale() { SetUserLocale(before_); }
    InLocale(const InLocale&) = delete;

private:
    Locale before_;
};

/// A machine that writes decimal commas and the day first.
inline const Locale DecimalComma{',', '.', Locale::Order::DayMonthYear};

/// Returns the members of an interface, one text each: "put Name(type)", "get Name -> type", "putref Name(type&)",
/// "Name(arg: type, arg: type&, [arg: type]) -> type"; "&" marks an argument by reference, "[ ]" one that
/// may be left out. The tests compare them with the documented interface.
std::vector<String> MembersOf(const Object& object);

/// Returns the failure that `call` raises; number 0 if it raises none.
template <class Call>
Error FailureOf(Call call) {
    try {
        call();
    } catch (const Error& failure) {
        return failure;
    }
    return {};
}

/// Returns the number of the failure that `call` raises; 0 if it raises none.
Long NumberOf(const auto& call) { return FailureOf(call).Number; }

}  // namespace TestKit

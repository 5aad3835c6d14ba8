#include "platform/adodb/Recordset.h"

#include "kit/FaultyProvider.h"

#include <fstream>
#include <sqlite3.h>

namespace {

using namespace ADODB;
using namespace Platform;
using TestKit::FailureOf;

class ConnectionTest : public TestKit::WithDatabase {
protected:
    String Path() const { return (folder.Path() / "clinic.db").string(); }
    /// The failure of opening a new connection by this text.
    static Error OpenFailure(const String& text) {
        return FailureOf([&] { New<Connection>()->Open(text); });
    }
};

TEST_F(ConnectionTest, OpenRaisesAndStaysClosed) {
    EXPECT_EQ(OpenFailure("Provider=Nope;Data Source=x").Number, adErrProviderNotFound);
    EXPECT_EQ(OpenFailure("Data Source=x").Number, adErrProviderNotFound);
    EXPECT_EQ(OpenFailure("Provider=SQLite").Number, MultipleStepFailed);
    EXPECT_EQ(OpenFailure("Provider=SQLite;Data Source=:memory:;Colour=red").Number, MultipleStepFailed);
    EXPECT_EQ(OpenFailure("Provider=SQLite;Data Source=:memory:;Password=x").Number, MultipleStepFailed);
    EXPECT_EQ(OpenFailure("Provider=SQLite;Data Source=:memory:;Mode=Sideways").Number, MultipleStepFailed);
    EXPECT_EQ(OpenFailure("Provider=SQLite;Data Source=" + Path() + ".missing").Number, Failed);
    EXPECT_FALSE(std::filesystem::exists(Path() + ".missing"));
}

/// The settings that a provider received last, without its own name.
String received;

std::unique_ptr<Session> OpenReceived(const ADODB::ConnectionString& settings, Long timeout) {
    received = settings.TextWithout({"Provider"});
    return FindProvider("SQLite")(ADODB::ConnectionString("Data Source=" + settings.Value("Data Source")), timeout);
}

TEST_F(ConnectionTest, TheFirstLineOfThePasswordFileIsThePassword) {
    RegisterProvider("Received", OpenReceived);
    const String file = (folder.Path() / "it's secret").string();
    std::ofstream(file) << "open; sesame\r\nsecond line\n";
    const String source = "data source=" + (folder.Path() / "new.db").string();
    std::ofstream(folder.Path() / "new.db").close();
    const String settings = "Provider=Received;" + source + ";Password File=\"" + file + "\"";
    const Ref<Connection> opened = New<Connection>();
    opened->Open(settings);
    EXPECT_EQ(received, source + ";password='open; sesame'");
    EXPECT_EQ(opened->ConnectionString(), settings) << "what opens it again, without the password";
    New<Connection>()->Open(settings + ";Password=other");
    EXPECT_EQ(received, source + ";password=other");
    New<Connection>()->Open(settings, {}, "third");
    EXPECT_EQ(received, source + ";password=third");
    std::filesystem::remove(file);
    const Error missing = OpenFailure(settings);
    EXPECT_EQ(missing.Number, MultipleStepFailed);
    EXPECT_EQ(missing.Description, "The password file \"" + file + "\" can't be read, or is empty.");
}

TEST_F(ConnectionTest, AFileThatIsNotADatabaseIsRejectedAndUnchanged) {
    const String other = (folder.Path() / "letter.txt").string();
    std::ofstream(other) << String(5000, 'x');
    const Error failure = OpenFailure("Provider=SQLite;Data Source=" + other);
    EXPECT_EQ(failure.Number, Failed);
    EXPECT_EQ(failure.NativeError, SQLITE_NOTADB);
    EXPECT_EQ(std::filesystem::file_size(other), 5000U);
}

TEST_F(ConnectionTest, OpenTwiceAndUseWhileClosedRaise) {
    EXPECT_EQ(FailureOf([&] { con->Open(); }).Number, adErrObjectOpen);
    EXPECT_EQ(FailureOf([&] { con->SetConnectionString("x"); }).Number, adErrObjectOpen);
    const Ref<Connection> closed = New<Connection>();
    EXPECT_EQ(FailureOf([&] { closed->Execute("SELECT 1"); }).Number, adErrObjectClosed);
    EXPECT_EQ(FailureOf([&] { closed->BeginTrans(); }).Number, adErrObjectClosed);
    EXPECT_EQ(FailureOf([&] { closed->Close(); }).Number, adErrObjectClosed);
    EXPECT_EQ(FailureOf([&] { New<Recordset>()->Open("SELECT 1", closed); }).Number, adErrInvalidConnection);
    EXPECT_EQ(FailureOf([&] { New<Recordset>()->Open("SELECT 1", nullptr); }).Number, adErrInvalidConnection);
}

TEST_F(ConnectionTest, OpeningKeepsAWriteAheadLog) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    EXPECT_EQ(Ask("PRAGMA journal_mode"), Variant("wal"));
    EXPECT_GT(CLng(Ask("PRAGMA busy_timeout")), 1000);
}

TEST_F(ConnectionTest, ReadModeChangesNothing) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    const Ref<Connection> reader = New<Connection>();
    reader->Open("Provider=SQLite;Mode=Read;Data Source=" + Path());
    EXPECT_EQ(FailureOf([&] { reader->Execute("DELETE FROM Root_T"); }).Number, NoPermission);
    EXPECT_EQ(reader->BeginTrans(), 1);
    reader->RollbackTrans();
}

TEST_F(ConnectionTest, SnapshotModeReadsAFileWithoutAFileBesideIt) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    Run("INSERT INTO Root_T (RootID, RootDirectory) VALUES (1, 'a')");
    con->Unadvise(log);
    con->Close();
    const std::filesystem::path odd = folder.Path() / "100% odd#name?.db";
    std::filesystem::rename(Path(), odd);
    const auto names = [&] { return std::distance(std::filesystem::directory_iterator(folder.Path()), {}); };
    const auto before = names();
    const Ref<Connection> reader = New<Connection>();
    reader->Open("Provider=SQLite;Mode=Snapshot;Data Source='" + odd.string() + "'");
    EXPECT_EQ(CLng(reader->Execute("SELECT count(*) FROM Root_T")->Fields(0).Value()), 1);
    EXPECT_EQ(FailureOf([&] { reader->Execute("DELETE FROM Root_T"); }).Number, NoPermission);
    EXPECT_EQ(names(), before);
    reader->Close();
    std::filesystem::rename(odd, Path());
    con->Open();
    con->Advise(log);
}

TEST_F(ConnectionTest, AnActionStatementReturnsAClosedRecordsetAndItsCount) {
    Long count = 0;
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1,'a',1),(2,'b',0)");
    const Ref<Recordset> result = con->Execute("UPDATE Root_T SET Status=0", &count);
    EXPECT_EQ(count, 2);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->State(), adStateClosed);
    EXPECT_EQ(FailureOf([&] { result->Eof(); }).Number, adErrObjectClosed);
    EXPECT_EQ(FailureOf([&] { result->Close(); }).Number, adErrObjectClosed);
    EXPECT_FALSE(con->Execute("UPDATE Root_T SET Status=0", nullptr, adExecuteNoRecords));
}

TEST_F(ConnectionTest, FailuresOfTheEngineAreMapped) {
    const auto number = [&](const char* statement) { return FailureOf([&] { con->Execute(statement); }).Number; };
    EXPECT_EQ(number("SELECT * FROM Nowhere"), NoTable);
    EXPECT_EQ(number("SELECT Nix FROM Root_T"), UnknownName);
    EXPECT_EQ(number("INSERT INTO Root_T (Nix) VALUES (1)"), UnknownName);
    EXPECT_EQ(number("SELECT \"text\" FROM Root_T"), UnknownName) << "a name in quotes is a name";
    EXPECT_EQ(number("SELEKT"), ErrorsInCommand);
    EXPECT_EQ(number(" ORDER BY x"), ErrorsInCommand);
    EXPECT_EQ(number(""), ErrorsInCommand);
    if (TestKit::ReportsParameters())
        EXPECT_EQ(number("SELECT * FROM Root_T WHERE RootID=?"), UnknownName) << "a parameter without a value";
    Run("INSERT INTO Root_T (RootID) VALUES (1)");
    EXPECT_EQ(number("INSERT INTO Root_T (RootID) VALUES (1)"), IntegrityViolation);
}

TEST_F(ConnectionTest, AFailureNamesItsOrigin) {
    const Error failure = FailureOf([&] { con->Execute("SELECT Nix FROM Root_T WHERE RootID=7"); });
    EXPECT_EQ(failure.Provider, TestKit::ProviderName());
    EXPECT_EQ(failure.SQLState, TestKit::NoSuchColumnState());
    EXPECT_EQ(failure.Description, TestKit::NoSuchColumn("Nix"));
    EXPECT_EQ(failure.Statement, "SELECT Nix FROM Root_T WHERE RootID=7");
    ASSERT_EQ(con->Errors().size(), 1U);
    Run("SELECT 1");
    EXPECT_EQ(con->Errors().size(), 1U) << "a later success doesn't empty the list";
    FailureOf([&] { New<Recordset>()->Close(); });
    EXPECT_EQ(con->Errors().front().Number, UnknownName) << "the layer's own failures don't enter it";
    con->ClearErrors();
    EXPECT_TRUE(con->Errors().empty());
}

TEST_F(ConnectionTest, ASecondStatementIsRejectedBeforeAnythingRuns) {
    Run("INSERT INTO Root_T (RootID) VALUES (1)");
    for (const char* text : {"DELETE FROM Root_T; DELETE FROM Root_T", "DELETE FROM Root_T WHERE RootID=1; x",
                             "SELECT 1; DROP TABLE Root_T", "DELETE FROM Root_T;;--x\nSELECT 2"})
        EXPECT_EQ(FailureOf([&] { con->Execute(text); }).Number, ErrorsInCommand) << text;
    EXPECT_EQ(FailureOf([&] { con->Execute(String("DELETE FROM Root_T\0 WHERE RootID=5", 34)); }).Number,
              ErrorsInCommand);
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM Root_T")), 1);
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM Root_T ; \n ;")), 1);
}

TEST_F(ConnectionTest, TransactionsNestAndUndo) {
    EXPECT_EQ(FailureOf([&] { con->CommitTrans(); }).Number, NoTransaction);
    EXPECT_EQ(FailureOf([&] { con->RollbackTrans(); }).Number, NoTransaction);
    EXPECT_EQ(con->BeginTrans(), 1);
    Run("INSERT INTO Root_T (RootID) VALUES (1)");
    EXPECT_EQ(con->BeginTrans(), 2);
    Run("INSERT INTO Root_T (RootID) VALUES (2)");
    con->RollbackTrans();
    EXPECT_EQ(con->BeginTrans(), 2);
    Run("INSERT INTO Root_T (RootID) VALUES (3)");
    con->CommitTrans();
    con->CommitTrans();
    EXPECT_EQ(CLng(Ask("SELECT sum(RootID) FROM Root_T")), 4);
    for (Long level = 1; level <= 5; ++level) EXPECT_EQ(con->BeginTrans(), level);
    EXPECT_EQ(FailureOf([&] { con->BeginTrans(); }).Number, TooManyTransactions);
    for (Long level = 5; level >= 1; --level) con->RollbackTrans();
    EXPECT_EQ(Sent().front(), "BeginTrans");
}

TEST_F(ConnectionTest, ClosingInATransactionRaises3246AndDroppingRollsBack) {
    Ref<Connection> other = Connect();
    other->BeginTrans();
    other->Execute("INSERT INTO Root_T (RootID) VALUES (9)");
    EXPECT_EQ(FailureOf([&] { other->Close(); }).Number, adErrInTransaction);
    EXPECT_EQ(other->State(), adStateOpen);
    EXPECT_EQ(CLng(other->Execute("SELECT count(*) FROM Root_T")->Fields(0).Value()), 1);
    other = nullptr;
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM Root_T")), 0);
}

TEST_F(ConnectionTest, ClosingClosesItsRecordsets) {
    const Ref<Connection> other = Connect();
    const Ref<Recordset> rows = other->Execute("SELECT 1");
    other->Close();
    EXPECT_EQ(rows->State(), adStateClosed);
    other->Open();
    EXPECT_EQ(other->State(), adStateOpen) << "the connection string is kept";
}

TEST_F(ConnectionTest, HandlersSeeAndMayChangeOrCancelAStatement) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    struct Handler : ConnectionEvents {
        void WillExecute(ExecuteRequest& request) override {
            if (request.Source == "SELECT 1") request.Source = "SELECT 2";
            if (request.Source == "SELECT 3") request.Status = adStatusCancel;
            if (request.Source == "SELECT 4") again->Execute("SELECT 5");
        }
        void ExecuteComplete(const ExecuteReport& report) override {
            reports.push_back(String(report.Source) + (report.Failure ? " failed" : " rows " + CStr(report.Rows)));
        }
        Ref<Connection> again;
        std::vector<String> reports;
    } handler;
    handler.again = con;
    con->Advise(handler);
    EXPECT_EQ(CLng(con->Execute("SELECT 1")->Fields(0).Value()), 2);
    EXPECT_EQ(FailureOf([&] { con->Execute("SELECT 3"); }).Number, adErrOperationCancelled);
    EXPECT_EQ(FailureOf([&] { con->Execute("SELECT 4"); }).Number, adErrNotReentrant);
    EXPECT_EQ(FailureOf([&] { con->Execute("SELEKT"); }).Number, ErrorsInCommand);
    con->Unadvise(handler);
    con->Execute("SELECT 6");
    EXPECT_EQ(handler.reports, (std::vector<String>{"SELECT 2 rows 1", "SELEKT failed"}));
    handler.again = nullptr;
}

TEST_F(ConnectionTest, AHandlerMayTakeItselfOut) {
    struct Handler : ConnectionEvents {
        void WillExecute(ExecuteRequest&) override {
            ++calls;
            if (leaves) con->Unadvise(*this);
        }
        Connection* con = nullptr;
        bool leaves = false;
        int calls = 0;
    } first, second, third;
    for (Handler* handler : {&first, &second, &third}) {
        handler->con = con.Get();
        con->Advise(*handler);
    }
    first.leaves = second.leaves = true;
    con->Execute("SELECT 1");
    con->Execute("SELECT 1");
    con->Unadvise(third);
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
    EXPECT_EQ(third.calls, 2);
}

TEST_F(ConnectionTest, TransactionsAndCloseInsideWillExecuteRaise3710) {
    struct Handler : ConnectionEvents {
        void WillExecute(ExecuteRequest&) override {
            for (const auto& call :
                 std::vector<std::function<void()>>{[&] { con->BeginTrans(); }, [&] { con->CommitTrans(); },
                                                    [&] { con->RollbackTrans(); }, [&] { con->Close(); }})
                numbers.push_back(FailureOf(call).Number);
        }
        Connection* con = nullptr;
        std::vector<Long> numbers;
    } handler;
    handler.con = con.Get();
    con->Advise(handler);
    con->Execute("SELECT 1");
    con->Unadvise(handler);
    EXPECT_THAT(handler.numbers, testing::Each(adErrNotReentrant));
    EXPECT_EQ(handler.numbers.size(), 4U);
}

TEST_F(ConnectionTest, AConnectionClosedByAHandlerReturnsNoOpenRecordset) {
    struct Handler : ConnectionEvents {
        void ExecuteComplete(const ExecuteReport&) override { con->Close(); }
        Connection* con = nullptr;
    } handler;
    const Ref<Connection> other = Connect();
    handler.con = other.Get();
    other->Advise(handler);
    EXPECT_EQ(FailureOf([&] { other->Execute("SELECT 1"); }).Number, adErrObjectClosed);
    EXPECT_EQ(other->State(), adStateClosed);
}

TEST_F(ConnectionTest, ARecordsetMayHoldTheLastReferenceToItsConnection) {
    Ref<Connection> other = Connect();
    const Ref<Recordset> rows = other->Execute("SELECT 1");
    other = nullptr;
    rows->ActiveConnection()->Close();
    EXPECT_EQ(rows->State(), adStateClosed);
    EXPECT_FALSE(rows->ActiveConnection());
}

TEST_F(ConnectionTest, ATransactionThatTheEngineRolledBackIsNotCarriedOn) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    Run("INSERT INTO Root_T (RootID) VALUES (1)");
    con->BeginTrans();
    Run("INSERT INTO Root_T (RootID) VALUES (2)");
    EXPECT_EQ(FailureOf([&] { con->Execute("INSERT OR ROLLBACK INTO Root_T (RootID) VALUES (1)"); }).Number,
              IntegrityViolation);
    EXPECT_EQ(FailureOf([&] { con->Execute("INSERT INTO Root_T (RootID) VALUES (3)"); }).Number, NoTransaction);
    EXPECT_EQ(FailureOf([&] { con->CommitTrans(); }).Number, NoTransaction);
    EXPECT_EQ(FailureOf([&] { con->BeginTrans(); }).Number, NoTransaction);
    con->RollbackTrans();
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM Root_T")), 1);
    EXPECT_EQ(con->BeginTrans(), 1);
    con->RollbackTrans();
}

TEST_F(ConnectionTest, AParameterOfAnyFormHasNoValue) {
    OXCLASS_ONLY_IF(TestKit::ReportsParameters());
    for (const char* statement :
         {"SELECT * FROM Root_T WHERE RootID=$x", "SELECT * FROM Root_T WHERE RootID=$x AND RootID=1",
          "SELECT * FROM Root_T WHERE RootID=:x AND RootID=1", "SELECT * FROM Root_T WHERE RootID=@x"})
        EXPECT_EQ(FailureOf([&] { con->Execute(statement); }).Number, UnknownName) << statement;
}

TEST_F(ConnectionTest, TextsOfADatabaseInUtf16ComeInUtf8) {
    const Ref<Connection> wide = New<Connection>();
    wide->Open("Provider=SQLite;Mode=Create;Data Source=" + (folder.Path() / "wide.db").string());
    wide->Execute("PRAGMA encoding='UTF-16'");
    wide->Execute("CREATE TABLE t (a TEXT)");
    wide->Execute("INSERT INTO t (a) VALUES ('Åsa Öberg')");
    EXPECT_EQ(wide->Execute("SELECT a FROM t")->Fields(0).Value(), Variant("Åsa Öberg"));
    EXPECT_EQ(wide->Execute("PRAGMA encoding")->Fields(0).Value(), Variant("UTF-16le"));
}

TEST_F(ConnectionTest, ATableNameIsSelectedFrom) {
    Run("INSERT INTO Root_T (RootID) VALUES (5)");
    const Ref<Recordset> rows = con->Execute("Root_T", nullptr, adCmdTable);
    EXPECT_EQ(Sent().back(), "select * from Root_T");
    EXPECT_EQ(CLng(rows->Fields("rootid").Value()), 5);
}

TEST_F(ConnectionTest, TheSuitesOwnFormsAreAdapted) {
    con->Execute("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1,'a')");
    EXPECT_EQ(CLng(con->Execute("SELECT @@IDENTITY")->Fields(0).Value()), 1);
    con->Execute("DELETE * FROM GlobalList_T where ListText = 'a'");
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM GlobalList_T")), 0);
    EXPECT_EQ(Sent()[1], "SELECT @@IDENTITY") << "handlers see the statement as it was written";
}

TEST_F(ConnectionTest, AChainOfFiveThousandOrTermsWorks) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES " + TestKit::ManyRows(6000, [](Long) { return "1,'x'"; }));
    String chain = "DELETE FROM GlobalList_T WHERE ";
    for (Long i = 1; i <= 5000; ++i) chain += "GlobalListID=" + CStr(i) + " OR ";
    chain.resize(chain.size() - 4);
    Long deleted = 0;
    con->Execute(chain + ";", &deleted);
    EXPECT_EQ(deleted, 5000);
    String select = "SELECT * FROM GlobalList_T WHERE";
    for (Long i = 5001; i <= 7000; ++i) select += " GlobalListID=" + CStr(i) + " OR";
    select.resize(select.size() - 2);
    const Ref<Recordset> rows = con->Execute(select + " ORDER BY GlobalListID");
    EXPECT_EQ(CLng(rows->Fields(0).Value()), 5001);
}

}  // namespace

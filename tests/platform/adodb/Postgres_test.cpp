#include "kit/CountingProxy.h"
#include "kit/Database.h"
#include "platform/adodb/ConnectionString.h"

#include <chrono>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace ADODB;
using namespace Platform;
using TestKit::FailureOf;
using TestKit::NumberOf;

/// What only a connection to PostgreSQL does.
class PostgresTest : public TestKit::WithDatabase {
protected:
    void SetUp() override { OXCLASS_ONLY_IF(TestKit::TestedEngine() == TestKit::Engine::PostgreSQL); }

    Long Count(const String& table) { return CLng(Ask("SELECT count(*) FROM " + table)); }

    /// Ends the connection of `con` on the server, as an administrator or a crash does.
    void Kill() {
        const Long process = CLng(Ask("SELECT pg_backend_pid()"));
        const Ref<Connection> other = Connect();
        other->Execute("SELECT pg_terminate_backend(" + CStr(process) + ")");
        // The process ends on its own.
        while (
            CLng(
                other->Execute("SELECT count(*) FROM pg_stat_activity WHERE pid=" + CStr(process))->Fields(0).Value()) >
            0)
            usleep(1000);
    }

    /// Returns the number of the failure of a transaction that read a row which another one has changed since.
    Long NumberOfSerialisationFailure() {
        const Ref<Connection> other = Connect();
        con->BeginTrans();
        con->Execute("SET TRANSACTION ISOLATION LEVEL SERIALIZABLE");
        con->Execute("SELECT * FROM Root_T");
        other->Execute("UPDATE Root_T SET Status=3 WHERE RootID=2");
        const Long number = NumberOf([&] { con->Execute("UPDATE Root_T SET Status=4 WHERE RootID=2"); });
        con->RollbackTrans();
        return number;
    }

    /// Opens the test's database with other settings.
    Ref<Connection> OpenWith(const String& settings) {
        Ref<Connection> connection = New<Connection>();
        connection->Open(database.Settings() + settings);
        return connection;
    }
};

// ---- sorted rows ------------------------------------------------------------------------------------

TEST_F(PostgresTest, RowsAreReadAfterTheKeyOfTheirTableWasRenamed) {
    Run("CREATE TABLE sorted (id integer PRIMARY KEY, name text)");
    Run("INSERT INTO sorted VALUES (2, 'b'), (1, 'a')");
    EXPECT_EQ(AskAll("SELECT * FROM sorted"), "1,2");
    Connect()->Execute("ALTER TABLE sorted RENAME COLUMN id TO id2");
    EXPECT_EQ(AskAll("SELECT * FROM sorted"), "1,2");
    EXPECT_EQ(AskAll("SELECT name FROM sorted"), "a,b");
    EXPECT_EQ(AskAll("SELECT id2 FROM sorted TABLESAMPLE SYSTEM (100) ORDER BY 1"), "1,2");
    EXPECT_EQ(AskAll("SELECT id2 FROM sorted TABLESAMPLE SYSTEM (100)"), "2,1");
}

// ---- transactions -----------------------------------------------------------------------------------

TEST_F(PostgresTest, AFailedStatementLeavesTheTransactionUsable) {
    con->BeginTrans();
    con->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    EXPECT_EQ(NumberOf([&] { con->Execute("INSERT INTO Root_T (RootID) VALUES (1)"); }), IntegrityViolation);
    EXPECT_EQ(NumberOf([&] { con->Execute("SELECT Nix FROM Root_T"); }), UnknownName);
    EXPECT_EQ(NumberOf([&] { con->Execute("SELEKT"); }), ErrorsInCommand);
    con->Execute("INSERT INTO Root_T (RootID) VALUES (2)");
    EXPECT_EQ(con->BeginTrans(), 2);
    con->Execute("INSERT INTO Root_T (RootID) VALUES (3)");
    EXPECT_EQ(NumberOf([&] { con->Execute("INSERT INTO Root_T (RootID) VALUES (2)"); }), IntegrityViolation);
    con->Execute("INSERT INTO Root_T (RootID) VALUES (4)");
    con->RollbackTrans();
    con->Execute("INSERT INTO Root_T (RootID) VALUES (5)");
    con->CommitTrans();
    EXPECT_EQ(AskAll("SELECT RootID FROM Root_T ORDER BY RootID"), "1,2,5");
}

TEST_F(PostgresTest, ACachedStatementTakesOneRoundTripAlsoInATransaction) {
    const std::filesystem::path server = ConnectionString(database.Settings()).Value("Server");
    const TestKit::CountingProxy proxy(folder.Path() / ".s.PGSQL.5432", server / ".s.PGSQL.5432");
    const Ref<Connection> counted = OpenWith(";Server=" + folder.Path().string());
    const auto tripsOf = [&](const auto& act) {
        const int before = proxy.RoundTrips();
        act();
        return proxy.RoundTrips() - before;
    };
    const auto insert = [&](Long key) { counted->Execute("INSERT INTO Root_T (RootID) VALUES (" + CStr(key) + ")"); };
    const auto select = [&](Long key) { counted->Execute("SELECT * FROM Root_T WHERE RootID=" + CStr(key)); };
    insert(1);
    select(1);
    EXPECT_EQ(tripsOf([&] { insert(2); }), 1);
    EXPECT_EQ(tripsOf([&] { select(2); }), 1);
    EXPECT_EQ(tripsOf([&] { counted->BeginTrans(); }), 1);
    EXPECT_EQ(tripsOf([&] { insert(3); }), 1) << "with the savepoint";
    EXPECT_EQ(tripsOf([&] { select(3); }), 1) << "with the end of the last savepoint and the next one";
    EXPECT_EQ(tripsOf([&] { FailureOf([&] { insert(3); }); }), 2) << "only a failure needs another one";
    EXPECT_EQ(tripsOf([&] { counted->CommitTrans(); }), 1);
    EXPECT_EQ(Count("Root_T"), 3);
}

TEST_F(PostgresTest, ARowIsAddedByOneRoundTripWithItsCounter) {
    const std::filesystem::path server = ConnectionString(database.Settings()).Value("Server");
    const TestKit::CountingProxy proxy(folder.Path() / ".s.PGSQL.5432", server / ".s.PGSQL.5432");
    const Ref<Recordset> rs = New<Recordset>();
    rs->Open("SELECT * FROM Clinic_T", OpenWith(";Server=" + folder.Path().string()), adOpenKeyset, adLockOptimistic);
    const auto add = [&](const char* name) {
        rs->AddNew();
        rs->Fields("ClinicName").SetValue(String(name));
        rs->Update();
    };
    add("first");
    const int before = proxy.RoundTrips();
    add("second");
    EXPECT_EQ(proxy.RoundTrips() - before, 1);
    EXPECT_EQ(rs->Fields("ClinicID").Value(), Variant(Long{2}));
}

// ---- prepared statements ----------------------------------------------------------------------------

TEST_F(PostgresTest, AStatementThatTheServerHasDroppedIsPreparedAgain) {
    const auto insert = [&](Long key) { con->Execute("INSERT INTO Root_T (RootID) VALUES (" + CStr(key) + ")"); };
    insert(1);
    Run("DISCARD ALL");
    insert(2);
    con->BeginTrans();
    insert(3);
    Run("DEALLOCATE ALL");
    insert(4);
    con->CommitTrans();
    EXPECT_EQ(Count("Root_T"), 4);
}

TEST_F(PostgresTest, AStatementSeesTheColumnsOfAChangedTable) {
    const auto columns = [&] { return con->Execute("SELECT * FROM Root_T WHERE RootID=1")->FieldCount(); };
    EXPECT_EQ(columns(), 3);
    Connect()->Execute("ALTER TABLE Root_T ADD COLUMN Extra integer");
    EXPECT_EQ(columns(), 4);
    con->BeginTrans();
    Run("ALTER TABLE Root_T DROP COLUMN Extra");
    EXPECT_EQ(columns(), 3);
    con->CommitTrans();
}

TEST_F(PostgresTest, StatementsThatAreNotCachedAnyMoreAreDroppedOnTheServer) {
    for (int i = 0; i < 400; ++i)
        con->Execute("SELECT RootID AS Column" + CStr(Long{i}) + " FROM Root_T WHERE RootID=1");
    const Long prepared =
        CLng(con->Execute("SELECT count(*) FROM pg_prepared_statements WHERE name<>''")->Fields(0).Value());
    EXPECT_GE(prepared, 250);
    EXPECT_LT(prepared, 300);
}

TEST_F(PostgresTest, AFractionIsRoundedForAWholeNumberAsTheTextIs) {
    con->Execute("INSERT INTO Root_T (RootID, Status) VALUES (1, 2.5)");
    con->Execute("INSERT INTO Root_T (RootID, Status) VALUES (2, -0.4)");
    EXPECT_EQ(AskAll("SELECT Status FROM Root_T ORDER BY RootID"), "3,0");
}

// ---- values -----------------------------------------------------------------------------------------

TEST_F(PostgresTest, ABlankTextIsNullWhereANumberOrADateBelongs) {
    con->Execute("INSERT INTO Study_T (PatientID, StudyDateTime, Studydesc) VALUES ('', '', '')");
    con->Execute("INSERT INTO TemplateCard_T (TCFullViewWidth) VALUES ('')");
    EXPECT_EQ(Ask("SELECT PatientID FROM Study_T"), Variant(Null{}));
    EXPECT_EQ(Ask("SELECT StudyDateTime FROM Study_T"), Variant(Null{}));
    EXPECT_EQ(Ask("SELECT Studydesc FROM Study_T"), Variant(""));
    EXPECT_EQ(Ask("SELECT TCFullViewWidth FROM TemplateCard_T"), Variant(Null{}));
    con->Execute("UPDATE Study_T SET StudyDateTime='2024-02-29 12:30:00'");
    EXPECT_EQ(Ask("SELECT StudyDateTime FROM Study_T"), Variant(*ParseDate("2024-02-29 12:30:00")));
    EXPECT_EQ(NumberOf([&] { con->Execute("UPDATE Study_T SET PatientID='x'"); }), CantConvertValue);
    EXPECT_EQ(NumberOf([&] { con->Execute("UPDATE Study_T SET StudyDateTime='2023-02-29'"); }), CantConvertValue);
    EXPECT_EQ(NumberOf([&] { con->Execute("UPDATE Study_T SET studyID='12345678901234567'"); }), DataOverflow);
}

TEST_F(PostgresTest, AZeroCharacterIsRejectedAndNothingIsCut) {
    const String zero(1, '\0');
    con->Execute("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, 'old')");
    EXPECT_EQ(NumberOf([&] { con->Execute("UPDATE GlobalList_T SET ListText='a" + zero + "b'"); }), ErrorsInCommand);
    EXPECT_EQ(NumberOf([&] { con->Execute("DELETE FROM GlobalList_T" + zero + " WHERE ListID=5"); }), ErrorsInCommand);
    const Ref<Recordset> rs = New<Recordset>();
    rs->Open("SELECT * FROM GlobalList_T", con, adOpenKeyset, adLockOptimistic);
    rs->Fields("ListText").SetValue("a" + zero + "b");
    EXPECT_EQ(NumberOf([&] { rs->Update(); }), CantConvertValue);
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T"), Variant("old"));
}

TEST_F(PostgresTest, AliasesKeepTheLetterCaseOfTheStatement) {
    const Ref<Recordset> rs = con->Execute("SELECT RootID AS Number, RootDirectory FROM Root_T");
    EXPECT_EQ(rs->Fields(0).Name(), "Number");
    EXPECT_EQ(rs->Fields(1).Name(), "RootDirectory");
    EXPECT_TRUE(rs->HasField("NUMBER"));
}

TEST_F(PostgresTest, RowsKeepTheirOrderWhenOneIsUpdated) {
    for (const char* key : {"1", "2", "3"})
        con->Execute(String("INSERT INTO ImageBild_T (PatientID, DateCaptured_SD, CRC) VALUES (7, '2024-01-01', '") +
                     key + "')");
    con->Execute("UPDATE ImageBild_T SET CRC='new' WHERE ImageBildID=1");
    EXPECT_EQ(AskAll("SELECT CRC FROM ImageBild_T WHERE PatientID=7"), "new,2,3");
    EXPECT_EQ(AskAll("SELECT CRC FROM ImageBild_T WHERE PatientID=7 ORDER BY DateCaptured_SD DESC"), "new,2,3");
}

// ---- failures ---------------------------------------------------------------------------------------

TEST_F(PostgresTest, AFailureHasTheServersTextStateAndCode) {
    const Error failure = FailureOf([&] { con->Execute("INSERT INTO Root_T (RootID) VALUES (1),(1)"); });
    EXPECT_EQ(failure.Number, IntegrityViolation);
    EXPECT_EQ(failure.Description, "duplicate key value violates unique constraint \"root_t_pkey\"");
    EXPECT_EQ(failure.SQLState, "23505");
    EXPECT_EQ(failure.NativeError, 83906754);  // as the server's sources define unique_violation
    EXPECT_EQ(failure.Source, "PostgreSQL");
    EXPECT_EQ(failure.Statement, "INSERT INTO Root_T (RootID) VALUES (1),(1)");
}

TEST_F(PostgresTest, ALostConnectionIsReportedClosedAndOpenedAgain) {
    con->BeginTrans();
    con->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    Kill();
    const Error failure = FailureOf([&] { con->Execute("INSERT INTO Root_T (RootID) VALUES (2)"); });
    EXPECT_EQ(failure.Number, ConnectionLost);
    EXPECT_EQ(failure.SQLState, "57P01");
    EXPECT_THAT(failure.Description, testing::HasSubstr("terminating connection"));
    EXPECT_EQ(con->State(), adStateOpen);
    EXPECT_EQ(NumberOf([&] { con->Execute("SELECT 1"); }), ConnectionLost);
    EXPECT_EQ(NumberOf([&] { con->BeginTrans(); }), ConnectionLost);
    EXPECT_EQ(NumberOf([&] { con->CommitTrans(); }), ConnectionLost);
    con->RollbackTrans();
    con->Close();
    con->Open();
    EXPECT_EQ(Count("Root_T"), 0);
}

TEST_F(PostgresTest, ALostConnectionCanBeClosedWithItsTransaction) {
    con->BeginTrans();
    Kill();
    EXPECT_EQ(NumberOf([&] { con->Close(); }), adErrInTransaction) << "nobody knows yet that it is lost";
    EXPECT_EQ(NumberOf([&] { con->Execute("SELECT 1"); }), ConnectionLost);
    con->Close();
    EXPECT_EQ(con->State(), adStateClosed);
    con->Open();
    EXPECT_EQ(con->BeginTrans(), 1);
    con->RollbackTrans();
}

TEST_F(PostgresTest, AStatementThatTakesTooLongIsCancelled) {
    con->SetCommandTimeout(1);
    const Error failure = FailureOf([&] { con->Execute("SELECT pg_sleep(60)"); });
    EXPECT_EQ(failure.Number, TimedOut);
    EXPECT_EQ(failure.SQLState, "57014");
    con->SetCommandTimeout(0);
    EXPECT_EQ(con->CommandTimeout(), 0);
    EXPECT_EQ(Count("Root_T"), 0);
    EXPECT_EQ(NumberOf([&] { con->SetCommandTimeout(-1); }), adErrInvalidArgument);
}

TEST_F(PostgresTest, AServerThatDoesNotAnswerIsGivenUp) {
    // Accepts connections and says nothing.
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    const Ref<Connection> silent = New<Connection>();
    silent->SetConnectionTimeout(2);
    const Error failure = FailureOf([&] {
        silent->Open("Provider=PostgreSQL;Server=127.0.0.1;Port=" + CStr(Long{ntohs(address.sin_port)}) +
                     ";Database=x;User ID=x;Password=secret");
    });
    close(listener);
    EXPECT_EQ(failure.Number, TimedOut);
    EXPECT_THAT(failure.Description, testing::Not(testing::HasSubstr("secret")));
    EXPECT_EQ(silent->State(), adStateClosed);
}

TEST_F(PostgresTest, AWrongPasswordIsRejectedAndNeverShown) {
    const Error wrong = FailureOf([&] { OpenWith(";User ID=clerk;Password=wrongword"); });
    EXPECT_EQ(wrong.Number, LoginFailed);
    EXPECT_THAT(wrong.Description, testing::Not(testing::HasSubstr("wrongword")));
    EXPECT_EQ(NumberOf([&] { OpenWith(";User ID=clerk"); }), LoginFailed) << "no password at all";
    const Ref<Connection> clerk = OpenWith(";User ID=clerk;Password='right;word'");
    EXPECT_THAT(clerk->ConnectionString(), testing::Not(testing::HasSubstr("right")));
    EXPECT_EQ(NumberOf([&] { clerk->Execute("DELETE FROM Root_T"); }), NoPermission);
    const Ref<Connection> shown = OpenWith(";User ID=clerk;Password='right;word';Persist Security Info=True");
    EXPECT_THAT(shown->ConnectionString(), testing::HasSubstr("'right;word'"));
}

TEST_F(PostgresTest, LocksThatAreNotReleasedAndDeadlocksAreConflicts) {
    Run("INSERT INTO Root_T (RootID) VALUES (1),(2)");
    const Ref<Connection> other = Connect();
    other->BeginTrans();
    other->Execute("UPDATE Root_T SET Status=1 WHERE RootID=1");
    con->Execute("SET lock_timeout=100");
    const Error failure = FailureOf([&] { con->Execute("UPDATE Root_T SET Status=2 WHERE RootID=1"); });
    EXPECT_EQ(failure.Number, LockConflict);
    EXPECT_EQ(failure.SQLState, "55P03");
    other->RollbackTrans();
    EXPECT_EQ(NumberOfSerialisationFailure(), LockConflict);
}

TEST_F(PostgresTest, ASettingThatIsNotKnownIsRejected) {
    EXPECT_EQ(NumberOf([&] { OpenWith(";Colour=red"); }), MultipleStepFailed);
    const Error missing = FailureOf([&] { OpenWith(";Database=nowhere"); });
    EXPECT_EQ(missing.Number, Failed);
    EXPECT_THAT(missing.Description, testing::HasSubstr("\"nowhere\""));
}

TEST_F(PostgresTest, CopyIsRejected) {
    EXPECT_EQ(NumberOf([&] { con->Execute("COPY Root_T TO STDOUT"); }), ErrorsInCommand);
    con->Close();
    con->Open();
    EXPECT_EQ(Count("Root_T"), 0);
}

}  // namespace

#include "platform/adodb/Recordset.h"

#include "kit/Damage.h"
#include "kit/Database.h"

#include <sqlite3.h>

namespace {

using namespace ADODB;
using TestKit::FailureOf;

/// A statement raises the first error of the engine, even if later calls replace the engine's error.
class FirstError : public TestKit::WithDatabase {
protected:
    std::filesystem::path Path() const { return folder.Path() / "clinic.db"; }

    void Damage(const String& table) {
        con->Unadvise(log);
        con->Close();
        TestKit::OverwriteRootPage(Path(), table);
        con->Open();
        con->Advise(log);
    }

    static void ExpectDamaged(const Error& failure, const String& statement) {
        EXPECT_EQ(failure.Number, Failed) << statement;
        EXPECT_EQ(failure.Description, "database disk image is malformed") << statement;
        EXPECT_EQ(failure.NativeError & 0xFF, SQLITE_CORRUPT) << statement;
        EXPECT_EQ(failure.Statement, statement);
    }
};

TEST_F(FirstError, ASelectOnADamagedTableReportsTheDamageEachTime) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    Damage("Series_T");
    const String select = "SELECT * FROM Series_T WHERE Series_ID=4";
    for (int run = 0; run < 3; ++run) ExpectDamaged(FailureOf([&] { con->Execute(select); }), select);
    const String joined =
        "SELECT Study_T.*, Series_T.Modality FROM Series_T LEFT JOIN Study_T ON Study_T.Study_ID = "
        "Series_T.Study_ID";
    ExpectDamaged(FailureOf([&] { New<Recordset>()->Open(joined, con); }), joined);
    ASSERT_EQ(con->Errors().size(), 1U);
    EXPECT_EQ(con->Errors().front().Description, "database disk image is malformed");
}

TEST_F(FirstError, AStatementThatChangesADamagedTableReportsTheDamage) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, 'a', 1)");
    Damage("Root_T");
    for (const String statement : {"INSERT INTO Root_T (RootID) VALUES (2)",
                                   "UPDATE Root_T SET Status=0 WHERE RootID=1", "DELETE FROM Root_T WHERE RootID=1"})
        ExpectDamaged(FailureOf([&] { con->Execute(statement); }), statement);
}

TEST_F(FirstError, ARecordsetThatChangesADamagedTableReportsTheDamage) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, 'a', 1)");
    const Ref<Recordset> rows = New<Recordset>();
    rows->SetCursorLocation(adUseClient);
    rows->Open("SELECT * FROM Root_T", con, adOpenKeyset, adLockOptimistic);
    rows->SetActiveConnection(nullptr);
    Damage("Root_T");
    rows->SetActiveConnection(con);
    rows->Collect("Status", Variant(Long{0}));
    const Error update = FailureOf([&] { rows->Update(); });
    EXPECT_EQ(update.Description, "database disk image is malformed");
    rows->CancelUpdate();
    const Error removal = FailureOf([&] { rows->Delete(); });
    EXPECT_EQ(removal.Description, "database disk image is malformed");
}

TEST_F(FirstError, AColumnThatAnotherProgramRemovedIsNamed) {
    Run("SELECT * FROM Root_T");
    Connect()->Execute("ALTER TABLE Root_T DROP COLUMN Status");
    const Error failure = FailureOf([&] { con->Execute("SELECT RootID, Status FROM Root_T"); });
    EXPECT_EQ(failure.Number, UnknownName);
    EXPECT_EQ(failure.Description, TestKit::NoSuchColumn("Status"));
}

TEST_F(FirstError, ATableThatAnotherProgramRemovedIsNamed) {
    Run("SELECT * FROM Root_T");
    Connect()->Execute("DROP TABLE Root_T");
    const Error failure = FailureOf([&] { con->Execute("SELECT RootDirectory FROM Root_T"); });
    EXPECT_EQ(failure.Number, NoTable);
    EXPECT_EQ(failure.Description, TestKit::NoSuchTable("Root_T"));
}

TEST_F(FirstError, AStatementWorksAgainOnceItsColumnIsBack) {
    const String select = "SELECT RootID, Status FROM Root_T";
    Run(select);
    const Ref<Connection> other = Connect();
    other->Execute("ALTER TABLE Root_T RENAME COLUMN Status TO State");
    EXPECT_EQ(FailureOf([&] { con->Execute(select); }).Description, TestKit::NoSuchColumn("Status"));
    other->Execute("ALTER TABLE Root_T RENAME COLUMN State TO Status");
    other->Execute("INSERT INTO Root_T (RootID, Status) VALUES (3, 1)");
    EXPECT_EQ(CLng(con->Execute(select)->Fields("Status").Value()), 1);
}

TEST_F(FirstError, AFailedCommitReportsTheReason) {
    OXCLASS_ONLY_IF(TestKit::IsFile());
    Run("PRAGMA foreign_keys = ON");
    Run("CREATE TABLE Child (Parent INTEGER REFERENCES Root_T (RootID) DEFERRABLE INITIALLY DEFERRED)");
    con->BeginTrans();
    Run("INSERT INTO Child VALUES (7)");
    const Error failure = FailureOf([&] { con->CommitTrans(); });
    EXPECT_EQ(failure.Number, IntegrityViolation);
    EXPECT_EQ(failure.Description, "FOREIGN KEY constraint failed");
    con->RollbackTrans();
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM Child")), 0);
}

}  // namespace

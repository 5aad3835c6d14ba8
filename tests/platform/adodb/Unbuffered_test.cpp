#include "kit/FaultyProvider.h"
#include "platform/adodb/Transaction.h"

namespace {

using namespace ADODB;
using namespace Platform;
using TestKit::FailureOf;

class UnbufferedTest : public TestKit::WithFaults {
protected:
    UnbufferedTest() {
        Run("INSERT INTO Clinic_T (ClinicID, ClinicName, City) VALUES "
            "(1,'A','Lund'),(2,'B',NULL),(3,'C','Ystad')");
    }

    const Ref<Connection> plain = Connect();  // without handlers, for which the rows would be copied at once

    static constexpr const char* All = "SELECT * FROM Clinic_T ORDER BY ClinicID";

    static Ref<Recordset> Open(const Ref<Connection>& from, const String& statement = All) {
        Ref<Recordset> rs = New<Recordset>();
        rs->SetCursorLocation(adUseClient);
        rs->OpenUnbuffered(statement, from);
        return rs;
    }

    static String Rest(const Ref<Recordset>& rs) {
        String names;
        for (; !rs->Eof(); rs->MoveNext()) names += CStr(rs->Fields("ClinicName").Value());
        return names;
    }

    static Long NumberOf(const std::function<void()>& call) { return FailureOf(call).Number; }
};

TEST_F(UnbufferedTest, RowsAreThoseOfAnOrdinaryRecordset) {
    const char* const every =
        "SELECT 1 AS whole, 1.5 AS fraction, 'text' AS word, NULL AS none, x'4142' AS bytes, "
        "3000000000 AS large UNION ALL SELECT -1, 1e300, '', NULL, x'', -5";
    const Ref<Recordset> rs = Open(plain, every);
    const Ref<Recordset> copied = New<Recordset>();
    const Ref<Connection> other = New<Connection>();  // so that the rows of the first are not copied
    other->Open(plain->ConnectionString());
    copied->Open(every, other);
    ASSERT_EQ(rs->FieldCount(), copied->FieldCount());
    Long rows = 0;
    for (; !copied->Eof(); copied->MoveNext(), rs->MoveNext(), ++rows) {
        ASSERT_FALSE(rs->Eof());
        for (Long i = 0; i < rs->FieldCount(); ++i) {
            EXPECT_EQ(rs->Fields(i).Value(), copied->Fields(i).Value()) << i;
            EXPECT_EQ(rs->Fields(i).Type(), copied->Fields(i).Type()) << i;
            EXPECT_EQ(rs->Fields(i).IsNull(), copied->Fields(i).IsNull()) << i;
        }
    }
    EXPECT_EQ(rows, 2);
    EXPECT_TRUE(rs->Eof());
    EXPECT_FALSE(rs->Bof());
    EXPECT_EQ(NumberOf([&] { rs->MoveNext(); }), adErrNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { rs->Fields(0).Value(); }), adErrNoCurrentRecord);
}

TEST_F(UnbufferedTest, AnEmptyResultIsAtBothEnds) {
    const Ref<Recordset> rs = Open(plain, "SELECT * FROM Clinic_T WHERE ClinicID=9");
    EXPECT_TRUE(rs->Eof() && rs->Bof());
    EXPECT_EQ(NumberOf([&] { rs->MoveNext(); }), adErrNoCurrentRecord);
}

TEST_F(UnbufferedTest, AStatementWithoutRowsLeavesTheRecordsetClosed) {
    const Ref<Recordset> rs = Open(plain, "DELETE FROM Clinic_T WHERE ClinicID=3");
    EXPECT_EQ(rs->State(), adStateClosed);
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Clinic_T"), Variant(Long{2}));
}

TEST_F(UnbufferedTest, TheRowsAreThoseOfTheMomentOfOpeningWhateverTheConnectionDoesNext) {
    const std::vector<std::pair<const char*, std::function<void()>>> next{
        {"execute", [&] { plain->Execute("DELETE FROM Clinic_T WHERE ClinicID > 1"); }},
        {"same statement", [&] { EXPECT_EQ(Rest(Open(plain)), "ABC"); }},
        {"action", [&] { plain->ExecuteAction({}, [] { return String("UPDATE Clinic_T SET ClinicName='X'"); }); }},
        {"edit",
         [&] {
             const Ref<Recordset> edited = New<Recordset>();
             edited->Open(All, plain, adOpenKeyset, adLockOptimistic);
             edited->Fields("ClinicName").SetValue(String("Y"));
             edited->Update();
         }},
        {"commit", [&] { ADODB::Transaction(plain).Commit(); }},
        {"another table", [&] { plain->Execute("CREATE TABLE New_T (a INTEGER)"); }},
    };
    for (const auto& [name, act] : next) {
        Run("DELETE FROM Clinic_T");
        Run("INSERT INTO Clinic_T (ClinicID, ClinicName) VALUES (1,'A'),(2,'B'),(3,'C')");
        const Ref<Recordset> rs = Open(plain);
        rs->MoveNext();
        const Field field = rs->Fields("ClinicName");
        act();
        EXPECT_EQ(CStr(field.Value()), "B") << name;
        EXPECT_EQ(Rest(rs), "BC") << name;
    }
}

TEST_F(UnbufferedTest, ARollbackKeepsTheRowsThatWereOpenedInTheTransaction) {
    plain->BeginTrans();
    plain->Execute("UPDATE Clinic_T SET ClinicName='Z'");
    const Ref<Recordset> rs = Open(plain);
    plain->RollbackTrans();
    EXPECT_EQ(Rest(rs), "ZZZ");
    EXPECT_EQ(Ask("SELECT ClinicName FROM Clinic_T WHERE ClinicID=1"), Variant(String("A")));
}

TEST_F(UnbufferedTest, ADisconnectedRecordsetKeepsItsRows) {
    const Ref<Recordset> rs = Open(plain);
    rs->MoveNext();
    rs->SetActiveConnection(nullptr);
    plain->Execute("DELETE FROM Clinic_T");
    EXPECT_EQ(Rest(rs), "BC");
}

TEST_F(UnbufferedTest, AnOpenRecordsetIsClosedWithItsConnection) {
    const Ref<Connection> own = New<Connection>();
    own->Open(plain->ConnectionString());
    const Ref<Recordset> rs = Open(own);
    own->Close();
    EXPECT_EQ(rs->State(), adStateClosed);
}

TEST_F(UnbufferedTest, TheStatementEndsWithTheLastRowWithCloseAndWhenTheRowsAreCopied) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    OXCLASS_ONLY_IF(TestKit::IsFile());
    const Ref<Connection> other = Connect();
    other->Execute("PRAGMA busy_timeout=0");
    const auto write = [&] { other->Execute("UPDATE Clinic_T SET City=hex(randomblob(4))"); };
    const auto open = [&] {
        write();
        return Open(plain);
    };
    // The log can't be truncated while a statement reads the rows of an earlier moment from it.
    const auto isReading = [&] {
        write();
        return CLng(other->Execute("PRAGMA wal_checkpoint(TRUNCATE)")->Fields(0).Value()) != 0;
    };
    EXPECT_FALSE(isReading());
    const Ref<Recordset> closed = open();
    EXPECT_TRUE(isReading());
    closed->Close();
    EXPECT_FALSE(isReading());
    const Ref<Recordset> read = open();
    read->Move(2);
    EXPECT_TRUE(isReading());
    read->MoveNext();
    EXPECT_FALSE(isReading());
    const Ref<Recordset> copied = open();
    EXPECT_TRUE(isReading());
    plain->Execute("SELECT 1");
    EXPECT_FALSE(isReading());
    EXPECT_EQ(Rest(copied), "ABC");
    {
        const Ref<Recordset> released = open();
        EXPECT_TRUE(isReading());
    }
    EXPECT_FALSE(isReading());
}

TEST_F(UnbufferedTest, ItMovesForwardOnly) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    const Ref<Recordset> rs = Open(plain);
    EXPECT_EQ(rs->CursorType(), adOpenForwardOnly);
    EXPECT_EQ(rs->RecordCount(), -1);
    EXPECT_EQ(rs->AbsolutePosition(), adPosUnknown);
    EXPECT_EQ(NumberOf([&] { rs->MoveFirst(); }), adErrIllegalOperation);
    EXPECT_EQ(NumberOf([&] { rs->MoveLast(); }), adErrIllegalOperation);
    EXPECT_EQ(NumberOf([&] { rs->MovePrevious(); }), adErrIllegalOperation);
    EXPECT_EQ(NumberOf([&] { rs->AddNew(); }), adErrFeatureNotAvailable);
    rs->Move(2);
    EXPECT_EQ(Rest(rs), "C");
    const Ref<Recordset> beyond = Open(plain);
    beyond->Move(7);
    EXPECT_TRUE(beyond->Eof());
}

TEST_F(UnbufferedTest, AHandlerSeesTheSameEventsAsForAnOrdinaryRecordset) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    struct Handler final : ConnectionEvents {
        void WillExecute(ExecuteRequest& request) override { seen = request; }
        void ExecuteComplete(const ExecuteReport& report) override { rows = report.Rows; }
        ExecuteRequest seen;
        std::int64_t rows = 0;
    } handler;
    plain->Advise(handler);
    const Ref<Recordset> rs = Open(plain);
    plain->Unadvise(handler);
    EXPECT_EQ(handler.seen.Source, All);
    EXPECT_EQ(handler.seen.CursorType, adOpenForwardOnly);
    EXPECT_EQ(handler.seen.LockType, adLockReadOnly);
    EXPECT_EQ(handler.seen.Options, adCmdText);
    EXPECT_EQ(handler.rows, 3);
    EXPECT_EQ(NumberOf([&] { rs->MoveFirst(); }), adErrIllegalOperation);
    EXPECT_EQ(Rest(rs), "ABC");
}

TEST_F(UnbufferedTest, AFailureAtALaterRowIsRaisedByTheMoveThatReachesIt) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    TestKit::FailAtRow(3);
    const Ref<Recordset> rs = Open(faulty);
    rs->MoveNext();
    EXPECT_EQ(FailureOf([&] { rs->MoveNext(); }).Description, "injected");
    EXPECT_TRUE(rs->Eof());
    EXPECT_EQ(faulty->Errors().size(), 1U);
    EXPECT_EQ(NumberOf([&] { rs->MoveNext(); }), adErrNoCurrentRecord);
}

TEST_F(UnbufferedTest, AFailureAtTheFirstRowIsRaisedByOpen) {
    TestKit::FailAtRow(1);
    const Ref<Recordset> rs = New<Recordset>();
    EXPECT_EQ(FailureOf([&] { rs->OpenUnbuffered(All, faulty); }).Description, "injected");
    EXPECT_EQ(rs->State(), adStateClosed);
}

TEST_F(UnbufferedTest, AFailureWhileTheRowsAreCopiedIsRaisedByTheMoveThatReachesTheRow) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    TestKit::FailAtRow(3);
    const Ref<Recordset> rs = Open(faulty);
    TestKit::FailAtCall(0);
    faulty->Execute("SELECT 1");
    EXPECT_EQ(CStr(rs->Fields("ClinicName").Value()), "A");
    rs->MoveNext();
    EXPECT_EQ(CStr(rs->Fields("ClinicName").Value()), "B");
    EXPECT_TRUE(faulty->Errors().empty());
    EXPECT_EQ(FailureOf([&] { rs->MoveNext(); }).Description, "injected");
    EXPECT_EQ(faulty->Errors().size(), 1U);
    EXPECT_TRUE(rs->Eof());
    EXPECT_EQ(NumberOf([&] { rs->MoveNext(); }), adErrNoCurrentRecord);
}

TEST_F(UnbufferedTest, AnEngineFailureAtALaterRowNamesTheStatement) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    OXCLASS_ONLY_IF(TestKit::IsFile());
    const String statement = "SELECT abs(CASE ClinicID WHEN 2 THEN -9223372036854775808 ELSE 1 END) FROM Clinic_T";
    const Ref<Recordset> rs = Open(plain, statement);
    const Error failure = FailureOf([&] { rs->MoveNext(); });
    EXPECT_EQ(failure.Description, "integer overflow");
    EXPECT_EQ(failure.Statement, statement);
}

TEST_F(UnbufferedTest, ItRaisesAsOpenAndStaysClosed) {
    const Ref<Recordset> rs = New<Recordset>();
    EXPECT_EQ(NumberOf([&] { rs->OpenUnbuffered(All, nullptr); }), adErrInvalidConnection);
    rs->SetSource("before");
    rs->SetLockType(adLockOptimistic);
    EXPECT_EQ(NumberOf([&] { rs->OpenUnbuffered("SELECT * FROM Nothing_T", plain); }), NoTable);
    EXPECT_EQ(rs->State(), adStateClosed);
    EXPECT_EQ(rs->Source(), "before");
    rs->OpenUnbuffered(All, plain);
    EXPECT_EQ(NumberOf([&] { rs->OpenUnbuffered(All, plain); }), adErrObjectOpen);
    EXPECT_EQ(Rest(rs), "ABC");
    rs->Requery();
    EXPECT_EQ(Rest(rs), "ABC");
    rs->MoveFirst();
    EXPECT_EQ(Rest(rs), "ABC");
    EXPECT_EQ(rs->LockType(), adLockReadOnly);
}

}  // namespace

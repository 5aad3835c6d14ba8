#include "frame/Class1.h"
#include "frame/cGlobalLists.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Services.h"

#include <cmath>

/// The rows of one list.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Long noTable = static_cast<Long>(0x80040E37);

class GlobalLists : public WithDatabase {
protected:
    std::vector<String> Texts() {
        std::vector<String> texts;
        for (const cGlobalList& row : *list) texts.push_back(row.ListText);
        return texts;
    }
    Long Rows() { return CLng(Ask("SELECT count(*) FROM GlobalList_T")); }

    Ref<cGlobalLists> list = New<cGlobalLists>();
};

TEST_F(GlobalLists, HaveTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(*list),
        ElementsAre("GetAllGLs(sConn: Connection, ListID: gGlobalListIDs&) -> int32",
                    "Add([sKey: string]) -> cGlobalList", "get Item(vntIndexKey: variant) -> cGlobalList",
                    "get Count -> int32", "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator",
                    "DeleteAllOnListID(cnconn: Connection, lID: gGlobalListIDs&)", "DeleteAll(cnconn: Connection)"));
}

TEST_F(GlobalLists, ItemIsNotTheDefaultMember) {
    for (const Member& member : list->Describe().Members()) EXPECT_NE(member.DispId, DefaultMember) << member.Name;
    EXPECT_EQ(list->Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

// ---- members --------------------------------------------------------------------------------------

TEST_F(GlobalLists, AfterTwoAddsWithoutAKeyTheFirstMemberIsTheSecondObject) {
    const Ref<cGlobalList> first = list->Add();
    const Ref<cGlobalList> second = list->Add();
    EXPECT_EQ(list->Item(Long{1}), second);
    EXPECT_EQ(list->Item(Long{2}), first);
    EXPECT_FALSE(second->GLSaved);
}

TEST_F(GlobalLists, AKeyedMemberIsFirstToo) {
    const Ref<cGlobalList> first = list->Add("A");
    const Ref<cGlobalList> second = list->Add("B");
    EXPECT_EQ(list->Item(Long{1}), second);
    EXPECT_EQ(list->Item("a"), first);
}

TEST_F(GlobalLists, AddWithAnExistingKeyRaisesAndDropsTheNewMember) {
    list->Add("K");
    EXPECT_EQ(FailureOf([&] { list->Add("k"); }).Number, 457);
    EXPECT_EQ(list->Count(), 1);
}

TEST_F(GlobalLists, AMissingMemberRaises) {
    EXPECT_EQ(FailureOf([&] { list->Item(Long{1}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { list->Item("K1"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { list->Remove(Long{1}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { list->Remove("K1"); }).Number, 5);
}

TEST_F(GlobalLists, AddStoresNothing) {
    list->Add();
    EXPECT_THAT(Sent(), IsEmpty());
}

// ---- loading --------------------------------------------------------------------------------------

TEST_F(GlobalLists, LoadsTheRowsOfOneListUnderTheirCounters) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListID, ListText)"
        " VALUES (30, 7, 'a'), (31, 8, 'other'), (32, 7, NULL)");
    EXPECT_EQ(list->GetAllGLs(con, gglID_CIDCodes), 2);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM GlobalList_T WHERE ListID=7;"));
    EXPECT_THAT(Texts(), ElementsAre("a", ""));
    const Ref<cGlobalList> row = list->Item("K30");
    EXPECT_EQ(row->GlobalListID, 30);
    EXPECT_EQ(row->ListID, gglID_CIDCodes);
    EXPECT_TRUE(row->GLSaved);
}

TEST_F(GlobalLists, ALoadDropsTheOldMembers) {
    list->Add("K30");
    EXPECT_EQ(list->GetAllGLs(con, gglID_CIDCodes), 0);
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(GlobalLists, AFailedReadLeavesTheRowsReadBeforeIt) {
    Run("DROP TABLE GlobalList_T");
    Run("CREATE VIEW GlobalList_T AS SELECT 1 AS GlobalListID, 4 AS ListID, 'a' AS ListText"
        " UNION ALL SELECT NULL, 4, 'b' UNION ALL SELECT 3, 4, 'c'");
    list->Add()->ListText = "old";
    EXPECT_EQ(FailureOf([&] { list->GetAllGLs(con, gglID_DicomRootUID); }).Number, 94);
    EXPECT_THAT(Texts(), ElementsAre("a"));
}

TEST_F(GlobalLists, AnyOtherFailureThanAMissingTableIsRaisedAtOnce) {
    Run("ALTER TABLE GlobalList_T RENAME COLUMN ListID TO Renamed");
    list->Add();
    EXPECT_EQ(FailureOf([&] { list->GetAllGLs(con, gglID_CIDCodes); }).Number, static_cast<Long>(0x80040E10));
    EXPECT_EQ(Sent().size(), 1U);
    EXPECT_EQ(list->Count(), 1);
}

// ---- waiting for a missing table ------------------------------------------------------------------

/// A clock that advances by this number of seconds with each call of `DoEvents` and `Sleep`.
class GlobalListsWithoutTable : public GlobalLists {
protected:
    GlobalListsWithoutTable() : host_(TheHost()) {
        Run("DROP TABLE GlobalList_T");
        TheHost().Timer = [this] { return static_cast<float>(std::fmod(clock, 86400.0)); };
        TheHost().Sleep = [](double) {};
        TheHost().DoEvents = [this] {
            ++pumped;
            clock += step;
            if (whileWaiting) whileWaiting();
        };
    }
    ~GlobalListsWithoutTable() override { TheHost() = host_; }

    double clock = 1000;
    double step = 0.125;
    int pumped = 0;
    std::function<void()> whileWaiting;

private:
    Host host_;
};

TEST_F(GlobalListsWithoutTable, WaitsTenTimesASecondAndThenRaises) {
    list->Add();
    const Error failure = FailureOf([&] { list->GetAllGLs(con, gglID_CIDCodes); });
    EXPECT_EQ(failure.Number, noTable);
    EXPECT_EQ(Sent().size(), 11U);
    EXPECT_THAT(Sent(), Each("SELECT * FROM GlobalList_T WHERE ListID=7;"));
    EXPECT_EQ(clock, 1010);
    EXPECT_EQ(pumped, 80);
    EXPECT_EQ(list->Count(), 1);
}

TEST_F(GlobalListsWithoutTable, EachCallStartsANewCountOfRetries) {
    for (int call = 0; call < 2; ++call) {
        log.statements.clear();
        FailureOf([&] { list->GetAllGLs(con, gglID_CIDCodes); });
        EXPECT_EQ(Sent().size(), 11U);
    }
}

TEST_F(GlobalListsWithoutTable, LoadsAsSoonAsTheTableExists) {
    whileWaiting = [this] {
        if (clock != 1002.5) return;
        Connect()->Execute("CREATE TABLE GlobalList_T (GlobalListID INTEGER, ListID INTEGER, ListText TEXT)");
        Connect()->Execute("INSERT INTO GlobalList_T VALUES (5, 7, 'late')");
    };
    EXPECT_EQ(list->GetAllGLs(con, gglID_CIDCodes), 1);
    EXPECT_THAT(Texts(), ElementsAre("late"));
    EXPECT_EQ(Sent().size(), 4U);
    EXPECT_EQ(clock, 1003);
}

TEST_F(GlobalListsWithoutTable, TheCallerCanBeEnteredAgainWhileItWaits) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Long inner = -1;
    whileWaiting = [&] {
        whileWaiting = nullptr;
        Connect()->Execute(
            "CREATE TABLE GlobalList_T (GlobalListID INTEGER PRIMARY KEY, ListID INTEGER, ListText TEXT)");
        New<Class1>()->SaveGLSetting(con, gglID_CIDCodes, "stored meanwhile", false);
        inner = list->GetAllGLs(con, gglID_CIDCodes);
        New<Class1>()->SaveGLSetting(con, gglID_CIDCodes, "and another one", false);
    };
    EXPECT_EQ(list->GetAllGLs(con, gglID_CIDCodes), 2);
    EXPECT_EQ(inner, 1);
    EXPECT_THAT(Texts(), ElementsAre("stored meanwhile", "and another one"));
}

TEST_F(GlobalListsWithoutTable, AWaitThatMissesItsEndBeforeMidnightLastsUntilTheSameTimeOfTheNextDay) {
    clock = 86398.5;
    std::vector<double> next{86401, 90000, 172799.25, 172799.75};
    std::vector<std::size_t> sent;
    whileWaiting = [&] {
        sent.push_back(Sent().size());
        if (next.empty()) throw Error(1, "test", "enough");
        clock = next.front();
        next.erase(next.begin());
    };
    FailureOf([&] { list->GetAllGLs(con, gglID_CIDCodes); });
    EXPECT_THAT(sent, ElementsAre(1, 1, 1, 1, 2));
}

TEST_F(GlobalListsWithoutTable, AWaitThatBeginsInTheDaysLastSecondEndsTheNextDay) {
    clock = 86399.5;
    step = 21600;
    whileWaiting = [&] {
        if (clock > 12 * 86400.0) throw Error(1, "test", "waits for ever");
    };
    EXPECT_EQ(FailureOf([&] { list->GetAllGLs(con, gglID_CIDCodes); }).Number, noTable);
}

// ---- deleting -------------------------------------------------------------------------------------

TEST_F(GlobalLists, DeleteAllOnListIDDeletesTheRowsAndKeepsTheMembers) {
    Run("INSERT INTO GlobalList_T (ListID) VALUES (7), (7), (8)");
    list->GetAllGLs(con, gglID_CIDCodes);
    log.statements.clear();
    list->DeleteAllOnListID(con, gglID_CIDCodes);
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM globalList_T WHERE ListID = 7;"));
    EXPECT_EQ(list->Count(), 2);
    EXPECT_EQ(Rows(), 1);
}

TEST_F(GlobalLists, DeleteAllOnAListThatWasNeverLoadedRunsNoStatement) {
    Run("INSERT INTO GlobalList_T (ListID) VALUES (7)");
    list->DeleteAll(con);
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(Rows(), 1);
}

TEST_F(GlobalLists, DeleteAllDeletesTheMembersRowsWithOneStatement) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListID) VALUES (30, 7), (31, 8), (32, 7)");
    list->GetAllGLs(con, gglID_CIDCodes);
    log.statements.clear();
    list->DeleteAll(con);
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM GlobalList_T WHERE GlobalListID=30 OR GlobalListID=32;"));
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(Rows(), 1);
}

TEST_F(GlobalLists, DeleteAllOfOneMemberNamesOnlyThis) {
    list->Add();
    list->DeleteAll(con);
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM GlobalList_T WHERE GlobalListID=0;"));
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(GlobalLists, AFailedDeleteAllKeepsTheMembers) {
    list->Add();
    Run("DROP TABLE GlobalList_T");
    EXPECT_EQ(FailureOf([&] { list->DeleteAll(con); }).Number, noTable);
    EXPECT_EQ(FailureOf([&] { list->DeleteAllOnListID(con, gglID_CIDCodes); }).Number, noTable);
    EXPECT_EQ(list->Count(), 1);
}

TEST_F(GlobalLists, DeleteAllTakesAThousandRows) {
    Run("INSERT INTO GlobalList_T (ListID) VALUES " + ManyRows(1500, [](Long) { return "7"; }));
    EXPECT_EQ(list->GetAllGLs(con, gglID_CIDCodes), 1500);
    list->DeleteAll(con);
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(Rows(), 0);
}

TEST_F(GlobalLists, DeleteAllOfMoreMembersThanSixteenBitsCountFailsAfterTheRowsAreDeleted) {
    Run("INSERT INTO GlobalList_T (ListID) VALUES " + ManyRows(32768, [](Long) { return "7"; }));
    EXPECT_EQ(list->GetAllGLs(con, gglID_CIDCodes), 32768);
    EXPECT_EQ(FailureOf([&] { list->DeleteAll(con); }).Number, 6);
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(list->Count(), 32768);
}

}  // namespace
}  // namespace OXClass

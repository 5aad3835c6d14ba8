#include "frame/Class1.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// Storage roots, sub-folders and settings. The identifiers have a test file of their own.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

class Services : public WithDatabase {
protected:
    void RunRoots() {
        Run("INSERT INTO Root_T (RootID, RootDirectory, Status)"
            " VALUES (1, 'C:\\one', 0), (2, 'C:\\two', 1), (5, 'C:\\five', NULL)");
    }
    std::vector<String> Roots() { return services->GetRoots(con).As<std::vector<String>>(); }

    String Cached(Long root, bool flush = false) { return services->GetCachedRootOnID(con, root, flush); }
    String CachedWithoutConnection(Long root, bool flush = false) {
        return services->GetCachedRootOnID(nullptr, root, flush);
    }

    Ref<Class1> services = New<Class1>();
};

TEST_F(Services, HaveTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(*services),
        ElementsAre("put ActiveRootID(int32)", "get ActiveRootID -> int32", "GetRoots(Con: Connection) -> variant",
                    "GetSubFolder(PatID: int32) -> string",
                    "SaveGLSetting(Con: Connection, GLId: gGlobalListIDs&, sSetting: string&, bReplace: boolean&)",
                    "GetGLSetting(Con: Connection, GLId: gGlobalListIDs&, sFirstSetting: string&, "
                    "[cAllGLs: cGlobalLists&]) -> boolean",
                    "GetRootOnID(Con: Connection, RootId: int32&) -> string",
                    "GetCachedRootOnID(Con: Connection, RootId: int32&, bFlushCache: boolean&) -> string",
                    "GetInstanceUID(Con: Connection) -> string"));
}

// ---- all roots ------------------------------------------------------------------------------------

TEST_F(Services, TheActiveRootIsFirstAndTheOthersByNumber) {
    RunRoots();
    EXPECT_THAT(Roots(), ElementsAre("C:\\two", "C:\\one", "C:\\five"));
    EXPECT_EQ(services->ActiveRootID, 2);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Root_T ORDER BY RootID;"));
}

TEST_F(Services, AnyStatusOtherThanZeroIsActive) {
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, 'a', 0), (2, 'b', -1)");
    EXPECT_THAT(Roots(), ElementsAre("b", "a"));
}

TEST_F(Services, RootsWithoutAConnectionAreEmpty) {
    services->ActiveRootID = 9;
    EXPECT_EQ(services->GetRoots(nullptr), Variant());
    EXPECT_EQ(services->ActiveRootID, 9);
}

TEST_F(Services, OfTwoActiveRootsTheLaterIsUsedAndTheLastElementIsEmpty) {
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, 'a', 1), (2, 'b', 0), (3, 'c', 1)");
    EXPECT_THAT(Roots(), ElementsAre("c", "b", ""));
    EXPECT_EQ(services->ActiveRootID, 3);
}

TEST_F(Services, WithoutAnActiveRootTheBoundsFail) {
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, 'a', 0), (2, 'b', 0)");
    EXPECT_EQ(FailureOf([&] { Roots(); }).Number, 9);
}

TEST_F(Services, MoreRootsThanAPositionCanCountOverflow) {
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES " +
        ManyRows(32767, [](Long i) { return CStr(i) + (i == 1 ? ",'x',1" : ",'x',0"); }));
    EXPECT_EQ(Roots().size(), 32767U);
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (32768, 'x', 0)");
    EXPECT_EQ(FailureOf([&] { Roots(); }).Number, err::Overflow);
}

TEST_F(Services, AnEmptyTableFailsAtOnce) {
    EXPECT_EQ(FailureOf([&] { Roots(); }).Number, 9);
}

TEST_F(Services, ANullDirectoryFails) {
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, NULL, 1)");
    EXPECT_EQ(FailureOf([&] { Roots(); }).Number, 94);
    EXPECT_EQ(services->ActiveRootID, 0);
    EXPECT_EQ(FailureOf([&] { services->GetRootOnID(con, 1); }).Number, 94);
}

TEST_F(Services, AFailureKeepsItsSource) {
    Run("DROP TABLE Root_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM Root_T"); });
    const Error failure = FailureOf([&] { Roots(); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, expected.Source);
}

// ---- one root -------------------------------------------------------------------------------------

TEST_F(Services, ARootIsFoundByItsNumber) {
    RunRoots();
    EXPECT_EQ(services->GetRootOnID(con, 5), "C:\\five");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Root_T WHERE RootID=5;"));
}

TEST_F(Services, NumberZeroIsTheActiveRoot) {
    RunRoots();
    EXPECT_EQ(services->GetRootOnID(con, 0), "C:\\two");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Root_T WHERE Status <> 0;"));
}

TEST_F(Services, GetRootOnIDAlwaysReadsTheDatabase) {
    RunRoots();
    services->GetRootOnID(con, 1);
    services->GetRootOnID(con, 1);
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(Services, GetRootOnIDFillsTheCache) {
    RunRoots();
    services->GetRootOnID(con, 1);
    EXPECT_EQ(CachedWithoutConnection(1), "C:\\one");
}

TEST_F(Services, WithoutAConnectionARootIsTheEmptyText) { EXPECT_EQ(services->GetRootOnID(nullptr, 1), ""); }

TEST_F(Services, ANegativeRootIsNotFound) {
    EXPECT_EQ(services->GetRootOnID(con, -1), "");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Root_T WHERE RootID=-1;"));
}

TEST_F(Services, ADeletedRootKeepsTheCachesEntry) {
    RunRoots();
    services->GetRootOnID(con, 1);
    Run("DELETE FROM Root_T");
    EXPECT_EQ(services->GetRootOnID(con, 1), "");
    EXPECT_EQ(CachedWithoutConnection(1), "C:\\one");
}

// ---- the cache ------------------------------------------------------------------------------------

TEST_F(Services, AKnownRootIsReadOnce) {
    RunRoots();
    EXPECT_EQ(Cached(1), "C:\\one");
    EXPECT_EQ(Cached(1), "C:\\one");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Root_T WHERE RootID=1;"));
}

TEST_F(Services, AnUnknownRootIsTheEmptyTextAndIsReadEachTime) {
    EXPECT_EQ(Cached(7), "");
    EXPECT_EQ(Cached(7), "");
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(Services, TheCachedActiveRootIsUsedUntilTheCacheIsFlushed) {
    RunRoots();
    EXPECT_EQ(Cached(0), "C:\\two");
    Run("UPDATE Root_T SET Status = CASE RootID WHEN 1 THEN 1 ELSE 0 END");
    EXPECT_EQ(Cached(0), "C:\\two");
    EXPECT_EQ(Cached(0, true), "C:\\one");
    EXPECT_EQ(Cached(0), "C:\\one");
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(Services, AFlushWithoutAConnectionReturnsTheEmptyTextAndEmptiesTheCache) {
    RunRoots();
    Cached(0);
    Cached(1);
    EXPECT_EQ(CachedWithoutConnection(1, true), "");
    EXPECT_EQ(CachedWithoutConnection(0), "");
    EXPECT_EQ(CachedWithoutConnection(1), "");
}

TEST_F(Services, AnEmptyDirectoryIsNeverACacheHit) {
    Run("INSERT INTO Root_T (RootID, RootDirectory) VALUES (1, '')");
    EXPECT_EQ(Cached(1), "");
    EXPECT_EQ(Cached(1), "");
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(Services, AHighUnknownNumberLeavesTheOtherEntries) {
    RunRoots();
    Cached(1);
    Cached(0);
    EXPECT_EQ(services->GetRootOnID(con, INT32_MAX), "");
    EXPECT_EQ(Cached(INT32_MAX), "");
    EXPECT_EQ(Sent().size(), 4U) << "a root that isn't there is asked for each time";
    EXPECT_EQ(CachedWithoutConnection(0), "C:\\two");
    EXPECT_EQ(CachedWithoutConnection(1), "C:\\one");
}

TEST_F(Services, ANegativeRootFailsInTheCache) {
    RunRoots();
    Cached(1);
    EXPECT_EQ(FailureOf([&] { Cached(-1, true); }).Number, 9);
    EXPECT_EQ(CachedWithoutConnection(1), "");  // the flush came first
}

TEST_F(Services, TwoObjectsDoNotShareTheirCache) {
    RunRoots();
    Cached(1);
    EXPECT_EQ(New<Class1>()->GetCachedRootOnID(nullptr, 1, false), "");
}

// ---- sub-folders ----------------------------------------------------------------------------------

TEST_F(Services, FiveHundredPatientsShareAFolder) {
    EXPECT_EQ(services->GetSubFolder(0), "0_");
    EXPECT_EQ(services->GetSubFolder(499), "0_");
    EXPECT_EQ(services->GetSubFolder(500), "500_");
    EXPECT_EQ(services->GetSubFolder(1234), "1000_");
    EXPECT_EQ(services->GetSubFolder(-1), "0_");
    EXPECT_EQ(services->GetSubFolder(INT32_MIN), "0_");
}

TEST_F(Services, TheLastFolderOverflows) {
    EXPECT_EQ(services->GetSubFolder(2147483499), "2147483000_");
    EXPECT_EQ(FailureOf([&] { services->GetSubFolder(2147483500); }).Number, 6);
    EXPECT_EQ(FailureOf([&] { services->GetSubFolder(INT32_MAX); }).Number, 6);
}

// ---- settings -------------------------------------------------------------------------------------

TEST_F(Services, AnEmptyRootListReturnsTheDefaultRootAndFalse) {
    String first = "old";
    Ref<cGlobalLists> all;
    EXPECT_FALSE(services->GetGLSetting(con, gglID_DicomRootUID, first, all));
    EXPECT_EQ(first, "1.2.840.990731.3.6");
    ASSERT_TRUE(all);
    EXPECT_EQ(all->Count(), 0);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM GlobalList_T WHERE ListID=4;"));
}

TEST_F(Services, AnyOtherEmptyListReturnsTheEmptyTextAndFalse) {
    for (const Long number : {1, 3, 5, 22, 999}) {
        String first = "old";
        Ref<cGlobalLists> all;
        EXPECT_FALSE(services->GetGLSetting(con, static_cast<gGlobalListIDs>(number), first, all));
        EXPECT_EQ(first, "");
    }
}

TEST_F(Services, AListReturnsItsFirstTextAndReplacesTheCallersCollection) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (6, 'jpg'), (6, 'png')");
    const Ref<cGlobalLists> mine = New<cGlobalLists>();
    mine->Add();
    Ref<cGlobalLists> all = mine;
    String first;
    EXPECT_TRUE(services->GetGLSetting(con, gglID_ImageFormat, first, all));
    EXPECT_EQ(first, "jpg");
    EXPECT_NE(all, mine);
    EXPECT_EQ(all->Count(), 2);
    EXPECT_EQ(mine->Count(), 1);
}

TEST_F(Services, ALateBoundCallerGetsTheTextAndMayLeaveTheCollectionOut) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (6, 'jpg')");
    std::vector<Variant> arguments{Variant(con), Variant(gglID_ImageFormat), Variant("")};
    EXPECT_EQ(Invoke(*services, "GetGLSetting", MemberKind::Operation, arguments), Variant(true));
    EXPECT_EQ(arguments[2], Variant("jpg"));
}

TEST_F(Services, ASettingThatIsNotReplacedIsAdded) {
    services->SaveGLSetting(con, gglID_ImageFormat, "jpg", false);
    services->SaveGLSetting(con, gglID_ImageFormat, "png", false);
    EXPECT_EQ(Ask("SELECT count(*) FROM GlobalList_T WHERE ListID=6"), Variant(Long{2}));
    String first;
    Ref<cGlobalLists> all;
    EXPECT_TRUE(services->GetGLSetting(con, gglID_ImageFormat, first, all));
    EXPECT_EQ(first, "jpg");
    EXPECT_EQ(all->Count(), 2);
}

TEST_F(Services, ASettingThatReplacesDeletesTheListsRowsFirst) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListID, ListText) VALUES (30, 6, 'a'), (31, 6, 'b'), (32, "
        "7, 'c')");
    services->SaveGLSetting(con, gglID_ImageFormat, "it's", true);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM GlobalList_T WHERE ListID=6;",
                                    "DELETE FROM GlobalList_T WHERE GlobalListID=30 OR GlobalListID=31;", "BeginTrans",
                                    "INSERT INTO GlobalList_T (ListID, ListText) VALUES ( 6, 'it''s');",
                                    "SELECT @@IDENTITY", "CommitTrans"));
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T WHERE ListID=6"), Variant("it's"));
    EXPECT_EQ(Ask("SELECT count(*) FROM GlobalList_T"), Variant(Long{2}));
}

TEST_F(Services, ASettingThatReplacesNothingDeletesNothing) {
    services->SaveGLSetting(con, gglID_ImageFormat, "jpg", true);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM GlobalList_T WHERE ListID=6;", "BeginTrans",
                                    "INSERT INTO GlobalList_T (ListID, ListText) VALUES ( 6, 'jpg');",
                                    "SELECT @@IDENTITY", "CommitTrans"));
}

}  // namespace
}  // namespace OXClass

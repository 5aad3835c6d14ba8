#include "frame/cGlobalList.h"

#include "kit/FaultyProvider.h"

/// One row of the lists.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GlobalList : public WithDatabase {
protected:
    Ref<cGlobalList> row = New<cGlobalList>();
};

TEST_F(GlobalList, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(*row),
                ElementsAre("put GLSaved(boolean)", "get GLSaved -> boolean", "put GlobalListID(int32)",
                            "get GlobalListID -> int32", "put ListID(gGlobalListIDs)", "get ListID -> gGlobalListIDs",
                            "put ListText(string)", "get ListText -> string", "Save(sConn: Connection) -> boolean",
                            "Delete(sConn: Connection) -> boolean",
                            "GetGL(sConn: Connection, GlobalListID: int32) -> boolean"));
}

TEST_F(GlobalList, TheListsHaveTheirDocumentedNumbers) {
    std::vector<String> lists;
    for (const EnumerationValue& value : EnumerationOf<gGlobalListIDs>::Values)
        lists.push_back(value.Name + (" " + CStr(value.Value)));
    EXPECT_THAT(lists,
                ElementsAre("gglID_DeveloperFKeys 1", "gglID_VersionStatus 2", "gglID_DicomServer 3",
                            "gglID_DicomRootUID 4", "gglID_LoginMethod 5", "gglID_ImageFormat 6", "gglID_CIDCodes 7",
                            "gglID_TemplateRegionRelationship 8", "gglID_DicomClientAEAndPortPerWSName 9",
                            "gglID_SecuritySettings 10", "gglID_MaintenanceFlags 11", "gglID_SecurityGroups 12",
                            "gglID_PromptOnTemplateSelection 13", "gglID_MaintServerClient 14",
                            "gglID_SkipTSChangePrompt 15", "gglID_SwipeCardOptions 16", "gglID_LogSelections 17",
                            "gglID_HashedPasswords 18", "gglID_ApproveOverwritesReferrer 19", "gglID_CropAllowed 20",
                            "gglID_DeleteReasons 21", "gglID_PromptForDeleteReason 22"));
}

TEST_F(GlobalList, StartsUnsaved) {
    EXPECT_FALSE(row->GLSaved);
    EXPECT_EQ(row->GlobalListID, 0);
    EXPECT_EQ(Long{row->ListID}, 0);
    EXPECT_EQ(row->ListText, "");
}

TEST_F(GlobalList, AnUnsavedRowIsInsertedInATransactionOfItsOwn) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListID) VALUES (30, 1)");
    row->ListID = gglID_ImageFormat;
    row->ListText = "it's";
    EXPECT_FALSE(row->Save(con));
    EXPECT_THAT(Sent(), ElementsAre("BeginTrans", "INSERT INTO GlobalList_T (ListID, ListText) VALUES ( 6, 'it''s');",
                                    "SELECT @@IDENTITY", "CommitTrans"));
    EXPECT_TRUE(row->GLSaved);
    EXPECT_EQ(row->GlobalListID, 31);
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T WHERE GlobalListID=31"), Variant("it's"));
}

TEST_F(GlobalList, ASavedRowWithAQuoteInItsTextIsStoredCorrectly) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListID, ListText) VALUES (30, 1, 'old')");
    row->GetGL(con, 30);
    row->ListText = "O'Hara's";
    row->ListID = gglID_LoginMethod;
    log.statements.clear();
    EXPECT_FALSE(row->Save(con));
    EXPECT_THAT(Sent(), ElementsAre("Update GlobalList_T Set ListID=5,ListText='O''Hara''s' WHERE GlobalListID=30"));
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T"), Variant("O'Hara's"));
}

TEST_F(GlobalList, TheClientChoosesThePathWithGLSaved) {
    row->GLSaved = true;
    row->GlobalListID = 5;
    row->Save(con);
    EXPECT_THAT(Sent(), ElementsAre("Update GlobalList_T Set ListID=0,ListText='' WHERE GlobalListID=5"));
    EXPECT_EQ(Ask("SELECT count(*) FROM GlobalList_T"), Variant(Long{0}));
}

TEST_F(GlobalList, TextsOfAnyScriptAndInjectionsAreReadUnchanged) {
    for (const char* text : {"Ωμέγα", "Список", "設定", "🦷", "x', ListID='9", "'); DROP TABLE GlobalList_T; --"}) {
        const Ref<cGlobalList> fresh = New<cGlobalList>(), read = New<cGlobalList>();
        fresh->ListText = text;
        fresh->Save(con);
        EXPECT_TRUE(read->GetGL(con, fresh->GlobalListID));
        EXPECT_EQ(read->ListText, text);
    }
}

TEST_F(GlobalList, DeleteOfAnUnsavedRowSendsNothingAndReturnsTrue) {
    row->GlobalListID = 5;
    EXPECT_TRUE(row->Delete(con));
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(GlobalList, ADeletedRowKeepsItsSavedFlagAndIsDeletedAgain) {
    row->Save(con);
    log.statements.clear();
    EXPECT_TRUE(row->Delete(con));
    EXPECT_TRUE(row->Delete(con));
    EXPECT_TRUE(row->GLSaved);
    row->Save(con);
    EXPECT_THAT(Sent(), ElementsAre("Delete FROM GlobalList_T WHERE GlobalListID=1",
                                    "Delete FROM GlobalList_T WHERE GlobalListID=1",
                                    "Update GlobalList_T Set ListID=0,ListText='' WHERE GlobalListID=1"));
    EXPECT_EQ(Ask("SELECT count(*) FROM GlobalList_T"), Variant(Long{0}));
}

TEST_F(GlobalList, GetGLLoadsARow) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListID, ListText) VALUES (30, 7, 'code')");
    EXPECT_TRUE(row->GetGL(con, 30));
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM GlobalList_T WHERE GlobalListID = 30"));
    EXPECT_EQ(row->GlobalListID, 30);
    EXPECT_EQ(row->ListID, gglID_CIDCodes);
    EXPECT_EQ(row->ListText, "code");
    EXPECT_TRUE(row->GLSaved);
}

TEST_F(GlobalList, GetGLOfAMissingRowChangesNothing) {
    row->ListText = "mine";
    EXPECT_FALSE(row->GetGL(con, 30));
    EXPECT_EQ(row->GlobalListID, 0);
    EXPECT_EQ(row->ListText, "mine");
    EXPECT_FALSE(row->GLSaved);
}

TEST_F(GlobalList, ANullTextLoadsAsEmptyAndANullListFailsHalfWay) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListID, ListText) VALUES (30, 7, NULL), (31, NULL, 'x')");
    row->ListText = "mine";
    EXPECT_TRUE(row->GetGL(con, 30));
    EXPECT_EQ(row->ListText, "");
    row->GLSaved = false;
    EXPECT_EQ(FailureOf([&] { row->GetGL(con, 31); }).Number, 94);
    EXPECT_EQ(row->GlobalListID, 31);
    EXPECT_FALSE(row->GLSaved);
}

TEST_F(GlobalList, AFailureReachesTheCallerAsItCame) {
    Run("DROP TABLE GlobalList_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM GlobalList_T"); });
    row->GLSaved = true;
    for (const Error& failure : {FailureOf([&] { row->GetGL(con, 1); }), FailureOf([&] { row->Save(con); }),
                                 FailureOf([&] { row->Delete(con); })}) {
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
        EXPECT_EQ(failure.Source, expected.Source);
    }
}

// ---- a failure at every call that reaches the database --------------------------------------------

class GlobalListOnFaultyDatabase : public GlobalList {
protected:
    GlobalListOnFaultyDatabase() { row->GlobalListID = 500; }
    ~GlobalListOnFaultyDatabase() override { FailAtCall(0); }

    String FailureAt(int call) {
        FailAtCall(call);
        return FailureOf([&] { row->Save(faulty); }).Description;
    }

    /// True if the save left a transaction open on the caller's connection, which this ends.
    bool RollsBack() {
        FailAtCall(0);
        return FailureOf([&] { faulty->RollbackTrans(); }).Number == 0;
    }

    Long Rows() { return CLng(Ask("SELECT count(*) FROM GlobalList_T")); }

    Ref<Connection> faulty = FaultyConnectionTo(database);
};

TEST_F(GlobalListOnFaultyDatabase, AnInsertMakesFourCallsAndAnUpdateOne) {
    EXPECT_EQ(FailureAt(0), "");
    EXPECT_EQ(CallsSoFar(), 4);
    EXPECT_EQ(FailureAt(0), "");
    EXPECT_EQ(CallsSoFar(), 1);
    EXPECT_FALSE(RollsBack());
}

TEST_F(GlobalListOnFaultyDatabase, AFailedBeginLeavesNoTransaction) {
    EXPECT_EQ(FailureAt(1), "injected");
    EXPECT_FALSE(RollsBack());
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(row->GLSaved);
}

TEST_F(GlobalListOnFaultyDatabase, AFailedInsertLeavesTheTransactionOpen) {
    EXPECT_EQ(FailureAt(2), "injected");
    EXPECT_EQ(row->GlobalListID, 500);
    EXPECT_FALSE(row->GLSaved);
    EXPECT_TRUE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(GlobalListOnFaultyDatabase, AFailedReadOfTheCounterLeavesTheTransactionOpen) {
    EXPECT_EQ(FailureAt(3), "injected");
    EXPECT_EQ(row->GlobalListID, 500);
    EXPECT_FALSE(row->GLSaved);
    EXPECT_TRUE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(GlobalListOnFaultyDatabase, AFailedCommitLeavesTheCounterInAnUnsavedObject) {
    EXPECT_EQ(FailureAt(4), "injected");
    EXPECT_EQ(row->GlobalListID, 1);
    EXPECT_FALSE(row->GLSaved);
    EXPECT_TRUE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(GlobalListOnFaultyDatabase, AFailedUpdateChangesNothing) {
    Run("INSERT INTO GlobalList_T (GlobalListID, ListText) VALUES (500, 'old')");
    row->GLSaved = true;
    EXPECT_EQ(FailureAt(1), "injected");
    EXPECT_FALSE(RollsBack());
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T"), Variant("old"));
}

}  // namespace
}  // namespace OXClass

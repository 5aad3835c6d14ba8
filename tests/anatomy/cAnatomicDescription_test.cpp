#include "anatomy/cAnatomicDescription.h"

#include "kit/FaultyProvider.h"
#include "platform/component/dispatch/Interface.h"

/// A standard group: its row, and the teeth of an intra-oral one.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Description : public WithDatabase {
protected:
    /// Writes one row of group 77, every text filled, then changes columns.
    void RunRow(const String& changes = {}) {
        Run("INSERT INTO StandardGroupName (StandardNameID, Name, Comments, OrderNo, TGId, ADType, "
            "ADLaterality,"
            " ADAnaRegion, ADAnaRegionMod, ADPriStructure)"
            " VALUES (40, 'Molars', 'rear', 6, 77, 1, 'L', 'T-D1213', 'G-A1', 'T-54')");
        if (!changes.empty()) Run("UPDATE StandardGroupName SET " + changes);
    }

    void FillAll() {
        group->ADName = "O'Group";
        group->ADComments = "it's";
        group->ADOrderNo = 6;
        group->ADId = 77;
        group->ADType = adtGeneralDX;
        group->ADLaterality = "L";
        group->ADAnaRegion = "T-D1213";
        group->ADAnaRegionMod = "G-A1";
        group->ADPriStructure = "T-54";
    }

    std::vector<Integer> Selected(const cAnatomicDescription& description) {
        std::vector<Integer> numbers;
        for (const cTooth& tooth : *description.cTeeth())
            if (tooth.Selected) numbers.push_back(tooth.TNumber);
        return numbers;
    }

    void Select(const char* key) { group->cTeeth()->Item(key)->Selected = true; }

    /// "boolean true", as `SaveSGN` returns it.
    static Variant Yes() { return true; }
    static Variant No() { return false; }

    Ref<cAnatomicDescription> group = New<cAnatomicDescription>();
};

const String columns =
    "INSERT INTO StandardGroupName (Name, Comments, OrderNo, TGId, ADType, ADLaterality, ADAnaRegion, "
    "ADAnaRegionMod, ADPriStructure, Tooth11, Tooth12, Tooth13, Tooth14, Tooth15, Tooth16, Tooth17, Tooth18, "
    "Tooth21, Tooth22, Tooth23, Tooth24, Tooth25, Tooth26, Tooth27, Tooth28, Tooth31, Tooth32, Tooth33, "
    "Tooth34, "
    "Tooth35, Tooth36, Tooth37, Tooth38, Tooth41, Tooth42, Tooth43, Tooth44, Tooth45, Tooth46, Tooth47, "
    "Tooth48, "
    "Tooth51, Tooth52, Tooth53, Tooth54, Tooth55, Tooth61, Tooth62, Tooth63, Tooth64, Tooth65, Tooth71, "
    "Tooth72, "
    "Tooth73, Tooth74, Tooth75, Tooth81, Tooth82, Tooth83, Tooth84, Tooth85) VALUES (";
const String zeros =
    ", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0"
    ", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);";
const char* const keyOfAll = "SELECT MAX(StandardNameID) AS ID FROM StandardGroupName WHERE Name='O''Group';";

const std::vector<String> documented{"InitCollection()",
                                     "LoadSGN(Con: Connection&, lADId: int32&)",
                                     "SaveSGN(Con: Connection&) -> variant",
                                     "put ADName(string)",
                                     "get ADName -> string",
                                     "put ADLaterality(string)",
                                     "get ADLaterality -> string",
                                     "put ADAnaRegion(string)",
                                     "get ADAnaRegion -> string",
                                     "put ADAnaRegionMod(string)",
                                     "get ADAnaRegionMod -> string",
                                     "put ADPriStructure(string)",
                                     "get ADPriStructure -> string",
                                     "put ADType(AnaDescType)",
                                     "get ADType -> AnaDescType",
                                     "put ID(int32)",
                                     "get ID -> int32",
                                     "put ADOrderNo(int32)",
                                     "get ADOrderNo -> int32",
                                     "put ADComments(string)",
                                     "get ADComments -> string",
                                     "get cTeeth -> cTeeth",
                                     "putref cTeeth(cTeeth&)",
                                     "get ADId -> int32",
                                     "put ADId(int32&)",
                                     "DeleteSGN(Con: Connection&)",
                                     "DeleteSGNOnTGId(Con: Connection&)",
                                     "GetAsString([bComm: boolean&]) -> string",
                                     "SetTeethFromString(sIOstring: string&, oTeeth: cTeeth&)"};

TEST_F(Description, HasTheDocumentedMembers) { EXPECT_EQ(MembersOf(*group), documented); }

TEST_F(Description, HasTheDocumentedMembersBesidesThePassingOfTheConnection) {
    std::vector<String> expected;
    for (const String& member : documented) expected.push_back(Replace(member, "Connection&", "Connection"));
    std::vector<String> actual;
    for (const String& member : MembersOf(*group)) actual.push_back(Replace(member, "Connection&", "Connection"));
    EXPECT_EQ(actual, expected);
}

TEST_F(Description, TheKindsHaveTheirDocumentedValues) {
    std::vector<String> values;
    for (const EnumerationValue& value : EnumerationOf<AnaDescType>::Values)
        values.push_back(value.Name + (" " + CStr(value.Value)));
    EXPECT_THAT(values, ElementsAre("adtIntraOral 0", "adtGeneralDX 1", "adtAll 999"));
}

TEST_F(Description, TheTeethAreMadeEmptyOnFirstUse) {
    const Ref<cTeeth> teeth = group->cTeeth();
    ASSERT_TRUE(teeth);
    EXPECT_EQ(teeth->Count(), 0);
    EXPECT_EQ(group->cTeeth(), teeth);
    group->SetcTeeth(nullptr);
    EXPECT_TRUE(group->cTeeth());
}

// ---- loading --------------------------------------------------------------------------------------

TEST_F(Description, LoadsEveryColumnOfItsGroup) {
    RunRow();
    group->LoadSGN(con, 77);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM StandardGroupName Where TGId = 77;"));
    EXPECT_EQ(group->ID, 40);
    EXPECT_EQ(group->ADName, "Molars");
    EXPECT_EQ(group->ADComments, "rear");
    EXPECT_EQ(group->ADOrderNo, 6);
    EXPECT_EQ(group->ADId, 77);
    EXPECT_EQ(group->ADType, adtGeneralDX);
    EXPECT_EQ(group->ADLaterality, "L");
    EXPECT_EQ(group->ADAnaRegion, "T-D1213");
    EXPECT_EQ(group->ADAnaRegionMod, "G-A1");
    EXPECT_EQ(group->ADPriStructure, "T-54");
}

TEST_F(Description, AGroupWithoutARowLeavesTheObjectAsItWas) {
    RunRow();
    FillAll();
    group->ID = 3;
    group->InitCollection();
    Select("Tooth11");
    group->LoadSGN(con, 78);
    EXPECT_EQ(group->ID, 3);
    EXPECT_EQ(group->ADName, "O'Group");
    EXPECT_EQ(group->ADId, 77);
    EXPECT_THAT(Selected(*group), ElementsAre(11));
}

TEST_F(Description, AGeneralRowLoadsWithAllTeethPresentAndNoneSelected) {
    RunRow("ADPriStructure='11,21,'");
    group->LoadSGN(con, 77);
    EXPECT_EQ(group->cTeeth()->Count(), 52);
    EXPECT_THAT(Selected(*group), IsEmpty());
    EXPECT_EQ(group->ADPriStructure, "11,21,");
}

TEST_F(Description, AnIntraOralRowLoadsWithExactlyItsTeethSelected) {
    RunRow("ADType=0, ADPriStructure='11,21,'");
    group->LoadSGN(con, 77);
    EXPECT_EQ(group->cTeeth()->Count(), 52);
    EXPECT_THAT(Selected(*group), ElementsAre(11, 21));
    EXPECT_EQ(group->ADPriStructure, "11,21,");
}

TEST_F(Description, AnOldRegionInLowerCaseWithABlankReadsAsTheNewOne) {
    RunRow("ADAnaRegion='t-d1217 '");
    group->LoadSGN(con, 77);
    EXPECT_EQ(group->ADAnaRegion, "T-D1213");
    EXPECT_EQ(Ask("SELECT ADAnaRegion FROM StandardGroupName"), Variant("t-d1217 "));
}

TEST_F(Description, AnyOtherRegionIsUnchanged) {
    RunRow("ADAnaRegion='t-d1218 '");
    group->LoadSGN(con, 77);
    EXPECT_EQ(group->ADAnaRegion, "t-d1218 ");
}

TEST_F(Description, ANameThatTheObjectHasIsKept) {
    RunRow();
    group->ADName = "Mine";
    group->LoadSGN(con, 77);
    EXPECT_EQ(group->ADName, "Mine");
    EXPECT_EQ(group->ADComments, "rear");
}

TEST_F(Description, NullTextsReadAsEmptyAndANullNameToo) {
    RunRow("ADLaterality=NULL, ADAnaRegion=NULL, ADAnaRegionMod=NULL, ADPriStructure=NULL, Name=NULL");
    FillAll();
    group->ADName = "";
    group->LoadSGN(con, 77);
    EXPECT_EQ(group->ADLaterality + group->ADAnaRegion + group->ADAnaRegionMod + group->ADPriStructure + group->ADName,
              "");
}

TEST_F(Description, NullCommentsFailTheLoadAndLeaveTheMembersReadBeforeThem) {
    RunRow("Comments=NULL");
    group->ADOrderNo = 3;
    EXPECT_EQ(FailureOf([&] { group->LoadSGN(con, 77); }).Number, 94);
    EXPECT_EQ(group->ADLaterality, "L");
    EXPECT_EQ(group->ID, 40);
    EXPECT_EQ(group->ADOrderNo, 3);
    EXPECT_EQ(group->ADId, 0);
    EXPECT_EQ(group->ADName, "");
}

TEST_F(Description, ANullOrderOrTypeFailsTheLoad) {
    RunRow("OrderNo=NULL");
    EXPECT_EQ(FailureOf([&] { group->LoadSGN(con, 77); }).Number, 94);
    Run("UPDATE StandardGroupName SET OrderNo=1, ADType=NULL");
    EXPECT_EQ(FailureOf([&] { group->LoadSGN(con, 77); }).Number, 94);
}

TEST_F(Description, ABadToothStringFailsTheLoadAndKeepsTheTeethBeforeIt) {
    RunRow("ADType=0, ADPriStructure='11,19,21,'");
    EXPECT_EQ(FailureOf([&] { group->LoadSGN(con, 77); }).Number, 91);
    EXPECT_THAT(Selected(*group), ElementsAre(11));
    EXPECT_EQ(group->ADName, "");
}

TEST_F(Description, OfSeveralRowsOfAGroupOneIsLoaded) {
    RunRow();
    Run("INSERT INTO StandardGroupName (StandardNameID, Name, Comments, OrderNo, TGId, ADType)"
        " VALUES (41, 'Second', '', 1, 77, 1)");
    group->LoadSGN(con, 77);
    EXPECT_EQ(group->ADName, "Molars");
}

TEST_F(Description, AFailedOpenReachesTheCallerAsItCame) {
    Run("DROP TABLE StandardGroupName");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM StandardGroupName"); });
    const Error failure = FailureOf([&] { group->LoadSGN(con, 77); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, expected.Source);
    EXPECT_EQ(failure.Description, expected.Description);
}

// ---- saving ---------------------------------------------------------------------------------------

TEST_F(Description, UpdatesWhereTheKeyIsAboveZero) {
    RunRow("Tooth11=5");
    FillAll();
    group->ID = 40;
    EXPECT_EQ(group->SaveSGN(con), Yes());
    EXPECT_THAT(Sent(), ElementsAre("UPDATE StandardGroupName SET Name='O''Group', Comments='it''s', OrderNo=6, "
                                    "TGId=77, ADType =1, ADLaterality ='L', ADAnaRegion ='T-D1213', "
                                    "ADAnaRegionMod ='G-A1', ADPriStructure ='T-54' WHERE StandardNameID=40;"));
    EXPECT_EQ(Ask("SELECT Tooth11 FROM StandardGroupName"), Variant(Long{5}));
}

TEST_F(Description, ANewRowWithAGroupKeepsItAndRunsNoUpdate) {
    FillAll();
    EXPECT_EQ(group->SaveSGN(con), Yes());
    EXPECT_THAT(Sent(), ElementsAre("BeginTrans",
                                    columns + "'O''Group', 'it''s', 6, 77, 1, 'L', 'T-D1213', 'G-A1', 'T-54'" + zeros,
                                    keyOfAll, "CommitTrans"));
    EXPECT_EQ(group->ID, 1);
    EXPECT_EQ(group->ADId, 77);
    EXPECT_EQ(Ask("SELECT Tooth85 FROM StandardGroupName"), Variant(Long{0}));
}

TEST_F(Description, ANewRowWithoutAGroupGetsItsKeyPlusAThousand) {
    Run("INSERT INTO StandardGroupName (StandardNameID) VALUES (39)");
    FillAll();
    group->ADId = 0;
    EXPECT_EQ(group->SaveSGN(con), Yes());
    EXPECT_EQ(group->ID, 40);
    EXPECT_EQ(group->ADId, 1040);
    EXPECT_EQ(Ask("SELECT TGId FROM StandardGroupName WHERE StandardNameID=40"), Variant(Long{1040}));
    EXPECT_THAT(
        Sent(),
        ElementsAre("BeginTrans", columns + "'O''Group', 'it''s', 6, 0, 1, 'L', 'T-D1213', 'G-A1', 'T-54'" + zeros,
                    keyOfAll, "CommitTrans",
                    "UPDATE StandardGroupName SET Name='O''Group', Comments='it''s', OrderNo=6, TGId=1040, "
                    "ADType =1, ADLaterality ='L', ADAnaRegion ='T-D1213', ADAnaRegionMod ='G-A1', "
                    "ADPriStructure ='T-54' WHERE StandardNameID=40;"));
}

TEST_F(Description, ANegativeGroupCountsAsNone) {
    FillAll();
    group->ADId = -4;
    group->SaveSGN(con);
    EXPECT_EQ(group->ADId, 1001);
}

TEST_F(Description, ANegativeKeyCountsAsNew) {
    FillAll();
    group->ID = -40;
    EXPECT_EQ(group->SaveSGN(con), Yes());
    EXPECT_EQ(group->ID, 1);
}

TEST_F(Description, OfTwoRowsOfOneNameTheKeyQueryReturnsTheHigherKey) {
    FillAll();
    group->SaveSGN(con);
    const Ref<cAnatomicDescription> second = New<cAnatomicDescription>();
    second->ADName = "O'Group";
    second->SaveSGN(con);
    EXPECT_EQ(second->ID, 2);
    EXPECT_EQ(second->ADId, 1002);
}

TEST_F(Description, AGeneralGroupWritesItsStructureAndNotTheTeeth) {
    FillAll();
    group->ADPriStructure = "as set";
    group->InitCollection();
    Select("Tooth11");
    group->SaveSGN(con);
    EXPECT_EQ(Ask("SELECT ADPriStructure FROM StandardGroupName"), Variant("as set"));
    EXPECT_EQ(group->ADPriStructure, "as set");
}

TEST_F(Description, AnIntraOralGroupWritesItsSelectedTeeth) {
    FillAll();
    group->ADType = adtIntraOral;
    group->InitCollection();
    Select("Tooth48");
    Select("Tooth11");
    EXPECT_EQ(group->SaveSGN(con), Yes());
    EXPECT_EQ(group->ADPriStructure, "11,48,");
    EXPECT_EQ(Ask("SELECT ADPriStructure FROM StandardGroupName"), Variant("11,48,"));
}

TEST_F(Description, AnIntraOralGroupWithoutTeethWritesTheEmptyText) {
    FillAll();
    group->ADType = adtIntraOral;
    group->SaveSGN(con);
    EXPECT_EQ(Ask("SELECT ADPriStructure FROM StandardGroupName"), Variant(""));
}

TEST_F(Description, AnIntraOralGroupWithAnIncompleteSetReportsFalse) {
    FillAll();
    group->ADType = adtIntraOral;
    group->cTeeth()->Add(true, 11, "Tooth11");
    EXPECT_EQ(group->SaveSGN(con), No());
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(Description, NamesOfAnyScriptAreReadUnchanged) {
    for (const char* name : {"Ωμέγα", "Зубы", "臼歯", "🦷", "x', Comments='y"}) {
        const Ref<cAnatomicDescription> fresh = New<cAnatomicDescription>();
        fresh->ADName = fresh->ADComments = name;
        EXPECT_EQ(fresh->SaveSGN(con), Yes());
        const Ref<cAnatomicDescription> read = New<cAnatomicDescription>();
        read->LoadSGN(con, fresh->ADId);
        EXPECT_EQ(read->ADName, name);
        EXPECT_EQ(read->ADComments, name);
    }
}

class UnescapedText : public Description, public ::testing::WithParamInterface<String cAnatomicDescription::*> {};

TEST_P(UnescapedText, AQuoteFailsTheInsertBeforeItIsSentAndLeavesTheTransactionOpen) {
    for (const char* text : {"'", "O'Neil", "x', Name='y", "'); DELETE FROM StandardGroupName; --"}) {
        FillAll();
        (*group).*GetParam() = text;
        log.statements.clear();
        EXPECT_EQ(group->SaveSGN(con), No()) << text;
        EXPECT_THAT(Sent(), ElementsAre("BeginTrans")) << text;
        EXPECT_EQ(group->ID, 0);
        EXPECT_EQ(FailureOf([&] { con->RollbackTrans(); }).Number, 0);
    }
    EXPECT_EQ(Ask("SELECT count(*) FROM StandardGroupName"), Variant(Long{0}));
}

TEST_P(UnescapedText, AQuoteFailsTheUpdateBeforeItIsSent) {
    RunRow();
    for (const char* text : {"'", "O'Neil", "x', Name='y", "x' WHERE 1=1; --"}) {
        FillAll();
        group->ID = 40;
        (*group).*GetParam() = text;
        EXPECT_EQ(group->SaveSGN(con), No()) << text;
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(Ask("SELECT Name FROM StandardGroupName"), Variant("Molars"));
}

INSTANTIATE_TEST_SUITE_P(Each, UnescapedText,
                         ::testing::Values(&cAnatomicDescription::ADLaterality, &cAnatomicDescription::ADAnaRegion,
                                           &cAnatomicDescription::ADAnaRegionMod,
                                           &cAnatomicDescription::ADPriStructure));

// ---- deleting -------------------------------------------------------------------------------------

TEST_F(Description, DeletesItsRowByKey) {
    RunRow();
    group->ID = 40;
    group->DeleteSGN(con);
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM StandardGroupName WHERE StandardNameID=40;"));
    EXPECT_EQ(Ask("SELECT count(*) FROM StandardGroupName"), Variant(Long{0}));
}

TEST_F(Description, DeletesAllRowsOfItsGroupAndNoSlot) {
    Run("INSERT INTO StandardGroupName (Name, TGId) VALUES ('a', 77), ('b', 77), ('c', 78)");
    Run("INSERT INTO TemplateAttribute_T (TATGId) VALUES (77)");
    group->ADId = 77;
    group->DeleteSGNOnTGId(con);
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM StandardGroupName WHERE TGId=77;"));
    EXPECT_EQ(Ask("SELECT Name FROM StandardGroupName"), Variant("c"));
    EXPECT_EQ(Ask("SELECT count(*) FROM TemplateAttribute_T"), Variant(Long{1}));
}

TEST_F(Description, AFailedDeleteReachesTheCaller) {
    Run("DROP TABLE StandardGroupName");
    EXPECT_EQ(FailureOf([&] { group->DeleteSGN(con); }).Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(FailureOf([&] { group->DeleteSGNOnTGId(con); }).Number, static_cast<Long>(0x80040E37));
}

// ---- teeth ----------------------------------------------------------------------------------------

TEST_F(Description, InitCollectionMakesTheFullSetWithNothingSelected) {
    const Ref<cTeeth> before = group->cTeeth();
    group->InitCollection();
    EXPECT_NE(group->cTeeth(), before);
    EXPECT_EQ(group->cTeeth()->Count(), 52);
    EXPECT_THAT(Selected(*group), IsEmpty());
    EXPECT_EQ(group->cTeeth()->Item(Long{1})->TNumber, 11);
    EXPECT_EQ(group->cTeeth()->Item(Long{33})->TNumber, 51);
    EXPECT_EQ(group->cTeeth()->Item("Tooth85"), group->cTeeth()->Item(Long{52}));
}

TEST_F(Description, TheSelectedTeethAreWrittenWithAndWithoutCommas) {
    group->InitCollection();
    Select("Tooth11");
    Select("Tooth85");
    EXPECT_EQ(group->GetAsString(), "11,85,");
    EXPECT_EQ(group->GetAsString(false), "1185");
}

TEST_F(Description, ALateBoundCallerMayLeaveTheSeparatorOut) {
    group->InitCollection();
    Select("Tooth11");
    EXPECT_EQ(Invoke(*group, "GetAsString", MemberKind::Operation, {}), Variant("11,"));
}

TEST_F(Description, TheOrderIsThatOfTheFullSet) {
    group->InitCollection();
    Select("Tooth48");
    Select("Tooth11");
    EXPECT_EQ(group->GetAsString(), "11,48,");
}

TEST_F(Description, AnEmptyCollectionReturnsTheEmptyText) { EXPECT_EQ(group->GetAsString(), ""); }

TEST_F(Description, ACollectionThatLacksAToothFails) {
    group->InitCollection();
    group->cTeeth()->Remove("Tooth48");
    EXPECT_EQ(FailureOf([&] { group->GetAsString(); }).Number, 91);
}

TEST_F(Description, AnEmptyOrBlankTextLeavesTheFullSetWithNothingSelected) {
    for (const char* text : {"", "     "}) {
        group->InitCollection();
        Select("Tooth11");
        group->SetTeethFromString(text, group->cTeeth());
        EXPECT_EQ(group->cTeeth()->Count(), 52);
        EXPECT_THAT(Selected(*group), IsEmpty());
    }
}

TEST_F(Description, TheLastCommaMayBeMissing) {
    group->SetTeethFromString("11,48", nullptr);
    EXPECT_THAT(Selected(*group), ElementsAre(11, 48));
}

TEST_F(Description, AToothThatIsNotInTheSetFails) {
    for (const char* text : {"19,", "59,"})
        EXPECT_EQ(FailureOf([&] { group->SetTeethFromString(text, nullptr); }).Number, 91);
}

TEST_F(Description, TheTeethBeforeABadOneStaySelected) {
    EXPECT_EQ(FailureOf([&] { group->SetTeethFromString("21,11,xx,12,", nullptr); }).Number, 91);
    EXPECT_THAT(Selected(*group), ElementsAre(11, 21));
}

TEST_F(Description, ACollectionThatWasFetchedBeforeIsUnchanged) {
    group->InitCollection();
    Select("Tooth12");
    const Ref<cTeeth> fetched = group->cTeeth();
    group->SetTeethFromString("11,", fetched);
    EXPECT_NE(group->cTeeth(), fetched);
    EXPECT_FALSE(fetched->Item("Tooth11")->Selected);
    EXPECT_TRUE(fetched->Item("Tooth12")->Selected);
    EXPECT_THAT(Selected(*group), ElementsAre(11));
}

// ---- a failure at every call that reaches the database --------------------------------------------

class DescriptionOnFaultyDatabase : public Description {
protected:
    DescriptionOnFaultyDatabase() {
        FillAll();
        group->ADId = 0;
    }
    ~DescriptionOnFaultyDatabase() override { FailAtCall(0); }

    Variant SaveFailingAt(int call) {
        FailAtCall(call);
        return group->SaveSGN(faulty);
    }

    /// True if the save left a transaction open on the caller's connection, which this ends.
    bool RollsBack() {
        FailAtCall(0);
        return FailureOf([&] { faulty->RollbackTrans(); }).Number == 0;
    }

    Long Rows() { return CLng(Ask("SELECT count(*) FROM StandardGroupName")); }

    Ref<Connection> faulty = FaultyConnectionTo(database);
};

TEST_F(DescriptionOnFaultyDatabase, ANewGroupMakesFiveCallsAndAnUpdateOne) {
    EXPECT_EQ(SaveFailingAt(0), Yes());
    EXPECT_EQ(CallsSoFar(), 5);
    EXPECT_EQ(SaveFailingAt(0), Yes());
    EXPECT_EQ(CallsSoFar(), 1);
    EXPECT_FALSE(RollsBack());
}

TEST_F(DescriptionOnFaultyDatabase, AFailedBeginLeavesNoTransaction) {
    EXPECT_EQ(SaveFailingAt(1), No());
    EXPECT_FALSE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(DescriptionOnFaultyDatabase, AFailedInsertLeavesTheTransactionOpen) {
    EXPECT_EQ(SaveFailingAt(2), No());
    EXPECT_EQ(group->ID, 0);
    EXPECT_TRUE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(DescriptionOnFaultyDatabase, AFailedReadOfTheKeyLeavesTheInsertInTheOpenTransaction) {
    EXPECT_EQ(SaveFailingAt(3), No());
    EXPECT_EQ(group->ID, 0);
    EXPECT_EQ(group->ADId, 0);
    EXPECT_EQ(CLng(faulty->Execute("SELECT count(*) FROM StandardGroupName")->Fields(0).Value()), 1);
    EXPECT_TRUE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(DescriptionOnFaultyDatabase, AFailedCommitLeavesTheNumbersInTheObject) {
    EXPECT_EQ(SaveFailingAt(4), No());
    EXPECT_EQ(group->ID, 1);
    EXPECT_EQ(group->ADId, 1001);
    EXPECT_TRUE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(DescriptionOnFaultyDatabase, AFailedUpdateOfTheGroupIsNotNoticed) {
    EXPECT_EQ(SaveFailingAt(5), Yes());
    EXPECT_EQ(group->ADId, 1001);
    EXPECT_FALSE(RollsBack());
    EXPECT_EQ(Ask("SELECT TGId FROM StandardGroupName"), Variant(Long{0}));
}

TEST_F(DescriptionOnFaultyDatabase, AFailedCommitOfARowWithAGroupLeavesTheTransactionOpen) {
    group->ADId = 77;
    EXPECT_EQ(SaveFailingAt(4), No());
    EXPECT_EQ(group->ADId, 77);
    EXPECT_TRUE(RollsBack());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(DescriptionOnFaultyDatabase, AFailedUpdateReportsFalse) {
    RunRow();
    group->ID = 40;
    EXPECT_EQ(SaveFailingAt(1), No());
    EXPECT_FALSE(RollsBack());
    EXPECT_EQ(Ask("SELECT Name FROM StandardGroupName"), Variant("Molars"));
}

}  // namespace
}  // namespace OXClass

#include "cards/cTemplateAttribute.h"

#include "cards/cTemplate.h"
#include "kit/FaultyProvider.h"

#include <bit>

/// One slot of a template: how it is read from its row, and how it is saved.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

class Slot : public WithDatabase {
protected:
    /// Writes one row of template 7, every column filled, then changes columns by `changes`
    /// ("TARotation=NULL"), and loads it through its template.
    Ref<cTemplateAttribute> Loaded(const String& changes = {}) {
        Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TemplateID, TAGroupName, TASequence, "
            "TARotation,"
            " TAFullViewWidth, TAFullViewHeight, TAFullViewPosX, TAFullViewPosY, TAPreviewWidth, "
            "TAPreviewHeight,"
            " TAPreviewPosX, TAPreviewPosY, TANumberInTemplate, TAProportions, TAComments, TATGId, "
            "TAImagePath)"
            " VALUES (21, 7, 'Incisors', 3, 90, 10.5, 20.5, 30.5, 40.5, 11, 12, 13, 14, 5, '0.85', 'upper', "
            "1001,"
            " 'a.jpg')");
        if (!changes.empty()) Run("UPDATE TemplateAttribute_T SET " + changes);
        owner->TCID = 7;
        owner->LoadTemplateAttributes(con);
        return To<Ref<cTemplateAttribute>>(owner->TemplateAttributes->Item("K21"));
    }

    /// The number of the failure of a load.
    Long LoadFailure(const String& changes) {
        return FailureOf([&] { Loaded(changes); }).Number;
    }

    void FillAll() {
        slot->TCID = 7;
        slot->TAWidth = 10.5;
        slot->TAHeight = 20.25;
        slot->TAPosX = -0.125;
        slot->TAPosY = 1e16;
        slot->TARotation = -90;
        slot->TASequence = 3;
        slot->TAComments = "it's";
        slot->TAADName = "O'Group";
        slot->TANumberInTemplate = 5;
        slot->TAProportions = 0.85F;
        slot->AIID = 4;
        slot->TAImagepath = "C:\\it's.jpg";
        slot->TAAnatomicRegion = "held only";
    }

    Ref<cTemplate> owner = New<cTemplate>();
    Ref<cTemplateAttribute> slot = New<cTemplateAttribute>();
};

const char* const insertOfSlot =
    "INSERT INTO TemplateAttribute_T (TemplateId, TAFullViewWidth, TAFullViewHeight, TAFullViewPosX, "
    "TAFullViewPosY, TARotation, TASequence, TAComments, TAGroupname, TANumberInTemplate, TAProportions, "
    "TATGid, "
    "TAImagePath) VALUES (7, 10.5, 20.25, -0.125, 1E+16, -90, 3, 'it''s', 'O''Group', 5, 0.85, 4, "
    "'C:\\it''s.jpg');";
const char* const keyOfSlot =
    "SELECT Max(TemplateImageID) AS Max_ID FROM TemplateAttribute_T WHERE TemplateId = 7 AND TASequence = 3;";
const char* const updateOfSlot =
    "UPDATE TemplateAttribute_T SET TemplateID = 7, TAFullviewWidth = 10.5, TAFullViewHeight = 20.25, "
    "TAFullViewPosX = -0.125, TAFullViewPosY = 1E+16, TARotation = -90, TASequence = 3, "
    "TAGroupName = 'O''Group', TAComments = 'it''s', TAProportions = 0.85, TANumberInTemplate = 5, TATGId "
    "=4, "
    "TAImagePath ='C:\\it''s.jpg' WHERE TemplateImageId = 4;";

TEST_F(Slot, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(*slot),
        ElementsAre("put TANumberInTemplate(int32)", "get TANumberInTemplate -> int32", "put TAHeight(double)",
                    "get TAHeight -> double", "put TAWidth(double)", "get TAWidth -> double", "put TAPosY(double)",
                    "get TAPosY -> double", "put TAPosX(double)", "get TAPosX -> double", "put TARotation(int32)",
                    "get TARotation -> int32", "put TASequence(int32)", "get TASequence -> int32", "put AIID(int32)",
                    "get AIID -> int32", "put TCID(int32)", "get TCID -> int32", "put ID(int32)", "get ID -> int32",
                    "Save(Con: Connection&) -> boolean", "put TAADName(string)", "get TAADName -> string",
                    "put TAAnatomicRegion(string)", "get TAAnatomicRegion -> string", "put TAImagepath(string)",
                    "get TAImagepath -> string", "put TAComments(string)", "get TAComments -> string",
                    "put TAProportions(float)", "get TAProportions -> float"));
}

TEST_F(Slot, StartsEmptyAndWithoutProportions) {
    EXPECT_EQ(slot->ID, 0);
    EXPECT_EQ(slot->AIID, 0);
    EXPECT_EQ(slot->TAWidth, 0);
    EXPECT_EQ(slot->TAProportions, 0.0F);
    EXPECT_EQ(slot->TAADName + slot->TAComments + slot->TAImagepath, "");
}

// ---- from a row -----------------------------------------------------------------------------------

TEST_F(Slot, ReadsEveryColumnButThePathOfTheImage) {
    const Ref<cTemplateAttribute> read = Loaded();
    EXPECT_EQ(read->ID, 21);
    EXPECT_EQ(read->TCID, 7);
    EXPECT_EQ(read->TAADName, "Incisors");
    EXPECT_EQ(read->TASequence, 3);
    EXPECT_EQ(read->TARotation, 90);
    EXPECT_EQ(read->TAWidth, 10.5);
    EXPECT_EQ(read->TAHeight, 20.5);
    EXPECT_EQ(read->TAPosX, 30.5);
    EXPECT_EQ(read->TAPosY, 40.5);
    EXPECT_EQ(read->TANumberInTemplate, 5);
    EXPECT_EQ(read->TAProportions, 0.85F);
    EXPECT_EQ(read->TAComments, "upper");
    EXPECT_EQ(read->AIID, 1001);
    EXPECT_EQ(read->TAImagepath, "");
    EXPECT_EQ(read->TAAnatomicRegion, "");
}

TEST_F(Slot, NullProportionsReadAsSeventyPercent) {
    EXPECT_EQ(std::bit_cast<std::uint32_t>(Loaded("TAProportions=NULL")->TAProportions), 0x3F333333U);
}

TEST_F(Slot, ProportionsWithADecimalCommaAreRead) { EXPECT_EQ(Loaded("TAProportions='0,85'")->TAProportions, 0.85F); }

TEST_F(Slot, ZeroProportionsReadAsSeventyPercent) { EXPECT_EQ(Loaded("TAProportions=0")->TAProportions, 0.7F); }

TEST_F(Slot, EmptyProportionsReadAsSeventyPercent) { EXPECT_EQ(Loaded("TAProportions=''")->TAProportions, 0.7F); }

TEST_F(Slot, ANullNumberTakesTheSequence) { EXPECT_EQ(Loaded("TANumberInTemplate=NULL")->TANumberInTemplate, 3); }

TEST_F(Slot, ANegativeNumberReadsAsZeroAndSoTakesTheSequence) {
    EXPECT_EQ(Loaded("TANumberInTemplate=-2, TASequence=-4")->TANumberInTemplate, -4);
}

TEST_F(Slot, ANullOrNegativeGroupReadsAsZero) {
    EXPECT_EQ(Loaded("TATGId=-9")->AIID, 0);
    Run("DELETE FROM TemplateAttribute_T");
    EXPECT_EQ(Loaded("TATGId=NULL")->AIID, 0);
}

TEST_F(Slot, AFullViewPositionOfZeroTakesThePreviewsValue) {
    EXPECT_EQ(Loaded("TAFullViewPosX=0, TAPreviewPosX=15")->TAPosX, 15);
}

TEST_F(Slot, EveryMeasureFallsBackOnThePreview) {
    const Ref<cTemplateAttribute> read =
        Loaded("TAFullViewWidth=NULL, TAFullViewHeight=NULL, TAFullViewPosX=NULL, TAFullViewPosY=NULL");
    EXPECT_EQ(read->TAWidth, 11);
    EXPECT_EQ(read->TAHeight, 12);
    EXPECT_EQ(read->TAPosX, 13);
    EXPECT_EQ(read->TAPosY, 14);
}

TEST_F(Slot, AMeasureThatIsNullInBothViewsReadsAsZero) {
    EXPECT_EQ(Loaded("TAFullViewWidth=NULL, TAPreviewWidth=NULL")->TAWidth, 0);
}

TEST_F(Slot, ANegativeMeasureIsUnchanged) { EXPECT_EQ(Loaded("TAFullViewPosY=-2.5")->TAPosY, -2.5); }

TEST_F(Slot, NullCommentsReadAsEmpty) { EXPECT_EQ(Loaded("TAComments=NULL")->TAComments, ""); }

TEST_F(Slot, ANullGroupNameFailsTheLoadOfTheWholeTemplate) {
    EXPECT_EQ(LoadFailure("TAGroupName=NULL"), 94);
    Run("INSERT INTO TemplateCard_T (TemplateID, TCName) VALUES (7, 'T')");
    const Ref<cTemplate> whole = New<cTemplate>();
    EXPECT_EQ(FailureOf([&] { whole->GetTemplate(con, 7); }).Number, 94);
    EXPECT_EQ(whole->TemplateAttributes->Count(), 0);
}

TEST_F(Slot, ANullRotationFailsTheLoad) { EXPECT_EQ(LoadFailure("TARotation=NULL"), 94); }

TEST_F(Slot, ANullSequenceFailsTheLoad) { EXPECT_EQ(LoadFailure("TASequence=NULL"), 94); }

TEST_F(Slot, ReadsTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    const Ref<cTemplateAttribute> read = Loaded();
    EXPECT_EQ(read->TAWidth, 10.5);
    EXPECT_EQ(read->TAProportions, 0.85F);
    EXPECT_EQ(read->TANumberInTemplate, 5);
}

// ---- saving ---------------------------------------------------------------------------------------

TEST_F(Slot, InsertsWithIdZeroAndReadsItsKey) {
    FillAll();
    EXPECT_TRUE(slot->Save(con));
    EXPECT_THAT(Sent(), ElementsAre(insertOfSlot, keyOfSlot));
    EXPECT_EQ(slot->ID, 1);
    EXPECT_EQ(Ask("SELECT TAImagePath FROM TemplateAttribute_T"), Variant("C:\\it's.jpg"));
}

TEST_F(Slot, AHandlerMayReleaseItWhileItIsSaved) {
    struct Releasing final : ADODB::ConnectionEvents {
        void WillExecute(ADODB::ExecuteRequest&) override { *held = nullptr; }
        Ref<cTemplateAttribute>* held = nullptr;
    } releasing;
    Ref<cTemplateAttribute> slot = New<cTemplateAttribute>();
    slot->TCID = 7;
    cTemplateAttribute& saved = *slot;
    releasing.held = &slot;
    con->Advise(releasing);
    EXPECT_EQ(FailureOf([&] { EXPECT_TRUE(saved.Save(con)); }).Number, 0);
    con->Unadvise(releasing);
    EXPECT_FALSE(slot);
    EXPECT_EQ(Ask("SELECT count(*) FROM TemplateAttribute_T WHERE TemplateId=7"), Variant(Long{1}));
}

TEST_F(Slot, UpdatesWithAnyOtherId) {
    FillAll();
    for (const Long id : {9, -1}) {
        slot->ID = id;
        log.statements.clear();
        EXPECT_TRUE(slot->Save(con));
        EXPECT_THAT(Sent(), ElementsAre(updateOfSlot));
        EXPECT_EQ(slot->ID, id);
    }
}

TEST_F(Slot, TheKeyIsTheHighestOfItsTemplateAndSequence) {
    Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TemplateID, TASequence)"
        " VALUES (40, 7, 3), (50, 7, 4), (60, 8, 3)");
    FillAll();
    slot->Save(con);
    EXPECT_EQ(slot->ID, 61);
    EXPECT_EQ(Ask("SELECT TAGroupName FROM TemplateAttribute_T WHERE TemplateImageId=61"), Variant("O'Group"));
}

TEST_F(Slot, TheUpdateFindsItsRowByTheGroupAndNotByTheKey) {
    Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TemplateID, TAComments)"
        " VALUES (4, 1, 'four'), (9, 1, 'nine')");
    FillAll();
    slot->ID = 9;
    EXPECT_TRUE(slot->Save(con));
    EXPECT_EQ(Ask("SELECT TAComments FROM TemplateAttribute_T WHERE TemplateImageId=4"), Variant("it's"));
    EXPECT_EQ(Ask("SELECT TAComments FROM TemplateAttribute_T WHERE TemplateImageId=9"), Variant("nine"));
}

TEST_F(Slot, AnUpdateWithoutAGroupChangesNoRowAndReturnsTrue) {
    Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TAComments) VALUES (9, 'nine')");
    slot->ID = 9;
    EXPECT_TRUE(slot->Save(con));
    EXPECT_EQ(Ask("SELECT TAComments FROM TemplateAttribute_T"), Variant("nine"));
}

TEST_F(Slot, FloatsKeepTheirPointOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    FillAll();
    slot->Save(con);
    EXPECT_THAT(Sent(), ElementsAre(insertOfSlot, keyOfSlot));
    log.statements.clear();
    slot->Save(con);
    EXPECT_THAT(Sent(), ElementsAre(updateOfSlot));
}

TEST_F(Slot, DoublesHaveFifteenDigitsAndFloatsSeven) {
    slot->TAWidth = 1.0 / 3.0;
    slot->TAProportions = 1.0F / 3.0F;
    slot->Save(con);
    EXPECT_THAT(Sent().at(0), ::testing::HasSubstr("VALUES (0, 0.333333333333333, 0, "));
    EXPECT_THAT(Sent().at(0), ::testing::HasSubstr(", 0.3333333, 0, '');"));
}

TEST_F(Slot, TextsOfAnyScriptAndInjectionsAreStoredAsTheyAre) {
    for (const char* text : {"Ωμέγα", "зуб", "切歯", "🦷", "x', TAComments='y", "'; DROP TABLE TemplateCard_T; --"}) {
        const Ref<cTemplateAttribute> fresh = New<cTemplateAttribute>();
        fresh->TAADName = fresh->TAComments = fresh->TAImagepath = text;
        fresh->Save(con);
        for (const char* column : {"TAGroupName", "TAComments", "TAImagePath"})
            EXPECT_EQ(
                Ask("SELECT " + String(column) + " FROM TemplateAttribute_T WHERE TemplateImageId=" + CStr(fresh->ID)),
                Variant(text));
    }
}

TEST_F(Slot, AFailureKeepsItsNumberSourceAndText) {
    Run("DROP TABLE TemplateAttribute_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM TemplateAttribute_T"); });
    const Error failure = FailureOf([&] { slot->Save(con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, expected.Source);
    EXPECT_EQ(failure.Description, expected.Description);
}

class SlotOnFaultyDatabase : public Slot {
protected:
    SlotOnFaultyDatabase() { FillAll(); }
    ~SlotOnFaultyDatabase() override { FailAtCall(0); }

    String FailureAt(int call) {
        FailAtCall(call);
        return FailureOf([&] { slot->Save(faulty); }).Description;
    }

    Ref<Connection> faulty = FaultyConnectionTo(database);
};

TEST_F(SlotOnFaultyDatabase, AnInsertMakesTwoCallsAndAnUpdateOne) {
    EXPECT_EQ(FailureAt(0), "");
    EXPECT_EQ(CallsSoFar(), 2);
    EXPECT_EQ(FailureAt(0), "");
    EXPECT_EQ(CallsSoFar(), 1);
}

TEST_F(SlotOnFaultyDatabase, AFailedInsertWritesNothing) {
    EXPECT_EQ(FailureAt(1), "injected");
    EXPECT_EQ(slot->ID, 0);
    EXPECT_EQ(Ask("SELECT count(*) FROM TemplateAttribute_T"), Variant(Long{0}));
}

TEST_F(SlotOnFaultyDatabase, AFailedReadOfTheKeyLeavesTheRowWrittenAndTheSlotNew) {
    EXPECT_EQ(FailureAt(2), "injected");
    EXPECT_EQ(slot->ID, 0);
    EXPECT_EQ(Ask("SELECT count(*) FROM TemplateAttribute_T"), Variant(Long{1}));
}

TEST_F(SlotOnFaultyDatabase, AFailedUpdateChangesNothing) {
    Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TAComments) VALUES (4, 'four')");
    slot->ID = 4;
    EXPECT_EQ(FailureAt(1), "injected");
    EXPECT_EQ(slot->ID, 4);
    EXPECT_EQ(Ask("SELECT TAComments FROM TemplateAttribute_T"), Variant("four"));
}

}  // namespace
}  // namespace OXClass

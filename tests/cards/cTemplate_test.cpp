#include "cards/cTemplate.h"

#include "kit/FaultyProvider.h"
#include "platform/component/dispatch/Interface.h"

/// A template card with its slots.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Template : public WithDatabase {
protected:
    /// Writes a row of which every column is filled, under this key and number, then changes columns.
    void RunRow(Long key = 7, Long number = 5, const String& changes = {}) {
        Run("INSERT INTO TemplateCard_T (TemplateID, TCName, TCDate, TCComments, TCFullViewWidth,"
            " TCFullViewHeight, TCPreviewWidth, TCPreviewHeight, TCMaximized, TCChecksum, TCDicomId,"
            " TCForcedImageType) VALUES (" +
            CStr(key) + ", 'Full mouth', '2024-03-04 05:06:07', 'all', 100.5, 200.5, 1, 2, 1, 99, " + CStr(number) +
            ", 4)");
        if (!changes.empty()) Run("UPDATE TemplateCard_T SET " + changes + " WHERE TemplateID=" + CStr(key));
    }

    Ref<cTemplate> Loaded(const String& changes) {
        RunRow(7, 5, changes);
        Ref<cTemplate> loaded = New<cTemplate>();
        loaded->GetTemplate(con, 7);
        return loaded;
    }

    Ref<cTemplateAttribute> AddSlot(Long sequence, const String& key = {}) {
        Ref<cTemplateAttribute> slot = New<cTemplateAttribute>();
        slot->TASequence = sequence;
        slot->ID = 500 + sequence;
        slot->TCID = 600;
        card->TemplateAttributes->Add(slot, key.empty() ? Variant() : Variant(key));
        return slot;
    }

    Ref<cTemplateAttribute> SlotAt(Long position) {
        return To<Ref<cTemplateAttribute>>(card->TemplateAttributes->Item(position));
    }

    void FillAll() {
        card->TCName = "O'Mouth";
        card->TCComments = "it's";
        card->TCWidth = 12.5;
        card->TCHeight = 0.001;
        card->TCHidden = true;
        card->TCChecksum = -3;
        card->TCDicomID = 42;
        card->TCForcedImageType = imggTypeDXPanoramic;
        card->TCDate = DateFrom({2024, 3, 4, 15, 6, 7});
    }

    Ref<cTemplate> card = New<cTemplate>();
};

const char* const insertOfTemplate =
    "INSERT INTO TemplateCard_T (TCName, TCDate, TCComments, TCFullViewWidth, TCFullViewHeight, TCMaximized, "
    "TCCheckSum,TCDicomId, TCForcedImageType) VALUES ('O''Mouth', '2024-03-04 15:06:07', 'it''s', 12.5, "
    "0.001, 1, "
    "-3, 42, 4);";
const char* const keyOfTemplate = "SELECT MAX(TemplateID) AS Max_DicomID FROM TemplateCard_T WHERE TCName='O''Mouth';";
const char* const slotsOfSeven =
    "SELECT TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation, TAFullViewWidth, "
    "TAFullViewHeight, "
    "TAFullViewPosX, TAFullViewPosY,TAPreviewWidth, TAPreviewHeight, TAPreviewPosX, TAPreviewPosY, "
    "TANumberInTemplate , TAProportions, TAComments, TATGId FROM TemplateAttribute_T WHERE TemplateID = 7 "
    "ORDER BY "
    "TANumberInTemplate";

TEST_F(Template, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(*card),
                ElementsAre("putref TemplateAttributes(Collection&)", "get TemplateAttributes -> Collection",
                            "put TCForcedImageType(xigImageTypes)", "get TCForcedImageType -> xigImageTypes",
                            "put TCDicomID(int32)", "get TCDicomID -> int32", "put TCComments(string)",
                            "get TCComments -> string", "put TCHeight(double)", "get TCHeight -> double",
                            "put TCWidth(double)", "get TCWidth -> double", "put TCDate(date)", "get TCDate -> date",
                            "put TCName(string)", "get TCName -> string", "put TCID(int32)", "get TCID -> int32",
                            "GetTemplate(Con: Connection&, [TID: int32], [DicomID: int32&])",
                            "LoadTemplateAttributes(Con: Connection&) -> int32", "put TCHidden(boolean)",
                            "get TCHidden -> boolean", "put TCChecksum(int32)", "get TCChecksum -> int32",
                            "Save(Con: Connection&) -> boolean"));
}

TEST_F(Template, StartsEmptyWithAnImageTypeOfZero) {
    EXPECT_EQ(card->TCForcedImageType, imggTypeSC);
    EXPECT_EQ(card->TCID, 0);
    EXPECT_EQ(card->TCDicomID, 0);
    EXPECT_EQ(card->TCDate, Date{});
    EXPECT_FALSE(card->TCHidden);
    ASSERT_TRUE(card->TemplateAttributes);
    EXPECT_EQ(card->TemplateAttributes->Count(), 0);
}

// ---- loading --------------------------------------------------------------------------------------

TEST_F(Template, TheDicomNumberHasPrecedenceOverTheKey) {
    RunRow(7, 1);
    RunRow(8, 5);
    card->GetTemplate(con, 7, 5);
    EXPECT_EQ(card->TCID, 8);
    EXPECT_EQ(Sent().at(0), "SELECT * FROM TemplateCard_T WHERE TCDicomId = 5");
}

TEST_F(Template, LoadsByKeyAndThenTheSlots) {
    RunRow();
    card->GetTemplate(con, 7);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM TemplateCard_T WHERE TemplateID = 7", slotsOfSeven));
}

TEST_F(Template, WithBothNumbersZeroFindsNothing) {
    RunRow();
    card->GetTemplate(con);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM TemplateCard_T WHERE TemplateID = 0"));
    EXPECT_EQ(card->TCID, 0);
}

TEST_F(Template, ALateBoundCallerMayLeaveBothNumbersOut) {
    std::vector<Variant> arguments{Variant(con)};
    Invoke(*card, "GetTemplate", MemberKind::Operation, arguments);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM TemplateCard_T WHERE TemplateID = 0"));
}

TEST_F(Template, AMissingRowSetsTheKeyToZeroAndLeavesTheRest) {
    FillAll();
    card->TCID = 7;
    AddSlot(1);
    card->GetTemplate(con, 1234);
    EXPECT_EQ(card->TCID, 0);
    EXPECT_EQ(card->TCName, "O'Mouth");
    EXPECT_EQ(card->TCWidth, 12.5);
    EXPECT_EQ(card->TemplateAttributes->Count(), 1);
    EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(Template, LoadsEveryColumn) {
    const Ref<cTemplate> loaded = Loaded("");
    EXPECT_EQ(loaded->TCID, 7);
    EXPECT_EQ(loaded->TCName, "Full mouth");
    EXPECT_EQ(loaded->TCDate, DateFrom({2024, 3, 4, 5, 6, 7}));
    EXPECT_EQ(loaded->TCComments, "all");
    EXPECT_EQ(loaded->TCWidth, 100.5);
    EXPECT_EQ(loaded->TCHeight, 200.5);
    EXPECT_TRUE(loaded->TCHidden);
    EXPECT_EQ(loaded->TCChecksum, 99);
    EXPECT_EQ(loaded->TCDicomID, 5);
    EXPECT_EQ(loaded->TCForcedImageType, imggTypeDXPanoramic);
}

TEST_F(Template, ANullWidthTakesThePreviewsWidth) {
    EXPECT_EQ(Loaded("TCFullViewWidth=NULL, TCPreviewWidth=12.5")->TCWidth, 12.5);
}

TEST_F(Template, AWidthThatIsNullInBothViewsReadsAsZero) {
    EXPECT_EQ(Loaded("TCFullViewWidth=NULL, TCPreviewWidth=NULL")->TCWidth, 0);
}

TEST_F(Template, AHeightOfZeroTakesThePreviewsHeight) {
    EXPECT_EQ(Loaded("TCFullViewHeight=0, TCPreviewHeight=3.25")->TCHeight, 3.25);
}

TEST_F(Template, ANegativeWidthFailsTheLoad) {
    EXPECT_EQ(FailureOf([&] { Loaded("TCFullViewWidth=-1"); }).Number, 13);
}

TEST_F(Template, TheCanvasReadsTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    const Ref<cTemplate> loaded = Loaded("TCFullViewWidth=12.5, TCFullViewHeight=NULL, TCPreviewHeight=7.25");
    EXPECT_EQ(loaded->TCWidth, 12.5);
    EXPECT_EQ(loaded->TCHeight, 7.25);
}

TEST_F(Template, ANullDateLeavesTheDateThatTheObjectHeld) {
    RunRow(7, 5, "TCDate=NULL");
    card->TCDate = Date{45000};
    card->GetTemplate(con, 7);
    EXPECT_EQ(card->TCDate, Date{45000});
}

TEST_F(Template, OtherNullsReadAsEmptyZeroAndNoForcedType) {
    const Ref<cTemplate> loaded =
        Loaded("TCComments=NULL, TCMaximized=NULL, TCChecksum=NULL, TCDicomId=NULL, TCForcedImageType=NULL");
    EXPECT_EQ(loaded->TCComments, "");
    EXPECT_FALSE(loaded->TCHidden);
    EXPECT_EQ(loaded->TCChecksum, 0);
    EXPECT_EQ(loaded->TCDicomID, 0);
    EXPECT_EQ(static_cast<Long>(loaded->TCForcedImageType), -1);
}

TEST_F(Template, ANullForcedTypeIsSavedAsMinusOne) {
    const Ref<cTemplate> loaded = Loaded("TCForcedImageType=NULL");
    loaded->Save(con);
    EXPECT_EQ(Ask("SELECT TCForcedImageType FROM TemplateCard_T"), Variant(Long{-1}));
}

TEST_F(Template, AnyOtherFlagThanZeroIsHidden) { EXPECT_TRUE(Loaded("TCMaximized=-7")->TCHidden); }

TEST_F(Template, AFractionInTheFlagIsHidden) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    EXPECT_TRUE(Loaded("TCMaximized=0.4")->TCHidden);
}

TEST_F(Template, AFlagBeyondWholeNumbersIsHidden) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    EXPECT_TRUE(Loaded("TCMaximized=3000000000")->TCHidden);
}

TEST_F(Template, ANullNameFailsTheLoadAndLeavesTheMembersReadBeforeIt) {
    RunRow(7, 5, "TCName=NULL");
    EXPECT_EQ(FailureOf([&] { card->GetTemplate(con, 7); }).Number, 94);
    EXPECT_EQ(card->TCComments, "all");
    EXPECT_EQ(card->TCWidth, 100.5);
    EXPECT_TRUE(card->TCHidden);
    EXPECT_EQ(card->TCID, 0);
    EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(Template, AFailedOpenReachesTheCallerAsItCame) {
    Run("DROP TABLE TemplateCard_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM TemplateCard_T"); });
    const Error failure = FailureOf([&] { card->GetTemplate(con, 7); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, expected.Source);
}

TEST_F(Template, ATemplateWithoutSlotsLoadsWithAnEmptyCollection) {
    RunRow();
    AddSlot(1);
    card->GetTemplate(con, 7);
    EXPECT_EQ(card->TemplateAttributes->Count(), 0);
    EXPECT_EQ(card->LoadTemplateAttributes(con), 0);
}

TEST_F(Template, SlotsComeInTheOrderOfTheirNumbersUnderTheirKeys) {
    Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation,"
        " TANumberInTemplate) VALUES (1, 7, 'b', 1, 0, 2), (2, 7, 'a', 2, 0, 1), (3, 8, 'other', 1, 0, 1)");
    card->TCID = 7;
    EXPECT_EQ(card->LoadTemplateAttributes(con), 2);
    EXPECT_EQ(SlotAt(1)->TAADName, "a");
    EXPECT_EQ(SlotAt(2)->TAADName, "b");
    EXPECT_EQ(card->TemplateAttributes->Item("k1"), Variant(SlotAt(2)));
    EXPECT_THAT(Sent(), ElementsAre(slotsOfSeven));
}

TEST_F(Template, AFailedOpenOfTheSlotsLeavesTheOldOnes) {
    AddSlot(1);
    Run("DROP TABLE TemplateAttribute_T");
    EXPECT_EQ(FailureOf([&] { card->LoadTemplateAttributes(con); }).Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(card->TemplateAttributes->Count(), 1);
}

TEST_F(Template, AFailedReadOfASlotLeavesThoseReadBeforeIt) {
    Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation,"
        " TANumberInTemplate) VALUES (1, 7, 'first', 1, 0, 1), (2, 7, NULL, 2, 0, 2), (3, 7, 'third', 3, 0, "
        "3)");
    AddSlot(1);
    AddSlot(2);
    card->TCID = 7;
    EXPECT_EQ(FailureOf([&] { card->LoadTemplateAttributes(con); }).Number, 94);
    EXPECT_EQ(card->TemplateAttributes->Count(), 1);
    EXPECT_EQ(SlotAt(1)->TAADName, "first");
}

// ---- saving ---------------------------------------------------------------------------------------

TEST_F(Template, InsertsWhereTheKeyIsNotAboveZero) {
    for (const Long key : {0, -5}) {
        FillAll();
        card->TCID = key;
        log.statements.clear();
        EXPECT_TRUE(card->Save(con));
        EXPECT_THAT(Sent(), ElementsAre(insertOfTemplate, keyOfTemplate));
        EXPECT_GT(card->TCID, 0);
    }
    EXPECT_EQ(Ask("SELECT count(*) FROM TemplateCard_T"), Variant(Long{2}));
}

TEST_F(Template, UpdatesWhereTheKeyIsAboveZero) {
    RunRow();
    FillAll();
    card->TCID = 7;
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(Sent(),
                ElementsAre("UPDATE TemplateCard_T SET TCName = 'O''Mouth', TCComments = 'it''s', TCFullViewWidth = "
                            "12.5, TCFullViewHeight = 0.001, TCMaximized = 1, TCChecksum = -3, TCDicomID = 42, "
                            "TCForcedImageType = 4 WHERE TemplateId = 7;"));
    EXPECT_EQ(Ask("SELECT TCDate FROM TemplateCard_T"), Variant(DateFrom({2024, 3, 4, 5, 6, 7})));
    EXPECT_EQ(Ask("SELECT TCPreviewWidth FROM TemplateCard_T"), Variant(1.0));
}

TEST_F(Template, ANewObjectIsInsertedWithItsDefaults) {
    card->TCDicomID = 1;
    card->Save(con);
    EXPECT_EQ(Sent().at(0),
              "INSERT INTO TemplateCard_T (TCName, TCDate, TCComments, TCFullViewWidth, TCFullViewHeight, "
              "TCMaximized, TCCheckSum,TCDicomId, TCForcedImageType) VALUES ('', '1899-12-30 00:00:00', '', "
              "0, 0, 0, "
              "0, 1, 0);");
}

TEST_F(Template, ANewTemplateWithoutANumberDrawsOne) {
    for (const Long none : {0, -8}) {
        const Ref<cTemplate> fresh = New<cTemplate>();
        fresh->TCDicomID = none;
        fresh->Save(con);
        EXPECT_GE(fresh->TCDicomID, 1000);
        EXPECT_LE(fresh->TCDicomID, 100000999);
        EXPECT_EQ(Ask("SELECT TCDicomId FROM TemplateCard_T WHERE TemplateID=" + CStr(fresh->TCID)),
                  Variant(fresh->TCDicomID));
    }
}

TEST_F(Template, DrawnNumbersDiffer) {
    const Ref<cTemplate> first = New<cTemplate>(), second = New<cTemplate>();
    first->Save(con);
    second->Save(con);
    EXPECT_NE(first->TCDicomID, second->TCDicomID);
}

TEST_F(Template, ANewTemplateWithANumberKeepsIt) {
    card->TCDicomID = 42;
    card->Save(con);
    EXPECT_EQ(card->TCDicomID, 42);
    EXPECT_EQ(Ask("SELECT TCDicomId FROM TemplateCard_T"), Variant(Long{42}));
}

TEST_F(Template, AChangedTemplateWritesNumberZeroAndDrawsNone) {
    RunRow();
    card->GetTemplate(con, 7);
    card->TCDicomID = 0;
    card->Save(con);
    EXPECT_EQ(card->TCDicomID, 0);
    EXPECT_EQ(Ask("SELECT TCDicomId FROM TemplateCard_T"), Variant(Long{0}));
}

TEST_F(Template, OfTwoTemplatesOfOneNameTheNewRowHasTheKey) {
    FillAll();
    card->Save(con);
    const Ref<cTemplate> second = New<cTemplate>();
    second->TCName = "O'Mouth";
    second->TCDicomID = 43;
    second->Save(con);
    EXPECT_GT(second->TCID, card->TCID);
    EXPECT_EQ(Ask("SELECT TCDicomId FROM TemplateCard_T WHERE TemplateID=" + CStr(second->TCID)), Variant(Long{43}));
}

TEST_F(Template, ANameWithAnApostropheIsDoubledInTheInsertAndInTheKeyQuery) {
    card->TCName = "'";
    card->TCDicomID = 1;
    card->Save(con);
    EXPECT_THAT(Sent().at(0), HasSubstr("VALUES ('''', "));
    EXPECT_EQ(Sent().at(1), "SELECT MAX(TemplateID) AS Max_DicomID FROM TemplateCard_T WHERE TCName='''';");
    EXPECT_EQ(Ask("SELECT TCName FROM TemplateCard_T"), Variant("'"));
}

TEST_F(Template, StatementsAreTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    FillAll();
    card->Save(con);
    EXPECT_THAT(Sent(), ElementsAre(insertOfTemplate, keyOfTemplate));
    log.statements.clear();
    card->Save(con);
    EXPECT_THAT(Sent(), ElementsAre(HasSubstr("TCFullViewWidth = 12.5, TCFullViewHeight = 0.001, ")));
    EXPECT_EQ(Ask("SELECT TCFullViewWidth FROM TemplateCard_T"), Variant(12.5));
}

TEST_F(Template, AnInsertMakesAllSlotsNewAndInsertsThemInOrder) {
    FillAll();
    AddSlot(2);
    AddSlot(1);
    card->Save(con);
    const String slot =
        "INSERT INTO TemplateAttribute_T (TemplateId, TAFullViewWidth, TAFullViewHeight, TAFullViewPosX, "
        "TAFullViewPosY, TARotation, TASequence, TAComments, TAGroupname, TANumberInTemplate, TAProportions, "
        "TATGid, "
        "TAImagePath) VALUES (1, 0, 0, 0, 0, 0, ";
    const String key =
        "SELECT Max(TemplateImageID) AS Max_ID FROM TemplateAttribute_T WHERE TemplateId = 1 AND TASequence "
        "= ";
    EXPECT_THAT(Sent(), ElementsAre(insertOfTemplate, keyOfTemplate, slot + "2, '', '', 0, 0, 0, '');", key + "2;",
                                    slot + "1, '', '', 0, 0, 0, '');", key + "1;"));
    EXPECT_EQ(SlotAt(1)->ID, 1);
    EXPECT_EQ(SlotAt(2)->ID, 2);
    EXPECT_EQ(SlotAt(1)->TCID, card->TCID);
}

TEST_F(Template, AnUpdateLeavesTheSlotsNumbersToTheSlots) {
    RunRow();
    FillAll();
    card->TCID = 7;
    AddSlot(1);
    card->Save(con);
    EXPECT_EQ(SlotAt(1)->TCID, 600);
    EXPECT_EQ(SlotAt(1)->ID, 501);
    EXPECT_THAT(Sent().at(1), HasSubstr("UPDATE TemplateAttribute_T SET TemplateID = 600, "));
}

TEST_F(Template, AHandlerMayReplaceTheSlotsAndReleaseTheTemplateWhileTheyAreSaved) {
    struct Releasing final : ADODB::ConnectionEvents {
        void WillExecute(ADODB::ExecuteRequest& request) override {
            if (!*owner || !request.Source.starts_with("INSERT INTO TemplateAttribute_T")) return;
            (*owner)->TemplateAttributes = New<Collection>();
            *owner = nullptr;
        }
        Ref<cTemplate>* owner = nullptr;
    } releasing;
    card->TCID = 7;
    for (const Long sequence : {1, 2}) AddSlot(sequence)->ID = 0;
    releasing.owner = &card;
    cTemplate& saved = *card;
    con->Advise(releasing);
    EXPECT_EQ(FailureOf([&] { EXPECT_TRUE(saved.Save(con)); }).Number, 0);
    con->Unadvise(releasing);
    EXPECT_FALSE(card);
    EXPECT_EQ(Ask("SELECT count(*) FROM TemplateAttribute_T WHERE TemplateID=600"), Variant(Long{2}));
}

TEST_F(Template, ASlotThatWasRemovedStaysInItsTable) {
    FillAll();
    AddSlot(1, "K1");
    card->Save(con);
    card->TemplateAttributes->Remove("K1");
    card->Save(con);
    EXPECT_EQ(Ask("SELECT count(*) FROM TemplateAttribute_T"), Variant(Long{1}));
}

TEST_F(Template, NamesOfAnyScriptAndInjectionsAreStoredAsTheyAre) {
    for (const char* name :
         {"Ωμέγα", "Рентген", "全顎", "🦷", "x', TCComments='y", "'; DROP TABLE TemplateCard_T; --"}) {
        const Ref<cTemplate> fresh = New<cTemplate>();
        fresh->TCName = fresh->TCComments = name;
        fresh->Save(con);
        const Ref<cTemplate> read = New<cTemplate>();
        read->GetTemplate(con, fresh->TCID);
        EXPECT_EQ(read->TCName, name);
        EXPECT_EQ(read->TCComments, name);
    }
}

TEST_F(Template, AMemberThatIsNotASlotFailsTheSave) {
    RunRow();
    card->TCID = 7;
    card->TemplateAttributes->Add(New<cTemplate>());
    EXPECT_EQ(FailureOf([&] { card->Save(con); }).Number, 13);
}

TEST_F(Template, AFailureOfTheSaveKeepsItsNumberSourceAndText) {
    Run("DROP TABLE TemplateCard_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM TemplateCard_T"); });
    const Error failure = FailureOf([&] { card->Save(con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, expected.Source);
    EXPECT_EQ(failure.Description, expected.Description);
}

// ---- a failure at every call that reaches the database --------------------------------------------

class TemplateOnFaultyDatabase : public Template {
protected:
    TemplateOnFaultyDatabase() {
        FillAll();
        AddSlot(1);
        AddSlot(2);
    }
    ~TemplateOnFaultyDatabase() override { FailAtCall(0); }

    Error FailureAt(int call) {
        FailAtCall(call);
        return FailureOf([&] { card->Save(faulty); });
    }
    Long Cards() { return CLng(Ask("SELECT count(*) FROM TemplateCard_T")); }
    Long Slots() { return CLng(Ask("SELECT count(*) FROM TemplateAttribute_T")); }
    std::vector<Long> SlotKeys() { return {SlotAt(1)->ID, SlotAt(2)->ID}; }

    Ref<Connection> faulty = FaultyConnectionTo(database);
};

TEST_F(TemplateOnFaultyDatabase, AnInsertWithTwoSlotsMakesSixCallsAndAnUpdateThree) {
    EXPECT_EQ(FailureAt(0).Number, 0);
    EXPECT_EQ(CallsSoFar(), 6);
    EXPECT_EQ(FailureAt(0).Number, 0);
    EXPECT_EQ(CallsSoFar(), 3);
}

TEST_F(TemplateOnFaultyDatabase, AFailedInsertWritesNothingAndLeavesTheSlots) {
    EXPECT_EQ(FailureAt(1).Description, "injected");
    EXPECT_EQ(card->TCID, 0);
    EXPECT_THAT(SlotKeys(), ElementsAre(501, 502));
    EXPECT_EQ(Cards(), 0);
}

TEST_F(TemplateOnFaultyDatabase, AFailedInsertKeepsTheNumberThatWasDrawn) {
    card->TCDicomID = 0;
    EXPECT_EQ(FailureAt(1).Description, "injected");
    EXPECT_GE(card->TCDicomID, 1000);
}

TEST_F(TemplateOnFaultyDatabase, AFailedReadOfTheKeyLeavesTheRowWritten) {
    EXPECT_EQ(FailureAt(2).Description, "injected");
    EXPECT_EQ(card->TCID, 0);
    EXPECT_THAT(SlotKeys(), ElementsAre(501, 502));
    EXPECT_EQ(Cards(), 1);
    EXPECT_EQ(Slots(), 0);
}

TEST_F(TemplateOnFaultyDatabase, AFailedFirstSlotLeavesTheTemplateWrittenWithItsKey) {
    EXPECT_EQ(FailureAt(3).Description, "injected");
    EXPECT_EQ(card->TCID, 1);
    EXPECT_THAT(SlotKeys(), ElementsAre(0, 0));
    EXPECT_EQ(Cards(), 1);
    EXPECT_EQ(Slots(), 0);
}

TEST_F(TemplateOnFaultyDatabase, AFailedKeyOfTheFirstSlotLeavesItsRowWritten) {
    EXPECT_EQ(FailureAt(4).Description, "injected");
    EXPECT_THAT(SlotKeys(), ElementsAre(0, 0));
    EXPECT_EQ(Slots(), 1);
}

TEST_F(TemplateOnFaultyDatabase, AFailedSecondSlotLeavesTheFirstWritten) {
    EXPECT_EQ(FailureAt(5).Description, "injected");
    EXPECT_THAT(SlotKeys(), ElementsAre(1, 0));
    EXPECT_EQ(Slots(), 1);
}

TEST_F(TemplateOnFaultyDatabase, AFailedKeyOfTheSecondSlotLeavesBothRowsWritten) {
    EXPECT_EQ(FailureAt(6).Description, "injected");
    EXPECT_THAT(SlotKeys(), ElementsAre(1, 0));
    EXPECT_EQ(Slots(), 2);
}

TEST_F(TemplateOnFaultyDatabase, AFailedUpdateChangesNothing) {
    RunRow();
    card->TCID = 7;
    EXPECT_EQ(FailureAt(1).Description, "injected");
    EXPECT_EQ(Ask("SELECT TCName FROM TemplateCard_T"), Variant("Full mouth"));
}

TEST_F(TemplateOnFaultyDatabase, AFailedSlotOfAnUpdateLeavesTheTemplateWritten) {
    RunRow();
    card->TCID = 7;
    for (const int call : {2, 3}) {
        EXPECT_EQ(FailureAt(call).Description, "injected");
        EXPECT_EQ(Ask("SELECT TCName FROM TemplateCard_T"), Variant("O'Mouth"));
        EXPECT_THAT(SlotKeys(), ElementsAre(501, 502));
    }
}

}  // namespace
}  // namespace OXClass

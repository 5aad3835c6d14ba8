#include "cards/cImagecard.h"

#include "kit/Database.h"
#include "platform/runtime/Services.h"

/// An image card: how it is loaded with its placed images, and how it is saved.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;

class Card : public WithDatabase {
protected:
    /// Writes card 7 of patient 3, every column filled, then changes columns.
    void RunCard(const String& changes = {}) {
        Run("INSERT INTO ImageCard_T (ImageCardID, PatientID, ICName, ICDateCreated, ICLastUpdate,"
            " ICDescription, ICFullViewWidth, ICFullViewHeight, ICPreviewWidth, ICPreviewHeight, ICMaximized)"
            " VALUES (7, 3, 'Bitewings', '2024-03-04 05:06:07', '2024-05-06 17:08:09', 'all', 1000, 600,"
            " 100, 60, 1)");
        if (!changes.empty()) Run("UPDATE ImageCard_T SET " + changes);
    }

    /// Writes a placed image of card 7, every column filled, then changes columns.
    void RunPlaced(Long key, const String& changes = {}) {
        Run("INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IAFullViewWidth,"
            " IAFullViewHeight, IAFullViewPosX, IAFullViewPosY, IASequence, IAComments, IAMirrRotStatus)"
            " VALUES (" +
            CStr(key) + ", 7, 40, 10.5, 20.5, 30.5, -40.5, 2, 'it''s', 5)");
        if (!changes.empty()) Run("UPDATE ImageAttribute_T SET " + changes + " WHERE ImageAttributeID=" + CStr(key));
    }

    /// Loads the card behind changes of its columns.
    Ref<cImagecard> Loaded(const String& changes = {}) {
        RunCard(changes);
        card->GetImageCard(con, 7);
        return card;
    }

    /// Loads one placed image behind changes of its columns.
    Ref<cImagecardAttribute> LoadedPlaced(const String& changes = {}) {
        RunPlaced(21, changes);
        card->ICID = 7;
        card->LoadImageAttributes(con);
        return PlacedAt(1);
    }

    Ref<cImagecardAttribute> PlacedAt(Long position) {
        return To<Ref<cImagecardAttribute>>(card->ImagecardAttributes->Item(position));
    }

    Ref<cImagecardAttribute> Place(Long image, Long key = 0) {
        const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
        placed->ImageID = image;
        placed->ID = key;
        placed->ICID = 900;
        placed->IASequence = -1;
        card->ImagecardAttributes->Add(placed);
        return placed;
    }

    /// One object many times, whose deletion sends nothing.
    void PlaceManyThatCostNothing(int count) {
        const Ref<cImagecardAttribute> gone = Place(40, -1);
        gone->ToBeDeleted = true;
        for (int more = 1; more < count; ++more) card->ImagecardAttributes->Add(gone);
    }

    void FillAll() {
        card->ICPID = 3;
        card->ICName = "O'Card";
        card->ICCreateDate = DateFrom({2023, 1, 2, 3, 4, 5});
        card->ICLastUpdate = DateFrom({2024, 12, 31, 23, 59, 58});
        card->ICDescription = "it's";
        card->ICWidth = 1024;
        card->ICHeight = -768;
    }

    /// Changes the row so that the load fails with 94, loads the card, and returns the names of the properties that
    /// were set before the failure.
    std::vector<String> SetBeforeTheNull(const String& changes) {
        RunCard(changes);
        RunPlaced(21);
        EXPECT_EQ(FailureOf([&] { card->GetImageCard(con, 7); }).Number, err::InvalidNull);
        EXPECT_EQ(card->ImagecardAttributes->Count(), 0);
        std::vector<String> names;
        const auto note = [&](const char* name, bool set) {
            if (set) names.emplace_back(name);
        };
        note("ICCreateDate", card->ICCreateDate != Date{});
        note("ICDescription", !card->ICDescription.empty());
        note("ICHeight", card->ICHeight != 0);
        note("ICWidth", card->ICWidth != 0);
        note("ICLastUpdate", card->ICLastUpdate != Date{});
        note("ICName", !card->ICName.empty());
        note("ICID", card->ICID != 0);
        note("ICPID", card->ICPID != 0);
        return names;
    }

    std::vector<Long> Sequences() {
        std::vector<Long> numbers;
        for (const cImagecardAttribute& placed : Each<cImagecardAttribute>(*card->ImagecardAttributes))
            numbers.push_back(placed.IASequence);
        return numbers;
    }

    Long CountOf(const String& table) { return CLng(Ask("SELECT count(*) FROM " + table)); }

    Ref<cImagecard> card = New<cImagecard>();
};

const char* const insertOfCard =
    "INSERT INTO ImageCard_T (PatientId, ICName, ICDateCreated, ICLastUpdate, ICDescription, "
    "ICFullViewWidth, ICFullViewHeight, ICMaximized) VALUES (3, 'O''Card', '2023-01-02 03:04:05', "
    "'2024-12-31 23:59:58', 'it''s', 1024, -768, 0);";
const char* const keyOfCard = "SELECT MAX(ImageCardId) FROM ImageCard_T WHERE PatientId = 3;";
const char* const updateOfCard =
    "UPDATE ImageCard_T SET PatientID = 3, ICName = 'O''Card', ICLastUpdate = '2024-12-31 23:59:58', "
    "ICDescription = 'it''s', ICFullViewWidth = 1024, ICFullViewHeight = -768, ICMaximized = 0 WHERE "
    "ImageCardId = 7;";
const char* const cardSeven = "SELECT * FROM ImageCard_T WHERE ImageCardID = 7;";
const char* const placedOfSeven = "SELECT * FROM ImageAttribute_T WHERE ImageCardID = 7;";

TEST_F(Card, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(*card),
        ElementsAre("putref ImagecardAttributes(Collection&)", "get ImagecardAttributes -> Collection",
                    "put ICWidth(int32)", "get ICWidth -> int32", "put ICHeight(int32)", "get ICHeight -> int32",
                    "put ICDescription(string)", "get ICDescription -> string", "put ICLastUpdate(date)",
                    "get ICLastUpdate -> date", "put ICCreateDate(date)", "get ICCreateDate -> date",
                    "put ICName(string)", "get ICName -> string", "put ICPID(int32)", "get ICPID -> int32",
                    "put ICID(int32)", "get ICID -> int32", "Save(conn: Connection&) -> boolean",
                    "GetImageCard(conn: Connection&, lICID: int32&) -> variant",
                    "LoadImageAttributes(conn: Connection&) -> int32"));
}

TEST_F(Card, StartsEmpty) {
    EXPECT_EQ(card->ICID, 0);
    EXPECT_EQ(card->ICPID, 0);
    EXPECT_EQ(card->ICWidth, 0);
    EXPECT_EQ(card->ICHeight, 0);
    EXPECT_EQ(card->ICName + card->ICDescription, "");
    EXPECT_EQ(card->ICCreateDate, Date{});
    EXPECT_EQ(card->ICLastUpdate, Date{});
    ASSERT_TRUE(card->ImagecardAttributes);
    EXPECT_EQ(card->ImagecardAttributes->Count(), 0);
}

// ---- loading --------------------------------------------------------------------------------------

TEST_F(Card, LoadsEveryColumn) {
    Loaded();
    EXPECT_EQ(card->ICID, 7);
    EXPECT_EQ(card->ICPID, 3);
    EXPECT_EQ(card->ICName, "Bitewings");
    EXPECT_EQ(card->ICCreateDate, DateFrom({2024, 3, 4, 5, 6, 7}));
    EXPECT_EQ(card->ICLastUpdate, DateFrom({2024, 5, 6, 17, 8, 9}));
    EXPECT_EQ(card->ICDescription, "all");
    EXPECT_EQ(card->ICWidth, 1000);
    EXPECT_EQ(card->ICHeight, 600);
}

TEST_F(Card, ALoadSendsTheCardThenItsPlacedImagesThenTheirManipulations) {
    RunPlaced(21);
    RunPlaced(22);
    Loaded();
    EXPECT_THAT(Sent(),
                ElementsAre(cardSeven, placedOfSeven,
                            "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=21 ORDER BY SequenceNo;",
                            "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=22 ORDER BY SequenceNo;"));
}

TEST_F(Card, EveryStatementOfALoadIsAPlainRead) {
    ModeLog modes;
    RunCard();
    RunPlaced(21);
    con->Advise(modes);
    card->GetImageCard(con, 7);
    con->Unadvise(modes);
    EXPECT_THAT(modes.seen, ElementsAre(plainRead, plainRead, plainRead));
}

TEST_F(Card, AMissingKeyLeavesAFreshObjectAsItIs) {
    RunCard();
    EXPECT_EQ(FailureOf([&] { card->GetImageCard(con, 8); }).Number, 0);
    EXPECT_EQ(card->ICID, 0);
    EXPECT_EQ(card->ICName, "");
    EXPECT_EQ(card->ImagecardAttributes->Count(), 0);
    EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(Card, AMissingKeyLeavesAFilledObjectAsItIs) {
    FillAll();
    card->ICID = 5;
    const Ref<Collection> placed = card->ImagecardAttributes;
    Place(1);
    card->GetImageCard(con, 8);
    EXPECT_EQ(card->ICID, 5);
    EXPECT_EQ(card->ICPID, 3);
    EXPECT_EQ(card->ICName, "O'Card");
    EXPECT_EQ(card->ICWidth, 1024);
    EXPECT_EQ(card->ImagecardAttributes, placed);
    EXPECT_EQ(placed->Count(), 1);
}

TEST_F(Card, TheResultOfALoadIsAlwaysEmpty) {
    RunCard();
    EXPECT_TRUE(card->GetImageCard(con, 7).Is<Platform::Empty>());
    EXPECT_TRUE(card->GetImageCard(con, 8).Is<Platform::Empty>());
}

TEST_F(Card, ACardMayBeLoadedAgainByItsOwnKey) {
    Loaded();
    Run("UPDATE ImageCard_T SET ICName='new'");
    card->GetImageCard(con, card->ICID);
    EXPECT_EQ(card->ICName, "new");
    EXPECT_EQ(card->ICID, 7);
}

TEST_F(Card, ANegativeKeyIsSentUnchanged) {
    card->GetImageCard(con, -7);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM ImageCard_T WHERE ImageCardID = -7;"));
}

TEST_F(Card, ANullDescriptionFailsTheLoad) {
    RunCard("ICDescription=NULL");
    const Error failure = FailureOf([&] { card->GetImageCard(con, 7); });
    const Error expected = FailureOf([] { Raise(err::InvalidNull); });
    EXPECT_EQ(failure.Number, err::InvalidNull);
    EXPECT_EQ(failure.Source, expected.Source);
    EXPECT_EQ(failure.Description, expected.Description);
}

TEST_F(Card, ANullDateOfCreationLeavesEverything) { EXPECT_THAT(SetBeforeTheNull("ICDateCreated=NULL"), IsEmpty()); }

TEST_F(Card, ANullDescriptionFollowsTheDateOfCreation) {
    EXPECT_THAT(SetBeforeTheNull("ICDescription=NULL"), ElementsAre("ICCreateDate"));
}

TEST_F(Card, ANullDateOfTheLastChangeFollowsTheSizes) {
    EXPECT_THAT(SetBeforeTheNull("ICLastUpdate=NULL"),
                ElementsAre("ICCreateDate", "ICDescription", "ICHeight", "ICWidth"));
}

TEST_F(Card, ANullNameFollowsTheDateOfTheLastChange) {
    EXPECT_THAT(SetBeforeTheNull("ICName=NULL"),
                ElementsAre("ICCreateDate", "ICDescription", "ICHeight", "ICWidth", "ICLastUpdate"));
}

TEST_F(Card, ANullPatientComesLastAndThePlacedImagesAreNotLoaded) {
    EXPECT_THAT(SetBeforeTheNull("PatientID=NULL"),
                ElementsAre("ICCreateDate", "ICDescription", "ICHeight", "ICWidth", "ICLastUpdate", "ICName", "ICID"));
    EXPECT_THAT(Sent(), ElementsAre(cardSeven));
}

TEST_F(Card, ANullFlagOfTheWindowIsNeverRead) { EXPECT_EQ(Loaded("ICMaximized=NULL")->ICPID, 3); }

TEST_F(Card, AHeightThatIsTooLargeFailsBeforeTheWidthIsRead) {
    RunCard("ICFullViewHeight=3000000000");
    EXPECT_EQ(FailureOf([&] { card->GetImageCard(con, 7); }).Number, err::Overflow);
    EXPECT_EQ(card->ICDescription, "all");
    EXPECT_EQ(card->ICHeight, 0);
    EXPECT_EQ(card->ICWidth, 0);
}

TEST_F(Card, AWidthThatIsTooLargeFailsAfterTheHeight) {
    RunCard("ICFullViewWidth=3000000000");
    EXPECT_EQ(FailureOf([&] { card->GetImageCard(con, 7); }).Number, err::Overflow);
    EXPECT_EQ(card->ICHeight, 600);
    EXPECT_EQ(card->ICLastUpdate, Date{});
}

TEST_F(Card, AFailedOpenReachesTheCallerWithoutAPrefix) {
    Run("DROP TABLE ImageCard_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM ImageCard_T"); });
    const Error failure = FailureOf([&] { card->GetImageCard(con, 7); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, expected.Source);
    EXPECT_EQ(failure.Description, expected.Description);
}

TEST_F(Card, PlacedImagesThatCantBeReadDoNotFailTheLoadOfTheCard) {
    const TextBoxes boxes;
    RunPlaced(21, "IASequence=NULL");
    Loaded();
    EXPECT_EQ(card->ICPID, 3);
    EXPECT_EQ(boxes.shown.size(), 1U);
}

// ---- the size of the card -------------------------------------------------------------------------

TEST_F(Card, ANullWidthTakesThePreviewsWidth) {
    EXPECT_EQ(Loaded("ICFullViewWidth=NULL, ICPreviewWidth=800")->ICWidth, 800);
}

TEST_F(Card, ANullHeightTakesThePreviewsHeight) {
    EXPECT_EQ(Loaded("ICFullViewHeight=NULL, ICPreviewHeight=900")->ICHeight, 900);
}

TEST_F(Card, AWidthOfZeroTakesThePreviewsWidth) {
    EXPECT_EQ(Loaded("ICFullViewWidth=0, ICPreviewWidth=800")->ICWidth, 800);
}

TEST_F(Card, AnEmptyHeightTakesThePreviewsHeight) {
    EXPECT_EQ(Loaded("ICFullViewHeight='', ICPreviewHeight=900")->ICHeight, 900);
}

TEST_F(Card, ASizeThatIsNullInBothViewsReadsAsZero) {
    EXPECT_EQ(Loaded("ICFullViewWidth=NULL, ICPreviewWidth=NULL")->ICWidth, 0);
}

TEST_F(Card, ANegativeHeightReadsAsItsPositiveValue) { EXPECT_EQ(Loaded("ICFullViewHeight=-600")->ICHeight, 600); }

TEST_F(Card, ANegativeWidthOfThePreviewReadsAsItsPositiveValue) {
    EXPECT_EQ(Loaded("ICFullViewWidth=0, ICPreviewWidth=-800")->ICWidth, 800);
}

TEST_F(Card, ASizeInTheMiddleIsRoundedToTheEvenNumber) {
    Loaded("ICFullViewWidth=-2.5, ICFullViewHeight=3.5");
    EXPECT_EQ(card->ICWidth, 2);
    EXPECT_EQ(card->ICHeight, 4);
}

TEST_F(Card, ASizeBelowOneReadsAsZeroAndNotAsThePreview) {
    EXPECT_EQ(Loaded("ICFullViewWidth=0.25, ICPreviewWidth=800")->ICWidth, 0);
}

TEST_F(Card, SizesReadTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    Loaded("ICFullViewWidth=-2.75, ICFullViewHeight=0, ICPreviewHeight=1234.5");
    EXPECT_EQ(card->ICWidth, 3);
    EXPECT_EQ(card->ICHeight, 1234);
}

// ---- the placed images ----------------------------------------------------------------------------

TEST_F(Card, APlacedImageReadsEveryColumn) {
    const Ref<cImagecardAttribute> placed = LoadedPlaced();
    EXPECT_EQ(placed->ID, 21);
    EXPECT_EQ(placed->ICID, 7);
    EXPECT_EQ(placed->ImageID, 40);
    EXPECT_EQ(placed->IAWidth, 10.5);
    EXPECT_EQ(placed->IAHeight, 20.5);
    EXPECT_EQ(placed->IAPosX, 30.5);
    EXPECT_EQ(placed->IAPosY, -40.5);
    EXPECT_EQ(placed->IASequence, 2);
    EXPECT_EQ(placed->IAComments, "it's");
    EXPECT_EQ(placed->IAMirrRotStatus, 5);
    EXPECT_FALSE(placed->ToBeDeleted);
}

TEST_F(Card, PlacedImagesComeWithTheirManipulations) {
    Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo, Type, LongParameter, StringParameter)"
        " VALUES (21, 2, 6, 90, 'b'), (21, 1, 3, 5, 'a'), (22, 1, 3, 5, 'other')");
    const Ref<cImagecardAttribute> placed = LoadedPlaced();
    ASSERT_EQ(placed->Manipulations->Count(), 2);
    EXPECT_EQ(To<Ref<cImageManipulation>>(placed->Manipulations->Item(1))->StringParameter, "a");
}

TEST_F(Card, PlacedImagesAreCountedAndHaveTheirKeys) {
    RunPlaced(21);
    RunPlaced(22);
    RunPlaced(23, "ImageCardID=8");
    card->ICID = 7;
    EXPECT_EQ(card->LoadImageAttributes(con), 2);
    EXPECT_EQ(To<Ref<cImagecardAttribute>>(card->ImagecardAttributes->Item("k22"))->ID, 22);
    EXPECT_EQ(Sent().at(0), placedOfSeven);
}

TEST_F(Card, ALoadReplacesTheCollection) {
    const Ref<Collection> before = card->ImagecardAttributes;
    Place(1);
    card->ICID = 7;
    EXPECT_EQ(card->LoadImageAttributes(con), 0);
    EXPECT_NE(card->ImagecardAttributes, before);
    EXPECT_EQ(card->ImagecardAttributes->Count(), 0);
    EXPECT_EQ(before->Count(), 1);
}

TEST_F(Card, NullMeasuresReadAsZero) {
    const Ref<cImagecardAttribute> placed =
        LoadedPlaced("IAFullViewWidth=NULL, IAFullViewHeight=NULL, IAFullViewPosX=NULL, IAFullViewPosY=NULL");
    EXPECT_EQ(placed->IAWidth, 0);
    EXPECT_EQ(placed->IAHeight, 0);
    EXPECT_EQ(placed->IAPosX, 0);
    EXPECT_EQ(placed->IAPosY, 0);
}

TEST_F(Card, NullCommentsReadAsEmpty) { EXPECT_EQ(LoadedPlaced("IAComments=NULL")->IAComments, ""); }

TEST_F(Card, ANullStateOfMirroringReadsAsZero) { EXPECT_EQ(LoadedPlaced("IAMirrRotStatus=NULL")->IAMirrRotStatus, 0); }

TEST_F(Card, MeasuresReadTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    EXPECT_EQ(LoadedPlaced()->IAPosY, -40.5);
}

/// A card with a clock that does not advance. Text boxes are stored.
class CardAtATime : public Card {
protected:
    CardAtATime() {
        TheHost().Now = [] { return DateFrom({2024, 3, 14, 15, 6, 7}); };
        card->ICID = 7;
    }
    ~CardAtATime() override { TheHost().Now = machine_; }

    /// Loads three placed images, of which the second has these changes.
    Long LoadWithSecond(const String& changes) {
        DropIndex("ImageAttribute_by_Card", "ImageAttribute_T");  // the index returns the rows in another order
        RunPlaced(21);
        RunPlaced(22, changes);
        RunPlaced(23);
        return card->LoadImageAttributes(con);
    }

    void LetKeysBeAnything() {
        Run("CREATE TABLE Keyless AS SELECT * FROM ImageAttribute_T");
        Run("DROP TABLE ImageAttribute_T");
        Run("ALTER TABLE Keyless RENAME TO ImageAttribute_T");
    }

    void ExpectOnlyTheFirstAndABoxOf(Long number, const String& description) {
        ASSERT_EQ(card->ImagecardAttributes->Count(), 1);
        EXPECT_EQ(PlacedAt(1)->ID, 21);
        EXPECT_THAT(boxes.shown, ElementsAre("cImageCard.LoadImageAttribues: (3/14/2024 15:06:07) " + CStr(number) +
                                             " " + description));
    }

    const InLocale plain{Locale{}};
    const TextBoxes boxes;

private:
    const std::function<Date()> machine_ = TheHost().Now;
};

TEST_F(CardAtATime, ANullSequenceEndsTheLoadWithATextBoxAndZero) {
    EXPECT_EQ(LoadWithSecond("IASequence=NULL"), 0);
    ExpectOnlyTheFirstAndABoxOf(94, "Invalid use of Null");
}

TEST_F(CardAtATime, ANullImageEndsTheLoadWithATextBoxAndZero) {
    EXPECT_EQ(LoadWithSecond("ImageBildId=NULL"), 0);
    ExpectOnlyTheFirstAndABoxOf(94, "Invalid use of Null");
}

TEST_F(CardAtATime, ANullKeyEndsTheLoadWithATextBoxAndZero) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    LetKeysBeAnything();
    EXPECT_EQ(LoadWithSecond("ImageAttributeID=NULL"), 0);
    ExpectOnlyTheFirstAndABoxOf(94, "Invalid use of Null");
}

TEST_F(CardAtATime, ASecondRowOfOneKeyEndsTheLoadWithATextBoxAndZero) {
    LetKeysBeAnything();
    EXPECT_EQ(LoadWithSecond("ImageAttributeID=21"), 0);
    ExpectOnlyTheFirstAndABoxOf(457, DescriptionOf(457));
}

TEST_F(CardAtATime, AStateOfMirroringBeyondSixteenBitsEndsTheLoad) {
    EXPECT_EQ(LoadWithSecond("IAMirrRotStatus=40000"), 0);
    ExpectOnlyTheFirstAndABoxOf(6, "Overflow");
}

TEST_F(CardAtATime, ManipulationsThatCantBeReadDoNotEndTheLoad) {
    Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo, Type, LongParameter, StringParameter)"
        " VALUES (22, 1, NULL, 5, 'a')");
    EXPECT_EQ(LoadWithSecond("IASequence=9"), 3);
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(CardAtATime, AFailedOpenIsReportedAndKeepsTheOldCollection) {
    Run("DROP TABLE ImageAttribute_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM ImageAttribute_T"); });
    const Ref<Collection> before = card->ImagecardAttributes;
    Place(1);
    EXPECT_EQ(card->LoadImageAttributes(con), 0);
    EXPECT_EQ(card->ImagecardAttributes, before);
    EXPECT_EQ(before->Count(), 1);
    EXPECT_THAT(boxes.shown,
                ElementsAre("cImageCard.LoadImageAttribues: (3/14/2024 15:06:07) -2147217865 " + expected.Description));
}

TEST_F(CardAtATime, TheTextBoxWritesTheTimeAsTheMachineDoes) {
    const InLocale comma(DecimalComma);
    LoadWithSecond("IASequence=NULL");
    EXPECT_THAT(boxes.shown, ElementsAre("cImageCard.LoadImageAttribues: (" + CStr(DateFrom({2024, 3, 14, 15, 6, 7})) +
                                         ") 94 Invalid use of Null"));
}

// ---- saving ---------------------------------------------------------------------------------------

TEST_F(Card, InsertsWithKeyZeroAndReadsTheKey) {
    FillAll();
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(Sent(), ElementsAre(insertOfCard, keyOfCard));
    EXPECT_EQ(card->ICID, 1);
    EXPECT_EQ(Ask("SELECT ICFullViewHeight FROM ImageCard_T"), Variant(-768.0));
}

TEST_F(Card, UpdatesWithAKey) {
    RunCard();
    FillAll();
    card->ICID = 7;
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(Sent(), ElementsAre(updateOfCard));
    EXPECT_EQ(card->ICID, 7);
    EXPECT_EQ(Ask("SELECT ICName FROM ImageCard_T"), Variant("O'Card"));
}

TEST_F(Card, ASaveExecutesItsStatements) {
    ModeLog modes;
    con->Advise(modes);
    card->Save(con);
    card->Save(con);
    con->Unadvise(modes);
    EXPECT_THAT(modes.seen, ElementsAre(executed, executed, executed)) << "insert, key, update";
}

TEST_F(Card, UpdatesWithANegativeKeyToo) {
    FillAll();
    card->ICID = -7;
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(Sent(), ElementsAre(Replace(updateOfCard, "ImageCardId = 7", "ImageCardId = -7")));
    EXPECT_EQ(CountOf("ImageCard_T"), 0);
}

TEST_F(Card, AnUpdateLeavesTheDateOfCreationAndThePreview) {
    RunCard();
    FillAll();
    card->ICID = 7;
    card->Save(con);
    EXPECT_EQ(Ask("SELECT ICDateCreated FROM ImageCard_T"), Variant(DateFrom({2024, 3, 4, 5, 6, 7})));
    EXPECT_EQ(Ask("SELECT ICPreviewWidth FROM ImageCard_T"), Variant(100.0));
}

TEST_F(Card, ASaveSetsTheFlagOfTheWindowToZero) {
    RunCard("ICMaximized=1");
    card->ICID = 7;
    card->Save(con);
    EXPECT_EQ(Ask("SELECT ICMaximized FROM ImageCard_T"), Variant(Long{0}));
}

TEST_F(Card, ANewObjectIsInsertedWithItsDefaults) {
    card->Save(con);
    EXPECT_THAT(Sent(),
                ElementsAre("INSERT INTO ImageCard_T (PatientId, ICName, ICDateCreated, ICLastUpdate, ICDescription, "
                            "ICFullViewWidth, ICFullViewHeight, ICMaximized) VALUES (0, '', '1899-12-30 00:00:00', "
                            "'1899-12-30 00:00:00', '', 0, 0, 0);",
                            "SELECT MAX(ImageCardId) FROM ImageCard_T WHERE PatientId = 0;"));
}

TEST_F(Card, StatementsAreTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    FillAll();
    card->Save(con);
    card->ICID = 7;
    card->Save(con);
    EXPECT_THAT(Sent(), ElementsAre(insertOfCard, keyOfCard, updateOfCard));
}

TEST_F(Card, ASaveStampsNoTime) {
    FillAll();
    card->Save(con);
    EXPECT_EQ(card->ICLastUpdate, DateFrom({2024, 12, 31, 23, 59, 58}));
    EXPECT_EQ(Ask("SELECT ICLastUpdate FROM ImageCard_T"), Variant(DateFrom({2024, 12, 31, 23, 59, 58})));
}

TEST_F(Card, TextsOfAnyScriptAndInjectionsAreStoredAsTheyAre) {
    for (const char* text : {"切歯", "🦷", "x', ICDescription='y", "'; DROP TABLE ImageCard_T; --"}) {
        const Ref<cImagecard> fresh = New<cImagecard>();
        fresh->ICName = fresh->ICDescription = text;
        fresh->Save(con);
        const String row = " FROM ImageCard_T WHERE ImageCardID=" + CStr(fresh->ICID);
        EXPECT_EQ(Ask("SELECT ICName" + row), Variant(text));
        EXPECT_EQ(Ask("SELECT ICDescription" + row), Variant(text));
    }
}

TEST_F(Card, ANewCardTakesThePatientsHighestKey) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RunCard();
    Run("CREATE TRIGGER AnotherClient AFTER INSERT ON ImageCard_T WHEN new.ICName='mine' BEGIN "
        "INSERT INTO ImageCard_T (PatientID, ICName) VALUES (new.PatientID, 'theirs'); END");
    card->ICPID = 3;
    card->ICName = "mine";
    card->Save(con);
    EXPECT_EQ(Ask("SELECT ICName FROM ImageCard_T WHERE ImageCardID=" + CStr(card->ICID)), Variant("theirs"));
}

TEST_F(Card, KeysOfOtherPatientsDoNotCount) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RunCard("PatientID=99, ImageCardID=5000");
    Run("CREATE TRIGGER AnotherClient AFTER INSERT ON ImageCard_T WHEN new.PatientID=3 BEGIN "
        "INSERT INTO ImageCard_T (PatientID) VALUES (4); END");
    card->ICPID = 3;
    card->Save(con);
    EXPECT_EQ(card->ICID, 5001);
}

TEST_F(Card, AnInsertStoresTheNewKeyInEveryPlacedImageAlsoInSkippedOnes) {
    Place(0);
    Place(40, 300);
    FillAll();
    card->Save(con);
    EXPECT_EQ(PlacedAt(1)->ICID, 1);
    EXPECT_EQ(PlacedAt(2)->ICID, 1);
    EXPECT_EQ(PlacedAt(2)->ID, 300);
}

TEST_F(Card, AnUpdateLeavesTheCardOfThePlacedImages) {
    RunCard();
    card->ICID = 7;
    EXPECT_EQ(Place(40)->ICID, 900);
    card->Save(con);
    EXPECT_EQ(PlacedAt(1)->ICID, 900);
    EXPECT_EQ(Ask("SELECT ImageCardID FROM ImageAttribute_T"), Variant(Long{900}));
}

TEST_F(Card, APlacedImageWithoutAnImageIsPassedOver) {
    Place(40);
    Place(0);
    Place(41);
    card->Save(con);
    EXPECT_THAT(Sequences(), ElementsAre(1, -1, 2));
    EXPECT_EQ(CountOf("ImageAttribute_T"), 2);
    EXPECT_EQ(PlacedAt(2)->ID, 0);
    EXPECT_EQ(Ask("SELECT IASequence FROM ImageAttribute_T WHERE ImageBildId=41"), Variant(Long{2}));
}

TEST_F(Card, APlacedImageWithANegativeImageIsSaved) {
    Place(-1);
    card->Save(con);
    EXPECT_EQ(Ask("SELECT ImageBildId FROM ImageAttribute_T"), Variant(Long{-1}));
}

TEST_F(Card, PlacedImagesToBeDeletedCountAndStayInTheCollection) {
    RunCard();
    RunPlaced(21);
    RunPlaced(22);
    RunPlaced(23);
    card->GetImageCard(con, 7);
    PlacedAt(2)->ToBeDeleted = true;
    PlacedAt(2)->IASequence = -1;
    card->Save(con);
    EXPECT_THAT(Sequences(), ElementsAre(1, 2, 3));
    EXPECT_EQ(CountOf("ImageAttribute_T"), 2);
    EXPECT_EQ(Ask("SELECT IASequence FROM ImageAttribute_T WHERE ImageAttributeID=23"), Variant(Long{3}));
    EXPECT_TRUE(PlacedAt(2)->ToBeDeleted);
}

TEST_F(Card, PlacedImagesAreWrittenInTheOrderOfTheCollectionAfterTheCard) {
    FillAll();
    Place(41);
    Place(40);
    card->Save(con);
    const auto place = [](const String& image, const String& sequence) {
        return "INSERT INTO ImageAttribute_T (ImageCardId, ImageBildId, IAFullViewWidth, IAFullViewHeight, "
               "IAFullViewPosX, IAFullViewPosY, IAContrast, IABrightness, IAInvert, IARotation, IASharpen, "
               "IASoften, IAZoom, IAGamma, IAHorizontalMirror, IAVerticalMirror, IAHistoEqualize, "
               "IAStretchIntensity, IAHistogram, IASequence, IAComments, IAMirrRotStatus , IAColorized, "
               "IAAttCorr) VALUES (1, " +
               image + ", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, " + sequence + ", '', 0, 0, 0);";
    };
    const auto key = [](const String& image, const String& sequence) {
        return "SELECT MAX(ImageAttributeId) FROM ImageAttribute_T WHERE ((ImageCardId = 1) AND (ImageBildId "
               "= " +
               image + ") AND (IASequence = " + sequence + "));";
    };
    const auto steps = [](const String& id) {
        return "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=" + id + ";";
    };
    EXPECT_THAT(Sent(), ElementsAre(insertOfCard, keyOfCard, place("41", "1"), key("41", "1"), steps("1"),
                                    place("40", "2"), key("40", "2"), steps("2")));
}

TEST_F(Card, ThePlacedImageWithTheLastNumberOverflowsBeforeItIsSaved) {
    PlaceManyThatCostNothing(32766);
    const Ref<cImagecardAttribute> last = Place(41);
    card->ICID = 7;
    EXPECT_EQ(FailureOf([&] { card->Save(con); }).Number, err::Overflow);
    EXPECT_EQ(last->IASequence, 32767);
    EXPECT_EQ(CountOf("ImageAttribute_T"), 0);
}

TEST_F(Card, OneLessThanTheLastNumberIsSaved) {
    PlaceManyThatCostNothing(32765);
    const Ref<cImagecardAttribute> last = Place(41);
    card->ICID = 7;
    EXPECT_TRUE(card->Save(con));
    EXPECT_EQ(Ask("SELECT IASequence FROM ImageAttribute_T"), Variant(Long{32766}));
}

TEST_F(Card, AMemberThatIsNotAPlacedImageFailsTheSaveAfterThoseBeforeIt) {
    RunCard();
    card->ICID = 7;
    Place(40);
    card->ImagecardAttributes->Add(New<cImageManipulation>());
    EXPECT_EQ(FailureOf([&] { card->Save(con); }).Number, err::TypeMismatch);
    EXPECT_EQ(CountOf("ImageAttribute_T"), 1);
}

TEST_F(Card, AFailedSaveKeepsNumberSourceAndText) {
    Run("DROP TABLE ImageCard_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM ImageCard_T"); });
    for (const Long key : {0, 7}) {
        card->ICID = key;
        const Error failure = FailureOf([&] { card->Save(con); });
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
        EXPECT_EQ(failure.Source, expected.Source);
        EXPECT_EQ(failure.Description, expected.Description);
    }
}

TEST_F(Card, AFailureAtAPlacedImageLeavesTheCardWritten) {
    FillAll();
    Place(40);
    Run("DROP TABLE ImageAttribute_T");
    EXPECT_EQ(FailureOf([&] { card->Save(con); }).Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(CountOf("ImageCard_T"), 1);
    EXPECT_EQ(card->ICID, 1);
    EXPECT_THAT(Sequences(), ElementsAre(1));
}

// ---- a program that handles its messages in the middle of a save ----------------------------------

class CardInTheMiddle : public Card {
protected:
    CardInTheMiddle() {
        RunCard();
        for (const Long key : {21, 22, 23}) RunPlaced(key);
        card->GetImageCard(con, 7);
        TheHost().DoEvents = [this] { meanwhile(); };
    }
    ~CardInTheMiddle() override { TheHost().DoEvents = machine_; }

    std::vector<Long> StoredSequences() {
        std::vector<Long> numbers;
        const Ref<Recordset> rs =
            Connect()->Execute("SELECT IASequence FROM ImageAttribute_T ORDER BY ImageAttributeID");
        for (; !rs->Eof(); rs->MoveNext()) numbers.push_back(To<Long>(rs->Fields(0).Value()));
        return numbers;
    }

    std::function<void()> meanwhile = [] {};

private:
    const std::function<void()> machine_ = TheHost().DoEvents;
};

TEST_F(CardInTheMiddle, MayReplaceTheCollectionAndTheSaveContinuesWithTheOldOne) {
    meanwhile = [this] { card->ImagecardAttributes = New<Collection>(); };
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(StoredSequences(), ElementsAre(1, 2, 3));
    EXPECT_EQ(card->ImagecardAttributes->Count(), 0);
}

TEST_F(CardInTheMiddle, MaySetTheCollectionToNull) {
    meanwhile = [this] { card->ImagecardAttributes = nullptr; };
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(StoredSequences(), ElementsAre(1, 2, 3));
}

TEST_F(CardInTheMiddle, MayEmptyTheCollection) {
    meanwhile = [this] {
        while (card->ImagecardAttributes->Count() > 0) card->ImagecardAttributes->Remove(1);
    };
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(StoredSequences(), ElementsAre(1, 2, 2)) << "the first is saved, the others are not reached";
}

TEST_F(CardInTheMiddle, MayAddAPlacedImage) {
    meanwhile = [this] {
        if (card->ImagecardAttributes->Count() == 3) Place(50)->ICID = 7;
    };
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(StoredSequences(), IsSupersetOf({1, 2, 3}));
}

TEST_F(CardInTheMiddle, MayLetTheCardGo) {
    meanwhile = [this] { card = nullptr; };
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(StoredSequences(), ElementsAre(1, 2, 3));
}

TEST_F(CardInTheMiddle, MaySaveTheCardAgain) {
    int deep = 0;
    meanwhile = [&] {
        if (deep++ == 0) card->Save(con);
    };
    EXPECT_TRUE(card->Save(con));
    EXPECT_THAT(StoredSequences(), ElementsAre(1, 2, 3));
    EXPECT_EQ(deep, 6) << "once a placed image, of both saves";
}

}  // namespace
}  // namespace OXClass

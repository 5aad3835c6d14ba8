#include "cardlist/cUniCard.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

#include <utility>

/// An entry of a patient's card list.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const placedOfFive = "SELECT * FROM ImageAttribute_T WHERE ImageCardID = 5;";
const char* const imagesOfFive =
    "SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId where Series_ID=5 "
    "ORDER BY DateCaptured_SD, ImageBildID";
const char* const templateOfSix = "SELECT * FROM TemplateCard_T WHERE TCDicomId = 6";
const char* const slotsOfOne =
    "SELECT TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation, TAFullViewWidth, "
    "TAFullViewHeight, TAFullViewPosX, TAFullViewPosY,TAPreviewWidth, TAPreviewHeight, TAPreviewPosX, "
    "TAPreviewPosY, TANumberInTemplate , TAProportions, TAComments, TATGId FROM TemplateAttribute_T WHERE "
    "TemplateID = 1 ORDER BY TANumberInTemplate";

class UniCard : public WithDatabase {
protected:
    /// Writes an image that loads whole.
    void RunImage(Long key, const String& frame = "0", const String& captured = "2024-01-01 00:00:00") {
        Run("INSERT INTO ImageBild_T (ImageBildID, Series_ID, PatientID, DateCaptured_SD, Brightness_INT,"
            " Contrast_INT, ImageType, Invert_BT, RootId, Approved, FrameNumber_INT) VALUES (" +
            CStr(key) + ", 5, 7, '" + captured + "', 0, 0, 0, 0, 1, 1, " + frame + ")");
    }

    /// Places an image on card 5.
    void RunPlaced(Long key, Long image, Long sequence) {
        Run("INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IASequence) VALUES (" +
            CStr(key) + ", 5, " + CStr(image) + ", " + CStr(sequence) + ")");
    }

    /// Writes template 6 with this canvas, under the key 1.
    void RunTemplate(const String& width, const String& height) {
        Run("INSERT INTO TemplateCard_T (TemplateID, TCName, TCDicomId, TCFullViewWidth, TCFullViewHeight)"
            " VALUES (1, 'layout', 6, " +
            width + ", " + height + ")");
    }

    void RunSlot(Long key, Long number, double measure) {
        Run("INSERT INTO TemplateAttribute_T (TemplateImageId, TemplateID, TAGroupName, TASequence, "
            "TARotation,"
            " TANumberInTemplate, TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight) VALUES "
            "(" +
            CStr(key) + ", 1, '', 1, 0, " + CStr(number) + ", " + CStr(measure) + ", " + CStr(measure + 0.25) + ", " +
            CStr(measure + 0.5) + ", " + CStr(measure + 0.75) + ")");
    }

    void HoldCard() {
        entry->Imagecard = New<cImagecard>();
        entry->Imagecard->ICID = 5;
    }
    void HoldSeries(Long layout = 6) {
        entry->Series = New<cSerie>();
        entry->Series->ID = 5;
        entry->Series->TemplateID = layout;
    }

    Long Load(CardTypes type, Long key = 5) { return entry->LoadCardFull(con, "", key, type); }

    Ref<cImagecardAttribute> PlacedAt(Long position) {
        return To<Ref<cImagecardAttribute>>(entry->Imagecard->ImagecardAttributes->Item(position));
    }
    /// Left, top, width and height.
    std::vector<double> PlaceAt(Long position) {
        const Ref<cImagecardAttribute> placed = PlacedAt(position);
        return {placed->IAPosX, placed->IAPosY, placed->IAWidth, placed->IAHeight};
    }
    std::vector<Long> Images() {
        std::vector<Long> keys;
        for (const cImage& image : *entry->colImages) keys.push_back(image.ID);
        return keys;
    }

    Ref<cUniCard> entry = New<cUniCard>();
};

TEST_F(UniCard, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(*entry),
                ElementsAre("get mvarImgLead -> Object", "putref mvarImgLead(Object&)", "get SortDate -> date",
                            "put Key(string)", "get Key -> string", "get CardType -> CardTypes",
                            "LoadCardFull(conn: Connection&, UID: string&, ID: int32&, CardType: CardTypes&) -> int32",
                            "putref Template(cTemplate&)", "get Template -> cTemplate", "put Fullyloaded(boolean)",
                            "get Fullyloaded -> boolean", "putref Study(cStudy&)", "get Study -> cStudy",
                            "putref Series(cSerie&)", "get Series -> cSerie", "putref Imagecard(cImagecard&)",
                            "get Imagecard -> cImagecard", "putref colImages(cImages&)", "get colImages -> cImages"));
}

TEST_F(UniCard, HasTheDocumentedKinds) {
    std::vector<std::pair<String, Long>> kinds;
    for (const EnumerationValue& value : EnumerationOf<CardTypes>::Values) kinds.emplace_back(value.Name, value.Value);
    EXPECT_THAT(kinds, ElementsAre(std::pair("ctUnknown", 0), std::pair("ctImagecard", 1), std::pair("ctseries", 2)));
    EXPECT_STREQ(EnumerationOf<CardTypes>::Name, "CardTypes");
}

TEST_F(UniCard, StartsEmpty) {
    EXPECT_EQ(entry->Key, "");
    EXPECT_EQ(entry->CardType(), ctUnknown);
    EXPECT_EQ(entry->SortDate(), Date{});
    EXPECT_FALSE(entry->Fullyloaded);
    EXPECT_FALSE(entry->mvarImgLead);
    EXPECT_FALSE(entry->Template);
    EXPECT_FALSE(entry->Study);
    EXPECT_FALSE(entry->Series);
    EXPECT_FALSE(entry->Imagecard);
    EXPECT_FALSE(entry->colImages);
}

TEST_F(UniCard, TheClientsObjectIsReturned) {
    const Ref<Object> own = New<Collection>();
    std::vector<Variant> arguments{Variant(own)};
    Invoke(*entry, "mvarImgLead", MemberKind::PutRef, arguments);
    EXPECT_EQ(entry->mvarImgLead, own);
}

// ---- kind and date ----------------------------------------------------------------------------------

TEST_F(UniCard, ACardMakesItACard) {
    HoldCard();
    EXPECT_EQ(entry->CardType(), ctImagecard);
}

TEST_F(UniCard, ASeriesHasPrecedenceOverACard) {
    HoldCard();
    HoldSeries();
    EXPECT_EQ(entry->CardType(), ctseries);
}

TEST_F(UniCard, AStudyAloneHasNoKind) {
    entry->Study = New<cStudy>();
    entry->Study->dateTime = Date{5};
    EXPECT_EQ(entry->CardType(), ctUnknown);
    EXPECT_EQ(entry->SortDate(), Date{});
}

TEST_F(UniCard, ACardIsSortedByItsCreation) {
    HoldCard();
    entry->Imagecard->ICCreateDate = Date{1};
    entry->Imagecard->ICLastUpdate = Date{2};
    EXPECT_EQ(entry->SortDate(), Date{1});
}

TEST_F(UniCard, ACardWithoutACreationIsSortedByItsLastChange) {
    HoldCard();
    entry->Imagecard->ICLastUpdate = Date{2};
    EXPECT_EQ(entry->SortDate(), Date{2});
}

TEST_F(UniCard, ASeriesIsSortedByItsDateWithoutAStudy) {
    HoldSeries();
    entry->Series->SeriesDateTime = Date{-3};
    EXPECT_EQ(entry->SortDate(), Date{-3});
}

TEST_F(UniCard, ASeriesWithoutADateIsSortedByItsStudy) {
    HoldSeries();
    entry->Study = New<cStudy>();
    entry->Study->dateTime = Date{4};
    EXPECT_EQ(entry->SortDate(), Date{4});
}

TEST_F(UniCard, ASeriesWithoutADateAndAStudyHasNoDateToSortBy) {
    HoldSeries();
    EXPECT_EQ(FailureOf([&] { static_cast<void>(entry->SortDate()); }).Number, 91);
}

// ---- loading a card -----------------------------------------------------------------------------------

TEST_F(UniCard, ACardLoadsItsPlacedImagesAndThenTheImages) {
    HoldCard();
    RunImage(11, "0", "2024-01-02 00:00:00");
    RunImage(12, "0", "2024-01-01 00:00:00");
    RunPlaced(1, 11, 1);
    RunPlaced(2, 12, 2);
    EXPECT_EQ(Load(ctImagecard), 0);
    EXPECT_THAT(Sent(), ElementsAre(placedOfFive,
                                    "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=1 ORDER BY SequenceNo;",
                                    "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=2 ORDER BY SequenceNo;",
                                    "SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId "
                                    "WHERE ImageBildID=11 OR ImageBildID=12  ORDER BY DateCaptured_SD, ImageBildID"));
    EXPECT_THAT(Images(), ElementsAre(12, 11)) << "in the order of capture";
}

/// Before one statement, replaces all objects of an entry and releases the entry.
struct ReleasesEntry final : ADODB::ConnectionEvents {
    ReleasesEntry(Ref<cUniCard>& released, int statement) : entry(&released), left(statement) {}

    void WillExecute(ADODB::ExecuteRequest&) override {
        if (left-- != 0) return;
        (*entry)->Imagecard = New<cImagecard>();
        (*entry)->colImages = New<cImages>();
        (*entry)->Template = New<cTemplate>();
        *entry = nullptr;
    }
    Ref<cUniCard>* entry;
    int left;  ///< statements before the one
};

/// Loads an entry once for each of its statements, before which a handler releases it; returns the number of loads.
class ReleasedWhileLoading : public UniCard {
protected:
    template <class Hold>
    int LoadsWithReleases(CardTypes type, Hold hold) {
        for (int statement = 0;; ++statement) {
            entry = New<cUniCard>();
            hold();
            ReleasesEntry releases(entry, statement);
            cUniCard& loaded = *entry;
            con->Advise(releases);
            Long key = 5;
            const Error failure = FailureOf([&] { EXPECT_EQ(loaded.LoadCardFull(con, "", key, type), 0); });
            con->Unadvise(releases);
            EXPECT_EQ(failure.Number, 0) << "released before statement " << statement;
            if (entry) return statement;
        }
    }
};

TEST_F(ReleasedWhileLoading, ACardIsLoadedToItsEnd) {
    RunImage(11, "0", "2024-01-02 00:00:00");
    RunPlaced(1, 11, 1);
    EXPECT_GE(LoadsWithReleases(ctImagecard, [&] { HoldCard(); }), 3);
}

TEST_F(ReleasedWhileLoading, ASeriesIsLoadedToItsEnd) {
    RunImage(11, "5", "2024-01-02 00:00:00");
    EXPECT_GE(LoadsWithReleases(ctseries, [&] { HoldSeries(); }), 2);
}

TEST_F(UniCard, TheStoredNumbersOfACardAreReplaced) {
    HoldCard();
    RunPlaced(1, 11, 4);
    RunPlaced(2, 12, 9);
    Load(ctImagecard);
    EXPECT_EQ(PlacedAt(1)->IASequence, 1);
    EXPECT_EQ(PlacedAt(2)->IASequence, 2);
    EXPECT_EQ(Ask("SELECT SUM(IASequence) FROM ImageAttribute_T"), Variant(Long{13})) << "in memory alone";
}

TEST_F(UniCard, ACardWithoutPlacedImagesReadsNoImages) {
    HoldCard();
    RunImage(11);
    EXPECT_EQ(Load(ctImagecard), 0);
    EXPECT_THAT(Sent(), ElementsAre(placedOfFive));
    ASSERT_TRUE(entry->colImages);
    EXPECT_EQ(entry->colImages->Count(), 0);
}

TEST_F(UniCard, PlacedImagesWithoutARowAreOmitted) {
    HoldCard();
    RunImage(11);
    RunPlaced(1, 11, 1);
    RunPlaced(2, 999, 2);
    Load(ctImagecard);
    EXPECT_THAT(Images(), ElementsAre(11));
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 2);
}

TEST_F(UniCard, AnImagePlacedTwiceIsLoadedOnce) {
    HoldCard();
    RunImage(11);
    RunPlaced(1, 11, 1);
    RunPlaced(2, 11, 2);
    Load(ctImagecard);
    EXPECT_THAT(Images(), ElementsAre(11));
    EXPECT_THAT(Sent().back(),
                "SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId "
                "WHERE ImageBildID=11 OR ImageBildID=11  ORDER BY DateCaptured_SD, ImageBildID");
}

TEST_F(UniCard, ACardIsLoadedByItsOwnKeyAndNotByTheArgument) {
    HoldCard();
    RunPlaced(1, 11, 1);
    Long key = 0;
    entry->LoadCardFull(con, "1.2", key, ctImagecard);
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 1);
    EXPECT_EQ(key, 0) << "only a series gives its key back";
}

TEST_F(UniCard, ASecondLoadOfACardReplacesAll) {
    HoldCard();
    RunImage(11);
    RunPlaced(1, 11, 1);
    Load(ctImagecard);
    const Ref<cImages> first = entry->colImages;
    Load(ctImagecard);
    EXPECT_FALSE(entry->colImages == first);
    EXPECT_EQ(entry->colImages->Count(), 1);
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 1);
}

TEST_F(UniCard, AnAbsentCardRaises) {
    const Error failure = FailureOf([&] { Load(ctImagecard); });
    EXPECT_EQ(failure.Number, 91);
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_TRUE(entry->colImages) << "made before";
}

TEST_F(UniCard, PlacedImagesThatCannotBeReadAreReportedAndTheOldOnesAreNumbered) {
    HoldCard();
    RunImage(11);
    RunPlaced(1, 11, 8);
    Load(ctImagecard);
    PlacedAt(1)->IASequence = 8;
    Run("DROP TABLE ImageAttribute_T");
    const TextBoxes boxes;
    EXPECT_EQ(Load(ctImagecard), 0);
    EXPECT_EQ(boxes.shown.size(), 1U);
    EXPECT_EQ(PlacedAt(1)->IASequence, 1);
    EXPECT_THAT(Images(), ElementsAre(11));
}

TEST_F(UniCard, ImagesOfACardThatCannotBeReadFailTheLoad) {
    HoldCard();
    RunPlaced(1, 11, 8);
    Run("DROP TABLE ImageBild_T");
    const TextBoxes boxes;
    EXPECT_EQ(FailureOf([&] { Load(ctImagecard); }).Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(PlacedAt(1)->IASequence, 1) << "what was loaded before stays";
    EXPECT_THAT(boxes.shown, IsEmpty());
}

// ---- loading a series -----------------------------------------------------------------------------------

TEST_F(UniCard, ASeriesLoadsOnlyItsImagesAndItsLayout) {
    HoldSeries();
    RunTemplate("400", "300");
    RunImage(11);
    EXPECT_EQ(Load(ctseries), 0);
    EXPECT_THAT(Sent(), ElementsAre(imagesOfFive, templateOfSix, slotsOfOne));
    EXPECT_THAT(Images(), ElementsAre(11));
    EXPECT_EQ(entry->Template->TCID, 1);
}

TEST_F(UniCard, TheNumberOfStatementsOfASeriesDoesNotGrowWithItsImages) {
    HoldSeries();
    RunTemplate("400", "300");
    for (Long key = 1; key <= 30; ++key) RunImage(key);
    Load(ctseries);
    EXPECT_EQ(entry->colImages->Count(), 30);
    EXPECT_EQ(Sent().size(), 3U);
}

TEST_F(UniCard, ASeriesIsStillASeriesWithItsCardInMemory) {
    HoldSeries();
    RunTemplate("400", "300");
    Load(ctseries);
    ASSERT_TRUE(entry->Imagecard);
    EXPECT_EQ(entry->CardType(), ctseries);
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM ImageCard_T"), Variant(Long{0}));
}

TEST_F(UniCard, TheCardOfASeriesHasTheCanvasOfTheLayout) {
    HoldSeries();
    RunTemplate("400.5", "301.5");
    Load(ctseries);
    EXPECT_EQ(entry->Imagecard->ICWidth, 400) << "half to even";
    EXPECT_EQ(entry->Imagecard->ICHeight, 302);
    EXPECT_EQ(entry->Imagecard->ICID, 0);
    EXPECT_EQ(entry->Imagecard->ICPID, 0);
    EXPECT_EQ(entry->Imagecard->ICName, "");
    EXPECT_EQ(entry->Imagecard->ICCreateDate, Date{});
}

TEST_F(UniCard, ALayoutWithoutASizeIsTakenAsAThousandBySevenHundred) {
    HoldSeries();
    RunTemplate("0", "0");
    Load(ctseries);
    EXPECT_EQ(entry->Imagecard->ICHeight, 700);
    EXPECT_EQ(entry->Imagecard->ICWidth, 1000);
    EXPECT_EQ(entry->Template->TCHeight, 700) << "the layout keeps it";
    EXPECT_EQ(entry->Template->TCWidth, 1000);
}

TEST_F(UniCard, EachSideOfTheLayoutHasItsUsualSizeByItself) {
    HoldSeries();
    RunTemplate("400", "NULL");
    Load(ctseries);
    EXPECT_EQ(entry->Imagecard->ICHeight, 700);
    EXPECT_EQ(entry->Imagecard->ICWidth, 400);
}

TEST_F(UniCard, AnUnknownLayoutIsAnEmptyCanvasOfTheUsualSize) {
    HoldSeries(99);
    RunImage(11, "4");
    Load(ctseries);
    EXPECT_THAT(Sent(), ElementsAre(imagesOfFive, "SELECT * FROM TemplateCard_T WHERE TCDicomId = 99"));
    EXPECT_EQ(entry->Template->TCID, 0);
    EXPECT_EQ(entry->Imagecard->ICHeight, 700);
    EXPECT_EQ(entry->Imagecard->ICWidth, 1000);
    EXPECT_THAT(PlaceAt(1), ElementsAre(0, 0, 0.19, 0.19));
}

TEST_F(UniCard, LayoutZeroIsReadAsKeyZero) {
    HoldSeries(0);
    RunTemplate("400", "300");
    Load(ctseries);
    EXPECT_THAT(Sent(), ElementsAre(imagesOfFive, "SELECT * FROM TemplateCard_T WHERE TemplateID = 0"));
    EXPECT_EQ(entry->Imagecard->ICWidth, 1000);
}

TEST_F(UniCard, ImagesTakeTheSlotsOfTheirFrames) {
    HoldSeries();
    RunTemplate("400", "300");
    RunSlot(51, 1, 1);
    RunSlot(52, 2, 2);
    RunImage(11, "2");
    RunImage(12, "1");
    RunImage(13, "7");
    Load(ctseries);
    EXPECT_THAT(PlaceAt(1), ElementsAre(2, 2.25, 2.5, 2.75));
    EXPECT_THAT(PlaceAt(2), ElementsAre(1, 1.25, 1.5, 1.75));
    EXPECT_THAT(PlaceAt(3), ElementsAre(0, 0, 0.19, 0.19));
}

TEST_F(UniCard, TheFirstOfTwoSlotsOfOneNumberCounts) {
    HoldSeries();
    RunTemplate("400", "300");
    RunSlot(51, 3, 1);
    RunSlot(52, 3, 2);
    RunImage(11, "3");
    Load(ctseries);
    const Ref<cTemplateAttribute> first =
        To<Ref<cTemplateAttribute>>(entry->Template->TemplateAttributes->Item(Long{1}));
    EXPECT_EQ(PlacedAt(1)->IAPosX, first->TAPosX);
    EXPECT_EQ(PlacedAt(1)->IAPosX, 1);
}

TEST_F(UniCard, EachPlacedImageIsNumberedUnderANegativeKey) {
    HoldSeries();
    RunTemplate("400", "300");
    for (const Long key : {11, 12}) RunImage(key);
    Load(ctseries);
    for (const Long number : {1, 2}) {
        const Ref<cImagecardAttribute> placed = PlacedAt(number);
        EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Item("K-" + CStr(number)), Variant(placed));
        EXPECT_EQ(placed->ID, -number);
        EXPECT_EQ(placed->IASequence, number);
        EXPECT_EQ(placed->ImageID, 10 + number);
        EXPECT_EQ(placed->ICID, 0);
        EXPECT_EQ(placed->IAMirrRotStatus, 1);
        EXPECT_FALSE(placed->ToBeDeleted);
        EXPECT_EQ(placed->Manipulations->Count(), 0);
    }
}

TEST_F(UniCard, TheSeventhImageWithoutASlotIsTheSecondOfTheSecondRow) {
    HoldSeries();
    RunTemplate("400", "300");
    RunSlot(51, 1, 1);
    for (Long key = 11; key <= 17; ++key) RunImage(key);
    Load(ctseries);
    for (Long m = 1; m <= 7; ++m)
        EXPECT_THAT(PlaceAt(m), ElementsAre((m - 1) % 5 * 0.2, (m - 1) / 5 * 0.2, 0.19, 0.19)) << m;
    EXPECT_THAT(PlaceAt(7), ElementsAre(0.2, 0.2, 0.19, 0.19));
}

TEST_F(UniCard, ANonNumericFrameFailsTheLoadAfterTheImagesBeforeIt) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    HoldSeries();
    RunTemplate("400", "300");
    RunSlot(51, 1, 1);
    RunImage(11, "1");
    RunImage(12, "'x'");
    RunImage(13, "1");
    EXPECT_EQ(FailureOf([&] { Load(ctseries); }).Number, 13);
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 1);
    EXPECT_EQ(entry->colImages->Count(), 3);
}

TEST_F(UniCard, ANonNumericFrameIsIgnoredIfTheLayoutHasNoSlot) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    HoldSeries();
    RunTemplate("400", "300");
    RunImage(11, "'x'");
    EXPECT_EQ(FailureOf([&] { Load(ctseries); }).Number, 0);
    ASSERT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 1);
    EXPECT_THAT(PlaceAt(1), ElementsAre(0, 0, 0.19, 0.19));
}

TEST_F(UniCard, MoreImagesThanASixteenBitNumberCountsFailTheLoad) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());  // each of a million values would be a call by name
    HoldSeries(0);
    Run("INSERT INTO ImageBild_T"
        " (Series_ID, PatientID, DateCaptured_SD, Brightness_INT, Contrast_INT, ImageType, Invert_BT, RootId) VALUES " +
        ManyRows(32768, [](Long) { return "5, 7, '2024-01-01 00:00:00', 0, 0, 0, 0, 1"; }));
    EXPECT_EQ(FailureOf([&] { Load(ctseries); }).Number, 6);
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 32767);
    EXPECT_EQ(PlacedAt(32767)->ID, -32767);
}

TEST_F(UniCard, KeyZeroTakesTheKeyOfTheSeriesInTheCallersVariableToo) {
    HoldSeries();
    Long key = 0;
    entry->LoadCardFull(con, "", key, ctseries);
    EXPECT_EQ(key, 5);
    EXPECT_EQ(Sent().at(0), imagesOfFive);
}

TEST_F(UniCard, ALateBoundCallerGetsTheKeyBack) {
    HoldSeries();
    std::vector<Variant> arguments{Variant(con), "", Long{0}, Long{2}};
    EXPECT_EQ(Invoke(*entry, "LoadCardFull", MemberKind::Operation, arguments), Variant(Long{0}));
    EXPECT_EQ(arguments[2], Variant(Long{5}));
}

TEST_F(UniCard, AnyOtherKeyHasPrecedenceOverTheKeyOfTheSeries) {
    HoldSeries();
    Long key = 9;
    entry->LoadCardFull(con, "1.2", key, ctseries);
    EXPECT_EQ(key, 9);
    EXPECT_EQ(Sent().at(0), Replace(imagesOfFive, "Series_ID=5", "Series_ID=9"));
}

TEST_F(UniCard, AnAbsentSeriesRaisesBeforeAnythingIsLoaded) {
    for (const Long given : {0, 9}) {
        for (const char* uid : {"", "1.2"}) {
            Long key = given;
            EXPECT_EQ(FailureOf([&] { entry->LoadCardFull(con, uid, key, ctseries); }).Number, 91);
            EXPECT_EQ(key, given);
            EXPECT_FALSE(entry->Template);
            EXPECT_FALSE(entry->Imagecard);
        }
    }
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(UniCard, ImagesOfASeriesThatCannotBeReadFailTheLoad) {
    HoldSeries();
    Run("DROP TABLE ImageBild_T");
    EXPECT_EQ(FailureOf([&] { Load(ctseries); }).Number, static_cast<Long>(0x80040E37));
    EXPECT_FALSE(entry->Template);
}

TEST_F(UniCard, ALayoutThatCannotBeReadFailsTheLoadAfterTheImages) {
    HoldSeries();
    RunImage(11);
    Run("DROP TABLE TemplateCard_T");
    EXPECT_EQ(FailureOf([&] { Load(ctseries); }).Number, static_cast<Long>(0x80040E37));
    EXPECT_THAT(Images(), ElementsAre(11));
    EXPECT_FALSE(entry->Imagecard);
}

TEST_F(UniCard, ASecondLoadOfASeriesCreatesItsCardAgain) {
    HoldSeries();
    RunTemplate("400", "300");
    RunImage(11);
    Load(ctseries);
    const Ref<cImagecard> first = entry->Imagecard;
    Load(ctseries);
    EXPECT_FALSE(entry->Imagecard == first);
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 1);
}

// ---- the kind asked for ---------------------------------------------------------------------------------

TEST_F(UniCard, TheArgumentIsUsedAndNotTheEntrysValue) {
    HoldSeries();
    HoldCard();
    RunPlaced(1, 11, 1);
    Load(ctImagecard);
    EXPECT_EQ(entry->Imagecard->ICID, 5);
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 1);
    EXPECT_FALSE(entry->Template);
}

TEST_F(UniCard, AnyOtherKindLeavesAnEmptyCollectionOfImages) {
    HoldSeries();
    HoldCard();
    for (const Long kind : {0, 3, -1}) {
        entry->colImages = nullptr;
        EXPECT_EQ(Load(static_cast<CardTypes>(kind)), 0);
        ASSERT_TRUE(entry->colImages);
        EXPECT_EQ(entry->colImages->Count(), 0);
    }
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(UniCard, TheMarkOfALoadedEntryIsLeftToTheClient) {
    for (const bool mark : {false, true}) {
        entry->Fullyloaded = mark;
        HoldCard();
        Load(ctImagecard);
        EXPECT_EQ(entry->Fullyloaded, mark);
        HoldSeries();
        Load(ctseries);
        EXPECT_EQ(entry->Fullyloaded, mark);
    }
}

}  // namespace
}  // namespace OXClass

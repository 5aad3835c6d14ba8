#include "images/cImages.h"
#include "kit/FaultyProvider.h"
#include "platform/component/dispatch/Interface.h"
#include "series/cSerie.h"

/// A series that is stored as an image card.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const templateOfSix = "SELECT * FROM TemplateCard_T WHERE TCDicomId = 6";
const char* const slotsOfOne =
    "SELECT TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation, TAFullViewWidth, "
    "TAFullViewHeight, TAFullViewPosX, TAFullViewPosY,TAPreviewWidth, TAPreviewHeight, TAPreviewPosX, "
    "TAPreviewPosY, TANumberInTemplate , TAProportions, TAComments, TATGId FROM TemplateAttribute_T WHERE "
    "TemplateID = 1 ORDER BY TANumberInTemplate";
const char* const newCard =
    "INSERT INTO ImageCard_T (PatientId, ICName, ICDateCreated, ICLastUpdate, ICDescription, "
    "ICFullViewWidth, ICFullViewHeight, ICMaximized) VALUES (7, 'O''Mouth', '2024-05-06 07:08:09', "
    "'2024-05-06 07:08:09', '', 400, 300, 0);";
const char* const keyOfCard = "SELECT MAX(ImageCardId) FROM ImageCard_T WHERE PatientId = 7;";

String Placed(const String& values) {
    return "INSERT INTO ImageAttribute_T (ImageCardId, ImageBildId, IAFullViewWidth, IAFullViewHeight, "
           "IAFullViewPosX, IAFullViewPosY, IAContrast, IABrightness, IAInvert, IARotation, IASharpen, "
           "IASoften, IAZoom, IAGamma, IAHorizontalMirror, IAVerticalMirror, IAHistoEqualize, "
           "IAStretchIntensity, IAHistogram, IASequence, IAComments, IAMirrRotStatus , IAColorized, "
           "IAAttCorr) VALUES (" +
           values + ", '', 0, 0, 0);";
}
String KeyOfPlaced(Long image, Long sequence) {
    return "SELECT MAX(ImageAttributeId) FROM ImageAttribute_T WHERE ((ImageCardId = 1) AND (ImageBildId = " +
           CStr(image) + ") AND (IASequence = " + CStr(sequence) + "));";
}
String StepsOf(Long placed) { return "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=" + CStr(placed) + ";"; }

class SeriesAsCard : public WithDatabase {
protected:
    SeriesAsCard() {
        series->SeriesDateTime = DateFrom({2024, 5, 6, 7, 8, 9});
        series->SeriesName = "O'Mouth";
        series->TemplateID = 6;
        RunTemplate("400", "300");
    }

    void RunTemplate(const String& width, const String& height) {
        Run("DELETE FROM TemplateCard_T");
        Run("INSERT INTO TemplateCard_T (TemplateID, TCName, TCDicomId, TCFullViewWidth, TCFullViewHeight)"
            " VALUES (1, 'layout', 6, " +
            width + ", " + height + ")");
    }

    void RunSlot(Long number, double measure) {
        Run("INSERT INTO TemplateAttribute_T (TemplateID, TAGroupName, TASequence, TARotation,"
            " TANumberInTemplate, TAFullViewPosX, TAFullViewPosY, TAFullViewWidth, TAFullViewHeight) VALUES "
            "(1, '', " +
            CStr(number) + ", 0, " + CStr(number) + ", " + CStr(measure) + ", " + CStr(measure + 0.25) + ", " +
            CStr(measure + 0.5) + ", " + CStr(measure + 0.75) + ")");
    }

    Ref<cImage> AddImage(Long key, Long frame = 0) {
        const Ref<cImage> image = New<cImage>();
        image->ID = key;
        image->PatID = 7;
        image->FrameNumber = frame;
        images->Add(image);
        return image;
    }

    void Save() { series->SaveAsIC(con, images); }
    Long FailureOfSave() {
        return FailureOf([&] { Save(); }).Number;
    }

    /// Sequence, image, left, top, width and height of each placed image that is stored.
    std::vector<String> Stored() {
        std::vector<String> rows;
        const Ref<Recordset> rs = Connect()->Execute("SELECT * FROM ImageAttribute_T ORDER BY ImageAttributeID");
        const auto text = [&](std::string_view column) { return rs->Fields(column).As<String>(); };
        for (; !rs->Eof(); rs->MoveNext())
            rows.push_back(text("IASequence") + ": " + text("ImageBildId") + " at " + text("IAFullViewPosX") + " " +
                           text("IAFullViewPosY") + ", " + text("IAFullViewWidth") + " x " + text("IAFullViewHeight"));
        return rows;
    }
    Long CountOf(const String& table) { return CLng(Ask("SELECT COUNT(*) FROM " + table)); }

    const Ref<cSerie> series = New<cSerie>();
    const Ref<Collection> images = New<Collection>();
};

TEST_F(SeriesAsCard, WithoutImagesSendsNothing) {
    Save();
    series->SaveAsIC(con, New<cImages>());
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(CountOf("ImageCard_T"), 0);
}

TEST_F(SeriesAsCard, WithoutImagesNeedsNoConnection) {
    EXPECT_EQ(FailureOf([&] { series->SaveAsIC(nullptr, images); }).Number, 0);
}

TEST_F(SeriesAsCard, WithoutACollectionRaises) {
    EXPECT_EQ(FailureOf([&] { series->SaveAsIC(con, nullptr); }).Number, 91);
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(SeriesAsCard, SendsTheLayoutTheCardAndEachPlacedImage) {
    RunSlot(3, 1);
    AddImage(11, 3);
    AddImage(12);
    Save();
    EXPECT_THAT(Sent(), ElementsAre(templateOfSix, slotsOfOne, newCard, keyOfCard,
                                    Placed("1, 11, 1.5, 1.75, 1, 1.25, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1"),
                                    KeyOfPlaced(11, 1), StepsOf(1),
                                    Placed("1, 12, 0.19, 0.19, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2"),
                                    KeyOfPlaced(12, 2), StepsOf(2)));
}

TEST_F(SeriesAsCard, ACollectionOfImagesWorksAsAPlainOneDoes) {
    const Ref<cImages> own = New<cImages>();
    Ref<cImage> image = AddImage(11, 3);
    own->AddObject(image);
    series->SaveAsIC(con, own);
    EXPECT_THAT(Stored(), ElementsAre("1: 11 at 0 0, 0.19 x 0.19"));
}

TEST_F(SeriesAsCard, ALateBoundCallerPassesEitherCollection) {
    AddImage(11);
    const Ref<cImages> own = New<cImages>();
    Ref<cImage> image = New<cImage>();
    own->AddObject(image);
    for (const Ref<Object>& given : {Ref<Object>(images), Ref<Object>(own)}) {
        std::vector<Variant> arguments{Variant(con), Variant(given)};
        Invoke(*series, "SaveAsIC", MemberKind::Operation, arguments);
    }
    EXPECT_EQ(CountOf("ImageCard_T"), 2);
}

TEST_F(SeriesAsCard, LeavesTheSeriesAsItIs) {
    AddImage(11);
    Save();
    EXPECT_EQ(series->ID, 0);
    EXPECT_EQ(series->TemplateID, 6);
    EXPECT_EQ(CountOf("Series_T"), 0);
}

TEST_F(SeriesAsCard, TheCardBelongsToThePatientOfTheFirstImage) {
    AddImage(11)->PatID = 8;
    AddImage(12);
    Save();
    EXPECT_EQ(Ask("SELECT PatientID FROM ImageCard_T"), Variant(Long{8}));
}

TEST_F(SeriesAsCard, ASecondSaveMakesASecondCard) {
    AddImage(11);
    Save();
    Save();
    EXPECT_EQ(CountOf("ImageCard_T"), 2);
    EXPECT_EQ(Ask("SELECT COUNT(DISTINCT ImageCardID) FROM ImageAttribute_T"), Variant(Long{2}));
}

TEST_F(SeriesAsCard, TheMirrorStatusIsUnchanged) {
    AddImage(11)->MirrRotStatus = 5;
    Save();
    EXPECT_EQ(Ask("SELECT IAMirrRotStatus FROM ImageAttribute_T"), Variant(Long{0}));
}

TEST_F(SeriesAsCard, AnImageWithoutAKeyIsNotStoredButKeepsItsCell) {
    AddImage(11);
    AddImage(0);
    AddImage(13);
    Save();
    EXPECT_THAT(Stored(), ElementsAre("1: 11 at 0 0, 0.19 x 0.19", "2: 13 at 0.4 0, 0.19 x 0.19"));
}

// ---- places -------------------------------------------------------------------------------------------

TEST_F(SeriesAsCard, FrameZeroLandsInTheGrid) {
    RunSlot(1, 1);
    AddImage(11, 0);
    Save();
    EXPECT_THAT(Stored(), ElementsAre("1: 11 at 0 0, 0.19 x 0.19"));
}

TEST_F(SeriesAsCard, SixImagesWithoutASlotBeginASecondRow) {
    for (Long key = 11; key <= 16; ++key) AddImage(key, key);
    Save();
    EXPECT_THAT(Stored(), ElementsAre("1: 11 at 0 0, 0.19 x 0.19", "2: 12 at 0.2 0, 0.19 x 0.19",
                                      "3: 13 at 0.4 0, 0.19 x 0.19", "4: 14 at 0.6 0, 0.19 x 0.19",
                                      "5: 15 at 0.8 0, 0.19 x 0.19", "6: 16 at 0 0.2, 0.19 x 0.19"));
}

TEST_F(SeriesAsCard, OfTwoSlotsOfOneNumberTheFirstCounts) {
    RunSlot(3, 1);
    RunSlot(3, 2);
    AddImage(11, 3);
    Save();
    EXPECT_THAT(Stored(), ElementsAre("1: 11 at 1 1.25, 1.5 x 1.75"));
}

TEST_F(SeriesAsCard, AnImageInASlotTakesNoCell) {
    RunSlot(3, 1);
    AddImage(11);
    AddImage(12, 3);
    AddImage(13);
    Save();
    EXPECT_THAT(Stored(),
                ElementsAre("1: 11 at 0 0, 0.19 x 0.19", "2: 12 at 1 1.25, 1.5 x 1.75", "3: 13 at 0.2 0, 0.19 x 0.19"));
}

// ---- canvas -------------------------------------------------------------------------------------------

TEST_F(SeriesAsCard, HalvesOfTheCanvasAreRoundedToTheEvenNumber) {
    RunTemplate("400.5", "301.5");
    AddImage(11);
    Save();
    EXPECT_EQ(Ask("SELECT ICFullViewWidth FROM ImageCard_T"), Variant(400.0));
    EXPECT_EQ(Ask("SELECT ICFullViewHeight FROM ImageCard_T"), Variant(302.0));
}

TEST_F(SeriesAsCard, AnUnknownLayoutHasACanvasOfZero) {
    series->TemplateID = 99;
    AddImage(11);
    Save();
    EXPECT_EQ(Sent().at(0), "SELECT * FROM TemplateCard_T WHERE TCDicomId = 99");
    EXPECT_EQ(Ask("SELECT ICFullViewWidth + ICFullViewHeight FROM ImageCard_T"), Variant(0.0));
}

TEST_F(SeriesAsCard, LayoutZeroIsReadAsKeyZero) {
    series->TemplateID = 0;
    AddImage(11);
    Save();
    EXPECT_EQ(Sent().at(0), "SELECT * FROM TemplateCard_T WHERE TemplateID = 0");
}

TEST_F(SeriesAsCard, ACanvasBeyondALongStoresNothing) {
    RunTemplate("3000000000", "300");
    AddImage(11);
    EXPECT_EQ(FailureOfSave(), 6);
    EXPECT_THAT(Sent(), ElementsAre(templateOfSix, slotsOfOne));
}

// ---- members that are not images ------------------------------------------------------------------------

TEST_F(SeriesAsCard, AFirstMemberThatIsNotAnObjectRaises) {
    images->Add(Long{5});
    EXPECT_EQ(FailureOfSave(), 424);
    EXPECT_THAT(Sent(), ElementsAre(templateOfSix, slotsOfOne));
}

TEST_F(SeriesAsCard, AFirstMemberThatIsNullRaises) {
    images->Add(Variant(Ref<Object>()));
    EXPECT_EQ(FailureOfSave(), 91);
    EXPECT_THAT(Sent(), ElementsAre(templateOfSix, slotsOfOne));
}

TEST_F(SeriesAsCard, AFirstMemberWithoutAPatientRaises) {
    images->Add(New<cSerie>());
    EXPECT_EQ(FailureOfSave(), 438);
    EXPECT_THAT(Sent(), ElementsAre(templateOfSix, slotsOfOne));
}

TEST_F(SeriesAsCard, ALaterMemberThatIsNotAnImageRaisesBeforeTheCardIsStored) {
    AddImage(11);
    images->Add(New<cSerie>());
    EXPECT_EQ(FailureOfSave(), 13);
    EXPECT_THAT(Sent(), ElementsAre(templateOfSix, slotsOfOne));
}

TEST_F(SeriesAsCard, ANonNumericFrameRaisesBeforeTheCardIsStored) {
    RunSlot(3, 1);
    AddImage(11)->FrameNumber = LateNumber(Variant("x"));
    EXPECT_EQ(FailureOfSave(), 13);
    EXPECT_THAT(Sent(), ElementsAre(templateOfSix, slotsOfOne));
}

TEST_F(SeriesAsCard, ANonNumericFrameIsIgnoredIfTheLayoutHasNoSlot) {
    AddImage(11)->FrameNumber = LateNumber(Variant("x"));
    EXPECT_EQ(FailureOfSave(), 0);
    EXPECT_THAT(Stored(), ElementsAre("1: 11 at 0 0, 0.19 x 0.19"));
}

// ---- failures -------------------------------------------------------------------------------------------

TEST_F(SeriesAsCard, AFailureReachesTheCallerAndKeepsTheRowsWrittenBefore) {
    const Ref<Connection> faulty = FaultyConnectionTo(database);
    AddImage(11);
    AddImage(12);
    // template, slots, card, its key, then for each image: row, key, steps
    const struct {
        int call;
        Long cards, placed;
    } cases[] = {{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 1, 0}, {5, 1, 0}, {6, 1, 1}, {8, 1, 1}, {9, 1, 2}};
    for (const auto& failing : cases) {
        FailAtCall(failing.call);
        const Error failure = FailureOf([&] { series->SaveAsIC(faulty, images); });
        FailAtCall(0);
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80004005)) << failing.call;
        EXPECT_EQ(failure.Source, "SQLite") << failing.call;
        EXPECT_EQ(failure.Description, "injected") << failing.call;
        EXPECT_EQ(CountOf("ImageCard_T"), failing.cards) << failing.call;
        EXPECT_EQ(CountOf("ImageAttribute_T"), failing.placed) << failing.call;
        for (const char* table : {"ImageCard_T", "ImageAttribute_T"}) Run("DELETE FROM " + String(table));
    }
}

TEST_F(SeriesAsCard, AFailureAtTheStepsOfAPlacedImageIsIgnored) {
    const Ref<Connection> faulty = FaultyConnectionTo(database);
    AddImage(11);
    AddImage(12);
    for (const int call : {7, 10}) {
        FailAtCall(call);
        EXPECT_EQ(FailureOf([&] { series->SaveAsIC(faulty, images); }).Number, 0) << call;
        EXPECT_EQ(CallsSoFar(), 10) << call;
        FailAtCall(0);
    }
    EXPECT_EQ(CountOf("ImageCard_T"), 2);
    EXPECT_EQ(CountOf("ImageAttribute_T"), 4);
}

}  // namespace
}  // namespace OXClass

#include "cardlist/cUniCards.h"

#include "kit/FaultyProvider.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Services.h"

#include <algorithm>
#include <regex>

/// The list of a patient's cards and series.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

String CardsOf(const String& person) {
    return "SELECT Patient_T.PatientID as PatientID,  Patient_T.*, ImageCard_T.* FROM Patient_T INNER JOIN "
           "ImageCard_T ON Patient_T.PatientId=ImageCard_T.PatientId WHERE PersonNr_CH='" +
           person + "' ORDER BY ICDateCreated desc ";
}

String PatientOf(const String& person) {
    return "SELECT Patient_T.* FROM Patient_T WHERE PersonNr_CH='" + person + "'";
}

String SeriesOf(Long patient) {
    return "SELECT Series_T.Template_ID, Series_T.SeriesDescription, Series_T.SeriesDateTime, "
           "Series_T.Derived_BT, Series_T.NumberOfImages, Series_T.Series_ID, "
           "Series_T.SeriesNumber,Series_T.SeriesInstanceUID,Series_T.OrgServerID , "
           "Study_T.StudyInstanceUID,Study_T.ReferDrName, Study_T.PhysOfRecord, Study_T.StudyDesc , "
           "Study_T.StudyDateTime, Study_T.StudyID, Study_T.Study_ID, Study_T.PatientID, "
           "Study_T.Accessionnumber, Count(Series_T.Series_ID) AS ImageCount, Max(ImageBild_T.ImageBildID) "
           "AS ZeroImages, Sum(ImageBild_T.Approved) AS ApprovedSum, Sum(ImageBild_T.DicomStatus_INT) AS "
           "DicomStatusSum, series_T.ICShortcut FROM (Study_T INNER JOIN Series_T ON Study_T.Study_ID = "
           "Series_T.study_id) LEFT JOIN ImageBild_T ON (Series_T.Series_ID = ImageBild_T.Series_ID and "
           "ImageBild_T.GraphicURL_NVC <> '') Where Study_T.patientid =" +
           CStr(patient) +
           " GROUP BY Series_T.Series_ID, Study_T.StudyInstanceUID, Study_T.StudyDateTime, "
           "Study_T.StudyID,Study_T.StudyDesc, Study_T.ReferDrName, Series_T.SeriesInstanceUID, "
           "Series_T.SeriesNumber, Study_T.Study_ID, Study_T.PatientID,  "
           "Study_T.PhysOfRecord,Study_T.Accessionnumber, Series_T.SeriesNumber,series_T.ICShortcut, "
           "Series_T.NumberOfImages, Series_T.OrgServerID, Series_T.SeriesDescription, "
           "Series_T.SeriesDateTime, Series_T.Derived_BT,Series_T.Template_ID ORDER BY "
           "Study_T.StudyDateTime DESC, Series_T.Series_ID DESC";
}

String Orphan(Long series) { return "select * from Series_T where Series_T.Series_ID=" + CStr(series); }

String Box(const String& number, int step, const String& description) {
    return "cUniCards.GetICAndSEList4Patient error: " + number + ", " + CStr(Long{step}) + "\r\n" + description;
}

String InvalidNullAt(int step) { return Box("94", step, "Invalid use of Null"); }

const char* const noon = "2024-05-06 12:00:00";

class UniCards : public WithDatabase {
protected:
    UniCards() {
        TheHost().Now = [this] { return now; };
        Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (7, 'ANNA'), (8, 'BEN')");
        Run("INSERT INTO Study_T (Study_ID, PatientID, StudyInstanceUID, StudyDateTime, Studydesc, studyID,"
            " accessionNumber, referDrName, PhysOfRecord) VALUES (3, 7, '1.3', '2024-01-01 08:00:00',"
            " 'check', 'S3', 'acc', 'Dr. Ref', 'Dr. Rec')");
    }
    ~UniCards() override { TheHost().Now = clock; }

    /// Writes a card of Anna of which every column is filled, then changes columns.
    void RunCard(Long key, const String& created, const String& changes = {}) {
        Run("INSERT INTO ImageCard_T (ImageCardID, PatientID, ICName, ICDateCreated, ICLastUpdate,"
            " ICDescription, ICFullViewWidth, ICFullViewHeight, ICPreviewWidth, ICPreviewHeight) VALUES (" +
            CStr(key) + ", 7, 'card', '" + created + "', '2024-02-02 02:02:02', 'about', 1000, 700, 100, 70)");
        Change("ImageCard_T", "ImageCardID", key, changes);
    }

    /// Writes a series without images of Anna's study, then changes columns.
    void RunSeries(Long key, const String& taken, const String& changes = {}) {
        Run("INSERT INTO Series_T (Series_ID, Study_ID, SeriesInstanceUID, seriesNumber, template_ID,"
            " orgServerID, SeriesDescription, SeriesDateTime, Derived_BT) VALUES (" +
            CStr(key) + ", 3, '1.3." + CStr(key) + "', '4', 6, 0, 'bitewings', '" + taken + "', 0)");
        Change("Series_T", "Series_ID", key, changes);
    }

    /// Writes an image with a file.
    void RunImage(Long series, const String& approved = "1", const String& status = "0") {
        Run("INSERT INTO ImageBild_T (Series_ID, GraphicURL_NVC, Approved, DicomStatus_INT) VALUES (" + CStr(series) +
            ", 'a.dcm', " + approved + ", " + status + ")");
    }

    void RunSeriesWithImage(Long key, const String& taken, const String& changes = {}) {
        RunSeries(key, taken, changes);
        RunImage(key);
    }

    void Change(const String& table, const String& column, Long key, const String& changes) {
        if (!changes.empty()) Run("UPDATE " + table + " SET " + changes + " WHERE " + column + "=" + CStr(key));
    }

    Long Load(const String& person = "ANNA") { return list->GetICAndSEList4Patient(con, person, 0); }

    std::vector<String> Keys() const {
        std::vector<String> keys;
        for (const cUniCard& entry : *list) keys.push_back(entry.Key);
        return keys;
    }

    Ref<cSerie> SeriesAt(const String& key) const { return list->Item(key)->Series; }

    Long CountOf(const String& table) { return CLng(Ask("SELECT COUNT(*) FROM " + table)); }

    /// Loads, and expects nothing but this text box and this result.
    void LoadFails(const String& box, Long result) {
        const TextBoxes boxes;
        EXPECT_EQ(Load(), result);
        EXPECT_THAT(boxes.shown, ElementsAre(box));
    }

    /// An entry of the client's own.
    static Ref<cUniCard> CardOf(const String& key, double days) {
        const Ref<cUniCard> entry = New<cUniCard>();
        entry->Key = key;
        entry->Imagecard = New<cImagecard>();
        entry->Imagecard->ICCreateDate = Date{days};
        return entry;
    }

    const std::function<Date()> clock = TheHost().Now;
    Date now = DateFrom({2024, 5, 6, 12, 10, 0});
    Ref<cUniCards> list = New<cUniCards>();
};

TEST_F(UniCards, HaveTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(*list),
                ElementsAre("GetICAndSEList4Patient(conn: Connection&, sPID: string&, lPID: int32&, [FromDate: date&], "
                            "[ToDate: date&]) -> int32",
                            "AddObj(oUC: cUniCard&, [sKey: string&], [sBefore: string&]) -> boolean",
                            "get Item(vntIndexKey: variant) -> cUniCard", "get Count -> int32",
                            "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator"));
}

TEST_F(UniCards, ItemIsTheDefaultMemberAndNewEnumTheEnumerator) {
    EXPECT_EQ(list->Describe().Find("Item")->DispId, 0);
    EXPECT_EQ(list->Describe().Find("NewEnum")->DispId, -4);
}

TEST_F(UniCards, AMissingMemberRaises) {
    EXPECT_EQ(FailureOf([&] { list->Item(Long{1}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { list->Item("IC1"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { list->Remove(Long{1}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { list->Remove("IC1"); }).Number, 5);
}

// ---- statements -----------------------------------------------------------------------------------

TEST_F(UniCards, APatientWithoutEntriesSetsTheKeyAndAnEmptyList) {
    EXPECT_EQ(Load(), 7);
    EXPECT_EQ(list->Count(), 0);
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("ANNA"), PatientOf("ANNA"), SeriesOf(7)));
}

TEST_F(UniCards, AnUnknownPatientReadsTheSeriesOfKeyZero) {
    RunCard(1, noon);
    EXPECT_EQ(Load("NOBODY"), 0);
    EXPECT_EQ(list->Count(), 0);
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("NOBODY"), PatientOf("NOBODY"), SeriesOf(0)));
}

TEST_F(UniCards, APatientWithCardsIsNotSearched) {
    RunCard(1, noon);
    EXPECT_EQ(Load(), 7);
    EXPECT_THAT(Keys(), ElementsAre("IC1"));
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("ANNA"), SeriesOf(7)));
}

TEST_F(UniCards, APatientWithSeriesOnlyIsSearched) {
    RunSeriesWithImage(1, noon);
    EXPECT_EQ(Load(), 7);
    EXPECT_THAT(Keys(), ElementsAre("SE1"));
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("ANNA"), PatientOf("ANNA"), SeriesOf(7)));
}

TEST_F(UniCards, TheNumberOfStatementsDoesNotGrowWithTheList) {
    for (Long key = 1; key <= 9; ++key) {
        RunCard(key, noon);
        RunSeriesWithImage(key, noon);
    }
    Load();
    EXPECT_EQ(list->Count(), 18);
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(UniCards, EachStatementIsOpenedInItsOwnMode) {
    RunSeries(1, noon, "orgServerID=3");
    ModeLog modes;
    con->Advise(modes);
    Load();
    con->Unadvise(modes);
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("ANNA"), PatientOf("ANNA"), SeriesOf(7), Orphan(1)));
    EXPECT_THAT(modes.seen, ElementsAre("0 1 -1", "0 1 -1", "3 1 1", "1 3 1"));
}

TEST_F(UniCards, TheConnectionKeepsRowsWithTheClientAfterwards) {
    con->CursorLocation = ADODB::adUseServer;
    Load();
    EXPECT_EQ(con->CursorLocation, 3);
}

TEST_F(UniCards, TheConnectionKeepsRowsWithTheClientAfterAFailureToo) {
    con->CursorLocation = ADODB::adUseServer;
    Run("DROP TABLE ImageCard_T");
    const TextBoxes boxes;
    Load();
    EXPECT_EQ(con->CursorLocation, 3);
}

TEST_F(UniCards, TheUnusedArgumentsChangeNothing) {
    RunCard(1, noon);
    RunSeriesWithImage(2, noon);
    const Ref<cUniCards> other = New<cUniCards>();
    EXPECT_EQ(Load(), 7);
    const std::vector<String> sent = Sent();
    log.statements.clear();
    EXPECT_EQ(other->GetICAndSEList4Patient(con, "ANNA", 8, Date{1}, Date{2}), 7);
    EXPECT_EQ(Sent(), sent);
    std::vector<String> keys;
    for (const cUniCard& entry : *other) keys.push_back(entry.Key);
    EXPECT_EQ(keys, Keys());
    EXPECT_THAT(keys, ElementsAre("IC1", "SE2"));
}

TEST_F(UniCards, ALateBoundCallerMayLeaveTheDatesOut) {
    RunCard(1, noon);
    std::vector<Variant> arguments{Variant(con), "ANNA", Long{0}};
    EXPECT_EQ(Invoke(*list, "GetICAndSEList4Patient", MemberKind::Operation, arguments), Variant(Long{7}));
    EXPECT_THAT(Keys(), ElementsAre("IC1"));
}

TEST_F(UniCards, APairOfQuotesIsOneQuoteOfTheIdentifier) {
    Run("UPDATE Patient_T SET PersonNr_CH='O''HARA' WHERE PatientID=8");
    EXPECT_EQ(Load("O''HARA"), 8);
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("O''HARA"), PatientOf("O''HARA"), SeriesOf(8)));
}

TEST_F(UniCards, PatientsOfOneIdentifierShowAllTheirCardsAndOnesSeries) {
    Run("UPDATE Patient_T SET PersonNr_CH='ANNA'");
    RunCard(1, "2024-01-01 00:00:00");
    RunCard(2, "2024-01-02 00:00:00", "PatientID=8");
    RunSeriesWithImage(3, noon);
    EXPECT_EQ(Load(), 7) << "the patient of the last card";
    EXPECT_THAT(Keys(), ElementsAre("SE3", "IC2", "IC1"));
    EXPECT_EQ(list->Item("IC2")->Imagecard->ICPID, 8);
}

TEST_F(UniCards, OtherPatientsStayOut) {
    RunCard(1, noon, "PatientID=8");
    RunSeriesWithImage(1, noon);
    Run("UPDATE Study_T SET PatientID=8");
    EXPECT_EQ(Load(), 7);
    EXPECT_EQ(list->Count(), 0);
}

// ---- a card's entry ---------------------------------------------------------------------------------

TEST_F(UniCards, ACardReadsItsColumns) {
    RunCard(5, noon);
    Load();
    const Ref<cUniCard> entry = list->Item("IC5");
    const Ref<cImagecard> card = entry->Imagecard;
    EXPECT_EQ(card->ICCreateDate, DateFrom({2024, 5, 6, 12, 0, 0}));
    EXPECT_EQ(card->ICLastUpdate, DateFrom({2024, 2, 2, 2, 2, 2}));
    EXPECT_EQ(card->ICDescription, "about");
    EXPECT_EQ(card->ICName, "card");
    EXPECT_EQ(card->ICHeight, 700);
    EXPECT_EQ(card->ICWidth, 1000);
    EXPECT_EQ(card->ICID, 5);
    EXPECT_EQ(card->ICPID, 7);
    EXPECT_EQ(entry->CardType(), ctImagecard);
}

TEST_F(UniCards, ACardsEntryIsLight) {
    RunCard(5, noon);
    Load();
    const Ref<cUniCard> entry = list->Item("IC5");
    EXPECT_FALSE(entry->Fullyloaded);
    EXPECT_FALSE(entry->colImages);
    EXPECT_FALSE(entry->Template);
    EXPECT_FALSE(entry->Study);
    EXPECT_FALSE(entry->Series);
    EXPECT_FALSE(entry->mvarImgLead);
    EXPECT_EQ(entry->Imagecard->ImagecardAttributes->Count(), 0);
}

/// The canvas of a card after a change of its columns.
class CanvasOfAnEntry : public UniCards {
protected:
    String Canvas(const String& changes) {
        RunCard(5, noon, changes);
        Load();
        const Ref<cImagecard> card = list->Item("IC5")->Imagecard;
        return CStr(card->ICWidth) + " x " + CStr(card->ICHeight);
    }
};

TEST_F(CanvasOfAnEntry, ANullFullViewTakesThePreview) {
    EXPECT_EQ(Canvas("ICFullViewHeight=NULL, ICFullViewWidth=NULL"), "100 x 70");
}

TEST_F(CanvasOfAnEntry, AFullViewOfZeroTakesThePreview) {
    EXPECT_EQ(Canvas("ICFullViewHeight=0, ICFullViewWidth=0"), "100 x 70");
}

TEST_F(CanvasOfAnEntry, AnEmptyFullViewTakesThePreview) {
    EXPECT_EQ(Canvas("ICFullViewHeight='', ICFullViewWidth=''"), "100 x 70");
}

TEST_F(CanvasOfAnEntry, EachSideFallsBackByItself) { EXPECT_EQ(Canvas("ICFullViewWidth=NULL"), "100 x 700"); }

TEST_F(CanvasOfAnEntry, NullsInBothViewsAreZero) {
    EXPECT_EQ(Canvas("ICFullViewHeight=NULL, ICPreviewHeight=NULL"), "1000 x 0");
}

TEST_F(CanvasOfAnEntry, AHalfIsRoundedToTheEvenNumber) {
    EXPECT_EQ(Canvas("ICFullViewHeight=700.5, ICFullViewWidth=701.5"), "702 x 700");
}

TEST_F(CanvasOfAnEntry, ReadsTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    EXPECT_EQ(Canvas("ICFullViewHeight=12.6, ICFullViewWidth=0, ICPreviewWidth=3.4"), "3 x 13");
}

// ---- a series' entry --------------------------------------------------------------------------------

TEST_F(UniCards, ASeriesReadsItsColumns) {
    RunSeriesWithImage(5, noon, "orgServerID=9, Derived_BT=1");
    Load();
    const Ref<cUniCard> entry = list->Item("SE5");
    const Ref<cSerie> series = entry->Series;
    EXPECT_EQ(series->ID, 5);
    EXPECT_EQ(series->OrgServer, 9);
    EXPECT_EQ(series->SeriesDescription, "bitewings");
    EXPECT_EQ(series->SeriesDateTime, DateFrom({2024, 5, 6, 12, 0, 0}));
    EXPECT_EQ(series->seriesNumber, "4");
    EXPECT_EQ(series->instanceUID, "1.3.5");
    EXPECT_EQ(series->studyID, 3);
    EXPECT_TRUE(series->SeriesDerived);
    EXPECT_EQ(series->TemplateID, 6);
    EXPECT_EQ(series->ImgCount, 1);
    EXPECT_EQ(series->Modality, "") << "the list doesn't read it";
    EXPECT_EQ(series->Key, "");
    EXPECT_EQ(entry->CardType(), ctseries);
}

TEST_F(UniCards, ASeriesEntryIsLight) {
    RunSeriesWithImage(5, noon);
    Load();
    const Ref<cUniCard> entry = list->Item("SE5");
    EXPECT_FALSE(entry->Fullyloaded);
    EXPECT_FALSE(entry->Imagecard);
    EXPECT_FALSE(entry->colImages);
    EXPECT_FALSE(entry->Template);
}

TEST_F(UniCards, ItsStudyReadsItsColumns) {
    RunSeriesWithImage(5, noon);
    Load();
    const Ref<cStudy> study = list->Item("SE5")->Study;
    EXPECT_EQ(study->studyID, "S3");
    EXPECT_EQ(study->dateTime, DateFrom({2024, 1, 1, 8, 0, 0}));
    EXPECT_EQ(study->description, "check");
    EXPECT_EQ(study->ID, 3);
    EXPECT_EQ(study->instanceUID, "1.3");
    EXPECT_EQ(study->referDrName, "Dr. Ref");
    EXPECT_EQ(study->PhysOfRecord, "Dr. Rec");
    EXPECT_EQ(study->accessionNumber, "acc");
    EXPECT_EQ(study->PatientID, 0) << "the list doesn't read it";
}

TEST_F(UniCards, AnEmptyStudyIdentifierIsANewStudy) {
    Run("UPDATE Study_T SET studyID=''");
    RunSeriesWithImage(5, noon);
    Load();
    EXPECT_EQ(list->Item("SE5")->Study->studyID, "&NEWSTUDY");
}

TEST_F(UniCards, SeriesOfOneStudyShareIt) {
    Run("INSERT INTO Study_T (Study_ID, PatientID, StudyInstanceUID, StudyDateTime, Studydesc, studyID)"
        " VALUES (4, 7, '1.4', '2024-01-02 08:00:00', '', 'S4')");
    RunSeriesWithImage(1, noon);
    RunSeriesWithImage(2, noon);
    RunSeriesWithImage(5, noon, "Study_ID=4");
    Load();
    EXPECT_EQ(list->Item("SE1")->Study, list->Item("SE2")->Study);
    EXPECT_EQ(list->Item("SE5")->Study->ID, 4);
    EXPECT_FALSE(list->Item("SE5")->Study == list->Item("SE1")->Study);
}

TEST_F(UniCards, StudiesOfOneTimeThatInterleaveAreNotShared) {
    Run("INSERT INTO Study_T (Study_ID, PatientID, StudyInstanceUID, StudyDateTime, Studydesc, studyID)"
        " VALUES (4, 7, '1.4', '2024-01-01 08:00:00', '', 'S4')");
    RunSeriesWithImage(1, noon);
    RunSeriesWithImage(2, noon, "Study_ID=4");
    RunSeriesWithImage(5, noon);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("SE5", "SE2", "SE1"));
    EXPECT_EQ(list->Item("SE1")->Study->ID, 3);
    EXPECT_EQ(list->Item("SE5")->Study->ID, 3);
    EXPECT_FALSE(list->Item("SE1")->Study == list->Item("SE5")->Study) << "the rows aren't next to each other";
}

TEST_F(UniCards, TwoCallsMakeTwoStudyObjects) {
    RunSeriesWithImage(1, noon);
    Load();
    const Ref<cStudy> first = list->Item("SE1")->Study;
    list->Remove("SE1");
    Load();
    EXPECT_FALSE(list->Item("SE1")->Study == first);
}

TEST_F(UniCards, NullsInTheOtherColumnsReadAsEmptyOrZero) {
    Run("UPDATE Study_T SET accessionNumber=NULL, referDrName=NULL, PhysOfRecord=NULL");
    RunSeriesWithImage(5, noon,
                       "orgServerID=NULL, SeriesDescription=NULL, SeriesDateTime=NULL, seriesNumber=NULL,"
                       " Derived_BT=NULL, template_ID=NULL");
    const TextBoxes boxes;
    Load();
    EXPECT_THAT(boxes.shown, IsEmpty());
    const Ref<cUniCard> entry = list->Item("SE5");
    EXPECT_EQ(entry->Study->referDrName + entry->Study->PhysOfRecord + entry->Study->accessionNumber, "");
    EXPECT_EQ(entry->Series->SeriesDescription + entry->Series->seriesNumber, "");
    EXPECT_EQ(entry->Series->SeriesDateTime, Date{});
    EXPECT_EQ(entry->Series->OrgServer, 0);
    EXPECT_FALSE(entry->Series->SeriesDerived);
    EXPECT_EQ(entry->Series->TemplateID, 0);
}

TEST_F(UniCards, AnEmptySeriesNumberReadsAsEmpty) {
    RunSeriesWithImage(5, noon, "seriesNumber=''");
    Load();
    EXPECT_EQ(SeriesAt("SE5")->seriesNumber, "");
}

TEST_F(UniCards, MinusOneIsDerivedToo) {
    RunSeriesWithImage(5, noon, "Derived_BT=-1");
    Load();
    EXPECT_TRUE(SeriesAt("SE5")->SeriesDerived);
}

TEST_F(UniCards, AFractionIsDerivedToo) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    RunSeriesWithImage(5, noon, "Derived_BT=0.4");
    Load();
    EXPECT_TRUE(SeriesAt("SE5")->SeriesDerived);
}

TEST_F(UniCards, ANumberBeyondALongIsDerivedToo) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    RunSeriesWithImage(5, noon, "Derived_BT=3000000000");
    const TextBoxes boxes;
    Load();
    EXPECT_THAT(boxes.shown, IsEmpty());
    ASSERT_EQ(list->Count(), 1);
    EXPECT_TRUE(SeriesAt("SE5")->SeriesDerived);
}

TEST_F(UniCards, TheMinutesOfASeriesAreItsMinutes) {
    RunSeriesWithImage(5, "2024-11-12 01:59:58");
    Load();
    EXPECT_EQ(SeriesAt("SE5")->SeriesDateTime, DateFrom({2024, 11, 12, 1, 59, 58}));
}

// ---- images of a series -----------------------------------------------------------------------------

TEST_F(UniCards, FourImagesOnServerAndDiskLieInBothPlaces) {
    RunSeries(5, noon);
    for (int i = 0; i < 4; ++i) RunImage(5, "1", "2");
    Load();
    EXPECT_EQ(SeriesAt("SE5")->ImgCount, 4);
    EXPECT_EQ(SeriesAt("SE5")->location, gdcmObjectLocBoth);
    EXPECT_TRUE(SeriesAt("SE5")->Approved);
}

TEST_F(UniCards, OneOfFourImagesOnDiskAloneLeavesTheSeriesLocal) {
    RunSeries(5, noon);
    for (const char* status : {"2", "2", "0", "2"}) RunImage(5, "1", status);
    Load();
    EXPECT_EQ(SeriesAt("SE5")->location, gdcmObjectLocLocal);
}

TEST_F(UniCards, ImagesWithoutAStatusLeaveTheSeriesLocal) {
    RunSeries(5, noon);
    for (int i = 0; i < 2; ++i) RunImage(5, "1", "NULL");
    Load();
    EXPECT_EQ(SeriesAt("SE5")->location, gdcmObjectLocLocal);
    EXPECT_EQ(SeriesAt("SE5")->ImgCount, 2);
}

TEST_F(UniCards, AMissingStatusAddsNothingToTheSum) {
    RunSeries(5, noon);
    for (const char* status : {"4", "NULL"}) RunImage(5, "1", status);
    Load();
    EXPECT_EQ(SeriesAt("SE5")->location, gdcmObjectLocBoth) << "the sum alone counts";
}

TEST_F(UniCards, AllImagesApprovedApproveTheSeries) {
    RunSeries(5, noon);
    for (int i = 0; i < 4; ++i) RunImage(5);
    Load();
    EXPECT_TRUE(SeriesAt("SE5")->Approved);
}

TEST_F(UniCards, ThreeOfFourImagesApprovedDoNot) {
    RunSeries(5, noon);
    for (const char* approved : {"1", "1", "0", "1"}) RunImage(5, approved);
    Load();
    EXPECT_FALSE(SeriesAt("SE5")->Approved);
}

TEST_F(UniCards, ApprovalsOfMinusOneCountLikeOne) {
    RunSeries(5, noon);
    for (int i = 0; i < 3; ++i) RunImage(5, "-1");
    Load();
    EXPECT_TRUE(SeriesAt("SE5")->Approved);
}

TEST_F(UniCards, ApprovalsOfBothSignsTakeEachOtherAway) {
    RunSeries(5, noon);
    for (const char* approved : {"1", "-1"}) RunImage(5, approved);
    Load();
    EXPECT_FALSE(SeriesAt("SE5")->Approved);
}

TEST_F(UniCards, ImagesWithoutAnApprovalDoNotApprove) {
    RunSeries(5, noon);
    for (int i = 0; i < 2; ++i) RunImage(5, "NULL");
    const TextBoxes boxes;
    Load();
    EXPECT_FALSE(SeriesAt("SE5")->Approved);
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(UniCards, ImagesWithoutAFileDoNotCount) {
    RunSeries(5, noon);
    RunImage(5, "1", "2");
    Run("INSERT INTO ImageBild_T (Series_ID, GraphicURL_NVC, Approved, DicomStatus_INT) VALUES (5, '', 0, 0),"
        " (5, NULL, 0, 0)");
    Load();
    EXPECT_EQ(SeriesAt("SE5")->ImgCount, 1);
    EXPECT_EQ(SeriesAt("SE5")->location, gdcmObjectLocBoth);
    EXPECT_TRUE(SeriesAt("SE5")->Approved);
}

TEST_F(UniCards, ImagesOfOtherSeriesDoNotCount) {
    RunSeriesWithImage(5, noon);
    RunSeriesWithImage(6, noon);
    RunImage(6, "0");
    Load();
    EXPECT_EQ(SeriesAt("SE5")->ImgCount, 1);
    EXPECT_EQ(SeriesAt("SE6")->ImgCount, 2);
    EXPECT_FALSE(SeriesAt("SE6")->Approved);
}

// ---- series under capture, and orphans --------------------------------------------------------------

TEST_F(UniCards, ASeriesOfFiveMinutesWithoutImagesIsUnderCapture) {
    RunSeries(5, "2024-05-06 12:05:00");
    Load();
    EXPECT_EQ(SeriesAt("SE5")->ImgCount, 0);
    EXPECT_EQ(SeriesAt("SE5")->location, gdcmObjectLocUnknown);
    EXPECT_TRUE(SeriesAt("SE5")->Approved);
    EXPECT_EQ(SeriesAt("SE5")->TemplateID, 6);
    EXPECT_EQ(CountOf("Series_T"), 1);
}

TEST_F(UniCards, ElevenMinutesLaterItIsDeleted) {
    RunSeries(5, "2024-05-06 12:05:00");
    now = DateFrom({2024, 5, 6, 12, 16, 0});
    EXPECT_EQ(Load(), 7);
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(CountOf("Series_T"), 0);
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("ANNA"), PatientOf("ANNA"), SeriesOf(7), Orphan(5)));
}

TEST_F(UniCards, ASeriesOfTenMinutesIsDeleted) {
    RunSeries(5, noon);
    Load();
    EXPECT_EQ(CountOf("Series_T"), 0);
}

TEST_F(UniCards, ASeriesOfNineMinutesAndFiftyNineSecondsIsKept) {
    RunSeries(5, "2024-05-06 12:00:01");
    Load();
    EXPECT_EQ(CountOf("Series_T"), 1);
    EXPECT_THAT(Keys(), ElementsAre("SE5"));
}

TEST_F(UniCards, ASeriesIsComparedWithItsFractionOfASecond) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    RunSeries(5, noon);
    Run("UPDATE Series_T SET SeriesDateTime = julianday('2024-05-06 12:00:00.400') - 2415018.5");
    Load();
    EXPECT_EQ(CountOf("Series_T"), 1) << "taken 9 minutes and 59.6 seconds ago";
}

TEST_F(UniCards, TenMinutesAreTenMinutesAtEverySecondOfTheDay) {
    for (int second = 0; second < 86400; second += 3677) {
        const auto at = [&](int offset) {
            const int time = second + offset;
            return DateFrom({2024, 5, 6 + time / 86400, time / 3600 % 24, time / 60 % 60, time % 60});
        };
        now = at(600);
        RunSeries(5, FormatDate(at(0), "yyyy-mm-dd hh:nn:ss"));
        RunSeries(6, FormatDate(at(1), "yyyy-mm-dd hh:nn:ss"));
        list = New<cUniCards>();
        Load();
        EXPECT_THAT(Keys(), ElementsAre("SE6")) << second;
        Run("DELETE FROM Series_T");
    }
}

TEST_F(UniCards, ASeriesOfTheFutureIsUnderCapture) {
    RunSeries(5, "2031-01-01 00:00:00");
    Load();
    EXPECT_THAT(Keys(), ElementsAre("SE5"));
}

TEST_F(UniCards, ASeriesOfAServerWithoutImagesIsDeletedAtOnce) {
    RunSeries(5, "2024-05-06 12:09:00", "orgServerID=3");
    Load();
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(CountOf("Series_T"), 0);
}

TEST_F(UniCards, ASeriesOfAServerWithImagesIsKept) {
    RunSeriesWithImage(5, noon, "orgServerID=3");
    Load();
    EXPECT_THAT(Keys(), ElementsAre("SE5"));
}

TEST_F(UniCards, ASeriesWithoutADateAndImagesIsDeleted) {
    RunSeries(5, noon, "SeriesDateTime=NULL");
    Load();
    EXPECT_EQ(CountOf("Series_T"), 0);
}

TEST_F(UniCards, ASeriesWhoseImagesHaveNoFileIsDeletedAndTheImagesStay) {
    RunSeries(5, noon);
    Run("INSERT INTO ImageBild_T (Series_ID, GraphicURL_NVC) VALUES (5, ''), (5, NULL)");
    Load();
    EXPECT_EQ(CountOf("Series_T"), 0);
    EXPECT_EQ(CountOf("ImageBild_T"), 2);
}

TEST_F(UniCards, OnlyTheOrphansOfThePatientAreDeleted) {
    Run("INSERT INTO Study_T (Study_ID, PatientID, StudyInstanceUID, StudyDateTime, Studydesc, studyID)"
        " VALUES (4, 8, '1.4', '2024-01-01 08:00:00', '', 'S4')");
    RunSeries(1, noon);
    RunSeriesWithImage(2, noon);
    RunSeries(3, "2024-05-06 12:09:00");
    RunSeries(5, noon, "Study_ID=4");
    RunSeries(6, noon);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("SE3", "SE2"));
    EXPECT_EQ(AskAll("SELECT Series_ID FROM Series_T ORDER BY Series_ID"), "2,3,5");
    EXPECT_EQ(CountOf("Study_T"), 2) << "a study without series stays";
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("ANNA"), PatientOf("ANNA"), SeriesOf(7), Orphan(6), Orphan(1)));
}

TEST_F(UniCards, AnOrphanIsDeletedBeforeItsUidIsRead) {
    RunSeries(5, noon, "SeriesInstanceUID=NULL");
    const TextBoxes boxes;
    Load();
    EXPECT_THAT(boxes.shown, IsEmpty());
    EXPECT_EQ(CountOf("Series_T"), 0);
}

TEST_F(UniCards, SeriesOfAStudyStillShareItAfterAnOrphan) {
    RunSeriesWithImage(1, noon);
    RunSeries(2, noon);
    RunSeriesWithImage(3, noon);
    Load();
    EXPECT_EQ(list->Item("SE1")->Study, list->Item("SE3")->Study);
}

// ---- order --------------------------------------------------------------------------------------------

TEST_F(UniCards, AreSortedNewestFirst) {
    RunCard(1, "2024-01-03 00:00:00");
    RunCard(2, "2024-01-05 00:00:00");
    RunSeriesWithImage(3, "2024-01-04 00:00:00");
    RunSeriesWithImage(4, "2024-01-06 00:00:00");
    RunSeriesWithImage(5, "2024-01-01 00:00:00");
    Load();
    EXPECT_THAT(Keys(), ElementsAre("SE4", "IC2", "SE3", "IC1", "SE5"));
}

TEST_F(UniCards, ACardComesBeforeASeriesOfItsDate) {
    RunSeriesWithImage(1, noon);
    RunCard(2, noon);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("IC2", "SE1"));
}

TEST_F(UniCards, SeriesOfOneDateComeTheNewestKeyFirst) {
    for (const Long key : {4, 2, 9}) RunSeriesWithImage(key, noon);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("SE9", "SE4", "SE2"));
}

TEST_F(UniCards, ACardWithoutACreationDateIsSortedByItsLastChange) {
    RunCard(1, "1899-12-30 00:00:00", "ICLastUpdate='2024-01-02 00:00:00'");
    RunCard(2, "2024-01-01 00:00:00");
    RunCard(3, "2024-01-03 00:00:00");
    Load();
    EXPECT_THAT(Keys(), ElementsAre("IC3", "IC1", "IC2"));
}

TEST_F(UniCards, ASeriesWithoutADateIsSortedByItsStudy) {
    RunSeriesWithImage(1, noon, "SeriesDateTime=NULL");
    RunCard(2, "2024-01-01 07:59:59");
    RunCard(3, "2024-01-01 08:00:01");
    Load();
    EXPECT_THAT(Keys(), ElementsAre("IC3", "SE1", "IC2"));
}

TEST_F(UniCards, TwoThousandOfEachComeInTheOrderOfAStableSort) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<2000) INSERT INTO ImageCard_T"
        " (ImageCardID, PatientID, ICName, ICDateCreated, ICLastUpdate, ICDescription) SELECT i, 7, '',"
        " datetime('2024-01-01', (i*7919%1500)||' hours'), '2024-01-01 00:00:00', '' FROM n");
    Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<2000) INSERT INTO Series_T"
        " (Series_ID, Study_ID, SeriesInstanceUID, SeriesDateTime) SELECT i, 3, '1.'||i,"
        " datetime('2024-01-01', (i*6007%1700)||' hours') FROM n");
    Run("INSERT INTO ImageBild_T (Series_ID, GraphicURL_NVC) SELECT Series_ID, 'a' FROM Series_T");
    struct Dated {
        String key;
        String date;
    };
    std::vector<Dated> expected;
    for (const char* select : {"SELECT 'IC'||ImageCardID, ICDateCreated FROM ImageCard_T ORDER BY 2 DESC",
                               "SELECT 'SE'||Series_ID, SeriesDateTime FROM Series_T ORDER BY Series_ID DESC"})
        for (const Ref<Recordset> rs = Connect()->Execute(select); !rs->Eof(); rs->MoveNext())
            expected.push_back(
                {To<String>(rs->Fields(0).Value()), FormatDate(CDate(rs->Fields(1).Value()), "yyyy-mm-dd hh:nn:ss")});
    std::stable_sort(expected.begin(), expected.end(), [](const Dated& a, const Dated& b) { return a.date > b.date; });
    std::vector<String> keys;
    for (const Dated& entry : expected) keys.push_back(entry.key);
    EXPECT_EQ(Load(), 7);
    EXPECT_EQ(Keys(), keys);
    EXPECT_EQ(Sent().size(), 2U);
}

// ---- a list that isn't empty --------------------------------------------------------------------------

TEST_F(UniCards, MembersOfAnEarlierCallStay) {
    RunCard(1, "2024-01-01 00:00:00");
    RunCard(2, "2024-01-02 00:00:00", "PatientID=8");
    EXPECT_EQ(Load(), 7);
    EXPECT_EQ(Load("BEN"), 8);
    EXPECT_THAT(Keys(), ElementsAre("IC2", "IC1"));
}

/// A list of the client's own entries in any order.
class MergedUniCards : public UniCards {
protected:
    void Preload(const std::vector<Ref<cUniCard>>& entries) {
        RunCard(99, noon);
        Load();
        Run("DELETE FROM ImageCard_T");
        for (const Ref<cUniCard>& entry : entries) list->AddObj(entry, entry->Key, "IC99");
        list->Remove("IC99");
    }

    void RunCardOfDay(Long key, double days) { RunCard(key, FormatDate(Date{days}, "yyyy-mm-dd hh:nn:ss")); }
};

TEST_F(MergedUniCards, AnEntryIsInsertedBeforeTheFirstOlderMember) {
    Preload({CardOf("a", 40000), CardOf("b", 20000), CardOf("c", 30000)});
    RunCardOfDay(1, 25000);
    RunCardOfDay(2, 35000);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("a", "IC2", "IC1", "b", "c"));
}

TEST_F(MergedUniCards, AnEntryThatNoMemberIsOlderThanIsAppended) {
    Preload({CardOf("a", 20000), CardOf("b", 40000)});
    RunCardOfDay(1, 20000);
    RunCardOfDay(2, 10000);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("a", "b", "IC1", "IC2"));
}

TEST_F(MergedUniCards, AnEntryIsInsertedAfterAllMembersOfItsDate) {
    Preload({CardOf("a", 30000), CardOf("b", 30000), CardOf("c", 20000)});
    RunCardOfDay(1, 30000);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("a", "b", "IC1", "c"));
}

TEST_F(MergedUniCards, MembersWithoutAnObjectAreAsOldAsCanBe) {
    const Ref<cUniCard> empty = New<cUniCard>();
    empty->Key = "nothing";
    Preload({CardOf("a", 30000), empty});
    RunCardOfDay(1, 20000);
    Load();
    EXPECT_THAT(Keys(), ElementsAre("a", "IC1", "nothing"));
}

TEST_F(MergedUniCards, AClientsMemberUnderTheKeyOfACardIsInTheWay) {
    Preload({CardOf("ic1", 10000)});
    RunCardOfDay(1, 20000);
    LoadFails(Box("457", 16, DescriptionOf(457)), 7);
    EXPECT_THAT(Keys(), ElementsAre("ic1"));
}

TEST_F(UniCards, ARepeatedCallShowsTheLastComparisonWhereTheKeyWouldGoLast) {
    RunCard(1, noon);
    Load();
    LoadFails(Box("457", 17, DescriptionOf(457)), 7);
    EXPECT_THAT(Keys(), ElementsAre("IC1"));
}

TEST_F(UniCards, ARepeatedCallShowsTheComparisonWhereTheKeyWouldGoBeforeAMember) {
    RunCard(1, "2024-01-02 00:00:00");
    RunCard(2, "2024-01-01 00:00:00");
    Load();
    LoadFails(Box("457", 16, DescriptionOf(457)), 7);
    EXPECT_THAT(Keys(), ElementsAre("IC1", "IC2"));
}

TEST_F(UniCards, EntriesNewerThanTheRepeatedKeyAreMergedBeforeItFails) {
    RunCard(1, "2024-01-02 00:00:00");
    Load();
    RunCard(2, "2024-01-03 00:00:00");
    RunCard(3, "2024-01-01 00:00:00");
    LoadFails(Box("457", 17, DescriptionOf(457)), 7);
    EXPECT_THAT(Keys(), ElementsAre("IC2", "IC1")) << "the third came behind the failure";
}

TEST_F(UniCards, ARepeatedSeriesFailsAfterTheNewCards) {
    RunSeriesWithImage(1, "2024-01-02 00:00:00");
    Load();
    RunCard(2, "2024-01-01 00:00:00");
    RunSeriesWithImage(3, "2024-01-03 00:00:00");
    LoadFails(Box("457", 16, DescriptionOf(457)), 7);
    EXPECT_THAT(Keys(), ElementsAre("SE3", "SE1", "IC2"));
}

/// A member whose date can't be read: a series without date and study.
class UndatedMember : public MergedUniCards {
protected:
    UndatedMember() {
        undated->Key = "undated";
        undated->Series = New<cSerie>();
    }
    const Ref<cUniCard> undated = New<cUniCard>();
};

TEST_F(UndatedMember, EndsTheMergeAtItsComparison) {
    Preload({undated});
    RunCardOfDay(1, 20000);
    LoadFails(Box("91", 16, DescriptionOf(91)), 7);
    EXPECT_THAT(Keys(), ElementsAre("undated"));
}

TEST_F(UndatedMember, IsNotReadForAnEntryThatIsInsertedBeforeIt) {
    Preload({CardOf("a", 10000), undated});
    RunCardOfDay(1, 20000);
    const TextBoxes boxes;
    EXPECT_EQ(Load(), 7);
    EXPECT_THAT(boxes.shown, IsEmpty());
    EXPECT_THAT(Keys(), ElementsAre("IC1", "a", "undated"));
}

TEST_F(UndatedMember, KeepsTheEntriesMergedBefore) {
    Preload({CardOf("a", 20000), undated});
    RunCardOfDay(1, 30000);
    RunCardOfDay(2, 25000);
    RunCardOfDay(3, 10000);
    RunSeriesWithImage(4, noon);
    LoadFails(Box("91", 16, DescriptionOf(91)), 7);
    EXPECT_THAT(Keys(), ElementsAre("IC1", "IC2", "a", "undated"));
}

// ---- adding an entry ------------------------------------------------------------------------------------

TEST_F(UniCards, AddObjPutsAnEntryBeforeAMemberUnderItsKey) {
    RunCard(1, "2024-01-02 00:00:00");
    RunCard(2, "2024-01-01 00:00:00");
    Load();
    const Ref<cUniCard> entry = CardOf("own", 1);
    EXPECT_TRUE(list->AddObj(entry, "given", "ic2"));
    EXPECT_THAT(Keys(), ElementsAre("IC1", "own", "IC2"));
    EXPECT_EQ(list->Item("GIVEN"), entry);
    EXPECT_EQ(FailureOf([&] { list->Item("own"); }).Number, 5) << "the entry's own key is not asked";
}

TEST_F(UniCards, AddObjWithoutAKeyAddsAMemberThatOnlyItsPositionFinds) {
    RunCard(1, noon);
    Load();
    const Ref<cUniCard> entry = CardOf("own", 1);
    EXPECT_TRUE(list->AddObj(entry, "", "IC1"));
    EXPECT_TRUE(list->AddObj(entry, "", "IC1")) << "no key, no double";
    EXPECT_EQ(list->Item(Long{1}), entry);
    EXPECT_EQ(FailureOf([&] { list->Item("own"); }).Number, 5);
    EXPECT_EQ(list->Count(), 3);
}

TEST_F(UniCards, AddObjWithoutTheMemberToInsertBeforeRaises) {
    RunCard(1, noon);
    Load();
    EXPECT_EQ(FailureOf([&] { list->AddObj(CardOf("own", 1), "own"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { list->AddObj(CardOf("own", 1)); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { list->AddObj(CardOf("own", 1), "own", ""); }).Number, 5);
    EXPECT_THAT(Keys(), ElementsAre("IC1"));
}

TEST_F(UniCards, AddObjToAnEmptyListRaises) {
    EXPECT_EQ(FailureOf([&] { list->AddObj(CardOf("own", 1), "own"); }).Number, 5);
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(UniCards, AddObjBeforeAnUnknownMemberRaises) {
    RunCard(1, noon);
    Load();
    EXPECT_EQ(FailureOf([&] { list->AddObj(CardOf("own", 1), "own", "IC9"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { list->AddObj(CardOf("own", 1), "own", "1"); }).Number, 5)
        << "a text is a key, not a position";
    EXPECT_THAT(Keys(), ElementsAre("IC1"));
}

TEST_F(UniCards, AddObjUnderAnExistingKeyRaises) {
    RunCard(1, noon);
    Load();
    EXPECT_EQ(FailureOf([&] { list->AddObj(CardOf("own", 1), "ic1", "IC1"); }).Number, 457);
    EXPECT_THAT(Keys(), ElementsAre("IC1"));
}

TEST_F(UniCards, ALateBoundCallerMayLeaveKeyAndMemberOutAndFails) {
    std::vector<Variant> arguments{Variant(CardOf("own", 1))};
    EXPECT_EQ(FailureOf([&] { Invoke(*list, "AddObj", MemberKind::Operation, arguments); }).Number, 5);
}

// ---- failures -------------------------------------------------------------------------------------------

TEST_F(UniCards, AnAbsentConnectionIsReportedInATextBox) {
    const TextBoxes boxes;
    EXPECT_EQ(list->GetICAndSEList4Patient(nullptr, "ANNA", 0), 0);
    EXPECT_THAT(boxes.shown, ElementsAre(Box("91", 0, DescriptionOf(91))));
}

TEST_F(UniCards, AClosedConnectionIsReportedInATextBox) {
    const Ref<Connection> closed = New<Connection>();
    const String description = FailureOf([&] { New<Recordset>()->Open("SELECT 1", closed); }).Description;
    const TextBoxes boxes;
    EXPECT_EQ(list->GetICAndSEList4Patient(closed, "ANNA", 0), 0);
    EXPECT_THAT(boxes.shown, ElementsAre(Box("3709", 0, description)));
    EXPECT_EQ(closed->CursorLocation, 3);
}

TEST_F(UniCards, AQuoteInTheIdentifierIsReportedInATextBox) {
    const TextBoxes boxes;
    EXPECT_EQ(Load("O'HARA"), 0);
    ASSERT_EQ(boxes.shown.size(), 1U);
    const String head = "cUniCards.GetICAndSEList4Patient error: -2147217900, 0\r\n";
    EXPECT_EQ(boxes.shown[0].substr(0, head.size()), head);
    EXPECT_GT(boxes.shown[0].size(), head.size());
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(UniCards, MissingCardsAreReportedInATextBox) {
    Run("DROP TABLE ImageCard_T");
    RunSeriesWithImage(1, noon);
    LoadFails(Box("-2147217865", 0, FailureOf([&] { con->Execute(CardsOf("ANNA")); }).Description), 0);
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(UniCards, MissingSeriesAreReportedInATextBoxAfterThePatientsKeyIsSet) {
    Run("DROP TABLE Series_T");
    RunCard(1, noon);
    LoadFails(Box("-2147217865", 6, FailureOf([&] { con->Execute(SeriesOf(7)); }).Description), 7);
    EXPECT_EQ(list->Count(), 0) << "the cards were read, but not merged";
}

TEST_F(UniCards, ANegativeHeightCannotBeRead) {
    RunCard(1, noon, "ICFullViewHeight=-600");
    LoadFails(Box("13", 2, DescriptionOf(13)), 0);
}

TEST_F(UniCards, ANegativePreviewCannotBeReadIfItIsRequested) {
    RunCard(1, noon, "ICPreviewWidth=-1");
    RunCard(2, "2024-01-01 00:00:00", "ICFullViewWidth=0, ICPreviewWidth=-1");
    LoadFails(Box("13", 2, DescriptionOf(13)), 0);
    Run("DELETE FROM ImageCard_T WHERE ImageCardID=2");
    EXPECT_EQ(Load(), 7);
}

TEST_F(UniCards, ASizeBeyondALongOverflows) {
    RunCard(1, noon, "ICFullViewHeight=3000000000");
    LoadFails(Box("6", 2, DescriptionOf(6)), 0);
}

/// A null in a column of a card: the column.
class NullOfACard : public UniCards, public ::testing::WithParamInterface<const char*> {};

TEST_P(NullOfACard, EndsTheCallWithoutAResult) {
    RunCard(1, "2030-01-01 00:00:00");
    RunCard(2, noon, String(GetParam()) + "=NULL");
    RunSeriesWithImage(3, noon);
    LoadFails(InvalidNullAt(2), 0);
    EXPECT_EQ(list->Count(), 0) << "the card before it is lost";
    EXPECT_THAT(Sent(), ElementsAre(CardsOf("ANNA")));
}

INSTANTIATE_TEST_SUITE_P(UniCards, NullOfACard,
                         ::testing::Values("ICDescription", "ICName", "ICDateCreated", "ICLastUpdate"));

/// A null in a column of a study.
class NullOfAStudy : public UniCards, public ::testing::WithParamInterface<const char*> {};

TEST_P(NullOfAStudy, EndsTheCallWithThePatientsKey) {
    Run("UPDATE Study_T SET " + String(GetParam()) + "=NULL");
    RunCard(1, noon);
    RunSeriesWithImage(3, noon);
    LoadFails(InvalidNullAt(8), 7);
    EXPECT_EQ(list->Count(), 0);
}

INSTANTIATE_TEST_SUITE_P(UniCards, NullOfAStudy,
                         ::testing::Values("StudyDesc", "StudyDateTime", "StudyInstanceUID", "StudyID"));

TEST_F(UniCards, ANullUidOfASeriesEndsTheCallAfterItsClassification) {
    RunCard(1, noon);
    RunSeriesWithImage(3, noon, "SeriesInstanceUID=NULL");
    LoadFails(InvalidNullAt(12), 7);
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(UniCards, AFailureKeepsTheMembersOfAnEarlierCall) {
    RunCard(1, noon);
    Load();
    RunCard(2, noon, "ICName=NULL");
    LoadFails(InvalidNullAt(2), 0);
    EXPECT_THAT(Keys(), ElementsAre("IC1"));
}

TEST_F(UniCards, OrphansBeforeAFailedRowStayDeleted) {
    RunSeries(9, noon);
    RunSeriesWithImage(5, noon, "SeriesInstanceUID=NULL");
    RunSeries(1, noon);
    LoadFails(InvalidNullAt(12), 7);
    EXPECT_EQ(AskAll("SELECT Series_ID FROM Series_T ORDER BY Series_ID"), "1,5");
}

TEST_F(UniCards, ANonNumericServerFailsTheEntry) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    RunSeriesWithImage(3, noon, "orgServerID='x'");
    LoadFails(Box("13", 10, DescriptionOf(13)), 7);
}

TEST_F(UniCards, AnInvalidDateOfASeriesFailsTheEntry) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    RunSeriesWithImage(3, "soon");
    LoadFails(Box("13", 10, DescriptionOf(13)), 7);
}

TEST_F(UniCards, ANonNumericFlagFailsAfterTheStudysKeyIsSet) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    RunSeriesWithImage(3, noon, "Derived_BT='x'");
    LoadFails(Box("13", 13, DescriptionOf(13)), 7);
}

TEST_F(UniCards, AnOrphanThatCannotBeDeletedFailsTheCall) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Run("CREATE TRIGGER keep BEFORE DELETE ON Series_T BEGIN SELECT RAISE(ABORT, 'kept'); END");
    RunCard(1, noon);
    RunSeries(5, noon);
    const TextBoxes boxes;
    EXPECT_EQ(Load(), 7);
    ASSERT_EQ(boxes.shown.size(), 1U);
    EXPECT_TRUE(std::regex_match(
        boxes.shown[0], std::regex("cUniCards\\.GetICAndSEList4Patient error: -?[0-9]+, 11\r\n[^\n]*kept[^\n]*")))
        << boxes.shown[0];
    EXPECT_EQ(CountOf("Series_T"), 1);
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(UniCards, EachFailedStatementShowsItsStep) {
    const Ref<Connection> faulty = FaultyConnectionTo(database);
    RunSeries(5, noon);
    const struct {
        int call, step;
        Long result;
    } cases[] = {{1, 0, 0}, {2, 5, 0}, {3, 6, 7}, {4, 11, 7}, {5, 11, 7}};
    for (const auto& failing : cases) {
        const TextBoxes boxes;
        FailAtCall(failing.call);
        const Long result = list->GetICAndSEList4Patient(faulty, "ANNA", 0);
        FailAtCall(0);
        EXPECT_EQ(result, failing.result) << failing.call;
        EXPECT_THAT(boxes.shown, ElementsAre(Box("-2147467259", failing.step, "injected"))) << failing.call;
        EXPECT_EQ(CountOf("Series_T"), 1) << failing.call;
    }
    EXPECT_EQ(list->GetICAndSEList4Patient(faulty, "ANNA", 0), 7);
    EXPECT_EQ(CallsSoFar(), 5) << "cards, patient, series, the orphan's row and its deletion";
    EXPECT_EQ(CountOf("Series_T"), 0);
}

}  // namespace
}  // namespace OXClass

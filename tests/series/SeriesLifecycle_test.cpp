#include "frame/Class1.h"
#include "images/cImages.h"
#include "kit/Database.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <set>

/// A series from the capture to the hung examination and back out of the tables.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class SeriesLifecycle : public WithDatabase {
protected:
    SeriesLifecycle() {
        LoadLayouts();
        Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '/images', 1)");
    }

    String NewUid() { return New<Class1>()->GetInstanceUID(con); }

    /// Saves a study of this patient with one series, as a capture program does.
    void BeginSeries(Long patient, const String& modality) {
        study = New<cStudy>();
        study->instanceUID = NewUid();
        study->PatientID = patient;
        study->dateTime = Morning(0);
        ASSERT_TRUE(study->savestudy(false, con));
        series = New<cSerie>();
        series->instanceUID = NewUid();
        series->studyID = study->ID;
        series->Modality = modality;
        series->SeriesDateTime = Morning(0);
        series->location = gdcmObjectLocLocal;
        ASSERT_TRUE(series->SaveSeries(false, con));
        images = New<cImages>();
    }

    /// Captures and saves an image of these teeth, with a comment.
    void Capture(const String& teeth) {
        Ref<cImage> image = New<cImage>();
        const Long number = images->Count() + 1;
        image->instanceUID = NewUid();
        image->PatID = study->PatientID;
        image->studyID = study->ID;
        image->seriesID = series->ID;
        image->ImageNumberInSeries = number;
        image->RootId = 1;
        image->URL = "0_/" + CStr(number) + ".dcm";
        image->dateTime = Morning(static_cast<int>(number));
        image->sTeeth = teeth;
        image->ImageType = imggTypeDXIntraOral;
        image->addComment("image " + CStr(number), "Dr. O'Hara", Morning(30), false);
        EXPECT_EQ(image->SaveEx(false, con), 0);
        const String key = "K" + CStr(image->ID);
        images->AddObject(image, key);
    }

    /// Hangs the images and saves all again.
    void HangAndSave() {
        series->ImgCount = images->Count();
        series->HangSeries(images, con);
        for (cImage& image : *images) image.Save(con);
        ASSERT_TRUE(series->SaveSeries(true, con));
    }

    static Date Morning(int minute) { return DateFrom({2024, 3, 5, 8, minute, 0}); }

    Ref<cStudy> study;
    Ref<cSerie> series;
    Ref<cImages> images;
};

const char* const EighteenFilms[] = {
    "24,25,", "26,27,", "15,14,", "17,16,", "35,34,", "36,37,",       "45,44,",       "47,46,",       "13,12,",
    "11,21,", "22,23,", "43,42,", "41,31,", "32,33,", "17,16,47,46,", "15,14,45,44,", "24,25,34,35,", "26,27,36,37,"};
constexpr Long FramesOfEighteenFilms[] = {6, 7, 2, 1, 17, 18, 13, 12, 3, 4, 5, 14, 15, 16, 8, 9, 10, 11};

TEST_F(SeriesLifecycle, AFullMouthSeriesIsLoadedAsItWasHung) {
    BeginSeries(7, "IO");
    for (const char* teeth : EighteenFilms) Capture(teeth);
    HangAndSave();
    const Ref<cSerie> loaded = New<cSerie>();
    ASSERT_TRUE(loaded->loadSeries(series->instanceUID, con));
    EXPECT_EQ(loaded->ID, series->ID);
    EXPECT_EQ(loaded->TemplateID, 6);
    EXPECT_EQ(loaded->ImgCount, 18);
    const Ref<cImages> read = New<cImages>();
    ASSERT_EQ(read->LoadAll4Object(con, iootSeries, loaded->ID), 18);
    std::vector<Long> frames;
    for (cImage& image : *read) {
        frames.push_back(image.FrameNumber);
        const Ref<cImage> saved = images->Item("K" + CStr(image.ID));
        ASSERT_TRUE(saved);
        EXPECT_EQ(image.AnaRegion + image.AnaRegionMod + image.Laterality,
                  saved->AnaRegion + saved->AnaRegionMod + saved->Laterality);
        EXPECT_EQ(image.instanceUID, saved->instanceUID);
        EXPECT_EQ(image.Root_RootDirectory, "/images");
    }
    EXPECT_THAT(frames, ElementsAreArray(FramesOfEighteenFilms));
}

TEST_F(SeriesLifecycle, HangingSendsNoStatementAndSavesNothing) {
    BeginSeries(7, "IO");
    for (const char* teeth : {"26,27,36,37,", "17,16,47,46,"}) Capture(teeth);
    log.statements.clear();
    series->ImgCount = 2;
    EXPECT_EQ(series->HangSeries(images, con), 8);
    EXPECT_TRUE(Sent().empty());
    EXPECT_EQ(Ask("SELECT SUM(FrameNumber_INT) FROM ImageBild_T"), Variant(Long{0}));
    EXPECT_EQ(Ask("SELECT template_ID FROM Series_T"), Variant(Long{0}));
}

TEST_F(SeriesLifecycle, AReloadedSeriesHangsTheSameAgain) {
    BeginSeries(7, "IO");
    for (const char* teeth : EighteenFilms) Capture(teeth);
    HangAndSave();
    const Ref<cImages> read = New<cImages>();
    read->LoadAll4Object(con, iootSeries, series->ID);
    const Ref<cSerie> loaded = New<cSerie>();
    loaded->loadSeries(CStr(series->ID), con);
    EXPECT_EQ(loaded->HangSeries(read, con), 6);
    std::vector<Long> frames;
    for (const cImage& image : *read) frames.push_back(image.FrameNumber);
    EXPECT_THAT(frames, ElementsAreArray(FramesOfEighteenFilms));
}

TEST_F(SeriesLifecycle, ASecondImportOfTheSameFilesMakesNoSecondRow) {
    BeginSeries(7, "IO");
    for (const char* teeth : {"17,16,47,46,", "26,27,36,37,"}) Capture(teeth);
    HangAndSave();
    const Ref<cImages> before = images;
    for (const cImage& known : *before) {
        const Ref<cImage> again = New<cImage>();
        again->instanceUID = known.instanceUID;
        again->URL = known.URL;
        again->PatID = known.PatID;
        again->studyID = known.studyID;
        again->seriesID = known.seriesID;
        again->addComment("image " + CStr(known.ImageNumberInSeries), "Dr. O'Hara", Morning(30), false);
        again->addComment("seen again", "Dr. May", Morning(40), false);
        again->SaveEx(false, con);
        EXPECT_EQ(again->ID, known.ID);
    }
    const Ref<cStudy> sameStudy = New<cStudy>();
    sameStudy->instanceUID = study->instanceUID;
    EXPECT_TRUE(sameStudy->savestudy(false, con));
    EXPECT_EQ(sameStudy->ID, study->ID);
    const Ref<cSerie> sameSeries = New<cSerie>();
    sameSeries->instanceUID = series->instanceUID;
    sameSeries->studyID = study->ID;
    EXPECT_TRUE(sameSeries->SaveSeries(false, con));
    EXPECT_EQ(sameSeries->ID, series->ID);
    for (const char* table : {"Study_T", "Series_T"})
        EXPECT_EQ(Ask("SELECT COUNT(*) FROM " + String(table)), Variant(Long{1})) << table;
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM ImageBild_T"), Variant(Long{2}));
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Comments_T"), Variant(Long{4}));
    EXPECT_EQ(Ask("SELECT PatientID FROM Study_T"), Variant(Long{7})) << "a study can't lose its patient";
}

TEST_F(SeriesLifecycle, CommentsFollowTheirImages) {
    BeginSeries(7, "IO");
    for (const char* teeth : {"17,16,47,46,", "26,27,36,37,"}) Capture(teeth);
    const Ref<cImages> read = New<cImages>();
    read->LoadAll4Object(con, iootSeries, series->ID);
    for (cImage& image : *read) {
        image.GetComments(con);
        ASSERT_EQ(image.Comments()->Count(), 1);
        EXPECT_EQ(image.Comments()->Item(Long{1})->str, "image " + CStr(image.ImageNumberInSeries));
        image.addComment("later", "Dr. May", Morning(50), false);
        image.Save(con);
    }
    const Ref<cImage> again = New<cImage>();
    ASSERT_TRUE(again->GetImage(con, read->Item(Long{2})->ID));
    again->GetComments(con);
    ASSERT_EQ(again->Comments()->Count(), 2);
    EXPECT_EQ(again->Comments()->Item(Long{1})->str, "later");
    EXPECT_EQ(again->Comments()->Item(Long{2})->str, "image 2");
}

TEST_F(SeriesLifecycle, EachUidIsItsOwn) {
    BeginSeries(7, "IO");
    for (const char* teeth : EighteenFilms) Capture(teeth);
    std::set<String> uids{study->instanceUID, series->instanceUID};
    for (const cImage& image : *images) uids.insert(image.instanceUID);
    EXPECT_EQ(uids.size(), 20U);
    for (const String& uid : uids) {
        EXPECT_LE(uid.size(), 64U);
        EXPECT_TRUE(Contains(uid, ".")) << "so that a load takes it for an identifier";
    }
}

TEST_F(SeriesLifecycle, ImagesOfAPatientComeFromAllItsSeries) {
    BeginSeries(7, "IO");
    Capture("11,");
    BeginSeries(7, "PX");
    Capture("");
    BeginSeries(8, "IO");
    Capture("21,");
    const Ref<cImages> read = New<cImages>();
    EXPECT_EQ(read->LoadAll4Object(con, iootPatient, 7), 2);
    EXPECT_EQ(read->LoadAll4Object(con, iootPatient, 8), 1);
    EXPECT_EQ(read->LoadAll4Object(con, iootSeries, series->ID), 1);
    EXPECT_EQ(read->Item(Long{1})->sTeeth, "21,");
}

TEST_F(SeriesLifecycle, DeletingStudyAndSeriesLeavesTheImages) {
    BeginSeries(7, "IO");
    Capture("11,");
    series->Delete(con);
    study->Delete(con);
    EXPECT_FALSE(New<cStudy>()->loadStudy(study->instanceUID, con));
    EXPECT_FALSE(New<cSerie>()->loadSeries(series->instanceUID, con));
    const Ref<cImages> read = New<cImages>();
    EXPECT_EQ(read->LoadAll4Object(con, iootSeries, series->ID), 1);
}

TEST_F(SeriesLifecycle, OneTransactionOfTheCallerCoversTheWholeLifecycle) {
    con->BeginTrans();
    BeginSeries(7, "IO");
    for (const char* teeth : EighteenFilms) Capture(teeth);
    HangAndSave();
    con->RollbackTrans();
    for (const char* table : {"Study_T", "Series_T", "ImageBild_T", "Comments_T"})
        EXPECT_EQ(Ask("SELECT COUNT(*) FROM " + String(table)), Variant(Long{0})) << table;
}

TEST_F(SeriesLifecycle, NamesInAnyScriptAndADecimalCommaComeThrough) {
    const InLocale comma(DecimalComma);
    BeginSeries(7, "IO");
    study->referDrName = "Δρ. Παπαδόπουλος";
    study->savestudy(true, con);
    series->SeriesDescription = "Полный статус 🦷";
    Capture("11,");
    images->Item(Long{1})->RespPerson = "山田太郎";
    HangAndSave();
    const Ref<cStudy> loadedStudy = New<cStudy>();
    const Ref<cSerie> loadedSeries = New<cSerie>();
    const Ref<cImages> read = New<cImages>();
    ASSERT_TRUE(loadedStudy->loadStudy(study->instanceUID, con));
    ASSERT_TRUE(loadedSeries->loadSeries(series->instanceUID, con));
    ASSERT_EQ(read->LoadAll4Object(con, iootSeries, series->ID), 1);
    EXPECT_EQ(loadedStudy->referDrName, study->referDrName);
    EXPECT_EQ(loadedStudy->dateTime, Morning(0));
    EXPECT_EQ(loadedSeries->SeriesDescription, series->SeriesDescription);
    EXPECT_EQ(read->Item(Long{1})->RespPerson, "山田太郎");
    EXPECT_EQ(read->Item(Long{1})->dateTime, Morning(1));
    EXPECT_EQ(read->Item(Long{1})->FrameNumber, 1);
}

}  // namespace
}  // namespace OXClass

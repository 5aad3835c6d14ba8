#include "cardlist/cUniCards.h"
#include "frame/Class1.h"
#include "kit/Database.h"
#include "platform/runtime/Services.h"

/// The lifecycle of a card: a series is captured and hung, and is then stored as a card.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Four bitewings, which a layout shows in four slots.
const char* const bitewings[] = {"17,16,47,46,", "15,14,45,44,", "24,25,34,35,", "26,27,36,37,"};

/// The place of an image: image, left, top, width, height.
using Place = std::vector<double>;

class CardLifecycle : public WithDatabase {
protected:
    CardLifecycle() {
        LoadLayouts();
        TheHost().Now = [this] { return now; };
        Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '/images', 1)");
        Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (7, 'ANNA')");
    }
    ~CardLifecycle() override { TheHost().Now = clock; }

    String NewUid() { return New<Class1>()->GetInstanceUID(con); }

    void BeginSeries() {
        study = New<cStudy>();
        study->instanceUID = NewUid();
        study->PatientID = 7;
        study->dateTime = now;
        ASSERT_TRUE(study->savestudy(false, con));
        series = New<cSerie>();
        series->instanceUID = NewUid();
        series->studyID = study->ID;
        series->Modality = "IO";
        series->SeriesDateTime = now;
        ASSERT_TRUE(series->SaveSeries(false, con));
    }

    void Capture(const String& teeth) {
        Ref<cImage> image = New<cImage>();
        image->instanceUID = NewUid();
        image->PatID = 7;
        image->studyID = study->ID;
        image->seriesID = series->ID;
        image->RootId = 1;
        image->URL = "0_/" + CStr(images->Count() + 1) + ".dcm";
        image->dateTime = Date{now.Days + images->Count() / 1440.0};
        image->sTeeth = teeth;
        image->ImageType = imggTypeDXIntraOral;
        image->Approved = true;
        image->SaveEx(false, con);
        const String key = "K" + CStr(image->ID);
        images->AddObject(image, key);
    }

    void HangAndSave() {
        series->ImgCount = images->Count();
        series->HangSeries(images, con);
        for (cImage& image : *images) image.Save(con);
        ASSERT_TRUE(series->SaveSeries(true, con));
    }

    /// Loads the list into a new object. No text box may be shown.
    Ref<cUniCards> List() {
        const TextBoxes boxes;
        Ref<cUniCards> list = New<cUniCards>();
        EXPECT_EQ(list->GetICAndSEList4Patient(con, "anna", 0), 7);
        EXPECT_THAT(boxes.shown, IsEmpty());
        return list;
    }

    static std::vector<String> KeysOf(const Ref<cUniCards>& list) {
        std::vector<String> keys;
        for (const cUniCard& entry : *list) keys.push_back(entry.Key);
        return keys;
    }

    /// Opens an entry by what it says of itself.
    void Open(const Ref<cUniCard>& entry) {
        const bool isSeries = entry->CardType() == ctseries;
        Long key = isSeries ? entry->Series->ID : entry->Imagecard->ICID;
        EXPECT_EQ(entry->LoadCardFull(con, isSeries ? entry->Series->instanceUID : String(), key, entry->CardType()),
                  0);
        entry->Fullyloaded = true;
    }

    static std::vector<Place> PlacesOf(const Ref<cUniCard>& entry) {
        std::vector<Place> places;
        for (const auto& placed : Each<cImagecardAttribute>(*entry->Imagecard->ImagecardAttributes))
            places.push_back(
                {static_cast<double>(placed.ImageID), placed.IAPosX, placed.IAPosY, placed.IAWidth, placed.IAHeight});
        return places;
    }

    /// The slots of the layout, each with the image of its frame.
    std::vector<Place> SlotsOf(const Ref<cUniCard>& entry) {
        std::vector<Place> slots;
        for (const cImage& image : *entry->colImages)
            for (const auto& slot : Each<cTemplateAttribute>(*entry->Template->TemplateAttributes))
                if (slot.TANumberInTemplate == image.FrameNumber)
                    slots.push_back(
                        {static_cast<double>(image.ID), slot.TAPosX, slot.TAPosY, slot.TAWidth, slot.TAHeight});
        return slots;
    }

    const std::function<Date()> clock = TheHost().Now;
    Date now = DateFrom({2024, 5, 6, 8, 0, 0});
    Ref<cStudy> study;
    Ref<cSerie> series;
    Ref<cImages> images = New<cImages>();
};

TEST_F(CardLifecycle, ASeriesIsHungListedOpenedAndStoredAsAnEqualCard) {
    BeginSeries();
    EXPECT_THAT(KeysOf(List()), ElementsAre("SE1")) << "under capture";
    for (const char* teeth : bitewings) Capture(teeth);
    HangAndSave();

    const Ref<cUniCard> hung = List()->Item("SE1");
    EXPECT_EQ(hung->Series->ImgCount, 4);
    EXPECT_TRUE(hung->Series->Approved);
    Open(hung);
    EXPECT_EQ(PlacesOf(hung).size(), 4U);
    EXPECT_EQ(PlacesOf(hung), SlotsOf(hung));

    hung->Series->SeriesName = "Bitewings";
    hung->Series->SaveAsIC(con, hung->colImages);
    const Ref<cUniCards> both = List();
    EXPECT_THAT(KeysOf(both), ElementsAre("IC1", "SE1")) << "of one date, the card first";

    const Ref<cUniCard> card = both->Item(Long{1});
    EXPECT_EQ(card->Imagecard->ICName, "Bitewings");
    EXPECT_EQ(card->Imagecard->ICCreateDate, series->SeriesDateTime);
    EXPECT_EQ(card->Imagecard->ICWidth, hung->Imagecard->ICWidth);
    EXPECT_EQ(card->Imagecard->ICHeight, hung->Imagecard->ICHeight);
    Open(card);
    EXPECT_EQ(PlacesOf(card), SlotsOf(hung));
    EXPECT_EQ(card->colImages->Count(), 4);
    for (const cImage& image : *card->colImages) EXPECT_EQ(image.Root_RootDirectory, "/images");
}

TEST_F(CardLifecycle, AnImageWithoutAFrameIsPlacedInTheGrid) {
    BeginSeries();
    for (const char* teeth : bitewings) Capture(teeth);
    HangAndSave();
    Capture("");
    const Ref<cUniCard> hung = List()->Item("SE1");
    Open(hung);
    hung->Series->SaveAsIC(con, hung->colImages);
    const Ref<cUniCard> card = List()->Item("IC1");
    Open(card);
    const std::vector<Place> places = PlacesOf(card);
    ASSERT_EQ(places.size(), 5U);
    EXPECT_THAT(places.back(), ElementsAre(5, 0, 0, 0.19, 0.19));
    EXPECT_EQ(places, PlacesOf(hung));
}

TEST_F(CardLifecycle, ACaptureWithoutImagesIsDeletedFromTheListAndTheTableAfterTenMinutes) {
    BeginSeries();
    now.Days += 9 / 1440.0;
    EXPECT_THAT(KeysOf(List()), ElementsAre("SE1"));
    now.Days += 2 / 1440.0;
    EXPECT_THAT(KeysOf(List()), IsEmpty());
    EXPECT_FALSE(New<cSerie>()->loadSeries("1", con));
    now.Days -= 11 / 1440.0;
    EXPECT_THAT(KeysOf(List()), IsEmpty()) << "for good";
}

TEST_F(CardLifecycle, ACardThatTheUserChangesKeepsItsPositionWithItsNewName) {
    BeginSeries();
    for (const char* teeth : bitewings) Capture(teeth);
    HangAndSave();
    series->SaveAsIC(con, images);
    const Ref<cUniCard> card = List()->Item("IC1");
    Open(card);
    card->Imagecard->ICName = "changed";
    card->Imagecard->ICLastUpdate = DateFrom({2025, 1, 1, 0, 0, 0});
    To<Ref<cImagecardAttribute>>(card->Imagecard->ImagecardAttributes->Item(Long{2}))->ToBeDeleted = true;
    EXPECT_TRUE(card->Imagecard->Save(con));
    const Ref<cUniCards> list = List();
    EXPECT_THAT(KeysOf(list), ElementsAre("IC1", "SE1"));
    EXPECT_EQ(list->Item("IC1")->Imagecard->ICName, "changed");
    Open(list->Item("IC1"));
    EXPECT_EQ(list->Item("IC1")->colImages->Count(), 3);
}

}  // namespace
}  // namespace OXClass

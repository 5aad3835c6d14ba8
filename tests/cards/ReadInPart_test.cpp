#include "cardlist/cUniCards.h"

#include "kit/FaultyProvider.h"

#include <map>

/// Cards, placed images and manipulations that can't be read or stored completely: the failures that the documented
/// operations do not report, and that C++ programs can read.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CardsReadInPart : public WithFaults {
protected:
    CardsReadInPart() {
        Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (3, 'P')");
        Run("INSERT INTO Study_T (Study_ID, PatientID, StudyInstanceUID, StudyDateTime, Studydesc, studyID) "
            "VALUES "
            "(4, 3, '1.4', '2024-03-04 05:06:07', '', 's')");
    }

    void StoreCard(Long id, const String& changes = {}) {
        Run("INSERT INTO ImageCard_T (ImageCardID, PatientID, ICName, ICDateCreated, ICLastUpdate, "
            "ICDescription,"
            " ICFullViewWidth, ICFullViewHeight) VALUES (" +
            CStr(id) + ", 3, 'n', '2024-03-04 05:06:07', '2024-03-04 05:06:07', 'd', 1000, 700)");
        if (!changes.empty()) Run("UPDATE ImageCard_T SET " + changes + " WHERE ImageCardID = " + CStr(id));
    }

    void StorePlaced(Long id, Long card, const String& changes = {}) {
        Run("INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IASequence) VALUES (" +
            CStr(id) + ", " + CStr(card) + ", 40, 1)");
        if (!changes.empty()) Run("UPDATE ImageAttribute_T SET " + changes + " WHERE ImageAttributeID = " + CStr(id));
    }

    void StoreStep(Long placed, const String& values) {
        Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo, Type, LongParameter, "
            "StringParameter)"
            " VALUES (" +
            CStr(placed) + ", 1, " + values + ")");
    }

    void StoreSeries(Long id, const String& columns = {}, const String& values = {}) {
        Run("INSERT INTO Series_T (Series_ID, Study_ID, SeriesInstanceUID, SeriesDateTime" + columns + ") VALUES (" +
            CStr(id) + ", 4, '1.5." + CStr(id) + "', '2024-03-04 05:06:07'" + values + ")");
    }

    void StoreFile(Long series) {
        Run("INSERT INTO ImageBild_T (Series_ID, GraphicURL_NVC) VALUES (" + CStr(series) + ", 'a')");
    }
};

TEST_F(CardsReadInPart, ACardReportsThePlacedImageThatItCouldNotRead) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    StoreCard(7);
    StorePlaced(1, 7);
    StorePlaced(2, 7, "IAMirrRotStatus='x'");
    const TextBoxes boxes;
    const Ref<cImagecard> card = New<cImagecard>();
    card->GetImageCard(con, 7);
    EXPECT_EQ(boxes.shown.size(), 1U);
    EXPECT_EQ(card->ImagecardAttributes->Count(), 1);
    EXPECT_EQ(card->LoadCompletion().Failure().Column, "IAMirrRotStatus");
    Run("UPDATE ImageAttribute_T SET IAMirrRotStatus=1");
    card->LoadImageAttributes(con);
    EXPECT_TRUE(card->LoadCompletion().Complete());
}

TEST_F(CardsReadInPart, ACardThatRaisesNamesTheColumn) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    StoreCard(7, "ICDescription=NULL");
    StoreCard(8, "ICFullViewHeight=9e12");
    StoreCard(9, "ICLastUpdate='soon'");
    const auto column = [&](Long card) {
        return FailureOf([&] { New<cImagecard>()->GetImageCard(con, card); }).Column;
    };
    EXPECT_EQ(column(7), "ICDescription");
    EXPECT_EQ(column(8), "ICFullViewHeight");
    EXPECT_EQ(column(9), "ICLastUpdate");
}

TEST_F(CardsReadInPart, APlacedImageReportsTheManipulationThatItCouldNotRead) {
    StorePlaced(1, 7);
    StoreStep(1, "6, 90, ''");
    StoreStep(1, "6, NULL, ''");
    const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
    placed->ID = 1;
    EXPECT_FALSE(placed->LoadImageManipulations(con));
    EXPECT_EQ(placed->Manipulations->Count(), 1);
    EXPECT_EQ(placed->LoadCompletion().Failure().Column, "LongParameter");
    Run("UPDATE ImageManipulation_T SET LongParameter=0");
    EXPECT_TRUE(placed->LoadImageManipulations(con));
    EXPECT_TRUE(placed->LoadCompletion().Complete());
}

TEST_F(CardsReadInPart, APlacedImageReportsThatItsManipulationsAreNotStored) {
    StorePlaced(1, 7);
    StoreStep(1, "6, 90, ''");
    const auto steps = [&](const String& text) {
        const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
        placed->ID = 1;
        placed->LoadImageManipulations(con);
        const Ref<cImageManipulation> step = New<cImageManipulation>();
        step->ManipulationType = ManBitmap;
        step->StringParameter = text;
        placed->Manipulations->Add(step);
        return placed;
    };
    const Ref<cImagecardAttribute> quoted = steps("it's");
    EXPECT_TRUE(quoted->Save(con)) << "as documented, the save tells nothing";
    EXPECT_EQ(quoted->SaveCompletion().Failure().Number, ADODB::ErrorsInCommand);
    EXPECT_EQ(CountOf("ImageManipulation_T"), 1) << "the first one was stored again";

    const int calls = CallsOf([&] { steps("fine")->Save(faulty); });
    for (int call = 2; call <= calls; ++call) {  // the first is the update of the row, which raises
        Run("DELETE FROM ImageManipulation_T");
        StoreStep(1, "6, 90, ''");
        const Ref<cImagecardAttribute> placed = steps("fine");
        FailAtCall(call);
        placed->Save(faulty);
        const bool reached = CallsSoFar() >= call;
        FailAtCall(0);
        EXPECT_EQ(placed->SaveCompletion().Complete(), !reached) << call;
        placed->Save(con);
        EXPECT_TRUE(placed->SaveCompletion().Complete());
    }
}

TEST_F(CardsReadInPart, AListContinuesAfterRowsThatCannotBeRead) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    StoreCard(1, "ICFullViewWidth=-5");
    StoreCard(2);
    StoreCard(3, "ICName=NULL");
    StoreSeries(5);
    StoreFile(5);
    StoreSeries(6, ", template_ID", ", 'x'");
    StoreFile(6);
    const TextBoxes boxes;
    const Ref<cUniCards> list = New<cUniCards>();
    const Readable found = list->ListReadable(con, 3);
    ASSERT_EQ(list->Count(), 2);
    EXPECT_EQ(list->Item(1)->Key, "IC2");
    EXPECT_EQ(list->Item(2)->Key, "SE5");
    std::map<String, String> unread;
    for (const UnreadEntry& entry : found.unread) unread[entry.Key] = entry.Failure.Column;
    EXPECT_EQ(unread,
              (std::map<String, String>{{"IC1", "ICFullViewWidth"}, {"IC3", "ICName"}, {"SE6", "template_ID"}}));
    EXPECT_THAT(found.orphans, IsEmpty());
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(CardsReadInPart, AStudyThatCannotBeReadLeavesEachOfItsSeriesOut) {
    StoreSeries(5);
    StoreFile(5);
    StoreSeries(6);
    StoreFile(6);
    Run("UPDATE Study_T SET StudyDateTime=NULL");
    Run("INSERT INTO Study_T (Study_ID, PatientID, StudyInstanceUID, StudyDateTime, Studydesc, studyID) "
        "VALUES "
        "(9, 3, '1.9', '2020-03-04 05:06:07', '', 's')");
    StoreSeries(7);
    StoreFile(7);
    Run("UPDATE Series_T SET Study_ID=9 WHERE Series_ID=7");
    const Ref<cUniCards> list = New<cUniCards>();
    const Readable found = list->ListReadable(con, 3);
    ASSERT_EQ(list->Count(), 1);
    EXPECT_EQ(list->Item(1)->Study->ID, 9);
    ASSERT_EQ(found.unread.size(), 2U);
    for (const UnreadEntry& entry : found.unread) EXPECT_EQ(entry.Failure.Column, "StudyDateTime");
}

TEST_F(CardsReadInPart, AListReportsOrphansAndDeletesNone) {
    StoreSeries(5);
    StoreFile(5);
    StoreSeries(6);
    const Ref<cUniCards> list = New<cUniCards>();
    log.statements.clear();
    const Readable found = list->ListReadable(con, 3);
    EXPECT_THAT(found.orphans, ElementsAre(6));
    EXPECT_EQ(list->Count(), 1);
    EXPECT_EQ(CountOf("Series_T"), 2);
    EXPECT_EQ(Sent().size(), 2U) << "the statement for the cards and the one for the series";
    New<cUniCards>()->GetICAndSEList4Patient(con, "P", 0);
    EXPECT_EQ(CountOf("Series_T"), 1) << "the documented list deletes it";
}

}  // namespace
}  // namespace OXClass

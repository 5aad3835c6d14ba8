#include "kit/FaultyProvider.h"

#include "images/cImage.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

/// The state after a failure of the database: each call that an operation makes fails once, and then the operation is
/// repeated.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Faults : public WithFaults {
protected:
    std::vector<String> StoredComments() {
        std::vector<String> texts;
        const Ref<Recordset> rs = Connect()->Execute("SELECT commentString FROM Comments_T ORDER BY CommentID");
        for (; !rs->Eof(); rs->MoveNext()) texts.push_back(To<String>(rs->Fields(0).Value()));
        return texts;
    }
};

// ---- study and series -----------------------------------------------------------------------------------

TEST_F(Faults, ANewStudyIsWrittenWholeOrNotAtAll) {
    const TextBoxes boxes;
    const Ref<cStudy> study = New<cStudy>();
    study->instanceUID = "1.2";
    for (const int call : {1, 2}) {
        FailOnce(call, "cStudy.SaveStudy, SQLite", [&] { study->savestudy(false, faulty); });
        EXPECT_EQ(study->ID, 0);
        EXPECT_EQ(CountOf("Study_T"), 0);
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(study->savestudy(false, faulty)); }), 2) << "look and insert, all failed above";
    EXPECT_EQ(study->ID, 1);
    EXPECT_EQ(CountOf("Study_T"), 1);
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(Faults, AKnownStudyKeepsItsRowUntilTheUpdateSucceeds) {
    Run("INSERT INTO Study_T (Study_ID, StudyInstanceUID, Studydesc) VALUES (5, '1.2', 'old')");
    const Ref<cStudy> study = New<cStudy>();
    study->instanceUID = "1.2";
    study->description = "new";
    study->ID = 77;
    for (const int call : {1, 2}) {
        FailOnce(call, "cStudy.SaveStudy, SQLite", [&] { study->savestudy(false, faulty); });
        EXPECT_EQ(study->ID, 77);
        EXPECT_EQ(Ask("SELECT Studydesc FROM Study_T"), Variant("old"));
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(study->savestudy(false, faulty)); }), 2);
    EXPECT_EQ(study->ID, 5);
    EXPECT_EQ(Ask("SELECT Studydesc FROM Study_T"), Variant("new"));
}

TEST_F(Faults, ANewSeriesIsWrittenWholeOrNotAtAll) {
    const TextBoxes boxes;
    const Ref<cSerie> series = New<cSerie>();
    series->instanceUID = "1.2";
    series->studyID = 1;
    for (const int call : {1, 2}) {
        FailOnce(call, "cSerie.SaveSeries, SQLite", [&] { series->SaveSeries(false, faulty); });
        EXPECT_EQ(series->ID, 0);
        EXPECT_EQ(CountOf("Series_T"), 0);
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(series->SaveSeries(false, faulty)); }), 2);
    EXPECT_EQ(series->ID, 1);
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(Faults, AKnownSeriesKeepsItsRowUntilTheUpdateSucceeds) {
    Run("INSERT INTO Series_T (Series_ID, SeriesInstanceUID, Modality) VALUES (5, '1.2', 'old')");
    const Ref<cSerie> series = New<cSerie>();
    series->instanceUID = "1.2";
    series->Modality = "new";
    series->studyID = 1;
    for (const int call : {1, 2}) {
        FailOnce(call, "cSerie.SaveSeries, SQLite", [&] { series->SaveSeries(false, faulty); });
        EXPECT_EQ(series->ID, 0);
        EXPECT_EQ(Ask("SELECT Modality FROM Series_T"), Variant("old"));
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(series->SaveSeries(false, faulty)); }), 2);
    EXPECT_EQ(series->ID, 5);
    EXPECT_EQ(Ask("SELECT Modality FROM Series_T"), Variant("new"));
}

TEST_F(Faults, ALoadThatFailsChangesNothing) {
    Run("INSERT INTO Study_T (Study_ID, StudyInstanceUID, accessionNumber) VALUES (5, '1.2', 'acc')");
    Run("INSERT INTO Series_T (Series_ID, SeriesInstanceUID) VALUES (6, '1.3')");
    const Ref<cStudy> study = New<cStudy>();
    const Ref<cSerie> series = New<cSerie>();
    FailOnce(1, "cStudy.loadStudy, SQLite", [&] { study->loadStudy("5", faulty); });
    FailOnce(1, "cSerie.loadseries, SQLite", [&] { series->loadSeries("6", faulty); });
    EXPECT_EQ(study->accessionNumber, "");
    EXPECT_EQ(series->ID, 0);
    EXPECT_TRUE(series->loadSeries("6", faulty));
}

TEST_F(Faults, ADeleteThatFailsLeavesTheRow) {
    Run("INSERT INTO Study_T (Study_ID) VALUES (5)");
    Run("INSERT INTO Series_T (Series_ID) VALUES (5)");
    const Ref<cStudy> study = New<cStudy>();
    const Ref<cSerie> series = New<cSerie>();
    study->ID = series->ID = 5;
    for (const int call : {1, 2}) {
        FailOnce(call, "SQLite", [&] { study->Delete(faulty); });
        FailOnce(call, "SQLite", [&] { series->Delete(faulty); });
        EXPECT_EQ(CountOf("Study_T") + CountOf("Series_T"), 2);
    }
    EXPECT_EQ(CallsOf([&] { study->Delete(faulty); }), 2);
    EXPECT_EQ(CallsOf([&] { series->Delete(faulty); }), 2);
    EXPECT_EQ(CountOf("Study_T") + CountOf("Series_T"), 0);
}

// ---- images -----------------------------------------------------------------------------------------------

class ImageFaults : public Faults {
protected:
    ImageFaults() {
        image->URL = "a.dcm";
        image->CRC = "new";
        image->instanceUID = "1.2";
    }

    void AddComments() {
        image->addComment("second", "a", Date{}, false);
        image->addComment("first", "a", Date{}, false);
    }
    std::vector<bool> Saved() {
        std::vector<bool> saved;
        for (const cStringItem& comment : *image->Comments()) saved.push_back(comment.bSaved);
        return saved;
    }
    void Save(int call) {
        FailOnce(call, "SQLite", [&] { image->Save(faulty); });
    }
    void SaveEx(int call) {
        FailOnce(call, "SQLite", [&] { image->SaveEx(false, faulty); });
    }

    Ref<cImage> image = New<cImage>();
};

TEST_F(ImageFaults, ANewImageThatFailsAtItsInsertLeavesNothing) {
    AddComments();
    Save(1);
    EXPECT_EQ(image->ID, 0);
    EXPECT_EQ(CountOf("ImageBild_T"), 0);
    EXPECT_THAT(Saved(), ElementsAre(false, false));
    EXPECT_EQ(CallsOf([&] { image->Save(faulty); }), 4) << "insert, key, two comments";
    EXPECT_EQ(image->ID, 1);
    EXPECT_THAT(StoredComments(), ElementsAre("first", "second"));
}

TEST_F(ImageFaults, ANewImageThatFailsAtItsKeyIsWrittenAndASecondSaveWritesItAgain) {
    AddComments();
    Save(2);
    EXPECT_EQ(image->ID, 0);
    EXPECT_EQ(CountOf("ImageBild_T"), 1);
    EXPECT_THAT(Saved(), ElementsAre(false, false));
    image->Save(faulty);
    EXPECT_EQ(image->ID, 2);
    EXPECT_EQ(CountOf("ImageBild_T"), 2);
    EXPECT_THAT(StoredComments(), ElementsAre("first", "second"));
}

TEST_F(ImageFaults, ANewImageThatFailsAtItsKeyIsFoundAgainBySaveEx) {
    AddComments();
    SaveEx(3);
    EXPECT_EQ(image->ID, 0);
    EXPECT_EQ(CountOf("ImageBild_T"), 1);
    image->SaveEx(false, faulty);
    EXPECT_EQ(image->ID, 1);
    EXPECT_EQ(CountOf("ImageBild_T"), 1);
    EXPECT_THAT(StoredComments(), ElementsAre("first", "second"));
}

TEST_F(ImageFaults, AFailureAmongTheCommentsKeepsRowKeyAndThoseBefore) {
    for (const int written : {0, 1}) {
        Run("DELETE FROM ImageBild_T");
        Run("DELETE FROM Comments_T");
        image = New<cImage>();
        AddComments();
        Save(3 + written);
        EXPECT_NE(image->ID, 0);
        EXPECT_EQ(CountOf("ImageBild_T"), 1);
        EXPECT_THAT(Saved(), ElementsAre(written == 1, false));
        EXPECT_EQ(CountOf("Comments_T"), written);
        EXPECT_EQ(CallsOf([&] { image->Save(faulty); }), 1 + 2 - written) << "an update, and what is still missing";
        EXPECT_EQ(CountOf("ImageBild_T"), 1);
        EXPECT_THAT(StoredComments(), ElementsAre("first", "second"));
        EXPECT_THAT(Saved(), ElementsAre(true, true));
    }
}

TEST_F(ImageFaults, AnUpdateThatFailsLeavesTheRow) {
    image->CRC = "old";
    image->Save(faulty);
    AddComments();
    image->CRC = "new";
    Save(1);
    EXPECT_EQ(image->ID, 1);
    EXPECT_EQ(Ask("SELECT CRC FROM ImageBild_T"), Variant("old"));
    EXPECT_THAT(Saved(), ElementsAre(false, false));
    EXPECT_EQ(CallsOf([&] { image->Save(faulty); }), 3);
    EXPECT_EQ(Ask("SELECT CRC FROM ImageBild_T"), Variant("new"));
    EXPECT_THAT(StoredComments(), ElementsAre("first", "second"));
}

TEST_F(ImageFaults, AFailedSearchLeavesTheOldKey) {
    image->ID = 77;
    SaveEx(1);
    EXPECT_EQ(image->ID, 77);
    EXPECT_EQ(CountOf("ImageBild_T"), 0);
    EXPECT_EQ(CallsOf([&] { image->SaveEx(false, faulty); }), 3) << "look, insert, key";
    EXPECT_EQ(image->ID, 1);
}

TEST_F(ImageFaults, AnInsertThatFailsAfterTheSearchLeavesTheKeyAtZero) {
    image->ID = 77;
    SaveEx(2);
    EXPECT_EQ(image->ID, 0) << "the look found no row";
    EXPECT_EQ(CountOf("ImageBild_T"), 0);
    image->SaveEx(false, faulty);
    EXPECT_EQ(image->ID, 1);
}

/// An image that is stored a second time: the table has its row, with a comment that the object has too, and with the
/// mark of a deletion.
class MergeFaults : public ImageFaults {
protected:
    MergeFaults() {
        image->CRC = "old";
        image->Save(con);
        for (const char* text : {"known", "Deleted 2024-01-02 03:04:05"})
            Run("INSERT INTO Comments_T (dates, signature, tabelID, objectID, commentString) "
                "VALUES ('2024-01-01 00:00:00', 'a', 1, 1, '" +
                String(text) + "')");
        image = New<cImage>();
        image->URL = "a.dcm";
        image->CRC = "new";
        image->instanceUID = "1.2";
        AddComments();
        image->addComment("known", "a", Date{}, false);
    }
    Variant StoredCrc() { return Ask("SELECT CRC FROM ImageBild_T"); }
    std::vector<String> Texts() {
        std::vector<String> texts;
        for (const cStringItem& comment : *image->Comments()) texts.push_back(comment.str);
        return texts;
    }
};

TEST_F(MergeFaults, MakesSixCalls) {
    EXPECT_EQ(CallsOf([&] { image->SaveEx(false, faulty); }), 6) << "look, comments, mark, update, two comments";
    EXPECT_THAT(StoredComments(), ElementsAre("known", "first", "second"));
    EXPECT_EQ(StoredCrc(), Variant("new"));
}

TEST_F(MergeFaults, AtTheSearchChangesNothing) {
    SaveEx(1);
    EXPECT_EQ(image->ID, 0);
    EXPECT_THAT(Texts(), ElementsAre("known", "first", "second"));
    EXPECT_THAT(StoredComments(), ElementsAre("known", "Deleted 2024-01-02 03:04:05"));
    EXPECT_EQ(StoredCrc(), Variant("old"));
    image->SaveEx(false, faulty);
    EXPECT_EQ(image->ID, 1);
    EXPECT_THAT(StoredComments(), ElementsAre("known", "first", "second"));
    EXPECT_EQ(StoredCrc(), Variant("new"));
}

TEST_F(MergeFaults, AtTheStoredCommentsKeepsTheKeyThatWasFound) {
    SaveEx(2);
    EXPECT_EQ(image->ID, 1);
    EXPECT_THAT(Texts(), ElementsAre("known", "first", "second"));
    EXPECT_EQ(StoredCrc(), Variant("old"));
    image->SaveEx(false, faulty);
    EXPECT_EQ(StoredCrc(), Variant("new"));
    EXPECT_THAT(StoredComments(), ElementsAre("known", "Deleted 2024-01-02 03:04:05", "known", "first", "second"))
        << "with a key the comments are not brought together any more";
}

TEST_F(MergeFaults, AtTheMarkKeepsTheCommentsBroughtTogether) {
    SaveEx(3);
    EXPECT_EQ(image->ID, 1);
    EXPECT_THAT(Texts(), ElementsAre("first", "second"));
    EXPECT_THAT(StoredComments(), ElementsAre("known", "Deleted 2024-01-02 03:04:05"));
    EXPECT_EQ(StoredCrc(), Variant("old"));
    image->SaveEx(false, faulty);
    EXPECT_EQ(StoredCrc(), Variant("new"));
    EXPECT_THAT(StoredComments(), ElementsAre("known", "Deleted 2024-01-02 03:04:05", "first", "second"));
}

TEST_F(MergeFaults, AtTheUpdateTheMarkIsAlreadyDeleted) {
    SaveEx(4);
    EXPECT_THAT(StoredComments(), ElementsAre("known"));
    EXPECT_EQ(StoredCrc(), Variant("old"));
    EXPECT_THAT(Saved(), Each(false));
    EXPECT_EQ(CallsOf([&] { image->SaveEx(false, faulty); }), 4) << "look, update, two comments";
    EXPECT_EQ(StoredCrc(), Variant("new"));
    EXPECT_THAT(StoredComments(), ElementsAre("known", "first", "second"));
}

TEST_F(MergeFaults, AmongTheCommentsKeepsTheRowAndThoseBefore) {
    SaveEx(6);
    EXPECT_EQ(StoredCrc(), Variant("new"));
    EXPECT_THAT(Saved(), ElementsAre(true, false));
    EXPECT_THAT(StoredComments(), ElementsAre("known", "first"));
    EXPECT_EQ(CallsOf([&] { image->SaveEx(false, faulty); }), 3) << "look, update, the comment still missing";
    EXPECT_THAT(StoredComments(), ElementsAre("known", "first", "second"));
}

TEST_F(MergeFaults, AtTheFirstCommentKeepsTheRow) {
    SaveEx(5);
    EXPECT_EQ(StoredCrc(), Variant("new"));
    EXPECT_THAT(Saved(), ElementsAre(false, false));
    EXPECT_THAT(StoredComments(), ElementsAre("known"));
    image->SaveEx(false, faulty);
    EXPECT_THAT(StoredComments(), ElementsAre("known", "first", "second"));
}

// ---- hanging ------------------------------------------------------------------------------------

TEST_F(Faults, HangingThatFailsAtTheTemplateLeavesTheImagesUnplaced) {
    LoadLayouts();
    const Ref<Collection> images = New<Collection>();
    for (int i = 0; i < 10; ++i) {
        const Ref<cImage> image = New<cImage>();
        image->sTeeth = "55,";
        image->FrameNumber = 99;
        images->Add(image);
    }
    const Ref<cSerie> series = New<cSerie>();
    series->ImgCount = 10;
    const auto frames = [&] {
        std::vector<Long> numbers;
        for (const cImage& image : Platform::Each<cImage>(*images)) numbers.push_back(image.FrameNumber);
        return numbers;
    };
    for (const int call : {1, 2, 3}) {
        FailOnce(call, "SQLite", [&] { series->HangSeries(images, faulty); });
        EXPECT_THAT(frames(), Each(0));
        EXPECT_EQ(series->TemplateID, 6) << "what was changed before stays";
        for (const cImage& image : Platform::Each<cImage>(*images)) EXPECT_EQ(image.Laterality, "R");
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_EQ(series->HangSeries(images, faulty), 6); }), 3);
    EXPECT_THAT(frames(), ElementsAre(8, 9, 11, 10, 1, 2, 18, 17, 12, 13)) << "the order of the layout itself";
}

}  // namespace
}  // namespace OXClass

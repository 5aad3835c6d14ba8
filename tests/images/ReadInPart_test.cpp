#include "images/cImages.h"

#include "kit/Database.h"

#include <map>

/// Images whose row can't be read completely: the failures that the documented operations do not report, and that C++
/// programs can read.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::IsEmpty;

class ReadInPart : public WithDatabase {
protected:
    ReadInPart() { Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, 'root', 1)"); }

    /// Stores an image of series 5 with all columns that a reader needs, then changes columns.
    void Store(Long id, const String& changes = {}) {
        Run("INSERT INTO ImageBild_T (ImageBildID, PatientID, Series_ID, DateCaptured_SD, RootId, "
            "GraphicURL_NVC,"
            " Invert_BT, Contrast_INT, Brightness_INT, ImageType) VALUES (" +
            CStr(id) + ", 3, 5, '2024-03-04 05:06:07', 1, 'a.dcm', 0, 0, 0, 1)");
        if (!changes.empty()) Run("UPDATE ImageBild_T SET " + changes + " WHERE ImageBildID = " + CStr(id));
    }

    std::map<Long, String> UnreadColumns(const cImages& images) const {
        std::map<Long, String> columns;
        for (const UnreadRow& row : images.Unread()) columns[row.ID] = row.Failure.Column;
        return columns;
    }
};

TEST_F(ReadInPart, AWholeRowIsComplete) {
    Store(1);
    const Ref<cImage> image = New<cImage>();
    EXPECT_TRUE(image->LoadCompletion().Complete()) << "nothing was read yet";
    ASSERT_TRUE(image->GetImage(con, 1));
    EXPECT_TRUE(image->LoadCompletion().Complete());
    EXPECT_FALSE(image->GetImage(con, 2));
    EXPECT_TRUE(image->LoadCompletion().Complete()) << "a missing row is told by the result";
}

TEST_F(ReadInPart, TheColumnThatEndsAReadingIsNamed) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    const std::map<String, String> values{{"Approved", "'x'"},          {"Brightness_INT", "NULL"},
                                          {"Contrast_INT", "NULL"},     {"DateCaptured_SD", "NULL"},
                                          {"ExposureTime_F", "'x'"},    {"ImageType", "NULL"},
                                          {"Invert_BT", "NULL"},        {"PatientID", "NULL"},
                                          {"MirrRotStatus", "'x'"},     {"DPIY_INT", "'x'"},
                                          {"DPIX_INT", "'x'"},          {"Voltage_INT", "'x'"},
                                          {"Current_INT", "'x'"},       {"Study_ID", "'x'"},
                                          {"Series_ID", "'x'"},         {"ImageNumberInSeries", "'99999999999'"},
                                          {"DicomStatus_INT", "70000"}, {"FrameNumber_INT", "'x'"},
                                          {"SubType_INT", "'x'"},       {"Gamma_INT", "'x'"},
                                          {"DCMDerived_BT", "70000"}};
    Long id = 0;
    for (const auto& [column, value] : values) {
        Store(++id, column + "=" + value);
        const Ref<cImage> image = New<cImage>();
        EXPECT_TRUE(image->GetImage(con, id)) << column;
        EXPECT_FALSE(image->LoadCompletion().Complete()) << column;
        EXPECT_EQ(image->LoadCompletion().Failure().Column, column);
        EXPECT_NE(image->LoadCompletion().Failure().Number, 0) << column;
    }
}

TEST_F(ReadInPart, AColumnThatTheRecordLacksIsNamed) {
    Store(1);
    const Ref<Recordset> rows =
        con->Execute("SELECT Approved, Brightness_INT, Contrast_INT, DateCaptured_SD, ExposureTime_F FROM ImageBild_T");
    const Ref<cImage> image = New<cImage>();
    image->GetFromRecord(rows);
    EXPECT_EQ(image->LoadCompletion().Failure().Column, "GraphicURL_NVC");
    EXPECT_EQ(image->LoadCompletion().Failure().Number, ADODB::adErrItemNotFound);
}

TEST_F(ReadInPart, ATableThatLacksAColumnIsNotReportedAsAMissingImage) {
    Store(1);
    Run("ALTER TABLE ImageBild_T DROP COLUMN Gamma_INT");
    const Ref<cImage> image = New<cImage>();
    EXPECT_FALSE(image->GetImage(con, 1));
    EXPECT_EQ(image->LoadCompletion().Failure().Number, ADODB::UnknownName);
}

TEST_F(ReadInPart, ACompleteLoadAfterAPartialOneIsComplete) {
    Store(1, "Brightness_INT=NULL");
    Store(2);
    const Ref<cImage> image = New<cImage>();
    image->GetImage(con, 1);
    ASSERT_FALSE(image->LoadCompletion().Complete());
    image->GetImage(con, 2);
    EXPECT_TRUE(image->LoadCompletion().Complete());
}

TEST_F(ReadInPart, ALoadReportsTheRowsThatItCouldNotReadCompletely) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    Store(1);
    Store(2, "SubType_INT='x'");
    Store(3, "Brightness_INT=NULL");
    const Ref<cImages> images = New<cImages>();
    EXPECT_EQ(images->LoadAll4Object(con, iootSeries, 5), 3) << "as documented, they are in the list";
    EXPECT_EQ(UnreadColumns(*images), (std::map<Long, String>{{2, "SubType_INT"}, {3, "Brightness_INT"}}));
    Store(4, "Brightness_INT=NULL");
    EXPECT_EQ(FailureOf([&] { images->LoadAll4Object(con, iootSeries, 5); }).Number, err::DuplicateKey);
    EXPECT_EQ(images->Unread().size(), 3U) << "the row that failed the load is among them";
}

TEST_F(ReadInPart, AToleratingLoadOmitsThemAndRaisesForNone) {
    Store(1);
    Store(2, "Brightness_INT=NULL");
    Store(3, "Contrast_INT=NULL");
    Store(4, "RootId=NULL");
    Store(5);
    const Ref<cImages> images = New<cImages>();
    EXPECT_EQ(images->LoadReadable(con, iootSeries, 5), 2);
    EXPECT_EQ(images->Item("K1")->ID, 1);
    EXPECT_EQ(images->Item("K5")->ID, 5);
    EXPECT_EQ(UnreadColumns(*images),
              (std::map<Long, String>{{2, "Brightness_INT"}, {3, "Contrast_INT"}, {4, "RootId"}}));
    EXPECT_EQ(Sent().back(),
              "SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId where Series_ID=5"
              " ORDER BY DateCaptured_SD, ImageBildID");
    Run("DELETE FROM ImageBild_T WHERE ImageBildID < 5");
    EXPECT_EQ(images->LoadReadable(con, iootPatient, 3), 1);
    EXPECT_THAT(images->Unread(), IsEmpty());
}

TEST_F(ReadInPart, CommentsAreStoredWithoutTheImage) {
    Store(7, "Brightness_INT=NULL");
    const Ref<cImage> image = New<cImage>();
    image->ID = 7;
    image->addComment("it's one", "AB", Date{45000.5}, false);
    image->addComment("two", "AB", Date{45001.5}, false);
    log.statements.clear();
    image->SaveComments(con);
    EXPECT_THAT(Sent(), ::testing::ElementsAre(
                            "INSERT INTO Comments_T ( dates, signature, tabelID, objectID,commentString ) VALUES "
                            "('2023-03-16 12:00:00','AB', 1, 7, 'two')",
                            "INSERT INTO Comments_T ( dates, signature, tabelID, objectID,commentString ) VALUES "
                            "('2023-03-15 12:00:00','AB', 1, 7, 'it''s one')"));
    log.statements.clear();
    image->SaveComments(con);
    EXPECT_THAT(Sent(), IsEmpty()) << "they are stored now";
}

}  // namespace
}  // namespace OXClass

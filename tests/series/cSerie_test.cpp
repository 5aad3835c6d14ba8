#include "series/StudyAndSeriesRows.h"

/// What is particular to a series and its row, and where its images are. Hanging has a file of its own.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(SeriesRecord, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(cSerie()),
        ElementsAre("put SeriesDateTime(date)", "get SeriesDateTime -> date", "put SeriesDerived(boolean)",
                    "get SeriesDerived -> boolean", "put SeriesDescription(string)", "get SeriesDescription -> string",
                    "put InstanceAv(string)", "get InstanceAv -> string", "put OrgServer(int32)",
                    "get OrgServer -> int32", "get Key -> string", "put Key(string&)",
                    "put location(gdcmObjectLocation)", "get location -> gdcmObjectLocation", "put SeriesName(string)",
                    "get SeriesName -> string", "put ImgCount(int32)", "get ImgCount -> int32",
                    "adjustLocationStatus()", "loadSeries(Series: string, Con: Connection&) -> boolean",
                    "SaveSeries(CheckExistOnID: boolean&, Con: Connection&) -> boolean", "put studyID(int32)",
                    "get studyID -> int32", "put TemplateID(int32)", "get TemplateID -> int32", "put ID(int32)",
                    "get ID -> int32", "put seriesNumber(string)", "get seriesNumber -> string", "put Modality(string)",
                    "get Modality -> string", "put instanceUID(string)", "get instanceUID -> string",
                    "get Approved -> boolean", "put Approved(boolean)", "get Changed -> boolean",
                    "put Changed(boolean)", "Delete(Con: Connection&)",
                    "SaveAsIC(Con: Connection&, colImages: Collection&)",
                    "HangSeries(colImgs: Collection&, conn: Connection&) -> int32"));
}

TEST(SeriesRecord, LocationsHaveTheirNumbers) {
    EXPECT_EQ(gdcmObjectLocUnknown, 0);
    EXPECT_EQ(gdcmObjectLocLocal, 1);
    EXPECT_EQ(gdcmObjectLocServer, 2);
    EXPECT_EQ(gdcmObjectLocBoth, 3);
}

TEST(SeriesRecord, StartsWithZerosAndEmptyTexts) {
    EXPECT_THAT(
        SeriesRow::ValuesOf(cSerie()),
        ElementsAre("SeriesDateTime 1899-12-30 00:00:00", "SeriesDerived false", "SeriesDescription ", "InstanceAv ",
                    "OrgServer 0", "Key ", "location 0", "SeriesName ", "ImgCount 0", "studyID 0", "TemplateID 0",
                    "ID 0", "seriesNumber ", "Modality ", "instanceUID ", "Approved false", "Changed false"));
}

TEST(SeriesRecord, PropertiesHoldTheirOwnValues) {
    cSerie series;
    SetEachProperty(series);
    EXPECT_THAT(SeriesRow::ValuesOf(series),
                ElementsAre("SeriesDateTime 1899-12-31 00:00:00", "SeriesDerived true", "SeriesDescription text 3",
                            "InstanceAv text 4", "OrgServer 5", "Key text 6", "location 7", "SeriesName text 8",
                            "ImgCount 9", "studyID 10", "TemplateID 11", "ID 12", "seriesNumber text 13",
                            "Modality text 14", "instanceUID text 15", "Approved false", "Changed true"));
}

TEST(SeriesRecord, AdjustLocationStatusFollowsTheAvailability) {
    struct Row {
        const char* available;
        gdcmObjectLocation before, after;
    };
    constexpr auto Unknown = gdcmObjectLocUnknown, Local = gdcmObjectLocLocal, Server = gdcmObjectLocServer,
                   Both = gdcmObjectLocBoth;
    for (const auto& [available, before, after] :
         {Row{"ONLINE", Unknown, Server}, Row{"ONLINE", Local, Both}, Row{"ONLINE", Server, Server},
          Row{"ONLINE", Both, Both}, Row{"NEARLINE", Unknown, Server}, Row{"NEARLINE", Local, Both},
          Row{"NEARLINE", Server, Server}, Row{"NEARLINE", Both, Both}, Row{"", Unknown, Unknown},
          Row{"", Local, Local}, Row{"", Server, Unknown}, Row{"", Both, Local}, Row{"OFFLINE", Server, Unknown},
          Row{"online", Both, Local}, Row{" ONLINE", Both, Local}}) {
        const Ref<cSerie> series = New<cSerie>();
        series->InstanceAv = available;
        series->location = before;
        series->adjustLocationStatus();
        EXPECT_EQ(series->location, after) << available << before;
    }
}

class SeriesTable : public RowTest<SeriesRow> {
protected:
    const Ref<cSerie>& series = record;
};

// ---- loading ------------------------------------------------------------------------------------------

TEST_F(SeriesTable, LoadFillsEachPropertyFromItsColumn) {
    StoreDistinct();
    FillOtherwise();
    series->ImgCount = 0;
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_THAT(Values(),
                ElementsAre("SeriesDateTime 2024-03-05 14:07:09", "SeriesDerived true", "SeriesDescription descr",
                            "InstanceAv ONLINE", "OrgServer 13", "Key key", "location 2", "SeriesName name",
                            "ImgCount 14", "studyID 12", "TemplateID 11", "ID 5", "seriesNumber 17", "Modality IO",
                            "instanceUID 1.2.5", "Approved true", "Changed true"));
}

TEST_F(SeriesTable, LoadReadsNullsAsZerosAndEmptyTexts) {
    Run("INSERT INTO Series_T (Series_ID) VALUES (5)");
    FillOtherwise();
    series->ImgCount = 0;
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_THAT(Values(), ElementsAre("SeriesDateTime 1899-12-30 00:00:00", "SeriesDerived false", "SeriesDescription ",
                                      "InstanceAv ONLINE", "OrgServer 0", "Key key", "location 0", "SeriesName name",
                                      "ImgCount 0", "studyID 0", "TemplateID 0", "ID 5", "seriesNumber 0", "Modality ",
                                      "instanceUID ", "Approved true", "Changed true"));
}

TEST_F(SeriesTable, ACountSetBeforehandIsKept) {
    StoreDistinct();
    series->ImgCount = 7;
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_EQ(series->ImgCount, 7);
}

TEST_F(SeriesTable, AnyNumberButZeroIsReadAsDerived) {
    StoreDistinct();
    for (const auto& [stored, derived] : {std::pair{"-1", true}, std::pair{"2", true}, std::pair{"0", false}}) {
        Set("Derived_BT", stored);
        EXPECT_TRUE(series->loadSeries("5", con));
        EXPECT_EQ(series->SeriesDerived, derived) << stored;
    }
}

TEST_F(SeriesTable, AValueThatIsNotADateRaisesAndKeepsWhatWasRead) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    StoreDistinct();
    FillOtherwise();
    std::vector<String> expected = Values();
    expected[11] = "ID 5";
    expected[14] = "instanceUID 1.2.5";
    expected[13] = "Modality IO";
    expected[12] = "seriesNumber 17";
    expected[10] = "TemplateID 11";
    expected[9] = "studyID 12";
    expected[4] = "OrgServer 13";
    expected[2] = "SeriesDescription descr";
    Set("SeriesDateTime", "'some day'");
    const Error failure = FailureOf([&] { series->loadSeries("5", con); });
    EXPECT_EQ(failure.Number, 13);
    EXPECT_EQ(failure.Source, "cSerie.loadseries, Runtime");
    EXPECT_EQ(Values(), expected);
}

// ---- saving -------------------------------------------------------------------------------------------

TEST_F(SeriesTable, SaveWithoutUidOrStudyReturnsFalseAndSendsNothing) {
    series->studyID = 1;
    EXPECT_FALSE(series->SaveSeries(false, con));
    EXPECT_FALSE(series->SaveSeries(true, con));
    series->instanceUID = "1.2";
    series->studyID = 0;
    EXPECT_FALSE(series->SaveSeries(false, con));
    EXPECT_FALSE(series->SaveSeries(true, nullptr)) << "the connection isn't used";
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(Count(), 0);
}

TEST_F(SeriesTable, ADerivedSeriesIsStoredAsOneAndLoadedAgain) {
    FillOtherwise();
    series->SeriesDerived = true;
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_EQ(OfRow("Derived_BT"), Variant(Long{1}));
    cSerie loaded;
    EXPECT_TRUE(loaded.loadSeries("1", con));
    EXPECT_TRUE(loaded.SeriesDerived);
}

TEST_F(SeriesTable, AnEmptyNumberIsNotWritten) {
    StoreDistinct();
    FillOtherwise();
    series->ID = 5;
    series->seriesNumber.clear();
    EXPECT_TRUE(series->SaveSeries(true, con));
    EXPECT_EQ(OfRow("seriesNumber", 5), Variant("17"));
    series->instanceUID = "7.7";
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_TRUE(OfRow("seriesNumber", series->ID).Is<Null>());
}

TEST_F(SeriesTable, QuotesOfTheDescriptionAreStoredDoubledAndThenCut) {
    FillOtherwise();
    series->SeriesDescription = String(40, '\'');
    series->Modality = "'";
    series->seriesNumber = "1'2";
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_EQ(OfRow("SeriesDescription"), Variant(String(64, '\'')));
    EXPECT_EQ(OfRow("Modality"), Variant("'"));
    EXPECT_EQ(OfRow("seriesNumber"), Variant("1'2"));
    series->SeriesDescription = "It's";
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_EQ(OfRow("SeriesDescription"), Variant("It''s"));
}

TEST_F(SeriesTable, AMissingColumnRaisesAndWritesNothing) {
    Run("ALTER TABLE Series_T DROP COLUMN location");
    FillOtherwise();
    const Error failure = FailureOf([&] { series->SaveSeries(false, con); });
    EXPECT_EQ(failure.Number, 3265) << "a study skips it, a series doesn't";
    EXPECT_EQ(failure.Source, "cSerie.SaveSeries, ADODB.Recordset");
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(series->ID, 95);
}

}  // namespace
}  // namespace OXClass

#include "series/cSerie.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The row of a series: loading, saving, deleting, and the location of its images. Hanging has a file of its own.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Long StatementError = static_cast<Long>(0x80040E14);

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

/// All properties with their values, one text each.
std::vector<String> ValuesOf(const Ref<cSerie>& series) {
    const auto flag = [](bool value) { return String(value ? "true" : "false"); };
    return {"SeriesDateTime " + FormatDate(series->SeriesDateTime, "yyyy-mm-dd hh:nn:ss"),
            "SeriesDerived " + flag(series->SeriesDerived),
            "SeriesDescription " + series->SeriesDescription,
            "InstanceAv " + series->InstanceAv,
            "OrgServer " + CStr(series->OrgServer),
            "Key " + series->Key,
            "location " + CStr(Long{series->location}),
            "SeriesName " + series->SeriesName,
            "ImgCount " + CStr(series->ImgCount),
            "studyID " + CStr(series->studyID),
            "TemplateID " + CStr(series->TemplateID),
            "ID " + CStr(series->ID),
            "seriesNumber " + series->seriesNumber,
            "Modality " + series->Modality,
            "instanceUID " + series->instanceUID,
            "Approved " + flag(series->Approved),
            "Changed " + flag(series->Changed)};
}

TEST(SeriesRecord, StartsWithZerosAndEmptyTexts) {
    EXPECT_THAT(
        ValuesOf(New<cSerie>()),
        ElementsAre("SeriesDateTime 1899-12-30 00:00:00", "SeriesDerived false", "SeriesDescription ", "InstanceAv ",
                    "OrgServer 0", "Key ", "location 0", "SeriesName ", "ImgCount 0", "studyID 0", "TemplateID 0",
                    "ID 0", "seriesNumber ", "Modality ", "instanceUID ", "Approved false", "Changed false"));
}

TEST(SeriesRecord, PropertiesHoldTheirOwnValues) {
    const Ref<cSerie> series = New<cSerie>();
    Long n = 0;
    for (const Member& member : series->Describe().Members()) {
        if (member.Kind != MemberKind::Put) continue;
        const MemberType::Kind type = member.Arguments.back().Type.Is;
        ++n;
        Variant value = type == MemberType::Kind::Text ? Variant("text " + CStr(n)) : Variant(n);
        if (type == MemberType::Kind::Boolean) value = member.Name != "Approved";
        member.Call(*series, {&value, 1});
    }
    EXPECT_THAT(ValuesOf(series),
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

class SeriesTable : public WithDatabase {
protected:
    /// A row of distinct values under key 5.
    void StoreDistinct() {
        Run("INSERT INTO Series_T (Series_ID, SeriesInstanceUID, Modality, seriesNumber, template_ID, "
            "Study_ID, "
            "orgServerID, SeriesDescription, SeriesDateTime, Derived_BT, location, NumberOfImages) VALUES "
            "(5, '1.2.5', "
            "'IO', '17', 11, 12, 13, 'descr', '2024-03-05 14:07:09', 1, 2, 14)");
    }
    void Set(const String& column, const String& value) { Run("UPDATE Series_T SET " + column + " = " + value); }
    Variant OfRow(const String& column, Long id = 1) {
        return Ask("SELECT " + column + " FROM Series_T WHERE Series_ID = " + CStr(id));
    }
    Long Count() { return CLng(Ask("SELECT COUNT(*) FROM Series_T")); }

    /// Gives the object other values than those of the row.
    void FillOtherwise() {
        series->SeriesDateTime = DateFrom({2001, 2, 3, 4, 5, 6});
        series->SeriesDerived = false;
        series->SeriesDescription = "old descr";
        series->InstanceAv = "ONLINE";
        series->OrgServer = 91;
        series->Key = "key";
        series->location = gdcmObjectLocBoth;
        series->SeriesName = "name";
        series->ImgCount = 92;
        series->studyID = 93;
        series->TemplateID = 94;
        series->ID = 95;
        series->seriesNumber = "old 96";
        series->Modality = "PX";
        series->instanceUID = "9.9";
        series->Approved = series->Changed = true;
    }

    Ref<cSerie> series = New<cSerie>();
};

// ---- loading ------------------------------------------------------------------------------------------

TEST_F(SeriesTable, LoadsByKeyOrByUid) {
    StoreDistinct();
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_TRUE(series->loadSeries("1.2.5", con));
    EXPECT_FALSE(series->loadSeries("-5", con));
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Series_T   WHERE series_id =5;",
                                    "SELECT * FROM Series_T   WHERE seriesInstanceUID ='1.2.5';",
                                    "SELECT * FROM Series_T   WHERE series_id =-5;"));
}

TEST_F(SeriesTable, LoadFillsEachPropertyFromItsColumn) {
    StoreDistinct();
    FillOtherwise();
    series->ImgCount = 0;
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_THAT(ValuesOf(series),
                ElementsAre("SeriesDateTime 2024-03-05 14:07:09", "SeriesDerived true", "SeriesDescription descr",
                            "InstanceAv ONLINE", "OrgServer 13", "Key key", "location 2", "SeriesName name",
                            "ImgCount 14", "studyID 12", "TemplateID 11", "ID 5", "seriesNumber 17", "Modality IO",
                            "instanceUID 1.2.5", "Approved true", "Changed true"));
}

TEST_F(SeriesTable, LoadOfAMissingRowReturnsFalseAndChangesNothing) {
    StoreDistinct();
    FillOtherwise();
    const std::vector<String> before = ValuesOf(series);
    EXPECT_FALSE(series->loadSeries("6", con));
    EXPECT_FALSE(series->loadSeries("1.2", con));
    EXPECT_EQ(ValuesOf(series), before);
}

TEST_F(SeriesTable, LoadOfNullsStoresZerosAndEmptyTexts) {
    Run("INSERT INTO Series_T (Series_ID) VALUES (5)");
    FillOtherwise();
    series->ImgCount = 0;
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_THAT(ValuesOf(series),
                ElementsAre("SeriesDateTime 1899-12-30 00:00:00", "SeriesDerived false", "SeriesDescription ",
                            "InstanceAv ONLINE", "OrgServer 0", "Key key", "location 0", "SeriesName name",
                            "ImgCount 0", "studyID 0", "TemplateID 0", "ID 5", "seriesNumber 0", "Modality ",
                            "instanceUID ", "Approved true", "Changed true"));
}

TEST_F(SeriesTable, ACountThatWasSetBeforeIsUsedInsteadOfTheRows) {
    StoreDistinct();
    series->ImgCount = 7;
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_EQ(series->ImgCount, 7);
}

TEST_F(SeriesTable, AnyNumberButZeroIsDerived) {
    StoreDistinct();
    for (const auto& [stored, derived] : {std::pair{"-1", true}, std::pair{"2", true}, std::pair{"0", false}}) {
        Set("Derived_BT", stored);
        EXPECT_TRUE(series->loadSeries("5", con));
        EXPECT_EQ(series->SeriesDerived, derived) << stored;
    }
}

TEST_F(SeriesTable, AColumnThatCantBeReadRaisesAndKeepsTheMembersReadBefore) {
    StoreDistinct();
    FillOtherwise();
    std::vector<String> expected = ValuesOf(series);
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
    EXPECT_EQ(ValuesOf(series), expected);
}

TEST_F(SeriesTable, TextsThatAreNeitherKeyNorUidFailBeforeAnyStatement) {
    StoreDistinct();
    FillOtherwise();
    const std::vector<String> before = ValuesOf(series);
    for (const char* text : {"5 OR 1=1", "series_id", "study_id", "abc", "", " ", "5; DELETE FROM Series_T", "'5'",
                             "5-1", "1.2' OR '1'='1", "1.2'", "1.2'; DELETE FROM Series_T; --"}) {
        const Error failure = FailureOf([&] { series->loadSeries(text, con); });
        EXPECT_EQ(failure.Number, StatementError) << text;
        EXPECT_EQ(failure.Source, "cSerie.loadseries, ADODB.Connection") << text;
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(ValuesOf(series), before);
    EXPECT_EQ(Count(), 1);
}

TEST_F(SeriesTable, AFailureOfTheDatabaseGetsTheOperationInFrontOfItsSource) {
    Run("DROP TABLE Series_T");
    series->instanceUID = "1.2";
    series->studyID = 1;
    const Error plain = FailureOf([&] { con->Execute("SELECT * FROM Series_T   WHERE series_id =5;"); });
    const Error load = FailureOf([&] { series->loadSeries("5", con); });
    const Error save = FailureOf([&] { series->SaveSeries(true, con); });
    const Error remove = FailureOf([&] { series->Delete(con); });
    for (const Error& failure : {load, save, remove}) {
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    }
    EXPECT_EQ(load.Description, plain.Description);
    EXPECT_EQ(load.Source, "cSerie.loadseries, " + plain.Source);
    EXPECT_EQ(save.Source, "cSerie.SaveSeries, " + plain.Source);
    EXPECT_EQ(remove.Source, plain.Source) << "an operation without a handler puts no name in front";
}

// ---- saving -------------------------------------------------------------------------------------------

TEST_F(SeriesTable, SaveSearchesByKeyOrByUid) {
    series->ID = 5;
    series->instanceUID = "1.2.5";
    series->studyID = 1;
    series->SaveSeries(true, con);
    series->SaveSeries(false, con);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Series_T WHERE series_id =5;",
                                    "SELECT * FROM Series_T WHERE SeriesInstanceUID ='1.2.5';"));
}

TEST_F(SeriesTable, SaveWithoutUidOrStudyReturnsFalseAndSendsNoStatement) {
    series->studyID = 1;
    EXPECT_FALSE(series->SaveSeries(false, con));
    EXPECT_FALSE(series->SaveSeries(true, con));
    series->instanceUID = "1.2";
    series->studyID = 0;
    EXPECT_FALSE(series->SaveSeries(false, con));
    EXPECT_FALSE(series->SaveSeries(true, nullptr)) << "the connection isn't looked at";
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(Count(), 0);
}

TEST_F(SeriesTable, SaveStoresEachPropertyAndTakesTheNewKey) {
    FillOtherwise();
    series->SeriesDerived = true;
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_EQ(series->ID, 1);
    EXPECT_EQ(OfRow("SeriesInstanceUID || '|' || Modality || '|' || seriesNumber || '|' || template_ID || '|' || "
                    "Study_ID || '|' || orgServerID || '|' || SeriesDescription || '|' || SeriesDateTime || '|' || "
                    "Derived_BT || '|' || location || '|' || NumberOfImages"),
              Variant("9.9|PX|old 96|94|93|91|old descr|2001-02-03 04:05:06|1|3|92"));
    const Ref<cSerie> read = New<cSerie>();
    EXPECT_TRUE(read->loadSeries("1", con));
    read->InstanceAv = series->InstanceAv;
    read->Key = series->Key;
    read->SeriesName = series->SeriesName;
    read->Approved = read->Changed = true;
    EXPECT_EQ(ValuesOf(read), ValuesOf(series));
}

TEST_F(SeriesTable, ASeriesThatIsNotDerivedIsStoredAsZero) {
    FillOtherwise();
    series->SaveSeries(false, con);
    EXPECT_EQ(OfRow("Derived_BT"), Variant(Long{0}));
}

TEST_F(SeriesTable, SaveByAKnownUidUpdatesItsRowAndTakesItsKey) {
    StoreDistinct();
    FillOtherwise();
    series->instanceUID = "1.2.5";
    series->ID = 0;
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_EQ(series->ID, 5);
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(OfRow("Modality", 5), Variant("PX"));
}

TEST_F(SeriesTable, SaveByANewUidInserts) {
    StoreDistinct();
    FillOtherwise();
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_EQ(series->ID, 6);
    EXPECT_EQ(Count(), 2);
}

TEST_F(SeriesTable, SaveByKeyUpdatesTheKeysRowWithAnyUid) {
    StoreDistinct();
    FillOtherwise();
    series->ID = 5;
    EXPECT_TRUE(series->SaveSeries(true, con));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(OfRow("SeriesInstanceUID", 5), Variant("9.9"));
}

TEST_F(SeriesTable, SaveByADeletedKeyInserts) {
    FillOtherwise();
    EXPECT_TRUE(series->SaveSeries(true, con));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(series->ID, 1);
}

TEST_F(SeriesTable, AnEmptyNumberLeavesTheRows) {
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

TEST_F(SeriesTable, TextsInAnyScriptAreReadUnchanged) {
    for (const String text : {"Παπαδόπουλος", "Щукина", "山田太郎", "🦷😬"}) {
        FillOtherwise();
        series->SeriesDescription = text;
        EXPECT_TRUE(series->SaveSeries(false, con));
        const Ref<cSerie> read = New<cSerie>();
        EXPECT_TRUE(read->loadSeries(CStr(series->ID), con));
        EXPECT_EQ(read->SeriesDescription, text);
    }
}

TEST_F(SeriesTable, AQuoteInTheUidFailsBeforeAnythingIsSent) {
    StoreDistinct();
    FillOtherwise();
    series->instanceUID = "1.2.5' OR '1'='1";
    const Error failure = FailureOf([&] { series->SaveSeries(false, con); });
    EXPECT_EQ(failure.Number, StatementError);
    EXPECT_EQ(failure.Source, "cSerie.SaveSeries, ADODB.Connection");
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(OfRow("Modality", 5), Variant("IO"));
    EXPECT_EQ(series->ID, 95);
}

TEST_F(SeriesTable, AMissingColumnFailsAndWritesNothing) {
    Run("ALTER TABLE Series_T DROP COLUMN location");
    FillOtherwise();
    const Error failure = FailureOf([&] { series->SaveSeries(false, con); });
    EXPECT_EQ(failure.Number, 3265) << "a study passes it over, a series doesn't";
    EXPECT_EQ(failure.Source, "cSerie.SaveSeries, ADODB.Recordset");
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(series->ID, 95);
}

TEST_F(SeriesTable, AKeyOfZeroIsReportedInATextBox) {
    const TextBoxes boxes;
    StoreDistinct();
    Set("Series_ID", "0");
    FillOtherwise();
    series->instanceUID = "1.2.5";
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_THAT(boxes.shown, ElementsAre("FEL"));
    EXPECT_EQ(OfRow("Modality", 0), Variant("PX"));
    series->instanceUID = "1.2.6";
    EXPECT_TRUE(series->SaveSeries(false, con));
    EXPECT_EQ(boxes.shown.size(), 1U) << "only for a key of 0";
}

TEST_F(SeriesTable, ADecimalCommaChangesNothing) {
    const InLocale comma(DecimalComma);
    StoreDistinct();
    EXPECT_TRUE(series->loadSeries("5", con));
    EXPECT_EQ(series->SeriesDateTime, DateFrom({2024, 3, 5, 14, 7, 9}));
    series->SeriesDateTime = DateFrom({2024, 4, 3, 1, 2, 3});
    EXPECT_TRUE(series->SaveSeries(true, con));
    EXPECT_EQ(Ask("SELECT CAST(SeriesDateTime AS TEXT) FROM Series_T"), Variant("2024-04-03 01:02:03"));
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Series_T   WHERE series_id =5;",
                                    "SELECT * FROM Series_T WHERE series_id =5;"));
}

// ---- deleting -------------------------------------------------------------------------------------------

TEST_F(SeriesTable, DeleteRemovesOnlyTheRow) {
    StoreDistinct();
    Run("INSERT INTO Series_T (Series_ID) VALUES (6)");
    Run("INSERT INTO ImageBild_T (ImageBildID, Series_ID) VALUES (1, 5)");
    series->ID = 5;
    series->Delete(con);
    EXPECT_THAT(Sent(), ElementsAre("select * from Series_T where Series_T.Series_ID=5"));
    EXPECT_EQ(Ask("SELECT group_concat(Series_ID) FROM Series_T"), Variant("6"));
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM ImageBild_T"), Variant(Long{1}));
}

TEST_F(SeriesTable, DeleteOfARowThatIsDeletedDoesNothing) {
    StoreDistinct();
    series->ID = 6;
    series->Delete(con);
    EXPECT_EQ(Count(), 1);
}

}  // namespace
}  // namespace OXClass

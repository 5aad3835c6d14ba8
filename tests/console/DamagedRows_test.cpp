#include "ProgramTest.h"
#include "kit/Damage.h"
#include "kit/FaultyProvider.h"
#include "kit/Files.h"

#include <sqlite3.h>

/// Rows that can't be read completely, and rows that other programs change at the same time: the program never
/// overwrites a column with a value that it has not read from it.
namespace {

using namespace ProgramTest;
using ::testing::HasSubstr;
using ::testing::Not;

/// A database with the patient "P-1.2.3" and a series of four bitewings, the images 1 to 4.
class DamagedRows : public Program {
protected:
    void SetUp() override {
        Init();
        WriteSeries("1.2.3",
                    {{{16, 17, 46, 47}, ""}, {{14, 15, 44, 45}, ""}, {{24, 25, 34, 35}, ""}, {{26, 27, 36, 37}, ""}});
        Ok({"import", Films()});
    }

    Result OnDatabase(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--db", Database()});
        return Try(arguments);
    }

    /// Runs a command that fails with one line; returns the line.
    std::string Refused(const std::vector<std::string>& arguments) {
        const Result run = OnDatabase(arguments);
        EXPECT_EQ(run.code, 1) << run.out;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        return run.err;
    }

    /// Runs a list command that continues after damaged rows; returns the list.
    json Partly(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        const Result run = OnDatabase(std::move(arguments));
        EXPECT_EQ(run.code, 3) << run.err;
        EXPECT_EQ(run.err, "");
        return json::parse(run.out);
    }

    /// All rows of a table, each value as SQL writes it.
    std::string Rows(const std::string& table) const {
        std::string text;
        const auto con = Platform::New<ADODB::Connection>();
        con->Open("Provider=SQLite;Data Source=" + Database());
        const auto rows = con->Execute("SELECT * FROM " + table);
        for (; !rows->Eof(); rows->MoveNext()) {
            for (Platform::Long i = 0; i < rows->FieldCount(); ++i) {
                const Platform::Variant value = rows->Fields(i).Value();
                text += (value.Is<Platform::Null>() ? "NULL" : "'" + Platform::CStr(value) + "'") + ",";
            }
            text += "\n";
        }
        return text;
    }

    std::string Everything() const {
        std::string text;
        for (const char* table : {"Patient_T", "Study_T", "Series_T", "ImageBild_T", "ImageCard_T", "ImageAttribute_T",
                                  "ImageManipulation_T"})
            text += Rows(table);
        return text;
    }

    /// Returns the number of pictures in a drawing.
    static std::size_t Drawn(const std::string& file) {
        const std::string svg = TestKit::Content(file);
        std::size_t count = 0;
        for (auto at = svg.find("<image "); at != std::string::npos; at = svg.find("<image ", at + 1)) ++count;
        return count;
    }

    /// Returns a text as it is written in a page.
    static std::string Escaped(const std::string& text) { return Platform::Replace(text, "'", "&#39;"); }

    long Number(const std::string& select) const {
        const auto con = Platform::New<ADODB::Connection>();
        con->Open("Provider=SQLite;Data Source=" + Database());
        return Platform::CLng(con->Execute(select)->Fields(0).Value());
    }
};

constexpr const char* ColumnsThatMustBeThere[] = {"Brightness_INT", "Contrast_INT", "DateCaptured_SD", "ImageType",
                                                  "Invert_BT",      "PatientID",    "RootId"};

TEST_F(DamagedRows, HangingRejectsAnImageThatIsReadInPart) {
    for (const char* column : ColumnsThatMustBeThere) {
        Run("UPDATE ImageBild_T SET FrameNumber_INT = 0");
        Run(std::string("CREATE TABLE Kept AS SELECT ") + column + " AS value FROM ImageBild_T WHERE ImageBildID = 2");
        Run(std::string("UPDATE ImageBild_T SET ") + column + " = NULL WHERE ImageBildID = 2");
        const std::string before = Everything();
        const std::string line = Refused({"hang", "1"});
        EXPECT_THAT(line, HasSubstr("image 2 can't be read whole"));
        EXPECT_THAT(line, HasSubstr(column));
        EXPECT_EQ(Everything(), before) << column;
        Run(std::string("UPDATE ImageBild_T SET ") + column + " = (SELECT value FROM Kept) WHERE ImageBildID = 2");
        Run("DROP TABLE Kept");
    }
    EXPECT_EQ(OkJson({"hang", "1"})["changed"], 4);
}

TEST_F(DamagedRows, AnImageIsCommentedThoughItsRowIsDamaged) {
    Run("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID = 1");
    const std::string before = Everything();
    EXPECT_EQ(OkJson({"comment", "1", "caries distal 15"})[0]["comment"], "caries distal 15");
    EXPECT_EQ(Everything(), before);
    EXPECT_EQ(Number("SELECT count(*) FROM Series_T"), 1);
    EXPECT_EQ(Partly({"images"}).size(), 4U);
}

TEST_F(DamagedRows, CommentingWritesOnlyTheComment) {
    Run("CREATE TRIGGER no_update BEFORE UPDATE ON ImageBild_T BEGIN SELECT "
        "RAISE(ABORT, 'the image was "
        "written'); END");
    Run("UPDATE Patient_T SET LastName_NVC = 'x'");
    const std::string before = Everything();
    Ok({"comment", "3", "it's fine", "--signature", "AB"});
    EXPECT_EQ(Everything(), before);
    EXPECT_EQ(Number("SELECT count(*) FROM Comments_T WHERE tabelID = 1 AND objectID = "
                     "3 AND commentString = 'it''s "
                     "fine' AND signature = 'AB' AND dates > '2020-01-01 00:00:00'"),
              1);
}

TEST_F(DamagedRows, ACommentThatCannotBeReadIsMarkedAndTheOthersAreShown) {
    Run("INSERT INTO Comments_T (dates, signature, tabelID, objectID, "
        "commentString) VALUES ('2020-01-01 "
        "10:00:00', NULL, 1, 1, 'old'), ('soon', 'AB', 1, 1, 'undated')");
    const json added = Partly({"comment", "1", "more"});
    ASSERT_EQ(added.size(), 3U);
    EXPECT_EQ(Number("SELECT count(*) FROM Comments_T"), 3);
    std::map<std::string, json> damaged;
    for (const json& comment : added) damaged[comment["comment"]] = comment["damaged"];
    EXPECT_EQ(damaged["old"], "signature: Invalid use of Null");
    EXPECT_EQ(damaged["undated"], "dates: Type mismatch");
    EXPECT_EQ(damaged["more"], nullptr);
    EXPECT_EQ(Partly({"comment", "1"}), added);
    const std::string page = (folder.Path() / "report.html").string();
    const Result report = OnDatabase({"report", "P-1.2.3", "-o", page});
    EXPECT_EQ(report.code, 3) << report.err;
    const std::string html = TestKit::Content(page);
    for (const char* text : {"old", "undated", "more", "comment 1 can", "comment 2 can"})
        EXPECT_THAT(html, HasSubstr(text));
}

TEST_F(DamagedRows, ImagesAreListedWithTheColumnThatIsDamaged) {
    Run("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID = 1");
    Run("UPDATE ImageBild_T SET Contrast_INT = 'dark' WHERE ImageBildID = 3");
    Run("UPDATE ImageBild_T SET FrameNumber_INT = 'first' WHERE ImageBildID = 4");
    Run("INSERT INTO ImageBild_T (PatientID, ImageType, Brightness_INT, "
        "Contrast_INT, Invert_BT, "
        "DateCaptured_SD, "
        "Series_ID) SELECT PatientID, 0, 0, 0, 0, DateCaptured_SD, 1 FROM "
        "ImageBild_T WHERE ImageBildID = 2");
    const json list = Partly({"images"});
    ASSERT_EQ(list.size(), 5U);
    EXPECT_EQ(list[0]["image"], 2);
    EXPECT_EQ(list[0]["damaged"], nullptr);
    std::map<int, std::string> damaged;
    for (std::size_t i = 1; i < 5; ++i) damaged[list[i]["image"]] = list[i]["damaged"];
    EXPECT_EQ(damaged, (std::map<int, std::string>{{1, "Brightness_INT: Invalid use of Null"},
                                                   {3, "Contrast_INT: Type mismatch"},
                                                   {4, "FrameNumber_INT: Type mismatch"},
                                                   {5, "RootId: Invalid use of Null"}}));
    EXPECT_EQ(Partly({"images", "--series", "1"}), list);
}

TEST_F(DamagedRows, CardsAndSeriesAreListedPastTheOnesThatAreDamaged) {
    for (const char* name : {"A", "B", "C"}) Ok({"card", "new", "P-1.2.3", name});
    Run("UPDATE ImageCard_T SET ICFullViewHeight = -600 WHERE ICName = 'A'");
    Run("UPDATE ImageCard_T SET ICDescription = NULL WHERE ICName = 'C'");
    Run("INSERT INTO Series_T (SeriesInstanceUID, Study_ID, SeriesDateTime) "
        "VALUES ('9.1', 1, 'soon')");
    const json entries = Partly({"cards", "P-1.2.3"})["entries"];
    std::map<std::string, json> damaged;
    for (const json& entry : entries) damaged[entry["key"]] = entry["damaged"];
    EXPECT_EQ(damaged, (std::map<std::string, json>{{"IC1", "ICFullViewHeight: Type mismatch"},
                                                    {"IC2", nullptr},
                                                    {"IC3", "ICDescription: Invalid use of Null"},
                                                    {"SE1", nullptr},
                                                    {"SE2", "SeriesDateTime: Type mismatch"}}));
    EXPECT_EQ(Number("SELECT count(*) FROM Series_T"), 2);
    const json series = Partly({"series"});
    ASSERT_EQ(series.size(), 2U);
    EXPECT_EQ(series[0]["damaged"], nullptr);
    EXPECT_EQ(series[1]["damaged"], "SeriesDateTime: Type mismatch");
    EXPECT_EQ(series[1]["date"], "soon");
}

TEST_F(DamagedRows, ADamagedStudyDamagesItsSeriesOnly) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Run("UPDATE Study_T SET Studydesc = NULL");
    const json entries = Partly({"cards", "P-1.2.3"})["entries"];
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0]["key"], "IC1");
    EXPECT_EQ(entries[1]["key"], "SE1");
    EXPECT_EQ(entries[1]["damaged"], "StudyDesc: Invalid use of Null");
}

TEST_F(DamagedRows, ASeriesWhoseImagesCannotBeReadIsNotRemovedAsAnOrphan) {
    Run("UPDATE ImageBild_T SET GraphicURL_NVC = NULL, Brightness_INT = NULL");
    Run("UPDATE Series_T SET SeriesDateTime = '2001-01-01 10:00:00'");
    const json list = Partly({"cards", "P-1.2.3"});
    EXPECT_EQ(list["orphans_removed"], 0);
    EXPECT_EQ(list["entries"][0]["key"], "SE1");
    EXPECT_EQ(list["entries"][0]["damaged"], "Brightness_INT: Invalid use of Null");
    EXPECT_EQ(Number("SELECT count(*) FROM Series_T"), 1);
    Run("UPDATE ImageBild_T SET Brightness_INT = 0");
    EXPECT_EQ(OkJson({"cards", "P-1.2.3"})["orphans_removed"], 1) << "a series whose images were deleted goes";
}

TEST_F(DamagedRows, AnImportWritesNothingOverADamagedRow) {
    const std::pair<const char*, const char*> damages[] = {
        {"Brightness_INT", "NULL"}, {"Contrast_INT", "NULL"}, {"Contrast_INT", "'x'"}, {"Invert_BT", "NULL"},
        {"ImageType", "NULL"},      {"PatientID", "NULL"},    {"Series_ID", "'x'"}};
    for (const auto& [column, value] : damages) {
        Run(std::string("CREATE TABLE Kept AS SELECT ") + column + " AS value FROM ImageBild_T WHERE ImageBildID = 2");
        Run(std::string("UPDATE ImageBild_T SET Gamma_INT = 7, ") + column + " = " + value + " WHERE ImageBildID = 2");
        const std::string before = Everything();
        const Result run = OnDatabase({"import", Films()});
        EXPECT_EQ(run.code, 3) << column;
        EXPECT_THAT(run.err, HasSubstr("image 2")) << column;
        EXPECT_THAT(run.err, HasSubstr(column));
        EXPECT_THAT(run.out, HasSubstr("0 new images stored, 3 were stored already, 1 not imported"));
        EXPECT_EQ(Everything(), before) << column;
        Run(std::string("UPDATE ImageBild_T SET ") + column + " = (SELECT value FROM Kept) WHERE ImageBildID = 2");
        Run("DROP TABLE Kept");
    }
}

TEST_F(DamagedRows, AnImageThatLostItsFileNameGetsTheNameAndKeepsTheRest) {
    const std::string rest =
        "SELECT count(*) FROM ImageBild_T WHERE ImageBildID "
        "= 2 AND PriStructure = '18,' AND "
        "Responsible_Person_NVC = 'Dr Lind' AND Voltage_INT "
        "= 66 AND FrameNumber_INT = 9 AND GraphicURL_NVC "
        "LIKE '%1.2.3.2.dcm' AND Series_ID = 1";
    for (const char* lost : {"NULL", "''"}) {
        Run(std::string("UPDATE ImageBild_T SET PriStructure = '18,', "
                        "Responsible_Person_NVC = 'Dr Lind', "
                        "Voltage_INT = 66, FrameNumber_INT = 9, GraphicURL_NVC = ") +
            lost + " WHERE ImageBildID = 2");
        const json told = OkJson({"import", Films()});
        EXPECT_EQ(told["stored"], 0);
        EXPECT_EQ(told["restored"], 1);
        EXPECT_EQ(told["known"], 3);
        EXPECT_EQ(Number(rest), 1) << lost;
    }
    EXPECT_EQ(OkJson({"check"})["open"], 0);
}

TEST_F(DamagedRows, AnImageWithoutIdentifierOrSeriesGetsNoSecondRow) {
    const char* const losses[] = {"SOPInstanceUID_NVC = NULL", "SOPInstanceUID_NVC = ''", "Series_ID = NULL",
                                  "Series_ID = 0"};
    for (const char* loss : losses) {
        Run(std::string("UPDATE ImageBild_T SET ") + loss + " WHERE ImageBildID = 2");
        const std::string column = std::string(loss).substr(0, std::string(loss).find(' '));
        const std::string before = Everything();
        const Result run = OnDatabase({"import", Films()});
        EXPECT_EQ(run.code, 3) << loss;
        EXPECT_THAT(run.err, HasSubstr("image 2")) << loss;
        EXPECT_THAT(run.err, HasSubstr(column)) << loss;
        EXPECT_EQ(Everything(), before) << loss;
        const Result check = OnDatabase({"check"});
        EXPECT_EQ(check.code, 3) << loss;
        EXPECT_THAT(check.out, ::testing::ContainsRegex("damaged-row +image 2 +" + column)) << loss;
        Run("UPDATE ImageBild_T SET SOPInstanceUID_NVC = '1.2.3.2', Series_ID = 1 "
            "WHERE ImageBildID = 2");
    }
    Run("UPDATE Series_T SET SeriesInstanceUID = NULL");
    const Result run = OnDatabase({"import", Films()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("series 1"));
    EXPECT_THAT(run.err, HasSubstr("SeriesInstanceUID"));
    EXPECT_THAT(run.err, Not(HasSubstr("another series")));
}

TEST_F(DamagedRows, ASeriesIsKeptIfAnImageOfUnreadableSeriesMayBelongToIt) {
    Run("UPDATE Series_T SET SeriesDateTime = '2001-01-01 10:00:00'");
    Run("DELETE FROM ImageBild_T WHERE ImageBildID > 1");
    for (const char* lost : {"'x'", "1.5", "NULL", "0"}) {
        Run(std::string("UPDATE ImageBild_T SET Series_ID = ") + lost);
        const json list = Partly({"cards", "P-1.2.3"});
        EXPECT_EQ(list["orphans_removed"], 0) << lost;
        ASSERT_EQ(list["entries"].size(), 1U) << lost;
        EXPECT_THAT(list["entries"][0]["damaged"].get<std::string>(), HasSubstr("Series_ID of image 1")) << lost;
        EXPECT_EQ(Number("SELECT count(*) FROM Series_T"), 1) << lost;
    }
    Run("UPDATE ImageBild_T SET Study_ID = 77");
    EXPECT_EQ(OkJson({"cards", "P-1.2.3"})["orphans_removed"], 1) << "an image of another study is not its own";
}

TEST_F(DamagedRows, ACheckNamesEachDamagedRowAndContinues) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Ok({"card", "add", "IC1", "1", "2"});
    Ok({"comment", "1", "text"});
    Run("UPDATE ImageBild_T SET RootId = 'y' WHERE ImageBildID = 4");
    Run("UPDATE ImageBild_T SET Series_ID = 'x' WHERE ImageBildID = 3");
    Run("INSERT INTO Patient_T (PersonNr_CH, PrevXrayDate_CH) VALUES ('P2', "
        "'hello')");
    Run("INSERT INTO Patient_T (PersonNr_CH, RespDoctor) VALUES ('P3', 'x')");
    Run("INSERT INTO Patient_T (PersonNr_CH, Birthdate_CH) VALUES ('P4', 'ca. "
        "1980')");
    Run("UPDATE Series_T SET SeriesInstanceUID = NULL");
    Run("UPDATE Study_T SET StudyDateTime = 'soon'");
    Run("UPDATE ImageCard_T SET ICName = NULL");
    Run("UPDATE ImageAttribute_T SET IASequence = NULL WHERE ImageAttributeID = "
        "2");
    Run("UPDATE Comments_T SET signature = NULL");
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (7, NULL, 0)");
    const Result run = OnDatabase({"check"});
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(run.err, "");
    for (const char* finding :
         {"image 4 +RootId", "image 3 +Series_ID", "patient #2 +PrevXrayDate_CH", "patient #3 +RespDoctor",
          "patient #4 +Birthdate_CH", "series 1 +SeriesInstanceUID", "study 1 +StudyDateTime", "image card 1 +ICName",
          "placed image 2 +IASequence", "comment 1 +signature", "storage root 7 +RootDirectory"})
        EXPECT_THAT(run.out, ::testing::ContainsRegex("damaged-row +" + std::string(finding))) << finding;
    EXPECT_THAT(run.out, HasSubstr("were checked: 11 findings"));
}

TEST_F(DamagedRows, ARecordThatIsReadInPartIsNotComposed) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Ok({"card", "add", "IC1", "1", "2"});
    Ok({"card", "move", "IC1", "1", "--turn", "90"});
    Run("UPDATE ImageBild_T SET RootId = NULL WHERE ImageBildID = 3");
    std::string before = Everything();
    EXPECT_THAT(Refused({"card", "add", "IC1", "3"}), HasSubstr("image 3 can't be read whole"));
    EXPECT_THAT(Refused({"series", "save-as-card", "1"}), HasSubstr("RootId"));
    EXPECT_EQ(Everything(), before);
    Run("UPDATE ImageBild_T SET RootId = 1 WHERE ImageBildID = 3");

    Run("UPDATE ImageManipulation_T SET LongParameter = NULL");
    before = Everything();
    for (const std::vector<std::string>& change : {std::vector<std::string>{"card", "add", "IC1", "3"},
                                                   {"card", "move", "IC1", "2", "--turn", "90"},
                                                   {"card", "remove", "IC1", "2"}}) {
        const std::string line = Refused(change);
        EXPECT_THAT(line, HasSubstr("a manipulation of placed image 1 of card IC1"));
        EXPECT_THAT(line, HasSubstr("LongParameter"));
    }
    EXPECT_EQ(Everything(), before);
    Run("UPDATE ImageManipulation_T SET LongParameter = 90");

    Run("UPDATE ImageAttribute_T SET IASequence = NULL WHERE ImageAttributeID = "
        "2");
    before = Everything();
    EXPECT_THAT(Refused({"card", "move", "IC1", "1", "--turn", "90"}), HasSubstr("IASequence"));
    EXPECT_EQ(Everything(), before);
}

TEST_F(DamagedRows, DrawingsAndReportsGoOnPastThemAndNameThem) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Ok({"card", "add", "IC1", "1", "2", "3"});
    Run("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID < 3");
    const std::string damage = "Brightness_INT: Invalid use of Null";
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--db", Database()});
        Result result = Try(arguments);
        EXPECT_EQ(result.code, 3) << result.out << result.err;
        return result;
    };
    const std::string image1 = "image 1 can't be read: " + damage, image2 = "image 2 can't be read: " + damage;
    EXPECT_THAT(run({"series", "1"}).out, HasSubstr("Damaged: " + image1 + "; " + image2));
    const json series = Partly({"series", "1"});
    EXPECT_EQ(series["damaged"], (json{image1, image2}));
    EXPECT_EQ(series["images"].size(), 2U);
    EXPECT_EQ(Partly({"card", "show", "IC1"})["images"][0]["teeth"], "its row can't be read: " + damage);
    EXPECT_THAT(run({"card", "show", "IC1"}).out, HasSubstr("Damaged: " + image2));

    const std::string drawing = (folder.Path() / "drawing.svg").string();
    for (const char* key : {"SE1", "IC1"}) {
        EXPECT_THAT(run({"draw", key, "-o", drawing}).err, HasSubstr("oxclass: " + image2 + "\n"));
        EXPECT_EQ(Drawn(drawing), key == std::string("SE1") ? 2U : 1U) << key;
    }

    Run("INSERT INTO ImageCard_T (PatientID, ICName, ICDateCreated) VALUES (1, "
        "'B', '2026-01-01 10:00:00')");
    const std::string page = (folder.Path() / "report.html").string();
    EXPECT_THAT(run({"report", "P-1.2.3", "-o", page}).out, HasSubstr("5 rows can't be read; the report names them."));
    const std::string html = TestKit::Content(page);
    for (const std::string& told : {image1, image2}) EXPECT_THAT(html, HasSubstr("Damaged: " + Escaped(told)));
    EXPECT_THAT(html, HasSubstr(Escaped("Damaged: it can't be read: ICDescription: Invalid use of Null")));
    EXPECT_THAT(html, HasSubstr("2 cards and series with 5 images"));
}

TEST_F(DamagedRows, ACardIsShownUpToThePlacedImageThatCannotBeRead) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Ok({"card", "add", "IC1", "1", "2"});
    Ok({"card", "move", "IC1", "1", "--turn", "90"});
    Run("UPDATE ImageManipulation_T SET LongParameter = NULL");
    EXPECT_EQ(Partly({"card", "show", "IC1"})["damaged"],
              json::array({"a manipulation of placed image 1 can't be read: "
                           "LongParameter: Invalid use of Null"}));
    Run("UPDATE ImageAttribute_T SET IAMirrRotStatus = 'x' WHERE "
        "ImageAttributeID = 2");
    const json shown = Partly({"card", "show", "IC1"});
    EXPECT_EQ(shown["images"].size(), 1U);
    EXPECT_THAT(shown["damaged"][0].get<std::string>(),
                HasSubstr("a placed image of IC1, and those behind it, can't be "
                          "read: IAMirrRotStatus"));
}

TEST_F(DamagedRows, ManipulationsThatCannotBeStoredAreReported) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Ok({"card", "add", "IC1", "1"});
    Ok({"card", "move", "IC1", "1", "--turn", "90"});
    Run("UPDATE ImageManipulation_T SET StringParameter = 'it''s'");
    const std::string before = Everything();
    const std::string line = Refused({"card", "move", "IC1", "1", "--mirror"});
    EXPECT_THAT(line, HasSubstr("the manipulations of placed image 1 of card IC1 can't be stored"));
    EXPECT_THAT(line, HasSubstr("single quote"));
    EXPECT_EQ(Everything(), before);
}

// ---- texts that a documented update takes unescaped ---------------------------------------------

TEST_F(DamagedRows, AQuoteInATextOfAnImageFailsNoSeries) {
    const char* const columns[] = {"Responsible_Person_NVC", "Capture_Person_NVC", "CRC",
                                   "AnatomicRegion",         "Laterality",         "AnaRegion",
                                   "AnaRegionMod",           "SOPInstanceUID_NVC"};
    for (const char* column : columns) {
        Run("UPDATE ImageBild_T SET FrameNumber_INT = 0");
        Run(std::string("UPDATE ImageBild_T SET ") + column + " = 'Mary O''Brien' WHERE ImageBildID = 2");
        EXPECT_GE(OkJson({"hang", "1"})["changed"], 3) << column;
        EXPECT_EQ(Number(std::string("SELECT count(*) FROM ImageBild_T WHERE ") + column + " = 'Mary O''Brien'"), 1);
    }
    Write("1.2.3", 5, {{11, 21}, ""});
    fs::remove(Films() + "/1.2.3-102.dcm");  // its identifier was changed above
    EXPECT_EQ(OkJson({"import", Films()})["stored"], 1);
}

TEST_F(DamagedRows, AnInvalidTextOfTeethFailsNoSeries) {
    Run("UPDATE ImageBild_T SET PriStructure = 'it''s 16' WHERE ImageBildID = 2");
    const json hung = OkJson({"hang", "1"});
    EXPECT_EQ(hung["without_teeth"], json::array({2}));
    EXPECT_EQ(hung["layout"], 7);
    EXPECT_EQ(Number("SELECT count(*) FROM ImageBild_T WHERE PriStructure = 'it''s 16'"), 1);
    EXPECT_THAT(Ok({"hang", "1"}), HasSubstr("Image 2 hangs as one without teeth"));
}

TEST_F(DamagedRows, HangingStoresASeriesWithoutIdentifier) {
    Run("UPDATE Series_T SET SeriesInstanceUID = NULL, template_ID = 0, "
        "SeriesDescription = 'O''''Brien'");
    EXPECT_EQ(OkJson({"hang", "1"})["layout"], 7);
    EXPECT_EQ(Number("SELECT template_ID FROM Series_T"), 7);
    EXPECT_EQ(Number("SELECT count(*) FROM Series_T WHERE SeriesDescription = "
                     "'O''''Brien' AND "
                     "SeriesInstanceUID IS NULL"),
              1);
}

// ---- another workstation ------------------------------------------------------------------------

/// Another workstation that tries, before each call of the program, to store a new value; it waits for no
/// lock.
class Workstation {
public:
    Workstation(const std::string& database, std::string update) : update_(std::move(update)) {
        TestKit::InstallFaultyProvider();
        sqlite3_open(database.c_str(), &database_);
        TestKit::BeforeEachCall([this] { Store(); });
    }
    ~Workstation() {
        TestKit::BeforeEachCall(nullptr);
        sqlite3_close(database_);
    }
    Workstation(const Workstation&) = delete;

    int stored = 0;   ///< the last value that was stored
    int refused = 0;  ///< how often the database was locked

private:
    void Store() {
        const std::string statement = Platform::Replace(update_, "?", std::to_string(value_));
        if (sqlite3_exec(database_, statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK)
            stored = value_;
        else
            ++refused;
        ++value_;
    }

    sqlite3* database_ = nullptr;
    std::string update_;
    int value_ = 1;
};

class OtherWorkstation : public DamagedRows {
protected:
    /// Runs a command while the other one stores values, and expects the last of them to be there.
    void Keeps(const std::vector<std::string>& command, const std::string& update, const std::string& select) {
        std::vector<std::string> arguments{"--db", "Provider=Faulty;Data Source=" + Database()};
        arguments.insert(arguments.end(), command.begin(), command.end());
        int stored = 0, refused = 0;
        {
            Workstation other(Database(), update);
            const Result run = Try(arguments);
            EXPECT_EQ(run.code, 0) << run.err;
            stored = other.stored;
            refused = other.refused;
        }
        EXPECT_GT(stored, 0) << "the other one must have come in before the command read";
        EXPECT_GT(refused, 0) << "reading and writing must be one transaction";
        EXPECT_EQ(Number(select), stored) << command[0] << " has undone the other one's change";
    }
};

TEST_F(OtherWorkstation, ItsChangeOfAnImageSurvivesACommentAndAHanging) {
    Run("UPDATE ImageBild_T SET FrameNumber_INT = 0");
    const char* const update = "UPDATE ImageBild_T SET Voltage_INT = ? WHERE ImageBildID = 2";
    const char* const select = "SELECT Voltage_INT FROM ImageBild_T WHERE ImageBildID = 2";
    Keeps({"comment", "2", "text"}, update, select);
    Keeps({"hang", "1"}, update, select);
}

TEST_F(OtherWorkstation, ItsChangeOfASeriesSurvivesAHanging) {
    Run("UPDATE Series_T SET template_ID = 0");
    Keeps({"hang", "1"}, "UPDATE Series_T SET orgServerID = ?", "SELECT orgServerID FROM Series_T");
}

TEST_F(OtherWorkstation, ItsChangeOfACardSurvivesEachChange) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Ok({"card", "add", "IC1", "1"});
    const char* const card = "UPDATE ImageCard_T SET ICName = '?'";
    const char* const name = "SELECT ICName FROM ImageCard_T WHERE ImageCardID = 1";
    Keeps({"card", "add", "IC1", "2"}, card, name);
    Keeps({"card", "move", "IC1", "1", "--turn", "90"}, card, name);
    Keeps({"card", "remove", "IC1", "2"}, card, name);
    const char* const placed = "UPDATE ImageAttribute_T SET IAComments = '?' WHERE ImageAttributeID = 1";
    const char* const comment = "SELECT IAComments FROM ImageAttribute_T WHERE ImageAttributeID = 1";
    Keeps({"card", "move", "IC1", "1", "--turn", "90"}, placed, comment);
    Keeps({"card", "add", "IC1", "3"}, placed, comment);
}

TEST_F(OtherWorkstation, ItsRemovalOfAPatientRemovesAllCards) {
    Keeps({"card", "new", "P-1.2.3", "B"}, "UPDATE Patient_T SET IDImg = '?'", "SELECT IDImg FROM Patient_T");
    Keeps({"series", "save-as-card", "1"}, "UPDATE Series_T SET orgServerID = ?", "SELECT orgServerID FROM Series_T");
}

// ---- failures of the engine ---------------------------------------------------------------------

TEST_F(DamagedRows, ADamagedTableIsReportedAsDamage) {
    TestKit::OverwriteRootPage(Database(), "Series_T");
    EXPECT_THAT(Refused({"hang", "1"}), HasSubstr("the database is damaged; restore it from a backup, or "
                                                  "save what can still be read with"));
    EXPECT_THAT(Refused({"hang", "1"}), HasSubstr("(database disk image is malformed)"));
    EXPECT_THAT(Refused({"cards", "P-1.2.3"}), HasSubstr("database disk image is malformed"));
    EXPECT_EQ(OkJson({"images"}).size(), 4U) << "what is not damaged can be read";
}

/// Fails each call of a command, one after the other. The command must report each failure and must store nothing.
class FullDisk : public DamagedRows {
protected:
    void SetUp() override {
        DamagedRows::SetUp();
        TestKit::InstallFaultyProvider();
    }
    ~FullDisk() override { TestKit::FailAtCall(0); }

    std::string Stored() const { return Everything() + Rows("GlobalList_T") + Rows("Comments_T"); }

    void TellsEach(std::vector<std::string> command, int least) {
        command.insert(command.begin(), {"--db", "Provider=Faulty;Data Source=" + Database()});
        const std::string before = Stored();
        int call = 0;
        for (bool reached = true; reached && !HasFailure();) {
            TestKit::FailAtCall(++call, TestKit::DiskFull());
            const Result run = Try(command);
            reached = TestKit::CallsSoFar() >= call;
            TestKit::FailAtCall(0);
            EXPECT_EQ(run.code, reached ? 1 : 0) << command[2] << ", call " << call << run.err;
            if (!reached) break;
            EXPECT_THAT(run.err, HasSubstr("disk is full")) << command[2] << ", call " << call;
            EXPECT_EQ(Stored(), before) << command[2] << ", call " << call;
        }
        EXPECT_GT(call, least);
        EXPECT_NE(Stored(), before);
    }
};

TEST_F(FullDisk, IsReportedByEachCommandThatStores) {
    Ok({"card", "new", "P-1.2.3", "A"});
    Ok({"card", "add", "IC1", "1"});
    TellsEach({"setting", "set", "DicomRootUID", "1.2.3"}, 6);
    TellsEach({"comment", "1", "text"}, 5);
    TellsEach({"card", "new", "P-1.2.3", "B"}, 5);
    TellsEach({"card", "move", "IC1", "1", "--turn", "90"}, 8);
    TellsEach({"card", "remove", "IC1", "1"}, 8);
    Run("UPDATE ImageBild_T SET FrameNumber_INT = 0");
    TellsEach({"hang", "1", "--json"}, 8);
}

}  // namespace

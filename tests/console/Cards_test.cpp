#include "ProgramTest.h"

#include <fstream>

/// The commands for card lists, composed cards, drawings and reports, with text and JSON output.
namespace {

using namespace ProgramTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string Read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::size_t CountOf(const std::string& what, const std::string& text) {
    std::size_t count = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
}

/// A database with one patient "P-1.2.3" who has a series of four bitewings, and the images 1 to 4.
class Cards : public Program {
protected:
    void SetUp() override {
        Init();
        WriteSeries("1.2.3",
                    {{{16, 17, 46, 47}, ""}, {{14, 15, 44, 45}, ""}, {{24, 25, 34, 35}, ""}, {{26, 27, 36, 37}, ""}});
        Ok({"import", Films()});
    }

    /// A failing run: its one line, and the database as it was before.
    std::string UserError(const std::vector<std::string>& arguments, int code = 1) {
        std::vector<std::string> whole{"--db", Database()};
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        const Result run = Try(whole);
        EXPECT_EQ(run.code, code) << run.out << run.err;
        EXPECT_EQ(CountOf("\n", run.err), 1U) << run.err;
        return run.err;
    }

    json Entries() { return OkJson({"cards", "P-1.2.3"})["entries"]; }

    json Placed(const std::string& card = "IC1") { return OkJson({"card", "show", card})["images"]; }

    std::string File(const char* name) const { return (folder.Path() / name).string(); }
};

TEST_F(Cards, TheListShowsCardsAndSeriesNewestFirst) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    const json list = OkJson({"cards", "p-1.2.3"});
    EXPECT_EQ(list["patient"], "P-1.2.3");
    EXPECT_EQ(list["orphans_removed"], 0);
    ASSERT_EQ(list["entries"].size(), 2U);
    EXPECT_EQ(list["entries"][0]["key"], "IC1");
    EXPECT_EQ(list["entries"][0]["kind"], "card");
    EXPECT_EQ(list["entries"][0]["name"], "Control");
    EXPECT_EQ(list["entries"][0]["images"], 0);
    EXPECT_EQ(list["entries"][1]["key"], "SE1");
    EXPECT_EQ(list["entries"][1]["kind"], "series");
    EXPECT_EQ(list["entries"][1]["images"], 4);
    EXPECT_EQ(list["entries"][1]["approved"], false);
    EXPECT_EQ(list["entries"][1]["place"], "here");
}

TEST_F(Cards, ApprovedMeansEveryImageOfTheEntry) {
    Ok({"series", "save-as-card", "1"});
    Run("UPDATE ImageBild_T SET Approved = -1 WHERE ImageBildID < 4");
    for (const json& entry : Entries()) EXPECT_EQ(entry["approved"], false) << entry;
    Run("UPDATE ImageBild_T SET Approved = -1, DicomStatus_INT = 2");
    for (const json& entry : Entries()) EXPECT_EQ(entry["approved"], true) << entry;
    EXPECT_THAT(Ok({"cards", "P-1.2.3"}), HasSubstr("here and on the server"));
}

TEST_F(Cards, TheListReportsHowManyOrphansItRemoved) {
    Run("INSERT INTO Series_T (SeriesInstanceUID, Study_ID, SeriesDateTime) VALUES ('9.1', 1, '2001-01-01 "
        "10:00:00'), "
        "('9.2', 1, '2001-01-01 11:00:00')");
    EXPECT_THAT(Ok({"cards", "P-1.2.3"}), HasSubstr("2 series without images were removed."));
    EXPECT_EQ(OkJson({"cards", "P-1.2.3"})["orphans_removed"], 0);
    EXPECT_EQ(OkJson({"series"}).size(), 1U);
}

TEST_F(Cards, ASeriesIsStoredAsItHangs) {
    EXPECT_EQ(OkJson({"series", "save-as-card", "1", "--name", "Bitewings"})["card"], "IC1");
    const json card = OkJson({"card", "show", "IC1"});
    EXPECT_EQ(card["name"], "Bitewings");
    EXPECT_EQ(card["width"], 1000);
    EXPECT_EQ(card["height"], 200);
    const json layout = OkJson({"layouts", "7"});
    const json series = OkJson({"series", "1"});
    ASSERT_EQ(card["images"].size(), 4U);
    for (std::size_t i = 0; i < 4; ++i)
        for (const json& slot : layout)
            if (slot["frame"] == series["images"][i]["frame"]) {
                EXPECT_EQ(card["images"][i]["image"], series["images"][i]["image"]);
                EXPECT_EQ(card["images"][i]["x"], slot["x"]);
                EXPECT_EQ(card["images"][i]["y"], slot["y"]);
                EXPECT_EQ(card["images"][i]["width"], slot["width"]);
                EXPECT_EQ(card["images"][i]["height"], slot["height"]);
            }
    EXPECT_THAT(Ok({"series", "save-as-card", "1"}), HasSubstr("Series 1 is stored as card IC2, with 4 images.\n"));
    EXPECT_EQ(CountOf("\n", Ok({"series", "save-as-card", "1"})), 1U);
}

TEST_F(Cards, ImagesAreInAGridUnlessTheyArePlaced) {
    Ok({"card", "new", "P-1.2.3", "Control", "--canvas", "1200x800", "--description", "after a year"});
    Ok({"card", "add", "IC1", "4", "2"});
    Ok({"card", "add", "1", "3", "--at", "0.5,0.25", "--size", "0.4"});
    const json card = OkJson({"card", "show", "ic1"});
    EXPECT_EQ(card["width"], 1200);
    EXPECT_EQ(card["height"], 800);
    EXPECT_EQ(card["description"], "after a year");
    const json& placed = card["images"];
    ASSERT_EQ(placed.size(), 3U);
    EXPECT_EQ(placed[0]["image"], 4);
    EXPECT_EQ(placed[0]["x"], 0.0);
    EXPECT_EQ(placed[1]["image"], 2);
    EXPECT_EQ(placed[1]["x"], 0.2);
    EXPECT_EQ(placed[1]["width"], 0.19);
    EXPECT_EQ(placed[2]["x"], 0.5);
    EXPECT_EQ(placed[2]["y"], 0.25);
    EXPECT_EQ(placed[2]["width"], 0.4);
    EXPECT_EQ(placed[2]["height"], 0.4);
    EXPECT_EQ(placed[2]["place"], 3);
}

TEST_F(Cards, APlacedImageIsMovedSizedTurnedMirroredAndAnnotated) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1", "2"});
    Ok({"card", "move", "IC1", "2", "--at=-0.1,0.3", "--size", "0.3,0.2", "--comment", "it's distal"});
    Ok({"card", "move", "IC1", "2", "--turn", "90", "--record", "ManContrast=-10", "--record", "manbitmap=1,a b,c"});
    Ok({"card", "move", "IC1", "2", "--mirror"});
    const json placed = Placed();
    EXPECT_EQ(placed[0]["turned"], 0);
    EXPECT_EQ(placed[0]["manipulations"], "");
    EXPECT_EQ(placed[1]["x"], -0.1);
    EXPECT_EQ(placed[1]["y"], 0.3);
    EXPECT_EQ(placed[1]["width"], 0.3);
    EXPECT_EQ(placed[1]["height"], 0.2);
    EXPECT_EQ(placed[1]["comment"], "it's distal");
    EXPECT_EQ(placed[1]["turned"], 270);
    EXPECT_EQ(placed[1]["mirrored"], true);
    EXPECT_EQ(placed[1]["manipulations"], "ManRotate=90 ManContrast=-10 ManBitmap=1,a b,c ManMirror=1");
}

TEST_F(Cards, RemovingTakesPlacedImagesOffTheCardAndNumbersTheRest) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1", "2", "3"});
    Ok({"card", "move", "IC1", "1", "--turn", "180"});
    Ok({"card", "remove", "IC1", "1"});
    const json placed = Placed();
    ASSERT_EQ(placed.size(), 2U);
    EXPECT_EQ(placed[0]["image"], 2);
    EXPECT_EQ(placed[0]["place"], 1);
    EXPECT_EQ(OkJson({"images"}).size(), 4U);
    Ok({"card", "remove", "IC1", "2", "3"});
    EXPECT_THAT(Ok({"card", "show", "IC1"}), HasSubstr("No images yet"));
}

TEST_F(Cards, AWrongRequestIsReportedInOneLineAndChangesNothing) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1"});
    Run("INSERT INTO ImageBild_T (PatientID, ImageType, Approved, Brightness_INT, Contrast_INT, Invert_BT, "
        "DateCaptured_SD, RootId) VALUES (99, 0, 0, 0, 0, 0, '2020-01-01 10:00:00', 1)");
    const json before = OkJson({"card", "show", "IC1"});
    EXPECT_THAT(UserError({"cards", "nobody"}), HasSubstr("there is no patient nobody"));
    EXPECT_THAT(UserError({"card", "show", "IC7"}), HasSubstr("there is no image card IC7"));
    EXPECT_THAT(UserError({"card", "show", "0"}), HasSubstr("there is no image card IC0"));
    EXPECT_THAT(UserError({"card", "add", "IC1", "77"}), HasSubstr("there is no image 77"));
    EXPECT_THAT(UserError({"card", "add", "IC1", "2", "5"}), HasSubstr("image 5 belongs to another patient"));
    EXPECT_THAT(UserError({"card", "add", "IC1", "2", "3", "--at", "0,0"}), HasSubstr("--at places one image"));
    EXPECT_THAT(UserError({"card", "add", "IC1", "2", "--at", "left"}), HasSubstr("\"left\" is not a place"));
    EXPECT_THAT(UserError({"card", "add", "IC1", "2", "--at", "1,2,3"}), HasSubstr("is not a place"));
    EXPECT_THAT(UserError({"card", "add", "IC1", "2", "--size", "0"}), HasSubstr("a size is above 0"));
    EXPECT_THAT(UserError({"card", "add", "IC1", "2", "--size", "nan"}), HasSubstr("is not a size"));
    EXPECT_THAT(UserError({"card", "move", "IC1", "1", "--turn", "45"}), HasSubstr("90, 180 or 270"));
    EXPECT_THAT(UserError({"card", "move", "IC1", "9", "--mirror"}), HasSubstr("card IC1 has no placed image 9"));
    EXPECT_THAT(UserError({"card", "move", "IC1", "1", "--record", "Paint=1"}), HasSubstr("Manbrightness, "));
    EXPECT_THAT(UserError({"card", "move", "IC1", "1", "--record", "UndoStop"}), HasSubstr("no manipulation"));
    EXPECT_THAT(UserError({"card", "move", "IC1", "1", "--record", "ManBitmap=1,it's"}), HasSubstr("single quote"));
    EXPECT_THAT(UserError({"card", "remove", "IC1", "1", "9"}), HasSubstr("has no placed image 9"));
    EXPECT_THAT(UserError({"card", "new", "P-1.2.3", "x", "--canvas", "0x5"}), HasSubstr("above 0"));
    EXPECT_THAT(UserError({"card", "new", "P-1.2.3", "x", "--canvas", "wide"}), HasSubstr("1000x700"));
    EXPECT_THAT(UserError({"card", "new", "P-1.2.3", "x", "--canvas", "1x200000"}), HasSubstr("at most 100000"));
    EXPECT_THAT(UserError({"card", "new", "P-1.2.3", std::string(256, 'x')}), HasSubstr("255 characters"));
    EXPECT_THAT(UserError({"series", "save-as-card", "9"}), HasSubstr("there is no series 9"));
    EXPECT_EQ(OkJson({"card", "show", "IC1"}), before);
    EXPECT_EQ(Entries().size(), 2U);
}

TEST_F(Cards, ManipulationsThatCannotBeStoredLeaveTheCardAsItWas) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1"});
    const json before = OkJson({"card", "show", "IC1"});
    Run("CREATE TRIGGER full BEFORE INSERT ON ImageManipulation_T BEGIN SELECT RAISE(ABORT, 'full'); END");
    EXPECT_THAT(UserError({"card", "move", "IC1", "1", "--turn", "90"}), HasSubstr("nothing was changed"));
    EXPECT_EQ(OkJson({"card", "show", "IC1"}), before);
}

TEST_F(Cards, ManipulationsThatCannotBeReadKeepTheCardFromBeingStored) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1"});
    Ok({"card", "move", "IC1", "1", "--turn", "90", "--record", "ManInvert"});
    Run("UPDATE ImageManipulation_T SET StringParameter = NULL WHERE SequenceNo = 1");
    EXPECT_THAT(UserError({"card", "move", "IC1", "1", "--at", "0.1,0.1"}), HasSubstr("can't be read whole"));
    Run("UPDATE ImageManipulation_T SET StringParameter = ''");
    EXPECT_EQ(Placed()[0]["manipulations"], "ManRotate=90 ManInvert=0");
    EXPECT_EQ(Placed()[0]["x"], 0.0);
}

TEST_F(Cards, ARowWithoutAnImageKeepsItsManipulations) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1", "2"});
    Ok({"card", "move", "IC1", "1", "--turn", "90"});
    Run("UPDATE ImageAttribute_T SET ImageBildId = 0 WHERE ImageAttributeID = 1");
    Ok({"card", "move", "IC1", "2", "--turn", "180"});
    EXPECT_EQ(Placed()[0]["manipulations"], "ManRotate=90");
}

TEST_F(Cards, ACosmeticManipulationIsNotTheProgramsToRecord) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1"});
    EXPECT_THAT(UserError({"card", "move", "IC1", "1", "--record", "ManCosmetic=0,001x"}), HasSubstr("cosmetic"));
}

TEST_F(Cards, AnImageIsPutIntoTheFirstFreeCell) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1", "2", "3"});
    Ok({"card", "remove", "IC1", "1"});
    EXPECT_EQ(OkJson({"card", "add", "IC1", "4"})["placed"], json({4}));
    const json placed = Placed();
    EXPECT_EQ(placed[2]["image"], 4);
    EXPECT_EQ(placed[2]["x"], 0.0);
    EXPECT_EQ(placed[2]["y"], 0.0);
}

TEST_F(Cards, TheExitCodeReportsTheResultToScripts) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    EXPECT_EQ(OkJson({"card", "add", "IC1", "1", "2"}), (json{{"card", "IC1"}, {"placed", {1, 2}}}));
    EXPECT_EQ(OkJson({"card", "move", "IC1", "2", "--mirror"}), (json{{"card", "IC1"}, {"placed", {2}}}));
    EXPECT_EQ(OkJson({"card", "remove", "IC1", "2", "2"}), (json{{"card", "IC1"}, {"removed", {2}}}));
}

TEST_F(Cards, ACommentCanBeTakenAway) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1"});
    Ok({"card", "move", "IC1", "1", "--comment", "distal"});
    Ok({"card", "move", "IC1", "1", "--comment", ""});
    EXPECT_EQ(Placed()[0]["comment"], "");
    EXPECT_THAT(UserError({"card", "move", "IC1", "1"}), HasSubstr("nothing to change"));
}

TEST_F(Cards, ACardThatCannotBeReadIsNotDrawnAsEmpty) {
    Ok({"series", "save-as-card", "1"});
    Run("UPDATE ImageAttribute_T SET IASequence = NULL WHERE ImageAttributeID = 2");
    EXPECT_THAT(UserError({"draw", "IC1", "-o", File("x.png")}),
                HasSubstr("a placed image of card IC1 can't be read whole"));
    EXPECT_FALSE(fs::exists(File("x.png")));
}

TEST_F(Cards, AQuoteInAPatientsIdIsFound) {
    Run("UPDATE Patient_T SET PersonNr_CH = 'O''BRIEN'");
    EXPECT_EQ(OkJson({"cards", "#1"})["entries"].size(), 1U);
    EXPECT_EQ(OkJson({"cards", "o'brien"})["entries"].size(), 1U);
}

TEST_F(Cards, NamesDoNotReachTheTerminalAsCommands) {
    Ok({"card", "new", "P-1.2.3", "a\x1b[31m\n2"});
    EXPECT_THAT(Ok({"cards", "P-1.2.3"}), HasSubstr("a [31m 2"));
    EXPECT_THAT(Ok({"card", "show", "IC1"}), HasSubstr("IC1: a [31m 2,"));
    EXPECT_EQ(OkJson({"card", "show", "IC1"})["name"], "a\x1b[31m\n2");
}

TEST_F(Cards, OnlyFilesOfTheirKindAreReplaced) {
    EXPECT_THAT(UserError({"report", "P-1.2.3", "-o", Database()}), HasSubstr("end it with .html"));
    EXPECT_THAT(UserError({"report", "P-1.2.3", "-o", "/dev/null"}), HasSubstr("end it with .html"));
    fs::create_directory(File("folder.html"));
    EXPECT_THAT(UserError({"report", "P-1.2.3", "-o", File("folder.html")}), HasSubstr("it isn't a file"));
    EXPECT_EQ(Entries().size(), 1U);
}

TEST_F(Cards, ADrawingIsSvgOrPngByItsName) {
    Ok({"draw", "SE1", "-o", File("mouth.svg")});
    const std::string svg = Read(File("mouth.svg"));
    EXPECT_THAT(svg, HasSubstr("viewBox=\"0 0 1000 200\""));
    EXPECT_EQ(CountOf("href=\"data:image/png;base64,", svg), 4U);
    EXPECT_EQ(CountOf("<text", svg), 0U);
    Ok({"draw", "se1", "-o", File("mouth.PNG"), "--width", "500", "--numbers"});
    EXPECT_EQ(Read(File("mouth.PNG")).substr(1, 3), "PNG");
    const json told = OkJson({"draw", "SE1", "-o", File("again.svg"), "--numbers"});
    EXPECT_EQ(told["images"], 4);
    EXPECT_EQ(told["missing"], 0);
    EXPECT_EQ(CountOf("<text", Read(File("again.svg"))), 4U);
}

TEST_F(Cards, ACardIsDrawnWithItsTurnedImages) {
    Ok({"card", "new", "P-1.2.3", "Control"});
    Ok({"card", "add", "IC1", "1", "2"});
    Ok({"card", "move", "IC1", "1", "--turn", "90", "--mirror"});
    Ok({"draw", "IC1", "-o", File("card.svg")});
    const std::string svg = Read(File("card.svg"));
    EXPECT_THAT(svg, HasSubstr("viewBox=\"0 0 1000 700\""));
    EXPECT_EQ(CountOf("rotate(90) scale(-1 1)", svg), 1U);
    EXPECT_EQ(CountOf("<image", svg), 2U);
}

TEST_F(Cards, EmptySlotsAreShownOnDemand) {
    Run("UPDATE ImageBild_T SET FrameNumber_INT = 0 WHERE ImageBildID = 1");
    Ok({"draw", "SE1", "-o", File("mouth.svg"), "--empty"});
    EXPECT_EQ(CountOf("stroke-dasharray", Read(File("mouth.svg"))), 1U);
    EXPECT_EQ(CountOf("<image", Read(File("mouth.svg"))), 4U);
}

TEST_F(Cards, AMissingPictureIsReportedAndTheOthersAreDrawn) {
    const std::string file = OkJson({"images"})[0]["file"];
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path()))
        if (entry.path().filename() == file.substr(file.find('\\') + 1)) fs::remove(entry.path());
    EXPECT_THAT(UserError({"draw", "SE1", "-o", File("mouth.svg")}, 3), HasSubstr("the file is missing"));
    EXPECT_EQ(CountOf("<image", Read(File("mouth.svg"))), 3U);
    EXPECT_THAT(Read(File("mouth.svg")), HasSubstr("the file is missing"));
    EXPECT_EQ(Try({"--db", Database(), "report", "P-1.2.3", "-o", File("r.html")}).code, 3);
    EXPECT_THAT(Read(File("r.html")), HasSubstr("the file is missing"));
}

TEST_F(Cards, AStoredNameOutOfTheRootIsNeverOpened) {
    std::ofstream(folder.Path() / "secret.png") << "\x89PNG\r\n\x1A\nsecret";
    Run("UPDATE ImageBild_T SET GraphicURL_NVC = '..\\secret.png' WHERE ImageBildID = 1");
    EXPECT_THAT(UserError({"draw", "SE1", "-o", File("mouth.svg")}, 3), HasSubstr("its stored name means no file"));
}

TEST_F(Cards, ADrawingThatCannotBeCreatedLeavesTheEarlierFile) {
    std::ofstream(File("old.svg")) << "old";
    EXPECT_THAT(UserError({"draw", "SE9", "-o", File("old.svg")}), HasSubstr("there is no series SE9"));
    EXPECT_THAT(UserError({"draw", "7", "-o", File("old.svg")}), HasSubstr("IC5"));
    EXPECT_THAT(UserError({"draw", "SE1", "-o", File("old.pdf")}), HasSubstr(".svg or .png"));
    EXPECT_EQ(Read(File("old.svg")), "old");
    EXPECT_THAT(UserError({"draw", "SE1", "-o", File("nowhere/x.svg")}), HasSubstr("can't write"));
    fs::create_directory(File("folder.svg"));
    EXPECT_THAT(UserError({"draw", "SE1", "-o", File("folder.svg")}), HasSubstr("can't write"));
    for (const auto& entry : fs::directory_iterator(folder.Path()))
        EXPECT_THAT(entry.path().string(), Not(HasSubstr(".part")));
}

TEST_F(Cards, AReportHoldsEveryEntryAndEscapesEveryText) {
    Ok({"patient", "P-1.2.3", "LastName=<script>alert(1)</script>"});
    Ok({"series", "save-as-card", "1", "--name", "A & \"B\""});
    const json told = OkJson({"report", "P-1.2.3", "-o", File("r.html")});
    EXPECT_EQ(told["entries"], 2);
    EXPECT_EQ(told["images"], 8);
    const std::string html = Read(File("r.html"));
    EXPECT_EQ(CountOf("<article", html), 2U);
    EXPECT_EQ(CountOf("<image ", html), 8U);
    EXPECT_EQ(CountOf("<script>", html), 1U);
    EXPECT_THAT(html, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_THAT(html, HasSubstr("A &amp; &quot;B&quot;"));
    EXPECT_THAT(html, Not(HasSubstr("{{")));
}

TEST_F(Cards, APatientWithoutEntriesHasAReport) {
    Run("INSERT INTO Patient_T (PersonNr_CH) VALUES ('NEW')");
    EXPECT_EQ(Ok({"cards", "new"}), "The patient has no cards and no series.\n");
    EXPECT_EQ(OkJson({"report", "new", "-o", File("r.html")})["entries"], 0);
    EXPECT_EQ(CountOf("<article", Read(File("r.html"))), 0U);
}

}  // namespace

#include "ProgramTest.h"
#include "kit/Random.h"

#include <algorithm>
#include <fstream>

namespace {

using namespace ProgramTest;

TEST_F(Program, InitMakesADatabaseWithLayoutsAndAnActiveRoot) {
    const Result run = Try({"init", Database(), "--root", (folder.Path() / "store").string()});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(OkJson({"layouts"}).size(), 11U);
    const json roots = OkJson({"roots"});
    ASSERT_EQ(roots.size(), 1U);
    EXPECT_EQ(roots[0]["directory"], (folder.Path() / "store").string());
    EXPECT_EQ(roots[0]["active"], 1);
    EXPECT_TRUE(fs::is_directory(folder.Path() / "store"));
}

TEST_F(Program, InitDoesNotChangeAnExistingFile) {
    std::ofstream(Database()) << "precious";
    const Result run = Try({"init", Database()});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("exists already and is not changed"), std::string::npos) << run.err;
    EXPECT_EQ(fs::file_size(Database()), 8U);
    EXPECT_EQ(Try({"init", Database(), "--replace"}).code, 0);
    EXPECT_EQ(fs::file_size(Database() + ".old"), 8U) << "the old file is renamed, not lost";
    EXPECT_EQ(Try({"init", Database(), "--replace"}).code, 1) << "and not overwritten by the next";
    EXPECT_EQ(fs::file_size(Database() + ".old"), 8U);
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
}

TEST_F(Program, AFailedInitLeavesNoFile) {
    const Result run = Try({"init", (folder.Path() / "no" / "clinic.db").string()});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("there is no folder"), std::string::npos);
    EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST_F(Program, WrongInputIsReportedInOneLineThatSaysWhatToDo) {
    const std::pair<std::vector<std::string>, const char*> wrong[] = {
        {{"patients"}, "use --db FILE or set OXCLASS_DB"},
        {{"--db", Database(), "patients"}, "make one with: oxclass init"},
        {{"--db", "Provider=Nope;Data Source=x", "patients"}, "Provider cannot be found"},
    };
    for (const auto& [arguments, advice] : wrong) {
        const Result run = Try(arguments);
        EXPECT_EQ(run.code, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(advice), std::string::npos) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    }
    EXPECT_EQ(Try({"nonsense"}).code, 2);
    EXPECT_EQ(Try({}).code, 2);
    EXPECT_EQ(Try({"--help"}).code, 0);
}

TEST_F(Program, EachCommandHelpsWithAnExample) {
    for (const char* command :
         {"init",  "import",  "patients", "patient",  "studies", "series",     "images", "comment",
          "hang",  "layouts", "anatomy",  "roots",    "setting", "uid",        "copy",   "move",
          "merge", "correct", "delete",   "undelete", "trash",   "completion", "man"}) {
        const Result run = Try({command, "--help"});
        EXPECT_EQ(run.code, 0);
        EXPECT_NE(run.out.find("Example: oxclass"), std::string::npos) << command;
    }
}

TEST_F(Program, AForeignOrNewerDatabaseIsRejected) {
    std::ofstream(folder.Path() / "letter.txt") << std::string(3000, 'x');
    Result run = Try({"--db", (folder.Path() / "letter.txt").string(), "patients"});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("can't be opened: file is not a database"), std::string::npos) << run.err;
    Init();
    const auto con = Platform::New<ADODB::Connection>();
    con->Open("Provider=SQLite;Data Source=" + Database());
    con->Execute("PRAGMA user_version = 99");
    run = Try({"--db", Database(), "patients"});
    EXPECT_NE(run.err.find("made by a newer program"), std::string::npos) << run.err;
    con->Execute("PRAGMA application_id = 5");
    run = Try({"--db", Database(), "patients"});
    EXPECT_NE(run.err.find("is not a clinic database"), std::string::npos) << run.err;
}

TEST_F(Program, UnknownRecordsAreNamed) {
    Init();
    for (const std::vector<std::string>& command : {std::vector<std::string>{"patient", "x"},
                                                    {"patient", "#7"},
                                                    {"series", "7"},
                                                    {"series", "x"},
                                                    {"hang", "7"},
                                                    {"comment", "7"},
                                                    {"layouts", "99"},
                                                    {"anatomy", "999"},
                                                    {"setting", "get", "Nope"},
                                                    {"import", "/nowhere"}}) {
        std::vector<std::string> arguments{"--db", Database()};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const Result run = Try(arguments);
        EXPECT_EQ(run.code, 1) << command[0];
        EXPECT_TRUE(run.err.find("there is no") != std::string::npos ||
                    run.err.find("is not the number") != std::string::npos)
            << run.err;
    }
}

TEST_F(Program, AFullMouthHangsByItsTeethInAnyOrderOfCapture) {
    Init();
    TestKit::Random random;
    for (int round = 1; round <= 6; ++round) {
        std::vector<Film> films = FullMouth18;
        std::shuffle(films.begin(), films.end(), random);
        WriteSeries("2.25.7" + std::to_string(round), films);
        Ok({"import", Films()});
        const auto hung = Hung(round);
        ASSERT_EQ(hung.size(), 18U) << "round " << round;
        for (int frame = 1; frame <= 18; ++frame)
            EXPECT_EQ(hung.at(frame), Console::ToothString(FullMouth18[static_cast<std::size_t>(frame - 1)].teeth));
        EXPECT_EQ(OkJson({"series"})[static_cast<std::size_t>(round - 1)]["layout"], 6);
    }
}

TEST_F(Program, TwentyFilmsHangInLayoutFiveAndBitewingsInSevenAndEight) {
    Init();
    std::vector<Film> twenty = FullMouth18;
    twenty.push_back({{11, 12}, ""});
    twenty.push_back({{21, 22}, ""});
    std::shuffle(twenty.begin(), twenty.end(), TestKit::Random());
    WriteSeries("2.25.81", twenty);
    WriteSeries("2.25.82", {FullMouth18[9], FullMouth18[7], FullMouth18[10], FullMouth18[8]});
    WriteSeries("2.25.83", {FullMouth18[10], FullMouth18[7]});
    Ok({"import", Films()});
    const json series = OkJson({"series"});
    EXPECT_EQ(series[0]["layout"], 5);
    EXPECT_EQ(Hung(1).size(), 20U);
    EXPECT_EQ(Hung(1).count(0), 0U);
    EXPECT_EQ(series[1]["layout"], 7);
    EXPECT_EQ(Hung(2),
              (std::map<int, std::string>{
                  {1, "16,17,18,46,47,48,"}, {2, "14,15,44,45,"}, {3, "24,25,34,35,"}, {4, "26,27,28,36,37,38,"}}));
    EXPECT_EQ(series[2]["layout"], 8);
    EXPECT_EQ(Hung(3).at(1), "16,17,18,46,47,48,");
}

TEST_F(Program, PanoramicAndCephalogramsHaveTheirLayouts) {
    Init();
    const auto modality = [](const char* code, const char* description, const char* side) {
        return [=](DcmDataset& set) {
            set.putAndInsertString(DCM_Modality, code);
            set.putAndInsertString(DCM_SeriesDescription, description);
            set.putAndInsertString(DCM_ImageLaterality, side);
        };
    };
    Write("2.25.91", 1, {}, modality("PX", "Panoramic", "B"));
    Write("2.25.92", 1, {}, modality("DX", "Ceph lateral", "L"));
    Write("2.25.93", 1, {}, modality("DX", "Ceph frontal", "B"));
    Ok({"import", Films()});
    const json series = OkJson({"series"});
    EXPECT_EQ(series[0]["layout"], 1);
    EXPECT_EQ(series[1]["layout"], 2);
    EXPECT_EQ(series[2]["layout"], 14);
}

TEST_F(Program, ImportingAgainStoresNothingTwice) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
    const json first = OkJson({"import", Films()});
    EXPECT_EQ(first["stored"], 2);
    const json images = OkJson({"images"});
    const std::string again = Ok({"import", Films()});
    EXPECT_NE(again.find("2 were stored already"), std::string::npos) << again;
    EXPECT_NE(again.find("Nothing was stored twice."), std::string::npos);
    EXPECT_EQ(OkJson({"images"}), images);
    EXPECT_EQ(OkJson({"patients"}).size(), 1U);
    EXPECT_EQ(OkJson({"studies"}).size(), 1U);
}

TEST_F(Program, AnotherFilmOfAStoredSeriesIsAddedAndTheSeriesIsHungAgain) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    EXPECT_EQ(OkJson({"series"})[0]["layout"], 8);
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10], FullMouth18[8]});
    EXPECT_EQ(OkJson({"import", Films()})["stored"], 2);
    const json series = OkJson({"series"});
    ASSERT_EQ(series.size(), 1U);
    EXPECT_EQ(series[0]["layout"], 7);
    EXPECT_EQ(series[0]["images"], 3);
}

TEST_F(Program, FilesLieWholeUnderTheRootInThePatientsFolder) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    const json images = OkJson({"images"});
    EXPECT_EQ(images[0]["file"], "0_\\2.25.5.1.dcm");
    const fs::path stored = folder.Path() / "images" / "0_" / "2.25.5.1.dcm";
    ASSERT_TRUE(fs::exists(stored));
    EXPECT_EQ(fs::file_size(stored), fs::file_size(Films() + "/2.25.5-101.dcm"));
    EXPECT_EQ(std::distance(fs::directory_iterator(stored.parent_path()), {}), 1) << "no half-written copy stays";
}

TEST_F(Program, AnotherFileUnderTheNameIsNeverOverwritten) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    const fs::path taken = folder.Path() / "images" / "0_" / "2.25.5.1.dcm";
    fs::create_directories(taken.parent_path());
    std::ofstream(taken) << "another";
    const Result run = Try({"--db", Database(), "import", Films()});
    EXPECT_EQ(run.code, 3);
    EXPECT_NE(run.err.find("another file is stored as"), std::string::npos) << run.err;
    EXPECT_EQ(fs::file_size(taken), 7U);
    EXPECT_EQ(OkJson({"images"}).size(), 0U) << "the series is stored whole or not at all";
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
}

TEST_F(Program, AFileThatCannotBeReadIsReportedAndTheOthersGoOn) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    std::ofstream(Films() + "/letter.dcm") << "Dear colleague";
    Write("2.25.6", 1, {}, [](DcmDataset& set) { set.findAndDeleteElement(DCM_PatientID); });
    const Result run = Try({"--db", Database(), "import", Films()});
    EXPECT_EQ(run.code, 3);
    EXPECT_NE(run.err.find("letter.dcm: not imported: not a DICOM file"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("it has no Patient ID"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("3 files: 1 new images stored"), std::string::npos) << run.out;
}

TEST_F(Program, AStudyOfAnotherPatientIsRejected) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    Write("2.25.6", 1, FullMouth18[7],
          [](DcmDataset& set) { set.putAndInsertString(DCM_StudyInstanceUID, "2.25.5.900"); });
    const Result run = Try({"--db", Database(), "import", Films()});
    EXPECT_EQ(run.code, 3);
    EXPECT_NE(run.err.find("belongs to another patient"), std::string::npos) << run.err;
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
    EXPECT_FALSE(fs::exists(folder.Path() / "images" / "0_" / "2.25.6.1.dcm"));
}

TEST_F(Program, ARootThatCannotBeWrittenStoresNothing) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    std::ofstream(folder.Path() / "plain") << "a file, no folder";
    const auto con = Platform::New<ADODB::Connection>();
    con->Open("Provider=SQLite;Data Source=" + Database());
    con->Execute("UPDATE Root_T SET RootDirectory='" + (folder.Path() / "plain").string() + "'");
    const Result run = Try({"--db", Database(), "import", Films()});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("is missing, so nothing is stored"), std::string::npos) << run.err;
    EXPECT_EQ(OkJson({"images"}).size(), 0U);
}

TEST_F(Program, PatientsAreShownFoundAndSet) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    Ok({"doctor", "new", "DrLastName=Ek"});
    const json set =
        OkJson({"patient", "P-2.25.5", "LastName=Ångström", "birthdate=1980-01-31", "RespDoctor=1", "OtherIDs=a\\b"});
    EXPECT_EQ(set["LastName"], "Ångström");
    const json shown = OkJson({"patient", "#1"});
    EXPECT_EQ(shown["LastName"], "Ångström");
    EXPECT_EQ(shown["FirstName"], "Anna");
    EXPECT_EQ(shown["BirthDate"], "1980-01-31");
    EXPECT_EQ(shown["RespDoctor"], 1);
    EXPECT_EQ(shown["OtherIDs"], "A\\B");
    EXPECT_EQ(OkJson({"patients", "anna"}).size(), 1U);
    EXPECT_EQ(OkJson({"patients", "o'brien"}).size(), 0U);
    for (const char* bad : {"Nothing=1", "LastName", "BirthDate=soon", "RespDoctor=x"}) {
        const Result run = Try({"--db", Database(), "patient", "P-2.25.5", bad});
        EXPECT_EQ(run.code, 1) << bad;
    }
    EXPECT_EQ(OkJson({"patient", "#1"}), shown) << "a refused field changes nothing";
}

TEST_F(Program, CommentsAreAddedAndListedNewestFirst) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    Ok({"comment", "1", "first", "--signature", "AB"});
    const json comments = OkJson({"comment", "1", "it's second", "--signature", "ÅÄ"});
    ASSERT_EQ(comments.size(), 2U);
    EXPECT_EQ(comments[0]["comment"], "it's second");
    EXPECT_EQ(comments[0]["signature"], "ÅÄ");
    EXPECT_EQ(OkJson({"comment", "1"}).size(), 2U);
    EXPECT_EQ(Try({"--db", Database(), "comment", "1", std::string(151, 'x')}).code, 1) << "too long is said, not cut";
}

TEST_F(Program, HangingAgainChangesNothing) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
    Ok({"import", Films()});
    const json hung = OkJson({"hang", "1"});
    EXPECT_EQ(hung["layout"], 8);
    EXPECT_EQ(hung["placed"], 2);
    EXPECT_EQ(hung["changed"], 0);
}

TEST_F(Program, ASeriesIsDrawnAsItHangs) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
    Ok({"import", Films()});
    const std::string chart = Ok({"series", "1"});
    const auto right = chart.find("46,47,48"), left = chart.find("36,37,38");
    ASSERT_NE(right, std::string::npos) << chart;
    ASSERT_NE(left, std::string::npos) << chart;
    EXPECT_LT(right, left) << "the patient's right is on the viewer's left";
    EXPECT_NE(Ok({"layouts", "6"}).find("18"), std::string::npos);
}

TEST_F(Program, SettingsAreStoredByName) {
    Init();
    EXPECT_EQ(Ok({"setting", "get", "DicomRootUID"}), "1.2.840.990731.3.6\n");
    Ok({"setting", "set", "gglID_DicomRootUID", "1.2.826.0.1"});
    Ok({"setting", "set", "dicomrootuid", "1.2.4", "--add"});
    EXPECT_EQ(Ok({"setting", "get", "4"}), "1.2.826.0.1\n");
    EXPECT_EQ(OkJson({"setting", "list", "DicomRootUID"}).size(), 2U);
    Ok({"setting", "set", "DicomRootUID", "1.2.3"});
    EXPECT_EQ(OkJson({"setting", "list", "DicomRootUID"}).size(), 1U);
    EXPECT_EQ(OkJson({"setting", "list"}).size(), 22U);
}

TEST_F(Program, ARootThatNoIdentifierCouldHaveIsRejected) {
    Init();
    for (const std::string& bad :
         {std::string("abc x"), std::string(64, '1'), std::string(), std::string(".."), std::string("1."),
          std::string(".1"), std::string("1..2"), std::string("1.02"), std::string("3.1"), std::string("1")})
        EXPECT_EQ(Try({"--db", Database(), "setting", "set", "DicomRootUID", bad}).code, 1) << bad;
    EXPECT_EQ(OkJson({"setting", "list", "DicomRootUID"}).size(), 0U);
}

TEST_F(Program, AnUnknownCommandIsNamed) {
    const Result run = Try({"bogus"});
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.err.find("there is no command \"bogus\""), std::string::npos) << run.err;
}

TEST_F(Program, ReplacingWritesTheOldLogIntoTheRenamedFile) {
    Init();
    {
        const auto con = Platform::New<ADODB::Connection>();
        con->Open("Provider=SQLite;Data Source=" + Database());
        con->Execute("INSERT INTO Patient_T (PersonNr_CH) VALUES ('KEPT')");
        const Result inUse = Try({"init", Database(), "--replace"});
        EXPECT_EQ(inUse.code, 1) << "another program has it open, with its log";
        EXPECT_TRUE(fs::exists(Database()));
    }
    ASSERT_EQ(Try({"init", Database(), "--replace"}).code, 0);
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
    fs::rename(Database() + ".old", Database());
    EXPECT_EQ(OkJson({"patients"}).size(), 1U);
}

TEST_F(Program, ASeriesOfAnotherStudyIsRejected) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    Write("2.25.6", 1, FullMouth18[8],
          [](DcmDataset& set) { set.putAndInsertString(DCM_SeriesInstanceUID, "2.25.5"); });
    const Result run = Try({"--db", Database(), "import", Films() + "/2.25.6-101.dcm"});
    EXPECT_EQ(run.code, 3);
    EXPECT_NE(run.err.find("its series 2.25.5 belongs to another study"), std::string::npos) << run.err;
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
    EXPECT_EQ(OkJson({"patients"}).size(), 1U);
}

TEST_F(Program, AnInvalidUidIsRejected) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    for (const char* uid : {"1", "9'8", "1.2.x"}) {
        Write("2.25.6", 1, FullMouth18[8],
              [&](DcmDataset& set) { set.putAndInsertString(DCM_SeriesInstanceUID, uid); });
        const Result run = Try({"--db", Database(), "import", Films() + "/2.25.6-101.dcm"});
        EXPECT_EQ(run.code, 3) << uid;
        EXPECT_NE(run.err.find("is not a DICOM identifier"), std::string::npos) << run.err;
    }
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
}

TEST_F(Program, AKnownImageUnderAnotherPatientOrWithAnotherPictureIsNotTakenForStored) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    Write("2.25.6", 1, FullMouth18[8], [](DcmDataset& set) { set.putAndInsertString(DCM_SOPInstanceUID, "2.25.5.1"); });
    const Result other = Try({"--db", Database(), "import", Films() + "/2.25.6-101.dcm"});
    EXPECT_EQ(other.code, 3);
    EXPECT_NE(other.err.find("belongs to image 1 of another series"), std::string::npos) << other.err;
    EXPECT_EQ(OkJson({"patients"}).size(), 1U) << "nothing of a series without a stored image stays";
    Write("2.25.5", 1, FullMouth18[7], [](DcmDataset& set) { set.putAndInsertUint16(DCM_Columns, 1); });
    const Result changed = Try({"--db", Database(), "import", Films() + "/2.25.5-101.dcm"});
    EXPECT_EQ(changed.code, 3);
    EXPECT_NE(changed.err.find("another file is stored as"), std::string::npos) << changed.err;
}

TEST_F(Program, ACopyThatIsMissingInItsRootIsCreatedAgain) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    const fs::path stored = folder.Path() / "images" / "0_" / "2.25.5.1.dcm";
    fs::remove(stored);
    const json told = OkJson({"import", Films()});
    EXPECT_EQ(told["known"], 0);
    EXPECT_EQ(told["restored"], 1);
    EXPECT_TRUE(fs::exists(stored));
    fs::remove(stored);
    const std::string text = Ok({"import", Films()});
    EXPECT_NE(text.find("1 file was missing and stored again."), std::string::npos) << text;
    EXPECT_EQ(text.find("Nothing was stored twice"), std::string::npos) << text;
}

TEST_F(Program, QuotesInAFileDoNotKeepItOut) {
    Init();
    Write("2.25.5", 1, FullMouth18[7], [](DcmDataset& set) {
        set.putAndInsertString(DCM_OperatorsName, "O'Neil");
        set.putAndInsertString(DCM_SeriesDescription, "patient's film");
        set.putAndInsertString(DCM_PatientName, "O'Brien^Pat");
    });
    Ok({"import", Films()});
    for (int i = 0; i < 3; ++i) Ok({"hang", "1"});
    EXPECT_EQ(OkJson({"series"})[0]["description"], "patient's film") << "quotes don't grow with each save";
    EXPECT_EQ(OkJson({"patients", "o'brien"}).size(), 1U);
    Ok({"comment", "1", "it's fine"});
}

TEST_F(Program, NamesAreFoundInAnyScriptWithoutRegardToCase) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    Ok({"patient", "P-2.25.5", "LastName=Müller", "FirstName=Ελένη"});
    for (const char* text : {"müll", "MÜLLER", "ελένη", "p-2.25"})
        EXPECT_EQ(OkJson({"patients", text}).size(), 1U) << text;
    EXPECT_EQ(OkJson({"studies", "--patient", "p-2.25.5"}).size(), 1U);
    EXPECT_EQ(OkJson({"images", "--patient", "p-2.25.5"}).size(), 1U);
}

TEST_F(Program, FoldersWithCyclicLinksAreReadOnce) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    fs::create_directory_symlink(Films(), Films() + "/again");
    EXPECT_EQ(OkJson({"import", Films()})["files"], 1);
}

TEST_F(Program, ABlankCommentIsRejected) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    EXPECT_EQ(Try({"--db", Database(), "comment", "1", "   "}).code, 1);
    EXPECT_EQ(OkJson({"comment", "1"}).size(), 0U);
}

TEST_F(Program, IdentifiersAreNewAndOfTheRoot) {
    Init();
    const json uids = OkJson({"uid", "--count", "50"});
    std::set<std::string> different;
    for (const json& uid : uids) different.insert(uid.get<std::string>());
    EXPECT_EQ(different.size(), 50U);
    EXPECT_EQ(Try({"--db", Database(), "uid", "--count", "0"}).code, 2);
}

TEST_F(Program, AddingARootMakesItTheActiveOne) {
    Init();
    const json roots = OkJson({"roots", "--add", (folder.Path() / "second").string()});
    ASSERT_EQ(roots.size(), 2U);
    EXPECT_EQ(roots[0]["active"], 0);
    EXPECT_EQ(roots[1]["active"], 1);
}

TEST_F(Program, TraceShowsEachStatementWithItsTime) {
    Init();
    const Result run = Try({"--db", Database(), "--trace", "setting", "get", "ImageFormat"});
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.err.find("SELECT * FROM GlobalList_T WHERE ListID=6;"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find(" ms, 0 rows]"), std::string::npos) << run.err;
}

TEST_F(Program, TheDatabaseMayComeFromTheEnvironment) {
    Init();
    setenv("OXCLASS_DB", Database().c_str(), 1);
    EXPECT_EQ(Try({"patients"}).code, 0);
    unsetenv("OXCLASS_DB");
}

}  // namespace

#include "ProgramTest.h"

#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <random>
#include <sstream>
#include <sys/wait.h>

namespace {

using namespace ProgramTest;
using ::testing::HasSubstr;

/// Imports: roots, files, and other programs that run at the same time.
class ImportTest : public Program {
protected:
    Result Import(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), {"--db", Database(), "import", Films()});
        return Try(arguments);
    }
    fs::path Root() const { return folder.Path() / "images"; }
    static std::string ContentOf(const fs::path& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static std::string LCased(const std::string& text) { return Platform::LCase(text); }
    /// All names below the root, with their sizes and times of change.
    std::map<std::string, std::pair<std::uintmax_t, fs::file_time_type>> RootState() const {
        std::map<std::string, std::pair<std::uintmax_t, fs::file_time_type>> state;
        for (const auto& entry : fs::recursive_directory_iterator(Root()))
            state[entry.path().string()] = {entry.is_directory() ? 0 : entry.file_size(), entry.last_write_time()};
        state[Root().string()] = {0, fs::last_write_time(Root())};
        return state;
    }
};

TEST_F(ImportTest, AMissingRootIsNotCreatedAndNothingIsStored) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    fs::remove_all(Root());
    const Result run = Import();
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("is missing, so nothing is stored; mount its disk"));
    EXPECT_FALSE(fs::exists(Root()));
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
}

TEST_F(ImportTest, ARootOfAnotherClinicIsRejected) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    const std::string other = (folder.Path() / "other.db").string();
    const Result made = Try({"init", other, "--root", Root().string()});
    EXPECT_EQ(made.code, 1);
    EXPECT_THAT(made.err, HasSubstr("belongs to another clinic"));
    EXPECT_FALSE(fs::exists(other));
    ASSERT_EQ(Try({"init", other, "--root", (folder.Path() / "elsewhere").string()}).code, 0);
    const auto con = Platform::New<ADODB::Connection>();
    con->Open("Provider=SQLite;Data Source=" + other);
    con->Execute("UPDATE Root_T SET RootDirectory = '" + Root().string() + "'");
    const Result run = Try({"--db", other, "import", Films()});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("belongs to another clinic"));
}

TEST_F(ImportTest, AReplacedDatabaseKeepsItsRoot) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    EXPECT_EQ(Try({"init", Database(), "--replace"}).code, 0);
    EXPECT_EQ(Import().code, 0);
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
}

TEST_F(ImportTest, ImportingKnownFilesAgainWritesNothing) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
    Ok({"import", Films()});
    const auto before = RootState();
    const auto other = Platform::New<ADODB::Connection>();
    other->Open("Provider=SQLite;Data Source=" + Database());
    other->BeginTrans();  // another program is writing
    const json again = OkJson({"import", Films()});
    other->RollbackTrans();
    EXPECT_EQ(again["known"], 2);
    EXPECT_EQ(RootState(), before);
}

TEST_F(ImportTest, ImportingKnownFilesAgainRunsOnlyQueries) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
    EXPECT_THAT(Import({"--trace"}).err, HasSubstr("[begin transaction"));
    std::istringstream trace(Import({"--trace"}).err);
    int statements = 0;
    for (std::string line; std::getline(trace, line);) {
        EXPECT_THAT(line, HasSubstr("] SELECT ")) << "a statement that is no query, or a transaction";
        ++statements;
    }
    EXPECT_GE(statements, 2);
}

TEST_F(ImportTest, TheStoredFilesHaveTheirChecksums) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    const auto con = Platform::New<ADODB::Connection>();
    con->Open("Provider=SQLite;Data Source=" + Database());
    EXPECT_EQ(con->Execute("SELECT CRC FROM ImageBild_T")->Fields(0).As<std::string>().size(), 64U);
}

TEST_F(ImportTest, AFileOfTheSameNameThatAnotherImportLeftIsIgnored) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    const fs::path left = Root() / "0_" / ("2.25.5.1.dcm.part" + std::to_string(getpid()));
    fs::create_directories(left.parent_path());
    std::ofstream(left) << "half a film";
    EXPECT_EQ(Import().code, 0);
    EXPECT_EQ(ContentOf(left), "half a film");
}

TEST_F(ImportTest, OnlyTheFileWithFourThousandNestedSequencesFails) {
    Init();
    WriteSeries("2.25.5", FullMouth18);
    // Explicit little endian: a sequence of undefined length in an item of undefined length, and so on.
    std::string nested = std::string(128, '\0') + "DICM";
    const auto add = [&](std::initializer_list<int> bytes) {
        for (const int byte : bytes) nested += static_cast<char>(byte);
    };
    add({0x02, 0, 0x10, 0, 'U', 'I', 20, 0});
    nested += std::string("1.2.840.10008.1.2.1") + '\0';
    for (int i = 0; i < 4000; ++i) {
        add({0x40, 0, 0x00, 0x01, 'S', 'Q', 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
        add({0xFE, 0xFF, 0x00, 0xE0, 0xFF, 0xFF, 0xFF, 0xFF});
    }
    for (int i = 0; i < 4000; ++i) add({0xFE, 0xFF, 0x0D, 0xE0, 0, 0, 0, 0, 0xFE, 0xFF, 0xDD, 0xE0, 0, 0, 0, 0});
    std::ofstream(Films() + "/nested.dcm", std::ios::binary) << nested;
    const Result run = Import();
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("nested.dcm: not imported: "));
    EXPECT_THAT(run.err, HasSubstr("nested"));
    EXPECT_THAT(run.out, HasSubstr("19 files: 18 new images stored"));
}

TEST_F(ImportTest, SequencesNestedDeeperThanAnyRadiographHasAreRejected) {
    Init();
    const auto nest = [](int depth) {
        return [depth](DcmDataset& set) {
            DcmItem* item = &set;
            for (int i = 0; i < depth; ++i) {
                DcmItem* inner = nullptr;
                item->findOrCreateSequenceItem(DCM_ContentSequence, inner, -2);
                item = inner;
            }
        };
    };
    Write("2.25.5", 1, FullMouth18[7], nest(60));
    Write("2.25.6", 1, FullMouth18[7], nest(70));
    const Result run = Import();
    EXPECT_THAT(run.err, HasSubstr("2.25.6-101.dcm: not imported: its sequences are nested more than 64 deep"));
    EXPECT_THAT(run.out, HasSubstr("2 files: 1 new images stored"));
}

TEST_F(ImportTest, AFilmWhosePictureCannotBeDrawnIsStoredAndReported) {
    Init();
    Write("2.25.5", 1, FullMouth18[7], [](DcmDataset& set) {
        set.putAndInsertString(DCM_PhotometricInterpretation, "YBR_PARTIAL_420");
        set.putAndInsertUint16(DCM_SamplesPerPixel, 3);
    });
    const Result run = Import();
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("2.25.5-101.dcm: stored, but it has no picture: "));
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
}

TEST_F(ImportTest, AnAcquisitionDiscIsImportedWithoutAMessagePerFile) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    fs::create_directories(Films() + "/VIEWER");
    for (const char* other : {"VIEWER/viewer.exe", "VIEWER/help.html", "autorun.inf", "README"})
        std::ofstream(Films() + "/" + other) << "no film";
    std::ofstream(Films() + "/VIEWER/empty.dat").flush();
    DcmFileFormat directory;
    directory.getDataset()->putAndInsertString(DCM_FileSetID, "DISC");
    DcmItem* record = nullptr;
    directory.getDataset()->findOrCreateSequenceItem(DCM_DirectoryRecordSequence, record);
    record->putAndInsertString(DCM_DirectoryRecordType, "PATIENT");
    ASSERT_TRUE(directory.saveFile((Films() + "/DICOMDIR").c_str(), EXS_LittleEndianExplicit).good());
    const Result run = Import();
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("1 new images stored"));
    EXPECT_THAT(run.out, HasSubstr("6 files without DICOM data were skipped"));
    EXPECT_EQ(Try({"--db", Database(), "import", Films() + "/DICOMDIR"}).code, 0);
    EXPECT_EQ(Try({"--db", Database(), "import", Films() + "/README"}).code, 3) << "a file that was named";
}

/// A disc with a DICOMDIR that names files.
class DiscTest : public ImportTest {
protected:
    /// The films are A and B in a folder of the disc; the DICOMDIR names them and more files.
    void MakeDisc(const std::vector<std::string>& more = {}) {
        Init();
        WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[8]});
        fs::create_directories(Films() + "/images");
        fs::rename(Films() + "/2.25.5-101.dcm", Films() + "/images/a");
        fs::rename(Films() + "/2.25.5-102.dcm", Films() + "/images/b");
        DcmFileFormat directory;
        std::vector<std::string> named{"IMAGES\\A", "IMAGES\\B"};
        named.insert(named.end(), more.begin(), more.end());
        for (const std::string& file : named) {
            DcmItem* record = nullptr;
            directory.getDataset()->findOrCreateSequenceItem(DCM_DirectoryRecordSequence, record, -2);
            record->putAndInsertString(DCM_DirectoryRecordType, "IMAGE");
            record->putAndInsertString(DCM_ReferencedFileID, file.c_str());
        }
        ASSERT_TRUE(directory.saveFile((Films() + "/DICOMDIR").c_str(), EXS_LittleEndianExplicit).good());
    }
};

TEST_F(DiscTest, EachFileThatTheDicomdirNamesIsImportedInAnyCase) {
    MakeDisc();
    const Result run = Import();
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("2 new images stored"));
}

TEST_F(DiscTest, FilesThatTheDicomdirNamesAndThatAreDamagedAreReported) {
    const std::string zeros(1000, '\0'), noise = "no film, whatever the directory says";
    for (const std::string& content : {zeros, noise, std::string()}) {
        fs::remove_all(Films());
        fs::remove_all(Root());
        fs::remove(Database());
        MakeDisc();
        std::ofstream(Films() + "/images/b", std::ios::trunc) << content;
        std::ofstream(Films() + "/README") << "no film";
        const Result run = Import();
        EXPECT_EQ(run.code, 3) << content;
        EXPECT_THAT(LCased(run.err), HasSubstr("/images/b: not imported: the dicomdir names it, and it is damaged"));
        EXPECT_THAT(run.out, HasSubstr("1 new images stored, 0 were stored already, 1 not imported"));
        EXPECT_THAT(run.out, HasSubstr("2 files without DICOM data were skipped"));
    }
}

TEST_F(DiscTest, FilesThatTheDicomdirNamesAndThatAreMissingAreReported) {
    MakeDisc({"IMAGES\\C", "OTHER\\D"});
    const Result run = Try({"--db", Database(), "import", Films() + "/DICOMDIR"});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("/IMAGES/C: not imported: the DICOMDIR names it, and it is missing"));
    EXPECT_THAT(run.err, HasSubstr("/OTHER/D: not imported: the DICOMDIR names it, and it is missing"));
    EXPECT_THAT(run.out, HasSubstr("2 new images stored, 0 were stored already, 2 not imported"));
}

TEST_F(DiscTest, ObjectsWithoutPictureAreCountedInOneLine) {
    MakeDisc({"IMAGES\\PR.DCM"});
    for (const char* name : {"pr.dcm", "pdf"}) {
        DcmFileFormat object;
        DcmDataset& set = *object.getDataset();
        set.putAndInsertString(DCM_SOPClassUID, *name == 'p' && name[1] == 'r'
                                                    ? UID_GrayscaleSoftcopyPresentationStateStorage
                                                    : UID_EncapsulatedPDFStorage);
        set.putAndInsertString(DCM_SOPInstanceUID, "1.2.3.4");
        ASSERT_TRUE(object.saveFile((Films() + "/images/" + name).c_str(), EXS_LittleEndianExplicit).good());
    }
    const Result run = Import();
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("2 DICOM objects without picture were skipped"));
    EXPECT_EQ(Try({"--db", Database(), "import", Films() + "/images/pr.dcm"}).code, 3) << "a file that was named";
    Write("2.25.6", 1, FullMouth18[7], [](DcmDataset& set) { set.findAndDeleteElement(DCM_PixelData); });
    EXPECT_THAT(Import().err, HasSubstr("2.25.6-101.dcm: not imported: no pixel data")) << "a kind that has pixels";
}

TEST_F(ImportTest, PicturesOfVisibleLightAreNotFilms) {
    Init();
    struct Kind {
        const char *sopClass, *modality, *pixels;
        bool photograph;
    };
    const Kind kinds[] = {
        {UID_VLPhotographicImageStorage, "IO", "MONOCHROME2", true},
        {UID_VLEndoscopicImageStorage, "ES", "RGB", true},
        {UID_VLMicroscopicImageStorage, "GM", "RGB", true},
        {UID_SecondaryCaptureImageStorage, "OT", "RGB", true},
        {UID_SecondaryCaptureImageStorage, "IO", "YBR_FULL", true},
        {UID_SecondaryCaptureImageStorage, "OT", "MONOCHROME2", false},
        {UID_DigitalIntraOralXRayImageStorageForPresentation, "IO", "MONOCHROME1", false},
    };
    int number = 0;
    for (const Kind& kind : kinds)
        Write("2.25." + std::to_string(10 + number++), 1, {}, [&](DcmDataset& set) {
            set.putAndInsertString(DCM_SOPClassUID, kind.sopClass);
            set.putAndInsertString(DCM_Modality, kind.modality);
            set.putAndInsertString(DCM_PhotometricInterpretation, kind.pixels);
            if (std::string(kind.pixels).starts_with("MONO")) return;
            const Uint8 pixels[12] = {};
            set.putAndInsertUint16(DCM_SamplesPerPixel, 3);
            set.putAndInsertUint16(DCM_PlanarConfiguration, 0);
            set.putAndInsertUint8Array(DCM_PixelData, pixels, 12);
        });
    ASSERT_EQ(Import().code, 0);
    const json images = OkJson({"images"});
    ASSERT_EQ(images.size(), std::size(kinds));
    for (const json& image : images) {
        const auto place = static_cast<std::size_t>(image["series"].get<int>() - 1);
        EXPECT_EQ(image["frame"] == 0, kinds[place].photograph) << place;
    }
}

TEST_F(ImportTest, AFailureOfTheDatabaseIsReportedInPlainWords) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    Ok({"import", Films()});
    Write("2.25.5", 2, FullMouth18[8]);
    Run("UPDATE Study_T SET ReferDrName = NULL");
    const Result run = Import();
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("correct its column referDrName"));
    EXPECT_THAT(run.err, HasSubstr("study 2.25.5.900 can't be read whole"));
}

TEST_F(ImportTest, AnInvalidMarkerIsNeitherAcceptedNorReplaced) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7]});
    for (const char* marker : {"deadbeef\n", "", "storage root of clinic \n"}) {
        std::ofstream(Root() / ".oxclass-root", std::ios::trunc) << marker;
        const Result run = Import();
        EXPECT_EQ(run.code, 1) << marker;
        EXPECT_THAT(run.err, HasSubstr(".oxclass-root is not the marker of a storage root")) << marker;
        EXPECT_EQ(ContentOf(Root() / ".oxclass-root"), marker);
        EXPECT_EQ(OkJson({"images"}).size(), 0U);
    }
}

TEST_F(ImportTest, ControlCharactersOfAFileNeverReachTheTerminal) {
    Init();
    Write("2.25.5", 1, FullMouth18[7], [](DcmDataset& set) {
        set.putAndInsertString(DCM_PatientID, "P1");
        set.putAndInsertString(DCM_PatientName, "Ek\033]0;title\007^Anna");
        set.putAndInsertString(DCM_SeriesDescription, "films\033[2J");
    });
    Write("2.25.6", 1, FullMouth18[7], [](DcmDataset& set) {
        set.putAndInsertString(DCM_PatientID, "P1");
        set.putAndInsertString(DCM_PatientName, "Berg\033[2J^Nils");
    });
    std::ofstream(Films() + "/bad\033[2J\nname.dcm") << "no film";
    const Result run = Import();
    std::string all = run.out + run.err;
    for (const std::vector<std::string>& command : {std::vector<std::string>{"series"},
                                                    {"series", "1"},
                                                    {"patients"},
                                                    {"patient", "P1"},
                                                    {"studies"},
                                                    {"cards", "P1"},
                                                    {"images"},
                                                    {"layouts"}})
        all += Ok(command);
    for (const char c : all) EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= ' ') << int{c};
}

TEST_F(ImportTest, ASignalEndsTheImportInOrder) {
    Init();
    for (int series = 0; series < 80; ++series)
        WriteSeries("2.25.8" + std::to_string(series), {FullMouth18[7], FullMouth18[10]});
    const fs::path out = folder.Path() / "out";
    const pid_t child = fork();
    if (child == 0) {
        std::freopen(out.c_str(), "w", stdout);
        std::freopen((folder.Path() / "err").c_str(), "w", stderr);
        const char* const argv[] = {"oxclass", "--db", nullptr, "import", nullptr};
        std::string database = Database(), films = Films();
        const char* arguments[] = {argv[0], argv[1], database.c_str(), argv[3], films.c_str()};
        const int code = Console::RunProgram(5, arguments);
        std::fflush(nullptr);
        std::_Exit(code);
    }
    // The import runs for longer than a second in all; wait until it has stored some series.
    const auto stored = [&] {
        return fs::exists(Root() / "0_") ? std::distance(fs::directory_iterator(Root() / "0_"), {}) : 0;
    };
    for (int i = 0; i < 4000 && stored() < 20; ++i) usleep(5000);
    kill(child, SIGTERM);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    const std::string told = ContentOf(out);
    EXPECT_EQ(WEXITSTATUS(status), 3) << told;
    EXPECT_THAT(told, HasSubstr("new images stored"));
    EXPECT_THAT(told, HasSubstr("Stopped: "));
    const std::size_t images = OkJson({"images"}).size();
    EXPECT_GT(images, 0U);
    EXPECT_LT(images, 160U);
    EXPECT_EQ(images % 2, 0U) << "each series is stored whole";
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(Root())) files += entry.path().extension() == ".dcm";
    EXPECT_EQ(files, images);
    EXPECT_EQ(std::distance(fs::directory_iterator(Root()), {}), 2) << "the marker and one folder";
    EXPECT_EQ(Import().code, 0);
    EXPECT_EQ(OkJson({"images"}).size(), 160U);
}

TEST_F(ImportTest, ASeriesWhoseFilesLieFarApartIsStoredWhole) {
    Init();
    WriteSeries("2.25.1", {FullMouth18[7]});
    for (int series = 0; series < 300; ++series) WriteSeries("2.25.5" + std::to_string(series), {FullMouth18[7]});
    Write("2.25.1", 2, FullMouth18[10]);
    fs::rename(Films() + "/2.25.1-102.dcm", Films() + "/z.dcm");
    ASSERT_EQ(Import().code, 0);
    const json series = OkJson({"series"});
    ASSERT_EQ(series.size(), 301U);
    EXPECT_EQ(series[0]["images"], 2);
    EXPECT_EQ(series[0]["layout"], 8) << "hung with both films";
}

TEST_F(ImportTest, FilesAreReadByAsManyProcessesAsWanted) {
    Init();
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
    EXPECT_EQ(OkJson({"import", Films(), "--jobs", "1"})["stored"], 2);
    EXPECT_EQ(OkJson({"import", Films(), "--jobs", "5"})["known"], 2);
    EXPECT_EQ(Try({"--db", Database(), "import", Films(), "--jobs", "0"}).code, 2);
}

}  // namespace

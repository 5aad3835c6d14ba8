#pragma once

#include "console/Program.h"
#include "console/dicom/DicomCodes.h"
#include "kit/Database.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <nlohmann/json.hpp>

/// The environment of the program's tests: an empty folder, small DICOM files, and runs of the program.
namespace ProgramTest {

namespace fs = std::filesystem;
using nlohmann::json;
using TestKit::TemporaryFolder;

/// The exit code and the output of one run of the program.
struct Result {
    int code = 0;
    std::string out, err;
};

/// A film of a series, as it is written into a file.
struct Film {
    std::set<int> teeth;
    std::string region;
};

inline const std::vector<Film> FullMouth18{{{16, 17, 18}, ""},
                                           {{14, 15}, ""},
                                           {{12, 13}, ""},
                                           {{11, 21}, ""},
                                           {{22, 23}, ""},
                                           {{24, 25}, ""},
                                           {{26, 27, 28}, ""},
                                           {{16, 17, 18, 46, 47, 48}, ""},
                                           {{14, 15, 44, 45}, ""},
                                           {{24, 25, 34, 35}, ""},
                                           {{26, 27, 28, 36, 37, 38}, ""},
                                           {{46, 47, 48}, ""},
                                           {{44, 45}, ""},
                                           {{42, 43}, ""},
                                           {{31, 41}, ""},
                                           {{32, 33}, ""},
                                           {{34, 35}, ""},
                                           {{36, 37, 38}, ""}};

/// A test with an empty folder, in which the program creates and uses clinic.db.
class Program : public ::testing::Test {
protected:
    Program() { unsetenv("OXCLASS_DB"); }

    Result Try(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "oxclass");
        std::vector<const char*> argv;
        for (const std::string& argument : arguments) argv.push_back(argument.c_str());
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        Result run;
        run.code = Console::RunProgram(static_cast<int>(argv.size()), argv.data());
        std::fflush(stdout);
        run.out = testing::internal::GetCapturedStdout();
        run.err = testing::internal::GetCapturedStderr();
        return run;
    }

    /// Runs the program on the test's database; it must succeed. Returns its output.
    std::string Ok(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--db", Database()});
        const Result run = Try(arguments);
        EXPECT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(run.err, "");
        return run.out;
    }

    /// Runs a statement of the test's own on the test's database.
    void Run(const std::string& statement) const {
        const auto con = Platform::New<ADODB::Connection>();
        con->Open("Provider=SQLite;Data Source=" + Database());
        con->Execute(statement);
    }

    json OkJson(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        return json::parse(Ok(std::move(arguments)));
    }

    std::string Database() const { return (folder.Path() / "clinic.db").string(); }
    std::string Films() const { return (folder.Path() / "films").string(); }

    void Init() { ASSERT_EQ(Try({"init", Database()}).code, 0); }

    /// Writes one small DICOM file of a series.
    void Write(
        const std::string& series, int number, const Film& film,
        const std::function<void(DcmDataset&)>& change = [](DcmDataset&) {}) {
        DcmFileFormat file;
        DcmDataset& set = *file.getDataset();
        const auto put = [&](const DcmTagKey& tag, const std::string& value) {
            set.putAndInsertString(tag, value.c_str());
        };
        put(DCM_SOPClassUID, UID_DigitalIntraOralXRayImageStorageForPresentation);
        put(DCM_SOPInstanceUID, series + "." + std::to_string(number));
        put(DCM_StudyInstanceUID, series + ".900");
        put(DCM_SeriesInstanceUID, series);
        put(DCM_PatientID, "p-" + series);
        put(DCM_PatientName, "Test^Anna");
        put(DCM_Modality, "IO");
        put(DCM_AcquisitionDate, "20260102");
        put(DCM_AcquisitionTime, std::to_string(100000 + number * 100));
        for (const int tooth : film.teeth) {
            DcmItem* item = nullptr;
            set.findOrCreateSequenceItem(DCM_PrimaryAnatomicStructureSequence, item, -2);
            item->putAndInsertString(DCM_CodeValue, Console::CodeOfTooth(tooth).value.c_str());
        }
        set.putAndInsertUint16(DCM_Rows, 2);
        set.putAndInsertUint16(DCM_Columns, 2);
        set.putAndInsertUint16(DCM_SamplesPerPixel, 1);
        put(DCM_PhotometricInterpretation, "MONOCHROME2");
        set.putAndInsertUint16(DCM_BitsAllocated, 8);
        set.putAndInsertUint16(DCM_BitsStored, 8);
        set.putAndInsertUint16(DCM_HighBit, 7);
        set.putAndInsertUint16(DCM_PixelRepresentation, 0);
        const Uint8 pixels[4] = {1, 2, 3, 4};
        set.putAndInsertUint8Array(DCM_PixelData, pixels, 4);
        change(set);
        fs::create_directories(Films());
        const std::string path = Films() + "/" + series + "-" + std::to_string(100 + number) + ".dcm";
        ASSERT_TRUE(file.saveFile(path.c_str(), EXS_LittleEndianExplicit).good());
    }

    void WriteSeries(const std::string& series, const std::vector<Film>& films) {
        for (std::size_t i = 0; i < films.size(); ++i) Write(series, static_cast<int>(i) + 1, films[i]);
    }

    /// The tooth strings of a series by frame.
    std::map<int, std::string> Hung(int series) {
        std::map<int, std::string> teeth;
        const json shown = OkJson({"series", std::to_string(series)});
        for (const json& image : shown["images"]) teeth[image["frame"].get<int>()] = image["teeth"].get<std::string>();
        return teeth;
    }

    TemporaryFolder folder;
};

}  // namespace ProgramTest

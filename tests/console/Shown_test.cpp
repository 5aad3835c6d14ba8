#include "ProgramTest.h"

#include "Jpeg2000Encoder.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <fstream>
#include <gmock/gmock.h>
#include <regex>

/// The output of lists, charts, drawings and reports for images without a picture, without anatomy or without a frame.
namespace {

using namespace ProgramTest;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class Shown : public ProgramTest::Program {
protected:
    void SetUp() override { Init(); }

    void Import() { Ok({"import", Films()}); }

    /// Replaces the pixels of a data set by one fragment of a compressed picture.
    static void PutFragment(DcmDataset& set, std::string fragment, E_TransferSyntax encoding) {
        delete set.remove(DCM_PixelData);
        auto* const sequence = new DcmPixelSequence(DCM_PixelSequenceTag);
        ASSERT_TRUE(sequence->insert(new DcmPixelItem(DCM_PixelItemTag)).good());
        DcmOffsetList offsets;
        sequence->storeCompressedFrame(offsets, reinterpret_cast<Uint8*>(fragment.data()),
                                       static_cast<Uint32>(fragment.size()), 0);
        auto* const pixels = new DcmPixelData(DCM_PixelData);
        pixels->putOriginalRepresentation(encoding, nullptr, sequence);
        ASSERT_TRUE(set.insert(pixels).good());
    }

    static void MakePhotograph(DcmDataset& set) { set.putAndInsertString(DCM_Modality, "XC"); }

    static std::string Read(const std::string& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::string Drawing(const std::string& key, std::vector<std::string> more = {}) {
        std::vector<std::string> arguments{"--db", Database(), "draw", key, "-o", File("drawing.svg")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        Try(arguments);
        return Read(File("drawing.svg"));
    }

    std::string Report(const std::string& patient) {
        Try({"--db", Database(), "report", patient, "-o", File("report.html")});
        return Read(File("report.html"));
    }

    /// The path of the stored file of an image.
    fs::path StoredFile(int image) {
        for (const json& listed : OkJson({"images"})) {
            const std::string name = listed["file"];
            if (listed["image"] != image) continue;
            for (const auto& entry : fs::recursive_directory_iterator(folder.Path()))
                if (entry.path().filename() == name.substr(name.find('\\') + 1)) return entry.path();
        }
        throw std::runtime_error("no such file");
    }

    template <class Value>
    std::vector<Value> Listed(const char* key) {
        std::vector<Value> values;
        for (const json& image : OkJson({"images"})) values.push_back(image[key].get<Value>());
        return values;
    }

    std::string File(const char* name) const { return (folder.Path() / name).string(); }
};

// ---- photographs ------------------------------------------------------------------------------------

TEST_F(Shown, PhotographsHaveNoPlaceAmongFilms) {
    Write("1.2.3", 1, {{16, 17, 46, 47}, ""});
    Write("1.2.3", 2, {{26, 27, 36, 37}, ""});
    Write("1.2.3", 3, {{11}, ""}, MakePhotograph);
    Import();
    EXPECT_THAT(Listed<int>("frame"), ElementsAre(1, 2, 0));
    const json series = OkJson({"series"})[0];
    EXPECT_EQ(series["layout"], 8) << "two bitewings";
    EXPECT_EQ(series["images"], 3);
    EXPECT_THAT(Ok({"series", "1"}), HasSubstr("Hanging nowhere: 11\n"));
}

TEST_F(Shown, ASeriesOfPhotographsOnlyHasNoLayout) {
    Write("1.2.3", 1, {{}, ""}, MakePhotograph);
    Write("1.2.3", 2, {{}, ""}, MakePhotograph);
    Import();
    EXPECT_THAT(Listed<int>("frame"), Each(0));
    EXPECT_THAT(Listed<std::string>("placed"), Each(""));
    EXPECT_EQ(OkJson({"series"})[0]["layout"], 0);
}

TEST_F(Shown, HangingAgainClearsTheFramesOfPhotographs) {
    Write("1.2.3", 1, {{}, ""}, MakePhotograph);
    Import();
    Run("UPDATE ImageBild_T SET FrameNumber_INT = 1");
    Run("UPDATE Series_T SET template_ID = 9");
    const json hung = OkJson({"hang", "1"});
    EXPECT_EQ(hung["layout"], 0);
    EXPECT_EQ(hung["changed"], 1);
    EXPECT_THAT(Listed<int>("frame"), Each(0));
    EXPECT_EQ(OkJson({"series"})[0]["layout"], 0);
}

// ---- films of unknown anatomy -----------------------------------------------------------------------

TEST_F(Shown, FilmsOfUnknownAnatomyAreMarkedAsPlacedByTimeOnly) {
    Write("1.2.3", 1, {{}, ""});
    Write("1.2.3", 2, {{16}, ""});
    Import();
    EXPECT_THAT(Listed<int>("frame"), ElementsAre(1, 2));
    EXPECT_THAT(Listed<std::string>("placed"), ElementsAre("by time only", ""));
    const json images = OkJson({"series", "1"})["images"];
    EXPECT_EQ(images[0]["byTimeOnly"], true);
    EXPECT_EQ(images[1]["byTimeOnly"], false);
    const std::string chart = Ok({"series", "1"});
    EXPECT_THAT(chart, HasSubstr("by time "));
    EXPECT_THAT(chart, HasSubstr("Placed by time only, as nothing of their anatomy is known: frame 1\n"));
    EXPECT_THAT(Drawing("SE1"), HasSubstr("placed by time only</text>"));
    EXPECT_THAT(Report("P-1.2.3"), HasSubstr("<td>placed by time only</td>"));
}

TEST_F(Shown, AFilmWhoseTextOfTeethNamesNoneIsPlacedByTimeOnly) {
    Write("1.2.3", 1, {{}, ""});
    Import();
    Run("UPDATE ImageBild_T SET PriStructure = 'molar'");
    Ok({"hang", "1"});
    EXPECT_THAT(Listed<std::string>("placed"), ElementsAre("by time only"));
}

TEST_F(Shown, KnownAnatomyAndViewsOfTheHeadAreNotMarked) {
    Write("1.2.3", 1, {{}, ""}, [](DcmDataset& set) {
        DcmItem* region = nullptr;
        set.findOrCreateSequenceItem(DCM_AnatomicRegionSequence, region);
        region->putAndInsertString(DCM_CodeValue, "70925003");
    });
    Write("1.2.4", 1, {{}, ""}, [](DcmDataset& set) { set.putAndInsertString(DCM_Modality, "PX"); });
    Import();
    EXPECT_THAT(Listed<int>("frame"), Each(1));
    EXPECT_THAT(Listed<std::string>("placed"), Each(""));
    EXPECT_THAT(Ok({"series", "1"}), Not(HasSubstr("by time")));
    EXPECT_THAT(Drawing("SE1"), Not(HasSubstr("by time")));
}

// ---- pictures that can't be shown -------------------------------------------------------------------

TEST_F(Shown, ImagesWithoutAPictureAreReportedEverywhereWithTheReason) {
    Write("1.2.3", 1, {{16}, ""});
    Write("1.2.3", 2, {{26}, ""});
    Import();
    EXPECT_THAT(Listed<std::string>("noPicture"), Each(""));
    EXPECT_THAT(Ok({"series", "1"}), Not(HasSubstr("no picture")));
    fs::resize_file(StoredFile(1), fs::file_size(StoredFile(1)) - 2);
    fs::remove(StoredFile(2));
    const json images = OkJson({"series", "1"})["images"];
    EXPECT_NE(images[0]["noPicture"], "");
    EXPECT_THAT(Listed<std::string>("noPicture"),
                ElementsAre(images[0]["noPicture"].get<std::string>(), "the file is missing"));
    EXPECT_EQ(images[1]["noPicture"], "the file is missing");
    const std::string chart = Ok({"series", "1"});
    EXPECT_THAT(chart, HasSubstr(" no picture "));
    EXPECT_THAT(chart, HasSubstr("No picture: 16, "));
    EXPECT_THAT(chart, HasSubstr("26, the file is missing"));
    EXPECT_THAT(Drawing("SE1"), HasSubstr(">no picture</text>"));
    EXPECT_THAT(Report("P-1.2.3"), HasSubstr("<td>no picture: the file is missing</td>"));
}

TEST_F(Shown, TransferSyntaxesThatCannotBeDecodedAreReportedInTheList) {
    Write("1.2.3", 1, {{16}, ""});
    Import();
    const fs::path path = StoredFile(1);
    std::string bytes = Read(path.string());
    // The identifier of the file's own transfer syntax, replaced by an undefined one.
    const std::string plain("1.2.840.10008.1.2.1\0", 20), undefined("1.2.840.10008.1.2.98", 20);
    ASSERT_NE(bytes.find(plain), std::string::npos);
    bytes.replace(bytes.find(plain), plain.size(), undefined);
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    EXPECT_THAT(Listed<std::string>("noPicture"), ElementsAre("its transfer syntax 1.2.840.10008.1.2.98 is unknown"));
    EXPECT_THAT(Drawing("SE1"), HasSubstr("its transfer syntax 1.2.840.10008.1.2.98 is unknown"));
}

TEST_F(Shown, TheListAndTheImportReportADamagedCompressedPictureAlike) {
    std::string codestream = Jpeg2000Of({0, 4095, 0, 2048, 100, 4095, 7, 0}, 8, 1, 1, 12);
    codestream.resize(codestream.size() / 2);
    DcmFileFormat file;
    Write("1.2.3", 1, {{16}, ""});
    const std::string path = Films() + "/1.2.3-101.dcm";
    ASSERT_TRUE(file.loadFile(path.c_str()).good());
    DcmDataset& set = *file.getDataset();
    set.putAndInsertUint16(DCM_Rows, 1);
    set.putAndInsertUint16(DCM_Columns, 8);
    set.putAndInsertUint16(DCM_BitsAllocated, 16);
    set.putAndInsertUint16(DCM_BitsStored, 12);
    set.putAndInsertUint16(DCM_HighBit, 11);
    PutFragment(set, codestream, EXS_JPEG2000LosslessOnly);
    ASSERT_TRUE(file.saveFile(path.c_str(), EXS_JPEG2000LosslessOnly).good());
    const Result imported = Try({"--db", Database(), "import", Films()});
    EXPECT_THAT(imported.err, HasSubstr("stored, but it has no picture: "));
    const std::string reason = OkJson({"series", "1"})["images"][0]["noPicture"];
    EXPECT_NE(reason, "");
    EXPECT_THAT(imported.err, HasSubstr(reason));
    EXPECT_THAT(Listed<std::string>("noPicture"), ElementsAre(reason));
}

TEST_F(Shown, DirectionsOfTextAndControlCharactersAreFilteredOrEscaped) {
    const std::string name = "Ek\u202E\u2066gro\u0085";
    Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, FirstName_NVC) VALUES ('P1', '" + name + "', 'Anna')");
    for (const std::vector<std::string>& command : {std::vector<std::string>{"patients"},
                                                    {"patient", "P1"},
                                                    {"--json", "patients"},
                                                    {"--json", "patient", "P1"}}) {
        const std::string out = Ok(command);
        for (const char* hidden : {"\u202E", "\u2066", "\u0085"})
            EXPECT_THAT(out, Not(HasSubstr(hidden))) << command[0];
        EXPECT_THAT(out, HasSubstr("gro")) << command[0];
    }
    EXPECT_EQ(OkJson({"patient", "P1"})["LastName"], name) << "a script reads the name as it is stored";
    Ok({"setting", "set", "DicomRootUID", "1.2.3"});
    Run("UPDATE GlobalList_T SET ListText = '1.2' || char(27) || '[2J' WHERE ListText = '1.2.3'");
    EXPECT_EQ(Ok({"setting", "get", "DicomRootUID"}), "1.2 [2J\n");
}

TEST_F(Shown, TheFirstOfSeveralFramesIsMarkedAsOne) {
    Write("1.2.3", 1, {{16}, ""}, [](DcmDataset& set) {
        const Uint8 pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        set.putAndInsertString(DCM_NumberOfFrames, "2");
        set.putAndInsertUint8Array(DCM_PixelData, pixels, 8);
    });
    Import();
    EXPECT_THAT(Drawing("SE1"), HasSubstr("<title>16, frame 1 of 2</title>"));
    EXPECT_THAT(Drawing("SE1"), HasSubstr("frame 1 of 2</text>"));
    EXPECT_THAT(Report("P-1.2.3"), HasSubstr("<td>frame 1 of 2</td>"));
}

TEST_F(Shown, TheShapeOfAPictureDoesNotDependOnTheDrawingsWidth) {
    Write("1.2.3", 1, {{16}, ""}, [](DcmDataset& set) {
        const std::vector<Uint8> pixels(std::size_t{300} * 301, 7);
        set.putAndInsertUint16(DCM_Rows, 300);
        set.putAndInsertUint16(DCM_Columns, 301);
        set.putAndInsertString(DCM_PixelSpacing, "0.03\\0.1");
        set.putAndInsertUint8Array(DCM_PixelData, pixels.data(), pixels.size());
    });
    Import();
    const std::regex place("<image [^>]*? x=[^>]*? (width=\"([^\"]*)\" height=\"([^\"]*)\" preserve[^ ]*)");
    std::smatch narrow, wide;
    const std::string small = Drawing("SE1", {"--width", "16"}), large = Drawing("SE1", {"--width", "3000"});
    ASSERT_TRUE(std::regex_search(small, narrow, place));
    ASSERT_TRUE(std::regex_search(large, wide, place));
    EXPECT_EQ(narrow[1], wide[1]);
    EXPECT_NEAR(std::stod(wide[2]) / std::stod(wide[3]), 301 * 0.1 / (300 * 0.03), 1e-4);
    EXPECT_LT(small.size(), large.size());
}

// ---- the report -------------------------------------------------------------------------------------

TEST_F(Shown, AReportShowsAnatomyInWordsExposureAndComments) {
    Write("1.2.3", 1, {{}, ""}, [](DcmDataset& set) {
        DcmItem *region = nullptr, *modifier = nullptr;
        set.findOrCreateSequenceItem(DCM_AnatomicRegionSequence, region);
        region->putAndInsertString(DCM_CodeValue, "70925003");
        region->findOrCreateSequenceItem(DCM_AnatomicRegionModifierSequence, modifier);
        modifier->putAndInsertString(DCM_CodeValue, "699507006");
        set.putAndInsertString(DCM_ImageLaterality, "L");
        set.putAndInsertString(DCM_KVP, "65");
    });
    Write("1.2.4", 1, {{}, ""}, [](DcmDataset& set) {
        MakePhotograph(set);
        set.putAndInsertString(DCM_PatientID, "P-1.2.3");
        set.putAndInsertString(DCM_KVP, "66");
    });
    Import();
    Ok({"comment", "1", "caries <distal>", "--signature", "AB"});
    Ok({"comment", "1", "filled"});
    const std::string html = Report("P-1.2.3");
    EXPECT_THAT(html, HasSubstr("<td></td><td>Maxilla, first molar region, left</td>"));
    EXPECT_THAT(html, HasSubstr(">65 kV<"));
    EXPECT_THAT(html, Not(HasSubstr("66 kV"))) << "a photograph has no exposure";
    EXPECT_TRUE(
        std::regex_search(html, std::regex("<td>[-0-9: ]+: filled<br>[-0-9: ]+ AB: caries &lt;distal&gt;</td>")));
    EXPECT_THAT(Drawing("SE1"), HasSubstr("<title>Maxilla, first molar region, left</title>"));
}

TEST_F(Shown, AReportNamesTheFirstClinicThatHasAName) {
    Write("1.2.3", 1, {{16}, ""});
    Import();
    EXPECT_THAT(Report("P-1.2.3"), Not(HasSubstr("Clinic")));
    Run("INSERT INTO Clinic_T (ClinicName) VALUES ('__HQ'), ('West & Sons'), ('East')");
    EXPECT_THAT(Report("P-1.2.3"), HasSubstr("<dt>Clinic</dt><dd>West &amp; Sons</dd>"));
    EXPECT_THAT(Report("P-1.2.3"), Not(HasSubstr("__HQ")));
}

// ---- the terminal -----------------------------------------------------------------------------------

TEST_F(Shown, ControlCharactersNeverReachTheTerminal) {
    Write("1.2.3", 1, {{16}, ""});
    Import();
    const std::string escape = "char(27) || '[2J' || char(7) || char(155) || 'x'";
    Run("UPDATE Series_T SET SeriesDescription = " + escape);
    Run("UPDATE TemplateCard_T SET TCName = " + escape);
    Run("UPDATE ImageBild_T SET PriStructure = " + escape + ", AnaRegion = " + escape);
    fs::remove(StoredFile(1));
    const auto clean = [](const std::string& text) {
        for (const char* control : {"\x1b", "\x07", "\xC2\x9B"}) EXPECT_THAT(text, Not(HasSubstr(control)));
    };
    const std::string name = File("\x1b[2J.png");
    for (const std::vector<std::string>& command : {std::vector<std::string>{"series", "1"},
                                                    {"layouts", "9"},
                                                    {"layouts"},
                                                    {"images"},
                                                    {"draw", "SE1", "-o", name},
                                                    {"draw", "SE1", "-o", "\x1b[2J.pdf"},
                                                    {"report", "P-1.2.3", "-o", "\x1b[2J.pdf"},
                                                    {"hang", "1"}}) {
        std::vector<std::string> arguments{"--db", Database()};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const Result run = Try(arguments);
        clean(run.out);
        clean(run.err);
    }
}

}  // namespace

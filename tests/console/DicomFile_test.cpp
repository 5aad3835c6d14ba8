#include "console/dicom/DicomFile.h"

#include "console/dicom/DicomCodes.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>

namespace Console {
namespace {

namespace fs = std::filesystem;

void Put(DcmItem& item, const DcmTagKey& tag, const std::string& value) {
    ASSERT_TRUE(item.putAndInsertOFStringArray(tag, OFString(value.data(), value.size())).good()) << value;
}

DcmItem& Item(DcmItem& parent, const DcmTagKey& sequence, int position = -2) {
    DcmItem* item = nullptr;
    parent.findOrCreateSequenceItem(sequence, item, position);
    return *item;
}

/// Adds an item with a code to a sequence and returns the item.
DcmItem& AddCode(DcmItem& parent, const DcmTagKey& sequence, const std::string& value,
                 const std::string& meaning = "-") {
    DcmItem& item = Item(parent, sequence);
    Put(item, DCM_CodeValue, value);
    Put(item, DCM_CodingSchemeDesignator, "SCT");
    Put(item, DCM_CodeMeaning, meaning);
    return item;
}

class DicomFile : public testing::Test {
protected:
    DicomFile() {
        fs::create_directories(folder);
        Put(set, DCM_SOPClassUID, UID_DigitalIntraOralXRayImageStorageForPresentation);
        Put(set, DCM_SOPInstanceUID, "2.25.3");
        Put(set, DCM_StudyInstanceUID, "2.25.1");
        Put(set, DCM_SeriesInstanceUID, "2.25.2");
        SetPixels(60, 40);
    }

    ~DicomFile() override { fs::remove_all(folder); }

    void SetPixels(Uint16 columns, Uint16 rows) {
        set.putAndInsertUint16(DCM_SamplesPerPixel, 1);
        set.putAndInsertUint16(DCM_Rows, rows);
        set.putAndInsertUint16(DCM_Columns, columns);
        set.putAndInsertUint16(DCM_BitsAllocated, 8);
        const std::vector<Uint8> pixels(static_cast<std::size_t>(columns) * rows, 7);
        set.putAndInsertUint8Array(DCM_PixelData, pixels.data(), static_cast<unsigned long>(pixels.size()));
    }

    void Teeth(std::initializer_list<int> teeth, CodeGeneration generation = CodeGeneration::Current) {
        for (const int tooth : teeth)
            AddCode(set, DCM_PrimaryAnatomicStructureSequence, CodeOfTooth(tooth, generation).value);
    }

    fs::path Saved(E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
        EXPECT_TRUE(file.saveFile(path.c_str(), syntax).good());
        return path;
    }

    RadiographFile Read() { return ReadRadiograph(Saved()); }

    std::string SavedBytes() {
        std::ifstream in(Saved(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    fs::path Holding(const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    /// Why `refused` is not read; empty if it is.
    static std::string WhyNot(const fs::path& refused) {
        try {
            ReadRadiograph(refused);
            return {};
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    fs::path folder = fs::path(testing::TempDir()) / ("dicom-file-" + std::to_string(getpid()));
    fs::path path = folder / "radiograph.dcm";
    DcmFileFormat file;
    DcmDataset& set = *file.getDataset();
};

// ------------------------------------------------------------------------------------------------ values

TEST_F(DicomFile, ReadsThePatient) {
    Put(set, DCM_PatientID, " T-1 ");
    Put(set, DCM_IssuerOfPatientID, "CLINIC");
    Put(set, DCM_PatientName, "Test^Anna^Maria^Dr");
    Put(set, DCM_PatientSex, "F");
    Put(set, DCM_PatientBirthDate, "19791231");
    Put(set, DCM_RETIRED_OtherPatientIDs, "A\\B");
    Put(Item(set, DCM_OtherPatientIDsSequence), DCM_PatientID, "B");
    Put(Item(set, DCM_OtherPatientIDsSequence), DCM_PatientID, "C");
    const RadiographFile read = Read();
    EXPECT_EQ(read.patientID, "T-1");
    EXPECT_EQ(read.issuer, "CLINIC");
    EXPECT_EQ(read.patientName, "Test^Anna^Maria^Dr");
    EXPECT_EQ(read.familyName, "Test");
    EXPECT_EQ(read.givenName, "Anna Maria");
    EXPECT_EQ(read.sex, "F");
    EXPECT_EQ(read.birthDate, "1979-12-31");
    EXPECT_EQ(read.otherPatientIDs, (std::vector<std::string>{"A", "B", "C"}));
}

TEST_F(DicomFile, ReadsStudyAndSeries) {
    Put(set, DCM_StudyID, "S1");
    Put(set, DCM_StudyDate, "20240229");
    Put(set, DCM_StudyTime, "101112.345");
    Put(set, DCM_StudyDescription, "Recall");
    Put(set, DCM_AccessionNumber, "AC7");
    Put(set, DCM_ReferringPhysicianName, "Ref^Eric");
    Put(set, DCM_PhysiciansOfRecord, "One^Ann\\Two^Bo");
    Put(set, DCM_SeriesNumber, "4");
    Put(set, DCM_SeriesDate, "20240229");
    Put(set, DCM_SeriesTime, "1015");
    Put(set, DCM_SeriesDescription, "Bitewings");
    Put(set, DCM_Modality, "IO");
    Put(set, DCM_OperatorsName, "Op^Olga");
    const RadiographFile read = Read();
    EXPECT_EQ(read.studyUID, "2.25.1");
    EXPECT_EQ(read.studyID, "S1");
    EXPECT_EQ(read.studyDateTime, "2024-02-29 10:11:12");
    EXPECT_EQ(read.studyDescription, "Recall");
    EXPECT_EQ(read.accessionNumber, "AC7");
    EXPECT_EQ(read.referringPhysician, "Ref^Eric");
    EXPECT_EQ(read.physiciansOfRecord, (std::vector<std::string>{"One^Ann", "Two^Bo"}));
    EXPECT_EQ(read.seriesUID, "2.25.2");
    EXPECT_EQ(read.seriesNumber, 4);
    EXPECT_EQ(read.seriesDateTime, "2024-02-29 10:15:00");
    EXPECT_EQ(read.seriesDescription, "Bitewings");
    EXPECT_EQ(read.modality, "IO");
    EXPECT_EQ(read.operatorsName, "Op^Olga");
}

TEST_F(DicomFile, ReadsImageExposureAndDevice) {
    Put(set, DCM_InstanceNumber, "12");
    Put(set, DCM_ImagerPixelSpacing, "0.05\\0.0254");
    Put(set, DCM_KVP, "65.5");
    Put(set, DCM_XRayTubeCurrent, "7");
    Put(set, DCM_ExposureTime, "120");
    Put(set, DCM_Manufacturer, "Maker");
    Put(set, DCM_ManufacturerModelName, "Sensor");
    Put(set, DCM_DeviceSerialNumber, "SN5");
    Put(set, DCM_BodyPartExamined, "JAW");
    const RadiographFile read = Read();
    EXPECT_EQ(read.sopInstanceUID, "2.25.3");
    EXPECT_EQ(read.sopClassUID, UID_DigitalIntraOralXRayImageStorageForPresentation);
    EXPECT_EQ(read.instanceNumber, 12);
    EXPECT_EQ(read.columns, 60);
    EXPECT_EQ(read.rows, 40);
    EXPECT_DOUBLE_EQ(read.rowSpacing_mm, 0.05);
    EXPECT_DOUBLE_EQ(read.columnSpacing_mm, 0.0254);
    EXPECT_EQ(read.dpiX, 1000);
    EXPECT_EQ(read.dpiY, 508);
    EXPECT_DOUBLE_EQ(read.kvp, 65.5);
    EXPECT_DOUBLE_EQ(read.tubeCurrent_mA, 7);
    EXPECT_DOUBLE_EQ(read.exposureTime_ms, 120);
    EXPECT_EQ(read.manufacturer, "Maker");
    EXPECT_EQ(read.model, "Sensor");
    EXPECT_EQ(read.serialNumber, "SN5");
    EXPECT_EQ(read.bodyPartExamined, "JAW");
}

TEST_F(DicomFile, MissingValuesAreEmptyOrZero) {
    const RadiographFile read = Read();
    for (const std::string& text : {read.patientID, read.patientName, read.givenName, read.birthDate,
                                    read.studyDateTime, read.acquisitionDateTime, read.teeth, read.region,
                                    read.regionModifier, read.regionText, read.laterality, read.modality})
        EXPECT_EQ(text, "");
    EXPECT_EQ(read.dpiX, 0);
    EXPECT_EQ(read.dpiY, 0);
    EXPECT_EQ(read.kvp, 0);
    EXPECT_EQ(read.instanceNumber, 0);
    EXPECT_TRUE(read.otherPatientIDs.empty() && read.physiciansOfRecord.empty());
}

TEST_F(DicomFile, PrefersCalibratedSpacingAndFinerExposureValues) {
    Put(set, DCM_PixelSpacing, "0.127\\0.127");
    Put(set, DCM_ImagerPixelSpacing, "0.2\\0.2");
    Put(set, DCM_XRayTubeCurrent, "8");
    Put(set, DCM_XRayTubeCurrentInuA, "7500");
    Put(set, DCM_ExposureTimeInuS, "80500");
    const RadiographFile read = Read();
    EXPECT_EQ(read.dpiX, 200);
    EXPECT_DOUBLE_EQ(read.tubeCurrent_mA, 7.5);
    EXPECT_DOUBLE_EQ(read.exposureTime_ms, 80.5);
}

TEST_F(DicomFile, NonsenseNumbersCountAsNotSaid) {
    Put(set, DCM_InstanceNumber, "99999999999");
    Put(set, DCM_KVP, "high");
    Put(set, DCM_ImagerPixelSpacing, "-1\\0");
    const RadiographFile read = Read();
    EXPECT_EQ(read.instanceNumber, 0);
    EXPECT_EQ(read.kvp, 0);
    EXPECT_EQ(read.dpiX, 0);
    EXPECT_EQ(read.rowSpacing_mm, 0);
}

TEST_F(DicomFile, ReadsOldAndOddDatesAndTimes) {
    struct Case {
        const char *day, *time, *expected;
    };
    for (const Case& c :
         {Case{"2001.02.03", "04:05:06", "2001-02-03 04:05:06"}, Case{"20010203", "", "2001-02-03 00:00:00"},
          Case{"20010203", "07", "2001-02-03 07:00:00"}, Case{"20010203", "235960", "2001-02-03 23:59:59"},
          Case{"20010203", "250000", "2001-02-03 00:00:00"}, Case{"20010229", "101010", ""},
          Case{"20011301", "101010", ""}, Case{"2001", "101010", ""}}) {
        Put(set, DCM_StudyDate, c.day);
        Put(set, DCM_StudyTime, c.time);
        EXPECT_EQ(Read().studyDateTime, c.expected) << c.day << " " << c.time;
    }
}

TEST_F(DicomFile, AcquisitionTimeFallsBackStepByStep) {
    Put(set, DCM_StudyDate, "20240101");
    EXPECT_EQ(Read().acquisitionDateTime, "2024-01-01 00:00:00");
    Put(set, DCM_SeriesDate, "20240102");
    EXPECT_EQ(Read().acquisitionDateTime, "2024-01-02 00:00:00");
    Put(set, DCM_ContentDate, "20240103");
    EXPECT_EQ(Read().acquisitionDateTime, "2024-01-03 00:00:00");
    Put(set, DCM_AcquisitionDate, "20240104");
    EXPECT_EQ(Read().acquisitionDateTime, "2024-01-04 00:00:00");
    Put(set, DCM_AcquisitionDateTime, "20240105101112.5+0100");
    EXPECT_EQ(Read().acquisitionDateTime, "2024-01-05 10:11:12");
}

TEST(PersonName, TakesTheFirstWritingThatHasAText) {
    EXPECT_EQ(SplitPersonName("Yamada^Tarou=山田^太郎").family, "Yamada");
    EXPECT_EQ(SplitPersonName("=山田^太郎").family, "山田");
    EXPECT_EQ(SplitPersonName("=山田^太郎").given, "太郎");
    EXPECT_EQ(SplitPersonName("Only").family, "Only");
    EXPECT_EQ(SplitPersonName("Only").given, "");
    EXPECT_EQ(SplitPersonName("^Given").given, "Given");
    EXPECT_EQ(SplitPersonName("").family, "");
}

TEST_F(DicomFile, ReadsEveryUncompressedTransferSyntax) {
    Teeth({11});
    for (const E_TransferSyntax syntax : {EXS_LittleEndianImplicit, EXS_LittleEndianExplicit, EXS_BigEndianExplicit})
        EXPECT_EQ(ReadRadiograph(Saved(syntax)).teeth, "11,") << syntax;
}

// ------------------------------------------------------------------------------------------ character sets

TEST_F(DicomFile, ConvertsNamesFromTheFilesCharacterSet) {
    struct Case {
        const char *set, *bytes, *name;
    };
    for (const Case& c :
         {Case{"ISO_IR 100", "M\xFCller^J\xFCrgen", "Müller^Jürgen"},
          Case{"ISO_IR 101",
               "W\xB3"
               "adys\xB3"
               "aw",
               "Władysław"},
          Case{"ISO_IR 126", "\xC4\xE9\xEF\xED\xF5\xF3\xE9\xEF\xF2", "Διονυσιος"},
          Case{"ISO_IR 144", "\xBF\xD5\xE2\xE0\xDE\xD2^\xB8\xD2\xD0\xDD", "Петров^Иван"},
          Case{"ISO_IR 192", "Wang^XiaoDong=王^小東", "Wang^XiaoDong=王^小東"},
          Case{"\\ISO 2022 IR 87", "Yamada^Tarou=\x1b$B;3ED\x1b(B^\x1b$BB@O:\x1b(B", "Yamada^Tarou=山田^太郎"}}) {
        Put(set, DCM_SpecificCharacterSet, c.set);
        Put(set, DCM_PatientName, c.bytes);
        EXPECT_EQ(Read().patientName, c.name) << c.set;
    }
}

TEST_F(DicomFile, ConvertsDescriptionsAndTextsInItems) {
    Put(set, DCM_SpecificCharacterSet, "ISO_IR 100");
    Put(set, DCM_SeriesDescription, "Z\xE4hne");
    AddCode(set, DCM_AnatomicRegionSequence, "123851003", "Z\xE4hne und Kiefer");
    EXPECT_EQ(Read().seriesDescription, "Zähne");
    EXPECT_EQ(Read().regionText, "Zähne und Kiefer");
}

// ------------------------------------------------------------------------------------------------ anatomy

TEST_F(DicomFile, ListsTeethInOrderWithoutDoubles) {
    Teeth({47, 16, 85, 17, 16});
    AddCode(set, DCM_PrimaryAnatomicStructureSequence, "38199008");
    EXPECT_EQ(Read().teeth, "16,17,47,85,");
}

TEST_F(DicomFile, ReadsTeethOfAllCodeGenerations) {
    Teeth({11}, CodeGeneration::Current);
    Teeth({12}, CodeGeneration::Previous);
    Teeth({13}, CodeGeneration::Srt);
    AddCode(set, DCM_PrimaryAnatomicStructureSequence, "T-54292");
    EXPECT_EQ(Read().teeth, "11,12,13,21,");
}

TEST_F(DicomFile, ReadsTeethNestedInTheRegion) {
    DcmItem& region = AddCode(set, DCM_AnatomicRegionSequence, "70925003");
    AddCode(region, DCM_PrimaryAnatomicStructureSequence, CodeOfTooth(15).value);
    Teeth({14});
    EXPECT_EQ(Read().teeth, "14,15,");
    EXPECT_EQ(Read().region, "T-11170");
}

TEST_F(DicomFile, ReadsRegionAndModifier) {
    DcmItem& region = AddCode(set, DCM_AnatomicRegionSequence, "91609006");
    AddCode(region, DCM_AnatomicRegionModifierSequence, "699507006");
    const RadiographFile read = Read();
    EXPECT_EQ(read.region, "T-11180");
    EXPECT_EQ(read.regionModifier, "T-5100A");
    EXPECT_EQ(read.regionText, "");
}

TEST_F(DicomFile, AnUnknownRegionIsKeptInWords) {
    AddCode(set, DCM_AnatomicRegionSequence, "123851003", "Mouth");
    EXPECT_EQ(Read().region, "");
    EXPECT_EQ(Read().regionText, "Mouth");
}

TEST_F(DicomFile, ARegionThatNamesNoJawYieldsToListedTeeth) {
    AddCode(set, DCM_AnatomicRegionSequence, "28035005", "Teeth, gums and supporting structures");
    EXPECT_EQ(Read().region, "T-54000");
    Teeth({16});
    EXPECT_EQ(Read().region, "");
}

/// The region and side that remain after the comparison with the teeth of the picture.
struct Contradiction {
    const char* name;
    std::vector<int> teeth;
    const char *region, *side, *expectedRegion, *expectedSide;
};

/// Names a case in the list of tests.
void PrintTo(const Contradiction& contradiction, std::ostream* out) { *out << contradiction.name; }

class Contradictions : public DicomFile, public testing::WithParamInterface<Contradiction> {};

TEST_P(Contradictions, TheTeethWin) {
    for (const int tooth : GetParam().teeth) Teeth({tooth});
    AddCode(set, DCM_AnatomicRegionSequence, GetParam().region);
    Put(set, DCM_ImageLaterality, GetParam().side);
    EXPECT_EQ(Read().region, GetParam().expectedRegion);
    EXPECT_EQ(Read().laterality, GetParam().expectedSide);
}

INSTANTIATE_TEST_SUITE_P(Cases, Contradictions,
                         testing::Values(Contradiction{"Agreeing", {16, 17}, "70925003", "R", "T-11170", "R"},
                                         Contradiction{"BothJawsForOne", {16, 17}, "661005", "R", "", "R"},
                                         Contradiction{"OldBothJawsForOne", {46}, "T-D1217", "R", "", "R"},
                                         Contradiction{"OldBothJawsForBoth", {16, 46}, "T-D1217", "R", "T-D1217", "R"},
                                         Contradiction{"UpperForLower", {36}, "70925003", "L", "", "L"},
                                         Contradiction{"UpperForBoth", {26, 36}, "70925003", "L", "", "L"},
                                         Contradiction{"LowerForUpper", {55}, "91609006", "R", "", "R"},
                                         Contradiction{"RightForLeft", {26}, "70925003", "R", "T-11170", ""},
                                         Contradiction{"LeftForRight", {84}, "91609006", "L", "T-11180", ""},
                                         Contradiction{"BothForLeft", {26}, "70925003", "B", "T-11170", ""},
                                         Contradiction{"BothForRight", {16}, "70925003", "B", "T-11170", ""},
                                         Contradiction{"BothForBoth", {11, 21}, "70925003", "B", "T-11170", "B"},
                                         Contradiction{
                                             "RightAcrossMidline", {11, 12, 21}, "70925003", "R", "T-11170", "R"},
                                         Contradiction{"SkullWithTeeth", {11, 41}, "89546000", "L", "T-11100", ""},
                                         Contradiction{"NoTeeth", {}, "661005", "R", "T-D1213", "R"},
                                         Contradiction{"Unpaired", {11, 21}, "70925003", "U", "T-11170", ""}),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(DicomFile, LateralityFallsBackOnTheSeries) {
    Put(set, DCM_Laterality, "L");
    EXPECT_EQ(Read().laterality, "L");
    Put(set, DCM_ImageLaterality, "R");
    EXPECT_EQ(Read().laterality, "R");
}

// ---------------------------------------------------------------------------------------------- refusals

TEST_F(DicomFile, RejectsANameThatIsNotAFile) {
    EXPECT_EQ(WhyNot(folder), "is a folder");
    EXPECT_EQ(WhyNot(folder / "none.dcm"), "cannot be read: No such file or directory");
    EXPECT_EQ(WhyNot(Holding("")), "the file is empty");
}

TEST_F(DicomFile, RejectsAFileThatIsNotDicom) {
    EXPECT_EQ(WhyNot(Holding("This is a text, whatever its name says.\n")), "not a DICOM file");
    EXPECT_EQ(WhyNot(Holding(std::string(5000, '\0'))), "not a DICOM file");
    EXPECT_EQ(WhyNot(Holding("\x89PNG\r\n\x1a\n" + std::string(400, 'x'))), "not a DICOM file");
}

TEST_F(DicomFile, RejectsADicomdir) {
    Item(set, DCM_DirectoryRecordSequence);
    EXPECT_EQ(WhyNot(Saved()), "a DICOMDIR, which lists files and holds no picture");
}

TEST_F(DicomFile, RejectsObjectsWithoutIdentityOrPixels) {
    const auto without = [&](const DcmTagKey& tag, const std::string& why) {
        DcmElement* element = nullptr;
        set.findAndGetElement(tag, element, OFFalse, OFTrue);
        set.findAndDeleteElement(tag);
        // Files of this kind come from writers that do not check what they write.
        EXPECT_TRUE(set.saveFile(path.c_str(), EXS_LittleEndianExplicit).good());
        EXPECT_EQ(WhyNot(path), why);
        set.insert(element);
    };
    without(DCM_SOPInstanceUID, "no SOP Instance UID");
    without(DCM_StudyInstanceUID, "no Study Instance UID");
    without(DCM_SeriesInstanceUID, "no Series Instance UID");
    without(DCM_PixelData, "no pixel data");
    without(DCM_Rows, "no picture size: Rows or Columns is missing");
    EXPECT_EQ(WhyNot(Saved()), "");
}

TEST_F(DicomFile, RejectsFewerPixelsThanRowsAndColumnsAskFor) {
    set.putAndInsertUint16(DCM_Rows, 41);
    EXPECT_EQ(WhyNot(Saved()), "file is cut short: fewer pixels than its 41 rows of 60");
}

TEST_F(DicomFile, RejectsEveryFileThatEndsEarly) {
    Teeth({46, 47});
    const std::string bytes = SavedBytes();
    ASSERT_GT(bytes.size(), 2400u);
    for (std::size_t length = 0; length < bytes.size(); ++length)
        ASSERT_NE(WhyNot(Holding(bytes.substr(0, length))), "") << "first " << length << " bytes";
    EXPECT_EQ(WhyNot(Holding(bytes)), "");
}

TEST_F(DicomFile, ReportsAFileThatIsCutShortInItsPixels) {
    SetPixels(500, 500);
    const std::string bytes = SavedBytes();
    for (const std::size_t missing : {1u, 1000u, 200000u})
        EXPECT_TRUE(WhyNot(Holding(bytes.substr(0, bytes.size() - missing))).starts_with("file is cut short: "))
            << WhyNot(path);
}

TEST_F(DicomFile, RejectsEveryCompressedFileThatEndsEarly) {
    auto* pixels = new DcmPixelData(DCM_PixelData);
    auto* fragments = new DcmPixelSequence(DcmTag(DCM_PixelData, EVR_OB));
    for (const std::size_t size : {0u, 900u}) {
        auto* fragment = new DcmPixelItem(DcmTag(DCM_Item, EVR_OB));
        const std::vector<Uint8> stream(size, 0x55);
        if (size > 0) fragment->putUint8Array(stream.data(), static_cast<unsigned long>(size));
        fragments->insert(fragment);
    }
    pixels->putOriginalRepresentation(EXS_JPEGProcess1, nullptr, fragments);
    set.insert(pixels, OFTrue);
    std::ifstream in(Saved(EXS_JPEGProcess1), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(WhyNot(Holding(bytes)), "");
    for (std::size_t length = 0; length < bytes.size(); ++length)
        ASSERT_NE(WhyNot(Holding(bytes.substr(0, length))), "") << "first " << length << " bytes";
}

}  // namespace
}  // namespace Console

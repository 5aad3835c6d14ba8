#include "console/dicom/DicomFile.h"

#include "anatomy/RegionCodes.h"
#include "console/dicom/DicomCodes.h"
#include "console/dicom/DicomValues.h"
#include "console/dicom/RefuseFile.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <set>
#include <stdexcept>

namespace Console {
namespace {

namespace RegionCode = OXClass::RegionCode;

/// Values longer than this many bytes are read only when they are used.
constexpr Uint32 LongestValueRead = 64 * 1024;

std::string PointInTime(std::string_view day, std::string_view time) {
    const std::string date = DayText(day);
    return date.empty() ? date : date + " " + TimeText(time);
}

/// Returns day and time of a value that contains both. Ignores the time zone, if there is one.
std::string PointInTime(std::string_view both) {
    const std::string_view local = both.substr(0, both.find_first_of("+-"));
    if (local.size() < 8) return {};
    return PointInTime(local.substr(0, 8), local.substr(8));
}

// ------------------------------------------------------------------------------------------ the file

/// Returns a number that DICOM stores in two bytes; 0 if it is absent.
int Binary(DcmItem& item, const DcmTagKey& tag) {
    Uint16 number = 0;
    return item.findAndGetUint16(tag, number).good() ? number : 0;
}

/// Fills a `RadiographFile` from a data set, one subject an operation.
class Describer {
public:
    explicit Describer(DcmItem& dataset) : set(dataset), values(dataset) {}

    RadiographFile Describe() {
        Patient();
        Study();
        Series();
        Image();
        Exposure();
        Anatomy();
        Device();
        return std::move(file);
    }

private:
    std::string Text(const DcmTagKey& tag) { return values.Text(set, tag); }

    void Patient() {
        file.patientID = Text(DCM_PatientID);
        file.issuer = Text(DCM_IssuerOfPatientID);
        file.patientName = Text(DCM_PatientName);
        const PersonName name = SplitPersonName(file.patientName);
        file.familyName = name.family;
        file.givenName = name.given;
        file.sex = Text(DCM_PatientSex);
        file.birthDate = DayText(Text(DCM_PatientBirthDate));
        for (const std::string& id : values.OtherPatientIDs(set)) AddOtherID(id);
    }

    void AddOtherID(const std::string& id) {
        std::vector<std::string>& ids = file.otherPatientIDs;
        if (!id.empty() && std::ranges::find(ids, id) == ids.end()) ids.push_back(id);
    }

    void Study() {
        file.studyUID = Text(DCM_StudyInstanceUID);
        file.studyID = Text(DCM_StudyID);
        file.studyDateTime = PointInTime(Text(DCM_StudyDate), Text(DCM_StudyTime));
        file.studyDescription = Text(DCM_StudyDescription);
        file.accessionNumber = Text(DCM_AccessionNumber);
        file.referringPhysician = Text(DCM_ReferringPhysicianName);
        file.physiciansOfRecord = values.Texts(set, DCM_PhysiciansOfRecord);
    }

    void Series() {
        file.seriesUID = Text(DCM_SeriesInstanceUID);
        file.seriesNumber = values.Whole(set, DCM_SeriesNumber);
        file.seriesDateTime = PointInTime(Text(DCM_SeriesDate), Text(DCM_SeriesTime));
        file.seriesDescription = Text(DCM_SeriesDescription);
        file.modality = Text(DCM_Modality);
        file.operatorsName = Text(DCM_OperatorsName);
    }

    void Image() {
        file.sopInstanceUID = Text(DCM_SOPInstanceUID);
        file.sopClassUID = Text(DCM_SOPClassUID);
        file.instanceNumber = values.Whole(set, DCM_InstanceNumber);
        file.acquisitionDateTime = AcquisitionDateTime();
        file.rows = Binary(set, DCM_Rows);
        file.columns = Binary(set, DCM_Columns);
        const std::string meaning = Text(DCM_PhotometricInterpretation);
        file.colour = !meaning.empty() && !meaning.starts_with("MONOCHROME");
        const DcmTagKey& spacing = values.Number(set, DCM_PixelSpacing) > 0 ? DCM_PixelSpacing : DCM_ImagerPixelSpacing;
        file.rowSpacing_mm = std::max(0.0, values.Number(set, spacing, 0));
        file.columnSpacing_mm = std::max(0.0, values.Number(set, spacing, 1));
        file.dpiX = DotsPerInch(file.columnSpacing_mm);
        file.dpiY = DotsPerInch(file.rowSpacing_mm);
    }

    std::string AcquisitionDateTime() {
        const std::string candidates[] = {PointInTime(Text(DCM_AcquisitionDateTime)),
                                          PointInTime(Text(DCM_AcquisitionDate), Text(DCM_AcquisitionTime)),
                                          PointInTime(Text(DCM_ContentDate), Text(DCM_ContentTime)),
                                          file.seriesDateTime, file.studyDateTime};
        const auto known = std::ranges::find_if(candidates, [](const auto& text) { return !text.empty(); });
        return known == std::end(candidates) ? std::string() : *known;
    }

    static int DotsPerInch(double spacing) {
        const double dots = spacing > 0 ? 25.4 / spacing : 0;
        return dots < 1e6 ? static_cast<int>(std::lround(dots)) : 0;
    }

    void Exposure() {
        file.kvp = values.Number(set, DCM_KVP);
        file.tubeCurrent_mA = InMilli(DCM_XRayTubeCurrent, DCM_XRayTubeCurrentInuA);
        file.exposureTime_ms = InMilli(DCM_ExposureTime, DCM_ExposureTimeInuS);
    }

    /// Returns a quantity that a file states in milli units, rounded to whole ones, or finer in micro units.
    double InMilli(const DcmTagKey& milli, const DcmTagKey& micro) {
        const double fine = values.Number(set, micro) / 1000;
        return fine > 0 ? fine : values.Number(set, milli);
    }

    void Anatomy() {
        std::set<int> teeth;
        CollectTeeth(set, teeth);
        EachItem(set, DCM_AnatomicRegionSequence, [&](DcmItem& item) {
            CollectTeeth(item, teeth);
            Region(item);
        });
        file.teeth = ToothString(teeth);
        file.bodyPartExamined = Text(DCM_BodyPartExamined);
        file.laterality = Laterality();
        DropContradictions(teeth);
    }

    void CollectTeeth(DcmItem& parent, std::set<int>& teeth) {
        EachItem(parent, DCM_PrimaryAnatomicStructureSequence, [&](DcmItem& item) {
            const int tooth = ToothOfCode(values.Text(item, DCM_CodeValue));
            if (tooth != 0) teeth.insert(tooth);
        });
    }

    void Region(DcmItem& item) {
        const std::string region = RegionOfCode(values.Text(item, DCM_CodeValue));
        if (file.region.empty()) file.region = region;
        if (region.empty() && file.regionText.empty()) file.regionText = values.Text(item, DCM_CodeMeaning);
        EachItem(item, DCM_AnatomicRegionModifierSequence, [&](DcmItem& modifier) {
            const std::string code = RegionModifierOfCode(values.Text(modifier, DCM_CodeValue));
            if (file.regionModifier.empty()) file.regionModifier = code;
        });
    }

    /// Of the image, else of the series. "U", unpaired, says nothing about a side.
    std::string Laterality() {
        for (const DcmTagKey& tag : {DCM_ImageLaterality, DCM_Laterality}) {
            std::string side = Text(tag);
            if (side == "L" || side == "R" || side == "B") return side;
        }
        return {};
    }

    /// Removes a region and a side that contradict the teeth. Programs list the teeth one by one, but often leave the
    /// region and the side of the previous picture. A jaw region must be the region of the teeth, and a stated side
    /// must have one of them: a film across the midline may have either side, and "B" requires teeth on both sides.
    void DropContradictions(const std::set<int>& teeth) {
        if (teeth.empty()) return;
        const bool upper = std::ranges::any_of(teeth, IsUpperTooth);
        const bool lower = !std::ranges::all_of(teeth, IsUpperTooth);
        const bool right = std::ranges::any_of(teeth, IsRightTooth);
        const bool left = !std::ranges::all_of(teeth, IsRightTooth);
        const std::string& region = file.region;
        const bool bothJaws = region == RegionCode::BothJaws || region == RegionCode::BothJawsOld;
        const bool noJaw = region == RegionCode::Teeth;  // this region would prevent hanging from deriving the jaw
        if (noJaw || (bothJaws && !(upper && lower)) || (region == RegionCode::UpperJaw && lower) ||
            (region == RegionCode::LowerJaw && upper))
            file.region.clear();
        const std::string& side = file.laterality;
        if ((side != "L" && !side.empty() && !right) || (side != "R" && !side.empty() && !left))
            file.laterality.clear();
    }

    void Device() {
        file.manufacturer = Text(DCM_Manufacturer);
        file.model = Text(DCM_ManufacturerModelName);
        file.serialNumber = Text(DCM_DeviceSerialNumber);
    }

    DcmItem& set;
    Values values;
    RadiographFile file;
};

// ------------------------------------------------------------------------------------------- checking

/// The first and the last bytes of a file.
struct Ends {
    std::string first;  ///< 132 bytes, enough for the mark; less in a shorter file
    std::string last;   ///< 8 bytes

    /// Returns true if the file starts as DICOM files with a preamble do.
    bool Marked() const { return first.size() == 132 && first.substr(128) == "DICM"; }

    /// Returns true if the file ends with the mark that closes compressed pixels.
    bool Closed() const { return last == std::string_view("\xFE\xFF\xDD\xE0\0\0\0\0", 8); }
};

void CheckLoaded(const OFCondition& loaded, bool marked) {
    if (loaded.good()) return;
    if (!marked) throw NotDicom("not a DICOM file");
    const bool ended = loaded == EC_StreamNotifyClient || loaded == EC_EndOfStream ||
                       loaded == EC_SequDelimitationItemMissing || loaded == EC_InvalidStream;
    if (ended) RefuseFile("file is cut short: it ends inside a value");
    RefuseFile(std::string("damaged DICOM file: ") + loaded.text());
}

/// Returns the paths that the records of a DICOMDIR name: their components are the values of one attribute.
std::vector<std::string> ListedFiles(DcmDataset& directory) {
    std::vector<std::string> files;
    EachItem(directory, DCM_DirectoryRecordSequence, [&](DcmItem& record) {
        OFString path;
        if (record.findAndGetOFStringArray(DCM_ReferencedFileID, path).bad() || path.empty()) return;
        std::string file;
        for (const std::string& part : Split(path.c_str(), '\\')) file += (file.empty() ? "" : "/") + Trimmed(part);
        if (std::ranges::find(files, file) == files.end()) files.push_back(file);
    });
    return files;
}

/// Returns true for a known kind of DICOM object that isn't an image. Objects of unknown kinds may be damaged images.
bool HasNoPictureByKind(DcmDataset& set) {
    OFString kind;
    if (set.findAndGetOFString(DCM_SOPClassUID, kind).bad()) return false;
    return dcmIsaStorageSOPClassUID(kind.c_str()) && !dcmIsImageStorageSOPClassUID(kind.c_str());
}

void CheckIsImage(DcmFileFormat& file, bool marked) {
    DcmDataset& set = *file.getDataset();
    if (set.tagExists(DCM_DirectoryRecordSequence)) throw DicomDirectory(ListedFiles(set));
    if (!marked && !set.tagExists(DCM_SOPClassUID)) throw NotDicom("not a DICOM file");
    if (set.tagExists(DCM_PixelData)) return;
    if (HasNoPictureByKind(set)) throw NotAPicture("a DICOM object of a kind without picture");
    RefuseFile("no pixel data");
}

void CheckIdentified(const RadiographFile& file) {
    if (file.sopInstanceUID.empty()) RefuseFile("no SOP Instance UID");
    if (file.studyUID.empty()) RefuseFile("no Study Instance UID");
    if (file.seriesUID.empty()) RefuseFile("no Series Instance UID");
}

/// Throws if the number of uncompressed gray pixels is not that of rows and columns.
void CheckPixelLength(DcmDataset& set, const RadiographFile& file) {
    if (file.rows <= 0 || file.columns <= 0) RefuseFile("no picture size: Rows or Columns is missing");
    DcmElement* pixels = nullptr;
    const bool gray = Binary(set, DCM_SamplesPerPixel) == 1;
    if (!gray || DcmXfer(set.getOriginalXfer()).isEncapsulated()) return;
    if (set.findAndGetElement(DCM_PixelData, pixels).bad()) return;
    const double needed = std::ceil(1.0 * file.rows * file.columns * Binary(set, DCM_BitsAllocated) / 8);
    if (pixels->getLengthField() < needed)
        RefuseFile("file is cut short: fewer pixels than its " + std::to_string(file.rows) + " rows of " +
                   std::to_string(file.columns));
}

/// Throws for compressed pixels that are cut short. The toolkit does not report pixels that end between two fragments.
void CheckPixelsClosed(DcmDataset& set, const Ends& ends) {
    const bool last = set.getElement(set.card() - 1)->getTag() == DCM_PixelData;
    if (last && DcmXfer(set.getOriginalXfer()).isEncapsulated() && !ends.Closed())
        RefuseFile("file is cut short: its compressed pixels have no end");
}

RadiographFile DescribeChecked(DcmFileFormat& file, const OFCondition& loaded, const Ends& ends) {
    CheckLoaded(loaded, ends.Marked());
    RequireShallow(*file.getDataset());
    CheckIsImage(file, ends.Marked());
    RadiographFile described = Describer(*file.getDataset()).Describe();
    CheckIdentified(described);
    CheckPixelLength(*file.getDataset(), described);
    CheckPixelsClosed(*file.getDataset(), ends);
    return described;
}

std::string BytesAt(std::istream& in, std::streamoff position, std::size_t count) {
    std::string bytes(count, '\0');
    in.clear();
    in.seekg(position);
    in.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

Ends EndsOf(const std::filesystem::path& path) {
    std::error_code unknown;
    if (std::filesystem::is_directory(path, unknown)) RefuseFile("is a folder");
    std::ifstream in(path, std::ios::binary);
    if (!in) RefuseFile(std::string("cannot be read: ") + std::strerror(errno));
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    if (size <= 0) throw NotDicom("the file is empty");
    return {BytesAt(in, 0, 132), BytesAt(in, std::max<std::streamoff>(0, size - 8), 8)};
}

}  // namespace

void SilenceToolkit() {
    static const bool once = [] {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);
        return true;
    }();
    static_cast<void>(once);
}

PersonName SplitPersonName(const std::string& name) {
    for (const std::string& writing : Split(name, '=')) {
        std::vector<std::string> parts = Split(writing, '^');
        parts.resize(std::max<std::size_t>(parts.size(), 3));
        PersonName person{parts[0], Trimmed(parts[1] + " " + parts[2])};
        if (!person.family.empty() || !person.given.empty()) return person;
    }
    return {};
}

RadiographFile ReadRadiograph(const std::filesystem::path& path) {
    SilenceToolkit();
    const Ends ends = EndsOf(path);
    DcmFileFormat file;
    const OFCondition loaded = file.loadFile(path.c_str(), EXS_Unknown, EGL_noChange, LongestValueRead);
    return DescribeChecked(file, loaded, ends);
}

}  // namespace Console

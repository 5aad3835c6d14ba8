#include "DicomWriter.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcspchrs.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <stdexcept>

namespace Samples {
namespace {

using Console::DicomCode;

void Check(const OFCondition& result, const std::string& what) {
    if (result.bad()) throw std::runtime_error(what + ": " + result.text());
}

/// Puts values into one DICOM file, one module after the other.
class Writer {
public:
    explicit Writer(const Radiograph& radiograph) : about(radiograph), set(*file.getDataset()) {}

    void Common() {
        Put(DCM_SpecificCharacterSet, about.characterSet);
        Put(DCM_SOPInstanceUID, UidOf("instance " + about.instanceName));
        Put(DCM_InstanceNumber, std::to_string(about.instanceNumber));
        Patient();
        Study();
        Series();
        Equipment();
    }

    void Image(const Picture& picture) {
        const bool dental = about.kind == Kind::IntraOral;
        Put(DCM_SOPClassUID,
            dental ? UID_DigitalIntraOralXRayImageStorageForPresentation : UID_DigitalXRayImageStorageForPresentation);
        Put(DCM_PresentationIntentType, "FOR PRESENTATION");
        Put(DCM_ImageType, "ORIGINAL\\PRIMARY\\");
        Put(DCM_AcquisitionDate, about.day);
        Put(DCM_AcquisitionTime, TimeOf(about.minute));
        Put(DCM_ContentDate, about.day);
        Put(DCM_ContentTime, TimeOf(about.minute));
        Put(DCM_PatientOrientation, Orientation());
        Put(DCM_BurnedInAnnotation, "NO");
        Put(DCM_LossyImageCompression, "00");
        Pixels(picture);
        Acquisition(picture);
        Anatomy();
    }

    void Report() {
        Put(DCM_SOPClassUID, UID_BasicTextSRStorage);
        Put(DCM_ContentDate, about.day);
        Put(DCM_ContentTime, TimeOf(about.minute));
        Put(DCM_ValueType, "CONTAINER");
        Put(DCM_ContinuityOfContent, "SEPARATE");
        Put(DCM_CompletionFlag, "PARTIAL");
        Put(DCM_VerificationFlag, "UNVERIFIED");
        PutCode(set, DCM_ConceptNameCodeSequence, 0, {"121070", "DCM", "Findings"});
        DcmItem& line = Item(set, DCM_ContentSequence, 0);
        PutIn(line, DCM_RelationshipType, "CONTAINS");
        PutIn(line, DCM_ValueType, "TEXT");
        PutCode(line, DCM_ConceptNameCodeSequence, 0, {"121071", "DCM", "Finding"});
        PutIn(line, DCM_TextValue, "A report, not a picture.");
    }

    void Save(const std::filesystem::path& path) {
        for (const std::string& keyword : about.leftOut) {
            DcmTag tag;
            Check(DcmTag::findTagFromName(keyword.c_str(), tag), "attribute " + keyword);
            Check(set.findAndDeleteElement(tag), "leaving out " + keyword);
        }
        Check(file.saveFile(path.c_str(), EXS_LittleEndianExplicit, EET_ExplicitLength), "cannot write");
    }

    void SetModality(const char* modality) { Put(DCM_Modality, modality); }

private:
    void Put(const DcmTagKey& tag, const std::string& value) { PutIn(set, tag, value); }

    static void PutIn(DcmItem& item, const DcmTagKey& tag, const std::string& value) {
        Check(item.putAndInsertOFStringArray(tag, OFString(value.data(), value.size())),
              std::string("value of ") + DcmTag(tag).getTagName());
    }

    void PutNumber(const DcmTagKey& tag, int value) {
        Check(set.putAndInsertUint16(tag, static_cast<Uint16>(value)), DcmTag(tag).getTagName());
    }

    static DcmItem& Item(DcmItem& parent, const DcmTagKey& sequence, int position) {
        DcmItem* item = nullptr;
        Check(parent.findOrCreateSequenceItem(sequence, item, position), DcmTag(sequence).getTagName());
        return *item;
    }

    static void PutCode(DcmItem& parent, const DcmTagKey& sequence, int position, const DicomCode& code) {
        DcmItem& item = Item(parent, sequence, position);
        PutIn(item, DCM_CodeValue, code.value);
        PutIn(item, DCM_CodingSchemeDesignator, code.scheme);
        PutIn(item, DCM_CodeMeaning, code.meaning);
    }

    static std::string TimeOf(int minute) {
        const int total = 9 * 60 + 15 + minute;
        char text[16];
        std::snprintf(text, sizeof text, "%02d%02d00", total / 60 % 24, total % 60);
        return text;
    }

    void Patient() {
        Put(DCM_PatientID, about.patientID);
        Put(DCM_IssuerOfPatientID, "SAMPLES");
        Put(DCM_PatientName, about.patientName);
        Put(DCM_PatientBirthDate, about.birthDate);
        Put(DCM_PatientSex, about.sex);
    }

    void Study() {
        Put(DCM_StudyInstanceUID, UidOf("study " + about.studyName));
        Put(DCM_StudyDate, about.day);
        Put(DCM_StudyTime, TimeOf(0));
        Put(DCM_StudyID, "1");
        Put(DCM_StudyDescription, about.studyDescription);
        Put(DCM_AccessionNumber, "");
        Put(DCM_ReferringPhysicianName, "Test^Referrer");
    }

    void Series() {
        constexpr const char* modalities[] = {"IO", "PX", "DX"};
        Put(DCM_SeriesInstanceUID, UidOf("series " + about.seriesName));
        Put(DCM_Modality, modalities[static_cast<int>(about.kind)]);
        Put(DCM_SeriesNumber, "1");
        Put(DCM_SeriesDate, about.day);
        Put(DCM_SeriesTime, TimeOf(0));
        Put(DCM_SeriesDescription, about.seriesDescription);
        Put(DCM_OperatorsName, "Test^Operator");
    }

    void Equipment() {
        constexpr const char* models[] = {"Drawn Sensor", "Drawn Panorama", "Drawn Cephalostat"};
        Put(DCM_Manufacturer, "Samples");
        Put(DCM_ManufacturerModelName, models[static_cast<int>(about.kind)]);
        Put(DCM_DeviceSerialNumber, "SN-" + std::to_string(1000 + static_cast<int>(about.kind)));
        Put(DCM_SoftwareVersions, "1.0");
    }

    /// Where the rows and the columns of the picture point, seen by the patient.
    std::string Orientation() const {
        if (about.laterality == "L" && about.kind == Kind::IntraOral) return "P\\F";
        if (about.laterality == "L" || about.laterality == "R") return "A\\F";
        return "L\\F";
    }

    void Pixels(const Picture& picture) {
        const bool wide = picture.bits > 8;
        PutNumber(DCM_SamplesPerPixel, 1);
        Put(DCM_PhotometricInterpretation, "MONOCHROME2");
        PutNumber(DCM_Rows, picture.rows);
        PutNumber(DCM_Columns, picture.columns);
        PutNumber(DCM_BitsAllocated, wide ? 16 : 8);
        PutNumber(DCM_BitsStored, picture.bits);
        PutNumber(DCM_HighBit, picture.bits - 1);
        PutNumber(DCM_PixelRepresentation, 0);
        Put(DCM_PixelIntensityRelationship, "LOG");
        Check(set.putAndInsertSint16(DCM_PixelIntensityRelationshipSign, -1), "intensity sign");
        Put(DCM_RescaleIntercept, "0");
        Put(DCM_RescaleSlope, "1");
        Put(DCM_RescaleType, "US");
        Put(DCM_PresentationLUTShape, "IDENTITY");
        Put(DCM_WindowCenter, std::to_string(1 << (picture.bits - 1)));
        Put(DCM_WindowWidth, std::to_string(1 << picture.bits));
        const auto count = static_cast<unsigned long>(picture.pixels.size());
        if (wide) {
            Check(set.putAndInsertUint16Array(DCM_PixelData, picture.pixels.data(), count), "pixels");
        } else {
            const std::vector<Uint8> bytes(picture.pixels.begin(), picture.pixels.end());
            Check(set.putAndInsertUint8Array(DCM_PixelData, bytes.data(), count), "pixels");
        }
    }

    void Acquisition(const Picture& picture) {
        struct Settings {
            const char *kv, *milliampere, *milliseconds, *positioner;
        };
        constexpr Settings all[] = {
            {"65", "7", "120", "NONE"}, {"70", "10", "14100", "NONE"}, {"80", "12", "600", "CEPHALOSTAT"}};
        const Settings& settings = all[static_cast<int>(about.kind)];
        std::string spacing(32, '\0');
        const auto end = std::to_chars(spacing.data(), spacing.data() + spacing.size(), picture.spacing_mm).ptr;
        spacing.resize(static_cast<std::size_t>(end - spacing.data()));
        Put(DCM_ImagerPixelSpacing, spacing + "\\" + spacing);
        Put(DCM_KVP, settings.kv);
        Put(DCM_XRayTubeCurrent, settings.milliampere);
        Put(DCM_ExposureTime, settings.milliseconds);
        Put(DCM_PositionerType, settings.positioner);
        Put(DCM_DetectorType, "SCINTILLATOR");
        Check(set.insertEmptyElement(DCM_AcquisitionContextSequence), "acquisition context");
    }

    void Anatomy() {
        if (!about.laterality.empty()) Put(DCM_ImageLaterality, about.laterality);
        if (about.region.empty()) return;
        PutCode(set, DCM_AnatomicRegionSequence, 0, Console::CodeOfRegion(about.region, about.generation));
        if (!about.regionModifier.empty())
            PutCode(Item(set, DCM_AnatomicRegionSequence, 0), DCM_AnatomicRegionModifierSequence, 0,
                    Console::CodeOfRegionModifier(about.regionModifier));
        for (int i = 0; i < static_cast<int>(about.teeth.size()); ++i)
            PutCode(set, DCM_PrimaryAnatomicStructureSequence, i,
                    Console::CodeOfTooth(about.teeth[static_cast<std::size_t>(i)], about.generation));
    }

    const Radiograph& about;
    DcmFileFormat file;
    DcmDataset& set;
};

}  // namespace

std::string UidOf(std::string_view name) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    return "2.25." + std::to_string(hash);
}

std::string Encoded(const std::string& utf8, const std::string& characterSet) {
    DcmSpecificCharacterSet converter;
    OFString bytes;
    Check(converter.selectCharacterSet("ISO_IR 192", characterSet.c_str()), characterSet);
    Check(converter.convertString(utf8.c_str(), bytes), characterSet);
    return {bytes.data(), bytes.size()};
}

void WriteRadiograph(const Radiograph& about, const Picture& picture, const std::filesystem::path& file) {
    Writer writer(about);
    writer.Common();
    writer.Image(picture);
    writer.Save(file);
}

void WriteReport(const Radiograph& about, const std::filesystem::path& file) {
    Writer writer(about);
    writer.Common();
    writer.Report();
    writer.SetModality("SR");
    writer.Save(file);
}

}  // namespace Samples

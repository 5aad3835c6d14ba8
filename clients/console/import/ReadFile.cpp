#include "console/import/ReadFile.h"

#include "console/Output.h"
#include "console/dicom/DicomPicture.h"
#include "platform/runtime/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Console {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(RadiographFile, patientID, issuer, otherPatientIDs, patientName, familyName,
                                   givenName, sex, birthDate, studyUID, studyID, studyDateTime, studyDescription,
                                   accessionNumber, referringPhysician, physiciansOfRecord, seriesUID, seriesNumber,
                                   seriesDateTime, seriesDescription, modality, operatorsName, sopInstanceUID,
                                   sopClassUID, instanceNumber, acquisitionDateTime, rows, columns, rowSpacing_mm,
                                   columnSpacing_mm, dpiX, dpiY, colour, kvp, tubeCurrent_mA, exposureTime_ms,
                                   laterality, teeth, region, regionModifier, regionText, bodyPartExamined,
                                   manufacturer, model, serialNumber)

namespace {

using nlohmann::json;

/// Rejects a text that isn't a DICOM identifier: the library reads a UID without a dot as the key of a row.
void RequireUid(const std::string& uid, const char* what) {
    constexpr std::size_t longest = 64;
    const bool formed = uid.find_first_not_of("0123456789.") == std::string::npos && Platform::Contains(uid, ".") &&
                        uid.size() <= longest;
    if (!formed) throw UserError(fmt::format("its {} \"{}\" is not a DICOM identifier", what, uid));
}

json Read(const std::string& path) {
    const RadiographFile file = ReadRadiograph(path);
    RequireUid(file.studyUID, "Study Instance UID");
    RequireUid(file.seriesUID, "Series Instance UID");
    RequireUid(file.sopInstanceUID, "SOP Instance UID");
    return {{"file", file}, {"noPicture", WhyNoPicture(path)}};
}

}  // namespace

std::string ReadPacked(const std::string& path) {
    json read;
    try {
        read = Read(path);
    } catch (const DicomDirectory& directory) {
        read = {{"refusal", directory.what()}, {"foreign", true}, {"listed", directory.listed}};
    } catch (const NotAPicture& object) {
        read = {{"refusal", object.what()}, {"foreign", true}, {"object", true}};
    } catch (const NotDicom& foreign) {
        read = {{"refusal", foreign.what()}, {"foreign", true}};
    } catch (const std::exception& refused) {
        read = {{"refusal", refused.what()}};
    }
    std::string bytes;
    json::to_msgpack(read, bytes);
    return bytes;
}

ReadFile Unpacked(const std::string& bytes) {
    const json read = json::from_msgpack(bytes);
    ReadFile result;
    if (read.contains("file")) result.file = read["file"].get<RadiographFile>();
    result.refusal = read.value("refusal", "");
    result.foreign = read.value("foreign", false);
    result.object = read.value("object", false);
    result.listed = read.value("listed", std::vector<std::string>{});
    result.noPicture = read.value("noPicture", "");
    return result;
}

}  // namespace Console

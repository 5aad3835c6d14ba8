#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace Console {

/// The data of a radiograph's DICOM file about the patient, the examination and the picture.
///
/// All texts are UTF-8 without the padding of the file, empty where the file says nothing; numbers are
/// then 0. Days read "YYYY-MM-DD", points in time "YYYY-MM-DD hh:mm:ss" in the time of the place where the
/// picture was taken; a day or time that no calendar knows counts as not said. Person names are as in the
/// file, their parts separated by "^" (see `SplitPersonName`). A plain value: copy it freely.
struct RadiographFile {
    std::string patientID;
    std::string issuer;                        ///< who gave the patient ID; it is unique only with this
    std::vector<std::string> otherPatientIDs;  ///< in the order of the file, no doubles
    std::string patientName;                   ///< whole, with all its parts and writings
    std::string familyName;
    std::string givenName;  ///< first and middle names
    std::string sex;        ///< "M", "F", "O" or empty
    std::string birthDate;

    std::string studyUID;  ///< never empty
    std::string studyID;
    std::string studyDateTime;  ///< midnight when only the day is stated
    std::string studyDescription;
    std::string accessionNumber;
    std::string referringPhysician;
    std::vector<std::string> physiciansOfRecord;

    std::string seriesUID;  ///< never empty
    int seriesNumber = 0;
    std::string seriesDateTime;
    std::string seriesDescription;
    std::string modality;  ///< "IO", "PX", "DX" ...
    std::string operatorsName;

    std::string sopInstanceUID;  ///< never empty
    std::string sopClassUID;
    int instanceNumber = 0;
    std::string acquisitionDateTime;  ///< of acquisition, else content, else series, else study

    int rows = 0;
    int columns = 0;
    bool colour = false;          ///< its pixels have colours, which X-rays don't
    double rowSpacing_mm = 0;     ///< vertical; at the patient if the file states it, otherwise at the sensor
    double columnSpacing_mm = 0;  ///< horizontal, likewise
    int dpiX = 0;                 ///< pixels an inch by `columnSpacing_mm`
    int dpiY = 0;

    double kvp = 0;
    double tubeCurrent_mA = 0;
    double exposureTime_ms = 0;

    std::string laterality;      ///< "L", "R", "B" or empty; empty also when the teeth contradict the file
    std::string teeth;           ///< tooth string, "16,17,": two digits and a comma a tooth, no doubles
    std::string region;          ///< "T-11170" ...; empty also when the teeth contradict the file
    std::string regionModifier;  ///< "T-51005" ... "T-5100C" or empty
    std::string regionText;      ///< the file's own words for a coded region that `region` has no code for
    std::string bodyPartExamined;

    std::string manufacturer;  ///< of the device that took the picture, as are model and serial number
    std::string model;
    std::string serialNumber;
};

/// Keeps the DICOM toolkit's own log off standard error, from the first call on. Any thread may call.
void SilenceToolkit();

/// Family and given name of a DICOM person name.
struct PersonName {
    std::string family;
    std::string given;  ///< first and middle names, separated by a blank
};

/// Splits a DICOM person name into its parts. If the name has several writings, returns the first that has a text,
/// which is the Latin one if it is present. A name without "^" is a family name.
PersonName SplitPersonName(const std::string& name);

/// A file that isn't a DICOM file with data of its own: another format, an empty file, a DICOMDIR.
class NotDicom : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A DICOMDIR, which lists the files of a disc and contains no picture.
class DicomDirectory : public NotDicom {
public:
    explicit DicomDirectory(std::vector<std::string> files)
        : NotDicom("a DICOMDIR, which lists files and holds no picture"), listed(std::move(files)) {}

    std::vector<std::string> listed;  ///< the paths of the files below its folder, with "/", no doubles
};

/// A DICOM object of a kind that has no picture: a presentation state, a report, a PDF.
class NotAPicture : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the radiograph `path` without its pixels.
///
/// Large values stay in the file, so reading takes little memory however large the picture is, and yet a file
/// that ends before its pixels do is rejected. Teeth, regions and modifiers are read in all generations of
/// their codes. A stated region or side that the listed teeth contradict is removed, so that a caller derives it from
/// the teeth. Texts are converted from the file's character set. If the file names none, or if its bytes are not valid
/// in it, a text is read as UTF-8 if it is valid UTF-8, otherwise as Latin-1.
///
/// Throws `std::runtime_error` whose text is one clause, without the path, about the reason: not readable, cut short,
/// sequences nested too deeply (see `RequireShallow`), without one of the three UIDs, without pixels; throws `NotDicom`
/// and `NotAPicture`. Disables the toolkit's own log, which would repeat the reason on standard error. Any thread may
/// call.
RadiographFile ReadRadiograph(const std::filesystem::path& path);

}  // namespace Console

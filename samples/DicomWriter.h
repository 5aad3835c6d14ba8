#pragma once

#include "Drawing.h"
#include "console/dicom/DicomCodes.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Samples {

/// The three kinds of radiographs, which differ in their DICOM object and in the attributes that the device writes.
enum class Kind { IntraOral, Panoramic, Cephalogram };

/// All that a sample radiograph's file says besides its pixels. Texts are in the bytes of `characterSet`.
struct Radiograph {
    Kind kind = Kind::IntraOral;

    std::string characterSet = "ISO_IR 100";
    std::string patientID;
    std::string patientName;
    std::string sex = "O";
    std::string birthDate = "19800101";

    std::string studyName;  ///< UIDs are made from the names: files of one study or series share them
    std::string studyDescription;
    std::string seriesName;
    std::string seriesDescription;
    std::string instanceName;
    std::string day = "20240311";
    int minute = 0;  ///< of the exposure, counted from the start of the study at 09:15
    int instanceNumber = 1;

    std::string laterality;  ///< "R", "L", "B" or empty: not stated
    std::string region;      ///< "T-11170" ... or empty: no anatomy stated
    std::string regionModifier;
    std::vector<int> teeth;
    Console::CodeGeneration generation = Console::CodeGeneration::Current;

    std::vector<std::string> leftOut;  ///< keywords of attributes that the file shall lack
};

/// A UID under 2.25 that is the same for the same name in every run.
std::string UidOf(std::string_view name);

/// UTF-8 text in the bytes of a single-byte DICOM character set. Throws `std::runtime_error` when the set
/// has no such characters.
std::string Encoded(const std::string& utf8, const std::string& characterSet);

/// Writes a radiograph as a DICOM file, explicit little endian. Throws `std::runtime_error` when the file
/// cannot be written; what it held before is then lost.
void WriteRadiograph(const Radiograph& about, const Picture& picture, const std::filesystem::path& file);

/// Writes a DICOM object of a class without pixels, a structured report with a single line of text.
void WriteReport(const Radiograph& about, const std::filesystem::path& file);

}  // namespace Samples

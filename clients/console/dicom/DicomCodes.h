#pragma once

#include <array>
#include <set>
#include <string>
#include <string_view>

namespace Console {

/// A coded entry as DICOM files carry it: code value, coding scheme designator, and a text to read.
struct DicomCode {
    std::string value;
    std::string scheme;
    std::string meaning;
};

/// The coding that a file of some age uses for the same tooth or region.
///
/// Files of all three generations are in use, so all are read. New files get `Current`.
enum class CodeGeneration {
    Current,   ///< SNOMED CT codes as of today
    Previous,  ///< the SNOMED CT codes that these replaced; the same code where nothing changed
    Srt        ///< the retired SNOMED codes that start with "T-", coding scheme designator "SRT"
};

/// The 52 tooth numbers in the order in which teeth are always listed: quadrant by quadrant, the
/// permanent teeth 11 to 48 first, then the deciduous ones 51 to 85.
extern const std::array<int, 52> AllTeeth;

/// Returns the two-digit tooth number of a code of the standard's tooth tables, of any generation; 0 for any other
/// code. The coding scheme designator is not needed: the code values of the schemes differ in form, and manufacturers
/// write the designator in many ways.
int ToothOfCode(std::string_view value);

/// Returns the region code that the library's images carry, for a coded anatomic region: "T-11170" upper jaw,
/// "T-11180" lower jaw, "T-D1213" both jaws, "T-11100" skull, "T-54000" teeth without a jaw. Empty for a
/// code of any other region.
///
/// Returns "T-D1217", which some manufacturers write for both jaws, unchanged: hanging accepts it.
std::string RegionOfCode(std::string_view value);

/// Returns the region modifier that the library's images carry, "T-51005" (central incisor) to "T-5100C"
/// (third molar) and "T-5100D" (occlusal projection), for a coded modifier of the anatomic region. Empty
/// for any other code.
std::string RegionModifierOfCode(std::string_view value);

/// Returns the code that a file states for `tooth`. Throws `std::invalid_argument` when `tooth` is not one of
/// `AllTeeth`.
DicomCode CodeOfTooth(int tooth, CodeGeneration generation = CodeGeneration::Current);

/// Returns the code that a file states for a region, which `region` names as `RegionOfCode` returns it. For "T-D1217"
/// returns this code in every generation, because it has no other form. Throws `std::invalid_argument` for any other
/// region.
DicomCode CodeOfRegion(std::string_view region, CodeGeneration generation = CodeGeneration::Current);

/// Returns the current code of a region modifier, which `modifier` names as `RegionModifierOfCode` returns it. Throws
/// `std::invalid_argument` for any other text.
DicomCode CodeOfRegionModifier(std::string_view modifier);

/// Returns region, modifier and side of a library image in words: "Maxilla, first molar region, left". An unknown code
/// is returned as a code; an empty part is omitted.
std::string AnatomyInWords(std::string_view region, std::string_view modifier, std::string_view side);

/// Returns true for teeth of the upper jaw. `tooth` is one of `AllTeeth`, here and below.
bool IsUpperTooth(int tooth);

/// Returns true for teeth of the patient's right side, which is the viewer's left on a hung examination.
bool IsRightTooth(int tooth);

/// Returns the tooth string that the library stores: two digits and a comma for each tooth, in the order of
/// `AllTeeth`. Empty for no teeth.
std::string ToothString(const std::set<int>& teeth);

}  // namespace Console

#pragma once

/// The codes of dental regions that images carry in `AnaRegion` and `AnaRegionMod`: SNOMED codes in the short form of
/// DICOM, "SRT".
namespace OXClass::RegionCode {

// ---- regions -----------------------------------------------------------------------------------

inline constexpr const char* UpperJaw = "T-11170";
inline constexpr const char* LowerJaw = "T-11180";
inline constexpr const char* BothJaws = "T-D1213";
/// An earlier code of both jaws. Hanging and the loads of anatomic groups replace it by `BothJaws`.
inline constexpr const char* BothJawsOld = "T-D1217";
inline constexpr const char* Skull = "T-11100";
/// Teeth, gums and supporting structures: names no jaw.
inline constexpr const char* Teeth = "T-54000";

// ---- modifiers of a region ---------------------------------------------------------------------

inline constexpr const char* CentralIncisor = "T-51005";
inline constexpr const char* LateralIncisor = "T-51006";
inline constexpr const char* Canine = "T-51007";
inline constexpr const char* FirstPremolar = "T-51008";
inline constexpr const char* SecondPremolar = "T-51009";
inline constexpr const char* FirstMolar = "T-5100A";
inline constexpr const char* SecondMolar = "T-5100B";
inline constexpr const char* ThirdMolar = "T-5100C";
inline constexpr const char* Occlusal = "T-5100D";

}  // namespace OXClass::RegionCode

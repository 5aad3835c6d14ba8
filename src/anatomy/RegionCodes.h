#pragma once

/// The codes of dental regions that images carry in `AnaRegion` and `AnaRegionMod`: SNOMED codes in the short form of
/// DICOM, "SRT". Anatomic groups carry the same codes.
///
/// `cSerie::HangSeries` derives region and modifier of an image without them from its teeth, by the functions of
/// `cImage`, and compares them with those of a frame: by their exact text, with upper-case letters and without blanks.
/// A member or a column may hold any other text, which is loaded and stored unchanged and fits no frame. All constants
/// are texts with static storage; any thread may use them.
namespace OXClass::RegionCode {

// ---- regions -----------------------------------------------------------------------------------

inline constexpr const char* UpperJaw = "T-11170";  ///< derived from teeth of quadrants 1, 2, 5 and 6
inline constexpr const char* LowerJaw = "T-11180";  ///< derived from teeth of quadrants 3, 4, 7 and 8
inline constexpr const char* BothJaws = "T-D1213";  ///< derived from teeth of both jaws: a bitewing
/// An earlier code of both jaws. Hanging and the loads of anatomic groups replace it by `BothJaws`.
inline constexpr const char* BothJawsOld = "T-D1217";
inline constexpr const char* Skull = "T-11100";  ///< never derived; with modality DX it selects a layout of the head
/// Teeth, gums and supporting structures: names no jaw. An image with this region fits no frame, and its region is not
/// derived because it is not empty; `oxclass` therefore omits it on import if the file names teeth.
inline constexpr const char* Teeth = "T-54000";

// ---- modifiers of a region ---------------------------------------------------------------------
// A modifier names a kind of teeth that a film shows, in any jaw and on either side. `cImage::DeriveAnaRegionMod`
// derives those of teeth: the first of its rules that applies decides, and none of them yields `FirstMolar`.

inline constexpr const char* CentralIncisor = "T-51005";
inline constexpr const char* LateralIncisor = "T-51006";
inline constexpr const char* Canine = "T-51007";
inline constexpr const char* FirstPremolar = "T-51008";
inline constexpr const char* SecondPremolar = "T-51009";
inline constexpr const char* FirstMolar = "T-5100A";  ///< of images that state it; never derived
inline constexpr const char* SecondMolar = "T-5100B";
inline constexpr const char* ThirdMolar = "T-5100C";
inline constexpr const char* Occlusal = "T-5100D";  ///< an occlusal projection, not a tooth; never derived

}  // namespace OXClass::RegionCode

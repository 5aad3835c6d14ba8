#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The kind of a manipulation, column ImageManipulation_T.Type; a row can hold other numbers too.
///
/// The library treats two of them specially: it deletes the file of a `ManCosmetic` that is no longer used,
/// and never stores an `UndoStop`. It stores all others for the clients, which define their meaning.
enum ManipulationType : Long {
    /// `StringParameter` names a file in image storage. A save deletes the file of the last stored cosmetic
    /// if
    /// the last new one names another file, or if there is none.
    ManCosmetic = 1,
    Manbrightness = 2,
    ManContrast = 3,
    ManInvert = 4,
    ManColorize = 5,
    /// `oxclass` stores the angle in `LongParameter`, in degrees clockwise.
    ManRotate = 6,
    /// `oxclass` stores 1 in `LongParameter` for a mirroring from left to right.
    ManMirror = 7,
    ManSharpen = 8,
    ManBitmap = 9,
    ManPosResize = 10,
    /// A mark of the client's among the manipulations. A save skips it and assigns it no number.
    UndoStop = 11,
    ManLeftFocus = 12,
    ManGotfocus = 13,
    ManICResize = 14,
    Delete = 15,
    ManAttCorr = 16,
    ManMedian = 17,
    ManEmboss = 18,
    ManEdgeEnhance = 19,
    ManAnnBurn = 20,
    ManEnhanceFilter = 21,
    ManCrop = 22
};

/// One recorded manipulation of a placed image: a row of ImageManipulation_T.
///
/// The object only holds its values; `cImagecardAttribute` loads and stores them. A load that finds a null in
/// a column ends there. An object belongs to the thread that created it.
class cImageManipulation final : public Object {
public:
    static constexpr const char* ClassName = "cImageManipulation";
    /// `Global<cImageManipulation>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    /// The key of the row, which a load sets. A save ignores it, because each save writes new rows.
    Long ImageManipulationID = 0;
    /// The kind; 0 in a new object. Column Type.
    OXClass::ManipulationType ManipulationType{};
    /// A number of the client's, such as an angle.
    Long LongParameter = 0;
    /// A text of the client's; a load trims it. For a cosmetic, three characters with the number of the
    /// storage root, then the file below it. An unpaired single quote makes the save of all manipulations of
    /// the placed image fail.
    String StringParameter;

    // ---- held for the client, neither read nor written ---------------------------------------------

    Long UndoImageHandle = 0;
    Long IAID = 0;

    const Interface& Describe() const override;
};

}  // namespace OXClass

/// The names and numbers of `ManipulationType`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::ManipulationType> {
    static constexpr const char* Name = "ManipulationType";
    static constexpr EnumerationValue Values[] = {
        {"ManCosmetic", OXClass::ManCosmetic},
        {"Manbrightness", OXClass::Manbrightness},
        {"ManContrast", OXClass::ManContrast},
        {"ManInvert", OXClass::ManInvert},
        {"ManColorize", OXClass::ManColorize},
        {"ManRotate", OXClass::ManRotate},
        {"ManMirror", OXClass::ManMirror},
        {"ManSharpen", OXClass::ManSharpen},
        {"ManBitmap", OXClass::ManBitmap},
        {"ManPosResize", OXClass::ManPosResize},
        {"UndoStop", OXClass::UndoStop},
        {"ManLeftFocus", OXClass::ManLeftFocus},
        {"ManGotfocus", OXClass::ManGotfocus},
        {"ManICResize", OXClass::ManICResize},
        {"Delete", OXClass::Delete},
        {"ManAttCorr", OXClass::ManAttCorr},
        {"ManMedian", OXClass::ManMedian},
        {"ManEmboss", OXClass::ManEmboss},
        {"ManEdgeEnhance", OXClass::ManEdgeEnhance},
        {"ManAnnBurn", OXClass::ManAnnBurn},
        {"ManEnhanceFilter", OXClass::ManEnhanceFilter},
        {"ManCrop", OXClass::ManCrop},
    };
};

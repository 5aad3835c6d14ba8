#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// What was done to a placed image. Only the cosmetic one means something to the library: there is a file
/// behind it. The others are stored for the clients, `UndoStop` is not.
enum ManipulationType : Long {
    ManCosmetic = 1,
    Manbrightness = 2,
    ManContrast = 3,
    ManInvert = 4,
    ManColorize = 5,
    ManRotate = 6,
    ManMirror = 7,
    ManSharpen = 8,
    ManBitmap = 9,
    ManPosResize = 10,
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

/// One recorded manipulation of a placed image: a row of ImageManipulation_T, which the placed image reads
/// and writes. An object belongs to one thread.
class cImageManipulation final : public Object {
public:
    static constexpr const char* ClassName = "cImageManipulation";
    static constexpr bool IsGlobal = true;  ///< `Global<cImageManipulation>()` gives the shared instance

    OXClass::ManipulationType ManipulationType{};
    Long LongParameter = 0;
    String StringParameter;
    Long ImageManipulationID = 0;  ///< the row's key, filled by a load
    Long UndoImageHandle = 0;      ///< held for the client's undo, not stored
    Long IAID = 0;                 ///< held for the client: neither read nor written

    const Interface& Describe() const override;
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::ManipulationType> {
    static constexpr const char* Name = "ManipulationType";
    static constexpr EnumerationValue Values[] = {
        {"ManCosmetic", 1},       {"Manbrightness", 2}, {"ManContrast", 3},     {"ManInvert", 4},
        {"ManColorize", 5},       {"ManRotate", 6},     {"ManMirror", 7},       {"ManSharpen", 8},
        {"ManBitmap", 9},         {"ManPosResize", 10}, {"UndoStop", 11},       {"ManLeftFocus", 12},
        {"ManGotfocus", 13},      {"ManICResize", 14},  {"Delete", 15},         {"ManAttCorr", 16},
        {"ManMedian", 17},        {"ManEmboss", 18},    {"ManEdgeEnhance", 19}, {"ManAnnBurn", 20},
        {"ManEnhanceFilter", 21}, {"ManCrop", 22},
    };
};

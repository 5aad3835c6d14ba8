#pragma once

#include "frame/modGeneral.h"

#include <array>
#include <cstddef>

/// Types that the programs of the suite exchange with each other. No operation of the library takes or
/// returns one; they are declared here so that all programs declare them alike. They are plain data without a
/// thread.
namespace OXClass {

/// The request that a `GeneralType` contains.
enum gtFuncs : Long { gtMWLQuery = 0, gtGetRespPerson = 1, gtShowObject = 2, gtGetSessionInfo = 3 };

// ---- texts of a fixed number of bytes, initially zeros -------------------------------------------------

/// 64 bytes.
struct xigString64 {
    std::array<std::uint8_t, 64> str{};
};
/// 256 bytes.
struct xigString256 {
    std::array<std::uint8_t, 256> str{};
};
/// 1024 bytes.
struct xigString1024 {
    std::array<std::uint8_t, 1024> str{};
};
/// 20001 bytes: one more than the name says.
struct xigString20K {
    std::array<std::uint8_t, 20001> str{};
};

// ---- the shared block ----------------------------------------------------------------------------------

/// A request and its values in one block of memory of 26240 bytes, with the same layout in every program. The
/// meaning of the values depends on the request, and is agreed between the programs.
struct GeneralType {
    Long dwSize = 0;
    gtFuncs lFunc = gtMWLQuery;  ///< the request
    Long l1 = 0, l2 = 0, l3 = 0, l4 = 0;
    double dbl1 = 0, dbl2 = 0, dbl3 = 0, dbl4 = 0;
    Date dte1, dte2, dte3, dte4;
    xigString256 s1_256, s2_256, s3_256, s4_256;
    xigString1024 s5_1024, s6_1024, s7_1024, s8_1024, s9_1024;
    xigString20K s10_20K;
};

static_assert(offsetof(GeneralType, dbl1) == 24 && offsetof(GeneralType, dte1) == 56 &&
                  offsetof(GeneralType, s1_256) == 88 && offsetof(GeneralType, s5_1024) == 1112 &&
                  offsetof(GeneralType, s10_20K) == 6232,
              "programs share this block: its fields lie one behind the other");

// ---- coded entries -------------------------------------------------------------------------------------

/// The group that a coded entry belongs to: region or modifier, of intra-oral (IO) or other X-ray (DX)
/// images.
enum CIDTypes : Long { cidtRegionIO = 0, cidtRegionDX = 1, cidtModifierIO = 2, cidtModifierDX = 3, cidtOther = 999 };

/// A coded entry of DICOM: the scheme that defines the code, the code, and its meaning as text.
struct CID {
    String CIDSchemeDesignator;
    String CIDValue;
    String CIDMeaning;
};

/// A coded entry with the group that it belongs to.
struct CIDExt {
    String CIDSchemeDesignator;
    String CIDValue;
    String CIDMeaning;
    CIDTypes CIDType = cidtRegionIO;
    bool CIDDefault = false;  ///< true: the default entry of its group
};

}  // namespace OXClass

/// The names and numbers of `gtFuncs`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::gtFuncs> {
    static constexpr const char* Name = "gtFuncs";
    static constexpr EnumerationValue Values[] = {{"gtMWLQuery", OXClass::gtMWLQuery},
                                                  {"gtGetRespPerson", OXClass::gtGetRespPerson},
                                                  {"gtShowObject", OXClass::gtShowObject},
                                                  {"gtGetSessionInfo", OXClass::gtGetSessionInfo}};
};

/// The names and numbers of `CIDTypes`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::CIDTypes> {
    static constexpr const char* Name = "CIDTypes";
    static constexpr EnumerationValue Values[] = {{"cidtRegionIO", OXClass::cidtRegionIO},
                                                  {"cidtRegionDX", OXClass::cidtRegionDX},
                                                  {"cidtModifierIO", OXClass::cidtModifierIO},
                                                  {"cidtModifierDX", OXClass::cidtModifierDX},
                                                  {"cidtOther", OXClass::cidtOther}};
};

#pragma once

#include "frame/modGeneral.h"

#include <array>
#include <cstddef>

/// Types that the programs of the suite pass among themselves. No operation of the library takes or gives
/// them.
namespace OXClass {

/// What a `GeneralType` asks for.
enum gtFuncs : Long { gtMWLQuery = 0, gtGetRespPerson = 1, gtShowObject = 2, gtGetSessionInfo = 3 };

/// Texts of a fixed number of bytes. The last one has a byte more than its name says.
struct xigString64 {
    std::array<std::uint8_t, 64> str{};
};
struct xigString256 {
    std::array<std::uint8_t, 256> str{};
};
struct xigString1024 {
    std::array<std::uint8_t, 1024> str{};
};
struct xigString20K {
    std::array<std::uint8_t, 20001> str{};
};

/// A request and its values in one block of memory, the same in every program.
struct GeneralType {
    Long dwSize = 0;
    gtFuncs lFunc = gtMWLQuery;
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

/// Which group a code belongs to.
enum CIDTypes : Long {
    cidtRegionIO = 0,
    cidtRegionDX = 1,
    cidtModifierIO = 2,
    cidtModifierDX = 3,
    cidtOther = 999
};

/// A coded entry of DICOM.
struct CID {
    String CIDSchemeDesignator;
    String CIDValue;
    String CIDMeaning;
};

/// A coded entry with its group, and whether it is the group's default.
struct CIDExt {
    String CIDSchemeDesignator;
    String CIDValue;
    String CIDMeaning;
    CIDTypes CIDType = cidtRegionIO;
    bool CIDDefault = false;
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::gtFuncs> {
    static constexpr const char* Name = "gtFuncs";
    static constexpr EnumerationValue Values[] = {
        {"gtMWLQuery", 0}, {"gtGetRespPerson", 1}, {"gtShowObject", 2}, {"gtGetSessionInfo", 3}};
};

template <>
struct Platform::EnumerationOf<OXClass::CIDTypes> {
    static constexpr const char* Name = "CIDTypes";
    static constexpr EnumerationValue Values[] = {{"cidtRegionIO", 0},
                                                  {"cidtRegionDX", 1},
                                                  {"cidtModifierIO", 2},
                                                  {"cidtModifierDX", 3},
                                                  {"cidtOther", 999}};
};

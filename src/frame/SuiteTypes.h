#pragma once

#include "frame/modGeneral.h"

#include <array>
#include <cstddef>

/// Types that the programs of the suite exchange with each other. No operation of the library takes or
/// returns one; they are declared here so that all programs declare them alike. They are plain data without a
/// thread. The type library declares them too, for programs that use COM.
namespace OXClass {

/// The request that a `GeneralType` contains. The library defines the numbers only: by their names a query of a
/// modality worklist, the responsible person, an object to be shown, and data about the session.
enum gtFuncs : Long { gtMWLQuery = 0, gtGetRespPerson = 1, gtShowObject = 2, gtGetSessionInfo = 3 };

// ---- texts of a fixed number of bytes, initially zeros -------------------------------------------------
// The programs agree on the encoding, and on whether a zero ends a text that is shorter. Nothing is checked or
// converted here. Each structure consists of its bytes alone, without padding, and may be copied byte by byte.

/// 64 bytes. Not part of `GeneralType`.
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
/// 20001 bytes: one more than the name says. The other sizes have no additional byte.
struct xigString20K {
    std::array<std::uint8_t, 20001> str{};
};

// ---- the shared block ----------------------------------------------------------------------------------

/// A request and its values in one block of memory of 26240 bytes, with the same layout in every program. The
/// meaning of the values depends on the request, and is agreed between the programs.
///
/// The block contains no pointers, so a program can write it to shared memory or a file as it is. Numbers have the byte
/// order of the machine. A new block is all zero, which is the request `gtMWLQuery` and the zero date, except the 7
/// bytes of padding behind the last text, which are undefined. The fields are aligned to 8 bytes.
struct GeneralType {
    Long dwSize = 0;                                ///< for the programs; the library neither sets nor checks it
    gtFuncs lFunc = gtMWLQuery;                     ///< the request
    Long l1 = 0, l2 = 0, l3 = 0, l4 = 0;            ///< from byte 8
    double dbl1 = 0, dbl2 = 0, dbl3 = 0, dbl4 = 0;  ///< from byte 24
    Date dte1, dte2, dte3, dte4;                    ///< from byte 56: days since 1899-12-30, as a double
    xigString256 s1_256, s2_256, s3_256, s4_256;    ///< from byte 88
    xigString1024 s5_1024, s6_1024, s7_1024, s8_1024, s9_1024;  ///< from byte 1112
    xigString20K s10_20K;                                       ///< from byte 6232
};

// Another layout does not compile. Programs that were compiled separately read the fields at these bytes.

static_assert(offsetof(GeneralType, dbl1) == 24 && offsetof(GeneralType, dte1) == 56 &&
                  offsetof(GeneralType, s1_256) == 88 && offsetof(GeneralType, s5_1024) == 1112 &&
                  offsetof(GeneralType, s10_20K) == 6232,
              "programs share this block: its fields lie one behind the other");

// ---- coded entries -------------------------------------------------------------------------------------

/// The group that a coded entry belongs to: region or modifier, of intra-oral (IO) or other X-ray (DX)
/// images; `cidtOther` is a group of neither kind. The library uses no group: the lists of codes are texts of
/// `gglID_CIDCodes`, whose form the programs define.
enum CIDTypes : Long { cidtRegionIO = 0, cidtRegionDX = 1, cidtModifierIO = 2, cidtModifierDX = 3, cidtOther = 999 };

/// A coded entry of DICOM: the scheme that defines the code, the code, and its meaning as text. All three are empty in
/// a new entry, and of any length; an entry is used inside one program and can't be copied byte by byte.
struct CID {
    String CIDSchemeDesignator;  ///< such as "SRT"
    String CIDValue;             ///< the code, such as "T-11170"
    String CIDMeaning;           ///< the meaning for people, such as "Maxilla"
};

/// A coded entry with the group that it belongs to. It begins with the same members as `CID`, but is a type of its own:
/// neither converts to the other.
struct CIDExt {
    String CIDSchemeDesignator;       ///< as in `CID`
    String CIDValue;                  ///< as in `CID`
    String CIDMeaning;                ///< as in `CID`
    CIDTypes CIDType = cidtRegionIO;  ///< the group
    bool CIDDefault = false;          ///< true: the default entry of its group
};

}  // namespace OXClass

/// The names and numbers of `gtFuncs`, for the type library and for the enumeration of the Python client.
template <>
struct Platform::EnumerationOf<OXClass::gtFuncs> {
    static constexpr const char* Name = "gtFuncs";
    static constexpr EnumerationValue Values[] = {{"gtMWLQuery", OXClass::gtMWLQuery},
                                                  {"gtGetRespPerson", OXClass::gtGetRespPerson},
                                                  {"gtShowObject", OXClass::gtShowObject},
                                                  {"gtGetSessionInfo", OXClass::gtGetSessionInfo}};
};

/// The names and numbers of `CIDTypes`, for the type library and for the enumeration of the Python client.
template <>
struct Platform::EnumerationOf<OXClass::CIDTypes> {
    static constexpr const char* Name = "CIDTypes";
    static constexpr EnumerationValue Values[] = {{"cidtRegionIO", OXClass::cidtRegionIO},
                                                  {"cidtRegionDX", OXClass::cidtRegionDX},
                                                  {"cidtModifierIO", OXClass::cidtModifierIO},
                                                  {"cidtModifierDX", OXClass::cidtModifierDX},
                                                  {"cidtOther", OXClass::cidtOther}};
};

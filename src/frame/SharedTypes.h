#pragma once

#include "frame/modGeneral.h"

/// The enumerations that several classes share.
namespace OXClass {

/// The kind of an image.
enum xigImageTypes : Long {
    imggTypeSC = 0,
    imggTypeDXIntraOral = 1,
    imggTypeVLEndoscopic = 2,
    imggTypeVLMicroscopic = 3,
    imggTypeDXPanoramic = 4,
    imggTypeDXCephalometric = 5,
    imggTypeDXGeneral = 6,
    imggTypeDXSkull = 7,
    imggTypeVLPhotographic = 8,
    imggTypeNone = 32000,
    imggTypeGeneralObject = 32767
};

/// Where a study or a series lies.
enum gdcmObjectLocation : Long {
    gdcmObjectLocUnknown = 0,
    gdcmObjectLocLocal = 1,
    gdcmObjectLocServer = 2,
    gdcmObjectLocBoth = 3
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::xigImageTypes> {
    static constexpr const char* Name = "xigImageTypes";
    static constexpr EnumerationValue Values[] = {
        {"imggTypeSC", 0},
        {"imggTypeDXIntraOral", 1},
        {"imggTypeVLEndoscopic", 2},
        {"imggTypeVLMicroscopic", 3},
        {"imggTypeDXPanoramic", 4},
        {"imggTypeDXCephalometric", 5},
        {"imggTypeDXGeneral", 6},
        {"imggTypeDXSkull", 7},
        {"imggTypeVLPhotographic", 8},
        {"imggTypeNone", 32000},
        {"imggTypeGeneralObject", 32767},
    };
};

template <>
struct Platform::EnumerationOf<OXClass::gdcmObjectLocation> {
    static constexpr const char* Name = "gdcmObjectLocation";
    static constexpr EnumerationValue Values[] = {
        {"gdcmObjectLocUnknown", 0},
        {"gdcmObjectLocLocal", 1},
        {"gdcmObjectLocServer", 2},
        {"gdcmObjectLocBoth", 3},
    };
};

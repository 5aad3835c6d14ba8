#pragma once

#include "frame/modGeneral.h"

/// The enumerations that several classes share. All enumerations are 32-bit integers; a member holds any
/// number that a row contains, also one without a name here.
namespace OXClass {

/// The kind of an image, column ImageBild_T.ImageType. SC, DX and VL are the DICOM terms secondary capture,
/// digital X-ray and visible light. The library stores and returns the number of any kind.
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

/// Where the images of a study or a series are stored, column Series_T.location.
enum gdcmObjectLocation : Long {
    gdcmObjectLocUnknown = 0,
    gdcmObjectLocLocal = 1,   ///< in this system's image storage
    gdcmObjectLocServer = 2,  ///< on a DICOM server
    gdcmObjectLocBoth = 3     ///< in both places
};

}  // namespace OXClass

/// The names and numbers of `xigImageTypes`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::xigImageTypes> {
    static constexpr const char* Name = "xigImageTypes";
    static constexpr EnumerationValue Values[] = {
        {"imggTypeSC", OXClass::imggTypeSC},
        {"imggTypeDXIntraOral", OXClass::imggTypeDXIntraOral},
        {"imggTypeVLEndoscopic", OXClass::imggTypeVLEndoscopic},
        {"imggTypeVLMicroscopic", OXClass::imggTypeVLMicroscopic},
        {"imggTypeDXPanoramic", OXClass::imggTypeDXPanoramic},
        {"imggTypeDXCephalometric", OXClass::imggTypeDXCephalometric},
        {"imggTypeDXGeneral", OXClass::imggTypeDXGeneral},
        {"imggTypeDXSkull", OXClass::imggTypeDXSkull},
        {"imggTypeVLPhotographic", OXClass::imggTypeVLPhotographic},
        {"imggTypeNone", OXClass::imggTypeNone},
        {"imggTypeGeneralObject", OXClass::imggTypeGeneralObject},
    };
};

/// The names and numbers of `gdcmObjectLocation`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::gdcmObjectLocation> {
    static constexpr const char* Name = "gdcmObjectLocation";
    static constexpr EnumerationValue Values[] = {
        {"gdcmObjectLocUnknown", OXClass::gdcmObjectLocUnknown},
        {"gdcmObjectLocLocal", OXClass::gdcmObjectLocLocal},
        {"gdcmObjectLocServer", OXClass::gdcmObjectLocServer},
        {"gdcmObjectLocBoth", OXClass::gdcmObjectLocBoth},
    };
};

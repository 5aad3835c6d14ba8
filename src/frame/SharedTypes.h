#pragma once

#include "frame/modGeneral.h"

/// The enumerations that several classes share. All enumerations are 32-bit integers; a member holds any
/// number that a row or a COM client contains, also one without a name here, and stores it unchanged. The numbers are
/// stored in databases and must not change. Plain constants: any thread may use them.
namespace OXClass {

/// The kind of an image, column ImageBild_T.ImageType. SC, DX and VL are the DICOM terms secondary capture,
/// digital X-ray and visible light. The library stores and returns the number of any kind and does nothing else with
/// it: hanging depends on teeth and regions, not on the kind. A null in the column ends the reading of the image (94).
///
/// It is also the kind that a template assigns to its images, `cTemplate::TCForcedImageType`: there a null reads as -1,
/// which has no name here and means that the template assigns none.
///
/// What is said below about `oxclass` is how that program chooses the kind of an imported file, and what it does with
/// it.
enum xigImageTypes : Long {
    imggTypeSC = 0,               ///< the kind of a new image; `oxclass`: any other modality, not a photograph
    imggTypeDXIntraOral = 1,      ///< an X-ray inside the mouth; `oxclass`: modality IO
    imggTypeVLEndoscopic = 2,     ///< visible light, through an endoscope
    imggTypeVLMicroscopic = 3,    ///< visible light, through a microscope
    imggTypeDXPanoramic = 4,      ///< `oxclass`: modality PX
    imggTypeDXCephalometric = 5,  ///< `oxclass`: modality DX of the skull, or with "CEPH" in the series description
    imggTypeDXGeneral = 6,        ///< `oxclass`: any other image of modality DX
    imggTypeDXSkull = 7,          ///< `oxclass` expects no teeth of it, nor of the two kinds of the head above
    imggTypeVLPhotographic = 8,   ///< `oxclass` places it in no layout of films and states no exposure
    imggTypeNone = 32000,
    imggTypeGeneralObject = 32767
};

/// Where the images of a study or a series are stored. `cSerie` stores it in the column Series_T.location, in which a
/// null reads as unknown; the location of a `cStudy` is not stored. `cSerie::adjustLocationStatus` adds and removes the
/// server according to the availability that the server reports. The card list sets `gdcmObjectLocLocal` or
/// `gdcmObjectLocBoth` for a series that has images.
enum gdcmObjectLocation : Long {
    gdcmObjectLocUnknown = 0,  ///< in neither place, or not determined; the location in a new object
    gdcmObjectLocLocal = 1,    ///< in this system's image storage
    gdcmObjectLocServer = 2,   ///< on a DICOM server
    gdcmObjectLocBoth = 3      ///< in both places
};

}  // namespace OXClass

/// The names and numbers of `xigImageTypes`, for the type library and for the enumeration of the Python client.
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

/// The names and numbers of `gdcmObjectLocation`, for the type library and for the enumeration of the Python client.
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

#pragma once

#include "bench/ByHand.h"

#include <string>

/// What the work by hand has in common on all engines: which columns of an image are read and written, in which order.
namespace Bench {

/// The columns that are read, for all selects.
#define READ_COLUMNS                                                                                       \
    "SELECT Approved, Brightness_INT, Contrast_INT, DateCaptured_SD, ExposureTime_F, GraphicURL_NVC, "     \
    "HardwareSourcetxt_NVC, ImageBildID, ImageType, Invert_BT, PatientID, Responsible_Person_NVC, "        \
    "ImageBild_T.RootId, Root_T.Status, Root_T.RootDirectory, AnaRegion, AnaRegionMod, Laterality, "       \
    "PriStructure, MirrRotStatus, CRC, DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, " \
    "Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, DicomStatus_INT, FrameNumber_INT, "     \
    "SubType_INT, Gamma_INT, AnatomicRegion, DCMDerived_BT FROM ImageBild_T LEFT JOIN Root_T ON "          \
    "ImageBild_T.RootId=Root_T.RootId "

/// The beginning of the insert, up to its values.
#define INSERT_IMAGE                                                                                               \
    "INSERT INTO ImageBild_T (ToothCollectionID, PatientID, DateCaptured_SD, Comments_NVC, StandCollName_NVC, "    \
    "ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, RootId, GraphicURL_NVC, Invert_BT, "            \
    "StretchIntens_BT, Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, ExposureTime_F, HorizMirror_BT, " \
    "VerticalMirror_BT, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, CRC, DPIY_INT, DPIX_INT, "     \
    "Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, XRaySource_NVC, PrevXrayDate_DT, Dosage_INT, "     \
    "Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, DicomStatus_INT, FrameNumber_INT, "             \
    "AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, AnaRegionMod, PriStructure, SubType_INT, Gamma_INT) "   \
    "VALUES "

/// The number of its values.
constexpr int InsertedValues = 47;

/// Reads the columns of an image in this order. `row` returns each next one by `Whole`, `Text` or `Days`.
template <class Row>
void ReadImage(Row&& row, HandImage& image) {
    image.approved = row.Whole() != 0;
    image.brightness = row.Whole();
    image.contrast = row.Whole();
    image.captured = row.Days();
    image.exposure = row.Whole();
    image.url = row.Text();
    image.source = row.Text();
    image.id = row.Whole();
    image.type = row.Whole();
    image.invert = row.Whole() != 0;
    image.patient = row.Whole();
    image.responsible = row.Text();
    image.root = row.Whole();
    image.rootStatus = row.Whole();
    image.rootDirectory = row.Text();
    image.region = row.Text();
    image.modifier = row.Text();
    image.laterality = row.Text();
    image.teeth = row.Text();
    image.mirror = row.Whole();
    image.crc = row.Text();
    image.dpiY = row.Whole();
    image.dpiX = row.Whole();
    image.voltage = row.Whole();
    image.current = row.Whole();
    image.capture = row.Text();
    image.study = row.Whole();
    image.series = row.Whole();
    image.uid = row.Text();
    image.number = row.Whole();
    image.status = row.Whole();
    image.frame = row.Whole();
    image.subType = row.Whole();
    image.gamma = row.Whole();
    image.crop = row.Text();
    image.derived = row.Whole();
}

/// Writes the values of the insert in this order to `binder`, by "<<".
template <class Binder>
void BindImage(Binder&& binder, const HandImage& i) {
    static const std::string empty, zeroDate = "1899-12-30 00:00:00";
    binder << 0 << i.patient << zeroDate << empty << empty << i.dpiX << 100 << i.source << i.root << i.url << i.invert
           << 0 << 0 << i.contrast << i.brightness << 0 << i.exposure << 0 << 0 << i.responsible
           << (i.approved ? -1 : 0) << i.mirror << i.type << i.crc << i.dpiY << i.dpiX << i.voltage << i.current
           << empty << 0 << empty << zeroDate << 0 << i.study << i.series << i.uid << i.number << i.status << i.frame
           << i.crop << i.derived << i.laterality << i.region << i.modifier << i.teeth << i.subType << i.gamma;
}

}  // namespace Bench

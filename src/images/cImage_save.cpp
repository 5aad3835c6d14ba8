#include "frame/Reading.h"
#include "images/cImage.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns a boolean as its 16-bit number, -1 or 0.
Long Number(bool flag) { return flag ? -1 : 0; }

/// Returns true if the comment marks the image as deleted: "Deleted " and a date of 19 characters.
bool IsDeletionMark(const String& comment) { return Left(comment, 8) == "Deleted " && IsDate(Mid(comment, 9, 19)); }

}  // namespace

Long cImage::Save(const Ref<Connection>& Con) {
    Write(Con, sTeeth);
    return 0;
}

Long cImage::SaveEx(const bool& CheckExistOnID, const Ref<Connection>& Con) {
    constexpr Long width = 180;
    LookForRow(CheckExistOnID, Con);
    Write(Con, Left(sTeeth, width));
    return 0;
}

void cImage::LookForRow(bool checkExistOnID, const Ref<Connection>& con) {
    const bool byID = checkExistOnID && ID != 0;
    if (!byID && instanceUID.empty()) return;
    const Ref<Recordset> rs = New<Recordset>();
    rs->Open(byID ? sql("SELECT * FROM ImageBild_T WHERE ImageBildID =", ID, ";")
                  : sql("SELECT * FROM ImageBild_T WHERE SOPInstanceUID_NVC ='", Verbatim(instanceUID), "';"),
             con, ADODB::adOpenForwardOnly, ADODB::adLockOptimistic, ADODB::adCmdUnspecified);
    if (rs->Eof()) {
        ID = 0;
    } else if (ID == 0) {
        ID = Required<Long>(rs, "ImagebildID");
        TakeOverRow(con);
    }
    rs->Close();
}

void cImage::TakeOverRow(const Ref<Connection>& con) {
    const Ref<cImage> stored = New<cImage>();
    stored->ID = ID;
    stored->GetComments(con);
    for (Integer i = CInt(Comments()->Count()); i >= 1; --i) {
        const Ref<cStringItem> mine = Comments()->Item(i);
        for (const cStringItem& theirs : *stored->Comments()) {
            if (theirs.Signature != mine->Signature || theirs.str != mine->str) continue;
            Comments()->Remove(i);
            break;
        }
    }
    for (const cStringItem& comment : *stored->Comments())
        if (IsDeletionMark(comment.str) && !URL.empty())
            con->Execute(sql("DELETE * FROM Comments_T where CommentString = '", Verbatim(comment.str),
                             "' and objectID = ", ID));
}

void cImage::Write(const Ref<Connection>& con, const String& teeth) {
    if (ID == 0) {
        Insert(con, teeth);
        const Ref<Recordset> newest =
            con->Execute(sql("SELECT MAX(ImageBildID) AS ID FROM ImageBild_T WHERE (GraphicURL_NVC='",
                             FixSqlString(URL), "' AND PatientID=", PatID, ");"));
        ID = Required<Long>(newest, "ID");
        newest->Close();
    } else {
        Update(con, teeth);
    }
    SaveComments(con);
}

Long cImage::ComputedDPI() const { return DPIX != 0 && DPIY != 0 ? DPIX : 0; }

void cImage::Insert(const Ref<Connection>& con, const String& teeth) const {
    constexpr Long notKnown = 10;
    const bool unknown = Pregnant == notKnown;
    // clang-format off
    ExecuteOn(con)(
        "INSERT INTO ImageBild_T ", "(ToothCollectionID, PatientID, DateCaptured_SD, Comments_NVC, ",
        "StandCollName_NVC, ComputedDPI_INT, HardwareSourceId_INT, ",
        "HardwareSourcetxt_NVC, RootId, GraphicURL_NVC, Invert_BT, StretchIntens_BT, ",
        "Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, ExposureTime_F, ",
        "HorizMirror_BT, VerticalMirror_BT, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, ",
        "CRC, ",
        "DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, XRaySource_NVC, ",
        "PrevXrayDate_DT, Dosage_INT, Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, ",
        "DicomStatus_INT ,FrameNumber_INT ,AnatomicRegion, DCMDerived_BT, ",
        "Laterality, AnaRegion, AnaRegionMod, PriStructure, SubType_INT, Gamma_INT", ") ",
        "VALUES (",
        " 0, ",                                             // ToothCollectionID
        PatID, ", ",                                        // PatientID
        "'", Stamp(dateTime), "', ",                        // DateCaptured_SD
        "'', ",                                             // Comments_NVC
        "'',  ",                                            // StandCollName_NVC
        ComputedDPI(), ", ",                                // ComputedDPI_INT
        "100, ",                                            // HardwareSourceId_INT
        "'", FixSqlString(HWSourceTxt), "', ",              // HardwareSourcetxt_NVC
        RootId, ", ",                                       // RootId
        "'", FixSqlString(URL), "',",                       // GraphicURL_NVC
        -Number(ApprInvert), ", ",                          // Invert_BT
        "0,",                                               // StretchIntens_BT
        "0,  ",                                             // Rotation_INT
        ApprContrast, ", ",                                 // Contrast_INT
        ApprBrightness, ",  ",                              // Brightness_INT
        "0, ",                                              // Histogram_BT
        ExposureTime_ms, ",  ",                             // ExposureTime_F
        "0, ",                                              // HorizMirror_BT
        "0, ",                                              // VerticalMirror_BT
        "'", FixSqlString(RespPerson), "', ",               // Responsible_Person_NVC
        Number(Approved), ",  ",                            // Approved
        MirrRotStatus, ", ",                                // MirrRotStatus
        ImageType, ", ",                                    // ImageType
        "'", Verbatim(CRC), "',  ",                       // CRC
        DPIY, ", ",                                         // DPIY_INT
        DPIX, ", ",                                         // DPIX_INT
        Voltage_kV, ",  ",                                  // Voltage_INT
        Current_mA, ", ",                                   // Current_INT
        "'", "', ",                                         // Capture_Person_NVC
        NumberOrNull{unknown, unknown ? 0 : CInt(Pregnant)}, ", ",  // Pregnant_BT
        "'', ",                                             // XRaySource_NVC
        "'", Stamp(Date{}), "',  ",                         // PrevXrayDate_DT
        "0,",                                               // Dosage_INT
        studyID, ",",                                       // Study_ID
        seriesID, ",",                                      // Series_ID
        "'", Verbatim(Trim(instanceUID)), "',",           // SOPInstanceUID_NVC
        ImageNumberInSeries, ",  ",                         // ImageNumberInSeries
        DicomStatus, ", ",                                  // DicomStatus_INT
        Long{FrameNumber}, ", ",                            // FrameNumber_INT
        "'", Verbatim(ApprCrop), "', ",                   // AnatomicRegion
        DCMDerived, ", ",                                   // DCMDerived_BT
        "'", Verbatim(Laterality), "',",                  // Laterality
        "'", Verbatim(AnaRegion), "',",                   // AnaRegion
        "'", Verbatim(AnaRegionMod), "',",                // AnaRegionMod
        "'", Verbatim(teeth), "', ",                      // PriStructure
        SubType, ", ",                                      // SubType_INT
        ApprGamma, ");");                                   // Gamma_INT
    // clang-format on
}

void cImage::Update(const Ref<Connection>& con, const String& teeth) const {
    // clang-format off
    ExecuteOn(con)(
        "UPDATE ImageBild_T ", "SET ",
        "ImageType = ", ImageType, ", ",
        "GraphicURL_NVC = '", FixSqlString(URL), "', ",
        "Approved = ", Number(Approved), ", ",
        "MirrRotStatus = ", MirrRotStatus, ", ",
        "DPIY_INT= ", DPIY, ", ",
        "DPIX_INT= ", DPIX, ", ",
        "ComputedDPI_INT= ", ComputedDPI(), ", ",
        "PriStructure='", Verbatim(teeth), "',",
        "Study_ID=", studyID, ", ",
        "Series_ID=", seriesID, ", ",
        "SOPInstanceUID_NVC='", Verbatim(instanceUID), "', ",
        "HardwareSourcetxt_NVC='", FixSqlString(HWSourceTxt), "', ",
        "ImageNumberInSeries=", ImageNumberInSeries, ", ",
        "dicomStatus_INT=", DicomStatus, ", ",
        "AnaRegion='", Verbatim(AnaRegion), "', ",
        "AnaRegionMod='", Verbatim(AnaRegionMod), "', ",
        "FrameNumber_INT=", Long{FrameNumber}, ", ",
        "Gamma_INT=", ApprGamma, ", ",
        "Invert_BT=", -Number(ApprInvert), ", ",
        "Contrast_INT=", ApprContrast, ", ",
        "Brightness_INT=", ApprBrightness, ", ",
        "CRC='", Verbatim(CRC), "', ",
        "Laterality='", Verbatim(Laterality), "', ",
        "PatientID=", PatID, ", ",
        "Capture_Person_NVC='", Verbatim(CapturePerson), "', ",
        "Responsible_Person_NVC='", Verbatim(RespPerson), "', ",
        "Voltage_INT= ", Voltage_kV, ", ",
        "DCMDerived_BT= ", DCMDerived, ", ",
        "SubType_INT= ", SubType, ", ",
        "Current_INT= ", Current_mA, ", ",
        "AnatomicRegion= '", Verbatim(ApprCrop), "', ",
        "ExposureTime_F = ", ExposureTime_ms,
        " WHERE ImageBildID = ", ID, ";");
    // clang-format on
}

void cImage::SaveComments(const Ref<Connection>& Con) {
    constexpr Long width = 150;
    if (!comments_) return;
    for (cStringItem& comment : **comments_) {
        if (comment.bSaved) continue;
        ExecuteOn(Con)("INSERT INTO Comments_T ", "( dates, signature, tabelID, objectID,commentString ) ", "VALUES (",
                       "'", Stamp(comment.DateStamp), "',", "'", FixSqlString(Left(comment.Signature, width)), "', ",
                       "1, ", ID, ", ", "'", FixSqlString(Left(comment.str, width)), "')");
        comment.bSaved = true;
    }
}

}  // namespace OXClass

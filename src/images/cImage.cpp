#include "images/cImage.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns the column as a flag: false for 0, true for any other number.
bool Flag(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        if (const auto whole = field.StoredWhole(); whole && std::in_range<Integer>(*whole)) return *whole != 0;
        return CInt(field.Value()) != 0;
    });
}

/// Returns the same, with false for a null.
bool NzFlag(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        if (const auto whole = field.StoredWhole(); whole && std::in_range<Integer>(*whole)) return *whole != 0;
        return CInt(NzValue(field.Value())) != 0;
    });
}

/// Returns the number at the start of the column's text; 0 for a null.
Long NumberInText(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        if (const auto whole = field.StoredWhole()) return *whole;
        return CLng(Val(Trim(field.Or<String>({}))));
    });
}

}  // namespace

const Ref<cComments>& cImage::Comments() {
    if (!comments_ || !*comments_) comments_ = New<cComments>();
    return *comments_;
}

bool cImage::GetImage(const Ref<Connection>& Con, Long ImageBildID) {
    try {
        const Ref<Recordset> rs = OpenUnbuffered(
            Con, sql("SELECT ", "ImageBildID, ToothCollectionID, PatientID, ",
                     "DateCaptured_SD, Comments_NVC, StandCollName_NVC, ",
                     "ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, ",
                     "ImageBild_T.RootId, GraphicURL_NVC, Invert_BT, StretchIntens_BT, ",
                     "Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, ",
                     "ExposureTime_F, HorizMirror_BT, VerticalMirror_BT, CRC, ",
                     "Responsible_Person_NVC, Approved, ImageType, MirrRotStatus, ",
                     "DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, ",
                     "Capture_Person_NVC, Pregnant_BT, XRaySource_NVC, PrevXrayDate_DT, Dosage_INT, ",
                     "Root_T.Status, Root_T.RootDirectory, Study_ID, Series_ID, SOPInstanceUID_NVC, "
                     "ImageNumberInSeries, DicomStatus_INT ,FrameNumber_INT,AnatomicRegion, ",
                     "DCMDerived_BT, Laterality, AnaRegion, AnaRegionMod, PriStructure, SubType_INT, Gamma_INT ",
                     "FROM ImageBild_T ", "LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId ",
                     "Where ImageBildID = ", ImageBildID, ";"));
        const bool found = !rs->Eof();
        loadCompletion_.Begin();
        if (found) GetFromRecord(rs);
        rs->Close();
        return found;
    } catch (const Error& failure) {
        if (failure.Number != ADODB::UnknownName) throw;
        loadCompletion_.EndedBy(failure);
        return false;
    }
}

void cImage::GetFromRecord(const Ref<Recordset>& rs) {
    // Only a failure to read "RootId" in place of "ImageBild_T.RootId" is raised.
    bool repairing = false;
    loadCompletion_.Begin();
    try {
        ReadColumns(rs, repairing);
    } catch (const Error& failure) {
        loadCompletion_.EndedBy(failure);
        if (repairing) throw;
    }
}

void cImage::ReadColumns(const Ref<Recordset>& rs, bool& repairing) {
    Approved = NzFlag(rs, "Approved");
    ApprBrightness = Required<Long>(rs, "Brightness_INT");
    ApprContrast = Required<Long>(rs, "Contrast_INT");
    dateTime = Required<Date>(rs, "DateCaptured_SD");
    ExposureTime_ms = ValueOr(rs, "ExposureTime_F", 0);
    URL = TextOrEmpty(rs, "GraphicURL_NVC");
    HWSourceTxt = TextOrEmpty(rs, "HardwareSourcetxt_NVC");
    ID = Required<Long>(rs, "ImageBildID");
    ImageType = Required<xigImageTypes>(rs, "ImageType");
    ApprInvert = Flag(rs, "Invert_BT");
    PatID = Required<Long>(rs, "PatientID");
    RespPerson = TextOrEmpty(rs, "Responsible_Person_NVC");
    constexpr ColumnName ofImage = "ImageBild_T.RootId";
    repairing = !rs->HasField(ofImage.Text());
    RootId = Required<Long>(rs, repairing ? ColumnName("RootId") : ofImage);
    repairing = false;
    OfColumn(rs, "Status", [](const ADODB::Field&) {});
    OfColumn(rs, "RootDirectory", [&](const ADODB::Field& field) {
        if (!field.IsNull()) Root_RootDirectory = field.As<String>();
    });
    AnaRegion = TextOrEmpty(rs, "AnaRegion");
    AnaRegionMod = TextOrEmpty(rs, "AnaRegionMod");
    Laterality = TextOrEmpty(rs, "Laterality");
    sTeeth = TextOrEmpty(rs, "PriStructure");
    MirrRotStatus = ValueOr(rs, "MirrRotStatus", 1);
    CRC = TrimmedText(rs, "CRC");
    DPIY = Nz<Long>(rs, "DPIY_INT");
    DPIX = Nz<Long>(rs, "DPIX_INT");
    Voltage_kV = Nz<Long>(rs, "Voltage_INT");
    Current_mA = ValueOr(rs, "Current_INT", 0);
    CapturePerson = TextOrEmpty(rs, "Capture_Person_NVC");
    studyID = Nz<Long>(rs, "Study_ID");
    seriesID = Nz<Long>(rs, "Series_ID");
    instanceUID = TrimmedText(rs, "SOPInstanceUID_NVC");
    ImageNumberInSeries = NumberInText(rs, "ImageNumberInSeries");
    DicomStatus = Nz<Integer>(rs, "DicomStatus_INT");
    constexpr ColumnName frame = "FrameNumber_INT";
    FrameNumber = LateNumber(OfColumn(rs, frame, [](const ADODB::Field& field) { return NzValue(field.Value()); }));
    SubType = Nz<Long>(rs, "SubType_INT");
    ApprGamma = Nz<Long>(rs, "Gamma_INT");
    ApprCrop = TrimmedText(rs, "AnatomicRegion");
    DCMDerived = Nz<Integer>(rs, "DCMDerived_BT");
    // A frame that isn't a number raises in each operation that needs it, so the load isn't complete.
    WithColumnName(frame.Text(), [&] { return Long{FrameNumber}; });
}

void cImage::addComment(const String& sComment, const String& sSignature, const Date& commentDate, const bool& saved,
                        const String&, const Long&) {
    const Ref<cStringItem> comment = New<cStringItem>();
    comment->str = sComment;
    comment->Signature = sSignature;
    comment->ID = ID;
    comment->DateStamp = commentDate;
    comment->bSaved = saved;
    Comments()->AddObj(comment, Comments()->Count() == 0 ? 0 : 1);
}

void cImage::GetComments(const Ref<Connection>& Con) {
    if (Comments()->Count() >= 1) return;
    const Ref<Recordset> rs = OpenPlain(Con, sql("SELECT Comments_T.* From Comments_T ",
                                                 "Where (((Comments_T.tabelID)=1) AND ((Comments_T.objectID)=", ID,
                                                 "))", "ORDER BY Comments_T.dates ASC;"));
    for (; !rs->Eof(); rs->MoveNext()) {
        const String text = Required<String>(rs, "commentString");
        const String signature = Required<String>(rs, "signature");
        addComment(text, signature, Required<Date>(rs, "dates"), true);
    }
    rs->Close();
}

const Interface& cImage::Describe() const {
    static const Interface& self = InterfaceOf<cImage>(
        "A stored image of a patient: its file, capture data, anatomy and display settings.",
        {
            Property<&cImage::AnaRegionMod>(
                "AnaRegionMod",
                "The code of the anatomic region's modifier, such as T-5100B; empty if it is not known."),
            Property<&cImage::AnaRegion>(
                "AnaRegion",
                "The code of the anatomic region, such as T-11170 for the upper jaw; empty if it is not known."),
            Property<&cImage::Laterality>("Laterality",
                                          "The side: L for left, R for right, B for both; empty if it is not known."),
            Property<&cImage::instanceUID>("instanceUID", "The DICOM SOP instance UID, at most 64 characters."),
            Property<&cImage::seriesID>("seriesID", "The key of the series; 0 if the image belongs to none."),
            Property<&cImage::studyID>("studyID", "The key of the study; 0 if the image belongs to none."),
            Property<&cImage::ImageNumberInSeries>("ImageNumberInSeries", "The number of the image in its series."),
            Property<&cImage::Pregnant>(
                "Pregnant",
                "The answer about pregnancy, 16 bits, 10 for not asked; stored for new images only, never loaded."),
            Property<&cImage::RootId>(
                "RootId",
                "The number of the storage root that contains the file; a save stores it for new images only."),
            Property<&cImage::DPIX>("DPIX", "The horizontal resolution in dots per inch; 0 if it is not known."),
            Property<&cImage::DPIY>("DPIY", "The vertical resolution in dots per inch; 0 if it is not known."),
            Property<&cImage::MirrRotStatus>(
                "MirrRotStatus", "Mirroring and rotation, as a number that the client defines; a null is loaded as 1."),
            Property<&cImage::dateTime>("dateTime",
                                        "The date and time of capture; a save stores it for new images only."),
            Property<&cImage::PatID>("PatID", "The key of the patient."),
            Property<&cImage::Approved>("Approved", "True if the image is approved."),
            Property<&cImage::sTeeth>(
                "sTeeth", "The teeth as two-digit numbers, each followed by a comma; SaveEx stores 180 characters."),
            Property<&cImage::ImageType>("ImageType",
                                         "The kind of the image, such as panoramic radiograph or photograph."),
            Operation<&cImage::Save>(
                "Save", "Stores the image and its new comments; inserts a row if ID is 0, else updates it. Returns 0.",
                {{"Con", Help::Connection}}),
            Property<&cImage::ID>("ID", "The key of the image in the database; 0 if the image is not stored."),
            Property<&cImage::URL>("URL",
                                   "The path of the image file below the storage root; empty if there is no file."),
            Property<&cImage::HWSourceTxt>("HWSourceTxt", "The name of the capture hardware, at most 255 characters."),
            ObjectProperty<&cImage::Comments, &cImage::SetComments>(
                "Comments", "The comments, newest first; never null when read. GetComments loads the stored ones."),
            ValueProperty<&cImage::GetFrameNumber, &cImage::PutFrameNumber>(
                "FrameNumber", "The frame of the layout that shows the image; 0 if none does."),
            Property<&cImage::Root_RootDirectory>(
                "Root_RootDirectory",
                "The directory of the storage root, loaded with the image, never written to the database."),
            Property<&cImage::DicomStatus>("DicomStatus",
                                           "The DICOM state of the image; 2 means that it is on a DICOM server too."),
            Operation<&cImage::GetImage>(
                "GetImage",
                "Loads an image without its comments. Returns false if there is none and changes nothing then.",
                {{"Con", Help::Connection}, {"ImageBildID", "The key of the image."}}),
            Operation<&cImage::addComment>(
                "addComment", "Adds a comment in front of the others; the next save stores it unless saved is true.",
                {{"sComment", "The text, of which 150 characters are stored."},
                 {"sSignature", "The name of the author, of which 150 characters are stored."},
                 {"commentDate", "The date and time of the comment."},
                 {"saved", "True if the database has the comment already, so that no save stores it."},
                 Optional("Action", "Ignored."),
                 Optional("objpointer", "Ignored.")}),
            Operation<&cImage::GetComments>("GetComments",
                                            "Loads the comments, newest first; does nothing if Comments is not empty.",
                                            {{"Con", Help::Connection}}),
            Property<&cImage::ApprInvert>("ApprInvert", "True if the image is displayed with inverted grey values."),
            Property<&cImage::ApprContrast>("ApprContrast",
                                            "The contrast of the display, on a scale that the client defines."),
            Property<&cImage::ApprBrightness>("ApprBrightness",
                                              "The brightness of the display, on a scale that the client defines."),
            Property<&cImage::ApprGamma>("ApprGamma",
                                         "The gamma value of the display, on a scale that the client defines."),
            Property<&cImage::RespPerson>("RespPerson",
                                          "The person who is responsible for the image, at most 255 characters."),
            Property<&cImage::CapturePerson>(
                "CapturePerson",
                "The person who captured the image; a save stores it for images that have a key only."),
            Operation<&cImage::GetFromRecord>(
                "GetFromRecord", "Fills the image from the current row, up to the first column that cannot be read.",
                {{"rs", "An open recordset with the columns of an image; it is not moved."}}),
            Property<&cImage::CRC>(
                "CRC", "A check value of the file that the client computes and compares; the library only stores it."),
            Property<&cImage::Key>("Key", "The key under which AddObject added the image to a collection; not stored."),
            Property<&cImage::ExposureTime_ms>("ExposureTime_ms",
                                               "The exposure time in milliseconds; 0 if it is not known."),
            Property<&cImage::Current_mA>("Current_mA", "The tube current in milliampere; 0 if it is not known."),
            Property<&cImage::Voltage_kV>("Voltage_kV", "The tube voltage in kilovolt; 0 if it is not known."),
            Property<&cImage::FailedToLoadImage>(
                "FailedToLoadImage",
                "True if the client could not load the file; not stored, and the library never sets it."),
            Property<&cImage::ThumbnailOnly>(
                "ThumbnailOnly",
                "True if the client loaded a thumbnail only; not stored, and the library never sets it."),
            Property<&cImage::OrgHeight>(
                "OrgHeight", "The original height of the picture; not stored, and the library never sets it."),
            Property<&cImage::OrgWidth>(
                "OrgWidth", "The original width of the picture; not stored, and the library never sets it."),
            Property<&cImage::ApprCrop>(
                "ApprCrop", "The crop of the display, as a text that the client defines, at most 255 characters."),
            Property<&cImage::SubType>("SubType", "A number that the client defines and that refines ImageType."),
            Property<&cImage::DCMDerived>(
                "DCMDerived", "0 for an original image, any other number for one that is derived from another image."),
            Operation<&cImage::SaveEx>(
                "SaveEx",
                "Searches the row of the image and saves it as Save does, so that none is stored twice. Returns 0.",
                {{"CheckExistOnID",
                  "True searches by ID; false, or an ID of 0, searches by instanceUID unless that is empty."},
                 {"Con", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass

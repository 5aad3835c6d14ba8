#include "images/cImage.h"

#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns the column as a flag: false for 0, true for any other number.
bool Flag(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) { return CInt(field.Value()) != 0; });
}

/// The same, with false for a null.
bool NzFlag(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) { return CInt(NzValue(field.Value())) != 0; });
}

}  // namespace

const Ref<cComments>& cImage::Comments() {
    if (!comments_) comments_ = New<cComments>();
    return comments_;
}

bool cImage::GetImage(const Ref<Connection>& Con, Long ImageBildID) {
    try {
        const Ref<Recordset> rs = OpenClient(
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
        rs->SetActiveConnection(nullptr);
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
    constexpr std::string_view ofImage = "ImageBild_T.RootId";
    repairing = !rs->HasField(ofImage);
    RootId = Required<Long>(rs, repairing ? "RootId" : ofImage);
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
    CRC = Trim(TextOrEmpty(rs, "CRC"));
    DPIY = Nz<Long>(rs, "DPIY_INT");
    DPIX = Nz<Long>(rs, "DPIX_INT");
    Voltage_kV = Nz<Long>(rs, "Voltage_INT");
    Current_mA = ValueOr(rs, "Current_INT", 0);
    CapturePerson = TextOrEmpty(rs, "Capture_Person_NVC");
    studyID = Nz<Long>(rs, "Study_ID");
    seriesID = Nz<Long>(rs, "Series_ID");
    instanceUID = Trim(TextOrEmpty(rs, "SOPInstanceUID_NVC"));
    ImageNumberInSeries =
        WithColumnName("ImageNumberInSeries", [&] { return CLng(Val(Trim(TextOrEmpty(rs, "ImageNumberInSeries")))); });
    DicomStatus = Nz<Integer>(rs, "DicomStatus_INT");
    constexpr std::string_view frame = "FrameNumber_INT";
    FrameNumber = LateNumber(OfColumn(rs, frame, [](const ADODB::Field& field) { return NzValue(field.Value()); }));
    SubType = Nz<Long>(rs, "SubType_INT");
    ApprGamma = Nz<Long>(rs, "Gamma_INT");
    ApprCrop = Trim(TextOrEmpty(rs, "AnatomicRegion"));
    DCMDerived = Nz<Integer>(rs, "DCMDerived_BT");
    // A frame that isn't a number raises in each operation that needs it, so the load isn't complete.
    WithColumnName(frame, [&] { return Long{FrameNumber}; });
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
    static const Interface& self = InterfaceOf<cImage>({
        Property<&cImage::AnaRegionMod>("AnaRegionMod"),
        Property<&cImage::AnaRegion>("AnaRegion"),
        Property<&cImage::Laterality>("Laterality"),
        Property<&cImage::instanceUID>("instanceUID"),
        Property<&cImage::seriesID>("seriesID"),
        Property<&cImage::studyID>("studyID"),
        Property<&cImage::ImageNumberInSeries>("ImageNumberInSeries"),
        Property<&cImage::Pregnant>("Pregnant"),
        Property<&cImage::RootId>("RootId"),
        Property<&cImage::DPIX>("DPIX"),
        Property<&cImage::DPIY>("DPIY"),
        Property<&cImage::MirrRotStatus>("MirrRotStatus"),
        Property<&cImage::dateTime>("dateTime"),
        Property<&cImage::PatID>("PatID"),
        Property<&cImage::Approved>("Approved"),
        Property<&cImage::sTeeth>("sTeeth"),
        Property<&cImage::ImageType>("ImageType"),
        Operation<&cImage::Save>("Save", {"Con"}),
        Property<&cImage::ID>("ID"),
        Property<&cImage::URL>("URL"),
        Property<&cImage::HWSourceTxt>("HWSourceTxt"),
        ObjectProperty<&cImage::Comments, &cImage::SetComments>("Comments"),
        ValueProperty<&cImage::GetFrameNumber, &cImage::PutFrameNumber>("FrameNumber"),
        Property<&cImage::Root_RootDirectory>("Root_RootDirectory"),
        Property<&cImage::DicomStatus>("DicomStatus"),
        Operation<&cImage::GetImage>("GetImage", {"Con", "ImageBildID"}),
        Operation<&cImage::addComment>("addComment", {"sComment", "sSignature", "commentDate", "saved",
                                                      Optional("Action"), Optional("objpointer")}),
        Operation<&cImage::GetComments>("GetComments", {"Con"}),
        Property<&cImage::ApprInvert>("ApprInvert"),
        Property<&cImage::ApprContrast>("ApprContrast"),
        Property<&cImage::ApprBrightness>("ApprBrightness"),
        Property<&cImage::ApprGamma>("ApprGamma"),
        Property<&cImage::RespPerson>("RespPerson"),
        Property<&cImage::CapturePerson>("CapturePerson"),
        Operation<&cImage::GetFromRecord>("GetFromRecord", {"rs"}),
        Property<&cImage::CRC>("CRC"),
        Property<&cImage::Key>("Key"),
        Property<&cImage::ExposureTime_ms>("ExposureTime_ms"),
        Property<&cImage::Current_mA>("Current_mA"),
        Property<&cImage::Voltage_kV>("Voltage_kV"),
        Property<&cImage::FailedToLoadImage>("FailedToLoadImage"),
        Property<&cImage::ThumbnailOnly>("ThumbnailOnly"),
        Property<&cImage::OrgHeight>("OrgHeight"),
        Property<&cImage::OrgWidth>("OrgWidth"),
        Property<&cImage::ApprCrop>("ApprCrop"),
        Property<&cImage::SubType>("SubType"),
        Property<&cImage::DCMDerived>("DCMDerived"),
        Operation<&cImage::SaveEx>("SaveEx", {"CheckExistOnID", "Con"}),
    });
    return self;
}

}  // namespace OXClass

#include "images/cImages.h"

#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

String LoadStatement(ImageOwnerOjectTypes owner, Long id, const String& clause) {
    constexpr char order[] = " ORDER BY DateCaptured_SD, ImageBildID";
    if (!clause.empty())
        return sql("SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId ", Clause(clause),
                   order);
    if (owner == iootPatient)
        return sql("SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId where PatientID=",
                   id, order);
    if (owner == iootSeries)
        return sql("SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId where Series_ID=",
                   id, order);
    return order;
}

/// Returns the key of the current row, which the load may not have reached; 0 if it can't be read.
Long KeyOf(const Ref<Recordset>& rs) {
    return Swallowed([&] { return Required<Long>(rs, "ImageBildID"); });
}

}  // namespace

Long cImages::LoadAll4Object(const Ref<Connection>& conn, const ImageOwnerOjectTypes& ObjectType, const Long& ID,
                             const String& SQLWhereClause) {
    return Load(conn, LoadStatement(ObjectType, ID, SQLWhereClause), true);
}

Long cImages::LoadReadable(const Ref<Connection>& conn, const ImageOwnerOjectTypes& ObjectType, const Long& ID,
                           const String& SQLWhereClause) {
    return Load(conn, LoadStatement(ObjectType, ID, SQLWhereClause), false);
}

Long cImages::Load(const Ref<Connection>& con, const String& statement, bool partlyReadToo) {
    Clear();
    unread_.clear();
    const Ref<Recordset> rs = OpenClient(con, statement);
    for (; !rs->Eof(); rs->MoveNext()) {
        const Ref<cImage> image = New<cImage>();
        try {
            image->GetFromRecord(rs);
        } catch (const Error&) {
            if (partlyReadToo) throw;
        }
        const bool whole = image->LoadCompletion().Complete();
        if (!whole) unread_.push_back({KeyOf(rs), image->LoadCompletion().Failure()});
        if (whole || partlyReadToo) AddMember(image, "K" + CStr(image->ID));
    }
    const Long count = Count();
    rs->Close();
    return count;
}

Ref<cImage> cImages::Add(const String& URL, const Long& ID, const xigImageTypes& ImageType, const String& sTeeth,
                         const bool& Approved, const Long& PatID, const Date& dateTime, const Long& MirrRotStatus,
                         const Long& DPIY, const Long& DPIX, const Long& RootId, const Long& Pregnant,
                         const Long& ImageNumberInSeries, const Integer& DicomStatus, const Long& studyID,
                         const Long& FrameNumber, const Long& seriesID, const String& instanceUID,
                         const String& Laterality, const String& AnaRegion, const String& AnaRegionMod,
                         const Ref<cComments>& Comments, const String& Root_RootDirectory, const String& HWSourceTxt,
                         const Long& ApprGamma, const Long& ApprBrightness, const Long& ApprContrast,
                         const bool& ApprInvert, const String& CapturePerson, const String& RespPerson,
                         const String& sKey) {
    const Ref<cImage> image = New<cImage>();
    image->URL = URL;
    image->ID = ID;
    image->ImageType = ImageType;
    image->sTeeth = sTeeth;
    image->Approved = Approved;
    image->PatID = PatID;
    image->dateTime = dateTime;
    image->MirrRotStatus = MirrRotStatus;
    image->DPIY = DPIY;
    image->DPIX = DPIX;
    image->RootId = RootId;
    image->Pregnant = Pregnant;
    image->ImageNumberInSeries = ImageNumberInSeries;
    image->DicomStatus = DicomStatus;
    image->studyID = studyID;
    image->FrameNumber = FrameNumber;
    image->seriesID = seriesID;
    image->instanceUID = instanceUID;
    image->Laterality = Laterality;
    image->AnaRegion = AnaRegion;
    image->AnaRegionMod = AnaRegionMod;
    image->SetComments(Comments);
    image->Root_RootDirectory = Root_RootDirectory;
    image->HWSourceTxt = HWSourceTxt;
    image->ApprGamma = ApprGamma;
    image->ApprBrightness = ApprBrightness;
    image->ApprContrast = ApprContrast;
    image->ApprInvert = ApprInvert;
    image->CapturePerson = CapturePerson;
    image->RespPerson = RespPerson;
    return AddMember(image, sKey);
}

Ref<cImage> cImages::AddObject(Ref<cImage>& oImage, const String& sKey) {
    if (!sKey.empty()) oImage->Key = sKey;
    Ref<cImage> added = AddMember(oImage, sKey);
    oImage = nullptr;
    return added;
}

const Interface& cImages::Describe() const {
    static const Interface& self = InterfaceOf<cImages>({
        Operation<&cImages::LoadAll4Object>("LoadAll4Object", {"conn", "ObjectType", "ID", Optional("SQLWhereClause")}),
        Operation<&cImages::Add>("Add", {"URL",
                                         "ID",
                                         "ImageType",
                                         "sTeeth",
                                         "Approved",
                                         "PatID",
                                         "dateTime",
                                         "MirrRotStatus",
                                         "DPIY",
                                         "DPIX",
                                         "RootId",
                                         "Pregnant",
                                         "ImageNumberInSeries",
                                         "DicomStatus",
                                         "studyID",
                                         "FrameNumber",
                                         "seriesID",
                                         "instanceUID",
                                         "Laterality",
                                         "AnaRegion",
                                         "AnaRegionMod",
                                         "Comments",
                                         "Root_RootDirectory",
                                         "HWSourceTxt",
                                         "ApprGamma",
                                         "ApprBrightness",
                                         "ApprContrast",
                                         "ApprInvert",
                                         "CapturePerson",
                                         "RespPerson",
                                         Optional("sKey")}),
        ReadOnly<&cImages::Item>("Item", {"vntIndexKey"}, DefaultMember),
        ReadOnly<&cImages::Count>("Count"),
        Operation<&cImages::Remove>("Remove", {"vntIndexKey"}),
        ReadOnly<&cImages::NewEnum>("NewEnum", {}, EnumeratorMember),
        Operation<&cImages::AddObject>("AddObject", {"oImage", Optional("sKey")}),
    });
    return self;
}

}  // namespace OXClass

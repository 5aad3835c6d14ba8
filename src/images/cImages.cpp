#include "images/cImages.h"

#include "frame/Help.h"
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
    const Ref<Recordset> rs = OpenUnbuffered(con, statement);
    const auto moveNext = [&] {
        try {
            rs->MoveNext();
        } catch (...) {
            Clear();  // as if the statement had failed at once
            unread_.clear();
            throw;
        }
    };
    for (; !rs->Eof(); moveNext()) {
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
    static const Interface& self = InterfaceOf<cImages>(
        "The images of a patient or a series, or of a condition in SQL.",
        {
            Operation<&cImages::LoadAll4Object>(
                "LoadAll4Object",
                "Replaces the members by the images of an owner, oldest first, and returns their number.",
                {{"conn", Help::Connection},
                 {"ObjectType", "Which owner: iootPatient or iootSeries. Other values need SQLWhereClause."},
                 {"ID", "The key of the patient or the series; ignored if SQLWhereClause is not empty."},
                 Optional("SQLWhereClause",
                          "A condition in SQL that begins with WHERE and selects the images instead of the owner.")}),
            Operation<&cImages::Add>(
                "Add", "Creates an image with these values, adds it at the end and returns it; stores nothing.",
                {{"URL", "The path of the image file below the storage root; empty if there is no file."},
                 {"ID", "The key of the image in the database; 0 if the image is not stored."},
                 {"ImageType", "The kind of the image."},
                 {"sTeeth", "The teeth in the image, as two-digit numbers, each followed by a comma."},
                 {"Approved", "True if the image is approved."},
                 {"PatID", "The key of the patient."},
                 {"dateTime", "The date and time of capture."},
                 {"MirrRotStatus", "Mirroring and rotation, as a number that the client defines."},
                 {"DPIY", "The vertical resolution in dots per inch; 0 if it is not known."},
                 {"DPIX", "The horizontal resolution in dots per inch; 0 if it is not known."},
                 {"RootId", "The number of the storage root that contains the file."},
                 {"Pregnant", "The answer about pregnancy as a 16-bit number, 10 for not asked."},
                 {"ImageNumberInSeries", "The number of the image in its series."},
                 {"DicomStatus", "The DICOM state of the image; 2 means that it is on a DICOM server too."},
                 {"studyID", "The key of the study; 0 if the image belongs to none."},
                 {"FrameNumber", "The frame of the layout that shows the image; 0 if none does."},
                 {"seriesID", "The key of the series; 0 if the image belongs to none."},
                 {"instanceUID", "The DICOM SOP instance UID, at most 64 characters."},
                 {"Laterality", "The side: L for left, R for right, B for both; empty if it is not known."},
                 {"AnaRegion", "The code of the anatomic region; empty if it is not known."},
                 {"AnaRegionMod", "The code of the anatomic region's modifier; empty if it is not known."},
                 {"Comments", "The comments, to which the image refers without a copy; null for an empty list."},
                 {"Root_RootDirectory", "The directory of the storage root."},
                 {"HWSourceTxt", "The name of the capture hardware, at most 255 characters."},
                 {"ApprGamma", "The gamma value of the display."},
                 {"ApprBrightness", "The brightness of the display."},
                 {"ApprContrast", "The contrast of the display."},
                 {"ApprInvert", "True if the image is displayed with inverted grey values."},
                 {"CapturePerson", "The person who captured the image, at most 255 characters."},
                 {"RespPerson", "The person who is responsible for the image, at most 255 characters."},
                 Optional("sKey", Help::NewKey)}),
            ReadOnly<&cImages::Item>("Item", "Returns an image of the collection, or null if there is none.",
                                     {{"vntIndexKey", Help::IndexOrKey}}, DefaultMember),
            ReadOnly<&cImages::Count>("Count", "The number of images in the collection."),
            Operation<&cImages::Remove>("Remove",
                                        "Removes an image from the collection; a stored image stays in the database.",
                                        {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cImages::NewEnum>("NewEnum", "Returns an enumerator of the members, in their order.", {},
                                        EnumeratorMember),
            Operation<&cImages::AddObject>(
                "AddObject", "Adds an existing image at the end and returns it.",
                {{"oImage", "The image; the variable of the caller is null afterwards."},
                 Optional("sKey", "The key of the new member, which the Key of the image is set to; empty for none.")}),
        });
    return self;
}

}  // namespace OXClass

#include "kit/Database.h"
#include "library/ClassTable.h"
#include "platform/component/dispatch/Interface.h"

#include <gmock/gmock.h>

/// The arguments that a client passes by value and by reference. An operation receives the address of an argument by
/// reference in the vtable, so that a change here breaks compiled clients.
namespace OXClass {
namespace {

using Platform::Argument;
using Platform::Member;
using Platform::MemberKind;
using Platform::String;
using ::testing::ElementsAreArray;

/// "cDoctors.Item(vntIndexKey by value)"; arguments of one kind in a row are joined.
String Passed(const ClassEntry& entry, const Member& member) {
    String text = String(entry.Name) + "." + member.Name + "(", kind;
    for (const Argument& argument : member.Arguments) {
        const String next = argument.ByReference ? " by reference" : " by value";
        if (!kind.empty()) text += (next == kind ? "" : kind) + ", ";
        text += argument.Name;
        kind = next;
    }
    return text + kind + ")";
}

TEST(Arguments, ArePassedByValueOrByReference) {
    std::vector<String> passed;
    for (const ClassEntry& entry : ClassTable())
        for (const Member& member : entry.Make()->Describe().Members())
            if ((member.Kind == MemberKind::Operation || member.Kind == MemberKind::Get) && !member.Arguments.empty())
                passed.push_back(Passed(entry, member));
    // clang-format off
    const char* const expected[] = {
        "Class1.GetRoots(Con by value)",
        "Class1.GetSubFolder(PatID by value)",
        "Class1.SaveGLSetting(Con by value, GLId, sSetting, bReplace by reference)",
        "Class1.GetGLSetting(Con by value, GLId, sFirstSetting, cAllGLs by reference)",
        "Class1.GetRootOnID(Con by value, RootId by reference)",
        "Class1.GetCachedRootOnID(Con by value, RootId, bFlushCache by reference)",
        "Class1.GetInstanceUID(Con by value)",
        "cComments.Add(str, ID, DateStamp, Signature, sKey by reference)",
        "cComments.Item(vntIndexKey by value)",
        "cComments.Remove(vntIndexKey by value)",
        "cComments.AddObj(Obj, Index, sKey by reference)",
        "cDoctor.PatientCount(Con by value)",
        "cDoctor.DeleteDoctor(Con by value)",
        "cDoctor.SaveDoctor(Con by value)",
        "cDoctor.LoadDoctor(drID, Con by value)",
        "cDoctor.LoadDoctorOnGUID(drGUID, Con by value)",
        "cDoctors.GetAllDoctors(Con by value)",
        "cDoctors.Add(drID, DrName, DrFirstName, DrLastName, DrPrefix, DrContactInfo, DrType, sKey by reference)",
        "cDoctors.Item(vntIndexKey by value)",
        "cDoctors.Remove(vntIndexKey by value)",
        "cGlobalList.Save(sConn by value)",
        "cGlobalList.Delete(sConn by value)",
        "cGlobalList.GetGL(sConn, GlobalListID by value)",
        "cGlobalLists.GetAllGLs(sConn by value, ListID by reference)",
        "cGlobalLists.Add(sKey by value)",
        "cGlobalLists.Item(vntIndexKey by value)",
        "cGlobalLists.Remove(vntIndexKey by value)",
        "cGlobalLists.DeleteAllOnListID(cnconn by value, lID by reference)",
        "cGlobalLists.DeleteAll(cnconn by value)",
        "cImagecard.Save(conn by reference)",
        "cImagecard.GetImageCard(conn, lICID by reference)",
        "cImagecard.LoadImageAttributes(conn by reference)",
        "cImagecardAttribute.Save(conn by reference)",
        "cImagecardAttribute.LoadImageManipulations(conn by reference)",
        "cImagecardAttribute.SaveManipulations(conn by reference)",
        "cMWLItem.AddRecipient(NewRecipient by reference)",
        "cMWLItem.AddOtherPID(NewPID by reference)",
        "cPatient.LoadOnPatientID(PatientID by reference)",
        "cPatient.Save(Con by value)",
        "cPatient.LoadOnPatientIDorPDBID(Con by value, PatientID, PDBID by reference)",
        "cStudy.loadStudy(Study by value, Con by reference)",
        "cStudy.savestudy(CheckExistOnID, Con by reference)",
        "cStudy.Delete(Con by reference)",
        "cTeeth.Add(Selected, TNumber by value, sKey by reference)",
        "cTeeth.Item(vntIndexKey by value)",
        "cTeeth.Remove(vntIndexKey by value)",
        "cTemplate.GetTemplate(Con by reference, TID by value, DicomID by reference)",
        "cTemplate.LoadTemplateAttributes(Con by reference)",
        "cTemplate.Save(Con by reference)",
        "cTemplateAttribute.Save(Con by reference)",
        "IntendedRecipients.Add(str, ID, sKey by reference)",
        "IntendedRecipients.Item(vntIndexKey by value)",
        "IntendedRecipients.Remove(vntIndexKey by value)",
        "OtherPatIDs.Add(str, ID, sKey by reference)",
        "OtherPatIDs.Item(vntIndexKey by value)",
        "OtherPatIDs.Remove(vntIndexKey by value)",
        "OtherPatIDs.FillFromString(sDelimitedString by reference)",
        "cAnatomicDescription.LoadSGN(Con, lADId by reference)",
        "cAnatomicDescription.SaveSGN(Con by reference)",
        "cAnatomicDescription.DeleteSGN(Con by reference)",
        "cAnatomicDescription.DeleteSGNOnTGId(Con by reference)",
        "cAnatomicDescription.GetAsString(bComm by reference)",
        "cAnatomicDescription.SetTeethFromString(sIOstring, oTeeth by reference)",
        "cUniCard.LoadCardFull(conn, UID, ID, CardType by reference)",
        "cImages.LoadAll4Object(conn, ObjectType, ID, SQLWhereClause by reference)",
        "cImages.Add(URL, ID, ImageType, sTeeth, Approved, PatID, dateTime, MirrRotStatus, DPIY, DPIX, RootId, Pregnant, ImageNumberInSeries, DicomStatus, studyID, FrameNumber, seriesID, instanceUID, Laterality, AnaRegion, AnaRegionMod, Comments, Root_RootDirectory, HWSourceTxt, ApprGamma, ApprBrightness, ApprContrast, ApprInvert, CapturePerson, RespPerson, sKey by reference)",
        "cImages.Item(vntIndexKey by value)",
        "cImages.Remove(vntIndexKey by value)",
        "cImages.AddObject(oImage, sKey by reference)",
        "cUniCards.GetICAndSEList4Patient(conn, sPID, lPID, FromDate, ToDate by reference)",
        "cUniCards.AddObj(oUC, sKey, sBefore by reference)",
        "cUniCards.Item(vntIndexKey by value)",
        "cUniCards.Remove(vntIndexKey by value)",
        "cImage.Save(Con by reference)",
        "cImage.GetImage(Con by reference, ImageBildID by value)",
        "cImage.addComment(sComment, sSignature, commentDate, saved, Action, objpointer by reference)",
        "cImage.GetComments(Con by reference)",
        "cImage.GetFromRecord(rs by reference)",
        "cImage.SaveEx(CheckExistOnID, Con by reference)",
        "cSerie.loadSeries(Series by value, Con by reference)",
        "cSerie.SaveSeries(CheckExistOnID, Con by reference)",
        "cSerie.Delete(Con by reference)",
        "cSerie.SaveAsIC(Con, colImages by reference)",
        "cSerie.HangSeries(colImgs, conn by reference)",
        "cClinic.DeleteClinic(Con by reference)",
        "cClinic.SaveClinic(Con by reference)",
        "cClinic.LoadClinic(ClinicID by value, Con by reference)",
        "cClinics.GetHQClinic(Con by reference)",
        "cClinics.GetAllClinics(Con by reference)",
        "cClinics.Add(ID, ClinicName, OrgNumber, ZipCode, StreetAddress, City, Telephone, Remarks16, sKey by reference)",
        "cClinics.Item(vntIndexKey by value)",
        "cClinics.ItemOnClinicName(sName, Con by reference)",
        "cClinics.Remove(vntIndexKey by value)",
    };
    // clang-format on
    EXPECT_THAT(passed, ElementsAreArray(expected));
}

TEST(Arguments, ThreePutsTakeTheirValueByReference) {
    std::vector<String> byReference;
    for (const ClassEntry& entry : ClassTable())
        for (const Member& member : entry.Make()->Describe().Members())
            if (member.Kind == MemberKind::Put && member.Arguments.back().ByReference)
                byReference.push_back(String(entry.Name) + "." + member.Name);
    EXPECT_THAT(byReference, ElementsAreArray({"cStudy.Key", "cAnatomicDescription.ADId", "cSerie.Key"}));
}

}  // namespace
}  // namespace OXClass

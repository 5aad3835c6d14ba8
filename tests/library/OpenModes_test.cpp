#include "anatomy/cAnatomicDescription.h"
#include "cardlist/cUniCards.h"
#include "cards/cImagecard.h"
#include "cards/cImagecardAttribute.h"
#include "cards/cTemplate.h"
#include "cards/cTemplateAttribute.h"
#include "frame/Class1.h"
#include "frame/cGlobalLists.h"
#include "images/cImages.h"
#include "kit/Database.h"
#include "people/cClinics.h"
#include "people/cDoctors.h"
#include "people/cPatient.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <functional>

/// The cursor type, lock type and options with which each operation opens its statements.
namespace OXClass {
namespace {

using namespace TestKit;

constexpr const char* Plain = "0 1 1";
constexpr const char* Unspecified = "0 1 -1";  ///< also a statement that the connection executes
constexpr const char* Updatable = "1 3 1";
constexpr const char* Dynamic = "2 2 -1";
constexpr const char* Static = "3 1 1";
constexpr const char* Optimistic = "0 3 -1";

class OpenModes : public WithDatabase {
protected:
    OpenModes() {
        for (const char* row :
             {"Root_T (RootID, RootDirectory, Status) VALUES (1, 'r', 1)",
              "GlobalList_T (GlobalListID, ListID, ListText) VALUES (5, 7, 'text')",
              "Patient_T (PatientID, PersonNr_CH) VALUES (5, 'P')",
              "Doctor_T (drID, DrName_NVC, drGUID) VALUES (5, 'name', 'G')",
              "Clinic_T (ClinicID, ClinicName) VALUES (5, 'name')",
              "Study_T (Study_ID, StudyInstanceUID, PatientID, StudyDateTime, AccessionNumber, Studydesc, "
              "referDrName, studyID) VALUES (5, '1.5', 5, '2024-01-01 00:00:00', '', '', '', '')",
              "Series_T (Series_ID, SeriesInstanceUID, Study_ID, SeriesDescription, SeriesDateTime, Modality, "
              "seriesNumber, "
              "NumberOfImages, template_ID, orgServerID, location) VALUES (5, '1.6', 5, '', '2024-01-01 00:00:00', "
              "'IO', '1', 1, 0, 0, 0)",
              "ImageBild_T (ImageBildID, PatientID, Series_ID, RootId, DateCaptured_SD, Brightness_INT, Contrast_INT, "
              "ImageType, Invert_BT, SOPInstanceUID_NVC, GraphicURL_NVC) VALUES (5, 5, 5, 1, '2024-01-01 00:00:00', 0, "
              "0, 0, 0, '1.7', 'a.dcm')",
              "ImageCard_T (ImageCardID, PatientID, ICName, ICDateCreated, ICLastUpdate, ICDescription, "
              "ICFullViewWidth, ICFullViewHeight) VALUES (5, 5, 'card', '2024-01-01 00:00:00', '2024-01-01 00:00:00', "
              "'', 1000, 700)",
              "ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IASequence) VALUES (5, 5, 5, 1)"})
            Run(String("INSERT INTO ") + row);
        LoadLayouts();
    }

    /// Runs an operation, and compares how it opened its statements.
    void Expect(const char* operation, const std::function<void()>& run, const std::vector<String>& modes) {
        ModeLog log;
        con->Advise(log);
        run();
        con->Unadvise(log);
        EXPECT_EQ(log.seen, modes) << operation;
    }
};

TEST_F(OpenModes, OfTheFrame) {
    const Ref<Class1> services = New<Class1>();
    Expect("Class1.GetRoots", [&] { services->GetRoots(con); }, {Unspecified});
    Expect("Class1.GetRootOnID of the active root", [&] { services->GetRootOnID(con, 0); }, {Unspecified});
    Expect("Class1.GetRootOnID of a number", [&] { services->GetRootOnID(con, 1); }, {Unspecified});
    Expect("cGlobalList.GetGL", [&] { New<cGlobalList>()->GetGL(con, 5); }, {Plain});
    Expect("cGlobalLists.GetAllGLs", [&] { New<cGlobalLists>()->GetAllGLs(con, static_cast<gGlobalListIDs>(7)); },
           {Plain});
}

TEST_F(OpenModes, OfThePeople) {
    const Ref<cDoctor> doctor = New<cDoctor>();
    Expect("cDoctor.LoadDoctor", [&] { doctor->LoadDoctor(5, con); }, {Plain});
    Expect("cDoctor.LoadDoctorOnGUID", [&] { doctor->LoadDoctorOnGUID("G", con); }, {Plain});
    Expect("cDoctor.PatientCount", [&] { doctor->PatientCount(con); }, {Plain});
    Expect("cDoctor.SaveDoctor", [&] { doctor->SaveDoctor(con); }, {Updatable});
    Expect("cDoctor.DeleteDoctor", [&] { doctor->DeleteDoctor(con); }, {Unspecified});
    Expect("cDoctors.GetAllDoctors", [&] { New<cDoctors>()->GetAllDoctors(con); }, {Unspecified});
    const Ref<cClinic> clinic = New<cClinic>();
    Expect("cClinic.LoadClinic", [&] { clinic->LoadClinic(5, con); }, {Plain});
    Expect("cClinic.SaveClinic", [&] { clinic->SaveClinic(con); }, {Updatable});
    Expect("cClinics.GetAllClinics", [&] { New<cClinics>()->GetAllClinics(con); }, {Dynamic});
    Expect("cClinic.DeleteClinic", [&] { clinic->DeleteClinic(con); }, {Unspecified});
    const Ref<cPatient> patient = New<cPatient>();
    Expect("cPatient.LoadOnPatientIDorPDBID", [&] { patient->LoadOnPatientIDorPDBID(con, "P", 0); }, {Plain});
    Expect("cPatient.Save of a stored patient", [&] { patient->Save(con); }, {Plain, Unspecified});
    patient->PatientID = "NEW";
    Expect("cPatient.Save of a new patient", [&] { patient->Save(con); }, {Plain, Unspecified, Unspecified});
}

TEST_F(OpenModes, OfStudiesSeriesAndImages) {
    const Ref<cStudy> study = New<cStudy>();
    Expect("cStudy.loadStudy", [&] { study->loadStudy("5", con); }, {Plain});
    Expect("cStudy.savestudy", [&] { study->savestudy(true, con); }, {Updatable});
    Expect("cStudy.Delete", [&] { study->Delete(con); }, {Updatable});
    const Ref<cSerie> series = New<cSerie>();
    Expect("cSerie.loadSeries", [&] { series->loadSeries("5", con); }, {Plain});
    Expect("cSerie.SaveSeries", [&] { series->SaveSeries(true, con); }, {Updatable});
    Expect("cImages.LoadAll4Object", [&] { New<cImages>()->LoadAll4Object(con, iootSeries, 5); }, {Plain});
    const Ref<cImage> image = New<cImage>();
    Expect("cImage.GetImage", [&] { EXPECT_TRUE(image->GetImage(con, 5)); }, {Plain});
    Expect("cImage.GetComments", [&] { image->GetComments(con); }, {Plain});
    Expect("cImage.SaveEx", [&] { image->SaveEx(true, con); }, {Optimistic, Unspecified});
    Expect("cSerie.Delete", [&] { series->Delete(con); }, {Updatable});
}

TEST_F(OpenModes, OfTemplatesAndAnatomy) {
    const Ref<cTemplate> layout = New<cTemplate>();
    Expect("cTemplate.GetTemplate", [&] { layout->GetTemplate(con, 0, 7); }, {Plain, Plain});
    Expect("cTemplate.LoadTemplateAttributes", [&] { layout->LoadTemplateAttributes(con); }, {Plain});
    const Ref<cTemplateAttribute> slot = New<cTemplateAttribute>();
    Expect("cTemplateAttribute.Save of a new slot", [&] { slot->Save(con); }, {Unspecified, Plain});
    Expect("cAnatomicDescription.LoadSGN", [&] { New<cAnatomicDescription>()->LoadSGN(con, 5); }, {Plain});
}

TEST_F(OpenModes, OfImageCards) {
    const Ref<cImagecard> card = New<cImagecard>();
    Expect("cImagecard.GetImageCard", [&] { card->GetImageCard(con, 5); }, {Plain, Plain, Plain});
    Expect("cImagecard.LoadImageAttributes", [&] { card->LoadImageAttributes(con); }, {Plain, Plain});
    const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
    placed->ID = 5;
    Expect("cImagecardAttribute.LoadImageManipulations", [&] { placed->LoadImageManipulations(con); }, {Plain});
    Expect("cImagecardAttribute.SaveManipulations", [&] { placed->SaveManipulations(con); }, {Updatable});
    placed->ToBeDeleted = true;
    Expect("cImagecardAttribute.Save of one to be deleted", [&] { placed->Save(con); }, {Unspecified, Updatable});
    const Long patient = 0;
    const auto list = [&] { EXPECT_EQ(New<cUniCards>()->GetICAndSEList4Patient(con, "P", patient), 5); };
    Expect("cUniCards.GetICAndSEList4Patient of a patient with cards", list, {Unspecified, Static});
    Run("DELETE FROM ImageCard_T");
    Expect("cUniCards.GetICAndSEList4Patient of a patient without", list, {Unspecified, Unspecified, Static});
}

}  // namespace
}  // namespace OXClass

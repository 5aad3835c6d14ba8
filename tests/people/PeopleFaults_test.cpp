#include "kit/FaultyProvider.h"

#include "people/OutsideGUID.h"
#include "people/cClinics.h"
#include "people/cDoctors.h"

/// The state of doctors and clinics after a failure of the database: each call that an operation makes fails once, and
/// then the operation is repeated.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::IsEmpty;

class PeopleFaults : public WithFaults {
protected:
    PeopleFaults() {
        OutsideGUID = [this] { return "guid" + CStr(++asked); };
    }
    ~PeopleFaults() override { OutsideGUID = nullptr; }

    const Ref<cDoctor> doctor = New<cDoctor>();
    const Ref<cClinic> clinic = New<cClinic>();
    int asked = 0;  ///< for a GUID
};

// ---- doctors ------------------------------------------------------------------------------------

TEST_F(PeopleFaults, ANewDoctorIsWrittenWholeOrNotAtAll) {
    const TextBoxes boxes;
    doctor->drID = 77;
    for (const int call : {1, 2}) {
        FailOnce(call, "cDoctor.SaveDoctor, SQLite", [&] { doctor->SaveDoctor(faulty); });
        EXPECT_EQ(doctor->drID, 77);
        EXPECT_EQ(CountOf("Doctor_T"), 0);
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(doctor->SaveDoctor(faulty)); }), 2) << "look and insert";
    EXPECT_EQ(doctor->drID, 1);
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(PeopleFaults, AKnownDoctorKeepsItsRowUntilTheUpdateSucceeds) {
    Run("INSERT INTO Doctor_T (drID, DrName_NVC) VALUES (5, 'old')");
    doctor->drID = 5;
    doctor->DrName = " new ";
    for (const int call : {1, 2}) {
        FailOnce(call, "cDoctor.SaveDoctor, SQLite", [&] { doctor->SaveDoctor(faulty); });
        EXPECT_EQ(doctor->DrName, " new ");
        EXPECT_EQ(Ask("SELECT DrName_NVC FROM Doctor_T"), Variant("old"));
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(doctor->SaveDoctor(faulty)); }), 2);
    EXPECT_EQ(Ask("SELECT DrName_NVC FROM Doctor_T"), Variant("new"));
}

TEST_F(PeopleFaults, CountingAndDeletingThatFailChangeNothing) {
    Run("INSERT INTO Doctor_T (drID) VALUES (5)");
    doctor->drID = 5;
    FailOnce(1, "cDoctor.PatientCount, SQLite", [&] { doctor->PatientCount(faulty); });
    FailOnce(1, "cDoctor.DeleteDoctor, SQLite", [&] { doctor->DeleteDoctor(faulty); });
    EXPECT_EQ(CountOf("Doctor_T"), 1);
    EXPECT_EQ(CallsOf([&] { doctor->PatientCount(faulty); }), 1);
    EXPECT_EQ(CallsOf([&] { doctor->DeleteDoctor(faulty); }), 1);
    EXPECT_EQ(CountOf("Doctor_T"), 0);
}

TEST_F(PeopleFaults, ALoadWithAGuidMakesOneCall) {
    Run("INSERT INTO Doctor_T (drID, DrName_NVC, drGUID) VALUES (5, 'AH', 'F00D')");
    doctor->DrName = "kept";
    FailOnce(1, "cDoctor.loadDoctor, SQLite", [&] { doctor->LoadDoctor(5, faulty); });
    FailOnce(1, "cDoctor.loadDoctorOnGUID, SQLite", [&] { doctor->LoadDoctorOnGUID("f00d", faulty); });
    EXPECT_EQ(doctor->DrName, "kept");
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(doctor->LoadDoctor(5, faulty)); }), 1);
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(doctor->LoadDoctorOnGUID("f00d", faulty)); }), 1);
}

TEST_F(PeopleFaults, AWriteBackThatFailsLeavesTheRowWithoutAGuidAndTheObjectWithOne) {
    Run("INSERT INTO Doctor_T (drID, DrName_NVC) VALUES (5, ' AH ')");
    int failures = 0;
    for (const int call : {2, 3}) {
        doctor->DrName = "old";
        FailOnce(call, "cDoctor.loadDoctor, cDoctor.SaveDoctor, SQLite", [&] { doctor->LoadDoctor(5, faulty); });
        EXPECT_EQ(doctor->DrName, " AH ");
        EXPECT_EQ(doctor->drID, 5);
        EXPECT_EQ(doctor->drGUID, "GUID" + CStr(Long{++failures}));
        EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant(Null{}));
        EXPECT_EQ(Ask("SELECT DrName_NVC FROM Doctor_T"), Variant(" AH "));
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(doctor->LoadDoctor(5, faulty)); }), 3) << "read, look, update";
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("GUID3"));
    EXPECT_EQ(Ask("SELECT DrName_NVC FROM Doctor_T"), Variant("AH"));
}

TEST_F(PeopleFaults, AWriteBackOfALoadByGuidFailsUnderBothNames) {
    Run("INSERT INTO Doctor_T (drID, drGUID) VALUES (5, '')");
    for (const int call : {2, 3}) {
        FailOnce(call, "cDoctor.loadDoctorOnGUID, cDoctor.SaveDoctor, SQLite",
                 [&] { doctor->LoadDoctorOnGUID("", faulty); });
        EXPECT_EQ(doctor->drID, 5);
        EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant(""));
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(doctor->LoadDoctorOnGUID("", faulty)); }), 3);
}

TEST_F(PeopleFaults, AListOfDoctorsThatFailsIsEmpty) {
    Run("INSERT INTO Doctor_T (drID) VALUES (5)");
    const Ref<cDoctors> doctors = New<cDoctors>();
    doctors->GetAllDoctors(faulty);
    FailOnce(1, "cDoctors.GetAllDoctors, SQLite", [&] { doctors->GetAllDoctors(faulty); });
    EXPECT_EQ(doctors->Count(), 0);
    EXPECT_EQ(CallsOf([&] { EXPECT_EQ(doctors->GetAllDoctors(faulty), 1); }), 1) << "no doctor is saved";
}

// ---- clinics ------------------------------------------------------------------------------------

TEST_F(PeopleFaults, ANewClinicIsWrittenWholeOrNotAtAll) {
    const TextBoxes boxes;
    clinic->ID = 77;
    for (const int call : {1, 2}) {
        FailOnce(call, "cClinic.SaveDoctor, SQLite", [&] { clinic->SaveClinic(faulty); });
        EXPECT_EQ(clinic->ID, 77);
        EXPECT_EQ(CountOf("Clinic_T"), 0);
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(clinic->SaveClinic(faulty)); }), 2);
    EXPECT_EQ(clinic->ID, 1);
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(PeopleFaults, AKnownClinicKeepsItsRowUntilTheUpdateSucceeds) {
    Run("INSERT INTO Clinic_T (ClinicID, ClinicName) VALUES (5, 'old')");
    clinic->ID = 5;
    clinic->ClinicName = "new";
    for (const int call : {1, 2}) {
        FailOnce(call, "cClinic.SaveDoctor, SQLite", [&] { clinic->SaveClinic(faulty); });
        EXPECT_EQ(Ask("SELECT ClinicName FROM Clinic_T"), Variant("old"));
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(clinic->SaveClinic(faulty)); }), 2);
    EXPECT_EQ(Ask("SELECT ClinicName FROM Clinic_T"), Variant("new"));
}

TEST_F(PeopleFaults, LoadingAndDeletingAClinicThatFailChangeNothing) {
    Run("INSERT INTO Clinic_T (ClinicID, ClinicName) VALUES (5, 'North')");
    clinic->ID = 5;
    clinic->ClinicName = "kept";
    FailOnce(1, "cClinic.LoadClinic, SQLite", [&] { clinic->LoadClinic(5, faulty); });
    FailOnce(1, "cClinic.DeleteClinic, SQLite", [&] { clinic->DeleteClinic(faulty); });
    EXPECT_EQ(clinic->ClinicName, "kept");
    EXPECT_EQ(CountOf("Clinic_T"), 1);
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(clinic->LoadClinic(5, faulty)); }), 1);
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(clinic->DeleteClinic(faulty)); }), 1);
}

TEST_F(PeopleFaults, AListOfClinicsThatFailsIsEmptyAndHasNoHeadOffice) {
    const Ref<cClinics> clinics = New<cClinics>();
    for (const int call : {1, 2}) {
        clinics->Add(9, "held", "", "", "", "", "", "");
        FailOnce(call, "cClinics.GetAllClinics, SQLite", [&] { clinics->GetAllClinics(faulty); });
        EXPECT_EQ(clinics->Count(), 0);
        EXPECT_EQ(CountOf("Clinic_T"), 0);
        FailOnce(call, "cClinics.GetAllClinics, SQLite", [&] { clinics->GetHQClinic(faulty); });
        EXPECT_EQ(CountOf("Clinic_T"), 0);
    }
    EXPECT_EQ(CallsOf([&] { EXPECT_EQ(clinics->GetAllClinics(faulty), 1); }), 2) << "look and head office";
    EXPECT_EQ(CallsOf([&] { EXPECT_EQ(clinics->GetAllClinics(faulty), 1); }), 1) << "look";
    EXPECT_EQ(CallsOf([&] { EXPECT_TRUE(clinics->GetHQClinic(faulty)); }), 0);
}

TEST_F(PeopleFaults, AClinicByNameIsNullIfTheLoadFails) {
    const Ref<cClinics> clinics = New<cClinics>();
    for (const int call : {1, 2}) {
        FailAtCall(call);
        EXPECT_FALSE(clinics->ItemOnClinicName("__HQ", faulty));
        EXPECT_EQ(CountOf("Clinic_T"), 0);
    }
    FailAtCall(0);
    EXPECT_TRUE(clinics->ItemOnClinicName("__HQ", faulty));
}

}  // namespace
}  // namespace OXClass

#include "people/OutsideGUID.h"

#include "kit/Database.h"
#include "people/cDoctors.h"
#include "platform/runtime/Services.h"

/// The source of the identifier of a doctor without one.
namespace OXClass {
namespace {

using namespace TestKit;

class OutsideGuid : public WithDatabase {
protected:
    OutsideGuid() {
        Run("INSERT INTO Doctor_T (drID, DrName_NVC, drGUID) VALUES (5, 'AH', '')");
        TheHost().CreateGuid = [](Guid& guid) {
            guid = {0x0000000A, 0x00B0, 0x0C00, {0, 1, 2, 3, 4, 5, 6, 0xFF}};
            return Long{0};
        };
    }
    ~OutsideGuid() override {
        OutsideGUID = nullptr;
        TheHost() = host_;
    }

    const String fixed = "0000000A00B00C0000010203040506FF";

private:
    Host host_ = TheHost();
};

TEST_F(OutsideGuid, NoneIsInstalledAtTheStart) { EXPECT_FALSE(OutsideGUID); }

TEST_F(OutsideGuid, WithoutOneTheLibrarysOwnServes) { EXPECT_EQ(NewOutsideGUID(), fixed); }

TEST_F(OutsideGuid, AnInstalledOneIsCalledAndItsResultIsUpperCased) {
    OutsideGUID = [] { return String("abé"); };
    EXPECT_EQ(NewOutsideGUID(), "ABÉ");
}

TEST_F(OutsideGuid, ItsFailureComesAsItIs) {
    OutsideGUID = []() -> String { throw Error(429, "Suite.Ids", "gone"); };
    const Error failure = FailureOf([] { NewOutsideGUID(); });
    EXPECT_EQ(failure.Number, 429);
    EXPECT_EQ(failure.Source, "Suite.Ids");
    EXPECT_EQ(failure.Description, "gone");
}

TEST_F(OutsideGuid, ALoadWithoutOneStoresTheLibrarysOwn) {
    EXPECT_TRUE(New<cDoctor>()->LoadDoctor(5, con));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant(fixed));
}

TEST_F(OutsideGuid, ALoadByNumberCallsTheInstalledOne) {
    OutsideGUID = [] { return String("xyz"); };
    EXPECT_TRUE(New<cDoctor>()->LoadDoctor(5, con));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("XYZ"));
}

TEST_F(OutsideGuid, ALoadByGuidCallsTheInstalledOne) {
    OutsideGUID = [] { return String("xyz"); };
    EXPECT_TRUE(New<cDoctor>()->LoadDoctorOnGUID("", con));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("XYZ"));
}

TEST_F(OutsideGuid, TheListOfDoctorsNeverCallsIt) {
    int asked = 0;
    OutsideGUID = [&] {
        ++asked;
        return String("xyz");
    };
    const Ref<cDoctors> doctors = New<cDoctors>();
    EXPECT_EQ(doctors->GetAllDoctors(con), 1);
    EXPECT_EQ(doctors->Item("K5")->drGUID, fixed);
    EXPECT_EQ(asked, 0);
}

TEST_F(OutsideGuid, ALoadWithoutAnAvailableGuidSavesTheEmptyText) {
    TheHost().CreateGuid = [](Guid&) { return Long{1}; };
    Run("UPDATE Doctor_T SET drGUID=NULL");
    const Ref<cDoctor> doctor = New<cDoctor>();
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_EQ(doctor->drGUID, "");
    EXPECT_EQ(Sent().size(), 2U);
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant(""));
}

}  // namespace
}  // namespace OXClass

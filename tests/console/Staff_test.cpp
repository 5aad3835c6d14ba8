#include "ProgramTest.h"

/// Doctors, clinics and GUIDs, as a person or a script manages them.
namespace {

using namespace ProgramTest;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

class Staff : public Program {
protected:
    void SetUp() override { Init(); }

    std::string UserError(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--db", Database()});
        const Result run = Try(arguments);
        EXPECT_EQ(run.code, 1) << run.out << run.err;
        return run.err;
    }
};

TEST_F(Staff, ADoctorIsCreatedChangedShownAndListed) {
    const json made = OkJson({"doctor", "new", "DrLastName=Ek", "DrFirstName=Anna", "DrPrefix=Dr", "DrLogin=ae"});
    EXPECT_EQ(made["Number"], 1);
    EXPECT_EQ(made["DICOM name"], "Ek^Anna^^Dr");
    EXPECT_EQ(made["DrType"], "local");
    EXPECT_THAT(made["drGUID"].get<std::string>(), MatchesRegex("[0-9A-F]{32}"));
    const json set = OkJson({"doctor", "set", "1", "drtype=remote", "DrEMail=anna@example.org", "DrFirstName=O'Anna"});
    EXPECT_EQ(set["DrType"], "remote");
    EXPECT_EQ(set["DrFirstName"], "O'Anna");
    EXPECT_EQ(set["drGUID"], made["drGUID"]);
    EXPECT_EQ(OkJson({"doctor", "show", "1"}), set);
    Ok({"doctor", "new", "DrLastName=Alm"});
    const json list = OkJson({"doctors"});
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0]["last_name"], "Alm");
    EXPECT_EQ(list[1]["first_name"], "O'Anna");
    EXPECT_EQ(list[1]["patients"], 0);
}

TEST_F(Staff, ALongNameIsShownAsItIsStored) {
    std::string letters;
    for (int i = 0; i < 31; ++i) letters += "é";
    EXPECT_EQ(OkJson({"doctor", "new", "DrName=" + letters})["DrName"], letters.substr(0, 60));
}

TEST_F(Staff, ADoctorWhoHasPatientsIsDeletedOnlyWithForce) {
    Ok({"doctor", "new", "DrLastName=Ek"});
    WriteSeries("1.2.3", {{{11}, ""}});
    WriteSeries("1.2.4", {{{11}, ""}});
    Ok({"import", Films()});
    Ok({"patient", "P-1.2.3", "RespDoctor=1"});
    Ok({"patient", "P-1.2.4", "RespDoctor=1"});
    EXPECT_EQ(OkJson({"doctors"})[0]["patients"], 2);
    const Result refused = Try({"--db", Database(), "doctor", "delete", "1"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err, HasSubstr("doctor 1 is the doctor of 2 patients and was not deleted"));
    EXPECT_EQ(OkJson({"doctors"}).size(), 1U);
    const Result run = Try({"--db", Database(), "doctor", "delete", "1", "--force"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("2 patients still name doctor 1"));
    EXPECT_EQ(OkJson({"doctors"}).size(), 0U);
    Ok({"doctor", "new", "DrLastName=Alm"});
    EXPECT_EQ(Ok({"doctor", "delete", "2"}), "Doctor 2 is deleted.\n");
}

TEST_F(Staff, TheHeadOfficeIsCreatedAndMarked) {
    json list = OkJson({"clinics"});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0]["name"], "__HQ");
    EXPECT_EQ(list[0]["head_office"], true);
    EXPECT_EQ(OkJson({"clinic", "new", "ClinicName=Nord", "City=Lund"})["Number"], 2);
    EXPECT_EQ(OkJson({"clinic", "set", "2", "zipcode=222 22"})["ZipCode"], "222 22");
    EXPECT_EQ(OkJson({"clinic", "show", "2"})["City"], "Lund");
    list = OkJson({"clinics"});
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[1]["head_office"], false);
    EXPECT_EQ(OkJson({"clinic", "show", "2"})["HeadOffice"], false);
    EXPECT_EQ(OkJson({"clinic", "show", "1"})["HeadOffice"], true);
    Ok({"clinic", "delete", "2"});
    EXPECT_EQ(OkJson({"clinics"}).size(), 1U);
    EXPECT_EQ(Try({"--db", Database(), "clinic", "delete", "1"}).code, 1) << "the head office";
    Ok({"clinic", "delete", "1", "--force"});
}

TEST_F(Staff, TheFirstClinicFollowsTheHeadOffice) {
    EXPECT_EQ(OkJson({"clinic", "new", "ClinicName=Nord"})["Number"], 2);
    EXPECT_EQ(OkJson({"clinics"})[0]["name"], "__HQ");
}

TEST_F(Staff, AWrongRequestIsReportedInOneLine) {
    Ok({"doctor", "new", "DrLastName=Ek"});
    EXPECT_THAT(UserError({"doctor", "show", "7"}), HasSubstr("there is no doctor 7"));
    EXPECT_THAT(UserError({"doctor", "set", "1", "DrShoe=44"}), HasSubstr("a doctor has no field \"DrShoe\""));
    EXPECT_THAT(UserError({"doctor", "set", "1", "DrType=king"}), HasSubstr("unknown, local, remote and web"));
    EXPECT_THAT(UserError({"doctor", "set", "1", "DrName"}), HasSubstr("write FIELD=VALUE"));
    EXPECT_THAT(UserError({"doctor", "set", "1", "DrLogin=" + std::string(256, 'x')}), HasSubstr("DrLogin"));
    EXPECT_THAT(UserError({"doctor", "new", "DrPrefix=Dr"}), HasSubstr("a doctor needs a name"));
    EXPECT_THAT(UserError({"doctor", "set", "1", "DrLastName="}), HasSubstr("a doctor needs a name"));
    EXPECT_THAT(UserError({"clinic", "new", "City=Lund"}), HasSubstr("a clinic needs a name"));
    EXPECT_THAT(UserError({"clinic", "delete", "9"}), HasSubstr("there is no clinic 9"));
    EXPECT_THAT(UserError({"clinic", "set", "1", "Shoe=44"}), HasSubstr("there is no clinic 1"));
    EXPECT_EQ(OkJson({"doctors"}).size(), 1U);
}

TEST_F(Staff, GuidsAreNewAndNeedNoDatabase) {
    const Result run = Try({"guid", "--count", "3"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, MatchesRegex("([0-9A-F]{32}\n){3}"));
    EXPECT_NE(run.out.substr(0, 32), run.out.substr(33, 32));
}

}  // namespace

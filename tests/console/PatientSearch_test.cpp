#include "AnyEngine.h"

#include <gmock/gmock.h>

/// Naming a patient by parts of the name, of an identifier or of the birth date, and making one by hand.
namespace {

using AnyEngine::json;
using AnyEngine::Result;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class OnServerSearch : public AnyEngine::Clinic {
protected:
    void SetUp() override {
        Clinic::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        Make({"PatientID=19800131-1234", "LastName=Ek", "FirstName=Anna", "BirthDate=1980-01-31", "Sex=F"});
        Make({"PatientID=19751224-0001", "LastName=Ekström", "FirstName=Åsa", "BirthDate=1975-12-24"});
        Make({"PatientID=EK", "LastName=Berg", "FirstName=Bo", "OtherIDs=OLD-7\\OLD-77"});
    }
    json Make(std::vector<std::string> fields) {
        fields.insert(fields.begin(), {"patient", "new"});
        return OkJson(std::move(fields));
    }
    /// Returns the ID of the patient whose card list is shown for a text, and what is said on standard error.
    std::pair<std::string, std::string> Cards(const std::string& text) {
        const Result run = Run({"cards", text, "--json"});
        EXPECT_EQ(run.code, 0) << run.err;
        return {run.code == 0 ? json::parse(run.out)["patient"].get<std::string>() : "", run.err};
    }
    std::vector<std::string> Listed(const std::string& text) {
        std::vector<std::string> ids;
        for (const json& patient : OkJson({"patients", text})) ids.push_back(patient["id"].get<std::string>());
        return ids;
    }
};

TEST_F(OnServerSearch, OnePatientIsNamedByAnyPartAndTheProgramTellsWhoItIs) {
    for (const char* text : {"anna", "ek anna", "Anna, Ek", "1980-01", "31.01.1980", "19800131-12", "-1234"}) {
        const auto [id, told] = Cards(text);
        EXPECT_EQ(id, "19800131-1234") << text;
        EXPECT_EQ(told, std::string("oxclass: ") + text + " is patient #1 19800131-1234 Ek, Anna, born 1980-01-31\n");
    }
    for (const char* text : {"asa", "EKSTROM", "ekström ÅSA", "24 Dec 1975"})
        EXPECT_EQ(Cards(text).first, "19751224-0001") << text;
}

TEST_F(OnServerSearch, AnExactIdentifierWinsOverParts) {
    EXPECT_EQ(Cards("ek"), (std::pair<std::string, std::string>("EK", ""))) << "two names have these letters";
    EXPECT_EQ(Cards("#1"), (std::pair<std::string, std::string>("19800131-1234", "")));
    Make({"PatientID=1", "LastName=OLD-7"});
    EXPECT_EQ(Cards("old-7").first, "EK") << "one of the other identifiers, in whole";
    EXPECT_EQ(Cards("1").first, "1");
}

TEST_F(OnServerSearch, SeveralAreListedAndNothingIsDone) {
    const std::string told = Refused({"card", "new", "19", "Caries"});
    EXPECT_THAT(told, HasSubstr("2 patients fit \"19\": #1 19800131-1234 Ek, Anna, born 1980-01-31; #2 19751224-0001 "
                                "Ekström, Åsa, born 1975-12-24; name one by its ID or its number, as '#1'"));
    EXPECT_EQ(RowCount("ImageCard_T"), 0);
    for (const std::vector<std::string>& command : {std::vector<std::string>{"patient", "19", "LastName=Lost"},
                                                    {"studies", "--patient", "19"},
                                                    {"series", "--patient", "19"},
                                                    {"images", "--patient", "19"},
                                                    {"report", "19", "-o", "report.html"}})
        EXPECT_THAT(Refused(command), HasSubstr("2 patients fit")) << command[0];
    EXPECT_EQ(All("SELECT count(*) FROM Patient_T WHERE LastName_NVC = 'Lost'"), "0\n");
}

TEST_F(OnServerSearch, NobodyIsAFailureThatSaysWhatToDo) {
    for (const char* text : {"nobody", "ek bo berg anna", "1980-02-31", "O'Brien", "%", "_", "", " "})
        EXPECT_THAT(Refused({"cards", text}), HasSubstr("there is no patient " + std::string(text))) << text;
}

TEST_F(OnServerSearch, ManyHitsAreCutInTheMessage) {
    for (int i = 0; i < 25; ++i) Make({"PatientID=MANY-" + std::to_string(100 + i)});
    const std::string told = Refused({"cards", "many"});
    EXPECT_THAT(told, HasSubstr("25 patients fit \"many\": "));
    EXPECT_THAT(told, HasSubstr("MANY-119; and 5 more; name one"));
    EXPECT_THAT(told, Not(HasSubstr("MANY-120")));
}

TEST_F(OnServerSearch, TheListOfPatientsTakesTheSameTexts) {
    EXPECT_THAT(Listed("ek"), ElementsAre("EK", "19800131-1234", "19751224-0001"));
    EXPECT_THAT(Listed("ekstrom 1975"), ElementsAre("19751224-0001"));
    EXPECT_THAT(Listed("old-77"), ElementsAre("EK"));
    EXPECT_THAT(Listed("nobody"), IsEmpty());
}

TEST_F(OnServerSearch, AnImportTakesAPartOfANameToo) {
    WriteSeries("2.25.5", {AnyEngine::FullMouth18[7]});
    EXPECT_EQ(Run({"import", Films(), "--patient", "19"}).code, 1);
    const Result run = Run({"import", Films(), "--patient", "asa"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("asa is patient #2 19751224-0001 Ekström, Åsa"));
    EXPECT_EQ(All("SELECT PatientID FROM ImageBild_T"), "2\n");
}

TEST_F(OnServerSearch, APatientIsMadeByHand) {
    const json made = Make({"PatientID= new-1 ", "LastName=O'Brien", "FirstName=Pat", "BirthDate=2001-02-03", "Sex=m",
                            "Issuer=Clinic", "OtherIDs=a\\b", "Address=Main St 1"});
    EXPECT_EQ(made["PatientID"], "NEW-1");
    EXPECT_EQ(made["LastName"], "O'Brien");
    EXPECT_EQ(made["BirthDate"], "2001-02-03");
    EXPECT_EQ(made["Sex"], "M");
    EXPECT_EQ(made["Issuer"], "Clinic");
    EXPECT_EQ(made["OtherIDs"], "A\\B");
    EXPECT_EQ(OkJson({"patient", "NEW-1"}), made);
}

TEST_F(OnServerSearch, WhatCannotBeAPatientIsRefusedAndNothingIsStored) {
    const std::pair<std::vector<std::string>, const char*> wrong[] = {
        {{"PatientID=19800131-1234"}, "a patient has the ID 19800131-1234 already: #1 Ek, Anna, born 1980-01-31"},
        {{"PatientID= ek "}, "a patient has the ID EK already"},
        {{"LastName=Ek"}, "a patient needs an ID"},
        {{"PatientID=x", "BirthDate=2999-01-01"}, "the birth date 2999-01-01 is in the future"},
        {{"PatientID=x", "BirthDate=1980-02-30"}, "\"1980-02-30\" is not a date"},
        {{"PatientID=x", "BirthDate=01/02/1980"}, "can be read as"},
        {{"PatientID=x", "Sex=female"}, "is not a sex"},
        {{"PatientID=x", "RespDoctor=9"}, "there is no doctor 9"},
        {{"PatientID=x", "Nothing=1"}, "a patient has no field \"Nothing\""},
        {{"PatientID=" + std::string(65, 'x')}, "at most 64 characters"},
    };
    for (const auto& [fields, reason] : wrong) {
        std::vector<std::string> arguments{"patient", "new"};
        arguments.insert(arguments.end(), fields.begin(), fields.end());
        EXPECT_THAT(Refused(arguments), HasSubstr(reason));
    }
    EXPECT_EQ(RowCount("Patient_T"), 3);
    EXPECT_EQ(Run({"patient", "new"}).code, 2);
    EXPECT_EQ(Run({"patient"}).code, 2);
}

}  // namespace

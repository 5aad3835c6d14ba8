#include "ProgramTest.h"

#include <gmock/gmock.h>

namespace {

using namespace ProgramTest;
using ::testing::HasSubstr;

/// A person as a file states it.
struct Person {
    const char *id, *issuer, *name, *born, *sex;
};

constexpr Person Anna{"4711", "A", "Ek^Anna", "19800131", "F"};
constexpr Person Nils{"4711", "B", "Berg^Nils", "19550505", "M"};

/// Imports of files whose patients agree with stored ones, or contradict them.
class ImportIdentity : public Program {
protected:
    void Film(const std::string& series, const Person& person, int number = 1) {
        Write(series, number, FullMouth18[7], [&](DcmDataset& set) {
            const auto put = [&](const DcmTagKey& tag, const char* text) { set.putAndInsertString(tag, text); };
            put(DCM_PatientID, person.id);
            put(DCM_IssuerOfPatientID, person.issuer);
            put(DCM_PatientName, person.name);
            put(DCM_PatientBirthDate, person.born);
            put(DCM_PatientSex, person.sex);
        });
    }
    Result Import(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), {"--db", Database(), "import", Films()});
        return Try(arguments);
    }
    /// Imports films of one person, and then of the other; returns the second run.
    Result ImportBoth(const Person& first, const Person& second) {
        Init();
        Film("2.25.1", first);
        EXPECT_EQ(Import().code, 0);
        Film("2.25.2", second);
        return Import();
    }
};

TEST_F(ImportIdentity, TwoPeopleWithOnePatientIDStayTwo) {
    const Result run = ImportBoth(Anna, Nils);
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, ::testing::ContainsRegex("Name +Ek, Anna +<> Berg, Nils"));
    EXPECT_THAT(run.err, ::testing::ContainsRegex("Born +1980-01-31 +<> 1955-05-05"));
    EXPECT_THAT(run.err, ::testing::ContainsRegex("Issuer +A +<> B"));
    EXPECT_THAT(run.err, HasSubstr("--patient '#1' or --new-patient"));
    EXPECT_EQ(OkJson({"patients"}).size(), 1U);
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
    EXPECT_FALSE(fs::exists(folder.Path() / "images" / "0_" / "2.25.2.1.dcm"));
}

TEST_F(ImportIdentity, EachContradictionAloneIsEnough) {
    const std::pair<const char*, Person> others[] = {
        {"issuer", {"4711", "B", "Ek^Anna", "19800131", "F"}},
        {"family name", {"4711", "A", "Berg^Anna", "19800131", "F"}},
        {"given name", {"4711", "A", "Ek^Berta", "19800131", "F"}},
        {"birth date", {"4711", "A", "Ek^Anna", "19800130", "F"}},
        {"sex", {"4711", "A", "Ek^Anna", "19800131", "M"}},
    };
    Init();
    Film("2.25.1", Anna);
    ASSERT_EQ(Import().code, 0);
    int series = 2;
    for (const auto& [what, person] : others) {
        fs::remove_all(Films());
        Film("2.25." + std::to_string(series++), person);
        EXPECT_EQ(Import().code, 3) << what;
        EXPECT_EQ(OkJson({"images"}).size(), 1U) << what;
    }
}

TEST_F(ImportIdentity, ASpellingOfTheSamePersonMatches) {
    const Result run =
        ImportBoth({"4711", "", "Åkesson^Lotta", "19800131", "F"}, {"4711", "", "LOTTA^AKESSON", "", ""});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(OkJson({"patients"}).size(), 1U);
    EXPECT_EQ(OkJson({"images"}).size(), 2U);
}

TEST_F(ImportIdentity, AnIdentifierOfAnotherIssuerNeverMatchesOnItsOwn) {
    const Result run = ImportBoth({"4711", "", "", "", ""}, {"4711", "B", "", "", ""});
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
}

TEST_F(ImportIdentity, AnotherIssuerUnknownToTheDatabaseMatchesWithTheName) {
    const Result run = ImportBoth({"4711", "", "Ek^Anna", "", ""}, {"4711", "A", "Ek^Anna", "", ""});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(OkJson({"patients"}).size(), 1U);
}

TEST_F(ImportIdentity, APersonDecidesForANewPatient) {
    ImportBoth(Anna, Nils);
    const Result run = Import({"--new-patient"});
    EXPECT_EQ(run.code, 0) << run.err;
    const json patients = OkJson({"patients"});
    ASSERT_EQ(patients.size(), 2U);
    EXPECT_EQ(patients[0]["last_name"], "Berg");
    EXPECT_EQ(patients[0]["id"], "4711");
    EXPECT_EQ(patients[1]["last_name"], "Ek");
    EXPECT_EQ(OkJson({"cards", "#1"})["entries"].size(), 1U);
    EXPECT_EQ(OkJson({"cards", "#1"})["entries"][0]["key"], "SE1");
    EXPECT_EQ(OkJson({"cards", "#2"})["entries"][0]["key"], "SE2");
    EXPECT_EQ(Import().code, 0) << "known files need no decision";
    Film("2.25.3", Nils);
    Film("2.25.4", Anna);
    EXPECT_EQ(Import().code, 0) << "and each further film finds its own of the two";
    EXPECT_EQ(OkJson({"cards", "#2"})["entries"].size(), 2U);
    EXPECT_EQ(OkJson({"cards", "#1"})["entries"].size(), 2U);
}

TEST_F(ImportIdentity, SeveralSeriesOfOneNewPatientMakeOnePatient) {
    Init();
    Film("2.25.1", Anna);
    ASSERT_EQ(Import().code, 0);
    fs::remove_all(Films());
    Film("2.25.2", Nils);
    Film("2.25.3", Nils);
    const Result run = Import({"--new-patient"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(OkJson({"patients"}).size(), 2U);
}

TEST_F(ImportIdentity, APersonDecidesForAStoredPatient) {
    ImportBoth(Anna, {"X-9", "B", "Berg^Nils", "19550505", "M"});
    ASSERT_EQ(OkJson({"patients"}).size(), 2U);
    fs::remove_all(Films());
    Film("2.25.3", {"Z-1", "C", "Ek-Larsson^Anna", "", ""});
    Ok({"import", Films(), "--patient", "#1"});
    EXPECT_EQ(OkJson({"patients"}).size(), 2U);
    EXPECT_EQ(OkJson({"images"})[1]["series"], 2);
    EXPECT_EQ(OkJson({"cards", "#1"})["entries"].size(), 2U);
    EXPECT_EQ(Import().code, 0) << "the decision holds for the files that it was made for";
    const Result moved = Import({"--patient", "#2"});
    EXPECT_EQ(moved.code, 3) << "a stored film isn't moved to another patient";
    EXPECT_THAT(moved.err, HasSubstr("it is stored already, as image 3 of patient #1 Ek, Anna"));
    EXPECT_EQ(OkJson({"cards", "#2"})["entries"].size(), 1U);
}

TEST_F(ImportIdentity, FilesOfOneSeriesThatDisagreeAreNotStored) {
    Init();
    Film("2.25.1", Anna, 1);
    Film("2.25.1", {"4711", "A", "Berg^Nils", "19800131", "F"}, 2);
    const Result run = Import();
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("the files of series 2.25.1 name two patients"));
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
}

TEST_F(ImportIdentity, ALaterFileOfAKnownSeriesIsCompared) {
    Init();
    Film("2.25.1", Anna, 1);
    ASSERT_EQ(Import().code, 0);
    fs::remove_all(Films());
    Film("2.25.1", {"4711", "A", "Berg^Nils", "", ""}, 2);
    const Result run = Import();
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("belongs to another patient already, #1 Ek, Anna"));
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
    EXPECT_EQ(Import({"--new-patient"}).code, 3) << "a study has one patient";
}

TEST_F(ImportIdentity, AConflictIsReportedToScriptsToo) {
    Init();
    Film("2.25.1", Anna);
    ASSERT_EQ(Import().code, 0);
    Film("2.25.2", Nils);
    const Result run = Import({"--json"});
    const json told = json::parse(run.out)["conflicts"];
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0]["series"], "2.25.2");
    EXPECT_EQ(told[0]["file"]["name"], "Berg, Nils");
    EXPECT_EQ(told[0]["others"][0]["number"], 1);
}

TEST_F(ImportIdentity, OtherIdentifiersThatDoNotFitAreOmittedAndReported) {
    Init();
    std::string many;
    for (int i = 100; i < 140; ++i) many += (many.empty() ? "" : "\\") + std::string("NUMBER") + std::to_string(i);
    Write("2.25.1", 1, FullMouth18[7],
          [&](DcmDataset& set) { set.putAndInsertString(DCM_RETIRED_OtherPatientIDs, many.c_str()); });
    const Result run = Import();
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("the other identifier NUMBER139 is not stored"));
    const std::string stored = OkJson({"patient", "#1"})["OtherIDs"];
    EXPECT_EQ(stored, many.substr(0, 25 * 10 - 1)) << "25 of 9 characters with their separators";
}

// ---- what the database doesn't know yet ---------------------------------------------------------

TEST_F(ImportIdentity, MissingDataOfThePatientAreCopiedFromALaterFileAndThenCompared) {
    Init();
    Film("2.25.1", {"4711", "", "Ek^Anna", "", ""});
    ASSERT_EQ(Import().code, 0);
    Film("2.25.2", Anna);
    const Result filled = Import();
    EXPECT_EQ(filled.code, 0) << filled.err;
    EXPECT_THAT(filled.err, HasSubstr("patient #1 Ek, Anna: issuer A, birth date "
                                      "1980-01-31, sex F added from the files"));
    const json patient = OkJson({"patient", "#1"});
    EXPECT_EQ(patient["Issuer"], "A");
    EXPECT_EQ(patient["BirthDate"], "1980-01-31");
    EXPECT_EQ(patient["Sex"], "F");
    const Person others[] = {
        {"4711", "", "Ek^Anna", "19550101", "F"}, {"4711", "B", "Ek^Anna", "", ""}, {"4711", "", "Ek^Anna", "", "M"}};
    for (const Person& other : others) {
        fs::remove_all(Films());
        Film("2.25.3", other);
        EXPECT_EQ(Import().code, 3) << other.born << other.issuer << other.sex;
    }
    EXPECT_EQ(OkJson({"images"}).size(), 2U);
}

TEST_F(ImportIdentity, AFillingIsRolledBackWithTheSeries) {
    Init();
    Film("2.25.1", {"4711", "", "Ek^Anna", "", ""});
    ASSERT_EQ(Import().code, 0);
    Run("CREATE TRIGGER full BEFORE INSERT ON ImageBild_T BEGIN SELECT "
        "RAISE(ABORT, 'no space'); END");
    Film("2.25.2", Anna);
    EXPECT_EQ(Import().code, 3);
    const json patient = OkJson({"patient", "#1"});
    EXPECT_EQ(patient["Issuer"], "");
    EXPECT_EQ(patient["BirthDate"], "");
}

TEST_F(ImportIdentity, APatientWithoutNameTakesTheFirstNameAndRejectsTheSecond) {
    Init();
    Film("2.25.1", {"4711", "A", "", "19800131", "F"});
    ASSERT_EQ(Import().code, 0);
    Film("2.25.2", Anna);
    ASSERT_EQ(Import().code, 0);
    EXPECT_EQ(OkJson({"patient", "#1"})["LastName"], "Ek");
    EXPECT_EQ(OkJson({"patient", "#1"})["FirstName"], "Anna");
    Film("2.25.3", {"4711", "A", "Berg^Eva", "19800131", "F"});
    EXPECT_EQ(Import().code, 3);
    EXPECT_EQ(OkJson({"images"}).size(), 2U);
}

TEST_F(ImportIdentity, AFamilyNameAloneIsCompletedByTheGivenName) {
    Init();
    Film("2.25.1", {"4711", "A", "Ek", "19800131", "F"});
    ASSERT_EQ(Import().code, 0);
    Film("2.25.2", Anna);
    ASSERT_EQ(Import().code, 0);
    EXPECT_EQ(OkJson({"patient", "#1"})["FirstName"], "Anna");
    Film("2.25.3", {"4711", "A", "Ek^Berta", "19800131", "F"});
    EXPECT_EQ(Import().code, 3);
}

TEST_F(ImportIdentity, AGivenNameAloneIsCompletedByTheFamilyName) {
    Init();
    Film("2.25.1", {"4711", "A", "^Anna", "", "F"});
    ASSERT_EQ(Import().code, 0);
    Film("2.25.2", Anna);
    ASSERT_EQ(Import().code, 0);
    EXPECT_EQ(OkJson({"patient", "#1"})["LastName"], "Ek");
    Film("2.25.3", {"4711", "A", "Berg^Anna", "", "F"});
    EXPECT_EQ(Import().code, 3);
}

TEST_F(ImportIdentity, ABirthDateOrSexThatCannotBeReadFitsNoFile) {
    Init();
    Film("2.25.1", {"4711", "", "Ek^Anna", "", ""});
    ASSERT_EQ(Import().code, 0);
    Film("2.25.2", Anna);
    const std::pair<const char*, const char*> damages[] = {
        {"Birthdate_CH", "'ca. 1980'"}, {"Birthdate_CH", "'19800131'"}, {"Sex_CH", "'W'"}};
    for (const auto& [column, value] : damages) {
        Run(std::string("UPDATE Patient_T SET Birthdate_CH = '', Sex_CH = '', ") + column + " = " + value);
        const Result run = Import();
        EXPECT_EQ(run.code, 3) << value;
        EXPECT_THAT(run.err, HasSubstr(std::string("column ") + column + " of its row can't be read")) << value;
        EXPECT_EQ(OkJson({"images"}).size(), 1U) << value;
    }
}

TEST_F(ImportIdentity, ABirthDateThatCannotBeReadIsNotReplaced) {
    Init();
    Film("2.25.1", {"4711", "", "Ek^Anna", "", ""});
    ASSERT_EQ(Import().code, 0);
    Run("UPDATE Patient_T SET Birthdate_CH = 'ca. 1980'");
    Film("2.25.2", Anna);
    const Result run = Import({"--patient", "#1"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out + run.err, ::testing::Not(HasSubstr("birth date")));
    EXPECT_EQ(OkJson({"patients"})[0]["born"], "ca. 1980");
    EXPECT_EQ(OkJson({"patient", "#1"})["Sex"], "F");
}

TEST_F(ImportIdentity, EachTwoFilesOfASeriesAreCompared) {
    Init();
    Film("2.25.1", {"4711", "A", "Ek^Anna", "", "F"}, 1);
    Film("2.25.1", {"4711", "A", "Ek^Anna", "19900101", "F"}, 2);
    Film("2.25.1", {"4711", "A", "Ek^Anna", "19550505", "F"}, 3);
    const Result run = Import();
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, ::testing::ContainsRegex("Born +1990-01-01 +<> 1955-05-05"));
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
}

TEST_F(ImportIdentity, ASeriesIsStoredWithTheDataOfAllItsFiles) {
    Init();
    Film("2.25.1", {"4711", "", "", "", ""}, 1);
    Film("2.25.1", {"4711", "A", "Ek^Anna", "", ""}, 2);
    Film("2.25.1", {"4711", "", "Ek^Anna", "19800131", "F"}, 3);
    ASSERT_EQ(Import().code, 0);
    const json patient = OkJson({"patient", "#1"});
    EXPECT_EQ(patient["LastName"], "Ek");
    EXPECT_EQ(patient["BirthDate"], "1980-01-31");
    EXPECT_EQ(patient["Issuer"], "A");
}

TEST_F(ImportIdentity, ALaterFileThatContradictsTheStoredPatientIsFoundAfterTheFirst) {
    Init();
    Film("2.25.1", Anna);
    ASSERT_EQ(Import().code, 0);
    Film("2.25.2", {"4711", "A", "", "", ""}, 1);
    Film("2.25.2", {"4711", "A", "Berg^Eva", "", ""}, 2);
    EXPECT_EQ(Import().code, 3);
    EXPECT_EQ(OkJson({"images"}).size(), 1U);
}

TEST_F(ImportIdentity, NewPatientsOfOneImportAreFilledToo) {
    Init();
    Film("2.25.1", Anna);
    ASSERT_EQ(Import().code, 0);
    fs::remove_all(Films());
    Film("2.25.2", {"4711", "", "Berg^Nils", "", ""});
    Film("2.25.3", {"4711", "", "Berg^Nils", "19550505", ""});
    Film("2.25.4", {"4711", "", "Berg^Nils", "19660606", ""});
    ASSERT_EQ(Import({"--new-patient"}).code, 0);
    EXPECT_EQ(OkJson({"patients"}).size(), 3U) << "two people of one name have two birth dates";
    EXPECT_EQ(OkJson({"patient", "#2"})["BirthDate"], "1955-05-05");
}

TEST_F(ImportIdentity, ASecondNewPatientOfTheSamePersonIsReported) {
    Init();
    Film("2.25.1", Anna);
    ASSERT_EQ(Import().code, 0);
    fs::remove_all(Films());
    Film("2.25.2", Anna);
    const Result run = Import({"--new-patient"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("new patient #2 agrees with patient #1 Ek, Anna in every field"));
    fs::remove_all(Films());
    Film("2.25.3", Nils);
    EXPECT_THAT(Import({"--new-patient"}).err, ::testing::Not(HasSubstr("in every field")));
}

TEST_F(ImportIdentity, AnIdentifierAloneIsNotEnoughAndTheReasonIsReported) {
    const Result run = ImportBoth(Anna, {"4711", "", "", "", ""});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("there is not enough to tell whether"));
    EXPECT_THAT(run.err, HasSubstr("--patient '#1' or --new-patient"));
    EXPECT_EQ(run.err.find("contradicts"), std::string::npos) << run.err;
}

TEST_F(ImportIdentity, ARejectedPatientWithoutNameIsNamedByItsNumber) {
    const Result run = ImportBoth({"4711", "A", "", "19800131", ""}, {"4711", "A", "Berg^Nils", "19550505", ""});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("Patient ID 4711 belongs to another person in the database, #1"));
    EXPECT_EQ(run.err.find(", ,"), std::string::npos) << run.err;
}

TEST_F(ImportIdentity, FilesOfOneSeriesThatDisagreeNameTheOptionThatHelps) {
    Init();
    Film("2.25.1", Anna, 1);
    Film("2.25.1", {"4711", "A", "Berg^Nils", "19800131", "F"}, 2);
    const Result run = Import();
    EXPECT_THAT(run.err, HasSubstr("decide with --patient '#N'; --new-patient doesn't help here"));
    EXPECT_EQ(Import({"--new-patient"}).code, 3);
}

TEST_F(Program, APatientRegisteredWithoutBirthDateTakesItFromItsFilms) {
    Init();
    Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, FirstName_NVC, "
        "Birthdate_CH, Sex_CH) VALUES "
        "('P-2.25.1', 'Test', 'Anna', '', '')");
    const auto born = [](const char* day) {
        return [day](DcmDataset& set) { set.putAndInsertString(DCM_PatientBirthDate, day); };
    };
    Write("2.25.1", 1, FullMouth18[7], born("19800131"));
    Try({"--db", Database(), "import", Films()});
    EXPECT_EQ(OkJson({"patient", "#1"})["BirthDate"], "1980-01-31");
    fs::remove_all(Films());
    Write("2.25.1", 2, FullMouth18[7], born("19550505"));
    EXPECT_EQ(Try({"--db", Database(), "import", Films()}).code, 3);
}

// ---- the row that is meant --------------------------------------------------------------------------

class TwoPatientsOfOneID : public Program {
protected:
    void SetUp() override {
        Init();
        Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, Birthdate_CH) "
            "VALUES ('4711', 'Ek', "
            "'1980-01-31'), "
            "('4711', 'Berg', '1955-05-05')");
        Run("INSERT INTO ImageCard_T (PatientID, ICName, ICDateCreated, "
            "ICLastUpdate, ICFullViewHeight, "
            "ICFullViewWidth, ICDescription) VALUES (1, 'of Ek', '2026-01-01 "
            "10:00:00', '2026-01-01 "
            "10:00:00', 700, "
            "1000, ''), (2, 'of Berg', '2026-01-02 10:00:00', '2026-01-02 "
            "10:00:00', 700, 1000, '')");
    }
};

TEST_F(TwoPatientsOfOneID, ANumberMeansExactlyThatRow) {
    const json rest = OkJson({"patient", "#1"});
    EXPECT_EQ(OkJson({"patient", "#2", "FirstName=Nils"})["FirstName"], "Nils");
    EXPECT_EQ(OkJson({"patient", "#1"}), rest) << "the other row is as it was";
    EXPECT_EQ(OkJson({"patient", "#2"})["PatientID"], "4711");
    for (const auto& [number, name] : {std::pair("#1", "of Ek"), std::pair("#2", "of Berg")}) {
        const json cards = OkJson({"cards", number});
        ASSERT_EQ(cards["entries"].size(), 1U) << number;
        EXPECT_EQ(cards["entries"][0]["name"], name);
    }
    Ok({"report", "#2", "-o", (folder.Path() / "report.html").string()});
    std::ifstream in(folder.Path() / "report.html");
    const std::string report{std::istreambuf_iterator<char>(in), {}};
    EXPECT_THAT(report, HasSubstr("Berg"));
    EXPECT_THAT(report, HasSubstr("of Berg"));
    EXPECT_EQ(report.find("of Ek"), std::string::npos);
}

TEST_F(TwoPatientsOfOneID, AnIdentifierThatTwoRowsHaveNamesNeither) {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"patient", "4711", "FirstName=Nils"}, {"cards", "4711"}, {"patient", "4711"}}) {
        std::vector<std::string> arguments{"--db", Database()};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const Result run = Try(arguments);
        EXPECT_EQ(run.code, 1);
        EXPECT_THAT(run.err, HasSubstr("2 patients have the ID 4711: #1 Ek, born 1980-01-31; #2 Berg"));
    }
    EXPECT_EQ(OkJson({"patient", "#1"})["FirstName"], "");
}

TEST_F(TwoPatientsOfOneID, OneOfThemCanGetAnotherIdentifier) {
    Ok({"patient", "#2", "PatientID=4712"});
    EXPECT_EQ(OkJson({"patient", "4711"})["Number"], 1);
    EXPECT_EQ(OkJson({"patient", "4712"})["Number"], 2);
    const Result taken = Try({"--db", Database(), "patient", "#2", "PatientID=4711"});
    EXPECT_EQ(taken.code, 1);
    EXPECT_THAT(taken.err, HasSubstr("another patient has the ID 4711"));
}

TEST_F(TwoPatientsOfOneID, AnIssuerIsKeptWithANewIdentifierAndCanBeSet) {
    EXPECT_EQ(OkJson({"patient", "#2", "Issuer=ISSA"})["Issuer"], "ISSA");
    EXPECT_EQ(OkJson({"patient", "#2", "PatientID=NEW1"})["Issuer"], "ISSA");
    EXPECT_EQ(OkJson({"patient", "#1"})["Issuer"], "");
    EXPECT_EQ(OkJson({"patient", "#2", "Issuer="})["Issuer"], "");
    EXPECT_EQ(OkJson({"patient", "#2", "PatientID=NEW2", "Issuer=ISSB"})["Issuer"], "ISSB");
}

TEST_F(TwoPatientsOfOneID, AChangeWritesTheNamedColumnsOnly) {
    for (const char* born : {"19800131", "ca. 1980"}) {
        Run(std::string("UPDATE Patient_T SET PersonNr_CH = 'low er', Birthdate_CH = '") + born +
            "', Sex_CH = NULL WHERE PatientID = 1");
        Ok({"patient", "#1", "TelOne=1"});
        EXPECT_EQ(OkJson({"patients", born}).size(), 1U) << born;
        EXPECT_EQ(OkJson({"patient", "#1"})["TelOne"], "1");
    }
    EXPECT_EQ(OkJson({"patient", "#1", "BirthDate=1980-01-31"})["BirthDate"], "1980-01-31");
}

TEST_F(TwoPatientsOfOneID, ARowThatCannotBeReadIsNamedWithItsColumn) {
    const std::pair<const char*, const char*> damages[] = {{"PrevXrayDate_CH", "hello"}, {"RespDoctor", "x"}};
    for (const auto& [column, value] : damages) {
        Run(std::string("UPDATE Patient_T SET ") + column + " = '" + value + "' WHERE PatientID = 1");
        for (const std::vector<std::string>& command :
             {std::vector<std::string>{"patient", "#1", "TelOne=2"}, {"cards", "#1"}, {"patient", "#1"}}) {
            std::vector<std::string> arguments{"--db", Database()};
            arguments.insert(arguments.end(), command.begin(), command.end());
            const Result run = Try(arguments);
            EXPECT_EQ(run.code, 1);
            EXPECT_THAT(run.err, HasSubstr("patient #1 can't be read")) << column;
            EXPECT_THAT(run.err, HasSubstr(column));
        }
        Run(std::string("UPDATE Patient_T SET ") + column + " = NULL WHERE PatientID = 1");
    }
}

TEST_F(TwoPatientsOfOneID, ListsTakeANumberToo) {
    Run("INSERT INTO Study_T (PatientID, StudyInstanceUID, StudyDateTime) VALUES "
        "(1, '1.1', '2026-01-01 "
        "10:00:00'), "
        "(2, '1.2', '2026-01-01 10:00:00')");
    ASSERT_EQ(OkJson({"studies", "--patient", "#2"}).size(), 1U);
    EXPECT_EQ(OkJson({"studies", "--patient", "#2"})[0]["uid"], "1.2");
}

TEST_F(Program, TypedPatientDataAreChecked) {
    Init();
    Run("INSERT INTO Patient_T (PersonNr_CH) VALUES ('P1')");
    Run("INSERT INTO Doctor_T (DrLastName_NVC) VALUES ('Ek')");
    const std::pair<const char*, const char*> wrong[] = {{"BirthDate=05.03.1980", "1980-03-05 or as 1980-05-03"},
                                                         {"PrevXrayDate=soon", "is not a date"},
                                                         {"BirthDate=2999-01-01", "in the future"},
                                                         {"Sex=X", "write M, F or O"},
                                                         {"RespDoctor=7", "there is no doctor 7"},
                                                         {"PatientID=", "needs an ID"}};
    for (const auto& [field, message] : wrong) {
        const Result run = Try({"--db", Database(), "patient", "P1", field});
        EXPECT_EQ(run.code, 1) << field;
        EXPECT_THAT(run.err, HasSubstr(message)) << field;
    }
    const json set = OkJson({"patient", "P1", "Sex=f", "RespDoctor=1", "BirthDate=31.01.1980"});
    EXPECT_EQ(set["Sex"], "F");
    EXPECT_EQ(set["RespDoctor"], 1);
    EXPECT_EQ(set["BirthDate"], "1980-01-31");
}

}  // namespace

#include "people/cPatient.h"

#include "kit/FaultyProvider.h"
#include "platform/component/dispatch/Interface.h"

/// One person and the row of Patient_T.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Patient : public WithDatabase {
protected:
    Long Load(const String& identifier, Long counter = 0) {
        return patient->LoadOnPatientIDorPDBID(con, identifier, counter);
    }

    /// Returns another object, loaded from the database.
    Ref<cPatient> Stored(const String& identifier) {
        Ref<cPatient> stored = New<cPatient>();
        EXPECT_EQ(stored->LoadOnPatientIDorPDBID(con, identifier, 0), 1);
        return stored;
    }

    /// Every member set, each to a value of its own.
    void FillAll() {
        patient->PatientID = "ab-1";
        patient->FirstName = "Ann";
        patient->LastName = "O'Hara";
        patient->BirthDate = DateFrom({1984, 2, 29, 0, 0, 0});
        patient->PrevXrayDate = DateFrom({2023, 12, 1, 0, 0, 0});
        patient->Address = "Long Lane 1";
        patient->TelOne = "11";
        patient->TelTwo = "22";
        patient->TelMobile = "33";
        patient->EMail = "ann@example.org";
        patient->Comments = "C'mon";
        patient->IDImg = "C:\\faces\\1.jpg";
        patient->OtherIDs->FillFromString("X1\\Y2");
        patient->Sex = "F";
        patient->RespDoctor = 17;
    }

    Ref<cPatient> patient = New<cPatient>();
};

TEST_F(Patient, ADateThatCannotBeFormattedRaisesBeforeAnyStatement) {
    for (const bool birth : {true, false}) {
        const Ref<cPatient> patient = New<cPatient>();
        patient->PatientID = "P1";
        (birth ? patient->BirthDate : patient->PrevXrayDate) = Date{1e9};
        EXPECT_NE(FailureOf([&] { patient->Save(con); }).Number, 0);
        EXPECT_THAT(Sent(), testing::IsEmpty());
    }
}

TEST_F(Patient, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(*patient),
        ElementsAre("put ID(int32)", "get ID -> int32", "LoadOnPatientID(PatientID: string&) -> int32",
                    "Save(Con: Connection) -> int32", "put Sex(string)", "get Sex -> string", "put BirthDate(date)",
                    "get BirthDate -> date", "put LastName(string)", "get LastName -> string", "put FirstName(string)",
                    "get FirstName -> string", "put PatientID(string)", "get PatientID -> string",
                    "putref OtherIDs(OtherPatIDs&)", "get OtherIDs -> OtherPatIDs", "put RespDoctor(int32)",
                    "get RespDoctor -> int32",
                    "LoadOnPatientIDorPDBID(Con: Connection, PatientID: string&, PDBID: int32&) -> int32",
                    "put IDImg(string)", "get IDImg -> string", "put PrevXrayDate(date)", "get PrevXrayDate -> date",
                    "put Comments(string)", "get Comments -> string", "put EMail(string)", "get EMail -> string",
                    "put TelMobile(string)", "get TelMobile -> string", "put TelTwo(string)", "get TelTwo -> string",
                    "put TelOne(string)", "get TelOne -> string", "put Address(string)", "get Address -> string"));
}

TEST_F(Patient, StartsEmptyWithAListOfItsOwn) {
    EXPECT_EQ(patient->ID, 0);
    EXPECT_EQ(patient->BirthDate, Date{});
    EXPECT_EQ(patient->PrevXrayDate, Date{});
    EXPECT_EQ(patient->RespDoctor, 0);
    EXPECT_EQ(patient->PatientID + patient->FirstName + patient->Sex, "");
    ASSERT_TRUE(patient->OtherIDs);
    EXPECT_EQ(patient->OtherIDs->Count(), 0);
    EXPECT_NE(patient->OtherIDs, New<cPatient>()->OtherIDs);
}

TEST_F(Patient, PuttingOtherIDsReplacesTheHeldObject) {
    const Ref<OtherPatIDs> other = New<OtherPatIDs>();
    std::vector<Variant> value{Variant(other)};
    Invoke(*patient, "OtherIDs", MemberKind::PutRef, value);
    EXPECT_EQ(patient->OtherIDs, other);
}

TEST_F(Patient, LoadOnPatientIDDoesNothing) {
    Run("INSERT INTO Patient_T (PersonNr_CH, FirstName_NVC) VALUES ('A', 'Ann')");
    EXPECT_EQ(patient->LoadOnPatientID("A"), 0);
    EXPECT_EQ(patient->FirstName, "");
    EXPECT_THAT(Sent(), IsEmpty());
}

// ---- loading --------------------------------------------------------------------------------------

TEST_F(Patient, LoadsByCounterWhereTheIdentifierIsEmpty) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH, FirstName_NVC) VALUES (12, 'A', 'Ann')");
    EXPECT_EQ(Load("", 12), 1);
    EXPECT_EQ(patient->FirstName, "Ann");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Patient_T WHERE PatientID = 12"));
}

TEST_F(Patient, LoadsByIdentifierAndIgnoresTheCounter) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (12, 'AB-1'), (13, 'CD-2')");
    EXPECT_EQ(Load("ab-1", 13), 1);
    EXPECT_EQ(patient->ID, 12);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Patient_T WHERE PersonNr_CH = 'AB-1'"));
}

TEST_F(Patient, ANegativeCounterIsWrittenWithItsSign) {
    EXPECT_EQ(Load("", -5), 0);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Patient_T WHERE PatientID = -5"));
}

TEST_F(Patient, AnEmptyIdentifierAndCounterZeroFindNothing) {
    Run("INSERT INTO Patient_T (PersonNr_CH) VALUES ('')");
    FillAll();
    EXPECT_EQ(Load("", 0), 0);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Patient_T WHERE PatientID = 0"));
}

TEST_F(Patient, AMissingRowLeavesAllMembers) {
    FillAll();
    patient->ID = 3;
    EXPECT_EQ(Load("unknown"), 0);
    EXPECT_EQ(patient->ID, 3);
    EXPECT_EQ(patient->PatientID, "ab-1");
    EXPECT_EQ(patient->OtherIDs->Count(), 2);
}

TEST_F(Patient, AnIdentifierWithAQuoteFindsItsRow) {
    Run("INSERT INTO Patient_T (PersonNr_CH, FirstName_NVC) VALUES ('O''1', 'Ann')");
    EXPECT_EQ(Load("o'1"), 1);
    EXPECT_EQ(patient->FirstName, "Ann");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Patient_T WHERE PersonNr_CH = 'O''1'"));
}

TEST_F(Patient, LoadsEveryColumn) {
    FillAll();
    patient->Save(con);
    const Ref<cPatient> stored = Stored("AB-1");
    EXPECT_EQ(stored->ID, patient->ID);
    EXPECT_EQ(stored->PatientID, "AB-1");
    EXPECT_EQ(stored->FirstName, "Ann");
    EXPECT_EQ(stored->LastName, "O'Hara");
    EXPECT_EQ(stored->BirthDate, DateFrom({1984, 2, 29, 0, 0, 0}));
    EXPECT_EQ(stored->PrevXrayDate, DateFrom({2023, 12, 1, 0, 0, 0}));
    EXPECT_EQ(stored->Address, "Long Lane 1");
    EXPECT_EQ(stored->TelOne, "11");
    EXPECT_EQ(stored->TelTwo, "22");
    EXPECT_EQ(stored->TelMobile, "33");
    EXPECT_EQ(stored->EMail, "ann@example.org");
    EXPECT_EQ(stored->Comments, "C'mon");
    EXPECT_EQ(stored->IDImg, "C:\\faces\\1.jpg");
    EXPECT_EQ(stored->OtherIDs->GetAllAsString(), "X1\\Y2");
    EXPECT_EQ(stored->Sex, "F");
    EXPECT_EQ(stored->RespDoctor, 17);
}

TEST_F(Patient, NullsLoadAsEmptyAndZero) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (5, 'A')");
    FillAll();
    EXPECT_EQ(Load("A"), 1);
    EXPECT_EQ(patient->FirstName + patient->LastName + patient->Sex + patient->Address + patient->TelOne +
                  patient->TelTwo + patient->TelMobile + patient->EMail + patient->Comments + patient->IDImg,
              "");
    EXPECT_EQ(patient->BirthDate, Date{});
    EXPECT_EQ(patient->PrevXrayDate, Date{});
    EXPECT_EQ(patient->OtherIDs->Count(), 0);
}

TEST_F(Patient, ANullResponsibleDoctorLoadsAsZero) {
    Run("INSERT INTO Patient_T (PersonNr_CH, RespDoctor) VALUES ('A', NULL)");
    patient->RespDoctor = 4;
    EXPECT_EQ(Load("A"), 1);
    EXPECT_EQ(patient->RespDoctor, 0);
}

TEST_F(Patient, TheIdentifierIsWrittenBackInUpperCaseWithoutOuterBlanks) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (5, '  ab-1 ')");
    EXPECT_EQ(Load("", 5), 1);
    EXPECT_EQ(patient->PatientID, "AB-1");
}

TEST_F(Patient, ALowerCaseIdentifierIsUpperCasedOnTheWayInAndOut) {
    patient->PatientID = "äb-ø1";
    patient->Save(con);
    EXPECT_EQ(patient->PatientID, "äb-ø1");
    EXPECT_EQ(Ask("SELECT PersonNr_CH FROM Patient_T"), Variant("ÄB-Ø1"));
    EXPECT_EQ(Stored("äb-ø1")->PatientID, "ÄB-Ø1");
}

TEST_F(Patient, ABadBirthDateLoadsAsZeroInSilence) {
    Run("INSERT INTO Patient_T (PersonNr_CH, Birthdate_CH) VALUES ('A', 'last week')");
    const TextBoxes boxes;
    patient->BirthDate = Date{1};
    EXPECT_EQ(Load("A"), 1);
    EXPECT_EQ(patient->BirthDate, Date{});
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(Patient, ALoadThatIsNotWholeNamesTheColumn) {
    const TextBoxes boxes;
    Run("INSERT INTO Patient_T (PersonNr_CH, Birthdate_CH) VALUES ('A', '1984-02-29')");
    EXPECT_EQ(Load("A"), 1);
    EXPECT_TRUE(patient->LoadCompletion().Complete());
    Run("UPDATE Patient_T SET PrevXrayDate_CH='soon'");
    EXPECT_EQ(Load("A"), 0);
    EXPECT_EQ(patient->LoadCompletion().Failure().Column, "PrevXrayDate_CH");
    EXPECT_EQ(patient->LoadCompletion().Failure().Number, 13);
    EXPECT_EQ(Load("B"), 0);
    EXPECT_TRUE(patient->LoadCompletion().Complete()) << "there is no such patient";
    Run("UPDATE Patient_T SET PrevXrayDate_CH='', Birthdate_CH='1984'");
    EXPECT_EQ(Load("A"), 1) << "as documented, the birth date is the zero date then";
    EXPECT_EQ(patient->LoadCompletion().Failure().Column, "Birthdate_CH");
    Run("UPDATE Patient_T SET Birthdate_CH=' '");
    EXPECT_EQ(Load("A"), 1);
    EXPECT_TRUE(patient->LoadCompletion().Complete());
}

TEST_F(Patient, ABadPreviousXrayDateIsShownInATextBox) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH, FirstName_NVC, RespDoctor, PrevXrayDate_CH)"
        " VALUES (5, 'A', 'Ann', 8, 'last week')");
    const TextBoxes boxes;
    patient->PrevXrayDate = Date{77};
    EXPECT_EQ(Load("A"), 0);
    EXPECT_THAT(boxes.shown, ElementsAre("OXClass.LoadOnPatientIDorpdbid error: 13 Type mismatch"));
    EXPECT_EQ(patient->ID, 5);
    EXPECT_EQ(patient->FirstName, "Ann");
    EXPECT_EQ(patient->RespDoctor, 8);
    EXPECT_EQ(patient->PrevXrayDate, Date{77});
}

TEST_F(Patient, ABlankPreviousXrayDateLoadsAsZero) {
    Run("INSERT INTO Patient_T (PersonNr_CH, PrevXrayDate_CH) VALUES ('A', '   ')");
    patient->PrevXrayDate = Date{77};
    EXPECT_EQ(Load("A"), 1);
    EXPECT_EQ(patient->PrevXrayDate, Date{});
}

TEST_F(Patient, BlanksAroundADateAreIgnored) {
    OXCLASS_ONLY_IF(KeepsLongTexts());
    Run("INSERT INTO Patient_T (PersonNr_CH, Birthdate_CH, PrevXrayDate_CH)"
        " VALUES ('A', ' 1984-02-29 ', ' 2023-12-01 ')");
    EXPECT_EQ(Load("A"), 1);
    EXPECT_EQ(patient->BirthDate, DateFrom({1984, 2, 29, 0, 0, 0}));
    EXPECT_EQ(patient->PrevXrayDate, DateFrom({2023, 12, 1, 0, 0, 0}));
}

TEST_F(Patient, ABadResponsibleDoctorKeepsTheMembersReadBefore) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    Run("INSERT INTO Patient_T (PersonNr_CH, IDImg, OtherIDs, RespDoctor, PrevXrayDate_CH)"
        " VALUES ('A', 'img', 'X\\Y', 99999999999, '2023-12-01')");
    const TextBoxes boxes;
    EXPECT_EQ(Load("A"), 0);
    EXPECT_THAT(boxes.shown, ElementsAre("OXClass.LoadOnPatientIDorpdbid error: 6 Overflow"));
    EXPECT_EQ(patient->IDImg, "img");
    EXPECT_EQ(patient->OtherIDs->Count(), 2);
    EXPECT_EQ(patient->RespDoctor, 0);
    EXPECT_EQ(patient->PrevXrayDate, Date{});
}

TEST_F(Patient, AFailingDatabaseIsShownInATextBox) {
    Run("DROP TABLE Patient_T");
    const TextBoxes boxes;
    EXPECT_EQ(Load("A"), 0);
    ASSERT_EQ(boxes.shown.size(), 1U);
    EXPECT_THAT(boxes.shown[0], ::testing::StartsWith("OXClass.LoadOnPatientIDorpdbid error: -2147217865 "));
    EXPECT_THAT(boxes.shown[0], HasSubstr(NoSuchTable("Patient_T")));
}

TEST_F(Patient, LoadingWithoutAConnectionIsShownInATextBox) {
    const TextBoxes boxes;
    EXPECT_EQ(patient->LoadOnPatientIDorPDBID(nullptr, "A", 0), 0);
    ASSERT_EQ(boxes.shown.size(), 1U);
    EXPECT_THAT(boxes.shown[0], ::testing::StartsWith("OXClass.LoadOnPatientIDorpdbid error: 3709 "));
}

// ---- saving ---------------------------------------------------------------------------------------

TEST_F(Patient, InsertsWhereTheIdentifierIsNew) {
    FillAll();
    patient->ID = 400;
    EXPECT_EQ(patient->Save(con), 0);
    EXPECT_THAT(
        Sent(),
        ElementsAre("Select * from Patient_T where (PersonNr_CH) = 'AB-1'",
                    "INSERT INTO Patient_T (PersonNr_CH, Birthdate_CH, Firstname_NVC, LastName_NVC, Sex_CH, "
                    "OtherIDs, "
                    "RespDoctor, Address_NVC,TelOne_NVC, TelTwo_NVC, TelMobile_NVC, email_adress, Comments_NVC, "
                    "PrevXrayDate_CH, IDImg) VALUES ('AB-1', '1984-02-29', 'Ann', 'O''Hara', 'F','X1\\Y2', 17, "
                    "'Long Lane 1', '11', '22', '33', 'ann@example.org', 'C''mon', '2023-12-01', "
                    "'C:\\faces\\1.jpg' );",
                    "SELECT MAX(PatientID) AS Max_ID FROM Patient_T WHERE (PersonNr_CH)='AB-1';"));
    EXPECT_EQ(patient->ID, 1);
}

TEST_F(Patient, UpdatesTheRowsWithTheIdentifier) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (31, 'AB-1')");
    FillAll();
    EXPECT_EQ(patient->Save(con), 0);
    EXPECT_THAT(Sent(),
                ElementsAre("Select * from Patient_T where (PersonNr_CH) = 'AB-1'",
                            "Update Patient_T Set Firstname_NVC='Ann',LastName_NVC='O''Hara',"
                            "Birthdate_CH='1984-02-29',PrevXrayDate_CH='2023-12-01',Address_NVC='Long Lane 1',"
                            "TelOne_NVC='11',TelTwo_NVC='22',TelMobile_NVC ='33',email_adress='ann@example.org',"
                            "Comments_NVC='C''mon',IDImg='C:\\faces\\1.jpg',OtherIDs='X1\\Y2',Sex_CH='F', "
                            "RespDoctor=17 Where PersonNr_CH ='AB-1'"));
    EXPECT_EQ(patient->ID, 31);
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T"), Variant(Long{1}));
}

TEST_F(Patient, ANewObjectInsertsEmptyTextsAndZeroes) {
    patient->PatientID = "n";
    patient->Save(con);
    EXPECT_EQ(Sent().at(1),
              "INSERT INTO Patient_T (PersonNr_CH, Birthdate_CH, Firstname_NVC, LastName_NVC, Sex_CH, OtherIDs, "
              "RespDoctor, Address_NVC,TelOne_NVC, TelTwo_NVC, TelMobile_NVC, email_adress, Comments_NVC, "
              "PrevXrayDate_CH, IDImg) VALUES ('N', '', '', '', '','', 0, '', '', '', '', '', '', '', '' );");
}

TEST_F(Patient, ANewObjectOverwritesEveryColumnOfItsRow) {
    FillAll();
    patient->Save(con);
    const Ref<cPatient> blank = New<cPatient>();
    blank->PatientID = "AB-1";
    log.statements.clear();
    blank->Save(con);
    EXPECT_EQ(Sent().at(1),
              "Update Patient_T Set Firstname_NVC='',LastName_NVC='',Birthdate_CH='',PrevXrayDate_CH='',"
              "Address_NVC='',TelOne_NVC='',TelTwo_NVC='',TelMobile_NVC ='',email_adress='',Comments_NVC='',"
              "IDImg='',OtherIDs='',Sex_CH='', RespDoctor=0 Where PersonNr_CH ='AB-1'");
    EXPECT_EQ(blank->ID, patient->ID);
    EXPECT_EQ(Stored("AB-1")->LastName, "");
}

TEST_F(Patient, AnEmptyIdentifierInsertsARowWhereNoneIsEmpty) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (31, 'A')");
    patient->FirstName = "Nobody";
    patient->Save(con);
    EXPECT_EQ(patient->ID, 32);
    EXPECT_EQ(Ask("SELECT PersonNr_CH FROM Patient_T WHERE FirstName_NVC='Nobody'"), Variant(""));
}

TEST_F(Patient, AnEmptyIdentifierOverwritesAllRowsThatHaveNone) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (31, ''), (32, 'A'), (33, '')");
    patient->FirstName = "Nobody";
    patient->Save(con);
    EXPECT_EQ(patient->ID, 31);
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T WHERE FirstName_NVC='Nobody'"), Variant(Long{2}));
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T"), Variant(Long{3}));
}

TEST_F(Patient, DuplicatesAreAllOverwrittenAndTheFirstReturnsItsCounter) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (8, 'A'), (9, 'A')");
    patient->PatientID = "a";
    patient->LastName = "Both";
    patient->Save(con);
    EXPECT_EQ(patient->ID, 8);
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T WHERE LastName_NVC='Both'"), Variant(Long{2}));
}

TEST_F(Patient, TheZeroDateIsStoredAsEmptyTextAndLoadsAsZero) {
    patient->PatientID = "A";
    patient->Save(con);
    EXPECT_EQ(Ask("SELECT Birthdate_CH FROM Patient_T"), Variant(""));
    EXPECT_EQ(Stored("A")->BirthDate, Date{});
    EXPECT_EQ(Stored("A")->PrevXrayDate, Date{});
}

TEST_F(Patient, ADatesTimeOfDayIsNotStored) {
    patient->PatientID = "A";
    patient->BirthDate = DateFrom({1984, 2, 29, 13, 45, 0});
    patient->Save(con);
    EXPECT_EQ(Ask("SELECT Birthdate_CH FROM Patient_T"), Variant("1984-02-29"));
}

TEST_F(Patient, ALongListOfIdentifiersIsCutAt255Characters) {
    const String first(200, 'A'), second(100, 'B');
    patient->PatientID = "A";
    patient->OtherIDs->FillFromString(first + "\\" + second);
    patient->Save(con);
    const Ref<cPatient> stored = Stored("A");
    EXPECT_EQ(stored->OtherIDs->Item("K0")->str, first);
    EXPECT_EQ(stored->OtherIDs->Item("K1")->str, String(54, 'B'));
    EXPECT_EQ(patient->OtherIDs->Item("K1")->str, second);
    EXPECT_EQ(Ask("SELECT length(OtherIDs) FROM Patient_T"), Variant(Long{255}));
}

TEST_F(Patient, TheListIsCutOnUpdateToo) {
    Run("INSERT INTO Patient_T (PersonNr_CH) VALUES ('A')");
    patient->PatientID = "A";
    patient->OtherIDs->FillFromString(String(300, 'X'));
    patient->Save(con);
    EXPECT_EQ(Ask("SELECT length(OtherIDs) FROM Patient_T"), Variant(Long{255}));
}

TEST_F(Patient, NamesOfAnyScriptAreReadUnchanged) {
    for (const char* name : {"Ελένη Ωρίων", "Лев Щукин", "山田 太郎", "🦷😀", "Åse \"Ø\" O'Ñ %_\\"}) {
        patient->PatientID = "A";
        patient->FirstName = patient->LastName = patient->Comments = name;
        patient->Save(con);
        EXPECT_EQ(Stored("A")->FirstName, name);
        EXPECT_EQ(Stored("A")->LastName, name);
        EXPECT_EQ(Stored("A")->Comments, name);
    }
}

TEST_F(Patient, QuotesInEscapedColumnsStoreAsTheyAre) {
    const String quoted = "'; DROP TABLE Patient_T; --'";
    for (String cPatient::*member :
         {&cPatient::FirstName, &cPatient::LastName, &cPatient::Address, &cPatient::TelOne, &cPatient::TelTwo,
          &cPatient::TelMobile, &cPatient::EMail, &cPatient::Comments, &cPatient::IDImg})
        (*patient).*member = quoted;
    patient->PatientID = "a'b";
    for (int pass = 0; pass < 2; ++pass) {  // the insert, then the update
        patient->Save(con);
        const Ref<cPatient> stored = Stored("A'B");
        EXPECT_EQ(stored->FirstName, quoted);
        EXPECT_EQ(stored->TelMobile, quoted);
        EXPECT_EQ(stored->IDImg, quoted);
    }
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T"), Variant(Long{1}));
}

/// Texts that would end an unescaped literal.
const char* const injections[] = {"x', Sex_CH='y",  "'", "O'Neil", "x'; DELETE FROM Patient_T; --", "'||'x",
                                  "x''', Sex_CH='y"};

TEST_F(Patient, AQuoteInAnUnescapedTextFailsTheInsertBeforeItIsSent) {
    for (const String text : injections)
        for (const bool inSex : {true, false}) {
            const Ref<cPatient> fresh = New<cPatient>();
            fresh->PatientID = "A";
            if (inSex)
                fresh->Sex = text;
            else
                fresh->OtherIDs->FillFromString(text);
            log.statements.clear();
            EXPECT_EQ(FailureOf([&] { fresh->Save(con); }).Number, SyntaxError) << text;
            EXPECT_THAT(Sent(), ElementsAre("Select * from Patient_T where (PersonNr_CH) = 'A'")) << text;
            EXPECT_EQ(fresh->ID, 0);
        }
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T"), Variant(Long{0}));
}

TEST_F(Patient, AQuoteInAnUnescapedTextFailsTheUpdateBeforeItIsSent) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH, Sex_CH, OtherIDs) VALUES (3, 'A', 'F', 'X')");
    for (const String text : injections)
        for (const bool inSex : {true, false}) {
            const Ref<cPatient> fresh = New<cPatient>();
            fresh->PatientID = "A";
            if (inSex)
                fresh->Sex = text;
            else
                fresh->OtherIDs->FillFromString(text);
            log.statements.clear();
            EXPECT_EQ(FailureOf([&] { fresh->Save(con); }).Number, SyntaxError) << text;
            EXPECT_THAT(Sent(), ElementsAre("Select * from Patient_T where (PersonNr_CH) = 'A'")) << text;
            EXPECT_EQ(fresh->ID, 3);
        }
    EXPECT_EQ(Ask("SELECT Sex_CH || OtherIDs FROM Patient_T"), Variant("FX"));
}

TEST_F(Patient, AFailureOfTheSaveKeepsTheSourceOfTheDatabaseLayer) {
    Run("DROP TABLE Patient_T");
    const Error expected = FailureOf([&] { con->Execute("Select * from Patient_T"); });
    const Error failure = FailureOf([&] { patient->Save(con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, expected.Source);
    EXPECT_EQ(failure.Description, expected.Description);
}

TEST_F(Patient, SavingWithoutAListOfIdentifiersRaises) {
    patient->OtherIDs = nullptr;
    EXPECT_EQ(FailureOf([&] { patient->Save(con); }).Number, 91);
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T"), Variant(Long{0}));
}

TEST_F(Patient, StatementsAreTheSameOnAMachineWithDecimalCommas) {
    FillAll();
    patient->Save(con);
    patient->Save(con);
    const std::vector<String> expected = Sent();
    Run("DELETE FROM Patient_T");
    log.statements.clear();
    const InLocale comma(DecimalComma);
    patient->Save(con);
    patient->Save(con);
    EXPECT_EQ(Sent(), expected);
}

// ---- a failure at every call that reaches the database --------------------------------------------

class PatientOnFaultyDatabase : public Patient {
protected:
    PatientOnFaultyDatabase() {
        FillAll();
        patient->ID = 400;
    }
    ~PatientOnFaultyDatabase() override { FailAtCall(0); }

    Error FailureAt(int call) {
        FailAtCall(call);
        return FailureOf([&] { patient->Save(faulty); });
    }

    Ref<Connection> faulty = FaultyConnectionTo(database);
};

TEST_F(PatientOnFaultyDatabase, TheInsertPathMakesThreeCallsAndTheUpdatePathTwo) {
    EXPECT_EQ(FailureAt(0).Number, 0);
    EXPECT_EQ(CallsSoFar(), 3);
    EXPECT_EQ(FailureAt(0).Number, 0);
    EXPECT_EQ(CallsSoFar(), 2);
}

TEST_F(PatientOnFaultyDatabase, AFailedSearchWritesNothing) {
    EXPECT_EQ(FailureAt(1).Description, "injected");
    EXPECT_EQ(patient->ID, 400);
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T"), Variant(Long{0}));
}

TEST_F(PatientOnFaultyDatabase, AFailedInsertWritesNothing) {
    EXPECT_EQ(FailureAt(2).Description, "injected");
    EXPECT_EQ(patient->ID, 400);
    EXPECT_EQ(Ask("SELECT count(*) FROM Patient_T"), Variant(Long{0}));
}

TEST_F(PatientOnFaultyDatabase, AFailedReadOfTheCounterLeavesTheRowWrittenAndTheObjectAsItWas) {
    EXPECT_EQ(FailureAt(3).Description, "injected");
    EXPECT_EQ(patient->ID, 400);
    EXPECT_EQ(Ask("SELECT FirstName_NVC FROM Patient_T"), Variant("Ann"));
}

TEST_F(PatientOnFaultyDatabase, AFailedUpdateLeavesTheRowAndTheCounterThatWasRead) {
    Run("INSERT INTO Patient_T (PatientID, PersonNr_CH, FirstName_NVC) VALUES (31, 'AB-1', 'Old')");
    EXPECT_EQ(FailureAt(2).Description, "injected");
    EXPECT_EQ(patient->ID, 31);
    EXPECT_EQ(Ask("SELECT FirstName_NVC FROM Patient_T"), Variant("Old"));
}

TEST_F(PatientOnFaultyDatabase, AFailedLoadIsShownInATextBox) {
    const TextBoxes boxes;
    FailAtCall(1);
    EXPECT_EQ(patient->LoadOnPatientIDorPDBID(faulty, "A", 0), 0);
    EXPECT_THAT(boxes.shown, ElementsAre("OXClass.LoadOnPatientIDorpdbid error: -2147467259 injected"));
    EXPECT_EQ(patient->ID, 400);
}

}  // namespace
}  // namespace OXClass

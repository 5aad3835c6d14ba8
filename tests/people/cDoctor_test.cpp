#include "people/cDoctor.h"

#include "kit/Database.h"
#include "people/OutsideGUID.h"
#include "platform/component/dispatch/Interface.h"

/// A person who can be responsible for patients, and the row of Doctor_T.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

String Repeated(const String& text, int times) {
    String all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

/// All members, in the order in which a load reads them.
String ContentOf(const cDoctor& doctor) {
    return doctor.DrContactInfo + "|" + doctor.DrFirstName + "|" + CStr(doctor.drID) + "|" + doctor.DrLastName + "|" +
           doctor.DrName + "|" + doctor.DrPrefix + "|" + CStr(Long{doctor.DrType}) + "|" + doctor.DrEMail + "|" +
           doctor.drGUID + "|" + doctor.DrLogin;
}

class Doctor : public WithDatabase {
protected:
    Doctor() {
        OutsideGUID = [this] {
            ++asked;
            return String("ab01");
        };
    }
    ~Doctor() override { OutsideGUID = nullptr; }

    /// Writes a row of which every column is filled, then changes columns.
    void RunRow(Long key = 5, const String& changes = {}) {
        Run("INSERT INTO Doctor_T (drID, DrContactInfo_NVC, DrFirstName_NVC, DrLastName_NVC, DrName_NVC,"
            " DrPrefix_NVC, DrType_INT, DrEMail, drGUID, DrLogin) VALUES (" +
            CStr(key) + ", 'room 3', 'Ann', 'Hill', 'AH', 'Dr.', 2, 'a@h', 'f00d', 'ahill')");
        if (!changes.empty()) Run("UPDATE Doctor_T SET " + changes + " WHERE drID=" + CStr(key));
    }

    void FillAll() {
        doctor->DrContactInfo = "old contact";
        doctor->DrFirstName = "old first";
        doctor->drID = 77;
        doctor->DrLastName = "old last";
        doctor->DrName = "old name";
        doctor->DrPrefix = "old prefix";
        doctor->DrType = drt_Web;
        doctor->DrEMail = "old mail";
        doctor->drGUID = "OLD GUID";
        doctor->DrLogin = "old login";
    }

    /// Returns the content of the doctor after a load of the row with these changes.
    String Loaded(const String& changes) {
        RunRow(5, changes);
        EXPECT_TRUE(doctor->LoadDoctor(5, con));
        return ContentOf(*doctor);
    }

    /// Creates the table again with these columns.
    void RunTable(const String& columns) {
        Run("DROP TABLE Doctor_T");
        Run("CREATE TABLE Doctor_T (" + columns + ")");
    }

    void DropColumn(const String& name) {
        DropIndex("Doctor_by_GUID", "Doctor_T");
        Run("ALTER TABLE Doctor_T DROP COLUMN " + name);
    }

    /// A column of the only row, after a save.
    Variant Stored(const String& column) {
        EXPECT_TRUE(doctor->SaveDoctor(con));
        return Ask("SELECT " + column + " FROM Doctor_T");
    }

    String SentModes() {
        con->Unadvise(modes);
        String all;
        for (const String& mode : modes.seen) all += (all.empty() ? "" : ", ") + mode;
        return all;
    }

    Ref<cDoctor> doctor = New<cDoctor>();
    int asked = 0;  ///< for a GUID
    ModeLog modes;
};

const char* const contentOfDoctor = "room 3|Ann|5|Hill|AH|Dr.|2|a@h|F00D|ahill";
const char* const loadOfFive = "SELECT * FROM Doctor_T   WHERE DrID =5;";
const char* const saveOfFive = "SELECT * FROM Doctor_T WHERE DrID =5";

TEST_F(Doctor, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(*doctor),
                ElementsAre("GetDCMName() -> string", "PatientCount(Con: Connection) -> int32",
                            "DeleteDoctor(Con: Connection) -> boolean", "SaveDoctor(Con: Connection) -> boolean",
                            "LoadDoctor(drID: int32, Con: Connection) -> boolean", "put DrType(DoctorType)",
                            "get DrType -> DoctorType", "put DrContactInfo(string)", "get DrContactInfo -> string",
                            "put DrPrefix(string)", "get DrPrefix -> string", "put DrLastName(string)",
                            "get DrLastName -> string", "put DrFirstName(string)", "get DrFirstName -> string",
                            "put DrName(string)", "get DrName -> string", "put drID(int32)", "get drID -> int32",
                            "put DrLogin(string)", "get DrLogin -> string", "put drGUID(string)",
                            "get drGUID -> string", "put DrEMail(string)", "get DrEMail -> string",
                            "LoadDoctorOnGUID(drGUID: string, Con: Connection) -> boolean"));
}

TEST_F(Doctor, KindsHaveTheirNamesAndNumbers) {
    std::vector<String> values;
    for (const EnumerationValue& value : EnumerationOf<DoctorType>::Values)
        values.push_back(String(value.Name) + " " + CStr(value.Value));
    EXPECT_THAT(values, ElementsAre("drt_Unknown 0", "drt_Local 1", "drt_Remote 2", "drt_Web 3"));
    EXPECT_EQ(Long{drt_Unknown}, 0);
    EXPECT_EQ(Long{drt_Local}, 1);
    EXPECT_EQ(Long{drt_Remote}, 2);
    EXPECT_EQ(Long{drt_Web}, 3);
}

TEST_F(Doctor, StartsEmpty) { EXPECT_EQ(ContentOf(*doctor), "||0||||0|||"); }

TEST_F(Doctor, EachPropertyReturnsTheAssignedValue) {
    for (const char* name :
         {"DrContactInfo", "DrPrefix", "DrLastName", "DrFirstName", "DrName", "DrLogin", "drGUID", "DrEMail"}) {
        std::vector<Variant> value{Variant(String("  aé' ") + name)};
        Invoke(*doctor, name, MemberKind::Put, value);
    }
    EXPECT_EQ(ContentOf(*doctor),
              "  aé' DrContactInfo|  aé' DrFirstName|0|  aé' DrLastName|  aé' DrName|  aé' DrPrefix|0|"
              "  aé' DrEMail|  aé' drGUID|  aé' DrLogin");
}

// ---- the name of DICOM ------------------------------------------------------------------------------------

class DicomName : public ::testing::Test {
protected:
    static String Of(const String& last, const String& first, const String& prefix, const String& name = " short ") {
        cDoctor doctor;
        doctor.DrLastName = last;
        doctor.DrFirstName = first;
        doctor.DrPrefix = prefix;
        doctor.DrName = name;
        return doctor.GetDCMName();
    }
};

TEST_F(DicomName, OfAllNamesIsFamilyGivenAndPrefix) { EXPECT_EQ(Of("Hill", "Ann", "Dr."), "Hill^Ann^^Dr."); }

TEST_F(DicomName, OfALastNameAloneIsThatName) { EXPECT_EQ(Of("Hill", "", ""), "Hill"); }

TEST_F(DicomName, OfNoPartIsTheShortNameWithItsBlanks) { EXPECT_EQ(Of("", "", ""), " short "); }

TEST_F(DicomName, OfNoNameAtAllIsEmpty) { EXPECT_EQ(Of("", "", "", ""), ""); }

TEST_F(DicomName, OfAFirstNameAloneBeginsWithACaret) { EXPECT_EQ(Of("", "Ann", ""), "^Ann"); }

TEST_F(DicomName, OfAPrefixWithoutAFirstNameHasThreeCarets) { EXPECT_EQ(Of("Hill", "", "Dr."), "Hill^^^Dr."); }

TEST_F(DicomName, OfAPrefixAloneBeginsWithThreeCarets) { EXPECT_EQ(Of("", "", "Dr."), "^^^Dr."); }

TEST_F(DicomName, WithoutAPrefixEndsWithTheFirstName) { EXPECT_EQ(Of("Hill", "Ann", ""), "Hill^Ann"); }

TEST_F(DicomName, IsTrimmedAtItsEndsAndNotInside) { EXPECT_EQ(Of("  Hill ", " Ann ", " Dr.  "), "Hill ^ Ann ^^ Dr."); }

TEST_F(DicomName, OfBlankPartsStillHasCaretsBetweenThem) {
    EXPECT_EQ(Of("  ", "", "  "), " short ");
    EXPECT_EQ(Of("", " ", ""), "^ ");
}

TEST_F(DicomName, LosesCaretsOfTheNameItselfAtItsEndAndIsNotTrimmedAgain) {
    EXPECT_EQ(Of("Hill ^^", "", ""), "Hill ");
    EXPECT_EQ(Of("^^", "^", "^"), " short ");
}

TEST_F(DicomName, KeepsTabs) { EXPECT_EQ(Of("\tHill", "", "\t"), "\tHill^^^\t"); }

// ---- patients -----------------------------------------------------------------------------------

TEST_F(Doctor, CountsThePatientsWhoNameItsNumber) {
    Run("INSERT INTO Patient_T (PersonNr_CH, RespDoctor) VALUES ('A', 5), ('B', 5), ('C', 6), ('D', NULL)");
    doctor->drID = 5;
    con->Advise(modes);
    EXPECT_EQ(doctor->PatientCount(con), 2);
    EXPECT_EQ(SentModes(), "0 1 1");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Patient_T WHERE RespDoctor =5;"));
}

TEST_F(Doctor, WithoutPatientsCountsNone) {
    doctor->drID = -5;
    EXPECT_EQ(doctor->PatientCount(con), 0);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Patient_T WHERE RespDoctor =-5;"));
}

// ---- deleting -----------------------------------------------------------------------------------

TEST_F(Doctor, DeletesItsRowAndKeepsItsMembersAndItsPatients) {
    RunRow(5);
    RunRow(6);
    Run("INSERT INTO Patient_T (PersonNr_CH, RespDoctor) VALUES ('A', 5)");
    FillAll();
    doctor->drID = 5;
    const String before = ContentOf(*doctor);
    con->Advise(modes);
    EXPECT_TRUE(doctor->DeleteDoctor(con));
    EXPECT_EQ(SentModes(), "0 1 -1");
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM Doctor_T WHERE DrID =5;"));
    EXPECT_EQ(ContentOf(*doctor), before);
    EXPECT_EQ(Ask("SELECT drID FROM Doctor_T"), Variant(Long{6}));
    EXPECT_EQ(Ask("SELECT RespDoctor FROM Patient_T"), Variant(Long{5}));
}

TEST_F(Doctor, DeletingAMissingRowReturnsTrue) { EXPECT_TRUE(doctor->DeleteDoctor(con)); }

// ---- saving -------------------------------------------------------------------------------------

TEST_F(Doctor, ANewDoctorTakesTheDatabasesNumber) {
    const TextBoxes boxes;
    RunRow(41);
    con->Advise(modes);
    EXPECT_TRUE(doctor->SaveDoctor(con));
    EXPECT_EQ(SentModes(), "1 3 1");
    EXPECT_EQ(doctor->drID, 42);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Doctor_T WHERE DrID =0"));
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(Doctor, SavingTheSameDoctorAgainUpdatesItsRow) {
    doctor->DrName = "one";
    doctor->SaveDoctor(con);
    doctor->DrName = "two";
    EXPECT_TRUE(doctor->SaveDoctor(con));
    EXPECT_EQ(doctor->drID, 1);
    EXPECT_EQ(Ask("SELECT COUNT(*) || MIN(DrName_NVC) FROM Doctor_T"), Variant("1two"));
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Doctor_T WHERE DrID =0", "SELECT * FROM Doctor_T WHERE DrID =1"));
}

TEST_F(Doctor, ANumberWithoutARowIsNotKept) {
    doctor->drID = 77;
    EXPECT_TRUE(doctor->SaveDoctor(con));
    EXPECT_EQ(doctor->drID, 1);
    EXPECT_EQ(Ask("SELECT drID FROM Doctor_T"), Variant(Long{1}));
}

TEST_F(Doctor, EachMemberIsWrittenToItsColumn) {
    FillAll();
    doctor->SaveDoctor(con);
    EXPECT_EQ(Ask("SELECT DrContactInfo_NVC || '|' || DrFirstName_NVC || '|' || DrLastName_NVC || '|' ||"
                  " DrName_NVC || '|' || DrPrefix_NVC || '|' || DrType_INT || '|' || DrEMail || '|' ||"
                  " drGUID || '|' || DrLogin FROM Doctor_T"),
              Variant("old contact|old first|old last|old name|old prefix|3|old mail|OLD GUID|old login"));
}

TEST_F(Doctor, ANewObjectStoresEmptyTextsAndNoNulls) {
    doctor->SaveDoctor(con);
    EXPECT_EQ(Ask("SELECT DrContactInfo_NVC || DrFirstName_NVC || DrLastName_NVC || DrName_NVC ||"
                  " DrPrefix_NVC || DrType_INT || DrEMail || drGUID || DrLogin FROM Doctor_T"),
              Variant("0"));
}

TEST_F(Doctor, TheShortNameIsCutToThirtyInTheTableAndWholeInTheObjectUntilTheNextLoad) {
    doctor->DrName = String(30, 'a') + "b";
    doctor->drGUID = "F00D";
    EXPECT_EQ(Stored("DrName_NVC"), Variant(String(30, 'a')));
    EXPECT_EQ(doctor->DrName, String(30, 'a') + "b");
    doctor->LoadDoctor(doctor->drID, con);
    EXPECT_EQ(doctor->DrName, String(30, 'a'));
}

TEST_F(Doctor, TheContactIsCutTo255) {
    doctor->DrContactInfo = String(255, 'a') + "b";
    EXPECT_EQ(Stored("DrContactInfo_NVC"), Variant(String(255, 'a')));
}

TEST_F(Doctor, TheFirstNameIsCutToSixty) {
    doctor->DrFirstName = String(60, 'a') + "b";
    EXPECT_EQ(Stored("DrFirstName_NVC"), Variant(String(60, 'a')));
}

TEST_F(Doctor, TheLastNameIsCutToSixty) {
    doctor->DrLastName = String(60, 'a') + "b";
    EXPECT_EQ(Stored("DrLastName_NVC"), Variant(String(60, 'a')));
}

TEST_F(Doctor, ThePrefixIsCutToTwenty) {
    doctor->DrPrefix = String(20, 'a') + "b";
    EXPECT_EQ(Stored("DrPrefix_NVC"), Variant(String(20, 'a')));
}

TEST_F(Doctor, ATextOfJustTheWidthIsStoredWhole) {
    doctor->DrName = String(30, 'a');
    EXPECT_EQ(Stored("DrName_NVC"), Variant(String(30, 'a')));
}

TEST_F(Doctor, AWidthCountsAccentedLettersAsOne) {
    doctor->DrName = Repeated("é", 31);
    EXPECT_EQ(Stored("DrName_NVC"), Variant(Repeated("é", 30)));
}

TEST_F(Doctor, AWidthCountsGreekLettersAsOne) {
    doctor->DrName = Repeated("Ω", 31);
    EXPECT_EQ(Stored("DrName_NVC"), Variant(Repeated("Ω", 30)));
}

TEST_F(Doctor, AWidthCountsACharacterOfTwoUnitsAsTwo) {
    doctor->DrName = Repeated("🦷", 16);
    EXPECT_EQ(Stored("DrName_NVC"), Variant(Repeated("🦷", 15)));
}

TEST_F(Doctor, ACutInsideAPairLeavesTheWholeCharacterOut) {
    doctor->DrName = "a" + Repeated("🦷", 15);
    EXPECT_EQ(Stored("DrName_NVC"), Variant("a" + Repeated("🦷", 14)));
}

TEST_F(Doctor, TextsAreTrimmedBeforeTheyAreCut) {
    doctor->DrName = "   " + String(30, 'a') + "   ";
    EXPECT_EQ(Stored("DrName_NVC"), Variant(String(30, 'a')));
}

TEST_F(Doctor, ACutIsNotTrimmedAgain) {
    doctor->DrName = String(29, 'a') + " b";
    EXPECT_EQ(Stored("DrName_NVC"), Variant(String(29, 'a') + " "));
}

TEST_F(Doctor, OnlyCharacter32IsABlank) {
    for (const String kept : {"\ta\t", "\r\na\r\n", "\u00A0a\u00A0", "\u3000a\u3000"}) {
        doctor->DrPrefix = " " + kept + " ";
        EXPECT_EQ(Stored("DrPrefix_NVC"), Variant(kept));
    }
}

TEST_F(Doctor, EachOfTheFiveNamesIsTrimmed) {
    doctor->DrContactInfo = doctor->DrFirstName = doctor->DrLastName = doctor->DrName = doctor->DrPrefix = "  x ";
    EXPECT_EQ(Stored("DrContactInfo_NVC || DrFirstName_NVC || DrLastName_NVC || DrName_NVC || DrPrefix_NVC"),
              Variant("xxxxx"));
    EXPECT_EQ(doctor->DrContactInfo, "  x ");
}

TEST_F(Doctor, MailGuidAndLoginAreWrittenUnescaped) {
    doctor->DrEMail = doctor->drGUID = doctor->DrLogin = "  x ";
    EXPECT_EQ(Stored("DrEMail || drGUID || DrLogin"), Variant("  x   x   x "));
}

TEST_F(Doctor, AGuidIsNotUpperCasedOnItsWayIn) {
    doctor->drGUID = "f00d";
    EXPECT_EQ(Stored("drGUID"), Variant("f00d"));
}

TEST_F(Doctor, AMailGuidOrLoginLongerThanItsColumnFailsAndWritesNothing) {
    for (String cDoctor::*const member : {&cDoctor::DrEMail, &cDoctor::drGUID, &cDoctor::DrLogin}) {
        const Ref<cDoctor> fresh = New<cDoctor>();
        (*fresh).*member = String(256, 'a');
        const Error failure = FailureOf([&] { fresh->SaveDoctor(con); });
        EXPECT_EQ(failure.Number, TooLong);
        EXPECT_EQ(failure.Source, "cDoctor.SaveDoctor, ADODB.Recordset");
        EXPECT_EQ(fresh->drID, 0);
    }
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Doctor_T"), Variant(Long{0}));
}

TEST_F(Doctor, QuotesInEveryTextAreStoredAndReadBack) {
    for (String cDoctor::*const member :
         {&cDoctor::DrContactInfo, &cDoctor::DrFirstName, &cDoctor::DrLastName, &cDoctor::DrName, &cDoctor::DrPrefix,
          &cDoctor::DrEMail, &cDoctor::drGUID, &cDoctor::DrLogin})
        (*doctor).*member = "'X'';--\"";
    doctor->SaveDoctor(con);
    const Ref<cDoctor> stored = New<cDoctor>();
    EXPECT_TRUE(stored->LoadDoctor(doctor->drID, con));
    EXPECT_EQ(ContentOf(*stored), ContentOf(*doctor));
}

TEST_F(Doctor, AKindOutsideOfTheListIsStoredAndReadBack) {
    doctor->DrType = static_cast<DoctorType>(-7);
    EXPECT_EQ(Stored("DrType_INT"), Variant(Long{-7}));
    const Ref<cDoctor> stored = New<cDoctor>();
    stored->LoadDoctor(doctor->drID, con);
    EXPECT_EQ(Long{stored->DrType}, -7);
}

TEST_F(Doctor, ARowOfNumberZeroShowsABoxAndIsSaved) {
    const TextBoxes boxes;
    RunRow(0);
    doctor->DrName = "new";
    EXPECT_TRUE(doctor->SaveDoctor(con));
    EXPECT_THAT(boxes.shown, ElementsAre("OXClass.SaveDoctor.Error. Me.drID=0"));
    EXPECT_EQ(doctor->drID, 0);
    EXPECT_EQ(Ask("SELECT COUNT(*) || MIN(DrName_NVC) FROM Doctor_T"), Variant("1new"));
}

TEST_F(Doctor, ANewRowOfATableWithoutACounterIsWrittenAndFailsAtItsNumber) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    const TextBoxes boxes;
    RunTable(
        "drID INTEGER, DrContactInfo_NVC NVARCHAR(255), DrFirstName_NVC NVARCHAR(60), DrLastName_NVC"
        " NVARCHAR(60), DrName_NVC NVARCHAR(30), DrPrefix_NVC NVARCHAR(20), DrType_INT INTEGER,"
        " DrEMail NVARCHAR(255), drGUID NVARCHAR(38), DrLogin NVARCHAR(255)");
    doctor->drID = 3;
    const Error failure = FailureOf([&] { doctor->SaveDoctor(con); });
    EXPECT_EQ(failure.Number, 94);
    EXPECT_THAT(failure.Source, StartsWith("cDoctor.SaveDoctor, "));
    EXPECT_EQ(doctor->drID, 3);
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Doctor_T"), Variant(Long{1}));
    EXPECT_THAT(boxes.shown, IsEmpty());
}

/// The columns as a save writes them.
const std::vector<String> doctorColumns = {"DrContactInfo_NVC", "DrFirstName_NVC", "DrLastName_NVC",
                                           "DrName_NVC",        "DrPrefix_NVC",    "DrType_INT",
                                           "DrEMail",           "drGUID",          "DrLogin"};

TEST_F(Doctor, ColumnsAreWrittenInTheirOrder) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    FillAll();
    doctor->DrType = static_cast<DoctorType>(12);
    // Each text is too long for its column, and the one column is not there: what comes first is raised.
    for (std::size_t missing = 0; missing < doctorColumns.size(); ++missing) {
        for (std::size_t narrow = 0; narrow < doctorColumns.size(); ++narrow) {
            if (narrow == missing) continue;
            String columns = "drID INTEGER PRIMARY KEY AUTOINCREMENT";
            for (std::size_t i = 0; i < doctorColumns.size(); ++i)
                if (i != missing) columns += ", " + doctorColumns[i] + (i == narrow ? " NVARCHAR(1)" : " NVARCHAR(99)");
            RunTable(columns);
            EXPECT_EQ(FailureOf([&] { doctor->SaveDoctor(con); }).Number, missing < narrow ? MissingColumn : TooLong)
                << doctorColumns[missing] << " missing, " << doctorColumns[narrow] << " narrow";
        }
    }
}

TEST_F(Doctor, AMissingColumnFailsTheSaveAndWritesNothing) {
    RunRow(5);
    DropColumn("DrLogin");
    FillAll();
    doctor->drID = 5;
    const Error failure = FailureOf([&] { doctor->SaveDoctor(con); });
    EXPECT_EQ(failure.Number, MissingColumn);
    EXPECT_EQ(failure.Source, "cDoctor.SaveDoctor, ADODB.Recordset");
    EXPECT_EQ(Ask("SELECT DrName_NVC FROM Doctor_T"), Variant("AH"));
}

// ---- loading ------------------------------------------------------------------------------------

TEST_F(Doctor, LoadsEveryColumnAndWritesNothing) {
    RunRow();
    con->Advise(modes);
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_EQ(SentModes(), "0 1 1");
    EXPECT_EQ(ContentOf(*doctor), contentOfDoctor);
    EXPECT_THAT(Sent(), ElementsAre(loadOfFive));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("f00d"));
    EXPECT_EQ(asked, 0);
}

TEST_F(Doctor, AMissingNumberReturnsFalseAndChangesNothing) {
    FillAll();
    const String before = ContentOf(*doctor);
    EXPECT_FALSE(doctor->LoadDoctor(-5, con));
    EXPECT_EQ(ContentOf(*doctor), before);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Doctor_T   WHERE DrID =-5;"));
}

TEST_F(Doctor, ANullContactReadsAsEmpty) {
    EXPECT_EQ(Loaded("DrContactInfo_NVC=NULL"), "|Ann|5|Hill|AH|Dr.|2|a@h|F00D|ahill");
}
TEST_F(Doctor, ANullFirstNameReadsAsEmpty) {
    EXPECT_EQ(Loaded("DrFirstName_NVC=NULL"), "room 3||5|Hill|AH|Dr.|2|a@h|F00D|ahill");
}
TEST_F(Doctor, ANullLastNameReadsAsEmpty) {
    EXPECT_EQ(Loaded("DrLastName_NVC=NULL"), "room 3|Ann|5||AH|Dr.|2|a@h|F00D|ahill");
}
TEST_F(Doctor, ANullShortNameReadsAsEmpty) {
    EXPECT_EQ(Loaded("DrName_NVC=NULL"), "room 3|Ann|5|Hill||Dr.|2|a@h|F00D|ahill");
}
TEST_F(Doctor, ANullPrefixReadsAsEmpty) {
    EXPECT_EQ(Loaded("DrPrefix_NVC=NULL"), "room 3|Ann|5|Hill|AH||2|a@h|F00D|ahill");
}
TEST_F(Doctor, ANullKindReadsAsUnknown) {
    EXPECT_EQ(Loaded("DrType_INT=NULL"), "room 3|Ann|5|Hill|AH|Dr.|0|a@h|F00D|ahill");
}
TEST_F(Doctor, ANullMailReadsAsEmpty) { EXPECT_EQ(Loaded("DrEMail=NULL"), "room 3|Ann|5|Hill|AH|Dr.|2||F00D|ahill"); }
TEST_F(Doctor, ANullLoginReadsAsEmpty) { EXPECT_EQ(Loaded("DrLogin=NULL"), "room 3|Ann|5|Hill|AH|Dr.|2|a@h|F00D|"); }

TEST_F(Doctor, TextsAreReadWithTheirBlanks) {
    EXPECT_EQ(Loaded("DrContactInfo_NVC=' c ', DrName_NVC=' n ', DrEMail=' m ', drGUID=' g '"),
              " c |Ann|5|Hill| n |Dr.|2| m | G |ahill");
}

TEST_F(Doctor, ANullNumberReadsAsZero) {
    RunTable(
        "drID INTEGER, DrContactInfo_NVC TEXT, DrFirstName_NVC TEXT, DrLastName_NVC TEXT, DrName_NVC TEXT,"
        " DrPrefix_NVC TEXT, DrType_INT INTEGER, DrEMail TEXT, drGUID TEXT, DrLogin TEXT");
    Run("INSERT INTO Doctor_T (DrName_NVC, drGUID) VALUES ('x', 'G')");
    doctor->drID = 77;
    EXPECT_TRUE(doctor->LoadDoctorOnGUID("g", con));
    EXPECT_EQ(ContentOf(*doctor), "||0||x||0||G|");
}

TEST_F(Doctor, ATextThatIsNotANumberFailsAfterContactAndFirstNameAreRead) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RunTable(
        "drID NVARCHAR(9), DrContactInfo_NVC TEXT, DrFirstName_NVC TEXT, DrLastName_NVC TEXT, DrName_NVC"
        " TEXT, DrPrefix_NVC TEXT, DrType_INT INTEGER, DrEMail TEXT, drGUID TEXT, DrLogin TEXT");
    Run("INSERT INTO Doctor_T (drID, DrContactInfo_NVC, DrFirstName_NVC, drGUID) VALUES ('x', 'c', 'f', "
        "'G')");
    FillAll();
    EXPECT_EQ(FailureOf([&] { doctor->LoadDoctorOnGUID("g", con); }).Number, 13);
    EXPECT_EQ(ContentOf(*doctor), "c|f|77|old last|old name|old prefix|3|old mail|OLD GUID|old login");
}

TEST_F(Doctor, AMissingColumnLeavesTheMembersReadBeforeIt) {
    OXCLASS_ONLY_IF(RollsBackDefinitions());
    struct {
        const char* column;
        const char* content;
    } const cases[] = {
        {"DrContactInfo_NVC", "old contact|old first|77|old last|old name|old prefix|3|old mail|OLD GUID|old login"},
        {"DrFirstName_NVC", "room 3|old first|77|old last|old name|old prefix|3|old mail|OLD GUID|old login"},
        {"DrLastName_NVC", "room 3|Ann|5|old last|old name|old prefix|3|old mail|OLD GUID|old login"},
        {"DrName_NVC", "room 3|Ann|5|Hill|old name|old prefix|3|old mail|OLD GUID|old login"},
        {"DrPrefix_NVC", "room 3|Ann|5|Hill|AH|old prefix|3|old mail|OLD GUID|old login"},
        {"DrType_INT", "room 3|Ann|5|Hill|AH|Dr.|3|old mail|OLD GUID|old login"},
        {"DrEMail", "room 3|Ann|5|Hill|AH|Dr.|2|old mail|OLD GUID|old login"},
        {"drGUID", "room 3|Ann|5|Hill|AH|Dr.|2|a@h|OLD GUID|old login"},
        {"DrLogin", "room 3|Ann|5|Hill|AH|Dr.|2|a@h|F00D|old login"},
    };
    RunRow();
    for (const auto& one : cases) {
        Run("BEGIN");
        DropColumn(one.column);
        FillAll();
        const Error failure = FailureOf([&] { doctor->LoadDoctor(5, con); });
        Run("ROLLBACK");
        EXPECT_EQ(failure.Number, MissingColumn) << one.column;
        EXPECT_EQ(failure.Source, "cDoctor.loadDoctor, ADODB.Recordset") << one.column;
        EXPECT_EQ(ContentOf(*doctor), one.content) << one.column;
    }
    EXPECT_EQ(asked, 0);
}

TEST_F(Doctor, ALateBoundLoadWorksTheSame) {
    RunRow();
    std::vector<Variant> arguments{Variant(Long{5}), Variant(con)};
    EXPECT_EQ(Invoke(*doctor, "loaddoctor", MemberKind::Operation, arguments), Variant(true));
    EXPECT_EQ(ContentOf(*doctor), contentOfDoctor);
    EXPECT_EQ(arguments[0], Variant(Long{5}));
}

// ---- a row without a GUID ---------------------------------------------------------------------------------

TEST_F(Doctor, ARowWithoutAGuidGetsOneAndIsWrittenBack) {
    RunRow(5, "drGUID=NULL");
    con->Advise(modes);
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_EQ(SentModes(), "0 1 1, 1 3 1");
    EXPECT_THAT(Sent(), ElementsAre(loadOfFive, saveOfFive));
    EXPECT_EQ(ContentOf(*doctor), "room 3|Ann|5|Hill|AH|Dr.|2|a@h|AB01|ahill");
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("AB01"));
    EXPECT_EQ(asked, 1);
}

TEST_F(Doctor, TheSecondLoadFindsTheGuidOfTheFirst) {
    RunRow(5, "drGUID=''");
    doctor->LoadDoctor(5, con);
    log.statements.clear();
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_THAT(Sent(), ElementsAre(loadOfFive));
    EXPECT_EQ(asked, 1);
}

TEST_F(Doctor, AGuidOfBlanksIsReplaced) {
    RunRow(5, "drGUID='   '");
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("AB01"));
}

TEST_F(Doctor, AGuidOfATabIsOne) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RunRow(5, "drGUID=char(9)");
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_EQ(doctor->drGUID, "\t");
    EXPECT_EQ(asked, 0);
}

TEST_F(Doctor, TheWriteBackTrimsTheRowAndTurnsItsNullsIntoEmptyTexts) {
    RunRow(5, "drGUID=NULL, DrName_NVC='  n ', DrContactInfo_NVC=NULL, DrType_INT=NULL, DrEMail=' m '");
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_EQ(Ask("SELECT DrName_NVC || '|' || DrContactInfo_NVC || '|' || DrType_INT || '|' || DrEMail"
                  " FROM Doctor_T"),
              Variant("n||0| m "));
    EXPECT_EQ(doctor->DrName, "  n ");
}

TEST_F(Doctor, TheWriteBackCutsTheRow) {
    OXCLASS_ONLY_IF(KeepsLongTexts());
    RunRow(5, "drGUID=NULL, DrPrefix_NVC='" + String(25, 'p') + "'");
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_EQ(Ask("SELECT DrPrefix_NVC FROM Doctor_T"), Variant(String(20, 'p')));
    EXPECT_EQ(doctor->DrPrefix, String(25, 'p'));
}

TEST_F(Doctor, AnEmptyOutsideGuidIsSaved) {
    OutsideGUID = [] { return String(); };
    RunRow(5, "drGUID=NULL");
    EXPECT_TRUE(doctor->LoadDoctor(5, con));
    EXPECT_THAT(Sent(), ElementsAre(loadOfFive, saveOfFive));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant(""));
}

TEST_F(Doctor, AnOutsideGuidThatRaisesFailsTheLoadAfterItsMembers) {
    OutsideGUID = []() -> String { throw Error(429, "Suite.Ids", "gone"); };
    RunRow(5, "drGUID='  '");
    FillAll();
    const Error failure = FailureOf([&] { doctor->LoadDoctor(5, con); });
    EXPECT_EQ(failure.Number, 429);
    EXPECT_EQ(failure.Source, "cDoctor.loadDoctor, Suite.Ids");
    EXPECT_EQ(failure.Description, "gone");
    EXPECT_EQ(ContentOf(*doctor), "room 3|Ann|5|Hill|AH|Dr.|2|a@h|  |ahill");
    EXPECT_THAT(Sent(), ElementsAre(loadOfFive));
}

TEST_F(Doctor, AWriteBackThatFailsNamesBothOperations) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RunRow(5, "drGUID=NULL");
    Run("CREATE TRIGGER refuse BEFORE UPDATE ON Doctor_T BEGIN SELECT RAISE(ABORT, 'refused'); END");
    const Error failure = FailureOf([&] { doctor->LoadDoctor(5, con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E2F));
    EXPECT_EQ(failure.Source, "cDoctor.loadDoctor, cDoctor.SaveDoctor, " + EngineName());
    EXPECT_EQ(failure.Description, "refused");
    EXPECT_EQ(ContentOf(*doctor), "room 3|Ann|5|Hill|AH|Dr.|2|a@h|AB01|ahill");
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant(Null{}));
}

TEST_F(Doctor, ARowOfNumberZeroWithoutAGuidShowsTheBoxOfTheSaveAndLoads) {
    const TextBoxes boxes;
    RunRow(0, "drGUID=NULL");
    EXPECT_TRUE(doctor->LoadDoctor(0, con));
    EXPECT_THAT(boxes.shown, ElementsAre("OXClass.SaveDoctor.Error. Me.drID=0"));
}

// ---- loading by GUID --------------------------------------------------------------------------------------

TEST_F(Doctor, AGuidInAnyCaseFindsARowInUpperCase) {
    RunRow(5, "drGUID='F00D'");
    con->Advise(modes);
    EXPECT_TRUE(doctor->LoadDoctorOnGUID("f00D", con));
    EXPECT_EQ(SentModes(), "0 1 1");
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Doctor_T   WHERE DrGUID ='F00D';"));
    EXPECT_EQ(ContentOf(*doctor), contentOfDoctor);
}

TEST_F(Doctor, AGuidDoesNotFindARowInLowerCase) {
    RunRow(5, "drGUID='f00d'");
    FillAll();
    const String before = ContentOf(*doctor);
    EXPECT_FALSE(doctor->LoadDoctorOnGUID("f00d", con));
    EXPECT_EQ(ContentOf(*doctor), before);
}

TEST_F(Doctor, TheCallersGuidIsUnchanged) {
    std::vector<Variant> arguments{Variant("f00d"), Variant(con)};
    EXPECT_EQ(Invoke(*doctor, "LoadDoctorOnGUID", MemberKind::Operation, arguments), Variant(false));
    EXPECT_EQ(arguments[0], Variant("f00d"));
}

TEST_F(Doctor, AQuoteInTheGuidFails) {
    RunRow();
    FillAll();
    const String before = ContentOf(*doctor);
    const Error failure = FailureOf([&] { doctor->LoadDoctorOnGUID("f'0", con); });
    EXPECT_EQ(failure.Number, SyntaxError);
    EXPECT_THAT(failure.Source, StartsWith("cDoctor.loadDoctorOnGUID, "));
    EXPECT_EQ(ContentOf(*doctor), before);
}

TEST_F(Doctor, AGuidThatWouldEndItsLiteralNeverBecomesAnotherStatement) {
    RunRow();
    EXPECT_EQ(FailureOf([&] { doctor->LoadDoctorOnGUID("' OR 1=1 OR '", con); }).Number, SyntaxError);
    EXPECT_EQ(doctor->drID, 0);
}

TEST_F(Doctor, AnEmptyGuidFindsARowWithAnEmptyOneAndAssignsOne) {
    RunRow(5, "drGUID=''");
    EXPECT_TRUE(doctor->LoadDoctorOnGUID("", con));
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Doctor_T   WHERE DrGUID ='';", saveOfFive));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("AB01"));
}

TEST_F(Doctor, AnEmptyGuidDoesNotFindANull) {
    RunRow(5, "drGUID=NULL");
    EXPECT_FALSE(doctor->LoadDoctorOnGUID("", con));
    EXPECT_EQ(asked, 0);
}

TEST_F(Doctor, AWriteBackThatFailsInALoadByGuidNamesBothOperations) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RunRow(5, "drGUID=' '");
    Run("CREATE TRIGGER refuse BEFORE UPDATE ON Doctor_T BEGIN SELECT RAISE(ABORT, 'refused'); END");
    EXPECT_EQ(FailureOf([&] { doctor->LoadDoctorOnGUID(" ", con); }).Source,
              "cDoctor.loadDoctorOnGUID, cDoctor.SaveDoctor, " + EngineName());
}

// ---- failures -----------------------------------------------------------------------------------

TEST_F(Doctor, EveryOperationNamesItselfInFrontOfTheSource) {
    Run("DROP TABLE Doctor_T");
    Run("DROP TABLE Patient_T");
    const auto expect = [](const Error& failure, const String& source) {
        EXPECT_EQ(failure.Source, source);
        EXPECT_EQ(failure.Number, MissingTable) << source;
        EXPECT_THAT(failure.Description, testing::AnyOf(NoSuchTable("Doctor_T"), NoSuchTable("Patient_T"))) << source;
    };
    expect(FailureOf([&] { doctor->PatientCount(con); }), "cDoctor.PatientCount, " + EngineName());
    expect(FailureOf([&] { doctor->DeleteDoctor(con); }), "cDoctor.DeleteDoctor, " + EngineName());
    expect(FailureOf([&] { doctor->SaveDoctor(con); }), "cDoctor.SaveDoctor, " + EngineName());
    expect(FailureOf([&] { doctor->LoadDoctor(1, con); }), "cDoctor.loadDoctor, " + EngineName());
    expect(FailureOf([&] { doctor->LoadDoctorOnGUID("a", con); }), "cDoctor.loadDoctorOnGUID, " + EngineName());
}

TEST_F(Doctor, AClosedConnectionFailsWithTheLayersOwnNumber) {
    const Ref<Connection> closed = New<Connection>();
    const Error load = FailureOf([&] { doctor->LoadDoctor(1, closed); });
    EXPECT_EQ(load.Number, 3709);
    EXPECT_EQ(load.Source, "cDoctor.loadDoctor, ADODB.Recordset");
    const Error removal = FailureOf([&] { doctor->DeleteDoctor(closed); });
    EXPECT_EQ(removal.Number, 3704);
    EXPECT_EQ(removal.Source, "cDoctor.DeleteDoctor, ADODB.Connection");
}

}  // namespace
}  // namespace OXClass

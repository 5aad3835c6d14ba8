#include "people/cClinic.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// One clinic and the row of Clinic_T.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// All members, in the order in which a load reads them.
String ContentOf(const cClinic& clinic) {
    return CStr(clinic.ID) + "|" + clinic.City + "|" + clinic.ClinicName + "|" + clinic.OrgNumber + "|" +
           clinic.Remarks16 + "|" + clinic.StreetAddress + "|" + clinic.Telephone + "|" + clinic.ZipCode;
}

/// The columns as a save writes them.
const std::vector<String> written = {"ClinicName", "OrgNumber", "ZipCode", "StreetAdress",
                                     "City",       "Telephone", "Remarks"};

/// The members in the same order.
String cClinic::*const members[] = {&cClinic::ClinicName,    &cClinic::OrgNumber, &cClinic::ZipCode,
                                    &cClinic::StreetAddress, &cClinic::City,      &cClinic::Telephone,
                                    &cClinic::Remarks16};

class Clinic : public WithDatabase {
protected:
    /// Writes a row of which every column is filled, then changes columns.
    void RunRow(Long key = 5, const String& changes = {}) {
        Run("INSERT INTO Clinic_T (ClinicID, ClinicName, OrgNumber, ZipCode, StreetAdress, City, Telephone,"
            " Remarks) VALUES (" +
            CStr(key) + ", 'North', 'org', '123', 'Lane 1', 'Umea', '555', 'none')");
        if (!changes.empty()) Run("UPDATE Clinic_T SET " + changes + " WHERE ClinicID=" + CStr(key));
    }

    void FillAll() {
        clinic->ID = 77;
        for (std::size_t i = 0; i < written.size(); ++i) (*clinic).*members[i] = "old " + written[i];
    }

    void RunTable(const String& columns) {
        Run("DROP TABLE Clinic_T");
        Run("CREATE TABLE Clinic_T (" + columns + ")");
    }

    /// A column of the only row, after a save.
    Variant Stored(const String& column) {
        EXPECT_TRUE(clinic->SaveClinic(con));
        return Ask("SELECT " + column + " FROM Clinic_T");
    }

    Ref<cClinic> clinic = New<cClinic>();
    ModeLog modes;
};

const char* const contentOfRow = "5|Umea|North|org|none|Lane 1|555|123";

TEST_F(Clinic, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(*clinic),
        ElementsAre("DeleteClinic(Con: Connection&) -> boolean", "SaveClinic(Con: Connection&) -> boolean",
                    "LoadClinic(ClinicID: int32, Con: Connection&) -> boolean", "put Remarks16(string)",
                    "get Remarks16 -> string", "put Telephone(string)", "get Telephone -> string", "put City(string)",
                    "get City -> string", "put StreetAddress(string)", "get StreetAddress -> string",
                    "put ZipCode(string)", "get ZipCode -> string", "put OrgNumber(string)", "get OrgNumber -> string",
                    "put ClinicName(string)", "get ClinicName -> string", "put ID(int32)", "get ID -> int32"));
}

TEST_F(Clinic, StartsEmpty) { EXPECT_EQ(ContentOf(*clinic), "0|||||||"); }

TEST_F(Clinic, EachPropertyReturnsTheAssignedValue) {
    for (const char* name : {"Remarks16", "Telephone", "City", "StreetAddress", "ZipCode", "OrgNumber", "ClinicName"}) {
        std::vector<Variant> value{Variant(String(" ' ") + name)};
        Invoke(*clinic, name, MemberKind::Put, value);
    }
    EXPECT_EQ(ContentOf(*clinic),
              "0| ' City| ' ClinicName| ' OrgNumber| ' Remarks16| ' StreetAddress| ' Telephone| ' ZipCode");
}

// ---- deleting -----------------------------------------------------------------------------------

TEST_F(Clinic, DeletesItsRowAndKeepsItsMembers) {
    RunRow(5);
    RunRow(6);
    FillAll();
    clinic->ID = 5;
    const String before = ContentOf(*clinic);
    con->Advise(modes);
    EXPECT_TRUE(clinic->DeleteClinic(con));
    con->Unadvise(modes);
    EXPECT_EQ(ContentOf(*clinic), before);
    EXPECT_EQ(Ask("SELECT ClinicID FROM Clinic_T"), Variant(Long{6}));
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM Clinic_T WHERE ClinicID =5;"));
    EXPECT_THAT(modes.seen, ElementsAre("0 1 -1"));
}

TEST_F(Clinic, DeletingAMissingRowReturnsTrue) {
    clinic->ID = -3;
    EXPECT_TRUE(clinic->DeleteClinic(con));
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM Clinic_T WHERE ClinicID =-3;"));
}

// ---- saving -------------------------------------------------------------------------------------

TEST_F(Clinic, ANewClinicTakesTheDatabasesIdentifier) {
    const TextBoxes boxes;
    RunRow(41);
    con->Advise(modes);
    EXPECT_TRUE(clinic->SaveClinic(con));
    con->Unadvise(modes);
    EXPECT_EQ(clinic->ID, 42);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Clinic_T WHERE ClinicID =0"));
    EXPECT_THAT(modes.seen, ElementsAre("1 3 1"));
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(Clinic, SavingTheSameClinicAgainUpdatesItsRow) {
    clinic->SaveClinic(con);
    clinic->ClinicName = "two";
    EXPECT_EQ(Stored("COUNT(*) || MIN(ClinicName)"), Variant("1two"));
    EXPECT_EQ(clinic->ID, 1);
    EXPECT_THAT(Sent(),
                ElementsAre("SELECT * FROM Clinic_T WHERE ClinicID =0", "SELECT * FROM Clinic_T WHERE ClinicID =1"));
}

TEST_F(Clinic, AnIdentifierWithoutARowCreatesANewRowWithANewOne) {
    clinic->ID = 77;
    EXPECT_EQ(Stored("ClinicID"), Variant(Long{1}));
    EXPECT_EQ(clinic->ID, 1);
}

TEST_F(Clinic, EachMemberIsWrittenToItsColumn) {
    FillAll();
    EXPECT_EQ(Stored("ClinicName || '|' || OrgNumber || '|' || ZipCode || '|' || StreetAdress || '|' || City"
                     " || '|' || Telephone || '|' || Remarks"),
              Variant("old ClinicName|old OrgNumber|old ZipCode|old StreetAdress|old City|old Telephone|"
                      "old Remarks"));
}

TEST_F(Clinic, ANewObjectStoresEmptyTextsAndNoNulls) {
    EXPECT_EQ(Stored("ClinicName || OrgNumber || ZipCode || StreetAdress || City || Telephone || Remarks"),
              Variant(""));
}

TEST_F(Clinic, ANameOfSixtyCharactersIsCutToFifty) {
    clinic->ClinicName = "  " + String(50, 'a') + String(10, 'b');
    EXPECT_EQ(Stored("ClinicName"), Variant(String(50, 'a')));
    EXPECT_EQ(clinic->ID, 1);
    EXPECT_EQ(clinic->ClinicName, "  " + String(50, 'a') + String(10, 'b'));
}

TEST_F(Clinic, EveryTextIsCutToFiftyTheRemarksToo) {
    for (std::size_t i = 0; i < written.size(); ++i) {
        (*clinic).*members[i] = String(50, 'a') + "b";
        EXPECT_EQ(Stored(written[i]), Variant(String(50, 'a'))) << written[i];
    }
}

TEST_F(Clinic, ATextOfFiftyIsStoredWhole) {
    clinic->Remarks16 = String(50, 'a');
    EXPECT_EQ(Stored("Remarks"), Variant(String(50, 'a')));
}

TEST_F(Clinic, ANameIsStoredTrimmedWhileTheObjectKeepsItsBlanks) {
    clinic->ClinicName = "  North  ";
    EXPECT_EQ(Stored("ClinicName"), Variant("North"));
    EXPECT_EQ(clinic->ClinicName, "  North  ");
}

TEST_F(Clinic, EveryTextIsTrimmed) {
    for (std::size_t i = 0; i < written.size(); ++i) {
        (*clinic).*members[i] = "  x y ";
        EXPECT_EQ(Stored(written[i]), Variant("x y")) << written[i];
    }
}

TEST_F(Clinic, OnlyCharacter32IsABlank) {
    for (const String kept : {"\ta\t", "\r\na\r\n", "\u00A0a\u00A0"}) {
        clinic->City = " " + kept + " ";
        EXPECT_EQ(Stored("City"), Variant(kept));
    }
}

TEST_F(Clinic, AWidthCountsUnitsAndNotBytesAndNeverSplitsACharacter) {
    struct {
        const char* letter;
        int stored;
    } const cases[] = {{"é", 50}, {"Ω", 50}, {"山", 50}, {"🦷", 25}};
    for (const auto& one : cases) {
        String fits;
        for (int i = 0; i < one.stored; ++i) fits += one.letter;
        clinic->ClinicName = fits + one.letter;
        EXPECT_EQ(Stored("ClinicName"), Variant(fits));
    }
    String pairs;
    for (int i = 0; i < 24; ++i) pairs += "🦷";
    clinic->ClinicName = "a" + pairs + "🦷";
    EXPECT_EQ(Stored("ClinicName"), Variant("a" + pairs));
}

TEST_F(Clinic, QuotesInEveryTextAreStoredAndReadBack) {
    for (const auto member : members) (*clinic).*member = "'X'';--\"";
    clinic->SaveClinic(con);
    const Ref<cClinic> stored = New<cClinic>();
    EXPECT_TRUE(stored->LoadClinic(clinic->ID, con));
    EXPECT_EQ(ContentOf(*stored), ContentOf(*clinic));
}

TEST_F(Clinic, ARowOfIdentifierZeroShowsABoxAndIsSaved) {
    const TextBoxes boxes;
    RunRow(0);
    clinic->ClinicName = "new";
    EXPECT_EQ(Stored("COUNT(*) || MIN(ClinicName)"), Variant("1new"));
    EXPECT_THAT(boxes.shown, ElementsAre("OXClass.cClinic.SaveClinic.Error. Me.ID=0"));
    EXPECT_EQ(clinic->ID, 0);
}

TEST_F(Clinic, ANewRowOfATableWithoutACounterIsWrittenAndFailsAtItsIdentifier) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    const TextBoxes boxes;
    String columns = "ClinicID INTEGER";
    for (const String& name : written) columns += ", " + name + " NVARCHAR(50)";
    RunTable(columns);
    clinic->ID = 3;
    const Error failure = FailureOf([&] { clinic->SaveClinic(con); });
    EXPECT_EQ(failure.Number, 94);
    EXPECT_THAT(failure.Source, StartsWith("cClinic.SaveDoctor, "));
    EXPECT_EQ(clinic->ID, 3);
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Clinic_T"), Variant(Long{1}));
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(Clinic, ColumnsAreWrittenInTheirOrder) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    FillAll();
    // Each text is too long for its column, and the one column is not there: what comes first is raised.
    for (std::size_t missing = 0; missing < written.size(); ++missing) {
        for (std::size_t narrow = 0; narrow < written.size(); ++narrow) {
            if (narrow == missing) continue;
            String columns = "ClinicID INTEGER PRIMARY KEY AUTOINCREMENT";
            for (std::size_t i = 0; i < written.size(); ++i)
                if (i != missing) columns += ", " + written[i] + (i == narrow ? " NVARCHAR(1)" : " NVARCHAR(99)");
            RunTable(columns);
            EXPECT_EQ(FailureOf([&] { clinic->SaveClinic(con); }).Number, missing < narrow ? MissingColumn : TooLong)
                << written[missing] << " missing, " << written[narrow] << " narrow";
        }
    }
}

// ---- loading ------------------------------------------------------------------------------------

TEST_F(Clinic, LoadsEveryColumn) {
    RunRow();
    con->Advise(modes);
    EXPECT_TRUE(clinic->LoadClinic(5, con));
    con->Unadvise(modes);
    EXPECT_EQ(ContentOf(*clinic), contentOfRow);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Clinic_T   WHERE ClinicID =5;"));
    EXPECT_THAT(modes.seen, ElementsAre("0 1 1"));
}

TEST_F(Clinic, AMissingIdentifierReturnsFalseAndChangesNothing) {
    FillAll();
    const String before = ContentOf(*clinic);
    EXPECT_FALSE(clinic->LoadClinic(-5, con));
    EXPECT_EQ(ContentOf(*clinic), before);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Clinic_T   WHERE ClinicID =-5;"));
}

TEST_F(Clinic, NullsReadAsEmptyTexts) {
    Run("INSERT INTO Clinic_T (ClinicID) VALUES (5)");
    FillAll();
    EXPECT_TRUE(clinic->LoadClinic(5, con));
    EXPECT_EQ(ContentOf(*clinic), "5|||||||");
}

TEST_F(Clinic, EachNullEmptiesItsOwnMember) {
    for (std::size_t i = 0; i < written.size(); ++i) {
        Run("DELETE FROM Clinic_T");
        RunRow(5, written[i] + "=NULL");
        EXPECT_TRUE(clinic->LoadClinic(5, con));
        for (std::size_t j = 0; j < written.size(); ++j)
            EXPECT_EQ(((*clinic).*members[j]).empty(), i == j) << written[i] << ", " << written[j];
    }
}

TEST_F(Clinic, TextsAreReadWithTheirBlanks) {
    RunRow(5, "City=' c ', ClinicName='  '");
    clinic->LoadClinic(5, con);
    EXPECT_EQ(clinic->City, " c ");
    EXPECT_EQ(clinic->ClinicName, "  ");
}

TEST_F(Clinic, AMissingColumnLeavesTheMembersReadBeforeIt) {
    OXCLASS_ONLY_IF(RollsBackDefinitions());
    const String old[] = {"old City",         "old ClinicName", "old OrgNumber", "old Remarks",
                          "old StreetAdress", "old Telephone",  "old ZipCode"};
    const String read[] = {"Umea", "North", "org", "none", "Lane 1", "555", "123"};
    const char* const columns[] = {"City",         "ClinicName", "OrgNumber", "Remarks",
                                   "StreetAdress", "Telephone",  "ZipCode"};
    RunRow();
    for (std::size_t missing = 0; missing < std::size(columns); ++missing) {
        Run("BEGIN");
        Run("ALTER TABLE Clinic_T DROP COLUMN " + String(columns[missing]));
        FillAll();
        const Error failure = FailureOf([&] { clinic->LoadClinic(5, con); });
        Run("ROLLBACK");
        String expected = "5";
        for (std::size_t i = 0; i < std::size(columns); ++i) expected += "|" + (i < missing ? read[i] : old[i]);
        EXPECT_EQ(failure.Number, MissingColumn) << columns[missing];
        EXPECT_EQ(failure.Source, "cClinic.LoadClinic, ADODB.Recordset") << columns[missing];
        EXPECT_EQ(ContentOf(*clinic), expected) << columns[missing];
    }
}

// ---- failures -----------------------------------------------------------------------------------

TEST_F(Clinic, EveryOperationNamesItselfAndTheSaveAnotherOne) {
    Run("DROP TABLE Clinic_T");
    const auto expect = [](const Error& failure, const String& source) {
        EXPECT_EQ(failure.Source, source);
        EXPECT_EQ(failure.Number, MissingTable) << source;
        EXPECT_EQ(failure.Description, NoSuchTable("Clinic_T")) << source;
    };
    expect(FailureOf([&] { clinic->DeleteClinic(con); }), "cClinic.DeleteClinic, " + EngineName());
    expect(FailureOf([&] { clinic->SaveClinic(con); }), "cClinic.SaveDoctor, " + EngineName());
    expect(FailureOf([&] { clinic->LoadClinic(1, con); }), "cClinic.LoadClinic, " + EngineName());
}

TEST_F(Clinic, AClosedConnectionFailsWithTheLayersOwnNumber) {
    const Ref<Connection> closed = New<Connection>();
    const Error load = FailureOf([&] { clinic->LoadClinic(1, closed); });
    EXPECT_EQ(load.Number, 3709);
    EXPECT_EQ(load.Source, "cClinic.LoadClinic, ADODB.Recordset");
    const Error removal = FailureOf([&] { clinic->DeleteClinic(closed); });
    EXPECT_EQ(removal.Number, 3704);
    EXPECT_EQ(removal.Source, "cClinic.DeleteClinic, ADODB.Connection");
}

}  // namespace
}  // namespace OXClass

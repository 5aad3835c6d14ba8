#include "people/cClinics.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The list of clinics with its head office.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

String EntryOf(const cClinic& clinic) {
    return CStr(clinic.ID) + "|" + clinic.ClinicName + "|" + clinic.OrgNumber + "|" + clinic.ZipCode + "|" +
           clinic.StreetAddress + "|" + clinic.City + "|" + clinic.Telephone + "|" + clinic.Remarks16;
}

class Clinics : public WithDatabase {
protected:
    /// Writes a row of this identifier and name.
    void RunRow(Long key, const String& name) {
        Run("INSERT INTO Clinic_T (ClinicID, ClinicName) VALUES (" + CStr(key) + ", '" + name + "')");
    }

    void RefuseInserts() {
        Run("CREATE TRIGGER refuse BEFORE INSERT ON Clinic_T BEGIN SELECT RAISE(ABORT, 'refused'); END");
    }

    /// Creates the table again, with an identifier that may be null or occur twice.
    void RunLooseTable() {
        Run("DROP TABLE Clinic_T");
        Run("CREATE TABLE Clinic_T (ClinicID INTEGER, ClinicName TEXT, OrgNumber TEXT, ZipCode TEXT,"
            " StreetAdress TEXT, City TEXT, Telephone TEXT, Remarks TEXT)");
    }

    Ref<cClinic> AddNamed(const String& name, const String& key = {}) {
        return clinics->Add(0, name, "", "", "", "", "", "", key);
    }

    std::vector<String> Names() const {
        std::vector<String> names;
        for (const cClinic& clinic : *clinics) names.push_back(clinic.ClinicName);
        return names;
    }

    Variant CountOfRows() { return Ask("SELECT COUNT(*) FROM Clinic_T"); }

    Ref<cClinics> clinics = New<cClinics>();
    const Ref<Connection> closed = New<Connection>();
};

const char* const selectClinics = "SELECT * FROM Clinic_T order by ClinicName;";

TEST_F(Clinics, HaveTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(*clinics),
                ElementsAre("GetHQClinic(Con: Connection&) -> cClinic", "GetAllClinics(Con: Connection&) -> int32",
                            "Add(ID: int32&, ClinicName: string&, OrgNumber: string&, ZipCode: string&,"
                            " StreetAddress: string&, City: string&, Telephone: string&, Remarks16: string&,"
                            " [sKey: string&]) -> cClinic",
                            "get Item(vntIndexKey: variant) -> cClinic",
                            "get ItemOnClinicName(sName: string&, Con: Connection&) -> cClinic", "get Count -> int32",
                            "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator"));
}

TEST_F(Clinics, ItemIsTheDefaultAndNewEnumTheEnumerator) {
    EXPECT_EQ(clinics->Describe().Find("Item")->DispId, DefaultMember);
    EXPECT_EQ(clinics->Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

// ---- the collection ---------------------------------------------------------------------------------------

TEST_F(Clinics, AddSetsEachPropertyFromItsArgument) {
    const Ref<cClinic> added = clinics->Add(7, " name ", "org", "zip", "street", "city", "phone", "remarks", "Key");
    EXPECT_EQ(EntryOf(*added), "7| name |org|zip|street|city|phone|remarks");
    EXPECT_EQ(clinics->Item("kEY"), added);
    EXPECT_EQ(clinics->Item(Long{1}), added);
}

TEST_F(Clinics, AddWithoutAKeyIsFoundByPositionOnly) {
    const Ref<cClinic> first = AddNamed("a"), second = AddNamed("b");
    EXPECT_EQ(clinics->Item(Long{1}), first);
    EXPECT_EQ(clinics->Item(Long{2}), second);
    EXPECT_FALSE(clinics->Item(""));
}

TEST_F(Clinics, ASecondAddUnderAKeyRaisesAsItIsAndDropsTheNewMember) {
    AddNamed("a", "Key");
    const Error failure = FailureOf([&] { AddNamed("b", "kEY"); });
    EXPECT_EQ(failure.Number, 457);
    EXPECT_THAT(failure.Source, Not(StartsWith("cClinic")));
    EXPECT_THAT(Names(), ElementsAre("a"));
}

TEST_F(Clinics, AMissingMemberIsNull) {
    AddNamed("a", "K1");
    EXPECT_FALSE(clinics->Item("K2"));
    EXPECT_FALSE(clinics->Item(Long{0}));
    EXPECT_FALSE(clinics->Item(Long{2}));
    EXPECT_FALSE(clinics->Item(Long{-1}));
    EXPECT_FALSE(clinics->Item(Null{}));
    EXPECT_FALSE(clinics->Item(Variant()));
    EXPECT_FALSE(New<cClinics>()->Item(Long{1}));
}

TEST_F(Clinics, RemovingAMissingMemberRaises) {
    AddNamed("a", "K1");
    EXPECT_EQ(FailureOf([&] { clinics->Remove("K2"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { clinics->Remove(Long{2}); }).Number, 9);
    EXPECT_EQ(clinics->Count(), 1);
}

TEST_F(Clinics, RemoveClosesUp) {
    for (const char* name : {"a", "b", "c"}) AddNamed(name, name);
    clinics->Remove("B");
    clinics->Remove(Long{1});
    EXPECT_THAT(Names(), ElementsAre("c"));
    EXPECT_EQ(clinics->Item(Long{1})->ClinicName, "c");
}

TEST_F(Clinics, NewEnumVisitsTheMembersInOrder) {
    const Ref<cClinic> first = AddNamed("a"), second = AddNamed("b");
    const Ref<Enumerator> walk = clinics->NewEnum();
    Variant member;
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(member, Variant(first));
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(member, Variant(second));
    EXPECT_FALSE(walk->Next(member));
}

// ---- loading ------------------------------------------------------------------------------------

TEST_F(Clinics, AnEmptyTableGetsItsHeadOffice) {
    ModeLog modes;
    con->Advise(modes);
    EXPECT_EQ(clinics->GetAllClinics(con), 1);
    con->Unadvise(modes);
    ASSERT_EQ(clinics->Count(), 1);
    EXPECT_EQ(EntryOf(*clinics->Item("K1")), "1|__HQ||||||");
    EXPECT_EQ(clinics->GetHQClinic(closed), clinics->Item("K1"));
    EXPECT_EQ(CountOfRows(), Variant(Long{1}));
    EXPECT_EQ(Ask("SELECT ClinicName FROM Clinic_T"), Variant("__HQ"));
    EXPECT_THAT(Sent(), ElementsAre(selectClinics));
    EXPECT_THAT(modes.seen, ElementsAre("2 2 -1"));
}

TEST_F(Clinics, TheHeadOfficesOtherColumnsAreLeftToTheDatabase) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Run("ALTER TABLE Clinic_T ADD COLUMN Kind NVARCHAR(9) DEFAULT 'given'");
    clinics->GetAllClinics(con);
    EXPECT_EQ(Ask("SELECT Kind FROM Clinic_T"), Variant("given"));
    EXPECT_EQ(Ask("SELECT City FROM Clinic_T"), Variant(Null{}));
    EXPECT_EQ(Ask("SELECT Remarks FROM Clinic_T"), Variant(Null{}));
}

TEST_F(Clinics, TheHeadOfficeIsWrittenOnce) {
    clinics->GetAllClinics(con);
    EXPECT_EQ(clinics->GetAllClinics(con), 1);
    EXPECT_EQ(CountOfRows(), Variant(Long{1}));
}

TEST_F(Clinics, ATableWithoutAHeadOfficeKeepsItsRowsAndHasNone) {
    RunRow(5, "North");
    EXPECT_EQ(clinics->GetAllClinics(con), 1);
    EXPECT_FALSE(clinics->GetHQClinic(con));
    EXPECT_EQ(CountOfRows(), Variant(Long{1}));
    EXPECT_THAT(Sent(), ElementsAre(selectClinics));
}

TEST_F(Clinics, ComeInTheOrderOfTheirNamesUnderTheirKeys) {
    RunRow(1, "north");
    RunRow(2, "Zed");
    RunRow(3, "East");
    RunRow(4, "__HQ");
    EXPECT_EQ(clinics->GetAllClinics(con), 4);
    EXPECT_THAT(Names(), ElementsAre("__HQ", "East", "north", "Zed"));
    EXPECT_EQ(clinics->Item("k3")->ClinicName, "East");
    EXPECT_EQ(clinics->Item("K4")->ID, 4);
}

TEST_F(Clinics, LoadEveryColumn) {
    Run("INSERT INTO Clinic_T (ClinicID, ClinicName, OrgNumber, ZipCode, StreetAdress, City, Telephone,"
        " Remarks) VALUES (5, ' North ', 'org', '123', 'Lane 1', 'Umea', '555', 'it''s')");
    clinics->GetAllClinics(con);
    EXPECT_EQ(EntryOf(*clinics->Item("K5")), "5| North |org|123|Lane 1|Umea|555|it's");
}

TEST_F(Clinics, NullsReadAsEmptyTexts) {
    Run("INSERT INTO Clinic_T (ClinicID) VALUES (5)");
    EXPECT_EQ(clinics->GetAllClinics(con), 1);
    EXPECT_EQ(EntryOf(*clinics->Item("K5")), "5|||||||");
}

TEST_F(Clinics, ASecondLoadReplacesTheMembers) {
    AddNamed("mine", "K5");
    RunRow(5, "North");
    EXPECT_EQ(clinics->GetAllClinics(con), 1);
    EXPECT_THAT(Names(), ElementsAre("North"));
}

TEST_F(Clinics, AFailedStatementLeavesAnEmptyList) {
    AddNamed("a");
    Run("DROP TABLE Clinic_T");
    const Error failure = FailureOf([&] { clinics->GetAllClinics(con); });
    EXPECT_EQ(failure.Number, MissingTable);
    EXPECT_EQ(failure.Source, "cClinics.GetAllClinics, " + EngineName());
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(Clinics, AClosedConnectionLeavesAnEmptyList) {
    AddNamed("a");
    const Error failure = FailureOf([&] { clinics->GetAllClinics(closed); });
    EXPECT_EQ(failure.Number, 3709);
    EXPECT_EQ(failure.Source, "cClinics.GetAllClinics, ADODB.Recordset");
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(Clinics, AHeadOfficeThatTheDatabaseRejectsFailsTheLoad) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RefuseInserts();
    const Error failure = FailureOf([&] { clinics->GetAllClinics(con); });
    EXPECT_EQ(failure.Number, ConstraintViolated);
    EXPECT_EQ(failure.Source, "cClinics.GetAllClinics, " + EngineName());
    EXPECT_EQ(failure.Description, "refused");
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ(CountOfRows(), Variant(Long{0}));
}

TEST_F(Clinics, ANullIdentifierFailsTheLoadAndLeavesThoseReadBefore) {
    RunLooseTable();
    RunRow(5, "a");
    Run("INSERT INTO Clinic_T (ClinicName) VALUES ('b')");
    RunRow(6, "c");
    const Error failure = FailureOf([&] { clinics->GetAllClinics(con); });
    EXPECT_EQ(failure.Number, 94);
    EXPECT_THAT(failure.Source, StartsWith("cClinics.GetAllClinics, "));
    EXPECT_THAT(Names(), ElementsAre("a"));
}

TEST_F(Clinics, AnIdentifierThatOccursTwiceFailsTheLoadAtTheSecondRow) {
    RunLooseTable();
    RunRow(5, "a");
    RunRow(5, "b");
    EXPECT_EQ(FailureOf([&] { clinics->GetAllClinics(con); }).Number, 457);
    EXPECT_THAT(Names(), ElementsAre("a"));
}

TEST_F(Clinics, AMissingColumnFailsTheLoadAndLeavesNoClinic) {
    OXCLASS_ONLY_IF(RollsBackDefinitions());
    for (const char* column : {"ClinicName", "OrgNumber", "ZipCode", "StreetAdress", "City", "Telephone", "Remarks"}) {
        Run("DELETE FROM Clinic_T");
        RunRow(5, "a");
        AddNamed("old");
        Run("BEGIN");
        Run("ALTER TABLE Clinic_T RENAME COLUMN " + String(column) + " TO Gone");
        const Error failure = FailureOf([&] { clinics->GetAllClinics(con); });
        Run("ROLLBACK");
        EXPECT_NE(failure.Number, 0) << column;
        EXPECT_THAT(failure.Source, StartsWith("cClinics.GetAllClinics, ")) << column;
        EXPECT_THAT(Names(), IsEmpty()) << column;
    }
}

// ---- the head office ----------------------------------------------------------------------------

TEST_F(Clinics, OfTwoBadColumnsTheFirstInTheDocumentedOrderRaises) {
    RunRow(5, "a");
    Run("ALTER TABLE Clinic_T RENAME COLUMN OrgNumber TO a");
    Run("ALTER TABLE Clinic_T RENAME COLUMN Remarks TO b");
    EXPECT_EQ(FailureOf([&] { clinics->GetAllClinics(con); }).Column, "OrgNumber");
}

TEST_F(Clinics, TheHeadOfficeOfAnEmptyListIsLoaded) {
    RunRow(5, "North");
    RunRow(6, "__HQ");
    const Ref<cClinic> office = clinics->GetHQClinic(con);
    ASSERT_TRUE(office);
    EXPECT_EQ(office->ID, 6);
    EXPECT_EQ(clinics->Count(), 2);
    EXPECT_THAT(Sent(), ElementsAre(selectClinics));
}

TEST_F(Clinics, TheHeadOfficeOfAnEmptyTableIsWritten) {
    const Ref<cClinic> office = clinics->GetHQClinic(con);
    ASSERT_TRUE(office);
    EXPECT_EQ(office->ClinicName, "__HQ");
    EXPECT_EQ(CountOfRows(), Variant(Long{1}));
}

TEST_F(Clinics, TheHeadOfficeIsFoundInLowerCase) {
    RunRow(5, "__hq");
    const Ref<cClinic> office = clinics->GetHQClinic(con);
    ASSERT_TRUE(office);
    EXPECT_EQ(office->ClinicName, "__hq");
}

TEST_F(Clinics, TheHeadOfficeIsTheFirstOfThatName) {
    AddNamed("North");
    const Ref<cClinic> first = AddNamed("__hQ");
    AddNamed("__HQ");
    EXPECT_EQ(clinics->GetHQClinic(closed), first);
}

TEST_F(Clinics, ANameThatContainsTheHeadOfficesNameIsNotTheHeadOffice) {
    for (const char* name : {"x__HQ", "__HQx", " __HQ", "__HQ ", "_HQ", ""}) AddNamed(name);
    EXPECT_FALSE(clinics->GetHQClinic(closed));
}

TEST_F(Clinics, TheHeadOfficeOfAFilledListNeedsNoDatabase) {
    AddNamed("North");
    EXPECT_FALSE(clinics->GetHQClinic(con));
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(Clinics, AListThatCannotBeLoadedRaisesForItsHeadOffice) {
    const Error failure = FailureOf([&] { clinics->GetHQClinic(closed); });
    EXPECT_EQ(failure.Number, 3709);
    EXPECT_EQ(failure.Source, "cClinics.GetAllClinics, ADODB.Recordset");
}

TEST_F(Clinics, AHeadOfficeThatTheDatabaseRejectsRaises) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RefuseInserts();
    EXPECT_EQ(FailureOf([&] { clinics->GetHQClinic(con); }).Source, "cClinics.GetAllClinics, " + EngineName());
}

// ---- by name ------------------------------------------------------------------------------------

TEST_F(Clinics, ANameInOtherCaseFindsTheClinic) {
    RunRow(5, "Ålesund");
    const Ref<cClinic> found = clinics->ItemOnClinicName("åLESUND", con);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->ID, 5);
    EXPECT_THAT(Sent(), ElementsAre(selectClinics));
}

TEST_F(Clinics, ANameIsFoundAsTheFirstAndWhole) {
    AddNamed("Northern");
    const Ref<cClinic> first = AddNamed("north");
    AddNamed("North");
    EXPECT_EQ(clinics->ItemOnClinicName("NORTH", closed), first);
    EXPECT_FALSE(clinics->ItemOnClinicName(" North", closed));
    EXPECT_FALSE(clinics->ItemOnClinicName("Nort", closed));
}

TEST_F(Clinics, TheEmptyNameFindsAClinicWithoutOne) {
    const Ref<cClinic> nameless = AddNamed("");
    EXPECT_EQ(clinics->ItemOnClinicName("", closed), nameless);
}

TEST_F(Clinics, AClinicAddedToTheTableSinceTheLoadIsNotFound) {
    RunRow(5, "North");
    clinics->ItemOnClinicName("North", con);
    RunRow(6, "South");
    EXPECT_FALSE(clinics->ItemOnClinicName("South", con));
    EXPECT_THAT(Sent(), ElementsAre(selectClinics));
}

TEST_F(Clinics, AnEmptiedListIsLoadedAgain) {
    RunRow(5, "North");
    clinics->ItemOnClinicName("North", con);
    RunRow(6, "South");
    clinics->Remove(Long{1});
    EXPECT_TRUE(clinics->ItemOnClinicName("South", con));
    EXPECT_THAT(Sent(), ElementsAre(selectClinics, selectClinics));
}

TEST_F(Clinics, ANameOfAnEmptyTableWritesTheHeadOffice) {
    EXPECT_FALSE(clinics->ItemOnClinicName("North", con));
    EXPECT_EQ(CountOfRows(), Variant(Long{1}));
    EXPECT_THAT(Names(), ElementsAre("__HQ"));
}

TEST_F(Clinics, AnEmptyListAndAClosedConnectionReturnNull) {
    EXPECT_EQ(FailureOf([&] { EXPECT_FALSE(clinics->ItemOnClinicName("North", closed)); }).Number, 0);
    EXPECT_EQ(FailureOf([&] { EXPECT_FALSE(clinics->ItemOnClinicName("North", nullptr)); }).Number, 0);
}

TEST_F(Clinics, ALoadThatFailsHalfwayReturnsNullAndKeepsTheMembersReadBefore) {
    RunLooseTable();
    RunRow(5, "a");
    Run("INSERT INTO Clinic_T (ClinicName) VALUES ('b')");
    EXPECT_FALSE(clinics->ItemOnClinicName("a", con));
    EXPECT_THAT(Names(), ElementsAre("a"));
    EXPECT_TRUE(clinics->ItemOnClinicName("A", con)) << "the list isn't empty any more";
}

TEST_F(Clinics, ARejectedHeadOfficeReturnsNullByName) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RefuseInserts();
    EXPECT_FALSE(clinics->ItemOnClinicName("__HQ", con));
}

}  // namespace
}  // namespace OXClass

#include "people/cDoctors.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Services.h"

/// The list of doctors, and the identifiers that it assigns.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

String EntryOf(const cDoctor& doctor) {
    return CStr(doctor.drID) + "|" + doctor.DrName + "|" + doctor.DrFirstName + "|" + doctor.DrLastName + "|" +
           doctor.DrPrefix + "|" + doctor.DrContactInfo + "|" + CStr(Long{doctor.DrType}) + "|" + doctor.DrEMail + "|" +
           doctor.drGUID + "|" + doctor.DrLogin;
}

class Doctors : public WithDatabase {
protected:
    ~Doctors() override { TheHost() = host_; }

    static void FixGuid(const Guid& fixed) {
        TheHost().CreateGuid = [=](Guid& guid) {
            guid = fixed;
            return Long{0};
        };
    }

    /// Writes a row of which every column is filled, then changes columns.
    void RunRow(Long key = 5, const String& changes = {}) {
        Run("INSERT INTO Doctor_T (drID, DrContactInfo_NVC, DrFirstName_NVC, DrLastName_NVC, DrName_NVC,"
            " DrPrefix_NVC, DrType_INT, DrEMail, drGUID, DrLogin) VALUES (" +
            CStr(key) + ", 'room 3', 'Ann', 'Hill', 'AH', 'Dr.', 2, 'a@h', 'f00d', 'ahill')");
        if (!changes.empty()) Run("UPDATE Doctor_T SET " + changes + " WHERE drID=" + CStr(key));
    }

    /// Creates the table again, with a number that may be null or occur twice.
    void RunLooseTable() {
        Run("DROP TABLE Doctor_T");
        Run("CREATE TABLE Doctor_T (drID INTEGER, DrContactInfo_NVC TEXT, DrFirstName_NVC TEXT,"
            " DrLastName_NVC TEXT, DrName_NVC TEXT, DrPrefix_NVC TEXT, DrType_INT INTEGER, DrEMail TEXT,"
            " drGUID TEXT, DrLogin TEXT)");
    }

    /// Returns the content of the list's member for the row with these changes.
    String Listed(const String& changes) {
        RunRow(5, changes);
        EXPECT_EQ(doctors->GetAllDoctors(con), 1);
        return EntryOf(*doctors->Item("K5"));
    }

    std::vector<Long> Numbers() const {
        std::vector<Long> numbers;
        for (const cDoctor& doctor : *doctors) numbers.push_back(doctor.drID);
        return numbers;
    }

    Ref<cDoctor> AddOne(Long number, const String& key = {}) {
        return doctors->Add(number, "", "", "", "", "", drt_Unknown, key);
    }

    Ref<cDoctors> doctors = New<cDoctors>();

private:
    Host host_ = TheHost();
};

const char* const selectDoctors = "SELECT * FROM Doctor_T order by DrLastName_nvc, DrFirstname_nvc;";

TEST_F(Doctors, HaveTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(*doctors),
                ElementsAre("GetAllDoctors(Con: Connection) -> int32",
                            "Add(drID: int32&, DrName: string&, DrFirstName: string&, DrLastName: string&,"
                            " DrPrefix: string&, DrContactInfo: string&, DrType: DoctorType&,"
                            " [sKey: string&]) -> cDoctor",
                            "get Item(vntIndexKey: variant) -> cDoctor", "get Count -> int32",
                            "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator", "GetGUID() -> string"));
}

TEST_F(Doctors, ItemIsTheDefaultAndNewEnumTheEnumerator) {
    EXPECT_EQ(doctors->Describe().Find("Item")->DispId, DefaultMember);
    EXPECT_EQ(doctors->Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

// ---- the collection ---------------------------------------------------------------------------------------

TEST_F(Doctors, AddSetsEachPropertyFromItsArgument) {
    const Ref<cDoctor> added = doctors->Add(7, " name ", "first", "last", "prefix", "contact", drt_Remote, "Key");
    EXPECT_EQ(EntryOf(*added), "7| name |first|last|prefix|contact|2|||");
    EXPECT_EQ(doctors->Item("kEY"), added);
    EXPECT_EQ(doctors->Item(Long{1}), added);
}

TEST_F(Doctors, AddWithoutAKeyIsFoundByPositionOnly) {
    std::vector<Variant> arguments{Variant(Long{7}), Variant(""), Variant(""),     Variant(""),
                                   Variant(""),      Variant(""), Variant(Long{3})};
    Invoke(*doctors, "Add", MemberKind::Operation, arguments);
    AddOne(8);
    EXPECT_THAT(Numbers(), ElementsAre(7, 8));
    EXPECT_EQ(doctors->Item(Long{1})->DrType, drt_Web);
}

TEST_F(Doctors, ASecondAddUnderAKeyRaisesAsItIsAndDropsTheNewMember) {
    AddOne(1, "Key");
    const Error failure = FailureOf([&] { AddOne(2, "kEY"); });
    EXPECT_EQ(failure.Number, 457);
    EXPECT_THAT(failure.Source, Not(StartsWith("cDoctors")));
    EXPECT_THAT(Numbers(), ElementsAre(1));
}

TEST_F(Doctors, AMissingMemberRaises) {
    AddOne(1, "K1");
    EXPECT_EQ(FailureOf([&] { doctors->Item(Long{2}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { doctors->Item("K2"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { doctors->Remove(Long{0}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { doctors->Remove("K2"); }).Number, 5);
    EXPECT_EQ(doctors->Count(), 1);
}

TEST_F(Doctors, RemoveClosesUp) {
    for (const Long number : {1, 2, 3}) AddOne(number, "K" + CStr(number));
    doctors->Remove("k2");
    EXPECT_THAT(Numbers(), ElementsAre(1, 3));
    doctors->Remove(Long{1});
    EXPECT_EQ(doctors->Item(Long{1})->drID, 3);
    EXPECT_EQ(doctors->Count(), 1);
}

TEST_F(Doctors, NewEnumVisitsTheMembersInOrder) {
    const Ref<cDoctor> first = AddOne(1), second = AddOne(2);
    const Ref<Enumerator> walk = doctors->NewEnum();
    Variant member;
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(member, Variant(first));
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(member, Variant(second));
    EXPECT_FALSE(walk->Next(member));
}

// ---- loading ------------------------------------------------------------------------------------

TEST_F(Doctors, AnEmptyTableReturnsAnEmptyList) {
    AddOne(1, "K1");
    EXPECT_EQ(doctors->GetAllDoctors(con), 0);
    EXPECT_EQ(doctors->Count(), 0);
    EXPECT_THAT(Sent(), ElementsAre(selectDoctors));
}

TEST_F(Doctors, LoadEveryColumnUnderTheKeyOfTheNumber) {
    ModeLog modes;
    con->Advise(modes);
    RunRow();
    modes.seen.clear();
    EXPECT_EQ(doctors->GetAllDoctors(con), 1);
    con->Unadvise(modes);
    EXPECT_EQ(EntryOf(*doctors->Item("K5")), "5|AH|Ann|Hill|Dr.|room 3|2|a@h|F00D|ahill");
    EXPECT_THAT(modes.seen, ElementsAre("0 1 -1"));
    EXPECT_THAT(Sent(), ElementsAre(selectDoctors));
    EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), Variant("f00d"));
}

TEST_F(Doctors, ComeByLastNameAndThenByFirstName) {
    RunRow(1, "DrLastName_NVC='hill', DrFirstName_NVC='bob'");
    RunRow(2, "DrLastName_NVC='Hill', DrFirstName_NVC='Ann'");
    RunRow(3, "DrLastName_NVC='adams', DrFirstName_NVC='Zoe'");
    RunRow(4, "DrLastName_NVC='Zed'");
    EXPECT_EQ(doctors->GetAllDoctors(con), 4);
    EXPECT_THAT(Numbers(), ElementsAre(3, 2, 1, 4));
    EXPECT_EQ(doctors->Item("K1")->drID, 1);
}

TEST_F(Doctors, ASecondLoadReplacesTheListAndKeepsTheOldMembersUnchanged) {
    RunRow(5);
    doctors->GetAllDoctors(con);
    const Ref<cDoctor> old = doctors->Item("K5");
    Run("UPDATE Doctor_T SET DrName_NVC='new'");
    EXPECT_EQ(doctors->GetAllDoctors(con), 1);
    EXPECT_EQ(doctors->Item("K5")->DrName, "new");
    EXPECT_EQ(old->DrName, "AH");
}

TEST_F(Doctors, ANullShortNameReadsAsEmpty) {
    EXPECT_EQ(Listed("DrName_NVC=NULL"), "5||Ann|Hill|Dr.|room 3|2|a@h|F00D|ahill");
}
TEST_F(Doctors, ANullFirstNameReadsAsEmpty) {
    EXPECT_EQ(Listed("DrFirstName_NVC=NULL"), "5|AH||Hill|Dr.|room 3|2|a@h|F00D|ahill");
}
TEST_F(Doctors, ANullLastNameReadsAsEmpty) {
    EXPECT_EQ(Listed("DrLastName_NVC=NULL"), "5|AH|Ann||Dr.|room 3|2|a@h|F00D|ahill");
}
TEST_F(Doctors, ANullPrefixReadsAsEmpty) {
    EXPECT_EQ(Listed("DrPrefix_NVC=NULL"), "5|AH|Ann|Hill||room 3|2|a@h|F00D|ahill");
}
TEST_F(Doctors, ANullContactReadsAsEmpty) {
    EXPECT_EQ(Listed("DrContactInfo_NVC=NULL"), "5|AH|Ann|Hill|Dr.||2|a@h|F00D|ahill");
}
TEST_F(Doctors, ANullKindReadsAsUnknown) {
    EXPECT_EQ(Listed("DrType_INT=NULL"), "5|AH|Ann|Hill|Dr.|room 3|0|a@h|F00D|ahill");
}
TEST_F(Doctors, ANullMailReadsAsEmpty) { EXPECT_EQ(Listed("DrEMail=NULL"), "5|AH|Ann|Hill|Dr.|room 3|2||F00D|ahill"); }
TEST_F(Doctors, ANullLoginReadsAsEmpty) { EXPECT_EQ(Listed("DrLogin=NULL"), "5|AH|Ann|Hill|Dr.|room 3|2|a@h|F00D|"); }

TEST_F(Doctors, ADoctorWithoutAGuidGetsOneInMemoryOnly) {
    FixGuid({0x1234ABCD, 0x0001, 0x00FF, {1, 2, 3, 4, 5, 6, 7, 8}});
    for (const char* none : {"NULL", "''", "'  '"}) {
        Run("DELETE FROM Doctor_T");
        RunRow(5, String("drGUID=") + none);
        const Variant before = Ask("SELECT drGUID FROM Doctor_T");
        doctors->GetAllDoctors(con);
        EXPECT_EQ(doctors->Item("K5")->drGUID, "1234ABCD000100FF0102030405060708") << none;
        EXPECT_EQ(Ask("SELECT drGUID FROM Doctor_T"), before) << none;
    }
    EXPECT_THAT(Sent(), ElementsAre(selectDoctors, selectDoctors, selectDoctors));
}

TEST_F(Doctors, ADoctorWithoutAGuidHasAnotherOneOnEachLoadUntilItIsSaved) {
    RunRow(5, "drGUID=NULL");
    doctors->GetAllDoctors(con);
    const Ref<cDoctor> first = doctors->Item("K5");
    doctors->GetAllDoctors(con);
    const Ref<cDoctor> second = doctors->Item("K5");
    EXPECT_NE(first->drGUID, second->drGUID);
    second->SaveDoctor(con);
    doctors->GetAllDoctors(con);
    EXPECT_EQ(doctors->Item("K5")->drGUID, second->drGUID);
}

TEST_F(Doctors, AFailedStatementLeavesAnEmptyList) {
    AddOne(1, "K1");
    Run("DROP TABLE Doctor_T");
    const Error failure = FailureOf([&] { doctors->GetAllDoctors(con); });
    EXPECT_EQ(failure.Number, MissingTable);
    EXPECT_EQ(failure.Source, "cDoctors.GetAllDoctors, " + EngineName());
    EXPECT_EQ(doctors->Count(), 0);
}

TEST_F(Doctors, AClosedConnectionLeavesAnEmptyList) {
    AddOne(1, "K1");
    const Error failure = FailureOf([&] { doctors->GetAllDoctors(New<Connection>()); });
    EXPECT_EQ(failure.Number, 3709);
    EXPECT_EQ(failure.Source, "cDoctors.GetAllDoctors, ADODB.Recordset");
    EXPECT_EQ(doctors->Count(), 0);
}

TEST_F(Doctors, ANullNumberFailsTheLoadAndLeavesThoseReadBefore) {
    RunLooseTable();
    RunRow(5);
    Run("INSERT INTO Doctor_T (DrLastName_NVC) VALUES ('Last')");
    const Error failure = FailureOf([&] { doctors->GetAllDoctors(con); });
    EXPECT_EQ(failure.Number, 94);
    EXPECT_THAT(failure.Source, StartsWith("cDoctors.GetAllDoctors, "));
    EXPECT_THAT(Numbers(), ElementsAre(5));
}

TEST_F(Doctors, ANumberThatOccursTwiceFailsTheLoadAtTheSecondRow) {
    RunLooseTable();
    RunRow(5);
    RunRow(5);
    RunRow(6);
    const Error failure = FailureOf([&] { doctors->GetAllDoctors(con); });
    EXPECT_EQ(failure.Number, 457);
    EXPECT_THAT(failure.Source, StartsWith("cDoctors.GetAllDoctors, "));
    EXPECT_THAT(Numbers(), ElementsAre(5));
}

TEST_F(Doctors, AMissingColumnAfterTheNamesLeavesAPartlyFilledDoctor) {
    OXCLASS_ONLY_IF(RollsBackDefinitions());
    struct {
        const char* column;
        const char* content;
    } const cases[] = {{"DrEMail", "5|AH|Ann|Hill|Dr.|room 3|2|||"},
                       {"drGUID", "5|AH|Ann|Hill|Dr.|room 3|2|a@h||"},
                       {"DrLogin", "5|AH|Ann|Hill|Dr.|room 3|2|a@h|F00D|"}};
    RunRow();
    DropIndex("Doctor_by_GUID", "Doctor_T");
    for (const auto& one : cases) {
        Run("BEGIN");
        Run("ALTER TABLE Doctor_T DROP COLUMN " + String(one.column));
        const Error failure = FailureOf([&] { doctors->GetAllDoctors(con); });
        Run("ROLLBACK");
        EXPECT_EQ(failure.Number, 3265) << one.column;
        EXPECT_EQ(failure.Source, "cDoctors.GetAllDoctors, ADODB.Recordset") << one.column;
        ASSERT_EQ(doctors->Count(), 1) << one.column;
        EXPECT_EQ(EntryOf(*doctors->Item("K5")), one.content) << one.column;
    }
}

TEST_F(Doctors, AMissingColumnOfTheNamesLeavesNoDoctor) {
    Run("ALTER TABLE Doctor_T DROP COLUMN DrPrefix_NVC");
    Run("INSERT INTO Doctor_T (drID) VALUES (5)");
    EXPECT_EQ(FailureOf([&] { doctors->GetAllDoctors(con); }).Number, 3265);
    EXPECT_EQ(doctors->Count(), 0);
}

TEST_F(Doctors, OfTwoBadColumnsTheFirstInTheDocumentedOrderRaises) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    Run("ALTER TABLE Doctor_T RENAME COLUMN DrName_NVC TO a");
    Run("ALTER TABLE Doctor_T RENAME COLUMN DrContactInfo_NVC TO b");
    Run("INSERT INTO Doctor_T (drID, DrType_INT) VALUES (5, 'x')");
    EXPECT_EQ(FailureOf([&] { doctors->GetAllDoctors(con); }).Column, "DrName_NVC");
}

// ---- identifiers --------------------------------------------------------------------------------

TEST_F(Doctors, AGuidHas32DigitsInUpperCase) {
    EXPECT_THAT(doctors->GetGUID(), MatchesRegex("[0-9A-F]{32}"));
    EXPECT_NE(doctors->GetGUID(), doctors->GetGUID());
}

TEST_F(Doctors, AGuidIsItsNumbersAndThenItsBytes) {
    FixGuid({0x89ABCDEF, 0x0123, 0x4567, {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}});
    EXPECT_EQ(doctors->GetGUID(), "89ABCDEF01234567FEDCBA9876543210");
}

TEST_F(Doctors, AGuidKeepsLeadingZerosInEveryGroup) {
    FixGuid({0x1, 0x2, 0x3, {4, 5, 6, 7, 8, 9, 0xA, 0x10}});
    EXPECT_EQ(doctors->GetGUID(), "00000001000200030405060708090A10");
}

TEST_F(Doctors, AGuidOfZerosIsAllZeros) {
    FixGuid({});
    EXPECT_EQ(doctors->GetGUID(), String(32, '0'));
}

TEST_F(Doctors, WithoutAGuidOfTheSystemTheTextIsEmpty) {
    for (const Long result : {1, -1}) {
        TheHost().CreateGuid = [=](Guid& guid) {
            guid.Data1 = 7;
            return result;
        };
        EXPECT_EQ(doctors->GetGUID(), "");
    }
}

}  // namespace
}  // namespace OXClass

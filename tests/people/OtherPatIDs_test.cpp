#include "people/OtherPatIDs.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The delimited list of a patient's other identifiers.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

/// The members, "text ID" each.
std::vector<String> MembersIn(const OtherPatIDs& ids) {
    std::vector<String> members;
    for (const cStringItem& item : ids) members.push_back(item.str + " " + CStr(item.ID));
    return members;
}

Ref<OtherPatIDs> Filled(const String& text, const String& delimiter = "\\") {
    Ref<OtherPatIDs> ids = New<OtherPatIDs>();
    ids->Delimiter = delimiter;
    ids->FillFromString(text);
    return ids;
}

Ref<cStringItem> Add(const Ref<OtherPatIDs>& ids, String text, Long id = 0, const String& key = {}) {
    return ids->Add(text, id, key);
}

TEST(OtherIdentifiers, HaveTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(OtherPatIDs()),
                ElementsAre("Add(str: string&, ID: int32&, [sKey: string&]) -> cStringItem",
                            "get Item(vntIndexKey: variant) -> cStringItem", "get Count -> int32",
                            "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator", "GetAllAsString() -> string",
                            "put Delimiter(string)", "get Delimiter -> string", "get TotalLengthWithDelimiter -> int32",
                            "FillFromString(sDelimitedString: string&)"));
}

TEST(OtherIdentifiers, ItemIsTheDefaultAndNewEnumTheEnumerator) {
    const OtherPatIDs ids;
    EXPECT_EQ(ids.Describe().Find("Item")->DispId, DefaultMember);
    EXPECT_EQ(ids.Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

TEST(OtherIdentifiers, TheDelimiterStartsAsABackslash) { EXPECT_EQ(OtherPatIDs().Delimiter, "\\"); }

TEST(OtherIdentifiers, FillStoresThePositionOfEachPartAsIdAndKey) {
    const Ref<OtherPatIDs> ids = Filled("a\\B");
    EXPECT_THAT(MembersIn(*ids), ElementsAre("A 0", "B 1"));
    EXPECT_EQ(ids->Item("K0")->str, "A");
    EXPECT_EQ(ids->Item("K1")->str, "B");
}

TEST(OtherIdentifiers, AnEmptyPartIsOmittedAndItsPositionIsUnused) {
    const Ref<OtherPatIDs> ids = Filled("A\\\\B");
    EXPECT_THAT(MembersIn(*ids), ElementsAre("A 0", "B 2"));
    EXPECT_EQ(ids->GetAllAsString(), "A\\B");
    EXPECT_EQ(FailureOf([&] { ids->Item("K1"); }).Number, 5);
}

TEST(OtherIdentifiers, ABlankPartIsLeftOutToo) { EXPECT_THAT(MembersIn(*Filled("   \\ b \\  ")), ElementsAre("B 1")); }

TEST(OtherIdentifiers, FillKeepsOneOfTwoEqualPartsInUpperCase) {
    EXPECT_THAT(MembersIn(*Filled("A\\A")), ElementsAre("A 0"));
}

TEST(OtherIdentifiers, FillKeepsBothOfTwoEqualPartsInLowerCase) {
    EXPECT_THAT(MembersIn(*Filled("a\\a")), ElementsAre("A 0", "A 1"));
}

TEST(OtherIdentifiers, FillWithTheEmptyTextEmptiesTheList) {
    const Ref<OtherPatIDs> ids = Filled("A\\B");
    ids->FillFromString("");
    EXPECT_EQ(ids->Count(), 0);
}

TEST(OtherIdentifiers, FillReplacesTheOldMembers) {
    const Ref<OtherPatIDs> ids = Filled("A\\B");
    ids->FillFromString("C");
    EXPECT_THAT(MembersIn(*ids), ElementsAre("C 0"));
    EXPECT_EQ(ids->Item("K0")->str, "C");
}

TEST(OtherIdentifiers, TheTextIsSplitWithoutRegardToCase) {
    EXPECT_THAT(MembersIn(*Filled("1x2X3", "x")), ElementsAre("1 0", "2 1", "3 2"));
}

TEST(OtherIdentifiers, AnEmptyListReturnsTheEmptyTextAndLengthZero) {
    const OtherPatIDs ids;
    EXPECT_EQ(ids.GetAllAsString(), "");
    EXPECT_EQ(ids.TotalLengthWithDelimiter(), 0);
}

TEST(OtherIdentifiers, ALongDelimiterLeavesItsFrontAtTheEndAndCountsAsOneCharacter) {
    const Ref<OtherPatIDs> ids = Filled("A; B", "; ");
    EXPECT_EQ(ids->GetAllAsString(), "A; B;");
    EXPECT_EQ(ids->TotalLengthWithDelimiter(), 3);
}

TEST(OtherIdentifiers, AnEmptyDelimiterCostsTheLastItemItsLastCharacter) {
    const Ref<OtherPatIDs> ids = New<OtherPatIDs>();
    Add(ids, "AB");
    Add(ids, "CD");
    ids->Delimiter = "";
    EXPECT_EQ(ids->GetAllAsString(), "ABC");
    EXPECT_EQ(ids->TotalLengthWithDelimiter(), 5);
}

TEST(OtherIdentifiers, AMembersBlanksAreTrimmedOnTheWayOut) {
    const Ref<OtherPatIDs> ids = Filled("A\\B");
    ids->Item("K0")->str = "  x ";
    EXPECT_EQ(ids->GetAllAsString(), "x\\B");
    EXPECT_EQ(ids->TotalLengthWithDelimiter(), 3);
}

TEST(OtherIdentifiers, AddChangesTheCallersVariableToUpperCase) {
    OtherPatIDs ids;
    String text = " abc ";
    EXPECT_EQ(ids.Add(text, 3)->str, "ABC");
    EXPECT_EQ(text, "ABC");
}

TEST(OtherIdentifiers, AddChangesALateBoundCallersVariableToo) {
    OtherPatIDs ids;
    std::vector<Variant> arguments{Variant("abc"), Variant(Long{3})};
    Invoke(ids, "Add", MemberKind::Operation, arguments);
    EXPECT_EQ(arguments[0], Variant("ABC"));
}

TEST(OtherIdentifiers, AddUnderAKeyThatExistsRaisesAndStillChangesTheCallersVariable) {
    OtherPatIDs ids;
    String first = "one", text = " abc ";
    ids.Add(first, 1, "K");
    EXPECT_THROW(ids.Add(text, 2, "K"), Error);
    EXPECT_EQ(text, "ABC");
    std::vector<Variant> arguments{Variant(" def "), Variant(Long{3}), Variant("K")};
    EXPECT_THROW(Invoke(ids, "Add", MemberKind::Operation, arguments), Error);
    EXPECT_EQ(arguments[0], Variant("DEF"));
}

TEST(OtherIdentifiers, AddOfBlanksReturnsNullAndLeavesTheCallersVariableEmpty) {
    OtherPatIDs ids;
    String text = "   ";
    EXPECT_FALSE(ids.Add(text, 1, "K"));
    EXPECT_EQ(text, "");
    EXPECT_EQ(ids.Count(), 0);
}

TEST(OtherIdentifiers, AddOfAPresentTextReturnsTheMemberAndIgnoresTheOtherArguments) {
    const Ref<OtherPatIDs> ids = New<OtherPatIDs>();
    const Ref<cStringItem> first = Add(ids, "A", 1, "K");
    EXPECT_EQ(Add(ids, "A", 2, "K"), first);
    EXPECT_THAT(MembersIn(*ids), ElementsAre("A 1"));
}

TEST(OtherIdentifiers, AddComparesTheTextAsItWasHandedIn) {
    const Ref<OtherPatIDs> ids = New<OtherPatIDs>();
    Add(ids, "A", 1);
    Add(ids, "a", 2);
    Add(ids, " A", 3);
    EXPECT_THAT(MembersIn(*ids), ElementsAre("A 1", "A 2", "A 3"));
}

TEST(OtherIdentifiers, ASecondAddUnderAKeyRaisesAndDropsTheNewMember) {
    const Ref<OtherPatIDs> ids = New<OtherPatIDs>();
    Add(ids, "A", 1, "K");
    EXPECT_EQ(FailureOf([&] { Add(ids, "B", 2, "k"); }).Number, 457);
    EXPECT_THAT(MembersIn(*ids), ElementsAre("A 1"));
}

TEST(OtherIdentifiers, AMissingMemberRaises) {
    const Ref<OtherPatIDs> ids = Filled("A");
    EXPECT_EQ(FailureOf([&] { ids->Item(Long{2}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { ids->Item("K1"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { ids->Remove(Long{2}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { ids->Remove("K1"); }).Number, 5);
}

TEST(OtherIdentifiers, RemoveClosesUp) {
    const Ref<OtherPatIDs> ids = Filled("A\\B\\C");
    ids->Remove("K1");
    EXPECT_THAT(MembersIn(*ids), ElementsAre("A 0", "C 2"));
    EXPECT_EQ(ids->Item(Long{2})->str, "C");
}

TEST(OtherIdentifiers, TextsOfAnyScriptAreReturnedInUpperCase) {
    EXPECT_EQ(Filled("αβ\\жук\\山田\\🦷")->GetAllAsString(), "ΑΒ\\ЖУК\\山田\\🦷");
}

TEST(OtherIdentifiers, NewEnumVisitsTheMembersInOrder) {
    const Ref<OtherPatIDs> ids = Filled("A\\B");
    const Ref<Enumerator> walk = ids->NewEnum();
    Variant member;
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(To<Ref<cStringItem>>(member), ids->Item("K0"));
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(To<Ref<cStringItem>>(member), ids->Item("K1"));
    EXPECT_FALSE(walk->Next(member));
}

}  // namespace
}  // namespace OXClass

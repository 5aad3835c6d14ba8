#include "people/IntendedRecipients.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The plain list of recipients.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

std::vector<String> TextsOf(const IntendedRecipients& recipients) {
    std::vector<String> texts;
    for (const cStringItem& item : recipients) texts.push_back(item.str);
    return texts;
}

TEST(Recipients, HaveTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(IntendedRecipients()),
                ElementsAre("Add(str: string&, ID: int32&, [sKey: string&]) -> cStringItem",
                            "get Item(vntIndexKey: variant) -> cStringItem", "get Count -> int32",
                            "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator"));
}

TEST(Recipients, ItemIsTheDefaultAndNewEnumTheEnumerator) {
    const IntendedRecipients recipients;
    EXPECT_EQ(recipients.Describe().Find("Item")->DispId, DefaultMember);
    EXPECT_EQ(recipients.Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

TEST(Recipients, AddNeitherTrimsNorChangesCaseNorComparesMembers) {
    IntendedRecipients recipients;
    const String text = " Dr. May ";
    const Ref<cStringItem> added = recipients.Add(text, 7);
    recipients.Add(text, 7);
    recipients.Add("", 0);
    EXPECT_EQ(text, " Dr. May ");
    EXPECT_EQ(added->ID, 7);
    EXPECT_EQ(added, recipients.Item(Long{1}));
    EXPECT_THAT(TextsOf(recipients), ElementsAre(" Dr. May ", " Dr. May ", ""));
}

TEST(Recipients, ASecondAddUnderAKeyRaisesAndDropsTheNewMember) {
    IntendedRecipients recipients;
    recipients.Add("old", 1, "Key");
    EXPECT_EQ(FailureOf([&] { recipients.Add("new", 2, "kEY"); }).Number, 457);
    EXPECT_THAT(TextsOf(recipients), ElementsAre("old"));
    EXPECT_EQ(recipients.Item("KEY")->str, "old");
}

TEST(Recipients, AMissingMemberRaises) {
    IntendedRecipients recipients;
    recipients.Add("only", 1, "K");
    EXPECT_EQ(FailureOf([&] { recipients.Item(Long{2}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { recipients.Item("missing"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { recipients.Remove(Long{0}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { recipients.Remove("missing"); }).Number, 5);
    EXPECT_EQ(recipients.Count(), 1);
}

TEST(Recipients, RemoveClosesUp) {
    IntendedRecipients recipients;
    for (const char* text : {"a", "b", "c"}) recipients.Add(text, 1, text);
    recipients.Remove(Long{1});
    recipients.Remove("c");
    EXPECT_THAT(TextsOf(recipients), ElementsAre("b"));
}

}  // namespace
}  // namespace OXClass

#include "anatomy/cTeeth.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The collection of teeth.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

std::vector<Integer> NumbersOf(const cTeeth& teeth) {
    std::vector<Integer> numbers;
    for (const cTooth& tooth : teeth) numbers.push_back(tooth.TNumber);
    return numbers;
}

TEST(Teeth, HaveTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(cTeeth()), ElementsAre("Add(Selected: boolean, TNumber: int16, [sKey: string&]) -> cTooth",
                                                 "get Item(vntIndexKey: variant) -> cTooth", "get Count -> int32",
                                                 "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator"));
}

TEST(Teeth, ItemIsTheDefaultAndNewEnumTheEnumerator) {
    const cTeeth teeth;
    EXPECT_EQ(teeth.Describe().Find("Item")->DispId, DefaultMember);
    EXPECT_EQ(teeth.Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

TEST(Teeth, AddAppendsWithOrWithoutAKey) {
    cTeeth teeth;
    const Ref<cTooth> keyed = teeth.Add(true, 48, "Tooth48");
    teeth.Add(false, 11);
    EXPECT_TRUE(keyed->Selected);
    EXPECT_EQ(teeth.Item("tooth48"), keyed);
    EXPECT_THAT(NumbersOf(teeth), ElementsAre(48, 11));
    EXPECT_FALSE(teeth.Item(Long{2})->Selected);
}

TEST(Teeth, ASecondAddUnderAKeyRaisesAndDropsTheNewMember) {
    cTeeth teeth;
    teeth.Add(false, 11, "K");
    EXPECT_EQ(FailureOf([&] { teeth.Add(false, 12, "k"); }).Number, 457);
    EXPECT_THAT(NumbersOf(teeth), ElementsAre(11));
}

TEST(Teeth, ItemOfAnUnknownKeyReturnsNullAndDoesNotRaise) {
    cTeeth teeth;
    teeth.Add(false, 11, "Tooth11");
    for (const Variant& missing : {Variant("Tooth12"), Variant(Long{0}), Variant(Long{2}), Variant(Null{}), Variant()})
        EXPECT_FALSE(teeth.Item(missing));
}

TEST(Teeth, ALateBoundItemOfAnUnknownKeyIsNull) {
    cTeeth teeth;
    std::vector<Variant> key{Variant("Tooth12")};
    EXPECT_EQ(Invoke(teeth, "Item", MemberKind::Get, key), Variant(Ref<Object>()));
}

TEST(Teeth, RemoveOfAMissingMemberRaises) {
    cTeeth teeth;
    EXPECT_EQ(FailureOf([&] { teeth.Remove(Long{1}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { teeth.Remove("K"); }).Number, 5);
}

TEST(Teeth, RemoveClosesUp) {
    cTeeth teeth;
    for (const Integer number : {Integer{11}, Integer{12}, Integer{13}}) teeth.Add(false, number);
    teeth.Remove(Long{2});
    EXPECT_THAT(NumbersOf(teeth), ElementsAre(11, 13));
}

}  // namespace
}  // namespace OXClass

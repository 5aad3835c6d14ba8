#include "anatomy/cTooth.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// One tooth.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

TEST(Tooth, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(cTooth()), ElementsAre("put TNumber(int16)", "get TNumber -> int16", "put Selected(boolean)",
                                                 "get Selected -> boolean"));
}

TEST(Tooth, StartsWithoutANumberAndUnselected) {
    const cTooth tooth;
    EXPECT_EQ(tooth.TNumber, 0);
    EXPECT_FALSE(tooth.Selected);
}

TEST(Tooth, ANumberBeyondSixteenBitsOverflows) {
    cTooth tooth;
    std::vector<Variant> number{Variant(Long{40000})};
    EXPECT_EQ(FailureOf([&] { Invoke(tooth, "TNumber", MemberKind::Put, number); }).Number, 6);
    EXPECT_EQ(tooth.TNumber, 0);
}

}  // namespace
}  // namespace OXClass

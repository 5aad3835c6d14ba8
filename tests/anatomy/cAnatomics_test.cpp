#include "anatomy/cAnatomics.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The class without members.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::IsEmpty;

TEST(Anatomics, HaveNoMembers) { EXPECT_THAT(MembersOf(cAnatomics()), IsEmpty()); }

TEST(Anatomics, AreFoundUnderTheirName) {
    EXPECT_STREQ(cAnatomics::ClassName, "cAnatomics");
    EXPECT_EQ(New<cAnatomics>()->Describe().ClassName(), "cAnatomics");
}

TEST(Anatomics, AnyCallByNameIsUnknown) {
    const Ref<cAnatomics> anatomics = New<cAnatomics>();
    std::vector<Variant> none;
    EXPECT_EQ(FailureOf([&] { Invoke(*anatomics, "Count", MemberKind::Get, none); }).Number, 438);
    EXPECT_EQ(FailureOf([&] { Invoke(*anatomics, "Item", MemberKind::Operation, none); }).Number, 438);
}

}  // namespace
}  // namespace OXClass

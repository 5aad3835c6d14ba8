#include "people/cStringItem.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The carrier of one text.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

TEST(StringItem, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(cStringItem()),
                ElementsAre("put ID(int32)", "get ID -> int32", "put str(string)", "get str -> string",
                            "put bSaved(boolean)", "get bSaved -> boolean", "put Signature(string)",
                            "get Signature -> string", "put DateStamp(date)", "get DateStamp -> date"));
}

TEST(StringItem, StartsEmpty) {
    const cStringItem item;
    EXPECT_EQ(item.ID, 0);
    EXPECT_EQ(item.str, "");
    EXPECT_FALSE(item.bSaved);
    EXPECT_EQ(item.Signature, "");
    EXPECT_EQ(item.DateStamp, Date{});
}

TEST(StringItem, KeepsItsValuesAsTheyWerePut) {
    cStringItem item;
    std::vector<Variant> text{Variant(" lower 'quoted' ")}, date{Variant(Date{45000.5})};
    Invoke(item, "str", MemberKind::Put, text);
    Invoke(item, "DateStamp", MemberKind::Put, date);
    EXPECT_EQ(Invoke(item, "str", MemberKind::Get, {}), Variant(" lower 'quoted' "));
    EXPECT_EQ(Invoke(item, "DateStamp", MemberKind::Get, {}), Variant(Date{45000.5}));
}

}  // namespace
}  // namespace OXClass

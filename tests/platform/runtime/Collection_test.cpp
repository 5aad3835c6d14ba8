#include "platform/runtime/Collection.h"

#include "kit/Database.h"

namespace {

using namespace Platform;
using TestKit::FailureOf;
using TestKit::NumberOf;

String All(const Collection& collection) {
    String text;
    for (Long i = 1; i <= collection.Count(); ++i) text += CStr(collection.Item(i));
    return text;
}

Ref<Collection> Letters(std::string_view letters) {
    Ref<Collection> collection = New<Collection>();
    for (const char letter : letters) collection->Add(String(1, letter), String(1, letter));
    return collection;
}

TEST(Collection, KeysHaveNoCaseAndAreNeverPositions) {
    const Ref<Collection> c = New<Collection>();
    c->Add("first", "Key");
    c->Add("second", "1");
    EXPECT_EQ(CStr(c->Item("kEY")), "first");
    EXPECT_EQ(CStr(c->Item("1")), "second");
    EXPECT_EQ(CStr(c->Item(Long{1})), "first");
    EXPECT_EQ(CStr(c->Item(1.5)), "second") << "a position is rounded half to even";
}

TEST(Collection, MissingMembersRaise) {
    const Ref<Collection> c = Letters("a");
    EXPECT_EQ(NumberOf([&] { c->Item("x"); }), err::InvalidCall);
    EXPECT_EQ(NumberOf([&] { c->Item(Long{0}); }), err::OutOfBounds);
    EXPECT_EQ(NumberOf([&] { c->Item(Long{2}); }), err::OutOfBounds);
    EXPECT_EQ(NumberOf([&] { c->Remove("x"); }), err::InvalidCall);
    EXPECT_EQ(NumberOf([&] { c->Remove(Long{2}); }), err::OutOfBounds);
}

TEST(Collection, ADuplicateKeyRaises457AndChangesNothing) {
    const Ref<Collection> c = Letters("ab");
    EXPECT_EQ(NumberOf([&] { c->Add("again", "A"); }), err::DuplicateKey);
    EXPECT_EQ(All(*c), "ab");
}

TEST(Collection, HasAKeyWithoutRegardToCaseUntilItsMemberIsRemoved) {
    const Ref<Collection> c = New<Collection>();
    EXPECT_FALSE(c->HasKey(""));
    c->Add("first", "Key");
    c->Add("no key");
    EXPECT_TRUE(c->HasKey("kEY"));
    EXPECT_FALSE(c->HasKey("first"));
    EXPECT_FALSE(c->HasKey("1")) << "a position is not a key";
    EXPECT_FALSE(c->HasKey(""));
    c->Remove(Long{1});
    EXPECT_FALSE(c->HasKey("Key"));
}

TEST(Collection, AddInsertsBeforeOrAfterAMember) {
    const Ref<Collection> c = Letters("ab");
    c->Add("x", {}, "b");
    c->Add("y", {}, {}, Long{1});
    EXPECT_EQ(All(*c), "ayxb");
    EXPECT_EQ(NumberOf([&] { c->Add("z", {}, "a", "b"); }), err::InvalidCall);
    EXPECT_EQ(NumberOf([&] { c->Add("z", {}, "q"); }), err::InvalidCall);
    EXPECT_EQ(NumberOf([&] { c->Add("z", {}, Long{9}); }), err::OutOfBounds);
    EXPECT_EQ(NumberOf([&] { c->Add("z", Long{5}); }), err::TypeMismatch);
    EXPECT_EQ(NumberOf([] { New<Collection>()->Add("z", {}, Long{1}); }), err::OutOfBounds);
    EXPECT_EQ(All(*c), "ayxb");
}

TEST(Collection, PositionsAfterARemovedMemberDecreaseAndItsKeyIsFree) {
    const Ref<Collection> c = Letters("abc");
    c->Remove("B");
    EXPECT_EQ(All(*c), "ac");
    c->Add("b", "b");
    EXPECT_EQ(All(*c), "acb");
}

TEST(Collection, AnEnumeratorAllowsRemovalAndInsertion) {
    const Ref<Collection> c = Letters("abcd");
    const Ref<Enumerator> walk = c->NewEnum();
    Variant item;
    String seen;
    while (walk->Next(item)) {
        seen += CStr(item);
        if (CStr(item) == "b") {
            c->Remove("a");
            c->Remove("c");
            c->Add("x", {}, Long{1});
        }
    }
    EXPECT_EQ(seen, "abd");
    walk->Reset();
    EXPECT_TRUE(walk->Next(item));
    EXPECT_EQ(CStr(item), "x");
}

TEST(Collection, RemoveReleasesTheMember) {
    struct Watched final : Object {
        explicit Watched(bool& gone) : gone_(gone) {}
        ~Watched() override { gone_ = true; }
        bool& gone_;
    };
    bool gone = false;
    const Ref<Collection> c = New<Collection>();
    c->Add(New<Watched>(gone));
    EXPECT_FALSE(gone);
    c->Remove(Long{1});
    EXPECT_TRUE(gone);
}

TEST(Collection, ManyMembersAddedInFrontAreFoundByPositionAndByKey) {
    const Ref<Collection> c = New<Collection>();
    for (Long i = 0; i < 2000; ++i) c->Add(i, "K" + CStr(i), c->Count() ? Variant(Long{1}) : Variant());
    EXPECT_EQ(CLng(c->Item(Long{1})), 1999);
    EXPECT_EQ(CLng(c->Item("k123")), 123);
}

}  // namespace

#include "platform/runtime/Object.h"

#include "kit/Database.h"

namespace {

using namespace Platform;
using TestKit::FailureOf;

struct Counted final : Object {
    Counted() { ++alive; }
    ~Counted() override { --alive; }
    int value = 5;
    static inline int alive = 0;
};

TEST(Object, LivesAsLongAsAReferenceHoldsIt) {
    {
        Ref<Counted> a = New<Counted>();
        Ref<Object> b = a;
        a = nullptr;
        EXPECT_EQ(Counted::alive, 1);
        Ref<Object> c = std::move(b);
        EXPECT_FALSE(b);
        EXPECT_EQ(Counted::alive, 1);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(Object, DereferencingANullReferenceRaises91) {
    const Ref<Counted> nothing;
    EXPECT_EQ(FailureOf([&] { return nothing->value; }).Number, err::ObjectNotSet);
    EXPECT_EQ(FailureOf([&] { return (*nothing).value; }).Description,
              "Object variable or With block variable not set");
}

TEST(Object, SelfAssignmentKeepsTheObject) {
    Ref<Counted> a = New<Counted>();
    const Ref<Counted>& same = a;
    a = same;
    EXPECT_EQ(a->value, 5);
}

TEST(Error, KnowsTheTextOfItsNumber) {
    EXPECT_EQ(DescriptionOf(err::Overflow), "Overflow");
    EXPECT_EQ(DescriptionOf(4711), "Application-defined or object-defined error");
}

}  // namespace

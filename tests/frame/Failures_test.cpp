#include "frame/Failures.h"

#include "kit/Database.h"

/// The ways in which a failure travels.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

Long Fail() { throw Error(-2147217865, "SQLite", "no such table"); }

TEST(PrefixedFailure, KeepsNumberAndDescriptionAndPutsThePrefixInFront) {
    const Error failure = FailureOf([] { Prefixed("cOne.Load, ", Fail); });
    EXPECT_EQ(failure.Number, -2147217865);
    EXPECT_EQ(failure.Source, "cOne.Load, SQLite");
    EXPECT_EQ(failure.Description, "no such table");
}

TEST(PrefixedFailure, TheSourceGrowsIntoTheCallPath) {
    const Error failure = FailureOf([] { Prefixed("outer, ", [] { return Prefixed("inner, ", Fail); }); });
    EXPECT_EQ(failure.Source, "outer, inner, SQLite");
    EXPECT_EQ(failure.Description, "no such table");
}

TEST(PrefixedFailure, KeepsTheFieldsForDebugging) {
    Error thrown(1, "s", "d");
    thrown.Statement = "SELECT 1";
    thrown.NativeError = 21;
    const Error failure = FailureOf([&] { Prefixed("p, ", [&] { throw thrown; }); });
    EXPECT_EQ(failure.Statement, "SELECT 1");
    EXPECT_EQ(failure.NativeError, 21);
}

TEST(PrefixedFailure, ASuccessPassesItsResult) {
    EXPECT_EQ(Prefixed("p, ", [] { return Long{7}; }), 7);
}

TEST(BoxedFailure, IsShownAndTheResultIsZero) {
    const TextBoxes boxes;
    const Long result = Boxed(Fail, [](const Error& e) { return "error: " + CStr(e.Number) + " " + e.Description; });
    EXPECT_EQ(result, 0);
    EXPECT_THAT(boxes.shown, ElementsAre("error: -2147217865 no such table"));
}

TEST(BoxedFailure, ASuccessShowsNothing) {
    const TextBoxes boxes;
    EXPECT_EQ(Boxed([] { return Long{7}; }, [](const Error& e) { return e.Description; }), 7);
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST(SwallowedFailure, IsIgnoredAndNotReported) {
    const TextBoxes boxes;
    EXPECT_EQ(Swallowed(Fail), 0);
    EXPECT_FALSE(Swallowed([] { return Fail() == 0; }));
    EXPECT_FALSE(Swallowed([]() -> Ref<Object> { Raise(err::ObjectNotSet); }));
    EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST(SwallowedFailure, ASuccessPassesItsResult) {
    EXPECT_TRUE(Swallowed([] { return true; }));
}

TEST(SwallowedFailure, OtherExceptionTypesPassThrough) {
    EXPECT_THROW(Swallowed([]() -> bool { throw std::bad_alloc(); }), std::bad_alloc);
}

}  // namespace
}  // namespace OXClass

#include "frame/Reading.h"

#include "kit/Database.h"

/// The report by which an operation that returns normally informs C++ programs that a failure ended it.
namespace OXClass {
namespace {

using namespace TestKit;

TEST(CompletionTest, IsCompleteBeforeTheFirstRunAndAfterOneThatCameToItsEnd) {
    Completion completion;
    EXPECT_TRUE(completion.Complete());
    EXPECT_EQ(completion.Failure().Number, 0);
    completion.EndedBy(Error(94, "Runtime", "Invalid use of Null"));
    EXPECT_FALSE(completion.Complete());
    EXPECT_EQ(completion.Failure().Number, 94);
    completion.Begin();
    EXPECT_TRUE(completion.Complete());
    EXPECT_EQ(completion.Failure().Number, 0);
}

TEST(CompletionTest, KeepsTheFailureThatAnOperationIgnores) {
    Completion completion;
    EXPECT_FALSE(Swallowed(completion, []() -> bool { Raise(err::TypeMismatch); }));
    EXPECT_EQ(completion.Failure().Number, 13);
    EXPECT_TRUE(Swallowed(completion, [] { return true; }));
    EXPECT_TRUE(completion.Complete());
}

TEST(CompletionTest, ANamedFailureKeepsTheFirstColumnAndAllElse) {
    const Error failure = FailureOf(
        [] { WithColumnName("outer", [] { WithColumnName("inner", []() -> Long { Raise(err::Overflow); }); }); });
    EXPECT_EQ(failure.Column, "inner");
    EXPECT_EQ(failure.Number, 6);
    EXPECT_EQ(failure.Source, "Runtime");
    EXPECT_EQ(failure.Description, "Overflow");
}

class ColumnReading : public WithDatabase {};

TEST_F(ColumnReading, AFailureNamesTheColumn) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, NULL, 'x')");
    const Ref<Recordset> rs = OpenPlain(con, "SELECT * FROM Root_T");
    const auto column = [](auto read) { return FailureOf(read).Column; };
    EXPECT_EQ(column([&] { Required<String>(rs, "RootDirectory"); }), "RootDirectory");
    EXPECT_EQ(column([&] { Required<Long>(rs, "Status"); }), "Status");
    EXPECT_EQ(column([&] { Nz<Long>(rs, "Status"); }), "Status");
    EXPECT_EQ(column([&] { ValueOr(rs, "Status", 0); }), "Status");
    EXPECT_EQ(column([&] { WholeSeconds(rs, "Status"); }), "Status");
    EXPECT_EQ(column([&] { NzWholeSeconds(rs, "Status"); }), "Status");
    EXPECT_EQ(column([&] { TextOrEmpty(rs, "Nowhere"); }), "Nowhere");
    EXPECT_EQ(column([&] { HeadNumber(rs, "Nowhere"); }), "Nowhere");
    EXPECT_EQ(column([&] { con->Execute("SELECT Nowhere FROM Root_T"); }), "")
        << "a failure of a statement is of no column";
}

}  // namespace
}  // namespace OXClass

#include "frame/Statement.h"

#include "kit/Database.h"

#include <type_traits>

/// Joining statements so that no text can break out of its quotes.
namespace OXClass {
namespace {

using namespace TestKit;

template <class Piece>
concept Joins = requires(detail::StatementText statement, Piece piece) {
    statement.Add(piece);
};

static_assert(!Joins<String> && !Joins<std::string_view> && !Joins<const char*>, "a plain text joins no statement");
static_assert(!Joins<double> && !Joins<float> && !Joins<bool>, "a number needs its decimal form first");
static_assert(Joins<Long> && Joins<Integer> && Joins<Escaped>);

TEST(Statement, IsItsPiecesInOrder) {
    EXPECT_EQ(sql("A='", FixSqlString("it's"), "' B=", Long{-7}, " C=", Integer{12}, ";"), "A='it''s' B=-7 C=12;");
}

TEST(Statement, TheFarthestNumbersAreWrittenInFull) {
    EXPECT_EQ(sql(Long{INT32_MIN}, " ", Long{INT32_MAX}), "-2147483648 2147483647");
}

TEST(Statement, AnEnumerationIsWrittenAsItsNumber) { EXPECT_EQ(sql("T=", ADODB::adOpenStatic), "T=3"); }

TEST(Statement, ADoubleHasFifteenDigitsAndAFloatSeven) {
    EXPECT_EQ(sql(Decimal(1.0 / 3.0), " ", Decimal(1.0F / 3.0F)), "0.333333333333333 0.3333333");
    EXPECT_EQ(sql(Decimal(-12.5), " ", Decimal(0.0), " ", Decimal(3.0)), "-12.5 0 3");
}

TEST(Statement, ADecimalHasAPointInEveryLocale) {
    const InLocale comma(DecimalComma);
    EXPECT_EQ(sql(Decimal(12.5), " ", Decimal(-0.25F)), "12.5 -0.25");
}

TEST(Statement, AStampIsTheSameInEveryLocale) {
    const Stamp stamp(DateFrom({2024, 3, 4, 15, 6, 7}));
    const InLocale comma(DecimalComma);
    EXPECT_EQ(sql("'", stamp, "' '", Stamp(Date{}), "'"), "'2024-03-04 15:06:07' '1899-12-30 00:00:00'");
}

TEST(Statement, ANumberOrNullIsEither) {
    EXPECT_EQ(sql("A=", NumberOrNull{false, 5}, ",B=", NumberOrNull{true, 5}), "A=5,B=NULL");
}

TEST(Statement, AClauseIsInsertedUnchanged) {
    EXPECT_EQ(sql("X ", Clause("A = 'b' AND C > 1")), "X A = 'b' AND C > 1");
}

TEST(Statement, AnUnescapedTextIsInsertedUnchangedBetweenQuotes) {
    for (const char* text : {"", "plain", "\\", "\"", "-- /* ;", "Ωж日🦷", "a''b", "''", "''''"})
        EXPECT_EQ(sql("A='", Verbatim(text), "'"), "A='" + String(text) + "'");
}

TEST(Statement, AQuoteInAnUnescapedTextFails) {
    for (const char* text : {"'", "O'Neil", "x', B='y", "'''", "a'b'c", "x' OR '1'='1", "''a'"})
        EXPECT_EQ(FailureOf([&] { sql("A='", Verbatim(text), "'"); }).Number, SyntaxError) << text;
}

TEST(Statement, AQuoteInAnEarlierTextDoesNotShiftTheQuotes) {
    EXPECT_EQ(FailureOf([] { sql("A='", FixSqlString("it's"), "', B='", Verbatim("x'"), "'"); }).Number, SyntaxError);
    EXPECT_EQ(sql("A='", FixSqlString("it's"), "', B=", Verbatim("12")), "A='it''s', B=12");
}

TEST(Statement, OutsideOfQuotesOnlyAWholeNumberIsAccepted) {
    for (const char* text : {"12", "-3", "+4", " 5 "}) EXPECT_EQ(sql("A=", Verbatim(text)), "A=" + String(text));
    for (const char* text : {"", " ", "-", "1 OR 1=1", "1;", "1.5", "0x1", "1e3", "--1", "Name", "''", "１"})
        EXPECT_EQ(FailureOf([&] { sql("A=", Verbatim(text)); }).Number, SyntaxError) << text;
}

TEST(Statement, TheFailureHasTheFormOfTheDatabaseLayers) {
    const Error failure = FailureOf([] { sql("A='", Verbatim("'"), "'"); });
    EXPECT_EQ(failure.Source, "ADODB.Connection");
    EXPECT_THAT(failure.Description, ::testing::HasSubstr("A='"));
}

class StatementOnDatabase : public WithDatabase {};

TEST_F(StatementOnDatabase, AnUnescapedTextOfPairedQuotesStaysOneLiteral) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, 'old')");
    con->Execute(sql("UPDATE GlobalList_T SET ListText='", Verbatim("a'', ListID=''9"), "'"));
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T"), Variant("a', ListID='9"));
    EXPECT_EQ(Ask("SELECT ListID FROM GlobalList_T"), Variant(Long{1}));
}

}  // namespace
}  // namespace OXClass

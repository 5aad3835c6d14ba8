#include "frame/modGeneral.h"

#include "kit/Database.h"

#include <thread>

/// Escaping and the null-safe read.
namespace OXClass {
namespace {

using namespace TestKit;

/// The thread escapes backslashes while this object lives.
class EscapingBackslashes {
public:
    EscapingBackslashes() { bEscapeBackslash = true; }
    ~EscapingBackslashes() { bEscapeBackslash = false; }
};

constexpr Integer zero = 0;

TEST(FixSqlStringText, ANameWithAQuoteGetsItDoubled) { EXPECT_EQ(FixSqlString("O'Hara").Text(), "O''Hara"); }

TEST(FixSqlStringText, ASingleQuoteIsDoubled) { EXPECT_EQ(FixSqlString("'").Text(), "''"); }

TEST(FixSqlStringText, TwoQuotesInARowBecomeFour) { EXPECT_EQ(FixSqlString("''").Text(), "''''"); }

TEST(FixSqlStringText, TheEmptyTextStaysEmpty) { EXPECT_EQ(FixSqlString("").Text(), ""); }

TEST(FixSqlStringText, BackslashesStayWhileTheFlagIsFalse) {
    EXPECT_FALSE(bEscapeBackslash);
    EXPECT_EQ(FixSqlString("C:\\a\\\\b\\").Text(), "C:\\a\\\\b\\");
}

TEST(FixSqlStringText, BackslashesAreDoubledWhereTheFlagIsSet) {
    const EscapingBackslashes flag;
    EXPECT_EQ(FixSqlString("C:\\it's\\").Text(), "C:\\\\it''s\\\\");
}

TEST(FixSqlStringText, TheFlagBelongsToItsThread) {
    const EscapingBackslashes flag;
    String elsewhere;
    std::thread([&] { elsewhere = FixSqlString("\\").Text(); }).join();
    EXPECT_EQ(elsewhere, "\\");
}

TEST(FixSqlStringText, EveryOtherCharacterPasses) {
    using namespace std::string_literals;
    const String text = "%_\"`;--/*\t\r\n\0x’′＇Ωж日🦷"s;
    EXPECT_EQ(FixSqlString(text).Text(), text);
}

TEST(FixSqlStringText, UpperCaseLeavesAnEscapedTextEscaped) {
    EXPECT_EQ(UCase(FixSqlString("o'ß'ж")).Text(), "O''ß''Ж");
}

TEST(NzValueOf, ANullIsTheInteger0) { EXPECT_EQ(NzValue(Null{}), Variant(zero)); }

TEST(NzValueOf, ANullSetsATextMemberTo0) { EXPECT_EQ(To<String>(NzValue(Null{})), "0"); }

TEST(NzValueOf, AnEmptyValueIsTheInteger0) { EXPECT_EQ(NzValue({}), Variant(zero)); }

TEST(NzValueOf, ATextOfBlanksIsTheInteger0) {
    EXPECT_EQ(NzValue("   "), Variant(zero));
    EXPECT_EQ(NzValue(""), Variant(zero));
}

TEST(NzValueOf, ATextWithOuterBlanksIsReturnedUnchanged) { EXPECT_EQ(NzValue("  a "), Variant("  a ")); }

TEST(NzValueOf, ADateWhoseTextCannotBeFormedIsTheInteger0) {
    EXPECT_EQ(NzValue(Date{2958465.9999999}), Variant(zero)) << "rounded to seconds it lies behind the last day";
    EXPECT_EQ(NzValue(Date{2958465.5}), Variant(Date{2958465.5}));
}

TEST(NzValueOf, ATabAloneIsReturned) {
    EXPECT_EQ(NzValue("\t"), Variant("\t"));
    EXPECT_EQ(NzValue(" \n "), Variant(" \n "));
}

TEST(NzValueOf, ANumberKeepsItsTypeAlsoWhenItIs0) {
    EXPECT_EQ(NzValue(Long{0}), Variant(Long{0}));
    EXPECT_EQ(NzValue(0.0), Variant(0.0));
    EXPECT_EQ(NzValue(-1.5F), Variant(-1.5F));
    EXPECT_EQ(NzValue(std::int64_t{1} << 40), Variant(std::int64_t{1} << 40));
}

TEST(NzValueOf, TheDate0IsUnchanged) { EXPECT_EQ(NzValue(Date{}), Variant(Date{})); }

TEST(NzValueOf, FalseStaysFalse) { EXPECT_EQ(NzValue(false), Variant(false)); }

TEST(NzValueOf, AValueWithoutATextIsTheInteger0) {
    EXPECT_EQ(NzValue(New<Collection>()), Variant(zero));
    EXPECT_EQ(NzValue(Ref<Object>()), Variant(zero));
    EXPECT_EQ(NzValue(std::vector<String>{"a"}), Variant(zero));
}

TEST(NzValueOf, ADateBeyondTheCalendarHasNoTextAndIsTheInteger0) { EXPECT_EQ(NzValue(Date{1e9}), Variant(zero)); }

class NzValueOfColumn : public WithDatabase {};

TEST_F(NzValueOfColumn, ANullColumnIsTheInteger0) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (NULL, '  ')");
    EXPECT_EQ(NzValue(Ask("SELECT ListID FROM GlobalList_T")), Variant(zero));
    EXPECT_EQ(NzValue(Ask("SELECT ListText FROM GlobalList_T")), Variant(zero));
    EXPECT_EQ(NzValue(Ask("SELECT GlobalListID FROM GlobalList_T")), Variant(Long{1}));
}

}  // namespace
}  // namespace OXClass

#include "platform/runtime/Text.h"

#include "kit/Database.h"

namespace {

using namespace Platform;
using TestKit::FailureOf;

const String Emoji = "\xF0\x9F\xA6\xB7";  // one character, a pair of units

TEST(Text, LenCountsUtf16Units) {
    EXPECT_EQ(Len(""), 0);
    EXPECT_EQ(Len("abc"), 3);
    EXPECT_EQ(Len("Åkesson"), 7);
    EXPECT_EQ(Len("a" + Emoji), 3);
    EXPECT_EQ(Len("\xFF\xFE"), 2) << "a stray byte counts as one";
}

TEST(Text, LeftCutsByUnitsAndNeverSplitsAPair) {
    EXPECT_EQ(Left("Åkesson", 2), "Åk");
    EXPECT_EQ(Left("abc", 9), "abc");
    EXPECT_EQ(Left("a" + Emoji + "b", 2), "a");
    EXPECT_EQ(Left("a" + Emoji + "b", 3), "a" + Emoji);
    EXPECT_EQ(Left("abc", 0), "");
    EXPECT_EQ(FailureOf([] { Left("abc", -1); }).Number, err::InvalidCall);
}

TEST(Text, RightTakesTheLastUnits) {
    EXPECT_EQ(Right("abcå", 2), "cå");
    EXPECT_EQ(Right("ab", 5), "ab");
    EXPECT_EQ(FailureOf([] { Right("abc", -1); }).Number, err::InvalidCall);
}

TEST(Text, MidCountsFromOne) {
    EXPECT_EQ(Mid("abcdef", 2, 3), "bcd");
    EXPECT_EQ(Mid("abcdef", 4), "def");
    EXPECT_EQ(Mid("abc", 9), "");
    EXPECT_EQ(Mid("åäö", 2, 1), "ä");
    EXPECT_EQ(FailureOf([] { Mid("abc", 0); }).Number, err::InvalidCall);
    EXPECT_EQ(FailureOf([] { Mid("abc", 1, -1); }).Number, err::InvalidCall);
}

TEST(Text, TrimRemovesOnlyBlanks) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\t a\n"), "\t a\n");
    EXPECT_EQ(Trim("   "), "");
}

TEST(Text, CaseMapsOneCharacterToOne) {
    EXPECT_EQ(UCase("aéñя"), "AÉÑЯ");
    EXPECT_EQ(UCase("straße"), "STRAßE");
    EXPECT_EQ(LCase("ÅΩ"), "åω");
    EXPECT_EQ(UCase("\xFFz"), "\xFFZ");
    EXPECT_TRUE(EqualsIgnoringCase("ÅSA", "åsa"));
    EXPECT_FALSE(EqualsIgnoringCase("ab", "abc"));
}

TEST(Text, ReplaceChangesEachOccurrence) {
    EXPECT_EQ(Replace("1,2,3", ",", "."), "1.2.3");
    EXPECT_EQ(Replace("abc", "", "x"), "abc");
    EXPECT_EQ(Replace("''", "'", "''"), "''''");
}

TEST(Text, SplitFollowsTheDelimiterWithoutRegardToCase) {
    using Parts = std::vector<String>;
    EXPECT_EQ(SplitIgnoringCase("a\\b", "\\"), (Parts{"a", "b"}));
    EXPECT_EQ(SplitIgnoringCase("a\\\\b\\", "\\"), (Parts{"a", "", "b", ""}));
    EXPECT_EQ(SplitIgnoringCase("1x2X3", "x"), (Parts{"1", "2", "3"}));
    EXPECT_EQ(SplitIgnoringCase("", "x"), Parts{});
    EXPECT_EQ(SplitIgnoringCase("abc", ""), Parts{"abc"});
}

TEST(Text, Utf16RoundTripKeepsAnyScript) {
    const String text = "Διονυσίου Петров 山田 " + Emoji;
    EXPECT_EQ(FromUtf16(ToUtf16(text)), text);
    EXPECT_EQ(ToUtf16("\xFF"), u"\xFFFD");
    EXPECT_EQ(FromUtf16(std::u16string(1, u'\xD83E')), "\xEF\xBF\xBD");
}

}  // namespace

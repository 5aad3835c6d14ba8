#include "platform/runtime/Convert.h"

#include "kit/Database.h"
#include "platform/runtime/Collection.h"
#include "platform/runtime/Services.h"

#include <cmath>

namespace {

using namespace Platform;
using TestKit::DecimalComma;
using TestKit::FailureOf;
using TestKit::InLocale;
using TestKit::NumberOf;

TEST(Convert, WholeNumbersRoundHalfToEven) {
    EXPECT_EQ(CInt(0.5), 0);
    EXPECT_EQ(CInt(1.5), 2);
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CLng(-2.5), -2);
    EXPECT_EQ(CInt(32767.4), 32767);
    EXPECT_EQ(NumberOf([] { CInt(32767.5); }), err::Overflow);
    EXPECT_EQ(NumberOf([] { CLng(2147483648.0); }), err::Overflow);
    EXPECT_EQ(NumberOf([] { CInt(Long{40000}); }), err::Overflow);
}

TEST(Convert, TextsAreNumbersInTheirAcceptedForms) {
    EXPECT_EQ(CInt("2.5"), 2);
    EXPECT_EQ(CLng(" 12\t"), 12);
    EXPECT_EQ(CLng("5-"), -5);
    EXPECT_EQ(CLng("(5)"), -5);
    EXPECT_EQ(CDbl("12,34.5"), 1234.5);
    EXPECT_EQ(CDbl("1.5D2"), 150);
    EXPECT_EQ(CLng("&HFFFF"), -1);
    for (const char* bad : {"", " ", ".", "12abc", "50%", "&HFFFF&", "1.2.3", "e5"})
        EXPECT_EQ(NumberOf([&] { CDbl(bad); }), err::TypeMismatch) << bad;
    EXPECT_EQ(NumberOf([] { CDbl("1E400"); }), err::Overflow);
    EXPECT_EQ(NumberOf([] { CInt("40000"); }), err::Overflow);
}

TEST(Convert, TheDecimalSignIsTheLocales) {
    EXPECT_EQ(CDbl("1,5"), 15);
    EXPECT_EQ(CStr(12.5), "12.5");
    const InLocale comma(DecimalComma);
    EXPECT_EQ(CDbl("1,5"), 1.5);
    EXPECT_EQ(CStr(12.5), "12,5");
    EXPECT_EQ(Val("1.5"), 1.5) << "Val knows the point only";
}

TEST(Convert, NullsAndEmptyValues) {
    EXPECT_EQ(NumberOf([] { CLng(Null{}); }), err::InvalidNull);
    EXPECT_EQ(NumberOf([] { CStr(Null{}); }), err::InvalidNull);
    EXPECT_EQ(NumberOf([] { CDate(Null{}); }), err::InvalidNull);
    EXPECT_EQ(NumberOf([] { CBool(Null{}); }), err::InvalidNull);
    EXPECT_EQ(CLng(Empty{}), 0);
    EXPECT_EQ(CStr(Empty{}), "");
    EXPECT_EQ(CDate(Empty{}).Days, 0);
}

TEST(Convert, ObjectsAndArraysHaveNoValue) {
    EXPECT_EQ(NumberOf([] { CLng(Ref<Object>()); }), err::ObjectNotSet);
    EXPECT_EQ(NumberOf([] { CStr(New<Collection>()); }), err::NoSuchMember);
    EXPECT_EQ(NumberOf([] { CStr(std::vector<String>{"a"}); }), err::TypeMismatch);
    EXPECT_EQ(NumberOf([] { To<Ref<Collection>>("text"); }), err::ObjectRequired);
    EXPECT_EQ(NumberOf([] { To<Ref<Enumerator>>(New<Collection>()); }), err::TypeMismatch);
    EXPECT_FALSE(To<Ref<Collection>>(Ref<Object>()));
}

TEST(Convert, BooleansAreMinusOne) {
    EXPECT_EQ(CInt(true), -1);
    EXPECT_EQ(CStr(true), "True");
    EXPECT_TRUE(CBool(Long{7}));
    EXPECT_TRUE(CBool("tRUE"));
    EXPECT_FALSE(CBool("0"));
    EXPECT_EQ(NumberOf([] { CBool(" True "); }), err::TypeMismatch);
}

TEST(Convert, FloatsHave15And7Digits) {
    const std::pair<double, const char*> doubles[] = {{1.0 / 3, "0.333333333333333"},
                                                      {1.0 / 30, "3.33333333333333E-02"},
                                                      {0.00001, "0.00001"},
                                                      {1.5E-10, "0.00000000015"},
                                                      {1E14, "100000000000000"},
                                                      {1E15, "1E+15"},
                                                      {123456789012345.0, "123456789012345"},
                                                      {1234567890123456.0, "1.23456789012346E+15"},
                                                      {5E-15, "0.000000000000005"},
                                                      {5E-16, "5E-16"},
                                                      {0.1 + 0.2, "0.3"},
                                                      {-2.25, "-2.25"},
                                                      {0, "0"},
                                                      {100, "100"}};
    for (const auto& [value, text] : doubles) EXPECT_EQ(CStr(value), text);
    EXPECT_EQ(CStr(16777217.0F), "1.677722E+07");
    EXPECT_EQ(CStr(0.7F), "0.7");
    EXPECT_EQ(CStr(static_cast<double>(0.1F)), "0.100000001490116");
}

TEST(Convert, ValReadsTheHeadOfAText) {
    const std::pair<const char*, double> heads[] = {{"1 2 3", 123}, {" - 5", -5},       {"1e", 1},          {"1,5", 1},
                                                    {"$5", 0},      {"1.2.3", 1.2},     {"12abc", 12},      {"0-5", 0},
                                                    {"&HFFFF", -1}, {"&HFFFF&", 65535}, {"&H10000", 65536}, {"", 0},
                                                    {"2d2", 200}};
    for (const auto& [text, value] : heads) EXPECT_EQ(Val(text), value) << text;
}

TEST(Convert, IsoDatesReadInEveryLocale) {
    for (const Locale& locale : {Locale{}, DecimalComma}) {
        const InLocale scope(locale);
        EXPECT_EQ(FormatDate(CDate("2026-03-04 05:06:07"), "d/m/yyyy h:n:s"), "4/3/2026 5:6:7");
        EXPECT_EQ(CDate("2026-03-04").Days, DateFrom({2026, 3, 4, 0, 0, 0}).Days);
        EXPECT_FALSE(IsDate("2026-02-30"));
        EXPECT_FALSE(IsDate("2026-03-04T05:06:07"));
        EXPECT_FALSE(IsDate("2026-03-04 25:00:00"));
    }
}

TEST(Convert, OtherDatesFollowTheLocaleAndThenAnyOrder) {
    const auto read = [](const char* text) { return FormatDate(CDate(text), "yyyy-mm-dd"); };
    EXPECT_EQ(read("3/4/2020"), "2020-03-04");
    EXPECT_EQ(read("13/2/2020"), "2020-02-13");
    EXPECT_EQ(read("2 Jan 2020"), "2020-01-02");
    EXPECT_EQ(read("January 2, 1999"), "1999-01-02");
    EXPECT_EQ(read("1/2/29"), "2029-01-02");
    EXPECT_EQ(read("1/2/30"), "1930-01-02");
    const InLocale dayFirst(DecimalComma);
    EXPECT_EQ(read("3/4/2020"), "2020-04-03");
}

TEST(Convert, TimesAloneAreOfDayZero) {
    EXPECT_EQ(FormatDate(CDate("1:04:05 PM"), "yyyy hh:nn:ss"), "1899 13:04:05");
    EXPECT_EQ(FormatDate(CDate("12:30 AM"), "hh:nn"), "00:30");
    EXPECT_FALSE(IsDate("13"));
    EXPECT_FALSE(IsDate("25:00"));
}

TEST(Convert, NumbersAreDatesBySerialButNoTextIsADateByIsDate) {
    EXPECT_EQ(FormatDate(CDate("43831"), "yyyy-mm-dd"), "2020-01-01");
    EXPECT_FALSE(IsDate("43831"));
    EXPECT_FALSE(IsDate(Long{43831}));
    EXPECT_FALSE(IsDate(Null{}));
    EXPECT_EQ(NumberOf([] { CDate(""); }), err::TypeMismatch);
    EXPECT_EQ(NumberOf([] { CDate(3000000.0); }), err::Overflow);
}

TEST(Convert, FormatOfANullIsEmptyAndOfATextThatIsNotADateTheText) {
    EXPECT_EQ(Format(Null{}, "yyyy"), "");
    EXPECT_EQ(Format("2020-05-06", "dd.mm.yyyy"), "06.05.2020");
    EXPECT_EQ(Format("no date", "yyyy"), "no date");
    EXPECT_EQ(Format(Long{2}, "yyyy-mm-dd"), "1900-01-01");
}

}  // namespace

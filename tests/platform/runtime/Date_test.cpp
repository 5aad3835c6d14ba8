#include "platform/runtime/Date.h"

#include "kit/Database.h"

namespace {

using namespace Platform;
using TestKit::FailureOf;

TEST(Date, DayZeroIs1899December30) {
    EXPECT_EQ(FormatDate(Date{}, "yyyy-mm-dd hh:nn:ss"), "1899-12-30 00:00:00");
    EXPECT_EQ(DateFrom({1900, 1, 1, 0, 0, 0}).Days, 2);
    EXPECT_EQ(DateFrom({100, 1, 1, 0, 0, 0}).Days, FirstDay);
    EXPECT_EQ(DateFrom({9999, 12, 31, 0, 0, 0}).Days, LastDay);
}

TEST(Date, BeforeDayZeroTheFractionStillRunsForward) {
    EXPECT_EQ(FormatDate(Date{-1.5}, "yyyy-mm-dd hh:nn"), "1899-12-29 12:00");
    EXPECT_EQ(FormatDate(Date{-2.25}, "yyyy-mm-dd hh:nn"), "1899-12-28 06:00");
    EXPECT_EQ(DateFrom({1899, 12, 29, 12, 0, 0}).Days, -1.5);
}

TEST(Date, ComponentsRoundToTheNearestSecondAndCarry) {
    EXPECT_EQ(FormatDate(Date{41652.9999999963}, "yyyy-mm-dd hh:nn:ss"), "2014-01-14 00:00:00");
}

TEST(Date, FormatReadsMAfterHoursAsMinutes) {
    const Date date = DateFrom({2026, 3, 4, 5, 6, 7});
    EXPECT_EQ(FormatDate(date, "YYYY-MM-DD HH:MM:SS"), "2026-03-04 05:06:07");
    EXPECT_EQ(FormatDate(date, "YYYY-MM-DD HH:NN:SS"), "2026-03-04 05:06:07");
    EXPECT_EQ(FormatDate(date, "mm:ss"), "03:07");
    EXPECT_EQ(FormatDate(date, "d.m.yy h-n-s"), "4.3.26 5-6-7");
}

TEST(Date, OutsideOfTheCalendarRaises5) {
    EXPECT_EQ(FailureOf([] { PartsOf(Date{LastDay + 1}); }).Number, err::InvalidCall);
    EXPECT_EQ(FailureOf([] { PartsOf(Date{FirstDay - 1}); }).Number, err::InvalidCall);
    EXPECT_FALSE(IsCalendarDay(2001, 2, 29));
    EXPECT_TRUE(IsCalendarDay(2000, 2, 29));
    EXPECT_FALSE(IsCalendarDay(2000, 300, 1));
}

}  // namespace

#include "frame/Class1.h"

#include "kit/Database.h"
#include "platform/runtime/Random.h"
#include "platform/runtime/Services.h"

#include <set>
#include <thread>

/// The identifiers of new objects: their form, their length, and the source of the root.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

class Identifiers : public WithDatabase {
protected:
    Identifiers() : host_(TheHost()) { sDicomRootUID.clear(); }
    ~Identifiers() override {
        TheHost() = host_;
        sDicomRootUID.clear();
    }

    /// Fixes the system time; the tick counter returns these two numbers.
    static void Fix(std::uint64_t fileTime, std::uint32_t tick1 = 0, std::uint32_t tick2 = 0) {
        TheHost().SystemFileTime = [=] { return fileTime; };
        TheHost().TickCount = [=, first = true]() mutable { return std::exchange(first, !first) ? tick1 : tick2; };
        TheHost().Timer = [] { return 43210.5F; };
    }

    static String UidUnder(const String& root) {
        sDicomRootUID = root;
        return MakeUIDSuffix();
    }

    Ref<Class1> services = New<Class1>();

private:
    Host host_;
};

const String defaultRoot = "1.2.840.990731.3.6";

/// A whole number in five digits.
String Five(Long number) {
    const String digits = CStr(number);
    return String(5 - digits.size(), '0') + digits;
}

TEST_F(Identifiers, WithTheDefaultRootAnIdentifierIsTheRootADotAndFortyOneDigits) {
    const String uid = services->GetInstanceUID(con);
    EXPECT_THAT(uid, MatchesRegex("1\\.2\\.840\\.990731\\.3\\.6\\.[1-9][0-9]+"));
    EXPECT_EQ(uid.size(), 60U);
}

TEST_F(Identifiers, EveryPieceHasItsPosition) {
    Fix(0x01DA6E2BFFFF0001U, 0xFFFE1234U, 0x56780007U);
    Rnd(-1.0F);
    Randomize();
    const float r1 = Rnd(), r2 = Rnd(), r3 = Rnd();
    Rnd(-1.0F);
    const String expected = "1.2." + CStr(CLng(static_cast<double>(r1) * 8.0 + 1.0)) + "65535" + "00001" + "55839" +
                            "04590" + Five(CLng(static_cast<double>(r2) * 100000.0) & 0xFFFF) + "65534" + "00007" +
                            Five(CLng(static_cast<double>(r3) * 100000.0) & 0xFFFF);
    EXPECT_EQ(UidUnder("1.2"), expected);
}

TEST_F(Identifiers, TheClocksWordsAreTakenWithoutTheirSign) {
    Fix(0x80000000'80007FFFU, 0x7FFFFFFFU, 0x8000FFFFU);
    // shifted: 0x80146BF4; with the marker 0x90146BF4
    const String uid = UidUnder("");
    EXPECT_EQ(uid.substr(2, 20), "32768327672763636884");
    EXPECT_EQ(uid.substr(27, 10), "3276765535");
}

TEST_F(Identifiers, AClockBeyondTheRangeOverflows) {
    Fix(0x7FFFFFFF'00000000U);
    EXPECT_EQ(FailureOf([] { UidUnder("1.2"); }).Number, 6);
    Fix(std::uint64_t{0x7FFFFFFF - 0x146BF4} << 32);
    EXPECT_EQ(FailureOf([] { UidUnder("1.2"); }).Number, 0);
}

TEST_F(Identifiers, TheMarkedGroupIsAtLeast4096) {
    for (const std::uint64_t high : {0x0U, 0x10000U, 0xEB940CU, 0x01DA6E2BU, 0x0FFFFFFFU}) {
        Fix(high << 32);
        const Long group = CLng(UidUnder("").substr(17, 5));
        EXPECT_GE(group, 4096);
        EXPECT_EQ(group & 0x1000, 0x1000);
    }
}

TEST_F(Identifiers, TheRandomGroupsStayWithinSixteenBitsAndTheLeadDigitWithin1To9) {
    std::set<char> leads;
    Long highest = 0;
    float clock = 0;
    TheHost().Timer = [&] { return clock; };
    for (int i = 0; i < 3000; ++i) {
        clock += 27.7F;
        const String uid = UidUnder("");
        leads.insert(uid[1]);
        highest = std::max({highest, CLng(uid.substr(22, 5)), CLng(uid.substr(37, 5))});
    }
    EXPECT_LE(highest, 65535);
    EXPECT_GT(highest, 60000);
    EXPECT_EQ(String(leads.begin(), leads.end()), "123456789");
}

TEST_F(Identifiers, WordsAreWrittenWithLeadingZeros) {
    EXPECT_EQ(LowWordText(0, 5), "00000");
    EXPECT_EQ(LowWordText(0x12340007, 3), "007");
    EXPECT_EQ(LowWordText(-1, 5), "65535");
    EXPECT_EQ(LowWordText(65535, 2), "65535");
    EXPECT_EQ(HighWordText(0x0007FFFF, 5), "00007");
    EXPECT_EQ(HighWordText(-1, 5), "65535");
    EXPECT_EQ(HighWordText(INT32_MIN, 5), "32768");
    EXPECT_EQ(HighWordText(0xFFFF, 1), "0");
}

TEST_F(Identifiers, TenThousandIdentifiersDiffer) {
    std::set<String> uids;
    for (int i = 0; i < 10000; ++i) uids.insert(services->GetInstanceUID(con));
    EXPECT_EQ(uids.size(), 10000U);
}

// ---- long roots -----------------------------------------------------------------------------------

/// The suffix's 41 digits with the clock fixed.
class LongRoot : public Identifiers {
protected:
    LongRoot() {
        Fix(0x01DA6E2BFFFF0001U, 0xFFFE1234U, 0x56780007U);
        digits_ = Suffixed("").substr(1);
    }

    /// The identifier under a root, with the random numbers the same each time.
    static String Suffixed(const String& root) {
        Rnd(-1.0F);
        return UidUnder(root);
    }

    String LastDigits(std::size_t count) const { return digits_.substr(digits_.size() - count); }

private:
    String digits_;
};

TEST_F(LongRoot, ARootOfTwentyTwoCharactersIsNotCut) {
    const String root(22, '1'), uid = Suffixed(root);
    EXPECT_EQ(uid, root + "." + LastDigits(41));
    EXPECT_EQ(uid.size(), 64U);
}

TEST_F(LongRoot, ARootOfTwentyThreeCharactersCostsTheFirstDigit) {
    const String root(23, '1'), uid = Suffixed(root);
    EXPECT_EQ(uid, root + "." + LastDigits(40));
    EXPECT_EQ(uid.size(), 64U);
}

TEST_F(LongRoot, ARootOfThirtyCharactersLeavesTheLast33Digits) {
    const String root(30, '1'), uid = Suffixed(root);
    EXPECT_EQ(uid, root + "." + LastDigits(33));
    EXPECT_EQ(uid.size(), 64U);
}

TEST_F(LongRoot, ARootOf62CharactersLeavesOneDigit) {
    const String root(62, '1');
    EXPECT_EQ(Suffixed(root), root + "." + LastDigits(1));
}

TEST_F(LongRoot, ARootOf63CharactersReturnsTheRootAndADot) {
    const String root(63, '1');
    EXPECT_EQ(Suffixed(root), root + ".");
}

TEST_F(LongRoot, ARootOf64CharactersOrMoreFails) {
    for (const std::size_t length : {64U, 65U, 200U})
        EXPECT_EQ(FailureOf([&] { Suffixed(String(length, '1')); }).Number, 5) << length;
}

// ---- where the root comes from --------------------------------------------------------------------

TEST_F(Identifiers, TheRootIsTheListsFirstTextAndIsReadOnceAThread) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (4, '1.2.3'), (4, '9.9')");
    EXPECT_THAT(services->GetInstanceUID(con), StartsWith("1.2.3."));
    Run("UPDATE GlobalList_T SET ListText='7.7'");
    EXPECT_THAT(New<Class1>()->GetInstanceUID(con), StartsWith("1.2.3."));
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM GlobalList_T WHERE ListID=4;"));
}

TEST_F(Identifiers, AThreadThatHoldsTheRootNeedsNoConnection) {
    services->GetInstanceUID(con);
    EXPECT_THAT(services->GetInstanceUID(nullptr), StartsWith(defaultRoot + "."));
}

TEST_F(Identifiers, EachThreadReadsTheRootForItself) {
    services->GetInstanceUID(con);
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (4, '7.7')");
    String uid;
    std::thread([&] { uid = New<Class1>()->GetInstanceUID(Connect()); }).join();
    EXPECT_THAT(uid, StartsWith("7.7."));
    EXPECT_THAT(services->GetInstanceUID(con), StartsWith(defaultRoot + "."));
}

TEST_F(Identifiers, AnEmptyFirstTextIsReadEachTimeAndTheIdentifierBeginsWithTheDot) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (4, '')");
    EXPECT_THAT(services->GetInstanceUID(con), MatchesRegex("\\.[0-9]+"));
    EXPECT_EQ(services->GetInstanceUID(con).size(), 42U);
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(Identifiers, AFailureReachesTheCallerAndLeavesTheRootUnread) {
    Run("ALTER TABLE GlobalList_T RENAME COLUMN ListID TO Renamed");
    EXPECT_EQ(FailureOf([&] { services->GetInstanceUID(con); }).Number, static_cast<Long>(0x80040E10));
    EXPECT_EQ(sDicomRootUID, "");
}

}  // namespace
}  // namespace OXClass

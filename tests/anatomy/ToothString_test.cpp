#include "anatomy/ToothString.h"

#include "kit/Database.h"

/// The text form of a tooth selection.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

std::vector<Integer> Read(const String& teeth) {
    std::vector<Integer> numbers;
    ReadToothString(teeth, [&](Integer number) { numbers.push_back(number); });
    return numbers;
}

TEST(ToothText, TheFullSetHasFiftyTwoTeethQuadrantByQuadrant) {
    const std::vector<Integer> expected{11, 12, 13, 14, 15, 16, 17, 18, 21, 22, 23, 24, 25, 26, 27, 28, 31, 32,
                                        33, 34, 35, 36, 37, 38, 41, 42, 43, 44, 45, 46, 47, 48, 51, 52, 53, 54,
                                        55, 61, 62, 63, 64, 65, 71, 72, 73, 74, 75, 81, 82, 83, 84, 85};
    EXPECT_THAT(AllTeeth, ElementsAreArray(expected));
}

TEST(ToothText, RecordsComeInTheTextsOrder) { EXPECT_THAT(Read("48,11,85,"), ElementsAre(48, 11, 85)); }

TEST(ToothText, TheLastCommaMayBeMissing) { EXPECT_THAT(Read("11,21"), ElementsAre(11, 21)); }

TEST(ToothText, CharactersBetweenTheRecordsAreIgnored) { EXPECT_THAT(Read("11;21 48x"), ElementsAre(11, 21, 48)); }

TEST(ToothText, BlanksSelectNothing) {
    EXPECT_THAT(Read(""), IsEmpty());
    EXPECT_THAT(Read("    "), IsEmpty());
}

TEST(ToothText, ATextWithoutAToothFails) {
    for (const char* text : {"19,", "59,", "86,", "10,", "00,", "1", " 11,", "1 ,", "ab,", "\t", "１１,", "-1,", "91,"})
        EXPECT_EQ(FailureOf([&] { Read(text); }).Number, 91) << text;
}

TEST(ToothText, RecordsBeforeABadOneAreHandedOut) {
    std::vector<Integer> numbers;
    const auto read = [&] { ReadToothString("11,19,21,", [&](Integer number) { numbers.push_back(number); }); };
    EXPECT_EQ(FailureOf(read).Number, 91);
    EXPECT_THAT(numbers, ElementsAre(11));
}

TEST(ToothText, ATextWithoutSeparatorsIsNotReadBack) {
    EXPECT_EQ(FailureOf([] { Read("1185"); }).Number, 91);
    EXPECT_THAT(Read("112148"), ElementsAre(11, 14));  // the characters happen to land on teeth
}

TEST(ToothText, TheLengthCountsInSixteenBits) {
    String teeth;
    for (int i = 0; i < 10922; ++i) teeth += "11,";
    EXPECT_EQ(Read(teeth).size(), 10922U);
    EXPECT_EQ(FailureOf([&] { Read(teeth + "11"); }).Number, 6);
}

TEST(ToothText, OneRecordTooManyFailsBeforeAnyIsHandedOut) {
    String teeth;
    for (int i = 0; i < 10923; ++i) teeth += "11,";
    int handedOut = 0;
    EXPECT_EQ(FailureOf([&] { ReadToothString(teeth, [&](Integer) { ++handedOut; }); }).Number, 6);
    EXPECT_EQ(handedOut, 0);
}

TEST(ToothText, ASetHoldsEachToothOnce) {
    const ToothSet set = TeethOf("48,11,48,");
    EXPECT_EQ(set.count(), 2U);
    EXPECT_TRUE(set[11] && set[48]);
}

TEST(ToothText, ANumberIsReadFromExactlyTwoDigits) {
    EXPECT_EQ(ToothNumber("85"), 85);
    EXPECT_EQ(ToothNumber("8"), 0);
    EXPECT_EQ(ToothNumber("855"), 0);
    EXPECT_EQ(ToothNumber(""), 0);
}

}  // namespace
}  // namespace OXClass

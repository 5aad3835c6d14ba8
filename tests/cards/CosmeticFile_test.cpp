#include "cards/CosmeticFile.h"

#include "kit/Database.h"

#include <fstream>

/// The file that a cosmetic manipulation names.
namespace OXClass {
namespace {

using namespace TestKit;

/// "number|name" of a cosmetic text.
String Parts(const String& parameter) {
    const CosmeticFile file = CosmeticFile::Named(parameter);
    return CStr(file.RootId) + "|" + file.StoredName;
}

TEST(CosmeticText, ThreeCharactersAreTheRootAndTheRestIsTheName) {
    EXPECT_EQ(Parts("0070_\\a.dcm"), "7|0_\\a.dcm");
    EXPECT_EQ(Parts("123456"), "123|456");
}

TEST(CosmeticText, BlanksAreNotPartOfTheNumber) {
    EXPECT_EQ(Parts("  7a"), "7|a");
    EXPECT_EQ(Parts("7  a"), "7|a");
    EXPECT_EQ(Parts("1 2a"), "12|a");
    EXPECT_EQ(Parts("   a"), "0|a");
}

TEST(CosmeticText, TheNumberEndsAtTheFirstNonNumericCharacter) {
    EXPECT_EQ(Parts("7x9a"), "7|a");
    EXPECT_EQ(Parts("7\\8a"), "7|a");
    EXPECT_EQ(Parts("1,9a"), "1|a");
}

TEST(CosmeticText, WithoutANumberTheRootIsZero) {
    EXPECT_EQ(Parts("abca"), "0|a");
    EXPECT_EQ(Parts("x07a"), "0|a");
}

TEST(CosmeticText, AFractionIsRoundedToTheNearestNumberAndATieToTheEvenOne) {
    EXPECT_EQ(Parts("1.6a"), "2|a");
    EXPECT_EQ(Parts("2.5a"), "2|a");
    EXPECT_EQ(Parts("3.5a"), "4|a");
}

TEST(CosmeticText, TheNumberReadsTheSameOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    EXPECT_EQ(Parts("1.6a"), "2|a");
    EXPECT_EQ(Parts("1,6a"), "1|a");
}

TEST(CosmeticText, ASignAndAnExponentAndHexadecimalDigitsCount) {
    EXPECT_EQ(Parts("-07a"), "-7|a");
    EXPECT_EQ(Parts("+07a"), "7|a");
    EXPECT_EQ(Parts("1E2a"), "100|a");
    EXPECT_EQ(Parts("&HFa"), "15|a");
}

TEST(CosmeticText, ANumberBeyondThirtyTwoBitsOverflows) {
    EXPECT_EQ(Parts("2E9a"), "2000000000|a");
    EXPECT_EQ(FailureOf([] { CosmeticFile::Named("9E9a"); }).Number, err::Overflow);
}

TEST(CosmeticText, AShortTextHasNoName) {
    EXPECT_EQ(Parts("007"), "7|");
    EXPECT_EQ(Parts("12"), "12|");
    EXPECT_EQ(Parts(""), "0|");
}

TEST(CosmeticText, CharactersOfAnyScriptAreCountedAsTheSystemCounts) {
    EXPECT_EQ(Parts("7切歯зуб"), "7|зуб");
    EXPECT_EQ(Parts("7🦷зуб"), "7|зуб") << "a character beyond the basic plane counts for two";
}

TEST(CosmeticText, TheNameIsNotTrimmed) { EXPECT_EQ(Parts("007 a "), "7| a "); }

/// The deletion itself, without what a placed image swallows.
class CosmeticDeletion : public WithDatabase {
protected:
    CosmeticDeletion() {
        Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (7, '" + folder.Path().string() + "', 0)");
        std::ofstream(file) << "x";
    }

    Long NumberOf(const String& parameter) {
        return FailureOf([&] { CosmeticFile::Named(parameter).DeleteIfPresent(con); }).Number;
    }

    const std::filesystem::path file = folder.Path() / "a.dcm";
};

TEST_F(CosmeticDeletion, DeletesTheFileOnce) {
    EXPECT_EQ(NumberOf("007a.dcm"), 0);
    EXPECT_FALSE(exists(file));
    EXPECT_EQ(NumberOf("007a.dcm"), 0) << "a missing file is not a failure";
}

TEST_F(CosmeticDeletion, AReadOnlyFileRaises) {
    permissions(file, std::filesystem::perms::owner_read);
    EXPECT_EQ(NumberOf("007a.dcm"), err::PermissionDenied);
    EXPECT_TRUE(exists(file));
}

TEST_F(CosmeticDeletion, ARootWithoutADirectoryRaises) {
    Run("UPDATE Root_T SET RootDirectory=NULL");
    EXPECT_EQ(NumberOf("007a.dcm"), err::InvalidNull);
}

TEST_F(CosmeticDeletion, AMissingRootDoesNothing) {
    EXPECT_EQ(NumberOf("008a.dcm"), 0);
    EXPECT_TRUE(exists(file));
}

TEST_F(CosmeticDeletion, AMissingTableRaises) {
    Run("DROP TABLE Root_T");
    EXPECT_EQ(NumberOf("007a.dcm"), static_cast<Long>(0x80040E37));
}

TEST_F(CosmeticDeletion, ADirectoryThatChangedIsSeenAtOnce) {
    Run("UPDATE Root_T SET RootDirectory='/nowhere'");
    EXPECT_EQ(NumberOf("007a.dcm"), 0);
    EXPECT_TRUE(exists(file));
    Run("UPDATE Root_T SET RootDirectory='" + folder.Path().string() + "'");
    EXPECT_EQ(NumberOf("007a.dcm"), 0);
    EXPECT_FALSE(exists(file));
}

}  // namespace
}  // namespace OXClass

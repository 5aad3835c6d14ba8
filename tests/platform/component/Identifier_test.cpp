#include "platform/component/binary/Identifier.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using namespace Platform;

const std::string digits = "0123abCD-89ef-FEDC-8f00-00102030aBFf";

TEST(Identifier, IsReadDigitByDigit) {
    const GUID guid = GuidOf(digits);
    EXPECT_EQ(guid.Data1, 0x0123ABCDU);
    EXPECT_EQ(guid.Data2, 0x89EF);
    EXPECT_EQ(guid.Data3, 0xFEDC);
    const std::uint8_t last[] = {0x8F, 0x00, 0x00, 0x10, 0x20, 0x30, 0xAB, 0xFF};
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(guid.Data4[i], last[i]) << i;
}

TEST(Identifier, IsTheSameInUpperAndLowerCase) {
    EXPECT_TRUE(Same(GuidOf("ABCDEF00-ABCD-ABCD-ABCD-ABCDEFABCDEF"), GuidOf("abcdef00-abcd-abcd-abcd-abcdefabcdef")));
    EXPECT_TRUE(Same(GuidOf("00000000-0000-0000-0000-000000000000"), IID_NULL));
}

TEST(Identifier, DiffersInEachDigit) {
    const GUID guid = GuidOf(digits);
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i] == '-') continue;
        std::string other = digits;
        other[i] = other[i] == '5' ? '6' : '5';
        EXPECT_FALSE(Same(guid, GuidOf(other))) << i;
    }
}

TEST(Identifier, HasOneForm) {
    EXPECT_TRUE(IsGuid(digits));
    EXPECT_FALSE(IsGuid(""));
    EXPECT_FALSE(IsGuid(digits + "0"));
    EXPECT_FALSE(IsGuid(digits + '\0'));
    EXPECT_FALSE(IsGuid(digits.substr(1)));
    EXPECT_FALSE(IsGuid("{" + digits + "}"));
    EXPECT_FALSE(IsGuid(std::string(36, '-')));
    EXPECT_FALSE(IsGuid(std::string(36, '0')));
    EXPECT_FALSE(IsGuid(std::string(36, '\0')));
}

TEST(Identifier, HasDigitsAndStrokesInTheirPlaces) {
    for (std::size_t i = 0; i < digits.size(); ++i)
        for (const char wrong : {'g', 'G', '/', ':', '@', '`', ' ', '\0', '\xE4', digits[i] == '-' ? '0' : '-'}) {
            std::string other = digits;
            other[i] = wrong;
            EXPECT_FALSE(IsGuid(other)) << other;
        }
}

TEST(Identifier, TakesEachHexadecimalDigit) {
    for (const char digit : std::string("0123456789abcdefABCDEF")) {
        std::string other = digits;
        other[0] = digit;
        EXPECT_TRUE(IsGuid(other)) << digit;
    }
}

}  // namespace

#include "console/dicom/DicomText.h"

#include <gtest/gtest.h>

namespace Console {
namespace {

std::string Decoded(const char* set, const std::string& bytes) { return TextDecoder(set).Decode(bytes); }

TEST(DicomText, PlainTextIsUnchanged) {
    for (const char* set : {"", "ISO_IR 100", "ISO_IR 192", "\\ISO 2022 IR 87", "GB18030", "nonsense"})
        EXPECT_EQ(Decoded(set, "Test^Plain"), "Test^Plain") << set;
    EXPECT_EQ(Decoded("ISO_IR 100", ""), "");
}

TEST(DicomText, ReadsSingleByteSets) {
    EXPECT_EQ(Decoded("ISO_IR 100", "Buc^J\xE9r\xF4me"), "Buc^Jérôme");
    EXPECT_EQ(Decoded("ISO_IR 101",
                      "W\xB3"
                      "adys\xB3"
                      "aw"),
              "Władysław");
    EXPECT_EQ(Decoded("ISO_IR 126", "\xC4\xE9\xEF\xED\xF5\xF3\xE9\xEF\xF2"), "Διονυσιος");
    EXPECT_EQ(Decoded("ISO_IR 144",
                      "\xBB\xEE\xDA"
                      "ce\xDC\xD1yp\xD3"),
              "Люкceмбypг");
    EXPECT_EQ(Decoded("ISO_IR 148", "\xC7\x61vu\xFEo\xF0lu"), "Çavuşoğlu");
    EXPECT_EQ(Decoded("ISO_IR 13", "\xD4\xCF\xC0\xDE^\xC0\xDB\xB3"), "ﾔﾏﾀﾞ^ﾀﾛｳ");
}

TEST(DicomText, ReadsMultiByteSets) {
    EXPECT_EQ(Decoded("ISO_IR 192", "Wang^XiaoDong=王^小東"), "Wang^XiaoDong=王^小東");
    EXPECT_EQ(Decoded("GB18030", "Wang^XiaoDong=\xCD\xF5^\xD0\xA1\xB6\xAB"), "Wang^XiaoDong=王^小东");
}

TEST(DicomText, ReadsJapaneseCodeExtensions) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87",
                      "Yamada^Tarou=\x1b$B;3ED\x1b(B^\x1b$BB@O:\x1b(B=\x1b$B$d$^$@\x1b(B^\x1b$B$?$m$&\x1b(B"),
              "Yamada^Tarou=山田^太郎=やまだ^たろう");
    EXPECT_EQ(
        Decoded("ISO 2022 IR 13\\ISO 2022 IR 87", "\xD4\xCF\xC0\xDE^\xC0\xDB\xB3=\x1b$B;3ED\x1b(J^\x1b$BB@O:\x1b(J"),
        "ﾔﾏﾀﾞ^ﾀﾛｳ=山田^太郎");
}

TEST(DicomText, ReadsKoreanAndChineseCodeExtensions) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 149", "Hong^Gildong=\x1b$)C\xFB\xF3^\x1b$)C\xD1\xCE\xD4\xD7"),
              "Hong^Gildong=洪^吉洞");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 58", "Zhang=\x1b$)A\xD5\xC5"), "Zhang=张");
}

TEST(DicomText, AnExtensionEndsAtTheNextDelimiter) {
    EXPECT_EQ(Decoded("ISO 2022 IR 100\\ISO 2022 IR 126", "J\xE9r\xF4me=\x1b-F\xC4\xE9\xEF=\xE9"), "Jérôme=Διο=é");
}

TEST(DicomText, ReadsMisspelledNamesOfSets) {
    EXPECT_EQ(Decoded("ISO-IR 126", "\xC4"), "Δ");
    EXPECT_EQ(Decoded("ISO IR 144 ", "\xBB"), "Л");
}

TEST(DicomText, WithoutASetBytesAreUtf8OrLatin1) {
    EXPECT_EQ(Decoded("", "Müller"), "Müller");
    EXPECT_EQ(Decoded("", "M\xFCller"), "Müller");
    EXPECT_EQ(Decoded("ISO_IR 192", "M\xFCller"), "Müller") << "bytes that do not follow the stated set";
    EXPECT_EQ(Decoded("ISO_IR 126", "\xC4\xFF"), "Äÿ") << "Greek has no sign for the second byte";
}

TEST(DicomText, UnknownOrCutEscapesLoseNothing) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", "a\x1b"), "a\x1b");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", "a\x1b%Gb"), "a\x1b%Gb");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", "a\x1b$B;"), "a\x1b$B;") << "half a character";
}

TEST(DicomText, ResultIsAlwaysUtf8) {
    EXPECT_EQ(Decoded("", "\xED\xA0\x80"), "í\u00A0\u0080") << "a lone surrogate is not UTF-8";
    EXPECT_EQ(Decoded("", "\xC0\xAF"), "À¯") << "nor is an overlong form";
    EXPECT_EQ(Decoded("", "\xE0\x80\xAF"), "à\u0080¯");
    EXPECT_EQ(Decoded("", "\xF4\x90\x80\x80"), "ô\u0090\u0080\u0080") << "nor a sign beyond the last";
    EXPECT_EQ(Decoded("", "\xE4\xB8"), "ä¸") << "nor half a sign";
}

}  // namespace
}  // namespace Console

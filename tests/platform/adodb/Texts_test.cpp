#include "kit/Database.h"

/// Texts are equal, and sorted, in the same way on every engine: by the numbers of their characters. The columns for
/// names that people type ignore the case of A to Z in addition, and of no other letter.
namespace {

using namespace Platform;

class Texts : public TestKit::WithDatabase {
protected:
    void Store(const std::vector<String>& texts) {
        for (const String& text : texts)
            Run(String("INSERT INTO Clinic_T (ClinicName, City) VALUES ('").append(text) + "', '" + text + "')");
    }
    /// Returns the texts of a column that are equal to this one.
    String Equal(const String& column, const String& text) {
        return AskAll("SELECT City FROM Clinic_T WHERE " + column + "='" + text + "' ORDER BY ClinicID");
    }
};

TEST_F(Texts, AreStoredUnchanged) {
    const std::vector<String> all{"Åsa Öberg", "Ελένη Ωνάση", "Iğdır İpek ışık", "日本", "😀", "a\\b",
                                  "",          "  x  ",       "100%_?"};
    Store(all);
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(Ask("SELECT City FROM Clinic_T WHERE ClinicID=" + CStr(static_cast<Long>(i + 1))), Variant(all[i]));
}

TEST_F(Texts, OfAPlainColumnAreEqualOnlyIfAllCharactersAre) {
    Store({"Ek", "ek", "EK", "Ek ", "Åsa", "åsa", "Asa", "ΩΣ", "ως", "ωσ", "I", "i", "İ", "ı", "ß", "ss"});
    for (const char* text : {"Ek", "ek", "Ek ", "Åsa", "åsa", "Asa", "ΩΣ", "ως", "ωσ", "I", "i", "İ", "ı", "ß", "ss"})
        EXPECT_EQ(Equal("City", text), text);
}

TEST_F(Texts, OfANameAreEqualWithoutTheCaseOfLatinLetters) {
    OXCLASS_ONLY_IF(TestKit::IgnoresCaseOfLatinLettersOnly());
    Store({"Ek", "eK", "Ek ", "Åsa", "åsa", "Asa", "ΩΣ", "ωσ", "I", "i", "İ", "ı"});
    EXPECT_EQ(Equal("ClinicName", "EK"), "Ek,eK");
    EXPECT_EQ(Equal("ClinicName", "ÅSA"), "Åsa") << "a letter outside of A to Z has its case";
    EXPECT_EQ(Equal("ClinicName", "ASA"), "Asa") << "an accent counts";
    EXPECT_EQ(Equal("ClinicName", "ΩΣ"), "ΩΣ");
    EXPECT_EQ(Equal("ClinicName", "i"), "I,i");
    EXPECT_EQ(Equal("ClinicName", "İ"), "İ");
    EXPECT_EQ(Equal("ClinicName", "ı"), "ı");
}

TEST_F(Texts, AreSortedByTheirCharacters) {
    OXCLASS_ONLY_IF(TestKit::IgnoresCaseOfLatinLettersOnly());
    Store({"ö", "z", "Z", "Å", "a", "Ω", "ı", "A", "日", "!", "ä", "😀", "å", "İ", "ω", "B"});
    EXPECT_EQ(AskAll("SELECT City FROM Clinic_T ORDER BY City"), "!,A,B,Z,a,z,Å,ä,å,ö,İ,ı,Ω,ω,日,😀");
    EXPECT_EQ(AskAll("SELECT City FROM Clinic_T ORDER BY ClinicName, ClinicID"), "!,a,A,B,z,Z,Å,ä,å,ö,İ,ı,Ω,ω,日,😀");
}

TEST_F(Texts, NullsAreSortedInFront) {
    Store({"b"});
    Run("INSERT INTO Clinic_T (ClinicName) VALUES ('null')");
    Store({"a"});
    EXPECT_EQ(AskAll("SELECT ClinicID FROM Clinic_T ORDER BY City"), "2,3,1");
    EXPECT_EQ(AskAll("SELECT ClinicID FROM Clinic_T ORDER BY City DESC"), "1,3,2");
}

TEST_F(Texts, APatternIgnoresTheCaseOfLatinLettersAndHasNoEscape) {
    OXCLASS_ONLY_IF(TestKit::IgnoresCaseOfLatinLettersOnly());
    Store({"Ek\\%", "ek", "Åk", "åk"});
    EXPECT_EQ(AskAll("SELECT City FROM Clinic_T WHERE City LIKE 'EK%' ORDER BY ClinicID"), "Ek\\%,ek");
    EXPECT_EQ(AskAll("SELECT City FROM Clinic_T WHERE City LIKE 'ek\\%' ORDER BY ClinicID"), "Ek\\%");
    EXPECT_EQ(AskAll("SELECT City FROM Clinic_T WHERE City LIKE 'å_' ORDER BY ClinicID"), "åk");
}

}  // namespace

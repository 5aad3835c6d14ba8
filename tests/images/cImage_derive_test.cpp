#include "images/cImage.h"
#include "kit/Database.h"
#include "kit/Random.h"

/// The side, the jaw and the region of the jaw that follow from an image's tooth string.
namespace OXClass {
namespace {

using namespace TestKit;

/// The image of these teeth with the three fields derived from them.
Ref<cImage> Derived(const String& teeth, const String& before = {}) {
    const Ref<cImage> image = New<cImage>();
    image->sTeeth = teeth;
    image->Laterality = image->AnaRegion = image->AnaRegionMod = before;
    image->DeriveLaterality();
    image->DeriveAnaRegion();
    image->DeriveAnaRegionMod();
    return image;
}

String LateralityOf(const String& teeth) { return Derived(teeth)->Laterality; }
String RegionOf(const String& teeth) { return Derived(teeth)->AnaRegion; }
String ModifierOf(const String& teeth) { return Derived(teeth)->AnaRegionMod; }

// ---- side and jaw -----------------------------------------------------------------------------------

TEST(DeriveLaterality, EachQuadrantHasItsSide) {
    for (const int quadrant : {1, 4, 5, 8})
        for (int place = 1; place <= 8; ++place)
            EXPECT_EQ(LateralityOf(CStr(quadrant * 10 + place) + ","), "R") << quadrant << place;
    for (const int quadrant : {2, 3, 6, 7})
        for (int place = 1; place <= 8; ++place)
            EXPECT_EQ(LateralityOf(CStr(quadrant * 10 + place) + ","), "L") << quadrant << place;
}

TEST(DeriveLaterality, BothSidesReturnB) {
    EXPECT_EQ(LateralityOf("11,21,"), "B");
    EXPECT_EQ(LateralityOf("31,41,"), "B");
    EXPECT_EQ(LateralityOf("55,65,"), "B");
    EXPECT_EQ(LateralityOf("16,26,"), "B");
}

TEST(DeriveAnaRegion, EachQuadrantHasItsJaw) {
    for (const int quadrant : {1, 2, 5, 6})
        for (int place = 1; place <= 8; ++place)
            EXPECT_EQ(RegionOf(CStr(quadrant * 10 + place) + ","), "T-11170") << quadrant << place;
    for (const int quadrant : {3, 4, 7, 8})
        for (int place = 1; place <= 8; ++place)
            EXPECT_EQ(RegionOf(CStr(quadrant * 10 + place) + ","), "T-11180") << quadrant << place;
}

TEST(DeriveAnaRegion, BothJawsReturnTheirCode) {
    EXPECT_EQ(RegionOf("16,46,"), "T-D1213");
    EXPECT_EQ(RegionOf("25,35,"), "T-D1213");
    EXPECT_EQ(RegionOf("51,81,"), "T-D1213");
}

// ---- the region modifier ----------------------------------------------------------------------------

TEST(DeriveAnaRegionMod, MolarsWithoutLateralIncisorsAreB) {
    for (const char* tooth : {"16", "17", "18", "26", "27", "28", "36", "37", "38", "46", "47", "48"})
        EXPECT_EQ(ModifierOf(String(tooth) + ","), "T-5100B") << tooth;
    EXPECT_EQ(ModifierOf("13,16,"), "T-5100B");
    EXPECT_EQ(ModifierOf("11,16,"), "T-5100B");
}

TEST(DeriveAnaRegionMod, MolarsWithLateralIncisorsAndWithoutCaninesAreC) {
    for (const char* incisor : {"12", "22", "32", "42"})
        EXPECT_EQ(ModifierOf("18," + String(incisor) + ","), "T-5100C") << incisor;
}

TEST(DeriveAnaRegionMod, MolarsWithLateralIncisorsAndCaninesFallThrough) {
    for (const char* canine : {"13", "23", "33", "43"})
        EXPECT_EQ(ModifierOf("17,12," + String(canine) + ","), "T-51007") << canine;
}

TEST(DeriveAnaRegionMod, PremolarsAre9) {
    for (const char* tooth : {"14", "15", "24", "25", "34", "35", "44", "45"})
        EXPECT_EQ(ModifierOf(String(tooth) + ","), "T-51009") << tooth;
    EXPECT_EQ(ModifierOf("13,14,"), "T-51009");
    EXPECT_EQ(ModifierOf("11,14,"), "T-51009");
}

TEST(DeriveAnaRegionMod, PremolarsWithLateralIncisorsAre8) {
    for (const char* incisor : {"12", "22", "32", "42"})
        EXPECT_EQ(ModifierOf("14," + String(incisor) + ","), "T-51008") << incisor;
    EXPECT_EQ(ModifierOf("12,13,45,"), "T-51008");
    EXPECT_EQ(ModifierOf("12,13,18,45,"), "T-51008") << "a wisdom tooth keeps 9 away, and not 8";
}

TEST(DeriveAnaRegionMod, PremolarsWithLateralIncisorsAndSecondMolarsAreNot8) {
    for (const char* molar : {"17", "27", "37", "47"})
        EXPECT_EQ(ModifierOf("12,13,14," + String(molar) + ","), "T-51007") << molar;
}

TEST(DeriveAnaRegionMod, CaninesAre7) {
    for (const char* tooth : {"13", "23", "33", "43"}) EXPECT_EQ(ModifierOf(String(tooth) + ","), "T-51007") << tooth;
    EXPECT_EQ(ModifierOf("12,13,"), "T-51007");
}

TEST(DeriveAnaRegionMod, CaninesWithCentralIncisorsAre5) {
    for (const char* incisor : {"11", "21", "31", "41"})
        EXPECT_EQ(ModifierOf("13," + String(incisor) + ","), "T-51005") << incisor;
}

TEST(DeriveAnaRegionMod, CentralIncisorsAre5AheadOfLateralOnes) {
    for (const char* tooth : {"11", "21", "31", "41"}) EXPECT_EQ(ModifierOf(String(tooth) + ","), "T-51005") << tooth;
    EXPECT_EQ(ModifierOf("11,12,"), "T-51005");
    EXPECT_EQ(ModifierOf("11,12,15,"), "T-51005") << "second premolars keep 6 away, and not 5";
}

TEST(DeriveAnaRegionMod, LateralIncisorsAre6) {
    for (const char* tooth : {"12", "22", "32", "42"}) EXPECT_EQ(ModifierOf(String(tooth) + ","), "T-51006") << tooth;
    for (const char* premolar : {"14", "24", "34", "44"})
        EXPECT_EQ(ModifierOf("11,12," + String(premolar) + ","), "T-51006") << premolar;
}

TEST(DeriveAnaRegionMod, TeethWithoutARuleLeaveTheModifierUnchanged) {
    for (const char* premolar : {"15", "25", "35", "45"})
        EXPECT_EQ(Derived("11,12,14," + String(premolar) + ",", "before")->AnaRegionMod, "before") << premolar;
}

TEST(DeriveAnaRegionMod, PrimaryTeethDoNotCount) {
    for (const char* teeth : {"51,52,", "54,55,", "63,", "74,75,", "81,82,83,84,85,"})
        EXPECT_EQ(Derived(teeth, "before")->AnaRegionMod, "before") << teeth;
}

// ---- how a tooth string is read -----------------------------------------------------------------------

TEST(DeriveFromTeeth, AnEmptyStringChangesNothing) {
    const Ref<cImage> image = Derived("", "before");
    EXPECT_EQ(image->Laterality, "before");
    EXPECT_EQ(image->AnaRegion, "before");
    EXPECT_EQ(image->AnaRegionMod, "before");
}

TEST(DeriveFromTeeth, NumbersThatAreNotTeethChangeNothing) {
    for (const char* teeth : {"10,19,20,29,30,39,40,49,50,59,60,69,70,79,80,", "89,90,99,", "1,1,2,6,", "abc", " "}) {
        const Ref<cImage> image = Derived(teeth, "before");
        EXPECT_EQ(image->Laterality, "before") << teeth;
        EXPECT_EQ(image->AnaRegion, "before") << teeth;
        EXPECT_EQ(image->AnaRegionMod, "before") << teeth;
    }
}

TEST(DeriveFromTeeth, DigitsWithoutSeparatorsCountAsEachPair) {
    EXPECT_EQ(LateralityOf("112"), "R") << "11 and 12";
    EXPECT_EQ(ModifierOf("112"), "T-51005");
    EXPECT_EQ(ModifierOf("112"), ModifierOf("11,12,"));
    EXPECT_EQ(LateralityOf("131"), "B") << "13 and 31";
    EXPECT_EQ(RegionOf("131"), "T-D1213");
    EXPECT_EQ(LateralityOf("1617"), "B") << "16, 61 and 17";
}

TEST(DeriveFromTeeth, SeparatorsAreOptionalAndMayBeAnyCharacter) {
    EXPECT_EQ(LateralityOf("teeth 16; 17/18"), "R");
    EXPECT_EQ(ModifierOf("teeth 16; 17/18"), "T-5100B");
}

TEST(DeriveFromTeeth, ReplacesTheOldValue) {
    const Ref<cImage> image = Derived("26,27,", "before");
    EXPECT_EQ(image->Laterality, "L");
    EXPECT_EQ(image->AnaRegion, "T-11170");
    EXPECT_EQ(image->AnaRegionMod, "T-5100B");
}

// ---- against a slow model -----------------------------------------------------------------------------

/// True where the decimal text of one of the numbers occurs in the text.
bool Some(const String& text, std::initializer_list<int> numbers) {
    for (const int number : numbers)
        if (text.find(std::to_string(number)) != String::npos) return true;
    return false;
}

String ModelOfModifier(const String& t) {
    if (Some(t, {16, 17, 18, 26, 27, 28, 36, 37, 38, 46, 47, 48}) && !Some(t, {12, 22, 32, 42})) return "T-5100B";
    if (Some(t, {16, 17, 18, 26, 27, 28, 36, 37, 38, 46, 47, 48}) && !Some(t, {13, 23, 33, 43})) return "T-5100C";
    if (Some(t, {16, 17, 26, 27, 36, 37, 46, 47}) && !Some(t, {12, 22, 32, 42})) return "T-5100A";
    if (Some(t, {14, 15, 16, 24, 25, 26, 34, 35, 36, 44, 45, 46}) && !Some(t, {12, 22, 32, 42, 18, 28, 38, 48}))
        return "T-51009";
    if (Some(t, {14, 15, 24, 25, 34, 35, 44, 45}) && !Some(t, {17, 27, 37, 47, 11, 21, 31, 41})) return "T-51008";
    if (Some(t, {13, 23, 33, 43}) && !Some(t, {15, 25, 35, 45, 11, 21, 31, 41})) return "T-51007";
    if (Some(t, {11, 21, 31, 41}) && !Some(t, {14, 24, 34, 44})) return "T-51005";
    if (Some(t, {12, 22, 32, 42}) && !Some(t, {15, 25, 35, 45})) return "T-51006";
    return "";
}

TEST(DeriveAnaRegionMod, AgreesWithTheTableOnRandomTeeth) {
    Random random;
    for (int round = 0; round < 5'000; ++round) {
        String teeth;
        for (int left = random.Below(7); left > 0; --left)
            teeth += std::to_string((random.Below(4) + 1) * 10 + random.Below(8) + 1) + (random.OneIn(20) ? "" : ",");
        EXPECT_EQ(ModifierOf(teeth), ModelOfModifier(teeth)) << teeth;
        EXPECT_NE(ModifierOf(teeth), "T-5100A") << "the first rule takes all that would give it: " << teeth;
    }
}

}  // namespace
}  // namespace OXClass

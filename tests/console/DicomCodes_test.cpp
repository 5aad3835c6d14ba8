#include "console/dicom/DicomCodes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

namespace Console {
namespace {

/// Every code met for each tooth, the current one first, copied from the standard's tables once more.
const std::map<int, std::vector<std::string>> CodesOfTeeth{
    {11, {"422653006", "22120004", "T-54280", "T-54282"}},
    {12, {"424877001", "11712009", "T-54270", "T-54272"}},
    {13, {"860767006", "80647007", "T-54260"}},
    {14, {"57826002", "T-54250"}},
    {15, {"36492000", "T-54240"}},
    {16, {"865995000", "5140004", "T-54230"}},
    {17, {"863902006", "7121006", "T-54220"}},
    {18, {"68085002", "T-54210"}},
    {21, {"424399000", "31982000", "T-54290", "T-54292"}},
    {22, {"423185002", "25748002", "T-54300", "T-54302"}},
    {23, {"860780009", "72876007", "T-54310"}},
    {24, {"61897005", "T-54320"}},
    {25, {"23226009", "T-54330"}},
    {26, {"865988009", "23427002", "T-54340"}},
    {27, {"863901004", "66303006", "T-54350"}},
    {28, {"87704003", "T-54360"}},
    {31, {"425106001", "113278005", "T-54440", "T-54442"}},
    {32, {"423331005", "77130001", "T-54430", "T-54432"}},
    {33, {"860782001", "39844006", "T-54420"}},
    {34, {"2400006", "T-54410"}},
    {35, {"24573005", "T-54400"}},
    {36, {"866006002", "89625000", "T-54390"}},
    {37, {"863898000", "48402004", "T-54380"}},
    {38, {"74344005", "T-54370"}},
    {41, {"424575004", "15422005", "T-54450", "T-54452"}},
    {42, {"423937004", "82628004", "T-54460", "T-54462"}},
    {43, {"860785004", "47055002", "T-54470"}},
    {44, {"80140008", "T-54480"}},
    {45, {"8873007", "T-54490"}},
    {46, {"866005003", "28480000", "T-54500"}},
    {47, {"863899008", "40005008", "T-54510"}},
    {48, {"38994002", "T-54520"}},
    {51, {"88824007", "245620002", "T-54610", "T-54611"}},
    {52, {"65624003", "245619008", "T-54620", "T-54621"}},
    {53, {"30618001", "T-54630"}},
    {54, {"17505006", "245616001", "T-54640", "T-54641"}},
    {55, {"27855007", "T-54650"}},
    {61, {"51678005", "T-54660"}},
    {62, {"43622005", "T-54670"}},
    {63, {"73937000", "T-54680"}},
    {64, {"45234009", "T-54690"}},
    {65, {"51943008", "T-54700"}},
    {71, {"89552004", "T-54760"}},
    {72, {"14770005", "T-54770"}},
    {73, {"43281008", "245639007", "T-54780", "T-54781"}},
    {74, {"38896004", "T-54790"}},
    {75, {"49330006", "T-54800"}},
    {81, {"67834006", "T-54710"}},
    {82, {"22445006", "T-54720"}},
    {83, {"6062009", "T-54730"}},
    {84, {"58646007", "245631005", "T-54740", "T-54741"}},
    {85, {"61868007", "T-54750"}},
};

TEST(DicomCodes, KnowsEveryCodeOfEveryTooth) {
    ASSERT_EQ(CodesOfTeeth.size(), 52u);
    for (const auto& [tooth, codes] : CodesOfTeeth) {
        for (const std::string& code : codes) EXPECT_EQ(ToothOfCode(code), tooth) << code;
    }
}

/// The codes of the region modifiers by the one that images carry: the current one, and those of SRT.
const std::map<std::string, std::vector<std::string>> CodesOfModifiers{
    {"T-51005", {"699453001", "T-51005"}}, {"T-51006", {"699511000", "T-51006"}},
    {"T-51007", {"699510004", "T-51007"}}, {"T-51008", {"699509009", "T-51008"}},
    {"T-51009", {"699508001", "T-51009"}}, {"T-5100A", {"699507006", "T-5100A"}},
    {"T-5100B", {"699505003", "T-5100B"}}, {"T-5100C", {"699503005", "T-5100C"}},
    {"T-5100D", {"260499007", "T-5100D"}}};

TEST(DicomCodes, The161CodesOfTheToothTablesAreKnownAndDiffer) {
    std::map<std::string, std::string> seen;
    for (const auto& [tooth, codes] : CodesOfTeeth) {
        for (const std::string& code : codes) EXPECT_TRUE(seen.emplace(code, std::to_string(tooth)).second) << code;
    }
    EXPECT_EQ(seen.size(), 142u);
    for (const auto& [modifier, codes] : CodesOfModifiers) {
        for (const std::string& code : codes) {
            EXPECT_EQ(RegionModifierOfCode(code), modifier) << code;
            EXPECT_TRUE(seen.emplace(code, modifier).second) << code;
        }
    }
    EXPECT_EQ(RegionOfCode("T-54000"), "T-54000");
    EXPECT_TRUE(seen.emplace("T-54000", "").second);
    EXPECT_EQ(seen.size(), 161u);
}

TEST(DicomCodes, OtherCodesAreNotTeeth) {
    for (const char* code : {"", "11", "T-", "38199008", "T-11170", "661005", "422653006 "})
        EXPECT_EQ(ToothOfCode(code), 0) << code;
}

TEST(DicomCodes, AllTeethAreListedQuadrantByQuadrant) {
    std::vector<int> expected;
    for (const auto& entry : CodesOfTeeth) expected.push_back(entry.first);
    EXPECT_TRUE(std::ranges::equal(AllTeeth, expected));
}

TEST(DicomCodes, ReturnsTheCodeOfTheRequestedGeneration) {
    EXPECT_EQ(CodeOfTooth(11).value, "422653006");
    EXPECT_EQ(CodeOfTooth(11).scheme, "SCT");
    EXPECT_EQ(CodeOfTooth(11, CodeGeneration::Previous).value, "22120004");
    EXPECT_EQ(CodeOfTooth(11, CodeGeneration::Srt).value, "T-54280");
    EXPECT_EQ(CodeOfTooth(51, CodeGeneration::Srt).value, "T-54610");
    EXPECT_EQ(CodeOfTooth(75, CodeGeneration::Srt).value, "T-54800");
    EXPECT_EQ(CodeOfTooth(11, CodeGeneration::Srt).scheme, "SRT");
    EXPECT_EQ(CodeOfTooth(18, CodeGeneration::Previous).value, "68085002") << "nothing changed here";
}

TEST(DicomCodes, EveryToothHasACurrentCodeThatIsReadBack) {
    for (const int tooth : AllTeeth) {
        EXPECT_EQ(CodeOfTooth(tooth).value, CodesOfTeeth.at(tooth).front());
        EXPECT_LE(CodeOfTooth(tooth).meaning.size(), 64u) << "longer than a code meaning may be";
    }
}

TEST(DicomCodes, NamesTeethInWords) {
    EXPECT_EQ(CodeOfTooth(16).meaning, "Permanent maxillary right first molar tooth");
    EXPECT_EQ(CodeOfTooth(35).meaning, "Permanent mandibular left second premolar tooth");
    EXPECT_EQ(CodeOfTooth(64).meaning, "Deciduous maxillary left first molar tooth");
    EXPECT_EQ(CodeOfTooth(81).meaning, "Deciduous mandibular right central incisor tooth");
}

TEST(DicomCodes, RejectsNumbersOfNoTooth) {
    EXPECT_THROW(CodeOfTooth(19), std::invalid_argument);
    EXPECT_THROW(CodeOfTooth(0), std::invalid_argument);
    EXPECT_THROW(CodeOfTooth(56), std::invalid_argument);
}

TEST(DicomCodes, ReadsRegionsOfAllGenerations) {
    const std::map<std::string, std::string> expected{{"70925003", "T-11170"},
                                                      {"T-11170", "T-11170"},
                                                      {"91609006", "T-11180"},
                                                      {"T-11180", "T-11180"},
                                                      {"661005", "T-D1213"},
                                                      {"T-D1213", "T-D1213"},
                                                      {"89546000", "T-11100"},
                                                      {"T-11100", "T-11100"},
                                                      {"T-D1217", "T-D1217"},
                                                      {"28035005", "T-54000"},
                                                      {"T-54000", "T-54000"},
                                                      {"T-54001", ""},
                                                      {"", ""}};
    for (const auto& [code, region] : expected) EXPECT_EQ(RegionOfCode(code), region) << code;
}

TEST(DicomCodes, ReadsTheLaterCodesOfRegionModifiersToo) {
    const std::map<std::string, std::string> later{
        {"R-FB322", "T-51005"}, {"R-FB35C", "T-51006"}, {"R-FB35B", "T-51007"},
        {"R-FB35A", "T-51008"}, {"R-FB359", "T-51009"}, {"R-FB358", "T-5100A"},
        {"R-FB356", "T-5100B"}, {"R-FB354", "T-5100C"}, {"R-40810", "T-5100D"}};
    for (const auto& [code, modifier] : later) EXPECT_EQ(RegionModifierOfCode(code), modifier) << code;
    for (const auto& [modifier, codes] : CodesOfModifiers)
        EXPECT_EQ(CodeOfRegionModifier(modifier).value, codes.front());
    EXPECT_EQ(RegionModifierOfCode("T-5100E"), "");
    EXPECT_EQ(RegionModifierOfCode(""), "");
    EXPECT_THROW(CodeOfRegionModifier("T-11170"), std::invalid_argument);
}

TEST(DicomCodes, StatesRegions) {
    EXPECT_EQ(CodeOfRegion("T-11100").value, "89546000");
    EXPECT_EQ(CodeOfRegion("T-11180").scheme, "SCT");
    EXPECT_EQ(CodeOfRegion("T-D1213", CodeGeneration::Srt).value, "T-D1213");
    EXPECT_EQ(CodeOfRegion("T-D1213", CodeGeneration::Srt).scheme, "SRT");
    EXPECT_EQ(CodeOfRegion("T-D1217").value, "T-D1217");
    EXPECT_EQ(CodeOfRegion("T-D1217").scheme, "SRT");
    EXPECT_THROW(CodeOfRegion("T-99999"), std::invalid_argument);
}

TEST(DicomCodes, AnatomyIsDescribedInWords) {
    EXPECT_EQ(AnatomyInWords("T-11170", "T-5100A", "L"), "Maxilla, first molar region, left");
    EXPECT_EQ(AnatomyInWords("T-11180", "", "R"), "Mandible, right");
    EXPECT_EQ(AnatomyInWords("", "T-5100D", "B"), "Occlusal projection, both sides");
    EXPECT_EQ(AnatomyInWords("", "", "L"), "Left");
    EXPECT_EQ(AnatomyInWords("T-99999", "", ""), "T-99999");
    EXPECT_EQ(AnatomyInWords("", "", ""), "");
}

TEST(DicomCodes, ReturnsJawAndSideOfEveryQuadrant) {
    EXPECT_TRUE(IsUpperTooth(11) && IsUpperTooth(28) && IsUpperTooth(51) && IsUpperTooth(65));
    EXPECT_FALSE(IsUpperTooth(31) || IsUpperTooth(48) || IsUpperTooth(71) || IsUpperTooth(85));
    EXPECT_TRUE(IsRightTooth(11) && IsRightTooth(48) && IsRightTooth(55) && IsRightTooth(81));
    EXPECT_FALSE(IsRightTooth(21) || IsRightTooth(38) || IsRightTooth(61) || IsRightTooth(75));
}

TEST(DicomCodes, ToothStringListsTeethInOrder) {
    EXPECT_EQ(ToothString({}), "");
    EXPECT_EQ(ToothString({48, 11, 85, 21}), "11,21,48,85,");
}

}  // namespace
}  // namespace Console

#include "frame/SuiteTypes.h"

#include "kit/Database.h"

#include <algorithm>

/// The types that the programs of the suite share: every number of their layout.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

template <class E>
std::vector<String> ValuesOf() {
    std::vector<String> values;
    for (const EnumerationValue& value : EnumerationOf<E>::Values)
        values.push_back(String(value.Name) + " " + CStr(value.Value));
    return values;
}

/// Returns the offset of a field in its record.
template <class Record, class Field>
std::ptrdiff_t OffsetOf(const Record& record, const Field& field) {
    return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&record);
}

TEST(SuiteTypes, RequestsHaveTheirNamesAndNumbers) {
    EXPECT_STREQ(EnumerationOf<gtFuncs>::Name, "gtFuncs");
    EXPECT_THAT(ValuesOf<gtFuncs>(),
                ElementsAre("gtMWLQuery 0", "gtGetRespPerson 1", "gtShowObject 2", "gtGetSessionInfo 3"));
    EXPECT_EQ(Long{gtMWLQuery}, 0);
    EXPECT_EQ(Long{gtGetRespPerson}, 1);
    EXPECT_EQ(Long{gtShowObject}, 2);
    EXPECT_EQ(Long{gtGetSessionInfo}, 3);
    EXPECT_EQ(sizeof(gtFuncs), 4U);
}

TEST(SuiteTypes, GroupsOfCodesHaveTheirNamesAndNumbers) {
    EXPECT_STREQ(EnumerationOf<CIDTypes>::Name, "CIDTypes");
    EXPECT_THAT(ValuesOf<CIDTypes>(), ElementsAre("cidtRegionIO 0", "cidtRegionDX 1", "cidtModifierIO 2",
                                                  "cidtModifierDX 3", "cidtOther 999"));
    EXPECT_EQ(Long{cidtRegionIO}, 0);
    EXPECT_EQ(Long{cidtRegionDX}, 1);
    EXPECT_EQ(Long{cidtModifierIO}, 2);
    EXPECT_EQ(Long{cidtModifierDX}, 3);
    EXPECT_EQ(Long{cidtOther}, 999);
    EXPECT_EQ(sizeof(CIDTypes), 4U);
}

TEST(SuiteTypes, TextsHaveExactlyTheirNumberOfBytes) {
    EXPECT_EQ(sizeof(xigString64), 64U);
    EXPECT_EQ(sizeof(xigString256), 256U);
    EXPECT_EQ(sizeof(xigString1024), 1024U);
    EXPECT_EQ(sizeof(xigString20K), 20001U);
    EXPECT_EQ(xigString64().str.size(), 64U);
    EXPECT_EQ(xigString256().str.size(), 256U);
    EXPECT_EQ(xigString1024().str.size(), 1024U);
    EXPECT_EQ(xigString20K().str.size(), 20001U);
}

template <class Text>
void ExpectFirstByteAtZero() {
    Text text;
    EXPECT_EQ(OffsetOf(text, text.str[0]), 0);
    EXPECT_EQ(sizeof(text.str[0]), 1U);
    text.str[0] = 0xFF;
    EXPECT_EQ(*reinterpret_cast<const unsigned char*>(&text), 0xFF);
}

TEST(SuiteTypes, TextsCountTheirBytesFromZero) {
    ExpectFirstByteAtZero<xigString64>();
    ExpectFirstByteAtZero<xigString256>();
    ExpectFirstByteAtZero<xigString1024>();
    ExpectFirstByteAtZero<xigString20K>();
}

template <class Text>
bool IsAllZero() {
    alignas(Text) std::array<unsigned char, sizeof(Text)> memory;
    memory.fill(0xAA);
    const Text* text = new (memory.data()) Text;
    return std::all_of(text->str.begin(), text->str.end(), [](auto byte) { return byte == 0; });
}

TEST(SuiteTypes, TextsStartAsZeros) {
    EXPECT_TRUE(IsAllZero<xigString64>());
    EXPECT_TRUE(IsAllZero<xigString256>());
    EXPECT_TRUE(IsAllZero<xigString1024>());
    EXPECT_TRUE(IsAllZero<xigString20K>());
}

class SharedBlock : public ::testing::Test {
protected:
    template <class Field>
    std::ptrdiff_t At(Field GeneralType::*field) const {
        return OffsetOf(*block, (*block).*field);
    }
    const std::unique_ptr<GeneralType> block = std::make_unique<GeneralType>();
};

TEST_F(SharedBlock, HasItsNumbersInOrder) {
    EXPECT_EQ(At(&GeneralType::dwSize), 0);
    EXPECT_EQ(At(&GeneralType::lFunc), 4);
    EXPECT_EQ(At(&GeneralType::l1), 8);
    EXPECT_EQ(At(&GeneralType::l2), 12);
    EXPECT_EQ(At(&GeneralType::l3), 16);
    EXPECT_EQ(At(&GeneralType::l4), 20);
    EXPECT_EQ(sizeof(block->dwSize), 4U);
    EXPECT_EQ(sizeof(block->l1), 4U);
}

TEST_F(SharedBlock, HasItsDoublesAfterTheNumbers) {
    EXPECT_EQ(At(&GeneralType::dbl1), 24);
    EXPECT_EQ(At(&GeneralType::dbl2), 32);
    EXPECT_EQ(At(&GeneralType::dbl3), 40);
    EXPECT_EQ(At(&GeneralType::dbl4), 48);
    EXPECT_EQ(sizeof(block->dbl1), 8U);
}

TEST_F(SharedBlock, HasItsDatesAfterTheDoubles) {
    EXPECT_EQ(At(&GeneralType::dte1), 56);
    EXPECT_EQ(At(&GeneralType::dte2), 64);
    EXPECT_EQ(At(&GeneralType::dte3), 72);
    EXPECT_EQ(At(&GeneralType::dte4), 80);
    EXPECT_EQ(sizeof(block->dte1), 8U);
}

TEST_F(SharedBlock, HasItsTextsAtTheEnd) {
    EXPECT_EQ(At(&GeneralType::s1_256), 88);
    EXPECT_EQ(At(&GeneralType::s2_256), 344);
    EXPECT_EQ(At(&GeneralType::s3_256), 600);
    EXPECT_EQ(At(&GeneralType::s4_256), 856);
    EXPECT_EQ(At(&GeneralType::s5_1024), 1112);
    EXPECT_EQ(At(&GeneralType::s6_1024), 2136);
    EXPECT_EQ(At(&GeneralType::s7_1024), 3160);
    EXPECT_EQ(At(&GeneralType::s8_1024), 4184);
    EXPECT_EQ(At(&GeneralType::s9_1024), 5208);
    EXPECT_EQ(At(&GeneralType::s10_20K), 6232);
    EXPECT_EQ(sizeof(block->s10_20K), 20001U);
}

TEST_F(SharedBlock, EndsWithItsLastTextAndThePaddingOfADouble) { EXPECT_EQ(sizeof(GeneralType), 26240U); }

TEST_F(SharedBlock, ADateIsItsCountOfDays) {
    block->dte2 = DateFrom({1900, 1, 1, 12, 0, 0});
    double days = 0;
    std::copy_n(reinterpret_cast<const char*>(block.get()) + 64, sizeof days, reinterpret_cast<char*>(&days));
    EXPECT_EQ(days, 2.5);
}

TEST_F(SharedBlock, StartsAsZerosButForItsPadding) {
    std::vector<unsigned char> memory(sizeof(GeneralType), 0xAA);
    new (memory.data()) GeneralType;
    const auto end = memory.begin() + 26233;
    EXPECT_EQ(std::find_if(memory.begin(), end, [](auto byte) { return byte != 0; }) - memory.begin(), 26233);
}

TEST(SuiteTypes, ACodedEntryIsThreeTextsInOrder) {
    const CID code;
    EXPECT_EQ(code.CIDSchemeDesignator + code.CIDValue + code.CIDMeaning, "");
    EXPECT_EQ(OffsetOf(code, code.CIDSchemeDesignator), 0);
    EXPECT_LT(OffsetOf(code, code.CIDSchemeDesignator), OffsetOf(code, code.CIDValue));
    EXPECT_LT(OffsetOf(code, code.CIDValue), OffsetOf(code, code.CIDMeaning));
}

TEST(SuiteTypes, ACodedEntryWithItsGroupHasTheSameTextsFirst) {
    const CIDExt code;
    EXPECT_EQ(code.CIDSchemeDesignator + code.CIDValue + code.CIDMeaning, "");
    EXPECT_EQ(code.CIDType, cidtRegionIO);
    EXPECT_FALSE(code.CIDDefault);
    EXPECT_EQ(OffsetOf(code, code.CIDSchemeDesignator), 0);
    EXPECT_LT(OffsetOf(code, code.CIDSchemeDesignator), OffsetOf(code, code.CIDValue));
    EXPECT_LT(OffsetOf(code, code.CIDValue), OffsetOf(code, code.CIDMeaning));
    EXPECT_LT(OffsetOf(code, code.CIDMeaning), OffsetOf(code, code.CIDType));
    EXPECT_LT(OffsetOf(code, code.CIDType), OffsetOf(code, code.CIDDefault));
}

}  // namespace
}  // namespace OXClass

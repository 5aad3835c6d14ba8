#include "anatomy/RegionCodes.h"
#include "console/dicom/DicomCodes.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace Console {
namespace {

namespace RegionCode = OXClass::RegionCode;

/// All codes of one tooth; an empty text where a generation has none of its own.
struct ToothCodes {
    int tooth;
    std::string_view current;
    std::string_view previous;
    std::string_view srt;
    std::string_view otherSrt;  ///< the SRT code of the other concept, where current and previous ones differ

    constexpr bool Has(std::string_view value) const {
        return value == current || value == previous || value == srt || value == otherSrt;
    }
};

constexpr std::array<ToothCodes, 52> Teeth{{
    {11, "422653006", "22120004", "T-54280", "T-54282"},
    {12, "424877001", "11712009", "T-54270", "T-54272"},
    {13, "860767006", "80647007", "T-54260", ""},
    {14, "57826002", "", "T-54250", ""},
    {15, "36492000", "", "T-54240", ""},
    {16, "865995000", "5140004", "T-54230", ""},
    {17, "863902006", "7121006", "T-54220", ""},
    {18, "68085002", "", "T-54210", ""},
    {21, "424399000", "31982000", "T-54290", "T-54292"},
    {22, "423185002", "25748002", "T-54300", "T-54302"},
    {23, "860780009", "72876007", "T-54310", ""},
    {24, "61897005", "", "T-54320", ""},
    {25, "23226009", "", "T-54330", ""},
    {26, "865988009", "23427002", "T-54340", ""},
    {27, "863901004", "66303006", "T-54350", ""},
    {28, "87704003", "", "T-54360", ""},
    {31, "425106001", "113278005", "T-54440", "T-54442"},
    {32, "423331005", "77130001", "T-54430", "T-54432"},
    {33, "860782001", "39844006", "T-54420", ""},
    {34, "2400006", "", "T-54410", ""},
    {35, "24573005", "", "T-54400", ""},
    {36, "866006002", "89625000", "T-54390", ""},
    {37, "863898000", "48402004", "T-54380", ""},
    {38, "74344005", "", "T-54370", ""},
    {41, "424575004", "15422005", "T-54450", "T-54452"},
    {42, "423937004", "82628004", "T-54460", "T-54462"},
    {43, "860785004", "47055002", "T-54470", ""},
    {44, "80140008", "", "T-54480", ""},
    {45, "8873007", "", "T-54490", ""},
    {46, "866005003", "28480000", "T-54500", ""},
    {47, "863899008", "40005008", "T-54510", ""},
    {48, "38994002", "", "T-54520", ""},
    {51, "88824007", "245620002", "T-54610", "T-54611"},
    {52, "65624003", "245619008", "T-54620", "T-54621"},
    {53, "30618001", "", "T-54630", ""},
    {54, "17505006", "245616001", "T-54640", "T-54641"},
    {55, "27855007", "", "T-54650", ""},
    {61, "51678005", "", "T-54660", ""},
    {62, "43622005", "", "T-54670", ""},
    {63, "73937000", "", "T-54680", ""},
    {64, "45234009", "", "T-54690", ""},
    {65, "51943008", "", "T-54700", ""},
    {71, "89552004", "", "T-54760", ""},
    {72, "14770005", "", "T-54770", ""},
    {73, "43281008", "245639007", "T-54780", "T-54781"},
    {74, "38896004", "", "T-54790", ""},
    {75, "49330006", "", "T-54800", ""},
    {81, "67834006", "", "T-54710", ""},
    {82, "22445006", "", "T-54720", ""},
    {83, "6062009", "", "T-54730", ""},
    {84, "58646007", "245631005", "T-54740", "T-54741"},
    {85, "61868007", "", "T-54750", ""},
}};

/// A region or a region modifier. The key is what the library's images carry, an SRT code.
struct AreaCodes {
    std::string_view key;
    std::string_view current;
    std::string_view meaning;
    std::string_view otherSrt{};  ///< SRT code of the current concept, where it is not the key

    constexpr bool Has(std::string_view value) const { return value == key || value == current || value == otherSrt; }
};

constexpr std::array<AreaCodes, 6> Regions{{
    {RegionCode::UpperJaw, "70925003", "Maxilla"},
    {RegionCode::LowerJaw, "91609006", "Mandible"},
    {RegionCode::BothJaws, "661005", "Jaw region"},
    {RegionCode::BothJawsOld, RegionCode::BothJawsOld, "Maxilla and mandible"},
    {RegionCode::Skull, "89546000", "Skull"},
    {RegionCode::Teeth, "28035005", "Teeth, gums and supporting structures"},
}};

constexpr std::array<AreaCodes, 9> Modifiers{{
    {RegionCode::CentralIncisor, "699453001", "Central incisor region", "R-FB322"},
    {RegionCode::LateralIncisor, "699511000", "Lateral incisor region", "R-FB35C"},
    {RegionCode::Canine, "699510004", "Canine region", "R-FB35B"},
    {RegionCode::FirstPremolar, "699509009", "First premolar region", "R-FB35A"},
    {RegionCode::SecondPremolar, "699508001", "Second premolar region", "R-FB359"},
    {RegionCode::FirstMolar, "699507006", "First molar region", "R-FB358"},
    {RegionCode::SecondMolar, "699505003", "Second molar region", "R-FB356"},
    {RegionCode::ThirdMolar, "699503005", "Third molar region", "R-FB354"},
    {RegionCode::Occlusal, "260499007", "Occlusal projection", "R-40810"},
}};

constexpr std::array<int, 52> NumbersOfTable() {
    std::array<int, 52> numbers{};
    for (std::size_t i = 0; i < Teeth.size(); ++i) numbers[i] = Teeth[i].tooth;
    return numbers;
}

/// Returns the entry that has the code `value`, or nullptr. An empty value would match the empty codes.
template <class Table>
auto Find(const Table& table, std::string_view value) -> const typename Table::value_type* {
    if (value.empty()) return nullptr;
    const auto hit = std::ranges::find_if(table, [&](const auto& entry) { return entry.Has(value); });
    return hit == table.end() ? nullptr : &*hit;
}

const AreaCodes& Area(const auto& table, std::string_view key, const char* kind) {
    const auto hit = std::ranges::find(table, key, &AreaCodes::key);
    if (hit == table.end()) throw std::invalid_argument(std::string(key) + " is not a " + kind);
    return *hit;
}

/// Returns the meaning of a code of the table; of another code the code itself.
std::string Meaning(const auto& table, std::string_view code) {
    const AreaCodes* entry = Find(table, code);
    return std::string(entry ? entry->meaning : code);
}

std::string SideInWords(std::string_view side) {
    if (side == "L") return "Left";
    if (side == "R") return "Right";
    return side == "B" ? "Both sides" : std::string(side);
}

const ToothCodes& Tooth(int tooth) {
    const auto hit = std::ranges::find(Teeth, tooth, &ToothCodes::tooth);
    if (hit == Teeth.end()) throw std::invalid_argument("there is no tooth " + std::to_string(tooth));
    return *hit;
}

bool IsRetired(std::string_view value) { return value.starts_with("T-"); }

DicomCode Coded(std::string_view value, std::string meaning) {
    return {std::string(value), IsRetired(value) ? "SRT" : "SCT", std::move(meaning)};
}

std::string KindOfTooth(int tooth) {
    constexpr std::array permanent{"central incisor", "lateral incisor", "canine",       "first premolar",
                                   "second premolar", "first molar",     "second molar", "third molar"};
    constexpr std::array deciduous{"central incisor", "lateral incisor", "canine", "first molar", "second molar"};
    const auto place = static_cast<std::size_t>(tooth % 10 - 1);
    return tooth > 50 ? deciduous[place] : permanent[place];
}

std::string MeaningOfTooth(int tooth) {
    return std::string(tooth > 50 ? "Deciduous " : "Permanent ") +
           (IsUpperTooth(tooth) ? "maxillary " : "mandibular ") + (IsRightTooth(tooth) ? "right " : "left ") +
           KindOfTooth(tooth) + " tooth";
}

}  // namespace

const std::array<int, 52> AllTeeth = NumbersOfTable();

int ToothOfCode(std::string_view value) {
    const ToothCodes* entry = Find(Teeth, value);
    return entry ? entry->tooth : 0;
}

std::string RegionOfCode(std::string_view value) {
    const AreaCodes* entry = Find(Regions, value);
    return entry ? std::string(entry->key) : std::string();
}

std::string RegionModifierOfCode(std::string_view value) {
    const AreaCodes* entry = Find(Modifiers, value);
    return entry ? std::string(entry->key) : std::string();
}

DicomCode CodeOfTooth(int tooth, CodeGeneration generation) {
    const ToothCodes& codes = Tooth(tooth);
    std::string_view value = codes.current;
    if (generation == CodeGeneration::Previous && !codes.previous.empty()) value = codes.previous;
    if (generation == CodeGeneration::Srt) value = codes.srt;
    return Coded(value, MeaningOfTooth(tooth));
}

DicomCode CodeOfRegion(std::string_view region, CodeGeneration generation) {
    const AreaCodes& area = Area(Regions, region, "region");
    const bool retired = generation == CodeGeneration::Srt;
    return Coded(retired ? area.key : area.current, std::string(area.meaning));
}

DicomCode CodeOfRegionModifier(std::string_view modifier) {
    const AreaCodes& area = Area(Modifiers, modifier, "region modifier");
    return Coded(area.current, std::string(area.meaning));
}

std::string AnatomyInWords(std::string_view region, std::string_view modifier, std::string_view side) {
    std::string words = Meaning(Regions, region);
    const auto add = [&](std::string text) {
        if (text.empty()) return;
        const bool inWords = text.size() > 1 && text[1] >= 'a' && text[1] <= 'z';
        if (!words.empty() && inWords) text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
        words += (words.empty() ? "" : ", ") + text;
    };
    add(Meaning(Modifiers, modifier));
    add(SideInWords(side));
    return words;
}

bool IsUpperTooth(int tooth) {
    const int quadrant = tooth / 10;
    return quadrant == 1 || quadrant == 2 || quadrant == 5 || quadrant == 6;
}

bool IsRightTooth(int tooth) {
    const int quadrant = tooth / 10;
    return quadrant == 1 || quadrant == 4 || quadrant == 5 || quadrant == 8;
}

std::string ToothString(const std::set<int>& teeth) {
    std::string text;
    for (const int tooth : teeth) text += std::to_string(tooth) + ",";
    return text;
}

}  // namespace Console

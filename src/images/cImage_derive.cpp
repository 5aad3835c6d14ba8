#include "anatomy/RegionCodes.h"
#include "images/cImage.h"

#include "anatomy/ToothString.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns the two-digit numbers from 11 to 88 that occur anywhere in `text`. Separators don't matter: digits
/// without separators count for each pair that they form.
ToothSet NumbersIn(std::string_view text) {
    ToothSet numbers;
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        const int tens = text[at] - '0', ones = text[at + 1] - '0';
        if (tens < 1 || tens > 8 || ones < 0 || ones > 9) continue;
        const int number = tens * 10 + ones;
        if (number >= 11 && number <= 88) numbers.set(static_cast<std::size_t>(number));
    }
    return numbers;
}

bool Any(const ToothSet& numbers, std::initializer_list<std::size_t> teeth) {
    for (const std::size_t tooth : teeth)
        if (numbers.test(tooth)) return true;
    return false;
}

/// Returns true if the numbers include a tooth of one of these quadrants.
bool AnyOfQuadrants(const ToothSet& numbers, std::initializer_list<std::size_t> quadrants) {
    for (const std::size_t quadrant : quadrants)
        for (std::size_t place = 1; place <= 8; ++place)
            if (numbers.test(quadrant * 10 + place)) return true;
    return false;
}

/// A rule applies if the numbers include some of the first teeth and none of the second. The first rule that
/// applies decides.
struct ModifierRule {
    std::initializer_list<std::size_t> some;
    std::initializer_list<std::size_t> none;
    const char* modifier;
};

const ModifierRule ModifierRules[] = {
    {{16, 17, 18, 26, 27, 28, 36, 37, 38, 46, 47, 48}, {12, 22, 32, 42}, RegionCode::SecondMolar},
    {{16, 17, 18, 26, 27, 28, 36, 37, 38, 46, 47, 48}, {13, 23, 33, 43}, RegionCode::ThirdMolar},
    {{16, 17, 26, 27, 36, 37, 46, 47},
     {12, 22, 32, 42},
     RegionCode::FirstMolar},  // never reached: where this rule applies, the first rule does too
    {{14, 15, 16, 24, 25, 26, 34, 35, 36, 44, 45, 46}, {12, 22, 32, 42, 18, 28, 38, 48}, RegionCode::SecondPremolar},
    {{14, 15, 24, 25, 34, 35, 44, 45}, {17, 27, 37, 47, 11, 21, 31, 41}, RegionCode::FirstPremolar},
    {{13, 23, 33, 43}, {15, 25, 35, 45, 11, 21, 31, 41}, RegionCode::Canine},
    {{11, 21, 31, 41}, {14, 24, 34, 44}, RegionCode::CentralIncisor},
    {{12, 22, 32, 42}, {15, 25, 35, 45}, RegionCode::LateralIncisor},
};

}  // namespace

void cImage::DeriveLaterality() {
    const ToothSet numbers = NumbersIn(sTeeth);
    const bool right = AnyOfQuadrants(numbers, {1, 4, 5, 8});
    const bool left = AnyOfQuadrants(numbers, {2, 3, 6, 7});
    if (right || left) Laterality = right && left ? "B" : right ? "R" : "L";
}

void cImage::DeriveAnaRegion() {
    const ToothSet numbers = NumbersIn(sTeeth);
    const bool upper = AnyOfQuadrants(numbers, {1, 2, 5, 6});
    const bool lower = AnyOfQuadrants(numbers, {3, 4, 7, 8});
    if (upper || lower)
        AnaRegion = upper && lower ? RegionCode::BothJaws : lower ? RegionCode::LowerJaw : RegionCode::UpperJaw;
}

void cImage::DeriveAnaRegionMod() {
    const ToothSet numbers = NumbersIn(sTeeth);
    for (const ModifierRule& rule : ModifierRules) {
        if (!Any(numbers, rule.some) || Any(numbers, rule.none)) continue;
        AnaRegionMod = rule.modifier;
        return;
    }
}

}  // namespace OXClass

#include "anatomy/ToothString.h"

#include <algorithm>

namespace OXClass {

using namespace Platform;

const std::array<Integer, 52> AllTeeth = [] {
    std::array<Integer, 52> teeth{};
    auto next = teeth.begin();
    for (int quadrant = 1; quadrant <= 8; ++quadrant)
        for (int place = 1; place <= (quadrant <= 4 ? 8 : 5); ++place)
            *next++ = static_cast<Integer>(quadrant * 10 + place);
    return teeth;
}();

Integer ToothNumber(std::string_view digits) {
    if (digits.size() != 2) return 0;
    const auto number = static_cast<Integer>((digits[0] - '0') * 10 + (digits[1] - '0'));
    const bool spelled = digits[0] >= '0' && digits[0] <= '9' && digits[1] >= '0' && digits[1] <= '9';
    const bool tooth = std::binary_search(AllTeeth.begin(), AllTeeth.end(), number);
    return spelled && tooth ? number : Integer{0};
}

ToothSet TeethOf(const String& teeth) {
    ToothSet set;
    ReadToothString(teeth, [&](Integer tooth) { set.set(static_cast<std::size_t>(tooth)); });
    return set;
}

}  // namespace OXClass

#include "console/TypedTeeth.h"

#include "anatomy/ToothString.h"
#include "console/Output.h"

#include <fmt/format.h>

namespace Console {

using namespace OXClass;

std::set<int> TeethTyped(const std::string& text) {
    std::set<int> teeth;
    for (const String& digits : SplitIgnoringCase(Replace(text, ",", " "), " ")) {
        if (digits.empty()) continue;
        const Integer tooth = ToothNumber(digits);
        if (tooth == 0)
            throw UserError(fmt::format("\"{}\" is not a tooth; write its two digits, as 16 or 16,17", digits));
        teeth.insert(tooth);
    }
    if (teeth.empty()) throw UserError("no teeth are named; write their two digits, as 16 or 16,17");
    return teeth;
}

}  // namespace Console

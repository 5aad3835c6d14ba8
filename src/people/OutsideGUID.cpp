#include "people/OutsideGUID.h"

#include <array>
#include <cstdio>

namespace OXClass {

using namespace Platform;

std::function<String()> OutsideGUID;

String NewDoctorGUID() {
    Guid guid;
    if (CreateGuid(guid) != 0) return {};
    std::array<char, 33> digits{};
    std::snprintf(digits.data(), digits.size(), "%08X%04X%04X", guid.Data1, guid.Data2, guid.Data3);
    String text = digits.data();
    for (const std::uint8_t byte : guid.Data4) {
        std::snprintf(digits.data(), digits.size(), "%02X", byte);
        text += digits.data();
    }
    return text;
}

String NewOutsideGUID() { return UCase(OutsideGUID ? OutsideGUID() : NewDoctorGUID()); }

}  // namespace OXClass

#include "platform/component/binary/Bstr.h"

#include "platform/runtime/Text.h"

#include <array>
#include <new>
#include <string>

namespace Platform {

BSTR ToBstr(std::string_view text) {
    std::array<char16_t, 256> few;
    std::u16string many;
    char16_t* units = few.data();
    if (text.size() > few.size()) {
        many.resize(text.size());
        units = many.data();
    }
    const std::size_t count = ToUtf16(text, units);
    BSTR result = SysAllocStringLen(reinterpret_cast<LPCOLESTR>(units), static_cast<UINT>(count));
    if (!result) throw std::bad_alloc();
    return result;
}

String FromBstr(BSTR text) { return FromUtf16({reinterpret_cast<const char16_t*>(text), SysStringLen(text)}); }

String FromUnits(LPCOLESTR text) {
    if (!text) return {};
    return FromUtf16(reinterpret_cast<const char16_t*>(text));
}

}  // namespace Platform

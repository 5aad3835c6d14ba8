#include "platform/component/binary/Bstr.h"

#include "platform/runtime/Text.h"

#include <new>

namespace Platform {

BSTR ToBstr(std::string_view text) {
    const std::u16string units = ToUtf16(text);
    BSTR result = SysAllocStringLen(reinterpret_cast<LPCOLESTR>(units.data()), static_cast<UINT>(units.size()));
    if (!result) throw std::bad_alloc();
    return result;
}

String FromBstr(BSTR text) { return FromUtf16({reinterpret_cast<const char16_t*>(text), SysStringLen(text)}); }

String FromUnits(LPCOLESTR text) {
    if (!text) return {};
    return FromUtf16(reinterpret_cast<const char16_t*>(text));
}

}  // namespace Platform

#include "platform/component/binary/TypeInfo.h"

namespace Platform {

bool HasTypeInfo(const IID&) noexcept { return false; }

HRESULT TypeInfoOf(const IID&, ITypeInfo** info) noexcept {
    *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT ClassInfoOf(const IID& identity, ITypeInfo** info) noexcept { return TypeInfoOf(identity, info); }

}  // namespace Platform

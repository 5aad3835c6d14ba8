#include "platform/component/dispatch/ClassInfo.h"

namespace Platform {

HRESULT QueryClassInfo(InterfacePointer&, REFIID, void** found) noexcept {
    *found = nullptr;
    return E_NOINTERFACE;
}

}  // namespace Platform

#include "platform/component/dispatch/ScriptMember.h"

#include <dispex.h>

namespace Platform {

DISPID IdOfScriptMember(IDispatch& object, BSTR member) noexcept {
    constexpr IID ofScripts = {0xA6EF9860, 0xC720, 0x11D0, {0x93, 0x37, 0x00, 0xA0, 0xC9, 0x0D, 0xCA, 0xA9}};
    void* found = nullptr;
    if (FAILED(object.QueryInterface(ofScripts, &found)) || !found) return DISPID_UNKNOWN;
    auto* const script = static_cast<IDispatchEx*>(found);
    DISPID id = DISPID_UNKNOWN;
    const HRESULT code = script->GetDispID(member, fdexNameCaseInsensitive, &id);
    script->Release();
    return SUCCEEDED(code) ? id : DISPID_UNKNOWN;
}

}  // namespace Platform

#include "platform/component/dispatch/ScriptMember.h"

namespace Platform {

DISPID IdOfScriptMember(IDispatch&, BSTR) noexcept { return DISPID_UNKNOWN; }

}  // namespace Platform

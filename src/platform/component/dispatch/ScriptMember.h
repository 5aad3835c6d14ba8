#pragma once

#include "platform/component/binary/ComponentModel.h"

namespace Platform {

/// Returns the identifier of a member of an object that a script has defined. Such an object may not know its members
/// by IDispatch::GetIDsOfNames, only by IDispatchEx::GetDispID, which Windows has. Returns DISPID_UNKNOWN if there is
/// no such member.
DISPID IdOfScriptMember(IDispatch& object, BSTR member) noexcept;

}  // namespace Platform

#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

#include <span>

namespace Platform {

/// The functions behind the first seven slots of every dual interface: `IUnknown` and `IDispatch`.
///
/// A call by name reads its arguments, calls `Member::Call` and writes back what comes back, as a call by
/// slot does (`detail::CallSlot`). Wrong calls get the standard return codes: DISP_E_UNKNOWNNAME,
/// DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTOPTIONAL, DISP_E_TYPEMISMATCH,
/// DISP_E_OVERFLOW, DISP_E_BADVARTYPE, E_POINTER, and RPC_E_WRONG_THREAD on another thread than the object's.
/// What a member raises is DISP_E_EXCEPTION with the number, source and text in the `EXCEPINFO`; by slot it
/// is the number itself as a return code, with an error record.
std::span<const void* const> DispatchSlots();

/// The slots of `IEnumVARIANT`, for an `Enumerator`.
std::span<const void* const> EnumeratorSlots();

namespace detail {

/// Calls the member whose slot is `slot`. `given` points at each argument as it crossed the boundary, and
/// behind them at the pointer to the result. Gives a return code, and leaves an error record if it is a
/// failing one.
HRESULT CallSlot(InterfacePointer& self, const void* slot, const void* const* given) noexcept;

}  // namespace detail

}  // namespace Platform

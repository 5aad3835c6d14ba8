#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

#include <span>

namespace Platform {

/// Returns the first seven slots of every dual interface: the functions of `IUnknown` and `IDispatch`.
///
/// `IDispatch::Invoke` converts its arguments, calls `Member::Call` and writes arguments back, as a call by slot does
/// (`detail::CallSlot`; the slots of plain data members convert their value directly). Wrong calls return the standard
/// codes: DISP_E_UNKNOWNNAME, DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTOPTIONAL,
/// DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, DISP_E_BADVARTYPE, E_POINTER, and RPC_E_WRONG_THREAD on another thread than
/// the object's. If a member raises, DISP_E_EXCEPTION is returned with number, source and text in the `EXCEPINFO`; by
/// slot the number itself is the return code, with an error record.
std::span<const void* const> DispatchSlots();

/// Returns the slots of `IEnumVARIANT`, for an `Enumerator`.
std::span<const void* const> EnumeratorSlots();

namespace detail {

/// Calls the member of `slot`. `given` has the address of each argument as the client passed it, followed by the
/// address of the pointer to the result. Returns a return code, with an error record if it is a failure.
HRESULT CallSlot(InterfacePointer& self, const void* slot, const void* const* given) noexcept;

/// Begins a call of a slot that needs no `Member`: clears the error record. Returns a failure with an error record on
/// another thread than the object's, and if `place` is null: the address of the result, or any other one for a put.
HRESULT BeginSlot(const InterfacePointer& self, const void* place);

}  // namespace detail

}  // namespace Platform

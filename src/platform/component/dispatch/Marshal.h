#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/component/dispatch/Member.h"

/// Conversion of values between `Variant` and the types of COM. Values that are read are copied; values that are
/// written belong to the reader. Any thread may call the functions, for objects of that thread.
namespace Platform {

/// Returns the value of a variant, or the value that it refers to. Raises DISP_E_BADVARTYPE for a type that `Variant`
/// can't hold, E_POINTER for a null reference, 6 for a number or date outside the range.
Variant FromVariant(const VARIANT& variant);

/// Writes a value to `to`, whose old value is not freed. Raises `std::bad_alloc`; `to` is then unchanged.
void ToVariant(const Variant& value, VARIANT& to);

/// Returns true for the variant by which a caller leaves out an argument (VT_ERROR with DISP_E_PARAMNOTFOUND).
bool IsLeftOut(const VARIANT& variant);

/// Writes a value back to the caller's argument: through its reference, or to the variant itself if that is not a
/// reference. Raises E_POINTER for a null reference, and what the conversion to the type of the reference raises; the
/// argument is then unchanged.
void WriteBack(const Variant& value, VARIANT& to);

/// Returns true if every value of `type` can be written back to the caller's argument. A value of a variant type is
/// checked when it is written.
bool Receives(const VARIANT& argument, const MemberType& type);

/// Read a value from the address of a value of this type, write one there, or write one and free the old value. Raise
/// what the conversion to the type raises.
Variant ReadPlace(const MemberType& type, const void* place);
void WritePlace(const MemberType& type, const Variant& value, void* place);
void AssignPlace(const MemberType& type, const Variant& value, void* place);

/// Writes the initial value of a result: zero, empty or null.
void ClearPlace(const MemberType& type, void* place);

}  // namespace Platform

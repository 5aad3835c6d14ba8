#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/component/dispatch/Member.h"

/// Values on their way over the boundary. Everything that is read is copied; everything that is written
/// belongs to who reads it then.
namespace Platform {

/// The value of a variant, followed through references. Raises DISP_E_BADVARTYPE for a type that has no form
/// here, E_POINTER for a reference to nothing, 6 for a number or date out of range.
Variant FromVariant(const VARIANT& variant);

/// Puts a value into `to`, whose old value is not freed.
void ToVariant(const Variant& value, VARIANT& to);

/// True for an argument that its caller left out by the variant that says so.
bool IsLeftOut(const VARIANT& variant);

/// Writes a value that comes back into the caller's argument: through its reference, or into the variant
/// itself if it is none. Raises E_POINTER for a reference to nothing, and what the conversion to the
/// reference's type raises where the value has no form of it; the argument stays as it was then.
void WriteBack(const Variant& value, VARIANT& to);

/// True if a value of `type` that comes back fits the caller's argument for certain, or is a variant's, which
/// shows when it is there.
bool Receives(const VARIANT& argument, const MemberType& type);

/// A value at a typed place: read, and written (with `assign`, the old value is freed).
Variant ReadPlace(const MemberType& type, const void* place);
void WritePlace(const MemberType& type, const Variant& value, void* place);
void AssignPlace(const MemberType& type, const Variant& value, void* place);

/// What a typed place holds before a result is there: zero, empty or null.
void ClearPlace(const MemberType& type, void* place);

}  // namespace Platform

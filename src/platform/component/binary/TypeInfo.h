#pragma once

#include "platform/component/binary/ComponentModel.h"

namespace Platform {

// The descriptions of interfaces and classes in the type library that the file with this code contains. Only Windows
// has them; on other systems no interface has one. Any thread may call.

/// Returns true if the type library describes the interface.
bool HasTypeInfo(const IID& identity) noexcept;

/// Stores the description of an interface, which the caller releases. Stores null and returns DISP_E_BADINDEX if it has
/// none.
HRESULT TypeInfoOf(const IID& identity, ITypeInfo** info) noexcept;

/// Stores the description of the class whose default interface this is, as `TypeInfoOf` does.
HRESULT ClassInfoOf(const IID& identity, ITypeInfo** info) noexcept;

}  // namespace Platform

#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

namespace Platform {

/// Stores the interface by which an object names its class (IProvideClassInfo), with a reference for the caller, if
/// `riid` is its identifier and the type library describes the class. Otherwise stores null and returns E_NOINTERFACE,
/// as on every system without type libraries.
HRESULT QueryClassInfo(InterfacePointer& object, REFIID riid, void** found) noexcept;

}  // namespace Platform

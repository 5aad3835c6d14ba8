#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

namespace Platform {

/// The events of the objects of one class, which COM clients receive by a connection point.
struct EventSource {
    const char* ClassName;
    IID Events;  ///< the interface by which they are sent
    /// Sends the events of an object to `sink`, an object with `IDispatch`, and returns a number for `Unadvise`.
    ULONG (*Advise)(Object& object, const Ref<Object>& sink);
    /// Ends it; returns false for an unknown number.
    bool (*Unadvise)(Object& object, ULONG cookie);
};

/// Adds the events of a class. Called while the library is loaded, before any object exists; it is not synchronised
/// with other threads. `source` must live until the process ends.
void RegisterEventSource(const EventSource& source);

/// Stores the IConnectionPointContainer of an object, with a reference for the caller, if `riid` is its identifier and
/// the class has events. Otherwise stores null and returns E_NOINTERFACE.
HRESULT QueryEventSource(InterfacePointer& object, REFIID riid, void** found) noexcept;

}  // namespace Platform

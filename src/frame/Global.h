#pragma once

#include "frame/modGeneral.h"

/// The shared instances of the global classes.
namespace OXClass {

/// Returns the instance of a global class that all callers on this thread share, so that its members keep
/// their values between calls. A class is global if it defines `IsGlobal`; no other class compiles here.
///
/// The first call of a thread creates the instance and raises what its constructor raises; the next call then tries
/// again. The thread releases its reference when it ends; the last reference deletes the instance. Each thread has an
/// instance of its own, and only that thread may use it. Any thread may call.
template <class T>
requires(T::IsGlobal) const Ref<T>& Global() {
    thread_local const Ref<T> shared = New<T>();
    return shared;
}

}  // namespace OXClass

#pragma once

#include "frame/modGeneral.h"

/// The shared instances of the global classes.
namespace OXClass {

/// The instance of a global class that all callers on this thread share, so that its members keep their
/// values between calls. Made on first use, and ended with the thread unless somebody else holds it. Only a
/// class marked with `IsGlobal` has one.
template <class T>
    requires(T::IsGlobal)
const Ref<T>& Global() {
    thread_local const Ref<T> shared = New<T>();
    return shared;
}

}  // namespace OXClass

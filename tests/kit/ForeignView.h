#pragma once

#include "platform/runtime/Object.h"

namespace TestKit {

using namespace Platform;

/// Returns an object of another component that passes every call by name on to `object`, and shows each object that
/// the calls return in the same way. Tests use it as an object of another copy of the platform, or of a program in
/// another language.
Ref<Object> ForeignView(const Ref<Object>& object);

}  // namespace TestKit

#pragma once

#include "platform/component/registry/Library.h"

/// The public classes, and what a client finds them by.
namespace OXClass {

using Platform::ClassEntry;

/// All public classes, in their documented order. Any thread may call.
std::span<const ClassEntry> ClassTable();

/// The library of these classes, as its type library and its registration name it. Any thread may call.
const Platform::LibraryDescription& ThisLibrary();

}  // namespace OXClass

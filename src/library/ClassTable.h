#pragma once

#include "platform/component/registry/Library.h"

/// The public classes, and the names and identifiers by which clients create them.
namespace OXClass {

using Platform::ClassEntry;

/// Returns the 28 public classes in their documented order.
///
/// An entry has the name, the identifiers of the class and of its interface, which never change, and a
/// function that creates an object. The table exists until the process ends. Raises nothing. Any thread may
/// call.
std::span<const ClassEntry> ClassTable();

/// Returns the description of the library that contains these classes, for its type library and its
/// registration: name, identifier, version, locale, help text. Raises nothing. Any thread may call.
const Platform::LibraryDescription& ThisLibrary();

}  // namespace OXClass

#pragma once

#include "platform/component/registry/ClassRegistry.h"

/// Where the libraries of a user or of a machine are registered: the registry file on systems without COM
/// (`ClassStore_posix.cpp`), the registry of the system on Windows (`ClassStore_windows.cpp`). Any thread may call.
namespace Platform::ClassRegistry::Store {

/// Registers a library in place of one with the same identifier. Raises as `ClassRegistry::Enter`.
void Put(const LibraryRecord& library);

/// Removes a library; does nothing if it is not registered. Raises as `ClassRegistry::Enter`.
void Erase(const LibraryRecord& library);

/// Returns the class of this name, without regard to case. Raises 75 if the store can't be read.
std::optional<ClassRecord> Find(const String& name);

/// Returns all classes. Raises as `Find`.
std::vector<ClassRecord> Classes();

}  // namespace Platform::ClassRegistry::Store

#pragma once

#include "platform/component/dispatch/Interface.h"
#include "platform/component/registry/Library.h"
#include "platform/component/registry/LibraryFile.h"

#include <vector>

/// Classes by name: those of the host itself, and those of the libraries that the class registry knows.
namespace Platform {

/// The host's own classes that can be made by name: "Collection", "ADODB.Connection", "ADODB.Recordset".
std::span<const ClassEntry> HostClasses();

/// The interfaces of all the host's objects, of those too that only come out of others, such as "Field".
std::vector<const Interface*> HostInterfaces();

/// The enumerations that these interfaces speak of.
std::span<const Enumeration> HostEnumerations();

/// A new object of the class of this name (without regard to case), with a reference for the caller. Raises
/// 429 where no class has the name, or its library can't give it.
IDispatch* CreateObject(const String& name);

/// The instance of a global class that all callers on this thread share, with a reference for the caller.
/// Made on first use and let go when the thread ends. Raises 429, also for a class that is not global.
IDispatch* GlobalObject(const String& name);

/// Loads a library file once and keeps it. Raises CO_E_DLLNOTFOUND. Any thread may call.
const LibraryFile& LoadedLibrary(const String& path);

}  // namespace Platform

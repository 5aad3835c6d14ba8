#pragma once

#include "platform/component/dispatch/Interface.h"
#include "platform/component/registry/Library.h"
#include "platform/component/registry/LibraryFile.h"

#include <vector>

/// Creating objects by class name: the classes of the platform itself, and those in the class registry. Objects belong
/// to the calling thread.
namespace Platform {

/// Returns the platform's classes that can be created by name: "Collection", "ADODB.Connection", "ADODB.Recordset".
std::span<const ClassEntry> HostClasses();

/// Returns the server of these classes. Where the system has COM it registers them as "OXPlatform.Collection",
/// "OXPlatform.Connection" and "OXPlatform.Recordset", because the system has classes of its own under the other names.
Library& HostLibrary();

/// Returns the interfaces of all objects of the platform, including those that other objects return, such as "Field".
std::vector<const Interface*> HostInterfaces();

/// Returns the enumerations that these interfaces use.
std::span<const Enumeration> HostEnumerations();

/// Creates an object of the class of this name (without regard to case) and returns it with a reference for the caller.
/// Raises 429 if no class has the name, or if its library can't create it.
IDispatch* CreateObject(const String& name);

/// Returns the instance of a global class that all callers on this thread share, with a reference for the caller. It is
/// created on first use and released when the thread ends. Raises 429, also for a class that is not global.
IDispatch* GlobalObject(const String& name);

/// Returns a library file, which is loaded at the first call. Raises CO_E_DLLNOTFOUND. Any thread may call.
const LibraryFile& LoadedLibrary(const String& path);

}  // namespace Platform

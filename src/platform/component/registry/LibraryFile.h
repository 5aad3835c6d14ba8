#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Types.h"

/// Library files: where they are, and the three functions of an in-process server that the platform calls.
namespace Platform {

/// Returns the absolute path of the library or program file that contains this address of constant data, with symbolic
/// links resolved; an empty text for an address that no file contains. If the file was deleted or renamed after it was
/// loaded, returns the name under which it was loaded, which may be relative. Any thread may call.
String FileOfAddress(const void* address);

/// Returns the path of the file that contains the platform: its own library file, or the program file if the platform
/// is linked into a program. Raises nothing. Any thread may call.
String HostFile();

/// A loaded library file. It is never unloaded, also after this object is deleted: objects of its classes, their
/// vtables and the interface tables remain valid. Two objects of one file refer to the same loaded library. Any thread
/// may call.
class LibraryFile {
public:
    /// Loads a file, which runs its initialisation. All symbols that it needs are resolved at once, and its own symbols
    /// are not visible to other libraries. Raises CO_E_DLLNOTFOUND with the reason that the system reports, also if a
    /// library that it needs is missing; nothing is loaded then.
    explicit LibraryFile(const String& path);

    // Call the exported function of the file and return its result unchanged; a failure of the function is not raised.
    // Raise CO_E_ERRORINDLL with the path and the name if the file does not export it; nothing is called then.

    /// Calls DllGetClassObject, which stores the class factory in `factory`. The caller releases it.
    HRESULT GetClassObject(REFCLSID classID, REFIID riid, void** factory) const;
    /// Calls DllRegisterServer.
    HRESULT RegisterServer() const;
    /// Calls DllUnregisterServer.
    HRESULT UnregisterServer() const;

private:
    /// Returns the address of an exported function; null if there is none.
    void* Exported(const char* name) const;
    /// Does the same. Raises CO_E_ERRORINDLL if there is none.
    void* Function(const char* name) const;

    String path_;
    void* handle_;
};

}  // namespace Platform

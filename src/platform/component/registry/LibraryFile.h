#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Types.h"

namespace Platform {

/// Returns the absolute path of the library or program file that contains this address of constant data, with symbolic
/// links resolved; an empty text for an address that no file contains. Any thread may call.
String FileOfAddress(const void* address);

/// Returns the absolute path of the platform's own library file. Any thread may call.
String HostFile();

/// A loaded library file. It is never unloaded. Any thread may call.
class LibraryFile {
public:
    /// Loads a file. Raises CO_E_DLLNOTFOUND with the reason that the system reports.
    explicit LibraryFile(const String& path);

    /// Call the exported function of the file and return its result. Raise CO_E_ERRORINDLL if the file does not export
    /// it.
    HRESULT GetClassObject(REFCLSID classID, REFIID riid, void** factory) const;
    HRESULT RegisterServer() const;
    HRESULT UnregisterServer() const;

private:
    void* Function(const char* name) const;

    String path_;
    void* handle_;
};

}  // namespace Platform

#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Types.h"

namespace Platform {

/// The whole path of the library or program file that a piece of constant data lies in.
String FileOfAddress(const void* address);

/// The whole path of the host's own library file.
String HostFile();

/// A library file that was loaded and stays loaded. Any thread may call.
class LibraryFile {
public:
    /// Loads a file; raises CO_E_DLLNOTFOUND with the system's reason.
    explicit LibraryFile(const String& path);

    /// The exported functions of a library of classes; raise CO_E_ERRORINDLL where the file has none.
    HRESULT GetClassObject(REFCLSID classID, REFIID riid, void** factory) const;
    HRESULT RegisterServer() const;
    HRESULT UnregisterServer() const;

private:
    void* Function(const char* name) const;

    String path_;
    void* handle_;
};

}  // namespace Platform

#include "platform/component/registry/LibraryFile.h"

#include "platform/runtime/Error.h"

namespace Platform {

void* LibraryFile::Function(const char* name) const {
    void* found = Exported(name);
    if (!found)
        throw Error(CO_E_ERRORINDLL, "Runtime", path_ + " is not a library of classes: it does not export " + name);
    return found;
}

String HostFile() {
    static constexpr char here = 0;
    return FileOfAddress(&here);
}

HRESULT LibraryFile::GetClassObject(REFCLSID classID, REFIID riid, void** factory) const {
    using Call = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    return reinterpret_cast<Call>(Function("DllGetClassObject"))(classID, riid, factory);
}

HRESULT LibraryFile::RegisterServer() const {
    using Call = HRESULT(STDAPICALLTYPE*)();
    return reinterpret_cast<Call>(Function("DllRegisterServer"))();
}

HRESULT LibraryFile::UnregisterServer() const {
    using Call = HRESULT(STDAPICALLTYPE*)();
    return reinterpret_cast<Call>(Function("DllUnregisterServer"))();
}

}  // namespace Platform

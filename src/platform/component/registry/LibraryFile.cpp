#include "platform/component/registry/LibraryFile.h"

#include "platform/runtime/Error.h"

#include <filesystem>

#ifndef _WIN32
#include <dlfcn.h>
#endif

namespace Platform {

#ifdef _WIN32

String FileOfAddress(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(address), &module);
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    return std::filesystem::path(path, path + length).string();
}

LibraryFile::LibraryFile(const String& path)
    : path_(path), handle_(LoadLibraryW(std::filesystem::path(path).wstring().c_str())) {
    if (!handle_) throw Error(CO_E_DLLNOTFOUND, "Runtime", path + " can't be loaded");
}

void* LibraryFile::Function(const char* name) const {
    void* found = reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
    if (!found)
        throw Error(CO_E_ERRORINDLL, "Runtime", path_ + " is not a library of classes: it does not export " + name);
    return found;
}

#else

String FileOfAddress(const void* address) {
    Dl_info info{};
    if (!dladdr(address, &info) || !info.dli_fname) return {};
    std::error_code failed;
    const auto path = std::filesystem::canonical(info.dli_fname, failed);
    return failed ? info.dli_fname : path.string();
}

LibraryFile::LibraryFile(const String& path) : path_(path), handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!handle_) throw Error(CO_E_DLLNOTFOUND, "Runtime", String(dlerror()));
}

void* LibraryFile::Function(const char* name) const {
    void* found = dlsym(handle_, name);
    if (!found)
        throw Error(CO_E_ERRORINDLL, "Runtime", path_ + " is not a library of classes: it does not export " + name);
    return found;
}

#endif

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

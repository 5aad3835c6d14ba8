#include "platform/component/registry/LibraryFile.h"

#include "platform/runtime/Error.h"

#include <dlfcn.h>
#include <filesystem>

namespace Platform {

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

void* LibraryFile::Exported(const char* name) const { return dlsym(handle_, name); }

}  // namespace Platform

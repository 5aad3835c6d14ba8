#include "platform/component/registry/LibraryFile.h"

#include "platform/runtime/Error.h"
#include "platform/runtime/Text.h"

#include <filesystem>

namespace Platform {
namespace {

/// Returns the text of a failure of the system.
String ReasonOf(DWORD failure) {
    wchar_t* text = nullptr;
    const DWORD units =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, failure, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const String reason = FromUtf16({reinterpret_cast<const char16_t*>(text), units});
    LocalFree(text);
    return reason.substr(0, reason.find_last_not_of(" .\r\n") + 1);
}

/// Loads a file; a name without a folder is searched for as the system does. What the file needs is searched for in its
/// own folder first.
HMODULE Load(const std::filesystem::path& path) {
    if (!path.has_parent_path()) return LoadLibraryW(path.wstring().c_str());
    return LoadLibraryExW(std::filesystem::absolute(path).wstring().c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

}  // namespace

String FileOfAddress(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(address), &module);
    constexpr DWORD longestPath = 32768;
    std::wstring path(longestPath, L'\0');
    path.resize(module ? GetModuleFileNameW(module, path.data(), longestPath) : 0);
    return std::filesystem::path(path).string();
}

LibraryFile::LibraryFile(const String& path) : path_(path), handle_(Load(path)) {
    if (!handle_) throw Error(CO_E_DLLNOTFOUND, "Runtime", path + " can't be loaded: " + ReasonOf(GetLastError()));
}

void* LibraryFile::Exported(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace Platform

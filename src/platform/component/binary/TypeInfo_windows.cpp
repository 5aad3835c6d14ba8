#include "platform/component/binary/TypeInfo.h"

#include "platform/component/binary/Identifier.h"

#include <string>

namespace Platform {
namespace {

/// Returns the path of the file that contains this code.
std::wstring ThisFile() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ThisFile), &module);
    constexpr DWORD longest = 32768;
    std::wstring path(longest, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), longest));
    return path;
}

/// Returns the type library of this file; null if it contains none. It is loaded once and never released.
ITypeLib* TypeLibrary() {
    static ITypeLib* const library = [] {
        ITypeLib* loaded = nullptr;
        LoadTypeLibEx(ThisFile().c_str(), REGKIND_NONE, &loaded);
        return loaded;
    }();
    return library;
}

/// Returns true if the interface is the first one of the class.
bool IsDefaultOf(ITypeInfo& described, const IID& identity) {
    HREFTYPE reference = 0;
    ITypeInfo* first = nullptr;
    if (FAILED(described.GetRefTypeOfImplType(0, &reference)) || FAILED(described.GetRefTypeInfo(reference, &first)))
        return false;
    TYPEATTR* attributes = nullptr;
    const bool equal = SUCCEEDED(first->GetTypeAttr(&attributes)) && Same(attributes->guid, identity);
    if (attributes) first->ReleaseTypeAttr(attributes);
    first->Release();
    return equal;
}

}  // namespace

bool HasTypeInfo(const IID& identity) noexcept {
    ITypeInfo* info = nullptr;
    if (FAILED(TypeInfoOf(identity, &info))) return false;
    info->Release();
    return true;
}

HRESULT TypeInfoOf(const IID& identity, ITypeInfo** info) noexcept {
    *info = nullptr;
    ITypeLib* const library = TypeLibrary();
    if (!library || FAILED(library->GetTypeInfoOfGuid(identity, info))) return DISP_E_BADINDEX;
    return S_OK;
}

HRESULT ClassInfoOf(const IID& identity, ITypeInfo** info) noexcept {
    *info = nullptr;
    ITypeLib* const library = TypeLibrary();
    for (UINT i = 0; library && i < library->GetTypeInfoCount(); ++i) {
        TYPEKIND kind{};
        if (FAILED(library->GetTypeInfoType(i, &kind)) || kind != TKIND_COCLASS) continue;
        ITypeInfo* described = nullptr;
        if (FAILED(library->GetTypeInfo(i, &described))) continue;
        if (IsDefaultOf(*described, identity)) {
            *info = described;
            return S_OK;
        }
        described->Release();
    }
    return DISP_E_BADINDEX;
}

}  // namespace Platform

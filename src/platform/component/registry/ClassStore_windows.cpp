#include "platform/component/registry/ClassStore.h"

#include "platform/component/binary/ComponentModel.h"
#include "platform/component/binary/Identifier.h"
#include "platform/runtime/Error.h"
#include "platform/runtime/Text.h"

#include <array>
#include <charconv>
#include <memory>

namespace Platform::ClassRegistry::Store {
namespace {

/// The value of a class that has the instancing of its record, and that no class of another library has.
constexpr const char* Instancing = "Instancing";

std::wstring Wide(const String& text) {
    const std::u16string units = ToUtf16(text);
    return {units.begin(), units.end()};
}

String InBraces(const String& identifier) { return "{" + UCase(identifier) + "}"; }
String ClassKey(const ClassRecord& entry) { return "CLSID\\" + InBraces(entry.Identifier); }

[[noreturn]] void Refuse(LSTATUS failure) {
    throw Error(err::PathFileAccess, "Runtime",
                failure == ERROR_ACCESS_DENIED
                    ? String("The registry can't be changed without the rights of an administrator")
                    : "The registry can't be changed: system error " + std::to_string(failure));
}

// ---- values -----------------------------------------------------------------------------------------

/// Sets a text below HKEY_CLASSES_ROOT, and creates its key. An empty name is the default value.
void SetText(const String& key, const String& name, const String& text) {
    const std::wstring value = Wide(text);
    const LSTATUS failure = RegSetKeyValueW(HKEY_CLASSES_ROOT, Wide(key).c_str(), Wide(name).c_str(), REG_SZ,
                                            value.c_str(), static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    if (failure != ERROR_SUCCESS) Refuse(failure);
}

/// Returns a text below HKEY_CLASSES_ROOT; an empty one if there is none.
String TextOf(const String& key, const String& name) {
    const std::wstring wideKey = Wide(key), wideName = Wide(name);
    DWORD bytes = 0;
    const auto read = [&](void* to) {
        return RegGetValueW(HKEY_CLASSES_ROOT, wideKey.c_str(), wideName.c_str(), RRF_RT_REG_SZ, nullptr, to, &bytes);
    };
    if (read(nullptr) != ERROR_SUCCESS) return {};
    std::u16string units(bytes / sizeof(char16_t) + 1, u'\0');
    bytes = static_cast<DWORD>(units.size() * sizeof(char16_t));
    return read(units.data()) == ERROR_SUCCESS ? FromUtf16(units.c_str()) : String();
}

void DeleteKey(const String& key) {
    const LSTATUS failure = RegDeleteTreeW(HKEY_CLASSES_ROOT, Wide(key).c_str());
    if (failure != ERROR_SUCCESS && failure != ERROR_FILE_NOT_FOUND) Refuse(failure);
}

// ---- the type library -------------------------------------------------------------------------------

struct Releasing {
    void operator()(IUnknown* held) const noexcept { held->Release(); }
};

/// Returns the type library that a file contains, if it is that of the library; otherwise null.
std::unique_ptr<ITypeLib, Releasing> TypeLibraryOf(const LibraryRecord& library) {
    ITypeLib* loaded = nullptr;
    if (library.Classes.empty() ||
        FAILED(LoadTypeLibEx(Wide(library.Classes.front().Library).c_str(), REGKIND_NONE, &loaded)))
        return nullptr;
    std::unique_ptr<ITypeLib, Releasing> held(loaded);
    TLIBATTR* attributes = nullptr;
    if (FAILED(loaded->GetLibAttr(&attributes))) return nullptr;
    const bool own = Same(attributes->guid, GuidOf(library.Identifier));
    loaded->ReleaseTLibAttr(attributes);
    return own ? std::move(held) : nullptr;
}

/// Returns the two numbers of a version such as "1.30".
std::array<WORD, 2> NumbersOf(const String& version) {
    std::array<WORD, 2> numbers{};
    const char* const end = version.data() + version.size();
    const auto major = std::from_chars(version.data(), end, numbers[0]);
    if (major.ptr != end) std::from_chars(major.ptr + 1, end, numbers[1]);
    return numbers;
}

/// Returns the file with which the type library is registered; an empty text if it is not.
String FileOfTypeLibrary(const LibraryRecord& library) {
    const auto [major, minor] = NumbersOf(library.Version);
    BSTR path = nullptr;
    if (FAILED(QueryPathOfRegTypeLib(GuidOf(library.Identifier), major, minor, library.Locale, &path))) return {};
    const String file = FromUtf16(reinterpret_cast<const char16_t*>(path));
    SysFreeString(path);
    return file;
}

void EraseTypeLibrary(const LibraryRecord& library) {
    if (library.Classes.empty() || !EqualsIgnoringCase(FileOfTypeLibrary(library), library.Classes.front().Library))
        return;
    const auto [major, minor] = NumbersOf(library.Version);
    UnRegisterTypeLib(GuidOf(library.Identifier), major, minor, library.Locale,
                      sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
}

// ---- classes ----------------------------------------------------------------------------------------

void PutClass(const LibraryRecord& library, const ClassRecord& entry, bool hasTypeLibrary) {
    const String key = ClassKey(entry);
    SetText(key, "", entry.Name);
    SetText(key, Instancing, entry.Instancing);
    SetText(key + "\\InprocServer32", "", entry.Library);
    SetText(key + "\\InprocServer32", "ThreadingModel", entry.Threading);
    SetText(key + "\\ProgID", "", entry.Name);
    SetText(key + "\\Version", "", library.Version);
    if (hasTypeLibrary) SetText(key + "\\TypeLib", "", InBraces(library.Identifier));
    SetText(entry.Name, "", entry.Name);
    SetText(entry.Name + "\\CLSID", "", InBraces(entry.Identifier));
}

void EraseClass(const ClassRecord& entry) {
    const String key = ClassKey(entry);
    const String file = TextOf(key + "\\InprocServer32", "");
    if (!file.empty() && !EqualsIgnoringCase(file, entry.Library)) return;
    DeleteKey(key);
    if (EqualsIgnoringCase(TextOf(entry.Name + "\\CLSID", ""), InBraces(entry.Identifier))) DeleteKey(entry.Name);
}

/// Returns the record of a registered class; nothing for a class that no library of the platform registered.
std::optional<ClassRecord> RecordOf(const String& identifierInBraces) {
    const String key = "CLSID\\" + identifierInBraces;
    ClassRecord found{TextOf(key, ""), LCase(identifierInBraces.substr(1, identifierInBraces.size() - 2)),
                      TextOf(key + "\\InprocServer32", ""), TextOf(key + "\\InprocServer32", "ThreadingModel"),
                      TextOf(key, Instancing)};
    if (found.Instancing.empty() || !IsGuid(found.Identifier)) return std::nullopt;
    return found;
}

}  // namespace

void Put(const LibraryRecord& library) {
    const auto types = TypeLibraryOf(library);
    try {
        for (const ClassRecord& entry : library.Classes) PutClass(library, entry, types != nullptr);
        if (types && FAILED(RegisterTypeLib(types.get(), Wide(library.Classes.front().Library).data(), nullptr)))
            Refuse(ERROR_ACCESS_DENIED);
    } catch (const Error&) {
        Erase(library);
        throw;
    }
}

void Erase(const LibraryRecord& library) {
    EraseTypeLibrary(library);
    for (const ClassRecord& entry : library.Classes) EraseClass(entry);
}

std::optional<ClassRecord> Find(const String& name) {
    const String identifier = TextOf(name + "\\CLSID", "");
    return identifier.empty() ? std::nullopt : RecordOf(identifier);
}

std::vector<ClassRecord> Classes() {
    std::vector<ClassRecord> classes;
    HKEY all = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, L"CLSID", 0, KEY_ENUMERATE_SUB_KEYS, &all) != ERROR_SUCCESS) return classes;
    std::array<wchar_t, 256> name{};
    for (DWORD i = 0, units = name.size();
         RegEnumKeyExW(all, i, name.data(), &units, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, units = name.size())
        if (auto found = RecordOf(FromUtf16(reinterpret_cast<const char16_t*>(name.data()))))
            classes.push_back(std::move(*found));
    RegCloseKey(all);
    return classes;
}

}  // namespace Platform::ClassRegistry::Store

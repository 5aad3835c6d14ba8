// The functions of the file oxplatform.dll. Each is forwarded to the platform inside of a library file: the first one
// that the program names, otherwise the one that is registered.

#include "platform/Functions.h"

#include "platform/component/binary/ReturnCode.h"
#include "platform/component/registry/ClassRegistry.h"
#include "platform/component/registry/LibraryFile.h"

#include <mutex>

namespace {

using namespace Platform;

/// Loads a library file, which stays loaded, and returns its functions. Raises CO_E_DLLNOTFOUND and CO_E_ERRORINDLL.
Functions& FunctionsOf(const String& path) {
    void* functions = nullptr;
    const HRESULT code = LibraryFile(path).GetClassObject(IID_NULL, FunctionsID, &functions);
    if (FAILED(code))
        throw Error(CO_E_ERRORINDLL, "Runtime", path + " is not a library of classes: it contains no platform");
    return *static_cast<Functions*>(functions);
}

/// Returns the path of the library file that is registered. Raises 429 if there is none.
String RegisteredFile() {
    if (const auto record = ClassRegistry::Find("OXPlatform.Connection")) return record->Library;
    Raise(err::CannotCreate, DescriptionOf(err::CannotCreate) +
                                 ": no library is registered. \"regsvr32 OXClass.dll\" registers one, OxUseLibrary "
                                 "loads one without registration");
}

/// Returns the functions of the library file of this process. `path` is the file that the program names, or null.
Functions& TheFunctions(const char* path) {
    static std::mutex guard;
    static Functions* functions = nullptr;
    const std::scoped_lock lock(guard);
    if (!functions) functions = &FunctionsOf(path ? String(path) : RegisteredFile());
    return *functions;
}

/// Returns the functions of the library file that contains an object, or those of the process for any other object.
Functions& FunctionsOf(IUnknown* object) {
    const String file = object ? FileOfAddress(**reinterpret_cast<const void* const* const*>(object)) : String();
    try {
        if (!file.empty()) return FunctionsOf(file);
    } catch (const Error&) {  // not a library of classes
    }
    return TheFunctions(nullptr);
}

/// Forwards a call; sets the error record if no library file is loaded or registered.
template <class Call>
HRESULT Forward(const char* path, Call call) noexcept {
    return Guarded([&] { return call(TheFunctions(path)); });
}

template <class Call>
HRESULT Forward(Call call) noexcept {
    return Forward(nullptr, call);
}

HRESULT PathIsMissing() { return FailWith(E_POINTER, "The path is missing"); }

}  // namespace

HRESULT OxCreateObject(LPCOLESTR name, IDispatch** object) {
    return Forward([&](Functions& to) { return to.CreateObject(name, object); });
}

HRESULT OxGlobal(LPCOLESTR name, IDispatch** object) {
    return Forward([&](Functions& to) { return to.Global(name, object); });
}

HRESULT OxUseLibrary(const char* path) {
    if (!path) return PathIsMissing();
    return Forward(path, [&](Functions& to) {
        const bool isAnother = &FunctionsOf(path) != &to;
        return isAnother ? S_OK : to.UseLibrary(path);
    });
}

HRESULT OxRegisterLibrary(const char* path) {
    return path ? Forward(path, [&](Functions& to) { return to.RegisterLibrary(path); }) : PathIsMissing();
}

HRESULT OxUnregisterLibrary(const char* path) {
    return path ? Forward(path, [&](Functions& to) { return to.UnregisterLibrary(path); }) : PathIsMissing();
}

HRESULT OxClasses(BSTR* json) {
    return Forward([&](Functions& to) { return to.Classes(json); });
}

HRESULT OxDescribe(IUnknown* object, BSTR* json) {
    return Guarded([&] { return FunctionsOf(object).Describe(object, json); });
}

HRESULT OxSetMsgBox(OxMsgBoxHandler handler, void* context) {
    return Forward([&](Functions& to) { return to.SetMsgBox(handler, context); });
}

HRESULT OxSetDoEvents(OxDoEventsHandler handler, void* context) {
    return Forward([&](Functions& to) { return to.SetDoEvents(handler, context); });
}

HRESULT OxSetNow(OxNowHandler handler, void* context) {
    return Forward([&](Functions& to) { return to.SetNow(handler, context); });
}

HRESULT OxAdvise(IUnknown* connection, const OxConnectionEvents* events, void* context, ULONG* cookie) {
    return Guarded([&] { return FunctionsOf(connection).Advise(connection, events, context, cookie); });
}

HRESULT OxUnadvise(IUnknown* connection, ULONG cookie) {
    return Guarded([&] { return FunctionsOf(connection).Unadvise(connection, cookie); });
}

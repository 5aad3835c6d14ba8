#include "library/ClassTable.h"
#include "platform/Functions.h"
#include "platform/HostClasses.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/binary/ReturnCode.h"

/// The four functions that the library file exports. On Windows the file contains the platform, whose classes are
/// created and registered together with those of the library.
namespace {

Platform::Library& TheLibrary() {
    static Platform::Library library(OXClass::ThisLibrary());
    return library;
}

}  // namespace

/// Returns the class factory of the class with this identifier.
STDAPI DllGetClassObject(REFCLSID classID, REFIID riid, void** factory) {
    return Platform::Guarded([&]() -> HRESULT {
        Platform::HostLibrary().Publish();  // its objects are counted from the first one on
        const HRESULT code = TheLibrary().GetClassObject(classID, riid, factory);
        if (code != CLASS_E_CLASSNOTAVAILABLE) return code;
        if (Platform::Same(riid, Platform::FunctionsID))
            return Platform::FunctionsOfThisFile().QueryInterface(riid, factory);
        return Platform::HostLibrary().GetClassObject(classID, riid, factory);
    });
}

/// Returns S_OK if no object and no class factory of the file exists and no lock is held, otherwise S_FALSE.
STDAPI DllCanUnloadNow() {
    const HRESULT classes = TheLibrary().CanUnloadNow();
    return classes == S_OK ? Platform::HostLibrary().CanUnloadNow() : classes;
}

/// Enters the classes and the type library into the registry of the system.
STDAPI DllRegisterServer() {
    const HRESULT classes = TheLibrary().RegisterServer();
    return SUCCEEDED(classes) ? Platform::HostLibrary().RegisterServer() : classes;
}

/// Removes from the registry what `DllRegisterServer` entered.
STDAPI DllUnregisterServer() {
    const HRESULT classes = TheLibrary().UnregisterServer();
    const HRESULT host = Platform::HostLibrary().UnregisterServer();
    return FAILED(classes) ? classes : host;
}

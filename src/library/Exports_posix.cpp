#include "library/ClassTable.h"

/// The four functions that the library file exports. Each calls the host's function of the same purpose.
namespace {

Platform::Library& TheLibrary() {
    static Platform::Library library(OXClass::ThisLibrary());
    return library;
}

}  // namespace

/// Returns the class factory of the class with this identifier.
STDAPI DllGetClassObject(REFCLSID classID, REFIID riid, void** factory) {
    return TheLibrary().GetClassObject(classID, riid, factory);
}

/// Returns S_OK if no object and no class factory of the library exists and no lock is held, otherwise
/// S_FALSE.
STDAPI DllCanUnloadNow() { return TheLibrary().CanUnloadNow(); }

/// Enters the classes and the type library into the class registry, so that clients can create them by name.
STDAPI DllRegisterServer() { return TheLibrary().RegisterServer(); }

/// Removes from the class registry what `DllRegisterServer` entered.
STDAPI DllUnregisterServer() { return TheLibrary().UnregisterServer(); }

#include "library/ClassTable.h"

/// The four functions that the library file exports. Each hands on to the host's entry of the same purpose.
namespace {

Platform::Library& TheLibrary() {
    static Platform::Library library(OXClass::ThisLibrary());
    return library;
}

}  // namespace

/// The class factory of a class, by its identifier.
STDAPI DllGetClassObject(REFCLSID classID, REFIID riid, void** factory) {
    return TheLibrary().GetClassObject(classID, riid, factory);
}

/// S_OK if nothing of the library is in use any more.
STDAPI DllCanUnloadNow() { return TheLibrary().CanUnloadNow(); }

/// Makes the classes known by their names.
STDAPI DllRegisterServer() { return TheLibrary().RegisterServer(); }

/// Removes what `DllRegisterServer` wrote.
STDAPI DllUnregisterServer() { return TheLibrary().UnregisterServer(); }

#pragma once

#include "platform/oxplatform.h"

namespace Platform {

/// The functions of oxplatform.h as members of an object: on Windows the file oxplatform.dll reaches by it the platform
/// that is inside of a library file. The members have the contracts of the functions of the same names, and their order
/// never changes. Any thread may call.
struct Functions : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateObject(LPCOLESTR name, IDispatch** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE Global(LPCOLESTR name, IDispatch** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE UseLibrary(const char* path) = 0;
    virtual HRESULT STDMETHODCALLTYPE RegisterLibrary(const char* path) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterLibrary(const char* path) = 0;
    virtual HRESULT STDMETHODCALLTYPE Classes(BSTR* json) = 0;
    virtual HRESULT STDMETHODCALLTYPE Describe(IUnknown* object, BSTR* json) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMsgBox(OxMsgBoxHandler handler, void* context) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDoEvents(OxDoEventsHandler handler, void* context) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetNow(OxNowHandler handler, void* context) = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IUnknown* connection, const OxConnectionEvents* events, void* context,
                                             ULONG* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(IUnknown* connection, ULONG cookie) = 0;
};

/// The identifier of the interface. DllGetClassObject of a library file returns the object for it, for any class.
constexpr IID FunctionsID = {0x0d2f3c5e, 0x6a1b, 0x5c4d, {0x9e, 0x7f, 0x31, 0x5a, 0x8c, 0x26, 0xb0, 0x47}};

/// Returns the object of this file, which lives until the file is unloaded; its references are not counted.
Functions& FunctionsOfThisFile();

}  // namespace Platform

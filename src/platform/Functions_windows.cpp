#include "platform/Functions.h"

#include "platform/component/binary/Identifier.h"

namespace Platform {
namespace {

class OwnFunctions final : public Functions {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        *object = Same(riid, IID_IUnknown) || Same(riid, FunctionsID) ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateObject(LPCOLESTR name, IDispatch** object) override {
        return OxCreateObject(name, object);
    }
    HRESULT STDMETHODCALLTYPE Global(LPCOLESTR name, IDispatch** object) override { return OxGlobal(name, object); }
    HRESULT STDMETHODCALLTYPE UseLibrary(const char* path) override { return OxUseLibrary(path); }
    HRESULT STDMETHODCALLTYPE RegisterLibrary(const char* path) override { return OxRegisterLibrary(path); }
    HRESULT STDMETHODCALLTYPE UnregisterLibrary(const char* path) override { return OxUnregisterLibrary(path); }
    HRESULT STDMETHODCALLTYPE Classes(BSTR* json) override { return OxClasses(json); }
    HRESULT STDMETHODCALLTYPE Describe(IUnknown* object, BSTR* json) override { return OxDescribe(object, json); }
    HRESULT STDMETHODCALLTYPE SetMsgBox(OxMsgBoxHandler handler, void* context) override {
        return OxSetMsgBox(handler, context);
    }
    HRESULT STDMETHODCALLTYPE SetDoEvents(OxDoEventsHandler handler, void* context) override {
        return OxSetDoEvents(handler, context);
    }
    HRESULT STDMETHODCALLTYPE SetNow(OxNowHandler handler, void* context) override {
        return OxSetNow(handler, context);
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* connection, const OxConnectionEvents* events, void* context,
                                     ULONG* cookie) override {
        return OxAdvise(connection, events, context, cookie);
    }
    HRESULT STDMETHODCALLTYPE Unadvise(IUnknown* connection, ULONG cookie) override {
        return OxUnadvise(connection, cookie);
    }
};

}  // namespace

Functions& FunctionsOfThisFile() {
    static OwnFunctions functions;
    return functions;
}

}  // namespace Platform

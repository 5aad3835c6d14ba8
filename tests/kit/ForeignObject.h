#pragma once

#include "platform/component/binary/Identifier.h"

#include "platform/component/dispatch/Interface.h"

namespace TestKit {

/// An object of another component, with or without `IDispatch`, which counts its references. It has no members.
class ForeignObject final : public IDispatch {
public:
    explicit ForeignObject(bool isDispatch) : isDispatch_(isDispatch) {}

    HRESULT QueryInterface(REFIID riid, void** object) override {
        const bool has = Platform::Same(riid, IID_IUnknown) || (isDispatch_ && Platform::Same(riid, IID_IDispatch));
        *object = has ? this : nullptr;
        if (has) AddRef();
        return has ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }
    HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

    ULONG references = 1;

private:
    bool isDispatch_;
};

}  // namespace TestKit

#include "kit/ForeignView.h"

#include "platform/component/binary/Counted.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/Boundary.h"

namespace TestKit {
namespace {

class View final : public Counted<View, IDispatch> {
public:
    explicit View(IDispatch* object) : object_(object) { object_->AddRef(); }
    ~View() { object_->Release(); }

    HRESULT QueryInterface(REFIID riid, void** object) override {
        const bool known = Same(riid, IID_IUnknown) || Same(riid, IID_IDispatch);
        *object = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    HRESULT GetTypeInfoCount(UINT* count) override { return object_->GetTypeInfoCount(count); }
    HRESULT GetTypeInfo(UINT which, LCID lcid, ITypeInfo** info) override {
        return object_->GetTypeInfo(which, lcid, info);
    }
    HRESULT GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override {
        return object_->GetIDsOfNames(riid, names, count, lcid, ids);
    }
    HRESULT Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                   EXCEPINFO* failure, UINT* wrong) override {
        const HRESULT code = object_->Invoke(id, riid, lcid, flags, parameters, result, failure, wrong);
        if (SUCCEEDED(code) && result && result->vt == VT_DISPATCH && result->pdispVal) {
            IDispatch* const inner = result->pdispVal;
            result->pdispVal = new View(inner);
            inner->Release();
        }
        return code;
    }

private:
    IDispatch* object_;
};

}  // namespace

Ref<Object> ForeignView(const Ref<Object>& object) {
    IUnknown* const pointer = Boundary::ToPointer(object);
    View* const view = new View(static_cast<IDispatch*>(pointer));
    pointer->Release();
    Ref<Object> foreign = Boundary::FromPointer(view);
    view->Release();
    return foreign;
}

}  // namespace TestKit

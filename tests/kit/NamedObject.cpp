#include "kit/NamedObject.h"

#include "platform/component/binary/Bstr.h"
#include "platform/component/binary/Counted.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Marshal.h"
#include "platform/runtime/Convert.h"

#include <iterator>

namespace TestKit {
namespace {

class Named final : public Counted<Named, IDispatch> {
public:
    explicit Named(NamedMembers members) : members_(std::move(members)) {}
    ~Named() = default;

    HRESULT QueryInterface(REFIID riid, void** object) override {
        const bool known = Same(riid, IID_IUnknown) || Same(riid, IID_IDispatch);
        *object = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    HRESULT GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        const auto found = members_.find(FromUnits(names[0]));
        ids[0] = DISPID_UNKNOWN;
        if (found == members_.end()) return DISP_E_UNKNOWNNAME;
        ids[0] = static_cast<DISPID>(std::distance(members_.begin(), found)) + 1;
        return S_OK;
    }
    HRESULT Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* given, VARIANT* result, EXCEPINFO* failure,
                   UINT*) override {
        const auto member = std::next(members_.begin(), id - 1);
        NamedCall call{{}, (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0};
        for (UINT i = given->cArgs; i-- > 0;)
            call.arguments.push_back(IsLeftOut(given->rgvarg[i]) ? Variant() : FromVariant(given->rgvarg[i]));
        try {
            const Variant value = member->second(call);
            if (result) ToVariant(value, *result);
            return S_OK;
        } catch (const Error& error) {
            failure->scode = CodeOf(error);
            failure->bstrSource = ToBstr(error.Source);
            failure->bstrDescription = ToBstr(error.Description);
            return DISP_E_EXCEPTION;
        }
    }

private:
    NamedMembers members_;
};

}  // namespace

Ref<Object> NamedObject(NamedMembers members) {
    Named* const named = new Named(std::move(members));
    Ref<Object> foreign = Boundary::FromPointer(named);
    named->Release();
    return foreign;
}

}  // namespace TestKit

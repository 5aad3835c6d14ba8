#include "platform/component/dispatch/ClassInfo.h"

#include "platform/component/binary/Counted.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/binary/TypeInfo.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"

#include <new>
#include <ocidl.h>

namespace Platform {
namespace {

/// The `IProvideClassInfo` of an object.
class ClassInfo final : public Counted<ClassInfo, IProvideClassInfo> {
public:
    explicit ClassInfo(InterfacePointer& owner) : owner_(owner) { Boundary::AddRef(owner_); }
    ~ClassInfo() { Boundary::Release(owner_); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object || !Same(riid, IID_IProvideClassInfo))
            return reinterpret_cast<IUnknown*>(&owner_)->QueryInterface(riid, object);
        AddRef();
        *object = this;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
        return info ? ClassInfoOf(Boundary::ObjectOf(owner_).Describe().Identity(), info) : E_POINTER;
    }

private:
    InterfacePointer& owner_;
};

}  // namespace

HRESULT QueryClassInfo(InterfacePointer& object, REFIID riid, void** found) noexcept {
    *found = nullptr;
    if (!Same(riid, IID_IProvideClassInfo) || !HasTypeInfo(Boundary::ObjectOf(object).Describe().Identity()))
        return E_NOINTERFACE;
    *found = new (std::nothrow) ClassInfo(object);
    return *found ? S_OK : E_OUTOFMEMORY;
}

}  // namespace Platform

#include "platform/component/dispatch/Boundary.h"

#include "platform/component/binary/Counted.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/ClassInfo.h"
#include "platform/component/dispatch/EventSource.h"
#include "platform/component/dispatch/Interface.h"

#include <array>
#include <atomic>
#include <new>
#include <utility>
#include <vector>

namespace Platform {
namespace {

/// Returns a number for the calling thread that no other thread has.
std::uint32_t ThisThread() {
    static std::atomic<std::uint32_t> last = 0;
    thread_local std::uint32_t number = 0;
    if (number == 0) number = ++last;
    return number;
}

std::vector<std::pair<std::string_view, Adapter>>& Adapters() {
    static auto& adapters = *new std::vector<std::pair<std::string_view, Adapter>>;  // for the whole process
    return adapters;
}

/// Returns the first function of a pointer's vtable.
const void* FirstSlot(IUnknown* pointer) { return **reinterpret_cast<const void* const* const*>(pointer); }

/// The `ISupportErrorInfo` of an object.
class ErrorSupport final : public Counted<ErrorSupport, ISupportErrorInfo> {
public:
    explicit ErrorSupport(InterfacePointer& owner) : owner_(owner) { Boundary::AddRef(owner_); }
    ~ErrorSupport() { Boundary::Release(owner_); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
        const bool supported =
            Same(riid, IID_IDispatch) || Same(riid, Boundary::ObjectOf(owner_).Describe().Identity());
        return supported ? S_OK : S_FALSE;
    }

private:
    InterfacePointer& owner_;
};

// ---- IUnknown ---------------------------------------------------------------------------------------

HRESULT STDMETHODCALLTYPE QueryObject(InterfacePointer* self, REFIID riid, void** object) noexcept {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (Same(riid, IID_NULL)) return E_NOINTERFACE;
    const Interface& described = Boundary::ObjectOf(*self).Describe();
    if (Same(riid, IID_IUnknown) || Same(riid, described.Identity()) ||
        (described.IsDispatch() && Same(riid, IID_IDispatch))) {
        Boundary::AddRef(*self);
        *object = self;
        return S_OK;
    }
    if (!described.IsDispatch()) return E_NOINTERFACE;
    if (Same(riid, IID_ISupportErrorInfo)) {
        *object = new (std::nothrow) ErrorSupport(*self);
        return *object ? S_OK : E_OUTOFMEMORY;
    }
    const HRESULT found = QueryEventSource(*self, riid, object);
    return found == E_NOINTERFACE ? QueryClassInfo(*self, riid, object) : found;
}

ULONG STDMETHODCALLTYPE AddRefObject(InterfacePointer* self) noexcept { return Boundary::AddRef(*self); }

ULONG STDMETHODCALLTYPE ReleaseObject(InterfacePointer* self) noexcept { return Boundary::Release(*self); }

HRESULT ErrorSupport::QueryInterface(REFIID riid, void** object) {
    if (!object || !Same(riid, IID_ISupportErrorInfo)) return QueryObject(&owner_, riid, object);
    AddRef();
    *object = this;
    return S_OK;
}

}  // namespace

// ---- objects ----------------------------------------------------------------------------------------

IUnknown* Boundary::ToPointer(const Ref<Object>& object) {
    if (!object) return nullptr;
    if (!object->Slots) {
        if (const auto* foreign = dynamic_cast<const Foreign*>(object.Get())) {
            foreign->Pointer()->AddRef();
            return foreign->Pointer();
        }
        if (const Ref<Object> adapted = object->Adapted()) return ToPointer(adapted);
        object->Slots = object->Describe().Slots();
        object->thread_ = ThisThread();
    }
    object->Hold();
    return reinterpret_cast<IUnknown*>(static_cast<InterfacePointer*>(object.Get()));
}

Object* Boundary::OwnObject(IUnknown* pointer) {
    if (FirstSlot(pointer) != UnknownSlots().front()) return nullptr;
    return &ObjectOf(*reinterpret_cast<InterfacePointer*>(pointer));
}

Ref<Object> Boundary::FromPointer(IUnknown* pointer) {
    if (!pointer) return nullptr;
    if (Object* own = OwnObject(pointer)) return Ref<Object>(own);
    return New<Foreign>(pointer);
}

std::span<const void* const> Boundary::UnknownSlots() {
    static const std::array slots{reinterpret_cast<const void*>(QueryObject),
                                  reinterpret_cast<const void*>(AddRefObject),
                                  reinterpret_cast<const void*>(ReleaseObject)};
    return slots;
}

ULONG Boundary::AddRef(InterfacePointer& pointer) {
    const Object& object = ObjectOf(pointer);
    object.Hold();
    return object.references_;
}

ULONG Boundary::Release(InterfacePointer& pointer) {
    const Object& object = ObjectOf(pointer);
    const ULONG left = object.references_ - 1;
    object.Release();
    return left;
}

bool Boundary::IsOnItsThread(const InterfacePointer& pointer) {
    return static_cast<const Object&>(pointer).thread_ == ThisThread();
}

Foreign::Foreign(IUnknown* pointer) : pointer_(pointer) {
    void* dispatch = nullptr;
    isDispatch_ = SUCCEEDED(pointer->QueryInterface(IID_IDispatch, &dispatch)) && dispatch;
    if (isDispatch_)
        pointer_ = static_cast<IDispatch*>(dispatch);
    else
        pointer_->AddRef();
}

Foreign::~Foreign() { pointer_->Release(); }

Ref<Object> Foreign::AdaptedAs(std::string_view className) const {
    if (!isDispatch_) return nullptr;
    for (const auto& [name, adapt] : Adapters())
        if (name == className) return adapt(Ref<Object>(const_cast<Foreign*>(this)));
    return nullptr;
}

void RegisterAdapter(std::string_view className, Adapter adapt) { Adapters().emplace_back(className, adapt); }

}  // namespace Platform

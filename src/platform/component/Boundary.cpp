#include "platform/component/Boundary.h"

#include "platform/component/Dispatch.h"
#include "platform/component/Interface.h"
#include "platform/component/Marshal.h"

#include <atomic>

namespace Platform {
namespace {

/// A number for the calling thread that no other thread has.
std::uint32_t ThisThread() {
    static std::atomic<std::uint32_t> last = 0;
    thread_local const std::uint32_t number = ++last;
    return number;
}

/// The first function of a pointer's table.
const void* FirstSlot(IUnknown* pointer) { return **reinterpret_cast<const void* const* const*>(pointer); }

}  // namespace

// ---- objects ----------------------------------------------------------------------------------------

IUnknown* Boundary::Give(const Ref<Object>& object) {
    if (!object) return nullptr;
    if (!object->Slots) {
        if (const auto* foreign = dynamic_cast<const Foreign*>(object.Get())) {
            foreign->Pointer()->AddRef();
            return foreign->Pointer();
        }
        object->Slots = object->Describe().Slots();
        object->thread_ = ThisThread();
    }
    object->Hold();
    return reinterpret_cast<IUnknown*>(static_cast<Face*>(object.Get()));
}

Object* Boundary::Own(IUnknown* pointer) {
    const void* first = FirstSlot(pointer);
    if (first != DispatchSlots().front() && first != EnumeratorSlots().front()) return nullptr;
    return &ObjectOf(*reinterpret_cast<Face*>(pointer));
}

Ref<Object> Boundary::Take(IUnknown* pointer) {
    if (!pointer) return nullptr;
    if (Object* own = Own(pointer)) return Ref<Object>(own);
    return New<Foreign>(pointer);
}

ULONG Boundary::AddRef(Face& face) {
    const Object& object = ObjectOf(face);
    object.Hold();
    return object.references_;
}

ULONG Boundary::Release(Face& face) {
    const Object& object = ObjectOf(face);
    const ULONG left = object.references_ - 1;
    object.Release();
    return left;
}

bool Boundary::IsAtHome(const Face& face) { return static_cast<const Object&>(face).thread_ == ThisThread(); }

Foreign::Foreign(IUnknown* pointer) : pointer_(pointer) {
    void* dispatch = nullptr;
    isDispatch_ = SUCCEEDED(pointer->QueryInterface(IID_IDispatch, &dispatch)) && dispatch;
    if (isDispatch_)
        pointer_ = static_cast<IDispatch*>(dispatch);
    else
        pointer_->AddRef();
}

Foreign::~Foreign() { pointer_->Release(); }

}  // namespace Platform

#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

#include <span>

/// Where objects meet the component model.
namespace Platform {

/// Objects as interface pointers, and back.
///
/// An object's interface pointer is the object's own address, so that it is the same one each time;
/// references of component clients and of this side are one count.
class Boundary {
public:
    /// The interface pointer of an object with a reference for the caller; null for nothing. A foreign object
    /// gives the pointer that it came with.
    static IUnknown* ToPointer(const Ref<Object>& object);

    /// The object of an interface pointer; nothing for null. A pointer of somebody else is held as a
    /// `Foreign`.
    static Ref<Object> FromPointer(IUnknown* pointer);

    /// The object of an interface pointer if it is one of this host, else null.
    static Object* OwnObject(IUnknown* pointer);

    static Object& ObjectOf(InterfacePointer& pointer) { return static_cast<Object&>(pointer); }
    static ULONG AddRef(InterfacePointer& pointer);
    static ULONG Release(InterfacePointer& pointer);

    /// The functions of `IUnknown`, with which the vtable of every object begins.
    static std::span<const void* const> UnknownSlots();

    /// True on the thread that the object crossed the boundary on.
    static bool IsOnItsThread(const InterfacePointer& pointer);
};

/// An object of somebody else, which passes through as it is: it can be kept in a collection and got back.
class Foreign final : public Object {
public:
    explicit Foreign(IUnknown* pointer);
    ~Foreign() override;

    IUnknown* Pointer() const noexcept { return pointer_; }
    bool IsDispatch() const noexcept { return isDispatch_; }

private:
    IUnknown* pointer_;
    bool isDispatch_;
};

}  // namespace Platform

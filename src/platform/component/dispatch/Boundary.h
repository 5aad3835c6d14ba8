#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

#include <span>

/// The COM side of objects: interface pointers and `IUnknown`.
namespace Platform {

/// Converts objects to COM interface pointers and back.
///
/// The interface pointer of an object points into the object, so that it is always the same one. COM clients and C++
/// code count references in one place. An object is used on the thread on which it was first passed to a client.
class Boundary {
public:
    /// Returns the interface pointer of an object, with a reference for the caller; null for null. For a foreign object
    /// it is the pointer that was passed in.
    static IUnknown* ToPointer(const Ref<Object>& object);

    /// Returns the object of an interface pointer; null for null. A pointer that is not one of this platform library is
    /// held by a new `Foreign`.
    static Ref<Object> FromPointer(IUnknown* pointer);

    /// Returns the object of an interface pointer if it is one of this platform library, otherwise null.
    static Object* OwnObject(IUnknown* pointer);

    /// Returns the object that contains `pointer`.
    static Object& ObjectOf(InterfacePointer& pointer) { return static_cast<Object&>(pointer); }
    /// Add or release a reference and return the number of references, as `IUnknown` does.
    static ULONG AddRef(InterfacePointer& pointer);
    static ULONG Release(InterfacePointer& pointer);

    /// Returns the functions of `IUnknown`, with which the vtable of every object begins.
    static std::span<const void* const> UnknownSlots();

    /// Returns true on the thread on which the object was first passed to a client.
    static bool IsOnItsThread(const InterfacePointer& pointer);
};

/// Returns an object that passes its calls on to `foreign`, an object of another component with members that can be
/// called by name; null if it does not have the members of the class.
using Adapter = Ref<Object> (*)(const Ref<Object>& foreign);

/// Sets the adapter for arguments of the class with this `ClassName`. Called while the library is loaded, before any
/// object exists; it is not synchronised with other threads.
void RegisterAdapter(std::string_view className, Adapter adapt);

/// An object of another component. It can be stored in a collection, and is returned to clients as the same pointer.
/// If it has `IDispatch`, it can be passed where an object of a class with an adapter is required.
class Foreign final : public Object {
public:
    explicit Foreign(IUnknown* pointer);
    ~Foreign() override;

    Ref<Object> AdaptedAs(std::string_view className) const override;

    IUnknown* Pointer() const noexcept { return pointer_; }
    bool IsDispatch() const noexcept { return isDispatch_; }

private:
    IUnknown* pointer_;
    bool isDispatch_;
};

}  // namespace Platform

#pragma once

#include "platform/runtime/Error.h"

#include <cstdint>
#include <utility>

namespace Platform {

class Boundary;   // converts objects to COM interface pointers
class Interface;  // the interface table of a class
class Object;
template <class T>
class Ref;

/// What a COM client's interface pointer points to: the pointer to the vtable of the object. The vtable belongs to the
/// interface table of the class and is valid until the process ends.
struct InterfacePointer {
    const void* const* Slots = nullptr;  ///< null until the object is passed to a COM client
};

/// Counts the living objects of one library, which is not unloaded while the count is above zero. The library
/// implements it and owns the object, which is not deleted through this class.
class ObjectCounter {
public:
    /// Called once after an object was created, and once after it was deleted. An object whose constructor raises is
    /// not counted. Any thread may call, so an implementation must be atomic.
    virtual void ObjectBegan() noexcept = 0;
    virtual void ObjectEnded() noexcept = 0;

protected:
    ~ObjectCounter() = default;
};

/// What the layer of the COM interfaces (component/dispatch) knows about an object. The runtime is complete without
/// it: objects then belong to no library and have no interface table. Both functions are called on any thread; neither
/// may be null.
struct ObjectHooks {
    const Interface& (*TableOf)(const Object& object);           ///< of an object that doesn't describe itself
    ObjectCounter* (*CounterOf)(const Object& object) noexcept;  ///< null for an object of no library
};

/// Replaces the hooks. Called once, before any object exists, by the layer of the COM interfaces when it is loaded. It
/// is not synchronised with other threads: a later call would change the counter of objects that are already counted.
void InstallObjectHooks(const ObjectHooks& hooks) noexcept;

/// The base class of everything that is held by counted reference.
///
/// An object is created by `New<T>()` and is deleted when no `Ref` and no COM client holds it any more. Objects that
/// refer to each other in a cycle are never deleted. An object on the stack is possible as long as no `Ref` to it is
/// created.
///
/// It belongs to the thread that created it: the count is not atomic, and no member may be called from another thread.
/// C++ programs must ensure this themselves; for COM clients the thread is checked (RPC_E_WRONG_THREAD).
///
/// A class derives from `Object` or from a class that does, names itself by `ClassName`, and returns its interface
/// table by `Describe`. A class without a table can be held by references and collections, but not be called by name.
///
/// An object can't be copied. Equality of objects is identity: two references are equal if they refer to the same one.
class Object : private InterfacePointer {
public:
    static constexpr const char* ClassName = "Object";  ///< each class has its own

    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    /// Called when the last reference is released, on the thread of that release. Must not throw.
    virtual ~Object();

    /// Returns the interface table of the class: the members that a client may call by name, in their documented order
    /// (component/dispatch/Interface.h). The table is the same for all objects of the class and valid until the process
    /// ends. A class overrides it; the base version asks `ObjectHooks::TableOf`. Raises 438 in a program that has no
    /// interface tables.
    virtual const Interface& Describe() const;

    /// Returns an object of the class with this `ClassName` that passes its calls on to this object, null if there is
    /// none. Only an object of another component has any; `To<Ref<T>>` calls it for an object that is not a `T`. Raises
    /// what the other component raises.
    virtual Ref<Object> AdaptedAs(std::string_view className) const;

    /// Returns the object of another component to which this one passes its calls on, and which a COM client receives
    /// in its place; null if there is none.
    virtual Ref<Object> Adapted() const;

private:
    template <class T>
    friend class Ref;
    template <class T, class... Args>
    friend Ref<T> New(Args&&... args);
    friend class Boundary;

    void Hold() const noexcept { ++references_; }  ///< adds a reference
    /// Releases a reference; deletes the object if it was the last one.
    void Release() const noexcept {
        if (--references_ == 0) End();
    }
    void Begin() const noexcept;  ///< counts the object in its library
    void End() const noexcept;    ///< deletes the object

    mutable std::uint32_t references_ = 0;  ///< of `Ref`s and of COM clients together
    mutable std::uint32_t thread_ = 0;      ///< the object's thread; 0 until it is passed to a COM client
};

/// A counted reference to an object, or null.
///
/// A copy refers to the same object; the last reference deletes it. A reference is used on the object's thread only,
/// also for copying and deleting, because the count is not atomic. It is as large as a pointer. `T` may be a class that
/// is only declared, as long as no reference is copied or deleted there.
///
/// A const `Ref<T>` still allows changes of the object; `Ref<const T>` does not.
template <class T>
class Ref {
public:
    /// A null reference.
    Ref() = default;
    Ref(std::nullptr_t) {}
    /// Counts a reference to an object that `New` created, or to null. An object that was not created by `New` would be
    /// deleted with its last reference.
    explicit Ref(T* object) : object_(object) { Hold(); }
    /// Adds a reference to the same object.
    Ref(const Ref& other) : object_(other.object_) { Hold(); }
    /// Leaves `other` null.
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    /// Converts to a reference to a base class, which is a further reference to the object. The opposite conversion is
    /// `To<Ref<T>>`, which checks the class.
    template <class U>
    requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other) : object_(other.Get()) { Hold(); }
    /// Releases the reference; deletes the object if it was the last one.
    ~Ref() { Release(); }

    /// Releases the old object after the new one is held, so that an assignment of the same object is safe.
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    /// Return the object. Raise 91 for a null reference, so its use is never undefined behaviour.
    T* operator->() const { return &Checked(); }
    T& operator*() const { return Checked(); }

    /// Returns the object, or null. The pointer is valid as long as a reference to the object exists.
    T* Get() const noexcept { return object_; }
    /// Returns false for a null reference.
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// Returns true if both refer to the same object, or if both are null.
    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }

private:
    T& Checked() const {
        if (!object_) Raise(err::ObjectNotSet);
        return *object_;
    }
    void Hold() const noexcept {
        if (object_) static_cast<const Object*>(object_)->Hold();
    }
    void Release() noexcept {
        if (object_) static_cast<const Object*>(object_)->Release();
    }

    T* object_ = nullptr;
};

/// Creates an object and returns the first reference to it. The object belongs to the calling thread. It is counted in
/// the library of its class after its constructor has returned; the constructor itself must not create a `Ref` to the
/// object, whose end would delete it. Raises what the constructor raises, and `std::bad_alloc`; no object exists then.
template <class T, class... Args>
Ref<T> New(Args&&... args) {
    T* object = new T(std::forward<Args>(args)...);
    static_cast<const Object*>(object)->Begin();
    return Ref<T>(object);
}

}  // namespace Platform

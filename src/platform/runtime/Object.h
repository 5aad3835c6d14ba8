#pragma once

#include "platform/runtime/Error.h"

#include <cstdint>
#include <utility>

namespace Platform {

class Boundary;
class Interface;
class Object;
template <class T>
class Ref;

/// What a COM client's interface pointer points to: the pointer to the vtable of the object.
struct InterfacePointer {
    const void* const* Slots = nullptr;  ///< null until the object is passed to a COM client
};

/// Counts the living objects of one library, which is not unloaded while the count is above zero.
class ObjectCounter {
public:
    /// Called once after an object was created, and once after it was deleted. Any thread may call.
    virtual void ObjectBegan() noexcept = 0;
    virtual void ObjectEnded() noexcept = 0;

protected:
    ~ObjectCounter() = default;
};

/// What the layer of the COM interfaces (component/dispatch) knows about an object. The runtime is complete without
/// it: objects then belong to no library and have no interface table.
struct ObjectHooks {
    const Interface& (*TableOf)(const Object& object);           ///< of an object that doesn't describe itself
    ObjectCounter* (*CounterOf)(const Object& object) noexcept;  ///< null for an object of no library
};

/// Replaces the hooks. Called once, before any object exists, by the layer of the COM interfaces when it is loaded.
void InstallObjectHooks(const ObjectHooks& hooks) noexcept;

/// The base class of everything that is held by counted reference.
///
/// An object is created by `New<T>()` and is deleted when no `Ref` and no COM client holds it any more. It belongs to
/// the thread that created it: the count is not atomic, and no member may be called from another thread.
class Object : private InterfacePointer {
public:
    static constexpr const char* ClassName = "Object";  ///< each class has its own

    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    /// Returns the interface table of the class: the members that a client may call by name, in their documented order
    /// (component/dispatch/Interface.h). Raises 438 in a program that has no interface tables.
    virtual const Interface& Describe() const;

private:
    template <class T>
    friend class Ref;
    template <class T, class... Args>
    friend Ref<T> New(Args&&... args);
    friend class Boundary;

    void Hold() const noexcept { ++references_; }
    void Release() const noexcept {
        if (--references_ == 0) End();
    }
    void Begin() const noexcept;  ///< counts the object in its library
    void End() const noexcept;    ///< deletes the object

    mutable std::uint32_t references_ = 0;
    mutable std::uint32_t thread_ = 0;  ///< the object's thread; 0 until it is passed to a COM client
};

/// A counted reference to an object, or null.
///
/// A copy refers to the same object; the last reference deletes it. A reference is used on the object's thread only,
/// also for copying and deleting, because the count is not atomic.
template <class T>
class Ref {
public:
    Ref() = default;
    Ref(std::nullptr_t) {}
    /// Counts a reference to an object that `New` created, or to null. An object that was not created by `New` would be
    /// deleted with its last reference.
    explicit Ref(T* object) : object_(object) { Hold(); }
    Ref(const Ref& other) : object_(other.object_) { Hold(); }
    /// Leaves `other` null.
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    /// Converts to a reference to a base class.
    template <class U>
    requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other) : object_(other.Get()) { Hold(); }
    ~Ref() { Release(); }

    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    /// Return the object. Raise 91 for a null reference.
    T* operator->() const { return &Checked(); }
    T& operator*() const { return Checked(); }

    /// Returns the object, or null. The pointer is valid as long as a reference to the object exists.
    T* Get() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
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

/// Creates an object and returns the first reference to it. The object belongs to the calling thread. Raises what the
/// constructor raises; no object exists then.
template <class T, class... Args>
Ref<T> New(Args&&... args) {
    T* object = new T(std::forward<Args>(args)...);
    static_cast<const Object*>(object)->Begin();
    return Ref<T>(object);
}

}  // namespace Platform

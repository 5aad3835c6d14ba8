#pragma once

#include "platform/runtime/Error.h"

#include <cstdint>
#include <utility>

namespace Platform {

class Boundary;
class Interface;
template <class T>
class Ref;

/// What an interface pointer of a component client points at: the functions of its object.
struct Face {
    const void* const* Slots = nullptr;  ///< null until the object crosses the boundary
};

/// The root of everything that is held by counted reference.
///
/// An object is made with `New<T>()`, lives as long as a `Ref` or a component client holds it, and stays on the
/// thread that made it: the count is not atomic, and no member of any object may be called from another thread.
class Object : private Face {
public:
    static constexpr const char* ClassName = "Object";  ///< each class has its own

    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    /// The members that a client may call by name, in their documented order (component/Interface.h).
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
    /// Counts the object among the living of its library, and ends it.
    void Begin() const noexcept;
    void End() const noexcept;

    mutable std::uint32_t references_ = 0;
    mutable std::uint32_t thread_ = 0;  ///< whose it is, once it crossed the boundary
};

/// A counted reference to an object, or nothing.
///
/// Copying shares the object, the last reference ends it. Following a reference to nothing raises 91,
/// so that a forgotten object is a failure with a number and never a crash.
template <class T>
class Ref {
public:
    Ref() = default;
    Ref(std::nullptr_t) {}
    explicit Ref(T* object) : object_(object) { Hold(); }
    Ref(const Ref& other) : object_(other.object_) { Hold(); }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other) : object_(other.Get()) { Hold(); }
    ~Ref() { Release(); }

    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    T* operator->() const { return &Checked(); }
    T& operator*() const { return Checked(); }
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

/// Makes an object and gives the first reference to it.
template <class T, class... Args>
Ref<T> New(Args&&... args) {
    T* object = new T(std::forward<Args>(args)...);
    static_cast<const Object*>(object)->Begin();
    return Ref<T>(object);
}

}  // namespace Platform

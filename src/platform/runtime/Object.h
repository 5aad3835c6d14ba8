#pragma once

#include "platform/runtime/Error.h"

#include <cstddef>
#include <utility>

namespace Platform {

class Interface;

/// The root of everything that is held by counted reference.
///
/// An object is made with `New<T>()`, lives as long as a `Ref` holds it, and stays on the thread that
/// made it: the count is not atomic, and no member of any object may be called from another thread.
class Object {
public:
    static constexpr const char* ClassName = "Object";  ///< each class has its own

    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    /// The members that a client may call by name, in their documented order (component/Interface.h).
    virtual const Interface& Describe() const;

private:
    template <class T>
    friend class Ref;
    mutable std::size_t references_ = 0;
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
        if (object_) ++static_cast<const Object*>(object_)->references_;
    }
    void Release() noexcept {
        if (object_ && --static_cast<const Object*>(object_)->references_ == 0) delete object_;
    }

    T* object_ = nullptr;
};

/// Makes an object and gives the first reference to it.
template <class T, class... Args>
Ref<T> New(Args&&... args) {
    return Ref<T>(new T(std::forward<Args>(args)...));
}

}  // namespace Platform

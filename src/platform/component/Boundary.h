#pragma once

#include "platform/component/Identifier.h"
#include "platform/runtime/Object.h"

#include <memory>

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
    static IUnknown* Give(const Ref<Object>& object);

    /// The object of an interface pointer; nothing for null. A pointer of somebody else is held as a
    /// `Foreign`.
    static Ref<Object> Take(IUnknown* pointer);

    /// The object of an interface pointer if it is one of this host, else null.
    static Object* Own(IUnknown* pointer);

    static Object& ObjectOf(Face& face) { return static_cast<Object&>(face); }
    static ULONG AddRef(Face& face);
    static ULONG Release(Face& face);

    /// True on the thread that the object crossed the boundary on.
    static bool IsAtHome(const Face& face);
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

/// Frees a counted wide string.
struct FreesText {
    void operator()(BSTR text) const noexcept { SysFreeString(text); }
};
using OwnedText = std::unique_ptr<OLECHAR, FreesText>;

}  // namespace Platform

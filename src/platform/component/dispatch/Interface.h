#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/component/dispatch/Member.h"

#include <atomic>
#include <typeinfo>

namespace Platform {

/// The members of a class that clients call, in their documented order.
///
/// Made once for each class and shared by all threads; only `Publish` changes it, once.
class Interface {
public:
    /// A dispatch interface: its vtable has the slots of `IUnknown` and `IDispatch`, then the members' own.
    Interface(String className, std::vector<Member> members, std::span<const void* const> dispatchSlots);

    /// One of the standard interfaces in place of a dispatch interface.
    Interface(String className, const IID& identity, const std::type_info& type,
              std::span<const void* const> slots);

    const String& ClassName() const noexcept { return className_; }
    const std::vector<Member>& Members() const noexcept { return members_; }

    /// The member of this name (without regard to case) and kind, or nothing.
    const Member* Find(std::string_view name, MemberKind kind) const;

    /// Any member of this name, or nothing.
    const Member* Find(std::string_view name) const;

    /// The member of this identity and kind, or nothing.
    const Member* Find(DISPID id, MemberKind kind) const;

    /// The member that a slot belongs to, or nothing.
    const Member* FindSlot(const void* slot) const;

    // ---- at the boundary ------------------------------------------------------------------------

    /// What an interface pointer of an object points at.
    const void* const* Slots() const noexcept { return table_.data() + TableHead; }

    bool IsDispatch() const noexcept { return isDispatch_; }

    /// The identity of the (dual) interface; all zero before `Publish`.
    const IID& Identity() const noexcept { return identity_; }

    /// The counter of the library whose class this is; null before `Publish`.
    ObjectCounter* Owner() const noexcept { return owner_.load(std::memory_order_acquire); }

    /// Enters the interface into a library, which then counts the objects of the class. Once, before the
    /// library gives its first object out.
    void Publish(const IID& identity, ObjectCounter& owner) const;

private:
    /// What stands in front of the slots in a C++ table of functions: how far the object reaches to the front
    /// (0), and its type. Compilers that check the type of a pointer look there.
    static constexpr std::size_t TableHead = 2;

    void FillTable(const std::type_info& type, std::span<const void* const> slots);

    String className_;
    std::vector<Member> members_;
    std::vector<const void*> table_;
    bool isDispatch_ = true;
    mutable IID identity_{};
    mutable std::atomic<ObjectCounter*> owner_ = nullptr;
};

/// Calls a member by name. `arguments` holds the values in order; those that come back are changed in
/// it; optional ones may be missing at the end. Gives the result, `Empty` where there is none.
///
/// Raises 438 for an unknown name or a put of what can only be read, 450 for too many arguments, 449
/// for a missing one, 13 for one of the wrong type, and what the member raises.
Variant Invoke(Object& object, std::string_view name, MemberKind kind, std::span<Variant> arguments);

}  // namespace Platform

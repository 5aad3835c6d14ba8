#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/component/dispatch/Member.h"

#include <atomic>
#include <typeinfo>

namespace Platform {

/// The interface table of a class: the members that clients can call, in their documented order.
///
/// There is one for each class, created on first use and never deleted. All threads may read it; only `Publish` changes
/// it, once.
class Interface {
public:
    /// A dual interface: its vtable has the slots of `IUnknown` and `IDispatch`, followed by those of the
    /// members.
    Interface(String className, const char* help, std::vector<Member> members,
              std::span<const void* const> dispatchSlots);

    /// A standard interface, such as `IEnumVARIANT`, instead of a dual interface. It has no members.
    Interface(String className, const IID& identity, const std::type_info& type, std::span<const void* const> slots);

    /// Returns the name of the class without its library: "cPatient".
    const String& ClassName() const noexcept { return className_; }

    /// Returns one line about what the class is; empty for a standard interface.
    const char* Help() const noexcept { return help_; }

    /// Returns the members in the order of their slots. A property that can be read and written has one member for each
    /// kind of access, with the same name and dispatch identifier.
    const std::vector<Member>& Members() const noexcept { return members_; }

    /// Returns the member of this name (without regard to case) and kind, or null. A get also matches an operation,
    /// because late-bound clients can't always distinguish them; so do put and put by reference.
    const Member* Find(std::string_view name, MemberKind kind) const;

    /// Returns the first member of this name, without regard to case, or null.
    const Member* Find(std::string_view name) const;

    /// Returns the member with this dispatch identifier and kind, or null.
    const Member* Find(DISPID id, MemberKind kind) const;

    /// Returns the member that a slot of the vtable belongs to, or null.
    const Member* FindSlot(const void* slot) const;

    // ---- for COM clients ------------------------------------------------------------------------

    /// Returns the vtable, valid as long as the program.
    const void* const* Slots() const noexcept { return table_.data() + TableHead; }

    /// Returns true for a dual interface.
    bool IsDispatch() const noexcept { return isDispatch_; }

    /// Returns the interface identifier; all zero before `Publish`.
    const IID& Identity() const noexcept { return identity_; }

    /// Returns the counter of the library of the class; null before `Publish`, and for classes of C++ programs.
    ObjectCounter* Owner() const noexcept { return owner_.load(std::memory_order_acquire); }

    /// Sets the interface identifier and the library, which then counts the objects of the class. Called once, before
    /// the library creates its first object for a client.
    void Publish(const IID& identity, ObjectCounter& owner) const;

private:
    /// The number of words before the slots, as in a C++ vtable: the offset of the object (0) and its type. Compilers
    /// that check the type of a pointer read them.
    static constexpr std::size_t TableHead = 2;

    void FillTable(const std::type_info& type, std::span<const void* const> slots);

    String className_;
    const char* help_ = "";
    std::vector<Member> members_;
    std::vector<const void*> table_;
    bool isDispatch_ = true;
    mutable IID identity_{};
    mutable std::atomic<ObjectCounter*> owner_ = nullptr;
};

/// Calls a member by name. `arguments` has the values in order; arguments that are written back are changed in it, also
/// when the member raises; optional arguments may be left out at the end. Returns the result, `Empty` if the member has
/// none.
///
/// Raises 438 for an unknown name or an assignment to a read-only property, 450 for too many arguments, 449 for a
/// missing argument, 13 for one of another type, and what the member raises. Called on the object's thread.
Variant Invoke(Object& object, std::string_view name, MemberKind kind, std::span<Variant> arguments);

}  // namespace Platform

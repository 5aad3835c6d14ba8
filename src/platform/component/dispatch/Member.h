#pragma once

#include "platform/runtime/Variant.h"

#include <span>
#include <vector>

/// What an interface table contains about each member of a class: its name, its types, and the function that calls it.
namespace Platform {

/// One value of a public enumeration.
struct EnumerationValue {
    const char* Name;
    Long Value;
};

/// The name and the values of an enumeration, as `Name` and `Values`. Each public enumeration specialises it; an
/// argument or result of an enumeration without a specialisation does not compile.
template <class E>
struct EnumerationOf;

/// A public enumeration, independent of its C++ type.
struct Enumeration {
    const char* Name;
    std::span<const EnumerationValue> Values;
};

/// Returns the name and the values of the enumeration `E`.
template <class E>
constexpr Enumeration EnumerationFor() {
    return {EnumerationOf<E>::Name, EnumerationOf<E>::Values};
}

/// The type of an argument, a property or a result.
struct MemberType {
    enum class Kind { None, Boolean, Int16, Int32, Float32, Float64, Days, Text, Any, Object, Enumeration };
    Kind Is = Kind::None;
    const char* Name = "";  ///< of the class or the enumeration; empty for the other kinds
};

/// One argument of a member.
struct Argument {
    const char* Name = "";
    const char* Help = "";  ///< one line about its meaning
    MemberType Type;
    bool ByReference = false;
    bool ComesBack = false;  ///< passed by reference and written back
    bool Optional = false;
    Variant Default;  ///< the value of an argument that is left out
};

/// Dispatch identifiers with a special meaning: the default member, the enumerator of a collection, and the placeholder
/// of all other members, which the interface table replaces by increasing numbers.
constexpr Long DefaultMember = 0;
constexpr Long EnumeratorMember = -4;
constexpr Long ByPosition = 0x7FFFFFFF;  ///< replaced by a number that follows the order

/// The kind of a member. A property has one or two members: a get, a put.
enum class MemberKind { Operation, Get, Put, PutRef };

/// One member of an interface.
struct Member {
    String Name;
    const char* Help = "";  ///< one line about what it does or means
    MemberKind Kind = MemberKind::Operation;
    Long DispId = 0;                  ///< the dispatch identifier: 0 for the default member, -4 for the enumerator
    std::vector<Argument> Arguments;  ///< the value of a put is the last one
    MemberType Result;
    /// Calls the member on `self`, an object of the table's class. `arguments` has one value for each argument;
    /// arguments that are written back are changed in it, also when the member raises. Raises what the member raises,
    /// and `ArgumentError` if an argument can't be converted; the member is not called then.
    Variant (*Call)(Object& self, std::span<Variant> arguments) = nullptr;
    /// The function of the member in the vtable of the dual interface; it calls `Call`.
    const void* Slot = nullptr;

    /// Returns true for a put and a put by reference, whose last argument is the new value.
    bool IsPut() const noexcept { return Kind == MemberKind::Put || Kind == MemberKind::PutRef; }

    /// Returns true if a COM client passes the address of the value. For a put by reference it passes the object
    /// itself.
    bool CrossesAsPlace(const Argument& argument) const noexcept {
        return argument.ByReference && Kind != MemberKind::PutRef;
    }
};

}  // namespace Platform

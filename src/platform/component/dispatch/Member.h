#pragma once

#include "platform/runtime/Variant.h"

#include <span>
#include <vector>

/// What an interface table says about the members of a class: names, types, and the function that calls each.
namespace Platform {

/// One value of an enumeration that clients see.
struct EnumerationValue {
    const char* Name;
    Long Value;
};

/// The name and the values of an enumeration; specialised beside each enumeration that clients see.
template <class E>
struct EnumerationOf;

/// An enumeration that clients see, whatever its type.
struct Enumeration {
    const char* Name;
    std::span<const EnumerationValue> Values;
};

template <class E>
constexpr Enumeration EnumerationFor() {
    return {EnumerationOf<E>::Name, EnumerationOf<E>::Values};
}

/// The type of an argument, a property or a result.
struct MemberType {
    enum class Kind { None, Boolean, Int16, Int32, Float32, Float64, Days, Text, Any, Object, Enumeration };
    Kind Is = Kind::None;
    const char* Name = "";  ///< the class's or the enumeration's name; empty for the others
};

/// One argument of a member.
struct Argument {
    const char* Name = "";
    MemberType Type;
    bool ByReference = false;
    bool ComesBack = false;  ///< by reference, and written back
    bool Optional = false;
    Variant Default;  ///< what a left out argument counts as
};

/// Dispatch identities with a meaning of their own.
constexpr Long DefaultMember = 0;
constexpr Long EnumeratorMember = -4;
constexpr Long ByPosition = 0x7FFFFFFF;  ///< replaced by a number that follows the order

/// How a member is reached. A property has up to two members, a put and a get.
enum class MemberKind { Operation, Get, Put, PutRef };

/// One member of an interface.
struct Member {
    String Name;
    MemberKind Kind = MemberKind::Operation;
    Long DispId = 0;  ///< the number by which late-bound clients call it: 0 default, -4 enumerator
    std::vector<Argument> Arguments;  ///< a put's value is the last
    MemberType Result;
    /// Calls the member on `self`, an object of the table's class. `arguments` has one value for each
    /// argument; those that come back are written into it. Raises what the member raises, and
    /// `ArgumentError`.
    Variant (*Call)(Object& self, std::span<Variant> arguments) = nullptr;
    /// The member's function in the dual interface; it ends in `Call`.
    const void* Slot = nullptr;

    bool IsPut() const noexcept { return Kind == MemberKind::Put || Kind == MemberKind::PutRef; }

    /// True if an argument crosses the boundary as the place of its value. An object that is put by reference
    /// crosses itself.
    bool CrossesAsPlace(const Argument& argument) const noexcept {
        return argument.ByReference && Kind != MemberKind::PutRef;
    }
};

}  // namespace Platform

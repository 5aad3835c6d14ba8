#pragma once

#include "platform/runtime/Variant.h"

#include <span>
#include <vector>

/// What an interface table contains about each member of a class: its name, its types, and the function that calls it.
/// A table creates these structures once, on first use; they don't change after that and are never deleted, so any
/// thread may read them. All texts that are pointers are literals, in UTF-8 and never null.
namespace Platform {

/// One value of a public enumeration, as an element of `Values` of its `EnumerationOf`.
struct EnumerationValue {
    const char* Name;
    Long Value;
};

/// The name and the values of an enumeration, as `Name` and `Values`. Each public enumeration specialises it beside its
/// definition; an argument or result of an enumeration without a specialisation does not compile. The values have the
/// order in which the type library lists them.
template <class E>
struct EnumerationOf;

/// A public enumeration, independent of its C++ type. It refers to constant data and may be copied.
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
///
/// The kinds correspond to the types of C++ and of COM: `Boolean` is `bool` and VT_BOOL, `Int16` `Integer` and VT_I2,
/// `Int32` `Long` and VT_I4, `Float32` and `Float64` VT_R4 and VT_R8, `Days` `Date` and VT_DATE, `Text` `String` and
/// VT_BSTR, `Any` `Variant` and VARIANT, `Object` a `Ref` and an interface pointer, `Enumeration` an enumeration and
/// VT_I4. `None` is the result of a member without one, and the only kind that no argument has.
struct MemberType {
    enum class Kind { None, Boolean, Int16, Int32, Float32, Float64, Days, Text, Any, Object, Enumeration };
    Kind Is = Kind::None;
    const char* Name = "";  ///< of the class or the enumeration; empty for the other kinds
};

/// One argument of a member. If it is left out, which only an optional one may be, the member is called with `Default`,
/// converted to the type of the argument.
struct Argument {
    const char* Name = "";
    const char* Help = "";  ///< one line about its meaning
    MemberType Type;
    bool ByReference = false;  ///< a COM client passes the address of the value
    bool ComesBack = false;    ///< passed by reference and written back
    bool Optional = false;     ///< may be left out
    Variant Default;           ///< the value of an argument that is left out
};

/// Dispatch identifiers with a special meaning: the default member, the enumerator of a collection, and the placeholder
/// of all other members, which the interface table replaces by increasing numbers.
constexpr Long DefaultMember = 0;
constexpr Long EnumeratorMember = -4;
constexpr Long ByPosition = 0x7FFFFFFF;  ///< replaced by a number that follows the order

/// The kind of a member. A property has one or two members: a get, a put. A put by reference (`PutRef`) is the put of a
/// property whose value is an object. In a search by kind, `Get` and `Operation` also find each other, and so do `Put`
/// and `PutRef`, because late-bound clients can't always distinguish them.
enum class MemberKind { Operation, Get, Put, PutRef };

/// One member of an interface. Its name is unique in the interface without regard to case, except that the get and the
/// put of a property have the same name and the same dispatch identifier.
struct Member {
    String Name;
    const char* Help = "";  ///< one line about what it does or means
    MemberKind Kind = MemberKind::Operation;
    Long DispId = 0;                  ///< the dispatch identifier: 0 for the default member, -4 for the enumerator
    std::vector<Argument> Arguments;  ///< the value of a put is the last one
    MemberType Result;                ///< of kind `None` for a put, and for an operation without a result
    /// Calls the member on `self`, an object of the table's class. `arguments` has one value for each argument;
    /// arguments that are written back are changed in it, also when the member raises. Raises what the member raises,
    /// and `ArgumentError` if an argument can't be converted; the member is not called then.
    ///
    /// The caller passes exactly as many values as there are arguments, holds a reference to `self`, and calls on the
    /// object's thread; nothing of this is checked here. Returns `Empty` for a member without a result.
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

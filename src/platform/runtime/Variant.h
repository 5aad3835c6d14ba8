#pragma once

#include "platform/runtime/Date.h"
#include "platform/runtime/Object.h"

#include <type_traits>
#include <variant>
#include <vector>

namespace Platform {

/// The value of a variant that was never assigned, and of an optional argument of type `Variant` that was left out
/// unless its table names another default. It converts to 0, to false, and to the empty text.
struct Empty {
    friend bool operator==(Empty, Empty) { return true; }
};

/// A null of the database: the value of a column without a value. A conversion of it raises 94, except `Format`, which
/// returns the empty text. Two nulls compare equal here, unlike in SQL.
struct Null {
    friend bool operator==(Null, Null) { return true; }
};

/// A value of any of the system's types: the value of a column, and the type of a few members and arguments.
///
/// A new variant is `Empty`. An object is held by reference, a text is owned. A copy of a variant copies a text or a
/// list of texts and adds a reference to an object. Conversions are in Convert.h; nothing here converts, so a reader
/// asks by `Is` for the type, or converts by `To<T>` and does not depend on it.
///
/// A variant belongs to one thread at a time, one that holds an object to the object's thread.
class Variant {
public:
    /// The types that a variant can hold. The 64-bit integer exists for columns and COM clients; no member has that
    /// type. A list of texts is the only array. An enumeration is held as a `Long`, a foreign COM object as an
    /// `Object`.
    ///
    /// A COM client receives VT_EMPTY, VT_NULL, VT_BOOL, VT_I2, VT_I4, VT_I8, VT_R4, VT_R8, VT_DATE, VT_BSTR, an
    /// interface pointer (VT_DISPATCH, or VT_UNKNOWN for an object without `IDispatch`), and an array of VT_BSTR, in
    /// the order of these types. What a client passes becomes the same types; of the others, 8-bit numbers become
    /// `Integer`, VT_UI2 and VT_INT `Long`, VT_UI4, VT_UINT and VT_UI8 `std::int64_t`, VT_CY and VT_DECIMAL `double`.
    using Store = std::variant<Empty, Null, bool, Integer, Long, std::int64_t, float, double, Date, String, Ref<Object>,
                               std::vector<String>>;

    /// An empty variant.
    Variant() = default;
    /// A variant that holds `value`, in the type that it has: the literal 1 becomes a `Long`, because `int` is `Long`.
    /// Pointers are rejected, so that none becomes a boolean, and so are types that no type of `Store` can be made of
    /// without ambiguity.
    template <class T>
    requires(!std::is_same_v<std::remove_cvref_t<T>, Variant> && !std::is_enum_v<std::remove_cvref_t<T>> &&
             !std::is_pointer_v<std::decay_t<T>> && std::is_constructible_v<Store, T&&>) Variant(T&& value)
        : store_(std::forward<T>(value)) {}
    /// A null-terminated text is copied; the pointer must not be null. It must be UTF-8, as every `String`.
    Variant(const char* text) : store_(String(text)) {}
    /// An enumerator is held as its number, a `Long`.
    template <class E>
    requires std::is_enum_v<E> Variant(E value) : store_(static_cast<Long>(value)) {}
    /// An object is held as a reference to its base class; a null reference stays an object.
    template <class T>
    requires std::is_base_of_v<Object, T> Variant(const Ref<T>& object) : store_(Ref<Object>(object)) {}

    /// Returns true if the variant holds a `T`, one of the types of `Store`. Another type does not compile. For an
    /// object of any class, and for a null reference to one, `T` is `Ref<Object>`.
    template <class T>
    bool Is() const noexcept {
        return std::holds_alternative<T>(store_);
    }
    /// Returns the value itself, without conversion. The variant must hold a `T`, which the caller checks by `Is`;
    /// otherwise throws `std::bad_variant_access`. The reference is valid until the variant changes.
    template <class T>
    const T& As() const {
        return std::get<T>(store_);
    }
    /// Returns the value for moving it out, for example a long text without a copy. The variant must hold a `T`,
    /// otherwise throws `std::bad_variant_access`; it holds an unspecified value of type `T` afterwards.
    template <class T>
    T&& Take() {
        return std::get<T>(std::move(store_));
    }
    /// Returns the stored value, for `std::visit`. The reference is valid as long as the variant.
    const Store& Stored() const noexcept { return store_; }

    /// Returns true if type and value are equal: the `Integer` 1 and the `Long` 1 differ, and texts are compared by
    /// their bytes. Objects are equal if they are the same object. Never raises.
    friend bool operator==(const Variant& a, const Variant& b) { return a.store_ == b.store_; }

private:
    Store store_;
};

}  // namespace Platform

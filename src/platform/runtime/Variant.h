#pragma once

#include "platform/runtime/Date.h"
#include "platform/runtime/Object.h"

#include <type_traits>
#include <variant>
#include <vector>

namespace Platform {

/// The value of a variant that was never assigned.
struct Empty {
    friend bool operator==(Empty, Empty) { return true; }
};

/// A null of the database.
struct Null {
    friend bool operator==(Null, Null) { return true; }
};

/// A value of any of the system's types: the value of a column, and the type of a few members and arguments.
///
/// A new variant is `Empty`. An object is held by reference, a text is owned. Conversions are in Convert.h; nothing
/// here converts. A variant belongs to one thread at a time, one that holds an object to the object's thread.
class Variant {
public:
    /// The types that a variant can hold. The 64-bit integer exists for columns and COM clients; no member has that
    /// type.
    using Store = std::variant<Empty, Null, bool, Integer, Long, std::int64_t, float, double, Date, String, Ref<Object>,
                               std::vector<String>>;

    /// An empty variant.
    Variant() = default;
    /// A variant that holds `value`, in the type that it has. Pointers are rejected, so that none becomes a
    /// boolean.
    template <class T>
    requires(!std::is_same_v<std::remove_cvref_t<T>, Variant> && !std::is_enum_v<std::remove_cvref_t<T>> &&
             !std::is_pointer_v<std::decay_t<T>> && std::is_constructible_v<Store, T&&>) Variant(T&& value)
        : store_(std::forward<T>(value)) {}
    /// A null-terminated text is copied; the pointer must not be null.
    Variant(const char* text) : store_(String(text)) {}
    /// An enumerator is held as its number, a `Long`.
    template <class E>
    requires std::is_enum_v<E> Variant(E value) : store_(static_cast<Long>(value)) {}
    /// An object is held as a reference to its base class; a null reference stays an object.
    template <class T>
    requires std::is_base_of_v<Object, T> Variant(const Ref<T>& object) : store_(Ref<Object>(object)) {}

    /// Returns true if the variant holds a `T`, one of the types of `Store`.
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
    /// Returns the value for moving it out; the variant must hold a `T`, and holds an unspecified value of it
    /// afterwards.
    template <class T>
    T&& Take() {
        return std::get<T>(std::move(store_));
    }
    /// Returns the stored value, for `std::visit`.
    const Store& Stored() const noexcept { return store_; }

    /// Returns true if type and value are equal: the `Integer` 1 and the `Long` 1 differ. Objects are equal if they are
    /// the same object.
    friend bool operator==(const Variant& a, const Variant& b) { return a.store_ == b.store_; }

private:
    Store store_;
};

}  // namespace Platform

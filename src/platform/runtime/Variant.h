#pragma once

#include "platform/runtime/Date.h"
#include "platform/runtime/Object.h"

#include <type_traits>
#include <variant>
#include <vector>

namespace Platform {

/// Never assigned.
struct Empty {
    friend bool operator==(Empty, Empty) { return true; }
};

/// A value that the database doesn't have.
struct Null {
    friend bool operator==(Null, Null) { return true; }
};

/// A value of any of the system's types: what a column gives and what a few members take.
///
/// Starts `Empty`. An object is held by reference. Conversions live in Convert.h; nothing here converts.
class Variant {
public:
    using Store = std::variant<Empty, Null, bool, Integer, Long, std::int64_t, float, double, Date, String,
                               Ref<Object>, std::vector<String>>;

    Variant() = default;
    template <class T>
    requires(!std::is_same_v<std::remove_cvref_t<T>, Variant> && !std::is_enum_v<std::remove_cvref_t<T>> &&
             !std::is_pointer_v<std::decay_t<T>> && std::is_constructible_v<Store, T&&>) Variant(T&& value)
        : store_(std::forward<T>(value)) {}
    Variant(const char* text) : store_(String(text)) {}
    template <class E>
    requires std::is_enum_v<E> Variant(E value) : store_(static_cast<Long>(value)) {}
    template <class T>
    requires std::is_base_of_v<Object, T> Variant(const Ref<T>& object) : store_(Ref<Object>(object)) {}

    template <class T>
    bool Is() const noexcept {
        return std::holds_alternative<T>(store_);
    }
    /// The value itself; the variant must hold a `T`.
    template <class T>
    const T& As() const {
        return std::get<T>(store_);
    }
    template <class T>
    T&& Take() {
        return std::get<T>(std::move(store_));
    }
    const Store& Stored() const noexcept { return store_; }

    /// Equal in type and value; objects by identity.
    friend bool operator==(const Variant& a, const Variant& b) { return a.store_ == b.store_; }

private:
    Store store_;
};

}  // namespace Platform

#pragma once

#include "platform/component/dispatch/Dispatch.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Convert.h"

#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <tuple>

/// Interface tables: one list a class, from which come dispatch by name, the slots of the dual interface, the
/// type description and the tests that compare the members with the documented interface.
///
/// A class ends its source with its table:
///
///     const Interface& cTooth::Describe() const {
///         static const Interface& self = InterfaceOf<cTooth>({
///             Property<&cTooth::TNumber>("TNumber"),
///             Property<&cTooth::Selected>("Selected"),
///         });
///         return self;
///     }
///
/// An operation names its arguments. Their types, and whether they come back, follow from the C++
/// signature: a value is given by value; a `const T&` by reference and only read; a `T&` by reference
/// and written back. In place of a member function stands, where a class has none of the documented form, a
/// function whose first argument is the object.
namespace Platform {

/// The name of an argument, for `Operation`; `Optional` marks one that may be left out.
struct ArgumentName {
    ArgumentName(const char* name) : Name(name) {}
    ArgumentName(const char* name, Variant whenLeftOut) : Name(name), Optional(true), Default(std::move(whenLeftOut)) {}
    const char* Name;
    bool Optional = false;
    Variant Default;
};
inline ArgumentName Optional(const char* name, Variant whenLeftOut = {}) { return {name, std::move(whenLeftOut)}; }

namespace detail {

template <class T>
constexpr MemberType TypeOf() {
    using Kind = MemberType::Kind;
    if constexpr (std::is_void_v<T>)
        return {};
    else if constexpr (std::is_same_v<T, bool>)
        return {Kind::Boolean, ""};
    else if constexpr (std::is_same_v<T, Integer>)
        return {Kind::Int16, ""};
    else if constexpr (std::is_same_v<T, Long>)
        return {Kind::Int32, ""};
    else if constexpr (std::is_same_v<T, float>)
        return {Kind::Float32, ""};
    else if constexpr (std::is_same_v<T, double>)
        return {Kind::Float64, ""};
    else if constexpr (std::is_same_v<T, Date>)
        return {Kind::Days, ""};
    else if constexpr (std::is_same_v<T, String>)
        return {Kind::Text, ""};
    else if constexpr (std::is_same_v<T, Variant>)
        return {Kind::Any, ""};
    else if constexpr (std::is_enum_v<T>)
        return {Kind::Enumeration, EnumerationOf<T>::Name};
    else
        return {Kind::Object, IsRef<T>::Target::ClassName};
}

/// `To<T>`, telling which argument it was that failed.
template <class T>
T Converted(const Variant& given, std::size_t index) {
    try {
        return To<T>(given);
    } catch (const Error& failure) {
        throw ArgumentError(failure, index);
    }
}

/// An argument on its way through a call: converted in, and back out if it is a `T&`.
template <class A>
struct BoundArgument {
    using Plain = std::remove_cvref_t<A>;
    static constexpr bool ByReference = std::is_lvalue_reference_v<A>;
    static constexpr bool ComesBack = ByReference && !std::is_const_v<std::remove_reference_t<A>>;
    BoundArgument(Variant& given, std::size_t index) : variant(given), value(Converted<Plain>(given, index)) {}
    void Return() {
        if constexpr (ComesBack) variant = Variant(std::move(value));
    }
    Variant& variant;
    Plain value;
};

template <class A>
Argument ArgumentOf(const ArgumentName& name) {
    return {name.Name,
            TypeOf<std::remove_cvref_t<A>>(),
            BoundArgument<A>::ByReference,
            BoundArgument<A>::ComesBack,
            name.Optional,
            name.Default};
}

// ---- slots ------------------------------------------------------------------------------------------

template <class T>
auto BinaryOf() {
    if constexpr (std::is_same_v<T, bool>)
        return VARIANT_BOOL{};
    else if constexpr (std::is_same_v<T, Integer>)
        return SHORT{};
    else if constexpr (std::is_same_v<T, Long> || std::is_enum_v<T>)
        return LONG{};
    else if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>)
        return T{};
    else if constexpr (std::is_same_v<T, Date>)
        return DATE{};
    else if constexpr (std::is_same_v<T, String>)
        return BSTR{};
    else if constexpr (std::is_same_v<T, Variant>)
        return VARIANT{};
    else
        return static_cast<IUnknown*>(nullptr);
}

/// A value of type `T` as it crosses the boundary; an argument of type `A`, which crosses as a pointer if it
/// is by reference.
template <class T>
using Binary = decltype(BinaryOf<T>());
template <class A>
using BinaryArgument =
    std::conditional_t<std::is_lvalue_reference_v<A>, Binary<std::remove_cvref_t<A>>*, Binary<std::remove_cvref_t<A>>>;

/// The slot of one member: `Key` is the function or data member that tells it from all others.
template <auto Key, class R, class... A>
struct Slot {
    static HRESULT STDMETHODCALLTYPE Call(InterfacePointer* self, A... arguments, Binary<R>* result) noexcept {
        const void* const given[] = {&arguments..., &result};
        return CallSlot(*self, reinterpret_cast<const void*>(&Call), given);
    }
};
template <auto Key, class... A>
struct Slot<Key, void, A...> {
    static HRESULT STDMETHODCALLTYPE Call(InterfacePointer* self, A... arguments) noexcept {
        const void* const given[] = {&arguments..., nullptr};
        return CallSlot(*self, reinterpret_cast<const void*>(&Call), given);
    }
};
template <auto Key, class R, class... A>
const void* SlotOf() {
    return reinterpret_cast<const void*>(&Slot<Key, R, A...>::Call);
}

// ---- calls ------------------------------------------------------------------------------------------

template <auto F, class C, class R, class... A>
struct OperationCall {
    static Variant Call(Object& self, std::span<Variant> arguments) {
        return With(self, arguments, std::index_sequence_for<A...>{});
    }
    template <std::size_t... I>
    static Variant With(Object& self, [[maybe_unused]] std::span<Variant> arguments, std::index_sequence<I...>) {
        std::tuple<BoundArgument<A>...> bound{BoundArgument<A>(arguments[I], I)...};
        // What the operation assigned to an argument by reference stays assigned when it raises afterwards.
        struct WriteBack {
            ~WriteBack() { (std::get<I>(bound).Return(), ...); }
            std::tuple<BoundArgument<A>...>& bound;
        } const writeBack{bound};
        auto& object = static_cast<C&>(self);
        if constexpr (std::is_void_v<R>) {
            std::invoke(F, object, std::get<I>(bound).value...);
            return {};
        } else {
            return Variant(std::invoke(F, object, std::get<I>(bound).value...));
        }
    }
    static std::vector<Argument> Arguments(const std::vector<ArgumentName>& names) {
        if (names.size() != sizeof...(A)) throw std::logic_error("an argument without a name");
        std::size_t next = 0;
        return {ArgumentOf<A>(names[next++])...};
    }
    static const void* SlotOfCall() { return SlotOf<F, std::remove_cvref_t<R>, BinaryArgument<A>...>(); }
    using Result = R;
};

template <auto F>
struct CallOf;
template <class C, class R, class... A, R (C::*F)(A...)>
struct CallOf<F> : OperationCall<F, C, R, A...> {};
template <class C, class R, class... A, R (C::*F)(A...) const>
struct CallOf<F> : OperationCall<F, C, R, A...> {};
template <class C, class R, class... A, R (*F)(C&, A...)>
struct CallOf<F> : OperationCall<F, C, R, A...> {};

template <class T>
Argument PutArgument(bool byReference = false) {
    return {"Value", TypeOf<T>(), byReference, false, false, {}};
}

template <auto M>
struct DataOf;
template <class C, class T, T C::*M>
struct DataOf<M> {
    using Type = T;
    static Variant Get(Object& self, std::span<Variant>) { return Variant(static_cast<C&>(self).*M); }
    static Variant Put(Object& self, std::span<Variant> arguments) {
        static_cast<C&>(self).*M = Converted<T>(arguments[0], 0);
        return {};
    }
    static Member GetMember(const char* name) {
        return {name, MemberKind::Get, ByPosition, {}, TypeOf<T>(), Get, SlotOf<M, T>()};
    }
    static const void* SlotOfPutByReference() { return SlotOf<M, void, Binary<T>*>(); }
    static Member PutMember(const char* name) {
        constexpr bool object = IsRef<T>::value;
        return {name,
                object ? MemberKind::PutRef : MemberKind::Put,
                ByPosition,
                {PutArgument<T>(object)},
                {},
                Put,
                SlotOf<M, void, Binary<T>>()};
    }
};

/// The members that one line of a table stands for.
struct Line {
    std::vector<Member> members;
};

/// The members of a property that functions give and take.
template <auto F, class Value>
Member GetMember(const char* name) {
    return {name, MemberKind::Get, ByPosition, {}, TypeOf<Value>(), CallOf<F>::Call, SlotOf<F, Value>()};
}
template <auto F, class Value>
Member PutMember(const char* name) {
    constexpr bool object = IsRef<Value>::value;
    return {name,
            object ? MemberKind::PutRef : MemberKind::Put,
            ByPosition,
            {PutArgument<Value>(object)},
            {},
            CallOf<F>::Call,
            SlotOf<F, void, Binary<Value>>()};
}

}  // namespace detail

/// An operation: its name and the names of its arguments.
template <auto F>
detail::Line Operation(const char* name, std::vector<ArgumentName> arguments = {}, Long dispId = ByPosition) {
    using Call = detail::CallOf<F>;
    return {{Member{name, MemberKind::Operation, dispId, Call::Arguments(arguments),
                    detail::TypeOf<std::remove_cvref_t<typename Call::Result>>(), Call::Call, Call::SlotOfCall()}}};
}

/// A property that is read only: a function that gives its value, with arguments or without.
template <auto F>
detail::Line ReadOnly(const char* name, std::vector<ArgumentName> arguments = {}, Long dispId = ByPosition) {
    detail::Line line = Operation<F>(name, std::move(arguments), dispId);
    line.members.front().Kind = MemberKind::Get;
    return line;
}

/// A plain property, a data member: put, then get. A put of an object is a put by reference.
template <auto M>
detail::Line Property(const char* name) {
    using Data = detail::DataOf<M>;
    return {{Data::PutMember(name), Data::GetMember(name)}};
}

/// A plain property whose get stands before its put; `ByReference` where the put takes the place of its
/// value.
enum class PutForm { ByValue, ByReference };
template <auto M>
detail::Line PropertyGetFirst(const char* name, PutForm form = PutForm::ByValue) {
    detail::Line line = Property<M>(name);
    Member& put = line.members.front();
    if (form == PutForm::ByReference) {
        put.Arguments.front().ByReference = true;
        put.Slot = detail::DataOf<M>::SlotOfPutByReference();
    }
    std::swap(line.members[0], line.members[1]);
    return line;
}

/// A property whose value a function gives and another one takes: put, then get.
template <auto GetFunction, auto PutFunction>
detail::Line ValueProperty(const char* name, Long dispId = ByPosition) {
    using Value = std::remove_cvref_t<typename detail::CallOf<GetFunction>::Result>;
    detail::Line line{{detail::PutMember<PutFunction, Value>(name), detail::GetMember<GetFunction, Value>(name)}};
    for (Member& member : line.members) member.DispId = dispId;
    return line;
}

/// A property of an object that a function gives and another one replaces: get, then put by reference.
template <auto GetFunction, auto PutFunction>
detail::Line ObjectProperty(const char* name) {
    using Value = std::remove_cvref_t<typename detail::CallOf<GetFunction>::Result>;
    return {{detail::GetMember<GetFunction, Value>(name), detail::PutMember<PutFunction, Value>(name)}};
}

/// The table of class `C` from its lines. It is never destroyed, so that an object may be called until the
/// process is gone.
template <class C>
const Interface& InterfaceOf(std::initializer_list<detail::Line> lines) {
    std::vector<Member> members;
    for (const detail::Line& line : lines) members.insert(members.end(), line.members.begin(), line.members.end());
    return *new Interface(C::ClassName, std::move(members), DispatchSlots());
}

}  // namespace Platform

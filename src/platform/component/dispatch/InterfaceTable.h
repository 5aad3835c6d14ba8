#pragma once

#include "platform/component/dispatch/Dispatch.h"
#include "platform/component/binary/Bstr.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Convert.h"

#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <tuple>
#include <typeinfo>

/// Interface tables: one list of members for each class. Dispatch by name, the vtable of the dual interface, the type
/// description and the tests that compare the members with the documented interface all read it.
///
/// A class ends its source file with its table:
///
///     const Interface& cTooth::Describe() const {
///         static const Interface& self = InterfaceOf<cTooth>("A tooth of a selection.", {
///             Property<&cTooth::TNumber>("TNumber", "The number of the tooth, 11 to 48 or 51 to 85."),
///             Property<&cTooth::Selected>("Selected", "True if the tooth is selected."),
///         });
///         return self;
///     }
///
/// Behind each name is a help text: one line that ends with a full stop. Clients see it in the type library, in
/// Python's `help()` and in their editors.
///
/// The types of the arguments follow from the C++ signature. A value is passed by value; a `const T&` by reference and
/// only read; a `T&` by reference and written back. If a class has no member function of the documented form, its table
/// names a function whose first argument is the object.
namespace Platform {

/// The name and the help text of an argument; `Optional` makes one that may be left out.
struct NamedArgument {
    NamedArgument(const char* name, const char* help) : Name(name), Help(help) {}
    const char* Name;
    const char* Help;
    bool Optional = false;
    Variant Default;
};

inline NamedArgument Optional(const char* name, const char* help, Variant whenLeftOut = {}) {
    NamedArgument argument(name, help);
    argument.Optional = true;
    argument.Default = std::move(whenLeftOut);
    return argument;
}

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
Argument ArgumentOf(const NamedArgument& argument) {
    return {argument.Name,
            argument.Help,
            TypeOf<std::remove_cvref_t<A>>(),
            BoundArgument<A>::ByReference,
            BoundArgument<A>::ComesBack,
            argument.Optional,
            argument.Default};
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

// ---- slots of data members --------------------------------------------------------------------------

/// True for the types of which a data member is read and assigned without a variant. A date is not one of them, because
/// its range is checked.
template <class T>
constexpr bool IsPlain =
    std::is_enum_v<T> || std::is_same_v<T, bool> || std::is_same_v<T, Integer> || std::is_same_v<T, Long> ||
    std::is_same_v<T, float> || std::is_same_v<T, double> || std::is_same_v<T, String>;

template <class T>
Binary<T> ToBinary(const T& value) {
    if constexpr (std::is_same_v<T, bool>)
        return value ? VARIANT_TRUE : VARIANT_FALSE;
    else if constexpr (std::is_same_v<T, String>)
        return ToBstr(value);
    else
        return static_cast<Binary<T>>(value);
}

template <class T>
T FromBinary(Binary<T> value) {
    if constexpr (std::is_same_v<T, bool>)
        return value != VARIANT_FALSE;
    else if constexpr (std::is_same_v<T, String>)
        return FromBstr(value);
    else
        return static_cast<T>(value);
}

/// The slots of a data member of a plain type. Objects of other classes are passed to `CallSlot`.
template <auto M>
struct DataSlots;
template <class C, class T, T C::*M>
struct DataSlots<M> {
    static HRESULT STDMETHODCALLTYPE Get(InterfacePointer* self, Binary<T>* result) noexcept {
        if (!IsOwn(*self)) {
            const void* const given[] = {&result};
            return CallSlot(*self, reinterpret_cast<const void*>(&Get), given);
        }
        return Guarded([&]() -> HRESULT {
            if (const HRESULT begun = BeginSlot(*self, result); FAILED(begun)) return begun;
            *result = {};
            *result = ToBinary<T>(static_cast<C&>(Boundary::ObjectOf(*self)).*M);
            return S_OK;
        });
    }
    static HRESULT STDMETHODCALLTYPE Put(InterfacePointer* self, Binary<T> value) noexcept {
        if (!IsOwn(*self)) {
            const void* const given[] = {&value, nullptr};
            return CallSlot(*self, reinterpret_cast<const void*>(&Put), given);
        }
        return Guarded([&]() -> HRESULT {
            if (const HRESULT begun = BeginSlot(*self, self); FAILED(begun)) return begun;
            static_cast<C&>(Boundary::ObjectOf(*self)).*M = FromBinary<T>(value);
            return S_OK;
        });
    }

private:
    /// Returns false for an object of a derived class, and for one of another class, to which a client has passed a
    /// slot of this one.
    static bool IsOwn(InterfacePointer& self) {
        const Object& object = Boundary::ObjectOf(self);
        return typeid(object) == typeid(C);
    }
};

template <auto M, class T>
const void* SlotOfGet() {
    if constexpr (IsPlain<T>)
        return reinterpret_cast<const void*>(&DataSlots<M>::Get);
    else
        return SlotOf<M, T>();
}
template <auto M, class T>
const void* SlotOfPut() {
    if constexpr (IsPlain<T>)
        return reinterpret_cast<const void*>(&DataSlots<M>::Put);
    else
        return SlotOf<M, void, Binary<T>>();
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
    static std::vector<Argument> Arguments(const std::vector<NamedArgument>& names) {
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
    return {"Value", "The new value.", TypeOf<T>(), byReference, false, false, {}};
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
    static Member GetMember(const char* name, const char* help) {
        return {name, help, MemberKind::Get, ByPosition, {}, TypeOf<T>(), Get, SlotOfGet<M, T>()};
    }
    static const void* SlotOfPutByReference() { return SlotOf<M, void, Binary<T>*>(); }
    static Member PutMember(const char* name, const char* help) {
        constexpr bool object = IsRef<T>::value;
        return {name,
                help,
                object ? MemberKind::PutRef : MemberKind::Put,
                ByPosition,
                {PutArgument<T>(object)},
                {},
                Put,
                SlotOfPut<M, T>()};
    }
};

/// The members of one line of a table.
struct Line {
    std::vector<Member> members;
};

/// The members of a property whose value is returned by one function and set by another one.
template <auto F, class Value>
Member GetMember(const char* name, const char* help) {
    return {name, help, MemberKind::Get, ByPosition, {}, TypeOf<Value>(), CallOf<F>::Call, SlotOf<F, Value>()};
}
template <auto F, class Value>
Member PutMember(const char* name, const char* help) {
    constexpr bool object = IsRef<Value>::value;
    return {name,
            help,
            object ? MemberKind::PutRef : MemberKind::Put,
            ByPosition,
            {PutArgument<Value>(object)},
            {},
            CallOf<F>::Call,
            SlotOf<F, void, Binary<Value>>()};
}

}  // namespace detail

/// An operation: its name, its help text and its arguments.
template <auto F>
detail::Line Operation(const char* name, const char* help, std::vector<NamedArgument> arguments = {},
                       Long dispId = ByPosition) {
    using Call = detail::CallOf<F>;
    return {{Member{name, help, MemberKind::Operation, dispId, Call::Arguments(arguments),
                    detail::TypeOf<std::remove_cvref_t<typename Call::Result>>(), Call::Call, Call::SlotOfCall()}}};
}

/// A read-only property: a function that returns its value, with or without arguments.
template <auto F>
detail::Line ReadOnly(const char* name, const char* help, std::vector<NamedArgument> arguments = {},
                      Long dispId = ByPosition) {
    detail::Line line = Operation<F>(name, help, std::move(arguments), dispId);
    line.members.front().Kind = MemberKind::Get;
    return line;
}

/// A plain property, a data member: put, then get. A put of an object is a put by reference.
template <auto M>
detail::Line Property(const char* name, const char* help) {
    using Data = detail::DataOf<M>;
    return {{Data::PutMember(name, help), Data::GetMember(name, help)}};
}

/// A plain property whose get precedes its put. The put passes its value by reference if `form` says so.
enum class PutForm { ByValue, ByReference };
template <auto M>
detail::Line PropertyGetFirst(const char* name, const char* help, PutForm form = PutForm::ByValue) {
    detail::Line line = Property<M>(name, help);
    Member& put = line.members.front();
    if (form == PutForm::ByReference) {
        put.Arguments.front().ByReference = true;
        put.Slot = detail::DataOf<M>::SlotOfPutByReference();
    }
    std::swap(line.members[0], line.members[1]);
    return line;
}

/// A property whose value is returned by one function and set by another one: put, then get.
template <auto GetFunction, auto PutFunction>
detail::Line ValueProperty(const char* name, const char* help, Long dispId = ByPosition) {
    using Value = std::remove_cvref_t<typename detail::CallOf<GetFunction>::Result>;
    detail::Line line{
        {detail::PutMember<PutFunction, Value>(name, help), detail::GetMember<GetFunction, Value>(name, help)}};
    for (Member& member : line.members) member.DispId = dispId;
    return line;
}

/// A property of an object that is returned by one function and replaced by another one: get, then put by reference.
template <auto GetFunction, auto PutFunction>
detail::Line ObjectProperty(const char* name, const char* help) {
    using Value = std::remove_cvref_t<typename detail::CallOf<GetFunction>::Result>;
    return {{detail::GetMember<GetFunction, Value>(name, help), detail::PutMember<PutFunction, Value>(name, help)}};
}

/// Returns the table of class `C`, made from its help text and its lines. The table is never deleted, so that an object
/// can be called until the process ends.
template <class C>
const Interface& InterfaceOf(const char* help, std::initializer_list<detail::Line> lines) {
    std::vector<Member> members;
    for (const detail::Line& line : lines) members.insert(members.end(), line.members.begin(), line.members.end());
    return *new Interface(C::ClassName, help, std::move(members), DispatchSlots());
}

}  // namespace Platform

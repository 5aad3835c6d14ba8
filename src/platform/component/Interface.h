#pragma once

#include "platform/component/ComponentModel.h"
#include "platform/runtime/Collection.h"

#include <atomic>
#include <initializer_list>
#include <functional>
#include <span>
#include <tuple>
#include <typeinfo>

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

class Library;

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

/// A failure to make an argument of what a caller gave: 6, 13 or 94, and which argument it was.
class ArgumentError : public Error {
public:
    ArgumentError(const Error& failure, std::size_t index) : Error(failure), Index(index) {}
    std::size_t Index;  ///< counted from 0
};

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

/// The members of a class that clients call, in their documented order.
///
/// Made once for each class and shared by all threads; only `Publish` changes it, once.
class Interface {
public:
    /// A dispatch interface: the seven standard slots, then the members' own.
    Interface(String className, std::vector<Member> members);

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

    /// Any member of this identity, or nothing.
    const Member* Find(DISPID id) const;

    /// The member that a slot belongs to, or nothing.
    const Member* FindSlot(const void* slot) const;

    // ---- at the boundary ------------------------------------------------------------------------

    /// What an interface pointer of an object points at.
    const void* const* Slots() const noexcept { return table_.data() + TableHead; }

    bool IsDispatch() const noexcept { return isDispatch_; }

    /// The identity of the (dual) interface; all zero before `Publish`.
    const IID& Identity() const noexcept { return identity_; }

    /// The library whose class this is; nothing before `Publish`.
    Library* Owner() const noexcept { return owner_.load(std::memory_order_acquire); }

    /// Enters the interface into a library, which then counts the objects of the class. Once, before the
    /// library gives its first object out.
    void Publish(const IID& identity, Library& owner) const;

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
    mutable std::atomic<Library*> owner_ = nullptr;
};

/// Calls a member by name. `arguments` holds the values in order; those that come back are changed in
/// it; optional ones may be missing at the end. Gives the result, `Empty` where there is none.
///
/// Raises 438 for an unknown name or a put of what can only be read, 450 for too many arguments, 449
/// for a missing one, 13 for one of the wrong type, and what the member raises.
Variant Invoke(Object& object, std::string_view name, MemberKind kind, std::span<Variant> arguments);

/// The name of an argument, for `Operation`; `Optional` marks one that may be left out.
struct ArgumentName {
    ArgumentName(const char* name) : Name(name) {}
    ArgumentName(const char* name, Variant whenLeftOut)
        : Name(name), Optional(true), Default(std::move(whenLeftOut)) {}
    const char* Name;
    bool Optional = false;
    Variant Default;
};
inline ArgumentName Optional(const char* name, Variant whenLeftOut = {}) {
    return {name, std::move(whenLeftOut)};
}

constexpr Long DefaultMember = 0;
constexpr Long EnumeratorMember = -4;
constexpr Long ByPosition = 0x7FFFFFFF;  ///< a member without an identity of its own: numbered in order

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
struct Passing {
    using Plain = std::remove_cvref_t<A>;
    static constexpr bool ByReference = std::is_lvalue_reference_v<A>;
    static constexpr bool ComesBack = ByReference && !std::is_const_v<std::remove_reference_t<A>>;
    Passing(Variant& given, std::size_t index) : variant(given), value(Converted<Plain>(given, index)) {}
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
            Passing<A>::ByReference,
            Passing<A>::ComesBack,
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
using BinaryArgument = std::conditional_t<std::is_lvalue_reference_v<A>, Binary<std::remove_cvref_t<A>>*,
                                          Binary<std::remove_cvref_t<A>>>;

/// Calls the member whose slot is `slot`. `given` points at each argument as it crossed the boundary, and
/// behind them at the pointer to the result. Gives a return code, and leaves an error record if it is a
/// failing one.
HRESULT CallSlot(Face& self, const void* slot, const void* const* given) noexcept;

/// The slot of one member: `Key` is the function or data member that tells it from all others.
template <auto Key, class R, class... A>
struct Slot {
    static HRESULT STDMETHODCALLTYPE Call(Face* self, A... arguments, Binary<R>* result) noexcept {
        const void* const given[] = {&arguments..., &result};
        return CallSlot(*self, reinterpret_cast<const void*>(&Call), given);
    }
};
template <auto Key, class... A>
struct Slot<Key, void, A...> {
    static HRESULT STDMETHODCALLTYPE Call(Face* self, A... arguments) noexcept {
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
    static Variant With(Object& self, [[maybe_unused]] std::span<Variant> arguments,
                        std::index_sequence<I...>) {
        std::tuple<Passing<A>...> passing{Passing<A>(arguments[I], I)...};
        auto& object = static_cast<C&>(self);
        if constexpr (std::is_void_v<R>) {
            std::invoke(F, object, std::get<I>(passing).value...);
            (std::get<I>(passing).Return(), ...);
            return {};
        } else {
            Variant result(std::invoke(F, object, std::get<I>(passing).value...));
            (std::get<I>(passing).Return(), ...);
            return result;
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
                    detail::TypeOf<std::remove_cvref_t<typename Call::Result>>(), Call::Call,
                    Call::SlotOfCall()}}};
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
    detail::Line line{
        {detail::PutMember<PutFunction, Value>(name), detail::GetMember<GetFunction, Value>(name)}};
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
    for (const detail::Line& line : lines)
        members.insert(members.end(), line.members.begin(), line.members.end());
    return *new Interface(C::ClassName, std::move(members));
}

}  // namespace Platform

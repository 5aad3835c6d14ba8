#pragma once

#include "platform/runtime/Collection.h"

#include <functional>
#include <initializer_list>
#include <span>
#include <tuple>

/// Interface tables: one list a class, from which come dispatch by name, the type description and the
/// tests that compare the members with the documented interface.
///
/// A class ends its source with its table:
///
///     const Interface& cTooth::Describe() const {
///         static const Interface self = InterfaceOf<cTooth>({
///             Property<&cTooth::TNumber>("TNumber"),
///             Property<&cTooth::Selected>("Selected"),
///         });
///         return self;
///     }
///
/// An operation names its arguments. Their types, and whether they come back, follow from the C++
/// signature: a value is given by value; a `const T&` by reference and only read; a `T&` by reference
/// and written back.
namespace Platform {

/// One value of an enumeration that clients see.
struct EnumerationValue {
    const char* Name;
    Long Value;
};

/// The name and the values of an enumeration; specialised beside each enumeration that clients see.
template <class E>
struct EnumerationOf;

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
    bool Optional = false;
    Variant Default;  ///< what a left out argument counts as
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
    /// argument; those that come back are written into it. Raises what the member raises.
    std::function<Variant(Object& self, std::span<Variant> arguments)> Call;
};

/// The members of a class that clients call by name, in their documented order.
///
/// Immutable once made; made once for each class and shared by all threads.
class Interface {
public:
    Interface(String className, std::vector<Member> members);

    const String& ClassName() const noexcept { return className_; }
    const std::vector<Member>& Members() const noexcept { return members_; }

    /// The member of this name (without regard to case) and kind, or nothing.
    const Member* Find(std::string_view name, MemberKind kind) const;

    /// Any member of this name, or nothing.
    const Member* Find(std::string_view name) const;

private:
    String className_;
    std::vector<Member> members_;
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

/// An argument on its way through a call: converted in, and back out if it is a `T&`.
template <class A>
struct Passing {
    using Plain = std::remove_cvref_t<A>;
    static constexpr bool ByReference = std::is_lvalue_reference_v<A>;
    static constexpr bool ComesBack = ByReference && !std::is_const_v<std::remove_reference_t<A>>;
    explicit Passing(Variant& given) : variant(given), value(To<Plain>(given)) {}
    void Return() {
        if constexpr (ComesBack) variant = Variant(std::move(value));
    }
    Variant& variant;
    Plain value;
};

template <class A>
Argument ArgumentOf(const ArgumentName& name) {
    return {name.Name, TypeOf<std::remove_cvref_t<A>>(), Passing<A>::ByReference, name.Optional,
            name.Default};
}

template <auto F, class C, class R, class... A>
struct OperationCall {
    static Variant Call(Object& self, std::span<Variant> arguments) {
        return With(self, arguments, std::index_sequence_for<A...>{});
    }
    template <std::size_t... I>
    static Variant With(Object& self, [[maybe_unused]] std::span<Variant> arguments,
                        std::index_sequence<I...>) {
        std::tuple<Passing<A>...> passing{Passing<A>(arguments[I])...};
        auto& object = static_cast<C&>(self);
        if constexpr (std::is_void_v<R>) {
            (object.*F)(std::get<I>(passing).value...);
            (std::get<I>(passing).Return(), ...);
            return {};
        } else {
            Variant result((object.*F)(std::get<I>(passing).value...));
            (std::get<I>(passing).Return(), ...);
            return result;
        }
    }
    static std::vector<Argument> Arguments(const std::vector<ArgumentName>& names) {
        if (names.size() != sizeof...(A)) throw std::logic_error("an argument without a name");
        std::size_t next = 0;
        return {ArgumentOf<A>(names[next++])...};
    }
    using Result = R;
    using Class = C;
};

template <auto F>
struct CallOf;
template <class C, class R, class... A, R (C::*F)(A...)>
struct CallOf<F> : OperationCall<F, C, R, A...> {};
template <class C, class R, class... A, R (C::*F)(A...) const>
struct CallOf<F> : OperationCall<F, C, R, A...> {};

template <auto M>
struct DataOf;
template <class C, class T, T C::*M>
struct DataOf<M> {
    using Type = T;
    static Variant Get(Object& self, std::span<Variant>) { return Variant(static_cast<C&>(self).*M); }
    static Variant Put(Object& self, std::span<Variant> arguments) {
        static_cast<C&>(self).*M = To<T>(arguments[0]);
        return {};
    }
};

/// The members that one line of a table stands for.
struct Line {
    std::vector<Member> members;
};

template <class T>
Argument PutArgument(bool byReference = false) {
    return {"Value", TypeOf<T>(), byReference, false, {}};
}

}  // namespace detail

/// An operation: its name and the names of its arguments.
template <auto F>
detail::Line Operation(const char* name, std::vector<ArgumentName> arguments = {}, Long dispId = ByPosition) {
    using Call = detail::CallOf<F>;
    return {{Member{name, MemberKind::Operation, dispId, Call::Arguments(arguments),
                    detail::TypeOf<std::remove_cvref_t<typename Call::Result>>(), Call::Call}}};
}

/// A property that is read only: a member function that gives its value, with arguments or without.
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
    constexpr bool object = detail::IsRef<typename Data::Type>::value;
    return {
        {Member{name,
                object ? MemberKind::PutRef : MemberKind::Put,
                ByPosition,
                {detail::PutArgument<typename Data::Type>(object)},
                {},
                Data::Put},
         Member{name, MemberKind::Get, ByPosition, {}, detail::TypeOf<typename Data::Type>(), Data::Get}}};
}

/// A plain property whose get stands before its put; `PutByReference` where the put takes its value so.
enum class PutForm { ByValue, ByReference };
template <auto M>
detail::Line PropertyGetFirst(const char* name, PutForm form = PutForm::ByValue) {
    detail::Line line = Property<M>(name);
    line.members.front().Arguments.front().ByReference |= form == PutForm::ByReference;
    std::swap(line.members[0], line.members[1]);
    return line;
}

/// A property whose value a function gives and another one takes: put, then get.
template <auto GetFunction, auto PutFunction>
detail::Line ValueProperty(const char* name) {
    using Get = detail::CallOf<GetFunction>;
    using Put = detail::CallOf<PutFunction>;
    using Value = std::remove_cvref_t<typename Get::Result>;
    return {{Member{name, MemberKind::Put, ByPosition, {detail::PutArgument<Value>()}, {}, Put::Call},
             Member{name, MemberKind::Get, ByPosition, {}, detail::TypeOf<Value>(), Get::Call}}};
}

/// A property of an object that a function gives and another one replaces: get, then put by reference.
template <auto GetFunction, auto PutFunction>
detail::Line ObjectProperty(const char* name) {
    using Get = detail::CallOf<GetFunction>;
    using Put = detail::CallOf<PutFunction>;
    using Value = std::remove_cvref_t<typename Get::Result>;
    return {
        {Member{name, MemberKind::Get, ByPosition, {}, detail::TypeOf<Value>(), Get::Call},
         Member{name, MemberKind::PutRef, ByPosition, {detail::PutArgument<Value>(true)}, {}, Put::Call}}};
}

/// The table of class `C` from its lines.
template <class C>
Interface InterfaceOf(std::initializer_list<detail::Line> lines) {
    std::vector<Member> members;
    for (const detail::Line& line : lines)
        members.insert(members.end(), line.members.begin(), line.members.end());
    return {C::ClassName, std::move(members)};
}

}  // namespace Platform

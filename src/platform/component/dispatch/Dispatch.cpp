#include "platform/component/dispatch/Dispatch.h"

#include "platform/component/binary/Bstr.h"
#include "platform/component/binary/ErrorRecord.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/component/binary/TypeInfo.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/component/dispatch/Marshal.h"
#include "platform/runtime/Collection.h"

#include <algorithm>
#include <exception>
#include <initializer_list>
#include <vector>

namespace Platform {
namespace {

HRESULT WrongThread() noexcept {
    return FailWith(RPC_E_WRONG_THREAD,
                    "An object is used only on the thread that made it. Make another object on this thread");
}

/// Returns what `read` returns for an argument; adds the index of the argument to its failure.
template <class Read>
Variant WithArgumentIndex(std::size_t index, Read read) {
    try {
        return read();
    } catch (const Error& failure) {
        throw ArgumentError(failure, index);
    }
}

// ---- IDispatch: names -------------------------------------------------------------------------------

HRESULT STDMETHODCALLTYPE GetTypeInfoCount(InterfacePointer* self, UINT* count) noexcept {
    if (!count) return E_POINTER;
    *count = HasTypeInfo(Boundary::ObjectOf(*self).Describe().Identity());
    return S_OK;
}

HRESULT STDMETHODCALLTYPE GetTypeInfo(InterfacePointer* self, UINT which, LCID, ITypeInfo** info) noexcept {
    if (!info) return E_POINTER;
    *info = nullptr;
    return which == 0 ? TypeInfoOf(Boundary::ObjectOf(*self).Describe().Identity(), info) : DISP_E_BADINDEX;
}

DISPID IdOfArgument(const Member& member, const String& name) {
    for (std::size_t i = 0; i < member.Arguments.size(); ++i)
        if (EqualsIgnoringCase(member.Arguments[i].Name, name)) return static_cast<DISPID>(i);
    return DISPID_UNKNOWN;
}

HRESULT STDMETHODCALLTYPE GetIDsOfNames(InterfacePointer* self, REFIID riid, LPOLESTR* names, UINT count, LCID,
                                        DISPID* ids) noexcept {
    return Guarded([&]() -> HRESULT {
        SetErrorInfo(0, nullptr);
        if (!Same(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (!names || !ids) return E_POINTER;
        if (count == 0) return E_INVALIDARG;
        std::fill_n(ids, count, DISPID_UNKNOWN);
        const Member* member = Boundary::ObjectOf(*self).Describe().Find(FromUnits(names[0]));
        if (!member) return DISP_E_UNKNOWNNAME;
        ids[0] = member->DispId;
        for (UINT i = 1; i < count; ++i) ids[i] = IdOfArgument(*member, FromUnits(names[i]));
        return std::find(ids, ids + count, DISPID_UNKNOWN) == ids + count ? S_OK : DISP_E_UNKNOWNNAME;
    });
}

// ---- calls, by name and by slot ----------------------------------------------------------------------

/// Calls the member; then calls `write(i)` for each argument that is written back. Writes back also if the member
/// raises, because a client must see the values that were assigned before; a failure to write is then ignored.
template <class Write>
Variant CallAndWriteBack(const Member& member, Object& object, std::span<Variant> values, Write write) {
    const auto writeAll = [&] {
        for (std::size_t i = 0; i < values.size(); ++i)
            if (member.Arguments[i].ComesBack) write(i);
    };
    try {
        Variant result = member.Call(object, values);
        writeAll();
        return result;
    } catch (const ArgumentError&) {
        throw;  // the member was not called
    } catch (...) {
        const std::exception_ptr raised = std::current_exception();
        try {
            writeAll();
        } catch (const Error&) {
        }
        std::rethrow_exception(raised);
    }
}

// ---- IDispatch: calls -------------------------------------------------------------------------------

/// The arguments of one call by name, brought into the member's order.
class NamedCall {
public:
    NamedCall(const Member& member, DISPPARAMS& parameters) : member_(member), parameters_(parameters) {
        given_.resize(member.Arguments.size());
        values_.resize(member.Arguments.size());
    }

    /// Finds each argument's place and value. On a failure `wrong` is the position in the caller's list.
    HRESULT Read(UINT* wrong) {
        const HRESULT placed = Place(wrong);
        if (FAILED(placed)) return placed;
        for (std::size_t i = 0; i < given_.size(); ++i) {
            const Argument& argument = member_.Arguments[i];
            VARIANT* given = given_[i];
            if (given && wrong) *wrong = static_cast<UINT>(given - parameters_.rgvarg);
            if (!given || IsLeftOut(*given) || IsReferenceToLeftOut(*given)) {
                given_[i] = nullptr;
                if (!argument.Optional) return DISP_E_PARAMNOTOPTIONAL;
                values_[i] = argument.Default;
                continue;
            }
            if (argument.ComesBack && !Receives(*given, argument.Type)) return DISP_E_TYPEMISMATCH;
            values_[i] = WithArgumentIndex(i, [&] { return FromVariant(*given); });
        }
        return S_OK;
    }

    Variant Run(Object& object) {
        return CallAndWriteBack(member_, object, values_, [&](std::size_t i) {
            if (given_[i] && (given_[i]->vt & VT_BYREF)) WriteBack(values_[i], *given_[i]);
        });
    }

    /// Returns the position in the caller's list of an argument.
    UINT PositionOf(std::size_t index) const {
        return given_[index] ? static_cast<UINT>(given_[index] - parameters_.rgvarg) : 0;
    }

private:
    static bool IsReferenceToLeftOut(const VARIANT& given) {
        return given.vt == (VT_BYREF | VT_VARIANT) && given.pvarVal && IsLeftOut(*given.pvarVal);
    }

    HRESULT Place(UINT* wrong) {
        const UINT positional = parameters_.cArgs - parameters_.cNamedArgs;
        if (parameters_.cArgs > given_.size()) return DISP_E_BADPARAMCOUNT;
        for (UINT i = 0; i < positional; ++i) given_[i] = &parameters_.rgvarg[parameters_.cArgs - 1 - i];
        for (UINT i = 0; i < parameters_.cNamedArgs; ++i) {
            const DISPID id = parameters_.rgdispidNamedArgs[i];
            const auto place = id == DISPID_PROPERTYPUT && member_.IsPut()
                                   ? given_.size() - 1
                                   : static_cast<std::size_t>(static_cast<std::uint32_t>(id));
            if (wrong) *wrong = i;
            if (place >= given_.size() || given_[place]) return DISP_E_PARAMNOTFOUND;
            given_[place] = &parameters_.rgvarg[i];
        }
        return S_OK;
    }

    const Member& member_;
    DISPPARAMS& parameters_;
    std::vector<VARIANT*> given_;  // nothing for one that was left out
    std::vector<Variant> values_;
};

MemberKind KindOf(WORD flags) {
    if (flags & DISPATCH_PROPERTYPUTREF) return MemberKind::PutRef;
    if (flags & DISPATCH_PROPERTYPUT) return MemberKind::Put;
    return flags & DISPATCH_PROPERTYGET ? MemberKind::Get : MemberKind::Operation;
}

bool AreSound(const DISPPARAMS* parameters) {
    return parameters && parameters->cNamedArgs <= parameters->cArgs &&
           (parameters->cArgs == 0 || parameters->rgvarg) &&
           (parameters->cNamedArgs == 0 || parameters->rgdispidNamedArgs);
}

HRESULT Fill(EXCEPINFO* failure, const Error& error) {
    SetErrorRecord(error);
    if (!failure) return DISP_E_EXCEPTION;
    OwnedBstr source(ToBstr(error.Source));
    failure->bstrDescription = ToBstr(error.Description);
    failure->bstrSource = source.release();
    failure->scode = CodeOf(error);
    return DISP_E_EXCEPTION;
}

/// Returns the get of an object whose default member the call is meant for: in `rows.Fields("Name")` a get without
/// arguments, in `rows.Fields.Item("Name") = "Ek"` one that takes all but the value. Returns null for any other call.
const Member* ObjectToPassOnTo(const Interface& described, DISPID id, WORD flags, const DISPPARAMS& parameters) {
    const MemberKind kind = KindOf(flags);
    const bool isPut = kind == MemberKind::Put || kind == MemberKind::PutRef;
    const Member* get = described.Find(id, MemberKind::Get);
    if (!get || get->Kind != MemberKind::Get || get->Result.Is != MemberType::Kind::Object) return nullptr;
    if (!isPut) return parameters.cNamedArgs == 0 && parameters.cArgs > 0 && get->Arguments.empty() ? get : nullptr;
    if (parameters.cNamedArgs > 1 || parameters.cArgs < 2 || described.Find(id, kind)) return nullptr;
    return get->Arguments.size() < parameters.cArgs ? get : nullptr;
}

HRESULT STDMETHODCALLTYPE InvokeById(InterfacePointer* self, DISPID id, REFIID riid, LCID, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* failure, UINT* wrong) noexcept;

/// Gets an object by the first arguments of a call, and passes the others on to the default member of this object.
HRESULT PassOn(InterfacePointer& self, const Member& get, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
               EXCEPINFO* failure, UINT* wrong) noexcept {
    const auto taken = static_cast<UINT>(get.Arguments.size());
    DISPPARAMS first{parameters.rgvarg + (parameters.cArgs - taken), nullptr, taken, 0};
    DISPPARAMS others{parameters.rgvarg, parameters.rgdispidNamedArgs, parameters.cArgs - taken, parameters.cNamedArgs};
    VARIANT object{};
    const HRESULT got =
        InvokeById(&self, get.DispId, IID_NULL, 0, DISPATCH_PROPERTYGET, &first, &object, failure, wrong);
    if (FAILED(got)) return got;
    HRESULT code = DISP_E_BADPARAMCOUNT;
    if (object.vt == VT_DISPATCH && object.pdispVal)
        code = object.pdispVal->Invoke(DISPID_VALUE, IID_NULL, 0, flags, &others, result, failure, wrong);
    VariantClear(&object);
    return code == DISP_E_MEMBERNOTFOUND ? DISP_E_BADPARAMCOUNT : code;
}

HRESULT STDMETHODCALLTYPE InvokeById(InterfacePointer* self, DISPID id, REFIID riid, LCID, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* failure,
                                     UINT* wrong) noexcept {
    return Guarded([&]() -> HRESULT {
        SetErrorInfo(0, nullptr);
        if (result) VariantInit(result);
        if (failure) *failure = {};
        if (!Same(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (!AreSound(parameters)) return E_INVALIDARG;
        if (!Boundary::IsOnItsThread(*self)) return WrongThread();
        const Ref<Object> object(&Boundary::ObjectOf(*self));  // a call may let the caller's last reference go
        if (const Member* get = ObjectToPassOnTo(object->Describe(), id, flags, *parameters))
            return PassOn(*self, *get, flags, *parameters, result, failure, wrong);
        const Member* member = object->Describe().Find(id, KindOf(flags));
        if (!member) return DISP_E_MEMBERNOTFOUND;

        NamedCall call(*member, *parameters);
        if (const HRESULT read = call.Read(wrong); FAILED(read)) return read;
        try {
            const Variant value = call.Run(*object);
            if (result) ToVariant(value, *result);
        } catch (const ArgumentError& error) {
            if (wrong) *wrong = call.PositionOf(error.Index);
            if (error.Number == err::InvalidNull) return Fill(failure, error);
            throw;
        } catch (const Error& error) {
            return Fill(failure, error);
        }
        return S_OK;
    });
}

// ---- IEnumVARIANT -----------------------------------------------------------------------------------

Enumerator& EnumeratorOf(InterfacePointer& pointer) { return static_cast<Enumerator&>(Boundary::ObjectOf(pointer)); }

/// Runs a call of an enumerator, on its own thread and with a record of its own.
template <class Body>
HRESULT WithEnumerator(InterfacePointer* self, Body body) noexcept {
    SetErrorInfo(0, nullptr);
    return Guarded([&]() -> HRESULT {
        if (!Boundary::IsOnItsThread(*self)) return WrongThread();
        return body(EnumeratorOf(*self));
    });
}

HRESULT STDMETHODCALLTYPE Next(InterfacePointer* self, ULONG count, VARIANT* values, ULONG* fetched) noexcept {
    return WithEnumerator(self, [&](Enumerator& walk) -> HRESULT {
        if (fetched) *fetched = 0;
        if (!values || (!fetched && count != 1)) return E_POINTER;
        Variant item;
        ULONG got = 0;
        for (; got < count && walk.Next(item); ++got) {
            ToVariant(item, values[got]);
            if (fetched) *fetched = got + 1;
        }
        return got == count ? S_OK : S_FALSE;
    });
}

HRESULT STDMETHODCALLTYPE Skip(InterfacePointer* self, ULONG count) noexcept {
    return WithEnumerator(self, [&](Enumerator& walk) {
        Variant item;
        for (; count > 0; --count)
            if (!walk.Next(item)) return S_FALSE;
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE Reset(InterfacePointer* self) noexcept {
    return WithEnumerator(self, [](Enumerator& walk) {
        walk.Reset();
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE Clone(InterfacePointer* self, IUnknown** copy) noexcept {
    return WithEnumerator(self, [&](const Enumerator& walk) -> HRESULT {
        if (!copy) return E_POINTER;
        *copy = nullptr;
        *copy = Boundary::ToPointer(walk.Copy());
        return S_OK;
    });
}

template <class F>
const void* SlotAddress(F* function) {
    return reinterpret_cast<const void*>(function);
}

/// Returns the slots of an interface that derives from `IUnknown`.
std::vector<const void*> BehindUnknown(std::initializer_list<const void*> own) {
    const auto unknown = Boundary::UnknownSlots();
    std::vector<const void*> slots(unknown.begin(), unknown.end());
    slots.insert(slots.end(), own);
    return slots;
}

}  // namespace

std::span<const void* const> DispatchSlots() {
    static const std::vector slots = BehindUnknown(
        {SlotAddress(GetTypeInfoCount), SlotAddress(GetTypeInfo), SlotAddress(GetIDsOfNames), SlotAddress(InvokeById)});
    return slots;
}

std::span<const void* const> EnumeratorSlots() {
    static const std::vector slots =
        BehindUnknown({SlotAddress(Next), SlotAddress(Skip), SlotAddress(Reset), SlotAddress(Clone)});
    return slots;
}

// ---- calls by slot ----------------------------------------------------------------------------------

namespace detail {
namespace {

/// Returns the address of an argument's value.
const void* PlaceOf(const Member& member, std::size_t index, const void* given) {
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): `given` is the address of an argument of the slot
    return member.CrossesAsPlace(member.Arguments[index]) ? *static_cast<const void* const*>(given) : given;
}

Variant ReadArgument(const Member& member, std::size_t index, const void* place) {
    const Argument& argument = member.Arguments[index];
    if (!place) {
        if (argument.Optional) return argument.Default;
        throw Error(E_POINTER, "Runtime", String("The argument ") + argument.Name + " points at nothing");
    }
    const bool leftOut = argument.Type.Is == MemberType::Kind::Any && IsLeftOut(*static_cast<const VARIANT*>(place));
    if (leftOut) return argument.Default;
    return WithArgumentIndex(index, [&] { return ReadPlace(argument.Type, place); });
}

void WriteArgument(const Argument& argument, const Variant& value, const void* place) {
    void* target = const_cast<void*>(place);
    if (argument.Type.Is == MemberType::Kind::Any)
        WriteBack(value, *static_cast<VARIANT*>(target));
    else
        AssignPlace(argument.Type, value, target);
}

constexpr const char* NoPlace = "The result's place is missing";

HRESULT Run(Object& object, const Member& member, const void* const* given) {
    const std::size_t count = member.Arguments.size();
    const bool hasResult = member.Result.Is != MemberType::Kind::None;
    void* const result = hasResult ? *static_cast<void* const*>(given[count]) : nullptr;
    if (hasResult && !result) return FailWith(E_POINTER, NoPlace);
    if (hasResult) ClearPlace(member.Result, result);

    std::vector<Variant> values(count);
    for (std::size_t i = 0; i < count; ++i) values[i] = ReadArgument(member, i, PlaceOf(member, i, given[i]));
    const Variant value = CallAndWriteBack(member, object, values, [&](std::size_t i) {
        if (const void* place = PlaceOf(member, i, given[i])) WriteArgument(member.Arguments[i], values[i], place);
    });
    if (hasResult) WritePlace(member.Result, value, result);
    return S_OK;
}

}  // namespace

HRESULT BeginSlot(const InterfacePointer& self, const void* place) {
    SetErrorInfo(0, nullptr);
    if (!Boundary::IsOnItsThread(self)) return WrongThread();
    return place ? S_OK : FailWith(E_POINTER, NoPlace);
}

HRESULT CallSlot(InterfacePointer& self, const void* slot, const void* const* given) noexcept {
    return Guarded([&]() -> HRESULT {
        SetErrorInfo(0, nullptr);
        if (!Boundary::IsOnItsThread(self)) return WrongThread();
        const Ref<Object> object(&Boundary::ObjectOf(self));  // a call may let the caller's last reference go
        const Member* member = object->Describe().FindSlot(slot);
        return member ? Run(*object, *member, given) : DISP_E_MEMBERNOTFOUND;
    });
}

}  // namespace detail
}  // namespace Platform

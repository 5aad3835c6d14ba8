#include "platform/component/dispatch/Marshal.h"

#include "platform/component/binary/Bstr.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Collection.h"

#include <cmath>
#include <cstring>
#include <new>

namespace Platform {
namespace {

using Kind = MemberType::Kind;

[[noreturn]] void RaiseCode(HRESULT code, const char* description) { throw Error(code, "Runtime", description); }

template <class T>
const T& At(const void* place) {
    return *static_cast<const T*>(place);
}
template <class T>
T& At(void* place) {
    return *static_cast<T*>(place);
}

VARIANT_BOOL ToBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

Date CheckedDate(DATE days) { return CDate(Variant(days)); }

double FromDecimal(const DECIMAL& decimal) {
    constexpr double two32 = 4294967296.0, two64 = two32 * two32;
    const double digits = static_cast<double>(decimal.Hi32) * two64 + static_cast<double>(decimal.Lo64);
    const double value = digits / std::pow(10.0, decimal.scale);
    return decimal.sign ? -value : value;
}

// ---- arrays of texts --------------------------------------------------------------------------------

/// Returns the text of an element, which is a value and neither an array nor a reference.
String TextOf(const VARIANT& element) {
    if (element.vt & (VT_ARRAY | VT_BYREF)) RaiseCode(DISP_E_BADVARTYPE, "Only texts can be the elements of an array");
    return CStr(FromVariant(element));
}

std::vector<String> FromArray(SAFEARRAY* array) {
    VARTYPE type = VT_EMPTY;
    if (!array) return {};
    if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        (type != VT_BSTR && type != VT_VARIANT))
        RaiseCode(DISP_E_BADVARTYPE, "Only arrays of texts, of one dimension, can be taken");
    std::vector<String> texts;
    texts.reserve(array->rgsabound[0].cElements);
    for (ULONG i = 0; i < array->rgsabound[0].cElements; ++i)
        texts.push_back(type == VT_BSTR ? FromBstr(static_cast<BSTR*>(array->pvData)[i])
                                        : TextOf(static_cast<VARIANT*>(array->pvData)[i]));
    return texts;
}

SAFEARRAY* ToArray(const std::vector<String>& texts) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size()));
    if (!array) throw std::bad_alloc();
    try {
        BSTR* next = static_cast<BSTR*>(array->pvData);
        for (const String& text : texts) *next++ = ToBstr(text);
    } catch (...) {
        SafeArrayDestroy(array);
        throw;
    }
    return array;
}

// ---- objects ----------------------------------------------------------------------------------------

VARTYPE TypeOfObject(const Ref<Object>& object) {
    if (!object) return VT_DISPATCH;
    if (const auto* foreign = dynamic_cast<const Foreign*>(object.Get()))
        return foreign->IsDispatch() ? VT_DISPATCH : VT_UNKNOWN;
    if (object->Adapted()) return VT_DISPATCH;
    return object->Describe().IsDispatch() ? VT_DISPATCH : VT_UNKNOWN;
}

/// Returns the pointer of an object for a place of this type: only an enumerator's place takes an object without
/// `IDispatch`.
IUnknown* GiveAs(const MemberType& type, const Ref<Object>& object) {
    const bool anyInterface = std::string_view(type.Name) == Enumerator::ClassName;
    if (!anyInterface && TypeOfObject(object) != VT_DISPATCH) Raise(err::TypeMismatch);
    return Boundary::ToPointer(object);
}

/// Returns the value at a place of a variant type.
Variant FromTyped(VARTYPE type, const void* place) {
    switch (type) {
        case VT_I1: return Integer{At<signed char>(place)};
        case VT_UI1: return Integer{At<BYTE>(place)};
        case VT_I2: return Integer{At<SHORT>(place)};
        case VT_UI2: return Long{At<USHORT>(place)};
        case VT_I4:
        case VT_INT: return Long{At<std::int32_t>(place)};
        case VT_UI4:
        case VT_UINT: return std::int64_t{At<std::uint32_t>(place)};
        case VT_I8: return std::int64_t{At<LONGLONG>(place)};
        case VT_UI8: {
            const ULONGLONG number = At<ULONGLONG>(place);
            if (number > static_cast<ULONGLONG>(INT64_MAX)) Raise(err::Overflow);
            return static_cast<std::int64_t>(number);
        }
        case VT_R4: return At<FLOAT>(place);
        case VT_R8: return At<DOUBLE>(place);
        case VT_CY: return static_cast<double>(At<CY>(place).int64) / 10000;
        case VT_DECIMAL: return FromDecimal(At<DECIMAL>(place));
        case VT_DATE: return CheckedDate(At<DATE>(place));
        case VT_BOOL: return At<VARIANT_BOOL>(place) != VARIANT_FALSE;
        case VT_BSTR: return FromBstr(At<BSTR>(place));
        case VT_DISPATCH:
        case VT_UNKNOWN: return Boundary::FromPointer(At<IUnknown*>(place));
        default: RaiseCode(DISP_E_BADVARTYPE, "A variant of this type can't be taken");
    }
}

/// Returns the type that a variant's place must have for a value of `type`.
VARTYPE VariantTypeOf(const MemberType& type) {
    switch (type.Is) {
        case Kind::None: return VT_EMPTY;
        case Kind::Boolean: return VT_BOOL;
        case Kind::Int16: return VT_I2;
        case Kind::Int32:
        case Kind::Enumeration: return VT_I4;
        case Kind::Float32: return VT_R4;
        case Kind::Float64: return VT_R8;
        case Kind::Days: return VT_DATE;
        case Kind::Text: return VT_BSTR;
        case Kind::Any: return VT_VARIANT;
        case Kind::Object: return VT_DISPATCH;
    }
    return VT_EMPTY;
}

/// Returns the member type that a variant's reference can be written as.
MemberType TypeOfReference(VARTYPE type) {
    switch (type) {
        case VT_BOOL: return {Kind::Boolean, ""};
        case VT_I2: return {Kind::Int16, ""};
        case VT_I4:
        case VT_INT: return {Kind::Int32, ""};
        case VT_R4: return {Kind::Float32, ""};
        case VT_R8: return {Kind::Float64, ""};
        case VT_DATE: return {Kind::Days, ""};
        case VT_BSTR: return {Kind::Text, ""};
        case VT_VARIANT: return {Kind::Any, ""};
        case VT_DISPATCH: return {Kind::Object, ""};
        case VT_UNKNOWN: return {Kind::Object, Enumerator::ClassName};
        default: Raise(err::TypeMismatch);
    }
}

/// Frees what a typed place holds.
void FreePlace(const MemberType& type, void* place) {
    switch (type.Is) {
        case Kind::Text: SysFreeString(At<BSTR>(place)); break;
        case Kind::Any: VariantClear(&At<VARIANT>(place)); break;
        case Kind::Object:
            if (IUnknown* held = At<IUnknown*>(place)) held->Release();
            break;
        default: break;
    }
}

}  // namespace

// ---- variants ---------------------------------------------------------------------------------------

Variant FromVariant(const VARIANT& variant) {
    const VARTYPE type = variant.vt;
    if (type & VT_BYREF) {
        if (!variant.byref) RaiseCode(E_POINTER, "A reference to nothing");
        const VARTYPE referred = type & static_cast<VARTYPE>(~VT_BYREF);
        if (referred & VT_ARRAY) return FromArray(*variant.pparray);
        if (referred != VT_VARIANT) return FromTyped(referred, variant.byref);
        if (variant.pvarVal->vt & VT_BYREF) RaiseCode(DISP_E_BADVARTYPE, "A reference to a reference can't be taken");
        return FromVariant(*variant.pvarVal);
    }
    if (type & VT_ARRAY) return FromArray(variant.parray);
    switch (type) {
        case VT_EMPTY: return Empty{};
        case VT_NULL: return Null{};
        case VT_ERROR: RaiseCode(DISP_E_BADVARTYPE, "An error value can't be taken");
        case VT_DECIMAL: return FromDecimal(variant.decVal);
        default: return FromTyped(type, &variant.llVal);
    }
}

void ToVariant(const Variant& value, VARIANT& to) {
    VARIANT made{};
    struct Writer {
        VARIANT& to;
        void operator()(Empty) const { to.vt = VT_EMPTY; }
        void operator()(Null) const { to.vt = VT_NULL; }
        void operator()(bool value) const { to.vt = VT_BOOL, to.boolVal = ToBool(value); }
        void operator()(Integer value) const { to.vt = VT_I2, to.iVal = value; }
        void operator()(Long value) const { to.vt = VT_I4, to.lVal = value; }
        void operator()(std::int64_t value) const { to.vt = VT_I8, to.llVal = value; }
        void operator()(float value) const { to.vt = VT_R4, to.fltVal = value; }
        void operator()(double value) const { to.vt = VT_R8, to.dblVal = value; }
        void operator()(Date value) const { to.vt = VT_DATE, to.date = value.Days; }
        void operator()(const String& value) const {
            to.bstrVal = ToBstr(value);
            to.vt = VT_BSTR;
        }
        void operator()(const Ref<Object>& value) const {
            to.vt = TypeOfObject(value);
            to.punkVal = Boundary::ToPointer(value);
        }
        void operator()(const std::vector<String>& value) const {
            to.parray = ToArray(value);
            to.vt = VT_ARRAY | VT_BSTR;
        }
    };
    std::visit(Writer{made}, value.Stored());
    to = made;
}

bool IsLeftOut(const VARIANT& variant) { return variant.vt == VT_ERROR && variant.scode == DISP_E_PARAMNOTFOUND; }

void WriteBack(const Variant& value, VARIANT& to) {
    if (!(to.vt & VT_BYREF)) return AssignPlace({Kind::Any, ""}, value, &to);
    if (!to.byref) RaiseCode(E_POINTER, "A reference to nothing");
    const VARTYPE referred = to.vt & static_cast<VARTYPE>(~VT_BYREF);
    AssignPlace(TypeOfReference(referred), value, to.byref);
}

bool Receives(const VARIANT& argument, const MemberType& type) {
    if (!(argument.vt & VT_BYREF) || type.Is == Kind::Any) return true;
    const VARTYPE referred = argument.vt & static_cast<VARTYPE>(~VT_BYREF);
    return referred == VT_VARIANT || referred == VariantTypeOf(type) ||
           (type.Is == Kind::Object && referred == VT_UNKNOWN) || (VariantTypeOf(type) == VT_I4 && referred == VT_INT);
}

// ---- typed places -----------------------------------------------------------------------------------

Variant ReadPlace(const MemberType& type, const void* place) {
    if (type.Is == Kind::Any) return FromVariant(At<VARIANT>(place));
    return FromTyped(VariantTypeOf(type), place);
}

void WritePlace(const MemberType& type, const Variant& value, void* place) {
    switch (type.Is) {
        case Kind::None: break;
        case Kind::Boolean: At<VARIANT_BOOL>(place) = ToBool(CBool(value)); break;
        case Kind::Int16: At<SHORT>(place) = CInt(value); break;
        case Kind::Int32:
        case Kind::Enumeration: At<LONG>(place) = CLng(value); break;
        case Kind::Float32: At<FLOAT>(place) = CSng(value); break;
        case Kind::Float64: At<DOUBLE>(place) = CDbl(value); break;
        case Kind::Days: At<DATE>(place) = CDate(value).Days; break;
        case Kind::Text: At<BSTR>(place) = ToBstr(To<String>(value)); break;
        case Kind::Any: ToVariant(value, At<VARIANT>(place)); break;
        case Kind::Object: At<IUnknown*>(place) = GiveAs(type, To<Ref<Object>>(value)); break;
    }
}

void AssignPlace(const MemberType& type, const Variant& value, void* place) {
    alignas(VARIANT) std::byte old[sizeof(VARIANT)];
    const std::size_t size = type.Is == Kind::Any ? sizeof(VARIANT) : sizeof(void*);
    const bool owns = type.Is == Kind::Any || type.Is == Kind::Text || type.Is == Kind::Object;
    if (owns) std::memcpy(old, place, size);
    WritePlace(type, value, place);
    if (owns) FreePlace(type, old);
}

void ClearPlace(const MemberType& type, void* place) {
    switch (type.Is) {
        case Kind::None: break;
        case Kind::Any: VariantInit(&At<VARIANT>(place)); break;
        case Kind::Text:
        case Kind::Object: At<void*>(place) = nullptr; break;
        default: WritePlace(type, Empty{}, place);
    }
}

}  // namespace Platform

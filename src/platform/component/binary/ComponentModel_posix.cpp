#include "platform/component/binary/ComponentModel.h"

#include <cstdlib>
#include <cstring>
#include <string>

// ---- identifiers ------------------------------------------------------------------------------------

namespace {

/// Returns the identifier of a standard interface; these differ in their first number only.
constexpr GUID Standard(std::uint32_t first) { return {first, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }

}  // namespace

const IID IID_NULL = {};
const IID IID_IUnknown = Standard(0x00000000);
const IID IID_IClassFactory = Standard(0x00000001);
const IID IID_IDispatch = Standard(0x00020400);
const IID IID_IEnumVARIANT = Standard(0x00020404);
const IID IID_ISupportErrorInfo = {0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
const IID IID_IErrorInfo = {0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
const IID IID_ICreateErrorInfo = {0x22F03340, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};

// ---- texts ------------------------------------------------------------------------------------------

namespace {

/// What precedes the first unit of a text. Padded so that the units are aligned as the allocation is.
struct TextHead {
    std::uint32_t padding;
    std::uint32_t bytes;
};

TextHead* HeadOf(BSTR text) { return reinterpret_cast<TextHead*>(text) - 1; }

BSTR NewText(const void* bytes, std::size_t count) {
    if (count > UINT32_MAX - sizeof(TextHead) - sizeof(OLECHAR)) return nullptr;
    auto* head = static_cast<TextHead*>(std::malloc(sizeof(TextHead) + count + sizeof(OLECHAR)));
    if (!head) return nullptr;
    *head = {0, static_cast<std::uint32_t>(count)};
    auto* units = reinterpret_cast<char*>(head + 1);
    if (bytes)
        std::memcpy(units, bytes, count);
    else
        std::memset(units, 0, count);
    std::memset(units + count, 0, sizeof(OLECHAR));
    return reinterpret_cast<BSTR>(units);
}

}  // namespace

BSTR SysAllocString(LPCOLESTR text) {
    return text ? NewText(text, std::char_traits<OLECHAR>::length(text) * sizeof(OLECHAR)) : nullptr;
}

BSTR SysAllocStringLen(LPCOLESTR text, UINT units) { return NewText(text, std::size_t{units} * sizeof(OLECHAR)); }

BSTR SysAllocStringByteLen(const char* bytes, UINT count) { return NewText(bytes, count); }

void SysFreeString(BSTR text) {
    if (text) std::free(HeadOf(text));
}

UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / static_cast<UINT>(sizeof(OLECHAR)); }

UINT SysStringByteLen(BSTR text) { return text ? HeadOf(text)->bytes : 0; }

// ---- variants ---------------------------------------------------------------------------------------

namespace {

/// Returns the size of an element of this type in an array or by reference; 0 for a type that has none.
ULONG SizeOf(VARTYPE type) {
    switch (type) {
        case VT_I1:
        case VT_UI1: return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL: return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_ERROR: return 4;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_CY:
        case VT_DATE: return 8;
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN: return sizeof(void*);
        case VT_VARIANT: return sizeof(VARIANT);
        case VT_DECIMAL: return sizeof(DECIMAL);
        default: return 0;
    }
}

bool IsType(VARTYPE type) {
    const VARTYPE base = type & VT_TYPEMASK;
    if (type & ~(VT_TYPEMASK | VT_BYREF | VT_ARRAY)) return false;
    if (base == VT_EMPTY || base == VT_NULL) return type == base;
    if (base == VT_VARIANT) return type != base;
    return SizeOf(base) != 0;
}

}  // namespace

void VariantInit(VARIANTARG* variant) {
    if (variant) *variant = {};
}

HRESULT VariantClear(VARIANTARG* variant) {
    if (!variant) return E_INVALIDARG;
    if (!IsType(variant->vt)) return DISP_E_BADVARTYPE;
    if (!(variant->vt & VT_BYREF)) {
        if (variant->vt & VT_ARRAY) {
            if (const HRESULT freed = variant->parray ? SafeArrayDestroy(variant->parray) : S_OK; FAILED(freed))
                return freed;
        } else if (variant->vt == VT_BSTR) {
            SysFreeString(variant->bstrVal);
        } else if ((variant->vt == VT_DISPATCH || variant->vt == VT_UNKNOWN) && variant->punkVal) {
            variant->punkVal->Release();
        }
    }
    *variant = {};
    return S_OK;
}

HRESULT VariantCopy(VARIANTARG* to, const VARIANTARG* from) {
    if (!to || !from) return E_INVALIDARG;
    if (!IsType(from->vt)) return DISP_E_BADVARTYPE;
    if (to == from) return S_OK;
    VARIANT copy = *from;
    if (!(copy.vt & VT_BYREF)) {
        if (copy.vt & VT_ARRAY) {
            if (copy.parray)
                if (const HRESULT copied = SafeArrayCopy(from->parray, &copy.parray); FAILED(copied)) return copied;
        } else if (copy.vt == VT_BSTR && copy.bstrVal) {
            copy.bstrVal =
                SysAllocStringByteLen(reinterpret_cast<const char*>(from->bstrVal), SysStringByteLen(from->bstrVal));
            if (!copy.bstrVal) return E_OUTOFMEMORY;
        } else if ((copy.vt == VT_DISPATCH || copy.vt == VT_UNKNOWN) && copy.punkVal) {
            copy.punkVal->AddRef();
        }
    }
    if (const HRESULT cleared = VariantClear(to); FAILED(cleared)) {
        VariantClear(&copy);
        return cleared;
    }
    *to = copy;
    return S_OK;
}

// ---- safe arrays ------------------------------------------------------------------------------------

namespace {

/// An array and what precedes it: its element type.
struct ArrayWithType {
    std::uint64_t type;
    SAFEARRAY array;
};

ArrayWithType* WithType(SAFEARRAY* array) {
    return reinterpret_cast<ArrayWithType*>(reinterpret_cast<char*>(array) - offsetof(ArrayWithType, array));
}

USHORT FeaturesOf(VARTYPE type) {
    switch (type) {
        case VT_BSTR: return FADF_HAVEVARTYPE | FADF_BSTR;
        case VT_UNKNOWN: return FADF_HAVEVARTYPE | FADF_UNKNOWN;
        case VT_DISPATCH: return FADF_HAVEVARTYPE | FADF_DISPATCH;
        case VT_VARIANT: return FADF_HAVEVARTYPE | FADF_VARIANT;
        default: return FADF_HAVEVARTYPE;
    }
}

ULONG CountOf(const SAFEARRAY& array) { return array.rgsabound[0].cElements; }

void FreeElements(SAFEARRAY& array) {
    for (ULONG i = 0; i < CountOf(array); ++i) {
        if (array.fFeatures & FADF_BSTR) SysFreeString(static_cast<BSTR*>(array.pvData)[i]);
        if (array.fFeatures & FADF_VARIANT) VariantClear(&static_cast<VARIANT*>(array.pvData)[i]);
        if (array.fFeatures & (FADF_UNKNOWN | FADF_DISPATCH))
            if (IUnknown* held = static_cast<IUnknown**>(array.pvData)[i]) held->Release();
    }
}

HRESULT CopyElement(const SAFEARRAY& from, SAFEARRAY& to, ULONG i) {
    if (from.fFeatures & FADF_VARIANT)
        return VariantCopy(&static_cast<VARIANT*>(to.pvData)[i], &static_cast<VARIANT*>(from.pvData)[i]);
    VARIANT source{}, copy{};
    source.vt = static_cast<VARTYPE>(from.fFeatures & FADF_BSTR ? VT_BSTR : VT_UNKNOWN);
    source.byref = static_cast<void**>(from.pvData)[i];
    const HRESULT copied = VariantCopy(&copy, &source);
    static_cast<void**>(to.pvData)[i] = copy.byref;
    return copied;
}

}  // namespace

SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG count) {
    const ULONG size = SizeOf(type);
    if (size == 0) return nullptr;
    auto* made = static_cast<ArrayWithType*>(std::calloc(1, sizeof(ArrayWithType)));
    void* data = std::calloc(count ? count : 1, size);
    if (!made || !data) {
        std::free(made);
        std::free(data);
        return nullptr;
    }
    made->type = type;
    made->array = {1, FeaturesOf(type), size, 0, data, {{count, lowerBound}}};
    return &made->array;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
    if (!array) return S_OK;
    if (!(array->fFeatures & FADF_HAVEVARTYPE)) return E_INVALIDARG;
    if (array->cLocks > 0) return DISP_E_ARRAYISLOCKED;
    FreeElements(*array);
    std::free(array->pvData);
    std::free(WithType(array));
    return S_OK;
}

HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy) {
    if (!copy) return E_INVALIDARG;
    *copy = nullptr;
    VARTYPE type = VT_EMPTY;
    if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type))) return E_INVALIDARG;
    SAFEARRAY* made = SafeArrayCreateVector(type, array->rgsabound[0].lLbound, CountOf(*array));
    if (!made) return E_OUTOFMEMORY;
    if (array->fFeatures & (FADF_BSTR | FADF_VARIANT | FADF_UNKNOWN | FADF_DISPATCH)) {
        for (ULONG i = 0; i < CountOf(*array); ++i)
            if (const HRESULT copied = CopyElement(*array, *made, i); FAILED(copied)) {
                SafeArrayDestroy(made);
                return copied;
            }
    } else {
        std::memcpy(made->pvData, array->pvData, std::size_t{CountOf(*array)} * array->cbElements);
    }
    *copy = made;
    return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
    if (!array || !data) return E_INVALIDARG;
    ++array->cLocks;
    *data = array->pvData;
    return S_OK;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) {
    if (!array) return E_INVALIDARG;
    if (array->cLocks == 0) return E_UNEXPECTED;
    --array->cLocks;
    return S_OK;
}

UINT SafeArrayGetDim(SAFEARRAY* array) { return array ? array->cDims : 0; }

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (!array || !bound) return E_INVALIDARG;
    if (dimension != 1) return DISP_E_BADINDEX;
    *bound = array->rgsabound[0].lLbound;
    return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (const HRESULT lower = SafeArrayGetLBound(array, dimension, bound); FAILED(lower)) return lower;
    *bound = static_cast<LONG>(static_cast<ULONG>(*bound) + CountOf(*array) - 1);
    return S_OK;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
    if (!array || !type) return E_INVALIDARG;
    if (array->fFeatures & FADF_HAVEVARTYPE)
        *type = static_cast<VARTYPE>(WithType(array)->type);
    else if (array->fFeatures & FADF_BSTR)
        *type = VT_BSTR;
    else if (array->fFeatures & FADF_VARIANT)
        *type = VT_VARIANT;
    else if (array->fFeatures & FADF_DISPATCH)
        *type = VT_DISPATCH;
    else if (array->fFeatures & FADF_UNKNOWN)
        *type = VT_UNKNOWN;
    else
        return E_INVALIDARG;
    return S_OK;
}

#include "platform/component/binary/ComponentModel.h"

#include "kit/Database.h"
#include "platform/component/binary/Identifier.h"

#include <cstddef>
#include <cstring>
#include <fstream>
#include <limits>
#include <sys/wait.h>
#include <thread>

namespace {

using Platform::Same;
using TestKit::TemporaryFolder;

// ---- layout -----------------------------------------------------------------------------------------

static_assert(sizeof(LONG) == 4 && sizeof(ULONG) == 4 && sizeof(DWORD) == 4 && sizeof(HRESULT) == 4);
static_assert(sizeof(BOOL) == 4 && sizeof(VARIANT_BOOL) == 2 && sizeof(VARTYPE) == 2);
static_assert(sizeof(OLECHAR) == 2 && sizeof(DISPID) == 4 && sizeof(LCID) == 4 && sizeof(DATE) == 8);
static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data2) == 4 && offsetof(GUID, Data4) == 8);
static_assert(sizeof(void*) != 8 || sizeof(VARIANT) == 24);
static_assert(offsetof(VARIANT, vt) == 0 && offsetof(VARIANT, wReserved1) == 2);
static_assert(offsetof(VARIANT, llVal) == 8 && offsetof(VARIANT, bstrVal) == 8);
static_assert(offsetof(VARIANT, decVal) == 0 && offsetof(VARIANT, byref) == 8);
static_assert(sizeof(DECIMAL) == 16 && offsetof(DECIMAL, scale) == 2 && offsetof(DECIMAL, sign) == 3);
static_assert(offsetof(DECIMAL, Hi32) == 4 && offsetof(DECIMAL, Lo64) == 8);
static_assert(sizeof(void*) != 8 || (sizeof(DISPPARAMS) == 24 && offsetof(DISPPARAMS, cNamedArgs) == 20));
static_assert(sizeof(void*) != 8 || (sizeof(EXCEPINFO) == 64 && offsetof(EXCEPINFO, scode) == 56));
static_assert(sizeof(void*) != 8 ||
              (sizeof(SAFEARRAY) == 32 && offsetof(SAFEARRAY, pvData) == 16 && offsetof(SAFEARRAY, rgsabound) == 24));
static_assert(offsetof(SAFEARRAY, fFeatures) == 2 && offsetof(SAFEARRAY, cbElements) == 4 &&
              offsetof(SAFEARRAY, cLocks) == 8);
static_assert(sizeof(SAFEARRAYBOUND) == 8 && offsetof(SAFEARRAYBOUND, lLbound) == 4);

// ---- helpers ----------------------------------------------------------------------------------------

/// A foreign object, which lives as long as the test and counts its references.
class Counted final : public IUnknown {
public:
    HRESULT QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }

    ULONG references = 1;
};

VARIANT OfType(int type) {
    VARIANT variant{};
    variant.vt = static_cast<VARTYPE>(type);
    return variant;
}

VARIANT Number(LONG number) {
    VARIANT variant = OfType(VT_I4);
    variant.lVal = number;
    return variant;
}

VARIANT Text(const char16_t* text) {
    VARIANT variant = OfType(VT_BSTR);
    variant.bstrVal = SysAllocString(text);
    return variant;
}

/// A variant that holds a reference to the object.
VARIANT Holding(Counted& object, int type = VT_UNKNOWN) {
    VARIANT variant = OfType(type);
    object.AddRef();
    variant.punkVal = &object;
    return variant;
}

VARIANT Holding(SAFEARRAY* array, int type) {
    VARIANT variant = OfType(VT_ARRAY | type);
    variant.parray = array;
    return variant;
}

std::u16string Units(BSTR text) { return {text, SysStringLen(text)}; }

template <class T>
T* Elements(SAFEARRAY* array) {
    return static_cast<T*>(array->pvData);
}

// ---- texts ------------------------------------------------------------------------------------------

TEST(CountedText, HasItsLengthBeforeAndAZeroAfterIt) {
    BSTR text = SysAllocString(u"Åse");
    EXPECT_EQ(Units(text), u"Åse");
    EXPECT_EQ(SysStringLen(text), 3U);
    EXPECT_EQ(SysStringByteLen(text), 6U);
    std::uint32_t inFront = 0;
    std::memcpy(&inFront, reinterpret_cast<const char*>(text) - 4, 4);
    EXPECT_EQ(inFront, 6U);
    EXPECT_EQ(text[3], u'\0');
    SysFreeString(text);
}

TEST(CountedText, NullIsTheEmptyText) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0U);
    EXPECT_EQ(SysStringByteLen(nullptr), 0U);
    SysFreeString(nullptr);
}

TEST(CountedText, AnEmptyTextIsNotNull) {
    for (BSTR text : {SysAllocString(u""), SysAllocStringLen(u"abc", 0), SysAllocStringLen(nullptr, 0),
                      SysAllocStringByteLen("abc", 0)}) {
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(SysStringLen(text), 0U);
        EXPECT_EQ(text[0], u'\0');
        SysFreeString(text);
    }
}

TEST(CountedText, HoldsZerosWithin) {
    BSTR text = SysAllocStringLen(u"a\0b", 3);
    EXPECT_EQ(Units(text), std::u16string(u"a\0b", 3));
    EXPECT_EQ(text[3], u'\0');
    SysFreeString(text);
}

TEST(CountedText, TakesSoManyUnitsOfALongerText) {
    BSTR text = SysAllocStringLen(u"abcdef", 2);
    EXPECT_EQ(Units(text), u"ab");
    EXPECT_EQ(text[2], u'\0');
    SysFreeString(text);
}

TEST(CountedText, MayHaveAnOddNumberOfBytes) {
    BSTR text = SysAllocStringByteLen("abc", 3);
    EXPECT_EQ(SysStringByteLen(text), 3U);
    EXPECT_EQ(SysStringLen(text), 1U);
    EXPECT_EQ(std::memcmp(text, "abc\0\0", 5), 0) << "a whole zero unit follows the bytes";
    SysFreeString(text);
}

TEST(CountedText, CanBeFilledLater) {
    BSTR text = SysAllocStringLen(nullptr, 4);
    EXPECT_EQ(SysStringLen(text), 4U);
    std::memcpy(text, u"late", 8);
    EXPECT_EQ(Units(text), u"late");
    EXPECT_EQ(text[4], u'\0');
    SysFreeString(text);
}

TEST(CountedText, IsNullWhereItsLengthCantBeCounted) {
    EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000000U), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFFU), nullptr);
    EXPECT_EQ(SysAllocStringByteLen(nullptr, 0xFFFFFFFFU), nullptr);
    EXPECT_EQ(SysAllocStringByteLen(nullptr, 0xFFFFFFF6U), nullptr);
}

// ---- variants ---------------------------------------------------------------------------------------

const int PlainTypes[] = {VT_EMPTY, VT_NULL, VT_I2,  VT_I4,  VT_R4, VT_R8,  VT_CY,  VT_DATE, VT_ERROR,
                          VT_BOOL,  VT_I1,   VT_UI1, VT_UI2, VT_I8, VT_UI4, VT_UI8, VT_INT,  VT_UINT};

TEST(VariantMemory, InitMakesItEmptyWithoutReadingIt) {
    VARIANT variant;
    std::memset(static_cast<void*>(&variant), 0xAA, sizeof variant);
    VariantInit(&variant);
    EXPECT_EQ(variant.vt, VT_EMPTY);
    EXPECT_EQ(variant.llVal, 0);
    VariantInit(nullptr);
}

TEST(VariantMemory, ClearEmptiesAPlainValue) {
    for (const int type : PlainTypes) {
        VARIANT variant = OfType(type);
        variant.llVal = -1;
        EXPECT_EQ(VariantClear(&variant), S_OK) << type;
        EXPECT_EQ(variant.vt, VT_EMPTY) << type;
        EXPECT_EQ(variant.llVal, 0) << type;
    }
}

TEST(VariantMemory, ClearEmptiesADecimal) {
    VARIANT variant{};
    variant.decVal = {0, 2, 0x80, 1, 12345};
    variant.vt = VT_DECIMAL;
    EXPECT_EQ(VariantClear(&variant), S_OK);
    EXPECT_EQ(variant.vt, VT_EMPTY);
    EXPECT_EQ(variant.decVal.Hi32, 0U);
}

TEST(VariantMemory, ClearFreesTextsObjectsAndArrays) {
    Counted object;
    for (const int type : {VT_UNKNOWN, VT_DISPATCH}) {
        VARIANT variant = Holding(object, type);
        EXPECT_EQ(object.references, 2U);
        EXPECT_EQ(VariantClear(&variant), S_OK);
        EXPECT_EQ(object.references, 1U) << type;
        EXPECT_EQ(variant.punkVal, nullptr);
    }
    VARIANT text = Text(u"freed; a leak fails the program");
    EXPECT_EQ(VariantClear(&text), S_OK);
    EXPECT_EQ(text.bstrVal, nullptr);
    VARIANT array = Holding(SafeArrayCreateVector(VT_UNKNOWN, 0, 2), VT_UNKNOWN);
    Elements<IUnknown*>(array.parray)[1] = Holding(object).punkVal;
    EXPECT_EQ(object.references, 2U);
    EXPECT_EQ(VariantClear(&array), S_OK);
    EXPECT_EQ(object.references, 1U);
    EXPECT_EQ(array.vt, VT_EMPTY);
}

TEST(VariantMemory, ClearTakesNullPlaces) {
    for (const int type : {VT_BSTR + 0, VT_UNKNOWN + 0, VT_DISPATCH + 0, VT_ARRAY | VT_BSTR}) {
        VARIANT variant = OfType(type);
        EXPECT_EQ(VariantClear(&variant), S_OK) << type;
        EXPECT_EQ(variant.vt, VT_EMPTY);
    }
    EXPECT_EQ(VariantClear(nullptr), E_INVALIDARG);
}

TEST(VariantMemory, ClearKeepsTheValueThatAReferencePointsTo) {
    Counted object;
    IUnknown* held = &object;
    BSTR text = SysAllocString(u"stays");
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, 1);
    VARIANT value = Number(5);
    const std::pair<int, void*> places[] = {
        {VT_UNKNOWN, &held}, {VT_BSTR, &text}, {VT_ARRAY | VT_BSTR, &array}, {VT_VARIANT, &value}};
    for (const auto& [type, place] : places) {
        VARIANT variant = OfType(VT_BYREF | type);
        variant.byref = place;
        EXPECT_EQ(VariantClear(&variant), S_OK) << type;
        EXPECT_EQ(variant.vt, VT_EMPTY);
        EXPECT_EQ(variant.byref, nullptr);
    }
    EXPECT_EQ(object.references, 1U);
    EXPECT_EQ(Units(text), u"stays");
    EXPECT_EQ(SafeArrayGetDim(array), 1U);
    EXPECT_EQ(value.lVal, 5);
    SysFreeString(text);
    SafeArrayDestroy(array);
}

TEST(VariantMemory, TypesThatNoVariantHasAreRejected) {
    Counted object;
    const int types[] = {VT_VARIANT,
                         15,
                         24,
                         36,
                         64,
                         0x0FFF,
                         0x1000,
                         0x8000,
                         VT_BYREF,
                         VT_BYREF | VT_NULL,
                         VT_ARRAY,
                         0x7FFF,
                         0xFFFF,
                         VT_ARRAY | VT_NULL,
                         0x1000 | VT_UNKNOWN,
                         0x8000 | VT_UNKNOWN};
    for (const int type : types) {
        VARIANT variant = OfType(type);
        variant.punkVal = &object;
        EXPECT_EQ(VariantClear(&variant), DISP_E_BADVARTYPE) << type;
        EXPECT_EQ(variant.vt, type) << "it stays as it was";
        EXPECT_EQ(variant.punkVal, &object);
        VARIANT to = Number(7);
        EXPECT_EQ(VariantCopy(&to, &variant), DISP_E_BADVARTYPE) << type;
        EXPECT_EQ(to.lVal, 7) << type;
    }
    EXPECT_EQ(object.references, 1U);
}

TEST(VariantMemory, CopyTakesEachPlainValueWhole) {
    for (const int type : PlainTypes) {
        VARIANT from = OfType(type);
        from.llVal = 0x0123456789ABCDEF;
        VARIANT to{};
        EXPECT_EQ(VariantCopy(&to, &from), S_OK) << type;
        EXPECT_EQ(std::memcmp(&to, &from, sizeof to), 0) << type;
    }
    VARIANT decimal{}, to{};
    decimal.decVal = {0, 4, 0x80, 0x89ABCDEF, 0x0123456789ABCDEF};
    decimal.vt = VT_DECIMAL;
    EXPECT_EQ(VariantCopy(&to, &decimal), S_OK);
    EXPECT_EQ(std::memcmp(&to, &decimal, sizeof to), 0);
}

TEST(VariantMemory, CopyOfATextIsAnotherText) {
    VARIANT from = OfType(VT_BSTR), to{};
    from.bstrVal = SysAllocStringByteLen("a\0bcd", 5);
    ASSERT_EQ(VariantCopy(&to, &from), S_OK);
    EXPECT_NE(to.bstrVal, from.bstrVal);
    EXPECT_EQ(SysStringByteLen(to.bstrVal), 5U);
    EXPECT_EQ(std::memcmp(to.bstrVal, "a\0bcd", 5), 0);
    VariantClear(&from);
    VariantClear(&to);
}

TEST(VariantMemory, CopyOfANullTextObjectOrArrayIsOne) {
    for (const int type : {VT_BSTR + 0, VT_UNKNOWN + 0, VT_DISPATCH + 0, VT_ARRAY | VT_I4}) {
        const VARIANT from = OfType(type);
        VARIANT to = Number(1);
        EXPECT_EQ(VariantCopy(&to, &from), S_OK) << type;
        EXPECT_EQ(to.vt, type);
        EXPECT_EQ(to.byref, nullptr);
    }
}

TEST(VariantMemory, CopyHoldsTheSameObject) {
    Counted object;
    for (const int type : {VT_UNKNOWN, VT_DISPATCH}) {
        VARIANT from = Holding(object, type), to{};
        EXPECT_EQ(VariantCopy(&to, &from), S_OK);
        EXPECT_EQ(object.references, 3U);
        EXPECT_EQ(to.punkVal, &object);
        VariantClear(&from);
        VariantClear(&to);
        EXPECT_EQ(object.references, 1U);
    }
}

TEST(VariantMemory, CopyOfAReferencePointsAtTheSamePlace) {
    Counted object;
    IUnknown* held = &object;
    VARIANT from = OfType(VT_BYREF | VT_UNKNOWN), to{};
    from.ppunkVal = &held;
    EXPECT_EQ(VariantCopy(&to, &from), S_OK);
    EXPECT_EQ(to.vt, VT_BYREF | VT_UNKNOWN);
    EXPECT_EQ(to.ppunkVal, &held);
    EXPECT_EQ(object.references, 1U) << "the reference holds nothing";
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 1);
    from = OfType(VT_BYREF | VT_ARRAY | VT_I4);
    from.pparray = &array;
    EXPECT_EQ(VariantCopy(&to, &from), S_OK);
    EXPECT_EQ(to.pparray, &array);
    SafeArrayDestroy(array);
}

TEST(VariantMemory, CopyReleasesTheReplacedValue) {
    Counted object;
    VARIANT to = Holding(object), text = Text(u"new");
    EXPECT_EQ(VariantCopy(&to, &text), S_OK);
    EXPECT_EQ(object.references, 1U);
    EXPECT_EQ(Units(to.bstrVal), u"new");
    const VARIANT number = Number(3);
    EXPECT_EQ(VariantCopy(&to, &number), S_OK);
    EXPECT_EQ(to.lVal, 3);
    VariantClear(&text);
}

TEST(VariantMemory, CopyOntoItselfChangesNothing) {
    Counted object;
    VARIANT variant = Holding(object);
    EXPECT_EQ(VariantCopy(&variant, &variant), S_OK);
    EXPECT_EQ(object.references, 2U);
    EXPECT_EQ(variant.punkVal, &object);
    VariantClear(&variant);
    variant = Text(u"the same text");
    const BSTR text = variant.bstrVal;
    EXPECT_EQ(VariantCopy(&variant, &variant), S_OK);
    EXPECT_EQ(variant.bstrVal, text);
    VariantClear(&variant);
    VARIANT bad = OfType(15);
    EXPECT_EQ(VariantCopy(&bad, &bad), DISP_E_BADVARTYPE);
    EXPECT_EQ(VariantCopy(nullptr, &variant), E_INVALIDARG);
    EXPECT_EQ(VariantCopy(&variant, nullptr), E_INVALIDARG);
}

TEST(VariantMemory, AFailedCopyLeavesTheTargetAndHoldsNothing) {
    Counted object;
    VARIANT from = Holding(object), to = OfType(15);
    to.lVal = 4;
    EXPECT_EQ(VariantCopy(&to, &from), DISP_E_BADVARTYPE);
    EXPECT_EQ(object.references, 2U) << "the copy that was made already is gone";
    EXPECT_EQ(to.vt, 15);
    EXPECT_EQ(to.lVal, 4);

    void* data = nullptr;
    VARIANT locked = Holding(SafeArrayCreateVector(VT_I4, 0, 1), VT_I4);
    SafeArrayAccessData(locked.parray, &data);
    EXPECT_EQ(VariantCopy(&locked, &from), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(VariantClear(&locked), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(locked.vt, VT_ARRAY | VT_I4);
    EXPECT_EQ(locked.parray->pvData, data);
    EXPECT_EQ(object.references, 2U);
    SafeArrayUnaccessData(locked.parray);
    EXPECT_EQ(VariantClear(&locked), S_OK);
    VariantClear(&from);
}

TEST(VariantMemory, CopyOfAnArrayIsAnotherArray) {
    VARIANT from = Holding(SafeArrayCreateVector(VT_I4, 1, 3), VT_I4), to{};
    Elements<LONG>(from.parray)[2] = 42;
    ASSERT_EQ(VariantCopy(&to, &from), S_OK);
    EXPECT_EQ(to.vt, VT_ARRAY | VT_I4);
    ASSERT_NE(to.parray, from.parray);
    Elements<LONG>(from.parray)[2] = 0;
    EXPECT_EQ(Elements<LONG>(to.parray)[2], 42);
    VariantClear(&from);
    VariantClear(&to);
}

// ---- safe arrays ------------------------------------------------------------------------------------

TEST(SafeArray, IsCreatedForEachElementType) {
    const std::pair<int, ULONG> types[] = {{VT_I1, 1},
                                           {VT_UI1, 1},
                                           {VT_I2, 2},
                                           {VT_UI2, 2},
                                           {VT_BOOL, 2},
                                           {VT_I4, 4},
                                           {VT_UI4, 4},
                                           {VT_INT, 4},
                                           {VT_UINT, 4},
                                           {VT_R4, 4},
                                           {VT_ERROR, 4},
                                           {VT_I8, 8},
                                           {VT_UI8, 8},
                                           {VT_R8, 8},
                                           {VT_CY, 8},
                                           {VT_DATE, 8},
                                           {VT_BSTR, sizeof(void*)},
                                           {VT_DISPATCH, sizeof(void*)},
                                           {VT_UNKNOWN, sizeof(void*)},
                                           {VT_VARIANT, sizeof(VARIANT)},
                                           {VT_DECIMAL, 16}};
    for (const auto& [type, size] : types) {
        SAFEARRAY* array = SafeArrayCreateVector(static_cast<VARTYPE>(type), 0, 3);
        ASSERT_NE(array, nullptr) << type;
        VARTYPE told = VT_EMPTY;
        EXPECT_EQ(SafeArrayGetVartype(array, &told), S_OK);
        EXPECT_EQ(told, type);
        EXPECT_EQ(array->cbElements, size) << type;
        EXPECT_EQ(SafeArrayGetDim(array), 1U);
        const std::vector<char> zeros(std::size_t{3} * size);
        EXPECT_EQ(std::memcmp(array->pvData, zeros.data(), zeros.size()), 0) << type;
        EXPECT_EQ(SafeArrayDestroy(array), S_OK);
    }
}

TEST(SafeArray, ReturnsTheTypeOfItsElements) {
    const std::pair<int, int> features[] = {{VT_BSTR, FADF_BSTR},
                                            {VT_UNKNOWN, FADF_UNKNOWN},
                                            {VT_DISPATCH, FADF_DISPATCH},
                                            {VT_VARIANT, FADF_VARIANT},
                                            {VT_I4, 0}};
    for (const auto& [type, feature] : features) {
        SAFEARRAY* array = SafeArrayCreateVector(static_cast<VARTYPE>(type), 0, 0);
        EXPECT_EQ(array->fFeatures, FADF_HAVEVARTYPE | feature) << type;
        SafeArrayDestroy(array);
    }
}

TEST(SafeArray, IsNotCreatedForATypeThatCannotBeAnElement) {
    for (const int type : {VT_EMPTY + 0, VT_NULL + 0, 15, 24, VT_ARRAY | VT_I4, VT_BYREF | VT_I4})
        EXPECT_EQ(SafeArrayCreateVector(static_cast<VARTYPE>(type), 0, 1), nullptr) << type;
}

TEST(SafeArray, HasTheBoundsThatItWasMadeWith) {
    struct {
        LONG lower;
        ULONG count;
        LONG upper;
    } const bounds[] = {{0, 3, 2},
                        {1, 3, 3},
                        {-5, 2, -4},
                        {0, 0, -1},
                        {7, 0, 6},
                        {std::numeric_limits<LONG>::max(), 1, std::numeric_limits<LONG>::max()},
                        {std::numeric_limits<LONG>::min(), 2, std::numeric_limits<LONG>::min() + 1},
                        {std::numeric_limits<LONG>::min(), 0, std::numeric_limits<LONG>::max()}};
    for (const auto& [lower, count, upper] : bounds) {
        SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, lower, count);
        LONG got = 99;
        EXPECT_EQ(SafeArrayGetLBound(array, 1, &got), S_OK);
        EXPECT_EQ(got, lower);
        EXPECT_EQ(SafeArrayGetUBound(array, 1, &got), S_OK);
        EXPECT_EQ(got, upper) << lower << " " << count;
        SafeArrayDestroy(array);
    }
}

TEST(SafeArray, BoundsOfAnotherDimensionAreRejected) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 3);
    LONG bound = 99;
    for (const UINT dimension : {0U, 2U}) {
        EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), DISP_E_BADINDEX);
        EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), DISP_E_BADINDEX);
    }
    EXPECT_EQ(bound, 99);
    SafeArrayDestroy(array);
}

TEST(SafeArray, NullPlacesAreRejected) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 1);
    SAFEARRAY* copy = array;
    LONG bound = 0;
    VARTYPE type = 0;
    void* data = nullptr;
    EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
    EXPECT_EQ(SafeArrayCopy(nullptr, &copy), E_INVALIDARG);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(SafeArrayCopy(array, nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayAccessData(nullptr, &data), E_INVALIDARG);
    EXPECT_EQ(SafeArrayAccessData(array, nullptr), E_INVALIDARG);
    EXPECT_EQ(array->cLocks, 0U);
    EXPECT_EQ(SafeArrayUnaccessData(nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetDim(nullptr), 0U);
    EXPECT_EQ(SafeArrayGetLBound(nullptr, 1, &bound), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetLBound(array, 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetUBound(nullptr, 1, &bound), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetVartype(nullptr, &type), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetVartype(array, nullptr), E_INVALIDARG);
    SafeArrayDestroy(array);
}

TEST(SafeArray, OneOfAnotherOwnerHasTheTypeOfItsFeaturesAndIsNotDestroyed) {
    BSTR texts[] = {nullptr, nullptr};
    SAFEARRAY described = {1, 0, sizeof(BSTR), 0, texts, {{2, 5}}};
    const std::pair<int, int> types[] = {
        {FADF_BSTR, VT_BSTR}, {FADF_VARIANT, VT_VARIANT}, {FADF_DISPATCH, VT_DISPATCH}, {FADF_UNKNOWN, VT_UNKNOWN}};
    VARTYPE type = 0;
    for (const auto& [feature, expected] : types) {
        described.fFeatures = static_cast<USHORT>(feature);
        EXPECT_EQ(SafeArrayGetVartype(&described, &type), S_OK);
        EXPECT_EQ(type, expected);
    }
    described.fFeatures = FADF_BSTR;
    SAFEARRAY* copy = nullptr;
    ASSERT_EQ(SafeArrayCopy(&described, &copy), S_OK);
    EXPECT_EQ(copy->rgsabound[0].lLbound, 5);
    EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
    EXPECT_EQ(SafeArrayDestroy(&described), E_INVALIDARG);
    described.fFeatures = 0;
    EXPECT_EQ(SafeArrayGetVartype(&described, &type), E_INVALIDARG);
    EXPECT_EQ(SafeArrayCopy(&described, &copy), E_INVALIDARG);
    described.fFeatures = FADF_BSTR, described.cDims = 2;
    EXPECT_EQ(SafeArrayCopy(&described, &copy), E_INVALIDARG) << "two dimensions";
}

TEST(SafeArray, IsNotFreedWhileItsDataIsWorkedOn) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 2);
    void* data = nullptr;
    EXPECT_EQ(SafeArrayAccessData(array, &data), S_OK);
    EXPECT_EQ(data, array->pvData);
    EXPECT_EQ(SafeArrayAccessData(array, &data), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED) << "the first access is still open";
    EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
    EXPECT_EQ(SafeArrayUnaccessData(array), E_UNEXPECTED);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArray, ACopyOfALockedOneIsFree) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, -2, 2);
    SAFEARRAY* copy = nullptr;
    void* data = nullptr;
    SafeArrayAccessData(array, &data);
    ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
    EXPECT_EQ(copy->cLocks, 0U);
    EXPECT_EQ(copy->rgsabound[0].lLbound, -2);
    EXPECT_EQ(copy->rgsabound[0].cElements, 2U);
    EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
    SafeArrayUnaccessData(array);
    SafeArrayDestroy(array);
}

TEST(SafeArray, CopiesItsTexts) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, 3);
    Elements<BSTR>(array)[0] = SysAllocString(u"one");
    Elements<BSTR>(array)[2] = SysAllocString(u"");
    SAFEARRAY* copy = nullptr;
    ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
    EXPECT_NE(Elements<BSTR>(copy)[0], Elements<BSTR>(array)[0]);
    SafeArrayDestroy(array);
    EXPECT_EQ(Units(Elements<BSTR>(copy)[0]), u"one");
    EXPECT_EQ(Elements<BSTR>(copy)[1], nullptr);
    EXPECT_NE(Elements<BSTR>(copy)[2], nullptr);
    SafeArrayDestroy(copy);
}

TEST(SafeArray, CopiesHoldTheSameObjects) {
    Counted object;
    for (const int type : {VT_UNKNOWN, VT_DISPATCH}) {
        SAFEARRAY* array = SafeArrayCreateVector(static_cast<VARTYPE>(type), 0, 2);
        Elements<IUnknown*>(array)[1] = Holding(object).punkVal;
        SAFEARRAY* copy = nullptr;
        ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
        EXPECT_EQ(object.references, 3U);
        EXPECT_EQ(Elements<IUnknown*>(copy)[0], nullptr);
        EXPECT_EQ(Elements<IUnknown*>(copy)[1], &object);
        SafeArrayDestroy(array);
        EXPECT_EQ(object.references, 2U);
        SafeArrayDestroy(copy);
        EXPECT_EQ(object.references, 1U) << type;
    }
}

TEST(SafeArray, CopiesItsVariantsWithAllThatTheyHold) {
    Counted object;
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 4);
    VARIANT* values = Elements<VARIANT>(array);
    values[0] = Number(1);
    values[1] = Text(u"two");
    values[2] = Holding(object);
    values[3] = Holding(SafeArrayCreateVector(VT_VARIANT, 0, 1), VT_VARIANT);
    Elements<VARIANT>(values[3].parray)[0] = Holding(object);
    SAFEARRAY* copy = nullptr;
    ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
    EXPECT_EQ(object.references, 5U) << "each of the two variants in each of the two arrays";
    SafeArrayDestroy(array);
    EXPECT_EQ(object.references, 3U);
    values = Elements<VARIANT>(copy);
    EXPECT_EQ(values[0].lVal, 1);
    EXPECT_EQ(Units(values[1].bstrVal), u"two");
    EXPECT_EQ(Elements<VARIANT>(values[3].parray)[0].punkVal, &object);
    SafeArrayDestroy(copy);
    EXPECT_EQ(object.references, 1U);
}

TEST(SafeArray, ACopyThatFailsHalfwayLeavesNoFile) {
    Counted object;
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 3);
    Elements<VARIANT>(array)[0] = Holding(object);
    Elements<VARIANT>(array)[1] = OfType(15);
    Elements<VARIANT>(array)[2] = Holding(object);
    SAFEARRAY* copy = array;
    EXPECT_EQ(SafeArrayCopy(array, &copy), DISP_E_BADVARTYPE);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(object.references, 3U);

    VARIANT from = Holding(array, VT_VARIANT), to = Number(6);
    EXPECT_EQ(VariantCopy(&to, &from), DISP_E_BADVARTYPE);
    EXPECT_EQ(to.lVal, 6);
    EXPECT_EQ(VariantClear(&from), S_OK);
    EXPECT_EQ(object.references, 1U) << "all others are freed beside the one that no variant has";
}

// ---- error records ----------------------------------------------------------------------------------

template <class I>
I* Ask(IUnknown* object, REFIID riid) {
    void* found = nullptr;
    EXPECT_EQ(object->QueryInterface(riid, &found), S_OK);
    return static_cast<I*>(found);
}

/// Returns the text that a getter stores, and frees the `BSTR`.
std::u16string Got(IErrorInfo* record, HRESULT (IErrorInfo::*get)(BSTR*)) {
    BSTR text = nullptr;
    EXPECT_EQ((record->*get)(&text), S_OK);
    const std::u16string units = Units(text);
    SysFreeString(text);
    return units;
}

/// Returns the thread's record and removes it; null if the thread has none.
IErrorInfo* TakenRecord() {
    IErrorInfo* record = nullptr;
    const HRESULT code = GetErrorInfo(0, &record);
    EXPECT_EQ(code, record ? S_OK : S_FALSE);
    return record;
}

TEST(ErrorRecord, ReturnsTheValuesThatWereSet) {
    ICreateErrorInfo* made = nullptr;
    ASSERT_EQ(CreateErrorInfo(&made), S_OK);
    std::u16string source = u"Somebody", description = u"Fäiled 😀", file = u"help.chm";
    EXPECT_EQ(made->SetSource(source.data()), S_OK);
    EXPECT_EQ(made->SetDescription(description.data()), S_OK);
    EXPECT_EQ(made->SetHelpFile(file.data()), S_OK);
    EXPECT_EQ(made->SetHelpContext(0x80000001), S_OK);
    EXPECT_EQ(made->SetGUID(IID_IDispatch), S_OK);
    source = description = file = u"";

    auto* record = Ask<IErrorInfo>(made, IID_IErrorInfo);
    EXPECT_EQ(Got(record, &IErrorInfo::GetSource), u"Somebody");
    EXPECT_EQ(Got(record, &IErrorInfo::GetDescription), u"Fäiled 😀");
    EXPECT_EQ(Got(record, &IErrorInfo::GetHelpFile), u"help.chm");
    DWORD context = 0;
    EXPECT_EQ(record->GetHelpContext(&context), S_OK);
    EXPECT_EQ(context, 0x80000001U);
    GUID guid{};
    EXPECT_EQ(record->GetGUID(&guid), S_OK);
    EXPECT_TRUE(Same(guid, IID_IDispatch));
    EXPECT_EQ(made->Release(), 1U);
    EXPECT_EQ(record->Release(), 0U);
}

TEST(ErrorRecord, StartsEmptyAndTakesNullAsEmpty) {
    ICreateErrorInfo* made = nullptr;
    ASSERT_EQ(CreateErrorInfo(&made), S_OK);
    auto* record = Ask<IErrorInfo>(made, IID_IErrorInfo);
    DWORD context = 99;
    GUID guid = IID_IDispatch;
    EXPECT_EQ(Got(record, &IErrorInfo::GetSource), u"");
    EXPECT_EQ(Got(record, &IErrorInfo::GetDescription), u"");
    EXPECT_EQ(Got(record, &IErrorInfo::GetHelpFile), u"");
    EXPECT_EQ(record->GetHelpContext(&context), S_OK);
    EXPECT_EQ(context, 0U);
    EXPECT_EQ(record->GetGUID(&guid), S_OK);
    EXPECT_TRUE(Same(guid, IID_NULL));
    std::u16string text = u"x";
    made->SetSource(text.data());
    EXPECT_EQ(made->SetSource(nullptr), S_OK);
    EXPECT_EQ(Got(record, &IErrorInfo::GetSource), u"");
    record->Release();
    made->Release();
}

TEST(ErrorRecord, RejectsNullPlaces) {
    ICreateErrorInfo* made = nullptr;
    ASSERT_EQ(CreateErrorInfo(&made), S_OK);
    auto* record = Ask<IErrorInfo>(made, IID_IErrorInfo);
    EXPECT_EQ(record->GetSource(nullptr), E_POINTER);
    EXPECT_EQ(record->GetDescription(nullptr), E_POINTER);
    EXPECT_EQ(record->GetHelpFile(nullptr), E_POINTER);
    EXPECT_EQ(record->GetHelpContext(nullptr), E_POINTER);
    EXPECT_EQ(record->GetGUID(nullptr), E_POINTER);
    EXPECT_EQ(record->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(CreateErrorInfo(nullptr), E_POINTER);
    EXPECT_EQ(GetErrorInfo(0, nullptr), E_INVALIDARG);
    record->Release();
    made->Release();
}

TEST(ErrorRecord, HasOneIdentity) {
    ICreateErrorInfo* made = nullptr;
    ASSERT_EQ(CreateErrorInfo(&made), S_OK);
    auto* record = Ask<IErrorInfo>(made, IID_IErrorInfo);
    auto* first = Ask<IUnknown>(made, IID_IUnknown);
    auto* second = Ask<IUnknown>(record, IID_IUnknown);
    auto* back = Ask<ICreateErrorInfo>(record, IID_ICreateErrorInfo);
    EXPECT_EQ(first, second);
    EXPECT_EQ(back, made);
    void* other = made;
    EXPECT_EQ(record->QueryInterface(IID_IDispatch, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    for (IUnknown* held : {static_cast<IUnknown*>(record), first, second, static_cast<IUnknown*>(back)})
        held->Release();
    EXPECT_EQ(made->Release(), 0U);
}

/// A record that counts its references.
class CountedRecord final : public IErrorInfo {
public:
    HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }
    HRESULT GetGUID(GUID*) override { return E_NOTIMPL; }
    HRESULT GetSource(BSTR*) override { return E_NOTIMPL; }
    HRESULT GetDescription(BSTR*) override { return E_NOTIMPL; }
    HRESULT GetHelpFile(BSTR*) override { return E_NOTIMPL; }
    HRESULT GetHelpContext(DWORD*) override { return E_NOTIMPL; }

    std::atomic<ULONG> references = 1;
};

TEST(ErrorRecord, OfAThreadIsReturnedOnce) {
    CountedRecord record;
    EXPECT_EQ(SetErrorInfo(0, &record), S_OK);
    EXPECT_EQ(record.references, 2U);
    EXPECT_EQ(TakenRecord(), &record);
    EXPECT_EQ(record.references, 2U) << "the reference is the taker's";
    record.Release();
    EXPECT_EQ(TakenRecord(), nullptr);
}

TEST(ErrorRecord, OfAThreadIsReplacedAndTakenAway) {
    CountedRecord first, second;
    SetErrorInfo(0, &first);
    EXPECT_EQ(SetErrorInfo(0, &second), S_OK);
    EXPECT_EQ(first.references, 1U);
    EXPECT_EQ(SetErrorInfo(0, &second), S_OK) << "the same one again";
    EXPECT_EQ(second.references, 2U);
    EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
    EXPECT_EQ(second.references, 1U);
    EXPECT_EQ(TakenRecord(), nullptr);
}

TEST(ErrorRecord, BelongsToItsThreadAndEndsWithIt) {
    CountedRecord here, there;
    SetErrorInfo(0, &here);
    std::thread([&] {
        EXPECT_EQ(TakenRecord(), nullptr);
        SetErrorInfo(0, &there);
        EXPECT_EQ(there.references, 2U);
    }).join();
    EXPECT_EQ(there.references, 1U);
    EXPECT_EQ(TakenRecord(), &here);
}

// ---- identifiers ------------------------------------------------------------------------------------

TEST(StandardInterfaces, HaveTheirIdentifiers) {
    const std::pair<const IID&, const char*> identifiers[] = {
        {IID_NULL, "00000000-0000-0000-0000-000000000000"},
        {IID_IUnknown, "00000000-0000-0000-C000-000000000046"},
        {IID_IClassFactory, "00000001-0000-0000-C000-000000000046"},
        {IID_IDispatch, "00020400-0000-0000-C000-000000000046"},
        {IID_IEnumVARIANT, "00020404-0000-0000-C000-000000000046"},
        {IID_IErrorInfo, "1CF2B120-547D-101B-8E65-08002B2BD119"},
        {IID_ICreateErrorInfo, "22F03340-547D-101B-8E65-08002B2BD119"},
        {IID_ISupportErrorInfo, "DF0B3D60-548F-101B-8E65-08002B2BD119"}};
    for (const auto& [identifier, text] : identifiers) EXPECT_TRUE(Same(identifier, Platform::GuidOf(text))) << text;
}

// ---- the headers in C -------------------------------------------------------------------------------

const std::filesystem::path Sources = std::filesystem::path(__FILE__).parent_path() / ".." / ".." / ".." / "src";

/// The output and the exit code of a command.
std::pair<int, std::string> Run(const std::string& command) {
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return {-1, "no pipe"};
    std::string output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

/// Checks a C source that includes a header and then says `body`.
std::pair<int, std::string> CheckC(const TemporaryFolder& folder, const std::string& options, const std::string& header,
                                   const std::string& body) {
    const std::filesystem::path file = folder.Path() / "client.c";
    std::ofstream(file) << "#include \"" << header << "\"\n" << body << "\n";
    return Run("cc -std=c11 -Wall -Wextra -Wpedantic -Werror -I'" + Sources.string() + "' " + options + " '" +
               file.string() + "'");
}

const std::string CLayout =
    "#include <assert.h>\n"
    "static_assert(sizeof(void*) != 8 || sizeof(VARIANT) == 24, \"\");\n"
    "static_assert(offsetof(VARIANT, lVal) == 8, \"\");\n"
    "static_assert(sizeof(GUID) == 16 && sizeof(OLECHAR) == 2, \"\");\n"
    "ULONG Hold(IDispatch* object) { return object->lpVtbl->AddRef(object); }";

TEST(HeadersInC, AreReadWithoutAWarning) {
    const TemporaryFolder folder;
    for (const char* header : {"platform/component/binary/ComponentModel.h", "platform/oxplatform.h"}) {
        const auto [code, output] = CheckC(folder, "-fsyntax-only", header, CLayout);
        EXPECT_EQ(code, 0) << output;
    }
    const auto [code, output] =
        CheckC(folder, "-fsyntax-only", "platform/oxplatform.h", "int wrong(void) { return VT_NOTHING; }");
    EXPECT_EQ(code, 1) << "the check is one: " << output;
}

TEST(HeadersInC, IncludeNoOtherHeaderOfTheSystem) {
    const TemporaryFolder folder;
    const auto [code, output] = CheckC(folder, "-MM", "platform/oxplatform.h", "");
    ASSERT_EQ(code, 0) << output;
    std::vector<std::string> headers;
    std::istringstream words(output);
    for (std::string word; words >> word;)
        if (word.ends_with(".h")) headers.push_back(std::filesystem::path(word).filename().string());
    EXPECT_THAT(headers, ::testing::ElementsAre("oxplatform.h", "ComponentModel.h")) << output;
}

}  // namespace

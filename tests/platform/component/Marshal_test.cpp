#include "platform/component/dispatch/Marshal.h"

#include "kit/Database.h"
#include "kit/ForeignObject.h"
#include "platform/component/binary/Bstr.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Collection.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {

using namespace Platform;
using TestKit::FailureOf;
using TestKit::ForeignObject;
using Kind = MemberType::Kind;

const String Emoji = "\xF0\x9F\x98\x80";

// ---- helpers ----------------------------------------------------------------------------------------

/// A variant that is cleared with its scope.
struct Held : VARIANT {
    Held() : VARIANT{} {}
    explicit Held(int type) : Held() { vt = static_cast<VARTYPE>(type); }
    Held(int type, void* place) : Held(type) { byref = place; }
    Held(const Held&) = delete;
    ~Held() { VariantClear(this); }
};

/// Returns the number of references to an interface pointer's object.
ULONG ReferencesOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

/// Returns the number of the failure if a variant is rejected; 0 if it is accepted.
Long RefusalOf(const VARIANT& variant) {
    return FailureOf([&] { FromVariant(variant); }).Number;
}

String TextOf(BSTR text) { return FromBstr(text); }

Held ArrayOf(int type, ULONG count) {
    return Held(VT_ARRAY | type, SafeArrayCreateVector(static_cast<VARTYPE>(type), 0, count));
}

template <class T>
T* Elements(const VARIANT& array) {
    return static_cast<T*>(array.parray->pvData);
}

// ---- texts ------------------------------------------------------------------------------------------

TEST(Marshal, TextsCrossWithAllTheirCharacters) {
    for (const String& text : {String("plain"), String("Åkesson " + Emoji), String("a\0b", 3), String()}) {
        BSTR crossed = ToBstr(text);
        ASSERT_NE(crossed, nullptr);
        EXPECT_EQ(SysStringLen(crossed), static_cast<UINT>(Len(text)));
        EXPECT_EQ(FromBstr(crossed), text);
        SysFreeString(crossed);
    }
    EXPECT_EQ(FromBstr(nullptr), "");
}

TEST(Marshal, BrokenTextsCrossWithTheReplacementCharacter) {
    BSTR out = ToBstr(
        "a\xFF"
        "b\xC3");
    EXPECT_EQ(std::u16string(out, SysStringLen(out)),
              u"a\xFFFD"
              u"b\xFFFD");
    SysFreeString(out);
    const char16_t halves[] = {u'a', 0xD83D, u'b', 0xDE00};
    BSTR in = SysAllocStringLen(halves, 4);
    EXPECT_EQ(FromBstr(in),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
    SysFreeString(in);
}

TEST(Marshal, AnOddByteOfATextIsLeftOut) {
    BSTR text = SysAllocStringByteLen("a\0b", 3);
    EXPECT_EQ(FromBstr(text), "a");
    SysFreeString(text);
}

// ---- values out and back ----------------------------------------------------------------------------

TEST(Marshal, EachValueIsReturnedUnchanged) {
    const double tiny = std::numeric_limits<double>::denorm_min();
    const std::pair<Variant, int> values[] = {
        {Empty{}, VT_EMPTY},
        {Null{}, VT_NULL},
        {true, VT_BOOL},
        {false, VT_BOOL},
        {Integer{-32768}, VT_I2},
        {Long{-2147483647 - 1}, VT_I4},
        {std::int64_t{INT64_MIN}, VT_I8},
        {1.5F, VT_R4},
        {-tiny, VT_R8},
        {std::numeric_limits<double>::infinity(), VT_R8},
        {Date{-1.5}, VT_DATE},
        {"Åse " + Emoji, VT_BSTR},
        {"", VT_BSTR},
        {std::vector<String>{"one", "", "drei ß"}, VT_ARRAY | VT_BSTR},
        {std::vector<String>{}, VT_ARRAY | VT_BSTR},
        {New<Collection>(), VT_DISPATCH},
        {New<Collection>()->NewEnum(), VT_UNKNOWN},
        {Ref<Object>(), VT_DISPATCH},
    };
    for (const auto& [value, type] : values) {
        Held crossed;
        ToVariant(value, crossed);
        EXPECT_EQ(crossed.vt, type);
        EXPECT_EQ(FromVariant(crossed), value) << type;
    }
}

TEST(Marshal, ValuesHaveTheirBinaryForm) {
    Held truth, lie, date, array;
    ToVariant(true, truth);
    ToVariant(false, lie);
    ToVariant(Date{45000.25}, date);
    ToVariant(std::vector<String>{"x", "y"}, array);
    EXPECT_EQ(truth.boolVal, -1);
    EXPECT_EQ(lie.boolVal, 0);
    EXPECT_EQ(date.date, 45000.25);
    EXPECT_EQ(array.parray->rgsabound[0].cElements, 2U);
    EXPECT_EQ(array.parray->rgsabound[0].lLbound, 0);
    EXPECT_EQ(TextOf(Elements<BSTR>(array)[1]), "y");
}

TEST(Marshal, AValueThatIsPutDoesNotFreeTheOldOne) {
    BSTR old = ToBstr("old");
    Held to(VT_BSTR);
    to.bstrVal = old;
    ToVariant(Long{5}, to);
    EXPECT_EQ(to.lVal, 5);
    EXPECT_EQ(to.llVal, 5) << "nothing of the old value is left";
    EXPECT_EQ(TextOf(old), "old");
    SysFreeString(old);
}

// ---- objects ----------------------------------------------------------------------------------------

TEST(Marshal, AnObjectThatIsPassedIsReferencedByItsReceiver) {
    const Ref<Collection> object = New<Collection>();
    Held given;
    ToVariant(object, given);
    EXPECT_EQ(ReferencesOf(given.punkVal), 2U);
    {
        const Variant back = FromVariant(given);
        EXPECT_EQ(back, Variant(object));
        EXPECT_EQ(ReferencesOf(given.punkVal), 3U) << "taken is copied";
    }
    IUnknown* pointer = given.punkVal;
    VariantClear(&given);
    EXPECT_EQ(ReferencesOf(pointer), 1U);
}

TEST(Marshal, AForeignObjectIsPassedUnchanged) {
    for (const bool isDispatch : {true, false}) {
        ForeignObject foreign(isDispatch);
        {
            Held given(VT_UNKNOWN), back;
            foreign.AddRef();
            given.punkVal = &foreign;
            const Variant kept = FromVariant(given);
            EXPECT_EQ(foreign.references, 3U);
            ToVariant(kept, back);
            EXPECT_EQ(back.vt, isDispatch ? VT_DISPATCH : VT_UNKNOWN);
            EXPECT_EQ(back.punkVal, &foreign);
            EXPECT_EQ(foreign.references, 4U);
        }
        EXPECT_EQ(foreign.references, 1U);
    }
}

// ---- what is taken ----------------------------------------------------------------------------------

/// A value of each accepted type, at an address of that type.
struct TypedPlace {
    template <class T>
    TypedPlace(int type, T value, Variant expected) : Type(type), Expected(std::move(expected)) {
        static_assert(sizeof value <= sizeof Place);
        std::memcpy(Place, &value, sizeof value);
    }
    int Type;
    Variant Expected;
    alignas(16) unsigned char Place[16] = {};
};

std::vector<TypedPlace> TypedPlaces() {
    return {{VT_I1, std::int8_t{-7}, Integer{-7}},
            {VT_UI1, BYTE{250}, Integer{250}},
            {VT_I2, SHORT{-300}, Integer{-300}},
            {VT_UI2, USHORT{65535}, Long{65535}},
            {VT_I4, LONG{-70000}, Long{-70000}},
            {VT_INT, INT{-70001}, Long{-70001}},
            {VT_UI4, ULONG{0xFFFFFFFF}, std::int64_t{0xFFFFFFFF}},
            {VT_UINT, UINT{0x80000000}, std::int64_t{0x80000000}},
            {VT_I8, LONGLONG{INT64_MIN}, std::int64_t{INT64_MIN}},
            {VT_UI8, static_cast<ULONGLONG>(INT64_MAX), std::int64_t{INT64_MAX}},
            {VT_R4, 0.5F, 0.5F},
            {VT_R8, -0.1, -0.1},
            {VT_CY, LONGLONG{-12345}, -1.2345},
            {VT_DATE, 1.25, Date{1.25}},
            {VT_BOOL, VARIANT_BOOL{-1}, true},
            {VT_BOOL, VARIANT_BOOL{1}, true},
            {VT_BOOL, VARIANT_BOOL{0}, false},
            {VT_BSTR, BSTR{nullptr}, ""},
            {VT_DISPATCH, static_cast<void*>(nullptr), Ref<Object>()},
            {VT_UNKNOWN, static_cast<void*>(nullptr), Ref<Object>()}};
}

TEST(Marshal, EachTypeIsTaken) {
    for (const TypedPlace& sample : TypedPlaces()) {
        VARIANT variant{};
        variant.vt = static_cast<VARTYPE>(sample.Type);
        std::memcpy(&variant.llVal, sample.Place, 8);
        EXPECT_EQ(FromVariant(variant), sample.Expected) << sample.Type;
    }
}

TEST(Marshal, EachTypeIsTakenByReference) {
    for (TypedPlace& sample : TypedPlaces()) {
        const Held reference(VT_BYREF | sample.Type, sample.Place);
        EXPECT_EQ(FromVariant(reference), sample.Expected) << sample.Type;
    }
}

TEST(Marshal, EachTypeIsTakenThroughAReferenceToAVariant) {
    for (TypedPlace& sample : TypedPlaces()) {
        VARIANT variant{};
        variant.vt = static_cast<VARTYPE>(sample.Type);
        std::memcpy(&variant.llVal, sample.Place, 8);
        const Held reference(VT_BYREF | VT_VARIANT, &variant);
        EXPECT_EQ(FromVariant(reference), sample.Expected) << sample.Type;
    }
    for (const int type : {VT_EMPTY, VT_NULL}) {
        Held variant(type);
        const Held reference(VT_BYREF | VT_VARIANT, &variant);
        EXPECT_EQ(FromVariant(reference), type == VT_EMPTY ? Variant(Empty{}) : Variant(Null{}));
    }
}

TEST(Marshal, AWholeNumberBeyond64SignedBitsOverflows) {
    Held number(VT_UI8);
    number.ullVal = static_cast<ULONGLONG>(INT64_MAX) + 1;
    EXPECT_EQ(RefusalOf(number), err::Overflow);
    EXPECT_EQ(RefusalOf(Held(VT_BYREF | VT_UI8, &number.ullVal)), err::Overflow);
}

TEST(Marshal, DatesLieInTheCalendar) {
    Held date(VT_DATE);
    for (const double days : {FirstDay, LastDay, LastDay + 0.999, FirstDay - 0.5, 0.0}) {
        date.date = days;
        EXPECT_EQ(FromVariant(date), Variant(Date{days}));
    }
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const double days : {FirstDay - 1, LastDay + 1, 1e300, -HUGE_VAL, none}) {
        date.date = days;
        EXPECT_EQ(RefusalOf(date), err::Overflow) << days;
        EXPECT_EQ(RefusalOf(Held(VT_BYREF | VT_DATE, &date.date)), err::Overflow) << days;
    }
}

TEST(Marshal, DecimalsAreTakenWithSignScaleAndAllTheirDigits) {
    const std::pair<DECIMAL, double> decimals[] = {
        {{0, 0, 0, 0, 0}, 0},
        {{0, 0, 0, 0, 12345}, 12345},
        {{0, 2, 0x80, 0, 12345}, -123.45},
        {{0, 28, 0, 0, 1}, 1e-28},
        {{0, 0, 0, 1, 0}, 18446744073709551616.0},
        {{0, 0, 0, 0, UINT64_MAX}, 18446744073709551615.0},
        {{0, 28, 0x80, UINT32_MAX, UINT64_MAX}, -7.9228162514264337593543950335},
    };
    for (const auto& [decimal, number] : decimals) {
        Held variant;
        variant.decVal = decimal;
        variant.vt = VT_DECIMAL;
        EXPECT_DOUBLE_EQ(FromVariant(variant).As<double>(), number);
        DECIMAL place = decimal;
        EXPECT_DOUBLE_EQ(FromVariant(Held(VT_BYREF | VT_DECIMAL, &place)).As<double>(), number);
    }
}

TEST(Marshal, TypesWithoutAFormAreRejected) {
    LONGLONG place = 0;
    for (const int type : {VT_ERROR + 0, 15, 24, 36, 64, 0x1000 | VT_I4, VT_BYREF | VT_ERROR, VT_BYREF | 0,
                           VT_BYREF | VT_NULL, VT_BYREF | 36}) {
        VARIANT variant{};
        variant.vt = static_cast<VARTYPE>(type);
        variant.byref = type & VT_BYREF ? &place : nullptr;
        EXPECT_EQ(RefusalOf(variant), DISP_E_BADVARTYPE) << type;
    }
    VARIANT leftOut{};
    leftOut.vt = VT_ERROR, leftOut.scode = DISP_E_PARAMNOTFOUND;
    EXPECT_EQ(RefusalOf(leftOut), DISP_E_BADVARTYPE);
}

TEST(Marshal, AReferenceToAReferenceIsRejected) {
    LONG number = 5;
    Held inner(VT_BYREF | VT_I4, &number);
    EXPECT_EQ(RefusalOf(Held(VT_BYREF | VT_VARIANT, &inner)), DISP_E_BADVARTYPE);
    Held self(VT_BYREF | VT_VARIANT);
    self.pvarVal = &self;
    EXPECT_EQ(RefusalOf(self), DISP_E_BADVARTYPE);
}

TEST(Marshal, ANullReferenceIsRejected) {
    for (const int type : {VT_I4 + 0, VT_BSTR + 0, VT_VARIANT + 0, VT_DISPATCH + 0, VT_DECIMAL + 0, VT_ARRAY | VT_BSTR,
                           VT_ARRAY | VT_VARIANT})
        EXPECT_EQ(RefusalOf(Held(VT_BYREF | type, nullptr)), E_POINTER) << type;
}

// ---- arrays -----------------------------------------------------------------------------------------

TEST(Marshal, AnArrayOfTextsIsTaken) {
    const Held array = ArrayOf(VT_BSTR, 3);
    Elements<BSTR>(array)[0] = ToBstr("ä");
    Elements<BSTR>(array)[2] = ToBstr("c");
    const Variant expected = std::vector<String>{"ä", "", "c"};
    EXPECT_EQ(FromVariant(array), expected);
    SAFEARRAY* place = array.parray;
    EXPECT_EQ(FromVariant(Held(VT_BYREF | VT_ARRAY | VT_BSTR, &place)), expected);
    Held copy;
    VariantCopy(&copy, &array);
    EXPECT_EQ(FromVariant(Held(VT_BYREF | VT_VARIANT, &copy)), expected);
}

TEST(Marshal, AnArrayOfVariantsIsTakenAsTexts) {
    const Held array = ArrayOf(VT_VARIANT, 3);
    ToVariant("one", Elements<VARIANT>(array)[0]);
    ToVariant(Long{2}, Elements<VARIANT>(array)[1]);
    ToVariant(true, Elements<VARIANT>(array)[2]);
    EXPECT_EQ(FromVariant(array), Variant(std::vector<String>{"one", "2", "True"}));
}

TEST(Marshal, AnArrayWithAVariantThatIsNotATextIsRejected) {
    const Held array = ArrayOf(VT_VARIANT, 2);
    VARIANT& second = Elements<VARIANT>(array)[1];
    ToVariant("kept until the failure", Elements<VARIANT>(array)[0]);
    const std::pair<int, Long> refusals[] = {{VT_NULL, err::InvalidNull},
                                             {VT_ERROR, DISP_E_BADVARTYPE},
                                             {VT_BYREF | VT_I4, DISP_E_BADVARTYPE},
                                             {VT_ARRAY | VT_BSTR, DISP_E_BADVARTYPE}};
    for (const auto& [type, number] : refusals) {
        second = {};
        second.vt = static_cast<VARTYPE>(type);
        EXPECT_EQ(RefusalOf(array), number) << type;
    }
}

TEST(Marshal, AnEmptyArrayIsTaken) {
    const Variant none = std::vector<String>{};
    EXPECT_EQ(FromVariant(ArrayOf(VT_BSTR, 0)), none);
    EXPECT_EQ(FromVariant(ArrayOf(VT_VARIANT, 0)), none);
    EXPECT_EQ(FromVariant(Held(VT_ARRAY | VT_BSTR)), none) << "an array that isn't there";
    SAFEARRAY* place = nullptr;
    EXPECT_EQ(FromVariant(Held(VT_BYREF | VT_ARRAY | VT_BSTR, &place)), none);
}

TEST(Marshal, ArraysOfOtherElementsAreRejected) {
    for (const int type : {VT_I4, VT_UI1, VT_R8, VT_UNKNOWN, VT_DISPATCH, VT_DECIMAL}) {
        EXPECT_EQ(RefusalOf(ArrayOf(type, 2)), DISP_E_BADVARTYPE) << type;
        EXPECT_EQ(RefusalOf(ArrayOf(type, 0)), DISP_E_BADVARTYPE) << type;
    }
    Held lying = ArrayOf(VT_I4, 2);
    lying.vt = VT_ARRAY | VT_BSTR;
    EXPECT_EQ(RefusalOf(lying), DISP_E_BADVARTYPE) << "the array's own type counts";
}

TEST(Marshal, ArraysOfTwoDimensionsAreRejected) {
    struct {
        std::uint64_t type = VT_BSTR;
        SAFEARRAY array = {2, FADF_HAVEVARTYPE | FADF_BSTR, sizeof(BSTR), 0, nullptr, {{1, 0}}};
        SAFEARRAYBOUND second = {1, 0};
    } made;
    BSTR texts[] = {nullptr};
    made.array.pvData = texts;
    VARIANT variant{};
    variant.vt = VT_ARRAY | VT_BSTR;
    variant.parray = &made.array;
    EXPECT_EQ(RefusalOf(variant), DISP_E_BADVARTYPE);
    made.array.cDims = 1;
    EXPECT_EQ(RefusalOf(variant), 0) << "it is refused for its dimensions";
}

TEST(Marshal, AnArrayThatContainsItselfIsRejected) {
    Held array = ArrayOf(VT_VARIANT, 1);
    Elements<VARIANT>(array)[0].vt = VT_BYREF | VT_VARIANT;
    Elements<VARIANT>(array)[0].pvarVal = &array;
    EXPECT_EQ(RefusalOf(array), DISP_E_BADVARTYPE);
    Elements<VARIANT>(array)[0] = {};
}

TEST(Marshal, AnArrayThatItsOwnerDescribesIsTakenByItsFeatures) {
    const OwnedBstr text(ToBstr("ä"));
    BSTR texts[] = {text.get()};
    SAFEARRAY described = {1, FADF_BSTR, sizeof(BSTR), 0, texts, {{1, 0}}};
    VARIANT variant{};
    variant.vt = VT_ARRAY | VT_BSTR;
    variant.parray = &described;
    EXPECT_EQ(FromVariant(variant), Variant(std::vector<String>{"ä"}));
    described.fFeatures = 0;
    EXPECT_EQ(RefusalOf(variant), DISP_E_BADVARTYPE);
}

// ---- arguments that are written back ----------------------------------------------------------------

TEST(Marshal, ALeftOutArgumentIsOneErrorValue) {
    VARIANT variant{};
    variant.scode = DISP_E_PARAMNOTFOUND;
    EXPECT_FALSE(IsLeftOut(variant));
    variant.vt = VT_I4;
    EXPECT_FALSE(IsLeftOut(variant));
    variant.vt = VT_ERROR;
    EXPECT_TRUE(IsLeftOut(variant));
    variant.scode = DISP_E_TYPEMISMATCH;
    EXPECT_FALSE(IsLeftOut(variant));
}

TEST(Marshal, AValueIsWrittenBackThroughATypedReference) {
    VARIANT_BOOL truth = 0;
    SHORT small = 0;
    LONG number = 0;
    INT integer = 0;
    FLOAT single = 0;
    DOUBLE real = 0;
    DATE date = 0;
    BSTR text = ToBstr("the old one is freed");
    Held any;
    ToVariant("the old one is freed", any);
    const std::pair<int, void*> places[] = {{VT_BOOL, &truth},  {VT_I2, &small},  {VT_I4, &number},
                                            {VT_INT, &integer}, {VT_R4, &single}, {VT_R8, &real},
                                            {VT_DATE, &date},   {VT_BSTR, &text}, {VT_VARIANT, &any}};
    for (const auto& [type, place] : places) {
        Held reference(VT_BYREF | type, place);
        WriteBack("42", reference);
        EXPECT_EQ(reference.vt, VT_BYREF | type);
        EXPECT_EQ(reference.byref, place);
    }
    EXPECT_EQ(truth, VARIANT_TRUE);
    EXPECT_EQ(small, 42);
    EXPECT_EQ(number, 42);
    EXPECT_EQ(integer, 42);
    EXPECT_EQ(single, 42.0F);
    EXPECT_EQ(real, 42.0);
    EXPECT_EQ(date, 42.0);
    EXPECT_EQ(TextOf(text), "42");
    EXPECT_EQ(FromVariant(any), Variant("42"));
    SysFreeString(text);
}

TEST(Marshal, AValueIsWrittenBackIntoAVariantThatIsNotAReference) {
    Held argument(VT_BSTR);
    argument.bstrVal = ToBstr("the old one is freed");
    WriteBack(Long{7}, argument);
    EXPECT_EQ(FromVariant(argument), Variant(Long{7}));
}

TEST(Marshal, AnObjectThatIsWrittenBackReplacesAnother) {
    const Ref<Collection> before = New<Collection>(), after = New<Collection>();
    for (const int type : {VT_DISPATCH, VT_UNKNOWN}) {
        IUnknown* place = Boundary::ToPointer(before);
        Held reference(VT_BYREF | type, &place);
        WriteBack(after, reference);
        EXPECT_EQ(Boundary::FromPointer(place), after);
        EXPECT_EQ(ReferencesOf(place), 2U);
        WriteBack(after, reference);
        EXPECT_EQ(ReferencesOf(place), 2U) << "the same one again";
        WriteBack(Ref<Object>(), reference);
        EXPECT_EQ(place, nullptr);
    }
    IUnknown* pointer = Boundary::ToPointer(before);
    EXPECT_EQ(pointer->Release(), 1U);
}

TEST(Marshal, AnObjectWithoutCallsByNameFitsNoReferenceToThem) {
    ForeignObject foreign(false);
    const Ref<Object> walk = New<Collection>()->NewEnum(), wrapped = Boundary::FromPointer(&foreign);
    for (const Ref<Object>& object : {walk, wrapped}) {
        IUnknown* place = nullptr;
        Held dispatch(VT_BYREF | VT_DISPATCH, &place), any(VT_BYREF | VT_UNKNOWN, &place);
        EXPECT_EQ(FailureOf([&] { WriteBack(object, dispatch); }).Number, err::TypeMismatch);
        EXPECT_EQ(place, nullptr);
        WriteBack(object, any);
        ASSERT_NE(place, nullptr);
        place->Release();
    }
}

TEST(Marshal, AValueThatCannotBeConvertedIsNotWrittenBack) {
    VARIANT_BOOL truth = 1;
    SHORT small = 11;
    LONG number = 12;
    FLOAT single = 13;
    DOUBLE real = 14;
    DATE date = 15;
    BSTR text = ToBstr("stays");
    IUnknown* object = Boundary::ToPointer(New<Collection>());
    LONGLONG large = 16;
    struct {
        int type;
        void* place;
        Variant value;
        Long number;
    } const cases[] = {
        {VT_BOOL, &truth, "no number", err::TypeMismatch},
        {VT_I2, &small, "no number", err::TypeMismatch},
        {VT_I2, &small, Long{32768}, err::Overflow},
        {VT_I4, &number, 2147483648.0, err::Overflow},
        {VT_INT, &number, Null{}, err::InvalidNull},
        {VT_R4, &single, 1e300, err::Overflow},
        {VT_R8, &real, "no number", err::TypeMismatch},
        {VT_DATE, &date, 1e10, err::Overflow},
        {VT_BSTR, &text, New<Collection>(), err::NoSuchMember},
        {VT_BSTR, &text, Null{}, err::InvalidNull},
        {VT_BSTR, &text, std::vector<String>{"a"}, err::TypeMismatch},
        {VT_DISPATCH, &object, "no object", err::ObjectRequired},
        {VT_UNKNOWN, &object, Long{1}, err::ObjectRequired},
        {VT_I8, &large, Long{1}, err::TypeMismatch},
        {VT_UI1, &large, Long{1}, err::TypeMismatch},
        {VT_CY, &large, Long{1}, err::TypeMismatch},
        {VT_ARRAY | VT_BSTR, &large, std::vector<String>{"a"}, err::TypeMismatch},
    };
    for (const auto& [type, place, value, failure] : cases) {
        Held reference(VT_BYREF | type, place);
        EXPECT_EQ(FailureOf([&, &kept = value] { WriteBack(kept, reference); }).Number, failure) << type;
    }
    EXPECT_EQ(truth, 1);
    EXPECT_EQ(small, 11);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(single, 13);
    EXPECT_EQ(real, 14);
    EXPECT_EQ(date, 15);
    EXPECT_EQ(TextOf(text), "stays");
    EXPECT_EQ(ReferencesOf(object), 1U);
    EXPECT_EQ(large, 16);
    SysFreeString(text);
    object->Release();
}

TEST(Marshal, NothingIsWrittenBackThroughANullReference) {
    for (const int type : {VT_I4, VT_BSTR, VT_VARIANT, VT_DISPATCH}) {
        Held reference(VT_BYREF | type, nullptr);
        EXPECT_EQ(FailureOf([&] { WriteBack(Ref<Object>(), reference); }).Number, E_POINTER) << type;
    }
}

TEST(Marshal, ReferencesReceiveValuesOfTheirType) {
    const std::pair<Kind, std::vector<int>> fitting[] = {{Kind::Boolean, {VT_BOOL}},
                                                         {Kind::Int16, {VT_I2}},
                                                         {Kind::Int32, {VT_I4, VT_INT}},
                                                         {Kind::Enumeration, {VT_I4, VT_INT}},
                                                         {Kind::Float32, {VT_R4}},
                                                         {Kind::Float64, {VT_R8}},
                                                         {Kind::Days, {VT_DATE}},
                                                         {Kind::Text, {VT_BSTR}},
                                                         {Kind::Object, {VT_DISPATCH, VT_UNKNOWN}}};
    const int types[] = {VT_BOOL, VT_I1,   VT_UI1,   VT_I2,       VT_UI2,     VT_I4,      VT_UI4,
                         VT_INT,  VT_UINT, VT_I8,    VT_UI8,      VT_R4,      VT_R8,      VT_DATE,
                         VT_BSTR, VT_CY,   VT_ERROR, VT_DISPATCH, VT_UNKNOWN, VT_DECIMAL, VT_ARRAY | VT_BSTR};
    for (const auto& [kind, fits] : fitting) {
        for (const int type : types) {
            const bool expected = std::ranges::find(fits, type) != fits.end();
            EXPECT_EQ(Receives(Held(VT_BYREF | type, nullptr), {kind, ""}), expected)
                << static_cast<int>(kind) << " " << type;
            VARIANT copy{};
            copy.vt = static_cast<VARTYPE>(type);
            EXPECT_TRUE(Receives(copy, {kind, ""})) << "a copy is not written back";
        }
        EXPECT_TRUE(Receives(Held(VT_BYREF | VT_VARIANT, nullptr), {kind, ""}));
    }
    for (const int type : types)
        EXPECT_TRUE(Receives(Held(VT_BYREF | type, nullptr), {Kind::Any, ""})) << "a variant's value may fit";
    EXPECT_TRUE(Receives(Held(VT_BYREF | VT_VARIANT, nullptr), {Kind::Any, ""}));
}

// ---- typed places -----------------------------------------------------------------------------------

/// Each kind of place, a value of it, and what it is when cleared.
struct PlaceSample {
    Kind Is;
    Variant Value, Other, Cleared;
};

std::vector<PlaceSample> PlaceSamples() {
    return {{Kind::Boolean, true, false, false},
            {Kind::Int16, Integer{-5}, Integer{300}, Integer{0}},
            {Kind::Int32, Long{-70000}, Long{7}, Long{0}},
            {Kind::Enumeration, Long{3}, Long{4}, Long{0}},
            {Kind::Float32, 0.5F, -1.0F, 0.0F},
            {Kind::Float64, 0.1, -1.0, 0.0},
            {Kind::Days, Date{45000.5}, Date{2}, Date{0}},
            {Kind::Text, "Åse", "", ""},
            {Kind::Any, "a text that is freed", Null{}, Empty{}},
            {Kind::Object, New<Collection>(), New<Collection>(), Ref<Object>()}};
}

TEST(TypedPlace, IsWrittenReadReplacedAndCleared) {
    for (const auto& [kind, value, other, cleared] : PlaceSamples()) {
        const MemberType type{kind, ""};
        VARIANT place;
        std::memset(static_cast<void*>(&place), 0xAA, sizeof place);
        ClearPlace(type, &place);
        EXPECT_EQ(ReadPlace(type, &place), cleared) << static_cast<int>(kind);
        WritePlace(type, value, &place);
        EXPECT_EQ(ReadPlace(type, &place), value) << static_cast<int>(kind);
        AssignPlace(type, other, &place);
        EXPECT_EQ(ReadPlace(type, &place), other) << static_cast<int>(kind);
        AssignPlace(type, cleared, &place);
        EXPECT_EQ(ReadPlace(type, &place), cleared) << static_cast<int>(kind);
        if (kind == Kind::Text) SysFreeString(*reinterpret_cast<BSTR*>(&place));
    }
}

TEST(TypedPlace, IsWrittenNoFurtherThanItsType) {
    const std::pair<Kind, std::size_t> sizes[] = {{Kind::None, 0},
                                                  {Kind::Boolean, 2},
                                                  {Kind::Int16, 2},
                                                  {Kind::Int32, 4},
                                                  {Kind::Enumeration, 4},
                                                  {Kind::Float32, 4},
                                                  {Kind::Float64, 8},
                                                  {Kind::Days, 8},
                                                  {Kind::Text, sizeof(void*)},
                                                  {Kind::Object, sizeof(void*)},
                                                  {Kind::Any, sizeof(VARIANT)}};
    for (const auto& [kind, size] : sizes) {
        alignas(VARIANT) unsigned char place[sizeof(VARIANT) + 8];
        const auto untouched = [&, from = size] {
            return std::all_of(place + from, std::end(place), [](unsigned char byte) { return byte == 0xAA; });
        };
        std::memset(place, 0xAA, sizeof place);
        ClearPlace({kind, ""}, place);
        EXPECT_TRUE(untouched()) << static_cast<int>(kind);
        if (kind == Kind::Text || kind == Kind::Object) continue;
        WritePlace({kind, ""}, "1", place);
        EXPECT_TRUE(untouched()) << static_cast<int>(kind);
        if (kind == Kind::Any) VariantClear(reinterpret_cast<VARIANT*>(place));
    }
}

TEST(TypedPlace, KeepsItsValueWhenAnotherCantBeAssigned) {
    BSTR text = ToBstr("stays");
    EXPECT_EQ(FailureOf([&] { AssignPlace({Kind::Text, ""}, Null{}, &text); }).Number, err::InvalidNull);
    EXPECT_EQ(TextOf(text), "stays");
    SysFreeString(text);
    IUnknown* object = Boundary::ToPointer(New<Collection>());
    EXPECT_EQ(FailureOf([&] { AssignPlace({Kind::Object, ""}, "text", &object); }).Number, err::ObjectRequired);
    EXPECT_EQ(ReferencesOf(object), 1U);
    object->Release();
}

TEST(TypedPlace, OfAnObjectAcceptsOnlyIDispatch) {
    const Ref<Object> walk = New<Collection>()->NewEnum();
    IUnknown* place = nullptr;
    EXPECT_EQ(FailureOf([&] {
                  WritePlace({MemberType::Kind::Object, "Object"}, walk, &place);
              }).Number,
              err::TypeMismatch);
    EXPECT_EQ(place, nullptr);
    WritePlace({MemberType::Kind::Object, "Enumerator"}, walk, &place);
    ASSERT_NE(place, nullptr);
    place->Release();
}

TEST(TypedPlace, OfNoTypeHasNoValue) {
    LONG place = 5;
    EXPECT_EQ(FailureOf([&] { ReadPlace({}, &place); }).Number, DISP_E_BADVARTYPE);
    WritePlace({}, Long{6}, &place);
    ClearPlace({}, &place);
    EXPECT_EQ(place, 5);
}

}  // namespace

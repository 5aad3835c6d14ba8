#include "boundary/SlotCall.h"

#include "platform/component/dispatch/Interface.h"

#include <cmath>
#include <limits>
#include <set>

/// Every member of every class, called with what it can't take: no crash, no exception, a standard return
/// code.
namespace {

using namespace Client;

/// Swallows text boxes for one test.
class WrongCalls : public ::testing::Test {
protected:
    WrongCalls() {
        OxSetMsgBox([](void*, BSTR, LONG) {}, nullptr);
    }
    ~WrongCalls() override { OxSetMsgBox(nullptr, nullptr); }

    /// Returns all classes that can be created by name, also those of the platform.
    static std::vector<Dispatch> Objects() {
        std::vector<Dispatch> objects{Create("Collection"), Create("ADODB.Connection"), Create("ADODB.Recordset")};
        for (const std::string& name : ClassNames()) objects.push_back(Create(name));
        const Dispatch connection = OpenedConnection();
        const Dispatch rows = Call(connection, "Execute", {"SELECT * FROM Patient_T"}).Object();
        objects.push_back(rows);
        objects.push_back(Get(rows, "Fields").Object());
        objects.push_back(Get(connection, "Errors").Object());
        return objects;
    }

    static int FlagsOf(const std::string& kind) {
        if (kind == "put") return DISPATCH_PROPERTYPUT;
        if (kind == "putref") return DISPATCH_PROPERTYPUTREF;
        return kind == "get" ? DISPATCH_PROPERTYGET : DISPATCH_METHOD;
    }

    /// Values that hardly any argument can take.
    static std::vector<Value> Misfits() {
        Value array = Value::OfType(VT_ARRAY | VT_I4), texts = Value::OfType(VT_ARRAY | VT_BSTR);
        array.Get().parray = SafeArrayCreateVector(VT_I4, 0, 3);
        texts.Get().parray = SafeArrayCreateVector(VT_BSTR, 0, 3);
        Value decimal = Value::OfType(VT_DECIMAL), currency = Value::OfType(VT_CY);
        decimal.Get().decVal.scale = 255;
        decimal.Get().decVal.Lo64 = ~ULONGLONG{0};
        currency.Get().llVal = std::numeric_limits<LONGLONG>::min();
        Value date = Value::OfType(VT_DATE), wide = Value::OfType(VT_UI8);
        date.Get().date = std::nan("");
        wide.Get().ullVal = ~ULONGLONG{0};
        return {Value(),
                Value::Null(),
                "no number, no flag, no date",
                "",
                "1E999",
                -1,
                std::numeric_limits<LONG>::max(),
                std::nan(""),
                1e308,
                std::numeric_limits<double>::infinity(),
                Create("OXClass.cTooth"),
                Create("ADODB.Connection"),
                Dispatch(),
                array,
                texts,
                decimal,
                currency,
                date,
                wide,
                Value::OfType(VT_ERROR),
                Value::LeftOut(),
                Value::OfType(VT_UNKNOWN),
                Value::OfType(VT_ARRAY | VT_BSTR),
                Value::Reference(VT_VARIANT, nullptr),
                Value::Reference(VT_BSTR, nullptr),
                Value::OfType(0x0FFF),
                Value::OfType(VT_VARIANT)};
    }

    static void ExpectStandard(HRESULT code, const std::string& what) {
        static const std::set<HRESULT> standard{S_OK,
                                                DISP_E_EXCEPTION,
                                                DISP_E_BADPARAMCOUNT,
                                                DISP_E_PARAMNOTOPTIONAL,
                                                DISP_E_TYPEMISMATCH,
                                                DISP_E_OVERFLOW,
                                                DISP_E_BADVARTYPE,
                                                DISP_E_MEMBERNOTFOUND,
                                                DISP_E_PARAMNOTFOUND,
                                                E_POINTER};
        EXPECT_TRUE(standard.contains(code)) << what << " gave " << std::hex << code << " " << Record();
    }

    /// By slot a member's own failure is its number.
    static void ExpectStandardBySlot(HRESULT code, const std::string& what) {
        const auto facility = static_cast<std::uint32_t>(code) & 0xFFFF0000U;
        if (facility != 0x800A0000U && facility != 0x80040000U) ExpectStandard(code, what);
        EXPECT_NE(code, DISP_E_EXCEPTION) << what;
    }
};

TEST_F(WrongCalls, WrongNumbersOfArguments) {
    for (const Dispatch& object : Objects()) {
        const Json description = Describe(object.Get());
        for (const Json& member : description["members"]) {
            const std::size_t count = member["arguments"].size();
            // One argument of a get of an object may be meant for the default member of the object.
            const bool passesOn = count == 0 && member["kind"] == "get" && member["result"] == "object";
            std::vector<Value> many(count + (passesOn ? 2 : 1), Value(1));
            EXPECT_EQ(Invoke(object.Get(), member["id"].get<DISPID>(), FlagsOf(member["kind"]), many).Code,
                      DISP_E_BADPARAMCOUNT)
                << description["class"] << member["name"];
            if (count == 0 || member["arguments"][0]["optional"]) continue;
            DISPPARAMS none{};
            EXPECT_EQ(object->Invoke(member["id"], IID_NULL, 0, static_cast<WORD>(FlagsOf(member["kind"])), &none,
                                     nullptr, nullptr, nullptr),
                      DISP_E_PARAMNOTOPTIONAL)
                << description["class"] << member["name"];
        }
    }
}

TEST_F(WrongCalls, UnknownMembers) {
    for (const Dispatch& object : Objects())
        for (const DISPID id : {-1, -2, -5, 1, 0x60040000, std::numeric_limits<DISPID>::min()})
            for (const int flags : {1, 2, 4, 8, 0, 15, 0xFFFF}) {
                std::vector<Value> none;
                DISPPARAMS parameters{};
                EXPECT_EQ(
                    object->Invoke(id, IID_NULL, 0, static_cast<WORD>(flags), &parameters, nullptr, nullptr, nullptr),
                    DISP_E_MEMBERNOTFOUND);
            }
}

TEST_F(WrongCalls, EachArgumentByNameWithWhatItCannotTake) {
    const std::vector<Value> misfits = Misfits();
    int calls = 0;
    for (const Dispatch& object : Objects()) {
        const Json description = Describe(object.Get());
        for (const Json& member : description["members"])
            for (std::size_t wrong = 0; wrong < member["arguments"].size(); ++wrong)
                for (const Value& misfit : misfits) {
                    std::vector<Value> arguments(member["arguments"].size(), Value(1));
                    arguments[wrong] = misfit;
                    const std::string what = description["class"].get<std::string>() + "." +
                                             member["name"].get<std::string>() + " of a " +
                                             std::to_string(misfit.Type());
                    ExpectStandard(
                        Invoke(object.Get(), member["id"].get<DISPID>(), FlagsOf(member["kind"]), arguments).Code,
                        what);
                    ++calls;
                }
    }
    EXPECT_GT(calls, 10000);
}

TEST_F(WrongCalls, EachMemberWithAConnectionButNoOtherObject) {
    for (const std::string& name : ClassNames()) {
        const Dispatch connection = OpenedConnection(), object = Create(name);
        const Json description = Describe(object.Get());
        for (const Json& member : description["members"]) {
            std::vector<Value> arguments;
            for (const Json& argument : member["arguments"])
                arguments.push_back(argument.value("of", "") == "Connection" ? Value(connection) : Value());
            ExpectStandard(Invoke(object.Get(), member["id"].get<DISPID>(), FlagsOf(member["kind"]), arguments).Code,
                           name + "." + member["name"].get<std::string>());
        }
    }
}

TEST_F(WrongCalls, EachSlotWithPlacesThatAreMissing) {
    for (const Dispatch& object : Objects())
        for (const SlotOf& slot : SlotsOf(object.Get())) {
            std::vector<Binary> arguments(slot.Member["arguments"].size() + (HasResult(slot.Member) ? 1 : 0));
            const HRESULT code = CallSlot(object.Get(), slot, arguments);
            if (HasResult(slot.Member)) {
                EXPECT_EQ(code, E_POINTER) << slot.Member["name"];
                continue;
            }
            bool pointer = false;
            for (const Json& argument : slot.Member["arguments"])
                pointer |= IsPlace(slot.Member, argument) && !argument["optional"];
            if (!pointer) continue;
            EXPECT_EQ(code, E_POINTER) << slot.Member["name"];
        }
}

TEST_F(WrongCalls, EachSlotWithWrongObjectsAndVariants) {
    const Dispatch wrong = Create("OXClass.cTooth");
    for (const Dispatch& object : Objects())
        for (const SlotOf& slot : SlotsOf(object.Get())) {
            std::vector<VARIANT> variants(slot.Member["arguments"].size());
            std::vector<BSTR> texts(variants.size(), nullptr);
            std::vector<IUnknown*> objects(variants.size(), wrong.Get());
            std::vector<double> numbers(variants.size(), std::nan(""));
            std::vector<Binary> arguments;
            for (std::size_t i = 0; i < variants.size(); ++i) {
                const Json& argument = slot.Member["arguments"][i];
                variants[i].vt = 0x0FFF;
                Binary binary{};
                if (argument["type"] == "object")
                    binary.object = wrong.Get();
                else if (argument["type"] == "variant")
                    binary.variant = variants[i];
                else if (argument["type"] != "text")
                    binary.real = numbers[i];
                if (IsPlace(slot.Member, argument)) {
                    if (argument["type"] == "object") wrong->AddRef();  // the place owns what it holds
                    binary = Binary{};
                    binary.place = argument["type"] == "object"    ? static_cast<void*>(&objects[i])
                                   : argument["type"] == "variant" ? static_cast<void*>(&variants[i])
                                   : argument["type"] == "text"    ? static_cast<void*>(&texts[i])
                                                                   : static_cast<void*>(&numbers[i]);
                }
                arguments.push_back(binary);
            }
            Value result;
            if (HasResult(slot.Member)) {
                Binary place{};
                place.place = slot.Member["result"] == "variant" ? static_cast<void*>(&result.Get())
                                                                 : static_cast<void*>(&result.Get().llVal);
                arguments.push_back(place);
            }
            const HRESULT code = CallSlot(object.Get(), slot, arguments);
            ExpectStandardBySlot(code, slot.Member["name"]);
            if (slot.Member["result"] == "text") result.Get().vt = VT_BSTR;
            if (slot.Member["result"] == "object") result.Get().vt = VT_UNKNOWN;
            for (std::size_t i = 0; i < variants.size(); ++i) {
                const Json& argument = slot.Member["arguments"][i];
                if (!IsPlace(slot.Member, argument)) continue;
                SysFreeString(texts[i]);
                if (argument["type"] == "object" && objects[i]) objects[i]->Release();
                if (variants[i].vt != 0x0FFF) VariantClear(&variants[i]);
            }
        }
}

}  // namespace

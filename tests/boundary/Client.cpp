#include "boundary/Client.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Text.h"

#include <dlfcn.h>

namespace Client {
namespace {

void TakeInLibrary() {
    static const HRESULT taken = OxUseLibrary(LIBRARY);
    ASSERT_EQ(taken, S_OK) << Record();
}

template <class Function>
Function* Exported(const char* name) {
    static void* const library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function*>(dlsym(library, name));
}

Outcome FailWith(const Outcome& outcome, const std::string& name) {
    EXPECT_EQ(outcome.Code, S_OK) << name << ": " << outcome.Source << ": " << outcome.Description;
    return outcome;
}

}  // namespace

// ---- texts and values -------------------------------------------------------------------------------

Text::Text(const std::string& utf8) {
    const std::u16string units = Platform::ToUtf16(utf8);
    text_ = SysAllocStringLen(units.data(), static_cast<UINT>(units.size()));
}

std::string Text::Utf8() const { return Platform::FromUtf16({text_, SysStringLen(text_)}); }

std::string Taken(BSTR text) {
    const std::string utf8 = Platform::FromUtf16({text, SysStringLen(text)});
    SysFreeString(text);
    return utf8;
}

std::u16string Value::Units(const std::string& utf8) { return Platform::ToUtf16(utf8); }

LONG Value::Long() const {
    EXPECT_EQ(Type(), VT_I4);
    return variant_.lVal;
}

SHORT Value::Integer() const {
    EXPECT_EQ(Type(), VT_I2);
    return variant_.iVal;
}

bool Value::Bool() const {
    EXPECT_EQ(Type(), VT_BOOL);
    return variant_.boolVal == VARIANT_TRUE;
}

std::string Value::String() const {
    EXPECT_EQ(Type(), VT_BSTR);
    return Type() == VT_BSTR ? Platform::FromUtf16({variant_.bstrVal, SysStringLen(variant_.bstrVal)}) : "";
}

Dispatch Value::Object() const {
    EXPECT_EQ(Type(), VT_DISPATCH);
    if (Type() != VT_DISPATCH || !variant_.pdispVal) return Dispatch();
    variant_.pdispVal->AddRef();
    return Dispatch(variant_.pdispVal);
}

// ---- calls ------------------------------------------------------------------------------------------

Outcome Invoke(IDispatch* object, DISPID id, int flags, std::vector<Value>& arguments) {
    std::vector<VARIANT> reversed;
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
        reversed.push_back(argument->Get());
    DISPID put = DISPID_PROPERTYPUT;
    const bool isPut = flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF);
    DISPPARAMS parameters{reversed.data(), isPut ? &put : nullptr, static_cast<UINT>(reversed.size()), isPut ? 1U : 0U};
    Outcome outcome;
    EXCEPINFO failure{};
    outcome.Code = object->Invoke(id, IID_NULL, 0, static_cast<WORD>(flags), &parameters, &outcome.Result.Get(),
                                  &failure, &outcome.Wrong);
    outcome.Failure = failure.scode;
    outcome.Source = Taken(failure.bstrSource);
    outcome.Description = Taken(failure.bstrDescription);
    return outcome;
}

DISPID IdOf(IDispatch* object, const std::string& name) {
    std::u16string units = Platform::ToUtf16(name);
    LPOLESTR names[] = {units.data()};
    DISPID id = DISPID_UNKNOWN;
    object->GetIDsOfNames(IID_NULL, names, 1, 0, &id);
    return id;
}

Outcome Invoke(IDispatch* object, const std::string& name, int flags, std::vector<Value> arguments) {
    return Invoke(object, IdOf(object, name), flags, arguments);
}

Value Get(const Dispatch& object, const std::string& name, std::vector<Value> arguments) {
    return FailWith(Invoke(object.Get(), name, DISPATCH_PROPERTYGET, std::move(arguments)), name).Result;
}

void Put(const Dispatch& object, const std::string& name, Value value) {
    FailWith(Invoke(object.Get(), name, DISPATCH_PROPERTYPUT, {std::move(value)}), name);
}

Value Call(const Dispatch& object, const std::string& name, std::vector<Value> arguments) {
    return FailWith(Invoke(object.Get(), name, DISPATCH_METHOD, std::move(arguments)), name).Result;
}

// ---- objects ----------------------------------------------------------------------------------------

HRESULT CreateCode(const std::string& name) {
    TakeInLibrary();
    Dispatch object;
    return OxCreateObject(Platform::ToUtf16(name).c_str(), object.Place());
}

Dispatch Create(const std::string& name) {
    TakeInLibrary();
    Dispatch object;
    EXPECT_EQ(OxCreateObject(Platform::ToUtf16(name).c_str(), object.Place()), S_OK) << name << ": " << Record();
    return object;
}

Dispatch Global(const std::string& name) {
    TakeInLibrary();
    Dispatch object;
    EXPECT_EQ(OxGlobal(Platform::ToUtf16(name).c_str(), object.Place()), S_OK) << name << ": " << Record();
    return object;
}

Json Describe(IUnknown* object) {
    BSTR json = nullptr;
    EXPECT_EQ(OxDescribe(object, &json), S_OK);
    return Json::parse(Taken(json));
}

std::vector<std::string> ClassNames() {
    TakeInLibrary();
    BSTR json = nullptr;
    EXPECT_EQ(OxClasses(&json), S_OK) << Record();
    const Json classes = Json::parse(Taken(json));
    std::vector<std::string> names;
    for (const Json& found : classes)
        if (const std::string name = found["name"]; name.starts_with("OXClass.")) names.push_back(name);
    return names;
}

std::string Record() {
    Pointer<IErrorInfo> record;
    if (GetErrorInfo(0, record.Place()) != S_OK) return "";
    BSTR source = nullptr, description = nullptr;
    record->GetSource(&source);
    record->GetDescription(&description);
    const std::string front = Taken(source);
    return front + ": " + Taken(description);
}

Dispatch OpenedConnection() {
    static const TestKit::TemporaryFolder folder;
    static int number = 0;
    const std::string file = TestKit::NewDatabase(folder, "clinic" + std::to_string(++number) + ".db");
    const Dispatch connection = Create("ADODB.Connection");
    Call(connection, "Open", {("Provider=SQLite;Data Source=" + file).c_str()});
    return connection;
}

HRESULT CanUnloadNow() { return Exported<HRESULT()>("DllCanUnloadNow")(); }

HRESULT GetClassObject(REFCLSID classID, REFIID riid, void** factory) {
    return Exported<HRESULT(REFCLSID, REFIID, void**)>("DllGetClassObject")(classID, riid, factory);
}

}  // namespace Client

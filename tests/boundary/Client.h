#pragma once

#include "platform/oxplatform.h"

#include "platform/component/dispatch/Interface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

/// A client of the library file as programs in other languages are: it knows interfaces, variants and names,
/// and none of the classes.
namespace Client {

using Json = nlohmann::ordered_json;

/// A counted wide string of this side.
class Text {
public:
    Text(const std::string& utf8);
    Text(const Text& other) : Text(other.Utf8()) {}
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }

    BSTR Get() const noexcept { return text_; }
    BSTR* Place() noexcept { return &text_; }
    std::string Utf8() const;

private:
    BSTR text_;
};

/// The text of a counted wide string, which is freed.
std::string Taken(BSTR text);

/// A reference to an interface.
template <class I>
class Pointer {
public:
    Pointer() = default;
    explicit Pointer(I* owned) : pointer_(owned) {}
    Pointer(const Pointer& other) : pointer_(other.pointer_) {
        if (pointer_) pointer_->AddRef();
    }
    Pointer(Pointer&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    Pointer& operator=(Pointer other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~Pointer() {
        if (pointer_) pointer_->Release();
    }

    I* Get() const noexcept { return pointer_; }
    I* operator->() const noexcept { return pointer_; }
    explicit operator bool() const noexcept { return pointer_ != nullptr; }
    I** Place() {
        *this = Pointer();
        return &pointer_;
    }

private:
    I* pointer_ = nullptr;
};
using Dispatch = Pointer<IDispatch>;

/// A variant of this side.
class Value {
public:
    Value() { VariantInit(&variant_); }
    Value(LONG number) : Value() { variant_.vt = VT_I4, variant_.lVal = number; }
    Value(double number) : Value() { variant_.vt = VT_R8, variant_.dblVal = number; }
    Value(bool truth) : Value() { variant_.vt = VT_BOOL, variant_.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE; }
    Value(const char* text) : Value() { variant_.vt = VT_BSTR, variant_.bstrVal = SysAllocString(Units(text).c_str()); }
    Value(const Dispatch& object) : Value() {
        variant_.vt = VT_DISPATCH, variant_.pdispVal = object.Get();
        if (object) object->AddRef();
    }
    static Value Null() { return OfType(VT_NULL); }
    static Value LeftOut() {
        Value value = OfType(VT_ERROR);
        value.variant_.scode = DISP_E_PARAMNOTFOUND;
        return value;
    }
    static Value OfType(int type) {
        Value value;
        value.variant_.vt = static_cast<VARTYPE>(type);
        return value;
    }
    static Value Reference(int type, void* place) {
        Value value = OfType(type | VT_BYREF);
        value.variant_.byref = place;
        return value;
    }
    Value(const Value& other) : Value() { VariantCopy(&variant_, &other.variant_); }
    Value(Value&& other) noexcept : variant_(std::exchange(other.variant_, VARIANT{})) {}
    Value& operator=(Value other) noexcept {
        std::swap(variant_, other.variant_);
        return *this;
    }
    ~Value() { VariantClear(&variant_); }

    static std::u16string Units(const std::string& utf8);

    VARIANT& Get() noexcept { return variant_; }
    int Type() const noexcept { return variant_.vt; }
    LONG Long() const;
    SHORT Integer() const;
    bool Bool() const;
    std::string String() const;
    Dispatch Object() const;

private:
    VARIANT variant_{};
};

/// The return code and the results of a call.
struct Outcome {
    HRESULT Code = E_UNEXPECTED;
    Value Result;
    HRESULT Failure = S_OK;  ///< of DISP_E_EXCEPTION
    std::string Source, Description;
    UINT Wrong = 99;  ///< the position of the argument that was wrong
};

/// Calls a member by its dispatch identifier. `arguments` are in their order; those that are written back are changed.
Outcome Invoke(IDispatch* object, DISPID id, int flags, std::vector<Value>& arguments);

/// Calls by name. `Get`, `Put` and `Call` fail the test where the call fails.
DISPID IdOf(IDispatch* object, const std::string& name);
Outcome Invoke(IDispatch* object, const std::string& name, int flags, std::vector<Value> arguments = {});
Value Get(const Dispatch& object, const std::string& name, std::vector<Value> arguments = {});
void Put(const Dispatch& object, const std::string& name, Value value);
Value Call(const Dispatch& object, const std::string& name, std::vector<Value> arguments = {});

/// Creates an object by the name of its class. Loads the library file before the first one.
Dispatch Create(const std::string& name);
Dispatch Global(const std::string& name);
HRESULT CreateCode(const std::string& name);

/// Another interface of an object; null where it has none.
template <class I>
Pointer<I> Ask(IUnknown* object, REFIID riid) {
    void* found = nullptr;
    object->QueryInterface(riid, &found);
    return Pointer<I>(static_cast<I*>(found));
}

/// The members of an object, as the host describes them.
Json Describe(IUnknown* object);

/// The names of the 28 classes, "OXClass.Class1" first.
std::vector<std::string> ClassNames();

/// Returns the thread's error record as "source: description" and removes it.
std::string Record();

/// Returns a connection to a new database with all tables, in a file that is deleted with the test.
Dispatch OpenedConnection();

/// The library file's own four functions.
HRESULT CanUnloadNow();
HRESULT GetClassObject(REFCLSID classID, REFIID riid, void** factory);

}  // namespace Client

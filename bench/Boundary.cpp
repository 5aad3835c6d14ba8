#include "bench/Boundary.h"

#include "people/cPatient.h"
#include "platform/component/binary/Bstr.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace Bench {
namespace {

using namespace OXClass;

constexpr int Rounds = 100'000;

/// The reference of a COM client to an object.
class Held {
public:
    explicit Held(const Ref<cPatient>& patient)
        : dispatch_(static_cast<IDispatch*>(Platform::Boundary::ToPointer(patient))) {}
    ~Held() {
        if (dispatch_) dispatch_->Release();
    }
    Held(const Held&) = delete;
    IDispatch* Get() const noexcept { return dispatch_; }

private:
    IDispatch* dispatch_;
};

/// What a C++ program would write instead: virtual functions that return the values in their binary form.
class ByVirtualCall {
public:
    explicit ByVirtualCall(const Ref<cPatient>& patient) : patient_(patient) {}
    virtual ~ByVirtualCall() = default;
    [[gnu::noinline]] virtual HRESULT Number(LONG* value) noexcept {
        *value = patient_->ID;
        return S_OK;
    }
    [[gnu::noinline]] virtual HRESULT Text(BSTR* value) noexcept {
        *value = Platform::ToBstr(patient_->LastName);
        return S_OK;
    }

private:
    Ref<cPatient> patient_;
};

/// Hides from the compiler which class the object has, so that its functions are called through the vtable.
ByVirtualCall& Hidden(ByVirtualCall& object) {
    ByVirtualCall* volatile pointer = &object;
    return *pointer;
}

/// Returns the function that reads a property in the object's vtable.
template <class Value>
auto SlotOf(IDispatch* held, const Interface& members, const char* property) {
    using Get = HRESULT(STDMETHODCALLTYPE*)(IDispatch*, Value*);
    const auto slot = 7 + (members.Find(property, Platform::MemberKind::Get) - members.Members().data());
    return reinterpret_cast<Get>(const_cast<void*>((*reinterpret_cast<void***>(held))[slot]));
}

template <class Get>
void ReadNumbers(Get get) {
    for (int i = 0; i < Rounds; ++i) {
        LONG value = -1;
        Require(get(&value) == S_OK && value == 0);
    }
}

template <class Get>
void ReadTexts(Get get) {
    for (int i = 0; i < Rounds; ++i) {
        BSTR text = nullptr;
        Require(get(&text) == S_OK && SysStringLen(text) == 7);
        SysFreeString(text);
    }
}

void ReadBySlot(Report& report, const Ref<cPatient>& patient, IDispatch* held) {
    ByVirtualCall object(patient);
    ByVirtualCall& hidden = Hidden(object);
    const auto number = SlotOf<LONG>(held, patient->Describe(), "ID");
    report.Compare(
        "slot-number", "a number read by slot, beside a virtual function", "each", Rounds, 25,
        [&] { ReadNumbers([&](LONG* value) { return number(held, value); }); },
        [&] { ReadNumbers([&](LONG* value) { return hidden.Number(value); }); });
    const auto text = SlotOf<BSTR>(held, patient->Describe(), "LastName");
    report.Compare(
        "slot-text", "a text read by slot, beside a virtual function", "each", Rounds, 25,
        [&] { ReadTexts([&](BSTR* value) { return text(held, value); }); },
        [&] { ReadTexts([&](BSTR* value) { return hidden.Text(value); }); });
}

void ReadByName(Report& report, const Ref<cPatient>& patient, IDispatch* held) {
    const DISPID id = patient->Describe().Find("LastName")->DispId;
    const auto text = SlotOf<BSTR>(held, patient->Describe(), "LastName");
    report.Compare(
        "name", "a text read by name, beside a read by slot", "each", Rounds, 25,
        [&] {
            for (int i = 0; i < Rounds; ++i) {
                DISPPARAMS none{};
                VARIANT value{};
                Require(held->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr) == S_OK);
                VariantClear(&value);
            }
        },
        [&] { ReadTexts([&](BSTR* value) { return text(held, value); }); });
}

void Make(Report& report) {
    report.Compare(
        "object", "an object passed through the COM interface and released", "each", Rounds, 9,
        [&] {
            for (int i = 0; i < Rounds; ++i) Require(Held(New<cPatient>()).Get() != nullptr);
        },
        [&] {
            for (int i = 0; i < Rounds; ++i) Require(New<cPatient>()->ID == 0);
        });
}

}  // namespace

void BenchBoundary(Report& report) {
    const Ref<cPatient> patient = New<cPatient>();
    patient->LastName = "Åkesson";
    const Held held(patient);
    ReadBySlot(report, patient, held.Get());
    ReadByName(report, patient, held.Get());
    Make(report);
}

}  // namespace Bench

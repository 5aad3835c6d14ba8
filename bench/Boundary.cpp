#include "bench/Boundary.h"

#include "people/cPatient.h"
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

void ReadBySlot(Report& report, const Ref<cPatient>& patient, IDispatch* held) {
    const auto& members = patient->Describe().Members();
    const auto* member = patient->Describe().Find("LastName", Platform::MemberKind::Get);
    const auto slot = 7 + (member - members.data());
    using Get = HRESULT(STDMETHODCALLTYPE*)(IDispatch*, BSTR*);
    const auto get = reinterpret_cast<Get>(const_cast<void*>((*reinterpret_cast<void***>(held))[slot]));
    report.Compare(
        "slot", "a text property read through the COM interface by slot", "each", Rounds, 9,
        [&] {
            for (int i = 0; i < Rounds; ++i) {
                BSTR text = nullptr;
                Require(get(held, &text) == S_OK && SysStringLen(text) == 7);
                SysFreeString(text);
            }
        },
        [&] {
            for (int i = 0; i < Rounds; ++i) Require(String(patient->LastName).size() == 8);
        });
}

void ReadByName(Report& report, const Ref<cPatient>& patient, IDispatch* held) {
    const DISPID id = patient->Describe().Find("LastName")->DispId;
    report.Compare(
        "name", "a text property read through the COM interface by name", "each", Rounds, 9,
        [&] {
            for (int i = 0; i < Rounds; ++i) {
                DISPPARAMS none{};
                VARIANT value{};
                Require(held->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr) == S_OK);
                VariantClear(&value);
            }
        },
        [&] {
            for (int i = 0; i < Rounds; ++i) Require(String(patient->LastName).size() == 8);
        });
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

#include "bench/Boundary.h"

#include "bench/Ratio.h"
#include "people/cPatient.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace Bench {
namespace {

using namespace OXClass;

constexpr int Rounds = 100'000;

/// An object as a component client holds it.
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

void ReadBySlot(const Ref<cPatient>& patient, IDispatch* held) {
    const auto& members = patient->Describe().Members();
    const auto* member = patient->Describe().Find("LastName", Platform::MemberKind::Get);
    const auto slot = 7 + (member - members.data());
    using Get = HRESULT(STDMETHODCALLTYPE*)(IDispatch*, BSTR*);
    const auto get = reinterpret_cast<Get>(const_cast<void*>((*reinterpret_cast<void***>(held))[slot]));
    PrintRatio(
        "a text property read by slot", Rounds, 9,
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

void ReadByName(const Ref<cPatient>& patient, IDispatch* held) {
    const DISPID id = patient->Describe().Find("LastName")->DispId;
    PrintRatio(
        "a text property read by name", Rounds, 9,
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

void Make() {
    PrintRatio(
        "a patient given over the boundary and dropped", Rounds, 9,
        [&] {
            for (int i = 0; i < Rounds; ++i) Require(Held(New<cPatient>()).Get() != nullptr);
        },
        [&] {
            for (int i = 0; i < Rounds; ++i) Require(New<cPatient>()->ID == 0);
        });
}

}  // namespace

void BenchBoundary() {
    const Ref<cPatient> patient = New<cPatient>();
    patient->LastName = "Åkesson";
    const Held held(patient);
    ReadBySlot(patient, held.Get());
    ReadByName(patient, held.Get());
    Make();
}

}  // namespace Bench

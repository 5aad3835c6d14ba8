#include "platform/component/dispatch/ByName.h"

#include "platform/component/binary/Bstr.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Marshal.h"
#include "platform/component/dispatch/ScriptMember.h"
#include "platform/runtime/Convert.h"

#include <vector>

namespace Platform {
namespace {

constexpr LCID UserLocaleId = 0x400;
constexpr WORD Read = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

/// The arguments of one call in the order of `DISPPARAMS`, the last one first.
class Parameters {
public:
    Parameters(std::span<const ByName::Argument> arguments, std::uint32_t returned, bool isPut)
        : variants_(arguments.size()), received_(arguments.size()) {
        for (std::size_t i = 0; i < arguments.size(); ++i) Fill(i, arguments[i], (returned >> i & 1) != 0);
        parameters_.rgvarg = variants_.data();
        parameters_.cArgs = static_cast<UINT>(variants_.size());
        if (!isPut) return;
        parameters_.rgdispidNamedArgs = &value_;
        parameters_.cNamedArgs = 1;
    }
    ~Parameters() {
        for (VARIANT& variant : variants_) VariantClear(&variant);
        for (VARIANT& variant : received_) VariantClear(&variant);
    }
    Parameters(const Parameters&) = delete;

    DISPPARAMS* Get() noexcept { return &parameters_; }
    Variant Received(std::size_t index) const { return FromVariant(received_[index]); }

private:
    void Fill(std::size_t index, const ByName::Argument& argument, bool byReference) {
        VARIANT& variant = variants_[variants_.size() - 1 - index];
        if (!argument) {
            variant.vt = VT_ERROR;
            variant.scode = DISP_E_PARAMNOTFOUND;
            return;
        }
        VARIANT& value = byReference ? received_[index] : variant;
        ToVariant(*argument, value);
        if (!byReference) return;
        variant.vt = static_cast<VARTYPE>((value.vt == VT_EMPTY ? VARTYPE{VT_VARIANT} : value.vt) | VT_BYREF);
        variant.byref = value.vt == VT_EMPTY ? static_cast<void*>(&value) : &value.llVal;
    }

    std::vector<VARIANT> variants_;
    std::vector<VARIANT> received_;  // what the references refer to
    DISPID value_ = DISPID_PROPERTYPUT;
    DISPPARAMS parameters_{};
};

/// A variant that the call fills.
struct Result {
    ~Result() { VariantClear(&variant); }
    VARIANT variant{};
};

String Taken(BSTR text) {
    const OwnedBstr owned(text);
    return FromBstr(text);
}

/// Raises the failure that a member raised.
[[noreturn]] void RaiseException(EXCEPINFO& failure) {
    if (failure.pfnDeferredFillIn) failure.pfnDeferredFillIn(&failure);
    SysFreeString(failure.bstrHelpFile);
    const String source = Taken(failure.bstrSource), description = Taken(failure.bstrDescription);
    const Long number = failure.scode != 0 ? NumberOf(failure.scode) : Long{failure.wCode};
    throw Error(number, source, description.empty() ? DescriptionOf(number) : description);
}

[[noreturn]] void RaiseCall(HRESULT code, const String& member) {
    const Long number = NumberOf(code);
    throw Error(number, "Runtime", DescriptionOf(number) + ": " + member);
}

}  // namespace

void ByName::Releaser::operator()(IDispatch* object) const { object->Release(); }

ByName::ByName(const Ref<Object>& object) {
    IUnknown* const pointer = Boundary::ToPointer(object);
    if (!pointer) Raise(err::ObjectNotSet);
    void* dispatch = nullptr;
    const HRESULT code = pointer->QueryInterface(IID_IDispatch, &dispatch);
    pointer->Release();
    if (FAILED(code)) Raise(err::NoSuchMember);
    object_.reset(static_cast<IDispatch*>(dispatch));
}

DISPID ByName::IdOf(const String& member) const {
    if (const auto known = ids_.find(member); known != ids_.end()) return known->second;
    const OwnedBstr name(ToBstr(member));
    LPOLESTR names[] = {name.get()};
    DISPID id = DISPID_UNKNOWN;
    const HRESULT code = object_->GetIDsOfNames(IID_NULL, names, 1, UserLocaleId, &id);
    if (FAILED(code)) id = IdOfScriptMember(*object_, name.get());
    if (FAILED(code) && id == DISPID_UNKNOWN) RaiseCall(code, member);
    return ids_.emplace(member, id).first->second;
}

DISPID ByName::IdOr(const String& member, DISPID otherwise) const {
    try {
        return IdOf(member);
    } catch (const Error&) {
        return otherwise;
    }
}

bool ByName::Has(const String& member) const { return IdOr(member, DISPID_UNKNOWN) != DISPID_UNKNOWN; }

HRESULT ByName::Invoke(DISPID id, WORD flags, std::span<Argument> arguments, std::uint32_t returned,
                       Variant& result) const {
    const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    Parameters parameters(arguments, returned, isPut);
    Result filled;
    EXCEPINFO failure{};
    UINT wrong = 0;
    const HRESULT code = object_->Invoke(id, IID_NULL, UserLocaleId, flags, parameters.Get(),
                                         isPut ? nullptr : &filled.variant, &failure, &wrong);
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (returned >> i & 1) arguments[i] = parameters.Received(i);
    if (code == DISP_E_EXCEPTION) RaiseException(failure);
    if (SUCCEEDED(code)) result = FromVariant(filled.variant);
    return code;
}

Variant ByName::Call(const String& member, std::span<Argument> arguments, std::uint32_t returned) const {
    Variant result;
    const HRESULT code = Invoke(IdOf(member), Read, arguments, returned, result);
    if (FAILED(code)) RaiseCall(code, member);
    return result;
}

Variant ByName::Call(DISPID member, std::span<Argument> arguments, std::uint32_t returned) const {
    Variant result;
    const HRESULT code = Invoke(member, DISPATCH_METHOD, arguments, returned, result);
    if (FAILED(code)) RaiseCall(code, CStr(Long{member}));
    return result;
}

Variant ByName::ItemOf(const String& property, const Variant& index) const {
    Argument argument = index;
    Variant item;
    const HRESULT direct = Invoke(IdOf(property), Read, {&argument, 1}, 0, item);
    if (SUCCEEDED(direct)) return item;
    const ByName members(To<Ref<Object>>(Call(property)));
    const HRESULT code = members.Invoke(DISPID_VALUE, Read, {&argument, 1}, 0, item);
    if (FAILED(code)) RaiseCall(code, property);
    return item;
}

void ByName::Put(const String& property, const Variant& value, const Argument& index) const {
    std::vector<Argument> arguments;
    if (index) arguments.push_back(index);
    arguments.emplace_back(value);
    const DISPID id = IdOf(property);
    Variant none;
    HRESULT code = DISP_E_MEMBERNOTFOUND;
    if (value.Is<Ref<Object>>()) code = Invoke(id, DISPATCH_PROPERTYPUTREF, arguments, 0, none);
    if (code == DISP_E_MEMBERNOTFOUND) code = Invoke(id, DISPATCH_PROPERTYPUT, arguments, 0, none);
    if (FAILED(code)) RaiseCall(code, property);
}

}  // namespace Platform

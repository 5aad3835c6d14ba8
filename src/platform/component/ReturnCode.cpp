#include "platform/component/ReturnCode.h"

#include "platform/component/Interface.h"
#include "platform/component/Marshal.h"

#include <atomic>
#include <new>

namespace Platform {
namespace {

/// An error record: who failed, and the text.
class ErrorRecord final : public IErrorInfo, public ICreateErrorInfo {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (Same(riid, IID_IUnknown) || Same(riid, IID_IErrorInfo))
            *object = static_cast<IErrorInfo*>(this);
        else if (Same(riid, IID_ICreateErrorInfo))
            *object = static_cast<ICreateErrorInfo*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) override {
        if (!guid) return E_POINTER;
        *guid = guid_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override { return Copy(source_, source); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override {
        return Copy(description_, description);
    }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* file) override { return Copy(helpFile_, file); }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) override {
        if (!context) return E_POINTER;
        *context = helpContext_;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) override {
        guid_ = guid;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR source) override { return Keep(source_, source); }
    HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) override {
        return Keep(description_, description);
    }
    HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR file) override { return Keep(helpFile_, file); }
    HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD context) override {
        helpContext_ = context;
        return S_OK;
    }

    void Take(const Error& failure) {
        source_.reset(ToBstr(failure.Source));
        description_.reset(ToBstr(failure.Description));
    }

private:
    static HRESULT Copy(const OwnedText& text, BSTR* copy) {
        if (!copy) return E_POINTER;
        *copy = SysAllocStringLen(text.get(), SysStringLen(text.get()));
        return *copy ? S_OK : E_OUTOFMEMORY;
    }
    static HRESULT Keep(OwnedText& kept, LPCOLESTR text) {
        kept.reset(SysAllocString(text));
        return kept || !text ? S_OK : E_OUTOFMEMORY;
    }

    std::atomic<ULONG> references_ = 1;
    GUID guid_{};
    OwnedText source_, description_, helpFile_;
    DWORD helpContext_ = 0;
};

}  // namespace

HRESULT NewErrorRecord(ICreateErrorInfo** record) noexcept {
    if (!record) return E_POINTER;
    *record = new (std::nothrow) ErrorRecord;
    return *record ? S_OK : E_OUTOFMEMORY;
}

HRESULT CodeOf(const Error& failure) {
    constexpr std::uint32_t ofTheRuntime = 0x800A0000;
    if (failure.Number < 0) return failure.Number;
    if (failure.Number == 0 || failure.Number > 0xFFFF) return E_FAIL;
    return static_cast<HRESULT>(ofTheRuntime | static_cast<std::uint32_t>(failure.Number));
}

namespace {

/// The return code for an argument that can't be taken, with its record; a null's is the runtime's own.
HRESULT CodeOfArgument(const ArgumentError& failure) {
    LeaveRecord(failure);
    if (failure.Number < 0 || failure.Number == err::InvalidNull) return CodeOf(failure);
    if (failure.Number == err::Overflow) return DISP_E_OVERFLOW;
    if (failure.Number != err::TypeMismatch)
        LeaveRecord(Error(err::TypeMismatch, failure.Source, DescriptionOf(err::TypeMismatch)));
    return DISP_E_TYPEMISMATCH;
}

}  // namespace

void LeaveRecord(const Error& failure) noexcept {
    SetErrorInfo(0, nullptr);
    auto* record = new (std::nothrow) ErrorRecord;
    if (!record) return;
    try {
        record->Take(failure);
        SetErrorInfo(0, record);
    } catch (const std::bad_alloc&) {
    }
    static_cast<IErrorInfo*>(record)->Release();
}

HRESULT Failing(HRESULT code, const String& description) noexcept {
    LeaveRecord(Error(code, "Runtime", description));
    return code;
}

HRESULT CodeOfCaught() noexcept {
    try {
        throw;
    } catch (const ArgumentError& failure) {
        return CodeOfArgument(failure);
    } catch (const Error& failure) {
        LeaveRecord(failure);
        return CodeOf(failure);
    } catch (const std::bad_alloc&) {
        SetErrorInfo(0, nullptr);
        return E_OUTOFMEMORY;
    } catch (const std::exception& failure) {
        return Failing(E_UNEXPECTED, failure.what());
    } catch (...) {
        return Failing(E_UNEXPECTED, "Unexpected failure");
    }
}

}  // namespace Platform

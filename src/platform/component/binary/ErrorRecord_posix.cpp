#include "platform/component/binary/ErrorRecord.h"

#include "platform/component/binary/Bstr.h"
#include "platform/component/binary/Counted.h"
#include "platform/component/binary/Identifier.h"

#include <new>
#include <utility>

namespace Platform {
namespace {

/// An error record: the source of a failure and its text.
class ErrorRecord final : public Counted<ErrorRecord, IErrorInfo, ICreateErrorInfo> {
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

    HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) override {
        if (!guid) return E_POINTER;
        *guid = guid_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override { return Copy(source_, source); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override { return Copy(description_, description); }
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
    HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) override { return Keep(description_, description); }
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
    static HRESULT Copy(const OwnedBstr& text, BSTR* copy) {
        if (!copy) return E_POINTER;
        *copy = SysAllocStringLen(text.get(), SysStringLen(text.get()));
        return *copy ? S_OK : E_OUTOFMEMORY;
    }
    static HRESULT Keep(OwnedBstr& kept, LPCOLESTR text) {
        kept.reset(SysAllocString(text));
        return kept || !text ? S_OK : E_OUTOFMEMORY;
    }

    GUID guid_{};
    OwnedBstr source_, description_, helpFile_;
    DWORD helpContext_ = 0;
};

}  // namespace

void SetErrorRecord(const Error& failure) noexcept {
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

}  // namespace Platform

namespace {

/// A thread's error record. Plain data, which stays readable while the thread's other data end.
thread_local IErrorInfo* theRecord = nullptr;
thread_local bool isEnding = false;

/// Releases a thread's record when the thread ends.
struct RecordEnd {
    ~RecordEnd() {
        isEnding = true;
        SetErrorInfo(0, nullptr);
    }
};

}  // namespace

HRESULT SetErrorInfo(ULONG, IErrorInfo* record) {
    if (record) {
        if (isEnding) return S_OK;  // it would not be released
        thread_local const RecordEnd end;
        record->AddRef();
    }
    if (IErrorInfo* old = std::exchange(theRecord, record)) old->Release();
    return S_OK;
}

HRESULT GetErrorInfo(ULONG, IErrorInfo** record) {
    if (!record) return E_INVALIDARG;
    *record = std::exchange(theRecord, nullptr);
    return *record ? S_OK : S_FALSE;
}

HRESULT CreateErrorInfo(ICreateErrorInfo** record) {
    if (!record) return E_POINTER;
    *record = new (std::nothrow) Platform::ErrorRecord;
    return *record ? S_OK : E_OUTOFMEMORY;
}

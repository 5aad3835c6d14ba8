#include "platform/component/binary/ErrorRecord.h"

#include "platform/component/binary/Bstr.h"

#include <new>

namespace Platform {
namespace {

void Fill(ICreateErrorInfo& record, const Error& failure) {
    const OwnedBstr source(ToBstr(failure.Source)), description(ToBstr(failure.Description));
    record.SetSource(source.get());
    record.SetDescription(description.get());
}

}  // namespace

void SetErrorRecord(const Error& failure) noexcept {
    SetErrorInfo(0, nullptr);
    ICreateErrorInfo* record = nullptr;
    if (FAILED(CreateErrorInfo(&record))) return;
    void* readable = nullptr;
    try {
        Fill(*record, failure);
        record->QueryInterface(IID_IErrorInfo, &readable);
        SetErrorInfo(0, static_cast<IErrorInfo*>(readable));
    } catch (const std::bad_alloc&) {
    }
    if (readable) static_cast<IErrorInfo*>(readable)->Release();
    record->Release();
}

}  // namespace Platform

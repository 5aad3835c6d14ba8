#pragma once

#include "platform/component/ComponentModel.h"
#include "platform/runtime/Error.h"

/// Failures as return codes and error records: no exception crosses the boundary.
namespace Platform {

/// The return code of a failure: 0x800A0000 and a short number, or an engine's number itself.
HRESULT CodeOf(const Error& failure);

/// Leaves the failure as the calling thread's error record.
void LeaveRecord(const Error& failure) noexcept;

/// The return code for the exception that is being handled, whose record it leaves.
HRESULT CodeOfCaught() noexcept;

/// Runs what a client called and lets no exception out.
template <class F>
HRESULT Guarded(F body) noexcept {
    try {
        return body();
    } catch (...) {
        return CodeOfCaught();
    }
}

/// A new error record with one reference, for its maker to fill.
HRESULT NewErrorRecord(ICreateErrorInfo** record) noexcept;

/// Leaves a record with a text and gives the code.
HRESULT Failing(HRESULT code, const String& description) noexcept;

}  // namespace Platform

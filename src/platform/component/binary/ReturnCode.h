#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Error.h"

#include <cstddef>

/// Failures as return codes with error records: no exception crosses the binary interface. Any thread may call.
namespace Platform {

/// A failure to convert an argument that a caller passed: 6, 13 or 94, and which argument it was.
class ArgumentError : public Error {
public:
    ArgumentError(const Error& failure, std::size_t index) : Error(failure), Index(index) {}
    std::size_t Index;  ///< counted from 0
};

/// Returns the return code of a failure: 0x800A0000 plus a short number, or an engine's number itself.
HRESULT CodeOf(const Error& failure);

/// Returns the number of a failure for its return code: the short number behind 0x800A0000, the runtime's number for a
/// code that means the same, otherwise the code itself.
Long NumberOf(HRESULT code);

/// Returns the return code for the exception that is being handled, and sets the error record.
HRESULT CodeOfCaught() noexcept;

/// Returns what `body` returns, or the return code of the exception that it throws, with the error record set.
template <class F>
HRESULT Guarded(F body) noexcept {
    try {
        return body();
    } catch (...) {
        return CodeOfCaught();
    }
}

/// Sets an error record with this description, and returns `code`.
HRESULT FailWith(HRESULT code, const String& description) noexcept;

}  // namespace Platform

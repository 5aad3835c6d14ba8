#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Error.h"

namespace Platform {

/// Sets the calling thread's error record (`IErrorInfo`) to the source and description of `failure`. Where memory
/// for it is missing, the thread has no record afterwards. Any thread may call.
void SetErrorRecord(const Error& failure) noexcept;

}  // namespace Platform

#pragma once

#include "platform/component/binary/ComponentModel.h"

#include <atomic>

namespace Platform {

/// The reference count of a C++ class that implements interfaces of the component model: it begins at 1, and `Release`
/// deletes the object when it reaches 0. Any thread may call both.
///
///     class ErrorRecord final : public Counted<ErrorRecord, IErrorInfo, ICreateErrorInfo> { ... };
template <class Derived, class... Interfaces>
class Counted : public Interfaces... {
public:
    Counted() = default;
    Counted(const Counted&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() final { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() final {
        const ULONG left = --references_;
        if (left == 0) delete static_cast<Derived*>(this);
        return left;
    }

protected:
    ~Counted() = default;

private:
    std::atomic<ULONG> references_ = 1;
};

}  // namespace Platform

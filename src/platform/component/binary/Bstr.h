#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Types.h"

#include <memory>

/// Texts at the binary interface: a `BSTR` is a counted string of UTF-16 units that `SysFreeString` frees.
/// Any thread may call the functions below.
namespace Platform {

struct BstrDeleter {
    void operator()(BSTR text) const noexcept { SysFreeString(text); }
};

/// A `BSTR` that is freed with its owner.
using OwnedBstr = std::unique_ptr<OLECHAR, BstrDeleter>;

/// Returns a new `BSTR` of a text in UTF-8, never null, which the caller frees. Invalid UTF-8 becomes U+FFFD. Raises
/// `std::bad_alloc`.
BSTR ToBstr(std::string_view text);

/// Returns the text of a `BSTR`; an empty text for null. NUL characters inside the text are part of it, and half of a
/// surrogate pair becomes U+FFFD. The caller keeps the `BSTR`.
String FromBstr(BSTR text);

/// Returns the text of a null-terminated string of UTF-16 units; an empty text for null. Half of a surrogate pair
/// becomes U+FFFD.
String FromUnits(LPCOLESTR text);

}  // namespace Platform

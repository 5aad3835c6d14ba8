#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Types.h"

#include <memory>

/// Texts at the binary interface: a `BSTR` is a counted string of UTF-16 units that `SysFreeString` frees.
/// Any thread may call the functions below.
namespace Platform {

/// Frees a `BSTR`.
struct BstrDeleter {
    void operator()(BSTR text) const noexcept { SysFreeString(text); }
};

/// A `BSTR` that is freed with its owner.
using OwnedBstr = std::unique_ptr<OLECHAR, BstrDeleter>;

/// Returns a new `BSTR` of a text in UTF-8, never null, which the caller frees. Raises `std::bad_alloc`.
BSTR ToBstr(std::string_view text);

/// Returns the text of a `BSTR`; an empty text for null.
String FromBstr(BSTR text);

/// Returns the text of a null-terminated string of UTF-16 units; an empty text for null.
String FromUnits(LPCOLESTR text);

}  // namespace Platform

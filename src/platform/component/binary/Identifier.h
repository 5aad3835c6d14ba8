#pragma once

#include "platform/component/binary/ComponentModel.h"

#include <cstring>
#include <string_view>

namespace Platform {

/// Returns true for the text of a GUID, "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx" with hexadecimal digits. Any thread may
/// call the functions here.
bool IsGuid(std::string_view text);

/// Returns the GUID of a text for which `IsGuid` returns true.
GUID GuidOf(std::string_view text);

/// Returns true if the identifiers are equal.
inline bool Same(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace Platform

#pragma once

#include "platform/component/binary/ComponentModel.h"

#include <cstring>
#include <string_view>

namespace Platform {

/// True for the text of an identifier, "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx".
bool IsGuid(std::string_view text);

/// The identifier of a text, which must be one.
GUID GuidOf(std::string_view text);

inline bool Same(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace Platform

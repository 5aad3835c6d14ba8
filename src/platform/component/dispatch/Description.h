#pragma once

#include "platform/component/dispatch/Interface.h"

namespace Platform {

/// Returns the members of a class as JSON (the format is that of `OxDescribe`), for clients that create a proxy class
/// from them. Any thread may call.
String DescriptionText(const Interface& members);

}  // namespace Platform

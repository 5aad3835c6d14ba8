#pragma once

#include "platform/component/dispatch/Interface.h"

namespace Platform {

/// A class's members as JSON, for clients that build their own side of them (see `OxDescribe`). Any thread
/// may call.
String DescriptionText(const Interface& members);

}  // namespace Platform

#pragma once

#include "platform/runtime/Object.h"

namespace ADODB {

/// Returns a new closed recordset of the system's own database layer that Open opens on this connection, if the
/// connection is one of that layer; otherwise null, as on a system without such a layer.
Platform::Ref<Platform::Object> NewSystemRecordset(const Platform::Ref<Platform::Object>& connection);

}  // namespace ADODB

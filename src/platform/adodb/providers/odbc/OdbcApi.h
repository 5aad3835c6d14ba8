#pragma once

/// The functions of the driver manager. On Windows its headers need the types of the system.

#ifdef _WIN32
#include "platform/runtime/WindowsApi.h"
#endif
#include <sql.h>
#include <sqlext.h>

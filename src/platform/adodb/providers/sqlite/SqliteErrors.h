#pragma once

#include "platform/adodb/Enums.h"

struct sqlite3;

namespace ADODB {

/// Throws what the engine's last call on `database` failed with: the mapped number, the engine's text,
/// its extended code and the statement.
[[noreturn]] void RaiseSqlite(sqlite3* database, std::string_view statement);

/// Throws a failure of the provider's own, about a statement.
[[noreturn]] void RaiseSqlite(Long number, const String& description, std::string_view statement);

}  // namespace ADODB

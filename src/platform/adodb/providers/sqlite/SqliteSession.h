#pragma once

#include "platform/adodb/providers/Provider.h"

namespace ADODB {

/// Opens an SQLite database by the settings of a connection string.
///
/// "Data Source" names the file (":memory:" for a database of the session's own). "Mode" is "ReadWrite"
/// (the default; a missing file raises 0x80004005), "Read", or "Create", which makes a missing file.
/// "User ID" may be given, and "Password" only empty, since a file has no users. Waits up to 15 seconds
/// for another program's lock, and keeps a write-ahead log beside the file, so that readers and a
/// writer don't wait for each other.
std::unique_ptr<Session> OpenSqlite(const ConnectionString& settings);

}  // namespace ADODB

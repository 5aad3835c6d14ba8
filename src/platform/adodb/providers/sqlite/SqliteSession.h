#pragma once

#include "platform/adodb/providers/Provider.h"

namespace ADODB {

/// Opens an SQLite database by the settings of a connection string.
///
/// "Data Source" names the file (":memory:" for a database of the session's own). "Mode" is "ReadWrite"
/// (the default; a missing file raises 0x80004005), "Read", "Create", which makes a missing file, or
/// "Snapshot": as "Read", for a file that no program changes while it is open. Nothing is locked, and the file's
/// log is not read, so that a file in a folder without write permission can be read; a change by another
/// program makes the rows that are read undefined.
///
/// "User ID" may be given, and "Password" only empty, since a file has no users. Waits up to 15 seconds
/// for another program's lock, and keeps a write-ahead log beside the file, so that readers and a
/// writer don't wait for each other. Time limits are ignored: a file answers at once, and only the program itself could
/// interrupt its statement.
std::unique_ptr<Session> OpenSqlite(const ConnectionString& settings, Long timeout);

/// Returns the name of the provider and the version of the engine. Any thread may call.
String SqliteEngine();

}  // namespace ADODB

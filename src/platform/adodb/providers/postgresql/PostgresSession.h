#pragma once

#include "platform/adodb/providers/Provider.h"

namespace ADODB {

/// Opens a session with a PostgreSQL server, version 12 or newer, by the settings of a connection string:
///
/// - "Server": host names, addresses or folders of sockets, separated by commas; of several the first one that accepts
///   writing is used. "Port": one number, or one for each server. "Database". "User ID", "Password".
/// - "Service": a section of the client library's service file. "SSL Mode": disable, allow, prefer, require, verify-ca
///   or verify-full. "SSL Root Certificate": a file. "Application Name": what the server's views show.
///
/// What is left out comes from the client library's environment variables and files, for example the password from
/// ".pgpass". Statements are translated as `ForPostgres` describes, prepared on the server and cached.
///
/// Inside a transaction each statement runs behind a savepoint, which is sent together with it, so that a failed
/// statement does not end the transaction.
std::unique_ptr<Session> OpenPostgres(const ConnectionString& settings, Long timeout);

/// Returns the name of the provider and the version of its client library; an empty text where it is not available. Any
/// thread may call.
String PostgresEngine();

}  // namespace ADODB

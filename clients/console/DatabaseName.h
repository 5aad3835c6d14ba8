#pragma once

#include "console/Output.h"
#include "platform/adodb/ConnectionString.h"

/// The names by which a user chooses a database: the path of a file, or a connection string.
namespace Console {

/// Returns the connection string of a file. Returns a text that already is a connection string unchanged.
std::string ConnectionStringOf(const std::string& database, const std::string& mode = {});

/// Returns true for a text that is a connection string, false for the name of a file. Throws `UserError` for one that
/// seems to be a connection string and names no provider.
bool IsConnectionString(const std::string& database);

/// Returns the settings of a connection string. Throws `UserError` for one that may have a password and can't be
/// parsed, with a message that quotes no part of it; raises as `ADODB::ConnectionString` for another one.
ADODB::ConnectionString SettingsOf(const std::string& database);

/// Returns true for a text that is a connection string and names another provider than that of files. Throws as
/// `ShownName`.
bool NamesServer(const std::string& database);

/// Returns a file or a connection string as messages show it: without the settings that are not known to be public,
/// such as passwords. Throws as `IsConnectionString` and `SettingsOf`.
std::string ShownName(const std::string& database);

}  // namespace Console

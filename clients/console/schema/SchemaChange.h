#pragma once

#include "console/Server.h"

/// The changes of the tables from one version to another.
namespace Console {

/// Returns the statements that change the tables of an engine from one version to another, up or down; the last one of
/// an upgrade and the first one of a downgrade mark the database with its version. None if the versions are equal.
std::vector<std::string> ChangeStatements(Engine engine, Platform::Long from, Platform::Long to);

/// The result of a change.
struct SchemaChange {
    Platform::Long from = 0;
    std::string copy;  ///< the copy of a database file as it was; empty on a server, and without a change
};

/// Changes the tables of an open clinic database to a version that the program knows. Another change that runs
/// meanwhile is waited for, on the same server, and leaves nothing to do if it had the same target. A database file is
/// copied first, beside the file, under the name "FILE.version-N".
///
/// SQLite and PostgreSQL change all tables or none, and other programs that write wait. MariaDB commits each statement,
/// and others may write between two of them; an interrupted change leaves the database marked with the lower version,
/// which it contains completely, and either an upgrade or another downgrade completes it.
/// Throws `UserError` if the copy can't be made; raises what the engine raises.
SchemaChange ChangeSchema(const Ref<Connection>& con, Platform::Long to);

}  // namespace Console

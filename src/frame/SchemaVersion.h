#pragma once

#include "platform/adodb/Connection.h"

/// The version of a database's tables. `schema/` has the tables of the newest version, and the changes between
/// versions.
namespace OXClass {

/// The newest version that this library knows.
constexpr Platform::Long KnownSchemaVersion = 2;

/// Returns the version with which an open database is marked: in the header of an SQLite file, in `SchemaVersion_T` on
/// a server; 0 for a database that is not marked as a clinic database of this system. Sends one or two statements.
/// Raises what the engine raises if it can't be read. The thread of the connection calls it.
Platform::Long SchemaVersionOf(const Platform::Ref<ADODB::Connection>& con);

/// Raises `ADODB::NoPermission` if the database is marked with a newer version than `KnownSchemaVersion`; the text
/// names both. A program calls it once, after opening a connection: the classes do not look at the version. Accepts a
/// database without a mark. Raises as `SchemaVersionOf`.
void RequireKnownSchema(const Platform::Ref<ADODB::Connection>& con);

}  // namespace OXClass

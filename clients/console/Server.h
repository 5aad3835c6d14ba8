#pragma once

#include "console/Script.h"

namespace Console {

/// The database engines, as far as the program's own statements differ between them.
enum class Engine { SQLite, PostgreSQL, MariaDB };

/// Returns the engine of an open connection; that of a server was learned by `OpenServer`.
Engine EngineOf(const Ref<Connection>& con);

/// Returns true if the database is not a file.
inline bool IsServer(const Ref<Connection>& con) { return EngineOf(con) != Engine::SQLite; }

/// Opens a connection to a server. If the server asks for a password, none was given and standard input is a terminal,
/// asks the user for it and tries once more. Raises as `Connection::Open`; throws `UserError` for a server of another
/// engine than those of `Engine`.
void OpenServer(const Ref<Connection>& con, const std::string& database);

/// Throws `UserError` unless the open database on a server is marked as a clinic database of a known version; `name` is
/// the database's. On MariaDB, where creating a table commits, creates those tables of the program that the database
/// lacks if the user may do so, so that no transaction has to.
void RequireServerClinic(const Ref<Connection>& con, const std::string& name);

/// Returns true if the database has a table that the user may read. Raises what the engine raises for another failure.
bool HasTable(const Ref<Connection>& con, const std::string& table);

/// Returns true if the database has all tables of `schema/program.sql`.
bool HasProgramTables(const Ref<Connection>& con);

/// Returns the SQL condition that a column of whole numbers contains one. A column of SQLite may contain any value.
std::string IsWhole(const Ref<Connection>& con, const std::string& column);

/// Waits on a server until no other program has a `WriteTransaction` open, and keeps others waiting until the caller's
/// transaction ends. The nodes of a cluster do not wait for each other: of two such transactions at the same time, one
/// ends with `ADODB::LockConflict`, at its commit at the latest. Does nothing on SQLite, whose transactions do so by
/// themselves.
void LockWriters(const Ref<Connection>& con);

/// Returns true for a database that is empty, or on MariaDB has nothing but the tables that `CreateClinicTables` left
/// behind when it did not end.
bool MayBecomeClinic(const Ref<Connection>& con);

/// Creates the tables of the library and of the program in a database that `MayBecomeClinic`, with the standard layouts
/// and the mark of a clinic. The caller holds the transaction. On MariaDB, where each statement that creates a table
/// commits, the tables stay after a rollback, without rows and without the mark.
void CreateClinicTables(const Ref<Connection>& con);

/// Lets a connection see one state of the database in each transaction that begins from now on. SQLite does so anyway.
void ReadOneState(const Ref<Connection>& con);

/// Sets the counters of all tables behind their greatest keys, after rows were inserted with keys of their own. Does
/// nothing on SQLite and MariaDB, whose counters follow the keys.
void AlignCounters(const Ref<Connection>& con);

/// Moves the counter of a table behind its greatest key, never back, after rows were inserted with keys of their own.
/// Does nothing on SQLite and MariaDB, whose counters follow the keys.
void RaiseCounter(const Ref<Connection>& con, const std::string& table, const std::string& key);

}  // namespace Console

#pragma once

#include "console/Output.h"

#include <filesystem>

namespace Console {

/// What `schema/sqlite.sql` writes into each database: `PRAGMA application_id`, and the number of the table
/// set.
constexpr Platform::Long ApplicationMark = 0x4F58434C;
constexpr Platform::Long KnownVersion = 1;

/// Throws `UserError` unless these are the marks of a clinic database that this program knows; `name` is the
/// database's.
void RequireMarks(const std::string& name, Platform::Long mark, Platform::Long version);

/// Looks at a database's file before an engine opens it, because opening may change it. Reads the file's
/// first bytes and nothing else. Returns true if they hold the marks of a clinic database, and false if they
/// do not but the file has a log, which may hold others. Throws `UserError` for a file that is missing, that
/// is no file, that may not be read or that is no database, and for marks that `RequireMarks` rejects.
bool IsClinicFile(const std::filesystem::path& file);

/// True if the file has a log that isn't empty: the file alone doesn't hold what was stored last.
bool HasLog(const std::filesystem::path& file);

/// One line on a failure of the library or its database that says what it means and what to do.
std::string ExplanationOf(const Platform::Error& failure);

}  // namespace Console

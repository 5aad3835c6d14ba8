#pragma once

#include "console/Output.h"

#include <filesystem>

namespace Console {

/// The mark that `schema/sqlite.sql` writes into each database as `PRAGMA application_id`.
constexpr Platform::Long ApplicationMark = 0x4F58434C;

/// Throws `UserError` unless these are the marks of a clinic database that this program knows; `name` is the
/// database's.
void RequireMarks(const std::string& name, Platform::Long mark, Platform::Long version);

/// Checks a database file before an engine opens it, because opening may change it. Reads only the first bytes of the
/// file. Returns true if they contain the marks of a clinic database; false if they do not but the file has a log,
/// which may contain them. Throws `UserError` for a missing file, a folder, a file that may not be read or is not a
/// database, and for marks that `RequireMarks` rejects.
bool IsClinicFile(const std::filesystem::path& file);

/// Returns true if the file has a log that isn't empty: the file alone then lacks the newest changes.
bool HasLog(const std::filesystem::path& file);

/// Returns one line about a failure of the library or its database: what it means and what the user can do.
std::string ExplanationOf(const Platform::Error& failure);

}  // namespace Console

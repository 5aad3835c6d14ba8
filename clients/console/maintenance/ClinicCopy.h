#pragma once

#include "console/Database.h"

#include <filesystem>

namespace Console {

/// A table that was copied.
struct CopiedTable {
    std::string name;
    std::size_t rows = 0;
    std::string sha256;  ///< of all values in the order of the keys, the same on both sides
};

/// Copies all rows of a clinic, with their keys, into another database of any engine, and compares both sides value by
/// value. Image files are not copied; both clinics have the same storage roots.
///
/// The target has no tables, and gets them, or is a clinic as `oxclass init` makes it, whose layouts and storage root
/// are replaced. Throws `UserError` if it has other rows, or is the source itself. On a server, a blank text in a
/// column of numbers or dates becomes a null; for any other value that a column of the target can't take, throws a
/// `UserError` that names the table, the key and the column.
///
/// Reads the state that the source has at the beginning; a source in a file can't be written meanwhile. Writes in one
/// transaction; after a failure the target is unchanged. Memory does not grow with the clinic. Shows its progress on
/// standard error.
std::vector<CopiedTable> CopyClinic(const Database& source, const Ref<Connection>& target);

/// Copies a clinic into a new SQLite file, as `CopyClinic`. The file appears when it is complete, and replaces an
/// earlier one of this name.
std::vector<CopiedTable> CopyClinicToNewFile(const Database& source, const std::filesystem::path& file);

}  // namespace Console

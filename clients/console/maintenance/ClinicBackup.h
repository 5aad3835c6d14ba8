#pragma once

#include "console/Database.h"

#include <filesystem>

namespace Console {

/// The result of a backup or a restore.
struct BackupResult {
    std::size_t files = 0, copied = 0;  ///< files of the clinic, and those that were copied this time
    std::vector<std::string> failures;  ///< files that could not be copied or verified, with the reason
    bool made = true;                   ///< false: a restore created no database
};

/// Writes a backup of a clinic into a folder: the database as the SQLite file "clinic.db", the image files below
/// "files/N" for each storage root N, and "manifest.json" with the checksum of each file.
///
/// The database is a consistent snapshot; other programs may change the clinic meanwhile. Files that the folder already
/// contains with the right checksum are not copied again. Each copy is compared with the checksum in the file's row; an
/// altered or missing file is reported, and an earlier copy of it stays. Files that a killed backup left in the folder
/// are removed.
///
/// Throws `UserError` for a folder with the backup of another clinic, for a folder in a storage root or with a storage
/// root in it, and if the folder can't be written.
BackupResult BackUp(const Database& database, const std::filesystem::path& folder);

/// Restores a backup: creates the database `file`, which must not exist, and copies the image files below `root`, into
/// one folder for each storage root if there are several. Files that exist with the right checksum are not copied.
/// Images whose file is missing in the backup count as failures.
///
/// Throws `UserError` for a folder without a backup, for a damaged backup, for an existing database, and for a root
/// that belongs to another clinic. No database is created then, and also if a file can't be restored.
BackupResult Restore(const std::filesystem::path& folder, const std::filesystem::path& file,
                     const std::filesystem::path& root);

}  // namespace Console

#pragma once

#include "console/Database.h"

#include <filesystem>

namespace Console {

/// What a backup or a restore came to.
struct BackupResult {
    std::size_t files = 0, copied = 0;  ///< files of the clinic, and those that were copied this time
    std::vector<std::string> failures;  ///< files that could not be copied or verified, with the reason
    bool made = true;                   ///< false: a restore made no database
};

/// Writes a backup of a clinic into a folder: the database as "clinic.db", the image files below "files/N"
/// for each storage root N, and "manifest.json" with the checksum of each file.
///
/// The database is a consistent snapshot, made while other programs go on. Files that the folder holds
/// already with the right checksum are not copied again. Each copy is compared with the checksum that the
/// clinic has of the file; an altered or missing file is reported, and an earlier copy of it stays. Throws
/// `UserError` for a folder that holds the backup of another clinic, for one in a storage root or with a
/// storage root in it, and when the folder can't be written. What a killed backup left in the folder is
/// removed.
BackupResult BackUp(const Database& database, const std::filesystem::path& folder);

/// Restores a backup: makes the database `file`, which must not exist, and puts the image files below `root`,
/// one folder for each storage root if there are several. Files that are there with the right checksum are
/// left. Images whose file the backup lacks are failures too. Throws `UserError` for a folder without a
/// backup, for a damaged one, for an existing database, and for a root that belongs to another clinic; no
/// database is made then, nor when a file can't be restored.
BackupResult Restore(const std::filesystem::path& folder, const std::filesystem::path& file,
                     const std::filesystem::path& root);

}  // namespace Console

#pragma once

#include "console/Database.h"

namespace Console {

/// An inconsistency of a clinic.
struct Finding {
    std::string kind;   ///< a word for scripts: "missing-file", "altered-file", "orphaned-row" ...
    std::string where;  ///< "image 12", a file's path, "patient #3"
    std::string text;   ///< one clause
    bool repaired = false;
    bool note = false;  ///< nothing needs to be done: a person has decided it, as it seems
};

/// The result of a check.
struct CheckResult {
    std::size_t images = 0, files = 0, withoutChecksum = 0;
    std::vector<Finding> findings;
};

/// Compares all rows of a clinic with all files of its storage roots.
///
/// Reports: a damaged database; storage roots that are missing or belong to another clinic; missing, altered and
/// unreadable files; files without a row, those in the trash excepted; files that killed imports left behind, and
/// removals that were interrupted; rows whose owner is missing; image
/// rows that can't be read completely; two images with one SOP Instance UID; patients of one identifier, and files of
/// one patient, that name two people; as a note, files with another family name whose given name and birth date are the
/// patient's, and files that name another person whose image was moved to the patient. A file is altered if its
/// checksum differs from the one in its row.
///
/// With `repair`, removes the files that killed imports left behind, completes interrupted removals, stores the
/// checksum of the file for images without a checksum, and deletes manipulations without a placed image. Changes
/// nothing else, and nothing at all without `repair`.
CheckResult CheckClinic(const Database& database, bool repair);

}  // namespace Console

#pragma once

#include "console/records/RecordChange.h"
#include "console/trash/RemovedRows.h"

namespace Console {

/// What was removed.
struct DeletionResult {
    std::string entry;            ///< in the trash; empty for a dry run
    std::string what, patient;    ///< "image 12", "#5 19800131-1234"
    nlohmann::ordered_json rows;  ///< the number of rows by tables
    std::size_t files = 0;
    std::string unfinished;  ///< why files could not be moved yet; the next command moves them
};

/// Removes rows with all that belongs to them, and moves their files into the trash.
///
/// The rows are recorded in the trash, then deleted in one transaction, then the files are moved. A program that is
/// killed or fails before the commit leaves everything as it was; behind it the next command that uses the trash moves
/// the files. With `force` also removes what needs a decision: a patient who has something, and images that cards show,
/// which are then taken off the cards. Throws `UserError` for an unknown row, and for a storage root that can't be
/// used.
DeletionResult DeleteRecords(const Database& database, const RemovedKeys& named, const ChangeOptions& change);

/// What was restored.
struct UndeletionResult {
    std::string what;
    std::size_t rows = 0, files = 0;
    std::vector<std::string> notes;  ///< what has another key by now, and what could not be restored
    bool damaged = false;            ///< a file is missing in the trash, or was changed there
};

/// Restores the rows and files of an entry of the trash, and removes the entry. Throws `UserError` for an unknown
/// entry, for one on which another program works, and as `InsertRows`; the entry is then unchanged.
UndeletionResult Undelete(const Database& database, const std::string& entry);

/// Deletes entries of the trash for good. Throws `UserError` for an unknown one.
void EmptyTrash(const Database& database, const std::vector<std::string>& entries);

}  // namespace Console

#pragma once

#include "console/Database.h"

#include <set>

/// Changes that a person makes to stored records: who signs them, what they change, and whether they are only tried.
namespace Console {

/// The options of the commands that change stored records.
struct ChangeOptions {
    std::string by;       ///< who signs; empty: the user of the system
    bool dryRun = false;  ///< show what would change, and change nothing
    bool force = false;   ///< also what needs a decision
};

/// Returns the name with which a change is signed. Throws `UserError` for one that a signature can't hold.
std::string SignatureOf(const ChangeOptions& options);

/// Calls `work` with lists of keys as SQL, "3, 7, 12": the keys in rising order, at most 500 in a list.
void EachList(const std::set<Platform::Long>& keys, const std::function<void(const std::string& list)>& work);

/// What one transaction changes, for its user. Used inside of the transaction.
class RecordChange {
public:
    RecordChange(Ref<Connection> con, std::string signature);

    const Ref<Connection>& Con() const noexcept { return con_; }

    /// Adds a line to the report: a record, "series 4", with its old and its new value.
    void Tell(const std::string& record, const std::string& from, const std::string& to);

    /// Stores a signed comment on each of these images. A text that is too long for a comment is cut.
    void Comment(const std::set<Platform::Long>& images, const std::string& text) const;

    /// Returns "2026-01-31 10:20 AB: TEXT" in a line behind the comments of a patient.
    std::string WithRemark(const std::string& comments, const std::string& text) const;

    const List& Report() const noexcept { return report_; }

private:
    Ref<Connection> con_;
    std::string signature_;
    Platform::Date now_;
    List report_;
};

/// The comments on images that were given to another patient, with the names of both patients.
std::string MovedComment(const std::string& from, const std::string& to);
std::string MergedComment(const std::string& from, const std::string& to);

/// Returns the images that have such a comment: that their files name another person was decided by a person.
std::set<Platform::Long> ImagesGivenToOthers(const Ref<Connection>& con);

/// Runs `work` in one write transaction, which is rolled back for a dry run, and prints its report.
void ChangeRecords(const Options& options, const ChangeOptions& change, const std::function<void(RecordChange&)>& work);

/// Returns "#5 19800131-1234", as reports and comments name a patient; a long identifier is cut.
std::string PatientCalled(Platform::Long number, const std::string& id);

}  // namespace Console

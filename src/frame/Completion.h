#pragma once

#include "frame/modGeneral.h"

#include <memory>

namespace OXClass {

/// How the last run of an operation ended, for operations that return normally after a failure too.
///
/// Some documented operations return the same result whether or not a failure ended them. A record class
/// keeps one `Completion` for each such operation beside its documented members, for C++ programs: a program
/// that saves an object after an incomplete read also stores the members that were not read. An object is one
/// pointer, which is null unless a failure ended the last run. It belongs to the thread that created it.
class Completion {
public:
    /// Returns false if a failure ended the last run, true otherwise and before the first run. Says nothing
    /// about failures that the operation raised before it started its run. A run that found no row is complete.
    bool Complete() const noexcept { return !failure_; }

    /// Returns the failure that ended the last run; number 0 if none did. `Column` names the column that
    /// could not be read, and is empty for any other failure. The reference is valid until the next run.
    const Error& Failure() const noexcept {
        static const Error none;
        return failure_ ? *failure_ : none;
    }

    // ---- for the operations themselves -------------------------------------------------------------

    /// Starts a run: the last failure is forgotten, and references to it are invalid. Until `EndedBy` is called the run
    /// counts as complete.
    void Begin() noexcept { failure_.reset(); }

    /// Stores a copy of the failure that ended the run. A second one replaces it. If memory can't be allocated, raises
    /// `std::bad_alloc` and changes nothing.
    void EndedBy(const Error& failure) { failure_ = std::make_unique<const Error>(failure); }

private:
    std::unique_ptr<const Error> failure_;
};

/// A row that a load could not read whole, as `cImages::Unread` returns it. A plain copy: it stays valid after the next
/// load, and any thread may use it.
struct UnreadRow {
    /// The row's key; 0 if the key itself could not be read.
    Long ID = 0;
    /// What ended the reading, with the column.
    Error Failure;
};

}  // namespace OXClass

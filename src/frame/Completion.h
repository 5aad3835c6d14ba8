#pragma once

#include "frame/modGeneral.h"

#include <memory>

namespace OXClass {

/// How the last run of an operation ended that returns normally even when a failure ended it.
///
/// A record class keeps one beside its documented members, for programs in C++: those who save an object that
/// was read only in part store the members that were not read as well. One pointer, which is null after a run
/// that came to its end. An object belongs to one thread.
class Completion {
public:
    /// True unless a failure ended the last run; true before the first.
    bool Complete() const noexcept { return !failure_; }

    /// What ended the last run; `Column` names the column that could not be read, and is empty where the
    /// failure is another one. Number 0 after a run that came to its end. Valid until the next run.
    const Error& Failure() const noexcept {
        static const Error none;
        return failure_ ? *failure_ : none;
    }

    /// A run begins.
    void Begin() noexcept { failure_.reset(); }

    /// A failure has ended the run.
    void EndedBy(const Error& failure) { failure_ = std::make_unique<const Error>(failure); }

private:
    std::unique_ptr<const Error> failure_;
};

/// A row that a tolerant reading left out.
struct UnreadRow {
    Long ID = 0;    ///< the key of the row
    Error Failure;  ///< why, with the column
};

}  // namespace OXClass

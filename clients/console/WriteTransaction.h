#pragma once

#include "console/Server.h"
#include "platform/adodb/Transaction.h"

#include <functional>

namespace Console {

/// A transaction in which the program writes. At most one is open in a database at a time, so that what one reads stays
/// true until it has written: an SQLite database has one write lock; on a server the first statement changes the row
/// that marks the database, for which every other one waits. Programs that don't use this class are not held up by it.
class WriteTransaction {
public:
    /// Raises as `ADODB::Transaction`, and what the engine raises if the user may not write.
    explicit WriteTransaction(const Ref<Connection>& con) : transaction_(con) { LockWriters(con); }

    void Commit() { transaction_.Commit(); }

private:
    ADODB::Transaction transaction_;
};

/// Calls `attempt`, which runs one write transaction, and calls it again if a server ended the transaction because of a
/// conflict with another one (`ADODB::LockConflict`), at its commit at the latest: ten times at most, after pauses of
/// random length that grow. So `attempt` must undo what it has changed outside of the database when it is left by an
/// exception, and must not keep what an earlier one has read. Throws `UserError` after the last conflict, otherwise
/// what `attempt` raises. Must not be called in an open transaction.
void RepeatAfterConflicts(const Ref<Connection>& con, const std::function<void()>& attempt);

/// Runs `work` in a `WriteTransaction` and commits it, as an attempt of `RepeatAfterConflicts`.
void Write(const Ref<Connection>& con, const std::function<void()>& work);

/// Returns true if the failure that the engine reported last on this connection has this number. The library shows some
/// failures in a text box instead of raising them.
bool HasReported(const Ref<Connection>& con, Platform::Long number);

}  // namespace Console

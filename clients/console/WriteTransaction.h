#pragma once

#include "console/Server.h"
#include "platform/adodb/Transaction.h"

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

}  // namespace Console

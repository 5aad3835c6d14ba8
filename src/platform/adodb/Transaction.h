#pragma once

#include "platform/adodb/Connection.h"

namespace ADODB {

/// A transaction that is rolled back at the end of its scope unless `Commit` has returned.
///
/// Inside an open transaction it is a nested one: its commit is undone if an outer transaction is rolled back, and its
/// rollback leaves the outer ones open. It holds a reference to the connection and belongs to the connection's thread.
///
/// Transactions must end in the reverse order of their begin, because commit and rollback end the innermost transaction
/// of the connection. A program that calls `BeginTrans` inside the scope must therefore end that transaction inside the
/// scope. A connection with an open transaction can't be closed: `Connection::Close` raises 3246.
class Transaction {
public:
    /// Begins the transaction. With SQLite the outermost one takes the write lock at once, unless the database was
    /// opened for reading. Raises 91 for a null connection, otherwise as `Connection::BeginTrans`; nothing is begun
    /// then. If an event handler raises after the begin, the transaction remains open on the connection, and no
    /// destructor rolls it back.
    explicit Transaction(Platform::Ref<Connection> connection) : connection_(std::move(connection)) {
        connection_->BeginTrans();
    }

    /// Rolls back unless `Commit` has returned. Ignores a failure of the rollback: the engine has then rolled back by
    /// itself, or the session is lost and with it the transaction. If the engine has rolled back all levels by itself,
    /// this call ends one level; the destructors of the outer transactions end the others.
    ~Transaction() {
        if (!connection_) return;
        try {
            connection_->RollbackTrans();
        } catch (const Platform::Error&) {
        }
    }

    /// A transaction can't be copied or moved: exactly one object ends it.
    Transaction(const Transaction&) = delete;

    /// Commits; the destructor then does nothing, and the reference to the connection is released. Raises as
    /// `Connection::CommitTrans`; the transaction is then still open, a program may call `Commit` again, and the
    /// destructor rolls back otherwise. After a success a second call raises 91. If an event handler of the connection
    /// raises after the commit, the transaction is committed, `Commit` raises, and the destructor rolls back the next
    /// outer one, if there is one.
    void Commit() {
        connection_->CommitTrans();
        connection_ = nullptr;
    }

private:
    Platform::Ref<Connection> connection_;  ///< null after the commit
};

}  // namespace ADODB

#pragma once

#include "platform/adodb/Connection.h"

namespace ADODB {

/// A transaction that is rolled back at the end of its scope unless `Commit` has returned.
///
/// Inside an open transaction it is a nested one. It holds a reference to the connection and belongs to the
/// connection's thread. Transactions must end in the reverse order of their begin, because commit and rollback end the
/// innermost transaction of the connection.
class Transaction {
public:
    /// Begins the transaction. Raises 91 for a null connection, otherwise as `Connection::BeginTrans`; nothing is begun
    /// then.
    explicit Transaction(Platform::Ref<Connection> connection) : connection_(std::move(connection)) {
        connection_->BeginTrans();
    }

    /// Rolls back unless `Commit` has returned. Ignores a failure of the rollback: the engine has then rolled back by
    /// itself, or the session is lost and with it the transaction.
    ~Transaction() {
        if (!connection_) return;
        try {
            connection_->RollbackTrans();
        } catch (const Platform::Error&) {
        }
    }

    Transaction(const Transaction&) = delete;

    /// Commits; the destructor then does nothing. Raises as `Connection::CommitTrans`; the destructor then rolls back.
    /// Must be called once at most: a second call raises 91.
    void Commit() {
        connection_->CommitTrans();
        connection_ = nullptr;
    }

private:
    Platform::Ref<Connection> connection_;
};

}  // namespace ADODB

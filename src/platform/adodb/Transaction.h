#pragma once

#include "platform/adodb/Connection.h"

namespace ADODB {

/// A transaction that is rolled back at the end of its scope unless `Commit` has returned.
///
/// Opened inside another transaction it is a nested one, as `Connection::BeginTrans` says. Used by the
/// thread of its connection.
class Transaction {
public:
    /// Begins the transaction. Raises as `Connection::BeginTrans`.
    explicit Transaction(Platform::Ref<Connection> connection) : connection_(std::move(connection)) {
        connection_->BeginTrans();
    }

    /// Rolls back what wasn't committed. A failure of the roll-back is ignored: the engine has then rolled
    /// back by itself, or the session is lost and with it the transaction.
    ~Transaction() {
        if (!connection_) return;
        try {
            connection_->RollbackTrans();
        } catch (const Platform::Error&) {
        }
    }

    Transaction(const Transaction&) = delete;

    /// Commits. Raises as `Connection::CommitTrans`; the destructor then rolls back.
    void Commit() {
        connection_->CommitTrans();
        connection_ = nullptr;
    }

private:
    Platform::Ref<Connection> connection_;
};

}  // namespace ADODB

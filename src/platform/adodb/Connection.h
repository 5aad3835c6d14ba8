#pragma once

#include "platform/adodb/providers/Provider.h"

namespace ADODB {

class Connection;
class Recordset;

/// What is about to run, handed to `ConnectionEvents::WillExecute`, which may change it.
struct ExecuteRequest {
    String Source;  ///< the statement
    CursorTypeEnum CursorType = adOpenForwardOnly;
    LockTypeEnum LockType = adLockReadOnly;
    Long Options = adCmdUnspecified;
    EventStatusEnum Status = adStatusOK;  ///< adStatusCancel: the caller gets 3712 and nothing runs
};

/// What ran, handed to `ConnectionEvents::ExecuteComplete`.
struct ExecuteReport {
    std::string_view Source;
    std::int64_t RecordsAffected = -1;  ///< rows hit by an action statement; -1 for a select
    std::int64_t Rows = 0;              ///< rows of the result
    double Seconds = 0;
    const Error* Failure = nullptr;  ///< what it failed with, or nothing
};

/// A client that is told of every statement that is executed or opened; what a recordset writes to post an
/// edit is not announced. Handlers run on the connection's thread, inside the call,
/// and may not start another operation on the same connection from `WillExecute` (3710). A handler that
/// throws makes the operation fail with what it threw, before anything runs or after it ran.
class ConnectionEvents {
public:
    virtual ~ConnectionEvents() = default;
    virtual void WillExecute(ExecuteRequest&) {}
    virtual void ExecuteComplete(const ExecuteReport&) {}
    virtual void BeginTransComplete(Long /*level*/) {}
    virtual void CommitTransComplete() {}
    virtual void RollbackTransComplete() {}
};

/// An open session with a database, by ADO's rules.
///
/// Used by the thread that made it. Failures of the layer itself have the source "ADODB.Connection" and
/// short numbers; a database engine's keep the engine's text.
class Connection final : public Object {
public:
    static constexpr const char* ClassName = "Connection";

    Connection() = default;
    /// Ends the session; an open transaction is rolled back without a word.
    ~Connection() override;

    /// Opens the session that a connection string describes, "Provider=SQLite;Data Source=clinic.db".
    /// An empty argument leaves what `ConnectionString` holds. User and password win over those in the
    /// text. Raises 3705 if open, 3706 for an unknown provider, 0x80040E21 for settings that can't be
    /// read or honoured, and what the engine raises; the connection then stays closed.
    void Open(const String& ConnectionString = {}, const String& UserID = {}, const String& Password = {},
              Long Options = -1);

    /// Closes the session and every recordset on it; their unposted edits are gone. Raises 3704 if
    /// closed, 3246 with a transaction open, and then changes nothing.
    void Close();

    /// Runs a statement. Gives a recordset: on its first row where the statement yields rows, closed
    /// where it doesn't; nothing with `adExecuteNoRecords`. `RecordsAffected` gets the number of rows
    /// that an action statement hit. Raises 3704 if closed, 3712 if a handler cancelled it, and what
    /// the engine raises.
    Ref<Recordset> Execute(const String& CommandText, Long* RecordsAffected = nullptr,
                           Long Options = adCmdUnspecified);

    /// Opens a transaction, inside the one that is open, and gives its level, 1 for the outermost.
    /// Raises 3704 if closed, 0x8004D013 where the engine nests no deeper.
    Long BeginTrans();

    /// Ends the innermost transaction. Raises 3704 if closed, 0x8004D00E if none is open.
    ///
    /// After a failure that the engine answers by rolling everything back (a full disk), every operation
    /// raises 0x8004D00E until `RollbackTrans` has been called for each level.
    void CommitTrans();
    void RollbackTrans();

    Long State() const noexcept { return session_ ? adStateOpen : adStateClosed; }
    const String& ConnectionString() const noexcept { return text_; }

    /// Raises 3705 while open.
    void SetConnectionString(const String& text);

    /// Where the recordsets made from now on keep their rows; no effect on open ones.
    CursorLocationEnum CursorLocation = adUseServer;

    /// What the engine's last failing operation reported. A later success does not empty it, and the
    /// layer's own failures never enter it.
    const std::vector<Error>& Errors() const noexcept { return errors_; }
    void ClearErrors() { errors_.clear(); }

    /// Adds a handler, which must live until it is taken out again or the connection ends.
    void Advise(ConnectionEvents& handler) { handlers_.push_back(&handler); }

    /// Adds a handler that the connection owns. It ends when it is taken out, or with the connection, after
    /// the session; it holds no reference to the connection, and its end starts nothing on it. Raises 91 for
    /// nothing.
    void Advise(std::unique_ptr<ConnectionEvents> handler);

    /// All handlers that are in, in the order in which they are called.
    const std::vector<ConnectionEvents*>& Handlers() const noexcept { return handlers_; }

    /// Takes a handler out, which isn't called any more. One that the connection owns ends at once, or, while
    /// handlers are being called, behind the last of these calls.
    void Unadvise(ConnectionEvents& handler);

    const Interface& Describe() const override;

private:
    friend class Recordset;

    Session& Opened() const;
    /// The session, ready for another operation: no `WillExecute` is under way, and the transaction that
    /// the client opened is still open in the engine.
    Session& Ready() const;
    /// Calls each handler that is there when its turn comes.
    template <class Call>
    void Tell(Call call);
    /// Runs what `request` holds, between its two events.
    Outcome Run(ExecuteRequest& request);
    void Announce(ExecuteRequest& request);
    Outcome RunTimed(const ExecuteRequest& request);
    /// Posts a change of a recordset's row; gives the number of rows that it hit.
    std::int64_t Change(const String& statement, std::span<const Variant> values);
    /// Runs a call into the engine; keeps what it fails with in `Errors`.
    template <class F>
    auto Engine(F call) -> decltype(call());

    String text_;
    std::unique_ptr<Session> session_;
    Long level_ = 0;
    bool announcing_ = false;
    std::vector<Recordset*> open_;
    std::vector<ConnectionEvents*> handlers_;
    std::vector<std::unique_ptr<ConnectionEvents>> owned_;
    std::vector<std::unique_ptr<ConnectionEvents>> leaving_;  // taken out while handlers are being called
    int telling_ = 0;                                         // how many rounds of calls are under way
    std::vector<Error> errors_;
};

}  // namespace ADODB

#pragma once

#include "platform/adodb/providers/Provider.h"

#include <exception>

namespace ADODB {

class Connection;
class Recordset;

/// A statement before it runs. `ConnectionEvents::WillExecute` receives it and may change it.
struct ExecuteRequest {
    String Source;  ///< the text of the statement
    CursorTypeEnum CursorType = adOpenForwardOnly;
    LockTypeEnum LockType = adLockReadOnly;
    Long Options = adCmdUnspecified;
    EventStatusEnum Status = adStatusOK;  ///< `adStatusCancel` cancels: the caller gets 3712, and nothing runs
};

/// The result of a statement. `ConnectionEvents::ExecuteComplete` receives it.
struct ExecuteReport {
    std::string_view Source;            ///< the statement, valid during the call
    std::int64_t RecordsAffected = -1;  ///< rows that an action statement changed; -1 for a SELECT
    std::int64_t Rows = 0;              ///< rows of the result
    double Seconds = 0;                 ///< duration
    const Error* Failure = nullptr;     ///< the failure, or null; valid during the call
};

/// A handler of a connection's events: it is called for every statement that is executed or opened. It is not called
/// for the statements by which a recordset posts an edit.
///
/// Handlers run on the connection's thread, inside the operation. `WillExecute` must not start another operation on the
/// same connection, which raises 3710. If a handler throws, the operation fails with that exception, before the
/// statement runs (`WillExecute`) or after it has run (the other events). Each function does nothing unless a class
/// overrides it.
class ConnectionEvents {
public:
    virtual ~ConnectionEvents() = default;
    /// Called before a statement runs. May change the request or cancel it. After a cancellation the remaining handlers
    /// are still called, and a handler may set the status back.
    virtual void WillExecute(ExecuteRequest&) {}
    /// Called after a statement has run or failed. Not called for a cancelled statement.
    virtual void ExecuteComplete(const ExecuteReport&) {}
    /// Called after a transaction has begun at this level.
    virtual void BeginTransComplete(Long /*level*/) {}
    /// Called after the innermost transaction was committed.
    virtual void CommitTransComplete() {}
    /// Called after `RollbackTrans`; not called when the connection's destructor rolls back.
    virtual void RollbackTransComplete() {}
};

/// A connection to a database, with ADO's members, numbers and rules.
///
/// It belongs to the thread that created it. Failures of this layer have the source "ADODB.Connection" and short
/// numbers; failures of a database engine have the engine's text.
class Connection final : public Object {
public:
    static constexpr const char* ClassName = "Connection";

    Connection() = default;
    /// Closes the connection; an open transaction is rolled back without an error.
    ~Connection() override;

    /// Opens the connection that a connection string describes, "Provider=SQLite;Data Source=clinic.db". If the
    /// argument is empty, the property `ConnectionString` is used. `UserID` and `Password` override those in the text.
    /// Without a password, the first line of the file that the setting "Password File" names is the password. After a
    /// success the property does not contain a password, unless the text has the setting "Persist Security Info=True".
    ///
    /// Raises 3705 if open, 3706 for an unknown provider, 0x80040E21 for a setting that can't be parsed or is not
    /// supported and for a password file that can't be read, 0x80040E4D if the server rejects the user, 0x80040E31 if
    /// it does not answer within `ConnectionTimeout`, and what the engine raises. No description contains the password.
    /// On failure a closed connection stays closed, and the property `ConnectionString` may already have the new text.
    /// `Options` is ignored.
    void Open(const String& ConnectionString = {}, const String& UserID = {}, const String& Password = {},
              Long Options = -1);

    /// Closes the connection and every recordset on it; edits that were not posted are lost. Raises 3704 if closed,
    /// 3710 inside `WillExecute`, 3246 while a transaction is open; nothing changes then. A connection to a server that
    /// is lost can be closed also then, and can be opened again.
    void Close();

    /// Runs a statement and returns a recordset: at its first row if the statement returns rows, otherwise closed; null
    /// with `adExecuteNoRecords`. With `adCmdTable` the text is a table name, otherwise one SQL statement.
    /// `RecordsAffected` may be null. It receives the number of rows that an action statement changed, -1 for a
    /// statement that returns rows.
    ///
    /// Raises 3704 if closed, 3710 inside `WillExecute`, 3712 if a handler cancelled it, 0x8004D00E if the engine has
    /// rolled back the open transaction, and what the engine raises; `RecordsAffected` is then unchanged.
    Ref<Recordset> Execute(const String& CommandText, Long* RecordsAffected = nullptr, Long Options = adCmdUnspecified);

    /// Runs an action statement that consists of these pieces. `joined` returns its text, and is called only if a
    /// handler or the engine needs it. Raises as `Execute`, and what `joined` raises. C++ only.
    void ExecuteAction(std::span<const StatementPiece> pieces, const std::function<String()>& joined);

    /// Begins a transaction, nested in the open one if there is one, and returns its level, 1 for the outermost. Raises
    /// 3704 if closed, 3710 inside `WillExecute`, 0x8004D013 if the engine does not support the level (SQLite: 5), and
    /// what the engine raises; the level is then unchanged.
    Long BeginTrans();

    /// Commit or roll back the innermost transaction. Raise 3704 if closed, 3710 inside `WillExecute`, 0x8004D00E if no
    /// transaction is open, and what the engine raises; the transaction is then still open at the same level.
    ///
    /// After a failure in which the engine itself rolled everything back (a full disk), every operation raises
    /// 0x8004D00E until `RollbackTrans` has been called for each level. If the connection to the server is lost, every
    /// operation raises 0x8004D01C, except that `RollbackTrans` ends its level without an error.
    void CommitTrans();
    void RollbackTrans();

    /// Returns `adStateOpen` or `adStateClosed`. A connection that is lost is open until it is closed.
    Long State() const noexcept { return session_ ? adStateOpen : adStateClosed; }
    /// Returns the connection string that was set, or with which the connection was opened.
    const String& ConnectionString() const noexcept { return text_; }

    /// Sets the connection string for the next `Open`. Raises 3705 while open.
    void SetConnectionString(const String& text);

    /// Return after how many seconds a server that does not answer `Open` (15 unless it is set), or a statement (30),
    /// is given up with 0x80040E31; 0: never. An embedded engine ignores both.
    Long ConnectionTimeout() const noexcept { return connectionTimeout_; }
    Long CommandTimeout() const noexcept { return commandTimeout_; }
    /// Set these times. Raise 3001 for a negative number; `SetConnectionTimeout` raises 3705 while open.
    void SetConnectionTimeout(Long seconds);
    void SetCommandTimeout(Long seconds);

    /// Where recordsets that are opened from now on keep their rows; it has no effect on open recordsets.
    CursorLocationEnum CursorLocation = adUseServer;

    /// Returns what the engine reported at its last failure. A later success does not clear the list, and failures of
    /// this layer are not added to it.
    const std::vector<Error>& Errors() const noexcept { return errors_; }
    /// Empties the list that `Errors` returns. May be called on a closed connection.
    void ClearErrors() { errors_.clear(); }

    /// Adds a handler behind the others. It must live until it is removed or the connection is deleted. Handlers may be
    /// added to a closed connection and stay when the connection is closed.
    void Advise(ConnectionEvents& handler) { handlers_.push_back(&handler); }

    /// Adds a handler that the connection owns. It is deleted when it is removed, or with the connection after that was
    /// closed. It must not hold a reference to the connection, and its destructor must not use it. Raises 91 for null.
    void Advise(std::unique_ptr<ConnectionEvents> handler);

    /// Returns all handlers in the order in which they are called.
    const std::vector<ConnectionEvents*>& Handlers() const noexcept { return handlers_; }

    /// Removes a handler, which is not called any more; does nothing for a handler that was not added. One that the
    /// connection owns is deleted at once, or, while handlers are being called, after the last of these calls.
    void Unadvise(ConnectionEvents& handler);

    const Interface& Describe() const override;
    Ref<Object> Adapted() const override { return adapted_; }

    /// Returns a connection that passes its calls on to `connection`, an object that has the members of a connection by
    /// name (`OpenByName`): one of another component. Closing it does not close the other one. Null if the object has
    /// no member `Execute`.
    static Ref<Connection> Adapt(const Ref<Object>& connection);

private:
    friend class Recordset;

    /// The result of a statement with all its rows.
    struct Result {
        std::shared_ptr<const Columns> columns;  ///< null if the statement does not return rows
        Rows rows;
        std::int64_t affected = -1;
        std::unique_ptr<Cursor> cursor = {};  ///< in place of columns and rows
    };

    Session& Opened() const;
    /// Returns the session, after the rows that a recordset is reading were copied (`reading_`). Raises 3704 if closed,
    /// 3710 inside `WillExecute`, and 0x8004D00E if the engine has rolled back the transaction that the client opened.
    Session& Ready();
    /// Calls each handler; a handler that an earlier one removed is not called.
    template <class Call>
    void Tell(Call call);
    /// Runs the text of a statement.
    using Runner = std::function<Outcome(Session& session, const String& statement)>;
    /// Runs the statement of `request` between its two events.
    Result Run(ExecuteRequest& request, const Runner& run);
    void Announce(ExecuteRequest& request);
    Result RunTimed(const ExecuteRequest& request, const Runner& run);
    /// Runs a statement and reads all its rows.
    static Result RunWhole(Session& session, const String& statement, const Runner& run);
    /// Runs a statement and returns its rows unread; `statement` must live as long as they are read. Calls no handler.
    Outcome RunUnbuffered(const String& statement, const RowsRequest& modes);
    /// Moves the reader to the next row.
    bool ReadNext(RowReader& reader);
    /// Raises a failure that was kept; stores it in `Errors` if it is one of the engine.
    void RaiseKept(const std::exception_ptr& kept);
    /// Posts a change of a recordset's row; returns the number of rows that it changed.
    std::int64_t Change(const String& statement, std::span<const Variant> values);
    /// Inserts a new row of a recordset; returns the number that the engine assigned to the column `counter`, if there
    /// is one.
    std::int64_t Insert(const String& statement, std::span<const Variant> values, std::string_view counter);
    /// Runs a call into the engine; stores its failure in `Errors`.
    template <class F>
    auto Engine(F call) -> decltype(call());

    String text_;
    Ref<Object> adapted_;  // the object of another component to which the session passes its calls on
    std::unique_ptr<Session> session_;
    CursorLocationEnum usedLocation_ = adUseServer;  // what the session was told last
    Long level_ = 0;
    Long connectionTimeout_ = 15;
    Long commandTimeout_ = 30;
    bool announcing_ = false;
    std::vector<Recordset*> open_;
    Recordset* reading_ = nullptr;  // the recordset whose statement is still running, if there is one
    std::vector<ConnectionEvents*> handlers_;
    std::vector<std::unique_ptr<ConnectionEvents>> owned_;
    std::vector<std::unique_ptr<ConnectionEvents>> leaving_;  // removed while handlers are being called
    int telling_ = 0;                                         // nested calls of `Tell`
    std::vector<Error> errors_;
};

}  // namespace ADODB

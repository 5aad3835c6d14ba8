#pragma once

#include "platform/adodb/ConnectionString.h"

#include <memory>
#include <vector>

struct pg_conn;
struct pg_result;

namespace ADODB {

struct FreePostgresResult {
    void operator()(pg_result* result) const;
};
using PostgresResult = std::unique_ptr<pg_result, FreePostgresResult>;

/// The network connection to a server. Commands are queued and sent together, so that a statement with the savepoint in
/// front of it costs one round trip. One thread.
class PostgresLink {
public:
    /// Connects. Raises if the server can't be reached within `timeout` seconds (0: no limit) or rejects the user.
    PostgresLink(const ConnectionString& settings, Long timeout);

    /// Queue a command: a statement as it is written; a statement to prepare under a name; the description of a
    /// prepared statement; a run of a prepared statement, with a text for each parameter, null for a null.
    void QueueText(const String& text);
    void QueuePrepare(const String& name, const String& text);
    void QueueDescribe(const String& name);
    void QueueRun(const String& name, const std::vector<const char*>& values);

    /// Sends the queued commands and returns a result for each one. After a command that fails the later ones do not
    /// run. Does not raise what the server reports (`RaiseFirstFailure`). Raises `TimedOut` if the server does not
    /// answer a cancellation either, and `ConnectionLost`; `statement` is what these errors are about.
    std::vector<PostgresResult> Exchange(std::string_view statement);

    /// Raises the first failure among the results of an exchange, if there is one.
    static void RaiseFirstFailure(const std::vector<PostgresResult>& results, std::string_view statement);

    /// Returns true for the result of a command that the server rejected.
    static bool IsFailure(const pg_result* result);

    /// Returns true if an exchange contains a failure.
    static bool HasFailure(const std::vector<PostgresResult>& results);

    /// Return the SQLSTATE and the server's text of the first failure; empty if there is none, and for an empty text,
    /// which the server does not report as a failure.
    static String FailureState(const std::vector<PostgresResult>& results);
    static String FailureText(const std::vector<PostgresResult>& results);

    bool IsBroken() const noexcept { return !connection_; }
    /// Returns true if a transaction block is open on the server.
    bool InTransaction() const;

    /// After how many seconds an exchange is cancelled; 0: never.
    void SetTimeout(Long seconds) noexcept { timeout_ = seconds; }

private:
    struct Close {
        void operator()(pg_conn* connection) const;
    };
    class Deadline;

    void RequireConnection(std::string_view statement = {}) const;
    /// Counts a command that libpq has accepted.
    void Queued(int accepted);
    /// Waits until the server's next answer can be read.
    void Wait(Deadline& deadline, std::string_view statement);
    void Flush(Deadline& deadline, std::string_view statement);
    /// Closes the connection and raises `ConnectionLost`, with the SQLSTATE of what the server reported last.
    [[noreturn]] void Lose(std::string_view statement, const std::vector<PostgresResult>& results);

    std::unique_ptr<pg_conn, Close> connection_;  // null after it was lost
    std::size_t queued_ = 0;
    Long timeout_ = 0;
};

}  // namespace ADODB

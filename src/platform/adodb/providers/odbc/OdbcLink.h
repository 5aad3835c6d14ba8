#pragma once

#include "platform/adodb/providers/odbc/OdbcErrors.h"

#include <memory>
#include <optional>

namespace ADODB {

/// A handle of the driver manager. The destructor frees it; a connection is ended by it.
class OdbcHandle {
public:
    OdbcHandle() = default;
    /// Allocates a handle; `Get` returns null if that fails, and the parent has the failure.
    OdbcHandle(short type, void* parent);
    OdbcHandle(OdbcHandle&& other) noexcept { *this = std::move(other); }
    OdbcHandle& operator=(OdbcHandle&& other) noexcept {
        std::swap(type_, other.type_);
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~OdbcHandle();

    void* Get() const noexcept { return handle_; }
    /// Returns the first failure of the last function that was called with this handle.
    OdbcFailure Failure() const { return FailureOfHandle(type_, handle_); }

private:
    short type_ = 0;
    void* handle_ = nullptr;
};

/// The connection to a data source through the driver manager. Statements are passed as UTF-16 with a final zero: what
/// the driver manager takes for the encoding of other texts depends on the locale of the process, and MariaDB's driver
/// does not count all letters right. One thread.
class OdbcLink {
public:
    /// Connects. Raises if the server can't be reached within `timeout` seconds (0: the driver's own limit) or rejects
    /// the user.
    OdbcLink(const ConnectionString& settings, Long timeout);

    const OdbcDialect& Dialect() const noexcept { return *dialect_; }
    /// Returns the name of the engine, as the driver reports it.
    const String& Engine() const noexcept { return engine_; }
    /// Returns a name quoted for use in a statement; as it is if the engine has no quotes.
    String Quoted(std::string_view name) const;

    /// Returns a new statement handle. Raises `ConnectionLost` if the connection is lost; `statement` is what the error
    /// is about.
    OdbcHandle NewStatement(std::string_view statement);

    // Return the failure, if there is one. A statement without rows to change is none.
    std::optional<OdbcFailure> Prepare(const OdbcHandle& handle, const String& text);
    std::optional<OdbcFailure> Execute(const OdbcHandle& handle);
    std::optional<OdbcFailure> ExecuteText(const OdbcHandle& handle, const String& text);

    /// Runs a text and ignores what it returns. Raises its failure.
    void Command(std::string_view text);
    /// Returns the first value of the first row of a select as a number; 0 without one. Raises its failure.
    std::int64_t Number(std::string_view select);

    /// Begin and end the outermost transaction.
    void Begin();
    void End(bool commit);

    /// Raises a failure of a function with a handle of this connection. Marks the connection as lost if it is.
    [[noreturn]] void Raise(const OdbcFailure& failure, std::string_view statement);

    bool IsBroken() const noexcept { return broken_; }
    /// After how many seconds a statement is cancelled; 0: never.
    void SetTimeout(Long seconds) noexcept { timeout_ = seconds; }

private:
    void Connect(const ConnectionString& settings, Long timeout);
    String Information(unsigned short item) const;
    /// Makes the time limit known to the engine, or to the driver for one statement.
    void LimitTime(const OdbcHandle& handle);
    /// Raises the failure of a function with the handle of the connection, unless it has succeeded.
    void Check(short code, std::string_view statement);

    OdbcHandle connection_;
    const OdbcDialect* dialect_;
    String engine_ = "ODBC";
    String quote_;
    bool broken_ = false;
    Long timeout_ = 0;
    Long knownTimeout_ = 0;  // to the engine
};

}  // namespace ADODB

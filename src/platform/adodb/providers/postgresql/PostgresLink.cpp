#include "platform/adodb/providers/postgresql/PostgresLink.h"

#include "platform/adodb/providers/postgresql/PostgresErrors.h"
#include "platform/runtime/Convert.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <libpq-fe.h>
#include <poll.h>

namespace ADODB {

using namespace Platform;

namespace {

/// A setting of a connection string and the name that the client library has for it.
struct Keyword {
    std::string_view setting;
    const char* name;
};
constexpr std::array Keywords = std::to_array<Keyword>({
    {"Server", "host"},
    {"Port", "port"},
    {"Database", "dbname"},
    {"User ID", "user"},
    {"Password", "password"},
    {"Service", "service"},
    {"SSL Mode", "sslmode"},
    {"SSL Root Certificate", "sslrootcert"},
    {"Application Name", "application_name"},
});

/// What the provider relies on, whatever the server's and the user's defaults are: how dates and texts are written.
constexpr const char* SessionSettings =
    "-c DateStyle=ISO -c standard_conforming_strings=on -c extra_float_digits=1 -c bytea_output=hex";

void RequireKnownSettings(const ConnectionString& settings) {
    const String unknown =
        settings.FirstUnknown({"Provider", "Server", "Port", "Database", "User ID", "Password", "Service", "SSL Mode",
                               "SSL Root Certificate", "Application Name", "Persist Security Info"});
    if (!unknown.empty())
        RaiseAdo(MultipleStepFailed, ConnectionSource, "The setting \"" + unknown + "\" is not known.");
}

/// Returns the library's message, which ends with a line feed.
String MessageOf(const char* text) {
    String message = text ? text : "";
    while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
    return message;
}

String StateOf(const PGresult* result) {
    const char* const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    return state ? state : "";
}

bool IsCopy(const PGresult* result) {
    const ExecStatusType status = PQresultStatus(result);
    return status == PGRES_COPY_IN || status == PGRES_COPY_OUT || status == PGRES_COPY_BOTH;
}

}  // namespace

void FreePostgresResult::operator()(pg_result* result) const { PQclear(result); }

void PostgresLink::Close::operator()(pg_conn* connection) const { PQfinish(connection); }

/// The end of the time that an exchange may take. A cancelled statement has some more seconds to end.
class PostgresLink::Deadline {
public:
    explicit Deadline(Long seconds) : limited_(seconds > 0), end_(Clock::now() + std::chrono::seconds(seconds)) {}

    /// Waits for one of the events of a socket. Returns false at the end of the time.
    bool Await(int socket, short events) const {
        pollfd entry{socket, events, 0};
        for (;;) {
            int left = -1;
            if (limited_) {
                const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now()).count();
                left = static_cast<int>(std::clamp<std::int64_t>(rest, 0, std::numeric_limits<int>::max()));
            }
            const int ready = poll(&entry, 1, left);
            if (ready != 0 && !(ready < 0 && errno == EINTR)) return true;
            if (ready == 0 && limited_ && Clock::now() >= end_) return false;
        }
    }

    bool IsCancelled() const noexcept { return cancelled_; }
    void Extend() {
        constexpr std::chrono::seconds toEndCancelled{5};
        cancelled_ = true;
        end_ = Clock::now() + toEndCancelled;
    }

private:
    using Clock = std::chrono::steady_clock;
    bool limited_;
    bool cancelled_ = false;
    Clock::time_point end_;
};

PostgresLink::PostgresLink(const ConnectionString& settings, Long timeout) {
    RequireKnownSettings(settings);
    std::vector<const char*> names, values;
    std::vector<String> texts;
    texts.reserve(Keywords.size() + 1);  // `values` points into it
    const auto set = [&](const char* name, const char* value) {
        names.push_back(name);
        values.push_back(value);
    };
    for (const auto& [setting, name] : Keywords) {
        String value = settings.Value(setting);
        if (!value.empty()) set(name, texts.emplace_back(std::move(value)).c_str());
    }
    // Of several servers only the one that accepts writing is of use.
    if (Contains(settings.Value("Server"), ",")) set("target_session_attrs", "read-write");
    set("connect_timeout", texts.emplace_back(CStr(timeout)).c_str());
    set("client_encoding", "UTF8");
    set("options", SessionSettings);
    set("fallback_application_name", "OXClass");
    set(nullptr, nullptr);
    const auto start = std::chrono::steady_clock::now();
    connection_.reset(PQconnectdbParams(names.data(), values.data(), 0));
    if (PQstatus(connection_.get()) != CONNECTION_OK) {
        const String message = MessageOf(PQerrorMessage(connection_.get()));
        const bool late = timeout > 0 && std::chrono::steady_clock::now() - start >= std::chrono::seconds(timeout);
        const bool refused = PQconnectionNeedsPassword(connection_.get()) != 0 ||
                             (PQconnectionUsedPassword(connection_.get()) != 0 && !Contains(message, "does not exist"));
        connection_.reset();
        RaisePostgres(late      ? TimedOut
                      : refused ? LoginFailed
                                : Failed,
                      late      ? "HYT00"
                      : refused ? "28000"
                                : "08001",
                      message, {});
    }
    PQsetNoticeProcessor(
        connection_.get(), [](void*, const char*) {}, nullptr);
    PQsetnonblocking(connection_.get(), 1);
    PQenterPipelineMode(connection_.get());
}

bool PostgresLink::InTransaction() const {
    return connection_ && PQtransactionStatus(connection_.get()) != PQTRANS_IDLE;
}

void PostgresLink::RequireConnection(std::string_view statement) const {
    if (!connection_)
        RaisePostgres(ConnectionLost, "08003", "The connection to the server is lost. Close it and open it again.",
                      statement);
}

void PostgresLink::Queued(int accepted) {
    if (accepted == 0) Lose({}, {});
    ++queued_;
}

void PostgresLink::QueueText(const String& text) {
    RequireConnection(text);
    Queued(PQsendQueryParams(connection_.get(), text.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0));
}

void PostgresLink::QueuePrepare(const String& name, const String& text) {
    RequireConnection(text);
    Queued(PQsendPrepare(connection_.get(), name.c_str(), text.c_str(), 0, nullptr));
}

void PostgresLink::QueueDescribe(const String& name) {
    Queued(PQsendDescribePrepared(connection_.get(), name.c_str()));
}

void PostgresLink::QueueRun(const String& name, const std::vector<const char*>& values) {
    RequireConnection();
    Queued(PQsendQueryPrepared(connection_.get(), name.c_str(), static_cast<int>(values.size()), values.data(), nullptr,
                               nullptr, 0));
}

void PostgresLink::Lose(std::string_view statement, const std::vector<PostgresResult>& results) {
    const String message = MessageOf(PQerrorMessage(connection_.get()));
    connection_.reset();
    queued_ = 0;
    const String state = FailureState(results);
    if (!state.empty()) RaisePostgres(ConnectionLost, state, FailureText(results), statement);
    RaisePostgres(ConnectionLost, "08006", message.empty() ? "The connection to the server is lost." : message,
                  statement);
}

void PostgresLink::Flush(Deadline& deadline, std::string_view statement) {
    for (;;) {
        const int unsent = PQflush(connection_.get());
        if (unsent == 0) return;
        // The server may have reported a failure before it closed the connection: it is read by `Wait`.
        if (unsent < 0) return;
        if (!deadline.Await(PQsocket(connection_.get()), POLLIN | POLLOUT)) {
            connection_.reset();
            queued_ = 0;
            RaisePostgres(TimedOut, "HYT00", "The server does not read the statement.", statement);
        }
        if (PQconsumeInput(connection_.get()) == 0) return;
    }
}

void PostgresLink::Wait(Deadline& deadline, std::string_view statement) {
    while (PQisBusy(connection_.get()) != 0) {
        if (!deadline.Await(PQsocket(connection_.get()), POLLIN)) {
            if (deadline.IsCancelled()) {
                connection_.reset();
                queued_ = 0;
                RaisePostgres(TimedOut, "HYT00", "The server does not answer.", statement);
            }
            deadline.Extend();
            const std::unique_ptr<PGcancel, decltype(&PQfreeCancel)> cancel(PQgetCancel(connection_.get()),
                                                                            PQfreeCancel);
            std::array<char, 256> why{};
            PQcancel(cancel.get(), why.data(), why.size());
            continue;
        }
        if (PQconsumeInput(connection_.get()) == 0) return;
    }
}

std::vector<PostgresResult> PostgresLink::Exchange(std::string_view statement) {
    RequireConnection(statement);
    if (PQpipelineSync(connection_.get()) == 0) Lose(statement, {});
    Deadline deadline(timeout_);
    Flush(deadline, statement);
    std::vector<PostgresResult> results;
    results.reserve(queued_);
    for (std::size_t answers = 0; answers <= queued_; ++answers) {  // one for each command, and the last for the end
        Wait(deadline, statement);
        PostgresResult result(PQgetResult(connection_.get()));
        if (!result || PQstatus(connection_.get()) == CONNECTION_BAD) {
            if (result) results.push_back(std::move(result));
            Lose(statement, results);
        }
        if (IsCopy(result.get())) {
            connection_.reset();
            queued_ = 0;
            RaisePostgres(ErrorsInCommand, "0A000", "COPY is not supported. The connection was closed.", statement);
        }
        if (answers == queued_) break;
        results.push_back(std::move(result));
        Wait(deadline, statement);
        PQclear(PQgetResult(connection_.get()));  // the null that ends the results of a command
    }
    queued_ = 0;
    return results;
}

bool PostgresLink::IsFailure(const pg_result* result) {
    const ExecStatusType status = PQresultStatus(result);
    return status == PGRES_FATAL_ERROR || status == PGRES_BAD_RESPONSE || status == PGRES_EMPTY_QUERY;
}

bool PostgresLink::HasFailure(const std::vector<PostgresResult>& results) {
    return std::any_of(results.begin(), results.end(),
                       [](const PostgresResult& result) { return IsFailure(result.get()); });
}

String PostgresLink::FailureState(const std::vector<PostgresResult>& results) {
    const auto failed =
        std::find_if(results.begin(), results.end(), [](const auto& result) { return IsFailure(result.get()); });
    return failed == results.end() ? String() : StateOf(failed->get());
}

String PostgresLink::FailureText(const std::vector<PostgresResult>& results) {
    const auto failed =
        std::find_if(results.begin(), results.end(), [](const auto& result) { return IsFailure(result.get()); });
    if (failed == results.end()) return {};
    const char* const text = PQresultErrorField(failed->get(), PG_DIAG_MESSAGE_PRIMARY);
    return text ? text : MessageOf(PQresultErrorMessage(failed->get()));
}

void PostgresLink::RaiseFirstFailure(const std::vector<PostgresResult>& results, std::string_view statement) {
    if (!HasFailure(results)) return;
    const String state = FailureState(results);
    if (state.empty()) RaisePostgres(ErrorsInCommand, "42601", "There is no statement in the text.", statement);
    RaisePostgres(state, FailureText(results), statement);
}

}  // namespace ADODB

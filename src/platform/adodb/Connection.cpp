#include "platform/adodb/Connection.h"

#include "platform/adodb/Recordset.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <optional>

namespace ADODB {

using namespace Platform;

template <class F>
auto Connection::Engine(F call) -> decltype(call()) {
    try {
        return call();
    } catch (const Error& failure) {
        if (failure.Provider.empty()) throw;
        errors_.assign(1, failure);
        throw;
    }
}

namespace {

/// Returns the first line of a file.
String PasswordIn(const String& file) {
    std::ifstream in(file);
    String line;
    if (!std::getline(in, line))
        RaiseAdo(MultipleStepFailed, ConnectionSource,
                 "The password file \"" + file + "\" can't be read, or is empty.");
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

/// Returns the settings for a provider: with the password of the setting "Password File" in place of this setting.
/// "Password" is used if both are given.
ConnectionString WithPassword(const ConnectionString& settings) {
    const String file = settings.Value("Password File");
    if (file.empty()) return settings;
    ConnectionString complete(settings.TextWithout({"Password File"}));
    if (complete.Value("Password").empty()) complete.Set("Password", PasswordIn(file));
    return complete;
}

/// Returns the connection string as it is shown after opening: `text`, whose settings these are, without passwords
/// unless the settings say that they are kept.
String ShownText(const String& text, const ConnectionString& settings) {
    constexpr const char* ofKeyFile = "TLSKEYPWD";  // of ODBC drivers
    const bool has = !settings.Value("Password").empty() || !settings.Value(ofKeyFile).empty();
    const bool keeps = EqualsIgnoringCase(settings.Value("Persist Security Info"), "True");
    return has && !keeps ? settings.TextWithout({"Password", ofKeyFile}) : text;
}

}  // namespace

Connection::~Connection() {
    session_.reset();
    handlers_.clear();
    const auto ending = std::exchange(owned_, {});
}

Session& Connection::Opened() const {
    if (!session_) RaiseAdo(adErrObjectClosed, ConnectionSource);
    return *session_;
}

void Connection::SetConnectionString(const String& text) {
    if (session_) RaiseAdo(adErrObjectOpen, ConnectionSource);
    text_ = text;
}

void Connection::Open(const String& ConnectionString, const String& UserID, const String& Password, Long) {
    if (session_) RaiseAdo(adErrObjectOpen, ConnectionSource);
    if (!ConnectionString.empty()) text_ = ConnectionString;
    ADODB::ConnectionString settings(text_);
    if (!UserID.empty()) settings.Set("User ID", UserID);
    if (!Password.empty()) settings.Set("Password", Password);
    const Opener open = FindProvider(settings.Value("Provider"));
    session_ = Engine([&] { return open(WithPassword(settings), connectionTimeout_); });
    session_->SetCommandTimeout(commandTimeout_);
    level_ = 0;
    text_ = ShownText(text_, settings);
}

void Connection::SetConnectionTimeout(Long seconds) {
    if (session_) RaiseAdo(adErrObjectOpen, ConnectionSource);
    if (seconds < 0) RaiseAdo(adErrInvalidArgument, ConnectionSource);
    connectionTimeout_ = seconds;
}

void Connection::SetCommandTimeout(Long seconds) {
    if (seconds < 0) RaiseAdo(adErrInvalidArgument, ConnectionSource);
    commandTimeout_ = seconds;
    if (session_) session_->SetCommandTimeout(seconds);
}

Session& Connection::Ready() {
    Session& session = Opened();
    if (announcing_) RaiseAdo(adErrNotReentrant, ConnectionSource);
    if (reading_) reading_->CopyUnread();
    if (CursorLocation != usedLocation_) {
        session.UseLocation(CursorLocation);
        usedLocation_ = CursorLocation;
    }
    if (level_ > 0 && !session.IsBroken() && !session.InTransaction())
        RaiseAdo(NoTransaction, ConnectionSource,
                 "The engine has rolled the transaction back after a failure. Call RollbackTrans before "
                 "anything else.");
    return session;
}

void Connection::Advise(std::unique_ptr<ConnectionEvents> handler) {
    if (!handler) Raise(err::ObjectNotSet);
    owned_.push_back(std::move(handler));
    handlers_.push_back(owned_.back().get());
}

void Connection::Unadvise(ConnectionEvents& handler) {
    std::erase(handlers_, &handler);
    const auto found =
        std::find_if(owned_.begin(), owned_.end(), [&](const auto& owned) { return owned.get() == &handler; });
    if (found == owned_.end()) return;
    std::unique_ptr<ConnectionEvents> ending = std::move(*found);
    owned_.erase(found);
    if (telling_ > 0) leaving_.push_back(std::move(ending));
}

template <class Call>
void Connection::Tell(Call call) {
    struct Round {
        explicit Round(Connection& connection) : owner(connection) { ++owner.telling_; }
        ~Round() {
            if (--owner.telling_ > 0) return;
            const auto ending = std::exchange(owner.leaving_, {});
        }
        Connection& owner;
    } const round(*this);
    const std::vector<ConnectionEvents*> handlers = handlers_;  // one may take itself out
    for (ConnectionEvents* handler : handlers)
        if (std::find(handlers_.begin(), handlers_.end(), handler) != handlers_.end()) call(*handler);
}

void Connection::Close() {
    Opened();
    if (announcing_) RaiseAdo(adErrNotReentrant, ConnectionSource);
    if (level_ > 0 && !session_->IsBroken()) RaiseAdo(adErrInTransaction, ConnectionSource);
    const Ref<Connection> self(this);  // its recordsets may hold the last references
    while (!open_.empty()) open_.back()->ConnectionClosed();
    session_.reset();
    adapted_ = nullptr;
    level_ = 0;
}

void Connection::Announce(ExecuteRequest& request) {
    announcing_ = true;
    try {
        Tell([&](ConnectionEvents& handler) { handler.WillExecute(request); });
    } catch (...) {
        announcing_ = false;
        throw;
    }
    announcing_ = false;
    if (request.Status == adStatusCancel) RaiseAdo(adErrOperationCancelled, ConnectionSource);
}

Connection::Result Connection::RunWhole(Session& session, const String& statement, const Runner& run) {
    Outcome outcome = run(session, statement);
    Result result{std::move(outcome.columns), {}, outcome.affected, std::move(outcome.cursor)};
    if (outcome.reader)
        while (outcome.reader->Next()) result.rows.Append(*outcome.reader, result.columns->Count());
    return result;
}

Connection::Result Connection::Run(ExecuteRequest& request, const Runner& run) {
    Session& session = Ready();
    if (request.Options > 0 && (request.Options & adCmdTable) != 0) request.Source = "select * from " + request.Source;
    if (handlers_.empty()) return Engine([&] { return RunWhole(session, request.Source, run); });
    Announce(request);
    Result result = RunTimed(request, run);
    Opened();  // a handler may have closed the connection
    return result;
}

Connection::Result Connection::RunTimed(const ExecuteRequest& request, const Runner& run) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    ExecuteReport report{.Source = request.Source};
    Result result;
    std::optional<Error> failure;
    try {
        result = Engine([&] { return RunWhole(Opened(), request.Source, run); });
    } catch (const Error& raised) {
        failure = raised;
        report.Failure = &*failure;
    }
    report.RecordsAffected = result.affected;
    report.Rows = static_cast<std::int64_t>(result.rows.all.size());
    report.Seconds = std::chrono::duration<double>(Clock::now() - start).count();
    Tell([&](ConnectionEvents& handler) { handler.ExecuteComplete(report); });
    if (failure) throw Error(*failure);
    return result;
}

Outcome Connection::RunUnbuffered(const String& statement, const RowsRequest& modes) {
    Session& session = Ready();
    return Engine([&] { return session.Open(statement, modes); });
}

bool Connection::ReadNext(RowReader& reader) {
    return Engine([&] { return reader.Next(); });
}

void Connection::RaiseKept(const std::exception_ptr& kept) {
    Engine([&] { std::rethrow_exception(kept); });
}

Ref<Recordset> Connection::Execute(const String& CommandText, Long* RecordsAffected, Long Options) {
    ExecuteRequest request{.Source = CommandText, .Options = Options};
    const bool counted = RecordsAffected || !handlers_.empty();
    Result result = Run(request, [counted](Session& session, const String& statement) {
        return counted ? session.RunCounted(statement) : session.Run(statement);
    });
    if (RecordsAffected) *RecordsAffected = static_cast<Long>(result.affected);
    if (Options > 0 && (Options & adExecuteNoRecords) != 0) return nullptr;
    Ref<Recordset> recordset = New<Recordset>();
    recordset->TakeResult(Ref<Connection>(this), std::move(request), std::move(result));
    return recordset;
}

void Connection::ExecuteAction(std::span<const StatementPiece> pieces, const std::function<String()>& joined) {
    const bool usual = session_ && handlers_.empty() && (level_ == 0 || session_->InTransaction());
    if (!usual) {
        Execute(joined(), nullptr, adCmdUnspecified);
        return;
    }
    Session& session = Ready();
    Engine([&] { session.RunAction(pieces, joined); });
}

std::int64_t Connection::Change(const String& statement, std::span<const Variant> values) {
    Session& session = Ready();
    return Engine([&] { return session.Change(statement, values); });
}

std::int64_t Connection::Insert(const String& statement, std::span<const Variant> values, std::string_view counter) {
    Session& session = Ready();
    return Engine([&] { return session.Insert(statement, values, counter); });
}

Long Connection::BeginTrans() {
    Session& session = Ready();
    if (level_ >= session.MostLevels()) RaiseAdo(TooManyTransactions, ConnectionSource);
    Engine([&] { session.Begin(level_ + 1); });
    ++level_;
    Tell([&](ConnectionEvents& handler) { handler.BeginTransComplete(level_); });
    return level_;
}

void Connection::CommitTrans() {
    Session& session = Ready();
    if (level_ == 0) RaiseAdo(NoTransaction, ConnectionSource);
    Engine([&] { session.Commit(level_); });
    --level_;
    Tell([](ConnectionEvents& handler) { handler.CommitTransComplete(); });
}

void Connection::RollbackTrans() {
    Session& session = Opened();
    if (announcing_) RaiseAdo(adErrNotReentrant, ConnectionSource);
    if (level_ == 0) RaiseAdo(NoTransaction, ConnectionSource);
    if (reading_) reading_->CopyUnread();
    Engine([&] { session.RollBack(level_); });
    --level_;
    Tell([](ConnectionEvents& handler) { handler.RollbackTransComplete(); });
}

}  // namespace ADODB

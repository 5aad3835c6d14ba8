#include "platform/adodb/providers/postgresql/PostgresSession.h"

#include "platform/adodb/providers/CachingSession.h"
#include "platform/adodb/providers/DecimalCell.h"
#include "platform/adodb/providers/postgresql/PostgresDialect.h"
#include "platform/adodb/providers/postgresql/PostgresErrors.h"
#include "platform/adodb/providers/postgresql/PostgresStatements.h"
#include "platform/runtime/Convert.h"

#include <charconv>
#include <libpq-fe.h>
#include <random>

namespace ADODB {

using namespace Platform;

namespace {

constexpr const char* Savepoint = "oxclass_statement";

/// Returns a number from its decimal text, which the server has written.
template <class Number>
Number NumberIn(std::string_view text) {
    Number number{};
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// The rows of a result, which the client library has received.
class PostgresRows final : public RowReader {
public:
    PostgresRows(PostgresResult result, std::shared_ptr<const PostgresColumns> columns)
        : result_(std::move(result)), columns_(std::move(columns)), count_(PQntuples(result_.get())) {}

    bool Next() override { return ++row_ < count_; }

    Cell At(Long ordinal) const override {
        const char* const value = PQgetvalue(result_.get(), row_, ordinal);
        const auto length = static_cast<std::size_t>(PQgetlength(result_.get(), row_, ordinal));
        if (length == 0 && PQgetisnull(result_.get(), row_, ordinal) != 0) return {};
        const std::string_view text(value, length);
        switch (columns_->forms[static_cast<std::size_t>(ordinal)]) {
            case PostgresForm::Whole: return Cell::Of(NumberIn<std::int64_t>(text));
            case PostgresForm::Real: return Cell::Of(NumberIn<double>(text));
            case PostgresForm::Boolean: return Cell::Of(static_cast<std::int64_t>(text == "t" ? -1 : 0));
            case PostgresForm::Numeric: return DecimalCell(text);
            case PostgresForm::Text: break;
        }
        return Cell::Of(text);
    }

private:
    PostgresResult result_;
    std::shared_ptr<const PostgresColumns> columns_;
    int count_;
    int row_ = -1;
};

std::int64_t AffectedBy(const PGresult* result) {
    return NumberIn<std::int64_t>(std::string_view(PQcmdTuples(const_cast<PGresult*>(result))));
}

/// A beginning of the names of a session's statements that no other session uses: behind a connection pool, sessions of
/// several programs share one connection to the server.
String NewPrefix() {
    std::random_device random;
    const std::uint64_t number = (std::uint64_t{random()} << 32U) | random();
    return "oxclass_" + std::to_string(number) + "_";
}

/// Raises for a statement that the client library would cut at a zero character.
void RequireNoZero(std::string_view text) {
    if (text.find('\0') != std::string_view::npos)
        RaisePostgres(ErrorsInCommand, "42601", "The statement contains a zero character.", text);
}

/// Returns true for the statement that chooses how a transaction is isolated: no savepoint may be in front of it.
bool SetsTransaction(std::string_view text) { return EqualsIgnoringCase(text.substr(0, 15), "SET TRANSACTION"); }

class PostgresSession final : public ServerSession<PostgresStatement, PostgresLink, PostgresCatalog> {
public:
    PostgresSession(const ConnectionString& settings, Long timeout)
        : ServerSession(settings, timeout), prefix_(NewPrefix()) {}

    std::int64_t Change(std::string_view text, std::span<const Variant> values) override {
        return AffectedBy(RunMarked(text, values).get());
    }

    std::int64_t Insert(std::string_view text, std::span<const Variant> values, std::string_view counter) override {
        const bool counted = !counter.empty();
        const String returning = String(text) + (counted ? " RETURNING " + Quoted(counter) : String());
        const PostgresResult result = RunMarked(returning, values);
        return counted && PQntuples(result.get()) > 0 ? NumberIn<std::int64_t>(PQgetvalue(result.get(), 0, 0)) : 0;
    }

    String Quoted(std::string_view name) const override { return '"' + Replace(name, "\"", "\"\"") + '"'; }

    void Begin(Long level) override {
        if (level == 1) return Command({"BEGIN"});
        std::vector<String> commands = EndOfSavepoint();
        commands.push_back("SAVEPOINT level" + CStr(level));
        Command(commands);
    }
    void Commit(Long level) override { Command({level == 1 ? "COMMIT" : "RELEASE SAVEPOINT level" + CStr(level)}); }
    void RollBack(Long level) override {
        if (!link_.InTransaction()) return;  // the connection is lost
        if (level == 1) return Command({"ROLLBACK"});
        Command({"ROLLBACK TO SAVEPOINT level" + CStr(level), "RELEASE SAVEPOINT level" + CStr(level)});
    }
    bool InTransaction() const override { return link_.InTransaction(); }

private:
    /// Sends the commands that `queue` queues and returns their results. In a transaction a savepoint is set in front
    /// of them, by the same round trip, unless nothing was changed since the last one; after a failure the transaction
    /// is rolled back to it.
    template <class Queue>
    std::vector<PostgresResult> Try(std::string_view text, bool readsOnly, Queue queue) {
        const bool save = link_.InTransaction() && !SetsTransaction(text) && (!saved_ || changed_);
        std::vector<String> before = save ? EndOfSavepoint() : std::vector<String>();
        if (save) before.push_back(String("SAVEPOINT ") + Savepoint);
        if (!link_.InTransaction() && dropped_->size() >= ManyDropped) DropUnused();
        for (const String& command : before) link_.QueueText(command);
        queue();
        std::vector<PostgresResult> results = link_.Exchange(text);
        saved_ = (save || saved_) && link_.InTransaction();
        changed_ = (changed_ && !save) || !readsOnly;
        if (saved_ && PostgresLink::HasFailure(results)) {
            link_.QueueText(String("ROLLBACK TO SAVEPOINT ") + Savepoint);
            link_.Exchange(text);
            changed_ = false;
        }
        const auto own = results.begin() + static_cast<std::ptrdiff_t>(before.size());
        if (std::any_of(results.begin(), own, [](const auto& result) { return PostgresLink::IsFailure(result.get()); }))
            PostgresLink::RaiseFirstFailure(results, text);
        results.erase(results.begin(), own);
        return results;
    }

    /// Tells the server to drop the statements that the cache has removed. A failure leaves them until the session
    /// ends.
    void DropUnused() {
        for (const String& name : std::exchange(*dropped_, {})) link_.QueueText("DEALLOCATE " + name);
        link_.Exchange("DEALLOCATE");
    }

    /// Returns the command that ends the savepoint of the last statement, if there is one.
    std::vector<String> EndOfSavepoint() const {
        if (!saved_) return {};
        return {String("RELEASE SAVEPOINT ") + Savepoint};
    }

    /// Runs commands of a transaction, which end the savepoint of the last statement.
    void Command(const std::vector<String>& commands) {
        for (const String& command : commands) link_.QueueText(command);
        const std::vector<PostgresResult> results = link_.Exchange(commands.front());
        PostgresLink::RaiseFirstFailure(results, commands.front());
        saved_ = false;
    }

    PostgresStatement* For(std::string_view text) override {
        RequireNoZero(text);
        return ServerSession::For(text);
    }

    bool PrepareShape(PostgresStatement& statement, std::string_view text) override {
        PostgresText translated = ForPostgres(text, literals_, keys_);
        statement.negative = std::move(translated.negative);
        statement.translated = std::move(translated.text);
        statement.readsOnly = translated.readsOnly;
        return !PostgresLink::HasFailure(Prepare(statement, text));
    }

    void PrepareMarked(PostgresStatement& statement, std::string_view text) override {
        statement.translated = Numbered(text);
        PostgresLink::RaiseFirstFailure(Prepare(statement, text), text);
    }

    /// Prepares a statement on the server under a new name and reads its description. If the server rejects it, the
    /// results contain the failure.
    std::vector<PostgresResult> Prepare(PostgresStatement& statement, std::string_view text) {
        PreparedName name(prefix_ + std::to_string(++prepared_), dropped_);
        std::vector<PostgresResult> results = Try(text, true, [&] {
            link_.QueuePrepare(name.Text(), statement.translated);
            link_.QueueDescribe(name.Text());
        });
        if (PostgresLink::HasFailure(results)) {
            name = {};
            dropped_->pop_back();  // the server doesn't know it
            return results;
        }
        statement.name = std::move(name);
        const PGresult* const description = results.back().get();
        statement.nullIfBlank.clear();
        for (int i = 0; i < PQnparams(description); ++i)
            statement.nullIfBlank.push_back(RejectsBlank(PQparamtype(description, i)));
        statement.columns = catalog_.ColumnsOf(description, statement.translated);
        return results;
    }

    /// Runs a prepared statement with `values_`; prepares it again first if the server has dropped it. The failure, if
    /// there is one, is among the results. `text` is what errors are about.
    std::vector<PostgresResult> RunWithValues(PostgresStatement& statement, std::string_view text) {
        const auto run = [&] {
            return Try(text, statement.readsOnly, [&] { link_.QueueRun(statement.name.Text(), values_.Texts()); });
        };
        std::vector<PostgresResult> results = run();
        if (!IsForgotten(results)) return results;
        catalog_.Forget();
        results = Prepare(statement, text);
        return PostgresLink::HasFailure(results) ? std::move(results) : run();
    }

    Outcome RunPrepared(PostgresStatement& statement, std::string_view text) override {
        values_.Set(statement, literals_);
        std::vector<PostgresResult> results = RunWithValues(statement, text);
        if (!text.empty() && PostgresLink::FailureState(results) == "42703") {
            // A column was renamed or dropped since, perhaps one by which the rows are sorted.
            statements_.Clear();
            catalog_.Forget();
            return RunText(text);
        }
        // In a text the server rounds a number for a column of whole numbers; as a parameter it rejects it.
        if (!text.empty() && HasReal() && PostgresLink::FailureState(results) == "22P02") return RunText(text);
        PostgresLink::RaiseFirstFailure(results, text);
        return OutcomeOf(std::move(results.back()), statement.columns);
    }

    Outcome Send(std::string_view text) override {
        const PostgresText translated = ForPostgres(text, {}, keys_);
        std::vector<PostgresResult> results =
            Try(text, translated.readsOnly, [&] { link_.QueueText(translated.text); });
        if (const String state = PostgresLink::FailureState(results); state == "42703" || state == "42601") {
            // The keys by which the rows are sorted may be out of date, or have no place in this statement.
            catalog_.Forget();
            const PostgresText plain = ForPostgres(text, {}, {});
            if (plain.text != translated.text)
                results = Try(text, plain.readsOnly, [&] { link_.QueueText(plain.text); });
        }
        PostgresLink::RaiseFirstFailure(results, text);
        const auto columns = catalog_.ColumnsOf(results.back().get(), text);
        return OutcomeOf(std::move(results.back()), columns);
    }

    static Outcome OutcomeOf(PostgresResult result, const std::shared_ptr<const PostgresColumns>& columns) {
        if (!columns) return {nullptr, nullptr, AffectedBy(result.get())};
        return {.columns = columns->columns, .reader = std::make_unique<PostgresRows>(std::move(result), columns)};
    }

    /// Runs a statement of the database layer, with "?" for each value.
    PostgresResult RunMarked(std::string_view text, std::span<const Variant> values) {
        PostgresStatement& statement = ForMarked(text);
        values_.Set(values);
        std::vector<PostgresResult> results = RunWithValues(statement, text);
        PostgresLink::RaiseFirstFailure(results, text);
        return std::move(results.back());
    }

    /// Returns a text with "$1", "$2" and so on for each "?" that is not inside a quoted name.
    static String Numbered(std::string_view text) {
        String numbered;
        bool quoted = false;
        Long count = 0;
        for (const char c : text) {
            if (c == '"') quoted = !quoted;
            if (c == '?' && !quoted)
                numbered += "$" + CStr(++count);
            else
                numbered += c;
        }
        return numbered;
    }

    /// Returns true if the server has dropped a prepared statement (a connection pool, DISCARD ALL), or can't run it
    /// any more because a table has changed.
    static bool IsForgotten(const std::vector<PostgresResult>& results) {
        const String state = PostgresLink::FailureState(results);
        return state == "26000" || state == "0A000";
    }

    bool HasReal() const {
        return std::any_of(literals_.begin(), literals_.end(), [](const Literal& literal) { return literal.isReal; });
    }

    static constexpr std::size_t ManyDropped = 16;

    const PreparedName::Dropped dropped_ = std::make_shared<std::vector<String>>();
    String prefix_;
    std::size_t prepared_ = 0;
    PostgresValues values_;
    bool saved_ = false;    // the savepoint of the last statement exists
    bool changed_ = false;  // a statement since then may have changed or locked something
};

}  // namespace

std::unique_ptr<Session> OpenPostgres(const ConnectionString& settings, Long timeout) {
    return std::make_unique<PostgresSession>(settings, timeout);
}

String PostgresEngine() {
    const Long version = PQlibVersion();
    return "PostgreSQL (libpq " + CStr(version / 10000) + "." + CStr(version % 10000) + ")";
}

}  // namespace ADODB

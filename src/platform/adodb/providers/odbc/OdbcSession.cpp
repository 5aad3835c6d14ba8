#include "platform/adodb/providers/odbc/OdbcSession.h"

#include "platform/adodb/providers/odbc/OdbcApi.h"
#include "platform/adodb/providers/CachingSession.h"
#include "platform/adodb/providers/odbc/OdbcStatements.h"
#include "platform/runtime/Convert.h"

namespace ADODB {

using namespace Platform;

namespace {

class OdbcSession final : public ServerSession<OdbcStatement, OdbcLink, OdbcCatalog> {
public:
    OdbcSession(const ConnectionString& settings, Long timeout)
        : ServerSession(settings, timeout), values_(link_.Dialect().utf8), inCluster_(IsInCluster()) {}

    /// A driver refuses to disconnect while a transaction is open.
    ~OdbcSession() override {
        if (!InTransaction()) return;
        try {
            link_.End(false);
        } catch (const Error&) {  // the engine rolls back when the connection ends
        }
    }

    std::int64_t Change(std::string_view text, std::span<const Variant> values) override {
        return Asking([&] {
            OdbcStatement& statement = ForMarked(text);
            values_.Set(values);
            RunWithValues(statement, text);
            return Affected(statement.handle);
        });
    }

    std::int64_t Insert(std::string_view text, std::span<const Variant> values, std::string_view counter) override {
        Change(text, values);
        return counter.empty() ? 0 : Asking([&] { return link_.Number("SELECT @@IDENTITY"); });
    }

    String Quoted(std::string_view name) const override { return link_.Quoted(name); }

    void Begin(Long level) override {
        if (level > 1) return Command("SAVEPOINT level" + CStr(level));
        if (inCluster_)
            BeginInCluster();
        else
            link_.Begin();
        inTransaction_ = true;
    }
    void Commit(Long level) override {
        if (level > 1 || inCluster_) Release(level);
        if (level > 1) return;
        link_.End(true);
        LeaveTransaction();
    }
    void RollBack(Long level) override {
        if (!InTransaction()) return;
        if (level > 1) {
            Command("ROLLBACK TO SAVEPOINT level" + CStr(level));
            return Release(level);
        }
        link_.End(false);
        LeaveTransaction();
    }
    bool InTransaction() const override { return inTransaction_ && !link_.IsBroken(); }

private:
    bool IsInCluster() {
        if (link_.Dialect().inCluster.empty()) return false;
        try {
            return link_.Number(link_.Dialect().inCluster) != 0;
        } catch (const Error&) {  // an engine that was built without clusters
            return false;
        }
    }

    void Command(const String& text) {
        const OdbcHandle handle = link_.NewStatement(text);
        if (const auto failure = link_.ExecuteText(handle, text)) Fail(*failure, text);
    }

    /// Releases the savepoint of a level. In a cluster, raises `LockConflict` if the transaction lacks it: another node
    /// has ended the transaction, and what ran since then is rolled back.
    void Release(Long level) {
        const String text = "RELEASE SAVEPOINT level" + CStr(level);
        const OdbcHandle handle = link_.NewStatement(text);
        auto failure = link_.ExecuteText(handle, text);
        if (!failure) return;
        if (!inCluster_ || failure->native != link_.Dialect().noSavepoint) Fail(*failure, text);
        link_.End(false);
        LeaveTransaction();
        throw Error(LockConflict, link_.Engine(), "Another node of the cluster has ended the transaction.");
    }

    /// Begins a transaction whose savepoint tells at its end whether it is still the same.
    void BeginInCluster() {
        Command("SET autocommit=0");
        try {
            link_.Begin();
            Command("SAVEPOINT level1");
        } catch (const Error& failure) {
            if (failure.Number != ConnectionLost) {
                link_.End(false);
                Command("SET autocommit=1");
            }
            throw;
        }
    }

    /// Notes that the transaction has ended. With autocommit off, a statement after it would begin another one.
    void LeaveTransaction() {
        inTransaction_ = false;
        if (inCluster_) Command("SET autocommit=1");
    }

    /// Asks the engine whether it has rolled the transaction back.
    void AskForTransaction() {
        if (link_.Number(link_.Dialect().inTransaction) != 0) return;
        if (inCluster_) link_.End(false);
        LeaveTransaction();
    }

    /// Raises the failure of a statement, after asking the engine whether it has rolled the transaction back.
    [[noreturn]] void Fail(const OdbcFailure& failure, std::string_view text) {
        const bool asks = inTransaction_ && !link_.Dialect().inTransaction.empty();
        if (asks && NumberOfOdbc(failure, link_.Dialect()) != ConnectionLost) AskForTransaction();
        link_.Raise(failure, text);
    }

    /// Notes that the engine has rolled the transaction back, if it did so when it raised this number for any
    /// statement, those by which the driver and the catalog describe tables included.
    void LookAfter(Long number) {
        if (number == LockConflict && inTransaction_ && !link_.Dialect().inTransaction.empty()) AskForTransaction();
    }

    template <class F>
    auto Asking(F call) -> decltype(call()) {
        try {
            return call();
        } catch (const Error& failure) {
            LookAfter(failure.Number);
            throw;
        }
    }

    /// Raises for what a driver might run although it must not be sent.
    void RequireOne(std::string_view text) {
        if (const auto [state, why] = FlawIn(text); why) link_.Raise({state, 0, why}, text);
    }

    bool PrepareShape(OdbcStatement& statement, std::string_view text) override {
        RequireOne(text);
        statement.targets = TargetsOf(text, literals_);
        const auto failure = Asking([&] { return Prepare(statement, text, literals_); });
        // As a text it would run outside of the transaction that the engine has ended.
        if (failure && NumberOfOdbc(*failure, link_.Dialect()) == LockConflict) Fail(*failure, text);
        return !failure;
    }

    void PrepareMarked(OdbcStatement& statement, std::string_view text) override {
        if (const auto failure = Prepare(statement, text, {})) Fail(*failure, text);
    }

    std::optional<OdbcFailure> Prepare(OdbcStatement& statement, std::string_view text,
                                       const std::vector<Literal>& literals) {
        statement.handle = link_.NewStatement(text);
        statement.prepared = ForOdbc(link_.Dialect(), text, literals, keys_);
        return link_.Prepare(statement.handle, statement.prepared);
    }

    Outcome RunPrepared(OdbcStatement& statement, std::string_view text) override {
        return Asking([&] {
            if (HasBlank(literals_) && !statement.nullIfBlank) statement.nullIfBlank = BlankRules(statement.targets);
            values_.Set(literals_, statement.nullIfBlank);
            RunWithValues(statement, text);
            return OutcomeOf(statement, text);
        });
    }

    /// Runs a prepared statement with `values_`; prepares it again first if the server has dropped it.
    void RunWithValues(OdbcStatement& statement, std::string_view text) {
        values_.Bind(statement.handle);
        std::optional<OdbcFailure> failure = link_.Execute(statement.handle);
        if (failure && IsForgotten(*failure)) failure = RunAgain(statement, text);
        if (failure) Fail(*failure, text);
    }

    std::optional<OdbcFailure> RunAgain(OdbcStatement& statement, std::string_view text) {
        catalog_.Forget();
        statement.handle = link_.NewStatement(text);
        statement.isDescribed = false;
        if (auto failure = link_.Prepare(statement.handle, statement.prepared)) return failure;
        values_.Bind(statement.handle);
        return link_.Execute(statement.handle);
    }

    Outcome Send(std::string_view text) override {
        RequireOne(text);
        return Asking([&] {
            OdbcStatement& statement = statements_.KeepOnce({});
            if (const auto failure = Execute(statement, text)) Fail(*failure, text);
            if (inCluster_ && inTransaction_ && Commits(text)) Command("SAVEPOINT level1");
            return OutcomeOf(statement, text);
        });
    }

    /// Returns true for a statement that commits the open transaction, and its savepoints with it.
    static bool Commits(std::string_view text) {
        return ChangesDefinitions(text) || EqualsIgnoringCase(String(text.substr(0, 5)), "START");
    }

    /// Runs a text with sorted rows, and as it is if the engine rejects that.
    std::optional<OdbcFailure> Execute(OdbcStatement& statement, std::string_view text) {
        const String sorted = ForOdbc(link_.Dialect(), text, {}, keys_);
        statement.handle = link_.NewStatement(text);
        auto failure = link_.ExecuteText(statement.handle, sorted);
        const Long number = failure ? NumberOfOdbc(*failure, link_.Dialect()) : 0;
        if (number != ErrorsInCommand && number != UnknownName) return failure;
        const String plain = ForOdbc(link_.Dialect(), text, {});
        return plain == sorted ? failure : link_.ExecuteText(statement.handle, plain);
    }

    Outcome OutcomeOf(OdbcStatement& statement, std::string_view text) {
        if (!statement.isDescribed) Describe(statement);
        if (!statement.columns) return {nullptr, nullptr, Affected(statement.handle)};
        return {.columns = statement.columns->columns, .reader = std::make_unique<OdbcRows>(link_, statement, text)};
    }

    void Describe(OdbcStatement& statement) {
        statement.columns = catalog_.ColumnsOf(statement.handle);
        if (statement.columns) statement.row = BoundValues(statement.handle, *statement.columns, link_.Dialect().utf8);
        statement.isDescribed = true;
    }

    static std::int64_t Affected(const OdbcHandle& handle) {
        SQLLEN count = 0;
        SQLRowCount(handle.Get(), &count);
        return std::max<SQLLEN>(count, 0);
    }

    std::vector<bool> BlankRules(const OdbcTargets& targets) {
        std::vector<bool> rules;
        for (const String& column : targets.columns)
            rules.push_back(!targets.table.empty() && !column.empty() && catalog_.RejectsBlank(targets.table, column));
        return rules;
    }

    bool IsForgotten(const OdbcFailure& failure) const {
        const std::span<const Long> codes = link_.Dialect().forgotten;
        return std::find(codes.begin(), codes.end(), failure.native) != codes.end();
    }

    OdbcValues values_;
    const bool inCluster_;
    bool inTransaction_ = false;
};

}  // namespace

std::unique_ptr<Session> OpenOdbc(const ConnectionString& settings, Long timeout) {
    return std::make_unique<OdbcSession>(settings, timeout);
}

String OdbcEngine() { return "MSDASQL (ODBC " SQL_SPEC_STRING ")"; }

}  // namespace ADODB

#include "platform/adodb/providers/odbc/OdbcSession.h"

#include "platform/adodb/providers/odbc/OdbcStatements.h"
#include "platform/runtime/Convert.h"

#include <sql.h>
#include <sqlext.h>

namespace ADODB {

using namespace Platform;

namespace {

class OdbcSession final : public Session {
public:
    OdbcSession(const ConnectionString& settings, Long timeout)
        : link_(settings, timeout), catalog_(link_), values_(link_.Dialect().utf8) {}

    /// A driver refuses to disconnect while a transaction is open.
    ~OdbcSession() override {
        if (!InTransaction()) return;
        try {
            link_.End(false);
        } catch (const Error&) {  // the engine rolls back when the connection ends
        }
    }

    Outcome Run(std::string_view text) override {
        OdbcStatement* const statement = For(text);
        return statement ? RunPrepared(*statement, text) : RunText(text);
    }

    void RunAction(std::span<const StatementPiece> pieces, const std::function<String()>& joined) override {
        OdbcStatement* statement = statements_.Find(pieces, literals_);
        const String text = statement ? String() : joined();
        try {
            if (!statement && (statement = For(text)))
                if (auto bindings = PieceBindings::Of(pieces, text, literals_))
                    statement->bindings = std::move(bindings);
            if (statement)
                RunPrepared(*statement, text);
            else
                RunText(text);
        } catch (Error& failure) {
            if (failure.Statement.empty()) failure.Statement = joined();
            throw;
        }
    }

    std::int64_t Change(std::string_view text, std::span<const Variant> values) override {
        OdbcStatement& statement = ForMarked(text);
        values_.Set(values);
        RunWithValues(statement, text);
        return Affected(statement.handle);
    }

    std::int64_t Insert(std::string_view text, std::span<const Variant> values, std::string_view counter) override {
        Change(text, values);
        return counter.empty() ? 0 : link_.Number("SELECT @@IDENTITY");
    }

    String Quoted(std::string_view name) const override { return link_.Quoted(name); }

    void Begin(Long level) override {
        if (level == 1)
            link_.Begin();
        else
            Command("SAVEPOINT level" + CStr(level));
        inTransaction_ = true;
    }
    void Commit(Long level) override {
        if (level > 1) return Command("RELEASE SAVEPOINT level" + CStr(level));
        link_.End(true);
        inTransaction_ = false;
    }
    void RollBack(Long level) override {
        if (!InTransaction()) return;
        if (level > 1) {
            Command("ROLLBACK TO SAVEPOINT level" + CStr(level));
            return Command("RELEASE SAVEPOINT level" + CStr(level));
        }
        link_.End(false);
        inTransaction_ = false;
    }
    bool InTransaction() const override { return inTransaction_ && !link_.IsBroken(); }
    Long MostLevels() const override { return 5; }

    bool IsBroken() const override { return link_.IsBroken(); }
    void SetCommandTimeout(Long seconds) override { link_.SetTimeout(seconds); }

private:
    void Command(const String& text) {
        const OdbcHandle handle = link_.NewStatement(text);
        if (const auto failure = link_.ExecuteText(handle, text)) Fail(*failure, text);
    }

    /// Raises the failure of a statement, after asking the engine whether it has rolled the transaction back.
    [[noreturn]] void Fail(const OdbcFailure& failure, std::string_view text) {
        const bool asks = inTransaction_ && !link_.Dialect().inTransaction.empty();
        if (asks && NumberOfOdbc(failure, link_.Dialect()) != ConnectionLost)
            inTransaction_ = link_.Number(link_.Dialect().inTransaction) != 0;
        link_.Raise(failure, text);
    }

    /// Returns the prepared statement of a text, and its literals in `literals_`; null if the text must be sent as it
    /// is.
    OdbcStatement* For(std::string_view text) {
        if (OdbcStatement* const kept = statements_.Find(text, literals_)) return kept;
        if (const auto [state, why] = FlawIn(text); why) link_.Raise({state, 0, why}, text);
        OdbcStatement statement;
        statement.shape.reals = true;
        if (!CutAtLiterals(text, statement.shape, literals_) || literals_.size() > MostParameters) return nullptr;
        // A text that is sent once is prepared only if an empty text may have to become a null.
        if (!StatementCache<OdbcStatement>::IsKept(text) && !HasBlank(literals_)) return nullptr;
        statement.targets = TargetsOf(text, literals_);
        if (Prepare(statement, text, literals_)) return nullptr;
        return &statements_.Keep(std::move(statement), text);
    }

    /// Returns the prepared statement of a text of the database layer, which has "?" for each value.
    OdbcStatement& ForMarked(std::string_view text) {
        std::vector<Literal> none;
        if (OdbcStatement* const kept = statements_.Find(text, none)) return *kept;
        OdbcStatement statement;
        statement.shape.pieces.emplace_back(text);
        if (const auto failure = Prepare(statement, text, {})) Fail(*failure, text);
        return statements_.Keep(std::move(statement), text);
    }

    std::optional<OdbcFailure> Prepare(OdbcStatement& statement, std::string_view text,
                                       const std::vector<Literal>& literals) {
        statement.handle = link_.NewStatement(text);
        statement.prepared = ForOdbc(link_.Dialect(), text, literals);
        return link_.Prepare(statement.handle, statement.prepared);
    }

    Outcome RunPrepared(OdbcStatement& statement, std::string_view text) {
        if (HasBlank(literals_) && !statement.nullIfBlank) statement.nullIfBlank = BlankRules(statement.targets);
        values_.Set(literals_, statement.nullIfBlank);
        RunWithValues(statement, text);
        return OutcomeOf(statement, text);
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

    Outcome RunText(std::string_view text) {
        OdbcStatement& statement = statements_.KeepOnce({});
        statement.handle = link_.NewStatement(text);
        if (const auto failure = link_.ExecuteText(statement.handle, ForOdbc(link_.Dialect(), text, {})))
            Fail(*failure, text);
        Outcome outcome = OutcomeOf(statement, text);
        if (ChangesDefinitions(text)) {
            statements_.Clear();
            catalog_.Forget();
        }
        return outcome;
    }

    Outcome OutcomeOf(OdbcStatement& statement, std::string_view text) {
        if (!statement.isDescribed) statement.columns = catalog_.ColumnsOf(statement.handle);
        statement.isDescribed = true;
        Outcome outcome;
        if (statement.columns) {
            outcome.columns = statement.columns->columns;
            outcome.reader = std::make_unique<OdbcRows>(link_, statement.handle, statement.columns, text);
        } else {
            outcome.affected = Affected(statement.handle);
        }
        return outcome;
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

    static constexpr std::size_t MostParameters = 65535;

    OdbcLink link_;
    OdbcCatalog catalog_;
    StatementCache<OdbcStatement> statements_;
    std::vector<Literal> literals_;  // of the statement that runs
    OdbcValues values_;
    bool inTransaction_ = false;
};

}  // namespace

std::unique_ptr<Session> OpenOdbc(const ConnectionString& settings, Long timeout) {
    return std::make_unique<OdbcSession>(settings, timeout);
}

}  // namespace ADODB

#pragma once

#include "platform/adodb/providers/Definitions.h"
#include "platform/adodb/providers/KeyOrder.h"
#include "platform/adodb/providers/StatementCache.h"

namespace ADODB {

/// What the sessions of all providers share: an action is found by the pieces of its statement. `Statement` is that of
/// the provider's `StatementCache`.
template <class Statement>
class CachingSession : public Session {
public:
    void RunAction(std::span<const StatementPiece> pieces, const std::function<String()>& joined) final {
        Statement* statement = Cached(pieces);
        const String text = statement ? String() : joined();
        try {
            if (!statement && (statement = For(text)))
                if (auto bindings = PieceBindings::Of(pieces, text, literals_))
                    statement->bindings = std::move(bindings);
            RunToEnd(statement, text);
        } catch (Error& failure) {
            if (failure.Statement.empty()) failure.Statement = joined();
            throw;
        }
    }

protected:
    /// Returns the cached statement of these pieces, and its literals in `literals_`; null if none is cached.
    virtual Statement* Cached(std::span<const StatementPiece> pieces) = 0;
    /// Returns the prepared statement of a text, and its literals in `literals_`; null if the text must be sent as it
    /// is.
    virtual Statement* For(std::string_view text) = 0;
    /// Runs a prepared statement with `literals_`, or a text as it is if the statement is null, and ignores its rows.
    virtual void RunToEnd(Statement* statement, std::string_view text) = 0;

    std::vector<Literal> literals_;  // of the statement that runs
};

/// What the sessions with a server share: the server prepares each statement once, by its shape. `Link` is the
/// connection, which is closed after all statements are dropped. `Catalog` is what is known of the server's tables.
template <class Statement, class Link, class Catalog>
class ServerSession : public CachingSession<Statement> {
public:
    Outcome Run(std::string_view text) final {
        if (Statement* const statement = For(text)) return RunPrepared(*statement, text);
        return RunText(text);
    }

    Long MostLevels() const final { return 5; }
    bool IsBroken() const final { return link_.IsBroken(); }
    void SetCommandTimeout(Long seconds) final { link_.SetTimeout(seconds); }

protected:
    ServerSession(const ConnectionString& settings, Long timeout) : link_(settings, timeout), catalog_(link_) {}

    /// Prepares the shape of a statement whose text was cut at `literals_`. Returns false if the server rejects it.
    virtual bool PrepareShape(Statement& statement, std::string_view text) = 0;
    /// Prepares a text of the database layer, which has "?" for each value. Raises what the server reports.
    virtual void PrepareMarked(Statement& statement, std::string_view text) = 0;
    /// Runs a prepared statement with `literals_`; `text` is what errors are about.
    virtual Outcome RunPrepared(Statement& statement, std::string_view text) = 0;
    /// Runs a text as it is.
    virtual Outcome Send(std::string_view text) = 0;

    Statement* For(std::string_view text) override {
        if (Statement* const kept = statements_.Find(text, literals_)) return kept;
        constexpr std::size_t mostParameters = 65535;
        Statement statement;
        statement.shape.reals = true;
        if (!CutAtLiterals(text, statement.shape, literals_) || literals_.size() > mostParameters) return nullptr;
        // A text that is sent once is prepared only if an empty text may have to become a null.
        if (!StatementCache<Statement>::IsKept(text) && !HasBlank(literals_)) return nullptr;
        if (!PrepareShape(statement, text)) return nullptr;
        return &statements_.Keep(std::move(statement), text);
    }

    /// Returns the prepared statement of a text of the database layer.
    Statement& ForMarked(std::string_view text) {
        std::vector<Literal> none;
        if (Statement* const kept = statements_.Find(text, none)) return *kept;
        Statement statement;
        statement.shape.pieces.emplace_back(text);
        PrepareMarked(statement, text);
        return statements_.Keep(std::move(statement), text);
    }

    /// Runs a text as it is. If it may have changed a table, everything that is known of the tables is forgotten.
    Outcome RunText(std::string_view text) {
        Outcome outcome = Send(text);
        if (ChangesDefinitions(text)) {
            statements_.Clear();
            catalog_.Forget();
        }
        return outcome;
    }

    using CachingSession<Statement>::literals_;
    Link link_;
    Catalog catalog_;
    const TableKeys keys_ = [this](const String& table) { return catalog_.KeyOf(table); };
    StatementCache<Statement> statements_;

private:
    Statement* Cached(std::span<const StatementPiece> pieces) final { return statements_.Find(pieces, literals_); }

    void RunToEnd(Statement* statement, std::string_view text) final {
        if (statement)
            RunPrepared(*statement, text);
        else
            RunText(text);
    }
};

}  // namespace ADODB

#pragma once

#include "platform/adodb/providers/Provider.h"
#include "platform/adodb/providers/sqlite/SqliteShape.h"

#include <list>
#include <unordered_map>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace ADODB {

/// How the pieces of a statement supply the literals of its shape.
class PieceBindings {
public:
    /// Returns the bindings of a statement with these pieces, whose text `statement` was cut at `literals`. Returns
    /// nothing if a value among the pieces is not a whole literal of its kind.
    static std::optional<PieceBindings> Of(std::span<const StatementPiece> pieces, std::string_view statement,
                                           const std::vector<Literal>& literals);

    /// Returns true if `pieces` have the same fixed texts, and values of the same kinds; `literals` then has the
    /// literals of the joined statement. A negative number is a literal here. The literals point into the pieces and
    /// this object.
    bool Match(std::span<const StatementPiece> pieces, std::vector<Literal>& literals) const;

private:
    /// A literal of the shape: a value, or a part of the fixed text.
    struct Source {
        bool isValue;
        bool isText;
        std::string body;     // of a fixed literal
        std::int64_t number;  // of a fixed literal
    };

    using Position = std::vector<Literal>::const_iterator;
    /// Adds the literals that end inside the text `fixed`, before its last character; returns the first other one.
    Position TakeFixed(Position literal, Position last, std::string_view fixed);

    std::vector<std::string> fixed_;           // the joined fixed texts in front of each value and behind the last one
    std::vector<StatementPiece::Kind> kinds_;  // of the values
    std::vector<Source> sources_;              // of the literals
};

/// A compiled statement with the columns of its result. One thread.
class CompiledStatement {
public:
    CompiledStatement(sqlite3_stmt* compiled) : compiled_(compiled) {}
    CompiledStatement(CompiledStatement&& other) noexcept;
    CompiledStatement& operator=(CompiledStatement&&) = delete;
    ~CompiledStatement();

    sqlite3_stmt* Compiled() const noexcept { return compiled_; }

    /// Returns the columns of its result; null if it does not return rows. They are read from the engine once.
    const std::shared_ptr<const Columns>& ResultColumns(sqlite3* database);

    /// Discards the columns, after the engine compiled the statement again for a changed table.
    void ForgetColumns() { columns_.reset(); }

    Shape shape;
    std::optional<PieceBindings> bindings;  ///< if it ran as pieces

private:
    sqlite3_stmt* compiled_;
    std::shared_ptr<const Columns> columns_;
};

/// The compiled statements of one session, cached by their shape; the least recently used one is removed first. One
/// thread.
class StatementCache {
public:
    explicit StatementCache(sqlite3* database) : database_(database) {}

    /// Returns the compiled statement for a text, from the cache or newly compiled, and its literals in the order of
    /// the "?". It is valid until the next call. Raises the engine's error, and 0x80040E14 if a second statement
    /// follows the first.
    CompiledStatement& For(std::string_view statement, std::vector<Literal>& literals);

    /// Returns the cached statement for these pieces, and its literals; null if none is cached.
    CompiledStatement* ForPieces(std::span<const StatementPiece> pieces, std::vector<Literal>& literals);

    /// Returns the compiled statement for a text of the database layer, which contains "?" itself.
    CompiledStatement& ForMarked(std::string_view statement);

    /// Return how many statements are cached, and how many were compiled so far.
    std::size_t Count() const noexcept { return cached_.size(); }
    std::size_t CompiledCount() const noexcept { return compiled_; }

private:
    using List = std::list<CompiledStatement>;
    static constexpr std::size_t MostKept = 256;
    static constexpr std::size_t LongestKept = 16384;  ///< longer texts are not cached: they are rarely repeated

    CompiledStatement* Find(std::string_view statement, std::vector<Literal>& literals);
    /// Returns the compiled shape of a statement; nothing if the text must be compiled unchanged.
    std::optional<CompiledStatement> CompileShape(std::string_view statement, std::vector<Literal>& literals);
    CompiledStatement& Keep(CompiledStatement compiled, std::string_view statement);
    CompiledStatement& Once(CompiledStatement compiled);
    /// Returns the compiled text, or null if the engine rejects it and `orNothing` is true.
    sqlite3_stmt* Compile(std::string_view text, bool orNothing);

    sqlite3* database_;
    List cached_;                                                        // the most recently used in front
    std::unordered_multimap<std::string_view, List::iterator> byStart_;  // views into the shapes of `cached_`
    std::optional<CompiledStatement> once_;
    std::size_t compiled_ = 0;
};

}  // namespace ADODB

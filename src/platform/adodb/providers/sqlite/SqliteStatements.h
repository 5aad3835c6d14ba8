#pragma once

#include "platform/adodb/providers/StatementCache.h"

struct sqlite3;
struct sqlite3_stmt;

namespace ADODB {

/// A compiled statement with the columns of its result. One thread.
class SqliteStatement {
public:
    SqliteStatement(sqlite3_stmt* compiled) : compiled_(compiled) {}
    SqliteStatement(SqliteStatement&& other) noexcept;
    SqliteStatement& operator=(SqliteStatement&&) = delete;
    ~SqliteStatement();

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

/// The compiled statements of one session. One thread.
class SqliteStatements {
public:
    explicit SqliteStatements(sqlite3* database) : database_(database) {}

    /// Returns the compiled statement for a text, from the cache or newly compiled, and its literals in the order of
    /// the "?". It is valid until the next call. Raises the engine's error, and 0x80040E14 if a second statement
    /// follows the first.
    SqliteStatement& For(std::string_view text, std::vector<Literal>& literals);

    /// Returns the cached statement for these pieces, and its literals; null if none is cached.
    SqliteStatement* ForPieces(std::span<const StatementPiece> pieces, std::vector<Literal>& literals) {
        return cache_.Find(pieces, literals);
    }

    /// Returns the compiled statement for a text of the database layer, which contains "?" itself.
    SqliteStatement& ForMarked(std::string_view text);

    /// Return how many statements are cached, and how many were compiled so far.
    std::size_t Count() const noexcept { return cache_.Count(); }
    std::size_t CompiledCount() const noexcept { return compiled_; }

private:
    /// Returns the compiled shape of a statement; nothing if the text must be compiled unchanged.
    std::optional<SqliteStatement> CompileShape(std::string_view text, std::vector<Literal>& literals);
    /// Returns the compiled text, or null if the engine rejects it and `orNothing` is true.
    sqlite3_stmt* Compile(std::string_view text, bool orNothing);

    sqlite3* database_;
    StatementCache<SqliteStatement> cache_;
    std::size_t compiled_ = 0;
};

}  // namespace ADODB

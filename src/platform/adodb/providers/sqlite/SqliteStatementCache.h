#pragma once

#include "platform/adodb/Rows.h"
#include "platform/adodb/providers/sqlite/SqliteShape.h"

#include <list>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace ADODB {

/// A compiled statement with the columns of its result.
class CompiledStatement {
public:
    CompiledStatement(sqlite3_stmt* compiled) : compiled_(compiled) {}
    CompiledStatement(CompiledStatement&& other) noexcept;
    CompiledStatement& operator=(CompiledStatement&&) = delete;
    ~CompiledStatement();

    sqlite3_stmt* Compiled() const noexcept { return compiled_; }

    /// The columns of its result; nothing where it yields no rows. Asked of the engine once.
    const std::shared_ptr<const Columns>& ResultColumns(sqlite3* database);

    /// Forgets the columns, after the engine compiled the statement anew for a changed table.
    void ForgetColumns() { columns_.reset(); }

    Shape shape;

private:
    sqlite3_stmt* compiled_;
    std::shared_ptr<const Columns> columns_;
};

/// The compiled statements of one session, kept by their shape; the least recently used goes first.
class StatementCache {
public:
    explicit StatementCache(sqlite3* database) : database_(database) {}

    /// The plan for a statement, kept or newly compiled, and its literals in the order of its "?".
    /// The plan is good until the next call. Raises what the engine says of the statement, and
    /// 0x80040E14 for a second statement behind the first.
    CompiledStatement& For(std::string_view statement, std::vector<Literal>& literals);

    /// The plan for a statement that the layer wrote, with its own "?".
    CompiledStatement& ForMarked(std::string_view statement);

    /// How many plans are kept, and how many statements were compiled so far.
    std::size_t Count() const noexcept { return cached_.size(); }
    std::size_t CompiledCount() const noexcept { return compiled_; }

private:
    using List = std::list<CompiledStatement>;
    static constexpr std::size_t MostKept = 256;
    static constexpr std::size_t LongestKept = 16384;  ///< a longer text hardly comes twice

    CompiledStatement* Find(std::string_view statement, std::vector<Literal>& literals);
    /// The plan of a statement's shape; nothing where the text is better compiled as it stands.
    std::optional<CompiledStatement> CompileShape(std::string_view statement, std::vector<Literal>& literals);
    CompiledStatement& Keep(CompiledStatement plan, std::string_view statement);
    CompiledStatement& Once(CompiledStatement plan);
    /// The compiled text, or nothing where the engine refuses it and `orNothing` asks for that.
    sqlite3_stmt* Compile(std::string_view text, bool orNothing);

    sqlite3* database_;
    List cached_;                                                          // the most recently used in front
    std::unordered_multimap<std::string_view, List::iterator> byStart_;  // views into the plans' own shapes
    std::optional<CompiledStatement> once_;
    std::size_t compiled_ = 0;
};

}  // namespace ADODB

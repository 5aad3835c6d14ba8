#pragma once

#include "platform/adodb/Rows.h"
#include "platform/adodb/providers/sqlite/SqliteShape.h"

#include <list>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace ADODB {

/// A compiled statement with the columns of its result.
class Plan {
public:
    Plan(sqlite3_stmt* compiled) : compiled_(compiled) {}
    Plan(Plan&& other) noexcept;
    Plan& operator=(Plan&&) = delete;
    ~Plan();

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
class Plans {
public:
    explicit Plans(sqlite3* database) : database_(database) {}

    /// The plan for a statement, kept or newly compiled, and its literals in the order of its "?".
    /// The plan is good until the next call. Raises what the engine says of the statement, and
    /// 0x80040E14 for a second statement behind the first.
    Plan& For(std::string_view statement, std::vector<Literal>& literals);

    /// The plan for a statement that the layer wrote, with its own "?".
    Plan& ForMarked(std::string_view statement);

    /// How many plans are kept, and how many statements were compiled so far.
    std::size_t Kept() const noexcept { return kept_.size(); }
    std::size_t CompiledCount() const noexcept { return compiled_; }

private:
    using List = std::list<Plan>;
    static constexpr std::size_t MostKept = 256;
    static constexpr std::size_t LongestKept = 16384;  ///< a longer text hardly comes twice

    Plan* Kept(std::string_view statement, std::vector<Literal>& literals);
    /// The plan of a statement's shape; nothing where the text is better compiled as it stands.
    std::optional<Plan> CompileShape(std::string_view statement, std::vector<Literal>& literals);
    Plan& Keep(Plan plan, std::string_view statement);
    Plan& Once(Plan plan);
    /// The compiled text, or nothing where the engine refuses it and `orNothing` asks for that.
    sqlite3_stmt* Compile(std::string_view text, bool orNothing);

    sqlite3* database_;
    List kept_;                                                          // the most recently used in front
    std::unordered_multimap<std::string_view, List::iterator> byStart_;  // views into the plans' own shapes
    std::optional<Plan> once_;
    std::size_t compiled_ = 0;
};

}  // namespace ADODB

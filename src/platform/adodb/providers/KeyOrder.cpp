#include "platform/adodb/providers/KeyOrder.h"

#include "platform/adodb/providers/Lexer.h"
#include "platform/runtime/Convert.h"

namespace ADODB {

using namespace Platform;

namespace {

/// The words that may follow the name of a table and are not its alias.
constexpr std::array<std::string_view, 20> BehindTable{
    "WHERE", "ON",    "LEFT",  "RIGHT",  "INNER", "OUTER",  "FULL",  "CROSS", "NATURAL", "JOIN",
    "ORDER", "GROUP", "USING", "HAVING", "LIMIT", "OFFSET", "UNION", "FETCH", "EXCEPT",  "INTERSECT"};
/// The words of a statement whose rows are not the rows of its tables.
constexpr std::array<std::string_view, 9> OtherRows{"DISTINCT",  "GROUP",  "HAVING", "UNION", "EXCEPT",
                                                    "INTERSECT", "WINDOW", "FOR",    "LOCK"};
constexpr std::array<std::string_view, 3> EndOfRows{"LIMIT", "OFFSET", "FETCH"};

/// Reads a SELECT and finds its tables and the conditions that admit one row.
class KeyOrderFinder {
public:
    explicit KeyOrderFinder(std::string_view statement) : text_(statement), at_(statement.size()) {}

    KeyOrder Found(const TableKeys& keys) {
        if (keys && Read()) List(keys);
        return {std::move(keys_), at_, sorted_};
    }

private:
    enum class Part : std::uint8_t { Start, List, Tables, Conditions };
    struct Table {
        String name;
        String alias;
    };
    /// A column of a condition, with the alias of its table if it has one. In small letters.
    struct Operand {
        String alias;
        String column;
        bool isLiteral = false;
    };

    /// A condition that compares two operands.
    struct Equal {
        Operand left, right;
        bool inWhere = false;  // behind WHERE, not behind ON
    };

    /// Reads the statement up to its end. Returns false if its rows are not those of its tables.
    bool Read() {
        for (std::size_t at = 0; at < text_.size();) {
            const Lexer::Token token = Lexer::TokenAt(text_, at);
            if (token.kind == Lexer::Kind::Unclear) return false;
            const std::string_view piece = text_.substr(at, token.end - at);
            if (depth_ == 0 && IsEnd(token.kind, piece, at)) break;
            if (token.kind != Lexer::Kind::Space && !Take(token.kind, piece)) return false;
            at = token.end;
        }
        EndTerm();
        return !tables_.empty() && (sorted_ || !limited_);
    }

    bool IsEnd(Lexer::Kind kind, std::string_view piece, std::size_t at) {
        limited_ = kind == Lexer::Kind::Word && part_ > Part::List && Lexer::Keyword(piece).IsOneOf(EndOfRows);
        if (!limited_ && piece != ";") return false;
        at_ = at;
        return true;
    }

    bool Take(Lexer::Kind kind, std::string_view piece) {
        const bool afterWord = std::exchange(afterWord_, kind == Lexer::Kind::Word);
        if (depth_ == 0 && kind != Lexer::Kind::Word) term_.push_back({kind, piece});
        if (kind == Lexer::Kind::Word) return TakeWord(piece);
        if (kind == Lexer::Kind::Open) {
            ++depth_;
            return part_ != Part::Start && !(part_ == Part::List && afterWord);  // a function may count the rows
        }
        if (kind == Lexer::Kind::Close && depth_ > 0) --depth_;
        if (part_ != Part::Tables) return true;
        if (piece == ",") expected_ = true;
        alias_ = false;
        return kind != Lexer::Kind::Quoted && !(piece == "." && std::exchange(named_, false));
    }

    bool TakeWord(std::string_view word) {
        const Lexer::Keyword upper(word);
        if (depth_ == 0) TakeTermWord(word, upper);
        if (part_ == Part::Start) {
            if (upper == "EXPLAIN") return true;  // shows the plan of the statement that follows
            part_ = Part::List;
            return upper == "SELECT";
        }
        if (depth_ == 0 && upper.IsOneOf(OtherRows)) return false;
        if (part_ == Part::List && depth_ == 0 && upper == "FROM") {
            part_ = Part::Tables;
            expected_ = true;
            return true;
        }
        if (depth_ == 0 && upper == "ORDER") sorted_ = true;
        if (part_ == Part::Tables) return TakeTableWord(word, upper);
        return true;
    }

    bool TakeTableWord(std::string_view word, const Lexer::Keyword& upper) {
        named_ = false;
        if (upper == "SELECT") return false;
        if (upper == "JOIN") {
            expected_ = true;
        } else if (expected_) {
            expected_ = false;
            tables_.push_back({LCase(word), String(word)});
            alias_ = named_ = true;
        } else if (alias_ && upper != "AS") {
            if (!upper.IsOneOf(BehindTable)) tables_.back().alias = word;
            alias_ = false;
        }
        if (depth_ == 0 && (upper == "WHERE" || upper == "ORDER")) part_ = Part::Conditions;
        return true;
    }

    /// Collects the tokens of a condition between WHERE, ON, AND and what follows them.
    void TakeTermWord(std::string_view word, const Lexer::Keyword& upper) {
        // Behind an outer join of that kind, each table may have the same row several times.
        if (upper == "OR" || upper == "NOT" || upper == "RIGHT" || upper == "FULL") alternatives_ = true;
        if (upper == "WHERE" || upper == "ON" || upper == "AND" || upper.IsOneOf(BehindTable)) return EndTerm();
        term_.push_back({Lexer::Kind::Word, word});
    }

    /// Keeps a condition that compares a column with a literal or with another column.
    void EndTerm() {
        const auto term = std::exchange(term_, {});
        const auto equals =
            std::find_if(term.begin(), term.end(), [](const auto& token) { return token.second == "="; });
        if (equals == term.end()) return;
        const auto operand = [](auto first, auto last) -> Operand {
            const auto size = last - first;
            if (size == 1 && first->first == Lexer::Kind::Word) return {{}, LCase(first->second), false};
            if (size == 1) return {{}, {}, first->first == Lexer::Kind::Number || first->first == Lexer::Kind::Text};
            if (size == 3 && first[1].second == ".") return {LCase(first->second), LCase(first[2].second), false};
            return {};
        };
        equal_.push_back({operand(term.begin(), equals), operand(equals + 1, term.end()), part_ == Part::Conditions});
    }

    /// Returns true if a condition admits one row of this table at most, for each row of the other tables.
    bool IsOneRow(const Table& table, const String& key) const {
        const auto isKey = [&](const Operand& operand) {
            const bool own = operand.alias == LCase(table.alias) || (operand.alias.empty() && tables_.size() == 1);
            return own && operand.column == key;
        };
        const auto isOther = [&](const Operand& operand) {
            return operand.isLiteral ||
                   (!operand.alias.empty() && operand.alias != LCase(table.alias) && &table != &tables_.front());
        };
        return !alternatives_ && std::any_of(equal_.begin(), equal_.end(), [&](const Equal& equal) {
            // ON conditions don't leave out rows of the first table of a LEFT JOIN.
            if (&table == &tables_.front() && !equal.inWhere) return false;
            return (isKey(equal.left) && isOther(equal.right)) || (isKey(equal.right) && isOther(equal.left));
        });
    }

    void List(const TableKeys& keys) {
        for (const Table& table : tables_) {
            const std::vector<String> columns = keys(table.name);
            if (columns.size() == 1 && IsOneRow(table, columns.front())) continue;
            for (const String& column : columns)
                keys_ += (keys_.empty() ? "" : ", ") + LCase(table.alias) + "." + column;
        }
    }

    std::string_view text_;
    std::size_t at_;
    std::size_t depth_ = 0;
    Part part_ = Part::Start;
    std::vector<Table> tables_;
    std::vector<std::pair<Lexer::Kind, std::string_view>> term_;  // the condition that is being read
    std::vector<Equal> equal_;
    bool alternatives_ = false;  // a condition may not hold for all rows
    bool sorted_ = false;
    bool limited_ = false;
    bool afterWord_ = false;
    bool expected_ = false;  // the name of a table
    bool named_ = false;     // the token before is the name of a table
    bool alias_ = false;     // the alias of a table may follow
    String keys_;
};

}  // namespace

KeyOrder KeyOrderOf(std::string_view statement, const TableKeys& keys) { return KeyOrderFinder(statement).Found(keys); }

}  // namespace ADODB

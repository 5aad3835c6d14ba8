#include "platform/adodb/providers/postgresql/PostgresDialect.h"

#include "platform/adodb/providers/EqualsChains.h"
#include "platform/adodb/providers/Lexer.h"
#include "platform/runtime/Convert.h"

namespace ADODB {

using namespace Platform;

namespace {

constexpr std::array<std::string_view, 9> EndOfOrder{"LIMIT",  "OFFSET",    "FETCH", "FOR",  "UNION",
                                                     "EXCEPT", "INTERSECT", "ROWS",  "RANGE"};

/// The words that may follow the name of a table and are not its alias.
constexpr std::array<std::string_view, 20> BehindTable{
    "WHERE", "ON",    "LEFT",  "RIGHT",  "INNER", "OUTER",  "FULL",  "CROSS", "NATURAL", "JOIN",
    "ORDER", "GROUP", "USING", "HAVING", "LIMIT", "OFFSET", "UNION", "FETCH", "EXCEPT",  "INTERSECT"};
/// The words of a statement whose rows are not the rows of its tables.
constexpr std::array<std::string_view, 8> OtherRows{"DISTINCT", "GROUP",     "HAVING", "UNION",
                                                    "EXCEPT",   "INTERSECT", "WINDOW", "FOR"};
constexpr std::array<std::string_view, 3> EndOfRows{"LIMIT", "OFFSET", "FETCH"};

/// Finds by which keys the rows of a SELECT are sorted if they are equal otherwise, and where the statement says so.
class KeyOrder {
public:
    KeyOrder(std::string_view statement, const TableKeys& keys) : text_(statement), at_(statement.size()) {
        if (Read()) List(keys);
    }

    /// Returns the keys, separated by commas; empty if the rows are left as they come.
    const String& Keys() const noexcept { return keys_; }
    /// Returns the position in the statement in front of which the keys belong.
    std::size_t Position() const noexcept { return at_; }
    /// Returns true if the statement itself has an ORDER BY there.
    bool IsSorted() const noexcept { return sorted_; }

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
            if (upper == "EXPLAIN" || upper == "ANALYZE") return true;  // of the statement that follows
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
        if (upper == "OR" || upper == "NOT") alternatives_ = true;
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
        equal_.emplace_back(operand(term.begin(), equals), operand(equals + 1, term.end()));
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
        return !alternatives_ && std::any_of(equal_.begin(), equal_.end(), [&](const auto& pair) {
            return (isKey(pair.first) && isOther(pair.second)) || (isKey(pair.second) && isOther(pair.first));
        });
    }

    void List(const TableKeys& keys) {
        for (const Table& table : tables_) {
            const std::vector<String> columns = keys(table.name);
            if (columns.size() == 1 && IsOneRow(table, columns.front())) continue;
            for (const String& column : columns) keys_ += (keys_.empty() ? "" : ", ") + table.alias + "." + column;
        }
    }

    std::string_view text_;
    std::size_t at_;
    std::size_t depth_ = 0;
    Part part_ = Part::Start;
    std::vector<Table> tables_;
    std::vector<std::pair<Lexer::Kind, std::string_view>> term_;  // the condition that is being read
    std::vector<std::pair<Operand, Operand>> equal_;
    bool alternatives_ = false;  // conditions are joined by OR, or negated
    bool sorted_ = false;
    bool limited_ = false;
    bool afterWord_ = false;
    bool expected_ = false;  // the name of a table
    bool named_ = false;     // the token before is the name of a table
    bool alias_ = false;     // the alias of a table may follow
    String keys_;
};

/// The words in front of a parenthesis that do not call a function with an effect.
constexpr std::array<std::string_view, 14> ReadOnlyBefore{"MAX", "MIN", "COUNT", "SUM", "AVG",  "WHERE", "AND",
                                                          "OR",  "ON",  "IN",    "NOT", "FROM", "JOIN",  "EXISTS"};

/// Copies a statement token by token and changes what the server can't parse.
class PostgresTranslation {
public:
    PostgresTranslation(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys)
        : text_(statement), literals_(literals), chains_(EqualsChainsIn(statement)), rows_(statement, keys) {
        out_.negative.resize(literals.size());
        out_.text.reserve(statement.size() + 8 * literals.size());
    }

    PostgresText Translated() {
        out_.readsOnly = Lexer::Keyword(text_.substr(0, 6)) == "SELECT";
        for (std::size_t at = 0; at < text_.size();) {
            if (at == rows_.Position()) SortByKeys();
            if (nextChain_ < chains_.size() && chains_[nextChain_].start == at) {
                at = TakeChain(chains_[nextChain_++]);
                continue;
            }
            const Lexer::Token token = Lexer::TokenAt(text_, at);
            if (token.kind == Lexer::Kind::Unclear) {
                out_.text += text_.substr(at);
                return std::move(out_);
            }
            Take(token, at);
            at = token.end;
        }
        EndOrder();
        if (rows_.Position() == text_.size()) SortByKeys();
        return std::move(out_);
    }

private:
    /// Sorts rows that are equal otherwise.
    void SortByKeys() {
        if (rows_.Keys().empty()) return;
        EndOrder();
        std::size_t end = out_.text.size();
        while (end > 0 && Lexer::IsSpace(out_.text[end - 1])) --end;
        out_.text.insert(end, (rows_.IsSorted() ? ", " : " ORDER BY ") + rows_.Keys());
    }

    /// An ORDER BY clause, up to the end of its parentheses.
    struct Order {
        std::size_t depth;
        bool descending = false;
        bool complete = false;  // the entry itself names the position of its nulls
    };

    void Take(const Lexer::Token& token, std::size_t at) {
        const std::string_view piece = text_.substr(at, token.end - at);
        switch (token.kind) {
            case Lexer::Kind::Word: return TakeWord(piece);
            case Lexer::Kind::Open:
                ++depth_;
                if (lastIsWord_ && !Lexer::Keyword(last_).IsOneOf(ReadOnlyBefore)) out_.readsOnly = false;
                break;
            case Lexer::Kind::Close:
                if (depth_ > 0) --depth_;
                if (!orders_.empty() && orders_.back().depth > depth_) EndOrder();
                break;
            case Lexer::Kind::Text:
            case Lexer::Kind::Number: return TakeLiteral(piece, at);
            case Lexer::Kind::Mark:
                if (piece == ";") EndOrder();
                if (piece == "," && InOrder()) EndEntry();
                if (piece == "*" && last_ == "DELETE") return;
                break;
            default: break;
        }
        if (token.kind != Lexer::Kind::Space) Remember({});
        out_.text += piece;
    }

    /// Writes a chain as a list and returns its end.
    std::size_t TakeChain(const EqualsChain& chain) {
        out_.text += text_.substr(chain.start, Lexer::TokenAt(text_, chain.start).end - chain.start);
        out_.text += " IN (";
        for (const std::size_t at : chain.values) {
            if (at != chain.values.front()) out_.text += ',';
            TakeLiteral(text_.substr(at, Lexer::TokenAt(text_, at).end - at), at);
        }
        out_.text += ')';
        return chain.end;
    }

    void TakeWord(std::string_view word) {
        const Lexer::Keyword upper(word);
        const bool pattern = upper == "LIKE";
        if (upper == "FOR" || upper == "INTO") out_.readsOnly = false;
        if (InOrder()) TakeOrderWord(upper);
        if (upper == "BY" && last_ == "ORDER") orders_.push_back({depth_});
        if (pattern) out_.text += 'I';
        out_.text += word;
        Remember(upper.Text());
        lastIsWord_ = true;
    }

    void TakeOrderWord(const Lexer::Keyword& upper) {
        if (upper == "DESC") orders_.back().descending = true;
        if (upper == "NULLS") orders_.back().complete = true;
        if (upper.IsOneOf(EndOfOrder)) EndOrder();
    }

    void TakeLiteral(std::string_view piece, std::size_t at) {
        const bool pattern = last_ == "LIKE";
        const std::size_t quote = text_[at] == '\'' ? 1 : 0;
        if (next_ < literals_.size() && literals_[next_].body.data() == text_.data() + at + quote)
            PutParameter(quote != 0);
        else
            out_.text += piece;
        if (pattern) out_.text += " ESCAPE ''";
        Remember({});
    }

    void PutParameter(bool isText) {
        if (!isText && out_.text.ends_with('-') && FollowsOperator(out_.text.size() - 1)) {
            out_.negative[next_] = true;
            out_.text.pop_back();
        }
        // Directly behind a word the mark would become a part of it.
        if (!out_.text.empty() && Lexer::IsWordCharacter(out_.text.back())) out_.text += ' ';
        out_.text += "$" + CStr(static_cast<Long>(++next_));
    }

    /// Returns true if what begins at this position of the output follows an operator, a comma or a parenthesis, so
    /// that a minus sign is not a subtraction.
    bool FollowsOperator(std::size_t at) const {
        while (at > 0 && Lexer::IsSpace(out_.text[at - 1])) --at;
        return at > 0 && std::string_view("=<>(,").find(out_.text[at - 1]) != std::string_view::npos;
    }

    bool InOrder() const { return !orders_.empty() && orders_.back().depth == depth_; }

    /// Adds where the nulls of an entry are sorted, in front of the blanks at its end.
    void EndEntry() {
        Order& order = orders_.back();
        if (!order.complete) {
            std::size_t end = out_.text.size();
            while (end > 0 && Lexer::IsSpace(out_.text[end - 1])) --end;
            out_.text.insert(end, order.descending ? " NULLS LAST" : " NULLS FIRST");
        }
        order = {order.depth};
    }

    void EndOrder() {
        if (orders_.empty()) return;
        EndEntry();
        orders_.pop_back();
    }

    void Remember(std::string_view word) {
        last_ = word;
        lastIsWord_ = false;
    }

    std::string_view text_;
    const std::vector<Literal>& literals_;
    std::vector<EqualsChain> chains_;
    std::size_t nextChain_ = 0;
    KeyOrder rows_;
    PostgresText out_;
    std::size_t next_ = 0;  // the literal that is expected
    std::size_t depth_ = 0;
    std::vector<Order> orders_;
    String last_;  // the word before, in upper case; empty behind another token and behind a long word
    bool lastIsWord_ = false;
};

}  // namespace

PostgresText ForPostgres(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys) {
    const std::size_t end = statement.find_last_not_of(" ;\t\r\n\v\f");
    if (EqualsIgnoringCase(Trim(statement.substr(0, end + 1)), "SELECT @@IDENTITY"))
        return {"SELECT lastval()", {}, true};
    return PostgresTranslation(statement, literals, keys).Translated();
}

}  // namespace ADODB

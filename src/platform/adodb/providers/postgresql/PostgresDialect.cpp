#include "platform/adodb/providers/postgresql/PostgresDialect.h"

#include "platform/adodb/providers/Translation.h"
#include "platform/runtime/Convert.h"

namespace ADODB {

using namespace Platform;

namespace {

constexpr std::array<std::string_view, 9> EndOfOrder{"LIMIT",  "OFFSET",    "FETCH", "FOR",  "UNION",
                                                     "EXCEPT", "INTERSECT", "ROWS",  "RANGE"};

/// The words in front of a parenthesis that do not call a function with an effect.
constexpr std::array<std::string_view, 14> ReadOnlyBefore{"MAX", "MIN", "COUNT", "SUM", "AVG",  "WHERE", "AND",
                                                          "OR",  "ON",  "IN",    "NOT", "FROM", "JOIN",  "EXISTS"};

class PostgresTranslation final : Translation {
public:
    PostgresTranslation(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys)
        : Translation(statement, literals, keys) {
        result_.negative.resize(literals.size());
    }

    PostgresText Translated() {
        result_.readsOnly = Lexer::Keyword(text_.substr(0, 6)) == "SELECT";
        Copy();
        result_.text = std::move(out_);
        return std::move(result_);
    }

private:
    /// An ORDER BY clause, up to the end of its parentheses.
    struct Order {
        std::size_t depth;
        bool descending = false;
        bool complete = false;  // the entry itself names the position of its nulls
    };

    std::size_t Take(const Lexer::Token& token, std::size_t at) override {
        TakePiece(token.kind, text_.substr(at, token.end - at), at);
        return token.end;
    }

    std::size_t TakeUnclear(std::size_t at) override {
        out_ += text_.substr(at);
        orders_.clear();
        return text_.size();
    }

    void TakePiece(Lexer::Kind kind, std::string_view piece, std::size_t at) {
        switch (kind) {
            case Lexer::Kind::Word: return TakeWord(piece);
            case Lexer::Kind::Open:
                ++depth_;
                if (lastIsWord_ && !Lexer::Keyword(last_).IsOneOf(ReadOnlyBefore)) result_.readsOnly = false;
                break;
            case Lexer::Kind::Close:
                if (depth_ > 0) --depth_;
                if (!orders_.empty() && orders_.back().depth > depth_) EndClause();
                break;
            case Lexer::Kind::Text:
            case Lexer::Kind::Number: return TakeLiteral(piece, at);
            case Lexer::Kind::Mark:
                if (piece == ";") EndClause();
                if (piece == "," && InOrder()) EndEntry();
                if (piece == "*" && last_ == "DELETE") return;
                break;
            default: break;
        }
        if (kind != Lexer::Kind::Space) Remember({});
        out_ += piece;
    }

    void TakeWord(std::string_view word) {
        const Lexer::Keyword upper(word);
        const bool pattern = upper == "LIKE";
        if (upper == "FOR" || upper == "INTO") result_.readsOnly = false;
        if (InOrder()) TakeOrderWord(upper);
        if (upper == "BY" && last_ == "ORDER") orders_.push_back({depth_});
        if (pattern) out_ += 'I';
        out_ += word;
        Remember(upper.Text());
        lastIsWord_ = true;
    }

    void TakeOrderWord(const Lexer::Keyword& upper) {
        if (upper == "DESC") orders_.back().descending = true;
        if (upper == "NULLS") orders_.back().complete = true;
        if (upper.IsOneOf(EndOfOrder)) EndClause();
    }

    void TakeLiteral(std::string_view piece, std::size_t at) override {
        const bool pattern = last_ == "LIKE";
        if (IsLifted(at))
            PutParameter(text_[at] == '\'');
        else
            out_ += piece;
        if (pattern) out_ += " ESCAPE ''";
        Remember({});
    }

    void PutParameter(bool isText) {
        if (!isText && out_.ends_with('-') && FollowsOperator(out_.size() - 1)) {
            result_.negative[next_] = true;
            out_.pop_back();
        }
        // Directly behind a word the mark would become a part of it.
        if (!out_.empty() && Lexer::IsWordCharacter(out_.back())) out_ += ' ';
        out_ += "$" + CStr(static_cast<Long>(++next_));
    }

    /// Returns true if what begins at this position of the output follows an operator, a comma or a parenthesis, so
    /// that a minus sign is not a subtraction.
    bool FollowsOperator(std::size_t at) const {
        while (at > 0 && Lexer::IsSpace(out_[at - 1])) --at;
        return at > 0 && std::string_view("=<>(,").find(out_[at - 1]) != std::string_view::npos;
    }

    bool InOrder() const { return !orders_.empty() && orders_.back().depth == depth_; }

    /// Adds where the nulls of an entry are sorted, in front of the blanks at its end.
    void EndEntry() {
        Order& order = orders_.back();
        if (!order.complete) {
            out_.insert(EndOfOutput(), order.descending ? " NULLS LAST" : " NULLS FIRST");
        }
        order = {order.depth};
    }

    void EndClause() override {
        if (orders_.empty()) return;
        EndEntry();
        orders_.pop_back();
    }

    void Remember(std::string_view word) {
        last_ = word;
        lastIsWord_ = false;
    }

    PostgresText result_;
    std::size_t depth_ = 0;
    std::vector<Order> orders_;
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

#include "platform/adodb/providers/Shape.h"

#include "platform/adodb/providers/Lexer.h"

#include <algorithm>
#include <charconv>

namespace ADODB {

namespace {

using Lexer::IsDigit;
using Lexer::IsWordCharacter;
using Lexer::Kind;
using Lexer::Token;

constexpr std::array<std::string_view, 5> ValuesFollow{"WHERE", "ON", "HAVING", "SET", "VALUES"};
constexpr std::array<std::string_view, 14> NoValuesFollow{"SELECT", "FROM",   "JOIN",  "GROUP",     "ORDER",
                                                          "LIMIT",  "OFFSET", "UNION", "INTERSECT", "EXCEPT",
                                                          "INTO",   "WINDOW", "AS",    "RETURNING"};
constexpr std::array<std::string_view, 5> Verbs{"SELECT", "INSERT", "UPDATE", "DELETE", "REPLACE"};

/// Finds the number with a point or an exponent that begins at `at`; returns its end, or 0.
std::size_t RealAt(std::string_view text, std::size_t at, Literal& literal) {
    double value = 0;
    const auto [end, failure] = std::from_chars(text.data() + at, text.data() + text.size(), value);
    const auto size = static_cast<std::size_t>(end - text.data());
    if (failure != std::errc() || (size < text.size() && IsWordCharacter(text[size]))) return 0;
    literal = {.body = text.substr(at, size - at), .isReal = true};
    return size;
}

/// Finds the literal that begins at `at` and may become a parameter; returns its end, or 0.
std::size_t LiteralAt(std::string_view text, std::size_t at, Literal& literal, bool reals) {
    if (at >= text.size()) return 0;
    if (text[at] == '\'') {
        const std::size_t end = Lexer::EndOfQuoted(text, at);
        if (end == std::string_view::npos) return 0;
        literal = {true, text.substr(at + 1, end - at - 2)};
        return end;
    }
    // After a word, digits would belong to it; a quoted text may follow it.
    if (at > 0 && (IsWordCharacter(text[at - 1]) || text[at - 1] == '.')) return 0;
    constexpr std::size_t mostDigits = 18;  // what 64 bits hold whatever the digits are
    std::size_t end = at;
    while (end < text.size() && IsDigit(text[end])) ++end;
    const bool goesOn = end < text.size() && (text[end] == '.' || IsWordCharacter(text[end]));
    if (goesOn && reals) return RealAt(text, at, literal);
    if (end == at || end - at > mostDigits || goesOn) return 0;
    literal = {false, text.substr(at, end - at)};
    std::from_chars(text.data() + at, text.data() + end, literal.number);
    return end;
}

/// Reads a statement and records the positions of its literals.
class Cutter {
public:
    Cutter(std::string_view statement, Shape& shape, std::vector<Literal>& literals)
        : text_(statement), shape_(shape), literals_(literals) {}

    bool Cut() {
        for (std::size_t at = 0; at < text_.size();) {
            const Token token = Lexer::TokenAt(text_, at);
            if (token.kind == Kind::Unclear) return false;
            if (!Take(token, at)) return false;
            at = token.end;
        }
        shape_.pieces.emplace_back(text_.substr(pieceStart_));
        return begun_;
    }

private:
    bool Take(const Token& token, std::size_t at) {
        switch (token.kind) {
            case Kind::Word: return TakeWord(text_.substr(at, token.end - at));
            case Kind::Open: outer_.push_back(lifting_); return begun_;
            case Kind::Close:
                if (outer_.empty()) return false;
                lifting_ = outer_.back();
                outer_.pop_back();
                return true;
            case Kind::Text:
            case Kind::Number: TakeLiteral(at); return begun_;
            default: return true;
        }
    }

    bool TakeWord(std::string_view word) {
        const Lexer::Keyword upper(word);
        if (!begun_) return begun_ = upper.IsOneOf(Verbs);
        if (upper.IsOneOf(ValuesFollow)) lifting_ = true;
        if (upper.IsOneOf(NoValuesFollow)) lifting_ = false;
        return true;
    }

    void TakeLiteral(std::size_t at) {
        Literal literal;
        const std::size_t end = lifting_ ? LiteralAt(text_, at, literal, shape_.reals) : 0;
        if (end == 0) return;
        shape_.pieces.emplace_back(text_.substr(pieceStart_, at - pieceStart_));
        literals_.push_back(literal);
        pieceStart_ = end;
    }

    std::string_view text_;
    Shape& shape_;
    std::vector<Literal>& literals_;
    std::size_t pieceStart_ = 0;
    bool begun_ = false;
    bool lifting_ = false;
    std::vector<bool> outer_;
};

}  // namespace

std::string Shape::Text() const {
    std::string text = pieces.front();
    for (std::size_t i = 1; i < pieces.size(); ++i) text += "?" + pieces[i];
    return text;
}

bool Shape::Matches(std::string_view statement, std::vector<Literal>& literals) const {
    literals.clear();
    std::size_t at = 0;
    for (std::size_t i = 0;; ++i) {
        const std::string& piece = pieces[i];
        if (statement.compare(at, piece.size(), piece) != 0) return false;
        at += piece.size();
        if (i + 1 == pieces.size()) return at == statement.size();
        Literal literal;
        at = LiteralAt(statement, at, literal, reals);
        if (at == 0) return false;
        literals.push_back(literal);
    }
}

bool CutAtLiterals(std::string_view statement, Shape& shape, std::vector<Literal>& literals) {
    shape.pieces.clear();
    literals.clear();
    return Cutter(statement, shape, literals).Cut();
}

bool HasBlank(const std::vector<Literal>& literals) {
    return std::any_of(literals.begin(), literals.end(),
                       [](const Literal& literal) { return literal.isText && literal.body.empty(); });
}

std::string Unquoted(std::string_view body) {
    std::string out;
    out.reserve(body.size());
    for (std::size_t at = 0; at < body.size(); ++at) {
        out += body[at];
        if (body[at] == '\'') ++at;
    }
    return out;
}

}  // namespace ADODB

#include "platform/adodb/providers/sqlite/SqliteShape.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace ADODB {

namespace {

enum class Kind { Space, Word, Number, Text, Quoted, Open, Close, Mark, Unclear };

struct Token {
    Kind kind;
    std::size_t end;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsWordCharacter(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Returns the end of the quoted text that begins at `at`, behind its closing quote; npos if it has none.
std::size_t EndOfQuoted(std::string_view text, std::size_t at) {
    const char quote = text[at] == '[' ? ']' : text[at];
    for (++at; at < text.size(); ++at) {
        if (text[at] != quote) continue;
        if (quote == ']' || at + 1 >= text.size() || text[at + 1] != quote) return at + 1;
        ++at;
    }
    return std::string_view::npos;
}

Token QuotedToken(std::string_view text, std::size_t at, Kind kind) {
    const std::size_t end = EndOfQuoted(text, at);
    if (end == std::string_view::npos) return {Kind::Unclear, text.size()};
    return {kind, end};
}

Token WordToken(std::string_view text, std::size_t at, Kind kind) {
    std::size_t end = at;
    const auto goesOn = [&] {
        if (IsWordCharacter(text[end])) return true;
        if (kind != Kind::Number) return false;
        return text[end] == '.' || ((text[end] == '+' || text[end] == '-') && (text[end - 1] | 0x20) == 'e' &&
                                    !std::strchr("xX", text[at + 1]));
    };
    while (end < text.size() && goesOn()) ++end;
    const bool blob = kind == Kind::Word && end == at + 1 && (text[at] | 0x20) == 'x';
    if (blob && end < text.size() && text[end] == '\'') return QuotedToken(text, end, Kind::Quoted);
    return {kind, end};
}

Token TokenAt(std::string_view text, std::size_t at) {
    const char c = text[at];
    const char next = at + 1 < text.size() ? text[at + 1] : ' ';
    if (IsDigit(c) || (c == '.' && IsDigit(next))) return WordToken(text, at, Kind::Number);
    if (IsWordCharacter(c) && c != '$') return WordToken(text, at, Kind::Word);
    switch (c) {
        case '\'': return QuotedToken(text, at, Kind::Text);
        case '"':
        case '`':
        case '[': return QuotedToken(text, at, Kind::Quoted);
        case '(': return {Kind::Open, at + 1};
        case ')': return {Kind::Close, at + 1};
        case '-':
            if (next == '-') return {Kind::Unclear, text.size()};
            return {Kind::Mark, at + 1};
        case '/':
            if (next == '*') return {Kind::Unclear, text.size()};
            return {Kind::Mark, at + 1};
        case '?':
        case ':':
        case '@':
        case '$':
        case '\0': return {Kind::Unclear, text.size()};
        default: return {IsSpace(c) ? Kind::Space : Kind::Mark, at + 1};
    }
}

constexpr std::size_t LongestWord = 10;

/// Returns a short word in upper case, or an empty text for a word that is too long for a keyword.
std::string_view Upper(std::string_view word, std::array<char, LongestWord>& buffer) {
    if (word.size() > LongestWord) return {};
    std::transform(word.begin(), word.end(), buffer.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return {buffer.data(), word.size()};
}

template <std::size_t N>
bool IsOneOf(std::string_view word, const std::array<std::string_view, N>& words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

constexpr std::array<std::string_view, 5> ValuesFollow{"WHERE", "ON", "HAVING", "SET", "VALUES"};
constexpr std::array<std::string_view, 14> NoValuesFollow{"SELECT", "FROM",   "JOIN",  "GROUP",     "ORDER",
                                                          "LIMIT",  "OFFSET", "UNION", "INTERSECT", "EXCEPT",
                                                          "INTO",   "WINDOW", "AS",    "RETURNING"};
constexpr std::array<std::string_view, 5> Verbs{"SELECT", "INSERT", "UPDATE", "DELETE", "REPLACE"};

/// Finds the literal that begins at `at` and may become a parameter; returns its end, or 0.
std::size_t LiteralAt(std::string_view text, std::size_t at, Literal& literal) {
    if (at >= text.size()) return 0;
    if (text[at] == '\'') {
        const std::size_t end = EndOfQuoted(text, at);
        if (end == std::string_view::npos) return 0;
        literal = {true, text.substr(at + 1, end - at - 2)};
        return end;
    }
    // After a word, digits would belong to it; a quoted text may follow it.
    if (at > 0 && (IsWordCharacter(text[at - 1]) || text[at - 1] == '.')) return 0;
    constexpr std::size_t mostDigits = 18;  // what 64 bits hold whatever the digits are
    std::size_t end = at;
    while (end < text.size() && IsDigit(text[end])) ++end;
    if (end == at || end - at > mostDigits) return 0;
    if (end < text.size() && (text[end] == '.' || IsWordCharacter(text[end]))) return 0;
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
            const Token token = TokenAt(text_, at);
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
        std::array<char, LongestWord> buffer;
        const std::string_view upper = Upper(word, buffer);
        if (!begun_) return begun_ = IsOneOf(upper, Verbs);
        if (IsOneOf(upper, ValuesFollow)) lifting_ = true;
        if (IsOneOf(upper, NoValuesFollow)) lifting_ = false;
        return true;
    }

    void TakeLiteral(std::size_t at) {
        Literal literal;
        const std::size_t end = lifting_ ? LiteralAt(text_, at, literal) : 0;
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

/// Finds the chains of OR terms of a statement and regroups the long ones.
class Balancer {
public:
    Balancer(std::string_view statement, std::size_t longChain) : text_(statement), longChain_(longChain) {}

    std::string Balanced() {
        regions_.push_back({});
        for (std::size_t at = 0; at < text_.size();) {
            const Token token = TokenAt(text_, at);
            if (token.kind == Kind::Unclear) return std::string(text_);
            Take(token, at);
            at = token.end;
        }
        while (!regions_.empty()) CloseRegion(text_.size());
        return Inserted();
    }

private:
    /// A part of the text that may be one chain: the text in parentheses, or after WHERE.
    struct Region {
        bool chain = false;
        std::size_t start = 0;
        std::vector<std::size_t> ors;
        int cases = 0;
    };

    void Take(const Token& token, std::size_t at) {
        Region& region = regions_.back();
        if (token.kind == Kind::Word) return TakeWord(text_.substr(at, token.end - at), at, token.end);
        if (token.kind == Kind::Open) return regions_.push_back({true, token.end, {}, 0});
        if (token.kind == Kind::Close && regions_.size() > 1) return CloseRegion(at);
        if (token.kind == Kind::Mark && (text_[at] == ',' || text_[at] == ';')) EndChain(region, at);
    }

    void TakeWord(std::string_view word, std::size_t at, std::size_t end) {
        std::array<char, LongestWord> buffer;
        const std::string_view upper = Upper(word, buffer);
        Region& region = regions_.back();
        if (upper == "CASE") ++region.cases;
        if (upper == "END") --region.cases;
        if (upper == "OR" && region.cases == 0) return region.ors.push_back(at);
        if (upper == "WHERE" || upper == "HAVING" || upper == "ON") {
            EndChain(region, at);
            region = {true, end, {}, 0};
        } else if (IsOneOf(upper, NoValuesFollow) || upper == "SET" || upper == "VALUES") {
            EndChain(region, at);
        }
    }

    void EndChain(Region& region, std::size_t at) {
        if (region.chain && region.ors.size() >= longChain_) Group(region, at);
        region.chain = false;
        region.ors.clear();
    }

    void CloseRegion(std::size_t at) {
        EndChain(regions_.back(), at);
        regions_.pop_back();
    }

    void Group(const Region& region, std::size_t end) {
        std::vector<std::size_t> starts{region.start}, ends;
        for (const std::size_t at : region.ors) {
            ends.push_back(at);
            starts.push_back(at + 2);
        }
        ends.push_back(end);
        Halve(starts, ends, 0, starts.size());
    }

    void Halve(const std::vector<std::size_t>& starts, const std::vector<std::size_t>& ends, std::size_t first,
               std::size_t last) {
        if (last - first < 2) return;
        insertions_.push_back({starts[first], 1, "("});
        insertions_.push_back({ends[last - 1], 0, ")"});
        const std::size_t middle = first + (last - first) / 2;
        Halve(starts, ends, first, middle);
        Halve(starts, ends, middle, last);
    }

    struct Insertion {
        std::size_t at;
        int order;  // closing ones first
        const char* mark;
    };

    std::string Inserted() {
        std::stable_sort(insertions_.begin(), insertions_.end(), [](const Insertion& a, const Insertion& b) {
            return a.at != b.at ? a.at < b.at : a.order < b.order;
        });
        std::string out;
        std::size_t from = 0;
        for (const Insertion& insertion : insertions_) {
            out.append(text_.substr(from, insertion.at - from));
            out += insertion.mark;
            from = insertion.at;
        }
        out.append(text_.substr(from));
        return out;
    }

    std::string_view text_;
    std::size_t longChain_;
    std::vector<Region> regions_;
    std::vector<Insertion> insertions_;
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
        at = LiteralAt(statement, at, literal);
        if (at == 0) return false;
        literals.push_back(literal);
    }
}

bool CutAtLiterals(std::string_view statement, Shape& shape, std::vector<Literal>& literals) {
    shape.pieces.clear();
    literals.clear();
    return Cutter(statement, shape, literals).Cut();
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

std::string WithBalancedOrChains(std::string_view statement, std::size_t longChain) {
    return Balancer(statement, longChain).Balanced();
}

}  // namespace ADODB

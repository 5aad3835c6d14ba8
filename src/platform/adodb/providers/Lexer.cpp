#include "platform/adodb/providers/Lexer.h"

#include <cstring>

namespace ADODB::Lexer {

namespace {

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

}  // namespace

std::size_t EndOfQuoted(std::string_view text, std::size_t at) {
    const char quote = text[at] == '[' ? ']' : text[at];
    for (++at; at < text.size(); ++at) {
        if (text[at] != quote) continue;
        if (quote == ']' || at + 1 >= text.size() || text[at + 1] != quote) return at + 1;
        ++at;
    }
    return std::string_view::npos;
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

}  // namespace ADODB::Lexer

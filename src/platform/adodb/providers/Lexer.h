#pragma once

#include <algorithm>
#include <array>
#include <string_view>

/// The tokens of a statement, as far as its literals and keywords must be found. Every function may be called by any
/// thread and raises nothing.
namespace ADODB::Lexer {

enum class Kind : unsigned char {
    Space,
    Word,     ///< a keyword or a name
    Number,   ///< with its sign of the exponent, without a sign in front
    Text,     ///< a literal in single quotes
    Quoted,   ///< a name in double quotes, backquotes or brackets, or a binary literal
    Open,     ///< "("
    Close,    ///< ")"
    Mark,     ///< one character of an operator or a separator
    Unclear,  ///< a comment, a parameter, or a literal without its closing quote: the rest of the text is not read
};

struct Token {
    Kind kind;
    std::size_t end;  ///< the position behind the token
};

/// Returns the token that begins at a position, which is less than the size of the text.
Token TokenAt(std::string_view text, std::size_t at);

/// Returns the end of the quoted text that begins at `at`, behind its closing quote; npos if it has none.
std::size_t EndOfQuoted(std::string_view text, std::size_t at);

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
inline bool IsWordCharacter(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// A short word in upper case.
class Keyword {
public:
    explicit Keyword(std::string_view word) {
        if (word.size() > upper_.size()) return;
        size_ = word.size();
        std::transform(word.begin(), word.end(), upper_.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    }

    /// Returns the word, or an empty text for a word that is too long for a keyword. Valid as long as this object.
    std::string_view Text() const noexcept { return {upper_.data(), size_}; }

    bool operator==(std::string_view word) const noexcept { return Text() == word; }

    template <std::size_t N>
    bool IsOneOf(const std::array<std::string_view, N>& words) const {
        return std::find(words.begin(), words.end(), Text()) != words.end();
    }

private:
    std::array<char, 10> upper_{};
    std::size_t size_ = 0;
};

}  // namespace ADODB::Lexer

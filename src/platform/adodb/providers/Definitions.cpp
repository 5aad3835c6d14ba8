#include "platform/adodb/providers/Definitions.h"

#include "platform/adodb/providers/Lexer.h"

namespace ADODB {

namespace {

/// Returns the position behind the comment that begins at `at`; `at` if none does.
std::size_t EndOfComment(std::string_view text, std::size_t at) {
    const std::string_view start = text.substr(at, 2);
    if (start != "--" && start != "/*") return at;
    const std::size_t end = start == "--" ? text.find('\n', at) : text.find("*/", at + 2);
    return end == std::string_view::npos ? text.size() : end + (start == "--" ? 1 : 2);
}

/// Returns the position of the first character that is neither a blank nor a part of a comment.
std::size_t StartOf(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t next = Lexer::IsSpace(text[at]) ? at + 1 : EndOfComment(text, at);
        if (next == at) break;
        at = next;
    }
    return at;
}

}  // namespace

bool ChangesDefinitions(std::string_view statement) {
    const std::size_t start = StartOf(statement);
    if (start >= statement.size()) return false;
    constexpr std::array<std::string_view, 6> verbs{"CREATE", "ALTER", "DROP", "RENAME", "TRUNCATE", "DO"};
    const std::size_t end = Lexer::TokenAt(statement, start).end;
    return Lexer::Keyword(statement.substr(start, end - start)).IsOneOf(verbs);
}

}  // namespace ADODB

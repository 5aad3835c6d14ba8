#include "frame/Statement.h"

#include <algorithm>

namespace OXClass {

using namespace Platform;

namespace {

/// Returns true if a text between single quotes can't end its literal: each run of quotes has an even length.
bool StaysInLiteral(std::string_view text) {
    for (std::size_t at = text.find('\''); at < text.size(); at = text.find('\'', at)) {
        const std::size_t start = at;
        while (at < text.size() && text[at] == '\'') ++at;
        if ((at - start) % 2 != 0) return false;
    }
    return true;
}

bool IsWholeNumber(std::string_view text) {
    const String trimmed = Trim(text);
    std::string_view digits = trimmed;
    if (digits.starts_with('-') || digits.starts_with('+')) digits.remove_prefix(1);
    return !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

bool detail::StatementText::InsideQuotes() {
    const auto quotes = std::count(text_.begin() + static_cast<std::ptrdiff_t>(counted_), text_.end(), '\'');
    inside_ ^= quotes % 2 != 0;
    counted_ = text_.size();
    return inside_;
}

void detail::StatementText::Add(const Verbatim& spliced) {
    const bool quoted = InsideQuotes();
    if (quoted ? !StaysInLiteral(spliced.text) : !IsWholeNumber(spliced.text))
        ADODB::RaiseAdo(
            ADODB::ErrorsInCommand, ADODB::ConnectionSource,
            quoted ? "Syntax error in string: the statement contains a text with an unpaired single quote: \"" + text_ +
                         "\"."
                   : "Syntax error: \"" + String(spliced.text) + "\" is not a number, in \"" + text_ + "\".");
    text_ += spliced.text;
}

}  // namespace OXClass

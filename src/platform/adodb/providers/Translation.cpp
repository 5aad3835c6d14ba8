#include "platform/adodb/providers/Translation.h"

namespace ADODB {

Translation::Translation(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys)
    : text_(statement), literals_(literals), chains_(EqualsChainsIn(statement)), rows_(KeyOrderOf(statement, keys)) {
    out_.reserve(statement.size() + 8 * literals.size());
}

void Translation::Copy() {
    for (std::size_t at = 0; at < text_.size();) {
        if (at == rows_.position) SortByKeys();
        if (nextChain_ < chains_.size() && chains_[nextChain_].start == at) {
            at = TakeChain(chains_[nextChain_++]);
            continue;
        }
        const Lexer::Token token = Lexer::TokenAt(text_, at);
        at = token.kind == Lexer::Kind::Unclear ? TakeUnclear(at) : Take(token, at);
    }
    EndClause();
    if (rows_.position == text_.size()) SortByKeys();
}

std::size_t Translation::TakeChain(const EqualsChain& chain) {
    out_ += text_.substr(chain.start, Lexer::TokenAt(text_, chain.start).end - chain.start);
    out_ += " IN (";
    for (const std::size_t at : chain.values) {
        if (at != chain.values.front()) out_ += ',';
        TakeLiteral(text_.substr(at, Lexer::TokenAt(text_, at).end - at), at);
    }
    out_ += ')';
    last_.clear();
    return chain.end;
}

void Translation::SortByKeys() {
    if (rows_.keys.empty()) return;
    EndClause();
    out_.insert(EndOfOutput(), (rows_.sorted ? ", " : " ORDER BY ") + rows_.keys);
}

bool Translation::IsLifted(std::size_t at) const {
    const std::size_t quote = text_[at] == '\'' ? 1 : 0;
    return next_ < literals_.size() && literals_[next_].body.data() == text_.data() + at + quote;
}

std::size_t Translation::EndOfOutput() const {
    std::size_t end = out_.size();
    while (end > 0 && Lexer::IsSpace(out_[end - 1])) --end;
    return end;
}

}  // namespace ADODB

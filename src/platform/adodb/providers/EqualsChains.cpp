#include "platform/adodb/providers/EqualsChains.h"

#include "platform/adodb/providers/Lexer.h"

#include <algorithm>

namespace ADODB {

namespace {

/// Finds the chains of a statement.
class ChainFinder {
public:
    explicit ChainFinder(std::string_view statement) : text_(statement) {
        for (std::size_t at = 0; at < text_.size();) {
            const Lexer::Token token = Lexer::TokenAt(text_, at);
            if (token.kind == Lexer::Kind::Unclear) break;
            if (token.kind != Lexer::Kind::Space) tokens_.push_back({at, token});
            at = token.end;
        }
    }

    std::vector<EqualsChain> Chains() const {
        std::vector<EqualsChain> chains;
        for (std::size_t i = 0; i < tokens_.size();) {
            EqualsChain chain{tokens_[i].at, 0, {}};
            std::size_t next = i;
            while (IsTerm(next) && TextAt(next) == TextAt(i)) {
                chain.values.push_back(tokens_[next + 2].at);
                chain.end = tokens_[next + 2].token.end;
                next += 4;  // the name, "=", the literal and OR
            }
            if (chain.values.size() > 1) chains.push_back(std::move(chain));
            i = std::max(next, i + 1);
        }
        return chains;
    }

private:
    struct Placed {
        std::size_t at;
        Lexer::Token token;
    };

    std::string_view TextAt(std::size_t i) const {
        return i < tokens_.size() ? text_.substr(tokens_[i].at, tokens_[i].token.end - tokens_[i].at)
                                  : std::string_view();
    }

    /// Returns true for "name = literal" between ORs or at the end of what ORs may join.
    bool IsTerm(std::size_t i) const {
        if (i == 0 || i + 2 >= tokens_.size() || tokens_[i].token.kind != Lexer::Kind::Word) return false;
        const Lexer::Kind value = tokens_[i + 2].token.kind;
        if (TextAt(i + 1) != "=" || (value != Lexer::Kind::Text && value != Lexer::Kind::Number)) return false;
        constexpr std::array<std::string_view, 5> before{"WHERE", "ON", "HAVING", "OR", "("};
        constexpr std::array<std::string_view, 7> behind{"OR", ")", ";", "ORDER", "GROUP", "LIMIT", ""};
        return Lexer::Keyword(TextAt(i - 1)).IsOneOf(before) && Lexer::Keyword(TextAt(i + 3)).IsOneOf(behind);
    }

    std::string_view text_;
    std::vector<Placed> tokens_;  // without blanks
};

}  // namespace

std::vector<EqualsChain> EqualsChainsIn(std::string_view statement) { return ChainFinder(statement).Chains(); }

}  // namespace ADODB

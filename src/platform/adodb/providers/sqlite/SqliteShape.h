#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The shape of a statement: its text without the literals, so that one compiled statement serves all
/// statements that differ in their values only.
///
/// A literal is lifted only where a bound value means the same: in conditions, in lists of values and
/// behind SET. In a select list it names a column, behind ORDER BY it is a position, in a type it is a
/// width: there it stays. Floats stay too, because the engine reads their digits by its own arithmetic.
namespace ADODB {

/// A literal in a statement's text.
struct Literal {
    bool isText = false;
    std::string_view body;    ///< the digits, or the text between the quotes, with doubled quotes
    std::int64_t number = 0;  ///< of the digits
};

/// A statement cut at its literals: piece, literal, piece, ... piece.
struct Shape {
    std::vector<std::string> pieces;  ///< one more than there are literals

    /// Returns the text to compile, with "?" for each literal.
    std::string Text() const;

    /// Returns true if `statement` has this shape; `literals` then has its literals, which point into it.
    bool Matches(std::string_view statement, std::vector<Literal>& literals) const;
};

/// Cuts a statement at the literals that a parameter may replace. Returns false for a text that must be compiled
/// unchanged: another statement than select, insert, update or delete, or a text with a comment, a parameter of its
/// own or an unterminated literal.
bool CutAtLiterals(std::string_view statement, Shape& shape, std::vector<Literal>& literals);

/// Returns the value of a text literal: its body with each doubled quote replaced by one.
std::string Unquoted(std::string_view body);

/// Returns the statement with each chain of at least `longChain` ORs put into parentheses as a balanced tree, which has
/// the same result and stays below the engine's limit for the depth of an expression. Returns a text without such a
/// chain unchanged.
std::string WithBalancedOrChains(std::string_view statement, std::size_t longChain = 200);

}  // namespace ADODB

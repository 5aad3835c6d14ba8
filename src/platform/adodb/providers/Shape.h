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
/// width: there it stays. Floats stay too if the engine converts their digits in a statement in another way than those
/// of a parameter (`Shape::reals`).
namespace ADODB {

/// A literal in a statement's text.
struct Literal {
    bool isText = false;
    std::string_view body;    ///< the digits, or the text between the quotes, with doubled quotes
    std::int64_t number = 0;  ///< of the digits
    bool isReal = false;      ///< the digits have a point or an exponent; `number` is then not set
};

/// A statement cut at its literals: piece, literal, piece, ... piece.
struct Shape {
    bool reals = false;               ///< numbers with a point or an exponent are literals too
    std::vector<std::string> pieces;  ///< one more than there are literals

    /// Returns the text to compile, with "?" for each literal.
    std::string Text() const;

    /// Returns true if `statement` has this shape; `literals` then has its literals, which point into it.
    bool Matches(std::string_view statement, std::vector<Literal>& literals) const;
};

/// Cuts a statement at the literals that a parameter may replace. Returns false for a text that must be compiled
/// unchanged: another statement than select, insert, update or delete, or a text with a comment, a parameter of its
/// own or an unterminated literal. `shape.reals` is read.
bool CutAtLiterals(std::string_view statement, Shape& shape, std::vector<Literal>& literals);

/// Returns true if one of the literals is an empty text.
bool HasBlank(const std::vector<Literal>& literals);

/// Returns the value of a text literal: its body with each doubled quote replaced by one.
std::string Unquoted(std::string_view body);

}  // namespace ADODB

#pragma once

#include "platform/adodb/providers/Provider.h"
#include "platform/adodb/providers/Shape.h"

#include <optional>

namespace ADODB {

/// How the pieces of a statement supply the literals of its shape.
class PieceBindings {
public:
    /// Returns the bindings of a statement with these pieces, whose text `statement` was cut at `literals`. Returns
    /// nothing if a value among the pieces is not a whole literal of its kind.
    static std::optional<PieceBindings> Of(std::span<const StatementPiece> pieces, std::string_view statement,
                                           const std::vector<Literal>& literals);

    /// Returns true if `pieces` have the same fixed texts, and values of the same kinds; `literals` then has the
    /// literals of the joined statement. A negative number is a literal here. The literals point into the pieces and
    /// this object.
    bool Match(std::span<const StatementPiece> pieces, std::vector<Literal>& literals) const;

private:
    /// A literal of the shape: a value, or a part of the fixed text.
    struct Source {
        bool isValue;
        bool isText;
        bool isReal;          // of a fixed literal
        std::string body;     // of a fixed literal
        std::int64_t number;  // of a fixed literal
    };

    using Position = std::vector<Literal>::const_iterator;
    /// Adds the literals that end inside the text `fixed`, before its last character; returns the first other one.
    Position TakeFixed(Position literal, Position last, std::string_view fixed);

    std::vector<std::string> fixed_;           // the joined fixed texts in front of each value and behind the last one
    std::vector<StatementPiece::Kind> kinds_;  // of the values
    std::vector<Source> sources_;              // of the literals
};

}  // namespace ADODB

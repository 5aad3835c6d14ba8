#include "platform/adodb/providers/PieceBindings.h"

#include "platform/runtime/Convert.h"

#include <algorithm>

namespace ADODB {

using namespace Platform;

namespace {

/// Returns the position of a part of a text.
std::size_t OffsetIn(std::string_view text, std::string_view part) {
    return static_cast<std::size_t>(part.data() - text.data());
}

}  // namespace

std::optional<PieceBindings> PieceBindings::Of(std::span<const StatementPiece> pieces, std::string_view statement,
                                               const std::vector<Literal>& literals) {
    using Kind = StatementPiece::Kind;
    if (std::any_of(pieces.begin(), pieces.end(), [](const auto& piece) { return piece.kind == Kind::Other; }))
        return {};
    PieceBindings bindings;
    auto literal = literals.begin();
    std::size_t at = 0;
    bindings.fixed_.emplace_back();
    for (const StatementPiece& piece : pieces) {
        if (piece.kind == Kind::Fixed) {
            bindings.fixed_.back() += piece.text;
            at += piece.text.size();
            continue;
        }
        const bool isText = piece.kind == Kind::Text;
        const std::string body = isText ? std::string(piece.text) : CStr(piece.number);
        literal = bindings.TakeFixed(literal, literals.end(), statement.substr(0, at));
        const bool whole = literal != literals.end() && literal->isText == isText && literal->body == body &&
                           OffsetIn(statement, literal->body) == at;
        // Behind a minus sign, that of a negative number would begin a comment.
        if (!whole || bindings.fixed_.back().ends_with('-')) return {};
        bindings.sources_.push_back({true, isText, false, {}, 0});
        bindings.kinds_.push_back(piece.kind);
        bindings.fixed_.emplace_back();
        at += body.size();
        ++literal;
    }
    if (bindings.TakeFixed(literal, literals.end(), statement) != literals.end()) return {};
    return bindings;
}

PieceBindings::Position PieceBindings::TakeFixed(Position literal, Position last, std::string_view fixed) {
    for (; literal != last && OffsetIn(fixed, literal->body) + literal->body.size() < fixed.size(); ++literal)
        sources_.push_back({false, literal->isText, literal->isReal, std::string(literal->body), literal->number});
    return literal;
}

bool PieceBindings::Match(std::span<const StatementPiece> pieces, std::vector<Literal>& literals) const {
    std::size_t value = 0;
    std::string_view rest = fixed_.front();
    literals.clear();
    auto source = sources_.begin();
    const auto takeFixedLiterals = [&] {
        for (; source != sources_.end() && !source->isValue; ++source)
            literals.push_back({source->isText, source->body, source->number, source->isReal});
    };
    for (const StatementPiece& piece : pieces) {
        if (piece.kind == StatementPiece::Kind::Fixed) {
            if (!rest.starts_with(piece.text)) return false;
            rest.remove_prefix(piece.text.size());
            continue;
        }
        if (!rest.empty() || value == kinds_.size() || kinds_[value] != piece.kind) return false;
        takeFixedLiterals();
        literals.push_back({source->isText, piece.text, piece.number});
        ++source;
        rest = fixed_[++value];
    }
    takeFixedLiterals();
    return rest.empty() && value == kinds_.size();
}

}  // namespace ADODB

#pragma once

#include "platform/adodb/providers/EqualsChains.h"
#include "platform/adodb/providers/KeyOrder.h"
#include "platform/adodb/providers/Lexer.h"
#include "platform/adodb/providers/Shape.h"

namespace ADODB {

/// Copies a statement token by token. The translation for an engine derives from it and changes what the engine can't
/// parse or would understand in another way; here a chain of conditions "a=1 OR a=2" becomes "a IN (1,2)", and rows
/// that are equal otherwise are sorted by the keys of their tables. One thread.
class Translation {
public:
    Translation(const Translation&) = delete;

protected:
    /// Takes the literals, which point into the statement, that become parameters.
    Translation(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys);
    ~Translation() = default;

    /// Writes the whole statement to `out_`.
    void Copy();

    /// Writes what a token becomes; returns the position behind what was read.
    virtual std::size_t Take(const Lexer::Token& token, std::size_t at) = 0;
    /// Does the same for characters that are not a token (`Lexer::Kind::Unclear`).
    virtual std::size_t TakeUnclear(std::size_t at) = 0;
    /// Writes the literal `piece`.
    virtual void TakeLiteral(std::string_view piece, std::size_t at) = 0;
    /// Writes what belongs behind the last clause so far.
    virtual void EndClause() {}

    /// Returns true if the literal at this position becomes a parameter: the one with the number `next_`.
    bool IsLifted(std::size_t at) const;
    /// Returns the length of the output without the blanks at its end.
    std::size_t EndOfOutput() const;

    std::string_view text_;
    const std::vector<Literal>& literals_;
    String out_;
    std::size_t next_ = 0;  // the literal that is expected
    String last_;           // the word before, in upper case; empty behind another token and behind a long word

private:
    /// Writes a chain as a list and returns its end.
    std::size_t TakeChain(const EqualsChain& chain);
    void SortByKeys();

    std::vector<EqualsChain> chains_;
    std::size_t nextChain_ = 0;
    KeyOrder rows_;
};

}  // namespace ADODB

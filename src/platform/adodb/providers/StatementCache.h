#pragma once

#include "platform/adodb/providers/PieceBindings.h"

#include <algorithm>
#include <list>
#include <unordered_map>

namespace ADODB {

/// The compiled statements of one session, found by their shape; the least recently used one is removed first.
/// `Statement` is what the engine's provider keeps of a statement: it has the members `Shape shape` and
/// `std::optional<PieceBindings> bindings` (if the statement ran as pieces), and can be moved. One thread.
template <class Statement>
class StatementCache {
public:
    /// Returns the cached statement for a text, and its literals in the order of the parameters; null if none is
    /// cached. The statement is valid until `Keep` or `Clear` is called.
    Statement* Find(std::string_view text, std::vector<Literal>& literals) {
        return FirstThat(StartOf(text), [&](const Statement& kept) { return kept.shape.Matches(text, literals); });
    }

    /// Returns the same for a statement that consists of these pieces.
    Statement* Find(std::span<const StatementPiece> pieces, std::vector<Literal>& literals) {
        const std::string_view start = pieces.empty() ? std::string_view() : StartOf(pieces.front().text);
        if (start.size() < StartLength) return nullptr;
        return FirstThat(
            start, [&](const Statement& kept) { return kept.bindings && kept.bindings->Match(pieces, literals); });
    }

    /// Adds a compiled statement, which `text` was compiled for, and returns it. A long text, which is rarely repeated,
    /// or one that is shorter than the part that statements are found by, is kept until the next call only.
    Statement& Keep(Statement compiled, std::string_view text) {
        const std::string_view start = StartOf(compiled.shape.pieces.front());
        if (!IsKept(text) || start.size() < StartOf(text).size()) return KeepOnce(std::move(compiled));
        if (kept_.size() == MostKept) RemoveOldest();
        kept_.push_front(std::move(compiled));
        byStart_.emplace(StartOf(kept_.front().shape.pieces.front()), kept_.begin());
        return kept_.front();
    }

    /// Keeps a statement until the next call, and returns it.
    Statement& KeepOnce(Statement compiled) {
        once_.reset();
        return once_.emplace(std::move(compiled));
    }

    /// Returns false for a text that is too long to be cached.
    static bool IsKept(std::string_view text) { return text.size() <= LongestKept; }

    /// Returns how many statements are cached.
    std::size_t Count() const noexcept { return kept_.size(); }

    /// Removes all statements.
    void Clear() {
        byStart_.clear();
        kept_.clear();
        once_.reset();
    }

private:
    using List = std::list<Statement>;
    static constexpr std::size_t MostKept = 256;
    static constexpr std::size_t LongestKept = 16384;

    /// Long enough to distinguish statements, short enough to end before the first literal as a rule.
    static constexpr std::size_t StartLength = 16;
    static std::string_view StartOf(std::string_view text) { return text.substr(0, StartLength); }

    template <class Test>
    Statement* FirstThat(std::string_view start, Test matches) {
        const auto [first, last] = byStart_.equal_range(start);
        for (auto it = first; it != last; ++it) {
            if (!matches(*it->second)) continue;
            kept_.splice(kept_.begin(), kept_, it->second);
            return &kept_.front();
        }
        return nullptr;
    }

    void RemoveOldest() {
        const auto oldest = std::prev(kept_.end());
        const auto [first, last] = byStart_.equal_range(StartOf(oldest->shape.pieces.front()));
        byStart_.erase(std::find_if(first, last, [&](const auto& entry) { return entry.second == oldest; }));
        kept_.erase(oldest);
    }

    List kept_;                                                                   // the most recently used in front
    std::unordered_multimap<std::string_view, typename List::iterator> byStart_;  // views into the shapes of `kept_`
    std::optional<Statement> once_;
};

}  // namespace ADODB

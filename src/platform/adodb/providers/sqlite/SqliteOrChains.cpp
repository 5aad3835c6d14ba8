#include "platform/adodb/providers/sqlite/SqliteOrChains.h"

#include "platform/adodb/providers/Lexer.h"

#include <vector>

namespace ADODB {

namespace {

/// The words behind which a chain of conditions does not continue.
constexpr std::array<std::string_view, 16> EndOfChain{"SELECT", "FROM",  "JOIN",      "GROUP",  "ORDER", "LIMIT",
                                                      "OFFSET", "UNION", "INTERSECT", "EXCEPT", "INTO",  "WINDOW",
                                                      "AS",     "SET",   "RETURNING", "VALUES"};

/// Finds the chains of OR terms of a statement and regroups the long ones.
class Balancer {
public:
    Balancer(std::string_view statement, std::size_t longChain) : text_(statement), longChain_(longChain) {}

    std::string Balanced() {
        regions_.push_back({});
        for (std::size_t at = 0; at < text_.size();) {
            const Lexer::Token token = Lexer::TokenAt(text_, at);
            if (token.kind == Lexer::Kind::Unclear) return std::string(text_);
            Take(token, at);
            at = token.end;
        }
        while (!regions_.empty()) CloseRegion(text_.size());
        return Inserted();
    }

private:
    /// A part of the text that may be one chain: the text in parentheses, or after WHERE.
    struct Region {
        bool chain = false;
        std::size_t start = 0;
        std::vector<std::size_t> ors;
        int cases = 0;
    };

    void Take(const Lexer::Token& token, std::size_t at) {
        Region& region = regions_.back();
        if (token.kind == Lexer::Kind::Word) return TakeWord(text_.substr(at, token.end - at), at, token.end);
        if (token.kind == Lexer::Kind::Open) return regions_.push_back({true, token.end, {}, 0});
        if (token.kind == Lexer::Kind::Close && regions_.size() > 1) return CloseRegion(at);
        if (token.kind == Lexer::Kind::Mark && (text_[at] == ',' || text_[at] == ';')) EndChain(region, at);
    }

    void TakeWord(std::string_view word, std::size_t at, std::size_t end) {
        const Lexer::Keyword upper(word);
        Region& region = regions_.back();
        if (upper == "CASE") ++region.cases;
        if (upper == "END") --region.cases;
        if (upper == "OR" && region.cases == 0) return region.ors.push_back(at);
        if (upper == "WHERE" || upper == "HAVING" || upper == "ON") {
            EndChain(region, at);
            region = {true, end, {}, 0};
        } else if (upper.IsOneOf(EndOfChain)) {
            EndChain(region, at);
        }
    }

    void EndChain(Region& region, std::size_t at) {
        if (region.chain && region.ors.size() >= longChain_) Group(region, at);
        region.chain = false;
        region.ors.clear();
    }

    void CloseRegion(std::size_t at) {
        EndChain(regions_.back(), at);
        regions_.pop_back();
    }

    void Group(const Region& region, std::size_t end) {
        std::vector<std::size_t> starts{region.start}, ends;
        for (const std::size_t at : region.ors) {
            ends.push_back(at);
            starts.push_back(at + 2);
        }
        ends.push_back(end);
        Halve(starts, ends, 0, starts.size());
    }

    void Halve(const std::vector<std::size_t>& starts, const std::vector<std::size_t>& ends, std::size_t first,
               std::size_t last) {
        if (last - first < 2) return;
        insertions_.push_back({starts[first], 1, "("});
        insertions_.push_back({ends[last - 1], 0, ")"});
        const std::size_t middle = first + (last - first) / 2;
        Halve(starts, ends, first, middle);
        Halve(starts, ends, middle, last);
    }

    struct Insertion {
        std::size_t at;
        int order;  // closing ones first
        const char* mark;
    };

    std::string Inserted() {
        std::stable_sort(insertions_.begin(), insertions_.end(), [](const Insertion& a, const Insertion& b) {
            return a.at != b.at ? a.at < b.at : a.order < b.order;
        });
        std::string out;
        std::size_t from = 0;
        for (const Insertion& insertion : insertions_) {
            out.append(text_.substr(from, insertion.at - from));
            out += insertion.mark;
            from = insertion.at;
        }
        out.append(text_.substr(from));
        return out;
    }

    std::string_view text_;
    std::size_t longChain_;
    std::vector<Region> regions_;
    std::vector<Insertion> insertions_;
};

}  // namespace

std::string WithBalancedOrChains(std::string_view statement, std::size_t longChain) {
    return Balancer(statement, longChain).Balanced();
}

}  // namespace ADODB

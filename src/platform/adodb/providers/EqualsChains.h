#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace ADODB {

/// Conditions that compare one column with one literal after the other: "a=1 OR a=2".
struct EqualsChain {
    std::size_t start;
    std::size_t end;
    std::vector<std::size_t> values;  ///< the positions of the literals
};

/// Returns the chains of a statement that have more than one condition, in their order; a comment or a parameter ends
/// the search. A provider writes them as "a IN (1,2)" if the time in which its engine plans a chain grows with the
/// square of its length. Any thread may call.
std::vector<EqualsChain> EqualsChainsIn(std::string_view statement);

}  // namespace ADODB

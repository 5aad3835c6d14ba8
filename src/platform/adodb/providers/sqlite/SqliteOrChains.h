#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ADODB {

/// Returns the statement with each chain of at least `longChain` ORs put into parentheses as a balanced tree, which has
/// the same result and stays below the engine's limit for the depth of an expression. Returns a text without such a
/// chain unchanged.
std::string WithBalancedOrChains(std::string_view statement, std::size_t longChain = 200);

}  // namespace ADODB

#pragma once

#include <set>
#include <string>

namespace Console {

/// Returns the teeth that the user typed: two digits each, separated by commas or blanks, as in "16,17". Throws
/// `UserError` for a text without teeth and for a number that is not a tooth.
std::set<int> TeethTyped(const std::string& text);

}  // namespace Console

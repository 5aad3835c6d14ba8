#pragma once

#include <string_view>

namespace ADODB {

/// Returns true for a statement that may create, change or drop a table, by its first word behind blanks and comments.
/// Any thread may call.
bool ChangesDefinitions(std::string_view statement);

}  // namespace ADODB

#pragma once

#include "platform/adodb/Recordset.h"

namespace Console {

using ADODB::Connection;
using ADODB::Recordset;
using Platform::Ref;

/// Returns the statements of a script, without the comments in front of them.
std::vector<std::string> StatementsOf(std::string_view script);

/// Runs the statements of a script, one by one.
void RunScript(const Ref<Connection>& con, std::string_view script);

}  // namespace Console

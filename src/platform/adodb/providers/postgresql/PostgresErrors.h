#pragma once

#include "platform/adodb/Enums.h"

namespace ADODB {

/// The number that this layer raises for an SQLSTATE of the server.
Long NumberOfSqlState(std::string_view sqlState);

/// Throws a failure that the server reported, with its number, text and SQLSTATE and the statement.
[[noreturn]] void RaisePostgres(const String& sqlState, const String& text, std::string_view statement);

/// Throws a failure of the provider's own, about a statement.
[[noreturn]] void RaisePostgres(Long number, const String& sqlState, const String& description,
                                std::string_view statement);

}  // namespace ADODB

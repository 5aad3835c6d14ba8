#pragma once

#include "platform/adodb/Enums.h"

#include <functional>
#include <string_view>
#include <vector>

namespace ADODB {

/// Returns the columns of the primary key of a table, whose name is in small letters; nothing for an unknown table. An
/// empty function knows no table.
using TableKeys = std::function<std::vector<String>(const String& table)>;

/// By which keys the rows of a SELECT are sorted that are equal otherwise.
struct KeyOrder {
    String keys;           ///< separated by commas; empty if the rows are left as they come
    std::size_t position;  ///< in the statement, in front of which the keys belong
    bool sorted;           ///< the statement itself has an ORDER BY there
};

/// Returns the primary keys of the tables of a SELECT. The key of a table is left out where a condition "key = literal"
/// or the condition of its join admits one row of it at most. There are none for a statement whose rows are not the
/// rows of its tables (groups, aggregates, unions), that has a LIMIT without an ORDER BY, or that has a comment or a
/// parameter. Raises what `keys` raises. Any thread may call.
KeyOrder KeyOrderOf(std::string_view statement, const TableKeys& keys);

}  // namespace ADODB

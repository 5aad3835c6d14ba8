#pragma once

#include "platform/adodb/providers/odbc/OdbcDialect.h"

namespace ADODB {

/// MariaDB, version 10.11 and newer, by its own driver. The session compares texts by their characters' numbers,
/// rejects values that do not fit their columns, and takes a backslash as a plain character. Statements are translated:
///
/// - names of tables, which may have a letter case of their own on a server, are written in lower case; so are names in
///   front of a ".", and other names in a FROM clause. A name in quotes is left as it is;
/// - `DELETE * FROM` loses the star, and `DEFAULT VALUES` becomes `() VALUES ()`;
/// - `LIKE` with a literal compares without regard to the case of letters, and has no escape character unless it names
///   one;
/// - a chain of conditions "a=1 OR a=2" becomes "a IN (1,2)", because the time in which the server plans a chain
///   grows with the square of its length;
/// - a SELECT from tables sorts rows that are equal otherwise by the primary keys of the tables (`KeyOrderOf`), because
///   this server returns them in the order of the index that it reads, or of the sort.
extern const OdbcDialect MariaDb;

}  // namespace ADODB

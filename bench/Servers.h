#pragma once

#include "bench/Report.h"

namespace Bench {

/// Compares the library on a server with the same work written by hand: on PostgreSQL with its client library, on
/// MariaDB with the ODBC driver manager, with prepared statements. `server` is a connection string of a server whose
/// database "clinic" has the tables of the library and no images; it is filled with 100,000.
void BenchServer(Report& report, const std::string& server);

}  // namespace Bench

#include "platform/adodb/providers/postgresql/PostgresSession.h"

#include "platform/adodb/Errors.h"

namespace ADODB {

/// The client library of PostgreSQL is not part of the build for Windows.
std::unique_ptr<Session> OpenPostgres(const ConnectionString&, Long) {
    RaiseAdo(
        adErrProviderNotFound, ConnectionSource,
        "Provider cannot be found. \"PostgreSQL\" is not available on Windows; use its ODBC driver by \"MSDASQL\".");
}

String PostgresEngine() { return {}; }

}  // namespace ADODB

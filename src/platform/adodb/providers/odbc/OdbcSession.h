#pragma once

#include "platform/adodb/providers/Provider.h"

namespace ADODB {

/// Opens a session with a data source of the driver manager, by the settings of a connection string:
///
/// - "DSN": the name of a data source, or "Driver": the name of a driver, which may be in braces.
/// - "User ID" and "Password".
/// - All other settings except "Persist Security Info" are passed on to the driver unchanged. A value is taken as it is
///   written here, and put into braces for the driver manager if it must be.
///
/// With MariaDB's driver these are "Server", "Port", "Socket" and "Database"; "Option" and "Charset" are completed
/// (`MariaDb`). With a data source of MariaDB opening connects twice, unless "Driver" names the driver too.
///
/// Statements are translated by the dialect of the engine, prepared by the driver and cached. An empty text for a
/// column of numbers or dates is bound as a null. The driver reads all rows before the first one is returned, if it
/// does so by itself; MariaDB's driver does. If a statement fails inside a transaction, the session asks MariaDB by
/// another statement whether the server has rolled the transaction back.
std::unique_ptr<Session> OpenOdbc(const ConnectionString& settings, Long timeout);

/// Returns the name of the provider and the version of the interface. Any thread may call.
String OdbcEngine();

}  // namespace ADODB

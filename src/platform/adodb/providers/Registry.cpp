#include "platform/adodb/providers/odbc/OdbcSession.h"
#include "platform/adodb/providers/postgresql/PostgresSession.h"
#include "platform/adodb/providers/sqlite/SqliteSession.h"

#include "platform/runtime/Convert.h"

namespace ADODB {

using namespace Platform;

namespace {

std::vector<std::pair<String, Opener>>& Known() {
    // For the whole process.
    static auto& known = *new std::vector<std::pair<String, Opener>>{
        {"SQLite", OpenSqlite}, {"PostgreSQL", OpenPostgres}, {"MSDASQL", OpenOdbc}};
    return known;
}

}  // namespace

void RegisterProvider(const String& name, Opener open) { Known().insert(Known().begin(), {name, open}); }

std::vector<String> BuiltInEngines() {
    std::vector<String> engines{SqliteEngine(), PostgresEngine(), OdbcEngine()};
    std::erase(engines, String());
    return engines;
}

Opener FindProvider(const String& name) {
    for (const auto& [known, open] : Known())
        if (EqualsIgnoringCase(known, name)) return open;
    RaiseAdo(adErrProviderNotFound, ConnectionSource,
             "Provider cannot be found. It may not be properly installed. There is none named \"" + name +
                 "\"; \"SQLite\", \"PostgreSQL\" and \"MSDASQL\" are built in.");
}

}  // namespace ADODB

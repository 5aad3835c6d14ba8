#include "console/DatabaseName.h"

#include "platform/runtime/Text.h"

namespace Console {

using namespace Platform;

namespace {

bool MayHavePassword(const std::string& database) {
    const std::string small = LCase(database);
    return Platform::Contains(small, "password") || Platform::Contains(small, "pwd");
}

}  // namespace

bool IsConnectionString(const std::string& database) { return Contains(LCase(database), "provider="); }

std::string ConnectionStringOf(const std::string& database, const std::string& mode) {
    if (IsConnectionString(database)) return database;
    const std::string quoted = "'" + Replace(database, "'", "''") + "'";
    return "Provider=SQLite;Data Source=" + quoted + (mode.empty() ? "" : ";Mode=" + mode);
}

ADODB::ConnectionString SettingsOf(const std::string& database) {
    try {
        return ADODB::ConnectionString(database);
    } catch (const Error&) {
        if (!MayHavePassword(database)) throw;
        throw UserError(
            "the connection string can't be read; put a value with \";\" or quotes into quotes, as in Password='a;b'");
    }
}

bool NamesServer(const std::string& database) {
    return IsConnectionString(database) && !EqualsIgnoringCase(SettingsOf(database).Value("Provider"), "SQLite");
}

std::string ShownName(const std::string& database) {
    if (!IsConnectionString(database) || !MayHavePassword(database)) return database;
    return SettingsOf(database).TextWithout({"Password", "Pwd"});
}

}  // namespace Console

#include "console/DatabaseName.h"

#include "platform/runtime/Text.h"

#include <algorithm>

namespace Console {

using namespace Platform;

namespace {

bool MayHavePassword(const std::string& database) {
    const std::string small = LCase(database);
    return Platform::Contains(small, "password") || Platform::Contains(small, "pwd");
}

/// The settings that messages show.
constexpr std::string_view ShownSettings[] = {"provider",
                                              "server",
                                              "port",
                                              "database",
                                              "user id",
                                              "dsn",
                                              "driver",
                                              "socket",
                                              "service",
                                              "ssl mode",
                                              "application name",
                                              "mode",
                                              "data source",
                                              "password file",
                                              "ssl root certificate",
                                              "persist security info"};

/// Throws `UserError` for a text that seems to be a connection string and names no provider, because a file of its name
/// would be made.
void RequireProvider(const std::string& database) {
    const std::string small = LCase(Trim(database));
    bool settings = Platform::Contains(small, "://");
    for (const char* const key : {"provider", "server", "host", "dbname", "database", "dsn", "driver", "user id", "uid",
                                  "user", "password", "pwd", "port"})
        settings |= small.starts_with(key) && Trim(small.substr(std::string_view(key).size())).starts_with("=");
    if (settings)
        throw UserError(
            "a connection string names its provider, as in \"Provider=PostgreSQL;Server=db;Database=clinic\"");
}

}  // namespace

bool IsConnectionString(const std::string& database) {
    if (Contains(LCase(database), "provider=")) return true;
    RequireProvider(database);
    return false;
}

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
    if (!IsConnectionString(database)) return database;
    const ADODB::ConnectionString settings = SettingsOf(database);
    ADODB::ConnectionString shown("");
    bool all = true;
    for (const auto& [key, value] : settings.All()) {
        const bool isShown = std::ranges::find(ShownSettings, key) != std::end(ShownSettings);
        if (isShown) shown.Set(key, value);
        all = all && isShown;
    }
    return all ? database : shown.TextWithout({});
}

}  // namespace Console

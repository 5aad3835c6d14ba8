#include "platform/adodb/providers/sqlite/SqliteErrors.h"

#include "platform/runtime/Convert.h"

#include <sqlite3.h>

namespace ADODB {

using namespace Platform;

namespace {

struct Mapped {
    Long number;
    const char* sqlState;
};

/// Returns the number of an error of a statement. The engine has one code for all of them; its text distinguishes them.
Mapped OfStatement(std::string_view text) {
    if (Contains(text, "no such table")) return {NoTable, "42S02"};
    if (Contains(text, "no such column") || Contains(text, "has no column named")) return {UnknownName, "42S22"};
    return {ErrorsInCommand, "42000"};
}

Mapped OfCode(int code, std::string_view text) {
    switch (code & 0xFF) {
        case SQLITE_ERROR: return OfStatement(text);
        case SQLITE_CONSTRAINT: return {IntegrityViolation, "23000"};
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_READONLY: return {NoPermission, "42000"};
        case SQLITE_MISMATCH: return {CantConvertValue, "22018"};
        case SQLITE_TOOBIG: return {DataOverflow, "22001"};
        case SQLITE_INTERRUPT: return {Cancelled, "HY008"};
        default: return {Failed, "HY000"};
    }
}

Error Made(Mapped mapped, int code, const String& text, std::string_view statement) {
    Error error(mapped.number, "SQLite", text);
    error.Provider = "SQLite";
    error.NativeError = code;
    error.SQLState = mapped.sqlState;
    error.Statement = String(statement);
    return error;
}

}  // namespace

void RaiseSqlite(sqlite3* database, std::string_view statement) {
    const int code = sqlite3_extended_errcode(database);
    const String text = sqlite3_errmsg(database);
    throw Made(OfCode(code, text), code, text, statement);
}

void RaiseSqlite(Long number, const String& description, std::string_view statement) {
    throw Made({number, "HY000"}, 0, description, statement);
}

}  // namespace ADODB

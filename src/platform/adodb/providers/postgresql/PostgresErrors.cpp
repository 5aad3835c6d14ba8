#include "platform/adodb/providers/postgresql/PostgresErrors.h"

#include <array>

namespace ADODB {

using namespace Platform;

namespace {

struct Mapped {
    std::string_view state;  ///< five characters, or a class of two
    Long number;
};

constexpr std::array Numbers = std::to_array<Mapped>({
    {"08P01", UnknownName},      // a parameter in the text, which has no value
    {"42P02", UnknownName},      //
    {"42703", UnknownName},      // no such column
    {"42P01", NoTable},          //
    {"42501", NoPermission},     //
    {"25006", NoPermission},     // a read-only transaction, as on a replica
    {"55P03", LockConflict},     // lock not available
    {"57014", TimedOut},         // the session has cancelled it, or the server's own time limit
    {"57P01", ConnectionLost},   // terminated by an administrator
    {"57P02", ConnectionLost},   // the server has crashed
    {"57P03", ConnectionLost},   // the server is starting or stopping
    {"22001", DataOverflow},     //
    {"22003", DataOverflow},     //
    {"54000", DataOverflow},     // program limit exceeded
    {"54001", DataOverflow},     // statement too complex
    {"25P01", NoTransaction},    //
    {"22", CantConvertValue},    // data exception
    {"23", IntegrityViolation},  //
    {"28", LoginFailed},         //
    {"40", LockConflict},        // serialisation failure, deadlock
    {"42", ErrorsInCommand},     //
    {"08", ConnectionLost},      //
    {"0A", ErrorsInCommand},     // feature not supported
});

/// Returns the number that the server's own sources have for an SQLSTATE: six bits for each character.
Long NativeCodeOf(std::string_view sqlState) {
    Long code = 0;
    Long shift = 0;
    for (const char c : sqlState) {
        code |= static_cast<Long>((c - '0') & 0x3F) << shift;
        shift += 6;
    }
    return code;
}

}  // namespace

Long NumberOfSqlState(std::string_view sqlState) {
    for (const Mapped& mapped : Numbers)
        if (sqlState.starts_with(mapped.state)) return mapped.number;
    return Failed;
}

void RaisePostgres(const String& sqlState, const String& text, std::string_view statement) {
    RaisePostgres(NumberOfSqlState(sqlState), sqlState, text, statement);
}

void RaisePostgres(Long number, const String& sqlState, const String& description, std::string_view statement) {
    Error error(number, "PostgreSQL", description);
    error.Provider = "PostgreSQL";
    error.SQLState = sqlState;
    error.NativeError = NativeCodeOf(sqlState);
    error.Statement = String(statement);
    throw Error(error);
}

}  // namespace ADODB

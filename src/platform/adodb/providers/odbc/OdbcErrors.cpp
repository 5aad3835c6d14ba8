#include "platform/adodb/providers/odbc/OdbcErrors.h"

#include "platform/adodb/providers/odbc/OdbcApi.h"
#include "platform/runtime/Convert.h"

#include <algorithm>
#include <array>

namespace ADODB {

using namespace Platform;

namespace {

struct MappedState {
    std::string_view state;  ///< five characters, or their beginning
    Long number;
};

constexpr std::array Numbers = std::to_array<MappedState>({
    {"07001", UnknownName},      // a parameter in the text, which has no value
    {"07002", UnknownName},      //
    {"42S22", UnknownName},      // no such column
    {"S0022", UnknownName},      // the same of a driver for version 2 of the interface
    {"42S02", NoTable},          //
    {"S0002", NoTable},          //
    {"22001", DataOverflow},     //
    {"22003", DataOverflow},     //
    {"HYT", TimedOut},           //
    {"S1T", TimedOut},           //
    {"HY008", Cancelled},        //
    {"08", ConnectionLost},      //
    {"22", CantConvertValue},    // data exception
    {"23", IntegrityViolation},  //
    {"28", LoginFailed},         //
    {"40", LockConflict},        // serialisation failure, deadlock
    {"42", ErrorsInCommand},     //
    {"37", ErrorsInCommand},     //
    {"0A", ErrorsInCommand},     // feature not supported
});

/// Returns a message without the names of the vendor, the driver manager, the driver and the server in brackets.
String WithoutComponents(std::string_view message) {
    while (message.starts_with('[') && message.find(']') != std::string_view::npos)
        message.remove_prefix(message.find(']') + 1);
    return Trim(message);
}

}  // namespace

OdbcFailure FailureOfHandle(short type, void* handle) {
    std::array<SQLWCHAR, 6> state{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    std::vector<SQLWCHAR> message(1024);
    const auto read = [&] {
        return SQLGetDiagRecW(type, handle, 1, state.data(), &native, message.data(),
                              static_cast<SQLSMALLINT>(message.size()), &length);
    };
    SQLRETURN code = read();
    if (code == SQL_SUCCESS_WITH_INFO && std::cmp_greater_equal(length, message.size())) {
        message.resize(static_cast<std::size_t>(length) + 1);
        code = read();
    }
    if (!SQL_SUCCEEDED(code)) return {"HY000", 0, "The driver reports a failure without a message."};
    const auto text = [](const SQLWCHAR* units, std::size_t count) {
        return FromUtf16({reinterpret_cast<const char16_t*>(units), count});
    };
    const std::size_t units = std::min(static_cast<std::size_t>(length), message.size() - 1);
    return {text(state.data(), 5), native, WithoutComponents(text(message.data(), units))};
}

Long NumberOfOdbc(const OdbcFailure& failure, const OdbcDialect& dialect) {
    for (const auto& [native, number] : dialect.numbers)
        if (native == failure.native) return number;
    for (const MappedState& mapped : Numbers)
        if (failure.state.starts_with(mapped.state)) return mapped.number;
    return Failed;
}

void RaiseOdbc(Long number, const OdbcFailure& failure, const String& source, std::string_view statement) {
    Error error(number, source, failure.text);
    error.Provider = "MSDASQL";
    error.NativeError = failure.native;
    error.SQLState = failure.state;
    error.Statement = String(statement);
    throw Error(error);
}

}  // namespace ADODB

#include "platform/adodb/providers/odbc/OdbcLink.h"

#include "platform/adodb/providers/odbc/OdbcApi.h"
#include "platform/runtime/Convert.h"

#include <array>
#include <chrono>

namespace ADODB {

using namespace Platform;

namespace {

/// The driver manager's environment, for the whole process.
void* Environment() {
    static void* const environment = [] {
        void* handle = nullptr;
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &handle);
        SQLSetEnvAttr(handle, SQL_ATTR_ODBC_VERSION, reinterpret_cast<void*>(SQL_OV_ODBC3), 0);
        return handle;
    }();
    return environment;
}

/// Returns a number as the functions for attributes take it.
void* AsPointer(Long number) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(number));  // NOLINT(performance-no-int-to-ptr)
}

/// A text as the wide functions take it, with a final zero (SQL_NTS). They do not change it.
class WideText {
public:
    explicit WideText(std::string_view text) : units_(ToUtf16(text)) {}
    SQLWCHAR* Units() noexcept { return reinterpret_cast<SQLWCHAR*>(units_.data()); }

private:
    std::u16string units_;
};

/// Returns a setting as the driver manager reads it. The name of a driver is written in braces by custom.
String Setting(const String& key, const String& value) {
    const bool inBraces = EqualsIgnoringCase(key, "Driver") && value.starts_with('{') && value.ends_with('}');
    const bool plain = Trim(value) == value && value.find_first_of("[]{}(),;?*=!@'\"") == String::npos;
    return key + "=" + (inBraces || plain ? value : "{" + Replace(value, "}", "}}") + "}") + ";";
}

String TextForDriver(const ConnectionString& settings) {
    String text;
    for (const auto& [key, value] : settings.All()) {
        if (key == "provider" || key == "persist security info") continue;
        text += Setting(key == "user id" ? "UID" : key == "password" ? "PWD" : key, value);
    }
    return text;
}

/// The functions of the driver manager would read the text up to the zero.
bool HasZero(std::string_view text) { return text.find('\0') != std::string_view::npos; }
OdbcFailure ZeroFailure() { return {"42000", 0, "The text contains a zero character outside of its literals."}; }

std::optional<OdbcFailure> FailureAfter(short code, const OdbcHandle& handle) {
    if (SQL_SUCCEEDED(code) || code == SQL_NO_DATA) return {};
    return handle.Failure();
}

}  // namespace

OdbcHandle::OdbcHandle(short type, void* parent) : type_(type) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(type, parent, &handle_))) handle_ = nullptr;
}

OdbcHandle::~OdbcHandle() {
    if (!handle_) return;
    if (type_ == SQL_HANDLE_DBC) SQLDisconnect(handle_);
    SQLFreeHandle(type_, handle_);
}

OdbcLink::OdbcLink(const ConnectionString& settings, Long timeout) {
    dialect_ = &DialectNamed(settings.Value("Driver"));
    Connect(settings, timeout);
    const OdbcDialect& actual = DialectNamed(Information(SQL_DBMS_NAME));
    if (&actual != dialect_) {  // a data source, whose driver is known only now
        dialect_ = &actual;
        if (actual.completeLogin) Connect(settings, timeout);
    }
    engine_ = Information(SQL_DBMS_NAME);
    quote_ = Trim(Information(SQL_IDENTIFIER_QUOTE_CHAR));
    if (!dialect_->settings.empty()) Command(dialect_->settings);
}

void OdbcLink::Connect(const ConnectionString& settings, Long timeout) {
    connection_ = {};
    connection_ = OdbcHandle(SQL_HANDLE_DBC, Environment());
    SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_LOGIN_TIMEOUT, AsPointer(timeout), 0);
    ConnectionString completed = settings;
    if (dialect_->completeLogin) dialect_->completeLogin(completed);
    WideText text(TextForDriver(completed));
    const auto start = std::chrono::steady_clock::now();
    const short code =
        SQLDriverConnectW(connection_.Get(), nullptr, text.Units(), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    if (SQL_SUCCEEDED(code)) return;
    const OdbcFailure failure = connection_.Failure();
    const bool late = timeout > 0 && std::chrono::steady_clock::now() - start >= std::chrono::seconds(timeout);
    const Long number = NumberOfOdbc(failure, *dialect_);
    RaiseOdbc(late ? TimedOut : number == LoginFailed || number == TimedOut ? number : Failed, failure, engine_, {});
}

String OdbcLink::Information(unsigned short item) const {
    std::array<char16_t, 256> units{};
    short bytes = 0;
    SQLGetInfoW(connection_.Get(), item, units.data(), sizeof units, &bytes);
    return FromUtf16(units.data());
}

String OdbcLink::Quoted(std::string_view name) const {
    if (quote_.empty()) return String(name);
    return quote_ + Replace(name, quote_, quote_ + quote_) + quote_;
}

OdbcHandle OdbcLink::NewStatement(std::string_view statement) {
    if (broken_)
        RaiseOdbc(ConnectionLost, {"08003", 0, "The connection to the server is lost. Close it and open it again."},
                  engine_, statement);
    OdbcHandle handle(SQL_HANDLE_STMT, connection_.Get());
    if (!handle.Get()) Raise(connection_.Failure(), statement);
    return handle;
}

std::optional<OdbcFailure> OdbcLink::Prepare(const OdbcHandle& handle, const String& text) {
    if (HasZero(text)) return ZeroFailure();
    WideText wide(text);
    return FailureAfter(SQLPrepareW(handle.Get(), wide.Units(), SQL_NTS), handle);
}

std::optional<OdbcFailure> OdbcLink::Execute(const OdbcHandle& handle) {
    LimitTime(handle);
    return FailureAfter(SQLExecute(handle.Get()), handle);
}

std::optional<OdbcFailure> OdbcLink::ExecuteText(const OdbcHandle& handle, const String& text) {
    if (HasZero(text)) return ZeroFailure();
    LimitTime(handle);
    WideText wide(text);
    return FailureAfter(SQLExecDirectW(handle.Get(), wide.Units(), SQL_NTS), handle);
}

void OdbcLink::LimitTime(const OdbcHandle& handle) {
    if (dialect_->timeLimit.empty()) {
        SQLSetStmtAttrW(handle.Get(), SQL_ATTR_QUERY_TIMEOUT, AsPointer(timeout_), 0);
    } else if (timeout_ != knownTimeout_) {
        knownTimeout_ = timeout_;
        Command(String(dialect_->timeLimit) + CStr(timeout_));
    }
}

void OdbcLink::Command(std::string_view text) {
    const OdbcHandle handle = NewStatement(text);
    if (const auto failure = ExecuteText(handle, String(text))) Raise(*failure, text);
}

std::int64_t OdbcLink::Number(std::string_view select) {
    const OdbcHandle handle = NewStatement(select);
    if (const auto failure = ExecuteText(handle, String(select))) Raise(*failure, select);
    std::int64_t number = 0;
    SQLLEN length = 0;
    if (SQL_SUCCEEDED(SQLFetch(handle.Get())))
        SQLGetData(handle.Get(), 1, SQL_C_SBIGINT, &number, sizeof number, &length);
    return number;
}

void OdbcLink::Check(short code, std::string_view statement) {
    if (const auto failure = FailureAfter(code, connection_)) Raise(*failure, statement);
}

void OdbcLink::Begin() {
    if (!dialect_->begin.empty()) return Command(dialect_->begin);
    Check(SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<void*>(SQL_AUTOCOMMIT_OFF), 0),
          "BEGIN");
}

void OdbcLink::End(bool commit) {
    const char* const text = commit ? "COMMIT" : "ROLLBACK";
    Check(SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), commit ? SQL_COMMIT : SQL_ROLLBACK), text);
    if (dialect_->begin.empty())
        Check(SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<void*>(SQL_AUTOCOMMIT_ON), 0),
              text);
}

void OdbcLink::Raise(const OdbcFailure& failure, std::string_view statement) {
    const Long number = NumberOfOdbc(failure, *dialect_);
    if (number == ConnectionLost) broken_ = true;
    RaiseOdbc(number, failure, engine_, statement);
}

}  // namespace ADODB

#include "bench/OdbcByHand.h"

#include "bench/ImageByHand.h"

#include "platform/runtime/Date.h"

#include <array>
#include <deque>
#include <sql.h>
#include <sqlext.h>
#include <stdexcept>

namespace Bench {

constexpr std::size_t RowsOfACall = 100;

/// The values of one column in the rows of a call.
struct BoundColumn {
    std::vector<SQLBIGINT> wholes;
    std::vector<char> texts;
    std::vector<SQL_TIMESTAMP_STRUCT> times;
    std::vector<SQLLEN> lengths = std::vector<SQLLEN>(RowsOfACall);
};

namespace {

constexpr std::size_t LongestText = 256;

void Check(SQLRETURN code, SQLSMALLINT type, void* handle) {
    if (SQL_SUCCEEDED(code)) return;
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, 512> text{};
    SQLGetDiagRec(type, handle, 1, state.data(), nullptr, text.data(), text.size(), nullptr);
    throw std::runtime_error(reinterpret_cast<const char*>(text.data()));
}

/// Returns a number as the functions for attributes take it.
void* AsPointer(std::size_t number) {
    return reinterpret_cast<void*>(number);  // NOLINT(performance-no-int-to-ptr)
}

/// Binds each column that is read to memory of its own.
class ColumnBinder {
public:
    ColumnBinder(SQLHSTMT statement, std::deque<BoundColumn>& columns) : statement_(statement), columns_(columns) {}

    std::int64_t Whole() {
        BoundColumn& column = columns_.emplace_back();
        column.wholes.resize(RowsOfACall);
        Bind(SQL_C_SBIGINT, column.wholes.data(), sizeof(SQLBIGINT));
        return 0;
    }
    std::string Text() {
        BoundColumn& column = columns_.emplace_back();
        column.texts.resize(RowsOfACall * LongestText);
        Bind(SQL_C_CHAR, column.texts.data(), LongestText);
        return {};
    }
    double Days() {
        BoundColumn& column = columns_.emplace_back();
        column.times.resize(RowsOfACall);
        Bind(SQL_C_TYPE_TIMESTAMP, column.times.data(), sizeof(SQL_TIMESTAMP_STRUCT));
        return 0;
    }

private:
    void Bind(SQLSMALLINT type, void* values, std::size_t size) {
        const auto number = static_cast<SQLUSMALLINT>(columns_.size());
        Check(SQLBindCol(statement_, number, type, values, static_cast<SQLLEN>(size), columns_.back().lengths.data()),
              SQL_HANDLE_STMT, statement_);
    }

    SQLHSTMT statement_;
    std::deque<BoundColumn>& columns_;
};

/// Reads the columns of a row one after the other.
class OdbcRow {
public:
    OdbcRow(const std::deque<BoundColumn>& columns, std::size_t row) : column_(columns.begin()), row_(row) {}

    std::int64_t Whole() {
        const BoundColumn& column = *column_++;
        return column.lengths[row_] == SQL_NULL_DATA ? 0 : column.wholes[row_];
    }
    std::string Text() {
        const BoundColumn& column = *column_++;
        const SQLLEN length = column.lengths[row_];
        if (length >= static_cast<SQLLEN>(LongestText)) throw std::runtime_error("a text is too long");
        return {column.texts.data() + row_ * LongestText,
                length == SQL_NULL_DATA ? 0 : static_cast<std::size_t>(length)};
    }
    double Days() {
        const SQL_TIMESTAMP_STRUCT& time = (column_++)->times[row_];
        return Platform::DateFrom({time.year, time.month, time.day, time.hour, time.minute, time.second}).Days;
    }

private:
    std::deque<BoundColumn>::const_iterator column_;
    std::size_t row_;
};

/// Binds the values of a statement in order. They must live until it has run.
class ParameterBinder {
public:
    explicit ParameterBinder(SQLHSTMT statement) : statement_(statement) {}

    ParameterBinder& operator<<(std::int64_t value) {
        SQLBIGINT& kept = wholes_.emplace_back(value);
        SQLBindParameter(statement_, ++number_, SQL_PARAM_INPUT, SQL_C_SBIGINT, SQL_BIGINT, 0, 0, &kept, 0, nullptr);
        return *this;
    }
    ParameterBinder& operator<<(const std::string& value) {
        SQLLEN& length = lengths_.emplace_back(static_cast<SQLLEN>(value.size()));
        SQLBindParameter(statement_, ++number_, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR,
                         std::max<std::size_t>(value.size(), 1), 0, const_cast<char*>(value.data()), length, &length);
        return *this;
    }

private:
    SQLHSTMT statement_;
    SQLUSMALLINT number_ = 0;
    std::deque<SQLBIGINT> wholes_;
    std::deque<SQLLEN> lengths_;
};

}  // namespace

struct OdbcByHand::Statement {
    SQLHSTMT handle = nullptr;
    std::deque<BoundColumn> columns;
    SQLULEN fetched = 0;

    void Run() const { Check(SQLExecute(handle), SQL_HANDLE_STMT, handle); }
};

OdbcByHand::OdbcByHand(const std::string& settings)
    : patient_(nullptr, nullptr), image_(nullptr, nullptr), insert_(nullptr, nullptr), newest_(nullptr, nullptr) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<void*>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
    std::string text = settings;
    Check(SQLDriverConnect(connection_, nullptr, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS, nullptr, 0, nullptr,
                           SQL_DRIVER_NOPROMPT),
          SQL_HANDLE_DBC, connection_);
    patient_ = Prepare(READ_COLUMNS "WHERE PatientID=? ORDER BY DateCaptured_SD, ImageBildID");
    image_ = Prepare(READ_COLUMNS "WHERE ImageBildID=?");
    for (Statement* const statement : {patient_.get(), image_.get()}) {
        SQLSetStmtAttr(statement->handle, SQL_ATTR_ROW_ARRAY_SIZE, AsPointer(RowsOfACall), 0);
        SQLSetStmtAttr(statement->handle, SQL_ATTR_ROWS_FETCHED_PTR, &statement->fetched, 0);
        HandImage unused{};
        ReadImage(ColumnBinder(statement->handle, statement->columns), unused);
    }
    std::string marks = "(?";
    for (int i = 1; i < InsertedValues; ++i) marks += ",?";
    insert_ = Prepare(INSERT_IMAGE + marks + ")");
    newest_ = Prepare("SELECT MAX(ImageBildID) FROM ImageBild_T WHERE GraphicURL_NVC=? AND PatientID=?");
    ColumnBinder(newest_->handle, newest_->columns).Whole();
}

OdbcByHand::~OdbcByHand() {
    for (Owned* const statement : {&patient_, &image_, &insert_, &newest_}) statement->reset();
    SQLDisconnect(connection_);
    SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

OdbcByHand::Owned OdbcByHand::Prepare(const std::string& text) {
    Owned statement(new Statement, [](Statement* ended) {
        SQLFreeHandle(SQL_HANDLE_STMT, ended->handle);
        delete ended;
    });
    SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement->handle);
    std::string lower = text;  // names of tables have a letter case
    for (const char* name : {"ImageBild_T", "Root_T"})
        for (std::size_t at = lower.find(name); at != std::string::npos; at = lower.find(name, at))
            for (const char* c = name; *c != '\0'; ++c, ++at) lower[at] = static_cast<char>(std::tolower(*c));
    Check(SQLPrepare(statement->handle, reinterpret_cast<SQLCHAR*>(lower.data()), SQL_NTS), SQL_HANDLE_STMT,
          statement->handle);
    return statement;
}

void OdbcByHand::Execute(const char* statement) {
    SQLHSTMT handle = nullptr;
    SQLAllocHandle(SQL_HANDLE_STMT, connection_, &handle);
    std::string text = statement;
    const SQLRETURN code = SQLExecDirect(handle, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
    if (code != SQL_NO_DATA) Check(code, SQL_HANDLE_STMT, handle);
    SQLFreeHandle(SQL_HANDLE_STMT, handle);
}

std::vector<HandImage> OdbcByHand::Load(Statement& statement, std::int64_t key) {
    ParameterBinder binder(statement.handle);
    binder << key;
    statement.Run();
    std::vector<HandImage> images;
    while (SQL_SUCCEEDED(SQLFetch(statement.handle)))
        for (std::size_t row = 0; row < statement.fetched; ++row)
            ReadImage(OdbcRow(statement.columns, row), images.emplace_back());
    SQLFreeStmt(statement.handle, SQL_CLOSE);
    return images;
}

std::vector<HandImage> OdbcByHand::LoadPatient(std::int64_t patient) { return Load(*patient_, patient); }

HandImage OdbcByHand::LoadImage(std::int64_t id) {
    const std::vector<HandImage> images = Load(*image_, id);
    return images.empty() ? HandImage{} : images.front();
}

std::int64_t OdbcByHand::Insert(const HandImage& image) {
    ParameterBinder values(insert_->handle);
    BindImage(values, image);
    insert_->Run();
    ParameterBinder condition(newest_->handle);
    condition << image.url << image.patient;
    newest_->Run();
    SQLFetch(newest_->handle);
    const std::int64_t id = newest_->columns.front().wholes.front();
    SQLFreeStmt(newest_->handle, SQL_CLOSE);
    return id;
}

void OdbcByHand::Forget() { Execute("DELETE FROM imagebild_t WHERE Series_ID >= 9000000"); }

}  // namespace Bench

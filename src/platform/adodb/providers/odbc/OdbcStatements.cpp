#include "platform/adodb/providers/odbc/OdbcStatements.h"

#include "platform/adodb/providers/DecimalCell.h"
#include "platform/runtime/Convert.h"

#include <charconv>
#include <sql.h>
#include <sqlext.h>

namespace ADODB {

using namespace Platform;

namespace {

Cell CellOf(const Literal& literal) {
    if (!literal.isReal) return Cell::Of(literal.number);
    double real = 0;
    std::from_chars(literal.body.data(), literal.body.data() + literal.body.size(), real);
    return Cell::Of(real);
}

void AppendDigits(String& text, unsigned number, std::size_t width) {
    const String digits = std::to_string(number);
    if (digits.size() < width) text.append(width - digits.size(), '0');
    text += digits;
}

/// Returns "yyyy-mm-dd hh:nn:ss".
String TextOf(const SQL_TIMESTAMP_STRUCT& time) {
    String text;
    AppendDigits(text, static_cast<unsigned>(time.year), 4);
    AppendDigits(text += '-', time.month, 2);
    AppendDigits(text += '-', time.day, 2);
    AppendDigits(text += ' ', time.hour, 2);
    AppendDigits(text += ':', time.minute, 2);
    AppendDigits(text += ':', time.second, 2);
    return text;
}

}  // namespace

void OdbcValues::Add(const Cell& cell) {
    Value value{.kind = cell.kind};
    switch (cell.kind) {
        case Cell::Kind::Null: break;
        case Cell::Kind::Whole: value.whole = cell.whole; break;
        case Cell::Kind::Real: value.real = cell.real; break;
        case Cell::Kind::Text:
            value.start = bytes_.size();
            if (utf8_) {
                bytes_ += cell.Text();
            } else {
                const std::u16string units = ToUtf16(cell.Text());
                bytes_.append(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t));
            }
            value.bytes = static_cast<std::int64_t>(bytes_.size() - value.start);
    }
    values_.push_back(value);
}

void OdbcValues::Set(const std::vector<Literal>& literals, const std::optional<std::vector<bool>>& nullIfBlank) {
    values_.clear();
    bytes_.clear();
    for (std::size_t i = 0; i < literals.size(); ++i) {
        const Literal& literal = literals[i];
        if (!literal.isText)
            Add(CellOf(literal));
        else if (literal.body.empty() && nullIfBlank && (*nullIfBlank)[i])
            Add({});
        else if (literal.body.find('\'') == std::string_view::npos)
            Add(Cell::Of(literal.body));
        else
            Add(Cell::Of(std::string_view(Unquoted(literal.body))));
    }
}

void OdbcValues::Set(std::span<const Variant> values) {
    values_.clear();
    bytes_.clear();
    for (const Variant& value : values) Add(ADODB::CellOf(value));
}

void OdbcValues::Bind(const OdbcHandle& statement) {
    SQLUSMALLINT number = 0;
    for (Value& value : values_) {
        const auto bind = [&](SQLSMALLINT type, SQLSMALLINT column, std::size_t size, void* data) {
            SQLBindParameter(statement.Get(), ++number, SQL_PARAM_INPUT, type, column, size, 0, data, 0,
                             reinterpret_cast<SQLLEN*>(&value.bytes));
        };
        switch (value.kind) {
            case Cell::Kind::Null:
                value.bytes = SQL_NULL_DATA;
                bind(SQL_C_CHAR, SQL_VARCHAR, 1, nullptr);
                break;
            case Cell::Kind::Whole: bind(SQL_C_SBIGINT, SQL_BIGINT, 0, &value.whole); break;
            case Cell::Kind::Real: bind(SQL_C_DOUBLE, SQL_DOUBLE, 0, &value.real); break;
            case Cell::Kind::Text: BindText(statement, ++number, value);
        }
    }
}

void OdbcValues::BindText(const OdbcHandle& statement, unsigned short number, Value& value) {
    constexpr std::size_t longestShort = 4000;
    const std::size_t count = static_cast<std::size_t>(value.bytes) / (utf8_ ? 1 : sizeof(char16_t));
    const bool isLong = count > longestShort;
    const SQLSMALLINT narrow = isLong ? SQL_LONGVARCHAR : SQL_VARCHAR, wide = isLong ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
    SQLBindParameter(statement.Get(), number, SQL_PARAM_INPUT, utf8_ ? SQL_C_CHAR : SQL_C_WCHAR, utf8_ ? narrow : wide,
                     std::max<std::size_t>(count, 1), 0, bytes_.data() + value.start, value.bytes,
                     reinterpret_cast<SQLLEN*>(&value.bytes));
}

OdbcRows::OdbcRows(OdbcLink& link, const OdbcHandle& handle, std::shared_ptr<const OdbcColumns> columns,
                   std::string_view statement)
    : link_(link),
      handle_(handle),
      columns_(std::move(columns)),
      statement_(statement),
      cells_(columns_->forms.size()),
      texts_(columns_->forms.size()) {}

OdbcRows::~OdbcRows() { SQLFreeStmt(handle_.Get(), SQL_CLOSE); }

void OdbcRows::Fail() { link_.Raise(handle_.Failure(), statement_); }

bool OdbcRows::Next() {
    const SQLRETURN code = SQLFetch(handle_.Get());
    if (code == SQL_NO_DATA) return false;
    if (!SQL_SUCCEEDED(code)) Fail();
    for (std::size_t i = 0; i < cells_.size(); ++i) cells_[i] = Read(i);
    return true;
}

Cell OdbcRows::Read(std::size_t column) {
    switch (columns_->forms[column]) {
        case OdbcForm::Whole: {
            std::int64_t whole = 0;
            return Get(column, SQL_C_SBIGINT, &whole, sizeof whole) ? Cell::Of(whole) : Cell();
        }
        case OdbcForm::Real: {
            double real = 0;
            return Get(column, SQL_C_DOUBLE, &real, sizeof real) ? Cell::Of(real) : Cell();
        }
        case OdbcForm::Boolean: {
            unsigned char bit = 0;
            return Get(column, SQL_C_BIT, &bit, sizeof bit) ? Cell::Of(std::int64_t{bit != 0 ? -1 : 0}) : Cell();
        }
        case OdbcForm::Time: {
            SQL_TIMESTAMP_STRUCT time{};
            if (!Get(column, SQL_C_TYPE_TIMESTAMP, &time, sizeof time)) return {};
            return Cell::Of(std::string_view(texts_[column] = TextOf(time)));
        }
        case OdbcForm::Decimal: {
            const Cell text = ReadText(column);
            return text.kind == Cell::Kind::Text ? DecimalCell(text.Text()) : text;
        }
        case OdbcForm::Bytes: return ReadBytes(column, SQL_C_BINARY);
        case OdbcForm::Text: break;
    }
    return ReadText(column);
}

bool OdbcRows::Get(std::size_t column, short type, void* value, std::int64_t size) {
    SQLLEN length = 0;
    const SQLRETURN code = SQLGetData(handle_.Get(), static_cast<SQLUSMALLINT>(column + 1), type, value, size, &length);
    if (!SQL_SUCCEEDED(code)) Fail();
    return length != SQL_NULL_DATA;
}

template <class Unit>
bool OdbcRows::ReadAll(std::size_t column, short type, std::vector<Unit>& units, std::size_t& count) {
    constexpr std::size_t usual = 512;
    const std::size_t end = type == SQL_C_BINARY ? 0 : 1;  // a part of a text has a final zero
    if (units.empty()) units.resize(usual);
    for (count = 0;;) {
        SQLLEN length = 0;
        const std::size_t room = units.size() - count;
        const SQLRETURN code = SQLGetData(handle_.Get(), static_cast<SQLUSMALLINT>(column + 1), type,
                                          units.data() + count, static_cast<SQLLEN>(room * sizeof(Unit)), &length);
        if (code == SQL_NO_DATA) return true;
        if (!SQL_SUCCEEDED(code)) Fail();
        if (length == SQL_NULL_DATA) return false;
        const std::size_t left = static_cast<std::size_t>(length) / sizeof(Unit);
        if (length != SQL_NO_TOTAL && left + end <= room) {
            count += left;
            return true;
        }
        count += room - end;
        units.resize(length == SQL_NO_TOTAL ? 2 * units.size() : count + left - (room - end) + end);
    }
}

Cell OdbcRows::ReadText(std::size_t column) {
    if (link_.Dialect().utf8) return ReadBytes(column, SQL_C_CHAR);
    std::size_t count = 0;
    if (!ReadAll(column, SQL_C_WCHAR, units_, count)) return {};
    return Cell::Of(std::string_view(texts_[column] = FromUtf16({units_.data(), count})));
}

Cell OdbcRows::ReadBytes(std::size_t column, short type) {
    std::size_t count = 0;
    if (!ReadAll(column, type, bytes_, count)) return {};
    return Cell::Of(std::string_view(texts_[column].assign(bytes_.data(), count)));
}

}  // namespace ADODB

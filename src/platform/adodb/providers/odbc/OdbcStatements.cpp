#include "platform/adodb/providers/odbc/OdbcStatements.h"

#include "platform/adodb/providers/DecimalCell.h"
#include "platform/runtime/Convert.h"

#include <charconv>

namespace ADODB {

using namespace Platform;

namespace {

Cell CellOf(const Literal& literal) {
    if (!literal.isReal) return Cell::Of(literal.number);
    double real = 0;
    std::from_chars(literal.body.data(), literal.body.data() + literal.body.size(), real);
    return Cell::Of(real);
}

/// Writes a number with this many digits, and returns the position behind it.
char* PutDigits(char* at, unsigned number, std::size_t width) {
    for (std::size_t i = width; i > 0; --i, number /= 10) at[i - 1] = static_cast<char>('0' + number % 10);
    return at + width;
}

/// Writes "yyyy-mm-dd hh:nn:ss".
void PutTime(String& text, const SQL_TIMESTAMP_STRUCT& time) {
    text.assign("yyyy-mm-dd hh:nn:ss");
    char* at = PutDigits(text.data(), static_cast<unsigned>(time.year), 4) + 1;
    for (const unsigned part :
         {unsigned{time.month}, unsigned{time.day}, unsigned{time.hour}, unsigned{time.minute}, unsigned{time.second}})
        at = PutDigits(at, part, 2) + 1;
}

/// Returns the type and the memory in which a value is bound; a null pointer for one that is not.
std::pair<SQLSMALLINT, void*> MemoryOf(OdbcValue& value, OdbcForm form, std::uint64_t size, bool utf8) {
    switch (form) {
        case OdbcForm::Whole: return {SQL_C_SBIGINT, &value.whole};
        case OdbcForm::Real: return {SQL_C_DOUBLE, &value.real};
        case OdbcForm::Boolean: return {SQL_C_BIT, &value.bit};
        case OdbcForm::Time: return {SQL_C_TYPE_TIMESTAMP, &value.time};
        case OdbcForm::Bytes: return {};
        case OdbcForm::Decimal:
        case OdbcForm::Text: break;
    }
    if (!utf8) return {};
    constexpr std::uint64_t usual = 256, bytesOfACharacter = 4;
    value.text.resize((size == 0 ? usual : std::min(size, usual)) * bytesOfACharacter + 1);
    return {SQL_C_CHAR, value.text.data()};
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

std::vector<OdbcValue> BoundValues(const OdbcHandle& statement, const OdbcColumns& columns, bool utf8) {
    std::vector<OdbcValue> values(columns.forms.size());
    SQLUSMALLINT number = 0;
    for (OdbcValue& value : values) {
        const auto [type, memory] = MemoryOf(value, columns.forms[number], columns.sizes[number], utf8);
        ++number;
        value.isBound = memory && SQL_SUCCEEDED(SQLBindCol(statement.Get(), number, type, memory,
                                                           static_cast<SQLLEN>(value.text.size()), &value.bytes));
    }
    return values;
}

OdbcRows::OdbcRows(OdbcLink& link, const OdbcStatement& statement, std::string_view text)
    : link_(link), statement_(statement), text_(text), cells_(statement.row.size()), texts_(statement.row.size()) {
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        if (!statement.row[i].isBound) unbound_.push_back(i);
        if (statement.columns->forms[i] == OdbcForm::Time) times_.push_back(i);
    }
}

OdbcRows::~OdbcRows() { SQLFreeStmt(statement_.handle.Get(), SQL_CLOSE); }

void OdbcRows::Fail() { link_.Raise(statement_.handle.Failure(), text_); }

bool OdbcRows::Next() {
    const SQLRETURN code = SQLFetch(statement_.handle.Get());
    if (code == SQL_NO_DATA) return false;
    if (!SQL_SUCCEEDED(code)) Fail();
    Complete(code == SQL_SUCCESS_WITH_INFO);
    return true;
}

void OdbcRows::Complete(bool mayBeCut) {
    for (const std::size_t column : unbound_) cells_[column] = Read(column);
    for (const std::size_t column : times_) cells_[column] = TimeIn(column);
    const std::vector<OdbcValue>& row = statement_.row;
    isCut_ = mayBeCut && std::any_of(row.begin(), row.end(), IsCut);
    if (!isCut_) return;
    for (std::size_t i = 0; i < row.size(); ++i)
        if (IsCut(row[i])) cells_[i] = ReadText(i);
}

Cell OdbcRows::TimeIn(std::size_t column) {
    const OdbcValue& value = statement_.row[column];
    if (value.bytes == SQL_NULL_DATA) return {};
    PutTime(texts_[column], value.time);
    return Cell::Of(std::string_view(texts_[column]));
}

bool OdbcRows::IsCut(const OdbcValue& value) {
    const bool isAsLong = value.bytes == SQL_NO_TOTAL || std::cmp_greater_equal(value.bytes, value.text.size());
    return value.isBound && !value.text.empty() && value.bytes != SQL_NULL_DATA && isAsLong;
}

Cell OdbcRows::At(Long ordinal) const {
    const auto column = static_cast<std::size_t>(ordinal);
    const OdbcValue& value = statement_.row[column];
    if (!value.isBound || (isCut_ && IsCut(value))) return cells_[column];
    if (value.bytes == SQL_NULL_DATA) return {};
    const std::string_view text(value.text.data(), value.text.empty() ? 0 : static_cast<std::size_t>(value.bytes));
    switch (statement_.columns->forms[column]) {
        case OdbcForm::Whole: return Cell::Of(value.whole);
        case OdbcForm::Real: return Cell::Of(value.real);
        case OdbcForm::Boolean: return Cell::Of(std::int64_t{value.bit != 0 ? -1 : 0});
        case OdbcForm::Decimal: return DecimalCell(text);
        case OdbcForm::Time: return cells_[column];
        default: return Cell::Of(text);
    }
}

Cell OdbcRows::Read(std::size_t column) {
    switch (statement_.columns->forms[column]) {
        case OdbcForm::Decimal: {
            const Cell text = ReadText(column);
            return text.kind == Cell::Kind::Text ? DecimalCell(text.Text()) : text;
        }
        case OdbcForm::Bytes: return ReadBytes(column, SQL_C_BINARY);
        default: return ReadText(column);
    }
}

template <class Unit>
bool OdbcRows::ReadAll(std::size_t column, short type, std::vector<Unit>& units, std::size_t& count) {
    constexpr std::size_t usual = 512;
    const std::size_t end = type == SQL_C_BINARY ? 0 : 1;  // a part of a text has a final zero
    if (units.empty()) units.resize(usual);
    for (count = 0;;) {
        SQLLEN length = 0;
        const std::size_t room = units.size() - count;
        const SQLRETURN code = SQLGetData(statement_.handle.Get(), static_cast<SQLUSMALLINT>(column + 1), type,
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

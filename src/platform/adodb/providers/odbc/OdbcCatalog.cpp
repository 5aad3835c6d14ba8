#include "platform/adodb/providers/odbc/OdbcCatalog.h"

#include "platform/adodb/providers/odbc/OdbcApi.h"
#include "platform/runtime/Convert.h"

#include <algorithm>
#include <array>

namespace ADODB {

using namespace Platform;

namespace {

/// A text that a function of the driver writes.
using NameBuffer = std::array<char16_t, 256>;

String AttributeText(const OdbcHandle& statement, SQLUSMALLINT ordinal, SQLUSMALLINT attribute) {
    NameBuffer units{};
    SQLColAttributeW(statement.Get(), ordinal, attribute, units.data(), sizeof units, nullptr, nullptr);
    return FromUtf16(units.data());
}

/// Returns the type of a column and the form of its values.
std::pair<DataTypeEnum, OdbcForm> TypeOf(SQLSMALLINT type, SQLSMALLINT digits) {
    switch (type) {
        case SQL_BIT: return {adBoolean, OdbcForm::Boolean};
        case SQL_TINYINT:
        case SQL_SMALLINT: return {adSmallInt, OdbcForm::Whole};
        case SQL_INTEGER: return {adInteger, OdbcForm::Whole};
        case SQL_BIGINT: return {adBigInt, OdbcForm::Whole};
        case SQL_REAL: return {adSingle, OdbcForm::Real};
        case SQL_FLOAT:
        case SQL_DOUBLE: return {adDouble, OdbcForm::Real};
        case SQL_DECIMAL:
        case SQL_NUMERIC: return {digits == 0 ? adBigInt : adDouble, OdbcForm::Decimal};
        case SQL_TYPE_DATE:
        case SQL_TYPE_TIMESTAMP: return {adDate, OdbcForm::Time};
        case SQL_TYPE_TIME: return {adDate, OdbcForm::Text};
        case SQL_LONGVARCHAR:
        case SQL_WLONGVARCHAR: return {adLongVarWChar, OdbcForm::Text};
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY: return {adLongVarBinary, OdbcForm::Bytes};
        default: return {adVarWChar, OdbcForm::Text};
    }
}

}  // namespace

std::shared_ptr<const OdbcColumns> OdbcCatalog::ColumnsOf(const OdbcHandle& statement) {
    SQLSMALLINT count = 0;
    SQLNumResultCols(statement.Get(), &count);
    if (count == 0) return nullptr;
    std::vector<Column> columns;
    auto result = std::make_shared<OdbcColumns>();
    for (SQLSMALLINT i = 1; i <= count; ++i) {
        NameBuffer name{};
        SQLSMALLINT type = 0, digits = 0, length = 0, nullable = 0;
        SQLULEN size = 0;
        SQLLEN counter = SQL_FALSE;
        const auto ordinal = static_cast<SQLUSMALLINT>(i);
        SQLDescribeColW(statement.Get(), ordinal, reinterpret_cast<SQLWCHAR*>(name.data()), name.size(), &length, &type,
                        &size, &digits, &nullable);
        SQLColAttributeW(statement.Get(), ordinal, SQL_DESC_AUTO_UNIQUE_VALUE, nullptr, 0, nullptr, &counter);
        const auto [dataType, form] = TypeOf(type, digits);
        Column column;
        column.Name = FromUtf16(name.data());
        column.Type = dataType;
        column.Counter = counter == SQL_TRUE;
        if (dataType == adVarWChar && std::in_range<Long>(size)) column.DefinedSize = static_cast<Long>(size);
        column.Table = AttributeText(statement, ordinal, SQL_DESC_BASE_TABLE_NAME);
        if (!column.Table.empty()) {
            column.Origin = AttributeText(statement, ordinal, SQL_DESC_BASE_COLUMN_NAME);
            const std::vector<String> key = KeyOf(column.Table);
            column.Key = std::find(key.begin(), key.end(), column.Origin) != key.end();
        }
        columns.push_back(std::move(column));
        result->forms.push_back(form);
        result->sizes.push_back(size);
    }
    result->columns = std::make_shared<const Columns>(std::move(columns));
    return result;
}

bool OdbcCatalog::RejectsBlank(const String& table, const String& column) {
    if (!tables_.contains(table)) tables_.emplace(table, ReadTable(table));
    const std::shared_ptr<const OdbcColumns>& columns = tables_[table];
    const Long ordinal = columns ? columns->columns->Find(column) : Columns::Missing;
    if (ordinal == Columns::Missing) return false;
    const OdbcForm form = columns->forms[static_cast<std::size_t>(ordinal)];
    return (form != OdbcForm::Text && form != OdbcForm::Bytes) || columns->columns->At(ordinal).Type == adDate;
}

std::shared_ptr<const OdbcColumns> OdbcCatalog::ReadTable(const String& table) {
    const String select = "SELECT * FROM " + table + " WHERE 1=0";
    const OdbcHandle handle = link_.NewStatement(select);
    if (const auto failure = link_.Prepare(handle, ForOdbc(link_.Dialect(), select, {}))) {
        if (NumberOfOdbc(*failure, link_.Dialect()) == LockConflict) link_.Raise(*failure, select);
        return nullptr;
    }
    return ColumnsOf(handle);
}

void OdbcCatalog::Forget() {
    keys_.clear();
    tables_.clear();
}

std::vector<String> OdbcCatalog::KeyOf(const String& table) {
    if (const auto known = keys_.find(table); known != keys_.end()) return known->second;
    const std::optional<std::vector<String>> key = ReadKey(table);
    return key ? keys_.emplace(table, *key).first->second : std::vector<String>();
}

std::optional<std::vector<String>> OdbcCatalog::ReadKey(const String& table) {
    const OdbcHandle handle = link_.NewStatement(table);
    std::u16string name = ToUtf16(table);
    const SQLRETURN code =
        SQLPrimaryKeysW(handle.Get(), nullptr, 0, nullptr, 0, reinterpret_cast<SQLWCHAR*>(name.data()), SQL_NTS);
    if (!SQL_SUCCEEDED(code)) return {};
    constexpr SQLUSMALLINT columnName = 4;
    std::vector<String> key;
    while (SQL_SUCCEEDED(SQLFetch(handle.Get()))) {
        NameBuffer units{};
        SQLLEN length = 0;
        SQLGetData(handle.Get(), columnName, SQL_C_WCHAR, units.data(), sizeof units, &length);
        key.push_back(FromUtf16(units.data()));
    }
    return key;
}

}  // namespace ADODB

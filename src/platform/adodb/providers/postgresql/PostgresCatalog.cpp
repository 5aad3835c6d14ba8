#include "platform/adodb/providers/postgresql/PostgresCatalog.h"

#include "platform/adodb/providers/Lexer.h"
#include "platform/runtime/Convert.h"

#include <algorithm>
#include <libpq-fe.h>
#include <unordered_map>

namespace ADODB {

using namespace Platform;

namespace {

// The identifiers of built-in types never change; the server's header that lists them is not for clients.
constexpr unsigned BoolType = 16, ByteaType = 17, NameType = 19, Int8Type = 20, Int2Type = 21, Int4Type = 23,
                   TextType = 25, OidType = 26, Float4Type = 700, Float8Type = 701, BlankPaddedType = 1042,
                   VarcharType = 1043, DateType = 1082, TimeType = 1083, TimestampType = 1114,
                   TimestampWithZoneType = 1184, NumericType = 1700;

DataTypeEnum DataTypeOf(unsigned type) {
    switch (type) {
        case BoolType: return adBoolean;
        case ByteaType: return adLongVarBinary;
        case Int8Type:
        case OidType: return adBigInt;
        case Int2Type: return adSmallInt;
        case Int4Type: return adInteger;
        case Float4Type: return adSingle;
        case Float8Type:
        case NumericType: return adDouble;
        case DateType:
        case TimeType:
        case TimestampType:
        case TimestampWithZoneType: return adDate;
        case TextType: return adLongVarWChar;
        default: return adVarWChar;
    }
}

/// Returns the number of characters that a column of limited length may have.
Long WidthOf(unsigned type, int modifier) {
    constexpr int headerSize = 4;
    const bool limited = type == VarcharType || type == BlankPaddedType;
    return limited && modifier > headerSize ? modifier - headerSize : 0;
}

/// The words of a statement by their lower case, each with the spelling of its last occurrence.
std::unordered_map<String, String> SpellingsIn(std::string_view statement) {
    std::unordered_map<String, String> spellings;
    for (std::size_t at = 0; at < statement.size();) {
        const Lexer::Token token = Lexer::TokenAt(statement, at);
        if (token.kind == Lexer::Kind::Unclear) break;
        const String word(statement.substr(at, token.end - at));
        if (token.kind == Lexer::Kind::Word) spellings.insert_or_assign(LCase(word), word);
        at = token.end;
    }
    return spellings;
}

constexpr const char* SelectTables =
    "SELECT a.attrelid, c.relname, a.attnum, a.attname, COALESCE(a.attnum = ANY (i.indkey), false), "
    "a.attidentity <> '' OR COALESCE(pg_get_expr(d.adbin, d.adrelid) LIKE 'nextval(%', false), "
    // citext has no width of its own: it is that of the column's check.
    "substring(pg_get_constraintdef(k.oid) FROM 'length.* <= ([0-9]+)') "
    "FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid "
    "LEFT JOIN pg_index i ON i.indrelid = a.attrelid AND i.indisprimary "
    "LEFT JOIN pg_attrdef d ON d.adrelid = a.attrelid AND d.adnum = a.attnum "
    "LEFT JOIN pg_constraint k ON k.conrelid = a.attrelid AND k.contype = 'c' AND k.conkey = ARRAY[a.attnum] "
    "WHERE a.attnum > 0 AND NOT a.attisdropped AND c.relkind IN ('r', 'p', 'v', 'm', 'f') AND (c.oid = ";

}  // namespace

PostgresForm FormOfType(unsigned type) {
    switch (type) {
        case BoolType: return PostgresForm::Boolean;
        case Int8Type:
        case OidType:
        case Int2Type:
        case Int4Type: return PostgresForm::Whole;
        case Float4Type:
        case Float8Type: return PostgresForm::Real;
        case NumericType: return PostgresForm::Numeric;
        default: return PostgresForm::Text;
    }
}

bool RejectsBlank(unsigned type) { return FormOfType(type) != PostgresForm::Text || DataTypeOf(type) == adDate; }

std::shared_ptr<const PostgresColumns> PostgresCatalog::ColumnsOf(const pg_result* description,
                                                                  std::string_view statement) {
    const int count = PQnfields(description);
    if (count == 0) return nullptr;
    const std::unordered_map<String, String> spellings = SpellingsIn(statement);
    std::vector<Column> columns;
    auto result = std::make_shared<PostgresColumns>();
    for (int i = 0; i < count; ++i) {
        const unsigned type = PQftype(description, i);
        Column column;
        column.Name = PQfname(description, i);
        const auto spelling = spellings.find(column.Name);
        if (spelling != spellings.end()) column.Name = spelling->second;
        column.Type = DataTypeOf(type);
        column.DefinedSize = WidthOf(type, PQfmod(description, i));
        if (const unsigned identifier = PQftable(description, i); identifier != InvalidOid) {
            const Table& table = TableOf(identifier);
            const auto origin = table.columns.find(PQftablecol(description, i));
            if (origin != table.columns.end()) {
                column.Table = table.name;
                column.Origin = origin->second.name;
                column.Key = origin->second.key;
                column.Counter = origin->second.counter;
                if (column.DefinedSize == 0) column.DefinedSize = origin->second.width;
            }
        }
        columns.push_back(std::move(column));
        result->forms.push_back(FormOfType(type));
    }
    result->columns = std::make_shared<const Columns>(std::move(columns));
    return result;
}

std::vector<String> PostgresCatalog::KeyOf(const String& table) {
    if (tables_.empty()) Read(InvalidOid);
    const auto found =
        std::find_if(tables_.begin(), tables_.end(), [&](const auto& entry) { return entry.second.name == table; });
    std::vector<String> key;
    if (found == tables_.end()) return key;
    for (const auto& [number, column] : found->second.columns)
        if (column.key) key.push_back(column.name);
    return key;
}

const PostgresCatalog::Table& PostgresCatalog::TableOf(unsigned identifier) {
    if (!tables_.contains(identifier)) Read(identifier);
    return tables_[identifier];
}

void PostgresCatalog::Read(unsigned identifier) {
    const String scope = tables_.empty() ? " OR c.relnamespace = ANY (current_schemas(false)::regnamespace[])" : "";
    const String select = SelectTables + std::to_string(identifier) + scope + ")";
    link_.QueueText(select);
    const std::vector<PostgresResult> results = link_.Exchange(select);
    PostgresLink::RaiseFirstFailure(results, select);
    const PGresult* const rows = results.front().get();
    const auto numberAt = [&](int row, int column) { return std::strtoul(PQgetvalue(rows, row, column), nullptr, 10); };
    const auto flagAt = [&](int row, int column) { return *PQgetvalue(rows, row, column) == 't'; };
    for (int row = 0; row < PQntuples(rows); ++row) {
        Table& table = tables_[static_cast<unsigned>(numberAt(row, 0))];
        table.name = PQgetvalue(rows, row, 1);
        TableColumn& column = table.columns[static_cast<int>(numberAt(row, 2))];
        const Long width = std::max(column.width, static_cast<Long>(numberAt(row, 6)));  // a column may have two checks
        column = {PQgetvalue(rows, row, 3), flagAt(row, 4), flagAt(row, 5), width};
    }
}

}  // namespace ADODB

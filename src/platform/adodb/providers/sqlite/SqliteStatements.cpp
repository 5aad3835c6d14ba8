#include "platform/adodb/providers/sqlite/SqliteStatements.h"

#include "platform/adodb/providers/sqlite/SqliteErrors.h"
#include "platform/adodb/providers/sqlite/SqliteOrChains.h"
#include "platform/runtime/Convert.h"

#include <algorithm>
#include <sqlite3.h>

namespace ADODB {

using namespace Platform;

namespace {

String TextOrEmpty(const char* text) { return text ? text : ""; }

/// Returns the type of a declared type, and the width in its parentheses.
void TakeDeclaredType(Column& column, const char* declared) {
    const String type = UCase(TextOrEmpty(declared));
    const auto has = [&](std::string_view part) { return Contains(type, part); };
    if (has("BOOL") || type == "BIT")
        column.Type = adBoolean;
    else if (has("DATE") || has("TIME"))
        column.Type = adDate;
    else if (has("BIGINT"))
        column.Type = adBigInt;
    else if (has("SMALLINT"))
        column.Type = adSmallInt;
    else if (has("INT") || has("LONG") || has("COUNTER"))
        column.Type = adInteger;
    else if (has("CHAR"))
        column.Type = adVarWChar;
    else if (has("TEXT") || has("CLOB") || has("MEMO"))
        column.Type = adLongVarWChar;
    else if (has("BLOB"))
        column.Type = adLongVarBinary;
    else if (has("REAL") || has("FLOA") || has("DOUB"))
        column.Type = adDouble;
    const auto open = type.find('(');
    if (column.Type == adVarWChar && open != String::npos) column.DefinedSize = CLng(Val(type.substr(open + 1)));
}

Column ColumnOf(sqlite3* database, sqlite3_stmt* compiled, int at) {
    Column column;
    column.Name = TextOrEmpty(sqlite3_column_name(compiled, at));
    column.Table = TextOrEmpty(sqlite3_column_table_name(compiled, at));
    column.Origin = TextOrEmpty(sqlite3_column_origin_name(compiled, at));
    TakeDeclaredType(column, sqlite3_column_decltype(compiled, at));
    int notNull = 0, key = 0, counter = 0;
    if (!column.Table.empty() &&
        sqlite3_table_column_metadata(database, sqlite3_column_database_name(compiled, at), column.Table.c_str(),
                                      column.Origin.c_str(), nullptr, nullptr, &notNull, &key, &counter) == SQLITE_OK) {
        column.Key = key != 0;
        // A key of this very type is the row's own number, which the engine counts up by itself.
        const bool rowNumber =
            key != 0 && EqualsIgnoringCase(TextOrEmpty(sqlite3_column_decltype(compiled, at)), "INTEGER");
        column.Counter = counter != 0 || rowNumber;
    }
    return column;
}

bool IsBlank(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == ' ' || c == ';' || (c >= '\t' && c <= '\r'); });
}

/// Forms of the suite's own engine that this one spells differently.
std::string_view Adapted(std::string_view statement, String& buffer) {
    if (EqualsIgnoringCase(Trim(statement), "SELECT @@IDENTITY")) return "SELECT last_insert_rowid()";
    constexpr std::string_view deleteStar = "DELETE * FROM";
    if (!EqualsIgnoringCase(statement.substr(0, deleteStar.size()), deleteStar)) return statement;
    return buffer = "DELETE FROM" + String(statement.substr(deleteStar.size()));
}

}  // namespace

SqliteStatement::SqliteStatement(SqliteStatement&& other) noexcept
    : shape(std::move(other.shape)),
      bindings(std::move(other.bindings)),
      compiled_(std::exchange(other.compiled_, nullptr)),
      columns_(std::move(other.columns_)) {}

SqliteStatement::~SqliteStatement() { sqlite3_finalize(compiled_); }

const std::shared_ptr<const Columns>& SqliteStatement::ResultColumns(sqlite3* database) {
    const int count = sqlite3_column_count(compiled_);
    if (columns_ || count == 0) return columns_;
    std::vector<Column> columns;
    columns.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) columns.push_back(ColumnOf(database, compiled_, i));
    return columns_ = std::make_shared<const Columns>(std::move(columns));
}

sqlite3_stmt* SqliteStatements::Compile(std::string_view text, bool orNothing) {
    sqlite3_stmt* compiled = nullptr;
    const char* tail = nullptr;
    ++compiled_;
    const int code = sqlite3_prepare_v3(database_, text.data(), static_cast<int>(text.size()),
                                        SQLITE_PREPARE_PERSISTENT, &compiled, &tail);
    if (code != SQLITE_OK) {
        constexpr std::string_view tooDeep = "Expression tree is too large";
        if (Contains(sqlite3_errmsg(database_), tooDeep)) {
            const std::string balanced = WithBalancedOrChains(text);
            if (balanced != text) return Compile(balanced, orNothing);
        }
        if (orNothing) return nullptr;
        RaiseSqlite(database_, text);
    }
    if (!IsBlank(text.substr(static_cast<std::size_t>(tail - text.data())))) {
        sqlite3_finalize(compiled);
        RaiseSqlite(ErrorsInCommand, "Characters found after end of SQL statement.", text);
    }
    if (!compiled) RaiseSqlite(ErrorsInCommand, "There is no statement in the text.", text);
    return compiled;
}

std::optional<SqliteStatement> SqliteStatements::CompileShape(std::string_view statement,
                                                              std::vector<Literal>& literals) {
    Shape shape;
    if (!CutAtLiterals(statement, shape, literals)) return {};
    if (literals.size() > static_cast<std::size_t>(sqlite3_limit(database_, SQLITE_LIMIT_VARIABLE_NUMBER, -1)))
        return {};
    sqlite3_stmt* const handle = Compile(shape.Text(), true);
    if (!handle) return {};
    SqliteStatement compiled(handle);
    if (sqlite3_bind_parameter_count(handle) != static_cast<int>(literals.size())) return {};
    compiled.shape = std::move(shape);
    return compiled;
}

SqliteStatement& SqliteStatements::For(std::string_view text, std::vector<Literal>& literals) {
    if (SqliteStatement* kept = cache_.Find(text, literals)) return *kept;
    if (std::optional<SqliteStatement> shaped = CompileShape(text, literals))
        return cache_.Keep(std::move(*shaped), text);
    literals.clear();
    String buffer;
    SqliteStatement compiled(Compile(Adapted(text, buffer), false));
    if (sqlite3_bind_parameter_count(compiled.Compiled()) > 0)
        RaiseSqlite(UnknownName, "No value given for one or more required parameters.", text);
    return cache_.KeepOnce(std::move(compiled));
}

SqliteStatement& SqliteStatements::ForMarked(std::string_view text) {
    std::vector<Literal> none;
    if (SqliteStatement* kept = cache_.Find(text, none)) return *kept;
    SqliteStatement compiled(Compile(text, false));
    compiled.shape.pieces.emplace_back(text);
    return cache_.Keep(std::move(compiled), text);
}

}  // namespace ADODB

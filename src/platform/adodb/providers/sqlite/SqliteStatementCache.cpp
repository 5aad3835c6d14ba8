#include "platform/adodb/providers/sqlite/SqliteStatementCache.h"

#include "platform/adodb/providers/sqlite/SqliteErrors.h"
#include "platform/runtime/Convert.h"

#include <algorithm>
#include <sqlite3.h>

namespace ADODB {

using namespace Platform;

namespace {

/// Returns the beginning of a text, by which cached statements are found: long enough to distinguish statements, short
/// enough to end before the first literal as a rule.
constexpr std::size_t StartLength = 16;
std::string_view StartOf(std::string_view text) { return text.substr(0, StartLength); }

/// Returns the position of a part of a text.
std::size_t OffsetIn(std::string_view text, std::string_view part) {
    return static_cast<std::size_t>(part.data() - text.data());
}

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

std::optional<PieceBindings> PieceBindings::Of(std::span<const StatementPiece> pieces, std::string_view statement,
                                               const std::vector<Literal>& literals) {
    using Kind = StatementPiece::Kind;
    if (std::any_of(pieces.begin(), pieces.end(), [](const auto& piece) { return piece.kind == Kind::Other; }))
        return {};
    PieceBindings bindings;
    auto literal = literals.begin();
    std::size_t at = 0;
    bindings.fixed_.emplace_back();
    for (const StatementPiece& piece : pieces) {
        if (piece.kind == Kind::Fixed) {
            bindings.fixed_.back() += piece.text;
            at += piece.text.size();
            continue;
        }
        const bool isText = piece.kind == Kind::Text;
        const std::string body = isText ? std::string(piece.text) : CStr(piece.number);
        literal = bindings.TakeFixed(literal, literals.end(), statement.substr(0, at));
        const bool whole = literal != literals.end() && literal->isText == isText && literal->body == body &&
                           OffsetIn(statement, literal->body) == at;
        // Behind a minus sign, that of a negative number would begin a comment.
        if (!whole || bindings.fixed_.back().ends_with('-')) return {};
        bindings.sources_.push_back({true, isText, {}, 0});
        bindings.kinds_.push_back(piece.kind);
        bindings.fixed_.emplace_back();
        at += body.size();
        ++literal;
    }
    if (bindings.TakeFixed(literal, literals.end(), statement) != literals.end()) return {};
    return bindings;
}

PieceBindings::Position PieceBindings::TakeFixed(Position literal, Position last, std::string_view fixed) {
    for (; literal != last && OffsetIn(fixed, literal->body) + literal->body.size() < fixed.size(); ++literal)
        sources_.push_back({false, literal->isText, std::string(literal->body), literal->number});
    return literal;
}

bool PieceBindings::Match(std::span<const StatementPiece> pieces, std::vector<Literal>& literals) const {
    std::size_t value = 0;
    std::string_view rest = fixed_.front();
    literals.clear();
    auto source = sources_.begin();
    const auto takeFixedLiterals = [&] {
        for (; source != sources_.end() && !source->isValue; ++source)
            literals.push_back({source->isText, source->body, source->number});
    };
    for (const StatementPiece& piece : pieces) {
        if (piece.kind == StatementPiece::Kind::Fixed) {
            if (!rest.starts_with(piece.text)) return false;
            rest.remove_prefix(piece.text.size());
            continue;
        }
        if (!rest.empty() || value == kinds_.size() || kinds_[value] != piece.kind) return false;
        takeFixedLiterals();
        literals.push_back({source->isText, piece.text, piece.number});
        ++source;
        rest = fixed_[++value];
    }
    takeFixedLiterals();
    return rest.empty() && value == kinds_.size();
}

CompiledStatement::CompiledStatement(CompiledStatement&& other) noexcept
    : shape(std::move(other.shape)),
      bindings(std::move(other.bindings)),
      compiled_(std::exchange(other.compiled_, nullptr)),
      columns_(std::move(other.columns_)) {}

CompiledStatement::~CompiledStatement() { sqlite3_finalize(compiled_); }

const std::shared_ptr<const Columns>& CompiledStatement::ResultColumns(sqlite3* database) {
    const int count = sqlite3_column_count(compiled_);
    if (columns_ || count == 0) return columns_;
    std::vector<Column> columns;
    columns.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) columns.push_back(ColumnOf(database, compiled_, i));
    return columns_ = std::make_shared<const Columns>(std::move(columns));
}

sqlite3_stmt* StatementCache::Compile(std::string_view text, bool orNothing) {
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

CompiledStatement* StatementCache::Find(std::string_view statement, std::vector<Literal>& literals) {
    const auto [first, last] = byStart_.equal_range(StartOf(statement));
    for (auto it = first; it != last; ++it) {
        if (!it->second->shape.Matches(statement, literals)) continue;
        cached_.splice(cached_.begin(), cached_, it->second);
        return &cached_.front();
    }
    return nullptr;
}

CompiledStatement& StatementCache::Keep(CompiledStatement compiled, std::string_view statement) {
    const std::string_view start = StartOf(compiled.shape.pieces.front());
    if (statement.size() > LongestKept || start.size() < StartOf(statement).size()) return Once(std::move(compiled));
    if (cached_.size() == MostKept) {
        const auto oldest = std::prev(cached_.end());
        const auto [first, last] = byStart_.equal_range(StartOf(oldest->shape.pieces.front()));
        byStart_.erase(std::find_if(first, last, [&](const auto& entry) { return entry.second == oldest; }));
        cached_.erase(oldest);
    }
    cached_.push_front(std::move(compiled));
    byStart_.emplace(StartOf(cached_.front().shape.pieces.front()), cached_.begin());
    return cached_.front();
}

CompiledStatement& StatementCache::Once(CompiledStatement compiled) {
    once_.reset();
    return once_.emplace(std::move(compiled));
}

std::optional<CompiledStatement> StatementCache::CompileShape(std::string_view statement,
                                                              std::vector<Literal>& literals) {
    Shape shape;
    if (!CutAtLiterals(statement, shape, literals)) return {};
    if (literals.size() > static_cast<std::size_t>(sqlite3_limit(database_, SQLITE_LIMIT_VARIABLE_NUMBER, -1)))
        return {};
    sqlite3_stmt* const handle = Compile(shape.Text(), true);
    if (!handle) return {};
    CompiledStatement compiled(handle);
    if (sqlite3_bind_parameter_count(handle) != static_cast<int>(literals.size())) return {};
    compiled.shape = std::move(shape);
    return compiled;
}

CompiledStatement& StatementCache::For(std::string_view statement, std::vector<Literal>& literals) {
    if (CompiledStatement* kept = Find(statement, literals)) return *kept;
    if (std::optional<CompiledStatement> shaped = CompileShape(statement, literals))
        return Keep(std::move(*shaped), statement);
    literals.clear();
    String buffer;
    CompiledStatement compiled(Compile(Adapted(statement, buffer), false));
    if (sqlite3_bind_parameter_count(compiled.Compiled()) > 0)
        RaiseSqlite(UnknownName, "No value given for one or more required parameters.", statement);
    return Once(std::move(compiled));
}

CompiledStatement* StatementCache::ForPieces(std::span<const StatementPiece> pieces, std::vector<Literal>& literals) {
    const std::string_view start = pieces.empty() ? std::string_view() : StartOf(pieces.front().text);
    if (start.size() < StartLength) return nullptr;
    const auto [first, last] = byStart_.equal_range(start);
    for (auto it = first; it != last; ++it) {
        const std::optional<PieceBindings>& bindings = it->second->bindings;
        if (!bindings || !bindings->Match(pieces, literals)) continue;
        cached_.splice(cached_.begin(), cached_, it->second);
        return &cached_.front();
    }
    return nullptr;
}

CompiledStatement& StatementCache::ForMarked(std::string_view statement) {
    std::vector<Literal> none;
    if (CompiledStatement* kept = Find(statement, none)) return *kept;
    CompiledStatement compiled(Compile(statement, false));
    compiled.shape.pieces.emplace_back(statement);
    return Keep(std::move(compiled), statement);
}

}  // namespace ADODB

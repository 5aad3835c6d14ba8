#include "console/schema/SchemaCheck.h"

#include "Schema.h"
#include "console/schema/SchemaChange.h"
#include "frame/SchemaVersion.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace Console {
namespace {

using namespace OXClass;
using namespace Platform;

constexpr const char* WithoutCase = "without case";

struct ColumnFacts {
    std::string name;
    std::string type;       ///< "text of 64 characters"
    std::string standard;   ///< the default value; empty for none
    std::string collation;  ///< how texts are compared; empty for numbers, and for texts by their characters' numbers
    bool required = false;  ///< not null
};

struct IndexFacts {
    std::string columns;  ///< "PatientID, DateCaptured_SD"
    bool unique = false;
};

struct TableFacts {
    std::map<std::string, ColumnFacts> columns;  ///< by their names in small letters
    std::map<std::string, IndexFacts> indexes;   ///< by their names in small letters, without the key
    std::string key;                             ///< the columns of the primary key
    bool counted = false;                        ///< the engine numbers the key
    std::string definition;                      ///< the statement, with SQLite only
};

/// The tables of a database by their names in small letters.
using Facts = std::map<std::string, TableFacts>;

std::string TextOf(const Ref<Recordset>& row, Long column) {
    return row->Fields(column).IsNull() ? std::string() : std::string(row->Fields(column).As<String>());
}

bool FlagOf(const Ref<Recordset>& row, Long column) { return TextOf(row, column) == "1"; }

/// Returns the type of a column for a message.
std::string TypeText(const ADODB::Field& field) {
    switch (field.Type()) {
        case ADODB::adInteger: return "whole number";
        case ADODB::adDouble: return "number";
        case ADODB::adDate: return "date";
        case ADODB::adLongVarWChar: return "text";
        case ADODB::adVarWChar: return fmt::format("text of {} characters", field.DefinedSize());
        default: return fmt::format("type {}", Long{field.Type()});
    }
}

/// What an engine's catalog is asked. Each row has the table first.
struct CatalogQueries {
    const char* tables;
    /// Column, default, not null, part of the key, numbered by the engine, collation.
    const char* columns;
    /// Index, unique, columns.
    const char* indexes;
    /// The clause of a difference: what the tables of no version have, and what the other queries do not compare.
    const char* others;
    /// What the catalog calls the comparison by characters' numbers, and the one without case.
    std::vector<std::string> plain, withoutCase;
};

/// The condition for the tables of PostgreSQL that statements find without the name of a schema.
#define VISIBLE "pg_table_is_visible(c.oid) AND c.relnamespace <> 'pg_catalog'::regnamespace"

const CatalogQueries& QueriesOf(Engine engine) {
    static const CatalogQueries sqlite{
        "SELECT name, sql FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%' ORDER BY name",
        "SELECT m.name, c.name, c.dflt_value, c.\"notnull\", c.pk > 0, m.sql LIKE '%AUTOINCREMENT%', NULL "
        "FROM sqlite_schema m, pragma_table_info(m.name) c WHERE m.type = 'table' ORDER BY m.name, c.cid",
        "SELECT m.name, i.name, i.\"unique\", group_concat(c.name, ', ') "
        "FROM sqlite_schema m, pragma_index_list(m.name) i, pragma_index_info(i.name) c "
        "WHERE m.type = 'table' AND i.origin = 'c' GROUP BY m.name, i.name",
        "SELECT tbl_name, 'has a trigger ' || name FROM sqlite_schema WHERE type = 'trigger' "
        "UNION ALL SELECT m.name, 'has an index ' || i.name || ' of another kind' FROM sqlite_schema m, "
        "pragma_index_list(m.name) i WHERE m.type = 'table' AND (i.partial OR EXISTS "
        "(SELECT 1 FROM pragma_index_xinfo(i.name) x WHERE x.\"desc\" OR x.cid = -2))",
        {},
        {}};
    static const CatalogQueries postgresql{
        "SELECT c.relname FROM pg_class c WHERE c.relkind = 'r' AND " VISIBLE " ORDER BY c.relname",
        "SELECT c.relname, a.attname, pg_get_expr(d.adbin, d.adrelid), a.attnotnull::int, "
        "coalesce(a.attnum = ANY (k.indkey), false)::int, (a.attidentity <> '')::int, "
        "CASE WHEN t.typname = 'citext' THEN 'citext' WHEN l.collname = 'default' THEN b.datcollate ELSE l.collname "
        "END "
        "FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid JOIN pg_type t ON t.oid = a.atttypid "
        "JOIN pg_database b ON b.datname = current_database() "
        "LEFT JOIN pg_attrdef d ON d.adrelid = c.oid AND d.adnum = a.attnum "
        "LEFT JOIN pg_index k ON k.indrelid = c.oid AND k.indisprimary "
        "LEFT JOIN pg_collation l ON l.oid = a.attcollation "
        "WHERE c.relkind = 'r' AND " VISIBLE
        " AND a.attnum > 0 "
        "AND NOT a.attisdropped ORDER BY c.relname, a.attnum",
        "SELECT c.relname, x.relname, i.indisunique::int, "
        "string_agg(a.attname, ', ' ORDER BY array_position(i.indkey::int2[], a.attnum)) "
        "FROM pg_index i JOIN pg_class c ON c.oid = i.indrelid JOIN pg_class x ON x.oid = i.indexrelid "
        "JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum = ANY (i.indkey) "
        "WHERE " VISIBLE
        " AND NOT i.indisprimary "
        "GROUP BY c.relname, x.relname, i.indisunique",
        "SELECT c.relname, 'has a trigger ' || t.tgname FROM pg_trigger t JOIN pg_class c ON c.oid = t.tgrelid "
        "WHERE NOT t.tgisinternal AND " VISIBLE
        " UNION ALL SELECT c.relname, 'has a constraint ' || k.conname || ': ' || pg_get_constraintdef(k.oid) "
        "FROM pg_constraint k JOIN pg_class c ON c.oid = k.conrelid WHERE k.contype IN ('f', 'c', 'x') "
        "AND pg_get_constraintdef(k.oid) NOT LIKE 'CHECK ((length(%) <= %))' AND " VISIBLE
        " UNION ALL SELECT c.relname, 'has an index ' || x.relname || ' of another kind: ' || "
        "pg_get_indexdef(x.oid) FROM pg_index i JOIN pg_class c ON c.oid = i.indrelid "
        "JOIN pg_class x ON x.oid = i.indexrelid JOIN pg_am a ON a.oid = x.relam "
        "WHERE (i.indpred IS NOT NULL OR i.indexprs IS NOT NULL OR NOT i.indisvalid OR a.amname <> 'btree' "
        "OR EXISTS (SELECT 1 FROM unnest(i.indoption::int2[]) o WHERE o & 1 = 1)) AND " VISIBLE,
        {"C", "POSIX", "C.UTF-8", "C.utf8"},
        {"citext"}};
    static const CatalogQueries mariaDb{
        "SELECT table_name FROM information_schema.tables WHERE table_schema = database() "
        "AND table_type = 'BASE TABLE' ORDER BY table_name",
        "SELECT table_name, column_name, nullif(column_default, 'NULL'), is_nullable = 'NO', column_key = 'PRI', "
        "extra LIKE '%auto_increment%', collation_name FROM information_schema.columns "
        "WHERE table_schema = database() ORDER BY table_name, ordinal_position",
        "SELECT table_name, index_name, non_unique = 0, "
        "group_concat(column_name ORDER BY seq_in_index SEPARATOR ', ') FROM information_schema.statistics "
        "WHERE table_schema = database() AND index_name <> 'PRIMARY' GROUP BY table_name, index_name, non_unique",
        "SELECT event_object_table, concat('has a trigger ', trigger_name) FROM information_schema.triggers "
        "WHERE trigger_schema = database() "
        "UNION ALL SELECT table_name, concat('has a constraint ', constraint_name) "
        "FROM information_schema.table_constraints WHERE table_schema = database() "
        "AND constraint_type IN ('FOREIGN KEY', 'CHECK') "
        "UNION ALL SELECT table_name, concat('has the storage engine ', engine, ' in place of InnoDB') "
        "FROM information_schema.tables WHERE table_schema = database() AND table_type = 'BASE TABLE' "
        "AND engine <> 'InnoDB' "
        "UNION ALL SELECT table_name, concat('column ', column_name, ' is ', data_type, ' in place of longtext') "
        "FROM information_schema.columns WHERE table_schema = database() "
        "AND data_type IN ('tinytext', 'text', 'mediumtext') "
        "UNION ALL SELECT DISTINCT table_name, concat('has an index ', index_name, ' of another kind') "
        "FROM information_schema.statistics WHERE table_schema = database() "
        "AND (collation = 'D' OR index_type <> 'BTREE' OR ignored = 'YES' OR sub_part IS NOT NULL)",
        {"utf8mb4_nopad_bin"},
        {"utf8mb4_uca1400_nopad_as_ci"}};
    switch (engine) {
        case Engine::PostgreSQL: return postgresql;
        case Engine::MariaDB: return mariaDb;
        default: return sqlite;
    }
}

/// Returns a definition in small letters and with single blanks.
std::string Normalised(const std::string& definition) {
    std::string text;
    for (const char c : LCase(definition)) {
        const bool blank = c == ' ' || c == '\n' || c == '\t' || c == '\r';
        if (!blank) text += c;
        if (blank && !text.empty() && text.back() != ' ') text += ' ';
    }
    return Replace(Replace(text, "( ", "("), " )", ")");
}

/// Returns true if a table of SQLite compares a column without case.
bool IsNoCase(const std::string& normalised, const std::string& column) {
    for (const char* const before : {"(", ", ", ","}) {
        const std::size_t at = normalised.find(before + LCase(column) + " ");
        if (at == std::string::npos) continue;
        const std::size_t body = at + std::string_view(before).size();
        return Platform::Contains(normalised.substr(body, normalised.find(", ", body) - body), "collate nocase");
    }
    return false;
}

std::string CollationOf(const CatalogQueries& queries, const std::string& name) {
    if (std::ranges::find(queries.plain, name) != queries.plain.end()) return {};
    return std::ranges::find(queries.withoutCase, name) != queries.withoutCase.end() ? WithoutCase : name;
}

/// Reads the catalog of a database.
class CatalogReader {
public:
    CatalogReader(Ref<Connection> con, Engine engine) : con_(std::move(con)), queries_(QueriesOf(engine)) {}

    Facts Read() {
        ReadTables();
        ReadColumns();
        ReadIndexes();
        return std::move(facts_);
    }

private:
    void ReadTables() {
        for (const Ref<Recordset> row = con_->Execute(queries_.tables); !row->Eof(); row->MoveNext()) {
            TableFacts& table = facts_[LCase(TextOf(row, 0))];
            if (row->FieldCount() > 1) table.definition = Normalised(TextOf(row, 1));
        }
    }

    void ReadColumns() {
        for (const Ref<Recordset> row = con_->Execute(queries_.columns); !row->Eof(); row->MoveNext()) {
            const auto found = facts_.find(LCase(TextOf(row, 0)));
            if (found == facts_.end()) continue;
            TableFacts& table = found->second;
            const std::string name = TextOf(row, 1);
            ColumnFacts& column = table.columns[LCase(name)];
            column = {name, {}, TextOf(row, 2), CollationOf(queries_, TextOf(row, 6)), FlagOf(row, 3)};
            if (IsNoCase(table.definition, name)) column.collation = WithoutCase;
            if (FlagOf(row, 4)) table.key += (table.key.empty() ? "" : ", ") + LCase(name);
            table.counted |= FlagOf(row, 5);
        }
        for (auto& [name, table] : facts_) ReadTypes(name, table);
    }

    void ReadTypes(const std::string& name, TableFacts& table) const {
        const Ref<Recordset> rows = con_->Execute("SELECT * FROM \"" + Replace(name, "\"", "\"\"") + "\" WHERE 1 = 0");
        for (Long i = 0; i < rows->FieldCount(); ++i)
            table.columns[LCase(rows->Fields(i).Name())].type = TypeText(rows->Fields(i));
    }

    void ReadIndexes() {
        for (const Ref<Recordset> row = con_->Execute(queries_.indexes); !row->Eof(); row->MoveNext()) {
            const auto found = facts_.find(LCase(TextOf(row, 0)));
            if (found != facts_.end())
                found->second.indexes[LCase(TextOf(row, 1))] = {LCase(TextOf(row, 3)), FlagOf(row, 2)};
        }
    }

    Ref<Connection> con_;
    const CatalogQueries& queries_;
    Facts facts_;
};

/// Returns the tables of a version, with those of the program.
Facts FactsOf(Long version) {
    const Ref<Connection> con = Platform::New<Connection>();
    con->Open("Provider=SQLite;Data Source=:memory:;Mode=Create");
    RunScript(con, schema::sqlite_sql);
    RunScript(con, schema::program_sql);
    for (const std::string& statement : ChangeStatements(Engine::SQLite, KnownSchemaVersion, version))
        con->Execute(statement);
    return CatalogReader(con, Engine::SQLite).Read();
}

/// Collects the differences of one database.
class Comparison {
public:
    Comparison(Facts expected, Facts found) : expected_(std::move(expected)), found_(std::move(found)) {}

    std::vector<SchemaDifference> Differences() {
        for (const auto& [name, table] : expected_) {
            table_ = name;
            if (const auto found = found_.find(name); found != found_.end())
                CompareTables(table, found->second);
            else if (!IsOptional(name))
                Add("is missing");
        }
        for (const auto& [name, table] : found_) {
            table_ = name;
            if (!expected_.contains(name) && name != "schemaversion_t") Add("is not a table of this version");
        }
        return std::move(differences_);
    }

private:
    /// The program creates these tables when it needs them.
    static bool IsOptional(const std::string& table) {
        return table == "patientissuer_t" || table == "clinicidentity_t";
    }

    void Add(std::string text) { differences_.push_back({table_, std::move(text)}); }

    void CompareTables(const TableFacts& expected, const TableFacts& found) {
        const std::size_t before = differences_.size();
        for (const auto& [name, column] : expected.columns)
            if (const auto other = found.columns.find(name); other != found.columns.end())
                CompareColumns(column, other->second, Platform::Contains(", " + expected.key + ",", ", " + name + ","));
            else
                Add("has no column " + column.name);
        for (const auto& [name, column] : found.columns)
            if (!expected.columns.contains(name)) Add("has a column " + column.name + ", which this version lacks");
        if (expected.key != found.key) Add(Instead("key", found.key, expected.key));
        if (expected.counted && !found.counted) Add("does not number its key");
        CompareIndexes(expected, found);
        if (differences_.size() == before && !found.definition.empty() && found.definition != expected.definition)
            Add("is defined in another way: " + found.definition);
    }

    void CompareColumns(const ColumnFacts& expected, const ColumnFacts& found, bool key) {
        const std::string what = "column " + expected.name;
        if (expected.type != found.type) Add(Instead(what, found.type, expected.type));
        if (expected.standard != found.standard) Add(Instead("default of " + what, found.standard, expected.standard));
        if (expected.collation != found.collation)
            Add(Instead("comparison of " + what, found.collation, expected.collation));
        if (!key && expected.required != found.required)
            Add(what + (found.required ? " does not take null" : " takes null"));
    }

    void CompareIndexes(const TableFacts& expected, const TableFacts& found) {
        for (const auto& [name, index] : expected.indexes) {
            const auto other = found.indexes.find(name);
            if (other == found.indexes.end()) {
                Add(fmt::format("has no index {} ({})", name, index.columns));
                continue;
            }
            // A server's index may end with the key, by which it sorts rows that are equal otherwise.
            if (other->second.columns != index.columns && other->second.columns != index.columns + ", " + expected.key)
                Add(Instead("index " + name, other->second.columns, index.columns));
            if (other->second.unique != index.unique)
                Add(fmt::format("index {} is {}unique", name, other->second.unique ? "" : "not "));
        }
        for (const auto& [name, index] : found.indexes)
            if (!expected.indexes.contains(name))
                Add(fmt::format("has an index {} ({}), which this version lacks", name, index.columns));
    }

    /// Returns "column A is text in place of number".
    static std::string Instead(const std::string& what, const std::string& found, const std::string& expected) {
        const auto shown = [](const std::string& text) { return text.empty() ? "none" : text; };
        return fmt::format("{} is {} in place of {}", what, shown(found), shown(expected));
    }

    Facts expected_, found_;
    std::string table_;
    std::vector<SchemaDifference> differences_;
};

}  // namespace

std::vector<SchemaDifference> CompareSchema(const Ref<Connection>& con, Long version) {
    const Engine engine = EngineOf(con);
    auto differences = Comparison(FactsOf(version), CatalogReader(con, engine).Read()).Differences();
    for (const Ref<Recordset> row = con->Execute(QueriesOf(engine).others); !row->Eof(); row->MoveNext())
        differences.push_back({LCase(TextOf(row, 0)), TextOf(row, 1)});
    return differences;
}

}  // namespace Console

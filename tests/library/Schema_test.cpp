#include "kit/Database.h"

#include <map>

/// The tables of a server are those of SQLite: the same columns in the same order with the same types and widths, the
/// same keys and counters, and the same indexes.
namespace OXClass {
namespace {

using namespace TestKit;

class ServerSchema : public WithDatabase {
protected:
    void SetUp() override { OXCLASS_ONLY_IF(!IsFile()); }

    ServerSchema() { model->Open("Provider=SQLite;Mode=Create;Data Source=" + NewDatabase(folder, "model.db")); }

    /// Returns the first column of the rows of a select, in small letters.
    static std::vector<String> Names(const Ref<Connection>& from, const String& select) {
        std::vector<String> names;
        for (const Ref<Recordset> rs = from->Execute(select); !rs->Eof(); rs->MoveNext())
            names.push_back(LCase(rs->Fields(0).As<String>()));
        return names;
    }

    std::vector<String> ModelTables() {
        return Names(
            model, "SELECT lower(name) FROM sqlite_schema WHERE type='table' AND name NOT LIKE 'sqlite_%' ORDER BY 1");
    }

    /// "name type width" of each column.
    static std::vector<String> Columns(const Ref<Connection>& from, const String& table) {
        const Ref<Recordset> rs = from->Execute("SELECT * FROM " + table + " WHERE 1=0");
        std::vector<String> columns;
        for (Long i = 0; i < rs->FieldCount(); ++i) {
            const ADODB::Field field = rs->Fields(i);
            columns.push_back(LCase(field.Name()) + " " + CStr(Long{field.Type()}) + " " + CStr(field.DefinedSize()));
        }
        return columns;
    }

    /// The indexed columns of a table, each index "a,b" in the order of the index, without the primary key.
    std::vector<String> ModelIndexes(const String& table) {
        return Names(model, "SELECT group_concat(lower(c.name), ',') FROM pragma_index_list('" + table +
                                "') i, pragma_index_info(i.name) c WHERE i.origin='c' GROUP BY i.name ORDER BY 1");
    }
    std::vector<String> ServerIndexes(const String& table) {
        if (TestedEngine() == Engine::MariaDB)
            return Names(
                con,
                "SELECT group_concat(column_name ORDER BY seq_in_index) FROM information_schema.statistics WHERE "
                "table_schema=database() AND table_name='" +
                    table + "' AND index_name<>'PRIMARY' GROUP BY index_name ORDER BY 1");
        return Names(
            con,
            "SELECT string_agg(a.attname, ',' ORDER BY array_position(i.indkey::int2[], a.attnum)) FROM pg_index i"
            " JOIN pg_attribute a ON a.attrelid = i.indrelid AND a.attnum = ANY (i.indkey)"
            " WHERE i.indrelid = '" +
                table + "'::regclass AND NOT i.indisprimary GROUP BY i.indexrelid ORDER BY 1");
    }

    /// The primary key of a table, with "*" if the database numbers it.
    String ModelKey(const String& table) {
        return Names(model, "SELECT name || '*' FROM pragma_table_info('" + table + "') WHERE pk=1").front();
    }
    String ServerKey(const String& table) {
        if (TestedEngine() == Engine::MariaDB)
            return Names(con,
                         "SELECT concat(column_name, if(extra LIKE '%auto_increment%', '*', '')) FROM "
                         "information_schema.columns WHERE table_schema=database() AND column_key='PRI' AND "
                         "table_name='" +
                             table + "'")
                .front();
        return Names(con,
                     "SELECT a.attname || CASE a.attidentity WHEN 'd' THEN '*' ELSE '' END FROM pg_index i JOIN "
                     "pg_attribute a ON a.attrelid = i.indrelid AND a.attnum = ANY (i.indkey) WHERE i.indisprimary AND "
                     "i.indrelid = '" +
                         table + "'::regclass")
            .front();
    }

    const Ref<Connection> model = New<Connection>();
};

TEST_F(ServerSchema, HasTheTablesOfTheModel) {
    std::vector<String> expected = ModelTables();
    EXPECT_GT(expected.size(), 10U);
    expected.emplace_back("schemaversion_t");
    std::sort(expected.begin(), expected.end());
    const char* const tables =
        TestedEngine() == Engine::MariaDB
            ? "SELECT table_name FROM information_schema.tables WHERE table_schema=database() ORDER BY 1"
            : "SELECT relname FROM pg_class WHERE relkind='r' AND relnamespace='public'::regnamespace ORDER BY 1";
    EXPECT_EQ(Names(con, tables), expected);
}

TEST_F(ServerSchema, HasTheColumnsAndKeysOfTheModel) {
    for (const String& table : ModelTables()) {
        EXPECT_EQ(Columns(con, table), Columns(model, table)) << table;
        EXPECT_EQ(ServerKey(table), ModelKey(table)) << table;
    }
}

TEST_F(ServerSchema, HasTheIndexesOfTheModelAndTheKeyBehindTheirColumns) {
    for (const String& table : ModelTables()) {
        const std::vector<String> expected = ModelIndexes(table), actual = ServerIndexes(table);
        ASSERT_EQ(actual.size(), expected.size()) << table;
        const String key = Replace(ServerKey(table), "*", "");
        for (std::size_t i = 0; i < actual.size(); ++i)
            EXPECT_THAT(actual[i], testing::AnyOf(expected[i], expected[i] + "," + key)) << table;
    }
}

}  // namespace
}  // namespace OXClass

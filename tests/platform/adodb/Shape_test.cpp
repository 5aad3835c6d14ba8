#include "platform/adodb/providers/Shape.h"

#include "platform/adodb/providers/sqlite/SqliteOrChains.h"
#include "platform/adodb/providers/Definitions.h"
#include "platform/adodb/providers/sqlite/SqliteStatements.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace {

using namespace ADODB;

std::string ShapeOf(std::string_view statement) {
    Shape shape;
    std::vector<Literal> literals;
    return CutAtLiterals(statement, shape, literals) ? shape.Text() : "as it stands";
}

TEST(StatementShape, LiftsLiteralsOutOfConditionsValuesAndSets) {
    EXPECT_EQ(ShapeOf("SELECT * FROM t WHERE a=5 AND b='x''y';"), "SELECT * FROM t WHERE a=? AND b=?;");
    EXPECT_EQ(ShapeOf("INSERT INTO t (a) VALUES ( 0, -7, '')"), "INSERT INTO t (a) VALUES ( ?, -?, ?)");
    EXPECT_EQ(ShapeOf("UPDATE t SET a='b',c= 3 where d IN (1,2)"), "UPDATE t SET a=?,c= ? where d IN (?,?)");
    EXPECT_EQ(ShapeOf("SELECT a FROM t JOIN u ON u.b <> '' WHERE (c)=1"),
              "SELECT a FROM t JOIN u ON u.b <> ? WHERE (c)=?");
}

TEST(StatementShape, LeavesLiteralsWhereTheyMeanSomethingElse) {
    for (const char* kept :
         {"SELECT 1, 'x' FROM t", "SELECT a FROM t ORDER BY 1 LIMIT 5", "SELECT a FROM t WHERE b=1.5",
          "SELECT a FROM t WHERE b=0x1F OR c=x'41'", "SELECT a FROM t GROUP BY 2",
          "SELECT a FROM t WHERE b=12345678901234567890", "SELECT a1 FROM t2 WHERE c3=d4"})
        EXPECT_EQ(ShapeOf(kept), kept);
    EXPECT_EQ(ShapeOf("SELECT a FROM t WHERE (SELECT 1)=2"), "SELECT a FROM t WHERE (SELECT 1)=?");
}

TEST(StatementShape, KeepsTheLiteralsOfUnsupportedStatements) {
    for (const char* text : {"PRAGMA x=1", "CREATE TABLE t (a DEFAULT 5)", "SELECT a FROM t WHERE b=? AND c=1",
                             "SELECT a FROM t WHERE b=1 -- c", "SELECT a /* 1 */ FROM t WHERE b=1",
                             "SELECT a FROM t WHERE b='open", "SELECT a FROM t WHERE b=1)", ""})
        EXPECT_EQ(ShapeOf(text), "as it stands") << text;
}

TEST(StatementShape, MatchesStatementsThatDifferInTheirValuesOnly) {
    Shape shape;
    std::vector<Literal> literals;
    ASSERT_TRUE(CutAtLiterals("SELECT * FROM t WHERE a=5 AND b LIKE'x';", shape, literals));
    EXPECT_TRUE(shape.Matches("SELECT * FROM t WHERE a='it''s' AND b LIKE'y';", literals));
    EXPECT_EQ(literals[0].body, "it''s");
    EXPECT_EQ(Unquoted(literals[0].body), "it's");
    EXPECT_TRUE(literals[0].isText);
    for (const char* other : {"SELECT * FROM t WHERE a=5.5 AND b LIKE'x';", "SELECT * FROM t WHERE a=5 AND b LIKE7;",
                              "SELECT * FROM t WHERE a=c AND b LIKE'x';", "SELECT * FROM t WHERE a=5 AND b LIKE'x'; ",
                              "SELECT * FROM t WHERE a=5 AND b LIKE'x", "select * FROM t WHERE a=5 AND b LIKE'x';"})
        EXPECT_FALSE(shape.Matches(other, literals)) << other;
}

TEST(StatementShape, BalancesOrChains) {
    EXPECT_EQ(WithBalancedOrChains("DELETE FROM t WHERE a=1 OR a=2 OR a=3;", 1),
              "DELETE FROM t WHERE( a=1 OR( a=2 OR a=3));");
}

TEST(Definitions, AreChangedByTheFirstWordBehindBlanksAndComments) {
    for (const char* yes : {"CREATE TABLE t (a int)", " \t\nalter TABLE t ADD b int", "/* why */ DROP TABLE t",
                            "-- why\nTRUNCATE t", "/**/--\n/* a */\n RENAME TABLE t TO u", "DO $$ BEGIN END $$"})
        EXPECT_TRUE(ChangesDefinitions(yes)) << yes;
    for (const char* no : {"", "  ", "-- CREATE TABLE t", "/* CREATE TABLE t", "/*/ CREATE TABLE t", "SELECT 'CREATE'",
                           "CREATED", "- CREATE", "UPDATE t SET a=1"})
        EXPECT_FALSE(ChangesDefinitions(no)) << no;
}

/// A session's cache on an empty database of their own.
class SqliteStatementsTest : public ::testing::Test {
protected:
    SqliteStatementsTest() {
        sqlite3_open(":memory:", &database);
        sqlite3_exec(database, "CREATE TABLE t (a INTEGER PRIMARY KEY, b TEXT)", nullptr, nullptr, nullptr);
        cache.emplace(database);
    }
    ~SqliteStatementsTest() override {
        cache.reset();
        sqlite3_close(database);
    }
    sqlite3* database = nullptr;
    std::optional<SqliteStatements> cache;
    std::vector<Literal> literals;
};

TEST_F(SqliteStatementsTest, OneShapeIsCompiledOnce) {
    std::string statement;  // the literals point into it
    for (int i = 0; i < 100; ++i) cache->For(statement = "SELECT b FROM t WHERE a=" + std::to_string(i), literals);
    EXPECT_EQ(cache->CompiledCount(), 1U);
    EXPECT_EQ(literals.size(), 1U);
    EXPECT_EQ(literals[0].body, "99");
}

TEST_F(SqliteStatementsTest, TheLeastRecentlyUsedIsRemovedFirst) {
    const auto statement = [](int i) {
        return "SELECT b FROM t WHERE a=1 AND b<>'' AND" + std::string(static_cast<std::size_t>(i), ' ') + "a<5";
    };
    cache->For(statement(1), literals);
    for (int i = 2; i <= 300; ++i) {
        cache->For(statement(i), literals);
        cache->For(statement(1), literals);
    }
    EXPECT_EQ(cache->Count(), 256U);
    EXPECT_EQ(cache->CompiledCount(), 300U) << "the one in use was never compiled again";
    cache->For(statement(2), literals);
    EXPECT_EQ(cache->CompiledCount(), 301U);
}

TEST_F(SqliteStatementsTest, AVeryLongStatementIsNotKept) {
    std::string list = "SELECT b FROM t WHERE a IN (1";
    for (int i = 0; i < 5000; ++i) list += "," + std::to_string(i);
    cache->For(list + ")", literals);
    EXPECT_EQ(cache->Count(), 0U);
    EXPECT_EQ(literals.size(), 5001U);
}

TEST_F(SqliteStatementsTest, ARejectedShapeIsCompiledAsTheOriginalText) {
    const SqliteStatement& compiled = cache->For("UPDATE t SET 'b'='x' WHERE a=1", literals);
    EXPECT_TRUE(literals.empty()) << "a column's name in quotes is not a value";
    EXPECT_EQ(std::string(sqlite3_sql(compiled.Compiled())), "UPDATE t SET 'b'='x' WHERE a=1");
}

}  // namespace

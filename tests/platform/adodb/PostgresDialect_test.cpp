#include "platform/adodb/providers/postgresql/PostgresDialect.h"

#include <gtest/gtest.h>

namespace {

using namespace ADODB;
using Platform::String;

/// Returns the keys of two tables, and none for another one.
std::vector<String> KeysOf(const String& table) {
    if (table == "image_t") return {"imageid"};
    if (table == "pair_t") return {"left_id", "right_id"};
    return {};
}

String Translated(std::string_view statement) { return ForPostgres(statement, {}, KeysOf).text; }

/// Returns the translation with the literals replaced by parameters.
PostgresText Prepared(std::string_view statement) {
    Shape shape;
    shape.reals = true;
    std::vector<Literal> literals;
    EXPECT_TRUE(CutAtLiterals(statement, shape, literals)) << statement;
    return ForPostgres(statement, literals, KeysOf);
}

TEST(PostgresDialect, LeavesWhatTheServerCanParse) {
    for (const char* same : {"INSERT INTO t (a, b) VALUES (1, 'it''s')", "UPDATE t SET a='x' WHERE b=2;",
                             "DELETE FROM t WHERE a=1", "SELECT 2 * 3", "SELECT count(*) FROM image_t",
                             "SELECT a FROM t -- ORDER BY a", "CREATE TABLE t (a integer)", ""})
        EXPECT_EQ(Translated(same), same);
}

TEST(PostgresDialect, SortsTheFirstTableOfAnOuterJoinWhateverItsOnConditions) {
    EXPECT_EQ(Translated("SELECT * FROM image_t LEFT JOIN pair_t ON image_t.imageid = 5"),
              "SELECT * FROM image_t LEFT JOIN pair_t ON image_t.imageid = 5 ORDER BY image_t.imageid, pair_t.left_id, "
              "pair_t.right_id");
    EXPECT_EQ(Translated("SELECT * FROM pair_t RIGHT JOIN image_t ON image_t.imageid = pair_t.left_id"),
              "SELECT * FROM pair_t RIGHT JOIN image_t ON image_t.imageid = pair_t.left_id ORDER BY pair_t.left_id, "
              "pair_t.right_id, image_t.imageid");
}

TEST(PostgresDialect, TranslatesAStatementWhosePlanIsAsked) {
    EXPECT_EQ(Translated("EXPLAIN SELECT * FROM image_t"), "EXPLAIN SELECT * FROM image_t ORDER BY image_t.imageid");
}

TEST(PostgresDialect, ReplacesTheFormsOfTheSuitesOwnEngine) {
    EXPECT_EQ(Translated("SELECT @@IDENTITY"), "SELECT lastval()");
    EXPECT_EQ(Translated(" select @@identity ; "), "SELECT lastval()");
    EXPECT_EQ(Translated("DELETE * FROM t where a = 'x'"), "DELETE  FROM t where a = 'x'");
}

TEST(PostgresDialect, SortsNullsAsTheOtherEnginesDo) {
    EXPECT_EQ(Translated("SELECT a FROM t ORDER BY a;"), "SELECT a FROM t ORDER BY a NULLS FIRST;");
    EXPECT_EQ(Translated("SELECT a FROM t ORDER BY a DESC, b ASC  LIMIT 5"),
              "SELECT a FROM t ORDER BY a DESC NULLS LAST, b ASC NULLS FIRST  LIMIT 5");
    EXPECT_EQ(Translated("SELECT a FROM t ORDER BY a NULLS LAST"), "SELECT a FROM t ORDER BY a NULLS LAST");
    EXPECT_EQ(Translated("SELECT a FROM (SELECT b FROM t ORDER BY f(b, 1)) s WHERE c=1"),
              "SELECT a FROM (SELECT b FROM t ORDER BY f(b, 1) NULLS FIRST) s WHERE c=1");
}

TEST(PostgresDialect, SortsEqualRowsByTheKeysOfTheTables) {
    EXPECT_EQ(Translated("SELECT * FROM Image_T"), "SELECT * FROM Image_T ORDER BY image_t.imageid");
    EXPECT_EQ(Translated("select * from Image_T where a=1 ;"),
              "select * from Image_T where a=1 ORDER BY image_t.imageid ;");
    EXPECT_EQ(Translated("SELECT a FROM Image_T ORDER BY a DESC;"),
              "SELECT a FROM Image_T ORDER BY a DESC NULLS LAST, image_t.imageid;");
    EXPECT_EQ(Translated("SELECT i.a FROM Image_T AS i LEFT JOIN Pair_T p ON (i.a=p.a) WHERE i.b IN (1,2)"),
              "SELECT i.a FROM Image_T AS i LEFT JOIN Pair_T p ON (i.a=p.a) WHERE i.b IN (1,2)"
              " ORDER BY i.imageid, p.left_id, p.right_id");
    EXPECT_EQ(Translated("SELECT a FROM (Image_T INNER JOIN t ON t.a=Image_T.a), Pair_T"),
              "SELECT a FROM (Image_T INNER JOIN t ON t.a=Image_T.a), Pair_T"
              " ORDER BY image_t.imageid, pair_t.left_id, pair_t.right_id");
    EXPECT_EQ(Translated("SELECT a FROM Image_T ORDER BY a LIMIT 1"),
              "SELECT a FROM Image_T ORDER BY a NULLS FIRST, image_t.imageid LIMIT 1");
}

TEST(PostgresDialect, SortsByNoKeyWhereAConditionAdmitsOneRow) {
    for (const char* same :
         {"SELECT * FROM Image_T WHERE ImageID=5;", "SELECT * FROM Image_T i WHERE i.ImageID = 'x' AND i.b > 3",
          "SELECT * FROM t LEFT JOIN Image_T ON t.a=Image_T.ImageID WHERE t.b=1"})
        EXPECT_EQ(Translated(same), same);
    EXPECT_EQ(
        Translated("SELECT * FROM Pair_T LEFT JOIN Image_T ON Pair_T.a=Image_T.ImageID ORDER BY b"),
        "SELECT * FROM Pair_T LEFT JOIN Image_T ON Pair_T.a=Image_T.ImageID ORDER BY b NULLS FIRST, pair_t.left_id, "
        "pair_t.right_id");
    for (const char* condition : {"ImageID>5", "ImageID=a", "ImageID=5+a", "NOT ImageID=5", "ImageID=5 OR b=1", "b=5",
                                  "(ImageID=5) IS NULL", "f.ImageID=5"})
        EXPECT_EQ(Translated("SELECT * FROM Image_T WHERE " + String(condition)),
                  "SELECT * FROM Image_T WHERE " + String(condition) + " ORDER BY image_t.imageid");
    EXPECT_EQ(Translated("SELECT * FROM Image_T LEFT JOIN t ON t.a=Image_T.ImageID"),
              "SELECT * FROM Image_T LEFT JOIN t ON t.a=Image_T.ImageID ORDER BY image_t.imageid");
}

TEST(PostgresDialect, KnowsWhatReadsOnly) {
    const auto readsOnly = [](std::string_view statement) { return ForPostgres(statement, {}, KeysOf).readsOnly; };
    EXPECT_TRUE(readsOnly("SELECT MAX(a) AS b FROM t WHERE (c=1) AND (d IN (1,2))"));
    EXPECT_TRUE(readsOnly("select * from t;"));
    for (const char* other :
         {"SELECT setval('s', 1)", "SELECT a FROM t FOR UPDATE", "SELECT a INTO u FROM t", "UPDATE t SET a=1",
          "SELECT a_function_of_a_client(1)", "WITH x AS (DELETE FROM t) SELECT 1"})
        EXPECT_FALSE(readsOnly(other)) << other;
}

TEST(PostgresDialect, LeavesRowsThatAreNotThoseOfATable) {
    for (const char* same :
         {"SELECT max(a) FROM Image_T", "SELECT DISTINCT a FROM Image_T", "SELECT a FROM Image_T GROUP BY a",
          "SELECT a FROM Image_T UNION SELECT a FROM t", "SELECT a FROM (SELECT a FROM t) s", "SELECT a FROM Unknown_T",
          "SELECT a FROM s.Image_T", "SELECT a FROM Image_T LIMIT 1", "SELECT a FROM \"Image_T\"",
          "UPDATE Image_T SET a=1", "SELECT a FROM Image_T FOR UPDATE"})
        EXPECT_EQ(Translated(same), same);
}

TEST(PostgresDialect, ComparesPatternsAsTheEmbeddedEngineDoes) {
    EXPECT_EQ(Translated("SELECT a FROM t WHERE a LIKE 'x\\%'"), "SELECT a FROM t WHERE a ILIKE 'x\\%' ESCAPE ''");
    EXPECT_EQ(Prepared("SELECT a FROM t WHERE a NOT LIKE 'x%' AND b=1").text,
              "SELECT a FROM t WHERE a NOT ILIKE $1 ESCAPE '' AND b=$2");
}

TEST(PostgresDialect, PutsParametersInPlaceOfLiterals) {
    const PostgresText update = Prepared("UPDATE t SET a=-1, b = - 2.5,c='x' WHERE d=3-1 AND e>-4 AND f LIKE'y'");
    EXPECT_EQ(update.text, "UPDATE t SET a=$1, b = - $2,c=$3 WHERE d=$4-$5 AND e>$6 AND f ILIKE $7 ESCAPE ''");
    EXPECT_EQ(update.negative, (std::vector<bool>{true, false, false, false, false, true, false}));
    EXPECT_EQ(Prepared("INSERT INTO t (a) VALUES ( -7,'',0)").text, "INSERT INTO t (a) VALUES ( $1,$2,$3)");
}

TEST(PostgresDialect, WritesAChainOfComparisonsAsAList) {
    EXPECT_EQ(Prepared("DELETE FROM t WHERE a=1 OR a=2 OR a = 3;").text, "DELETE FROM t WHERE a IN ($1,$2,$3);");
    EXPECT_EQ(Translated("SELECT b FROM t WHERE ( a='x' OR a='y') AND c=1"),
              "SELECT b FROM t WHERE ( a IN ('x','y')) AND c=1");
    for (const char* same : {"DELETE FROM t WHERE a=1 OR b=2", "DELETE FROM t WHERE c=0 AND a=1 OR a=2 AND c=1",
                             "DELETE FROM t WHERE a=1", "DELETE FROM t WHERE a=1 OR a=2+3", "UPDATE t SET a=1"})
        EXPECT_EQ(Translated(same), same);
    EXPECT_EQ(Translated("DELETE FROM t WHERE a=1 OR a=2 AND c=1 OR a=3 OR a=4"),
              "DELETE FROM t WHERE a=1 OR a=2 AND c=1 OR a IN (3,4)");
}

}  // namespace

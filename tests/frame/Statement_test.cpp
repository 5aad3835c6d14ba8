#include "frame/Statement.h"

#include "kit/Database.h"

#include <type_traits>

/// Joining statements so that no text can break out of its quotes.
namespace OXClass {
namespace {

using namespace TestKit;

template <class Piece>
concept Joins = requires(detail::StatementText statement, Piece piece) {
    statement.Add(piece);
};

static_assert(!Joins<String> && !Joins<std::string_view> && !Joins<const char*>, "a plain text joins no statement");
static_assert(!Joins<double> && !Joins<float> && !Joins<bool>, "a number needs its decimal form first");
static_assert(Joins<Long> && Joins<Integer> && Joins<Escaped>);

TEST(Statement, IsItsPiecesInOrder) {
    EXPECT_EQ(sql("A='", FixSqlString("it's"), "' B=", Long{-7}, " C=", Integer{12}, ";"), "A='it''s' B=-7 C=12;");
}

TEST(Statement, TheFarthestNumbersAreWrittenInFull) {
    EXPECT_EQ(sql(Long{INT32_MIN}, " ", Long{INT32_MAX}), "-2147483648 2147483647");
}

TEST(Statement, AnEnumerationIsWrittenAsItsNumber) { EXPECT_EQ(sql("T=", ADODB::adOpenStatic), "T=3"); }

TEST(Statement, ADoubleHasFifteenDigitsAndAFloatSeven) {
    EXPECT_EQ(sql(Decimal(1.0 / 3.0), " ", Decimal(1.0F / 3.0F)), "0.333333333333333 0.3333333");
    EXPECT_EQ(sql(Decimal(-12.5), " ", Decimal(0.0), " ", Decimal(3.0)), "-12.5 0 3");
}

TEST(Statement, ADecimalHasAPointInEveryLocale) {
    const InLocale comma(DecimalComma);
    EXPECT_EQ(sql(Decimal(12.5), " ", Decimal(-0.25F)), "12.5 -0.25");
}

TEST(Statement, AStampIsTheSameInEveryLocale) {
    const Stamp stamp(DateFrom({2024, 3, 4, 15, 6, 7}));
    const InLocale comma(DecimalComma);
    EXPECT_EQ(sql("'", stamp, "' '", Stamp(Date{}), "'"), "'2024-03-04 15:06:07' '1899-12-30 00:00:00'");
}

TEST(Statement, ANumberOrNullIsEither) {
    EXPECT_EQ(sql("A=", NumberOrNull{false, 5}, ",B=", NumberOrNull{true, 5}), "A=5,B=NULL");
}

TEST(Statement, AClauseIsInsertedUnchanged) {
    EXPECT_EQ(sql("X ", Clause("A = 'b' AND C > 1")), "X A = 'b' AND C > 1");
}

TEST(Statement, AnUnescapedTextIsInsertedUnchangedBetweenQuotes) {
    for (const char* text : {"", "plain", "\\", "\"", "-- /* ;", "Ωж日🦷", "a''b", "''", "''''"})
        EXPECT_EQ(sql("A='", Verbatim(text), "'"), "A='" + String(text) + "'");
}

TEST(Statement, AQuoteInAnUnescapedTextFails) {
    for (const char* text : {"'", "O'Neil", "x', B='y", "'''", "a'b'c", "x' OR '1'='1", "''a'"})
        EXPECT_EQ(FailureOf([&] { sql("A='", Verbatim(text), "'"); }).Number, SyntaxError) << text;
}

TEST(Statement, AQuoteInAnEarlierTextDoesNotShiftTheQuotes) {
    EXPECT_EQ(FailureOf([] { sql("A='", FixSqlString("it's"), "', B='", Verbatim("x'"), "'"); }).Number, SyntaxError);
    EXPECT_EQ(sql("A='", FixSqlString("it's"), "', B=", Verbatim("12")), "A='it''s', B=12");
}

TEST(Statement, OutsideOfQuotesOnlyAWholeNumberIsAccepted) {
    for (const char* text : {"12", "-3", "+4", " 5 "}) EXPECT_EQ(sql("A=", Verbatim(text)), "A=" + String(text));
    for (const char* text : {"", " ", "-", "1 OR 1=1", "1;", "1.5", "0x1", "1e3", "--1", "Name", "''", "１"})
        EXPECT_EQ(FailureOf([&] { sql("A=", Verbatim(text)); }).Number, SyntaxError) << text;
}

TEST(Statement, TheFailureHasTheFormOfTheDatabaseLayers) {
    const Error failure = FailureOf([] { sql("A='", Verbatim("'"), "'"); });
    EXPECT_EQ(failure.Source, "ADODB.Connection");
    EXPECT_THAT(failure.Description, ::testing::HasSubstr("A='"));
}

class StatementOnDatabase : public WithDatabase {};

TEST_F(StatementOnDatabase, AnUnescapedTextOfPairedQuotesStaysOneLiteral) {
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, 'old')");
    con->Execute(sql("UPDATE GlobalList_T SET ListText='", Verbatim("a'', ListID=''9"), "'"));
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T"), Variant("a', ListID='9"));
    EXPECT_EQ(Ask("SELECT ListID FROM GlobalList_T"), Variant(Long{1}));
}

/// Runs the same statement on two connections to equal databases: as pieces, and as a joined text.
class ActionOfPieces : public WithDatabase {
protected:
    ActionOfPieces() { joined->Open("Provider=SQLite;Data Source=:memory:"); }

    const Ref<Connection> plain = Connect();  // without handlers, for which the text would be joined

    void Create(const String& table) {
        for (const Ref<Connection>& each : {plain, joined}) each->Execute(table);
    }

    template <class... Pieces>
    void RunBoth(const Pieces&... pieces) {
        const auto failureOn = [](const auto& run) -> String {
            try {
                run();
            } catch (const Error& failure) {
                return CStr(failure.Number) + failure.Source + failure.Description + failure.Statement;
            }
            return {};
        };
        EXPECT_EQ(failureOn([&] { ExecuteOn(plain)(pieces...); }), failureOn([&] { joined->Execute(sql(pieces...)); }));
    }

    void ExpectSame(const String& select) {
        const auto all = [&](const Ref<Connection>& from) {
            std::vector<Variant> values;
            for (const Ref<Recordset> rs = from->Execute(select); !rs->Eof(); rs->MoveNext())
                for (Long i = 0; i < rs->FieldCount(); ++i) values.push_back(rs->Fields(i).Value());
            return values;
        };
        const std::vector<Variant> stored = all(plain);
        EXPECT_FALSE(stored.empty());
        EXPECT_EQ(stored, all(joined));
    }

    const Ref<Connection> joined = New<Connection>();
};

TEST_F(ActionOfPieces, StoresWhatTheJoinedStatementStores) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Create("CREATE TABLE Values_T (a INTEGER, b, c VARCHAR(20), d DATETIME, e INTEGER, f)");
    const String texts[] = {"", "plain", "it's", "''", "\\", "Ωж日", "5", "-5", "a''b", " x ", "--", "?"};
    const Long numbers[] = {0, 1, -1, INT32_MAX, INT32_MIN, 42};
    for (const String& text : texts)
        for (const Long number : numbers) {
            RunBoth("INSERT INTO Values_T (a, b, c, d, e, f) VALUES (", number, ", 'fixed', '", FixSqlString(text),
                    "', '", Stamp(Date{number * 1e-4}), "', ", NumberOrNull{number == 1, number}, ", 'it''s');");
            RunBoth("UPDATE Values_T SET c='", Verbatim(text), "', b=-1, f = 7 WHERE a=", number, " AND e <> ",
                    Long{3});
            RunBoth("UPDATE Values_T SET b='x", FixSqlString(text), "y' WHERE a = ", number);
            RunBoth("UPDATE Values_T SET e=e-", number, " WHERE a = ", number, ";");
        }
    ExpectSame("SELECT a,b,c,d,e,f,typeof(a),typeof(b),typeof(c),typeof(d),typeof(e),typeof(f) FROM Values_T");
}

TEST_F(ActionOfPieces, FailsAsTheJoinedStatement) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Create("CREATE TABLE Values_T (a INTEGER CHECK (a < 10), b)");
    for (int round = 0; round < 3; ++round) {
        RunBoth("INSERT INTO Values_T (a, b) VALUES (", Long{round}, ", '", FixSqlString("b"), "')");
        RunBoth("INSERT INTO Values_T (a, b) VALUES (", Long{10}, ", '", FixSqlString("it's"), "')");
        RunBoth("UPDATE Values_T SET b='", Verbatim("unpaired'"), "' WHERE a=", Long{round});
        RunBoth("UPDATE Values_T SET nothing=", Long{round});
    }
    ExpectSame("SELECT * FROM Values_T");
}

TEST_F(ActionOfPieces, IsJoinedOnceForEachShape) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    int joins = 0;
    const auto run = [&](Long number, const char* word) {
        const std::vector<ADODB::StatementPiece> pieces{
            detail::PieceOf("UPDATE GlobalList_T SET ListID="), detail::PieceOf(number),
            detail::PieceOf(", ListText='"), detail::PieceOf(Verbatim(word)), detail::PieceOf("' WHERE ListID <> 7;")};
        plain->ExecuteAction(pieces, [&] {
            ++joins;
            return sql("UPDATE GlobalList_T SET ListID=", number, ", ListText='", Verbatim(word),
                       "' WHERE ListID <> 7;");
        });
    };
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, 'old')");
    run(5, "five");
    run(6, "six");
    run(-8, "");
    EXPECT_EQ(joins, 1);
    EXPECT_EQ(Ask("SELECT ListID FROM GlobalList_T"), Variant(Long{-8}));
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T"), Variant(String()));
    run(9, "it''s");  // may end its literal: only the joined statement tells
    EXPECT_EQ(joins, 2);
    EXPECT_EQ(Ask("SELECT ListText FROM GlobalList_T"), Variant("it's"));
}

TEST_F(ActionOfPieces, AHandlerReceivesTheJoinedStatementAndMayReplaceIt) {
    struct Handler final : ADODB::ConnectionEvents {
        void WillExecute(ADODB::ExecuteRequest& request) override {
            seen = request.Source;
            request.Source = "UPDATE GlobalList_T SET ListID=99";
        }
        String seen;
    } handler;
    Run("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, 'old')");
    plain->Advise(handler);
    ExecuteOn(plain)("UPDATE GlobalList_T SET ListID=", Long{5}, ", ListText='", FixSqlString("it's"), "'");
    plain->Unadvise(handler);
    EXPECT_EQ(handler.seen, "UPDATE GlobalList_T SET ListID=5, ListText='it''s'");
    EXPECT_EQ(Ask("SELECT ListID FROM GlobalList_T"), Variant(Long{99}));
}

TEST_F(ActionOfPieces, ANullConnectionIsRaisedBeforeThePieces) {
    const auto bad = [] { return Stamp(Date{1e9}); };
    EXPECT_EQ(FailureOf([&] { ExecuteOn(nullptr)("UPDATE GlobalList_T SET ListText='", bad(), "'"); }).Number,
              err::ObjectNotSet);
    EXPECT_EQ(FailureOf([&] { ExecuteOn(New<Connection>())("UPDATE GlobalList_T SET ListID=", Long{1}); }).Number,
              ADODB::adErrObjectClosed);
}

}  // namespace
}  // namespace OXClass

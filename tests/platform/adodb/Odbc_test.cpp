#include "kit/Database.h"

#include <chrono>
#include <fstream>
#include <thread>

/// What is special about a data source of the driver manager. The tests of the layer run on it as on every other
/// engine.
namespace {

using namespace ADODB;
using namespace Platform;
using TestKit::FailureOf;
using TestKit::NumberOf;

class Odbc : public TestKit::WithDatabase {
protected:
    void SetUp() override { OXCLASS_ONLY_IF(TestKit::TestedEngine() == TestKit::Engine::MariaDB); }

    Long Affected(const String& statement) {
        Long affected = -1;
        con->Execute(statement, &affected);
        return affected;
    }

    String AskText(const String& select) { return Ask(select).As<String>(); }

    /// Ends the session of `con` on the server.
    void Kill() { Connect()->Execute("KILL " + CStr(Ask("SELECT CONNECTION_ID()"))); }

    /// Sets the limit of the session of a connection for the wait for a lock.
    static void WaitOneSecond(const Ref<Connection>& connection) {
        connection->Execute("SET innodb_lock_wait_timeout=1");
    }
};

// ---- texts --------------------------------------------------------------------------------------

const std::vector<String> Texts{"Ελληνικά ΐ", "Åsa Öberg ÄÖÜØÞß", "İstanbul ığüşöç ĞİŞ", "😀𝄞 tooth 🦷",
                                "it's \\ \"", "tab\tline\n",      " blanks  ",           String("a\0b", 3)};

TEST_F(Odbc, TextsOfFourScriptsAreReadAsTheyWereWritten) {
    for (const String& text : Texts) {
        con->Execute("DELETE FROM GlobalList_T");
        con->Execute("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, '" + Replace(text, "'", "''") + "')");
        EXPECT_EQ(AskText("SELECT ListText FROM GlobalList_T WHERE ListID=1"), text);
        EXPECT_EQ(AskText("SELECT ListText FROM GlobalList_T WHERE ListText='" + Replace(text, "'", "''") + "'"), text);
    }
}

TEST_F(Odbc, TextsOfFourScriptsAreWrittenByARecordset) {
    for (const String& text : Texts) {
        con->Execute("DELETE FROM GlobalList_T");
        const Ref<Recordset> rows = New<Recordset>();
        rows->Open("SELECT * FROM GlobalList_T", con, adOpenKeyset, adLockOptimistic);
        rows->AddNew();
        rows->Fields("ListText").SetValue(text);
        rows->Update();
        EXPECT_EQ(AskText("SELECT ListText FROM GlobalList_T"), text);
    }
}

TEST_F(Odbc, TextsOfFourScriptsStandInATextThatIsNotPrepared) {
    for (const String& text : Texts) {
        if (text.find('\0') != String::npos) continue;
        EXPECT_EQ(AskText("SELECT '" + Replace(text, "'", "''") + "' /* a comment */"), text);
    }
    EXPECT_EQ(NumberOf([&] { con->Execute(String("SELECT 'a\0b' /* a comment */", 27)); }), ErrorsInCommand);
}

TEST_F(Odbc, LongTextsAreReadInParts) {
    String text;
    for (int i = 0; i < 40'000; ++i) text += i % 7 == 0 ? "Ø" : "a";
    con->Execute("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, '" + text + "')");
    con->Execute("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, 'short')");
    const Ref<Recordset> rows = con->Execute("SELECT ListText FROM GlobalList_T ORDER BY GlobalListID");
    EXPECT_EQ(rows->Fields(0).As<String>(), text);
    rows->MoveNext();
    EXPECT_EQ(rows->Fields(0).As<String>(), "short");
}

// ---- comparing ----------------------------------------------------------------------------------

TEST_F(Odbc, ATextThatIsLongerThanItsColumnWasIsReadWhole) {
    con->Execute("INSERT INTO Root_T (RootID, RootDirectory) VALUES (1, 'short')");
    const auto read = [&] {
        const Ref<Recordset> rows =
            con->Execute("SELECT RootDirectory, REPEAT('b', 3000), RootID FROM Root_T WHERE RootID=1");
        EXPECT_EQ(rows->Fields(1).As<String>(), String(3000, 'b'));
        EXPECT_EQ(rows->Fields(2).Value(), Variant(Long{1}));
        return rows->Fields(0).As<String>();
    };
    EXPECT_EQ(read(), "short");
    Connect()->Execute("ALTER TABLE Root_T MODIFY COLUMN RootDirectory varchar(4000)");
    for (const int length : {1023, 1024, 1025, 1026, 4000}) {
        Connect()->Execute("UPDATE Root_T SET RootDirectory=REPEAT('a', " + std::to_string(length) + ")");
        EXPECT_EQ(read(), String(static_cast<std::size_t>(length), 'a'));
    }
}

TEST_F(Odbc, TextsAreComparedByTheirCharacters) {
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM SchemaVersion_T WHERE 'a'='A' OR 'a'='a ' OR 'a'='å'"), Variant(Long{0}));
    con->Execute("INSERT INTO GlobalList_T (ListText) VALUES ('a')");
    for (const char* other : {"A", "a ", "å"})
        EXPECT_EQ(Ask("SELECT COUNT(*) FROM GlobalList_T WHERE ListText='" + String(other) + "'"), Variant(Long{0}));
}

TEST_F(Odbc, IdentifiersOfPatientsAreComparedWithoutRegardToCase) {
    con->Execute("INSERT INTO Patient_T (PersonNr_CH) VALUES ('ab-1')");
    const auto count = [&](const String& text) {
        return Ask("SELECT COUNT(*) FROM Patient_T WHERE PersonNr_CH='" + text + "'");
    };
    EXPECT_EQ(count("AB-1"), Variant(Long{1}));
    for (const char* other : {"åb-1", "ab1", "ab-1 ", "ab-"}) EXPECT_EQ(count(other), Variant(Long{0})) << other;
}

TEST_F(Odbc, ClinicsAreSortedWithoutRegardToCase) {
    for (const char* name : {"b", "C", "a", "B2"})
        con->Execute("INSERT INTO Clinic_T (ClinicName) VALUES ('" + String(name) + "')");
    EXPECT_EQ(AskAll("SELECT ClinicName FROM Clinic_T ORDER BY ClinicName"), "a,b,B2,C");
}

TEST_F(Odbc, APatternIgnoresTheCaseAndHasNoEscapeCharacter) {
    con->Execute("INSERT INTO GlobalList_T (ListText) VALUES ('Ab\\_')");
    const auto matches = [&](const String& pattern) {
        return CLng(Ask("SELECT COUNT(*) FROM GlobalList_T WHERE ListText LIKE '" + pattern + "'"));
    };
    EXPECT_EQ(matches("ab%"), 1);
    EXPECT_EQ(matches("aB\\_"), 1);
    EXPECT_EQ(matches("ab\\%"), 1);
    EXPECT_EQ(matches("b%"), 0);
}

TEST_F(Odbc, NamesOfTablesHaveNoCase) {
    con->Execute("INSERT INTO globalLIST_T (ListID) VALUES (4)");
    con->Execute("-- a comment\nUPDATE GLOBALLIST_T SET ListText='From GlobalList_T'");
    const Ref<Recordset> rows = con->Execute(
        "SELECT G.ListText, GLOBALlist_t.ListID AS Number FROM GlobalList_T, globallist_T g WHERE g.ListID=4");
    EXPECT_EQ(rows->Fields("ListText").As<String>(), "From GlobalList_T");
    EXPECT_EQ(rows->Fields(1).Name(), "Number");
}

TEST_F(Odbc, AThousandAlternativesAreOneStatement) {
    con->Execute("INSERT INTO Patient_T (PatientID) VALUES (7), (1499), (1500)");
    for (const int terms : {1'500, 32'768}) {
        String select = "SELECT COUNT(*) FROM Patient_T WHERE PatientID=0";
        for (int i = 1; i < terms; ++i) select += " OR PatientID=" + std::to_string(i);
        EXPECT_EQ(Ask(select), Variant(Long{terms == 1'500 ? 2 : 3}));
    }
}

TEST_F(Odbc, RowsThatAreEqualOtherwiseAreSortedByTheirKeys) {
    for (const char* key : {"3", "1", "2"})
        con->Execute(String("INSERT INTO ImageBild_T (ImageBildID, PatientID, DateCaptured_SD, RootId) VALUES (") +
                     key + ", 7, '2024-01-01', " + key + ")");
    con->Execute("INSERT INTO Root_T (RootID) VALUES (1), (3)");
    EXPECT_EQ(AskAll("SELECT ImageBildID FROM ImageBild_T WHERE PatientID=7 ORDER BY DateCaptured_SD DESC"), "1,2,3");
    EXPECT_EQ(AskAll("SELECT ImageBildID FROM ImageBild_T WHERE PatientID=7 ORDER BY RootId<4 LIMIT 2"), "1,2");
    EXPECT_EQ(AskAll("SELECT B.ImageBildID FROM ImageBild_T b LEFT JOIN Root_T ON b.RootId=Root_T.RootID"
                     " ORDER BY DateCaptured_SD"),
              "1,2,3");
    EXPECT_EQ(AskAll("SELECT ImageBildID FROM ImageBild_T ORDER BY PatientID -- by what it is"), "1,2,3")
        << "a text with a comment is sent as it is";
    EXPECT_EQ(AskAll("SELECT ImageBildID FROM ImageBild_T FORCE INDEX (PRIMARY) WHERE PatientID=7"), "1,2,3")
        << "a text that can't be parsed with its keys";
    EXPECT_EQ(AskAll("SELECT ImageBildID FROM ImageBild_T WHERE ImageBildID=2 LOCK IN SHARE MODE"), "2");
    const String wrong = "SELECT ImageBildID FROM ImageBild_T ORDER BY PatientID +";
    EXPECT_THAT(FailureOf([&] { con->Execute(wrong); }).Description, ::testing::HasSubstr("near '' at line 1"));
}

// ---- values -------------------------------------------------------------------------------------

TEST_F(Odbc, AnEmptyTextForANumberOrADateIsANull) {
    con->Execute("INSERT INTO Comments_T (dates, objectID, signature) VALUES ('', '', '')");
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Comments_T WHERE dates IS NULL AND objectID IS NULL AND signature=''"),
              Variant(Long{1}));
    con->Execute("INSERT INTO Comments_T (dates, objectID, signature) VALUES ('2024-05-06 07:08:09', '0', 'x')");
    con->Execute("UPDATE Comments_T SET objectID='', signature='' WHERE signature='x'");
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Comments_T WHERE objectID IS NULL AND signature=''"), Variant(Long{2}));
    con->Execute("UPDATE Comments_T SET objectID=0");
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Comments_T WHERE objectID=''"), Variant(Long{0}));
}

TEST_F(Odbc, ValuesHaveTheTypesOfTheirColumns) {
    con->Execute(
        "CREATE TABLE Types_T (a smallint, b int, c bigint, d double, e datetime, f decimal(30,0), g decimal(9,2),"
        " h bit, i blob, j time)");
    con->Execute(
        "INSERT INTO Types_T VALUES (-5, -2147483648, 3000000000, 0.1, '2024-05-06 07:08:09', 12345678901234567890,"
        " 1.25, 1, x'410042', '10:11:12')");
    const Ref<Recordset> rows = con->Execute("SELECT * FROM Types_T");
    EXPECT_EQ(rows->Fields("a").Value(), Variant(Integer{-5}));
    EXPECT_EQ(rows->Fields("b").Value(), Variant(std::numeric_limits<Long>::min()));
    EXPECT_EQ(rows->Fields("c").Value(), Variant(std::int64_t{3'000'000'000}));
    EXPECT_EQ(rows->Fields("d").Value(), Variant(0.1));
    EXPECT_EQ(CStr(rows->Fields("e").Value()), CStr(Variant(DateFrom({2024, 5, 6, 7, 8, 9}))));
    EXPECT_EQ(rows->Fields("f").Value(), Variant(1.2345678901234567e19));
    EXPECT_EQ(rows->Fields("g").Value(), Variant(1.25));
    EXPECT_EQ(rows->Fields("h").Value(), Variant(true));
    EXPECT_EQ(rows->Fields("i").Value(), Variant(String("A\0B", 3)));
    EXPECT_EQ(rows->Fields("j").Value(), Variant(Date{(10 * 3600 + 11 * 60 + 12) / 86400.0}));
}

TEST_F(Odbc, NumbersWithAPointAreBound) {
    con->Execute("INSERT INTO TemplateCard_T (TCPreviewWidth) VALUES (0.1)");
    EXPECT_EQ(Ask("SELECT TCPreviewWidth FROM TemplateCard_T WHERE TCPreviewWidth=0.1"), Variant(0.1));
    con->Execute("UPDATE TemplateCard_T SET TCPreviewWidth=-2.5e-3");
    EXPECT_EQ(Ask("SELECT TCPreviewWidth FROM TemplateCard_T WHERE TCPreviewWidth=-0.0025"), Variant(-0.0025));
}

TEST_F(Odbc, MatchedRowsAreCounted) {
    con->Execute("INSERT INTO Patient_T (PatientID, RespDoctor) VALUES (1, 4), (2, 4)");
    EXPECT_EQ(Affected("UPDATE Patient_T SET RespDoctor=4"), 2);
    EXPECT_EQ(Affected("UPDATE Patient_T SET RespDoctor=4 WHERE PatientID=1"), 1);
    EXPECT_EQ(Affected("UPDATE Patient_T SET RespDoctor=4 WHERE PatientID=3"), 0);
    EXPECT_EQ(Affected("DELETE FROM Patient_T WHERE PatientID=3"), 0);
    EXPECT_EQ(Affected("DELETE * FROM Patient_T"), 2);
    EXPECT_EQ(Affected("SET @x=1"), 0);
    EXPECT_EQ(Affected("SELECT 1"), -1);
}

TEST_F(Odbc, ANewRowReturnsItsCounter) {
    con->Execute("INSERT INTO Clinic_T (ClinicID) VALUES (40)");
    const Ref<Recordset> rows = New<Recordset>();
    rows->Open("SELECT * FROM Clinic_T", con, adOpenKeyset, adLockOptimistic);
    rows->AddNew();
    rows->Update();
    EXPECT_EQ(rows->Fields("ClinicID").Value(), Variant(Long{41}));
    EXPECT_EQ(Ask("SELECT @@IDENTITY"), Variant(Long{41}));
    con->Execute("INSERT INTO Clinic_T (ClinicID) VALUES (0)");
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Clinic_T WHERE ClinicID=0"), Variant(Long{1}));
}

TEST_F(Odbc, NamesMayContainAnyCharacter) {
    con->Execute("CREATE TABLE `odd ? \"name``` (`a ; ? ``b` int AUTO_INCREMENT PRIMARY KEY, `select` int)");
    const Ref<Recordset> rows = New<Recordset>();
    rows->Open("SELECT * FROM `odd ? \"name```", con, adOpenKeyset, adLockOptimistic);
    rows->AddNew();
    rows->Fields("select").SetValue(Long{5});
    rows->Update();
    rows->Fields("select").SetValue(Long{6});
    rows->Update();
    EXPECT_EQ(Ask("SELECT \"select\" FROM `odd ? \"name```"), Variant(Long{6}));
}

// ---- failures -----------------------------------------------------------------------------------

TEST_F(Odbc, FailuresAreMapped) {
    con->Execute("INSERT INTO SchemaVersion_T VALUES ('a', 1, 0)");
    const auto expect = [&](const String& statement, Long number, const String& state, Long native) {
        const Error failure = FailureOf([&] { con->Execute(statement); });
        EXPECT_EQ(failure.Number, number) << statement;
        EXPECT_EQ(failure.SQLState, state) << statement;
        EXPECT_EQ(failure.NativeError, native) << statement;
        EXPECT_EQ(failure.Statement, statement);
        EXPECT_EQ(failure.Provider, "MSDASQL");
        EXPECT_EQ(failure.Source, "MariaDB");
        EXPECT_FALSE(failure.Description.starts_with("[")) << failure.Description;
    };
    expect("SELECT * FROM Nothing_T", NoTable, "42S02", 1146);
    expect("SELECT Nothing FROM Root_T", UnknownName, "42S22", 1054);
    expect("SELEC", ErrorsInCommand, "42000", 1064);
    expect("SELECT 1; SELECT 2", ErrorsInCommand, "42000", 0);
    expect("SELECT 'a", ErrorsInCommand, "42000", 1064);
    expect("SELECT * FROM Root_T WHERE RootID=?", UnknownName, "07002", 0);
    expect("INSERT INTO SchemaVersion_T VALUES ('a', 1, 0)", IntegrityViolation, "23000", 1062);
    expect("INSERT INTO SchemaVersion_T VALUES (NULL, 1, 0)", IntegrityViolation, "23000", 1048);
    expect("UPDATE SchemaVersion_T SET Version='x'", CantConvertValue, "22007", 1366);
    expect("INSERT INTO Comments_T (dates) VALUES ('2024-02-30 00:00:00')", CantConvertValue, "22007", 1292);
    expect("UPDATE SchemaVersion_T SET Version=3000000000", DataOverflow, "22003", 1264);
    expect("UPDATE SchemaVersion_T SET Application='a text that is too long'", DataOverflow, "22001", 1406);
}

TEST_F(Odbc, ARefusedLoginIsNamed) {
    const auto failure = [&](const String& settings) {
        return FailureOf([&] { New<Connection>()->Open(database.Settings() + settings); });
    };
    const Error refused = failure(";User ID=nobody");
    EXPECT_EQ(refused.Number, LoginFailed);
    EXPECT_EQ(refused.SQLState, "28000");
    EXPECT_EQ(refused.NativeError, 1045);
    EXPECT_THAT(refused.Description, ::testing::StartsWith("Access denied"));
    EXPECT_EQ(failure(";Socket=/nowhere").Number, Failed);
    EXPECT_EQ(failure(";Database=nothing").Number, Failed);
    EXPECT_EQ(failure(";Driver={No Such Driver}").Number, Failed);
}

TEST_F(Odbc, ADataSourceIsOpenedByItsName) {
    const ConnectionString settings(database.Settings());
    const std::filesystem::path sources = folder.Path() / "odbc.ini";
    std::ofstream(sources) << "[Clinic]\nDriver=MariaDB Unicode\nSocket=" << settings.Value("Socket")
                           << "\nDatabase=" << settings.Value("Database") << "\n";
    setenv("ODBCINI", sources.c_str(), 1);
    const Ref<Connection> other = New<Connection>();
    other->Open("Provider=MSDASQL;DSN=Clinic", settings.Value("User ID"));
    unsetenv("ODBCINI");
    other->Execute("INSERT INTO Root_T (RootID, Status) VALUES (1, 5)");
    Long affected = -1;
    other->Execute("UPDATE Root_T SET Status=5", &affected);
    EXPECT_EQ(affected, 1) << "the options of the dialect are missing";
}

TEST_F(Odbc, ASessionThatEndsRollsItsTransactionBack) {
    {
        const Ref<Connection> other = Connect();
        other->BeginTrans();
        other->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    }
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Root_T"), Variant(Long{0}));
}

TEST_F(Odbc, TransactionsNestFiveLevelsDeep) {
    for (Long level = 1; level <= 5; ++level) {
        EXPECT_EQ(con->BeginTrans(), level);
        con->Execute("INSERT INTO Root_T (RootID) VALUES (" + CStr(level) + ")");
    }
    EXPECT_EQ(NumberOf([&] { con->BeginTrans(); }), TooManyTransactions);
    con->RollbackTrans();
    con->CommitTrans();
    con->RollbackTrans();
    con->CommitTrans();
    con->CommitTrans();
    EXPECT_EQ(AskAll("SELECT RootID FROM Root_T ORDER BY RootID"), "1,2");
}

TEST_F(Odbc, APasswordMayContainAnyCharacter) {
    const String password = "a;b}c{d 'e\" =Ø";
    con->Execute("CREATE USER " + String("oxtest@localhost IDENTIFIED BY '") + Replace(password, "'", "''") + "'");
    con->Execute("GRANT SELECT ON clinic.schemaversion_t TO oxtest@localhost");
    const Ref<Connection> other = New<Connection>();
    const Error failure = FailureOf([&] { other->Open(database.Settings() + ";Database=clinic", "oxtest", password); });
    con->Execute("DROP USER oxtest@localhost");
    EXPECT_EQ(failure.Number, 0) << failure.Description;
    EXPECT_FALSE(Contains(other->ConnectionString(), "a;b"));
    EXPECT_EQ(NumberOf([&] { other->Execute("DELETE FROM Patient_T"); }), NoPermission);
}

TEST_F(Odbc, NoSpellingOfAPasswordIsShownAfterOpening) {
    con->Execute("CREATE USER oxpwd@localhost IDENTIFIED BY 'secret'");
    con->Execute("GRANT SELECT ON " + ConnectionString(database.Settings()).Value("Database") +
                 ".* TO oxpwd@localhost");
    const auto shown = [&](const String& settings, const String& password = {}) {
        const Ref<Connection> other = New<Connection>();
        other->Open(database.Settings() + settings, {}, password);
        return other->ConnectionString();
    };
    for (const char* key : {"PWD", "Pwd ", "Password", "pwd=wrong;PASSWORD"}) {
        const String settings = String(";UID=oxpwd;") + key + "=secret";
        EXPECT_FALSE(Contains(shown(settings), "secret")) << settings;
        EXPECT_TRUE(Contains(shown(settings + ";Persist Security Info=True"), "secret")) << settings;
    }
    EXPECT_FALSE(Contains(shown(";UID=oxpwd;PWD=wrong", "secret"), "wrong")) << "the argument overrides the text";
    EXPECT_FALSE(Contains(shown(";TLSKEYPWD=secret"), "secret")) << "the password of a key file";
    con->Execute("DROP USER oxpwd@localhost");
}

TEST_F(Odbc, ALostConnectionRaisesFromThenOn) {
    con->BeginTrans();
    con->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    Kill();
    EXPECT_EQ(NumberOf([&] { con->Execute("SELECT * FROM Root_T"); }), ConnectionLost);
    const Error later = FailureOf([&] { con->Execute("SELECT * FROM Root_T"); });
    EXPECT_EQ(later.Number, ConnectionLost);
    EXPECT_EQ(later.SQLState, "08003");
    con->RollbackTrans();
    con->Close();
    EXPECT_EQ(Connect()->Execute("SELECT COUNT(*) FROM Root_T")->Fields(0).Value(), Variant(Long{0}));
    con->Open(database.Settings());
    EXPECT_EQ(NumberOf([&] { con->Execute("SELECT * FROM Root_T"); }), 0);
}

TEST_F(Odbc, AStatementThatTakesTooLongIsCancelled) {
    con->SetCommandTimeout(1);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(NumberOf([&] { con->Execute("SELECT SLEEP(20)"); }), TimedOut);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    con->SetCommandTimeout(0);
    EXPECT_EQ(Ask("SELECT SLEEP(1.5)"), Variant(Long{0}));
}

TEST_F(Odbc, AWaitForALockEnds) {
    const Ref<Connection> other = Connect();
    con->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    other->BeginTrans();
    other->Execute("UPDATE Root_T SET Status=1 WHERE RootID=1");
    WaitOneSecond(con);
    con->BeginTrans();
    con->Execute("INSERT INTO Root_T (RootID) VALUES (2)");
    EXPECT_EQ(NumberOf([&] { con->Execute("UPDATE Root_T SET Status=2 WHERE RootID=1"); }), LockConflict);
    con->CommitTrans();
    other->RollbackTrans();
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Root_T"), Variant(Long{2}));
}

TEST_F(Odbc, ADeadlockRollsTheWholeTransactionBack) {
    con->Execute("INSERT INTO Root_T (RootID, Status) VALUES (1, 0), (2, 0), (3, 0)");
    con->BeginTrans();
    con->BeginTrans();
    con->Execute("UPDATE Root_T SET Status=1 WHERE RootID=1");
    std::thread second([&] {
        const Ref<Connection> other = Connect();
        other->BeginTrans();
        other->Execute("UPDATE Root_T SET Status=2 WHERE RootID IN (2, 3)");
        other->Execute("UPDATE Root_T SET Status=2 WHERE RootID=1");  // waits
        other->CommitTrans();
    });
    const auto waits = [&] {
        return Connect()
                   ->Execute("SELECT COUNT(*) FROM information_schema.innodb_trx WHERE trx_state='LOCK WAIT'")
                   ->Fields(0)
                   .Value() == Variant(Long{1});
    };
    for (int i = 0; i < 100 && !waits(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const Error failure = FailureOf([&] { con->Execute("UPDATE Root_T SET Status=1 WHERE RootID=2"); });
    second.join();
    EXPECT_EQ(failure.Number, LockConflict);
    EXPECT_EQ(failure.NativeError, 1213);
    EXPECT_EQ(NumberOf([&] { con->Execute("SELECT 1"); }), NoTransaction);
    con->RollbackTrans();
    con->RollbackTrans();
    EXPECT_EQ(AskAll("SELECT Status FROM Root_T ORDER BY RootID"), "2,2,2");
}

TEST_F(Odbc, AFailedStatementLeavesTheTransaction) {
    con->BeginTrans();
    EXPECT_NE(NumberOf([&] { con->Execute("SELECT nothing"); }), 0);
    con->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    EXPECT_NE(NumberOf([&] { con->Execute("INSERT INTO Root_T (RootID) VALUES (2), (1)"); }), 0);
    con->CommitTrans();
    EXPECT_EQ(AskAll("SELECT RootID FROM Root_T"), "1");
}

// ---- prepared statements ------------------------------------------------------------------------

TEST_F(Odbc, ARepeatedStatementIsPreparedOnce) {
    const auto prepared = [&] {
        return CLng(
            CDbl(Ask("SELECT variable_value+0 FROM information_schema.session_status"
                     " WHERE variable_name='Com_stmt_prepare'")));
    };
    const auto read = [&](int id) { con->Execute("SELECT * FROM Root_T WHERE RootID=" + std::to_string(id)); };
    read(1);
    prepared();
    const Long before = prepared();
    for (int id = 0; id < 10; ++id) read(id);
    EXPECT_EQ(prepared(), before);
}

TEST_F(Odbc, ATableThatAnotherConnectionHasChangedIsReadAnew) {
    con->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    const auto columns = [&] { return con->Execute("SELECT * FROM Root_T WHERE RootID=1")->FieldCount(); };
    const Long before = columns();
    Connect()->Execute("ALTER TABLE Root_T ADD COLUMN Extra int DEFAULT 5");
    EXPECT_EQ(columns(), before + 1);
    Connect()->Execute("ALTER TABLE Root_T MODIFY COLUMN Extra varchar(10), DROP COLUMN Status");
    EXPECT_EQ(columns(), before);
    EXPECT_EQ(con->Execute("SELECT * FROM Root_T WHERE RootID=1")->Fields("Extra").Value(), Variant(String("5")));
}

}  // namespace

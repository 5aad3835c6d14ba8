#include "ServerTest.h"
#include "console/Database.h"
#include "console/WriteTransaction.h"
#include "console/schema/SchemaChange.h"
#include "platform/runtime/Services.h"

#include <atomic>
#include <fstream>
#include <gmock/gmock.h>
#include <pty.h>
#include <regex>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace ServerTest;
using ::testing::HasSubstr;
using ::testing::Not;

/// The tables of a clinic, each with its key.
constexpr std::pair<const char*, const char*> Tables[] = {
    {"Root_T", "RootID"},
    {"GlobalList_T", "GlobalListID"},
    {"Patient_T", "PatientID"},
    {"Doctor_T", "drID"},
    {"Clinic_T", "ClinicID"},
    {"ImageBild_T", "ImageBildID"},
    {"Comments_T", "CommentID"},
    {"Study_T", "Study_ID"},
    {"Series_T", "Series_ID"},
    {"TemplateCard_T", "TemplateID"},
    {"TemplateAttribute_T", "TemplateImageId"},
    {"ImageCard_T", "ImageCardID"},
    {"ImageAttribute_T", "ImageAttributeID"},
    {"ImageManipulation_T", "ImageManipulationID"},
    {"StandardGroupName", "StandardNameID"},
    {"PatientIssuer_T", "PatientID"},
    {"ClinicIdentity_T", "Identity"},
    {"ImportedImage_T", "SOPInstanceUID"},
};

/// Returns all rows of all tables of a database.
std::map<std::string, std::vector<std::vector<Platform::Variant>>> RowsOf(const std::string& settings) {
    std::map<std::string, std::vector<std::vector<Platform::Variant>>> all;
    const Ref<ADODB::Connection> con = OnServer::Open(settings);
    for (const auto& [table, key] : Tables) {
        auto& rows = all[table];
        const auto read = con->Execute(std::string("SELECT * FROM ") + table + " ORDER BY " + key);
        for (; !read->Eof(); read->MoveNext()) {
            rows.emplace_back();
            for (Platform::Long i = 0; i < read->FieldCount(); ++i) rows.back().push_back(read->Fields(i).Value());
        }
    }
    return all;
}

TEST_F(OnServer, InitMakesTheTablesInAnEmptyDatabaseOnly) {
    const Result before = OnClinic({"patients"});
    EXPECT_EQ(before.code, 1);
    EXPECT_THAT(before.err, HasSubstr("is not a clinic database; make its tables, if it is empty, with: oxclass init"));
    EXPECT_THAT(Try({"init", Clinic()}).err, HasSubstr("name the folder for the image files with --root"));
    EXPECT_THAT(Try({"init", Clinic(), "--root", Root().string(), "--replace"}).err, HasSubstr("--replace renames"));
    const Result made = Try({"init", Clinic(), "--root", Root().string()});
    EXPECT_EQ(made.code, 0) << made.err;
    EXPECT_EQ(made.out, Clinic() + " is ready; images go to " + Root().string() + "\nNext: oxclass --db \"" + Clinic() +
                            "\" import FOLDER\n");
    const Result again = Try({"init", Clinic(), "--root", Root().string()});
    EXPECT_EQ(again.code, 1);
    EXPECT_THAT(again.err, HasSubstr("has tables of a clinic already and is not changed"));
    EXPECT_EQ(RowsOnServer("Root_T"), 1U);
}

TEST_F(OnServer, AFailedInitLeavesNoTable) {
    OXCLASS_ONLY_IF(TestKit::RollsBackDefinitions());
    Open(Clinic())->Execute("CREATE TABLE StandardGroupName (Name varchar(5))");
    EXPECT_EQ(Try({"init", Clinic(), "--root", Root().string()}).code, 1);
    EXPECT_THAT(OnClinic({"patients"}).err, HasSubstr("is not a clinic database"));
}

TEST_F(OnServer, AFailedInitIsCompletedByTheNext) {
    OXCLASS_ONLY_IF(!TestKit::RollsBackDefinitions());
    Open(Clinic())->Execute("CREATE TABLE standardgroupname (TGId int, Name varchar(5))");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Try({"init", Clinic(), "--root", Root().string()}).code, 1);
        EXPECT_THAT(OnClinic({"patients"}).err, HasSubstr("is not a clinic database"));
        for (const char* const table : {"SchemaVersion_T", "Root_T", "TemplateCard_T"})
            EXPECT_EQ(RowsOnServer(table), 0U) << table;
    }
    Open(Clinic())->Execute("DROP TABLE standardgroupname");
    InitServer();
    Init();
    for (const char* const command : {"layouts", "anatomy", "patients"})
        EXPECT_EQ(OnClinic({command}).out, Ok({command})) << command;
}

TEST_F(OnServer, TheTablesOfTheProgramAreMadeWhenAClinicWithoutThemIsOpened) {
    OXCLASS_ONLY_IF(!TestKit::RollsBackDefinitions());
    InitServer();
    Open(Clinic())->Execute("DROP TABLE patientissuer_t, clinicidentity_t");
    EXPECT_EQ(OnClinic({"patients"}).code, 0);
    EXPECT_EQ(RowsOnServer("PatientIssuer_T") + RowsOnServer("ClinicIdentity_T"), 0U);
}

TEST_F(OnServer, ANewerVersionIsRefusedAsThatOfAFile) {
    InitServer();
    Init();
    Open(Clinic())->Execute("UPDATE SchemaVersion_T SET Version = 99");
    Run("PRAGMA user_version = 99");
    const Result refused = OnClinic({"patients"}), file = On(Database(), {"patients"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(file.err, HasSubstr("was made by a newer program"));
    EXPECT_EQ(refused.err, Platform::Replace(file.err, Database(), Clinic()));
}

TEST_F(OnServer, EveryCommandDoesWhatItDoesOnSqlite) {
    InitServer();
    Init();
    WriteSeries("2.25.5", FullMouth18);
    Write("2.25.6", 1, {{11, 21}, ""}, [](DcmDataset& set) {
        set.putAndInsertString(DCM_PatientID, "Q'1");
        set.putAndInsertString(DCM_PatientName, "O'Hara^\xC3\x84nne");
        set.putAndInsertString(DCM_SpecificCharacterSet, "ISO_IR 192");
        set.putAndInsertString(DCM_IssuerOfPatientID, "Clinic");
        set.putAndInsertString(DCM_StudyDescription, "It's");
    });
    const std::string picture = (folder.Path() / "picture.svg").string(),
                      report = (folder.Path() / "report.html").string();
    const std::vector<std::vector<std::string>> commands = {
        {"import", Films()},
        {"import", Films()},
        {"patients"},
        {"patients", "hara", "--json"},
        {"patient", "p-2.25.5"},
        {"patient", "p-2.25.5", "Sex=F", "Address=Lane 5", "Issuer=Here"},
        {"patient", "Q'1", "--json"},
        {"studies"},
        {"studies", "--patient", "Q'1", "--json"},
        {"series"},
        {"series", "--json"},
        {"series", "1"},
        {"series", "1", "--json"},
        {"images"},
        {"images", "--series", "1", "--json"},
        {"hang", "1"},
        {"comment", "3", "caries \\ 'distal'", "--signature", "AB"},
        {"cards", "p-2.25.5"},
        {"series", "save-as-card", "1"},
        {"card", "new", "p-2.25.5", "Caries 16"},
        {"card", "add", "IC2", "3", "4"},
        {"card", "show", "IC2"},
        {"cards", "p-2.25.5", "--json"},
        {"draw", "SE1", "-o", picture},
        {"draw", "IC2", "-o", picture},
        {"report", "p-2.25.5", "-o", report},
        {"doctor", "new", "DrLastName=Ek", "DrEMail=a@b"},
        {"doctors"},
        {"clinic", "new", "ClinicName=North"},
        {"clinics", "--json"},
        {"setting", "set", "DicomRootUID", "1.2.826.0.1"},
        {"setting", "list", "DicomRootUID"},
        {"setting", "get", "DicomRootUID"},
        {"layouts"},
        {"layouts", "6"},
        {"anatomy"},
        {"anatomy", "1"},
        {"roots"},
        {"roots", "--json"},
        {"check"},
        {"check", "--json"},
        {"patient", "p-9"},
        {"series", "99"},
    };
    const auto made = [&](const std::string& database, const std::string& root,
                          const std::vector<std::string>& command) {
        fs::remove(picture);
        fs::remove(report);
        const Result run = On(database, command);
        const std::string files = ContentOf(picture) + ContentOf(report);
        const std::string all = std::to_string(run.code) + "\n" + run.out + run.err + files;
        return std::regex_replace(Platform::Replace(all, root, "ROOT"), std::regex("[0-9A-F]{32}"), "GUID");
    };
    const auto clock = std::exchange(Platform::TheHost().Now, [] { return Platform::CDate("2026-03-04 05:06:07"); });
    for (const auto& command : commands) {
        const std::string onFile = made(Database(), (folder.Path() / "images").string(), command);
        EXPECT_EQ(made(Clinic(), Root().string(), command), onFile) << testing::PrintToString(command);
    }
    Platform::TheHost().Now = clock;
}

TEST_F(OnServer, SixteenImportersStoreEachImageOnce) {
    InitServer();
    for (int series = 0; series < 6; ++series)
        WriteSeries("2.25.8" + std::to_string(series), {FullMouth18[7], FullMouth18[10], FullMouth18[0]});
    std::vector<pid_t> importers;
    for (int i = 0; i < 16; ++i) {
        const fs::path out = folder.Path() / ("out" + std::to_string(i));
        importers.push_back(fork());
        if (importers.back() != 0) continue;
        std::freopen(out.c_str(), "w", stdout);
        std::freopen(out.c_str(), "a", stderr);
        const std::string database = Clinic(), films = Films();
        const char* const arguments[] = {"oxclass", "--db", database.c_str(), "import", films.c_str()};
        const int code = Console::RunProgram(5, arguments);
        std::fflush(nullptr);
        std::_Exit(code);
    }
    for (std::size_t i = 0; i < importers.size(); ++i) {
        int status = -1;
        waitpid(importers[i], &status, 0);
        EXPECT_EQ(status, 0) << ContentOf(folder.Path() / ("out" + std::to_string(i)));
    }
    EXPECT_EQ(RowsOnServer("ImageBild_T"), 18U);
    EXPECT_EQ(RowsOnServer("Series_T"), 6U);
    EXPECT_EQ(RowsOnServer("Study_T"), 6U);
    EXPECT_EQ(RowsOnServer("Patient_T"), 6U);
    EXPECT_EQ(OnClinic({"check"}).code, 0);
}

TEST_F(OnServer, ABackupIsRestoredAsAFileAndCopiedBack) {
    InitServer();
    WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
    ASSERT_EQ(OnClinic({"import", Films()}).code, 0);
    const std::string backup = (folder.Path() / "backup").string();
    for (const char* const copied : {"2 files, 2 of them copied", "2 files, 0 of them copied"})
        EXPECT_THAT(OnClinic({"backup", backup}).out, HasSubstr(copied));
    const std::string restored = (folder.Path() / "restored.db").string();
    EXPECT_EQ(Try({"restore", backup, restored, "--root", (folder.Path() / "elsewhere").string()}).code, 0);
    EXPECT_THAT(On(restored, {"check"}).out, HasSubstr("2 images and 2 files were checked: 0 findings"));
    EXPECT_EQ(On(restored, {"series", "1"}).out, OnClinic({"series", "1"}).out);
}

TEST_F(OnServer, NoMessageHasThePassword) {
    InitServer();
    const std::string secret = Clinic() + ";Password=sesame";
    for (const Result& run :
         {On(secret, {"patients", "--trace"}), On(secret + ";Port=9", {"patients"}),
          On(secret + ";PWD=sesame", {"patients", "--json"}), On(secret + "';'", {"patients"}),
          On(Clinic() + ";Password=x;sesame", {"patients"}), Try({"init", Clinic() + ";Password=x;sesame"}),
          Try({"init", secret, "--root", Root().string()}), On(secret, {"copy", "--to", secret, "--json"})})
        EXPECT_THAT(run.out + run.err, Not(HasSubstr("sesame")));
    EXPECT_EQ(On(secret, {"patients"}).code, OnMariaDb() ? 1 : 0) << "MariaDB's account has no password";
    EXPECT_EQ(On(secret + ";Port=9", {"patients"}).code, 1);
}

// ---- conflicts -----------------------------------------------------------------------------------

/// Another program that changes rows of patients in a transaction of its own, and the row that all writers change
/// afterwards, when the program waits for one of the patients: the two wait for each other then.
class Opponent {
public:
    Opponent(const std::string& settings, bool mariaDb)
        : thread_([this, settings, mariaDb] { Run(settings, mariaDb); }) {
        while (!began_) usleep(1000);
    }
    ~Opponent() { thread_.join(); }
    Opponent(const Opponent&) = delete;

private:
    /// Returns after ten seconds also without one.
    static void WaitForAWaitingTransaction(const std::string& settings, bool mariaDb) {
        const Ref<ADODB::Connection> con = OnServer::Open(settings);
        const char* const waiting =
            mariaDb ? "SELECT count(*) FROM information_schema.innodb_trx WHERE trx_state = 'LOCK WAIT'"
                    : "SELECT count(*) FROM pg_stat_activity WHERE wait_event_type = 'Lock'";
        for (int i = 0; i < 50 && con->Execute(waiting)->Fields(0).As<Platform::Long>() == 0; ++i)
            usleep(200'000);  // MariaDB looks again only after a tenth of a second without a question
    }

    void Run(const std::string& settings, bool mariaDb) {
        const Ref<ADODB::Connection> con = OnServer::Open(settings);
        // The server ends the transaction of the program: this one has changed more rows, or looks later for a
        // deadlock.
        if (!mariaDb) con->Execute("SET deadlock_timeout = '60s'");
        con->BeginTrans();
        con->Execute("UPDATE Patient_T SET Email_adress = 'a@b'");
        began_ = true;
        WaitForAWaitingTransaction(settings, mariaDb);
        con->Execute("UPDATE SchemaVersion_T SET Version = Version");
        con->CommitTrans();
    }

    std::atomic<bool> began_ = false;
    std::thread thread_;
};

TEST_F(OnServer, ATransactionThatADeadlockHasEndedIsRunAgain) {
    InitServer();
    for (int i = 0; i < 8; ++i) WriteSeries("2.25.5" + std::to_string(i), {FullMouth18[7]});
    ASSERT_EQ(OnClinic({"import", Films()}).code, 0);
    Result run;
    {
        const Opponent opponent(Clinic(), OnMariaDb());
        run = OnClinic({"--trace", "patient", "p-2.25.50", "Address=Lane 5"});
    }
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(Platform::LCase(run.err), HasSubstr("failed: deadlock")) << "the test must have met a conflict";
    EXPECT_THAT(run.out, HasSubstr("Lane 5"));
    EXPECT_THAT(run.out, HasSubstr("a@b"));
}

TEST_F(OnServer, AConflictThatDoesNotEndIsReported) {
    InitServer();
    const Console::Database database({.database = Clinic()});
    const Platform::Long before = database.Number("SELECT Writes FROM SchemaVersion_T");
    int runs = 0;
    const auto conflict = [&] {
        ++runs;
        database.Con()->Execute("UPDATE Root_T SET Status = 2");
        database.Con()->Execute(OnMariaDb() ? "SIGNAL SQLSTATE '40001' SET MYSQL_ERRNO = 1213"
                                            : "DO 'BEGIN RAISE EXCEPTION USING ERRCODE = ''40001''; END'");
    };
    try {
        Console::Write(database.Con(), conflict);
        FAIL() << "the conflict must be reported";
    } catch (const Console::UserError& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("other programs changed the same rows again and again"));
        EXPECT_THAT(failure.what(), HasSubstr("run the command again"));
    }
    EXPECT_EQ(runs, 10);
    EXPECT_EQ(database.Number("SELECT Status FROM Root_T"), 1);
    EXPECT_EQ(database.Number("SELECT Writes FROM SchemaVersion_T"), before);
    Console::Write(database.Con(), [&] { database.Con()->Execute("UPDATE Root_T SET Status = 2"); });
    EXPECT_EQ(database.Number("SELECT Status FROM Root_T"), 2);
    EXPECT_EQ(database.Number("SELECT Writes FROM SchemaVersion_T"), before + 1);
}

TEST_F(OnServer, AConflictThatATextBoxHasShownIsRepeated) {
    InitServer();
    const Console::Database database({.database = Clinic()});
    int runs = 0;
    Console::Write(database.Con(), [&] {
        Console::ThrowTextBoxes([&] {
            if (++runs > 1) return;
            try {
                database.Con()->Execute(OnMariaDb() ? "SIGNAL SQLSTATE '40001' SET MYSQL_ERRNO = 1213"
                                                    : "DO 'BEGIN RAISE EXCEPTION USING ERRCODE = ''40001''; END'");
            } catch (const Platform::Error& failure) {
                Platform::TheHost().MsgBox(failure.Description, 0);
            }
        });
    });
    EXPECT_EQ(runs, 2);
}

/// The account "clerk", which needs a password and may not create tables.
class AsClerk : public OnServer {
protected:
    void SetUp() override {
        OnServer::SetUp();
        if (IsSkipped()) return;
        InitServer();
        Open(Clinic())->Execute(
            "GRANT SELECT, INSERT, UPDATE, DELETE ON " +
            (OnMariaDb() ? name_ + ".* TO clerk@localhost" : "ALL TABLES IN SCHEMA public TO clerk"));
    }
    std::string ClinicOfClerk() const { return Clinic() + ";User ID=clerk"; }
};

TEST_F(AsClerk, ImportsWithoutTheRightToCreateTables) {
    Write("2.25.6", 1, FullMouth18[7],
          [](DcmDataset& set) { set.putAndInsertString(DCM_IssuerOfPatientID, "Clinic"); });
    const Result run = On(ClinicOfClerk() + ";Password='right;word'", {"import", Films()});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(RowsOnServer("PatientIssuer_T"), 1U);
}

TEST_F(AsClerk, AWrongPasswordIsRefused) {
    const Result run = On(ClinicOfClerk() + ";Password=wrong", {"patients"});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("the server rejects the user; look at User ID and Password"));
    EXPECT_THAT(run.err, Not(HasSubstr("wrong")));
}

TEST_F(AsClerk, APasswordFileOpensTheDatabase) {
    const std::string file = (folder.Path() / "password").string();
    std::ofstream(file) << "right;word\n";
    const Result run = On(ClinicOfClerk() + ";Password File=" + file, {"patients"});
    EXPECT_EQ(run.code, 0) << run.err;
}

TEST_F(AsClerk, AMissingPasswordIsAskedForOnATerminalWithoutEcho) {
    const std::string database = ClinicOfClerk();
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        const char* const arguments[] = {"oxclass", "--db", database.c_str(), "patients"};
        const int code = Console::RunProgram(4, arguments);
        std::fflush(nullptr);
        std::_Exit(code);
    }
    std::string shown;
    char bytes[512];
    bool answered = false;
    for (ssize_t size = 0; (size = read(terminal, bytes, sizeof(bytes))) > 0;) {
        shown.append(bytes, static_cast<std::size_t>(size));
        if (answered || !Platform::Contains(shown, "Password of clerk: ")) continue;
        answered = true;
        ASSERT_EQ(write(terminal, "right;word\n", 11), 11);
    }
    int status = -1;
    waitpid(child, &status, 0);
    close(terminal);
    EXPECT_EQ(status, 0) << shown;
    EXPECT_THAT(shown, HasSubstr("There are no patients yet"));
    EXPECT_THAT(shown, Not(HasSubstr("right;word")));
}

/// A clinic in a file that is copied to the server.
class CopyToServer : public OnServer {
protected:
    void SetUp() override {
        OnServer::SetUp();
        if (IsSkipped()) return;
        Init();
        WriteSeries("2.25.5", FullMouth18);
        Ok({"import", Films()});
        Ok({"patient", "p-2.25.5", "Address=5 'High' \\ St\xC3\xA9", "Issuer=Here"});
        Ok({"comment", "3", "caries"});
        Ok({"series", "save-as-card", "1"});
        Ok({"doctor", "new", "DrLastName=Ek"});
        Ok({"clinic", "new", "ClinicName=North"});
        Ok({"setting", "set", "DicomRootUID", "1.2.826.0.1"});
        Run("INSERT INTO ImageManipulation_T (ImageManipulationID, ImageAttributeID, SequenceNo, Type, LongParameter, "
            "StringParameter) VALUES (77, 1, 1, 2, -3, 'a''b')");
    }
    std::string File(const std::string& name = "clinic.db") const {
        return "Provider=SQLite;Data Source=" + (folder.Path() / name).string();
    }
    Result Copy() { return On(Database(), {"copy", "--to", Clinic()}); }
};

TEST_F(CopyToServer, TheWayToTheServerAndBackKeepsAllRows) {
    const Result there = Copy();
    ASSERT_EQ(there.code, 0) << there.err;
    EXPECT_THAT(there.out, HasSubstr("The clinic is copied to " + Clinic()));
    const std::string back = (folder.Path() / "back.db").string();
    const Result again = OnClinic({"copy", "--to", back, "--json"});
    ASSERT_EQ(again.code, 0) << again.err;
    const auto wanted = RowsOf(File()), found = RowsOf(File("back.db"));
    for (const auto& [table, rows] : wanted) {
        EXPECT_FALSE(rows.empty()) << table << " has no rows to compare";
        EXPECT_TRUE(found.at(table) == rows) << table;
        EXPECT_EQ(RowsOnServer(table), rows.size()) << table;
    }
    for (const json& table : json::parse(again.out)) {
        EXPECT_EQ(table["rows"], wanted.at(table["table"].get<std::string>()).size());
        EXPECT_THAT(there.out, HasSubstr(table["sha256"].get<std::string>()));
    }
    EXPECT_EQ(OnClinic({"check"}).out, Ok({"check"}));
}

TEST_F(CopyToServer, TheCountersContinueBehindTheKeys) {
    ASSERT_EQ(Copy().code, 0);
    for (const auto& [table, key] : Tables) {
        const std::string_view name = table;  // the others have no counter
        if (name == "ClinicIdentity_T" || name == "PatientIssuer_T" || name == "ImportedImage_T") continue;
        const Ref<ADODB::Connection> con = Open(Clinic());
        const std::string query = std::string("SELECT max(") + key + ") FROM " + table;
        const auto greatest = [&] { return con->Execute(query)->Fields(0).As<Platform::Long>(); };
        const Platform::Long before = greatest();
        con->Execute(std::string("INSERT INTO ") + table + " DEFAULT VALUES");
        EXPECT_EQ(greatest(), before + 1) << table;
    }
}

TEST_F(CopyToServer, AnInitialisedTargetIsTakenAndOneWithRowsIsNot) {
    InitServer();
    Open(Clinic())->Execute("UPDATE TemplateCard_T SET TCName = 'Other'");
    ASSERT_EQ(Copy().code, 0);
    EXPECT_EQ(OnClinic({"layouts"}).out, Ok({"layouts"}));
    const Result again = Copy();
    EXPECT_EQ(again.code, 1);
    EXPECT_THAT(again.err, HasSubstr("the target has rows in GlobalList_T already and is not changed"));
    for (const std::string& itself : {Database(), Clinic()})
        EXPECT_THAT(On(itself, {"copy", "--to", itself}).err, HasSubstr("the target is the clinic itself"));
    Open(Clinic())->Execute("UPDATE SchemaVersion_T SET Version = 99");
    EXPECT_THAT(Copy().err, HasSubstr("was made by a newer program"));
}

TEST_F(CopyToServer, AValueThatTheTargetCantTakeEndsTheCopyWithoutATrace) {
    const std::pair<const char*, const char*> damages[] = {
        {"UPDATE ImageManipulation_T SET LongParameter = 'much'",
         "ImageManipulation_T, ImageManipulationID 77: the target can't take the LongParameter 'much'"},
        {"UPDATE ImageBild_T SET DateCaptured_SD = 'once' WHERE ImageBildID = 7",
         "ImageBild_T, ImageBildID 7: the target can't take the DateCaptured_SD 'once'"},
        {"UPDATE Series_T SET Modality = '01234567890123456'",
         "Series_T, Series_ID 1: the target can't take the Modality '01234567890123456'"},
        {"UPDATE Patient_T SET Comments_NVC = CAST(X'61FF' AS TEXT)",
         "Patient_T, PatientID 1: the target can't take the Comments_NVC "},
        {"UPDATE Study_T SET StudyDateTime = '2026-01-02 10:00:00.4'",
         "Study_T, Study_ID 1: the target can't take the StudyDateTime '2026-01-02 10:00:00.4'"},
        {"ALTER TABLE Clinic_T ADD COLUMN Colour TEXT", "Clinic_T: the target has no column Colour"},
    };
    const std::string sound = ContentOf(Database());
    for (const auto& [damage, message] : damages) {
        std::ofstream(Database(), std::ios::binary) << sound;
        Run(damage);
        const Result run = Copy();
        EXPECT_EQ(run.code, 1) << damage;
        EXPECT_THAT(run.err, HasSubstr(message));
        EXPECT_THAT(run.err, HasSubstr("nothing was copied"));
        EXPECT_THAT(OnClinic({"patients"}).err, HasSubstr("is not a clinic database"));
    }
}

TEST_F(CopyToServer, ABlankNumberOrDateIsNullOnTheServer) {
    Run("UPDATE ImageBild_T SET PrevXrayDate_DT = '', Dosage_INT = '' WHERE ImageBildID = 7");
    ASSERT_EQ(Copy().code, 0);
    const auto row =
        Open(Clinic())->Execute("SELECT PrevXrayDate_DT, Dosage_INT FROM ImageBild_T WHERE ImageBildID = 7");
    EXPECT_TRUE(row->Fields(0).IsNull());
    EXPECT_TRUE(row->Fields(1).IsNull());
}

TEST_F(CopyToServer, ManyRowsAreCopiedPageByPage) {
    Run("WITH RECURSIVE n(i) AS (SELECT 1000 UNION ALL SELECT i + 3 FROM n WHERE i < 8000) "
        "INSERT INTO Comments_T (CommentID, dates, signature, tabelID, objectID, commentString) "
        "SELECT i, NULL, 'sign ' || i, 1, i % 18 + 1, 'text ' || i FROM n");
    const Result run = Copy();
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(RowsOf(Clinic()).at("Comments_T") == RowsOf(File()).at("Comments_T"));
}

TEST_F(OnServer, TheTablesAreThoseOfTheVersionAfterEachChange) {
    InitServer();
    EXPECT_EQ(OnClinic({"schema", "check"}).out, "0 differences from the tables of version 2.\n");
    EXPECT_EQ(OnClinic({"schema", "downgrade"}).out, "The tables are changed from version 2 to version 1.\n");
    EXPECT_EQ(OnClinic({"schema", "check"}).out, "0 differences from the tables of version 1.\n");
    EXPECT_EQ(OnClinic({"schema", "upgrade"}).out, "The tables are changed from version 1 to version 2.\n");
    EXPECT_EQ(OnClinic({"schema", "check"}).out, "0 differences from the tables of version 2.\n");
}

TEST_F(OnServer, CheckOfTheTablesNamesEachDifference) {
    InitServer();
    const Ref<ADODB::Connection> con = Open(Clinic());
    const std::string change = OnMariaDb() ? " MODIFY " : " ALTER COLUMN ";
    con->Execute(OnMariaDb() ? "DROP INDEX Patient_by_PersonNr ON patient_t" : "DROP INDEX Patient_by_PersonNr");
    con->Execute("ALTER TABLE Study_T" + change +
                 (OnMariaDb() ? "studyID varchar(17)" : "studyID TYPE varchar(17) COLLATE \"C\""));
    con->Execute("ALTER TABLE Study_T DROP COLUMN PhysOfRecord");
    con->Execute("ALTER TABLE Series_T" + change +
                 (OnMariaDb() ? "Modality varchar(16) COLLATE utf8mb4_general_ci"
                              : "Modality TYPE varchar(16) COLLATE \"POSIX\""));
    con->Execute("ALTER TABLE Series_T" + change +
                 (OnMariaDb() ? "location int NOT NULL DEFAULT 3" : "location SET DEFAULT 3"));
    con->Execute("ALTER TABLE Clinic_T" + change + (OnMariaDb() ? "ClinicID int" : "ClinicID DROP IDENTITY"));
    con->Execute("ALTER TABLE Patient_T" + change +
                 (OnMariaDb() ? "PersonNr_CH varchar(64)" : "PersonNr_CH TYPE varchar(64) COLLATE \"C\""));
    con->Execute("CREATE TABLE other (a int)");
    con->Execute("ALTER TABLE Doctor_T ADD CONSTRAINT named CHECK (DrType_INT > 0)");
    con->Execute(OnMariaDb() ? "CREATE INDEX descending ON comments_t (dates)"
                             : "CREATE INDEX descending ON Comments_T (dates DESC)");
    if (OnMariaDb()) {
        con->Execute("CREATE TRIGGER acts BEFORE INSERT ON doctor_t FOR EACH ROW SET NEW.DrType_INT = 1");
        con->Execute("ALTER TABLE root_t ENGINE = MyISAM");
        con->Execute("ALTER TABLE globallist_t MODIFY ListText text");
    } else {
        con->Execute(
            "CREATE TRIGGER acts BEFORE UPDATE ON Doctor_T FOR EACH ROW EXECUTE FUNCTION "
            "suppress_redundant_updates_trigger()");
    }
    const Result found = OnClinic({"schema", "check"});
    EXPECT_EQ(found.code, 3);
    for (const char* const text :
         {"has no index patient_by_personnr (personnr_ch)",
          "column studyID is text of 17 characters in place of text of 16", "has no column PhysOfRecord",
          "default of column location is 3 in place of none", "does not number its key",
          "comparison of column PersonNr_CH is none in place of without case", "is not a table of this version",
          "has a constraint named", "has a trigger acts", "has an index descending"})
        EXPECT_THAT(found.out, HasSubstr(text));
    if (OnMariaDb())
        EXPECT_THAT(found.out, HasSubstr("comparison of column Modality is utf8mb4_general_ci in place of none"));
}

TEST_F(OnServer, AnInterruptedUpgradeIsCompletedOrHasNoEffect) {
    InitServer();
    const Console::Engine engine = OnMariaDb() ? Console::Engine::MariaDB : Console::Engine::PostgreSQL;
    const std::vector<std::string> statements = Console::ChangeStatements(engine, 1, 2);
    ASSERT_EQ(statements.size(), 4U);
    for (std::size_t run = 0; run < statements.size(); ++run) {
        ASSERT_EQ(OnClinic({"schema", "downgrade"}).code, 0);
        {
            const Ref<ADODB::Connection> con = Open(Clinic());
            con->BeginTrans();
            for (std::size_t i = 0; i < run; ++i) con->Execute(statements[i]);
            con->RollbackTrans();
        }
        EXPECT_EQ(json::parse(OnClinic({"schema", "status", "--json"}).out)["version"], 1) << run;
        EXPECT_EQ(OnClinic({"patients"}).code, 0) << run;
        const Result upgraded = OnClinic({"schema", "upgrade"});
        EXPECT_EQ(upgraded.code, 0) << upgraded.err;
        EXPECT_EQ(OnClinic({"schema", "check"}).out, "0 differences from the tables of version 2.\n") << run;
    }
}

TEST_F(OnServer, OneOfTwoUpgradesAtOnceFindsNothingToDo) {
    InitServer();
    ASSERT_EQ(OnClinic({"schema", "downgrade"}).code, 0);
    std::vector<Platform::Long> from(2);
    std::vector<Ref<ADODB::Connection>> connections(2);
    for (auto& con : connections) {
        con = New<ADODB::Connection>();
        Console::OpenServer(con, Clinic());
    }
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < 2; ++i)
            threads.emplace_back([&, i] { from[i] = Console::ChangeSchema(connections[i], 2).from; });
    }
    EXPECT_THAT(from, ::testing::UnorderedElementsAre(1, 2));
    EXPECT_EQ(OnClinic({"schema", "check"}).code, 0);
}

TEST_F(OnServer, AnInterruptedDowngradeIsCompletedOrHasNoEffect) {
    InitServer();
    const Console::Engine engine = OnMariaDb() ? Console::Engine::MariaDB : Console::Engine::PostgreSQL;
    const std::vector<std::string> statements = Console::ChangeStatements(engine, 2, 1);
    for (std::size_t run = 1; run < statements.size(); ++run) {
        {
            const Ref<ADODB::Connection> con = Open(Clinic());
            con->BeginTrans();
            for (std::size_t i = 0; i < run; ++i) con->Execute(statements[i]);
            con->RollbackTrans();
        }
        const Result downgraded = OnClinic({"schema", "downgrade", "1"});
        EXPECT_EQ(downgraded.code, 0) << downgraded.err;
        EXPECT_EQ(OnClinic({"schema", "check"}).out, "0 differences from the tables of version 1.\n") << run;
        ASSERT_EQ(OnClinic({"schema", "upgrade"}).code, 0);
    }
}

TEST_F(OnServer, TablesAreFoundBesideASchemaOfTheUsersName) {
    if (OnMariaDb()) GTEST_SKIP() << "schemas are databases there";
    InitServer();
    Open(Clinic())->Execute("CREATE SCHEMA oxclass");
    EXPECT_EQ(OnClinic({"schema", "check"}).out, "0 differences from the tables of version 2.\n");
    Init();
    Run("INSERT INTO Clinic_T (ClinicID, ClinicName) VALUES (7, 'North')");
    ASSERT_EQ(On(Database(), {"copy", "--to", Clinic()}).code, 0);
    Open(Clinic())->Execute("INSERT INTO Clinic_T (ClinicName) VALUES ('South')");
    EXPECT_EQ(Open(Clinic())->Execute("SELECT max(ClinicID) FROM Clinic_T")->Fields(0).As<Platform::Long>(), 8);
}

TEST_F(OnServer, InitRefusesADatabaseThatCannotStoreAllTexts) {
    administrator_->Execute("DROP DATABASE " + name_);
    administrator_->Execute("CREATE DATABASE " + name_ +
                            (OnMariaDb() ? " CHARACTER SET latin1" : " TEMPLATE template0 ENCODING 'SQL_ASCII'"));
    const Result refused = Try({"init", Clinic(), "--root", Root().string()});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err, HasSubstr("make it as docs/engines.md shows"));
    EXPECT_THAT(OnClinic({"patients"}).err, HasSubstr("is not a clinic database"));
}

}  // namespace

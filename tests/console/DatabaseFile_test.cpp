#include "ProgramTest.h"
#include "kit/Files.h"
#include "kit/Unprivileged.h"

#include <fstream>
#include <sqlite3.h>

/// Opening a database file: the program does not change a file that it rejects, reads a file that it may not write, and
/// reports the reason of a failure.
namespace {

using namespace ProgramTest;
using ::testing::HasSubstr;
using TestKit::Content;
using TestKit::NamesIn;

class DatabaseFile : public Program {
protected:
    /// Runs a script on a database file, without the program.
    static void RunOn(const fs::path& file, const std::string& script) {
        sqlite3* database = nullptr;
        sqlite3_open(file.c_str(), &database);
        EXPECT_EQ(sqlite3_exec(database, script.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        sqlite3_close(database);
    }

    /// The line with which the program refuses a database; the file and its folder must stay as they are.
    std::string Refused(const std::string& database) {
        const fs::path file = folder.Path() / "other" / "file.db";
        const std::string before = Content(file);
        const auto names = NamesIn(file.parent_path());
        const Result run = Try({"--db", database, "patients"});
        EXPECT_EQ(run.code, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_TRUE(Content(file) == before) << "the file was changed: " << run.err;
        EXPECT_EQ(NamesIn(file.parent_path()), names);
        return run.err;
    }

    fs::path Other() const {
        fs::create_directories(folder.Path() / "other");
        return folder.Path() / "other" / "file.db";
    }
};

TEST_F(DatabaseFile, OneThatIsRejectedIsUnchanged) {
    const fs::path file = Other();
    std::ofstream(file).flush();
    EXPECT_THAT(Refused(file), HasSubstr("is empty; make a database under another name"));
    std::ofstream(file) << std::string(5000, 'x');
    EXPECT_THAT(Refused(file), HasSubstr("can't be opened: file is not a database"));
    std::ofstream(file) << "SQLite format 3";
    EXPECT_THAT(Refused(file), HasSubstr("file is not a database"));

    fs::remove(file);
    RunOn(file, "CREATE TABLE t (a); INSERT INTO t VALUES (1)");
    EXPECT_THAT(Refused(file), HasSubstr("is not a clinic database"));
    EXPECT_THAT(Refused("Provider=SQLite;Data Source=" + file.string()), HasSubstr("is not a clinic database"));

    fs::remove(file);
    ASSERT_EQ(Try({"init", file}).code, 0);
    RunOn(file, "PRAGMA user_version = 99; PRAGMA journal_mode = DELETE");
    fs::remove_all(file.parent_path() / "images");
    EXPECT_THAT(Refused(file), HasSubstr("made by a newer program (tables of version 99, this program knows 2)"));
}

TEST_F(DatabaseFile, OneWhoseMarksAreInItsLogIsReadByThem) {
    const fs::path file = Other(), kept = folder.Path() / "kept.db";
    ASSERT_EQ(Try({"init", kept}).code, 0);
    RunOn(kept, "PRAGMA application_id = 0");
    sqlite3* writer = nullptr;
    sqlite3_open(kept.c_str(), &writer);
    const auto copy = [&](const char* script) {
        ASSERT_EQ(sqlite3_exec(writer, script, nullptr, nullptr, nullptr), SQLITE_OK);
        fs::remove_all(file.parent_path());
        for (const char* end : {"", "-wal"}) fs::copy_file(kept.string() + end, Other().string() + end);
    };
    copy("PRAGMA application_id = 5");
    const std::string before = Content(file), log = Content(file.string() + "-wal");
    const Result foreign = Try({"--db", file, "patients"});
    EXPECT_THAT(foreign.err, HasSubstr("is not a clinic database"));
    EXPECT_TRUE(Content(file) == before);
    EXPECT_TRUE(Content(file.string() + "-wal") == log);
    copy("PRAGMA application_id = 0x4F58434C");
    EXPECT_EQ(Try({"--db", file, "patients"}).code, 0);
    sqlite3_close(writer);
}

TEST_F(DatabaseFile, AnInvalidNameIsReported) {
    fs::create_directories(folder.Path() / "other");
    const auto line = [&](const fs::path& file) { return Try({"--db", file, "patients"}).err; };
    EXPECT_THAT(line(folder.Path() / "no" / "clinic.db"),
                HasSubstr("there is no folder " + (folder.Path() / "no").string()));
    EXPECT_THAT(line(folder.Path() / "clinic.db"), HasSubstr("there is no database"));
    EXPECT_THAT(line(folder.Path() / "other"), HasSubstr("is not a file"));
    EXPECT_FALSE(fs::exists(folder.Path() / "clinic.db"));
    EXPECT_THAT(Try({"--db", "Provider=SQLite;Mode=Create;Data Source=" + Database(), "patients"}).err,
                HasSubstr("there is no database"));
    EXPECT_FALSE(fs::exists(folder.Path() / "clinic.db"));
}

// ---- without the right to write -----------------------------------------------------------------

/// Runs of the program by a user who owns nothing here.
class Reader : public DatabaseFile {
protected:
    void SetUp() override {
        Init();
        WriteSeries("1.2.3", {FullMouth18[7], FullMouth18[10]});
        Ok({"import", Films()});
        Run("INSERT INTO Series_T (SeriesInstanceUID, Study_ID, SeriesDateTime) VALUES ('9.1', 1, "
            "'2001-01-01 "
            "10:00:00')");
        fs::remove_all(Films());
        Allow(0755, 0644);
    }
    ~Reader() override { Allow(0700, 0600); }

    void Allow(unsigned folderMode, unsigned fileMode) {
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            if (entry.is_regular_file()) fs::permissions(entry.path(), fs::perms(fileMode));
        fs::permissions(folder.Path(), fs::perms(folderMode));
    }

    /// "CODE\nwhat was printed", by a user without rights.
    std::string As(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--db", Database()});
        return TestKit::Unprivileged([&] {
            const Result run = Try(arguments);
            return std::to_string(run.code) + "\n" + run.out + run.err;
        });
    }

    void ReadsEverything() {
        const auto names = NamesIn(folder.Path());
        const std::string before = Content(Database());
        EXPECT_THAT(As({"patients"}), ::testing::StartsWith("0\n"));
        EXPECT_THAT(As({"images"}), HasSubstr("16,17,18,46,47,48"));
        EXPECT_THAT(As({"card", "show", "IC1"}), HasSubstr("there is no image card IC1"));
        EXPECT_THAT(As({"cards", "P-1.2.3"}),
                    HasSubstr("1 series without images stay: the database can't be written."));
        EXPECT_THAT(As({"comment", "1", "text"}), ::testing::StartsWith("1\noxclass: the database can't be written"));
        EXPECT_THAT(As({"hang", "1"}), HasSubstr("the database can't be written"));
        EXPECT_TRUE(Content(Database()) == before);
        EXPECT_EQ(NamesIn(folder.Path()), names);
    }
};

TEST_F(Reader, ReadsAFileWithALogInAFolderThatIsReadOnly) {
    ASSERT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"clinic.db", "images"}));
    ASSERT_EQ(Content(Database())[18], 2) << "the database must be one with a log";
    ReadsEverything();
}

TEST_F(Reader, ReadsAFileWithoutALogInAFolderThatIsReadOnly) {
    RunOn(Database(), "PRAGMA journal_mode = DELETE");
    ReadsEverything();
    Allow(0755, 0666);
    ReadsEverything();
}

TEST_F(Reader, ReadsAReadOnlyFileInAFolderThatMayBeWritten) {
    RunOn(Database(), "PRAGMA journal_mode = DELETE");
    Allow(0777, 0444);
    ReadsEverything();
}

TEST_F(Reader, ReadsTheRowsThatARunningProgramHasStored) {
    const auto con = Platform::New<ADODB::Connection>();
    con->Open("Provider=SQLite;Data Source=" + Database());
    con->Execute("UPDATE Patient_T SET LastName_NVC = 'Inthelog'");
    Allow(0755, 0644);
    EXPECT_THAT(As({"patients"}), HasSubstr("Inthelog"));
}

TEST_F(Reader, RejectsAFileWhoseLogItMayNotRead) {
    sqlite3* writer = nullptr;
    sqlite3_open(Database().c_str(), &writer);
    sqlite3_exec(writer, "UPDATE Patient_T SET LastName_NVC = 'Inthelog'", nullptr, nullptr, nullptr);
    const std::string file = Content(Database()), log = Content(Database() + "-wal");
    sqlite3_close(writer);
    std::ofstream(Database()) << file;
    std::ofstream(Database() + "-wal") << log;
    Allow(0755, 0644);
    const std::string told = As({"patients"});
    EXPECT_THAT(told, ::testing::StartsWith("1\n"));
    EXPECT_THAT(told, HasSubstr("the files beside it and its folder, or copy them to a folder of yours"));
}

TEST_F(Reader, ReportsTheMissingRight) {
    Allow(0755, 0000);
    EXPECT_THAT(As({"patients"}), HasSubstr("can't be read (Permission denied); see that you may read it"));
    Allow(0000, 0644);
    EXPECT_THAT(As({"patients"}), HasSubstr("can't be reached (Permission denied); look at the rights of its folders"));
}

}  // namespace

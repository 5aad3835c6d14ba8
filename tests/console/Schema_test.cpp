#include "ProgramTest.h"
#include "console/schema/SchemaChange.h"
#include "console/schema/SchemaCheck.h"
#include "frame/SchemaVersion.h"

#include <gmock/gmock.h>
#include <thread>

namespace {

using namespace ProgramTest;
using Console::Engine;
using Platform::New;
using Platform::Ref;
using ::testing::HasSubstr;

/// The version of the tables of a file.
class Schema : public Program {
protected:
    void SetUp() override { Init(); }

    Ref<ADODB::Connection> Open(const std::string& file) const {
        Ref<ADODB::Connection> con = New<ADODB::Connection>();
        con->Open("Provider=SQLite;Data Source=" + file);
        return con;
    }
    Ref<ADODB::Connection> Open() const { return Open(Database()); }
    Platform::Long Version() const { return OXClass::SchemaVersionOf(Open()); }
    std::string CopyOf(int version) const { return Database() + ".version-" + std::to_string(version); }
    Platform::Long Count(const std::string& table) const {
        return Open()->Execute("SELECT count(*) FROM " + table)->Fields(0).As<Platform::Long>();
    }
    Result OnFile(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--db", Database()});
        return Try(arguments);
    }
};

TEST_F(Schema, StatusNamesTheVersionAndTheNewestOne) {
    EXPECT_EQ(Ok({"schema", "status"}), "engine   SQLite\nversion  2\nnewest   2\n");
    Ok({"schema", "downgrade"});
    EXPECT_EQ(OkJson({"schema", "status"}), (json{{"engine", "SQLite"}, {"version", 1}, {"newest", 2}}));
    EXPECT_THAT(Ok({"schema", "status"}), HasSubstr("Next: oxclass schema upgrade"));
}

TEST_F(Schema, ADatabaseHasTheTablesOfItsVersionAfterEachChange) {
    EXPECT_EQ(Ok({"schema", "check"}), "0 differences from the tables of version 2.\n");
    EXPECT_THAT(Ok({"schema", "downgrade"}), HasSubstr("changed from version 2 to version 1"));
    EXPECT_EQ(Ok({"schema", "check"}), "0 differences from the tables of version 1.\n");
    EXPECT_THAT(Ok({"schema", "upgrade"}), HasSubstr("changed from version 1 to version 2"));
    EXPECT_EQ(Ok({"schema", "check"}), "0 differences from the tables of version 2.\n");
    EXPECT_EQ(Ok({"schema", "upgrade"}), "The tables have version 2 already.\n");
}

TEST_F(Schema, OfLowerVersionsNoneIsBelowTheFirst) {
    EXPECT_THAT(OnFile({"schema", "downgrade", "0"}).err, HasSubstr("version 1 is the first"));
    EXPECT_THAT(OnFile({"schema", "downgrade", "3"}).err, HasSubstr("this program knows versions up to 2"));
    Ok({"schema", "downgrade"});
    EXPECT_THAT(OnFile({"schema", "downgrade", "2"}).err, HasSubstr("use: oxclass schema upgrade"));
    Ok({"schema", "upgrade"});
    EXPECT_THAT(OnFile({"schema", "downgrade", "x"}).err, HasSubstr("\"x\" is not the number of a version"));
    EXPECT_EQ(Version(), 2);
}

TEST_F(Schema, ADryRunPrintsTheStatementsAndChangesNothing) {
    const std::string down = Ok({"schema", "downgrade", "--dry-run"});
    EXPECT_TRUE(down.starts_with("PRAGMA user_version = 1;\nDROP TABLE ImportedImage_T;\n")) << down;
    EXPECT_EQ(Version(), 2);
    Ok({"schema", "downgrade"});
    const json up = OkJson({"schema", "upgrade", "--dry-run"});
    EXPECT_EQ(up["statements"].front(), "CREATE INDEX TemplateCard_by_Name ON TemplateCard_T (TCName);");
    EXPECT_EQ(up["statements"].back(), "PRAGMA user_version = 2;");
    EXPECT_EQ(Version(), 1);
}

TEST_F(Schema, AFileIsCopiedAsItWasBeforeEachChange) {
    Run("INSERT INTO Patient_T (PersonNr_CH) VALUES ('K1')");
    EXPECT_THAT(Ok({"schema", "downgrade"}), HasSubstr("The database as it was: " + CopyOf(2) + "\n"));
    EXPECT_EQ(OXClass::SchemaVersionOf(Open(CopyOf(2))), 2);
    EXPECT_EQ(Open(CopyOf(2))->Execute("SELECT PersonNr_CH FROM Patient_T")->Fields(0).As<Platform::String>(), "K1");
    Ok({"schema", "upgrade"});
    EXPECT_TRUE(fs::exists(CopyOf(1)));
    Ok({"schema", "downgrade"});
    EXPECT_TRUE(fs::exists(CopyOf(2) + ".2"));
}

TEST_F(Schema, AFailedUpgradeChangesNothing) {
    Ok({"schema", "downgrade"});
    Run("CREATE TABLE ImportedImage_T (x INTEGER)");
    const Result failed = OnFile({"schema", "upgrade"});
    EXPECT_EQ(failed.code, 1);
    EXPECT_THAT(failed.err, HasSubstr("already exists"));
    EXPECT_EQ(Version(), 1);
    const json found = json::parse(OnFile({"schema", "check", "--json"}).out);
    EXPECT_EQ(found["differences"],
              (json::array({{{"table", "importedimage_t"}, {"text", "is not a table of this version"}}})));
}

TEST_F(Schema, OneOfTwoChangesAtOnceFindsNothingToDo) {
    Ok({"schema", "downgrade"});
    std::vector<Platform::Long> from(2);
    {
        std::vector<std::jthread> threads;
        for (Platform::Long& version : from)
            threads.emplace_back([&] { version = Console::ChangeSchema(Open(), 2).from; });
    }
    EXPECT_THAT(from, ::testing::UnorderedElementsAre(1, 2));
    EXPECT_EQ(OnFile({"schema", "check"}).code, 0);
}

TEST_F(Schema, CheckNamesEachDifference) {
    const std::pair<const char*, const char*> changes[] = {
        {"DROP INDEX Patient_by_PersonNr", "has no index patient_by_personnr (personnr_ch)"},
        {"CREATE INDEX mine ON Patient_T (Sex_CH)", "has an index mine (sex_ch), which this version lacks"},
        {"DROP INDEX Patient_by_PersonNr; CREATE UNIQUE INDEX Patient_by_PersonNr ON Patient_T (PersonNr_CH)",
         "index patient_by_personnr is unique"},
        {"DROP INDEX Patient_by_PersonNr; CREATE INDEX Patient_by_PersonNr ON Patient_T (Sex_CH)",
         "index patient_by_personnr is sex_ch in place of personnr_ch"},
        {"ALTER TABLE Patient_T ADD COLUMN Shoe INTEGER", "has a column Shoe, which this version lacks"},
        {"ALTER TABLE Patient_T DROP COLUMN Sex_CH", "has no column Sex_CH"},
        {"DROP TABLE Patient_T; CREATE TABLE other (a)", "is missing"},
        {"CREATE TABLE other (a)", "is not a table of this version"},
        {"UPDATE sqlite_schema SET sql = replace(sql, 'Sex_CH NVARCHAR(16)', 'Sex_CH NVARCHAR(17)')",
         "column Sex_CH is text of 17 characters in place of text of 16 characters"},
        {"UPDATE sqlite_schema SET sql = replace(sql, 'RespDoctor INTEGER', 'RespDoctor INTEGER DEFAULT 5')",
         "default of column RespDoctor is 5 in place of none"},
        {"UPDATE sqlite_schema SET sql = replace(sql, ' COLLATE NOCASE', '')",
         "comparison of column PersonNr_CH is none in place of without case"},
        {"UPDATE sqlite_schema SET sql = replace(sql, 'Sex_CH NVARCHAR(16)', 'Sex_CH NVARCHAR(16) NOT NULL')",
         "column Sex_CH does not take null"},
        {"UPDATE sqlite_schema SET sql = replace(sql, 'PRIMARY KEY AUTOINCREMENT', 'PRIMARY KEY')",
         "does not number its key"},
        {"UPDATE sqlite_schema SET sql = replace(sql, 'Sex_CH NVARCHAR(16)', 'Sex_CH NVARCHAR(16) CHECK (1)')",
         "is defined in another way"},
        {"DROP INDEX Patient_by_PersonNr; CREATE INDEX Patient_by_PersonNr ON Patient_T (PersonNr_CH DESC)",
         "has an index Patient_by_PersonNr of another kind"},
        {"DROP INDEX Patient_by_PersonNr; CREATE INDEX Patient_by_PersonNr ON Patient_T (PersonNr_CH) WHERE Sex_CH = "
         "'F'",
         "has an index Patient_by_PersonNr of another kind"},
    };
    const std::string sound = (folder.Path() / "sound.db").string();
    Run("VACUUM INTO '" + sound + "'");
    for (const auto& [change, text] : changes) {
        fs::copy_file(sound, Database(), fs::copy_options::overwrite_existing);
        fs::remove(Database() + "-wal");
        fs::remove(Database() + "-shm");
        const auto con = Open();
        con->Execute("PRAGMA writable_schema = 1");
        for (const std::string& statement : Console::StatementsOf(std::string(change) + ";")) con->Execute(statement);
        con->Close();
        const Result found = OnFile({"schema", "check"});
        EXPECT_EQ(found.code, 3) << change;
        EXPECT_THAT(found.out, HasSubstr(text)) << change;
    }
}

TEST_F(Schema, CheckNamesATrigger) {
    Run("CREATE TRIGGER mine AFTER INSERT ON Patient_T BEGIN DELETE FROM Patient_T; END");
    const Result found = OnFile({"schema", "check"});
    EXPECT_EQ(found.code, 3);
    EXPECT_THAT(found.out, HasSubstr("has a trigger mine"));
}

TEST_F(Schema, AnImportRecordsItsImagesFromVersion2On) {
    WriteSeries("1.2.3", {{{11}, ""}, {{12}, ""}});
    Ok({"import", Films()});
    EXPECT_EQ(Count("ImportedImage_T"), 2);
    EXPECT_EQ(Count("ImportedImage_T r JOIN ImageBild_T i ON i.ImageBildID = r.ImageBildID AND "
                    "i.SOPInstanceUID_NVC = r.SOPInstanceUID"),
              2);
}

TEST_F(Schema, AnImportIntoVersion1RecordsNothing) {
    Ok({"schema", "downgrade"});
    WriteSeries("1.2.3", {{{11}, ""}});
    Ok({"import", Films()});
    EXPECT_EQ(Count("ImageBild_T"), 1);
    EXPECT_EQ(Version(), 1);
}

TEST_F(Schema, ARecordOfAnImageThatIsGoneIsReplaced) {
    Run("INSERT INTO ImportedImage_T VALUES ('1.2.3.1', 77)");
    WriteSeries("1.2.3", {{{11}, ""}});
    Ok({"import", Films()});
    EXPECT_EQ(Count("ImportedImage_T WHERE ImageBildID = 1"), 1);
    EXPECT_EQ(Count("ImportedImage_T"), 1);
}

TEST_F(Schema, AnImageThatAnotherImportRecordsMeanwhileIsNotStoredTwice) {
    Run("CREATE TRIGGER meanwhile AFTER INSERT ON ImageBild_T WHEN new.SOPInstanceUID_NVC = '1.2.3.2' BEGIN "
        "INSERT INTO ImageBild_T (ImageBildID, SOPInstanceUID_NVC) VALUES (99, 'x');"
        "UPDATE ImageBild_T SET SOPInstanceUID_NVC = '1.2.3.2' WHERE ImageBildID = 99;"
        "INSERT INTO ImportedImage_T VALUES ('1.2.3.2', 99); END");
    WriteSeries("1.2.3", {{{11}, ""}, {{12}, ""}});
    const Result run = OnFile({"import", Films()});
    EXPECT_NE(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("run the command again"));
    EXPECT_EQ(Count("ImageBild_T"), 0);
    EXPECT_EQ(Count("ImportedImage_T"), 0);
}

TEST_F(Schema, ATextThatSeemsToBeAConnectionStringIsNotTakenForAFile) {
    for (const char* const text : {"Server=db;Database=clinic;PWD=topsecret", "host=db password=topsecret",
                                   "postgresql://ann:topsecret@db/clinic", "Provider =PostgreSQL;Password=topsecret"}) {
        for (const Result& refused :
             {OnFile({"copy", "--to", text}), Try({"init", text}), Try({"--db", text, "patients"})}) {
            EXPECT_EQ(refused.code, 1) << text;
            EXPECT_THAT(refused.err, HasSubstr("a connection string names its provider"));
            EXPECT_THAT(refused.err, ::testing::Not(HasSubstr("topsecret")));
        }
    }
    const Result restored = Try({"restore", folder.Path().string(), "Provider=PostgreSQL;Server=db;Pasword=topsecret"});
    EXPECT_EQ(restored.code, 1);
    EXPECT_THAT(restored.err, HasSubstr("restore makes a file"));
}

TEST_F(Schema, AMisspeltPasswordIsNotShown) {
    const Result refused = Try({"--db", "Provider=PostgreSQL;Server=/nowhere;Pasword=topsecret", "patients"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err, HasSubstr("server=/nowhere"));
    EXPECT_THAT(refused.err, ::testing::Not(HasSubstr("topsecret")));
}

}  // namespace

#include "ProgramTest.h"

#include <fstream>
#include <gmock/gmock.h>

namespace {

using namespace ProgramTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// A clinic with two series of two films each, checked, backed up and restored.
class Maintenance : public Program {
protected:
    void SetUp() override {
        Init();
        WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
        WriteSeries("2.25.6", {FullMouth18[7], FullMouth18[10]});
        Ok({"import", Films()});
    }
    /// The kinds of what a check finds.
    std::vector<std::string> Found(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), {"--db", Database(), "check", "--json"});
        const Result run = Try(arguments);
        std::vector<std::string> kinds;
        const json result = json::parse(run.out);
        for (const json& finding : result["findings"])
            kinds.push_back(finding["kind"].get<std::string>() + (finding["repaired"] == true ? " repaired" : ""));
        EXPECT_EQ(run.code, result["open"] == 0 ? 0 : 3);
        return kinds;
    }
    fs::path Stored(const std::string& name) const { return folder.Path() / "images" / "0_" / name; }
    std::string Backup() const { return (folder.Path() / "backup").string(); }
    static std::string ContentOf(const fs::path& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
};

TEST_F(Maintenance, ASoundClinicHasNoFindings) {
    EXPECT_THAT(Found(), IsEmpty());
    EXPECT_THAT(Ok({"check"}), HasSubstr("4 images and 4 files were checked: 0 findings"));
}

TEST_F(Maintenance, MissingAlteredAndOrphanedFilesAreFound) {
    fs::remove(Stored("2.25.5.1.dcm"));
    std::ofstream(Stored("2.25.5.2.dcm"), std::ios::app) << "x";
    std::ofstream(Stored("stray.txt")) << "x";
    EXPECT_THAT(Found(), UnorderedElementsAre("missing-file", "altered-file", "orphaned-file"));
    EXPECT_THAT(Found({"--repair"}), UnorderedElementsAre("missing-file", "altered-file", "orphaned-file"))
        << "these need a decision";
}

TEST_F(Maintenance, RowsWithoutTheirOwnerAreFound) {
    Run("DELETE FROM Series_T WHERE Series_ID = 2");
    Run("INSERT INTO Comments_T (dates, signature, tabelID, objectID, "
        "commentString) VALUES ('2026-01-01 "
        "10:00:00', '', 1, 99, 'of no image')");
    Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo) VALUES "
        "(77, 1)");
    EXPECT_THAT(Found(), ElementsAre("orphaned-row", "orphaned-row", "orphaned-row", "orphaned-row"));
    EXPECT_THAT(Found({"--repair"}),
                UnorderedElementsAre("orphaned-row", "orphaned-row", "orphaned-row", "orphaned-row repaired"));
    EXPECT_EQ(Found().size(), 3U);
}

TEST_F(Maintenance, RowsThatCannotBeReadWholeAreNamedWithTheirColumn) {
    Run("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID = 3");
    EXPECT_THAT(Found(), ElementsAre("damaged-row"));
    const Result run = Try({"--db", Database(), "check"});
    EXPECT_THAT(run.out, ::testing::ContainsRegex("damaged-row +image 3 +Brightness_INT"));
}

TEST_F(Maintenance, TwoImagesOfOneIdentifierAndPatientsOfTwoNamesAreFound) {
    Run("UPDATE ImageBild_T SET SOPInstanceUID_NVC = '2.25.5.1' WHERE "
        "ImageBildID = 2");
    Run("UPDATE Patient_T SET LastName_NVC = 'Berg' WHERE PatientID = 2");
    Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC) SELECT PersonNr_CH, "
        "'Alm' FROM Patient_T WHERE "
        "PatientID = 1");
    EXPECT_THAT(Found(), UnorderedElementsAre("double-image", "two-names", "two-names", "shared-id"));
}

TEST_F(Maintenance, FilesOfOnePatientThatNameTwoPeopleAreFound) {
    Write("2.25.7", 1, FullMouth18[7], [](DcmDataset& set) {
        set.putAndInsertString(DCM_PatientID, "p-2.25.5");
        set.putAndInsertString(DCM_PatientName, "Berg^Eva");
    });
    Ok({"import", Films() + "/2.25.7-101.dcm", "--patient", "#1"});
    Run("UPDATE Patient_T SET LastName_NVC = NULL, FirstName_NVC = ''");
    EXPECT_THAT(Found(), ElementsAre("two-names"));
    EXPECT_THAT(Try({"--db", Database(), "check"}).out,
                HasSubstr("its file names Berg, Eva, and that of image 1 of the "
                          "same patient #1 names Test, Anna"));
}

TEST_F(Maintenance, LeftoversAndMissingChecksumsAreRepaired) {
    Run("UPDATE ImageBild_T SET CRC = '' WHERE ImageBildID = 3");
    fs::create_directories(folder.Path() / "images" / ".oxclass-import-abcdef");
    std::ofstream(folder.Path() / "images" / ".oxclass-import-abcdef" / "1") << "half a film";
    EXPECT_EQ(OkJson({"images"}).size(), 4U);
    EXPECT_THAT(Found(), ElementsAre("leftover"));
    EXPECT_TRUE(fs::exists(folder.Path() / "images" / ".oxclass-import-abcdef")) << "only --repair changes anything";
    EXPECT_THAT(Found({"--repair"}), ElementsAre("leftover repaired"));
    EXPECT_THAT(Found(), IsEmpty());
    std::ofstream(Stored("2.25.6.1.dcm"), std::ios::app) << "x";
    EXPECT_THAT(Found(), ElementsAre("altered-file")) << "the checksum that the repair stored tells";
}

TEST_F(Maintenance, ARootThatIsMissingIsOneFinding) {
    fs::rename(folder.Path() / "images", folder.Path() / "elsewhere");
    EXPECT_THAT(Found(), ElementsAre("unusable-root"));
    EXPECT_FALSE(fs::exists(folder.Path() / "images"));
}

TEST_F(Maintenance, ABackupIsRestoredAsItWas) {
    EXPECT_EQ(OkJson({"backup", Backup()})["copied"], 4);
    const json again = OkJson({"backup", Backup()});
    EXPECT_EQ(again["files"], 4);
    EXPECT_EQ(again["copied"], 0) << "only what is new is copied";
    Write("2.25.6", 3, FullMouth18[8]);
    Ok({"import", Films()});
    EXPECT_EQ(OkJson({"backup", Backup()})["copied"], 1);
    const fs::path other = folder.Path() / "other";
    fs::create_directories(other);
    const Result restored = Try({"restore", Backup(), (other / "clinic.db").string()});
    ASSERT_EQ(restored.code, 0) << restored.err;
    for (const char* command : {"patients", "studies", "series", "images"}) {
        const json here = OkJson({command});
        const Result there = Try({"--db", (other / "clinic.db").string(), command, "--json"});
        EXPECT_EQ(json::parse(there.out), here) << command;
    }
    EXPECT_EQ(ContentOf(other / "images" / "0_" / "2.25.6.3.dcm"), ContentOf(Stored("2.25.6.3.dcm")));
    EXPECT_EQ(Try({"--db", (other / "clinic.db").string(), "check"}).code, 0);
    EXPECT_EQ(Try({"--db", (other / "clinic.db").string(), "import", Films()}).code, 0);
    EXPECT_EQ(Try({"restore", Backup(), (other / "clinic.db").string()}).code, 1) << "an existing database stays";
}

TEST_F(Maintenance, AnAlteredFileNeverReplacesItsGoodCopy) {
    Ok({"backup", Backup()});
    std::ofstream(Stored("2.25.5.1.dcm")) << "overwritten";
    fs::remove(Stored("2.25.5.2.dcm"));
    Ok({"backup", Backup()});
    const fs::path other = folder.Path() / "other";
    fs::create_directories(other);
    ASSERT_EQ(Try({"restore", Backup(), (other / "clinic.db").string()}).code, 0);
    EXPECT_EQ(ContentOf(other / "images" / "0_" / "2.25.5.1.dcm"), ContentOf(Films() + "/2.25.5-101.dcm"));
    EXPECT_TRUE(fs::exists(other / "images" / "0_" / "2.25.5.2.dcm"));
}

TEST_F(Maintenance, FilesThatCannotBeBackedUpAreReported) {
    std::ofstream(Stored("2.25.5.1.dcm")) << "overwritten";
    const Result run = Try({"--db", Database(), "backup", Backup()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("image 1: "));
    EXPECT_THAT(run.err, HasSubstr("was altered, so it isn't copied"));
    EXPECT_THAT(run.out, HasSubstr("4 files, 3 of them copied, 1 failed"));
}

TEST_F(Maintenance, ADamagedBackupMakesNoDatabase) {
    Ok({"backup", Backup()});
    std::ofstream(folder.Path() / "backup" / "files" / "1" / "0_" / "2.25.5.1.dcm", std::ios::app) << "x";
    const fs::path other = folder.Path() / "other";
    fs::create_directories(other);
    const Result run = Try({"restore", Backup(), (other / "clinic.db").string()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("was altered"));
    EXPECT_FALSE(fs::exists(other / "clinic.db"));
    for (const auto& entry : fs::directory_iterator(other))
        EXPECT_EQ(entry.path().filename(), "images") << "nothing but the root is left";
}

TEST_F(Maintenance, ARestoreNamesTheImagesWhoseFileTheBackupLacks) {
    fs::remove(Stored("2.25.5.1.dcm"));
    EXPECT_EQ(Try({"--db", Database(), "backup", Backup()}).code, 3);
    const fs::path other = folder.Path() / "other";
    fs::create_directories(other);
    const Result run = Try({"restore", Backup(), (other / "clinic.db").string()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("image 1: the backup lacks its file 0_\\2.25.5.1.dcm"));
    EXPECT_THAT(run.out, HasSubstr("was restored: 3 files, 3 of them copied, 1 failed"));
    const Result images = Try({"--db", (other / "clinic.db").string(), "images", "--json"});
    EXPECT_EQ(json::parse(images.out).size(), 4U) << "the database and the other films are there";
}

TEST_F(Maintenance, ABackupInAStorageRootOrAroundOneIsRejected) {
    const std::string root = (folder.Path() / "images").string();
    fs::create_directory_symlink(root, folder.Path() / "link");
    for (const std::string& where : {root, root + "/backup", (folder.Path() / "link" / "b").string()}) {
        const Result run = Try({"--db", Database(), "backup", where});
        EXPECT_EQ(run.code, 1) << where;
        EXPECT_THAT(run.err, HasSubstr("is in the storage root"));
    }
    const Result around = Try({"--db", Database(), "backup", folder.Path().string()});
    EXPECT_EQ(around.code, 1);
    EXPECT_THAT(around.err, HasSubstr("contains the storage root"));
    EXPECT_FALSE(fs::exists(folder.Path() / "manifest.json"));
    Ok({"backup", root + "-copy"});
}

TEST_F(Maintenance, LeftoversOfKilledBackupsAndRestoresAreRemovedByTheNext) {
    const fs::path other = folder.Path() / "other", leftover = ".oxclass-copy-abcdef";
    const fs::path left[] = {fs::path(Backup()) / leftover, other / leftover, other / "images" / leftover};
    for (const fs::path& place : left) {
        fs::create_directories(place);
        std::ofstream(place / "1") << "half a film";
    }
    Ok({"backup", Backup()});
    EXPECT_FALSE(fs::exists(left[0]));
    ASSERT_EQ(Try({"restore", Backup(), (other / "clinic.db").string()}).code, 0);
    for (const fs::path& place : left) EXPECT_FALSE(fs::exists(place)) << place;
}

TEST_F(Maintenance, ABackupWhoseDatabaseIsCutShortIsReportedAsSuch) {
    Ok({"backup", Backup()});
    const fs::path database = fs::path(Backup()) / "clinic.db", other = folder.Path() / "other";
    fs::create_directories(other);
    fs::resize_file(database, fs::file_size(database) / 2);
    const Result run = Try({"restore", Backup(), (other / "clinic.db").string()});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("the database of the backup is damaged"));
    EXPECT_THAT(run.err, HasSubstr("use an older backup"));
    EXPECT_EQ(run.err.find("restore it from a backup"), std::string::npos);
    EXPECT_FALSE(fs::exists(other / "clinic.db"));
}

TEST_F(Maintenance, AFamilyNameThatAPersonCorrectedIsANote) {
    Write("2.25.7", 1, FullMouth18[7],
          [](DcmDataset& set) { set.putAndInsertString(DCM_PatientBirthDate, "19800131"); });
    Ok({"import", Films()});
    Ok({"patient", "#3", "LastName=Lind"});
    const json told = OkJson({"check"});
    ASSERT_EQ(told["findings"].size(), 1U);
    EXPECT_EQ(told["findings"][0]["kind"], "other-name");
    EXPECT_EQ(told["open"], 0);
    Ok({"patient", "#3", "FirstName=Berta"});
    EXPECT_THAT(Found(), ElementsAre("two-names")) << "another given name may be another person";
    Ok({"patient", "#3", "FirstName=Anna", "BirthDate=1980-02-01"});
    EXPECT_THAT(Found(), ElementsAre("two-names"));
}

TEST_F(Maintenance, AFolderWithTheBackupOfAnotherClinicIsRejected) {
    Ok({"backup", Backup()});
    const std::string other = (folder.Path() / "other.db").string();
    ASSERT_EQ(Try({"init", other, "--root", (folder.Path() / "elsewhere").string()}).code, 0);
    const Result run = Try({"--db", other, "backup", Backup()});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("holds the backup of another clinic"));
    EXPECT_EQ(Try({"restore", Films(), (folder.Path() / "new.db").string()}).code, 1) << "a folder without a backup";
}

}  // namespace

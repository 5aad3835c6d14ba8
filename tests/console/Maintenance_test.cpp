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
            kinds.push_back(finding["kind"].get<std::string>() +
                            (finding["repaired"] == true ? " repaired" : ""));
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
    Run("INSERT INTO Comments_T (tabelID, objectID, commentString) VALUES (1, 99, 'of no image')");
    Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo) VALUES (77, 1)");
    EXPECT_THAT(Found(), ElementsAre("orphaned-row", "orphaned-row", "orphaned-row", "orphaned-row"));
    EXPECT_THAT(Found({"--repair"}), UnorderedElementsAre("orphaned-row", "orphaned-row", "orphaned-row",
                                                          "orphaned-row repaired"));
    EXPECT_EQ(Found().size(), 3U);
}

TEST_F(Maintenance, RowsThatCannotBeReadWholeAreNamedWithTheirColumn) {
    Run("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID = 3");
    EXPECT_THAT(Found(), ElementsAre("damaged-row"));
    const Result run = Try({"--db", Database(), "check"});
    EXPECT_THAT(run.out, ::testing::ContainsRegex("damaged-row +image 3 +Brightness_INT"));
}

TEST_F(Maintenance, TwoImagesOfOneIdentifierAndPatientsOfTwoNamesAreFound) {
    Run("UPDATE ImageBild_T SET SOPInstanceUID_NVC = '2.25.5.1' WHERE ImageBildID = 2");
    Run("UPDATE Patient_T SET LastName_NVC = 'Berg' WHERE PatientID = 2");
    Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC) SELECT PersonNr_CH, 'Alm' FROM Patient_T WHERE "
        "PatientID = 1");
    EXPECT_THAT(Found(), UnorderedElementsAre("double-image", "two-names", "two-names", "shared-id"));
}

TEST_F(Maintenance, LeftoversAndMissingChecksumsAreRepaired) {
    Run("UPDATE ImageBild_T SET CRC = '' WHERE ImageBildID = 3");
    fs::create_directories(folder.Path() / "images" / ".oxclass-import-abcdef");
    std::ofstream(folder.Path() / "images" / ".oxclass-import-abcdef" / "1") << "half a film";
    EXPECT_EQ(OkJson({"images"}).size(), 4U);
    EXPECT_THAT(Found(), ElementsAre("leftover"));
    EXPECT_TRUE(fs::exists(folder.Path() / "images" / ".oxclass-import-abcdef"))
        << "only --repair changes anything";
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
    EXPECT_EQ(Try({"restore", Backup(), (other / "clinic.db").string()}).code, 1)
        << "an existing database stays";
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

TEST_F(Maintenance, WhatCannotBeBackedUpIsTold) {
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
    EXPECT_FALSE(fs::exists(other / ("clinic.db.new" + std::to_string(getpid()))));
}

TEST_F(Maintenance, AFolderWithTheBackupOfAnotherClinicIsRefused) {
    Ok({"backup", Backup()});
    const std::string other = (folder.Path() / "other.db").string();
    ASSERT_EQ(Try({"init", other, "--root", (folder.Path() / "elsewhere").string()}).code, 0);
    const Result run = Try({"--db", other, "backup", Backup()});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("holds the backup of another clinic"));
    EXPECT_EQ(Try({"restore", Films(), (folder.Path() / "new.db").string()}).code, 1)
        << "a folder without a backup";
}

}  // namespace

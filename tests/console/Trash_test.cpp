#include "AnyEngine.h"
#include "Interrupted.h"
#include "kit/FaultyProvider.h"

#include <fstream>
#include <gmock/gmock.h>

/// Removing records into the trash and restoring them.
namespace {

namespace fs = std::filesystem;
using AnyEngine::FullMouth18;
using AnyEngine::json;
using AnyEngine::Result;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using TestKit::Interruption;

using Arguments = std::vector<std::string>;

/// Two patients: #1 has a study of two series (images 1 to 3, and 4), #2 a study with images 5 and 6. Card IC1 of #1
/// shows images 1 and 4.
class OnServerTrash : public AnyEngine::Clinic {
protected:
    void SetUp() override {
        Clinic::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        const auto issuer = [](DcmDataset& set) { set.putAndInsertString(DCM_IssuerOfPatientID, "Clinic"); };
        for (int i = 1; i <= 3; ++i) Write("2.25.5", i, FullMouth18[static_cast<std::size_t>(i)], issuer);
        Write("2.25.6", 1, FullMouth18[10], [&](DcmDataset& set) {
            issuer(set);
            set.putAndInsertString(DCM_StudyInstanceUID, "2.25.5.900");
            set.putAndInsertString(DCM_PatientID, "p-2.25.5");
        });
        WriteSeries("2.25.7", {FullMouth18[7], FullMouth18[10]});
        Ok({"import", Films()});
        Ok({"card", "new", "P-2.25.5", "it's \"both\" \\ ü"});
        Ok({"card", "add", "IC1", "1", "4"});
        Ok({"card", "move", "IC1", "1", "--turn", "90", "--record", "ManContrast=10"});
        Ok({"comment", "1", "O'Brien \\ says", "--signature", "AB"});
        Ok({"comment", "5", "another", "--signature", "CD"});
    }
    ~OnServerTrash() override { TestKit::FailAtCall(0); }

    std::string Rows() const {
        std::string text;
        for (const char* table : {"Patient_T", "Study_T", "Series_T", "ImageBild_T", "Comments_T", "ImageCard_T",
                                  "ImageAttribute_T", "ImageManipulation_T", "PatientIssuer_T", "ImportedImage_T"})
            text += std::string(table) + "\n" + All(std::string("SELECT * FROM ") + table + " ORDER BY 1");
        return text;
    }

    /// The image files of the storage root with their contents.
    std::map<std::string, std::string> Files() const {
        std::map<std::string, std::string> files;
        for (auto entry = fs::recursive_directory_iterator(Root()); entry != fs::recursive_directory_iterator();
             ++entry) {
            if (entry.depth() == 0 && entry->path().filename().string().starts_with(".oxclass-"))
                entry.disable_recursion_pending();
            else if (entry->is_regular_file())
                files[fs::relative(entry->path(), Root()).string()] = TestKit::Content(entry->path());
        }
        return files;
    }

    std::vector<std::string> InTrash() {
        std::vector<std::string> entries;
        for (const json& entry : OkJson({"trash", "list"})) entries.push_back(entry["what"].get<std::string>());
        return entries;
    }

    /// Nothing but complete entries is in the folder of the trash.
    void ExpectTidyTrash() {
        std::size_t folders = 0;
        const fs::path trash = Root() / ".oxclass-trash";
        if (!fs::exists(trash)) return;
        for (const auto& entry : fs::directory_iterator(trash)) {
            ++folders;
            EXPECT_TRUE(fs::exists(entry.path() / "record.json")) << entry.path();
            for (const auto& file : fs::directory_iterator(entry.path())) {
                const std::string name = file.path().filename();
                EXPECT_TRUE(name == "record.json" || name.find_first_not_of("0123456789") == std::string::npos) << name;
            }
        }
        EXPECT_EQ(folders, InTrash().size());
    }

    std::vector<std::string> Found(Arguments options = {}) {
        options.insert(options.begin(), {"check", "--json"});
        std::vector<std::string> kinds;
        const json found = json::parse(Run(options).out);
        for (const json& finding : found["findings"]) kinds.push_back(finding["kind"].get<std::string>());
        return kinds;
    }

    /// Deletes, and restores: rows, keys and files are as they were. Returns what the deletion reports.
    json DeletedAndRestored(const Arguments& command) {
        const std::string before = Rows();
        const auto files = Files();
        Arguments dry = command;
        dry.emplace_back("--dry-run");
        const json planned = OkJson(dry);
        EXPECT_EQ(Rows(), before);
        EXPECT_THAT(InTrash(), IsEmpty());
        const json done = OkJson(command);
        EXPECT_EQ(planned["rows"], done["rows"]);
        EXPECT_NE(Rows(), before);
        EXPECT_EQ(Files().size(), files.size() - done["files"].get<std::size_t>());
        EXPECT_THAT(Found(), IsEmpty()) << "nothing refers to what is gone, and the trash has no strays";
        const json restored = OkJson({"undelete", done["entry"].get<std::string>()});
        EXPECT_EQ(restored[0]["files"], done["files"]);
        EXPECT_EQ(Rows(), before);
        EXPECT_EQ(Files(), files);
        EXPECT_THAT(InTrash(), IsEmpty());
        ExpectTidyTrash();
        EXPECT_THAT(Found(), IsEmpty());
        return done["rows"];
    }

    /// Runs the program in a process of its own that is interrupted.
    TestKit::InterruptedRun Interrupt(const Arguments& command, int call, Interruption interruption) {
        return TestKit::RunInterrupted(
            [&] {
                std::vector<const char*> argv{"oxclass", "--db", Settings().c_str()};
                for (const std::string& argument : command) argv.push_back(argument.c_str());
                return Console::RunProgram(static_cast<int>(argv.size()), argv.data());
            },
            call, interruption);
    }

    /// Interrupts a deletion at each call; the next command finds the state before or the one after.
    void ExpectOldOrNewAfterDeleting(Interruption interruption);
    void ExpectOldOrNewAfterRestoring(Interruption interruption);

    const Arguments deletion_{"delete", "image", "1", "4", "--force"};
};

TEST_F(OnServerTrash, EachKindIsRestoredAsItWas) {
    EXPECT_EQ(DeletedAndRestored({"delete", "image", "2"}), json({{"images", 1}}));
    EXPECT_EQ(DeletedAndRestored({"delete", "image", "1", "3", "--force"}),
              json({{"images", 2}, {"placed images", 1}, {"manipulations", 2}, {"comments", 1}}));
    EXPECT_EQ(DeletedAndRestored({"delete", "series", "2", "--force"}),
              json({{"series", 1}, {"images", 1}, {"placed images", 1}}));
    EXPECT_EQ(DeletedAndRestored({"delete", "study", "2"}),
              json({{"studies", 1}, {"series", 1}, {"images", 2}, {"comments", 1}}));
    EXPECT_EQ(DeletedAndRestored({"delete", "patient", "P-2.25.5", "--force"}), json({{"patients", 1},
                                                                                      {"studies", 1},
                                                                                      {"series", 2},
                                                                                      {"images", 4},
                                                                                      {"cards", 1},
                                                                                      {"placed images", 2},
                                                                                      {"manipulations", 2},
                                                                                      {"comments", 1}}));
    EXPECT_EQ(DeletedAndRestored({"delete", "card", "IC1"}),
              json({{"cards", 1}, {"placed images", 2}, {"manipulations", 2}}));
    EXPECT_EQ(DeletedAndRestored({"delete", "comment", "1"}), json({{"comments", 1}}));
}

TEST_F(OnServerTrash, WithTheLastImageItsSeriesAndStudyGoToo) {
    EXPECT_EQ(DeletedAndRestored({"delete", "image", "4", "--force"}),
              json({{"series", 1}, {"images", 1}, {"placed images", 1}}));
    EXPECT_EQ(DeletedAndRestored({"delete", "image", "5", "6"}),
              json({{"studies", 1}, {"series", 1}, {"images", 2}, {"comments", 1}}));
}

TEST_F(OnServerTrash, ASeriesThatKeepsImagesIsCountedAgain) {
    Ok({"delete", "image", "2"});
    EXPECT_EQ(OkJson({"series"})[0]["images"], 2);
    Ok({"undelete", "T1"});
    EXPECT_EQ(OkJson({"series"})[0]["images"], 3);
}

TEST_F(OnServerTrash, WhatOthersReferToNeedsForce) {
    const std::string before = Rows();
    EXPECT_THAT(Refused({"delete", "image", "1"}), HasSubstr("card IC1 shows an image that would be deleted"));
    EXPECT_THAT(Refused({"delete", "study", "1"}), HasSubstr("--force takes it off the card"));
    EXPECT_THAT(Refused({"delete", "patient", "P-2.25.5"}), HasSubstr("has 1 studies, 4 images and 1 cards"));
    EXPECT_THAT(Refused({"delete", "patient", "P-2"}), HasSubstr("2 patients fit"));
    EXPECT_THAT(Refused({"delete", "image", "2", "99"}), HasSubstr("there is no image 99; see: oxclass images"));
    EXPECT_THAT(Refused({"delete", "card", "IC9"}), HasSubstr("there is no card 9"));
    EXPECT_THAT(Refused({"delete", "comment", "x"}), HasSubstr("is not the number of a comment"));
    EXPECT_THAT(Refused({"undelete", "T1"}), HasSubstr("the trash has no entry T1; see: oxclass trash list"));
    EXPECT_THAT(Refused({"trash", "empty", "../x"}), HasSubstr("the trash has no entry ../x"));
    EXPECT_EQ(Rows(), before);
    EXPECT_FALSE(fs::exists(Root() / ".oxclass-trash"));
}

TEST_F(OnServerTrash, TheTrashIsListedAndEmptied) {
    Ok({"delete", "image", "2", "--by", "AB"});
    Ok({"delete", "study", "2", "--by", "CD"});
    const json list = OkJson({"trash", "list", "--sort", "-entry"});
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0]["entry"], "T2");
    EXPECT_EQ(list[0]["by"], "CD");
    EXPECT_EQ(list[0]["what"], "study 2");
    EXPECT_EQ(list[0]["patient"], "#2 P-2.25.7");
    EXPECT_EQ(list[0]["files"], 2);
    EXPECT_EQ(list[1]["bytes"], fs::file_size(Films() + "/2.25.5-102.dcm"));
    Ok({"trash", "empty", "t1"});
    EXPECT_THAT(InTrash(), ElementsAre("study 2"));
    EXPECT_EQ(Ok({"trash", "empty"}), "1 entries are deleted for good.\n");
    EXPECT_EQ(Ok({"trash", "list"}), "The trash is empty.\n");
    EXPECT_TRUE(fs::is_empty(Root() / ".oxclass-trash"));
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(OnServerTrash, AFilmThatIsImportedAgainKeepsItsFile) {
    Ok({"delete", "image", "2"});
    EXPECT_EQ(OkJson({"import", Films()})["stored"], 1);
    const std::string before = Rows();
    EXPECT_THAT(Refused({"undelete", "T1"}), HasSubstr("image 2.25.5.2 is in the database already, as image 7"));
    EXPECT_EQ(Rows(), before);
    EXPECT_THAT(InTrash(), ElementsAre("image 2")) << "the entry stays as it was";
    EXPECT_THAT(Found(), IsEmpty());
    Ok({"delete", "image", "7"});
    Ok({"undelete", "T1"});
    EXPECT_THAT(Found(), IsEmpty());
    EXPECT_EQ(OkJson({"import", Films()})["known"], 6);
}

TEST_F(OnServerTrash, AKeyThatIsTakenIsReplaced) {
    const auto files = Files();
    Ok({"delete", "patient", "P-2.25.7", "--force"});
    Execute("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (2, 'NEXT')");
    Execute(
        "INSERT INTO Study_T (Study_ID, StudyInstanceUID, PatientID, StudyDateTime, Studydesc, accessionNumber, "
        "referDrName, studyID) VALUES (2, '2.25.99', 2, '2026-01-02 00:00:00', '', '', '', '')");
    const Result run = Run({"undelete", "T1"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("another row of Patient_T has the key 2 by now; the restored row has 3"));
    EXPECT_EQ(
        All("SELECT i.ImageBildID FROM ImageBild_T i JOIN Study_T t ON t.Study_ID = i.Study_ID JOIN Patient_T p ON "
            "p.PatientID = t.PatientID AND p.PatientID = i.PatientID WHERE p.PersonNr_CH = 'P-2.25.7' ORDER BY 1"),
        "5\n6\n");
    EXPECT_EQ(Files(), files);
    EXPECT_THAT(Found(), IsEmpty());
    EXPECT_EQ(OkJson({"patient", "new", "PatientID=AFTER"})["Number"], 4) << "the counter is behind the new key";
}

TEST_F(OnServerTrash, WhatLacksItsOwnerIsNotRestored) {
    Ok({"delete", "image", "1", "--force"});
    Ok({"delete", "patient", "P-2.25.5", "--force"});
    EXPECT_THAT(Refused({"undelete", "T1"}), HasSubstr("patient 1, to which the image belongs, isn't in the database"));
    Ok({"undelete", "T2"});
    Ok({"delete", "card", "IC1"});
    const Result run = Run({"undelete", "T1"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("is left out: card 1 isn't in the database any more"));
    EXPECT_THAT(Found(), IsEmpty());
    Execute("INSERT INTO Patient_T (PersonNr_CH) VALUES ('X')");
    Ok({"delete", "patient", "X"});
    Ok({"patient", "new", "PatientID=X"});
    EXPECT_THAT(Refused({"undelete", OkJson({"trash", "list"}).back()["entry"].get<std::string>()}),
                HasSubstr("patient X is in the database already"));
}

TEST_F(OnServerTrash, WhatWasGivenToAnotherPatientMeanwhileIsNotMixed) {
    Ok({"delete", "image", "1", "--force"});
    Ok({"delete", "card", "IC1"});
    Ok({"move", "study", "1", "--to", "P-2.25.7"});
    const std::string before = Rows();
    EXPECT_THAT(
        Refused({"undelete", "T1"}),
        HasSubstr("image 1 is of patient #1, and its study 1 belongs to patient #2 by now; nothing was restored"));
    EXPECT_EQ(Rows(), before);
    const Result card = Run({"undelete", "T2"});
    EXPECT_EQ(card.code, 0);
    EXPECT_THAT(card.err, HasSubstr("the card of patient #1 shows image 4 of patient #2"));
    Ok({"move", "study", "1", "--to", "P-2.25.5"});
    Ok({"undelete", "T1"});
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(OnServerTrash, AFileThatIsMissingOrChangedInTheTrashIsTold) {
    Ok({"delete", "image", "2"});
    fs::remove(Root() / ".oxclass-trash" / "T1" / "1");
    const Result missing = Run({"undelete", "T1"});
    EXPECT_EQ(missing.code, 3);
    EXPECT_THAT(missing.err, HasSubstr("2.25.5.2.dcm is missing in the trash"));
    Ok({"delete", "image", "3"});
    std::ofstream(Root() / ".oxclass-trash" / "T1" / "1", std::ios::app) << "more";
    const Result changed = Run({"undelete", "T1"});
    EXPECT_EQ(changed.code, 3);
    EXPECT_THAT(changed.err, HasSubstr("2.25.5.3.dcm was changed in the trash"));
}

TEST_F(OnServerTrash, AnotherFileUnderTheNameIsNotOverwritten) {
    Ok({"delete", "image", "2"});
    const fs::path taken = Root() / "0_" / "2.25.5.2.dcm";
    std::ofstream(taken) << "another";
    const std::string before = Rows();
    EXPECT_THAT(Refused({"undelete", "T1"}), HasSubstr("another file is stored as"));
    EXPECT_EQ(Rows(), before);
    EXPECT_EQ(TestKit::Content(taken), "another");
    fs::remove(taken);
    Ok({"undelete", "T1"});
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(OnServerTrash, FilesOfSeveralRootsStayInTheirRoots) {
    const fs::path second = folder.Path() / "second";
    Ok({"roots", "--add", second.string()});
    WriteSeries("2.25.7", {FullMouth18[7], FullMouth18[10], FullMouth18[8]});
    Ok({"import", Films()});
    const std::string before = Rows();
    Ok({"delete", "series", "3"});
    EXPECT_FALSE(fs::exists(second / "0_" / "2.25.7.3.dcm"));
    EXPECT_TRUE(fs::exists(second / ".oxclass-trash" / "T1" / "record.json"));
    EXPECT_TRUE(fs::exists(Root() / ".oxclass-trash" / "T1"));
    EXPECT_THAT(InTrash(), ElementsAre("series 3"));
    Ok({"undelete", "T1"});
    EXPECT_EQ(Rows(), before);
    EXPECT_TRUE(fs::exists(second / "0_" / "2.25.7.3.dcm"));
    EXPECT_TRUE(fs::is_empty(Root() / ".oxclass-trash"));
    EXPECT_THAT(Found(), IsEmpty());
    fs::rename(second, folder.Path() / "away");
    EXPECT_THAT(Refused({"delete", "series", "3"}), HasSubstr("is missing"));
    EXPECT_EQ(Rows(), before);
}

TEST_F(OnServerTrash, AnImageWhoseFileIsMissingIsDeletedToo) {
    fs::remove(Root() / "0_" / "2.25.5.2.dcm");
    const std::string before = Rows();
    EXPECT_EQ(OkJson({"delete", "image", "2"})["files"], 0);
    Ok({"undelete", "T1"});
    EXPECT_EQ(Rows(), before);
}

TEST_F(OnServerTrash, CheckNamesAnInterruptedRemovalAndRepairsIt) {
    Ok({"delete", "image", "2"});
    const fs::path entry = Root() / ".oxclass-trash" / "T1";
    fs::rename(entry / "1", Root() / "0_" / "2.25.5.2.dcm");
    fs::rename(entry / "record.json", entry / "pending.json");
    EXPECT_THAT(Found(), ElementsAre("leftover")) << "and the file is no stray";
    EXPECT_THAT(Found({"--repair"}), ElementsAre("leftover"));
    EXPECT_THAT(Found(), IsEmpty());
    EXPECT_TRUE(fs::exists(entry / "1"));
    EXPECT_FALSE(fs::exists(Root() / "0_" / "2.25.5.2.dcm"));
}

TEST_F(OnServerTrash, ADamagedRecordStopsNothingElse) {
    Ok({"delete", "image", "2"});
    Ok({"delete", "image", "3"});
    const fs::path entry = Root() / ".oxclass-trash" / "T1";
    std::ofstream(entry / "record.json") << "{";
    EXPECT_THAT(InTrash(), ElementsAre(HasSubstr("record.json is damaged"), "image 3"));
    EXPECT_THAT(Found(), ElementsAre("damaged-trash"));
    EXPECT_THAT(Refused({"undelete", "T1"}), HasSubstr("record.json is damaged; move its folder away"));
    fs::rename(entry / "record.json", entry / "pending.json");
    Ok({"undelete", "T2"});
    EXPECT_EQ(OkJson({"import", Films()})["stored"], 1);
    EXPECT_TRUE(fs::exists(entry / "1")) << "no file is removed without its record";
}

TEST_F(OnServerTrash, ABackupLeavesTheTrashOut) {
    Ok({"delete", "image", "2"});
    const std::string backup = (folder.Path() / "backup").string();
    EXPECT_EQ(OkJson({"backup", backup})["files"], 5);
    EXPECT_FALSE(fs::exists(fs::path(backup) / "files" / "1" / ".oxclass-trash"));
}

void OnServerTrash::ExpectOldOrNewAfterDeleting(Interruption interruption) {
    const std::string before = Rows();
    const auto files = Files();
    Ok(deletion_);
    const std::string after = Rows();
    const auto filesAfter = Files();
    Ok({"undelete", "T1"});
    std::set<std::string> seen;
    int call = 1;
    for (; !HasFailure(); call += CallStep()) {
        SCOPED_TRACE("interrupted at call " + std::to_string(call));
        const auto run = Interrupt(deletion_, call, interruption);
        const std::vector<std::string> trash = InTrash();
        ExpectTidyTrash();
        const std::string now = Rows();
        if (now == before) {
            EXPECT_EQ(Files(), files);
            EXPECT_THAT(trash, IsEmpty());
            seen.insert("old");
        } else {
            EXPECT_EQ(now, after);
            EXPECT_EQ(Files(), filesAfter);
            EXPECT_THAT(trash, ElementsAre("image 1, 4"));
            seen.insert("new");
            Ok({"undelete", "T1"});
            EXPECT_EQ(Rows(), before);
            EXPECT_EQ(Files(), files);
        }
        if (run.reached) continue;
        EXPECT_EQ(run.code, 0);
        break;
    }
    EXPECT_GT(call, 15);
    EXPECT_EQ(seen, (std::set<std::string>{"new", "old"}));
}

void OnServerTrash::ExpectOldOrNewAfterRestoring(Interruption interruption) {
    const std::string before = Rows();
    const auto files = Files();
    Ok(deletion_);
    const std::string after = Rows();
    const auto filesAfter = Files();
    std::set<std::string> seen;
    int call = 1;
    for (; !HasFailure(); call += CallStep()) {
        SCOPED_TRACE("interrupted at call " + std::to_string(call));
        const auto run = Interrupt({"undelete", "T1"}, call, interruption);
        const std::vector<std::string> trash = InTrash();
        ExpectTidyTrash();
        const std::string now = Rows();
        if (now == after) {
            EXPECT_EQ(Files(), filesAfter);
            EXPECT_THAT(trash, ElementsAre("image 1, 4"));
            seen.insert("old");
        } else {
            EXPECT_EQ(now, before);
            EXPECT_EQ(Files(), files);
            EXPECT_THAT(trash, IsEmpty());
            seen.insert("new");
            Ok(deletion_);
        }
        if (run.reached) continue;
        EXPECT_EQ(run.code, 0);
        break;
    }
    EXPECT_GT(call, 15);
    EXPECT_EQ(seen, (std::set<std::string>{"new", "old"}));
}

TEST_F(OnServerTrash, ADeletionThatIsKilledAnywhereLeavesTheOldOrTheNewState) {
    ExpectOldOrNewAfterDeleting(Interruption::Kill);
}

TEST_F(OnServerTrash, ADeletionThatAnyFailureOfTheDiskEndsLeavesTheOldOrTheNewState) {
    if (CallStep() > 1) GTEST_SKIP() << "the calls for files are those of an embedded engine";
    ExpectOldOrNewAfterDeleting(Interruption::Fail);
}

TEST_F(OnServerTrash, ARestoringThatIsKilledAnywhereLeavesTheOldOrTheNewState) {
    ExpectOldOrNewAfterRestoring(Interruption::Kill);
}

TEST_F(OnServerTrash, ARestoringThatAnyFailureOfTheDiskEndsLeavesTheOldOrTheNewState) {
    if (CallStep() > 1) GTEST_SKIP() << "the calls for files are those of an embedded engine";
    ExpectOldOrNewAfterRestoring(Interruption::Fail);
}

TEST_F(OnServerTrash, EmptyingThatIsKilledAnywhereIsCompletedOrNotBegun) {
    Ok(deletion_);
    const std::string after = Rows();
    const auto files = Files();
    std::set<std::size_t> seen;
    for (int call = 1; !HasFailure(); ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call));
        const auto run = Interrupt({"trash", "empty"}, call, Interruption::Kill);
        const std::size_t entries = InTrash().size();
        ExpectTidyTrash();
        EXPECT_EQ(Rows(), after);
        EXPECT_EQ(Files(), files);
        seen.insert(entries);
        if (entries == 0) break;
        ASSERT_TRUE(run.reached);
        EXPECT_TRUE(fs::exists(Root() / ".oxclass-trash" / "T1" / "2")) << "an entry in the list has its files";
    }
    EXPECT_EQ(seen, (std::set<std::size_t>{0, 1}));
}

TEST_F(OnServerTrash, AFailureOfAnyStatementLeavesTheOldOrTheNewState) {
    TestKit::InstallFaultyProvider();
    const std::string before = Rows();
    const auto files = Files();
    for (const Arguments& command : {deletion_, Arguments{"undelete", "T1"}}) {
        const std::string old = Rows();
        int call = 1;
        for (;; call += CallStep()) {
            SCOPED_TRACE(command[0] + ", failure at call " + std::to_string(call));
            TestKit::FailAtCall(call);
            const Result run = On(TestKit::FaultyVersionOf(Settings()), command);
            const bool all = TestKit::CallsSoFar() < call;
            TestKit::FailAtCall(0);
            InTrash();
            ExpectTidyTrash();
            if (all) {
                EXPECT_EQ(run.code, 0) << run.err;
                break;
            }
            if (run.code == 1)
                ASSERT_EQ(Rows(), old) << run.err;
            else
                break;  // behind the commit
        }
        EXPECT_GT(call, 10);
        EXPECT_NE(Rows(), old);
    }
    EXPECT_EQ(Rows(), before);
    EXPECT_EQ(Files(), files);
}

}  // namespace

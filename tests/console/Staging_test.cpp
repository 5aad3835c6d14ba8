#include "console/import/Staging.h"
#include "console/Sha256.h"
#include "console/import/FoundFiles.h"
#include "console/import/StorageRoot.h"
#include "kit/Database.h"

#include <cstddef>
#include <fstream>
#include <gmock/gmock.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;
using namespace Console;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A root with a source file beside it.
class StagingTest : public ::testing::Test {
protected:
    StagingTest() {
        fs::create_directory(root);
        Put(from, "film");
    }
    static void Put(const fs::path& path, const std::string& text) { std::ofstream(path) << text; }
    static std::string ContentOf(const fs::path& path) {
        std::ifstream in(path);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::vector<std::string> InRoot() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(root))
            names.push_back(fs::relative(entry.path(), root).string());
        std::sort(names.begin(), names.end());
        return names;
    }
    TestKit::TemporaryFolder folder;
    fs::path root = folder.Path() / "root", from = folder.Path() / "from", to = root / "0_" / "1.2.dcm";
};

/// An open database in a folder of its own.
struct ClinicDatabase {
    ClinicDatabase() {
        text = "Provider=SQLite;Data Source=" + TestKit::NewDatabase(folder, "clinic.db");
        con->Open(text);
    }
    TestKit::TemporaryFolder folder;
    std::string text;
    Ref<Connection> con = Platform::New<Connection>();
};

TEST_F(StagingTest, AFileIsNamedCompleteAndIsStagedAgainUnlessItIsKept) {
    Staging staging(root);
    {
        NamedFiles names(root);
        names.Name(staging.Copy(from), to);
        EXPECT_EQ(ContentOf(to), "film");
    }
    EXPECT_FALSE(fs::exists(to));
    const StagedFile staged = staging.Copy(from);
    { NamedFiles(root).Name(staged, to); }
    EXPECT_FALSE(fs::exists(to));
    EXPECT_EQ(ContentOf(staged.path), "film") << "it can be named again";
    NamedFiles names(root);
    EXPECT_EQ(staged.sha256, "d0607f7ad2628b2af9158dfba06ce87166e66b15bf68f8f358f9aa27ccb7c321");
    names.Name(staged, to);
    names.Sync();
    names.Keep();
    EXPECT_TRUE(fs::exists(to));
}

TEST_F(StagingTest, AnImportLeavesOnlyItsFiles) {
    {
        Staging staging(root);
        staging.Copy(from);
        staging.Announce({"0_\\1.2.dcm"});
    }
    EXPECT_THAT(InRoot(), ElementsAre());
}

TEST_F(StagingTest, AFolderThatIsLeftIsRemovedByTheNextImport) {
    ClinicDatabase database;
    {
        Staging staging(root);
        staging.Copy(from);
        staging.Leave();
    }
    EXPECT_EQ(InRoot().size(), 2U);
    EXPECT_EQ(RemoveLeftovers(database.con, root), 1U);
    EXPECT_THAT(InRoot(), ElementsAre());
}

TEST_F(StagingTest, AFileOfTheSameContentIsUsedAndKept) {
    fs::create_directory(root / "0_");
    Put(to, "film");
    Staging staging(root);
    { NamedFiles(root).Name(staging.Copy(from), to); }
    EXPECT_EQ(ContentOf(to), "film");
}

TEST_F(StagingTest, AnotherFileIsUnchanged) {
    fs::create_directory(root / "0_");
    Put(to, "FILM");
    Staging staging(root);
    NamedFiles names(root);
    EXPECT_THROW(names.Name(staging.Copy(from), to), UserError);
    EXPECT_EQ(ContentOf(to), "FILM");
}

TEST_F(StagingTest, TheRootItselfIsNotCreated) {
    Staging staging(root);
    const StagedFile staged = staging.Copy(from);
    NamedFiles names(folder.Path() / "gone");
    EXPECT_THROW(names.Name(staged, folder.Path() / "gone" / "0_" / "1.2.dcm"), UserError);
    EXPECT_FALSE(fs::exists(folder.Path() / "gone"));
    EXPECT_THROW(Staging(folder.Path() / "gone"), UserError);
    EXPECT_FALSE(fs::exists(folder.Path() / "gone"));
}

TEST_F(StagingTest, ManyCopiesAreCompleteBeforeAndAfterTheyAreFlushed) {
    Staging staging(root);
    std::vector<StagedFile> copies;
    for (int i = 0; i < 100; ++i) {
        Put(from, std::to_string(i));
        copies.push_back(staging.BeginCopy(from));
    }
    staging.Flush();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(ContentOf(copies[i].path), std::to_string(i));
        EXPECT_EQ(copies[i].sha256, Sha256Of(std::to_string(i)));
    }
}

TEST_F(StagingTest, AMissingSourceLeavesNoFile) {
    Staging staging(root);
    EXPECT_THROW(staging.Copy(folder.Path() / "none"), UserError);
    EXPECT_EQ(InRoot().size(), 1U) << "the staging folder, empty";
}

// ---- disks that report failures, file systems without hard links ------------------------------------

/// From now on the calls fail in this process as on a file system that doesn't know them.
void Forbid(std::initializer_list<long> calls, int error) {
    std::vector<sock_filter> code{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const long call : calls) {
        code.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1));
        code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)));
    }
    code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    sock_fprog program{static_cast<unsigned short>(code.size()), code.data()};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) std::_Exit(90);
}

/// Runs `test` in a process of its own; its result is the process's exit code.
template <class Test>
int InChild(Test test) {
    const pid_t child = fork();
    if (child == 0) std::_Exit(test());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(StagingTest, ACopyThatTheDiskDoesntTakeIsReported) {
    const int code = InChild([&] {
        Forbid({SYS_fsync}, EIO);
        Staging staging(root);
        const auto fails = [](const auto& work) {
            try {
                work();
                return false;
            } catch (const UserError&) {
                return true;
            }
        };
        const bool alone = fails([&] { staging.Copy(from); });
        staging.BeginCopy(from);
        const bool last = fails([&] { staging.Flush(); });
        const bool many = fails([&] {
            for (int i = 0; i < 1000; ++i) staging.BeginCopy(from);
        });
        return alone && last && many ? 17 : 1;
    });
    EXPECT_EQ(code, 17);
    EXPECT_THAT(InRoot(), ElementsAre());
}

TEST_F(StagingTest, NamesAreTakenWithoutHardLinksAndNeverFromAnotherFile) {
    const fs::path taken = root / "0_" / "taken.dcm";
    fs::create_directory(root / "0_");
    Put(taken, "another");
    for (const auto& calls : {std::vector<long>{SYS_renameat2}, {SYS_renameat2, SYS_link, SYS_linkat}}) {
        const int code = InChild([&] {
            for (const long call : calls) Forbid({call}, call == SYS_renameat2 ? EINVAL : EPERM);
            Staging staging(root);
            NamedFiles names(root);
            names.Name(staging.Copy(from), to);
            names.Keep();
            bool refused = false;
            try {
                names.Name(staging.Copy(from), taken);
            } catch (const UserError&) {
                refused = true;
            }
            return refused ? 17 : 1;
        });
        EXPECT_EQ(code, 17);
        EXPECT_EQ(ContentOf(to), "film");
        EXPECT_EQ(ContentOf(taken), "another");
        EXPECT_THAT(InRoot(), ElementsAre("0_", "0_/1.2.dcm", "0_/taken.dcm"));
        fs::remove(to);
    }
}

// ---- what killed imports leave behind ---------------------------------------------------------------

class Leftovers : public StagingTest {
protected:
    /// An import that is killed with one copy under its final name and another one without.
    void Kill(const std::string& storedName) {
        EXPECT_EQ(InChild([&]() -> int {
                      auto* const staging = new Staging(root);
                      auto* const names = new NamedFiles(root);
                      staging->Announce({storedName});
                      names->Name(staging->Copy(from), to);
                      staging->Copy(from);
                      raise(SIGKILL);
                      return 0;
                  }),
                  -1);
    }
    ClinicDatabase database;
    Ref<Connection> con = database.con;
};

TEST_F(Leftovers, FilesWithoutARowAndCopiesAreRemoved) {
    Kill("0_\\1.2.dcm");
    EXPECT_EQ(InRoot().size(), 5U);
    EXPECT_EQ(RemoveLeftovers(con, root), 2U);
    EXPECT_THAT(InRoot(), ElementsAre("0_"));
    EXPECT_EQ(RemoveLeftovers(con, root), 0U);
}

TEST_F(Leftovers, AFileWhoseRowWasCommittedStays) {
    Kill("0_\\1.2.dcm");
    con->Execute("INSERT INTO ImageBild_T (SOPInstanceUID_NVC, GraphicURL_NVC) VALUES ('1.2', '0_\\1.2.dcm')");
    RemoveLeftovers(con, root);
    EXPECT_THAT(InRoot(), ElementsAre("0_", "0_/1.2.dcm"));
}

TEST_F(Leftovers, ANameThatLeadsOutOfTheRootIsNotFollowed) {
    Put(folder.Path() / "precious.dcm", "x");
    Kill("..\\precious.dcm");
    RemoveLeftovers(con, root);
    EXPECT_TRUE(fs::exists(folder.Path() / "precious.dcm"));
}

TEST_F(Leftovers, FilesOfARunningImportAreUnchanged) {
    Staging running(root);
    const StagedFile staged = running.Copy(from);
    EXPECT_EQ(RemoveLeftovers(con, root), 0U);
    EXPECT_EQ(ContentOf(staged.path), "film");
}

TEST_F(Leftovers, TheDatabaseIsLockedOnlyForFilesThatWereNamed) {
    EXPECT_EQ(InChild([&]() -> int {
                  auto* const staging = new Staging(root);
                  staging->Copy(from);
                  raise(SIGKILL);
                  return 0;
              }),
              -1);
    const auto other = Platform::New<Connection>();
    other->Open(database.text);
    other->BeginTrans();
    EXPECT_EQ(RemoveLeftovers(con, root), 1U) << "while another program is writing";
    other->RollbackTrans();
}

// ---- the marker of a root ---------------------------------------------------------------------------

class RootTest : public Leftovers {
protected:
    RootTest() {
        con->Execute("DELETE FROM Root_T");
        con->Execute("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '" + root.string() + "', 1)");
    }
    std::string Refusal() {
        try {
            StorageRoots(con).Folder(1);
        } catch (const UserError& refused) {
            return refused.what();
        }
        return "accepted";
    }
    void StoreImage() {
        con->Execute(
            "INSERT INTO ImageBild_T (SOPInstanceUID_NVC, GraphicURL_NVC, RootId) VALUES ('1.2', "
            "'0_\\1.2.dcm', 1)");
    }
};

TEST_F(RootTest, AMissingRootIsNotCreated) {
    fs::remove_all(root);
    EXPECT_THAT(Refusal(), HasSubstr("is missing, so nothing is stored"));
    EXPECT_FALSE(fs::exists(root));
}

TEST_F(RootTest, ARootOfAClinicWithoutImagesIsMarked) {
    EXPECT_EQ(Refusal(), "accepted");
    EXPECT_TRUE(fs::exists(root / RootMarker));
    EXPECT_EQ(Refusal(), "accepted");
}

TEST_F(RootTest, AnEmptyFolderInPlaceOfARootWithImagesIsRejected) {
    StoreImage();
    EXPECT_THAT(Refusal(), HasSubstr("is its disk mounted?"));
    EXPECT_THAT(InRoot(), ElementsAre());
}

TEST_F(RootTest, ARootOfAnOlderDatabaseIsMarkedWhenItHoldsAnImage) {
    StoreImage();
    fs::create_directory(root / "0_");
    Put(to, "film");
    EXPECT_EQ(Refusal(), "accepted");
    fs::remove_all(root / "0_");
    EXPECT_EQ(Refusal(), "accepted") << "marked now";
}

TEST_F(RootTest, ARootOfAnotherClinicIsRejected) {
    const ClinicDatabase other;
    StorageRoots(other.con).Create(root);
    Put(root / "file", "theirs");
    EXPECT_THAT(Refusal(), HasSubstr("belongs to another clinic"));
    EXPECT_THROW(StorageRoots(con).Create(root), UserError);
    fs::remove(root / "file");
    StorageRoots(con).Create(root);
    EXPECT_EQ(Refusal(), "accepted") << "an unused folder can be taken";
}

// ---- files that a command line names ----------------------------------------------------------------

std::vector<std::string> NamesOf(const FoundFiles& found) {
    std::vector<std::string> names;
    for (const FoundFile& file : found.files) names.push_back(file.path.filename().string());
    return names;
}

TEST_F(StagingTest, LinkedFoldersAreFollowedOnce) {
    const fs::path films = folder.Path() / "films", elsewhere = folder.Path() / "elsewhere";
    fs::create_directories(films);
    fs::create_directories(elsewhere);
    Put(films / "a.dcm", "a");
    Put(elsewhere / "b.dcm", "b");
    fs::create_directory_symlink(elsewhere, films / "link1");
    fs::create_directory_symlink(elsewhere, films / "link2");
    fs::create_directory_symlink(films, elsewhere / "back");
    EXPECT_THAT(NamesOf(FindFiles({films.string()})), ElementsAre("a.dcm", "b.dcm"));
}

TEST_F(StagingTest, ADicomdirSelectsItsFolderAndABrokenLinkIsReported) {
    const fs::path disc = folder.Path() / "disc";
    fs::create_directories(disc / "IMAGES");
    Put(disc / "DICOMDIR", "x");
    Put(disc / "IMAGES" / "IM1", "x");
    fs::create_symlink(folder.Path() / "nowhere", disc / "dead");
    const FoundFiles found = FindFiles({(disc / "DICOMDIR").string()});
    EXPECT_THAT(NamesOf(found), ElementsAre("DICOMDIR", "IM1"));
    ASSERT_EQ(found.unreadable.size(), 1U);
    EXPECT_EQ(found.unreadable[0].first, disc / "dead");
}

TEST(FoundFiles, FilesOfOtherKindsAreExpectedOnlyByNameOrEnding) {
    EXPECT_TRUE(IsExpectedRadiograph({"a/x.DCM", false}));
    EXPECT_TRUE(IsExpectedRadiograph({"a/readme.txt", true}));
    for (const char* other : {"a/viewer.exe", "a/autorun.inf", "a/IM0001", "a/dcm"})
        EXPECT_FALSE(IsExpectedRadiograph({other, false})) << other;
}

}  // namespace

#include "platform/runtime/AtomicFile.h"

#include "kit/Database.h"
#include "kit/Files.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace Platform;
namespace fs = std::filesystem;
using TestKit::Content;
using TestKit::NamesIn;
using TestKit::TemporaryFolder;

/// While this object lives, no file can grow beyond this number of bytes.
class FilesUpTo {
public:
    explicit FilesUpTo(rlim_t size) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit smaller{size, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &smaller);
    }
    ~FilesUpTo() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FilesUpTo(const FilesUpTo&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

TEST(AtomicFile, IsWrittenWithAllBytes) {
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    String large(3000000, 'x');
    large[1000000] = '\0', large[2999999] = '\xFF';
    for (const String& text : {String("first\r\n"), large, String()}) {
        EXPECT_TRUE(WriteAtomically(file, text));
        EXPECT_TRUE(Content(file) == text) << text.size();
        EXPECT_EQ(NamesIn(folder.Path()), std::vector<String>{"file"});
    }
}

TEST(AtomicFile, CanBeReadByAllAndWrittenByItsOwner) {
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    const mode_t before = umask(0077);
    EXPECT_TRUE(WriteAtomically(file, "x"));
    umask(before);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms{0644});
}

TEST(AtomicFile, TakesThePlaceOfTheEarlierOneForItsReadersAtOnce) {
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    ASSERT_TRUE(WriteAtomically(file, "earlier"));
    std::ifstream reader(file);
    ASSERT_TRUE(WriteAtomically(file, "later"));
    String text;
    reader >> text;
    EXPECT_EQ(text, "earlier") << "who has it open reads it to its end";
    EXPECT_EQ(Content(file), "later");
}

TEST(AtomicFile, OnAFullDiskTheEarlierFileStaysAndNoOtherRemains) {
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    ASSERT_TRUE(WriteAtomically(file, "earlier"));
    {
        const FilesUpTo limit(1000);
        EXPECT_FALSE(WriteAtomically(file, String(5000, 'x')));
    }
    EXPECT_EQ(Content(file), "earlier");
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<String>{"file"});
}

TEST(AtomicFile, ReplacesTheEarlierOneOnlyWhenItIsCommitted) {
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    ASSERT_TRUE(WriteAtomically(file, "earlier"));
    {
        AtomicFile out(file);
        EXPECT_TRUE(out.Write("in "));
        EXPECT_TRUE(out.Write("parts"));
        EXPECT_EQ(Content(file), "earlier");
        EXPECT_TRUE(out.Commit());
        EXPECT_EQ(Content(file), "in parts");
    }
    {
        AtomicFile out(file);
        EXPECT_TRUE(out.Write("given up"));
    }
    EXPECT_EQ(Content(file), "in parts");
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<String>{"file"});
}

TEST(AtomicFile, AfterAFailureItCantBeCommitted) {
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    AtomicFile out(file);
    {
        const FilesUpTo limit(1000);
        EXPECT_FALSE(out.Write(String(5000, 'x')));
    }
    EXPECT_FALSE(out.Write("y"));
    EXPECT_FALSE(out.Commit());
    EXPECT_EQ(errno, EFBIG);
}

TEST(AtomicFile, OfAKilledProgramNothingRemains) {
    const TemporaryFolder folder;
    const pid_t writer = fork();
    if (writer == 0) {
        AtomicFile out(folder.Path() / "file");
        out.Write("half");
        kill(getpid(), SIGKILL);
    }
    waitpid(writer, nullptr, 0);
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<String>{});
}

TEST(AtomicFile, IfAFolderHasItsNameNoOtherFileRemains) {
    const TemporaryFolder folder;
    fs::create_directories(folder.Path() / "file" / "within");
    EXPECT_FALSE(WriteAtomically(folder.Path() / "file", "x"));
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<String>{"file"});
}

TEST(AtomicFile, WithoutItsFolderIsNotWritten) {
    const TemporaryFolder folder;
    EXPECT_FALSE(WriteAtomically(folder.Path() / "none" / "file", "x"));
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<String>{});
}

}  // namespace

#include "platform/component/registry/FolderLock.h"

#include "kit/Database.h"
#include "kit/Files.h"

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <sys/select.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace Platform;
namespace fs = std::filesystem;
using TestKit::NamesIn;
using TestKit::TemporaryFolder;

/// Waits for a byte of another process. Returns false if none arrives within this number of milliseconds.
bool Arrives(int pipe, int milliseconds) {
    fd_set set;
    FD_ZERO(&set);
    FD_SET(pipe, &set);
    timeval limit{milliseconds / 1000, milliseconds % 1000 * 1000};
    char byte = 0;
    return select(pipe + 1, &set, nullptr, nullptr, &limit) == 1 && read(pipe, &byte, 1) == 1;
}

/// Another process, started before any lock, that reports when it has the lock of a folder.
class OtherProcess {
public:
    explicit OtherProcess(const fs::path& folder) {
        if (pipe(go_) != 0 || pipe(locked_) != 0) throw std::runtime_error("no pipe");
        process_ = fork();
        if (process_ != 0) return;
        if (!Arrives(go_[0], 20000)) _exit(1);
        const FolderLock lock(folder);
        _exit(write(locked_[1], "x", 1) == 1 ? 0 : 1);
    }
    ~OtherProcess() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        for (const int end : {go_[0], go_[1], locked_[0], locked_[1]}) close(end);
    }
    OtherProcess(const OtherProcess&) = delete;

    void AskForTheLock() const { EXPECT_EQ(write(go_[1], "x", 1), 1); }
    bool HasTheLockWithin(int milliseconds) const { return Arrives(locked_[0], milliseconds); }

private:
    int go_[2] = {}, locked_[2] = {};
    pid_t process_ = 0;
};

TEST(FolderLock, KeepsOtherProcessesWaiting) {
    const TemporaryFolder folder;
    const OtherProcess other(folder.Path());
    auto lock = std::make_unique<FolderLock>(folder.Path());
    other.AskForTheLock();
    EXPECT_FALSE(other.HasTheLockWithin(100));
    lock.reset();
    EXPECT_TRUE(other.HasTheLockWithin(20000));
}

TEST(FolderLock, OfAnotherFolderBlocksNoProcess) {
    const TemporaryFolder folder, second;
    const OtherProcess other(second.Path());
    const FolderLock lock(folder.Path());
    other.AskForTheLock();
    EXPECT_TRUE(other.HasTheLockWithin(20000));
}

TEST(FolderLock, KeepsOtherThreadsWaiting) {
    const TemporaryFolder folder;
    auto lock = std::make_unique<FolderLock>(folder.Path());
    std::atomic<bool> taken = false;
    std::thread other([&] {
        const FolderLock mine(folder.Path());
        taken = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(taken);
    lock.reset();
    other.join();
    EXPECT_TRUE(taken);
}

TEST(FolderLock, OfAMissingFolderDoesNotLock) {
    const TemporaryFolder folder;
    const FolderLock first(folder.Path() / "none"), second(folder.Path() / "none");
    EXPECT_TRUE(NamesIn(folder.Path()).empty()) << "none is made, and nobody waits";
}

}  // namespace

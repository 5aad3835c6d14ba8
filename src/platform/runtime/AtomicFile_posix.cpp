#include "platform/runtime/AtomicFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Platform {

namespace fs = std::filesystem;

namespace {

bool WriteAll(int out, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(out, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Returns the permissions of the file that is replaced; everybody may read a new one.
mode_t ModeFor(const fs::path& file) {
    struct stat earlier {};
    return stat(file.c_str(), &earlier) == 0 ? earlier.st_mode & 07777 : 0644;
}

std::string PathOf(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

/// Returns a new file without a name in the folder of `file`; -1 where the system has none that can get a name.
int OpenUnnamed(const fs::path& file) {
#ifdef O_TMPFILE
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    const int out = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (out < 0 || access(PathOf(out).c_str(), F_OK) == 0) return out;
    close(out);
#endif
    return -1;
}

}  // namespace

class AtomicFile::System {
public:
    explicit System(fs::path file) : file_(std::move(file)), out_(OpenUnnamed(file_)) {
        if (out_ >= 0) return;
        std::string part = file_.string() + ".XXXXXX";
        out_ = mkostemp(part.data(), O_CLOEXEC);
        if (out_ >= 0)
            part_ = part;
        else
            error_ = errno;
    }

    ~System() {
        const int reason = errno;
        if (out_ >= 0) close(out_);
        if (!part_.empty()) unlink(part_.c_str());
        errno = reason;
    }
    System(const System&) = delete;

    bool Write(std::string_view text) {
        if (error_ == 0 && !WriteAll(out_, text)) error_ = errno;
        return Result();
    }

    bool Commit() {
        if (error_ != 0) return Result();
        if (fchmod(out_, ModeFor(file_)) != 0 || fsync(out_) != 0 || !NamePart() || !Close() ||
            std::rename(part_.c_str(), file_.c_str()) != 0)
            error_ = errno;
        else
            part_.clear();
        return Result();
    }

private:
    bool Result() const {
        if (error_ != 0) errno = error_;
        return error_ == 0;
    }

    /// Gives an unnamed file a name that no file has.
    bool NamePart() {
        constexpr int tries = 100;
        for (int i = 0; part_.empty() && i < tries; ++i) {
            const std::string part = file_.string() + "." + std::to_string(getpid()) + "-" + std::to_string(i);
            if (linkat(AT_FDCWD, PathOf(out_).c_str(), AT_FDCWD, part.c_str(), AT_SYMLINK_FOLLOW) == 0)
                part_ = part;
            else if (errno != EEXIST)
                return false;
        }
        return !part_.empty();
    }

    bool Close() {
        const int out = std::exchange(out_, -1);
        return close(out) == 0;
    }

    fs::path file_;
    std::string part_;  ///< the name of the file before it has its own; empty for a file without a name
    int out_ = -1;
    int error_ = 0;  ///< of the first failure
};

AtomicFile::AtomicFile(fs::path file) : system_(std::make_unique<System>(std::move(file))) {}
AtomicFile::~AtomicFile() = default;
bool AtomicFile::Write(std::string_view text) { return system_->Write(text); }
bool AtomicFile::Commit() { return system_->Commit(); }

}  // namespace Platform

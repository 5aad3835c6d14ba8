#include "console/SystemFile.h"

#include "console/Output.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace Console {

namespace fs = std::filesystem;

void ThrowSystemError(const char* what, const fs::path& path) {
    throw UserError(fmt::format("{} {}: {}", what, path.string(), std::strerror(errno)));
}

SystemFile::SystemFile(const fs::path& path, int flags, const fs::path& shown)
    : shown_(shown.empty() ? path : shown), descriptor_(open(path.c_str(), flags | O_CLOEXEC, 0644)) {
    if (descriptor_ < 0) ThrowSystemError((flags & O_ACCMODE) == O_RDONLY ? "can't read" : "can't write", shown_);
}

SystemFile::~SystemFile() { close(descriptor_); }

std::size_t SystemFile::Read(char* to, std::size_t size) {
    for (;;) {
        const auto count = read(descriptor_, to, size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) ThrowSystemError("can't read", shown_);
    }
}

std::size_t SystemFile::ReadFully(char* to, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const std::size_t count = Read(to + done, size - done);
        if (count == 0) break;
        done += count;
    }
    return done;
}

void SystemFile::Write(const char* from, std::size_t size) {
    while (size > 0) {
        const auto count = write(descriptor_, from, size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) ThrowSystemError("can't write", shown_);
        from += count;
        size -= static_cast<std::size_t>(count);
    }
}

void SystemFile::BeginFlush() const { sync_file_range(descriptor_, 0, 0, SYNC_FILE_RANGE_WRITE); }

void SystemFile::Flush() const {
    if (fsync(descriptor_) != 0) ThrowSystemError("can't write", shown_);
}

void SyncFolder(const fs::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) ThrowSystemError("can't read", folder);
    const bool synced = fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    const int error = errno;
    close(descriptor);
    errno = error;
    if (!synced) ThrowSystemError("can't write", folder);
}

}  // namespace Console

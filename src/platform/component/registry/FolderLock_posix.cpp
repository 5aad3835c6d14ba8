#include "platform/component/registry/FolderLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Platform {

namespace fs = std::filesystem;

FolderLock::FolderLock(const fs::path& folder) : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (folder_ >= 0 && flock(folder_, LOCK_EX) != 0 && errno == EINTR) {
    }
}

FolderLock::~FolderLock() {
    if (folder_ >= 0) close(folder_);
}

}  // namespace Platform

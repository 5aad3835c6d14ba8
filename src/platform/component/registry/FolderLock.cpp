#include "platform/component/registry/FolderLock.h"

#ifdef _WIN32
#include "platform/component/binary/ComponentModel.h"

#include <string>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace Platform {

namespace fs = std::filesystem;

#ifdef _WIN32

FolderLock::FolderLock(const fs::path& folder) {
    std::wstring name = L"Local\\" + folder.wstring();
    for (std::size_t i = 6; i < name.size(); ++i)
        if (name[i] == L'\\') name[i] = L'/';
    mutex_ = CreateMutexW(nullptr, FALSE, name.c_str());
    if (mutex_) WaitForSingleObject(mutex_, INFINITE);
}

FolderLock::~FolderLock() {
    if (!mutex_) return;
    ReleaseMutex(mutex_);
    CloseHandle(mutex_);
}

#else

FolderLock::FolderLock(const fs::path& folder) : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (folder_ >= 0 && flock(folder_, LOCK_EX) != 0 && errno == EINTR) {
    }
}

FolderLock::~FolderLock() {
    if (folder_ >= 0) close(folder_);
}

#endif

}  // namespace Platform

#include "platform/component/registry/WholeFile.h"

#include <string>

#ifdef _WIN32
#include "platform/component/binary/ComponentModel.h"
#else
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
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

bool WriteWhole(const fs::path& file, std::string_view text) {
    const std::wstring part = file.wstring() + L"." + std::to_wstring(GetCurrentProcessId());
    HANDLE out =
        CreateFileW(part.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (out == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    bool good = WriteFile(out, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
                written == text.size() && FlushFileBuffers(out);
    good = CloseHandle(out) && good;
    good = good && MoveFileExW(part.c_str(), file.wstring().c_str(), MOVEFILE_REPLACE_EXISTING);
    if (!good) DeleteFileW(part.c_str());
    return good;
}

#else

FolderLock::FolderLock(const fs::path& folder)
    : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (folder_ >= 0 && flock(folder_, LOCK_EX) != 0 && errno == EINTR) {
    }
}

FolderLock::~FolderLock() {
    if (folder_ >= 0) close(folder_);
}

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

/// The rights of the file that is replaced; a new one can be read by all.
mode_t ModeFor(const fs::path& file) {
    struct stat earlier {};
    return stat(file.c_str(), &earlier) == 0 ? earlier.st_mode & 07777 : 0644;
}

}  // namespace

bool WriteWhole(const fs::path& file, std::string_view text) {
    std::string part = file.string() + ".XXXXXX";
    const int out = mkostemp(part.data(), O_CLOEXEC);
    if (out < 0) return false;
    bool good = WriteAll(out, text) && fchmod(out, ModeFor(file)) == 0 && fsync(out) == 0;
    good = close(out) == 0 && good;
    good = good && std::rename(part.c_str(), file.c_str()) == 0;
    if (!good) unlink(part.c_str());
    return good;
}

#endif

}  // namespace Platform

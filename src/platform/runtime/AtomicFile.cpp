#include "platform/runtime/AtomicFile.h"

#include <string>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>
#else
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace Platform {

namespace fs = std::filesystem;

#ifdef _WIN32

bool WriteAtomically(const fs::path& file, std::string_view text) {
    const std::wstring part = file.wstring() + L"." + std::to_wstring(GetCurrentProcessId());
    HANDLE out = CreateFileW(part.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
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

void CloseKeepingErrno(int out) {
    const int reason = errno;
    close(out);
    errno = reason;
}

/// Returns the permissions of the file that is replaced; everybody may read a new one.
mode_t ModeFor(const fs::path& file) {
    struct stat earlier {};
    return stat(file.c_str(), &earlier) == 0 ? earlier.st_mode & 07777 : 0644;
}

}  // namespace

bool WriteAtomically(const fs::path& file, std::string_view text) {
    std::string part = file.string() + ".XXXXXX";
    const int out = mkostemp(part.data(), O_CLOEXEC);
    if (out < 0) return false;
    bool good = WriteAll(out, text) && fchmod(out, ModeFor(file)) == 0 && fsync(out) == 0;
    if (good)
        good = close(out) == 0;
    else
        CloseKeepingErrno(out);
    good = good && std::rename(part.c_str(), file.c_str()) == 0;
    if (!good) {
        const int reason = errno;
        unlink(part.c_str());
        errno = reason;
    }
    return good;
}

#endif

}  // namespace Platform

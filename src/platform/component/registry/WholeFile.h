#pragma once

#include <filesystem>
#include <string_view>

namespace Platform {

/// Keeps other processes that ask for the same folder waiting, as long as it lives. A folder that can't be
/// opened is not locked: writing into it fails by itself.
class FolderLock {
public:
    explicit FolderLock(const std::filesystem::path& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;

private:
#ifdef _WIN32
    void* mutex_;
#else
    int folder_;
#endif
};

/// Writes a file in place of the one that is there: whole or not at all, flushed to the disk before it gets
/// its name. False when that fails; the earlier file stays then, and nothing beside it.
bool WriteWhole(const std::filesystem::path& file, std::string_view text);

}  // namespace Platform

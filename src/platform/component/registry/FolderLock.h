#pragma once

#include <filesystem>

namespace Platform {

/// Locks a folder for as long as it lives: other processes that lock the same folder wait in the constructor. A folder
/// that can't be opened is not locked; writing into it fails by itself. Any thread may create one.
class FolderLock {
public:
    explicit FolderLock(const std::filesystem::path& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;

private:
    int folder_;
};

}  // namespace Platform

#pragma once

#include <cstddef>
#include <filesystem>

namespace Console {

/// An open file of the system, closed by the destructor. Failures are `UserError`s that name the file.
class SystemFile {
public:
    /// Opens with the flags of open(2). All users may read a new file; only its owner may write it. Messages name
    /// `shown`, or the path itself.
    SystemFile(const std::filesystem::path& path, int flags, const std::filesystem::path& shown = {});
    ~SystemFile();
    SystemFile(const SystemFile&) = delete;

    /// Reads up to `size` bytes; returns how many, 0 at the end.
    std::size_t Read(char* to, std::size_t size);

    /// Reads `size` bytes, fewer only at the end.
    std::size_t ReadFully(char* to, std::size_t size);

    void Write(const char* from, std::size_t size);

    /// Has the system begin to write the content to the disk, and doesn't wait. `Flush` reports a failure.
    void BeginFlush() const;

    /// Flushes the content to the disk.
    void Flush() const;

private:
    std::filesystem::path shown_;
    int descriptor_;
};

/// Flushes the names in a folder to the disk. Does nothing on a file system that does not support it.
void SyncFolder(const std::filesystem::path& folder);

/// Throws a `UserError` with the system's last error: "WHAT PATH: REASON".
[[noreturn]] void ThrowSystemError(const char* what, const std::filesystem::path& path);

}  // namespace Console

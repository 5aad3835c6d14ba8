#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

namespace Platform {

/// A file that is written part by part, and that replaces an existing one as a whole or not at all. The text is written
/// to a file in the same folder, which `Commit` flushes to the disk and renames. The file has no name before if the
/// file system supports that; so nothing remains of a program that is killed. The new file has the permissions of the
/// old one; where there is none, everybody may read it. Used by one thread at a time.
class AtomicFile {
public:
    /// Creates the file without its name. A failure is reported by the first `Write` or `Commit`.
    explicit AtomicFile(std::filesystem::path file);

    /// Deletes what was written, unless it was committed. Keeps `errno`.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;

    /// Appends a text. Returns false if that fails, with the reason in `errno` (on Windows in `GetLastError()`);
    /// nothing can be committed afterwards.
    bool Write(std::string_view text);

    /// Flushes the file and renames it to its final name. It is called once. Returns false on failure, as `Write` does;
    /// the old file is then unchanged.
    bool Commit();

private:
    class System;
    std::unique_ptr<System> system_;
};

/// Writes a file in place of an existing one: whole or not at all, as an `AtomicFile`.
///
/// Returns false if that fails, with the reason in `errno` (on Windows in `GetLastError()`); the old file is then
/// unchanged, and no other file is left. Any thread may call.
bool WriteAtomically(const std::filesystem::path& file, std::string_view text);

}  // namespace Platform

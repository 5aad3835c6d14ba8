#pragma once

#include <filesystem>
#include <string_view>

namespace Console {

/// A copy of a file under a storage root, made whole or not at all: written beside its name, flushed to
/// the disk, and then named. It is removed again unless `Keep` is called.
class StoredFile {
public:
    /// Copies `from` to `to`, whose folders are made. A file of the same content that is there already is
    /// taken for the copy, and stays in any case. Throws `Complaint` when another file has the name, and
    /// when reading or writing fails; nothing of the copy stays then.
    StoredFile(const std::filesystem::path& from, std::filesystem::path to);
    ~StoredFile();
    StoredFile(StoredFile&& other) noexcept;
    StoredFile& operator=(StoredFile&&) = delete;

    /// Makes the copy stay.
    void Keep() noexcept { made_ = false; }

private:
    std::filesystem::path path_;
    bool made_ = false;
};

/// Writes a file that the user named, in place of the one that is there: whole or not at all. Throws
/// `Complaint` when that fails; the earlier file then stays.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace Console

#pragma once

#include <filesystem>
#include <fmt/format.h>
#include <unistd.h>

namespace Console {

/// A database file that is made beside its name and gets it when it is complete. Whatever fails, nothing of
/// it is left.
class NewDatabase {
public:
    explicit NewDatabase(std::filesystem::path path)
        : path_(std::move(path)), made_(path_.string() + fmt::format(".new{}", getpid())) {}
    ~NewDatabase() {
        for (const char* end : {"", "-wal", "-shm", "-journal"}) {
            std::error_code ignored;
            std::filesystem::remove(made_.string() + end, ignored);
        }
    }
    NewDatabase(const NewDatabase&) = delete;

    /// The file under which it is made.
    const std::filesystem::path& Made() const { return made_; }

    /// Gives it its name. Every connection to it must be closed.
    void Finish() { std::filesystem::rename(made_, path_); }

private:
    std::filesystem::path path_, made_;
};

}  // namespace Console

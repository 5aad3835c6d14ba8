#include "console/StoredFile.h"

#include "console/Output.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace Console {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Complain(const char* what, const fs::path& path) {
    throw Complaint(fmt::format("{} {}: {}", what, path.string(), std::strerror(errno)));
}

/// An open file of the system, closed however its user ends.
class OpenFile {
public:
    /// `shown` is what a complaint calls it.
    OpenFile(const fs::path& path, int flags, const fs::path& shown)
        : path_(shown), descriptor_(open(path.c_str(), flags | O_CLOEXEC, 0644)) {
        if (descriptor_ < 0) Complain(flags == O_RDONLY ? "can't read" : "can't write", shown);
    }
    ~OpenFile() { close(descriptor_); }
    OpenFile(const OpenFile&) = delete;

    std::size_t Read(char* to, std::size_t size) {
        const auto count = read(descriptor_, to, size);
        if (count < 0) Complain("can't read", path_);
        return static_cast<std::size_t>(count);
    }
    void Write(const char* from, std::size_t size) {
        while (size > 0) {
            const auto count = write(descriptor_, from, size);
            if (count < 0) Complain("can't write", path_);
            from += count;
            size -= static_cast<std::size_t>(count);
        }
    }
    void Flush() {
        if (fsync(descriptor_) != 0) Complain("can't write", path_);
    }

private:
    fs::path path_;
    int descriptor_;
};

bool SameContent(const fs::path& a, const fs::path& b) {
    if (fs::file_size(a) != fs::file_size(b)) return false;
    std::ifstream first(a, std::ios::binary), second(b, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return std::equal(Bytes(first), Bytes(), Bytes(second));
}

/// The name under which a file is written before it gets its own.
fs::path PartialName(const fs::path& path) { return path.string() + fmt::format(".part{}", getpid()); }

void CopyFlushed(const fs::path& from, const fs::path& to) {
    OpenFile source(from, O_RDONLY, from), target(to, O_WRONLY | O_CREAT | O_EXCL, to);
    std::vector<char> buffer(1 << 18);
    while (const std::size_t size = source.Read(buffer.data(), buffer.size()))
        target.Write(buffer.data(), size);
    target.Flush();
}

}  // namespace

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
    std::error_code failure;
    if (fs::exists(path, failure) && !fs::is_regular_file(path, failure))
        throw Complaint(fmt::format("can't write {}: it is no file", path.string()));
    const fs::path partial = PartialName(path);
    try {
        OpenFile target(partial, O_WRONLY | O_CREAT | O_EXCL, path);
        target.Write(bytes.data(), bytes.size());
        target.Flush();
        if (rename(partial.c_str(), path.c_str()) != 0) Complain("can't write", path);
    } catch (...) {
        fs::remove(partial, failure);
        throw;
    }
}

StoredFile::StoredFile(const fs::path& from, fs::path to) : path_(std::move(to)) {
    std::error_code failure;
    fs::create_directories(path_.parent_path(), failure);
    if (failure)
        throw Complaint(
            fmt::format("can't make the folder {}: {}", path_.parent_path().string(), failure.message()));
    const fs::path partial = PartialName(path_);
    try {
        CopyFlushed(from, partial);
        // A link never takes the place of another file, as a rename would.
        const bool named = link(partial.c_str(), path_.c_str()) == 0;
        if (!named && errno != EEXIST) Complain("can't write", path_);
        made_ = named;
        if (!named && !SameContent(from, path_))
            throw Complaint(fmt::format("another file is stored as {} already", path_.string()));
    } catch (...) {
        fs::remove(partial, failure);
        throw;
    }
    fs::remove(partial, failure);
}

StoredFile::StoredFile(StoredFile&& other) noexcept
    : path_(std::move(other.path_)), made_(std::exchange(other.made_, false)) {}

StoredFile::~StoredFile() {
    std::error_code ignored;
    if (made_) fs::remove(path_, ignored);
}

}  // namespace Console

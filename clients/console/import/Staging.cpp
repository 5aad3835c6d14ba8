#include "console/import/Staging.h"

#include "console/Sha256.h"
#include "console/SystemFile.h"
#include "console/WriteTransaction.h"
#include "console/import/StopSignals.h"
#include "frame/Statement.h"
#include "frame/StoredName.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

constexpr std::string_view ImportPrefix = ".oxclass-import-", CopyPrefix = ".oxclass-copy-";
constexpr const char* NameList = "names";

std::vector<std::string> AnnouncedNames(const fs::path& folder) {
    std::vector<std::string> names;
    std::ifstream in(folder / NameList);
    for (std::string name; std::getline(in, name);)
        if (!name.empty() && !in.eof()) names.push_back(name);  // a line that was cut off counts for nothing
    return names;
}

bool HasRow(const Ref<Connection>& con, const std::string& storedName) {
    const fs::path file = Replace(storedName, "\\", "/");
    return !con->Execute(sql("SELECT ImageBildID FROM ImageBild_T WHERE SOPInstanceUID_NVC = '",
                             FixSqlString(file.stem().string()), "' AND GraphicURL_NVC = '", FixSqlString(storedName),
                             "'"))
                ->Eof();
}

/// Holds the write lock, so that no import can use one of the files at the same time.
std::size_t RemoveFilesWithoutRow(const Ref<Connection>& con, const fs::path& root,
                                  const std::vector<std::string>& names) {
    std::size_t removed = 0;
    if (names.empty()) return removed;
    const RootLock lock(con, root);
    Write(con, [&] {
        for (const std::string& name : names) {
            std::error_code ignored;
            const std::string file = FileBelow(root.string(), name);
            if (!file.empty() && !HasRow(con, name)) removed += fs::remove(file, ignored);
        }
    });
    return removed;
}

// ---- names without hard links -----------------------------------------------------------------------

bool IsUnsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == EPERM || error == EOPNOTSUPP || error == EMLINK;
}

/// Reserves the name by creating an empty file, and then renames the staged file to it.
bool RenameOverReservation(const fs::path& from, const fs::path& to) {
    const int reserved = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (reserved < 0) return false;
    close(reserved);
    if (rename(from.c_str(), to.c_str()) == 0) return true;
    const int error = errno;
    unlink(to.c_str());
    errno = error;
    return false;
}

/// Renames a file to a name that no file has. Returns false with EEXIST if a file has the name. Tries three methods,
/// because no method is available on every file system.
bool RenameToNewName(const fs::path& from, const fs::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (!IsUnsupported(errno)) return false;
    if (link(from.c_str(), to.c_str()) == 0) {
        unlink(from.c_str());
        return true;
    }
    if (!IsUnsupported(errno)) return false;
    return RenameOverReservation(from, to);
}

/// Calls `visit` with each staging folder whose program has ended, while its lock is held.
template <class Visitor>
void EachAbandoned(const fs::path& root, std::string_view prefix, const Visitor& visit) {
    std::error_code failure;
    for (const fs::directory_entry& entry : fs::directory_iterator(root, failure)) {
        if (!entry.path().filename().string().starts_with(prefix)) continue;
        const int lock = LockFolder(entry.path());
        if (lock < 0) continue;  // its import is running
        visit(entry.path());
        close(lock);
    }
}

std::size_t CopiesIn(const fs::path& folder) {
    std::size_t copies = 0;
    std::error_code failure;
    for (const auto& file : fs::directory_iterator(folder, failure)) copies += file.path().filename() != NameList;
    return copies;
}

}  // namespace

int LockFolder(const fs::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return -1;
    struct stat about {};
    const bool locked = flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    // A folder that was removed between its making and its locking has no name any more.
    if (locked && fstat(descriptor, &about) == 0 && about.st_nlink > 0) return descriptor;
    close(descriptor);
    return -1;
}

Staging::Staging(const fs::path& root, For purpose) {
    const std::string_view prefix = purpose == For::Import ? ImportPrefix : CopyPrefix;
    constexpr int tries = 100;
    for (int i = 0; lock_ < 0 && i < tries; ++i) {
        std::string name = (root / (std::string(prefix) + "XXXXXX")).string();
        if (!mkdtemp(name.data())) ThrowSystemError("can't write", root);
        folder_ = name;
        lock_ = LockFolder(folder_);
    }
    if (lock_ < 0) throw UserError(fmt::format("can't lock a folder in {}", root.string()));
}

Staging::~Staging() {
    std::error_code ignored;
    if (!left_) fs::remove_all(folder_, ignored);
    close(lock_);
}

StagedFile Staging::Copy(const fs::path& from) {
    StagedFile staged = BeginCopy(from);
    try {
        Flush();
    } catch (...) {
        std::error_code ignored;
        fs::remove(staged.path, ignored);
        throw;
    }
    return staged;
}

StagedFile Staging::BeginCopy(const fs::path& from) {
    constexpr std::size_t mostOpen = 32;
    StagedFile staged{folder_ / std::to_string(++copies_), {}};
    SystemFile source(from, O_RDONLY);
    if (unflushed_.size() == mostOpen) {
        unflushed_.front().Flush();
        unflushed_.pop_front();
    }
    SystemFile& target = unflushed_.emplace_back(staged.path, O_WRONLY | O_CREAT | O_EXCL);
    try {
        Sha256 digest;
        std::vector<char> buffer(1 << 18);
        while (const std::size_t size = source.Read(buffer.data(), buffer.size())) {
            digest.Add(buffer.data(), size);
            target.Write(buffer.data(), size);
        }
        target.BeginFlush();
        staged.sha256 = digest.Hex();
    } catch (...) {
        unflushed_.pop_back();
        std::error_code ignored;
        fs::remove(staged.path, ignored);
        throw;
    }
    return staged;
}

void Staging::Flush() {
    const std::deque<SystemFile> copies = std::exchange(unflushed_, {});
    for (const SystemFile& copy : copies) copy.Flush();
}

void Staging::Announce(const std::vector<std::string>& storedNames) {
    std::string lines;
    for (const std::string& name : storedNames) lines += name + "\n";
    SystemFile list(folder_ / NameList, O_WRONLY | O_CREAT | O_APPEND);
    list.Write(lines.data(), lines.size());
    list.Flush();
    SyncFolder(folder_);
    SyncFolder(folder_.parent_path());
}

RootLock::RootLock(const Ref<Connection>& con, const fs::path& root) {
    if (EngineOf(con) != Engine::MariaDB) return;
    constexpr auto betweenTries = std::chrono::milliseconds(5);
    lock_ = open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (lock_ < 0 || flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        const bool waits = lock_ >= 0 && (error == EWOULDBLOCK || error == EINTR);
        if (waits && !StopSignals::Requested()) {
            std::this_thread::sleep_for(betweenTries);
            continue;
        }
        if (lock_ >= 0) close(lock_);
        if (waits) throw Stopped();
        errno = error;
        ThrowSystemError("can't lock", root);
    }
}

RootLock::~RootLock() {
    if (lock_ >= 0) close(lock_);
}

std::size_t RemoveLeftovers(const Ref<Connection>& con, const fs::path& root) {
    std::size_t removed = 0;
    EachAbandoned(root, ImportPrefix, [&](const fs::path& folder) {
        removed += RemoveFilesWithoutRow(con, root, AnnouncedNames(folder)) + CopiesIn(folder);
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    });
    return removed;
}

void RemoveAbandonedCopies(const fs::path& folder) {
    EachAbandoned(folder, CopyPrefix, [](const fs::path& staging) {
        std::error_code ignored;
        fs::remove_all(staging, ignored);
    });
}

std::size_t CountLeftovers(const fs::path& root) {
    std::size_t files = 0;
    EachAbandoned(root, ImportPrefix,
                  [&](const fs::path& folder) { files += std::max<std::size_t>(CopiesIn(folder), 1); });
    return files;
}

NamedFiles::~NamedFiles() {
    for (const auto& [staged, target] : made_) {
        std::error_code failure;
        fs::rename(target, staged, failure);
        if (failure && staged_ == Staged::Copies) fs::remove(target, failure);
    }
}

void NamedFiles::MakeFolder(const fs::path& folder) {
    if (folder == root_ || folders_.contains(folder)) return;
    MakeFolder(folder.parent_path());
    if (mkdir(folder.c_str(), 0755) == 0)
        folders_.insert(folder.parent_path());
    else if (errno != EEXIST)
        ThrowSystemError("can't make the folder", folder);
}

void NamedFiles::Name(const StagedFile& staged, const fs::path& target) {
    MakeFolder(target.parent_path());
    if (RenameToNewName(staged.path, target)) {
        made_.push_back({staged.path, target});
        folders_.insert(target.parent_path());
        return;
    }
    if (errno != EEXIST) ThrowSystemError("can't write", target);
    if (!SameContent(staged.path, target))
        throw UserError(fmt::format("another file is stored as {} already", target.string()));
}

void NamedFiles::Sync() {
    for (const fs::path& folder : folders_) SyncFolder(folder);
}

bool SameContent(const fs::path& a, const fs::path& b) {
    SystemFile first(a, O_RDONLY), second(b, O_RDONLY);
    std::vector<char> one(1 << 18), other(1 << 18);
    for (;;) {
        const std::size_t size = first.ReadFully(one.data(), one.size());
        if (size != second.ReadFully(other.data(), other.size())) return false;
        if (size == 0) return true;
        if (std::memcmp(one.data(), other.data(), size) != 0) return false;
    }
}

}  // namespace Console

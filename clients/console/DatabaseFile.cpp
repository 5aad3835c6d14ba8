#include "console/DatabaseFile.h"

#include "frame/SchemaVersion.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace Platform;
using OXClass::KnownSchemaVersion;

/// The engine's codes for failures that the user may be able to correct.
enum EngineCode : Long {
    Busy = 5,
    DiskFailed = 10,
    Damaged = 11,
    DiskFull = 13,
    CannotOpen = 14,
    NoDatabase = 26,
};

void RequireReachable(const fs::path& file) {
    std::error_code failure;
    const fs::file_status status = fs::status(file, failure);
    if (status.type() == fs::file_type::not_found) {
        const fs::path folder = fs::absolute(file).parent_path();
        if (!fs::exists(folder, failure))
            throw UserError(
                fmt::format("there is no folder {}; look at the name of the database, or make the "
                            "folder and a database in it with: oxclass init {}",
                            folder.string(), file.string()));
        throw UserError(fmt::format("there is no database {0}; make one with: oxclass init {0}", file.string()));
    }
    if (failure)
        throw UserError(fmt::format("{} can't be reached ({}); look at the rights of its folders", file.string(),
                                    failure.message()));
    if (status.type() != fs::file_type::regular)
        throw UserError(fmt::format("{} is not a file; name the database itself", file.string()));
}

/// The first bytes of a database file, which contain the file type and the marks of the program that created it.
class Header {
public:
    explicit Header(const fs::path& file) {
        std::ifstream in(file, std::ios::binary);
        if (!in)
            throw UserError(
                fmt::format("{} can't be read ({}); see that you may read it", file.string(), std::strerror(errno)));
        in.read(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
        length_ = static_cast<std::size_t>(in.gcount());
    }

    bool IsEmpty() const { return length_ == 0; }
    bool IsDatabase() const {
        constexpr std::string_view magic("SQLite format 3\0", 16);
        return length_ == bytes_.size() && std::string_view(bytes_.data(), magic.size()) == magic;
    }
    Long Version() const { return NumberAt(60); }
    Long Mark() const { return NumberAt(68); }

private:
    Long NumberAt(std::size_t at) const {
        std::uint32_t number = 0;
        for (std::size_t i = at; i < at + 4; ++i) number = number << 8U | static_cast<unsigned char>(bytes_[i]);
        return static_cast<Long>(number);
    }

    std::array<char, 100> bytes_{};
    std::size_t length_ = 0;
};

/// Returns what the user can do about a failure of a server; null for one without advice.
const char* AdviceOnServer(Long number) {
    switch (number) {
        case ADODB::LoginFailed:
            return "the server rejects the user; look at User ID and Password, or name a file with the password as "
                   "Password File";
        case ADODB::NoPermission: return "the server does not permit this; ask its administrator for the right";
        case ADODB::LockConflict: return "another program changed the same rows; run the command again";
        case ADODB::TimedOut: return "the server did not answer in time; run the command again";
        case ADODB::ConnectionLost:
            return "the connection to the server is lost; look whether the change was stored, and "
                   "run the command again";
        default: return nullptr;
    }
}

}  // namespace

void RequireMarks(const std::string& name, Long mark, Long version) {
    if (mark != ApplicationMark)
        throw UserError(
            fmt::format("{} is not a clinic database; make one under another name with: oxclass init", name));
    if (version > KnownSchemaVersion)
        throw UserError(
            fmt::format("{} was made by a newer program (tables of version {}, this program knows {}); "
                        "use that program",
                        name, version, KnownSchemaVersion));
}

bool HasLog(const fs::path& file) {
    std::error_code failure;
    const auto size = fs::file_size(file.string() + "-wal", failure);
    return !failure && size > 0;
}

bool IsClinicFile(const fs::path& file) {
    RequireReachable(file);
    const Header header(file);
    if (header.IsEmpty())
        throw UserError(
            fmt::format("{} is empty; make a database under another name with: oxclass init", file.string()));
    if (!header.IsDatabase())
        throw UserError(fmt::format(
            "{} can't be opened: file is not a database; name a file that oxclass init has made", file.string()));
    if (header.Mark() == ApplicationMark && header.Version() <= KnownSchemaVersion) return true;
    if (HasLog(file)) return false;
    RequireMarks(file.string(), header.Mark(), header.Version());
    return true;
}

std::string ExplanationOf(const Error& failure) {
    const auto with = [&](const char* advice) { return fmt::format("{} ({})", advice, failure.Description); };
    if (!failure.Provider.empty() && failure.Provider != "SQLite")
        if (const char* const advice = AdviceOnServer(failure.Number)) return with(advice);
    if (failure.Number == ADODB::NoPermission)
        return with("the database can't be written; look at the rights of the file and of its folder");
    constexpr Long primary = 0xFF;
    switch (failure.Provider.empty() ? 0 : failure.NativeError & primary) {
        case Busy: return with("another program keeps the database locked; run the command again");
        case DiskFailed: return with("the database can't be read or written; look at the disk, and at its free space");
        case Damaged:
            return with(
                "the database is damaged; restore it from a backup, or save what can still be read "
                "with: sqlite3 DATABASE .recover");
        case DiskFull:
            return with(
                "the disk is full; free some space on the disk of the database, and run the command "
                "again");
        case CannotOpen:
            return with(
                "the database or its log can't be opened; see that you may read and write the file, "
                "the files beside it and its folder, or copy them to a folder of yours");
        case NoDatabase: return with("the file is not a database, or its first page is damaged");
        default: break;
    }
    const std::string column = failure.Column.empty() ? "" : " in column " + failure.Column;
    const std::string statement = failure.Statement.empty() ? "" : " (in: " + failure.Statement + ")";
    return fmt::format("error {}: {}{}{}", failure.Number, failure.Description, column, statement);
}

}  // namespace Console

#include "console/maintenance/ClinicFiles.h"

#include "console/Sha256.h"
#include "console/SystemFile.h"
#include "console/import/ReadFile.h"
#include "platform/adodb/Recordset.h"

#include <algorithm>
#include <fcntl.h>
#include <thread>

namespace Console {
namespace {

constexpr std::size_t Sha256Length = 64;

/// Returns the checksum, a line break and the radiograph; or a line break and the reason for an unreadable file.
std::string PackedContent(const std::string& path, bool asImage) {
    try {
        return Sha256OfFile(path) + "\n" + (asImage ? ReadPacked(path) : std::string());
    } catch (const std::exception& failure) {
        return std::string("\n") + failure.what();
    }
}

FileContent ContentOf(const WorkerPool::Answer& answer) {
    if (!answer.failure.empty()) return {{}, answer.failure, {}};
    const auto end = answer.bytes.find('\n');
    const std::string rest = answer.bytes.substr(end + 1);
    return end == 0 ? FileContent{{}, rest, {}} : FileContent{answer.bytes.substr(0, end), {}, rest};
}

std::string TextOrEmpty(const ADODB::Field& field) { return field.IsNull() ? std::string() : field.As<std::string>(); }

/// Returns the number in a column; 0 also for a value that can't be converted. The check reports such a row as damaged.
Platform::Long NumberOrZero(const ADODB::Field& field) {
    try {
        return field.IsNull() ? 0 : field.As<Platform::Long>();
    } catch (const Platform::Error&) {
        return 0;
    }
}

}  // namespace

std::vector<ClinicFile> FilesOfClinic(const Ref<Connection>& con) {
    std::vector<ClinicFile> files;
    const Ref<Recordset> rows = con->Execute(
        "SELECT ImageBildID, RootId, PatientID, GraphicURL_NVC, CRC "
        "FROM ImageBild_T WHERE GraphicURL_NVC <> "
        "'' "
        "ORDER BY RootId, GraphicURL_NVC, ImageBildID");
    for (; !rows->Eof(); rows->MoveNext()) {
        const std::string checksum = Platform::Trim(TextOrEmpty(rows->Fields(4)));
        files.push_back({rows->Fields(0).As<Platform::Long>(), NumberOrZero(rows->Fields(1)),
                         NumberOrZero(rows->Fields(2)), TextOrEmpty(rows->Fields(3)),
                         IsSha256(checksum) ? checksum : std::string()});
    }
    return files;
}

std::map<Platform::Long, std::filesystem::path> FoldersOfRoots(const Ref<Connection>& con) {
    std::map<Platform::Long, std::filesystem::path> folders;
    const Ref<Recordset> rows = con->Execute("SELECT RootID, RootDirectory FROM Root_T");
    for (; !rows->Eof(); rows->MoveNext()) folders[rows->Fields(0).As<Platform::Long>()] = TextOrEmpty(rows->Fields(1));
    return folders;
}

bool IsSha256(const std::string& text) {
    return text.size() == Sha256Length && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

void ReadFiles(std::size_t count, bool asImages, const char* what, const std::function<std::string(std::size_t)>& path,
               const std::function<void(std::size_t, const FileContent&)>& take) {
    constexpr std::size_t ahead = 64;
    constexpr double seconds = 600;  // a large file on a slow disk
    WorkerPool pool([asImages](const std::string& file) { return PackedContent(file, asImages); },
                    std::clamp(std::thread::hardware_concurrency(), 1U, 8U), {.seconds = seconds});
    Progress progress(what, count);
    std::size_t submitted = 0;
    for (std::size_t i = 0; i < count; ++i) {
        for (; submitted < std::min(count, i + ahead); ++submitted) pool.Submit(path(submitted));
        const auto answer = pool.Next([] { return false; });
        take(i, ContentOf(*answer));
        progress.Step();
    }
}

std::string Sha256OfFile(const std::filesystem::path& path) {
    SystemFile file(path, O_RDONLY);
    Sha256 digest;
    std::vector<char> buffer(1 << 18);
    while (const std::size_t size = file.Read(buffer.data(), buffer.size())) digest.Add(buffer.data(), size);
    return digest.Hex();
}

}  // namespace Console

#include "console/import/StorageRoot.h"

#include "console/WholeFile.h"
#include "console/WriteTransaction.h"
#include "console/patients/PatientStore.h"
#include "frame/Class1.h"
#include "frame/Statement.h"
#include "frame/StoredName.h"
#include "people/cDoctors.h"

#include <fmt/format.h>
#include <fstream>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

constexpr std::string_view MarkerLine = "storage root of clinic ";

/// Returns the identity of the clinic in a folder's marker file; empty if the folder has no marker. Throws `UserError`
/// for a marker file without an identity. Such a file is not replaced, because the folder may belong to another clinic.
std::string MarkedClinic(const fs::path& folder) {
    const fs::path marker = folder / RootMarker;
    std::error_code failure;
    if (!fs::exists(fs::symlink_status(marker, failure))) return {};
    std::ifstream in(marker);
    std::string line;
    std::getline(in, line);
    std::string clinic = line.starts_with(MarkerLine) ? Trim(line.substr(MarkerLine.size())) : std::string();
    if (!clinic.empty()) return clinic;
    throw UserError(
        fmt::format("{} is not the marker of a storage root, so nothing is stored; it is damaged. If the folder "
                    "holds the images "
                    "of this clinic, delete that file, and the next import writes it again",
                    marker.string()));
}

void WriteMarker(const fs::path& folder, const std::string& identity) {
    WriteWholeFile(folder / RootMarker, fmt::format("{}{}\n", MarkerLine, identity));
}

/// Returns true for a folder without any file but a marker.
bool IsUnused(const fs::path& folder) {
    std::error_code failure;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, failure))
        if (entry.path().filename() != RootMarker) return false;
    return !failure;
}

[[noreturn]] void RefuseForeign(const fs::path& folder) {
    throw UserError(
        fmt::format("{} belongs to another clinic, which its file {} names; nothing is stored there. Mount the right "
                    "disk, or delete that file if the other clinic doesn't exist any more",
                    folder.string(), RootMarker));
}

}  // namespace

Long StorageRoots::ActiveRoot() const {
    const Ref<Class1> services = New<Class1>();
    if (services->GetRootOnID(con_, 0).empty())
        throw UserError("the database has no active storage root; add one with: oxclass roots --add DIR");
    services->GetRoots(con_);
    return services->ActiveRootID;
}

const fs::path& StorageRoots::Folder(Long root) {
    const auto known = folders_.find(root);
    if (known != folders_.end() && fs::exists(known->second / RootMarker)) return known->second;
    const fs::path folder = DirectoryOf(root);
    if (!IsMarked(folder, root)) WriteMarker(folder, Identity());
    return folders_[root] = folder;
}

void StorageRoots::Inspect(Long root) const { IsMarked(DirectoryOf(root), root); }

fs::path StorageRoots::DirectoryOf(Long root) const {
    const std::string directory = New<Class1>()->GetRootOnID(con_, root);
    if (directory.empty()) throw UserError(fmt::format("the database has no storage root {}", root));
    return directory;
}

/// Returns true for a folder with the marker of this clinic, false for one without a marker in which it may be written.
bool StorageRoots::IsMarked(const fs::path& folder, Long root) const {
    std::error_code failure;
    if (!fs::is_directory(folder, failure))
        throw UserError(fmt::format(
            "the storage root {} is missing, so nothing is stored; mount its disk, or make the folder if the "
            "clinic has no images yet",
            folder.string()));
    const std::string marked = MarkedClinic(folder);
    if (!marked.empty() && marked == StoredIdentity()) return true;
    if (!marked.empty()) RefuseForeign(folder);
    if (!HoldsKnownFiles(folder, root))
        throw UserError(
            fmt::format("the storage root {} doesn't hold the images that the database has there, so nothing is "
                        "stored; is its disk mounted?",
                        folder.string()));
    return false;
}

/// Returns true if the file of one of the root's newest images exists, or if the root has no images.
bool StorageRoots::HoldsKnownFiles(const fs::path& folder, Long root) const {
    const Ref<Recordset> rows = con_->Execute(sql("SELECT GraphicURL_NVC FROM ImageBild_T WHERE RootId = ", root,
                                                  " AND GraphicURL_NVC <> '' ORDER BY ImageBildID DESC LIMIT 100"));
    if (rows->Eof()) return true;
    for (; !rows->Eof(); rows->MoveNext()) {
        std::error_code failure;
        const std::string file = FileBelow(folder.string(), rows->Fields(0).As<String>());
        if (!file.empty() && fs::exists(file, failure)) return true;
    }
    return false;
}

void StorageRoots::Create(const fs::path& folder) {
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure) throw UserError(fmt::format("can't make the folder {}: {}", folder.string(), failure.message()));
    const std::string marked = MarkedClinic(folder);
    if (!marked.empty() && marked != Identity() && !IsUnused(folder)) RefuseForeign(folder);
    if (marked != Identity()) WriteMarker(folder, Identity());
}

std::string StorageRoots::StoredIdentity() const {
    try {
        const Ref<Recordset> row = con_->Execute("SELECT Identity FROM ClinicIdentity_T");
        return row->Eof() || row->Fields(0).IsNull() ? String() : row->Fields(0).As<String>();
    } catch (const Error& failure) {
        if (failure.Number == ADODB::NoTable) return {};
        throw;
    }
}

const std::string& StorageRoots::Identity() {
    if (identity_.empty()) identity_ = StoredIdentity();
    if (!identity_.empty()) return identity_;
    std::string identity;
    Write(con_, [&] {
        CreateProgramTables(con_);
        identity = StoredIdentity();  // another program may have stored one meanwhile
        if (!identity.empty()) return;
        identity = New<cDoctors>()->GetGUID();
        con_->Execute(sql("INSERT INTO ClinicIdentity_T (Identity) VALUES ('", FixSqlString(identity), "')"));
    });
    return identity_ = identity;
}

}  // namespace Console

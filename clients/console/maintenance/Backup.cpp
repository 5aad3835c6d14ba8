#include "console/Commands.h"
#include "console/DatabaseName.h"
#include "console/Program.h"
#include "console/maintenance/ClinicBackup.h"

#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;

void Print(Program& program, const BackupResult& result, const char* done, const std::string& where) {
    for (const std::string& failure : result.failures) fmt::print(stderr, "oxclass: {}\n", Printable(failure));
    if (!result.failures.empty()) program.exitCode = PartlyDone;
    if (program.options.json)
        return PrintJson(
            {{"folder", where}, {"files", result.files}, {"copied", result.copied}, {"failures", result.failures}});
    fmt::print("{} {}: {} files, {} of them copied, {} failed.\n", Printable(where), done, result.files, result.copied,
               result.failures.size());
}

void RunRestore(Program& program, const std::string& folder, const std::string& file, const std::string& root) {
    if (IsConnectionString(file))
        throw UserError("restore makes a file; bring it to a server with: oxclass --db FILE copy --to DATABASE");
    const fs::path target = root.empty() ? fs::absolute(file).parent_path() / "images" : fs::path(root);
    const BackupResult result = Restore(folder, file, target);
    if (!result.made)
        fmt::print(stderr, "oxclass: {} was not made, because files are missing or damaged\n", Printable(file));
    Print(program, result, result.made ? "was restored" : "was not restored", file);
}

}  // namespace

void AddBackup(Program& program) {
    struct Arguments {
        std::string folder, file, root;
    };
    const auto given = std::make_shared<Arguments>();
    auto* backup = program.app.add_subcommand(
        "backup", "copy the database and all image files into a folder; again copies only what is new");
    backup->add_option("FOLDER", given->folder, "folder of the backup")->required();
    backup->footer(
        "The trash is not in a backup; oxclass undelete needs the storage root itself.\n"
        "Every copy is compared with the checksum of its image. Exit code 3: some files could not be "
        "copied.\n"
        "Example: oxclass backup /mnt/backup/clinic");
    backup->callback([&program, given] {
        const Database database(program.options);
        Print(program, BackUp(database, given->folder), "is backed up", given->folder);
    });

    auto* restore = program.app.add_subcommand("restore", "make a database and its image files from a backup");
    restore->add_option("FOLDER", given->folder, "folder of the backup")->required();
    restore->add_option("FILE", given->file, "the database to make")->required();
    restore->add_option("--root", given->root, "folder for the image files; default: images beside the database")
        ->type_name("DIR");
    restore->footer("Example: oxclass restore /mnt/backup/clinic clinic.db --root /srv/images");
    restore->callback([&program, given] { RunRestore(program, given->folder, given->file, given->root); });
}

}  // namespace Console

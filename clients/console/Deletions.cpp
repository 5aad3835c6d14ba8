#include "console/Commands.h"
#include "console/Program.h"
#include "console/maintenance/ClinicFiles.h"
#include "console/patients/PatientSearch.h"
#include "console/trash/Deletion.h"
#include "console/trash/Trash.h"

#include <algorithm>
#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using Platform::Long;

/// The arguments of the commands that delete and restore.
struct DeletionArguments {
    std::vector<std::string> names;
    ChangeOptions change;
};

std::string CountsAsText(const nlohmann::ordered_json& rows) {
    std::vector<std::string> counts;
    for (const auto& [table, count] : rows.items()) counts.push_back(fmt::format("{} {}", table, count.dump()));
    return fmt::format("{}", fmt::join(counts, ", "));
}

void Print(Program& program, const DeletionResult& result, bool dryRun) {
    if (!result.unfinished.empty()) {
        program.exitCode = PartlyDone;
        fmt::print(stderr,
                   "oxclass: the rows are deleted, but files are not in the trash yet: {}; the next command of "
                   "the trash moves them\n",
                   Printable(result.unfinished));
    }
    if (program.options.json)
        return PrintJson({{"dry_run", dryRun},
                          {"entry", result.entry},
                          {"what", result.what},
                          {"patient", result.patient},
                          {"rows", result.rows},
                          {"files", result.files}});
    const std::string of = result.patient.empty() ? "" : " of patient " + result.patient;
    fmt::print("{}{}: {}; {} files\n", Printable(result.what), Printable(of), CountsAsText(result.rows), result.files);
    if (dryRun)
        fmt::print("Nothing was deleted; leave out --dry-run to do it.\n");
    else
        fmt::print("Deleted; in the trash as {}. To restore: oxclass undelete {}\n", result.entry, result.entry);
}

void RunDelete(Program& program, const DeletionArguments& given,
               const std::function<void(const Database&, const std::string&, RemovedKeys&)>& name) {
    const Database database(program.options);
    RemovedKeys keys;
    for (const std::string& text : given.names) name(database, text, keys);
    Print(program, DeleteRecords(database, keys, given.change), given.change.dryRun);
}

void AddDelete(Program& program, const std::shared_ptr<DeletionArguments>& given) {
    auto* remove = program.app.add_subcommand("delete", "move records and their files into the trash");
    remove->require_subcommand(1);
    remove->footer("Example: oxclass delete image 12 --dry-run");
    struct Kind {
        const char *name, *argument, *what, *help, *force, *example;
        std::function<void(const Database&, const std::string&, RemovedKeys&)> add;
    };
    const auto numbered = [](std::set<Long> RemovedKeys::*keys, const char* what) {
        return [=](const Database&, const std::string& text, RemovedKeys& all) {
            (all.*keys).insert(NumberOf(text, what));
        };
    };
    const char* const offCards = "also images that cards show; they are taken off the cards";
    const Kind kinds[] = {
        {"patient", "PATIENT", "delete a patient", PatientHelp, "also a patient with studies, images or cards",
         "patient TEST-FMX18 --force",
         [](const Database& database, const std::string& text, RemovedKeys& all) {
             all.patients.insert(LoadPatient(database, text)->ID);
         }},
        {"study", "STUDY", "delete studies with their series and images", "numbers of studies", offCards, "study 4",
         numbered(&RemovedKeys::studies, "a study")},
        {"series", "SERIES", "delete series with their images", "numbers of series", offCards, "series 18 --force",
         numbered(&RemovedKeys::series, "a series")},
        {"image", "IMAGE", "delete images with their comments", "numbers of images", offCards, "image 12 13",
         numbered(&RemovedKeys::images, "an image")},
        {"card", "CARD", "delete image cards; their images stay", "image cards, as IC5", nullptr, "card IC1",
         [](const Database&, const std::string& text, RemovedKeys& all) {
             const bool key = Platform::EqualsIgnoringCase(text.substr(0, 2), "IC");
             all.cards.insert(NumberOf(key ? text.substr(2) : text, "an image card"));
         }},
        {"comment", "COMMENT", "delete comments", "numbers of comments, as oxclass comment IMAGE lists them", nullptr,
         "comment 3", numbered(&RemovedKeys::comments, "a comment")},
    };
    for (const Kind& kind : kinds) {
        auto* command = remove->add_subcommand(kind.name, kind.what);
        command->add_option(kind.argument, given->names, kind.help)->required();
        if (kind.force) command->add_flag("--force", given->change.force, kind.force);
        command->add_option("--by", given->change.by, "who deletes; default: the user of the system")
            ->type_name("NAME")
            ->check(NotEmpty());
        command->add_flag("--dry-run", given->change.dryRun, "show what would be deleted, and delete nothing");
        command->footer(fmt::format(
            "Rows and files stay in the trash, in the storage root, until it is emptied.\nExample: oxclass delete {}",
            kind.example));
        command->callback([&program, given, add = kind.add] { RunDelete(program, *given, add); });
    }
}

// ---- the trash ------------------------------------------------------------------------------------

/// Completes what was interrupted, if the user may write.
void RecoverIfAllowed(const Database& database) {
    try {
        RecoverTrash(database.Con());
    } catch (const Platform::Error& failure) {
        if (failure.Number != ADODB::NoPermission) throw;
    }
}

std::uintmax_t BytesOf(const TrashListing& entry, const std::map<Long, fs::path>& folders) {
    std::uintmax_t bytes = 0;
    for (const auto& [root, folder] : folders) {
        std::error_code failure;
        for (const auto& file : fs::directory_iterator(folder / TrashFolder / entry.name, failure))
            if (file.path().extension() != ".json") bytes += file.file_size(failure);
    }
    return bytes;
}

void ListTrash(const Options& options) {
    const Database database(options);
    RecoverIfAllowed(database);
    List list({{"entry", "Entry"},
               {"deleted", "Deleted"},
               {"by", "By"},
               {"what", "What"},
               {"patient", "Patient"},
               {"files", "Files"},
               {"bytes", "Bytes"}});
    const auto folders = FoldersOfRoots(database.Con());
    for (const TrashListing& entry : TrashEntries(database.Con())) {
        if (entry.state != TrashState::Complete) continue;
        try {
            const TrashRecord record = TrashRecord::Read(entry.record);
            list.Add({entry.name, record.deleted, record.by, record.what, record.patient, record.files.size(),
                      BytesOf(entry, folders)});
        } catch (const UserError& damage) {
            list.Add({entry.name, nullptr, nullptr, damage.what(), nullptr, nullptr, BytesOf(entry, folders)});
        }
    }
    list.Print(options, "The trash is empty.");
}

void EmptyEntries(const Options& options, std::vector<std::string> entries) {
    const Database database(options);
    RecoverTrash(database.Con());
    if (entries.empty())
        for (const TrashListing& entry : TrashEntries(database.Con()))
            if (entry.state == TrashState::Complete) entries.push_back(entry.name);
    EmptyTrash(database, entries);
    if (options.json) return PrintJson({{"emptied", entries}});
    fmt::print("{} entries are deleted for good.\n", entries.size());
}

void Restore(Program& program, const std::vector<std::string>& entries) {
    const Database database(program.options);
    nlohmann::ordered_json restored = nlohmann::ordered_json::array();
    for (const std::string& entry : entries) {
        const UndeletionResult result = Undelete(database, entry);
        if (result.damaged) program.exitCode = PartlyDone;
        for (const std::string& note : result.notes) fmt::print(stderr, "oxclass: {}\n", Printable(note));
        restored.push_back({{"entry", entry},
                            {"what", result.what},
                            {"rows", result.rows},
                            {"files", result.files},
                            {"notes", result.notes}});
        if (!program.options.json)
            fmt::print("{} is restored: {} rows, {} files.\n", Printable(result.what), result.rows, result.files);
    }
    if (program.options.json) PrintJson(restored);
}

void AddTrash(Program& program, const std::shared_ptr<DeletionArguments>& given) {
    auto* undelete = program.app.add_subcommand("undelete", "restore entries of the trash: rows and files");
    undelete->add_option("ENTRY", given->names, "entries, as oxclass trash list names them")->required();
    undelete->footer(
        "A row has its number again; if another row has the number by now, it gets a new one, which is told.\n"
        "Example: oxclass undelete T1");
    undelete->callback([&program, given] { Restore(program, given->names); });

    auto* trash = program.app.add_subcommand("trash", "list what was deleted, or delete it for good");
    trash->require_subcommand(1);
    trash->footer("Example: oxclass trash list");
    auto* list = trash->add_subcommand("list", "list the entries of the trash");
    AddListOptions(program, list);
    list->footer("Example: oxclass trash list --sort -deleted");
    list->callback([&program] { ListTrash(program.options); });
    auto* empty = trash->add_subcommand("empty", "delete entries of the trash for good; default: all");
    empty->add_option("ENTRY", given->names, "entries, as oxclass trash list names them");
    empty->footer("Example: oxclass trash empty T1");
    empty->callback([&program, given] { EmptyEntries(program.options, given->names); });
}

}  // namespace

void AddDeletions(Program& program) {
    const auto given = std::make_shared<DeletionArguments>();
    AddDelete(program, given);
    AddTrash(program, given);
}

}  // namespace Console

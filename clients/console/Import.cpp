#include "console/Commands.h"

#include "console/DatabaseFile.h"
#include "console/Program.h"
#include "console/import/FoundFiles.h"
#include "console/import/ReadFile.h"
#include "console/import/SeriesImport.h"
#include "console/import/StopSignals.h"
#include "console/import/WorkerPool.h"

#include <algorithm>
#include <fmt/format.h>
#include <list>
#include <map>
#include <set>
#include <thread>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

/// The files of a series are kept in memory until the series is stored: when none of the next `FilesApart` files
/// belongs to it, or when it has `LargestBatch` files. Later files of the same series are stored as a later import
/// would store them.
constexpr std::size_t FilesApart = 256, LargestBatch = 2000;

/// The numbers of an import, for its last lines of output and its exit code.
struct Tally {
    std::size_t files = 0, stored = 0, known = 0, restored = 0, failed = 0, skipped = 0, objects = 0;
    std::vector<Long> hung;  ///< series that were hung
    nlohmann::ordered_json conflicts = nlohmann::ordered_json::array();
    std::size_t left = 0;  ///< files that were not read because the import was stopped
    bool stopped = false;
    std::string lost;  ///< the message about a lost connection, which has stopped the import
};

/// The files of one series that were read and not stored yet.
struct PendingSeries {
    std::vector<Radiograph> files;
    std::size_t last = 0;  ///< position of the newest one among all files
};

/// One import: reads files in worker processes, and stores them series by series.
class Import {
public:
    Import(const Database& database, PatientDecision decision, unsigned jobs)
        : series_(database.Con(), decision), patientDecided_(!decision.patient.empty()), jobs_(jobs) {}

    Tally Run(const FoundFiles& found);

private:
    void ReadAndStore(const std::vector<FoundFile>& files);
    void Take(const FoundFile& file, const WorkerPool::Answer& answer, std::size_t position);
    void Refuse(const FoundFile& file, const ReadFile& read);
    void ReportListed(const std::vector<FoundFile>& files);
    void StoreReady(std::size_t position);
    void Store(std::list<PendingSeries>::iterator series);
    void Add(const SeriesResult& result);
    void Report(const fs::path& path, const std::string& reason);
    void Tell(const std::string& text);
    void Done(std::size_t files);

    SeriesImport series_;
    bool patientDecided_;
    unsigned jobs_;
    std::list<PendingSeries> pending_;  // in the order in which the series were met
    std::map<std::string, std::list<PendingSeries>::iterator> pendingOf_;
    Tally tally_;
    std::optional<Progress> progress_;
    std::map<std::string, fs::path> listed_;         // the files that DICOMDIRs name, by their folded paths
    std::map<std::string, std::string> passedOver_;  // the reasons of foreign files, by their folded paths
};

/// Returns a path in a form that can be compared: a disc names its files in upper case and with a version behind a
/// semicolon, and a system may show them in another form.
std::string FoldedPath(const fs::path& path) {
    const std::string text = LCase(path.lexically_normal().string());
    const auto version = text.rfind(';');
    const std::string name = version == std::string::npos ? text : text.substr(0, version);
    return name.ends_with('.') ? name.substr(0, name.size() - 1) : name;
}

void Import::Tell(const std::string& text) {
    if (progress_) progress_->Clear();
    fmt::print(stderr, "{}\n", Printable(text));
}

void Import::Report(const fs::path& path, const std::string& reason) {
    ++tally_.failed;
    Tell(fmt::format("{}: not imported: {}", path.string(), reason));
}

void Import::Done(std::size_t files) {
    for (std::size_t i = 0; i < files; ++i) progress_->Step();
}

Tally Import::Run(const FoundFiles& found) {
    for (const auto& [folder, reason] : found.unreadable) Report(folder, reason);
    progress_.emplace("files", found.files.size());
    try {
        ReadAndStore(found.files);
    } catch (const Stopped&) {
        tally_.stopped = true;
    } catch (const LostConnection& lost) {
        tally_.stopped = true;
        tally_.lost = lost.what();
    }
    progress_->Clear();
    tally_.left = found.files.size() - tally_.files;
    return tally_;
}

void Import::ReadAndStore(const std::vector<FoundFile>& files) {
    WorkerPool pool(ReadPacked, jobs_);
    std::size_t submitted = 0;
    const auto stop = [] { return StopSignals::Requested() != 0; };
    for (std::size_t i = 0; i < files.size(); ++i) {
        for (; submitted < std::min(files.size(), i + FilesApart); ++submitted)
            pool.Submit(files[submitted].path.string());
        const auto answer = pool.Next(stop);
        if (!answer || stop()) throw Stopped();
        Take(files[i], *answer, i);
        StoreReady(i);
    }
    while (!pending_.empty()) Store(pending_.begin());
    ReportListed(files);
}

/// Adds a file that was read to the files of its series, or reports why it isn't imported.
void Import::Take(const FoundFile& file, const WorkerPool::Answer& answer, std::size_t position) {
    ReadFile read;
    if (answer.failure.empty())
        read = Unpacked(answer.bytes);
    else
        read.refusal = answer.failure;
    if (read.file && read.file->patientID.empty() && !patientDecided_) {
        read.refusal =
            "it has no Patient ID, so it belongs to nobody; say whose "
            "it is with --patient";
        read.file.reset();
    }
    if (!read.file) {
        ++tally_.files;
        Done(1);
        return Refuse(file, read);
    }
    const auto [known, isNew] = pendingOf_.try_emplace(read.file->seriesUID);
    if (isNew) known->second = pending_.emplace(pending_.end());
    known->second->files.push_back({file.path, std::move(*read.file), read.noPicture});
    known->second->last = position;
}

/// Reports a file that isn't imported, or counts it where the user doesn't expect a radiograph in it.
void Import::Refuse(const FoundFile& file, const ReadFile& read) {
    for (const std::string& listed : read.listed)
        listed_.emplace(FoldedPath(file.path.parent_path() / listed), file.path.parent_path() / listed);
    const bool object = read.object && !file.named;
    if (!object && (!read.foreign || IsExpectedRadiograph(file))) return Report(file.path, read.refusal);
    ++(object ? tally_.objects : tally_.skipped);
    if (!object && read.listed.empty()) passedOver_.emplace(FoldedPath(file.path), read.refusal);
}

/// Reports the files that a DICOMDIR names and that are missing, or that were passed over as foreign.
void Import::ReportListed(const std::vector<FoundFile>& files) {
    if (listed_.empty()) return;
    std::set<std::string> found;
    for (const FoundFile& file : files) found.insert(FoldedPath(file.path));
    for (const auto& [folded, path] : listed_) {
        const auto passed = passedOver_.find(folded);
        if (passed != passedOver_.end()) {
            --tally_.skipped;
            Report(path, "the DICOMDIR names it, and it is damaged: " + passed->second);
        } else if (!found.contains(folded)) {
            Report(path, "the DICOMDIR names it, and it is missing");
        }
    }
}

void Import::StoreReady(std::size_t position) {
    for (auto series = pending_.begin(); series != pending_.end();) {
        const auto next = std::next(series);
        if (series->last + FilesApart < position || series->files.size() >= LargestBatch) Store(series);
        series = next;
    }
}

void Import::Store(std::list<PendingSeries>::iterator series) {
    const std::vector<Radiograph> files = std::move(series->files);
    pendingOf_.erase(files.front().file.seriesUID);
    pending_.erase(series);
    std::string reason;
    try {
        Add(series_.Store(files));
    } catch (const LostConnection&) {
        throw;
    } catch (const IdentityConflict& conflict) {
        Tell("The patient of a series, beside the stored one or another file:");
        fmt::print(stderr, "{}", conflict.table);
        tally_.conflicts.push_back(conflict.json);
        reason = conflict.what();
    } catch (const Error& failure) {
        reason = ExplanationOf(failure);
    } catch (const std::runtime_error& failure) {
        reason = failure.what();
    }
    tally_.files += files.size();
    Done(files.size());
    if (reason.empty()) return;
    for (const Radiograph& radiograph : files) Report(radiograph.path, reason);
}

void Import::Add(const SeriesResult& result) {
    tally_.stored += result.stored;
    tally_.known += result.known;
    tally_.restored += result.restored;
    if (result.hung != 0) tally_.hung.push_back(result.hung);
    for (const auto& [path, reason] : result.refused) Report(path, reason);
    for (const std::string& note : result.notes) Tell(note);
}

std::string Plural(std::size_t count, const char* one, const char* many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

void PrintTally(const Tally& tally, bool json) {
    if (json)
        return PrintJson({{"files", tally.files},
                          {"stored", tally.stored},
                          {"known", tally.known},
                          {"restored", tally.restored},
                          {"failed", tally.failed},
                          {"skipped", tally.skipped},
                          {"without_picture", tally.objects},
                          {"series", tally.hung},
                          {"conflicts", tally.conflicts},
                          {"stopped", tally.stopped},
                          {"left", tally.left}});
    fmt::print(
        "{} files: {} new images stored, {} were stored already, {} not "
        "imported; {} series hung.\n",
        tally.files, tally.stored, tally.known, tally.failed, tally.hung.size());
    if (tally.restored > 0)
        fmt::print("{} missing and stored again.\n", Plural(tally.restored, "file was", "files were"));
    if (tally.skipped > 0)
        fmt::print("{} without DICOM data {} skipped.\n", Plural(tally.skipped, "file", "files"),
                   tally.skipped == 1 ? "was" : "were");
    if (tally.objects > 0)
        fmt::print("{} without picture {} skipped.\n", Plural(tally.objects, "DICOM object", "DICOM objects"),
                   tally.objects == 1 ? "was" : "were");
    if (tally.stored == 0 && tally.known > 0) fmt::print("Nothing was stored twice.\n");
    if (tally.stopped)
        fmt::print("Stopped: {} not imported. Import the folder again to continue.\n",
                   Plural(tally.left, "file was", "files were"));
}

void ImportFolders(Program& program, const std::vector<std::string>& names, const PatientDecision& decision,
                   unsigned jobs) {
    const StopSignals signals;
    const Database database(program.options);
    const FoundFiles found = FindFiles(names);
    const Tally tally = Import(database, decision, jobs).Run(found);
    PrintTally(tally, program.options.json);
    if (!tally.lost.empty()) throw UserError(tally.lost);
    if (tally.failed > 0 || tally.stopped) program.exitCode = PartlyDone;
}

}  // namespace

void AddImport(Program& program) {
    constexpr unsigned mostJobs = 64;
    struct Arguments {
        std::vector<std::string> names;
        PatientDecision decision;
        unsigned jobs = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
    };
    const auto given = std::make_shared<Arguments>();
    auto* command = program.app.add_subcommand("import",
                                               "read radiographs from folders of DICOM files, store them and "
                                               "hang each series");
    command->add_option("FOLDER", given->names, "folders, with all below them, a DICOMDIR, or single files")
        ->required();
    auto* patient = command->add_option("--patient", given->decision.patient,
                                        "all files belong to this patient, whatever they say; as in: oxclass cards "
                                        "PATIENT");
    patient->type_name("PATIENT");
    command
        ->add_flag("--new-patient", given->decision.newPatient,
                   "all files belong to patients who aren't in the database yet, "
                   "whoever has the same ID")
        ->excludes(patient);
    command->add_option("--jobs", given->jobs, "processes that read files; default: one for each processor")
        ->check(CLI::Range(1U, mostJobs))
        ->type_name("N");
    command->footer(
        "Importing the same files again stores nothing twice. A "
        "series whose patient contradicts the stored\n"
        "patient of the same ID isn't stored; --patient and "
        "--new-patient decide. SIGINT ends an import "
        "between\n"
        "two images. Exit code 3: some files were not imported.\n"
        "Example: oxclass --db clinic.db import ~/radiographs");
    command->callback([&program, given] { ImportFolders(program, given->names, given->decision, given->jobs); });
}

}  // namespace Console

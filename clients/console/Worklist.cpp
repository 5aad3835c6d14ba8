#include "console/Commands.h"
#include "console/Program.h"
#include "console/dicom/DicomFile.h"
#include "console/dicom/DicomValues.h"
#include "console/import/FoundFiles.h"
#include "console/import/WorkerPool.h"
#include "console/Sha256.h"
#include "console/WriteTransaction.h"
#include "console/patients/PatientSearch.h"
#include "console/patients/PatientStore.h"
#include "console/patients/TypedDate.h"
#include "console/worklist/WorklistServer.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

// ---- matching ---------------------------------------------------------------------------------------

void SetDays(WorklistKeys& keys, const std::string& text) {
    if (text.empty()) return;
    const TypedDays days = DaysTyped(text);
    const auto digits = [](Date day) { return day.Days == 0 ? std::string() : FormatDate(day, "yyyymmdd"); };
    keys.firstDay = digits(days.first);
    keys.lastDay = digits(days.last);
}

/// Returns true if `text` matches the pattern `wanted`, without regard to case; "*" matches any characters, "?" one.
bool Fits(std::string_view wanted, std::string_view text) {
    std::size_t at = 0, star = std::string_view::npos, behindStar = 0;
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view sought = wanted.substr(std::min(at, wanted.size()), 1);
        if (sought == "*") {
            star = at++;
            behindStar = i;
        } else if (!sought.empty() && (sought == "?" || EqualsIgnoringCase(sought, text.substr(i, 1)))) {
            ++at;
            ++i;
        } else if (star != std::string_view::npos) {  // the star takes one character more
            at = star + 1;
            i = ++behindStar;
        } else {
            return false;
        }
    }
    return wanted.find_first_not_of('*', std::min(at, wanted.size())) == std::string_view::npos;
}

/// Returns true if `wanted` is empty, or if one of the values of `text` matches it.
bool FitsAny(const std::string& wanted, const std::string& text) {
    const std::vector<std::string> values = Split(text, '\\');
    return wanted.empty() || std::ranges::any_of(values, [&](const std::string& value) { return Fits(wanted, value); });
}

/// Returns true if an item matches the keys. A server returns a data set with all its steps, also those that do not
/// match.
bool Matches(const cMWLItem& item, const WorklistKeys& keys) {
    const std::string day = Replace(item.SchProcStepStartDate, "-", "");
    return FitsAny(keys.modality, item.Modality) && FitsAny(keys.station, item.SchStatAE) &&
           FitsAny(keys.patient, item.PatientID) && (keys.firstDay.empty() || day >= keys.firstDay) &&
           (keys.lastDay.empty() || (!day.empty() && day <= keys.lastDay));
}

// ---- reading ----------------------------------------------------------------------------------------

bool IsFile(const fs::path& path) {
    std::error_code unknown;
    return fs::is_regular_file(path, unknown);
}

/// Reports something that was skipped.
void Tell(Program& program, const std::string& text) {
    fmt::print(stderr, "{}\n", Printable(text));
    program.exitCode = PartlyDone;
}

/// Returns the files in a folder and in all folders below, or the named file. Omits the lock file of a server's folder.
std::vector<fs::path> WorklistFiles(Program& program, const fs::path& where) {
    std::vector<fs::path> files;
    std::error_code unknown;
    if (!fs::is_directory(where, unknown)) {
        if (!IsFile(where))
            throw UserError(
                fmt::format("{} is not a file, a folder or a server AE@HOST:PORT (the AE title has at most "
                            "16 characters)",
                            Printable(where.string())));
        return {where};
    }
    FoundFiles found = FindFiles({where.string()});
    for (const auto& [folder, reason] : found.unreadable) Tell(program, fmt::format("{}: {}", folder.string(), reason));
    for (FoundFile& file : found.files)
        if (file.path.filename() != "lockfile") files.push_back(std::move(file.path));
    return files;
}

/// Returns for each file the reason why it can't be read as a worklist item; empty if it can. Each file is first read
/// in a worker process, because a damaged file may crash the process that reads it.
std::vector<std::string> RefusalsOf(const std::vector<fs::path>& files) {
    WorkerPool pool(
        [](const std::string& path) -> std::string {
            try {
                ReadWorklistFile(path);
                return {};
            } catch (const std::exception& refused) {
                return refused.what();
            }
        },
        1);
    for (const fs::path& file : files) pool.Submit(file.string());
    std::vector<std::string> refusals;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const auto answer = pool.Next([] { return false; });
        refusals.push_back(answer->failure.empty() ? answer->bytes : answer->failure);
    }
    return refusals;
}

WorklistItems FromFiles(Program& program, const std::string& where, const WorklistKeys& keys) {
    WorklistItems items;
    const std::vector<fs::path> files = WorklistFiles(program, where);
    const std::vector<std::string> refusals = RefusalsOf(files);
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (refusals[i].empty()) {
            for (WorklistEntry& entry : ReadWorklistFile(files[i]))
                if (Matches(*entry.item, keys)) items.push_back(std::move(entry));
            continue;
        }
        Tell(program, fmt::format("{}: not a worklist item: {}", files[i].string(), refusals[i]));
    }
    return items;
}

WorklistItems FromServer(Program& program, const WorklistAddress& server, const WorklistCall& call,
                         const WorklistKeys& keys) {
    WorklistAnswer answer = AskWorklist(server, call, keys);
    if (answer.broken > 0)
        Tell(program, fmt::format("oxclass: {} data sets of {} are not worklist items: {}", answer.broken,
                                  server.Text(), answer.reason));
    if (answer.cut)
        Tell(program, fmt::format("oxclass: {} has more than {} entries, and the others were not taken; ask for a "
                                  "day, a modality or a station, or for more with --most",
                                  server.Text(), call.mostAnswers));
    if (answer.guessed > 0)
        fmt::print(stderr, "oxclass: {} answers name no character set, so names in them may be wrong\n",
                   answer.guessed);
    std::erase_if(answer.items, [&](const WorklistEntry& entry) { return !Matches(*entry.item, keys); });
    return std::move(answer.items);
}

/// Sorts by day, time and patient and numbers the items from 1.
void Sort(WorklistItems& items) {
    const auto order = [](const cMWLItem& item) {
        return std::tie(item.SchProcStepStartDate, item.SchProcStepStartTime, item.PatientID, item.SchProcStepID);
    };
    std::stable_sort(items.begin(), items.end(),
                     [&](const WorklistEntry& a, const WorklistEntry& b) { return order(*a.item) < order(*b.item); });
    Long number = 0;
    for (const WorklistEntry& entry : items) entry.item->Key = CStr(++number);
}

List ListOf(const WorklistItems& items) {
    List list({{"number", "No."},
               {"date", "Date"},
               {"time", "Time"},
               {"patient", "Patient"},
               {"name", "Name"},
               {"born", "Born"},
               {"sex", "Sex"},
               {"modality", "Modality"},
               {"station", "Station"},
               {"procedure", "Procedure"},
               {"accession", "Accession"},
               {"step", "Step"}});
    for (const auto& [item, issuer] : items)
        list.Add({std::stoi(item->Key), item->SchProcStepStartDate, item->SchProcStepStartTime, item->PatientID,
                  item->PatientName, item->PatientBirthDate, item->PatientSex, item->Modality, item->SchStatAE,
                  item->SchProcStepDesc.empty() ? item->ReqProcDesc : item->SchProcStepDesc, item->Accession,
                  item->SchProcStepID});
    return list;
}

/// Returns the checksum that a position is valid with: it changes with everything that the list shows.
std::string ChecksumOf(const WorklistItems& items) {
    constexpr std::size_t shown = 8;
    const std::string text =
        ListOf(items).Rows().dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    return Sha256Of(text).substr(0, shown);
}

void Print(const WorklistItems& items, bool asJson) {
    const std::string checksum = ChecksumOf(items);
    if (asJson) {
        nlohmann::ordered_json rows = ListOf(items).Rows();
        for (auto& row : rows) row["entry"] = fmt::format("{}@{}", row["number"].get<int>(), checksum);
        return PrintJson(rows);
    }
    ListOf(items).Print(false, "The worklist is empty.");
    if (items.empty()) return;
    fmt::print(
        "Register an entry by its accession number, its step, or its position in this list: "
        "--register 1@{}\n",
        checksum);
}

// ---- registering ------------------------------------------------------------------------------------

PatientIdentity IdentityOf(const WorklistEntry& entry) {
    RadiographFile said;
    said.patientID = entry.item->PatientID;
    said.issuer = entry.issuer;
    said.patientName = entry.item->PatientName;
    said.birthDate = DayText(entry.item->PatientBirthDate);
    said.sex = entry.item->PatientSex;
    return Console::IdentityOf(said);
}

bool SamePerson(const WorklistEntry& a, const WorklistEntry& b) {
    const PatientIdentity one = IdentityOf(a), other = IdentityOf(b);
    return EqualsIgnoringCase(one.patientID, other.patientID) && Contradictions(one, other).empty();
}

/// Returns the entry at "3@1a2b3c4d"; the list must be the one that the checksum was printed with.
const WorklistEntry& EntryAt(const WorklistItems& items, const std::string& text, std::size_t at) {
    const Long position = NumberOf(text.substr(0, at), "an entry");
    if (!EqualsIgnoringCase(text.substr(at + 1), ChecksumOf(items)))
        throw UserError(
            fmt::format("the worklist has changed since {} was printed; leave --register out to see the list", text));
    if (position < 1 || static_cast<std::size_t>(position) > items.size())
        throw UserError(fmt::format("the worklist has no entry {}; leave --register out to see the list", position));
    return items[static_cast<std::size_t>(position - 1)];
}

bool IsNamed(const WorklistEntry& entry, const std::string& text) {
    return !text.empty() && (entry.item->Accession == text || entry.item->SchProcStepID == text);
}

/// Throws the `UserError` that lists all entries which the user may have meant, by their positions.
[[noreturn]] void RefuseAmbiguous(const WorklistItems& items, const std::string& text) {
    std::string candidates;
    for (const WorklistEntry& entry : items) {
        if (!IsNamed(entry, text)) continue;
        const cMWLItem& item = *entry.item;
        candidates += fmt::format("{}{}@{}: {} {}, born {}, {} {}", candidates.empty() ? "" : "; ", item.Key,
                                  ChecksumOf(items), item.PatientID, IdentityOf(entry).Name(),
                                  item.PatientBirthDate.empty() ? "?" : item.PatientBirthDate,
                                  item.SchProcStepStartDate, item.SchProcStepStartTime);
    }
    throw UserError(
        fmt::format("entries of several patients have the accession number or step {}, and none was "
                    "registered; name one by its position: {}",
                    text, candidates));
}

/// Returns the entry that the user named by its accession number, by its step, or by a position with a checksum.
const WorklistEntry& EntryNamed(const WorklistItems& items, const std::string& text) {
    const WorklistEntry* found = nullptr;
    for (const WorklistEntry& entry : items) {
        if (!IsNamed(entry, text)) continue;
        if (found && !SamePerson(*found, entry)) RefuseAmbiguous(items, text);
        found = &entry;
    }
    if (found) return *found;
    if (const auto at = text.find('@'); at != std::string::npos) return EntryAt(items, text, at);
    throw UserError(
        fmt::format("the worklist has no entry with the accession number or step \"{}\"; a position needs the "
                    "checksum that is printed below the list, as 1@{}",
                    text, items.empty() ? "1a2b3c4d" : ChecksumOf(items)));
}

/// Adds the identifiers of the entry that the patient lacks. Returns true if one was added.
bool TakeOverIdentifiers(cPatient& patient, cMWLItem& item) {
    std::vector<std::string> identifiers;
    for (const cStringItem& other : *item.OtherPatIDs()) identifiers.push_back(other.str);
    const Long before = patient.OtherIDs->Count();
    for (const std::string& left : AddOtherIDs(patient, identifiers))
        fmt::print(stderr, "oxclass: the other identifier {} is not stored: the column has no space for it\n",
                   Printable(left));
    return patient.OtherIDs->Count() > before;
}

void Fill(cPatient& patient, const WorklistEntry& entry) {
    const PatientIdentity person = IdentityOf(entry);
    patient.PatientID = UCase(person.patientID);
    if (!person.names.empty()) {
        patient.LastName = person.names.front().family;
        patient.FirstName = person.names.front().given;
    }
    patient.Sex = person.sex;
    patient.BirthDate = person.birthDate;
    patient.Address = entry.item->PatientAddress;
}

/// The arguments of `--register`: the entry, and the user's decision about its patient.
struct Registration {
    std::string entry, patient;
    bool newPatient = false;
};

/// Returns the entry's patient, loaded or new. If it contradicts the stored one, prints both people and returns null.
Ref<cPatient> PatientOf(const Ref<Connection>& con, const WorklistEntry& entry, const Registration& wanted) {
    if (!wanted.patient.empty()) return LoadPatient(con, wanted.patient);
    const PatientIdentity person = IdentityOf(entry);
    const PatientMatch match = MatchPatient(con, person);
    if (match.number != 0 && !wanted.newPatient) return PatientOfRow(con, match.number);
    if (match.IsNew() || wanted.newPatient) return New<cPatient>();
    for (const PatientIdentity& stored : match.refused)
        fmt::print(stderr, "{}",
                   SideBySide(stored, fmt::format("stored as #{}", stored.number), person, "in the worklist"));
    fmt::print(stderr, "oxclass: {}; nothing was registered. Decide with --register-as '#{}' or with --new-patient\n",
               match.contradicted ? "the entry contradicts the stored patient"
                                  : "there is not enough to tell whether the entry is of the stored patient",
               match.refused.front().number);
    return nullptr;
}

/// Stores the data of the entry that a known patient's row lacks, unless the two are different people. Returns a line
/// that names what was stored; empty for nothing.
std::string FillKnown(const Ref<Connection>& con, const cPatient& patient, const WorklistEntry& entry) {
    const PatientIdentity stored = ComparableIdentityOf(con, patient), person = IdentityOf(entry);
    if (!EqualsIgnoringCase(stored.patientID, person.patientID) || !Contradictions(stored, person).empty()) return {};
    return FillPatient(con, stored, person, "the worklist");
}

void Register(Program& program, const WorklistItems& items, const Registration& wanted) {
    const WorklistEntry& entry = EntryNamed(items, wanted.entry);
    if (entry.item->PatientID.empty())
        throw UserError("the entry has no patient ID, so its patient can't be found again");
    const Database database(program.options);
    Ref<cPatient> patient;
    bool isNew = false;
    std::string told;
    Write(database.Con(), [&] {
        patient = PatientOf(database.Con(), entry, wanted);
        if (!patient) return;
        isNew = patient->ID == 0;
        if (isNew) Fill(*patient, entry);
        if (TakeOverIdentifiers(*patient, *entry.item) || isNew) SavePatient(database.Con(), *patient);
        if (isNew)
            StoreIssuer(database.Con(), patient->ID, entry.issuer);
        else
            told = FillKnown(database.Con(), *patient, entry);
    });
    if (!patient) {
        program.exitCode = PartlyDone;
        return;
    }
    if (!told.empty()) fmt::print(stderr, "oxclass: {}\n", Printable(told));
    if (program.options.json)
        return PrintJson({{"patient", patient->PatientID}, {"number", patient->ID}, {"new", isNew}});
    fmt::print("{} {} is {}, number {}.\n", isNew ? "New patient" : "Patient", Printable(patient->PatientID),
               Printable(fmt::format("{}, {}", patient->LastName, patient->FirstName)), patient->ID);
}

void AddCallOptions(CLI::App& command, WorklistCall& call) {
    constexpr double longest = 3600;
    constexpr std::size_t most = 1'000'000;
    command.add_option("--timeout", call.seconds, "seconds for the whole query; default 60")
        ->check(CLI::Range(1.0, longest))
        ->type_name("SECONDS");
    command.add_option("--most", call.mostAnswers, "entries that are taken at most; default 5000")
        ->check(CLI::Range(std::size_t{1}, most))
        ->type_name("N");
    auto* tls =
        command.add_flag("--tls", call.tls, "encrypted; the server's certificate must be valid, and one for HOST");
    command.add_option("--tls-ca", call.authorities, "PEM file of trusted authorities; default: the system's")
        ->check(CLI::ExistingFile)
        ->type_name("FILE")
        ->needs(tls);
    auto* certificate = command.add_option("--tls-cert", call.certificate, "PEM file of the own certificate");
    auto* key = command.add_option("--tls-key", call.key, "PEM file of the own private key");
    certificate->check(CLI::ExistingFile)->type_name("FILE")->needs(tls)->needs(key);
    key->check(CLI::ExistingFile)->type_name("FILE")->needs(certificate);
}

/// Returns the modality in upper case. Throws `UserError` for a code that DICOM doesn't have.
std::string ModalityOf(const std::string& typed) {
    static const std::set<std::string> known{
        "AR",   "AU",  "BDUS", "BI",      "BMD", "CR", "CT",  "DG",  "DX",  "ECG", "EPS", "ES",  "GM",  "HD", "IO",
        "IVUS", "KER", "LEN",  "LS",      "MG",  "MR", "NM",  "OAM", "OCT", "OP",  "OPM", "OPT", "OPV", "OT", "PT",
        "PX",   "RF",  "RG",   "RTIMAGE", "SC",  "SM", "SMR", "SR",  "SRF", "TG",  "US",  "VA",  "XA",  "XC"};
    std::string code = UCase(Trim(typed));
    if (code.empty() || code.find_first_of("*?") != std::string::npos || known.contains(code)) return code;
    throw UserError(fmt::format("\"{}\" is not a modality; write IO, PX, DX, CT, XC or another code of DICOM", typed));
}

}  // namespace

void AddWorklist(Program& program) {
    struct Arguments {
        std::string where, days;
        WorklistCall call;
        WorklistKeys keys;
        Registration registration;
    };
    const auto given = std::make_shared<Arguments>();
    auto* command = program.app.add_subcommand(
        "worklist", "list the worklist of a DICOM server or of stored worklist files, register a patient");
    command->add_option("WHERE", given->where, "a server AE@HOST:PORT, or a file or folder")->required();
    command->add_option("--date", given->days, "day of the scheduled step: 2026-01-31, 2026-01-01..2026-01-31, today")
        ->type_name("DAY[..DAY]");
    command->add_option("--modality", given->keys.modality, "as IO, PX, DX")->type_name("CODE");
    command->add_option("--station", given->keys.station, "AE title of the scheduled station")->type_name("AE");
    command->add_option("--patient", given->keys.patient, "patient ID")->type_name("ID");
    command->add_option("--as", given->call.title, "AE title to ask with; default OXCLASS")->type_name("AE");
    AddCallOptions(*command, given->call);
    auto* entry = command->add_option("--register", given->registration.entry,
                                      "make or find the patient of an entry, named by its accession number, "
                                      "its step, or by a position with "
                                      "the checksum of the list, as 1@1a2b3c4d");
    entry->type_name("ENTRY");
    auto* known = command
                      ->add_option("--register-as", given->registration.patient,
                                   "with --register: the entry's patient is this one, whatever differs")
                      ->type_name("PATIENT")
                      ->needs(entry);
    command
        ->add_flag("--new-patient", given->registration.newPatient,
                   "with --register: the entry's patient is a new one, whoever has the same ID")
        ->needs(entry)
        ->excludes(known);
    command->footer("Example: oxclass worklist RIS@192.168.1.5:104 --date today --modality IO");
    command->callback([&program, given, command] {
        SetDays(given->keys, given->days);
        given->keys.modality = ModalityOf(given->keys.modality);
        constexpr std::size_t longestTitle = 16;
        if (given->call.title.empty() || given->call.title.size() > longestTitle)
            throw UserError("--as takes an AE title of 1 to 16 characters");
        const auto server = WorklistAddress::Of(given->where);
        WorklistItems items = server && !IsFile(given->where) ? FromServer(program, *server, given->call, given->keys)
                                                              : FromFiles(program, given->where, given->keys);
        Sort(items);
        if (command->count("--register") > 0) return Register(program, items, given->registration);
        Print(items, program.options.json);
    });
}

}  // namespace Console

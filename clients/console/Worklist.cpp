#include "console/Commands.h"
#include "console/FindPatient.h"
#include "console/Program.h"
#include "console/dicom/DicomFile.h"
#include "console/dicom/DicomValues.h"
#include "console/worklist/WorklistServer.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <algorithm>
#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

// ---- what is asked for ------------------------------------------------------------------------------

/// "20260131" of "2026-01-31" or "today".
std::string DigitsOfDay(const std::string& text) {
    if (EqualsIgnoringCase(text, "today")) return FormatDate(Now(), "yyyymmdd");
    const std::string dicom = DayText(text);
    const auto date = ParseDate(dicom.empty() ? text : dicom);
    if (!date || date->Days < 1)
        throw Complaint(
            fmt::format("\"{}\" is no day; write 2026-01-31, 2026-01-01..2026-01-31 or today", text));
    return FormatDate(*date, "yyyymmdd");
}

void SetDays(WorklistKeys& keys, const std::string& text) {
    if (text.empty()) return;
    const auto dots = text.find("..");
    if (dots == std::string::npos) {
        keys.firstDay = keys.lastDay = DigitsOfDay(text);
        return;
    }
    const std::string first = text.substr(0, dots), last = text.substr(dots + 2);
    if (!first.empty()) keys.firstDay = DigitsOfDay(first);
    if (!last.empty()) keys.lastDay = DigitsOfDay(last);
    if (!keys.firstDay.empty() && !keys.lastDay.empty() && keys.firstDay > keys.lastDay)
        throw Complaint(fmt::format("\"{}\" ends before it begins", text));
}

/// True if `text` is what is wanted, without regard to case; "*" stands for any characters, "?" for one.
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

/// True if nothing is wanted, or one of the values of `text` is.
bool FitsAny(const std::string& wanted, const std::string& text) {
    const std::vector<std::string> values = Split(text, '\\');
    return wanted.empty() ||
           std::ranges::any_of(values, [&](const std::string& value) { return Fits(wanted, value); });
}

/// True if an item is one that the keys ask for. A server gives a data set whole, also those of its steps
/// that nobody asked for.
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

/// The files of a folder, with all below it, or the one file. The lock of a server's folder is none.
std::vector<fs::path> WorklistFiles(const fs::path& where) {
    std::vector<fs::path> files;
    std::error_code unknown;
    if (!fs::is_directory(where, unknown)) {
        if (!IsFile(where))
            throw Complaint(
                fmt::format("{} is no file, no folder and no server AE@HOST:PORT (the AE title has at most "
                            "16 characters)",
                            Printable(where.string())));
        return {where};
    }
    for (const auto& entry : fs::recursive_directory_iterator(where))
        if (entry.is_regular_file() && entry.path().filename() != "lockfile") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

WorklistItems FromFiles(Program& program, const std::string& where, const WorklistKeys& keys) {
    WorklistItems items;
    for (const fs::path& path : WorklistFiles(where)) {
        try {
            for (auto& item : ReadWorklistFile(path))
                if (Matches(*item, keys)) items.push_back(item);
        } catch (const std::runtime_error& refused) {
            fmt::print(stderr, "{}: no worklist item: {}\n", Printable(path.string()), refused.what());
            program.exitCode = PartlyDone;
        }
    }
    return items;
}

WorklistItems FromServer(Program& program, const WorklistAddress& server, const std::string& callingTitle,
                         const WorklistKeys& keys) {
    WorklistAnswer answer = AskWorklist(server, callingTitle, keys);
    if (answer.broken > 0) {
        fmt::print(stderr, "oxclass: {} data sets of {} are no worklist items: {}\n", answer.broken,
                   server.Text(), answer.reason);
        program.exitCode = PartlyDone;
    }
    std::erase_if(answer.items, [&](const auto& item) { return !Matches(*item, keys); });
    return std::move(answer.items);
}

/// In the order of their days, times and patients, so that a number means the same item as long as the
/// worklist is the same.
void Sort(WorklistItems& items) {
    const auto order = [](const cMWLItem& item) {
        return std::tie(item.SchProcStepStartDate, item.SchProcStepStartTime, item.PatientID,
                        item.SchProcStepID);
    };
    std::stable_sort(items.begin(), items.end(),
                     [&](const auto& a, const auto& b) { return order(*a) < order(*b); });
    Long number = 0;
    for (const auto& item : items) item->Key = CStr(++number);
}

void Print(const WorklistItems& items, bool asJson) {
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
               {"accession", "Accession"}});
    for (const auto& item : items)
        list.Add(
            {std::stoi(item->Key), item->SchProcStepStartDate, item->SchProcStepStartTime, item->PatientID,
             item->PatientName, item->PatientBirthDate, item->PatientSex, item->Modality, item->SchStatAE,
             item->SchProcStepDesc.empty() ? item->ReqProcDesc : item->SchProcStepDesc, item->Accession});
    list.Print(asJson, "The worklist is empty.");
}

// ---- registering ------------------------------------------------------------------------------------

/// Adds those identifiers of the item that the patient lacks; true if there was one.
bool TakeOverIdentifiers(cPatient& patient, cMWLItem& item) {
    const Long before = patient.OtherIDs->Count();
    Long place = before;
    for (const cStringItem& other : *item.OtherPatIDs()) {
        String id = WithoutQuotes(other.str);
        if (EqualsIgnoringCase(id, patient.PatientID)) continue;
        while (patient.OtherIDs->Members().HasKey("K" + CStr(place))) ++place;
        patient.OtherIDs->Add(id, place, "K" + CStr(place));
    }
    return patient.OtherIDs->Count() > before;
}

void Fill(cPatient& patient, const cMWLItem& item) {
    const PersonName name = SplitPersonName(item.PatientName);
    patient.PatientID = UCase(item.PatientID);
    patient.LastName = name.family;
    patient.FirstName = name.given;
    patient.Sex = WithoutQuotes(Left(item.PatientSex, 1));
    if (const auto born = ParseDate(item.PatientBirthDate)) patient.BirthDate = *born;
    patient.Address = item.PatientAddress;
}

/// A save writes every row of the identifier, so two patients of one identifier would become one.
void RequireOnlyOne(const Clinic& clinic, const cPatient& patient) {
    const Long rows = clinic.Number(sql("SELECT count(*) FROM Patient_T WHERE PersonNr_CH = '",
                                        UCase(FixSqlString(patient.PatientID)), "'"));
    if (rows > 1)
        throw Complaint(fmt::format("{} patients have the ID {}; give them different ones first", rows,
                                    patient.PatientID));
}

void Register(const Options& options, const WorklistItems& items, int number) {
    if (number < 1 || static_cast<std::size_t>(number) > items.size())
        throw Complaint(
            fmt::format("the worklist has no item {}; leave --register out to see the list", number));
    cMWLItem& item = *items[static_cast<std::size_t>(number - 1)];
    if (item.PatientID.empty())
        throw Complaint("the item has no patient ID, so its patient can't be found again");
    const Clinic clinic(options);
    clinic.Con()->BeginTrans();
    const Ref<cPatient> patient = New<cPatient>();
    const bool known = FindPatient(clinic.Con(), *patient, item.PatientID);
    if (!known) Fill(*patient, item);
    if (TakeOverIdentifiers(*patient, item) || !known) {
        RequireStorable(*patient);
        RequireOnlyOne(clinic, *patient);
        patient->Save(clinic.Con());
    }
    clinic.Con()->CommitTrans();
    if (options.json)
        return PrintJson({{"patient", patient->PatientID}, {"number", patient->ID}, {"new", !known}});
    fmt::print("{} {} is {}, number {}.\n", known ? "Patient" : "New patient", patient->PatientID,
               Printable(fmt::format("{}, {}", patient->LastName, patient->FirstName)), patient->ID);
}

}  // namespace

void AddWorklist(Program& program) {
    struct Arguments {
        std::string where, days, callingTitle = "OXCLASS";
        WorklistKeys keys;
        int number = 0;
    };
    const auto given = std::make_shared<Arguments>();
    auto* command = program.app.add_subcommand(
        "worklist", "list the worklist of a DICOM server or of stored worklist files, register a patient");
    command->add_option("WHERE", given->where, "a server AE@HOST:PORT, or a file or folder")->required();
    command
        ->add_option("--date", given->days,
                     "day of the scheduled step: 2026-01-31, 2026-01-01..2026-01-31, today")
        ->type_name("DAY[..DAY]");
    command->add_option("--modality", given->keys.modality, "as IO, PX, DX")->type_name("CODE");
    command->add_option("--station", given->keys.station, "AE title of the scheduled station")
        ->type_name("AE");
    command->add_option("--patient", given->keys.patient, "patient ID")->type_name("ID");
    command->add_option("--as", given->callingTitle, "AE title to ask with; default OXCLASS")
        ->type_name("AE");
    command->add_option("--register", given->number, "make or find the patient of this item of the list")
        ->type_name("NUMBER");
    command->footer("Example: oxclass worklist RIS@192.168.1.5:104 --date today --modality IO");
    command->callback([&program, given, command] {
        SetDays(given->keys, given->days);
        constexpr std::size_t longestTitle = 16;
        if (given->callingTitle.empty() || given->callingTitle.size() > longestTitle)
            throw Complaint("--as takes an AE title of 1 to 16 characters");
        const auto server = WorklistAddress::Of(given->where);
        WorklistItems items = server && !IsFile(given->where)
                                  ? FromServer(program, *server, given->callingTitle, given->keys)
                                  : FromFiles(program, given->where, given->keys);
        Sort(items);
        if (command->count("--register") > 0) return Register(program.options, items, given->number);
        Print(items, program.options.json);
    });
}

}  // namespace Console

#include "console/Commands.h"
#include "console/Fields.h"
#include "console/WriteTransaction.h"
#include "people/cClinics.h"
#include "people/cDoctors.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;
using Json = nlohmann::ordered_json;

// ---- doctors ----------------------------------------------------------------------------------------

constexpr TextField<cDoctor> DoctorTexts[] = {
    {"DrLastName", &cDoctor::DrLastName}, {"DrFirstName", &cDoctor::DrFirstName},     {"DrPrefix", &cDoctor::DrPrefix},
    {"DrName", &cDoctor::DrName},         {"DrContactInfo", &cDoctor::DrContactInfo}, {"DrEMail", &cDoctor::DrEMail},
    {"DrLogin", &cDoctor::DrLogin},
};

constexpr struct {
    DoctorType type;
    const char* name;
} DoctorTypes[] = {{drt_Unknown, "unknown"}, {drt_Local, "local"}, {drt_Remote, "remote"}, {drt_Web, "web"}};

std::string NameOf(DoctorType type) {
    for (const auto& known : DoctorTypes)
        if (known.type == type) return known.name;
    return CStr(Long{type});
}

DoctorType TypeNamed(const std::string& name) {
    for (const auto& known : DoctorTypes)
        if (EqualsIgnoringCase(known.name, name)) return known.type;
    throw UserError(fmt::format("\"{}\" is not a type of doctor; the types are unknown, local, remote and web", name));
}

void ListDoctors(const Options& options) {
    const Database database(options);
    const Ref<cDoctors> doctors = New<cDoctors>();
    doctors->GetAllDoctors(database.Con());
    std::map<Long, Long> patients;
    const Ref<Recordset> counts =
        database.Read("SELECT RespDoctor, count(*) FROM Patient_T WHERE RespDoctor <> 0 GROUP BY RespDoctor");
    for (; !counts->Eof(); counts->MoveNext()) patients[counts->Fields(0).As<Long>()] = counts->Fields(1).As<Long>();
    List list({{"number", "Number"},
               {"last_name", "Last name"},
               {"first_name", "First name"},
               {"name", "Name"},
               {"type", "Type"},
               {"email", "E-mail"},
               {"patients", "Patients"}});
    for (const cDoctor& doctor : *doctors)
        list.Add({doctor.drID, doctor.DrLastName, doctor.DrFirstName, doctor.DrName, NameOf(doctor.DrType),
                  doctor.DrEMail, patients[doctor.drID]});
    list.Print(options, "There are no doctors yet; make one with: oxclass doctor new DrLastName=Ek");
}

void SetFields(cDoctor& doctor, const std::vector<std::string>& assignments) {
    for (const std::string& assignment : assignments) {
        const auto [name, value] = AssignmentOf(assignment);
        if (SetText<cDoctor>(doctor, DoctorTexts, name, value)) continue;
        if (!EqualsIgnoringCase(name, "DrType"))
            throw UserError(
                fmt::format("a doctor has no field \"{}\"; oxclass doctor show NUMBER shows them all", name));
        doctor.DrType = TypeNamed(value);
    }
}

Ref<cDoctor> LoadDoctor(const Database& database, const std::string& number) {
    Ref<cDoctor> doctor = New<cDoctor>();
    if (!doctor->LoadDoctor(NumberOf(number, "a doctor"), database.Con()))
        throw UserError(fmt::format("there is no doctor {}; see: oxclass doctors", number));
    return doctor;
}

void Print(const Options& options, const cDoctor& doctor) {
    Json shown;
    shown["Number"] = doctor.drID;
    shown["DICOM name"] = doctor.GetDCMName();
    AddTexts<cDoctor>(shown, doctor, DoctorTexts);
    shown["DrType"] = NameOf(doctor.DrType);
    shown["drGUID"] = doctor.drGUID;
    PrintFields(shown, options.json);
}

/// Stores a doctor and shows it as it is stored, with its texts cut and its new GUID.
void Store(const Options& options, const Database& database, cDoctor& doctor) {
    if (Trim(doctor.DrLastName + doctor.DrFirstName + doctor.DrName).empty())
        throw UserError("a doctor needs a name; set DrLastName, DrFirstName or DrName");
    doctor.SaveDoctor(database.Con());
    Print(options, *LoadDoctor(database, CStr(doctor.drID)));
}

void NewDoctor(const Options& options, const std::vector<std::string>& assignments) {
    const Database database(options);
    const Ref<cDoctor> doctor = New<cDoctor>();
    doctor->DrType = drt_Local;
    SetFields(*doctor, assignments);
    Store(options, database, *doctor);
}

void DeleteDoctor(const Options& options, const std::string& number, bool force) {
    const Database database(options);
    Ref<cDoctor> doctor;
    Long patients = 0;
    Write(database.Con(), [&] {
        doctor = LoadDoctor(database, number);
        patients = doctor->PatientCount(database.Con());
        if (patients > 0 && !force)
            throw UserError(
                fmt::format("doctor {} is the doctor of {} and was not deleted; set another with: oxclass patient ID "
                            "RespDoctor=NUMBER, or use --force",
                            doctor->drID, patients == 1 ? "1 patient" : fmt::format("{} patients", patients)));
        doctor->DeleteDoctor(database.Con());
    });
    if (patients > 0)
        fmt::print(
            stderr, "oxclass: {} still name{} doctor {}; set another with: oxclass patient ID RespDoctor=NUMBER\n",
            patients == 1 ? "1 patient" : fmt::format("{} patients", patients), patients == 1 ? "s" : "", doctor->drID);
    if (options.json) return PrintJson({{"deleted", doctor->drID}, {"patients", patients}});
    fmt::print("Doctor {} is deleted.\n", doctor->drID);
}

// ---- clinics ----------------------------------------------------------------------------------------

constexpr TextField<cClinic> ClinicTexts[] = {
    {"ClinicName", &cClinic::ClinicName},
    {"OrgNumber", &cClinic::OrgNumber},
    {"StreetAddress", &cClinic::StreetAddress},
    {"ZipCode", &cClinic::ZipCode},
    {"City", &cClinic::City},
    {"Telephone", &cClinic::Telephone},
    {"Remarks16", &cClinic::Remarks16},
};

void ListClinics(const Options& options) {
    const Database database(options);
    const Ref<cClinics> clinics = New<cClinics>();
    clinics->GetAllClinics(database.Con());
    const Ref<cClinic> headOffice = clinics->GetHQClinic(database.Con());
    List list({{"number", "Number"},
               {"name", "Name"},
               {"head_office", "Head office"},
               {"street", "Street"},
               {"zip", "Zip code"},
               {"city", "City"},
               {"telephone", "Telephone"}});
    for (const cClinic& one : *clinics)
        list.Add({one.ID, one.ClinicName, &one == headOffice.Get(), one.StreetAddress, one.ZipCode, one.City,
                  one.Telephone});
    list.Print(options, "There are no clinics.");
}

void SetFields(cClinic& clinic, const std::vector<std::string>& assignments) {
    for (const std::string& assignment : assignments) {
        const auto [name, value] = AssignmentOf(assignment);
        if (!SetText<cClinic>(clinic, ClinicTexts, name, value))
            throw UserError(
                fmt::format("a clinic has no field \"{}\"; oxclass clinic show NUMBER shows them all", name));
    }
}

Ref<cClinic> LoadClinic(const Database& database, const std::string& number) {
    Ref<cClinic> clinic = New<cClinic>();
    if (!clinic->LoadClinic(NumberOf(number, "a clinic"), database.Con()))
        throw UserError(fmt::format("there is no clinic {}; see: oxclass clinics", number));
    return clinic;
}

bool IsHeadOffice(const cClinic& clinic) { return EqualsIgnoringCase(clinic.ClinicName, cClinics::HeadOffice); }

void Print(const Options& options, const cClinic& clinic) {
    Json shown;
    shown["Number"] = clinic.ID;
    shown["HeadOffice"] = IsHeadOffice(clinic);
    AddTexts<cClinic>(shown, clinic, ClinicTexts);
    PrintFields(shown, options.json);
}

void RequireName(const cClinic& clinic) {
    if (Trim(clinic.ClinicName).empty()) throw UserError("a clinic needs a name; set ClinicName");
}

/// Stores a clinic and shows it as it is stored, with its texts cut.
void Store(const Options& options, const Database& database, cClinic& clinic) {
    RequireName(clinic);
    clinic.SaveClinic(database.Con());
    Print(options, *LoadClinic(database, CStr(clinic.ID)));
}

void NewClinic(const Options& options, const std::vector<std::string>& assignments) {
    const Database database(options);
    const Ref<cClinic> clinic = New<cClinic>();
    SetFields(*clinic, assignments);
    RequireName(*clinic);
    New<cClinics>()->GetAllClinics(database.Con());  // the head office comes first
    Store(options, database, *clinic);
}

void DeleteClinic(const Options& options, const std::string& number, bool force) {
    const Database database(options);
    const Ref<cClinic> clinic = LoadClinic(database, number);
    if (IsHeadOffice(*clinic) && !force)
        throw UserError(fmt::format("clinic {} is the head office and was not deleted; use --force", clinic->ID));
    clinic->DeleteClinic(database.Con());
    if (options.json) return PrintJson({{"deleted", clinic->ID}});
    fmt::print("Clinic {} is deleted{}.\n", clinic->ID, IsHeadOffice(*clinic) ? "; it was the head office" : "");
}

// ---- the commands of doctors and clinics -------------------------------------------------------------

using Assignments = std::vector<std::string>;

template <auto Load>
void SetRecord(const Options& options, const std::string& number, const Assignments& assignments) {
    const Database database(options);
    const auto record = Load(database, number);
    SetFields(*record, assignments);
    Store(options, database, *record);
}

template <auto Load>
void ShowRecord(const Options& options, const std::string& number) {
    const Database database(options);
    Print(options, *Load(database, number));
}

/// The help of the commands of one kind of record.
struct RecordHelp {
    std::string name;  ///< of the record and of the command, as in "doctor"
    const char* newHelp;
    const char* newExample;
    const char* setExample;  ///< the arguments: a number and an assignment
    const char* fields;
    const char* deleteHelp;
    const char* forceHelp;
};

/// The functions that the commands for one kind of record call.
struct RecordCommands {
    void (*create)(const Options&, const Assignments&);
    void (*set)(const Options&, const std::string& number, const Assignments&);
    void (*show)(const Options&, const std::string& number);
    void (*remove)(const Options&, const std::string& number, bool force);
};

/// Adds the command of one kind of record with its commands "new", "set", "show" and "delete".
void AddRecordCommands(Program& program, const RecordHelp& help, const RecordCommands& run) {
    struct Arguments {
        std::string number;
        Assignments assignments;
        bool force = false;
    };
    const auto given = std::make_shared<Arguments>();
    const auto& options = program.options;
    auto* record = program.app.add_subcommand(help.name, fmt::format("make, set, show or delete a {}", help.name));
    record->require_subcommand(1);
    record->footer(fmt::format("Example: {}", help.newExample));
    const std::string number(help.setExample, std::string_view(help.setExample).find(' '));
    const auto numbered = [&](const char* name, const std::string& what, const std::string& example) {
        auto* command = record->add_subcommand(name, what);
        command->add_option("NUMBER", given->number, fmt::format("number of a {0}, as oxclass {0}s lists", help.name))
            ->required();
        command->footer(fmt::format("Example: oxclass {} {} {}", help.name, name, example));
        return command;
    };
    const auto fields = [&](CLI::App* command) {
        command->add_option("FIELD=VALUE", given->assignments, fmt::format("fields to set: {}", help.fields))
            ->required();
    };
    auto* fresh = record->add_subcommand("new", help.newHelp);
    fields(fresh);
    fresh->footer(fmt::format("Example: {}", help.newExample));
    fresh->callback([&options, given, run] { run.create(options, given->assignments); });
    auto* set = numbered("set", fmt::format("set single fields of a {}", help.name), help.setExample);
    fields(set);
    set->callback([&options, given, run] { run.set(options, given->number, given->assignments); });
    numbered("show", fmt::format("show a {}", help.name), number)->callback([&options, given, run] {
        run.show(options, given->number);
    });
    auto* remove = numbered("delete", help.deleteHelp, number);
    remove->add_flag("--force", given->force, help.forceHelp);
    remove->callback([&options, given, run] { run.remove(options, given->number, given->force); });
}

void AddDoctorCommands(Program& program) {
    auto* doctors = program.app.add_subcommand("doctors", "list the doctors by name, with how many patients each has");
    AddListOptions(program, doctors);
    doctors->footer("Example: oxclass doctors --json");
    doctors->callback([&program] { ListDoctors(program.options); });
    AddRecordCommands(program,
                      {.name = "doctor",
                       .newHelp = "make a doctor; texts too long for their column are cut",
                       .newExample = "oxclass doctor new DrLastName=Ek DrFirstName=Anna DrPrefix=Dr",
                       .setExample = "1 DrType=remote",
                       .fields = "DrLastName, DrFirstName, DrPrefix, DrName, DrContactInfo, DrEMail, DrLogin, DrType",
                       .deleteHelp = "delete a doctor who has no patients",
                       .forceHelp = "also a doctor whom patients still name"},
                      {NewDoctor, SetRecord<LoadDoctor>, ShowRecord<LoadDoctor>, DeleteDoctor});
}

void AddClinicCommands(Program& program) {
    auto* clinics = program.app.add_subcommand("clinics", "list the clinics by name, the head office marked");
    AddListOptions(program, clinics);
    clinics->footer("The first listing makes the head office, named __HQ.\nExample: oxclass clinics");
    clinics->callback([&program] { ListClinics(program.options); });
    AddRecordCommands(program,
                      {.name = "clinic",
                       .newHelp = "make a clinic; texts of more than 50 characters are cut",
                       .newExample = "oxclass clinic new ClinicName=\"Folktand Nord\" City=Lund",
                       .setExample = "2 City=Lund",
                       .fields = "ClinicName, OrgNumber, StreetAddress, ZipCode, City, Telephone, Remarks16",
                       .deleteHelp = "delete a clinic",
                       .forceHelp = "also the head office"},
                      {NewClinic, SetRecord<LoadClinic>, ShowRecord<LoadClinic>, DeleteClinic});
}

// ---- identifiers ------------------------------------------------------------------------------------

void PrintGUIDs(const Options& options, int count) {
    const Ref<cDoctors> doctors = New<cDoctors>();
    Json all = Json::array();
    for (int i = 0; i < count; ++i) {
        all.push_back(doctors->GetGUID());
        if (all.back().get<std::string>().empty()) throw UserError("the system returned no identifier");
    }
    if (options.json) return PrintJson(all);
    for (const auto& guid : all) fmt::print("{}\n", guid.get<std::string>());
}

}  // namespace

void AddStaff(Program& program) {
    AddDoctorCommands(program);
    AddClinicCommands(program);
    const auto count = std::make_shared<int>(1);
    auto* guid = program.app.add_subcommand("guid", "make new GUIDs, as doctors have them; needs no database");
    guid->add_option("--count", *count, "how many")->type_name("N")->check(CLI::Range(1, 1'000'000));
    guid->footer("Example: oxclass guid --count 3");
    guid->callback([&program, count] { PrintGUIDs(program.options, *count); });
}

}  // namespace Console

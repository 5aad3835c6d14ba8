#include "console/Commands.h"
#include "console/Fields.h"
#include "console/WriteTransaction.h"
#include "console/patients/PatientSearch.h"
#include "console/patients/PatientStore.h"
#include "console/patients/TypedDate.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <fmt/format.h>
#include <set>

namespace Console {
namespace {

using namespace OXClass;
using Json = nlohmann::ordered_json;

/// Returns the numbers of the patients that fit a text.
std::set<Long> NumbersOf(const Ref<Connection>& con, const std::string& text) {
    std::set<Long> numbers;
    for (const FoundPatient& patient : FindPatients(con, text)) numbers.insert(patient.number);
    return numbers;
}

void ListPatients(const Options& options, const std::string& text) {
    const Database database(options);
    const std::set<Long> wanted = text.empty() ? std::set<Long>() : NumbersOf(database.Con(), text);
    const Ref<Recordset> rows = database.Read(
        "SELECT PatientID, PersonNr_CH, LastName_NVC, "
        "FirstName_NVC, Birthdate_CH, Sex_CH, (SELECT count(*) "
        "FROM Study_T "
        "WHERE Study_T.PatientID = Patient_T.PatientID) AS Studies "
        "FROM Patient_T ORDER BY LastName_NVC, "
        "FirstName_NVC, "
        "PatientID");
    List list({{"number", "Number"},
               {"id", "ID"},
               {"last_name", "Last name"},
               {"first_name", "First name"},
               {"born", "Born"},
               {"sex", "Sex"},
               {"studies", "Studies"}});
    for (; !rows->Eof(); rows->MoveNext()) {
        if (!text.empty() && !wanted.contains(rows->Fields(0).As<Long>())) continue;
        std::vector<Json> row;
        row.reserve(static_cast<std::size_t>(rows->FieldCount()));
        for (Long i = 0; i < rows->FieldCount(); ++i) row.push_back(AsJson(rows->Fields(i).Value()));
        list.Add(std::move(row));
    }
    list.Print(options, text.empty() ? "There are no patients yet; import some with: oxclass import FOLDER"
                                     : "No patient matches \"" + text + "\".");
}

constexpr TextField<cPatient> TextFields[] = {
    {"LastName", &cPatient::LastName},   {"FirstName", &cPatient::FirstName}, {"Sex", &cPatient::Sex},
    {"Address", &cPatient::Address},     {"TelOne", &cPatient::TelOne},       {"TelTwo", &cPatient::TelTwo},
    {"TelMobile", &cPatient::TelMobile}, {"EMail", &cPatient::EMail},         {"Comments", &cPatient::Comments},
    {"IDImg", &cPatient::IDImg},
};

/// Returns the day that a person typed; the zero date for an empty text.
Date DateOf(const std::string& value) { return value.empty() ? Date{} : TypedDate(value); }

Date BirthDateOf(const std::string& value) {
    const Date date = DateOf(value);
    if (date > Now()) throw UserError(fmt::format("the birth date {} is in the future", DateText(date)));
    return date;
}

std::string SexOf(const std::string& value) {
    std::string letter = UCase(Trim(value));
    if (!letter.empty() && letter != "M" && letter != "F" && letter != "O")
        throw UserError(fmt::format("\"{}\" is not a sex; write M, F or O, or nothing", value));
    return letter;
}

Long DoctorOf(const Database& database, const std::string& value) {
    const Long doctor = value.empty() ? 0 : NumberOf(value, "a doctor");
    if (doctor != 0 && database.Number(sql("SELECT count(*) FROM Doctor_T WHERE drID = ", doctor)) == 0)
        throw UserError(fmt::format("there is no doctor {}; see: oxclass doctors", doctor));
    return doctor;
}

void SetIssuer(const Database& database, const cPatient& patient, const std::string& value) {
    if (Trim(value).empty()) return ForgetIssuer(database.Con(), patient.ID);
    StoreIssuer(database.Con(), patient.ID, value);
}

void SetField(const Database& database, cPatient& patient, const std::string& assignment) {
    const auto [name, value] = AssignmentOf(assignment);
    if (EqualsIgnoringCase(name, "PatientID")) return ChangePatientID(database.Con(), patient, value);
    if (EqualsIgnoringCase(name, "Issuer")) return SetIssuer(database, patient, value);
    if (EqualsIgnoringCase(name, "Sex")) return void(patient.Sex = SexOf(value));
    if (SetText<cPatient>(patient, TextFields, name, value)) return;
    if (EqualsIgnoringCase(name, "BirthDate")) return void(patient.BirthDate = BirthDateOf(value));
    if (EqualsIgnoringCase(name, "PrevXrayDate")) return void(patient.PrevXrayDate = DateOf(value));
    if (EqualsIgnoringCase(name, "RespDoctor")) return void(patient.RespDoctor = DoctorOf(database, value));
    if (EqualsIgnoringCase(name, "OtherIDs")) return patient.OtherIDs->FillFromString(value);
    throw UserError(fmt::format("a patient has no field \"{}\"; oxclass patient ID shows them all", name));
}

Json Shown(const Database& database, const cPatient& patient) {
    Json json;
    json["Number"] = patient.ID;
    json["PatientID"] = patient.PatientID;
    json["Issuer"] = IdentityOf(database.Con(), patient).issuer;
    AddTexts<cPatient>(json, patient, TextFields);
    json["BirthDate"] = DateText(patient.BirthDate);
    json["PrevXrayDate"] = DateText(patient.PrevXrayDate);
    json["RespDoctor"] = patient.RespDoctor;
    json["OtherIDs"] = patient.OtherIDs->GetAllAsString();
    return json;
}

/// Changes fields of one row, read and written in one transaction.
void SetPatient(const Database& database, const std::string& id, const std::vector<std::string>& assignments) {
    Write(database.Con(), [&] {
        const Ref<cPatient> patient = LoadPatient(database, id);
        for (const std::string& assignment : assignments) SetField(database, *patient, assignment);
        SavePatient(database.Con(), *patient);
    });
}

/// Inserts a patient with these fields. Throws `UserError` if a patient already has the identifier.
Long InsertPatient(const Database& database, const std::vector<std::string>& assignments) {
    const Ref<cPatient> patient = New<cPatient>();
    std::string issuer;
    for (const std::string& assignment : assignments) {
        const auto [name, value] = AssignmentOf(assignment);
        if (EqualsIgnoringCase(name, "PatientID"))
            patient->PatientID = UCase(Trim(value));
        else if (EqualsIgnoringCase(name, "Issuer"))
            issuer = value;
        else
            SetField(database, *patient, assignment);
    }
    RequireStorable(*patient);
    const auto others = PatientsWithID(database.Con(), patient->PatientID);
    if (!others.empty())
        throw UserError(fmt::format("a patient has the ID {} already: {}; nothing was stored", patient->PatientID,
                                    ShortName(IdentityOf(database.Con(), *others.front()))));
    SavePatient(database.Con(), *patient);
    StoreIssuer(database.Con(), patient->ID, issuer);
    return patient->ID;
}

void NewPatient(const Options& options, const std::vector<std::string>& assignments) {
    const Database database(options);
    Long number = 0;
    Write(database.Con(), [&] { number = InsertPatient(database, assignments); });
    PrintFields(Shown(database, *LoadPatient(database, fmt::format("#{}", number))), options.json);
}

void ShowPatient(const Options& options, const std::string& id, const std::vector<std::string>& assignments) {
    const Database database(options);
    const Long number = LoadPatient(database, id)->ID;
    const std::string row = fmt::format("#{}", number);
    if (!assignments.empty()) SetPatient(database, row, assignments);
    PrintFields(Shown(database, *LoadPatient(database, row)), options.json);
}

}  // namespace

void AddPatients(Program& program) {
    struct Arguments {
        std::string text;
        std::vector<std::string> assignments;
    };
    const auto given = std::make_shared<Arguments>();
    auto* list = program.app.add_subcommand("patients", "list the patients, or those that fit a text");
    list->add_option("TEXT", given->text, "parts of a name, of an ID or of the birth date; all of them must fit");
    AddListOptions(program, list);
    list->footer(
        "Letter case and accents don't matter.\n"
        "Example: oxclass patients ander\n"
        "Example: oxclass patients \"ek anna 1980\" --sort born --limit 20");
    list->callback([&program, given] { ListPatients(program.options, given->text); });

    auto* one = program.app.add_subcommand("patient", "show a patient, set single fields, or make a new patient");
    one->add_option("ID", given->text, PatientHelp);
    one->add_option("FIELD=VALUE", given->assignments, "fields to set, by the names that are shown");
    one->footer(
        "Example: oxclass patient TEST-FMX18 LastName=Ek BirthDate=1980-01-31\n"
        "Example: oxclass patient new PatientID=19800131-1234 LastName=Ek FirstName=Anna BirthDate=1980-01-31 Sex=F");
    one->callback([&program, given, one] {
        if (!one->get_subcommands().empty()) return;
        if (given->text.empty()) throw CLI::RequiredError("ID");
        ShowPatient(program.options, given->text, given->assignments);
    });

    auto* fresh = one->add_subcommand("new", "make a patient whose ID no other patient has");
    fresh
        ->add_option("FIELD=VALUE", given->assignments, "fields to set: PatientID, LastName, FirstName, BirthDate, ...")
        ->required();
    fresh->footer("Example: oxclass patient new PatientID=19800131-1234 LastName=Ek BirthDate=1980-01-31 Sex=F");
    fresh->callback([&program, given] { NewPatient(program.options, given->assignments); });
}

}  // namespace Console

#include "console/Commands.h"
#include "console/Fields.h"
#include "console/WriteTransaction.h"
#include "console/patients/PatientStore.h"
#include "console/patients/TypedDate.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;
using Json = nlohmann::ordered_json;

/// Lists the patients that have a text which contains `text`, without regard to case; all for an empty text.
void ListPatients(const Options& options, const std::string& text) {
    const Database database(options);
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
        std::vector<Json> row;
        String texts;
        for (Long i = 0; i < rows->FieldCount(); ++i) {
            row.push_back(AsJson(rows->Fields(i).Value()));
            if (row.back().is_string()) texts += row.back().get<std::string>() + " ";
        }
        if (Contains(UCase(texts), UCase(text))) list.Add(std::move(row));
    }
    list.Print(options.json, text.empty() ? "There are no patients yet; import some with: oxclass import FOLDER"
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
    const std::string letter = UCase(Trim(value));
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
    auto* list = program.app.add_subcommand("patients", "list the patients, or those whose name or ID holds a text");
    list->add_option("TEXT", given->text, "a part of the name or of the ID");
    list->footer("Example: oxclass patients ander");
    list->callback([&program, given] { ListPatients(program.options, given->text); });

    auto* one = program.app.add_subcommand("patient", "show a patient, and set single fields");
    one->add_option("ID", given->text, "the patient's ID, or # and the number")->required();
    one->add_option("FIELD=VALUE", given->assignments, "fields to set, by the names that are shown");
    one->footer("Example: oxclass patient TEST-FMX18 LastName=Ek BirthDate=1980-01-31");
    one->callback([&program, given] { ShowPatient(program.options, given->text, given->assignments); });
}

}  // namespace Console

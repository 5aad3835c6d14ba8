#include "console/Commands.h"
#include "console/Fields.h"
#include "console/FindPatient.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;
using Json = nlohmann::ordered_json;

/// The patients of whom any of the texts holds `text`, without regard to case; all for an empty text.
void ListPatients(const Options& options, const std::string& text) {
    const Clinic clinic(options);
    const Ref<Recordset> rows = clinic.Read(
        "SELECT PatientID, PersonNr_CH, LastName_NVC, FirstName_NVC, Birthdate_CH, Sex_CH, (SELECT count(*) "
        "FROM Study_T "
        "WHERE Study_T.PatientID = Patient_T.PatientID) AS Studies FROM Patient_T ORDER BY LastName_NVC, "
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
    list.Print(options.json, text.empty()
                                 ? "There are no patients yet; import some with: oxclass import FOLDER"
                                 : "No patient matches \"" + text + "\".");
}

constexpr TextField<cPatient> TextFields[] = {
    {"LastName", &cPatient::LastName},
    {"FirstName", &cPatient::FirstName},
    {"Sex", &cPatient::Sex},
    {"Address", &cPatient::Address},
    {"TelOne", &cPatient::TelOne},
    {"TelTwo", &cPatient::TelTwo},
    {"TelMobile", &cPatient::TelMobile},
    {"EMail", &cPatient::EMail},
    {"Comments", &cPatient::Comments},
    {"IDImg", &cPatient::IDImg},
};

Date DateOf(const std::string& value) {
    if (value.empty()) return {};
    const auto date = ParseDate(value);
    if (!date || (date->Days > -1 && date->Days < 1))
        throw Complaint(fmt::format("\"{}\" is no date; write it as 1980-01-31", value));
    return *date;
}

void SetField(cPatient& patient, const std::string& assignment) {
    const auto [name, value] = AssignmentOf(assignment);
    if (SetText<cPatient>(patient, TextFields, name, value)) return;
    if (EqualsIgnoringCase(name, "BirthDate")) return void(patient.BirthDate = DateOf(value));
    if (EqualsIgnoringCase(name, "PrevXrayDate")) return void(patient.PrevXrayDate = DateOf(value));
    if (EqualsIgnoringCase(name, "RespDoctor"))
        return void(patient.RespDoctor = value.empty() ? 0 : NumberOf(value, "a doctor"));
    if (EqualsIgnoringCase(name, "OtherIDs")) return patient.OtherIDs->FillFromString(value);
    throw Complaint(fmt::format("a patient has no field \"{}\"; oxclass patient ID shows them all", name));
}

Json Shown(const cPatient& patient) {
    Json json;
    json["Number"] = patient.ID;
    json["PatientID"] = patient.PatientID;
    AddTexts<cPatient>(json, patient, TextFields);
    json["BirthDate"] = DateText(patient.BirthDate);
    json["PrevXrayDate"] = DateText(patient.PrevXrayDate);
    json["RespDoctor"] = patient.RespDoctor;
    json["OtherIDs"] = patient.OtherIDs->GetAllAsString();
    return json;
}

void ShowPatient(const Options& options, const std::string& id, const std::vector<std::string>& assignments) {
    const Clinic clinic(options);
    const Ref<cPatient> patient = LoadPatient(clinic, id);
    for (const std::string& assignment : assignments) SetField(*patient, assignment);
    if (!assignments.empty()) {
        RequireStorable(*patient);
        patient->Save(clinic.Con());
    }
    PrintFields(Shown(*patient), options.json);
}

}  // namespace

bool FindPatient(const Ref<Connection>& con, cPatient& patient, const std::string& id, Long number) {
    bool found = false;
    ComplainOfTextBoxes([&] { found = patient.LoadOnPatientIDorPDBID(con, id, number) != 0; });
    return found;
}

void RequireStorable(const cPatient& patient) {
    constexpr Long identifierWidth = 64, otherIDsWidth = 255;
    const String others = patient.OtherIDs->GetAllAsString();
    if (Contains(patient.Sex + others, "'"))
        throw Complaint("Sex and OtherIDs can't hold a single quote; leave it out");
    if (Len(others) > otherIDsWidth)
        throw Complaint(
            fmt::format("the other identifiers have more than {} characters in all; set fewer with: oxclass "
                        "patient ID OtherIDs=A\\B",
                        otherIDsWidth));
    if (Len(patient.PatientID) > identifierWidth)
        throw Complaint(fmt::format("a patient ID has at most {} characters", identifierWidth));
}

Ref<cPatient> LoadPatient(const Clinic& clinic, const std::string& id) {
    Ref<cPatient> patient = New<cPatient>();
    const bool byNumber = id.starts_with('#');
    const Long number = byNumber ? NumberOf(id.substr(1), "a patient") : 0;
    if (!FindPatient(clinic.Con(), *patient, byNumber ? String() : id, number))
        throw Complaint(fmt::format("there is no patient {}; see: oxclass patients", id));
    return patient;
}

void AddPatients(Program& program) {
    struct Arguments {
        std::string text;
        std::vector<std::string> assignments;
    };
    const auto given = std::make_shared<Arguments>();
    auto* list =
        program.app.add_subcommand("patients", "list the patients, or those whose name or ID holds a text");
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

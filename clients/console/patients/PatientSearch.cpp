#include "console/patients/PatientSearch.h"

#include "console/Commands.h"
#include "console/patients/PatientIdentity.h"
#include "console/patients/PatientStore.h"
#include "console/patients/TypedDate.h"
#include "platform/runtime/Services.h"

#include <algorithm>
#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

/// Returns the text of a column; empty for a null and for a value that can't be converted.
std::string TextIn(const Ref<Recordset>& row, const char* column) {
    try {
        const ADODB::Field field = row->Fields(column);
        return field.IsNull() ? std::string() : field.As<String>();
    } catch (const Error&) {
        return {};
    }
}

/// What a user looks for.
class SoughtPatient {
public:
    explicit SoughtPatient(const std::string& text) : day_(DayOf(text)) {
        for (const String& word : SplitIgnoringCase(Replace(Folded(text), ",", " "), " "))
            if (!word.empty()) words_.push_back(word);
    }

    bool Fits(const FoundPatient& patient) const {
        if (!day_.empty() && patient.born == day_) return true;
        const std::string texts[] = {Folded(patient.id), Folded(patient.lastName), Folded(patient.firstName),
                                     patient.born, Folded(patient.otherIDs)};
        return std::ranges::all_of(words_, [&](const std::string& word) {
            return std::ranges::any_of(texts, [&](const std::string& text) { return Contains(text, word); });
        });
    }

private:
    /// Returns the day that a text is, as the database stores it; empty for a text that is none, or could be two.
    static std::string DayOf(const std::string& text) {
        try {
            return DateText(TypedDate(text));
        } catch (const UserError&) {
            return {};
        }
    }

    std::vector<std::string> words_;
    std::string day_;
};

bool HasOtherID(const FoundPatient& patient, const std::string& id) {
    return std::ranges::any_of(SplitIgnoringCase(patient.otherIDs, "\\"),
                               [&](const String& other) { return EqualsIgnoringCase(Trim(other), Trim(id)); });
}

/// Returns "#5 19800131-1234 Ek, Anna, born 1980-01-31"; omits what is unknown.
std::string Described(const FoundPatient& patient) {
    std::string name = patient.lastName;
    if (!patient.firstName.empty()) name += (name.empty() ? "" : ", ") + patient.firstName;
    std::string text = fmt::format("#{} {}", patient.number, patient.id);
    if (!name.empty()) text += " " + name;
    return patient.born.empty() ? text : text + ", born " + patient.born;
}

[[noreturn]] void RefuseSeveral(const std::string& text, const std::vector<FoundPatient>& found) {
    constexpr std::size_t most = 20;
    std::vector<std::string> names;
    for (const FoundPatient& patient : found)
        if (names.size() < most) names.push_back(Described(patient));
    const std::string more = found.size() > most ? fmt::format("; and {} more", found.size() - most) : "";
    throw UserError(fmt::format("{} patients fit \"{}\": {}{}; name one by its ID or its number, as '#{}'",
                                found.size(), text, fmt::join(names, "; "), more, found.front().number));
}

/// Returns the only patient that fits the text, and tells who it is.
Ref<cPatient> OnlyFitting(const Ref<Connection>& con, const std::string& text) {
    std::vector<FoundPatient> found;
    if (!Trim(text).empty()) found = FindPatients(con, text);
    const auto other = [&](const FoundPatient& patient) { return HasOtherID(patient, text); };
    if (std::ranges::any_of(found, other)) std::erase_if(found, std::not_fn(other));
    if (found.empty()) throw UserError(fmt::format("there is no patient {}; see: oxclass patients", text));
    if (found.size() > 1) RefuseSeveral(text, found);
    fmt::print(stderr, "oxclass: {} is patient {}\n", Printable(text), Printable(Described(found.front())));
    if (auto patient = PatientOfRow(con, found.front().number)) return patient;
    throw UserError(fmt::format("patient #{} was removed by another program meanwhile", found.front().number));
}

}  // namespace

std::vector<FoundPatient> FindPatients(const Ref<Connection>& con, const std::string& text) {
    const SoughtPatient sought(text);
    std::vector<FoundPatient> found;
    const Ref<Recordset> rows = con->Execute(
        "SELECT PatientID, PersonNr_CH, LastName_NVC, FirstName_NVC, Birthdate_CH, OtherIDs FROM Patient_T ORDER BY "
        "LastName_NVC, FirstName_NVC, PatientID");
    for (; !rows->Eof(); rows->MoveNext()) {
        FoundPatient patient{rows->Fields(0).As<Long>(),    TextIn(rows, "PersonNr_CH"),  TextIn(rows, "LastName_NVC"),
                             TextIn(rows, "FirstName_NVC"), TextIn(rows, "Birthdate_CH"), TextIn(rows, "OtherIDs")};
        if (sought.Fits(patient)) found.push_back(std::move(patient));
    }
    return found;
}

Ref<cPatient> LoadPatient(const Ref<Connection>& con, const std::string& text) {
    if (text.starts_with('#')) {
        if (auto patient = PatientOfRow(con, NumberOf(text.substr(1), "a patient"))) return patient;
        throw UserError(fmt::format("there is no patient {}; see: oxclass patients", text));
    }
    const std::vector<Ref<cPatient>> patients = PatientsWithID(con, text);
    if (patients.empty()) return OnlyFitting(con, text);
    if (patients.size() == 1) return patients.front();
    std::string list;
    for (const auto& patient : patients) list += (list.empty() ? "" : "; ") + ShortName(IdentityOf(con, *patient));
    throw UserError(fmt::format("{} patients have the ID {}: {}; name one by its number, as '#{}'", patients.size(),
                                text, list, patients.front()->ID));
}

Ref<cPatient> LoadPatient(const Database& database, const std::string& text) {
    return LoadPatient(database.Con(), text);
}

}  // namespace Console

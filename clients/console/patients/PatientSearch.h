#pragma once

#include "console/Database.h"
#include "people/cPatient.h"

/// Finding patients by what a user types.
namespace Console {

/// A patient as a search finds it, with the texts of the row.
struct FoundPatient {
    Platform::Long number = 0;
    std::string id, lastName, firstName, born, otherIDs;
};

/// Returns the patients that fit a text, by name: each word of it, as blanks and commas separate them, is a part of the
/// identifier, of a name, of the birth date (1980-01-31) or of another identifier, without regard to case and accents;
/// or the text is the birth date in a form that `TypedDate` reads. All patients fit a blank text.
std::vector<FoundPatient> FindPatients(const Ref<Connection>& con, const std::string& text);

/// Returns the patient that `text` names: "#12" is the row 12; any other text an identifier, else one of the other
/// identifiers of a patient, else anything that exactly one patient fits by `FindPatients`, which a line on standard
/// error then names. Throws `UserError` if there is none, and if there are several; the message then lists them.
Ref<OXClass::cPatient> LoadPatient(const Ref<Connection>& con, const std::string& text);
Ref<OXClass::cPatient> LoadPatient(const Database& database, const std::string& text);

}  // namespace Console

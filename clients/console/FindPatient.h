#pragma once

#include "console/Clinic.h"
#include "people/cPatient.h"

namespace Console {

/// Loads the patient of a text identifier, or of a number where the identifier is empty; false if there is
/// none. Throws `Complaint` for a row that can't be read, so that it is never taken for a missing one.
bool FindPatient(const Ref<Connection>& con, OXClass::cPatient& patient, const std::string& id,
                 Platform::Long number = 0);

/// A patient by the text identifier, or by the number behind a "#". Throws `Complaint` if there is none.
Ref<OXClass::cPatient> LoadPatient(const Clinic& clinic, const std::string& id);

/// Throws `Complaint` unless the patient's texts can be stored: a quote in those that a statement takes
/// unescaped, more than 255 characters of other identifiers, more than 64 of the identifier.
void RequireStorable(const OXClass::cPatient& patient);

}  // namespace Console

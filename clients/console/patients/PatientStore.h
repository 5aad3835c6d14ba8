#pragma once

#include "console/Database.h"
#include "console/dicom/DicomFile.h"
#include "console/patients/PatientIdentity.h"
#include "people/cPatient.h"

/// Functions that find one patient in the database, and that save only this patient.
namespace Console {

/// Returns the identity that a radiograph's file states.
PatientIdentity IdentityOf(const RadiographFile& file);

/// Returns the identity of a loaded patient, with the issuer of its identifier.
PatientIdentity IdentityOf(const Ref<Connection>& con, const OXClass::cPatient& patient);

/// Returns the same identity for a comparison with the person of a file. Throws `UserError` if the birth date or the
/// sex of the row can't be read: an empty value would contradict no other person.
PatientIdentity ComparableIdentityOf(const Ref<Connection>& con, const OXClass::cPatient& patient);

/// Loads the patient of this row; returns null if the row does not exist. A birth date that can't be read counts as
/// unknown. Throws `UserError`, which names row and column, if another column can't be read, so that no caller takes
/// the row for a missing one.
Ref<OXClass::cPatient> PatientOfRow(const Ref<Connection>& con, Platform::Long number);

/// Returns "#5 Ek, Anna, born 1980-01-31", as messages name one of several patients.
std::string ShortName(const PatientIdentity& person);

/// Returns all patients with this text identifier, by rising row number. Throws as `PatientOfRow`.
std::vector<Ref<OXClass::cPatient>> PatientsWithID(const Ref<Connection>& con, const std::string& id);

/// The patients in the database that may be a person.
struct PatientMatch {
    Platform::Long number = 0;             ///< the row of the person's patient; 0 if there is none
    std::vector<PatientIdentity> refused;  ///< the patients of the identifier that were not taken

    bool contradicted = false;  ///< one of `refused` contradicts the person; else
                                ///< the data are not sufficient to decide

    /// Returns true for a person whose identifier no patient has.
    bool IsNew() const { return number == 0 && refused.empty(); }
};

/// Returns true if this is the patient's identifier, or one of the other ones, without regard to case and outer blanks.
bool HasIdentifier(const OXClass::cPatient& patient, const std::string& id);

/// Looks for the patient that is the person.
///
/// Returns a patient with the same identifier and no contradicting data. If the issuers are not both known and equal,
/// or if several patients have the identifier, name or birth date must agree as well. If no patient has the
/// identifier, those who have it in `OtherIDs`, as after a merge, are considered; name or birth date must agree, too.
/// If two patients match, the result names no patient and lists both as refused.
PatientMatch MatchPatient(const Ref<Connection>& con, const PatientIdentity& person);

/// Throws `UserError` unless the patient's texts can be stored: a quote in those that a statement takes
/// unescaped, more than 255 characters of other identifiers, more than 64 of the identifier, none at all.
void RequireStorable(const OXClass::cPatient& patient);

/// Adds identifiers that the patient lacks, as long as all of them fit into their column. Returns those
/// that don't fit; an identifier is never cut.
std::vector<std::string> AddOtherIDs(OXClass::cPatient& patient, const std::vector<std::string>& identifiers);

/// Inserts a patient (`ID` 0), or writes into exactly its row the columns whose values differ from the stored
/// ones; all other columns are unchanged, also those that can't be read. The identifier is not written. The caller
/// holds the transaction. Throws as `RequireStorable`, and `UserError` if the row no longer exists.
void SavePatient(const Ref<Connection>& con, OXClass::cPatient& patient);

/// Copies from `said` into the patient's row what the row lacks: issuer, name, birth date and sex. A column with any
/// text is not changed. Returns one line that names what was added, empty if nothing was. The two must not contradict
/// each other, and must have the same identifier. The caller holds the transaction.
std::string FillPatient(const Ref<Connection>& con, const PatientIdentity& stored, const PatientIdentity& said,
                        const char* source);

/// Stores another identifier in the row; the issuer is unchanged. The caller holds the transaction. Throws `UserError`
/// if a patient already has the new identifier.
void ChangePatientID(const Ref<Connection>& con, OXClass::cPatient& patient, const std::string& id);

/// Stores the issuer of a patient's identifier; ignores an empty one. The caller holds the transaction.
void StoreIssuer(const Ref<Connection>& con, Platform::Long patient, const std::string& issuer);

/// Deletes the stored issuer of a patient's identifier. The caller holds the transaction.
void ForgetIssuer(const Ref<Connection>& con, Platform::Long patient);

/// Creates those tables of the program that the database lacks. The caller holds the transaction. Throws `UserError` on
/// MariaDB, where creating a table would commit, and where opening the database has created them if the user may.
void CreateProgramTables(const Ref<Connection>& con);

/// Runs `work` while the patient's row has an identifier that no other row has, for operations that find a patient by
/// the text identifier. Afterwards restores the row's own identifier. The caller holds the transaction and must roll it
/// back if this throws.
void WithUniqueID(const Ref<Connection>& con, const OXClass::cPatient& patient,
                  const std::function<void(const std::string& id)>& work);

}  // namespace Console

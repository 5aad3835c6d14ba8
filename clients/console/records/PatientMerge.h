#pragma once

#include "console/records/RecordChange.h"

/// Corrections of whole patients.
namespace Console {

/// Moves all that belongs to one patient to another one, and removes the first.
///
/// The identifiers of the removed patient become other identifiers of the kept one, who also gets the data that its row
/// lacks. The caller holds the transaction. Throws `UserError` if the two are one row, if a row can't be read whole, if
/// the identifiers don't fit into their column, and, without `force`, if name, birth date or sex contradict each other;
/// both people are then shown on standard error.
void MergePatients(RecordChange& change, const std::string& removed, const std::string& kept, bool force);

/// Replaces the identifier of a patient, and remarks it on the patient and on all images. The caller holds the
/// transaction. Throws `UserError` if a patient already has the identifier, or if it can't be stored.
void CorrectPatientID(RecordChange& change, const std::string& patient, const std::string& id);

}  // namespace Console

#pragma once

#include "console/records/RecordChange.h"

/// Moving images, series and studies to another patient.
namespace Console {

/// What is moved: keys of images, series and studies.
struct MovedRecords {
    std::set<Platform::Long> images, series, studies;
};

/// Moves records to another patient, with all that belongs to them.
///
/// A study moves with its series and images, a series with its images. If all images of a series move, the series
/// moves; if all series of a study move, the study moves. Otherwise the patient gets a new study with the date and the
/// description of the other one, and a new series for single images, with UIDs of their own. The series that have
/// changed are hung again. An image card moves if all of its images do. Files keep their names.
///
/// The caller holds the transaction. Throws `UserError` for an unknown record, for one that belongs to the patient
/// already, for a series with an image that can't be read, and if a card shows moved images beside others: with `force`
/// the moved ones are taken off the card.
void MoveRecords(RecordChange& change, const MovedRecords& moved, const std::string& toPatient, bool force);

}  // namespace Console

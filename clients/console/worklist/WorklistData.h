#pragma once

#include "worklist/cMWLItem.h"

#include <filesystem>
#include <vector>

class DcmItem;

namespace Console {

/// An item of a worklist, with what a data set says beside the item's own properties.
struct WorklistEntry {
    Platform::Ref<OXClass::cMWLItem> item;
    std::string issuer;  ///< who assigned the patient's identifier; empty where the data set doesn't say
};

using WorklistItems = std::vector<WorklistEntry>;

/// The worklist items of a DICOM data set, one for each scheduled step, with all their texts in UTF-8. Dates
/// read "YYYY-MM-DD" and times "hh:mm:ss" where they are such. `source` goes into `DS_URL`.
///
/// Throws `std::runtime_error` whose text tells in one clause why the data set is no worklist item: it has
/// no scheduled step, or says nothing about the patient.
WorklistItems ItemsOf(DcmItem& dataset, const std::string& source);

/// Returns true for a data set with letters beyond ASCII that names no character set: its texts had to be guessed.
bool LacksCharacterSet(DcmItem& dataset);

/// The items in a file, with the file meta information or without. Throws as `ItemsOf`, and for a file
/// that can't be read or is no DICOM.
WorklistItems ReadWorklistFile(const std::filesystem::path& path);

}  // namespace Console

#pragma once

#include "worklist/cMWLItem.h"

#include <filesystem>
#include <vector>

class DcmItem;

namespace Console {

/// An item of a worklist, with the values of its data set that are not properties of the item.
struct WorklistEntry {
    Platform::Ref<OXClass::cMWLItem> item;
    std::string issuer;  ///< who assigned the patient's identifier; empty where the data set doesn't say
};

using WorklistItems = std::vector<WorklistEntry>;

/// Returns the worklist items of a DICOM data set, one for each scheduled step, with all texts in UTF-8. Valid dates
/// have the form "YYYY-MM-DD", valid times "hh:mm:ss". `source` is stored in `DS_URL`.
///
/// Throws `std::runtime_error` whose text is one clause about the reason if the data set is not a worklist item: it has
/// no scheduled step, or no data about the patient.
WorklistItems ItemsOf(DcmItem& dataset, const std::string& source);

/// Returns true for a data set with letters beyond ASCII that names no character set: the encoding of its texts is then
/// guessed.
bool LacksCharacterSet(DcmItem& dataset);

/// Returns the items in a file, with or without file meta information. Throws as `ItemsOf`, and for a file that can't
/// be read or is not a DICOM file.
WorklistItems ReadWorklistFile(const std::filesystem::path& path);

}  // namespace Console

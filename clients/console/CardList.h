#pragma once

#include "cardlist/cUniCards.h"
#include "console/Database.h"
#include "people/cPatient.h"

#include <map>

namespace Console {

/// A patient's cards and series, newest first.
struct CardList {
    Ref<OXClass::cPatient> patient;
    Ref<OXClass::cUniCards> entries;
    std::vector<OXClass::UnreadEntry> damaged{};  ///< what could not be read, and is not among the entries
    Platform::Long orphansRemoved = 0;            ///< series without images that the listing deleted
    Platform::Long orphansKept = 0;               ///< those that it could not delete
};

/// Lists the cards and series of a patient that can be read. If the database can be written, deletes each series
/// without image files that is not being captured, unless one of its images can't be read or an image of the study has
/// a series that can't be read. Throws `UserError` for an unknown patient.
CardList ListCards(const Database& database, const std::string& patient);

/// The number of images that an entry shows, and whether all of them are approved.
struct ImagesOfEntry {
    Platform::Long count = 0;
    bool approved = false;
};

/// Returns these numbers for the image cards of a patient, by the keys of the cards. A card without images is not
/// included.
std::map<Platform::Long, ImagesOfEntry> ImagesOfCards(const Database& database, Platform::Long patient);

}  // namespace Console

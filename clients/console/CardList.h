#pragma once

#include "cardlist/cUniCards.h"
#include "console/Database.h"
#include "console/patients/PatientStore.h"

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

/// Lists what can be read of the cards and series of a patient. A series without image files that nobody
/// captures any more is deleted, where the database can be written, unless one of its images can't be read or
/// an image of the study names no series that can be read. Throws `UserError` for an unknown patient.
CardList ListCards(const Database& database, const std::string& patient);

/// How many images an entry shows, and whether all of them are approved.
struct ImagesOfEntry {
    Platform::Long count = 0;
    bool approved = false;
};

/// The same of the image cards of a patient, by the cards' keys; cards without images are not in it.
std::map<Platform::Long, ImagesOfEntry> ImagesOfCards(const Database& database, Platform::Long patient);

}  // namespace Console

#pragma once

#include "console/records/RecordChange.h"

/// The rows that are removed together, and how they are recorded and stored again.
namespace Console {

/// Keys of rows that are removed.
struct RemovedKeys {
    std::set<Platform::Long> patients, studies, series, images, cards, placed, comments;
};

/// Adds what belongs to the removed rows: the studies, series, images and cards of a patient, the series and images of
/// a study, the images of a series, the placed images of a card, the comments of an image. Adds the series and studies
/// of which nothing is left.
void AddWhatBelongs(const Ref<Connection>& con, RemovedKeys& keys);

/// Returns the cards that stay and show removed images, with the placed images.
std::map<Platform::Long, std::set<Platform::Long>> CardsThatShow(const Ref<Connection>& con, const RemovedKeys& keys);

/// Returns the rows of these keys by their tables, each as an object with the columns' names in small letters. Dates
/// are texts.
nlohmann::ordered_json RowsOf(const Ref<Connection>& con, const RemovedKeys& keys);

/// Deletes the rows. The caller holds the transaction.
void DeleteRows(const Ref<Connection>& con, const RemovedKeys& keys);

/// Stores in each series the number of its images.
void CountImages(const Ref<Connection>& con, const std::set<Platform::Long>& series);

/// Returns the numbers in a column of recorded rows, 0 and other values excepted.
std::set<Platform::Long> NumbersIn(const nlohmann::ordered_json& rows, const char* table, const char* column);

/// Stores recorded rows again. The caller holds the transaction.
///
/// A row has its key again; if another row has it by now, it gets a new one, which the rows that refer to it name.
/// Placed images whose card or image is gone are left out and named in `notes`. Returns the new keys by tables and old
/// keys. Throws `UserError` if a row's owner is gone, or if another row is the same patient, study, series or image.
std::map<std::string, std::map<Platform::Long, Platform::Long>> InsertRows(const Ref<Connection>& con,
                                                                           nlohmann::ordered_json rows,
                                                                           std::vector<std::string>& notes);

}  // namespace Console

#pragma once

#include "cardlist/cUniCard.h"

#include <optional>

namespace OXClass {

/// An entry that `cUniCards::ListReadable` could not read.
struct UnreadEntry {
    /// The key of the entry: "IC" or "SE" + the key of the row, or nothing behind it if that is null.
    String Key;
    /// What ended the reading, with the column.
    Error Failure;
};

/// What `cUniCards::ListReadable` found besides the entries of the list.
struct Readable {
    std::vector<UnreadEntry> unread;
    /// The keys of the series that have no image file and are no longer under capture.
    std::vector<Long> orphans;
};

/// The image cards and series of a patient, newest first, as a keyed list that is counted from 1.
///
/// `Item` and `Remove` raise 9 for a position and 5 for a key that doesn't exist. An object belongs to the
/// thread that created it.
class cUniCards final : public Keyed<cUniCard> {
public:
    static constexpr const char* ClassName = "cUniCards";

    // ---- load --------------------------------------------------------------------------------------

    /// Adds the image cards of all patients with the personal number `sPID`, and the series of one of them.
    /// Returns the key of that patient, 0 if there is none. The last three arguments are ignored.
    ///
    /// Each entry is inserted before the first member that is older; earlier members stay. A list that was
    /// empty is therefore sorted, newest first, image cards before series of the same date. The entries have
    /// no images: `cUniCard::LoadCardFull` loads them.
    ///
    /// A series without an image file is an orphan if it is ten minutes old or comes from a server, and is
    /// under capture otherwise. The load adds a series under capture to the list, and deletes an orphan from
    /// Series_T. Sets `CursorLocation` of the connection to `adUseClient` and leaves it so.
    ///
    /// On any failure shows a message box with the number and the step, and returns 0, or the key of the
    /// patient if it is already known; raises nothing. Such failures are a null in a name, description, date
    /// or UID, a negative size, an unpaired single quote in `sPID`, and a key that the list already contains.
    /// Entries that were inserted before stay, and orphans that were deleted stay deleted.
    Long GetICAndSEList4Patient(const Ref<Connection>& conn, const String& sPID, const Long& lPID,
                                const Date& FromDate = {}, const Date& ToDate = {});

    /// Adds the list of the one patient with the key `patient`, for C++ programs that continue after a row
    /// that can't be read, and delete orphans themselves. Changes nothing in the database and shows no
    /// message box.
    ///
    /// Omits orphans and rows that can't be read, and returns them. Sets `CursorLocation` as
    /// `GetICAndSEList4Patient` does. Raises what the statements raise; the list stays unchanged then. Raises
    /// 457 for a key that the list already contains and 91 for a member without a date; the entries before it
    /// stay. Not part of the interface.
    Readable ListReadable(const Ref<Connection>& conn, Long patient);

    // ---- members -----------------------------------------------------------------------------------

    /// Inserts an entry before the member with the key `sBefore`, under `sKey` unless that is empty. Returns
    /// true. Raises 5 if there is no such member, also if `sBefore` is left out, and 457 if the key exists;
    /// the list stays unchanged then.
    bool AddObj(const Ref<cUniCard>& oUC, const String& sKey = {}, const String& sBefore = {});

    const Interface& Describe() const override;

private:
    std::vector<double> OldestSoFar(std::optional<Error>& unreadable) const;
    void Merge(const Collection& arrived, Integer& step);
};

}  // namespace OXClass

#pragma once

#include "cardlist/cUniCard.h"

#include <optional>

namespace OXClass {

/// An entry that could not be read.
struct UnreadEntry {
    String Key;     ///< "IC" + the card's key, or "SE" + the series'
    Error Failure;  ///< why, with the column
};

/// What `cUniCards::ListReadable` met besides the entries of the list.
struct Readable {
    std::vector<UnreadEntry> unread;
    std::vector<Long> orphans;  ///< keys of series without image files that nobody captures any more
};

/// A patient's image cards and series in one list, newest first. `Item` and `Remove` raise on a missing
/// member. An object belongs to one thread.
class cUniCards final : public Keyed<cUniCard> {
public:
    static constexpr const char* ClassName = "cUniCards";

    /// Adds the whole list of the patients with this personal number, and gives the key of one of them, 0
    /// if there is none. The last three arguments are never looked at.
    ///
    /// Each entry goes before the first member that is older than it, so that a list that began empty
    /// is sorted, newest first, cards before series of the same date. Earlier members stay. The entries are
    /// light: `cUniCard::LoadCardFull` loads their images. A series without image files is under capture
    /// and in the list for ten minutes; an older one, or one that came from a server, is deleted from its
    /// table. Leaves `CursorLocation` of the connection at `adUseClient`.
    ///
    /// Never raises what the database or a row raises: a text box tells number and step, and the result is
    /// 0, or the patient's key once it is known. What was merged before stays. So ends a null in a name,
    /// description, date or identifier, and a key that the list has already.
    Long GetICAndSEList4Patient(const Ref<Connection>& conn, const String& sPID, const Long& lPID,
                                const Date& FromDate = {}, const Date& ToDate = {});

    /// The list of one patient, for programs in C++ that go on past a row that can't be read, and that delete
    /// orphans themselves: changes nothing in the database, shows no text box, and leaves both out of the
    /// list. Goes by the patient's key, so that others of the same personal number have no part in it. Raises
    /// what the statements raise; the list then stays as it was. No part of the interface.
    Readable ListReadable(const Ref<Connection>& conn, Long patient);

    /// Adds an entry before the member of the key `sBefore`, under `sKey` if that is not empty, and returns
    /// true. Raises 5 if there is no such member, also where `sBefore` is left out, and 457 for a key that
    /// is present.
    bool AddObj(const Ref<cUniCard>& oUC, const String& sKey = {}, const String& sBefore = {});

    const Interface& Describe() const override;

private:
    std::vector<double> OldestSoFar(std::optional<Error>& unreadable) const;
    void Merge(const Collection& arrived, Integer& step);
};

}  // namespace OXClass

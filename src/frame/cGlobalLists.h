#pragma once

#include "frame/cGlobalList.h"

namespace OXClass {

/// The rows of one list of GlobalList_T.
///
/// A collection class whose `Item` is not its default member, and whose `Add` puts the new member
/// first. An object belongs to one thread.
class cGlobalLists final : public Keyed<cGlobalList> {
public:
    static constexpr const char* ClassName = "cGlobalLists";
    static constexpr bool IsGlobal = true;  ///< `Global<cGlobalLists>()` gives the thread's shared instance

    /// Loads the rows of a list, in the database's order, under the keys "K" + `GlobalListID`, and
    /// gives their number.
    ///
    /// While the database says that the table is missing (0x80040E37) it waits a second and asks again,
    /// ten times at most; the program's pending messages are handled meanwhile, so the caller can be
    /// entered again. Raises that failure after the tenth, and any other at once. A failed open leaves
    /// the old members; one while reading leaves those read so far.
    Long GetAllGLs(Ref<Connection> sConn, const gGlobalListIDs& ListID);

    /// Makes a new, unsaved row, puts it before all others, under `sKey` if that is not empty, and gives
    /// it. Raises 457 for a key that is present; the list then stays as it was.
    Ref<cGlobalList> Add(const String& sKey = {});

    /// Deletes all rows of a list from the table. The members stay. Raises what the database raises.
    void DeleteAllOnListID(Ref<Connection> cnconn, const gGlobalListIDs& lID);

    /// Deletes the rows of the members from the table with one statement, then the members. Without
    /// members nothing happens, whatever the table holds. Raises what the database raises, and then the
    /// members stay; raises 6 for more than 32767 members, when the rows have gone already.
    void DeleteAll(Ref<Connection> cnconn);

    const Interface& Describe() const override;
};

}  // namespace OXClass

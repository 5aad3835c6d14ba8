#pragma once

#include "frame/cGlobalList.h"

namespace OXClass {

/// The rows of one list of GlobalList_T, as a keyed list that is counted from 1.
///
/// Unlike in the other collection classes, `Item` is not the default member, and `Add` inserts the new member
/// at the front. `Item` and `Remove` raise 9 for a position and 5 for a key that doesn't exist. An object
/// belongs to the thread that created it.
class cGlobalLists final : public Keyed<cGlobalList> {
public:
    static constexpr const char* ClassName = "cGlobalLists";
    /// `Global<cGlobalLists>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    // ---- load --------------------------------------------------------------------------------------

    /// Replaces the members by the rows of the list `ListID`, in the database's order, under the keys "K" +
    /// `GlobalListID`. Returns their number. The new members are saved ones.
    ///
    /// If the table is missing (0x80040E37), waits a second and reads again, ten times at most. During the
    /// wait the program handles its pending messages, so the caller can be entered again. A wait that starts
    /// in the last second of a day can last until the same time of the next day. Raises 0x80040E37 after the
    /// tenth wait, any other failure of the database at once, and 94 for a null key or list number. If the
    /// open fails, the old members stay; if a row can't be read, the list holds those before it.
    Long GetAllGLs(Ref<Connection> sConn, const gGlobalListIDs& ListID);

    // ---- members -----------------------------------------------------------------------------------

    /// Creates an unsaved row, inserts it before all others, under `sKey` unless that is empty, and returns
    /// it. Stores nothing. Raises 457 if the key exists; the list stays unchanged then.
    Ref<cGlobalList> Add(String sKey = {});

    // ---- delete ------------------------------------------------------------------------------------

    /// Deletes all rows of the list `lID` from the table; the members stay. Raises what the database raises.
    void DeleteAllOnListID(Ref<Connection> cnconn, const gGlobalListIDs& lID);

    /// Deletes the rows of all members from the table with one statement, then removes the members. Does
    /// nothing if the list is empty, whatever the table contains.
    ///
    /// Raises what the database raises; the members stay then. Raises 6 for more than 32767 members, after
    /// the rows are deleted; the members stay then too.
    void DeleteAll(Ref<Connection> cnconn);

    const Interface& Describe() const override;
};

}  // namespace OXClass

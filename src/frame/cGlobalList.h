#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The lists of GlobalList_T, by number: the values of the column ListID.
///
/// A list consists of all rows with its number. `Class1::GetGLSetting` reads the first row of a list as a setting, and
/// `Class1::SaveGLSetting` adds a row to a list or replaces all its rows. `cGlobalLists` loads and deletes a whole
/// list.
///
/// The library itself reads only `gglID_DicomRootUID`, the root UID of `Class1::GetInstanceUID`. It stores
/// and returns the texts of all other lists for the programs that use it, and defines no meaning for them: not their
/// format, not how many rows a list has, and no action. In particular it checks no login, password or permission.
///
/// A member, a row and a COM client may hold any other number, which is loaded and stored unchanged. The numbers are
/// stored in databases and must not change.
enum gGlobalListIDs : Long {
    // Lists of the programs, which the library does not interpret.
    gglID_DeveloperFKeys = 1,
    gglID_VersionStatus = 2,
    gglID_DicomServer = 3,
    /// The root UID of DICOM identifiers; "1.2.840.990731.3.6" if the list is empty. The text is used as it is stored,
    /// without a check that it is a UID. A thread that has read it once doesn't notice a later change.
    gglID_DicomRootUID = 4,
    // Lists of the programs, which the library does not interpret.
    gglID_LoginMethod = 5,
    gglID_ImageFormat = 6,
    gglID_CIDCodes = 7,
    gglID_TemplateRegionRelationship = 8,
    gglID_DicomClientAEAndPortPerWSName = 9,
    gglID_SecuritySettings = 10,
    gglID_MaintenanceFlags = 11,
    gglID_SecurityGroups = 12,
    gglID_PromptOnTemplateSelection = 13,
    gglID_MaintServerClient = 14,
    gglID_SkipTSChangePrompt = 15,
    gglID_SwipeCardOptions = 16,
    gglID_LogSelections = 17,
    gglID_HashedPasswords = 18,
    gglID_ApproveOverwritesReferrer = 19,
    gglID_CropAllowed = 20,
    gglID_DeleteReasons = 21,
    gglID_PromptForDeleteReason = 22
};

/// One row of GlobalList_T: a text that belongs to a list.
///
/// A setting is the first row of its list, in the database's order. A new object is unsaved; `GetGL` and
/// `cGlobalLists::GetAllGLs` create saved ones. An object belongs to the thread that created it.
///
/// Two objects may represent the same row; they don't know of each other, and the last save determines what is stored.
/// `GetGL` raises 3709 for a null or closed connection; `Save` and `Delete` raise 91 for a null one and 3704 for a
/// closed one, except a `Delete` of an unsaved row, which does not use the connection. All three raise what the
/// database raises unchanged, for example 0x80040E37 if the table is missing.
class cGlobalList final : public Object {
public:
    static constexpr const char* ClassName = "cGlobalList";
    /// `Global<cGlobalList>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    // ---- the row -----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 before the first save. Column GlobalListID. An insert ignores
    /// it and replaces it; an update and a deletion find the row by it.
    Long GlobalListID = 0;
    /// The list that the text belongs to; 0 in a new object. Column ListID.
    gGlobalListIDs ListID{};
    /// The text, of any length and script; a save escapes it, and stores an empty one as the empty text. Column
    /// ListText, in which a null reads as the empty text.
    String ListText;
    /// True if the row exists in the table, as far as this object knows: it stays true after `Delete`, and if another
    /// program deletes the row. It determines whether `Save` inserts or updates, also if a client sets it. Not stored.
    bool GLSaved = false;

    // ---- load and save -----------------------------------------------------------------------------

    /// Loads the row with the key `ID` and returns true. Returns false and changes nothing if there is none.
    ///
    /// Raises 94 for a null list number and what the database raises. `GlobalListID` is new then if a row was
    /// found, and so is `ListID` if only the text could not be read; `GLSaved` is unchanged.
    bool GetGL(Ref<Connection> sConn, Long ID);

    /// Writes the row: an update if `GLSaved` is true, otherwise an insert in a transaction of its own, which
    /// sets `GlobalListID` and `GLSaved`. Always returns false; `GLSaved` says whether the row is stored.
    ///
    /// If a transaction is open on the connection, that of an insert is nested in it, and the row is stored when the
    /// outermost one is committed. An update of a row that no longer exists changes nothing and isn't detected.
    ///
    /// Raises what the database raises, and 0x8004D013 for an insert at the deepest level of nested transactions;
    /// `GLSaved` stays unchanged then. A failure after the begin of the transaction leaves it open on
    /// the caller's connection. The caller must end it with `RollbackTrans`; otherwise all that the
    /// connection stores later is lost when it closes. If only the commit fails, `GlobalListID` is already
    /// new.
    bool Save(Ref<Connection> sConn);

    /// Deletes the row if `GLSaved` is true, and runs no statement otherwise. Returns true, whether or not
    /// the row existed. All members keep their values, `GLSaved` too: a later `Save` is an update that changes no row.
    /// A client that wants to insert the row again sets `GLSaved` to false. Raises what the database raises; the row
    /// still exists then.
    bool Delete(Ref<Connection> sConn);

    /// Returns the interface table: the four members of the row, `Save`, `Delete` and `GetGL`. A value that can't be
    /// converted to a member's type raises as `To`; the member is unchanged then.
    const Interface& Describe() const override;
};

}  // namespace OXClass

/// The names and numbers of `gGlobalListIDs`, for the type library and for the enumeration of the Python client, in the
/// order of their numbers. Constant data: any thread may read it.
template <>
struct Platform::EnumerationOf<OXClass::gGlobalListIDs> {
    static constexpr const char* Name = "gGlobalListIDs";
    static constexpr EnumerationValue Values[] = {
        {"gglID_DeveloperFKeys", OXClass::gglID_DeveloperFKeys},
        {"gglID_VersionStatus", OXClass::gglID_VersionStatus},
        {"gglID_DicomServer", OXClass::gglID_DicomServer},
        {"gglID_DicomRootUID", OXClass::gglID_DicomRootUID},
        {"gglID_LoginMethod", OXClass::gglID_LoginMethod},
        {"gglID_ImageFormat", OXClass::gglID_ImageFormat},
        {"gglID_CIDCodes", OXClass::gglID_CIDCodes},
        {"gglID_TemplateRegionRelationship", OXClass::gglID_TemplateRegionRelationship},
        {"gglID_DicomClientAEAndPortPerWSName", OXClass::gglID_DicomClientAEAndPortPerWSName},
        {"gglID_SecuritySettings", OXClass::gglID_SecuritySettings},
        {"gglID_MaintenanceFlags", OXClass::gglID_MaintenanceFlags},
        {"gglID_SecurityGroups", OXClass::gglID_SecurityGroups},
        {"gglID_PromptOnTemplateSelection", OXClass::gglID_PromptOnTemplateSelection},
        {"gglID_MaintServerClient", OXClass::gglID_MaintServerClient},
        {"gglID_SkipTSChangePrompt", OXClass::gglID_SkipTSChangePrompt},
        {"gglID_SwipeCardOptions", OXClass::gglID_SwipeCardOptions},
        {"gglID_LogSelections", OXClass::gglID_LogSelections},
        {"gglID_HashedPasswords", OXClass::gglID_HashedPasswords},
        {"gglID_ApproveOverwritesReferrer", OXClass::gglID_ApproveOverwritesReferrer},
        {"gglID_CropAllowed", OXClass::gglID_CropAllowed},
        {"gglID_DeleteReasons", OXClass::gglID_DeleteReasons},
        {"gglID_PromptForDeleteReason", OXClass::gglID_PromptForDeleteReason},
    };
};

#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The lists of GlobalList_T, by number: the values of the column ListID.
///
/// The library itself reads only `gglID_DicomRootUID`, the root UID of `Class1::GetInstanceUID`. It stores
/// and returns the texts of all other lists for the programs that use it, and defines no meaning for them. A
/// member holds any other number too.
enum gGlobalListIDs : Long {
    gglID_DeveloperFKeys = 1,
    gglID_VersionStatus = 2,
    gglID_DicomServer = 3,
    /// The root UID of DICOM identifiers; "1.2.840.990731.3.6" if the list is empty.
    gglID_DicomRootUID = 4,
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
/// A setting is the first row of its list. A new object is unsaved; `GetGL` and `cGlobalLists::GetAllGLs`
/// make saved ones. An object belongs to the thread that created it.
class cGlobalList final : public Object {
public:
    static constexpr const char* ClassName = "cGlobalList";
    /// `Global<cGlobalList>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    // ---- the row -----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 before the first save. Column GlobalListID.
    Long GlobalListID = 0;
    /// The list that the text belongs to; 0 in a new object. Column ListID.
    gGlobalListIDs ListID{};
    /// The text. A null in the column ListText reads as the empty text.
    String ListText;
    /// True if the row exists in the table. Chooses between insert and update in `Save`, also if a client
    /// sets it.
    bool GLSaved = false;

    // ---- load and save -----------------------------------------------------------------------------

    /// Loads the row with the key `ID` and returns true. Returns false and changes nothing if there is none.
    ///
    /// Raises 94 for a null list number and what the database raises. `GlobalListID` is new then if a row was
    /// found.
    bool GetGL(Ref<Connection> sConn, Long ID);

    /// Writes the row: an update if `GLSaved` is true, otherwise an insert in a transaction of its own, which
    /// sets `GlobalListID` and `GLSaved`. Always returns false; `GLSaved` says whether the row is stored.
    ///
    /// An update of a row that no longer exists changes nothing and isn't detected. Raises what the database
    /// raises; `GLSaved` stays unchanged then. A failure after the begin of the transaction leaves it open on
    /// the caller's connection. The caller must end it with `RollbackTrans`; otherwise all that the
    /// connection stores later is lost when it closes. If only the commit fails, `GlobalListID` is already
    /// new.
    bool Save(Ref<Connection> sConn);

    /// Deletes the row if `GLSaved` is true, and runs no statement otherwise. Returns true, whether or not
    /// the row existed. All members keep their values, `GLSaved` too. Raises what the database raises.
    bool Delete(Ref<Connection> sConn);

    const Interface& Describe() const override;
};

}  // namespace OXClass

/// The names and numbers of `gGlobalListIDs`, for the type library.
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

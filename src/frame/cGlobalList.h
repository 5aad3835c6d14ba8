#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The lists of GlobalList_T. Only `gglID_DicomRootUID` means something to the library.
enum gGlobalListIDs : Long {
    gglID_DeveloperFKeys = 1,
    gglID_VersionStatus = 2,
    gglID_DicomServer = 3,
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

/// One row of GlobalList_T: a text that belongs to a list, the list named by a number.
///
/// A setting is a list that is used for its first row. A new object is unsaved; `GetGL` and
/// `cGlobalLists::GetAllGLs` give saved ones. `GLSaved` alone chooses between insert and update, so a
/// client that sets it chooses too. An object belongs to one thread.
class cGlobalList final : public Object {
public:
    static constexpr const char* ClassName = "cGlobalList";
    static constexpr bool IsGlobal = true;  ///< `Global<cGlobalList>()` gives the thread's shared instance

    bool GLSaved = false;     ///< true: the row stands in the table
    Long GlobalListID = 0;    ///< the row's counter, 0 before the first save
    gGlobalListIDs ListID{};  ///< the list that the text belongs to
    String ListText;

    /// Writes the row: an update when `GLSaved`, otherwise an insert in a transaction of its own.
    ///
    /// Returns false on both paths; look at `GLSaved`. After an insert `GlobalListID` is the row's
    /// counter. An update of a row that is gone changes nothing, and nothing tells it. Raises what the
    /// database raises. A failure between begin and commit (a full disk) leaves the transaction open on the
    /// caller's connection and the object unsaved: the caller ends it with `RollbackTrans`, or what the
    /// connection stores from then on is lost when it closes.
    bool Save(Ref<Connection> sConn);

    /// Deletes the row when `GLSaved`, which stays as it is. Returns true, whether or not a row was
    /// there. Raises what the database raises.
    bool Delete(Ref<Connection> sConn);

    /// Loads the row with this counter. Returns false and changes nothing if there is none. Raises what
    /// the database raises.
    bool GetGL(Ref<Connection> sConn, Long ID);

    const Interface& Describe() const override;
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::gGlobalListIDs> {
    static constexpr const char* Name = "gGlobalListIDs";
    static constexpr EnumerationValue Values[] = {
        {"gglID_DeveloperFKeys", 1},
        {"gglID_VersionStatus", 2},
        {"gglID_DicomServer", 3},
        {"gglID_DicomRootUID", 4},
        {"gglID_LoginMethod", 5},
        {"gglID_ImageFormat", 6},
        {"gglID_CIDCodes", 7},
        {"gglID_TemplateRegionRelationship", 8},
        {"gglID_DicomClientAEAndPortPerWSName", 9},
        {"gglID_SecuritySettings", 10},
        {"gglID_MaintenanceFlags", 11},
        {"gglID_SecurityGroups", 12},
        {"gglID_PromptOnTemplateSelection", 13},
        {"gglID_MaintServerClient", 14},
        {"gglID_SkipTSChangePrompt", 15},
        {"gglID_SwipeCardOptions", 16},
        {"gglID_LogSelections", 17},
        {"gglID_HashedPasswords", 18},
        {"gglID_ApproveOverwritesReferrer", 19},
        {"gglID_CropAllowed", 20},
        {"gglID_DeleteReasons", 21},
        {"gglID_PromptForDeleteReason", 22},
    };
};

#pragma once

#include "frame/cGlobalLists.h"

namespace OXClass {

/// The general services: storage roots and sub-folders, settings, DICOM identifiers.
///
/// Image files are stored below storage roots: the directories that Root_T lists, one of which should be
/// active. Each object caches the directories that it has read, by root number. Only `bFlushCache` empties
/// the cache; until then the object doesn't see a change of Root_T. An object belongs to the thread that
/// created it.
class Class1 final : public Object {
public:
    static constexpr const char* ClassName = "Class1";

    // ---- storage roots -----------------------------------------------------------------------------

    /// The number of the active root, column RootID. 0 until `GetRoots` has read it.
    Long ActiveRootID = 0;

    /// Reads all roots and returns their directories: an array of texts that starts with the active root
    /// and continues with the others by rising number. Sets `ActiveRootID`.
    ///
    /// Returns an empty value if `Con` is null. If several roots are active, the array starts with the one
    /// that has the highest number, the other active ones are missing, and the places at the end are empty.
    /// Raises 9 if no root is active, 6 if more than 32766 roots are not active, 94 for a null directory, 13
    /// for a status that isn't a number, and what the database raises. `ActiveRootID` may be new then.
    Variant GetRoots(Ref<Connection> Con);

    /// Returns the directory of the root `RootId`, or of the active root if `RootId` is 0. Always reads the table,
    /// and stores the directory in the cache.
    ///
    /// Returns the empty text if the root does not exist or `Con` is null; the cache keeps its entry then.
    /// Raises 94 for a null directory, 9 for a negative root that exists, and what the database raises.
    String GetRootOnID(Ref<Connection> Con, const Long& RootId);

    /// Returns the directory of a root as `GetRootOnID` does, from the cache if the cache holds it. In that
    /// case the table isn't read and `Con` may be null.
    ///
    /// If `bFlushCache` is true, empties the cache first, even if the read fails. A directory that is
    /// empty in the cache is read again. Raises 9 for a negative root, otherwise as `GetRootOnID`.
    String GetCachedRootOnID(Ref<Connection> Con, const Long& RootId, const bool& bFlushCache);

    /// Returns the sub-folder of a patient below a root. A sub-folder serves 500 patients and is named after
    /// the lowest number: "0_" up to 499, "500_" up to 999. `PatID` is the patient's counter; a negative one
    /// returns "0_". Raises 6 for 2147483500 and more, because the next sub-folder's number overflows.
    String GetSubFolder(Long PatID);

    // ---- settings ----------------------------------------------------------------------------------

    /// Stores a setting as a new row of the list `GLId`. If `bReplace` is true, deletes the earlier rows of
    /// the list first.
    ///
    /// Raises as `cGlobalLists::GetAllGLs`, `cGlobalLists::DeleteAll` and `cGlobalList::Save`. The deletion
    /// is not part of the transaction of that save: if the save fails, the earlier rows stay deleted.
    void SaveGLSetting(Ref<Connection> Con, const gGlobalListIDs& GLId, const String& sSetting, const bool& bReplace);

    /// Stores the first text of the list `GLId` in `sFirstSetting` and returns true. The order is the
    /// database's. Replaces `cAllGLs` by a new object that holds the whole list.
    ///
    /// For an empty list returns false; `sFirstSetting` becomes the default root for `gglID_DicomRootUID`,
    /// and empty for any other list. Raises as `cGlobalLists::GetAllGLs`; both arguments stay unchanged then.
    bool GetGLSetting(Ref<Connection> Con, const gGlobalListIDs& GLId, String& sFirstSetting,
                      Ref<cGlobalLists>& cAllGLs);

    // ---- DICOM identifiers -------------------------------------------------------------------------

    /// Returns a new DICOM UID of at most 64 characters, below the root UID that is the setting
    /// `gglID_DicomRootUID`.
    ///
    /// Each thread reads the root UID once; after that `Con` may be null, and a change of the setting isn't
    /// seen. If the setting is the empty text, each call reads it again, and the UID starts with ".". Raises
    /// as `GetGLSetting` and `MakeUIDSuffix`.
    String GetInstanceUID(Ref<Connection> Con);

    const Interface& Describe() const override;

private:
    // By the requested number, 0 for the active root. An entry with an empty text is not used.
    std::unordered_map<Long, String> roots_;
};

}  // namespace OXClass

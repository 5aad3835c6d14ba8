#pragma once

#include "frame/cGlobalLists.h"

namespace OXClass {

/// The general services: storage roots and sub-folders, settings, DICOM identifiers.
///
/// Image files lie under storage roots, directories named in Root_T, of which one is the active one.
/// An object caches the directories by number; nothing but `bFlushCache` empties the cache, so a change
/// of the table stays unseen until then. An object belongs to one thread.
class Class1 final : public Object {
public:
    static constexpr const char* ClassName = "Class1";

    Long ActiveRootID = 0;  ///< the active root's number, as `GetRoots` found it

    /// All directories, an array of texts: the active root's first, the others by rising number. Sets
    /// `ActiveRootID`. Empty for no connection. Raises 9 unless exactly one row is active (with two, the
    /// later takes the first place and the last place stays empty), 6 for more than 32767 roots, 94 for a
    /// null directory, and what the database raises.
    Variant GetRoots(Ref<Connection> Con);

    /// The sub-folder of a patient, 500 patients to a folder: "0_" up to 499, "500_" up to 999. "0_" for
    /// a negative number. Raises 6 within 500 of the largest number.
    String GetSubFolder(Long PatID);

    /// Stores a setting as a new row of a list; with `bReplace` the list's earlier rows go first. Raises
    /// as `cGlobalLists::GetAllGLs` and `cGlobalList::Save`.
    void SaveGLSetting(Ref<Connection> Con, const gGlobalListIDs& GLId, const String& sSetting,
                       const bool& bReplace);

    /// Puts the first text of a list into `sFirstSetting` and gives true. For an empty list the result
    /// is false and the text empty, or the default root for `gglID_DicomRootUID`. `cAllGLs` comes back
    /// as the list itself, whatever it held. Raises as `cGlobalLists::GetAllGLs`.
    bool GetGLSetting(Ref<Connection> Con, const gGlobalListIDs& GLId, String& sFirstSetting,
                      Ref<cGlobalLists>& cAllGLs);

    /// The directory of a root, 0 standing for the active one; always asks the database and fills the
    /// cache. The empty text for an unknown root or no connection. Raises 94 for a null directory, 9 for a
    /// negative root that is there, and what the database raises.
    String GetRootOnID(Ref<Connection> Con, const Long& RootId);

    /// The same from the cache where it has it: the database is then not asked, and `Con` may be
    /// nothing. `bFlushCache` empties the cache first. Raises 9 for a negative root.
    String GetCachedRootOnID(Ref<Connection> Con, const Long& RootId, const bool& bFlushCache);

    /// A new DICOM identifier, at most 64 characters, under the root of `gglID_DicomRootUID`. The
    /// database is asked for the root once a thread; after that `Con` may be nothing. Raises 5 for a
    /// root of 64 characters or more, and as `GetGLSetting`.
    String GetInstanceUID(Ref<Connection> Con);

    const Interface& Describe() const override;

private:
    std::unordered_map<Long, String> roots_;  // by number; the active root at 0; an empty text isn't cached
};

}  // namespace OXClass

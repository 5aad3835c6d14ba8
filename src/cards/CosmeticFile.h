#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The file in image storage that the text of a cosmetic manipulation names. The first three characters of
/// the text are the number of the storage root, the others the stored name below that root.
struct CosmeticFile {
    /// The number of the storage root; 0 is the active root.
    Long RootId = 0;
    /// The path below the root, as `FileBelow` reads it.
    String StoredName;

    /// Returns the file that `parameter` names. The root is the number at the start of the first three
    /// characters, 0 if there is none. Raises 6 for a number beyond 32 bits, such as "9E9".
    static CosmeticFile Named(const String& parameter);

    /// Deletes the file. Does nothing if the root or the file doesn't exist, or if the name leads out of the
    /// root. Raises 70 for a file that may not be deleted, 94 for a null directory, 9 for a negative root
    /// that exists, and what the database raises.
    void DeleteIfPresent(const Ref<Connection>& con) const;
};

}  // namespace OXClass

#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// What the text of a cosmetic manipulation names: a file in image storage. Its first three characters
/// are the storage root's number, all behind them is the stored name below that root.
struct CosmeticFile {
    Long RootId = 0;
    String StoredName;

    /// The number at the head of the first three characters, 0 (the active root) where there is none.
    /// Raises 6 for a number beyond 32 bits, such as "9E9".
    static CosmeticFile Named(const String& parameter);

    /// Deletes the file. Nothing happens where there is no such root, no such file, or where the name
    /// leads out of the root. Raises 70 for a file that may not be deleted, 94 for a root without a
    /// directory, and what the database raises.
    void DeleteIfPresent(const Ref<Connection>& con) const;
};

}  // namespace OXClass

#pragma once

#include "people/cStringItem.h"

namespace OXClass {

/// The intended recipients of results, as a keyed list of texts that is counted from 1.
///
/// Nothing here is stored in the database, trimmed or compared. `Item` and `Remove` raise 9 for a position
/// and 5 for a key that doesn't exist. An object belongs to the thread that created it.
class IntendedRecipients final : public Keyed<cStringItem> {
public:
    static constexpr const char* ClassName = "IntendedRecipients";

    /// Adds a recipient at the end, under `sKey` unless that is empty, and returns it.
    ///
    /// `str` and `ID` become the members of the same name, unchanged; equal texts are all added. The members
    /// of the item that belong to comments keep their initial values.
    ///
    /// Raises 457 if the key exists; the list stays unchanged then.
    Ref<cStringItem> Add(const String& str, const Long& ID, const String& sKey = {});

    const Interface& Describe() const override;
};

}  // namespace OXClass

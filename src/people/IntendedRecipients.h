#pragma once

#include "people/cStringItem.h"

namespace OXClass {

/// The recipients of results: a plain list of texts. `Item` and `Remove` raise on a missing member. An
/// object belongs to one thread.
class IntendedRecipients final : public Keyed<cStringItem> {
public:
    static constexpr const char* ClassName = "IntendedRecipients";

    /// Adds a recipient at the end, as it stands, under `sKey` if that is not empty. Raises 457 for a key
    /// that is present.
    Ref<cStringItem> Add(const String& str, const Long& ID, const String& sKey = {});

    const Interface& Describe() const override;
};

}  // namespace OXClass

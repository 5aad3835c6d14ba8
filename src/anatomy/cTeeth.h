#pragma once

#include "anatomy/cTooth.h"

namespace OXClass {

/// A collection of teeth. In a full set each of the 52 stands under the key "Tooth" + its number. An
/// object belongs to one thread.
class cTeeth final : public Keyed<cTooth> {
public:
    static constexpr const char* ClassName = "cTeeth";

    /// Makes a tooth, adds it at the end, under `sKey` if that is not empty, and gives it. Raises 457
    /// for a key that is present.
    Ref<cTooth> Add(bool Selected, Integer TNumber, const String& sKey = {});

    /// The tooth at a position or under a key; nothing where there is none. Never raises.
    Ref<cTooth> Item(const Variant& vntIndexKey) const { return Find(vntIndexKey); }

    const Interface& Describe() const override;
};

}  // namespace OXClass

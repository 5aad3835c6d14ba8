#pragma once

#include "anatomy/cTooth.h"

namespace OXClass {

/// A keyed list of teeth that is counted from 1.
///
/// In the full set, which `cAnatomicDescription::InitCollection` makes, each of the 52 teeth has the key
/// "Tooth" + its number, such as "Tooth11". `Remove` raises 9 for a position and 5 for a key that doesn't
/// exist. An object belongs to the thread that created it.
class cTeeth final : public Keyed<cTooth> {
public:
    static constexpr const char* ClassName = "cTeeth";

    /// Returns the tooth at a position or under a key, or null if there is none. Keys are compared without
    /// regard to case. Raises nothing.
    Ref<cTooth> Item(Variant vntIndexKey) const { return Find(vntIndexKey); }

    /// Creates a tooth, adds it at the end, under `sKey` unless that is empty, and returns it.
    ///
    /// `Selected` is the mark, `TNumber` the FDI number. Neither number nor key is checked, and they need not
    /// agree. Raises 457 if the key exists; the list stays unchanged then.
    Ref<cTooth> Add(bool Selected, Integer TNumber, const String& sKey = {});

    const Interface& Describe() const override;
};

}  // namespace OXClass

#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One tooth, with the mark that it is selected.
///
/// The object only holds its values: nothing here checks or stores them. `cAnatomicDescription` makes the
/// full set of teeth, and stores the selected ones as a tooth string. An object belongs to the thread that
/// created it.
class cTooth final : public Object {
public:
    static constexpr const char* ClassName = "cTooth";

    /// The number in the two-digit FDI notation: the quadrant, then the place in it counted from the middle.
    /// Quadrants 1 to 4 have 8 permanent teeth each, quadrants 5 to 8 have 5 primary teeth each.
    Integer TNumber = 0;
    /// True if the tooth is selected, that is, part of the tooth string. False in a new object and in the
    /// full set.
    bool Selected = false;

    const Interface& Describe() const override;
};

}  // namespace OXClass

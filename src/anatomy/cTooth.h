#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One tooth, with the mark that it is selected.
///
/// The object only holds its values: nothing here checks or stores them. An object belongs to the thread that
/// created it.
class cTooth final : public Object {
public:
    static constexpr const char* ClassName = "cTooth";

    /// The number in the two-digit FDI notation: the quadrant, then the place in it counted from the middle.
    /// Quadrants 1 to 4 have 8 permanent teeth each, quadrants 5 to 8 have 5 primary teeth each.
    Integer TNumber = 0;
    /// True if the tooth is selected.
    bool Selected = false;

    const Interface& Describe() const override;
};

}  // namespace OXClass

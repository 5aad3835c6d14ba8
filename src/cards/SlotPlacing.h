#pragma once

#include "cards/cImagecardAttribute.h"
#include "cards/cTemplate.h"
#include "images/cImage.h"

#include <unordered_map>

namespace OXClass {

/// Places the images of a series on one card: each in the slot of its frame, or, if the layout has no such
/// slot, in the next cell of a grid (`PlaceInGrid`). Each card needs an object of its own, which belongs to
/// the thread that created it.
class SlotPlacing {
public:
    /// Reads the slots of a layout; of several slots with one number the first counts. `layout` must outlive
    /// this object, and its slots must not change. Raises 13 if a member of the layout isn't a slot.
    explicit SlotPlacing(const cTemplate& layout);

    /// Sets position and size of `placed`, and nothing else: those of the slot of `frame`, or of the next
    /// cell of the grid. Raises 13 or 6 if the frame isn't a number, unless the layout has no slots at all:
    /// then the frame isn't read.
    void Place(cImagecardAttribute& placed, const LateNumber& frame);

private:
    std::unordered_map<Long, const cTemplateAttribute*> slots_;  // by number
    Long inGrid_ = 0;                                            // the next cell of the grid
};

}  // namespace OXClass

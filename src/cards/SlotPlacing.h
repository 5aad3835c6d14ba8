#pragma once

#include "cards/cImagecardAttribute.h"
#include "cards/cTemplate.h"
#include "images/cImage.h"

#include <unordered_map>

namespace OXClass {

/// Gives the images of a series their places on a card: the slot of their frame, and for those that hang
/// nowhere a grid of five columns from the top left. One object a card.
class SlotPlacing {
public:
    /// `layout` must outlive this object.
    explicit SlotPlacing(const cTemplate& layout);

    /// Sets place and size: those of the layout's first slot of this frame, or of the grid's next cell.
    /// Raises what the frame raises that can't be read; where the layout has no slot it isn't read.
    void Place(cImagecardAttribute& placed, const LateNumber& frame);

private:
    std::unordered_map<Long, const cTemplateAttribute*> slots_;
    Long inGrid_ = 0;
};

}  // namespace OXClass

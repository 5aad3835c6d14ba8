#include "cards/SlotPlacing.h"

#include "cards/CardGrid.h"

namespace OXClass {

using namespace Platform;

SlotPlacing::SlotPlacing(const cTemplate& layout) {
    for (const auto& slot : Each<cTemplateAttribute>(*layout.TemplateAttributes))
        slots_.try_emplace(slot.TANumberInTemplate, &slot);
}

void SlotPlacing::Place(cImagecardAttribute& placed, const LateNumber& frame) {
    const auto slot = slots_.empty() ? slots_.end() : slots_.find(frame);
    if (slot != slots_.end()) {
        placed.IAHeight = slot->second->TAHeight;
        placed.IAWidth = slot->second->TAWidth;
        placed.IAPosX = slot->second->TAPosX;
        placed.IAPosY = slot->second->TAPosY;
        return;
    }
    PlaceInGrid(placed, inGrid_++);
}

}  // namespace OXClass

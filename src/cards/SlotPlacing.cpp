#include "cards/SlotPlacing.h"

namespace OXClass {

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

void SlotPlacing::PlaceInGrid(cImagecardAttribute& placed, Long cell) {
    constexpr Long columns = 5;
    constexpr double step = 0.2, side = 0.19;
    placed.IAHeight = placed.IAWidth = side;
    const Long column = cell % columns, row = cell / columns;
    placed.IAPosX = column * step;
    placed.IAPosY = row * step;
}

}  // namespace OXClass

#include "cards/SlotPlacing.h"

namespace OXClass {

SlotPlacing::SlotPlacing(const cTemplate& layout) {
    for (const auto& slot : Each<cTemplateAttribute>(*layout.TemplateAttributes))
        slots_.try_emplace(slot.TANumberInTemplate, &slot);
}

void SlotPlacing::Place(cImagecardAttribute& placed, Long frame) {
    const auto slot = slots_.find(frame);
    if (slot != slots_.end()) {
        placed.IAHeight = slot->second->TAHeight;
        placed.IAWidth = slot->second->TAWidth;
        placed.IAPosX = slot->second->TAPosX;
        placed.IAPosY = slot->second->TAPosY;
        return;
    }
    constexpr Long columns = 5;
    constexpr double cell = 0.2, picture = 0.19;
    placed.IAHeight = placed.IAWidth = picture;
    placed.IAPosX = (inGrid_ % columns) * cell;
    placed.IAPosY = static_cast<double>(inGrid_ / columns) * cell;
    ++inGrid_;
}

}  // namespace OXClass

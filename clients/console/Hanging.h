#pragma once

#include "console/Database.h"

namespace Console {

/// The result of hanging a stored series.
struct HungSeries {
    Platform::Long layout = 0;
    std::size_t placed = 0;                      ///< images with a frame
    std::size_t changed = 0;                     ///< images that hanging changed, which were stored
    std::vector<Platform::Long> withoutTeeth{};  ///< images whose text of teeth is none and was not looked at
};

/// Hangs the films of a stored series, and stores the places and derived codes of the images that it changed and
/// the layout of the series, and nothing else of them. The result doesn't depend on the order in which the images
/// were stored. Photographs have no frame; a series of photographs only has layout 0. The caller holds the
/// transaction, from before this reads. Throws `UserError` for an unknown series and for an image that can't be
/// read whole.
HungSeries HangStored(const Ref<Connection>& con, Platform::Long series);

}  // namespace Console

#pragma once

#include "console/Clinic.h"

namespace Console {

/// What hanging a stored series came to.
struct HungSeries {
    Platform::Long layout = 0;
    std::size_t placed = 0;   ///< images with a frame
    std::size_t changed = 0;  ///< images that hanging changed, which were saved
};

/// Hangs the films of a stored series and saves the images that it changed, and the series. Photographs have
/// no frame; a series of photographs only has layout 0. The caller holds the transaction. Throws `Complaint`
/// for an unknown series.
HungSeries HangStored(const Ref<Connection>& con, Platform::Long series);

}  // namespace Console

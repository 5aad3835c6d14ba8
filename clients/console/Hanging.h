#pragma once

#include "console/Database.h"

namespace Console {

/// The result of hanging a stored series.
struct HungSeries {
    Platform::Long layout = 0;
    std::size_t placed = 0;                      ///< images with a frame
    std::size_t changed = 0;                     ///< images that hanging changed, which were stored
    std::vector<Platform::Long> withoutTeeth{};  ///< images with an invalid tooth string, which was ignored
};

/// Hangs the films of a stored series. Stores the frames and derived codes of the images that changed, and the layout
/// of the series; no other column is written. The result doesn't depend on the order in which the images were stored.
/// Photographs have no frame; a series of photographs only has layout 0. The caller holds the transaction and must have
/// begun it before the call. Throws `UserError` for an unknown series and for an image that can't be read completely.
HungSeries HangStored(const Ref<Connection>& con, Platform::Long series);

}  // namespace Console

#pragma once

#include "console/Database.h"

#include <optional>

/// Hanging a series by hand, in place of the rules, and telling why it hangs as it does.
namespace Console {

/// What a person changes, as typed; applied in this order.
struct HandHanging {
    std::optional<std::string> layout;  ///< the number of a layout
    std::vector<std::string> places;    ///< IMAGE=FRAME; frame 0: nowhere
    std::vector<std::string> swaps;     ///< IMAGE,IMAGE
    std::vector<std::string> turns;     ///< IMAGE=DEGREES, clockwise
    std::vector<std::string> mirrors;   ///< IMAGE

    bool IsEmpty() const { return !layout && places.empty() && swaps.empty() && turns.empty() && mirrors.empty(); }
};

/// Stores the layout of a series, and frame and orientation of its images. Images whose frame a new layout lacks hang
/// nowhere. The caller holds the transaction. Throws `UserError` for an unknown series, layout, frame or image, for a
/// series with an image that can't be read, and if a frame would show two images. Returns the number of changed images.
std::size_t HangByHand(const Ref<Connection>& con, Platform::Long series, const HandHanging& hanging);

/// Returns a list of the images of a series, with their frames and the reasons. Changes nothing. Throws as
/// `HangByHand`.
List ExplainHanging(const Ref<Connection>& con, Platform::Long series);

}  // namespace Console

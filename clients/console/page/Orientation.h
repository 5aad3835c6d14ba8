#pragma once

#include "platform/runtime/Types.h"

namespace Console {

/// The rotation and mirroring of a placed image, by the numbers that image files use for them (TIFF 6.0,
/// "Orientation"): 1 as it was captured, 2 mirrored left to right, 3 turned by 180 degrees, 4 mirrored top to
/// bottom, 5 to 8 the same with rows and columns exchanged. This program stores the number in `IAMirrRotStatus`.
class Orientation {
public:
    /// Any number but 1 to 8 counts as 1: nothing is known.
    explicit Orientation(Platform::Long number);

    Platform::Long Number() const;

    /// Returns degrees clockwise, after the mirroring: 0, 90, 180 or 270.
    int Degrees() const noexcept { return degrees_; }

    /// Mirrored left to right, before the turn.
    bool Mirrored() const noexcept { return mirrored_; }

    /// Return this orientation turned clockwise by a multiple of 90 degrees, or mirrored left to right as it is seen.
    Orientation Turned(int degrees) const;
    Orientation MirroredAsSeen() const;

private:
    Orientation(int degrees, bool mirrored) : degrees_(degrees), mirrored_(mirrored) {}

    int degrees_ = 0;
    bool mirrored_ = false;
};

}  // namespace Console

#pragma once

#include "console/records/RecordChange.h"

#include <optional>

/// Corrections of what is recorded about an image.
namespace Console {

/// The values that a person corrects, as typed; null: unchanged.
struct ImageCorrection {
    std::optional<std::string> teeth, side, region, date;
};

/// Corrects images, and hangs their series again. The files stay as they are.
///
/// New teeth replace side, region and modifier by those that follow from the teeth, unless the person states them. A
/// date without a time keeps the time of day. The caller holds the transaction. Throws `UserError` for an unknown
/// image, for an image that can't be read whole, for a value that is none, for a side or region that contradicts the
/// teeth, and if nothing changes.
void CorrectImages(RecordChange& change, const std::set<Platform::Long>& images, const ImageCorrection& correction);

}  // namespace Console

#pragma once

#include "console/page/Orientation.h"

#include <string_view>

namespace Console {

/// Returns the rotation and mirroring that show a picture upright, from its Patient Orientation: the directions of its
/// rows and of its columns, as in "A\F". In the upright picture the columns point to the feet, and the rows to the
/// patient's left or to the front.
///
/// Of a direction between two axes only the first letter counts. Returns "as it was captured" for a value without a
/// vertical direction, such as that of a view from below, and for a text that is not an orientation.
Orientation StandardView(std::string_view patientOrientation);

}  // namespace Console

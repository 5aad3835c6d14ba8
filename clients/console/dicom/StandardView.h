#pragma once

#include "console/page/Orientation.h"

#include <string_view>

namespace Console {

/// How a picture is turned and mirrored to be seen upright, by its Patient Orientation: the directions of its
/// rows and of its columns, as in "A\F". The columns then run to the feet, and the rows to the patient's left
/// or to the front.
///
/// A direction between two axes counts as its first letter. A value that names no vertical direction, as that
/// of a view from below, or that is no orientation leaves the picture as it is.
Orientation StandardView(std::string_view patientOrientation);

}  // namespace Console

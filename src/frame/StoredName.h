#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The file of this system that a stored name means below a storage root; empty for a name without one.
///
/// A stored name is a path whose folders are parted by "\" ("/" counts as well), as in "0_\2.25.7.dcm".
/// No name means a file outside of its root: an empty root or name, an empty part (so a name with a
/// separator at its front, too), ".", "..", a drive's colon, a NUL character, and a link that leads out
/// of the root have no file. The file need not exist. Case is as the file system takes it. Never raises.
String FileBelow(const String& root, const String& storedName);

}  // namespace OXClass

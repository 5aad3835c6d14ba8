#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// Returns the path on this system of the file that a stored name denotes below a storage root; the empty
/// text if the name denotes none.
///
/// A stored name is a path whose parts are separated by "\" or "/", as in "0_\2.25.7.dcm". A name never leads
/// out of its root. These denote no file: an empty root or name, an empty part (so also a separator at the
/// start), ".", "..", a colon, a NUL character, a link that leads out of the root, and a link whose target
/// doesn't exist. The file itself need not exist, nor the root. Whether case matters depends on the file
/// system. Never raises `Error`. Any thread may call.
String FileBelow(const String& root, const String& storedName);

}  // namespace OXClass

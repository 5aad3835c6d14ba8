#pragma once

#include "frame/modGeneral.h"

#include <functional>

namespace OXClass {

/// The GUID class of another library of the suite: gives a text for a doctor who has none.
///
/// Empty until a client installs its own, at the start of a program, before other threads load doctors;
/// `cDoctors::GetGUID` serves until then. It may raise.
extern std::function<String()> OutsideGUID;

/// A text of that class, or of `cDoctors::GetGUID`, in upper case. Raises what the class raises.
String NewOutsideGUID();

}  // namespace OXClass

#pragma once

#include "frame/modGeneral.h"

#include <functional>

namespace OXClass {

/// Returns the text of a new GUID: 32 hexadecimal digits in upper case. Empty if the system has none. Any thread may
/// call.
String NewDoctorGUID();

/// The GUID class of another library of the suite: returns a text for a doctor who has no GUID. It may raise.
///
/// Empty until a client installs its own, which it does at the start of the program, before other threads load
/// doctors. While it is empty, `NewDoctorGUID` is used.
extern std::function<String()> OutsideGUID;

/// Returns a text of `OutsideGUID` in upper case. Raises what that raises.
String NewOutsideGUID();

}  // namespace OXClass

#pragma once

#include "frame/modGeneral.h"

#include <functional>

namespace OXClass {

/// Returns a new GUID as 32 hexadecimal digits in upper case, without braces and dashes. Returns the empty
/// text if the system can't create one. Raises nothing. Any thread may call.
String NewDoctorGUID();

/// A function that returns a GUID as text for a doctor who has none. It represents the GUID class of another
/// library of the suite, and may raise.
///
/// Empty unless a client sets it. A client must set it at the start of the program, before other threads load
/// doctors, because all threads read this one variable without a lock.
extern std::function<String()> OutsideGUID;

/// Returns a GUID in upper case: from `OutsideGUID` if that is set, otherwise from `NewDoctorGUID`. Returns
/// the empty text if the source does. Raises what `OutsideGUID` raises.
String NewOutsideGUID();

}  // namespace OXClass

#pragma once

#include <stdexcept>
#include <string>

namespace Console {

/// Raises that a DICOM file can't be used. `why` continues a message that names the file: "no pixel data".
[[noreturn]] inline void RefuseFile(const std::string& why) { throw std::runtime_error(why); }

}  // namespace Console

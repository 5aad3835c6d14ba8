#pragma once

#include <filesystem>
#include <string_view>

namespace Platform {

/// Writes a file in place of an existing one: whole or not at all. The text is written to a file of another name in the
/// same folder, flushed to the disk, and renamed. The new file has the permissions of the old one; where there is none,
/// everybody may read it.
///
/// Returns false if that fails, with the reason in `errno` (on Windows in `GetLastError()`); the old file is then
/// unchanged, and no other file is left. Any thread may call.
bool WriteAtomically(const std::filesystem::path& file, std::string_view text);

}  // namespace Platform

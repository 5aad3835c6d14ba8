#pragma once

#include <filesystem>
#include <string_view>

namespace Console {

/// Writes a file atomically in place of an earlier one: under a name that no other program uses, then flushes and
/// renames it. Throws `UserError` on a failure; the earlier file is then unchanged.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace Console

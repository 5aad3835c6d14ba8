#pragma once

#include <filesystem>
#include <string_view>

namespace Console {

/// Writes a file in place of the one that is there: whole or not at all. It is written under a name that no
/// other program uses, flushed and then renamed. Throws `UserError` when that fails; the earlier file then
/// stays.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace Console

#pragma once

#include <filesystem>
#include <string>

/// Damage to a database file, as a failing disk or a careless program does it. Each call closes what it
/// opens; connections that were open before it may go on reading their caches.
namespace TestKit {

/// Overwrites the root page of a table or an index, so that the engine reports SQLITE_CORRUPT ("database disk
/// image is malformed") for the first read of it. Writes the content of the log into the file before.
void OverwriteRootPage(const std::filesystem::path& database, const std::string& table);

}  // namespace TestKit

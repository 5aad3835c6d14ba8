#include "kit/Damage.h"

#include <fstream>
#include <sqlite3.h>
#include <stdexcept>

namespace TestKit {
namespace {

/// Returns the whole number that a select returns.
long NumberOf(sqlite3* database, const std::string& select) {
    sqlite3_stmt* compiled = nullptr;
    sqlite3_prepare_v2(database, select.c_str(), -1, &compiled, nullptr);
    const bool found = sqlite3_step(compiled) == SQLITE_ROW;
    const long number = found ? static_cast<long>(sqlite3_column_int64(compiled, 0)) : 0;
    sqlite3_finalize(compiled);
    if (!found) throw std::runtime_error("no row: " + select);
    return number;
}

}  // namespace

void OverwriteRootPage(const std::filesystem::path& database, const std::string& table) {
    sqlite3* opened = nullptr;
    sqlite3_open(database.string().c_str(), &opened);
    sqlite3_exec(opened, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
    const long size = NumberOf(opened, "PRAGMA page_size");
    const long page = NumberOf(opened, "SELECT rootpage FROM sqlite_schema WHERE name = '" + table + "'");
    sqlite3_close(opened);
    std::fstream file(database, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp((page - 1) * size);
    file << std::string(static_cast<std::size_t>(size), '\xFF');
    if (!file.flush()) throw std::runtime_error("the page can't be overwritten");
}

}  // namespace TestKit

#include "kit/Database.h"

#include "Schema.h"

#include <cstdlib>
#include <sqlite3.h>
#include <stdexcept>
#include <unistd.h>

namespace TestKit {

TemporaryFolder::TemporaryFolder() {
    String pattern = (std::filesystem::temp_directory_path() / "oxclass-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

String NewDatabase(const TemporaryFolder& folder, const String& name) {
    const std::filesystem::path path = folder.Path() / name;
    RunOnFile(path, schema::sqlite_sql);
    RunOnFile(path, schema::layouts_sql);
    return path.string();
}

void RunOnFile(const std::filesystem::path& path, std::string_view script) {
    sqlite3* database = nullptr;
    char* message = nullptr;
    sqlite3_open(path.string().c_str(), &database);
    sqlite3_exec(database, ("BEGIN;" + String(script) + "COMMIT;").c_str(), nullptr, nullptr, &message);
    sqlite3_close(database);
    if (message) throw std::runtime_error(message);
}

}  // namespace TestKit

#include "console/WholeFile.h"

#include "console/Output.h"
#include "console/SystemFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Console {

namespace fs = std::filesystem;

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
    std::error_code failure;
    if (fs::exists(path, failure) && !fs::is_regular_file(path, failure))
        throw UserError(fmt::format("can't write {}: it isn't a file", path.string()));
    std::string partial = path.string() + ".part-XXXXXX";
    const int made = mkostemp(partial.data(), O_CLOEXEC);
    if (made < 0) ComplainOfSystem("can't write", path);
    fchmod(made, 0644);
    close(made);
    try {
        SystemFile target(partial, O_WRONLY, path);
        target.Write(bytes.data(), bytes.size());
        target.Flush();
        if (rename(partial.c_str(), path.c_str()) != 0) ComplainOfSystem("can't write", path);
    } catch (...) {
        fs::remove(partial, failure);
        throw;
    }
}

}  // namespace Console

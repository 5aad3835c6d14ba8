#include "console/WholeFile.h"

#include "console/Output.h"
#include "console/SystemFile.h"
#include "platform/runtime/AtomicFile.h"

#include <fmt/format.h>

namespace Console {

namespace fs = std::filesystem;

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
    std::error_code failure;
    if (fs::exists(path, failure) && !fs::is_regular_file(path, failure))
        throw UserError(fmt::format("can't write {}: it isn't a file", path.string()));
    if (!Platform::WriteAtomically(path, bytes)) ThrowSystemError("can't write", path);
}

}  // namespace Console

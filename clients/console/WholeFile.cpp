#include "console/WholeFile.h"

#include "console/Output.h"
#include "console/SystemFile.h"

#include <fmt/format.h>

namespace Console {

namespace fs = std::filesystem;

WholeFile::WholeFile(fs::path path) : path_(std::move(path)), file_(path_) {
    std::error_code failure;
    if (fs::exists(path_, failure) && !fs::is_regular_file(path_, failure))
        throw UserError(fmt::format("can't write {}: it isn't a file", path_.string()));
    Write({});  // a file that can't be made is reported before anything is computed for it
}

void WholeFile::Write(std::string_view bytes) {
    if (!file_.Write(bytes)) ThrowSystemError("can't write", path_);
}

void WholeFile::Commit() {
    if (!file_.Commit()) ThrowSystemError("can't write", path_);
}

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
    WholeFile file(path);
    file.Write(bytes);
    file.Commit();
}

}  // namespace Console

#pragma once

#include "platform/runtime/AtomicFile.h"

namespace Console {

/// A file that is written part by part and replaces an earlier one as a whole, when it is committed; see
/// `Platform::AtomicFile`. The members throw `UserError` on a failure; the earlier file is then unchanged.
class WholeFile {
public:
    /// Throws for a path that isn't a file.
    explicit WholeFile(std::filesystem::path path);

    void Write(std::string_view bytes);
    void Commit();

private:
    std::filesystem::path path_;
    Platform::AtomicFile file_;
};

/// Writes a file atomically in place of an earlier one, as a `WholeFile`.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace Console

#include "platform/runtime/AtomicFile.h"

namespace Platform {

bool WriteAtomically(const std::filesystem::path& file, std::string_view text) {
    AtomicFile out(file);
    return out.Write(text) && out.Commit();
}

}  // namespace Platform

#include "frame/StoredName.h"

#include <algorithm>
#include <filesystem>

namespace OXClass {

using namespace Platform;

namespace {

namespace fs = std::filesystem;

bool IsPartOfAPath(const String& part) {
    constexpr std::string_view meaningful(":\0", 2);
    return !part.empty() && part != "." && part != ".." && part.find_first_of(meaningful) == String::npos;
}

/// Returns true if `path` is a link whose target doesn't exist.
bool IsDanglingLink(const fs::path& path) { return fs::is_symlink(fs::symlink_status(path)) && !fs::exists(path); }

/// Returns true if `path` is below `root` after all links in both are resolved, as far as the path exists.
bool LiesBelow(const fs::path& path, const fs::path& root) {
    const fs::path realRoot = fs::weakly_canonical(root);
    const fs::path realPath = fs::weakly_canonical(path);
    const auto [rest, ignored] = std::mismatch(realRoot.begin(), realRoot.end(), realPath.begin(), realPath.end());
    return rest == realRoot.end();
}

}  // namespace

String FileBelow(const String& root, const String& storedName) {
    if (root.empty() || root.find('\0') != String::npos || storedName.empty()) return {};
    const fs::path folder = (fs::path(root) / "").parent_path();  // without a separator at its end
    fs::path path = folder;
    try {
        for (const String& part : SplitIgnoringCase(Replace(storedName, "/", "\\"), "\\")) {
            if (!IsPartOfAPath(part)) return {};
            path /= part;
            if (IsDanglingLink(path)) return {};
        }
        return LiesBelow(path, folder) ? path.string() : String();
    } catch (const fs::filesystem_error&) {
        return {};  // a loop of links, or a folder without permission to read
    }
}

}  // namespace OXClass

#include "frame/StoredName.h"

#include <algorithm>
#include <filesystem>

namespace OXClass {
namespace {

namespace fs = std::filesystem;

bool IsPartOfAPath(const String& part) {
    constexpr std::string_view meaningful(":\0", 2);
    return !part.empty() && part != "." && part != ".." && part.find_first_of(meaningful) == String::npos;
}

/// True if `path`, its links followed as far as it exists, lies below `root`.
bool LiesBelow(const fs::path& path, const fs::path& root) {
    const fs::path realRoot = fs::weakly_canonical(root);
    const fs::path realPath = fs::weakly_canonical(path);
    const auto [rest, ignored] =
        std::mismatch(realRoot.begin(), realRoot.end(), realPath.begin(), realPath.end());
    return rest == realRoot.end();
}

}  // namespace

String FileBelow(const String& root, const String& storedName) {
    if (root.empty() || storedName.empty()) return {};
    fs::path path(root);
    for (const String& part : SplitIgnoringCase(Replace(storedName, "/", "\\"), "\\")) {
        if (!IsPartOfAPath(part)) return {};
        path /= part;
    }
    try {
        return LiesBelow(path, root) ? path.string() : String();
    } catch (const fs::filesystem_error&) {
        return {};  // a loop of links, or a folder that may not be looked into
    }
}

}  // namespace OXClass

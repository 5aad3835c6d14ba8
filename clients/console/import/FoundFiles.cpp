#include "console/import/FoundFiles.h"

#include "console/Output.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>
#include <sys/stat.h>

namespace Console {
namespace {

namespace fs = std::filesystem;

/// Reads folders, each once.
class Walk {
public:
    explicit Walk(FoundFiles& found) : found_(found) {}

    void Folder(const fs::path& folder) {
        struct stat about {};
        if (stat(folder.c_str(), &about) == 0 && !seen_.emplace(about.st_dev, about.st_ino).second) return;
        std::error_code failure;
        fs::directory_iterator entry(folder, failure);
        for (const fs::directory_iterator end; !failure && entry != end; entry.increment(failure)) {
            std::error_code unknown;
            if (entry->is_directory(unknown))
                Folder(entry->path());
            else if (entry->is_regular_file(unknown))
                found_.files.push_back({entry->path(), false});
            else if (entry->is_symlink(unknown))
                found_.unreadable.emplace_back(entry->path(), "the link leads nowhere");
        }
        if (failure) found_.unreadable.emplace_back(folder, "the folder can't be read: " + failure.message());
    }

private:
    FoundFiles& found_;
    std::set<std::pair<dev_t, ino_t>> seen_;
};

bool IsDicomDirectory(const fs::path& file) {
    return Platform::EqualsIgnoringCase(file.filename().string(), "DICOMDIR");
}

}  // namespace

FoundFiles FindFiles(const std::vector<std::string>& names) {
    FoundFiles found;
    Walk walk(found);
    for (const std::string& name : names) {
        std::error_code failure;
        if (!fs::exists(name, failure)) throw UserError(fmt::format("there is no file or folder {}", name));
        const fs::path path = name;
        if (fs::is_directory(path, failure))
            walk.Folder(path);
        else if (!fs::is_regular_file(path, failure))
            throw UserError(fmt::format("{} is neither a file nor a folder", name));
        else if (IsDicomDirectory(path))
            walk.Folder(path.has_parent_path() ? path.parent_path() : fs::path("."));
        else
            found.files.push_back({path, true});
    }
    const auto before = [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; };
    const auto same = [](const FoundFile& a, const FoundFile& b) { return a.path == b.path; };
    std::stable_sort(found.files.begin(), found.files.end(), before);
    found.files.erase(std::unique(found.files.begin(), found.files.end(), same), found.files.end());
    return found;
}

bool IsExpectedRadiograph(const FoundFile& file) {
    const std::string ending = file.path.extension().string();
    return file.named || Platform::EqualsIgnoringCase(ending, ".dcm") || Platform::EqualsIgnoringCase(ending, ".dic") ||
           Platform::EqualsIgnoringCase(ending, ".dicom");
}

}  // namespace Console

#include "Check.h"

#include "cards/CosmeticFile.h"
#include "frame/StoredName.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

using namespace OXClass;

namespace {

namespace fs = std::filesystem;

/// A storage root with links that stay in it and links that lead out of it, beside a folder that no name
/// may reach. The names are short, so that the fuzzer meets them.
struct Storage {
    Storage() {
        String pattern = (fs::temp_directory_path() / "cosmetic-XXXXXX").string();
        CHECK(mkdtemp(pattern.data()));
        top = fs::canonical(pattern);
        root = top / "root";
        fs::create_directories(root / "0_");
        fs::create_directories(top / "rooted");
        for (const fs::path& file : {root / "a", root / "0_" / "b", top / "s", top / "rooted" / "s"})
            std::ofstream(file) << "x";
        fs::create_directory_symlink("0_", root / "i");
        fs::create_directory_symlink("..", root / "u");
        fs::create_directory_symlink("../rooted", root / "o");
        fs::create_symlink("../s", root / "f");
        fs::create_symlink("l", root / "l");
    }
    ~Storage() {
        std::error_code ignored;
        fs::remove_all(top, ignored);
    }

    fs::path top, root;
};

/// True if no part of the path is a step to another folder.
bool HasPlainParts(const fs::path& path) {
    return std::all_of(path.begin(), path.end(), [](const fs::path& part) {
        return !part.empty() && part != "." && part != ".." && !part.has_root_directory();
    });
}

/// A stored name means no file, or one that lies below the root by its text and, where it is there, by
/// where its links lead.
void CheckFileOf(const Storage& storage, const String& storedName) {
    const String file = FileBelow(storage.root.string(), storedName);
    if (file.empty()) return;
    const String before = storage.root.string() + "/";
    CHECK(file.compare(0, before.size(), before) == 0 && file.find('\0') == String::npos);
    CHECK(HasPlainParts(file.substr(before.size())));
    std::error_code failure;
    const fs::path real = fs::canonical(file, failure);
    if (failure) return;
    CHECK(real.string().compare(0, before.size(), before) == 0);
}

}  // namespace

/// Any text names a root and a stored name, or raises 6; and no stored name means a file outside of its
/// root.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Storage storage;
    const String text(reinterpret_cast<const char*>(data), size);
    CheckFileOf(storage, text);
    try {
        const CosmeticFile named = CosmeticFile::Named(text);
        CHECK(named.StoredName.size() <= text.size());
        CHECK(text.compare(text.size() - named.StoredName.size(), String::npos, named.StoredName) == 0);
        CheckFileOf(storage, named.StoredName);
    } catch (const Error& failure) {
        CHECK(failure.Number == err::Overflow);
    }
    return 0;
}

#include "platform/component/registry/ClassStore.h"

#include "platform/component/registry/FolderLock.h"
#include "platform/runtime/AtomicFile.h"
#include "platform/runtime/Error.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace Platform::ClassRegistry {
namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const String& reason) {
    throw Error(err::PathFileAccess, "Runtime",
                "The registry file " + file.string() + " " + reason +
                    ". Nothing was changed; set OXCLASS_REGISTRY to use another file");
}

String TextOfFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    in.exceptions(std::ios::badbit | std::ios::failbit);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<LibraryRecord> ReadFile(const std::filesystem::path& file) {
    std::error_code failed;
    if (!std::filesystem::exists(file, failed)) return {};
    String text;
    try {
        text = TextOfFile(file);
    } catch (const std::ios::failure&) {
        if (!std::filesystem::exists(file, failed)) return {};  // removed meanwhile
        Refuse(file, "can't be read");
    }
    try {
        return Parse(text);
    } catch (const Error& failure) {
        Refuse(file, "is damaged (" + failure.Description + "): remove it and register again");
    }
}

/// Changes the libraries of the file while no other process does.
template <class Change>
void ChangeFile(Change change) {
    std::error_code failed;
    std::filesystem::path file = File();
    if (std::filesystem::is_symlink(file, failed))
        file = file.parent_path() / std::filesystem::read_symlink(file, failed);
    std::filesystem::create_directories(file.parent_path(), failed);
    const FolderLock lock(file.parent_path());
    const std::vector<LibraryRecord> before = ReadFile(file);
    std::vector<LibraryRecord> libraries = before;
    change(libraries);
    if (libraries == before) return;
    if (!libraries.empty()) {
        if (!WriteAtomically(file, Print(libraries))) Refuse(file, "can't be written");
    } else if (std::filesystem::remove(file, failed); failed) {
        Refuse(file, "can't be removed");
    }
}

/// Takes the libraries that match out of the file; false if there were none. Makes no file and no folder.
template <class Matches>
bool TakeOut(Matches matches) {
    std::size_t erased = 0;
    std::error_code failed;
    if (std::filesystem::exists(File(), failed))
        ChangeFile([&](auto& libraries) { erased = std::erase_if(libraries, matches); });
    return erased > 0;
}

/// The file is a text, so the paths in it must be texts.
void RequireTexts(const LibraryRecord& library) {
    for (const ClassRecord& entry : library.Classes)
        if (FromUtf16(ToUtf16(entry.Library)) != entry.Library)
            throw Error(err::PathFileAccess, "Runtime",
                        "The library's path is not UTF-8 text and can't be registered. Move it to another folder");
}

}  // namespace

std::filesystem::path File() {
    if (const char* named = std::getenv("OXCLASS_REGISTRY"); named && *named) {
        std::error_code failed;
        const std::filesystem::path file = std::filesystem::absolute(named, failed);
        return failed ? named : file;
    }
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return std::filesystem::path(data) / "oxclass" / "classes.json";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home && *home ? home : "/") / ".local" / "share" / "oxclass" / "classes.json";
}

bool RemoveFile(const String& path) {
    return TakeOut([&](const LibraryRecord& library) {
        return std::ranges::any_of(library.Classes, [&](const ClassRecord& entry) { return entry.Library == path; });
    });
}

void Store::Put(const LibraryRecord& library) {
    RequireTexts(library);
    ChangeFile([&](auto& libraries) {
        const auto known = std::ranges::find(libraries, library.Identifier, &LibraryRecord::Identifier);
        if (known == libraries.end())
            libraries.push_back(library);
        else
            *known = library;
    });
}

void Store::Erase(const LibraryRecord& library) {
    TakeOut([&](const LibraryRecord& known) { return known.Identifier == library.Identifier; });
}

std::optional<ClassRecord> Store::Find(const String& name) {
    for (const ClassRecord& found : Classes())
        if (EqualsIgnoringCase(found.Name, name)) return found;
    return std::nullopt;
}

std::vector<ClassRecord> Store::Classes() {
    std::vector<ClassRecord> classes;
    for (const LibraryRecord& library : ReadFile(File()))
        classes.insert(classes.end(), library.Classes.begin(), library.Classes.end());
    return classes;
}

}  // namespace Platform::ClassRegistry

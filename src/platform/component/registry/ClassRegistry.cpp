#include "platform/component/registry/ClassRegistry.h"

#include "platform/component/binary/Identifier.h"
#include "platform/component/registry/FolderLock.h"
#include "platform/runtime/AtomicFile.h"
#include "platform/runtime/Error.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>

namespace Platform::ClassRegistry {
namespace {

using Json = nlohmann::ordered_json;

[[noreturn]] void Refuse(const std::filesystem::path& file, const String& reason) {
    throw Error(err::PathFileAccess, "Runtime",
                "The registry file " + file.string() + " " + reason +
                    ". Nothing was changed; set OXCLASS_REGISTRY to use another file");
}

// ---- the libraries of this process ------------------------------------------------------------------

struct Here {
    std::mutex guard;
    std::vector<LibraryRecord> libraries;
};
Here& OfThisProcess() {
    static Here& here = *new Here;  // for calls until the process is gone
    return here;
}
thread_local bool enteringHere = false;

void Put(std::vector<LibraryRecord>& libraries, const LibraryRecord& library) {
    const auto known = std::ranges::find(libraries, library.Identifier, &LibraryRecord::Identifier);
    if (known == libraries.end())
        libraries.push_back(library);
    else
        *known = library;
}

// ---- the file ---------------------------------------------------------------------------------------

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
bool Erase(Matches matches) {
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

const ClassRecord* FindIn(const std::vector<LibraryRecord>& libraries, const String& name) {
    for (const LibraryRecord& library : libraries)
        for (const ClassRecord& found : library.Classes)
            if (EqualsIgnoringCase(found.Name, name)) return &found;
    return nullptr;
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

void Enter(const LibraryRecord& library) {
    if (!enteringHere) {
        RequireTexts(library);
        return ChangeFile([&](auto& libraries) { Put(libraries, library); });
    }
    Here& here = OfThisProcess();
    const std::scoped_lock lock(here.guard);
    const auto known = std::ranges::find(here.libraries, library.Identifier, &LibraryRecord::Identifier);
    if (known == here.libraries.end()) here.libraries.push_back(library);
}

void Remove(const String& identifier) {
    Erase([&](const LibraryRecord& library) { return library.Identifier == identifier; });
}

bool RemoveFile(const String& path) {
    return Erase([&](const LibraryRecord& library) {
        return std::ranges::any_of(library.Classes, [&](const ClassRecord& entry) { return entry.Library == path; });
    });
}

RegisterInProcess::RegisterInProcess() : before_(std::exchange(enteringHere, true)) {}

RegisterInProcess::~RegisterInProcess() { enteringHere = before_; }

std::optional<ClassRecord> Find(const String& name) {
    Here& here = OfThisProcess();
    {
        const std::scoped_lock lock(here.guard);
        if (const ClassRecord* found = FindIn(here.libraries, name)) return *found;
    }
    const std::vector<LibraryRecord> registered = ReadFile(File());
    if (const ClassRecord* found = FindIn(registered, name)) return *found;
    return std::nullopt;
}

std::vector<ClassRecord> All() {
    std::vector<ClassRecord> classes;
    const auto append = [&classes](const std::vector<LibraryRecord>& libraries) {
        for (const LibraryRecord& library : libraries)
            for (const ClassRecord& found : library.Classes)
                if (std::ranges::none_of(classes,
                                         [&](const auto& known) { return EqualsIgnoringCase(known.Name, found.Name); }))
                    classes.push_back(found);
    };
    Here& here = OfThisProcess();
    {
        const std::scoped_lock lock(here.guard);
        append(here.libraries);
    }
    append(ReadFile(File()));
    return classes;
}

// ---- the text ---------------------------------------------------------------------------------------

namespace {

[[noreturn]] void RefuseText(const String& reason) { throw Error(err::PathFileAccess, "Runtime", reason); }

String Identifier(const Json& json) {
    String text = json.at("identifier").get<String>();
    if (!IsGuid(text)) RefuseText("\"" + text + "\" is not an identifier");
    return text;
}

std::uint32_t Locale(const Json& json) {
    const Json& locale = json.at("locale");
    if (!locale.is_number_unsigned() || locale.get<std::uint64_t>() > UINT32_MAX)
        RefuseText(locale.dump() + " is not a locale");
    return locale.get<std::uint32_t>();
}

const Json& List(const Json& json, const char* name) {
    const Json& list = json.at(name);
    if (!list.is_array()) RefuseText(String(name) + " is not a list");
    return list;
}

ClassRecord ClassFrom(const Json& json) {
    return {json.at("name").get<String>(), Identifier(json), json.at("library").get<String>(),
            json.at("threading").get<String>(), json.at("instancing").get<String>()};
}

LibraryRecord LibraryFrom(const Json& json) {
    LibraryRecord library{json.at("name").get<String>(),    Identifier(json),
                          json.at("version").get<String>(), Locale(json),
                          json.at("help").get<String>(),    {}};
    for (const Json& found : List(json, "classes")) library.Classes.push_back(ClassFrom(found));
    return library;
}

Json JsonOf(const std::vector<ClassRecord>& classes) {
    Json list = Json::array();
    for (const ClassRecord& found : classes)
        list.push_back({{"name", found.Name},
                        {"identifier", found.Identifier},
                        {"library", found.Library},
                        {"threading", found.Threading},
                        {"instancing", found.Instancing}});
    return list;
}

Json JsonOf(const LibraryRecord& library) {
    return {{"name", library.Name},     {"identifier", library.Identifier}, {"version", library.Version},
            {"locale", library.Locale}, {"help", library.HelpText},         {"classes", JsonOf(library.Classes)}};
}

/// Returns JSON as text. Invalid UTF-8 in a text becomes U+FFFD.
String TextOf(const Json& json, int indent) { return json.dump(indent, ' ', false, Json::error_handler_t::replace); }

}  // namespace

std::vector<LibraryRecord> Parse(const String& text) {
    std::vector<LibraryRecord> libraries;
    try {
        const Json document = Json::parse(text);
        for (const Json& library : List(document, "libraries")) libraries.push_back(LibraryFrom(library));
    } catch (const Json::exception& failure) {
        RefuseText(failure.what());
    }
    return libraries;
}

String Print(const std::vector<LibraryRecord>& libraries) {
    Json list = Json::array();
    for (const LibraryRecord& library : libraries) list.push_back(JsonOf(library));
    const Json document{{"libraries", std::move(list)}};
    return TextOf(document, 2) + "\n";
}

String PrintClasses(const std::vector<ClassRecord>& classes) { return TextOf(JsonOf(classes), -1); }

}  // namespace Platform::ClassRegistry

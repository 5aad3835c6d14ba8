#include "platform/component/ClassRegistry.h"

#include "platform/component/Identifier.h"
#include "platform/component/WholeFile.h"
#include "platform/runtime/Error.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>

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
    static Here here;
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

std::vector<LibraryRecord> ReadFile(const std::filesystem::path& file) {
    std::error_code failed;
    if (!std::filesystem::exists(file, failed)) return {};
    std::ifstream in(file, std::ios::binary);
    const String text{std::istreambuf_iterator<char>(in), {}};
    if (!in) Refuse(file, "can't be read");
    try {
        return Parse(text);
    } catch (const Error& failure) {
        Refuse(file, "is damaged (" + failure.Description + "): remove it and register again");
    }
}

/// Changes the libraries of the file while no other process does.
template <class Change>
void ChangeFile(Change change) {
    const std::filesystem::path file = File();
    std::error_code failed;
    std::filesystem::create_directories(file.parent_path(), failed);
    const FolderLock lock(file.parent_path());
    std::vector<LibraryRecord> libraries = ReadFile(file);
    change(libraries);
    if (!libraries.empty()) {
        if (!WriteWhole(file, Print(libraries))) Refuse(file, "can't be written");
    } else if (std::filesystem::remove(file, failed); failed) {
        Refuse(file, "can't be removed");
    }
}

const ClassRecord* FindIn(const std::vector<LibraryRecord>& libraries, const String& name) {
    for (const LibraryRecord& library : libraries)
        for (const ClassRecord& found : library.Classes)
            if (EqualsIgnoringCase(found.Name, name)) return &found;
    return nullptr;
}

}  // namespace

std::filesystem::path File() {
    if (const char* named = std::getenv("OXCLASS_REGISTRY"); named && *named)
        return std::filesystem::absolute(named);
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return std::filesystem::path(data) / "oxclass" / "classes.json";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home && *home ? home : "/") / ".local" / "share" / "oxclass" /
           "classes.json";
}

void Enter(const LibraryRecord& library) {
    if (!enteringHere) return ChangeFile([&](auto& libraries) { Put(libraries, library); });
    Here& here = OfThisProcess();
    const std::scoped_lock lock(here.guard);
    Put(here.libraries, library);
}

void Remove(const String& identifier) {
    ChangeFile([&](auto& libraries) {
        std::erase_if(libraries,
                      [&](const LibraryRecord& library) { return library.Identifier == identifier; });
    });
}

EnteringHere::EnteringHere() { enteringHere = true; }

EnteringHere::~EnteringHere() { enteringHere = false; }

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
                if (std::ranges::none_of(classes, [&](const auto& known) {
                        return EqualsIgnoringCase(known.Name, found.Name);
                    }))
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

String Identifier(const Json& json) {
    String text = json.at("identifier").get<String>();
    if (!IsGuid(text)) throw Error(err::PathFileAccess, "Runtime", "\"" + text + "\" is no identifier");
    return text;
}

ClassRecord ClassFrom(const Json& json) {
    return {json.at("name").get<String>(), Identifier(json), json.at("library").get<String>(),
            json.at("threading").get<String>(), json.at("instancing").get<String>()};
}

LibraryRecord LibraryFrom(const Json& json) {
    LibraryRecord library{json.at("name").get<String>(),    Identifier(json),
                          json.at("version").get<String>(), json.at("locale").get<std::uint32_t>(),
                          json.at("help").get<String>(),    {}};
    for (const Json& found : json.at("classes")) library.Classes.push_back(ClassFrom(found));
    return library;
}

Json JsonOf(const LibraryRecord& library) {
    Json classes = Json::array();
    for (const ClassRecord& found : library.Classes)
        classes.push_back({{"name", found.Name},
                           {"identifier", found.Identifier},
                           {"library", found.Library},
                           {"threading", found.Threading},
                           {"instancing", found.Instancing}});
    return {{"name", library.Name},     {"identifier", library.Identifier}, {"version", library.Version},
            {"locale", library.Locale}, {"help", library.HelpText},         {"classes", std::move(classes)}};
}

}  // namespace

std::vector<LibraryRecord> Parse(const String& text) {
    std::vector<LibraryRecord> libraries;
    try {
        const Json document = Json::parse(text);
        for (const Json& library : document.at("libraries")) libraries.push_back(LibraryFrom(library));
    } catch (const Json::exception& failure) {
        throw Error(err::PathFileAccess, "Runtime", failure.what());
    }
    return libraries;
}

String Print(const std::vector<LibraryRecord>& libraries) {
    Json list = Json::array();
    for (const LibraryRecord& library : libraries) list.push_back(JsonOf(library));
    const Json document{{"libraries", std::move(list)}};
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace Platform::ClassRegistry

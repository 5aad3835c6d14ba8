#include "platform/component/registry/ClassRegistry.h"

#include "platform/component/binary/Identifier.h"
#include "platform/component/registry/ClassStore.h"
#include "platform/runtime/Error.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>

namespace Platform::ClassRegistry {
namespace {

using Json = nlohmann::ordered_json;

struct Here {
    std::mutex guard;
    std::vector<LibraryRecord> libraries;
};
Here& OfThisProcess() {
    static Here& here = *new Here;  // for calls until the process is gone
    return here;
}
thread_local bool enteringHere = false;

std::vector<ClassRecord> ClassesOfThisProcess() {
    Here& here = OfThisProcess();
    const std::scoped_lock lock(here.guard);
    std::vector<ClassRecord> classes;
    for (const LibraryRecord& library : here.libraries)
        classes.insert(classes.end(), library.Classes.begin(), library.Classes.end());
    return classes;
}

const ClassRecord* FindIn(const std::vector<ClassRecord>& classes, const String& name) {
    const auto found =
        std::ranges::find_if(classes, [&](const ClassRecord& entry) { return EqualsIgnoringCase(entry.Name, name); });
    return found == classes.end() ? nullptr : &*found;
}

}  // namespace

void Enter(const LibraryRecord& library) {
    if (!enteringHere) return Store::Put(library);
    Here& here = OfThisProcess();
    const std::scoped_lock lock(here.guard);
    const auto known = std::ranges::find(here.libraries, library.Identifier, &LibraryRecord::Identifier);
    if (known == here.libraries.end()) here.libraries.push_back(library);
}

void Remove(const LibraryRecord& library) { Store::Erase(library); }

RegisterInProcess::RegisterInProcess() : before_(std::exchange(enteringHere, true)) {}

RegisterInProcess::~RegisterInProcess() { enteringHere = before_; }

std::optional<ClassRecord> Find(const String& name) {
    Here& here = OfThisProcess();
    {
        const std::scoped_lock lock(here.guard);
        for (const LibraryRecord& library : here.libraries)
            if (const ClassRecord* found = FindIn(library.Classes, name)) return *found;
    }
    return Store::Find(name);
}

std::vector<ClassRecord> All() {
    std::vector<ClassRecord> classes;
    const auto append = [&classes](const std::vector<ClassRecord>& more) {
        for (const ClassRecord& found : more)
            if (!FindIn(classes, found.Name)) classes.push_back(found);
    };
    append(ClassesOfThisProcess());
    append(Store::Classes());
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

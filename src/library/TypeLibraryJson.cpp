#include "library/ClassTable.h"
#include "library/TypeLibrary.h"
#include "platform/HostClasses.h"
#include "platform/component/dispatch/Description.h"

#include <nlohmann/json.hpp>

namespace OXClass {

using namespace Platform;

namespace {

using Json = nlohmann::ordered_json;
using Platform::Enumeration;
using Platform::String;

Json JsonOf(std::span<const Enumeration> enumerations) {
    Json list = Json::array();
    for (const Enumeration& enumeration : enumerations) {
        Json values = Json::array();
        for (const auto& value : enumeration.Values) values.push_back({{"name", value.Name}, {"value", value.Value}});
        list.push_back({{"name", enumeration.Name}, {"values", std::move(values)}});
    }
    return list;
}

Json JsonOf(const Platform::LibraryDescription& library) {
    return {{"name", library.Name},       {"identifier", library.Identifier},
            {"version", library.Version}, {"fileVersion", library.FileVersion},
            {"locale", library.Locale},   {"help", library.HelpText}};
}

Json MembersOf(const Platform::Interface& members) { return Json::parse(Platform::DescriptionText(members)); }

Json JsonOf(const ClassEntry& entry, const Platform::LibraryDescription& library) {
    Json json{{"name", String(library.Name) + "." + entry.Name},
              {"identifier", entry.ClassID},
              {"interface", entry.InterfaceID},
              {"global", entry.IsGlobal}};
    json.update(MembersOf(entry.Make()->Describe()));
    return json;
}

}  // namespace

Platform::String TypeLibraryJson() {
    Json json{{"library", JsonOf(ThisLibrary())}, {"enumerations", JsonOf(PublicEnumerations())}};
    Json& classes = json["classes"] = Json::array();
    for (const ClassEntry& entry : ClassTable()) classes.push_back(JsonOf(entry, ThisLibrary()));
    Json& host = json["host"] = {{"enumerations", JsonOf(Platform::HostEnumerations())}};
    for (const Platform::Interface* members : Platform::HostInterfaces())
        host["classes"].push_back(MembersOf(*members));
    return json.dump(1) + "\n";
}

}  // namespace OXClass

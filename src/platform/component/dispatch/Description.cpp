#include "platform/component/dispatch/Description.h"

#include <nlohmann/json.hpp>

namespace Platform {
namespace {

using Json = nlohmann::ordered_json;
using Kind = MemberType::Kind;

const char* TypeText(const MemberType& type) {
    switch (type.Is) {
        case Kind::None: return "none";
        case Kind::Boolean: return "boolean";
        case Kind::Int16: return "short";
        case Kind::Int32: return "long";
        case Kind::Float32: return "single";
        case Kind::Float64: return "double";
        case Kind::Days: return "date";
        case Kind::Text: return "text";
        case Kind::Any: return "variant";
        case Kind::Object: return "object";
        case Kind::Enumeration: return "enumeration";
    }
    return "none";
}

const char* KindText(MemberKind kind) {
    switch (kind) {
        case MemberKind::Operation: return "operation";
        case MemberKind::Get: return "get";
        case MemberKind::Put: return "put";
        case MemberKind::PutRef: return "putref";
    }
    return "operation";
}

/// Enters a type under `key`, and its name under `nameKey` where it has one.
void PutType(Json& json, const char* key, const char* nameKey, const MemberType& type) {
    json[key] = TypeText(type);
    if (*type.Name) json[nameKey] = type.Name;
}

Json JsonOf(const Argument& argument) {
    Json json{{"name", argument.Name}, {"help", argument.Help}};
    PutType(json, "type", "of", argument.Type);
    json["byReference"] = argument.ByReference;
    json["comesBack"] = argument.ComesBack;
    json["optional"] = argument.Optional;
    return json;
}

Json JsonOf(const Member& member) {
    Json json{{"name", member.Name}, {"help", member.Help}, {"kind", KindText(member.Kind)}, {"id", member.DispId}};
    json["arguments"] = Json::array();
    for (const Argument& argument : member.Arguments) json["arguments"].push_back(JsonOf(argument));
    PutType(json, "result", "resultOf", member.Result);
    return json;
}

}  // namespace

String DescriptionText(const Interface& members) {
    Json json{{"class", members.ClassName()}, {"help", members.Help()}, {"members", Json::array()}};
    for (const Member& member : members.Members()) json["members"].push_back(JsonOf(member));
    return json.dump();
}

}  // namespace Platform

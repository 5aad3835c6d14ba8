#pragma once

#include "console/Output.h"

#include "platform/runtime/Text.h"

#include <fmt/format.h>
#include <span>

namespace Console {

/// A text of a record that can be shown and set, by the name of its class's property.
template <class Record>
struct TextField {
    const char* name;
    std::string Record::*text;
};

/// Returns name and value of "FIELD=VALUE". Throws `UserError` for a text of another form.
inline std::pair<std::string, std::string> AssignmentOf(const std::string& text) {
    const auto equals = text.find('=');
    if (equals == std::string::npos) throw UserError(fmt::format("\"{}\" sets nothing; write FIELD=VALUE", text));
    return {text.substr(0, equals), text.substr(equals + 1)};
}

/// Sets the text of this name, without regard to case. Returns false if the record has no such text.
template <class Record>
bool SetText(Record& record, std::span<const TextField<Record>> fields, const std::string& name,
             const std::string& value) {
    for (const TextField<Record>& field : fields) {
        if (!Platform::EqualsIgnoringCase(field.name, name)) continue;
        record.*field.text = value;
        return true;
    }
    return false;
}

/// Adds the texts to the output about the record.
template <class Record>
void AddTexts(nlohmann::ordered_json& shown, const Record& record, std::span<const TextField<Record>> fields) {
    for (const TextField<Record>& field : fields) shown[field.name] = record.*field.text;
}

}  // namespace Console

#include "platform/adodb/ConnectionString.h"

#include "platform/runtime/Convert.h"

#include <algorithm>

namespace ADODB {

using namespace Platform;

namespace {

[[noreturn]] void Refuse(const String& why) {
    RaiseAdo(MultipleStepFailed, ConnectionSource, "The connection string can't be read: " + why + ".");
}

/// Returns the quoted value that begins at `at`, and moves `at` behind its closing quote.
String TakeQuoted(std::string_view text, std::size_t& at) {
    const char quote = text[at++];
    String value;
    for (; at < text.size(); ++at) {
        if (text[at] == quote) {
            if (at + 1 >= text.size() || text[at + 1] != quote) break;
            ++at;
        }
        value += text[at];
    }
    if (at == text.size()) Refuse("a quoted value has no end");
    ++at;
    return value;
}

String TakeValue(std::string_view text, std::size_t& at) {
    while (at < text.size() && text[at] == ' ') ++at;
    if (at < text.size() && (text[at] == '\'' || text[at] == '"')) {
        String value = TakeQuoted(text, at);
        while (at < text.size() && text[at] == ' ') ++at;
        if (at < text.size() && text[at] != ';') Refuse("text follows a quoted value");
        return value;
    }
    const std::size_t end = std::min(text.find(';', at), text.size());
    String value = Trim(text.substr(at, end - at));
    at = end;
    return value;
}

bool IsOneOf(std::string_view key, std::initializer_list<std::string_view> keys) {
    return std::any_of(keys.begin(), keys.end(), [&](std::string_view one) { return EqualsIgnoringCase(key, one); });
}

/// Returns the key of a setting in lower case, which may be written by another name.
String KeyNamed(std::string_view name) {
    if (EqualsIgnoringCase(name, "UID")) return "user id";
    if (EqualsIgnoringCase(name, "PWD")) return "password";
    return LCase(name);
}

/// Returns a value as it must be written to be read back unchanged.
String Quoted(const String& value) {
    const bool plain = Trim(value) == value && value.find_first_of(";'\"") == String::npos;
    return plain ? value : "'" + Replace(value, "'", "''") + "'";
}

}  // namespace

ConnectionString::ConnectionString(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t end = text.find_first_of("=;", at);
        const String key = Trim(text.substr(at, std::min(end, text.size()) - at));
        if (end == std::string_view::npos || text[end] == ';') {
            // The part may belong to a password, and is not shown.
            if (!key.empty())
                Refuse("the part behind setting " + CStr(static_cast<Long>(settings_.size())) +
                       " has no \"=\"; a value that contains \";\" must be in quotes");
            if (end == std::string_view::npos) break;
            at = end;
            continue;
        }
        if (key.empty()) Refuse("a value has no key");
        at = end + 1;
        Set(key, TakeValue(text, at));
    }
}

String ConnectionString::Value(std::string_view key, const String& otherwise) const {
    const String wanted = KeyNamed(key);
    for (const auto& [name, value] : settings_)
        if (name == wanted) return value;
    return otherwise;
}

void ConnectionString::Set(std::string_view key, const String& value) {
    String set = KeyNamed(key);
    for (auto& [name, old] : settings_) {
        if (name != set) continue;
        old = value;
        return;
    }
    settings_.emplace_back(std::move(set), value);
}

String ConnectionString::TextWithout(std::initializer_list<std::string_view> keys) const {
    String text;
    for (const auto& [key, value] : settings_)
        if (!IsOneOf(key, keys)) text += (text.empty() ? "" : ";") + key + "=" + Quoted(value);
    return text;
}

String ConnectionString::FirstUnknown(std::initializer_list<std::string_view> known) const {
    for (const auto& setting : settings_)
        if (!IsOneOf(setting.first, known)) return setting.first;
    return {};
}

}  // namespace ADODB

#pragma once

#include "platform/adodb/Enums.h"

namespace ADODB {

/// The settings of a connection string, "key=value;key=value".
///
/// Keys have no case. A value that holds ";" or quotes stands in '...' or "...", a quote of the same
/// kind inside it doubled. Of a key given twice the last one counts.
class ConnectionString {
public:
    /// Raises 0x80040E21 for a part without "=", an empty key, or a quote that doesn't end.
    explicit ConnectionString(std::string_view text);

    /// The value of a key, or `otherwise`.
    String Value(std::string_view key, const String& otherwise = {}) const;

    /// Sets a key, as a later part of the text would.
    void Set(std::string_view key, const String& value);

    /// The first key that is none of `known`, or the empty text.
    String FirstUnknown(std::initializer_list<std::string_view> known) const;

private:
    std::vector<std::pair<String, String>> settings_;  // keys in lower case
};

}  // namespace ADODB

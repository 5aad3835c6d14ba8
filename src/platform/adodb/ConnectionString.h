#pragma once

#include "platform/adodb/Enums.h"

namespace ADODB {

/// The settings of a connection string, "key=value;key=value".
///
/// Keys are compared without regard to case. A value that contains ";" or quotes is written in '...' or "...", with a
/// quote of the same kind doubled. If a key occurs more than once, the last one is used. "UID" and "PWD", which ODBC
/// uses, are other names of the keys "User ID" and "Password". A value; one thread at a time.
class ConnectionString {
public:
    /// Parses the text. Raises 0x80040E21 for a part without "=", an empty key, or a quote without an end.
    explicit ConnectionString(std::string_view text);

    /// Returns the value of a key, without the blanks around it unless it was quoted, or `otherwise` if the key does
    /// not occur.
    String Value(std::string_view key, const String& otherwise = {}) const;

    /// Sets the value of a key, in place of earlier ones.
    void Set(std::string_view key, const String& value);

    /// Returns all settings in the order in which they were given, with keys in lower case. A provider calls it to pass
    /// them on. Valid as long as this object and until `Set` is called.
    const std::vector<std::pair<String, String>>& All() const noexcept { return settings_; }

    /// Returns the text of all settings without those of these keys, in the order in which they were given and with
    /// keys in lower case. A value is quoted if it must be.
    String TextWithout(std::initializer_list<std::string_view> keys) const;

    /// Returns the first key that is not in `known`, in lower case, or an empty text if all keys are known. A provider
    /// calls it to reject settings that it does not support.
    String FirstUnknown(std::initializer_list<std::string_view> known) const;

private:
    std::vector<std::pair<String, String>> settings_;  // keys in lower case
};

}  // namespace ADODB

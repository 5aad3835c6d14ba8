#include "platform/runtime/Text.h"

#include "platform/runtime/Error.h"

#include <algorithm>
#include <utf8proc.h>

namespace Platform {
namespace {

constexpr char32_t Broken = 0xFFFFFFFF;

bool IsAscii(std::string_view text) {
    unsigned char all = 0;
    for (const char c : text) all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

/// One character of a text: its code point (`Broken` for a stray byte), its bytes and its units.
struct Character {
    char32_t code;
    std::size_t bytes;
    Long units;
};

Character CharacterAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    if (lead < 0x80) return {lead, 1, 1};
    utf8proc_int32_t code = 0;
    const auto bytes = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + at,
                                        static_cast<utf8proc_ssize_t>(text.size() - at), &code);
    if (bytes <= 0) return {Broken, 1, 1};
    return {static_cast<char32_t>(code), static_cast<std::size_t>(bytes), code >= 0x10000 ? 2 : 1};
}

/// Returns the byte at which the first `units` units end; a pair that would be split is left out.
std::size_t ByteOfUnit(std::string_view text, Long units) {
    std::size_t at = 0;
    while (at < text.size() && units > 0) {
        const Character c = CharacterAt(text, at);
        if (c.units > units) break;
        units -= c.units;
        at += c.bytes;
    }
    return at;
}

void AppendCode(String& out, char32_t code) {
    utf8proc_uint8_t bytes[4];
    const auto count = utf8proc_encode_char(static_cast<utf8proc_int32_t>(code), bytes);
    out.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
}

char32_t Upper(char32_t code) {
    if (code < 0x80) return code >= 'a' && code <= 'z' ? code - 32 : code;
    constexpr char32_t SharpS = 0xDF;  // its capital has no place in the code pages of the clients
    if (code == SharpS) return code;
    return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(code)));
}

char32_t Lower(char32_t code) {
    if (code < 0x80) return code >= 'A' && code <= 'Z' ? code + 32 : code;
    return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(code)));
}

template <class Map>
String MapCharacters(std::string_view text, Map map) {
    if (IsAscii(text)) {
        String ascii(text);
        for (char& c : ascii) c = static_cast<char>(map(static_cast<unsigned char>(c)));
        return ascii;
    }
    String out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Character c = CharacterAt(text, at);
        if (c.code == Broken)
            out += text[at];
        else
            AppendCode(out, map(c.code));
        at += c.bytes;
    }
    return out;
}

}  // namespace

Long Len(std::string_view text) {
    if (IsAscii(text)) return static_cast<Long>(text.size());
    Long units = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Character c = CharacterAt(text, at);
        units += c.units;
        at += c.bytes;
    }
    return units;
}

String Left(std::string_view text, Long count) {
    if (count < 0) Raise(err::InvalidCall);
    if (static_cast<std::size_t>(count) >= text.size()) return String(text);
    return String(text.substr(0, ByteOfUnit(text, count)));
}

String Right(std::string_view text, Long count) {
    if (count < 0) Raise(err::InvalidCall);
    const Long length = Len(text);
    if (count >= length) return String(text);
    return Mid(text, length - count + 1);
}

String Mid(std::string_view text, Long start) {
    if (start < 1) Raise(err::InvalidCall);
    const Long skipped = start - 1;
    std::size_t at = ByteOfUnit(text, skipped);
    // A start inside a surrogate pair: the second half alone is not a character.
    if (at < text.size() && Len(text.substr(0, at)) < skipped) at += CharacterAt(text, at).bytes;
    return String(text.substr(at));
}

String Mid(std::string_view text, Long start, Long count) {
    if (count < 0) Raise(err::InvalidCall);
    return Left(Mid(text, start), count);
}

String Trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return String(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

String UCase(std::string_view text) {
    return MapCharacters(text, [](char32_t code) { return Upper(code); });
}

String LCase(std::string_view text) {
    return MapCharacters(text, [](char32_t code) { return Lower(code); });
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    for (std::size_t at = 0; at < std::min(a.size(), b.size()); ++at) {
        const auto x = static_cast<unsigned char>(a[at]), y = static_cast<unsigned char>(b[at]);
        if (x >= 0x80 || y >= 0x80) return LCase(a) == LCase(b);
        if (Lower(x) != Lower(y)) return false;
    }
    return a.size() == b.size();
}

String Replace(std::string_view text, std::string_view find, std::string_view by) {
    String out;
    std::size_t from = 0;
    for (std::size_t at; !find.empty() && (at = text.find(find, from)) != std::string_view::npos;) {
        out.append(text, from, at - from);
        out.append(by);
        from = at + find.size();
    }
    out.append(text, from);
    return out;
}

bool Contains(std::string_view text, std::string_view sought) { return text.find(sought) != std::string_view::npos; }

std::vector<String> SplitIgnoringCase(std::string_view text, std::string_view delimiter) {
    if (text.empty()) return {};
    if (delimiter.empty()) return {String(text)};
    std::vector<String> parts;
    String part;
    const Long width = Len(delimiter);
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view rest = text.substr(at);
        const std::size_t bytes = ByteOfUnit(rest, width);
        if (EqualsIgnoringCase(rest.substr(0, bytes), delimiter)) {
            parts.push_back(std::move(part));
            part.clear();
            at += bytes;
        } else {
            const std::size_t one = CharacterAt(text, at).bytes;
            part.append(text, at, one);
            at += one;
        }
    }
    parts.push_back(std::move(part));
    return parts;
}

std::size_t ToUtf16(std::string_view text, char16_t* units) {
    const char16_t* const first = units;
    for (std::size_t at = 0; at < text.size();) {
        const Character c = CharacterAt(text, at);
        const char32_t code = c.code == Broken ? 0xFFFD : c.code;
        if (code >= 0x10000) {
            *units++ = static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            *units++ = static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            *units++ = static_cast<char16_t>(code);
        }
        at += c.bytes;
    }
    return static_cast<std::size_t>(units - first);
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string out(text.size(), u'\0');
    out.resize(ToUtf16(text, out.data()));
    return out;
}

String FromUtf16(std::u16string_view text) {
    String out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char32_t unit = text[at];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const bool low = unit >= 0xDC00 && unit < 0xE000;
        if (high && at + 1 < text.size() && text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000) {
            AppendCode(out, 0x10000 + ((unit - 0xD800) << 10) + (text[at + 1] - 0xDC00U));
            ++at;
        } else {
            AppendCode(out, high || low ? 0xFFFD : unit);
        }
    }
    return out;
}

}  // namespace Platform

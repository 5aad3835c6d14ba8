#include "console/dicom/DicomText.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <optional>

namespace Console {
namespace {

/// A character set: the number in its DICOM name, the escape sequence that switches it on within a text
/// (without the escape character), and the C library's name.
struct CharacterSet {
    std::string_view number;
    std::string_view escape;
    const char* encoding;
};

constexpr std::array<CharacterSet, 16> Sets{{{"100", "-A", "ISO-8859-1"},
                                             {"101", "-B", "ISO-8859-2"},
                                             {"109", "-C", "ISO-8859-3"},
                                             {"110", "-D", "ISO-8859-4"},
                                             {"144", "-L", "ISO-8859-5"},
                                             {"127", "-G", "ISO-8859-6"},
                                             {"126", "-F", "ISO-8859-7"},
                                             {"138", "-H", "ISO-8859-8"},
                                             {"148", "-M", "ISO-8859-9"},
                                             {"203", "-b", "ISO-8859-15"},
                                             {"166", "-T", "TIS-620"},
                                             {"13", ")I", "SHIFT_JIS"},
                                             {"149", "$)C", "EUC-KR"},
                                             {"58", "$)A", "GB2312"},
                                             {"18030", "", "GB18030"},
                                             {"GBK", "", "GBK"}}};

/// Escape sequences that make every byte up to the next escape part of a two-byte Japanese character.
constexpr std::array<std::string_view, 2> TwoByteEscapes{"$B", "$(D"};

/// Escape sequences back to plain ASCII, or to the Roman letters that differ from it in two signs.
constexpr std::array<std::string_view, 2> PlainEscapes{"(B", "(J"};

constexpr char Escape = '\x1b';

/// Returns the number of bytes of the UTF-8 sequence that `text` starts with, 0 if it is none.
std::size_t Utf8Length(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool outside = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    const bool follows = std::ranges::all_of(text.substr(1, length - 1),
                                             [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; });
    return follows && !overlong && !outside ? length : 0;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = Utf8Length(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string Utf8OrLatin1(std::string_view text) {
    if (IsUtf8(text)) return std::string(text);
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xC0 | (byte >> 6));
            out += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return out;
}

/// Returns the text in UTF-8, or nothing when it does not follow `encoding`.
std::optional<std::string> Converted(std::string bytes, const char* encoding) {
    const iconv_t converter = iconv_open("UTF-8", encoding);
    if (converter == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
    std::string out(bytes.size() * 4 + 16, '\0');
    char* from = bytes.data();
    char* to = out.data();
    std::size_t left = bytes.size();
    std::size_t room = out.size();
    const std::size_t result = iconv(converter, &from, &left, &to, &room);
    iconv_close(converter);
    if (result == static_cast<std::size_t>(-1) || left > 0) return std::nullopt;
    out.resize(out.size() - room);
    return out;
}

std::optional<std::string> Converted(std::string_view bytes, const std::string& encoding) {
    if (encoding.empty()) return Utf8OrLatin1(bytes);
    return Converted(std::string(bytes), encoding.c_str());
}

/// Converts a text with escape sequences. A character set that an escape sequence selects is valid up to the next
/// delimiter of a name or a value.
class ExtendedText {
public:
    ExtendedText(std::string_view bytes, const std::string& baseEncoding) : rest(bytes), base(baseEncoding) {}

    std::optional<std::string> Decode() {
        while (!rest.empty()) {
            if (!(rest[0] == Escape ? Switch() : Append())) return std::nullopt;
        }
        return out;
    }

private:
    bool Starts(std::string_view escape) const { return !escape.empty() && rest.substr(1).starts_with(escape); }

    bool Switch() {
        const auto starts = [this](std::string_view escape) { return Starts(escape); };
        const auto* plain = std::ranges::find_if(PlainEscapes, starts);
        const auto* twoByte = std::ranges::find_if(TwoByteEscapes, starts);
        const auto* set = std::ranges::find_if(Sets, starts, &CharacterSet::escape);
        std::size_t length = 0;
        if (plain != PlainEscapes.end()) {
            japanese = {};
            length = plain->size();
        } else if (twoByte != TwoByteEscapes.end()) {
            japanese = *twoByte;
            length = twoByte->size();
        } else if (set != Sets.end()) {
            japanese = {};
            current = set->encoding;
            length = set->escape.size();
        }
        rest.remove_prefix(length + 1);
        return length > 0;
    }

    /// Appends the bytes up to the next escape or, outside two-byte characters, just behind the next delimiter.
    bool Append() {
        std::size_t end = std::min(rest.find(Escape), rest.size());
        if (japanese.empty()) end = std::min(end, rest.find_first_of("\\^=\r\n"));
        const bool delimited = japanese.empty() && end < rest.size() && rest[end] != Escape;
        if (delimited) ++end;
        const std::string_view run = rest.substr(0, end);
        const auto text = japanese.empty() ? Converted(run, current) : Japanese(run);
        if (!text) return false;
        out += *text;
        rest.remove_prefix(end);
        if (delimited) current = base;
        return true;
    }

    std::optional<std::string> Japanese(std::string_view run) const {
        return Converted(Escape + std::string(japanese) + std::string(run) + Escape + "(B", "ISO-2022-JP-2");
    }

    std::string_view rest;
    std::string base;
    std::string current = base;
    std::string_view japanese;  ///< the two-byte escape that is valid, or empty
    std::string out;
};

/// Finds a set by the number in its name: manufacturers write "ISO_IR 100", "ISO 2022 IR 100", "ISO-IR 100".
std::string EncodingOf(std::string_view term) {
    const auto last = term.find_last_not_of(' ');
    term = term.substr(0, last == std::string_view::npos ? 0 : last + 1);
    const auto notDigit = term.find_last_not_of("0123456789");
    const std::string_view number = notDigit == std::string_view::npos ? term : term.substr(notDigit + 1);
    const auto* set = std::ranges::find_if(
        Sets, [&](const CharacterSet& known) { return known.number == number || known.number == term; });
    return set == Sets.end() ? std::string() : set->encoding;
}

}  // namespace

TextDecoder::TextDecoder(std::string_view specificCharacterSet)
    : base(EncodingOf(specificCharacterSet.substr(0, specificCharacterSet.find('\\')))) {}

std::string TextDecoder::Decode(std::string_view bytes) const {
    const bool extended = bytes.find(Escape) != std::string_view::npos;
    const auto text = extended ? ExtendedText(bytes, base).Decode() : Converted(bytes, base);
    return text ? *text : Utf8OrLatin1(bytes);
}

}  // namespace Console

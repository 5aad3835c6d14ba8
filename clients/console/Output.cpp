#include "console/Output.h"

#include "platform/runtime/Convert.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <unistd.h>

namespace Console {
namespace {

using Json = nlohmann::ordered_json;

double Seconds() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

std::string CellText(const Json& value) {
    if (value.is_null()) return {};
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    return value.is_string() ? Printable(value.get<std::string>()) : value.dump();
}

/// Returns the number of bytes at `at` that are one character which changes the direction of writing, or a line or
/// paragraph separator; 0 for any other.
std::size_t MarkAt(std::string_view text, std::size_t at) {
    const std::string_view two = text.substr(at, 2), three = text.substr(at, 3);
    if (two == "\u061C") return 2;
    for (const std::string_view mark : {"\u200E", "\u200F", "\u2028", "\u2029", "\u202A", "\u202B", "\u202C", "\u202D",
                                        "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"})
        if (three == mark) return 3;
    return 0;
}

/// Returns the number of bytes at `at` that are the delete character or a control character of U+0080 to U+009F; 0 for
/// any other.
std::size_t UpperControlAt(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0; };
    if (byte(at) == 0x7F) return 1;
    return byte(at) == 0xC2 && byte(at + 1) >= 0x80 && byte(at + 1) <= 0x9F ? 2 : 0;
}

/// Returns a value as a field of a CSV file: in quotes where it contains a separator, a quote or a line break.
std::string CsvField(const Json& value) {
    if (value.is_null()) return {};
    std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    return "\"" + Platform::Replace(text, "\"", "\"\"") + "\"";
}

/// Returns true if `a` is sorted in front of `b`.
bool IsBefore(const Json& a, const Json& b) {
    const auto kind = [](const Json& value) { return value.is_string() ? 2 : value.is_null() ? 0 : 1; };
    if (kind(a) != kind(b)) return kind(a) < kind(b);
    if (!a.is_string()) return a < b;
    return Platform::UCase(a.get<std::string>()) < Platform::UCase(b.get<std::string>());
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    for (const char16_t unit : Platform::ToUtf16(text)) {
        const bool wide = (unit >= 0x1100 && unit <= 0x115F) || (unit >= 0x2E80 && unit <= 0xA4CF) ||
                          (unit >= 0xAC00 && unit <= 0xD7A3) || (unit >= 0xF900 && unit <= 0xFAFF) ||
                          (unit >= 0xFE30 && unit <= 0xFE6F) || (unit >= 0xFF00 && unit <= 0xFF60);
        width += wide ? 2 : 1;
    }
    return width;
}

std::string Printable(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const std::size_t mark = MarkAt(text, i); mark > 0) text.erase(i--, mark);
        if (i >= text.size()) continue;
        if (static_cast<unsigned char>(text[i]) < ' ') text[i] = ' ';
        if (const std::size_t size = UpperControlAt(text, i); size > 0) text.replace(i, size, size, ' ');
    }
    return text;
}

Json AsJson(const Platform::Variant& value) {
    using namespace Platform;
    if (value.Is<Null>() || value.Is<Empty>()) return nullptr;
    if (value.Is<bool>()) return value.As<bool>();
    if (value.Is<Date>()) return DateText(value.As<Date>());
    if (value.Is<Long>()) return value.As<Long>();
    if (value.Is<Integer>()) return value.As<Integer>();
    if (value.Is<std::int64_t>()) return value.As<std::int64_t>();
    if (value.Is<double>()) return value.As<double>();
    return CStr(value);
}

std::string DateText(Platform::Date date) {
    if (date.Days == 0) return {};
    const bool wholeDay = date.Days == static_cast<double>(static_cast<long>(date.Days));
    return Platform::FormatDate(date, wholeDay ? "yyyy-mm-dd" : "yyyy-mm-dd hh:nn:ss");
}

void PrintJson(const Json& json) {
    const std::string text = json.dump(2, ' ', false, Json::error_handler_t::replace);
    std::string escaped;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t control = UpperControlAt(text, i), size = control > 0 ? control : MarkAt(text, i);
        if (size == 0) {
            escaped += text[i];
            continue;
        }
        // All of these are single units of UTF-16.
        escaped += fmt::format("\\u{:04x}", static_cast<unsigned>(Platform::ToUtf16(text.substr(i, size)).at(0)));
        i += size - 1;
    }
    fmt::print("{}\n", escaped);
}

void PrintFields(const Json& shown, bool asJson) {
    if (asJson) return PrintJson(shown);
    std::size_t width = 0;
    for (const auto& [name, value] : shown.items()) width = std::max(width, name.size());
    for (const auto& [name, value] : shown.items()) fmt::print("{:<{}} {}\n", name, width + 1, CellText(value));
}

void List::Print(bool asJson, const std::string& whenEmpty) const {
    if (asJson) return PrintJson(Rows());
    if (rows_.empty()) return fmt::print("{}\n", whenEmpty);
    PrintText();
}

std::size_t List::ColumnOf(const std::string& key) const {
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (Platform::EqualsIgnoringCase(columns_[i].key, key)) return i;
        keys.push_back(columns_[i].key);
    }
    throw UserError(
        fmt::format("the list has no column \"{}\" to sort by; it has {}", Printable(key), fmt::join(keys, ", ")));
}

void List::Arrange(const ListForm& form) {
    if (!form.sort.empty()) {
        const bool reverse = form.sort.front() == '-';
        const std::size_t column = ColumnOf(form.sort.substr(reverse ? 1 : 0));
        std::ranges::stable_sort(rows_, [&](const auto& a, const auto& b) {
            return reverse ? IsBefore(b[column], a[column]) : IsBefore(a[column], b[column]);
        });
    }
    if (form.limit > 0 && rows_.size() > form.limit) rows_.resize(form.limit);
}

void List::Print(const ListForm& form, const std::string& whenEmpty) {
    Arrange(form);
    if (form.csv) return PrintCsv();
    Print(form.json, whenEmpty);
}

void List::PrintCsv() const {
    std::vector<std::string> fields;
    for (const Column& column : columns_) fields.push_back(CsvField(column.key));
    fmt::print("{}\n", fmt::join(fields, ","));
    for (const auto& row : rows_) {
        fields.clear();
        for (const Json& value : row) fields.push_back(CsvField(value));
        fmt::print("{}\n", fmt::join(fields, ","));
    }
}

Json List::Rows() const {
    Json all = Json::array();
    for (const auto& row : rows_) {
        Json object;
        for (std::size_t i = 0; i < columns_.size(); ++i) object[columns_[i].key] = row[i];
        all.push_back(std::move(object));
    }
    return all;
}

void List::PrintText() const {
    std::vector<std::size_t> widths;
    std::vector<bool> left;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        std::size_t width = 0;
        for (const auto& row : rows_) width = std::max(width, DisplayWidth(CellText(row[i])));
        left.push_back(width == 0 && columns_[i].onlyWhereFilled);
        widths.push_back(std::max(width, DisplayWidth(columns_[i].title)));
    }
    const auto line = [&](auto cell) {
        std::string text;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (left[i]) continue;
            const std::string value = cell(i);
            text += value + std::string(widths[i] - DisplayWidth(value) + 2, ' ');
        }
        text.erase(text.find_last_not_of(' ') + 1);
        fmt::print("{}\n", text);
    };
    line([&](std::size_t i) { return columns_[i].title; });
    for (const auto& row : rows_) line([&](std::size_t i) { return CellText(row[i]); });
}

Progress::Progress(std::string what, std::size_t total)
    : what_(std::move(what)),
      total_(total),
      started_(Seconds()),
      shown_(started_),
      terminal_(isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() { Clear(); }

void Progress::Step() {
    ++done_;
    const double pause = terminal_ ? 0.1 : 5;
    if (Seconds() - shown_ >= pause) Show();
}

void Progress::Show() {
    shown_ = Seconds();
    const double rate = static_cast<double>(done_) / std::max(shown_ - started_, 0.001);
    fmt::print(stderr, "{}{} of {} {}, {:.0f} a second{}", terminal_ ? "\r" : "", done_, total_, what_, rate,
               terminal_ ? "\033[K" : "\n");
    std::fflush(stderr);
    lineOpen_ = terminal_;
}

void Progress::Clear() {
    if (lineOpen_) fmt::print(stderr, "\r\033[K");
    lineOpen_ = false;
}

}  // namespace Console

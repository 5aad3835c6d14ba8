#include "console/dicom/DicomValues.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <stdexcept>

namespace Console {
namespace {

std::string DigitsOf(std::string_view text, std::string_view separators) {
    std::string digits;
    for (const char c : text) {
        if (separators.find(c) == std::string_view::npos) digits += c;
    }
    return digits;
}

bool AllDigits(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

int NumberAt(const std::string& digits, std::size_t position, std::size_t length) {
    return std::stoi(digits.substr(position, length));
}

std::string RawText(DcmItem& item, const DcmTagKey& tag) {
    const char* text = nullptr;
    return item.findAndGetString(tag, text).good() && text != nullptr ? text : "";
}

/// Returns true if no sequence below the item is nested deeper than `levels`.
bool IsShallow(DcmItem& item, int levels) {
    for (DcmObject* element = item.nextInContainer(nullptr); element; element = item.nextInContainer(element)) {
        auto* const sequence = dynamic_cast<DcmSequenceOfItems*>(element);
        if (!sequence || dynamic_cast<DcmPixelSequence*>(element)) continue;
        for (unsigned long i = 0; i < sequence->card(); ++i)
            if (levels == 0 || !IsShallow(*sequence->getItem(i), levels - 1)) return false;
    }
    return true;
}

}  // namespace

void RequireShallow(DcmItem& dataset) {
    if (!IsShallow(dataset, DeepestNesting))
        throw std::runtime_error("its sequences are nested more than " + std::to_string(DeepestNesting) + " deep");
}

std::string Trimmed(std::string_view text) {
    constexpr std::string_view padding(" \0", 2);
    const auto first = text.find_first_not_of(padding);
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(padding) - first + 1));
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const auto end = text.find(separator);
        parts.push_back(Trimmed(text.substr(0, end)));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

std::string DayText(std::string_view value) {
    const std::string digits = DigitsOf(value, ".-");
    if (digits.size() != 8 || !AllDigits(digits)) return {};
    const std::chrono::year_month_day day{std::chrono::year{NumberAt(digits, 0, 4)},
                                          std::chrono::month{static_cast<unsigned>(NumberAt(digits, 4, 2))},
                                          std::chrono::day{static_cast<unsigned>(NumberAt(digits, 6, 2))}};
    if (!day.ok()) return {};
    return digits.substr(0, 4) + "-" + digits.substr(4, 2) + "-" + digits.substr(6, 2);
}

std::string FirstText(DcmItem& set, const DcmTagKey& tag) {
    OFString text;
    set.findAndGetOFString(tag, text);
    return {text.data(), text.size()};
}

std::string TimeText(std::string_view value) {
    std::string digits = DigitsOf(value.substr(0, value.find('.')), ":");
    if (digits.size() % 2 != 0 || digits.size() > 6 || !AllDigits(digits)) digits.clear();
    digits.resize(6, '0');
    if (digits.compare(4, 2, "60") == 0) digits.replace(4, 2, "59");
    const bool real = NumberAt(digits, 0, 2) < 24 && NumberAt(digits, 2, 2) < 60 && NumberAt(digits, 4, 2) < 60;
    if (!real) return "00:00:00";
    return digits.substr(0, 2) + ":" + digits.substr(2, 2) + ":" + digits.substr(4, 2);
}

Values::Values(DcmItem& dataset) : decoder_(RawText(dataset, DCM_SpecificCharacterSet)) {}

std::string Values::Text(DcmItem& item, const DcmTagKey& tag) const {
    return Trimmed(decoder_.Decode(RawText(item, tag)));
}

std::vector<std::string> Values::Texts(DcmItem& item, const DcmTagKey& tag) const {
    std::vector<std::string> texts = Split(Text(item, tag), '\\');
    std::erase(texts, "");
    return texts;
}

std::vector<std::string> Values::OtherPatientIDs(DcmItem& dataset) const {
    std::vector<std::string> ids = Texts(dataset, DCM_RETIRED_OtherPatientIDs);
    EachItem(dataset, DCM_OtherPatientIDsSequence, [&](DcmItem& other) { ids.push_back(Text(other, DCM_PatientID)); });
    return ids;
}

double Values::Number(DcmItem& item, const DcmTagKey& tag, std::size_t position) const {
    const std::vector<std::string> parts = Split(Text(item, tag), '\\');
    if (position >= parts.size()) return 0;
    const std::string& part = parts[position];
    const std::size_t sign = part.starts_with('+') ? 1 : 0;
    double number = 0;
    std::from_chars(part.data() + sign, part.data() + part.size(), number);
    return std::isfinite(number) ? number : 0;
}

int Values::Whole(DcmItem& item, const DcmTagKey& tag) const {
    const double number = Number(item, tag);
    return std::abs(number) < 2147483648.0 ? static_cast<int>(number) : 0;
}

}  // namespace Console

#pragma once

#include <cstdint>
#include <sqlite3.h>
#include <string>

/// Reading a row by hand, column by position.
namespace Bench {

inline std::string Text(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column))) : std::string();
}

/// Days of a date text "yyyy-mm-dd hh:nn:ss", by the civil calendar.
inline double Days(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    if (!text || sqlite3_column_bytes(row, column) < 19) return 0;
    const auto number = [&](int from, int count) {
        int value = 0;
        for (int i = from; i < from + count; ++i) value = value * 10 + text[i] - '0';
        return value;
    };
    const int month = number(5, 2), year = number(0, 4) - (month <= 2);
    const int era = year / 400, ofEra = year - era * 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + number(8, 2) - 1;
    const int days = era * 146097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + dayOfYear - 719468 + 25569;
    return days + (number(11, 2) * 3600 + number(14, 2) * 60 + number(17, 2)) / 86400.0;
}

}  // namespace Bench

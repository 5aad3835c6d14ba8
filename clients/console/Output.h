#pragma once

#include "platform/adodb/Connection.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace Console {

/// A wrong request of the user, or a condition that prevents the command, as one line that says what to do.
class UserError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How the user wants a list.
struct ListForm {
    bool json = false;
    bool csv = false;
    std::string sort;       ///< the key of a column, with "-" in front for the reverse order; empty: as the list is
    std::size_t limit = 0;  ///< 0: all rows
};

/// A list to print: named columns, and a value for each in every row.
///
/// As text, the columns are aligned under their titles; as JSON each row is an object with the columns' keys. Values
/// keep their types in JSON.
class List {
public:
    struct Column {
        std::string key;
        std::string title;
        bool onlyWhereFilled = false;  ///< true: omitted in text output if no row has a value
    };

    explicit List(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// Adds a row; one value for each column.
    void Add(std::vector<nlohmann::ordered_json> row) { rows_.push_back(std::move(row)); }

    std::size_t Count() const noexcept { return rows_.size(); }

    /// Returns the rows as a JSON array of objects.
    nlohmann::ordered_json Rows() const;

    /// Sorts the rows by the column of the form, rows of equal values in their order, and keeps the first ones up to
    /// its limit. Nulls come first, then numbers, then texts without regard to case. Throws `UserError` for an unknown
    /// column.
    void Arrange(const ListForm& form);

    /// Prints to standard output. Without rows the text is `whenEmpty`, the JSON an empty array.
    void Print(bool asJson, const std::string& whenEmpty) const;

    /// Arranges the rows and prints them in the requested form. As CSV the first line has the keys of the columns; a
    /// null is an empty field.
    void Print(const ListForm& form, const std::string& whenEmpty);

private:
    std::size_t ColumnOf(const std::string& key) const;
    void PrintText() const;
    void PrintCsv() const;

    std::vector<Column> columns_;
    std::vector<std::vector<nlohmann::ordered_json>> rows_;
};

/// Returns a value in the form that JSON output and lists use: dates as text, nulls as null.
nlohmann::ordered_json AsJson(const Platform::Variant& value);

/// Returns the text without characters that move a terminal's cursor, break a line or change the writing direction:
/// replaces control characters by blanks and removes direction marks.
std::string Printable(std::string text);

/// Returns the width of a UTF-8 text in columns of a terminal: two for an East Asian wide character, otherwise one.
std::size_t DisplayWidth(std::string_view text);

/// Returns a date as text, with the time where it has one; empty for the zero date.
std::string DateText(Platform::Date date);

/// Prints names and values, one a line, or as JSON.
void PrintFields(const nlohmann::ordered_json& shown, bool asJson);

/// Prints JSON to standard output, indented, with a line break behind it. Control characters and marks of
/// direction are escaped.
void PrintJson(const nlohmann::ordered_json& json);

/// The line "progress: 12 of 34 files, 50 a second" of a long command, on standard error. On a terminal the same line
/// is overwritten; elsewhere a new line is written at intervals.
class Progress {
public:
    Progress(std::string what, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;

    /// Counts one more item as done, and updates the line.
    void Step();

    /// Clears the progress line on the terminal, so that another line can be written.
    void Clear();

private:
    void Show();

    std::string what_;
    std::size_t total_;
    std::size_t done_ = 0;
    double started_;
    double shown_ = 0;
    bool terminal_;
    bool lineOpen_ = false;
};

}  // namespace Console

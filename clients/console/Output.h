#pragma once

#include "platform/adodb/Connection.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace Console {

/// What the user did wrong or what keeps the program from its work, as one line that says what to do.
class UserError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A list to print: named columns, and a value for each in every row.
///
/// On paper the columns are aligned under their titles; as JSON each row is an object with the columns'
/// keys. Values keep their types in JSON.
class List {
public:
    struct Column {
        std::string key;
        std::string title;
        bool onlyWhereFilled = false;  ///< left out on paper where no row has a value
    };

    explicit List(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// Adds a row; one value for each column.
    void Add(std::vector<nlohmann::ordered_json> row) { rows_.push_back(std::move(row)); }

    std::size_t Count() const noexcept { return rows_.size(); }

    /// The rows as a JSON array of objects.
    nlohmann::ordered_json Rows() const;

    /// Prints to standard output. Without rows the text is `whenEmpty`, the JSON an empty array.
    void Print(bool asJson, const std::string& whenEmpty) const;

private:
    void PrintText() const;

    std::vector<Column> columns_;
    std::vector<std::vector<nlohmann::ordered_json>> rows_;
};

/// A value as JSON holds it and lists print it: dates as text, nulls as null.
nlohmann::ordered_json AsJson(const Platform::Variant& value);

/// The text without what would move a terminal's cursor, break a line or turn the direction of writing:
/// control characters become blanks, and marks of direction are left out.
std::string Printable(std::string text);

/// The columns of a terminal that a UTF-8 text takes: two for a character of an eastern script, else one.
std::size_t DisplayWidth(std::string_view text);

/// A date as text, with the time where it has one; empty for the zero date.
std::string DateText(Platform::Date date);

/// Prints names and values, one a line, or as JSON.
void PrintFields(const nlohmann::ordered_json& shown, bool asJson);

/// Prints JSON to standard output, indented, with a line break behind it. Control characters and marks of
/// direction are escaped.
void PrintJson(const nlohmann::ordered_json& json);

/// The line "progress: 12 of 34 files, 50 a second" of a long work: one line that renews itself on a
/// terminal, a plain line now and then elsewhere. Writes to standard error.
class Progress {
public:
    Progress(std::string what, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;

    /// Tells that one more is done.
    void Step();

    /// Takes the renewing line off the terminal, so that another line can be written.
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

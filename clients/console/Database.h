#pragma once

#include "console/Output.h"
#include "console/Script.h"

#include <filesystem>
#include <functional>

namespace Console {

/// The options of the command line that all commands have, and those that all lists have.
struct Options : ListForm {
    std::string database;  ///< a file, or a full connection string; empty: OXCLASS_DB
    bool trace = false;
};

/// An open clinic database, for one command.
class Database {
public:
    /// Opens the database of the options, a file only for reading if the rights of the file or of its folder do not
    /// permit writing. Throws `UserError` if the database is missing, is not a clinic database, or has a newer version;
    /// it is then unchanged.
    explicit Database(const Options& options);
    ~Database();
    Database(const Database&) = delete;

    const Ref<Connection>& Con() const noexcept { return con_; }

    /// Returns the rows of one of the program's own statements.
    Ref<Recordset> Read(const std::string& statement) const;

    /// Returns the only value of a statement's result, a whole number.
    Platform::Long Number(const std::string& statement) const;

    /// Returns a list of all columns of a statement. The titles are the column names, the keys the names in lower case.
    List ListOf(const std::string& statement) const;

private:
    class Trace;

    Ref<Connection> con_;
    std::unique_ptr<Trace> trace_;
};

/// Returns the value of a column of the current row. Raises 94 for a null, 13 or 6 for a value that can't be converted,
/// 3265 for a missing column; the failure names the column.
template <class T>
T ValueOf(const Ref<Recordset>& row, std::string_view column) {
    try {
        return row->Fields(column).template As<T>();
    } catch (Platform::Error& failure) {
        if (failure.Column.empty()) failure.Column = column;
        throw;
    }
}

/// Returns a description as the user entered it. The library stores each quote of a description doubled and returns it
/// doubled; without this function, saving a loaded description would double the quotes again.
std::string Undoubled(const std::string& description);

/// Returns a text for a column that a statement contains unescaped: replaces each quote by the typographic one.
std::string WithoutQuotes(const std::string& text);

/// Runs `work` and suppresses the text boxes that the library shows meanwhile, for callers that read the failures from
/// the objects.
void WithoutTextBoxes(const std::function<void()>& work);

/// Runs `work`. The library shows some failures in a text box and does not raise them: throws `UserError` with the
/// texts of these boxes after `work` has returned.
void ThrowTextBoxes(const std::function<void()>& work);

/// Returns the path on this system of a file of an image store; a stored name separates its folders with "\". Throws
/// `UserError` for a name that leads out of its root.
std::filesystem::path StoredPath(const std::string& root, const std::string& storedName);

}  // namespace Console

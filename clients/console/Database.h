#pragma once

#include "console/Output.h"
#include "platform/adodb/Recordset.h"

#include <filesystem>
#include <functional>

namespace Console {

using ADODB::Connection;
using ADODB::Recordset;
using Platform::Ref;

/// What all commands are told on the command line.
struct Options {
    std::string database;  ///< a file, or a full connection string; empty: OXCLASS_DB
    bool json = false;
    bool trace = false;
};

/// The connection string of a file; a text that is one already stays as it is.
std::string ConnectionStringOf(const std::string& database, const std::string& mode = {});

/// An open clinic database, for one command.
class Database {
public:
    /// Opens the database of the options, for reading only where the rights of the file or of its folder
    /// allow no more. Throws `UserError` if there is none, or if it is no clinic database or a newer one;
    /// such a file is not changed.
    explicit Database(const Options& options);
    ~Database();
    Database(const Database&) = delete;

    const Ref<Connection>& Con() const noexcept { return con_; }

    /// The rows of a statement of the program's own.
    Ref<Recordset> Read(const std::string& statement) const;

    /// The whole number that a statement gives as its one value.
    Platform::Long Number(const std::string& statement) const;

    /// A list of all columns of a statement, titled by their names; keys in lower case.
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

/// A description as a person wrote it. The library stores each quote of it doubled and gives it back so;
/// saving what was loaded would double it again.
std::string Undoubled(const std::string& description);

/// A text for a column that a statement takes unescaped: a quote becomes the typographic one.
std::string WithoutQuotes(const std::string& text);

/// Runs `work` and drops the text boxes that the library shows in it, for callers who learn of the failures
/// from the objects.
void WithoutTextBoxes(const std::function<void()>& work);

/// Runs `work`. A text box that the library shows in it, which tells a failure that it doesn't raise, becomes
/// a `UserError` behind it.
void ComplainOfTextBoxes(const std::function<void()>& work);

/// Runs the statements of a script, one by one.
void RunScript(const Ref<Connection>& con, std::string_view script);

/// The path on this system of a file of an image store: stored names part their folders with "\".
/// Throws `UserError` for a name that leads out of its root.
std::filesystem::path StoredPath(const std::string& root, const std::string& storedName);

}  // namespace Console

#pragma once

#include "platform/adodb/Rows.h"
#include "platform/adodb/providers/postgresql/PostgresLink.h"

#include <map>

namespace ADODB {

/// How a value of a column is read from the text that the server sends.
enum class PostgresForm : std::uint8_t { Text, Whole, Real, Boolean, Numeric };

/// The columns of a result with the forms of their values.
struct PostgresColumns {
    std::shared_ptr<const Columns> columns;
    std::vector<PostgresForm> forms;
};

/// Returns the form of the values of a type, by its identifier in the server's catalog.
PostgresForm FormOfType(unsigned type);

/// Returns true if an empty text can't be a value of this type: numbers, dates and times.
bool RejectsBlank(unsigned type);

/// What a session has read about the server's tables. One thread.
class PostgresCatalog {
public:
    /// The tables are read through `link`, which must live as long as this object.
    explicit PostgresCatalog(PostgresLink& link) : link_(link) {}

    /// Returns the columns of a result, or of the description of a prepared statement; nothing if it does not return
    /// rows. `statement` is its text: a name that the text contains keeps the letter case that it has there, because
    /// the server folds names that are not quoted. Reads a table at its first use and raises as
    /// `PostgresLink::Exchange`.
    std::shared_ptr<const PostgresColumns> ColumnsOf(const pg_result* description, std::string_view statement);

    /// Returns the columns of the primary key of a table, in their order in the table, whose name is in small letters.
    /// Returns nothing for a table without one. Raises as `PostgresLink::Exchange`.
    std::vector<String> KeyOf(const String& table);

    /// Discards everything, after a table has changed.
    void Forget() { tables_.clear(); }

private:
    struct TableColumn {
        String name;
        bool key = false;
        bool counter = false;
        Long width = 0;  // by a check of its length; 0: none
    };
    struct Table {
        String name;
        std::map<int, TableColumn> columns;  // by their number in the catalog
    };

    const Table& TableOf(unsigned identifier);
    /// Reads the tables that are found without a schema in front of their name, and the one with this identifier.
    void Read(unsigned identifier);

    PostgresLink& link_;
    std::map<unsigned, Table> tables_;
};

}  // namespace ADODB

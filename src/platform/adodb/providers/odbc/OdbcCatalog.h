#pragma once

#include "platform/adodb/Rows.h"
#include "platform/adodb/providers/odbc/OdbcLink.h"

#include <map>

namespace ADODB {

/// How a value of a column is read.
enum class OdbcForm : std::uint8_t { Text, Whole, Real, Boolean, Decimal, Time, Bytes };

/// The columns of a result with the forms of their values.
struct OdbcColumns {
    std::shared_ptr<const Columns> columns;
    std::vector<OdbcForm> forms;
    std::vector<std::uint64_t> sizes;  ///< the most characters, as the driver reports them; 0: not known
};

/// What a session has read about the tables. One thread.
class OdbcCatalog {
public:
    /// The tables are read through `link`, which must live as long as this object.
    explicit OdbcCatalog(OdbcLink& link) : link_(link) {}

    /// Returns the columns of a statement that was prepared or has run; null if it does not return rows. Reads the keys
    /// of a table at its first use.
    std::shared_ptr<const OdbcColumns> ColumnsOf(const OdbcHandle& statement);

    /// Returns true if an empty text can't be a value of a column: of numbers, dates and times. `table` is written as
    /// in a statement. Returns false for a table or a column that does not exist.
    bool RejectsBlank(const String& table, const String& column);

    /// Returns the names of the columns of a table's primary key, in their order in the key. Returns nothing for a
    /// table without one, and if the driver can't read it: a lost connection is reported by the statement that follows.
    std::vector<String> KeyOf(const String& table);

    /// Discards everything, after a table has changed.
    void Forget();

private:
    std::optional<std::vector<String>> ReadKey(const String& table);
    /// Returns null for a table that does not exist.
    std::shared_ptr<const OdbcColumns> ReadTable(const String& table);

    OdbcLink& link_;
    std::map<String, std::vector<String>> keys_;
    std::map<String, std::shared_ptr<const OdbcColumns>> tables_;
};

}  // namespace ADODB

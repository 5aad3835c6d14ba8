#pragma once

#include "platform/adodb/ConnectionString.h"
#include "platform/adodb/providers/KeyOrder.h"
#include "platform/adodb/providers/Shape.h"

#include <span>

namespace ADODB {

/// The number that is raised for a failure with a code of an engine.
struct OdbcNumber {
    Long native;
    Long number;
};

/// What an engine does in another way than the standard. An empty text or a null means: as the standard.
struct OdbcDialect {
    std::string_view name;  ///< a part of the names of the engine and of its drivers

    /// The driver takes and returns the texts of values as UTF-8; otherwise they are passed as UTF-16, which every
    /// driver knows.
    bool utf8 = false;

    /// Adds what the driver must know at the login.
    void (*completeLogin)(ConnectionString& settings) = nullptr;

    std::string_view settings;       ///< a statement that a new session runs
    std::string_view begin;          ///< begins a transaction
    std::string_view inTransaction;  ///< a select of 0 if the engine has rolled the transaction back by itself
    /// A select of 1 if other nodes of a cluster may end a transaction without telling so, after which the engine would
    /// commit each later statement of the transaction by itself.
    std::string_view inCluster;
    Long noSavepoint = 0;        ///< the code of the failure for a savepoint that the transaction lacks
    std::string_view timeLimit;  ///< sets after how many seconds a statement ends, in front of the number
    std::span<const OdbcNumber> numbers;
    std::span<const Long> forgotten;  ///< the codes of failures after which a statement must be prepared again

    /// Translates a statement, and replaces these literals, which point into it, by "?". `keys` may be empty.
    String (*translate)(std::string_view statement, const std::vector<Literal>& literals,
                        const TableKeys& keys) = nullptr;
};

/// Returns the dialect of an engine or a driver with this name; that of the standard if none is listed. Any thread may
/// call.
const OdbcDialect& DialectNamed(std::string_view name);

/// Returns a statement as an engine can parse it, with "?" for each of these literals, which point into it. Blanks and
/// semicolons at its end are removed. Rows that are equal otherwise are not sorted if `keys` is empty.
String ForOdbc(const OdbcDialect& dialect, std::string_view statement, const std::vector<Literal>& literals,
               const TableKeys& keys = {});

/// Returns the SQLSTATE and the message of what a driver might run although it must not be sent: a text with a second
/// statement, or with a parameter of its own. Empty if there is nothing of that kind; a comment ends the search.
std::pair<const char*, const char*> FlawIn(std::string_view text);

/// Where the literals of a statement are stored or compared.
struct OdbcTargets {
    String table;  ///< the first table that the statement names, as it is written; empty if it names none
    std::vector<String> columns;  ///< for each literal the column without quotes; empty for another place
};

/// Returns the targets of these literals, which point into the statement: "column = literal", and the columns of an
/// INSERT.
OdbcTargets TargetsOf(std::string_view statement, const std::vector<Literal>& literals);

}  // namespace ADODB

#pragma once

#include "platform/adodb/ConnectionString.h"
#include "platform/adodb/Rows.h"

namespace ADODB {

/// What one run of a statement gave.
struct Outcome {
    std::shared_ptr<const Columns> columns;  ///< nothing where the statement yields no rows
    std::vector<Row> rows;                   ///< all rows, in the engine's order
    RowStore store;                          ///< what the rows stand in
    std::int64_t affected = -1;  ///< rows that an action statement hit; -1 where there are none to count
};

/// One open session with a database engine: all that the layer asks of a provider.
///
/// Every failure is raised as an `Error` with the mapped number, the engine's own text, its code and
/// the statement. Used by one thread; ended by its destructor, which rolls an open transaction back.
class Session {
public:
    virtual ~Session() = default;

    /// Runs one statement as it is written. A second statement in the text is refused before anything
    /// runs (0x80040E14).
    virtual Outcome Run(std::string_view text) = 0;

    /// Runs a statement that the layer itself wrote, with a value for each "?": whole numbers, doubles,
    /// texts and nulls. Gives the number of rows that it hit.
    virtual std::int64_t Change(std::string_view text, std::span<const Variant> values) = 0;

    /// The counter of the row that this session inserted last.
    virtual std::int64_t LastCounter() = 0;

    /// A name in the form in which it may stand in a statement, whatever characters it holds.
    virtual String Quoted(std::string_view name) const = 0;

    /// Transactions, by their level: 1 the outermost.
    virtual void Begin(Long level) = 0;
    virtual void Commit(Long level) = 0;
    virtual void RollBack(Long level) = 0;

    /// False once the engine has rolled a transaction back by itself, after a failure that it couldn't stand.
    virtual bool InTransaction() const = 0;

    /// How deep transactions may nest.
    virtual Long MostLevels() const = 0;
};

/// Opens a session by the settings of a connection string; raises what keeps it from being opened.
using Opener = std::unique_ptr<Session> (*)(const ConnectionString& settings);

/// Makes a provider known under a name (no case), before or instead of the built-in ones. For the start
/// of a program, before other threads open connections.
void RegisterProvider(const String& name, Opener open);

/// The opener of a provider; raises 3706 if there is none of this name.
Opener FindProvider(const String& name);

}  // namespace ADODB

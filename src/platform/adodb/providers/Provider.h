#pragma once

#include "platform/adodb/ConnectionString.h"
#include "platform/adodb/Rows.h"

#include <functional>
#include <optional>

namespace ADODB {

/// The rows of a statement where the other side has a recordset of its own: it keeps the position, the edit and the
/// rows. A recordset passes its calls on; the functions do what those of `Recordset` with the same names do, and raise
/// what the other side raises. A column is an index that `ColumnOf` returned.
class Cursor {
public:
    Cursor() = default;
    Cursor(const Cursor&) = delete;
    virtual ~Cursor() = default;

    virtual bool Eof() const = 0;
    virtual bool Bof() const = 0;
    virtual Long RecordCount() const = 0;
    virtual Long AbsolutePosition() const = 0;
    virtual CursorTypeEnum CursorType() const = 0;
    virtual LockTypeEnum LockType() const = 0;
    virtual EditModeEnum EditMode() const = 0;

    virtual void MoveFirst() = 0;
    virtual void MoveLast() = 0;
    virtual void MoveNext() = 0;
    virtual void MovePrevious() = 0;
    virtual void Move(Long rows) = 0;

    virtual Long FieldCount() const = 0;
    virtual bool HasField(std::string_view name) const = 0;
    virtual Long ColumnOf(std::string_view name) = 0;
    virtual Long ColumnOf(Long ordinal) = 0;
    /// Returns name, type and size of a column. The reference is valid as long as the cursor.
    virtual const Column& ColumnAt(Long column) = 0;
    virtual Variant Value(Long column) const = 0;
    virtual Variant OriginalValue(Long column) const = 0;
    virtual void SetValue(Long column, const Variant& value) = 0;

    virtual void AddNew() = 0;
    virtual void Update() = 0;
    virtual void CancelUpdate() = 0;
    virtual void Delete(AffectEnum affectRecords) = 0;
    virtual void Requery() = 0;
    virtual void Close() = 0;
    /// Attaches the rows to a connection; null detaches them.
    virtual void SetActiveConnection(const Ref<Platform::Object>& connection) = 0;
    /// Returns the recordset of the other side.
    virtual Ref<Platform::Object> Adapted() const = 0;
};

/// How a recordset is opened.
struct RowsRequest {
    CursorTypeEnum CursorType = adOpenForwardOnly;
    LockTypeEnum LockType = adLockReadOnly;
    Long Options = adCmdUnspecified;
    std::optional<CursorLocationEnum> Location;  ///< none: where the connection keeps rows
};

/// The result of running one statement.
struct Outcome {
    std::shared_ptr<const Columns> columns;  ///< null if the statement does not return rows
    std::unique_ptr<RowReader> reader;       ///< the rows; null if the statement does not return rows
    std::int64_t affected = -1;              ///< rows that an action statement changed; -1 for other statements
    std::unique_ptr<Cursor> cursor = {};     ///< the rows in place of the two above; null for most providers
};

/// A piece of a statement whose text is not joined yet. It refers to the text of its owner.
struct StatementPiece {
    enum class Kind : std::uint8_t {
        Fixed,  ///< `text` is the same each time that the statement runs
        Whole,  ///< `number` in decimal digits
        Text,   ///< `text` is the body of a text literal, or a part of it, with doubled quotes
        Other   ///< only the joined statement tells
    };
    Kind kind = Kind::Other;
    Long number = 0;
    std::string_view text;
};

/// One open session with a database engine. This is the interface that a provider implements.
///
/// Every failure is raised as an `Error` with the mapped number, the engine's own text, its code and the statement. A
/// session is used by one thread. The destructor closes it and rolls back an open transaction.
class Session {
public:
    virtual ~Session() = default;

    /// Runs one statement as it is written. Raises 0x80040E14, before anything runs, if the text contains a second
    /// statement. `text` must live as long as the reader of the outcome, which must be deleted before `Run`,
    /// `RunAction`, `Change`, `Insert`, `Begin`, `Commit` or `RollBack` is called.
    virtual Outcome Run(std::string_view text) = 0;

    /// Runs a statement for a recordset that is opened in these modes, and one whose number of changed rows is asked
    /// for. Most providers do the same as for any other statement.
    virtual Outcome Open(std::string_view text, const RowsRequest& /*modes*/) { return Run(text); }
    virtual Outcome RunCounted(std::string_view text) { return Run(text); }

    /// Sets where the connection keeps the rows of later recordsets, for a session that has a setting of its own.
    virtual void UseLocation(CursorLocationEnum /*location*/) {}

    /// Runs an action statement that consists of these pieces; rows that it returns are ignored. `joined` returns its
    /// text. A provider that remembers the statement by its fixed pieces binds the values and does not join the text.
    /// The pieces and their texts must live until it returns. Raises as `Run`, and what `joined` raises.
    virtual void RunAction(std::span<const StatementPiece> pieces, const std::function<String()>& joined) {
        static_cast<void>(pieces);
        const String text = joined();
        Run(text);
    }

    /// Runs a statement of the database layer, with a value for each "?": whole numbers, doubles, texts and nulls.
    /// Returns the number of rows that it changed, 0 if its condition matches no row.
    virtual std::int64_t Change(std::string_view text, std::span<const Variant> values) = 0;

    /// Runs an INSERT of the database layer, as `Change`. Returns the number that the engine assigned to the column
    /// `counter` of the new row; the result has no meaning if `counter` is empty.
    virtual std::int64_t Insert(std::string_view text, std::span<const Variant> values, std::string_view counter) = 0;

    /// Returns a name quoted for use in a statement, whatever characters it contains.
    virtual String Quoted(std::string_view name) const = 0;

    /// Begin, commit and roll back the transaction of a level; 1 is the outermost. The caller passes levels in order,
    /// up to `MostLevels`. `RollBack` succeeds if the engine has already rolled back by itself.
    virtual void Begin(Long level) = 0;
    virtual void Commit(Long level) = 0;
    virtual void RollBack(Long level) = 0;

    /// Returns false if the engine has rolled back the transaction by itself, after a failure such as a full disk.
    virtual bool InTransaction() const = 0;

    /// Returns the highest level of nested transactions.
    virtual Long MostLevels() const = 0;

    /// Returns true if the connection to the server is lost. Every operation then raises `ConnectionLost`, and the
    /// engine has rolled back an open transaction or will do so.
    virtual bool IsBroken() const = 0;

    /// Sets after how many seconds a statement is cancelled, which then raises `TimedOut`; 0: never. A provider of an
    /// embedded engine ignores it.
    virtual void SetCommandTimeout(Long seconds) = 0;
};

/// Opens a session with the settings of a connection string. Raises if it can't be opened, `TimedOut` if the server
/// does not answer within this number of seconds; 0: it waits without limit.
using Opener = std::unique_ptr<Session> (*)(const ConnectionString& settings, Long timeout);

/// Registers a provider under a name, which is compared without regard to case and may replace a built-in provider. A
/// program calls it when it starts, before other threads open connections.
void RegisterProvider(const String& name, Opener open);

/// Returns the opener of a provider. Raises 3706 if no provider has this name. Any thread may call.
Opener FindProvider(const String& name);

/// Returns the names of the built-in providers with the versions of what they use: "SQLite 3.40.1". Any thread may
/// call.
std::vector<String> BuiltInEngines();

}  // namespace ADODB

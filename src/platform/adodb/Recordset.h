#pragma once

#include "platform/adodb/Connection.h"
#include "platform/runtime/Convert.h"

#include <optional>

namespace ADODB {

class Recordset;

/// A column of a recordset, at the current row. It is a small value that may be copied; it must not outlive its
/// recordset.
///
/// On a closed recordset every member raises 3704. After the recordset was opened again, the field refers to the column
/// with the same ordinal; every member raises 3265 if there is none.
class Field {
public:
    /// Refers to the column with an ordinal, which is checked when a member is called. `Recordset::Fields` returns
    /// fields whose ordinal exists.
    Field(Recordset& recordset, Long ordinal) : recordset_(&recordset), ordinal_(ordinal) {}

    const String& Name() const;  ///< as the engine returns it
    DataTypeEnum Type() const;   ///< the same for all rows
    Long DefinedSize() const;    ///< UTF-16 units that a text may have; 0 without a limit

    /// Returns the value at the current row, or the assigned value that is not posted yet. Raises 3021 without a
    /// current row, 0x80040E23 on a deleted row.
    Variant Value() const;

    /// Return true if the value is null, or a text. Raise as `Value`.
    bool IsNull() const;
    bool IsText() const;

    /// Returns `To<T>(Value())`, without creating a variant if the value is stored as a `T`. Raises as both.
    template <class T>
    T As() const;

    /// Returns the value that the row had before it was edited; null in a new row. Raises as `Value`.
    Variant OriginalValue() const;

    /// Assigns a value, which begins an edit; `Recordset::Update` posts it. The table is not changed until then.
    ///
    /// Raises 3251 on a read-only recordset, one whose rows come from several tables or none, and for a computed
    /// column; 3709 on a disconnected recordset; 3021 without a current row; 0x80040E23 on a deleted row; 3421 or
    /// 0x80040E21 for a value that the column can't store. The edit is then unchanged.
    void SetValue(const Variant& value);

private:
    Recordset* recordset_;
    Long ordinal_;
};

/// The rows of a statement: a snapshot with a cursor, which can be edited.
///
/// Rows are copied when the recordset is opened: later changes are not visible, not even those of statements on the
/// same connection. With `adUseClient` the cursor is static and scrolls in both directions. A recordset of one table
/// whose key is among its columns can be edited if it was opened with another lock type than `adLockReadOnly`. An
/// update names only the columns that changed, and finds its row by the key and the old values of these columns. A
/// recordset belongs to the thread that created it; it is closed with its last reference.
class Recordset final : public Object {
public:
    static constexpr const char* ClassName = "Recordset";

    Recordset() = default;
    ~Recordset() override;

    // ---- opening and closing --------------------------------------------------------------------

    /// Runs a statement; the first row becomes current. After a statement that does not return rows the recordset is
    /// closed.
    ///
    /// Raises 3705 if open; nothing changes then. Raises 3709 without an open connection, 3001 with
    /// `adExecuteNoRecords`, 3710 inside `WillExecute`, 3712 if a handler cancelled the statement, and what the engine
    /// raises; the recordset is then closed.
    void Open(const String& Source, const Ref<Connection>& ActiveConnection,
              CursorTypeEnum CursorType = adOpenForwardOnly, LockTypeEnum LockType = adLockReadOnly,
              Long Options = adCmdUnspecified);

    /// Releases the rows. The recordset can be opened again. Raises 3704 if closed, 3219 while an edit is pending;
    /// nothing changes then.
    void Close();

    /// Runs the statement again and replaces the rows; the first row becomes current. Raises 3704 if closed, 3219 while
    /// an edit is pending, 3709 when disconnected, and what the engine raises; the old rows and the position are then
    /// unchanged.
    void Requery();

    /// Returns `adStateOpen` or `adStateClosed`.
    Long State() const noexcept { return columns_ ? adStateOpen : adStateClosed; }
    /// Returns the statement that was run last or set by `SetSource`. For `adCmdTable` it is the select of the table.
    const String& Source() const noexcept { return source_; }
    /// Return the types that the open recordset has, which may differ from the requested ones, or the types that the
    /// next `Open` by name requests.
    CursorTypeEnum CursorType() const noexcept { return columns_ ? actualCursor_ : cursor_; }
    LockTypeEnum LockType() const noexcept { return columns_ ? actualLock_ : lock_; }

    /// Set what a later `Open` by name uses for an argument that is left out. Raise 3705 while open, 3001 for a number
    /// that is not in the enumeration.
    void SetSource(const String& source);
    void SetCursorType(CursorTypeEnum type);
    void SetLockType(LockTypeEnum type);

    /// Returns where the rows are kept; `adUseServer` until it is set or the recordset is opened.
    CursorLocationEnum CursorLocation() const noexcept { return location_.value_or(adUseServer); }

    /// Sets where the rows are kept; it overrides the connection's setting. Raises 3705 while open.
    void SetCursorLocation(CursorLocationEnum location);

    /// Returns the connection, null if the recordset was never opened or is disconnected.
    const Ref<Connection>& ActiveConnection() const noexcept { return connection_; }

    /// Sets the connection. Null disconnects an open client recordset, which can still be read; another connection
    /// attaches it again. Raises 3705 for an open server recordset, 3709 for a closed connection.
    void SetActiveConnection(const Ref<Connection>& connection);

    // ---- position -------------------------------------------------------------------------------
    // All of these raise 3704 on a closed recordset. While a new row is being added, it is the current row: neither
    // `Eof` nor `Bof` is true, and the row counts in `RecordCount`.

    bool Eof() const;  ///< true after the last row, and if there are no rows
    bool Bof() const;  ///< true before the first row, and if there are no rows

    /// Returns the number of rows, or -1 for a forward-only server cursor.
    Long RecordCount() const;

    /// Returns the position of the current row, counted from 1, or a `PositionEnum`.
    Long AbsolutePosition() const;

    // A move posts a pending edit first. If that fails, its failure is raised and the position is unchanged.

    /// Move to the first or the last row. Raise 3021 on an empty recordset; `MoveLast` raises 3219 on a forward-only
    /// server cursor.
    void MoveFirst();
    void MoveLast();
    /// Moves to the next row, or to EOF after the last. Raises 3021 at EOF.
    void MoveNext();
    /// Moves to the previous row, or to BOF before the first. Raises 3021 at BOF, 3219 on a forward-only server cursor.
    void MovePrevious();
    /// Moves by this number of rows, backward if it is negative; beyond the last or first row to EOF or BOF. 0 stays at
    /// the row. Raises 3021 without a row, forward at EOF and backward at BOF; 3219 for a negative number on a
    /// forward-only server cursor.
    void Move(Long rows);

    // ---- columns --------------------------------------------------------------------------------

    /// Returns the column with this name, without regard to case, or with this ordinal, counted from 0. Raises 3265 if
    /// there is none.
    Field Fields(std::string_view name) { return {*this, OrdinalOf(name)}; }
    Field Fields(Long ordinal) { return {*this, OrdinalOf(ordinal)}; }
    /// Returns the number of columns. Raises 3704 on a closed recordset.
    Long FieldCount() const { return Result().Count(); }

    /// Returns true if there is a column with this name, without regard to case. Raises 3704 on a closed recordset.
    bool HasField(std::string_view name) const { return Result().Find(name) != Columns::Missing; }

    /// Read or assign a value. Raise as `Fields`, and as `Value` and `SetValue` of the column.
    Variant Collect(std::string_view name) { return Fields(name).Value(); }
    void Collect(std::string_view name, const Variant& value) { Fields(name).SetValue(value); }

    // ---- changing rows --------------------------------------------------------------------------

    /// Begins a new row, which becomes the current one; a pending edit is posted first. All its columns are null until
    /// they are assigned. Raises 3704 if closed, 3251 if read-only or if the rows come from several tables or none,
    /// 3709 when disconnected, and as `Update`; no new row is begun then.
    void AddNew();

    /// Writes the pending edit. The row is still current afterwards; a new row becomes the last one and then has the
    /// counter that the database assigned. Does nothing without an edit, and sends no statement if no value differs
    /// from the row's.
    ///
    /// Raises 3704 if closed, 0x80040E38 if another client changed or deleted the row, 0x80004005 if the columns do not
    /// contain the table's key, and what the engine raises; the edit is then still pending.
    void Update();

    /// Discards the pending edit; after `AddNew` the row that was current before is current again. Does nothing without
    /// an edit. Raises 3704 if closed.
    void CancelUpdate();

    /// Deletes the current row from the table. The position does not change: reading the row raises 0x80040E23 until
    /// the next move. Raises 3001 for another argument than `adAffectCurrent`, 3021 without a current row, 3219 while
    /// an edit is pending, 3251 if read-only, 3709 when disconnected, 0x80040E38 if another client changed or deleted
    /// the row, 0x80004005 if the columns do not contain the table's key, and what the engine raises. The recordset is
    /// then unchanged.
    void Delete(AffectEnum AffectRecords = adAffectCurrent);

    /// Returns whether an edit or a new row is pending. Raises 3021 without a current row.
    EditModeEnum EditMode() const;

    const Interface& Describe() const override;

private:
    friend class Connection;
    friend class Field;

    /// An edit that is not posted: for each column the assigned value in its stored form, if any.
    struct Edit {
        EditModeEnum mode;
        std::vector<std::optional<Variant>> assigned;
    };

    void TakeResult(Ref<Connection> connection, ExecuteRequest&& request, Outcome&& outcome);
    void ConnectionClosed();
    void Release();
    const Columns& Result() const {
        if (!columns_) RaiseClosed();
        return *columns_;
    }
    [[noreturn]] static void RaiseClosed();
    Long OrdinalOf(std::string_view name) const;
    Long OrdinalOf(Long ordinal) const {
        if (ordinal < 0 || ordinal >= Result().Count()) RaiseNoColumn();
        return ordinal;
    }
    [[noreturn]] static void RaiseNoColumn();
    void RequireCurrent() const;
    void RequireNoEdit() const;
    void RequireScrolling() const;
    void RequireUpdatable() const;
    const Row& Current() const {
        if (!columns_ || bof_ || eof_ || onDeleted_) RequireCurrent();
        return rows_[static_cast<std::size_t>(position_)];
    }
    void GoTo(Long position);

    /// Returns the cell at the current row, or null while an edit is pending.
    const Cell* CellAt(Long ordinal) const {
        ColumnAt(ordinal);
        return edit_ ? nullptr : &Current().At(ordinal);
    }
    /// Returns the column of a field; the recordset may have been closed or opened again since the field was created.
    const Column& ColumnAt(Long ordinal) const { return Result().At(OrdinalOf(ordinal)); }
    bool IsAdding() const noexcept { return edit_ && edit_->mode == adEditAdd; }
    Variant ValueAt(Long ordinal) const;
    Variant OriginalAt(Long ordinal) const;
    void Assign(Long ordinal, const Variant& value);
    void Insert();
    void Change();
    Row EditedRow(Long counter, std::int64_t counterValue);
    const String& BaseTable() const;
    /// Returns true if the pending edit assigns a value to the column that differs from that of the row.
    bool IsChanged(Long ordinal) const;
    String WhereRow(std::vector<Variant>& values) const;
    Variant StoredAt(Long ordinal) const;
    std::int64_t Post(const String& statement, const std::vector<Variant>& values);

    Ref<Connection> connection_;
    String source_;
    Long options_ = adCmdUnspecified;
    std::optional<CursorLocationEnum> location_;
    CursorTypeEnum cursor_ = adOpenForwardOnly;
    LockTypeEnum lock_ = adLockReadOnly;
    CursorTypeEnum actualCursor_ = adOpenForwardOnly;
    LockTypeEnum actualLock_ = adLockReadOnly;

    std::shared_ptr<const Columns> columns_;  // null while closed
    std::vector<Row> rows_;
    RowStore store_;
    Long position_ = 0;  // of the current row, from 0; of the next row if the current one is deleted
    bool bof_ = true;
    bool eof_ = true;
    bool onDeleted_ = false;
    std::optional<Edit> edit_;
};

inline bool Field::IsNull() const {
    const Cell* const cell = recordset_->CellAt(ordinal_);
    return cell ? cell->kind == Cell::Kind::Null : Value().Is<Null>();
}

inline bool Field::IsText() const {
    const Cell* const cell = recordset_->CellAt(ordinal_);
    return cell ? cell->kind == Cell::Kind::Text : Value().Is<String>();
}

template <class T>
T Field::As() const {
    constexpr bool whole = std::is_same_v<T, Long> || std::is_enum_v<T>;
    if constexpr (whole || std::is_same_v<T, String>) {
        const Cell* const cell = recordset_->CellAt(ordinal_);
        const DataTypeEnum type = recordset_->columns_->At(ordinal_).Type;
        if constexpr (whole) {
            if (cell && cell->kind == Cell::Kind::Whole && type != adBoolean && std::in_range<Long>(cell->whole))
                return static_cast<T>(cell->whole);
        } else {
            if (cell && cell->kind == Cell::Kind::Text && type != adDate) return String(cell->Text());
        }
    }
    return To<T>(Value());
}

}  // namespace ADODB

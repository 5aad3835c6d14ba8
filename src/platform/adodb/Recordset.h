#pragma once

#include "platform/adodb/Connection.h"
#include "platform/runtime/Convert.h"

#include <exception>
#include <optional>

namespace ADODB {

class Recordset;

/// A column of a recordset, at the current row. It is a small value that may be copied; it holds no reference, so it
/// must not outlive its recordset.
///
/// A field follows the recordset: `Value` returns the value of the row that is current when it is called. On a closed
/// recordset every member raises 3704. After the recordset was opened again, the field refers to the column with the
/// same ordinal; every member raises 3265 if there is none. A field is used on the recordset's thread only.
class Field {
public:
    /// Refers to the column with an ordinal, which is checked when a member is called. `Recordset::Fields` returns
    /// fields whose ordinal exists.
    Field(Recordset& recordset, Long ordinal) : recordset_(&recordset), ordinal_(ordinal) {}

    // What the result says about the column. The reference to the name is valid until the recordset is closed or
    // its statement is run again.
    const String& Name() const;  ///< as the engine returns it
    DataTypeEnum Type() const;   ///< the same for all rows
    Long DefinedSize() const;    ///< UTF-16 units that a text may have; 0 without a limit

    /// Returns the value at the current row, or the assigned value that is not posted yet. Its type is that of the
    /// column
    /// (`DataTypeEnum`), or `Null`; a stored value that can't be converted to it is returned as it is stored. In a new
    /// row a column without an assigned value is null. Raises 3021 without a current row, 0x80040E23 on a deleted row.
    Variant Value() const;

    /// Return true if the value is null, or if it is a text. While no edit is pending, a value that the engine stores
    /// as a text is one, also if `Value` returns it as a date. Raise as `Value`.
    bool IsNull() const;
    bool IsText() const;

    /// Returns `To<T>(Value())`, without creating a variant if the value is stored as a `T`. Raises as both.
    template <class T>
    T As() const;

    /// Returns the same; `otherwise` for a null. Raises as `As`.
    template <class T>
    T Or(const T& otherwise) const;

    /// Returns `As<Long>()` if the value is stored as a whole number of 32 bits; no value otherwise, and while an edit
    /// is pending. Raises as `Value`.
    std::optional<Long> StoredWhole() const;

    /// Returns the value that the row had before it was edited, also if the edit assigned another one; null in a new
    /// row. It is the value of the snapshot, which is not read again from the table. Raises as `Value`.
    Variant OriginalValue() const;

    /// Assigns a value, which begins an edit unless one is pending; `Recordset::Update` and every move post it. The
    /// table is not changed until then. The value is converted to the type of the column at once (`StoredForm`); `Null`
    /// is accepted by every column. A second assignment replaces the first one.
    ///
    /// Raises 3251 on a read-only recordset, one whose rows come from several tables or none, and for a computed
    /// column; 3709 on a disconnected recordset; 3021 without a current row; 0x80040E23 on a deleted row; 3421 or
    /// 0x80040E21 for a value that the column can't store. The edit is then unchanged.
    void SetValue(const Variant& value);

private:
    std::optional<Long> WholeOf(const Cell& cell) const;
    template <class T>
    T From(const Cell& cell) const;

    Recordset* recordset_;
    Long ordinal_;
};

/// The rows of a statement: a snapshot with a cursor, which can be edited.
///
/// Rows are copied when the recordset is opened: later changes are not visible, not even those of statements on the
/// same connection. With `adUseClient` the cursor is static and scrolls in both directions.
///
/// A recordset of one table whose key is among its columns can be edited if it was opened with another lock type than
/// `adLockReadOnly` and `adLockUnspecified`. An edit is pending between the first assignment, or `AddNew`, and
/// `Update`. An update names only the columns that changed, and finds its row by the key and the old values of these
/// columns. The statements that post an edit or delete a row run without events of the connection.
///
/// A recordset holds a reference to its connection. It is closed with its last reference and by `Connection::Close`; a
/// pending edit is then lost. A recordset belongs to the thread that created it. Failures of this layer have the source
/// "ADODB.Recordset", or "ADODB.Connection" if the connection raised them.
class Recordset final : public Object {
public:
    static constexpr const char* ClassName = "Recordset";

    Recordset() = default;
    ~Recordset() override;

    // ---- opening and closing --------------------------------------------------------------------

    /// Runs a statement. The first row becomes current; if the result is empty, both EOF and BOF are true. After a
    /// statement that does not return rows the recordset is closed. With `adCmdTable`, `Source` is the name of a table,
    /// which becomes part of the statement without quotes; otherwise it is one SQL statement. The cursor location that
    /// the first successful open uses is kept for later ones.
    ///
    /// Raises 3705 if open; nothing changes then. Raises 3709 without an open connection, 3001 with
    /// `adExecuteNoRecords`, 3710 inside `WillExecute`, 3712 if a handler cancelled the statement, and what the engine
    /// raises; the recordset is then closed.
    void Open(const String& Source, const Ref<Connection>& ActiveConnection,
              CursorTypeEnum CursorType = adOpenForwardOnly, LockTypeEnum LockType = adLockReadOnly,
              Long Options = adCmdUnspecified);

    /// Opens a select that the caller reads once, from the first row to the last, as `Open` does with a forward-only,
    /// read-only cursor and `adCmdText`. Each row is read from the engine when it is reached, so that no row is copied.
    /// `CursorType` is forward-only at every location, and earlier rows are not kept: `MoveFirst` raises 3219 as
    /// `MovePrevious` does, `RecordCount` is -1 and `AbsolutePosition` is `adPosUnknown`. `Requery` copies all rows, as
    /// for an ordinary recordset, which it is afterwards.
    ///
    /// The rows are still those of the moment at which the statement ran. The current row and the later ones are copied
    /// before the connection does anything else, and when the recordset is disconnected. All rows are copied at once if
    /// the connection has handlers. While rows are unread, the statement runs and holds its read lock, therefore the
    /// caller must read to the end or close the recordset before it returns to its own caller.
    ///
    /// Raises as `Open`. In addition, `Move` and `MoveNext` raise the engine's failure to read a later row, even if the
    /// failure occurred while the rows were being copied. The recordset then has no current row. C++ only.
    void OpenUnbuffered(const String& Source, const Ref<Connection>& ActiveConnection);

    /// Releases the rows; the connection and the source are kept. The recordset can be opened again. Raises 3704 if
    /// closed, 3219 while an edit is pending; nothing changes then.
    void Close();

    /// Runs the statement again and replaces the rows; the first row becomes current. The events of the connection are
    /// called as by `Open`. Fields then refer to the new columns with their ordinals.
    ///
    /// Raises 3704 if closed, 3219 while an edit is pending, 3709 when disconnected, 3710 inside `WillExecute`, 3712 if
    /// a handler cancelled the statement, and what the engine raises; the old rows and the position are then unchanged.
    void Requery();

    /// Returns `adStateOpen` or `adStateClosed`.
    Long State() const noexcept { return IsOpen() ? adStateOpen : adStateClosed; }
    /// Returns the statement that was run last or set by `SetSource`. For `adCmdTable` it is the select of the table;
    /// if a handler of `WillExecute` changed the statement, it is the changed one.
    const String& Source() const noexcept { return source_; }
    /// Return the types that the open recordset has, which may differ from the requested ones, or the types that the
    /// next `Open` by name requests.
    CursorTypeEnum CursorType() const;
    LockTypeEnum LockType() const;

    /// Set what a later `Open` by name uses for an argument that is left out; `Open` in C++ has its own defaults and
    /// replaces these values. Raise 3705 while open, 3001 for a number that is not in the enumeration; the old value
    /// remains.
    void SetSource(const String& source);
    void SetCursorType(CursorTypeEnum type);
    void SetLockType(LockTypeEnum type);

    /// Returns where the rows are kept: the set location; otherwise that with which the recordset was first opened;
    /// otherwise `adUseServer`.
    CursorLocationEnum CursorLocation() const noexcept { return location_.value_or(adUseServer); }

    /// Sets where the rows are kept; it overrides the connection's setting. Raises 3705 while open. The number is not
    /// checked here: a location other than `adUseClient` has the effect of `adUseServer`. By name another number raises
    /// 3001.
    void SetCursorLocation(CursorLocationEnum location);

    /// Returns the connection, null if the recordset was never opened or is disconnected.
    const Ref<Connection>& ActiveConnection() const noexcept { return connection_; }

    /// Sets the connection. Null disconnects an open client recordset, which can still be read and is not closed with
    /// the connection; another connection attaches it again. A pending edit remains pending. For a closed recordset,
    /// sets the connection that an `Open` by name uses if its argument is left out.
    ///
    /// Raises 3705 for an open server recordset, 3709 for a closed connection; the recordset is then unchanged.
    void SetActiveConnection(const Ref<Connection>& connection);

    // ---- position -------------------------------------------------------------------------------
    // All of these raise 3704 on a closed recordset. While a new row is being added, it is the current row: neither
    // `Eof` nor `Bof` is true, and the row counts in `RecordCount`.

    bool Eof() const;  ///< true after the last row, and if there are no rows
    bool Bof() const;  ///< true before the first row, and if there are no rows

    /// Returns the number of rows, or -1 for a forward-only server cursor. A row that `Delete` deleted is not counted.
    Long RecordCount() const;

    /// Returns the position of the current row, counted from 1, or a `PositionEnum`. A new row has the position after
    /// the last one. After `Delete` it is the position that the deleted row had, at which the next row is then.
    Long AbsolutePosition() const;

    // A move posts a pending edit first, as `Update`. If that fails, its failure is raised, and the edit and the
    // position are unchanged. If the move itself raises after that, the edit is posted and the position is unchanged.

    /// Move to the first or the last row; `MoveFirst` also with a forward-only cursor. Raise 3021 on an empty
    /// recordset; `MoveLast` raises 3219 on a forward-only server cursor. If `Delete` has just deleted the only row,
    /// the first call does not raise: EOF and BOF are true after it.
    void MoveFirst();
    void MoveLast();
    /// Moves to the next row, or to EOF after the last. From a row that `Delete` deleted it moves to the one after it.
    /// At BOF it moves to the first row. Raises 3021 at EOF.
    void MoveNext();
    /// Moves to the previous row, or to BOF before the first; at EOF to the last row. Raises 3021 at BOF, 3219 on a
    /// forward-only server cursor.
    void MovePrevious();
    /// Moves by this number of rows, backward if it is negative; beyond the last or first row to EOF or BOF. 0 stays at
    /// the row. Raises 3021 without a row, forward at EOF and backward at BOF; 3219 for a negative number on a
    /// forward-only server cursor.
    void Move(Long rows);

    // ---- columns --------------------------------------------------------------------------------

    /// Returns the column with this name, without regard to case, or with this ordinal, counted from 0. Of several
    /// columns of one name it is the first. A name is that of the column alone, without its table. A current row is not
    /// needed, and a program may keep the field while it moves. Raises 3704 on a closed recordset, 3265 if there is no
    /// such column.
    Field Fields(std::string_view name) { return {*this, OrdinalOf(name)}; }
    Field Fields(Long ordinal) { return {*this, OrdinalOf(ordinal)}; }
    /// Returns the column with a name that is a literal, faster than `Fields`. Raises as `Fields`. C++ only.
    Field FieldOf(const ColumnName& name) {
        const Long ordinal = columns_ ? columns_->Find(name) : OrdinalOf(name.Text());
        if (ordinal == Columns::Missing) RaiseNoColumn();
        return {*this, ordinal};
    }
    /// Returns the number of columns. Raises 3704 on a closed recordset.
    Long FieldCount() const { return rowsElsewhere_ ? rowsElsewhere_->FieldCount() : Result().Count(); }

    /// Returns true if the recordset has a column with this name, without regard to case; it need not have rows. For a
    /// column that is often missing, this is faster than handling the failure of `Fields`. Raises 3704 on a closed
    /// recordset.
    bool HasField(std::string_view name) const {
        return rowsElsewhere_ ? rowsElsewhere_->HasField(name) : Result().Find(name) != Columns::Missing;
    }

    /// Read or assign a value. Raise as `Fields`, and as `Value` and `SetValue` of the column.
    Variant Collect(std::string_view name) { return Fields(name).Value(); }
    void Collect(std::string_view name, const Variant& value) { Fields(name).SetValue(value); }

    // ---- changing rows --------------------------------------------------------------------------

    /// Begins a new row, which becomes the current one; a pending edit is posted first. All its columns are null until
    /// they are assigned. The table is not changed before `Update`.
    ///
    /// Raises 3704 if closed, 3251 if read-only or if the rows come from several tables or none, 3709 when
    /// disconnected, and as `Update`; no new row is begun then.
    void AddNew();

    /// Writes the pending edit. The row is still current afterwards; a new row becomes the last one and then has the
    /// counter that the database assigned. Does nothing without an edit, and sends no statement if no value differs
    /// from the row's.
    ///
    /// An insert names only the columns that were assigned, so that the database stores the default of each other one;
    /// the recordset has null for them until `Requery`. The edit is part of the connection's open transaction, if there
    /// is one; a rollback does not restore the rows of the recordset.
    ///
    /// Raises 3704 if closed, 0x80040E38 if another client deleted the row or changed one of the columns that the edit
    /// changes, 0x80004005 if the columns do not contain the table's key, 3710 inside `WillExecute`, 0x8004D00E if the
    /// engine has rolled back the open transaction, 91 if the recordset was disconnected after the edit began, and what
    /// the engine raises; the edit is then still pending.
    void Update();

    /// Discards the pending edit; after `AddNew` the row that was current before is current again. Does nothing without
    /// an edit, and sends no statement. Raises 3704 if closed.
    void CancelUpdate();

    /// Deletes the current row from the table, which it finds by the key. The position does not change: reading the row
    /// raises 0x80040E23 until the next move, and EOF does not become true, also if it was the last row.
    ///
    /// Raises 3704 if closed, 3001 for another argument than `adAffectCurrent`, 3021 without a current row, 0x80040E23
    /// on a deleted row, 3219 while an edit is pending, 3251 if read-only or if the rows come from several tables or
    /// none, 3709 when disconnected, 0x80040E38 if another client has deleted the row or changed its key, 0x80004005 if
    /// the columns do not contain the table's key, 3710 and 0x8004D00E as `Update`, and what the engine raises. The
    /// recordset is then unchanged.
    void Delete(AffectEnum AffectRecords = adAffectCurrent);

    /// Returns whether an edit or a new row is pending. Raises 3704 if closed, 3021 without a current row and on a
    /// deleted one.
    EditModeEnum EditMode() const;

    /// Returns the interface table. By name, `Fields` is the default member and returns a `FieldsObject`; `Open` has
    /// optional arguments, and accepts a connection string in place of a connection, which it opens.
    const Interface& Describe() const override;
    Ref<Object> Adapted() const override;

    /// Returns a recordset that passes its calls on to `recordset`, an object that has the members of a recordset by
    /// name: one of another component, which is not closed with the last reference. Null if the object has no member
    /// `Fields`.
    static Ref<Recordset> Adapt(const Ref<Object>& recordset);

private:
    friend class Connection;
    friend class Field;

    /// An edit that is not posted: for each column the assigned value in its stored form, if any.
    struct Edit {
        EditModeEnum mode;
        std::vector<std::optional<Variant>> assigned;
    };

    /// Stores the result of a statement that `connection` has run. The recordset must be closed.
    void TakeResult(const Ref<Connection>& connection, ExecuteRequest&& request, Connection::Result&& result);
    /// Opens the recordset with these columns and no rows; it stays closed without columns.
    void TakeColumns(const Ref<Connection>& connection, CursorTypeEnum cursor, LockTypeEnum lock,
                     std::shared_ptr<const Columns>&& columns);
    /// Raises as `Open` if the recordset is open or the connection is closed.
    void RequireOpenable(const Ref<Connection>& connection) const;
    /// Opens the recordset at the first row of a statement that is then running.
    void Read(const String& statement, const Ref<Connection>& connection);
    /// Copies the current row and those that are not read yet, and ends the statement. A failure is kept, and raised by
    /// the move that reaches its row; raises it at once if not even the current row can be copied.
    void CopyUnread();
    /// Raises the stored failure. The recordset then has no current row.
    [[noreturn]] void RaiseCutShort();
    /// Ends the statement; the rows that are not read are lost.
    void StopReading();
    /// Moves forward in the rows that are not read yet.
    void ReadOn(Long rows);
    /// Closes the recordset and releases its connection, which is being closed.
    void ConnectionClosed();
    /// Releases the rows and the pending edit; does nothing if closed.
    void Release();
    bool IsOpen() const noexcept { return columns_ || rowsElsewhere_; }
    /// Runs a request in the modes of this recordset.
    Connection::Result Run(Connection& connection, ExecuteRequest& request) const;
    /// Takes the rows of another side. The recordset must be closed.
    void TakeCursor(const Ref<Connection>& connection, std::unique_ptr<Cursor> cursor);
    /// Does what `SetActiveConnection` does, for the rows of another side.
    void AttachElsewhere(const Ref<Connection>& connection);
    const Columns& Result() const {
        if (!columns_) RaiseClosed();
        return *columns_;
    }
    [[noreturn]] static void RaiseClosed();
    Long OrdinalOf(std::string_view name) const;
    Long OrdinalOf(Long ordinal) const {
        if (rowsElsewhere_) return rowsElsewhere_->ColumnOf(ordinal);
        if (ordinal < 0 || ordinal >= Result().Count()) RaiseNoColumn();
        return ordinal;
    }
    [[noreturn]] static void RaiseNoColumn();
    void RequireCurrent() const;    ///< raises 3704, 0x80040E23 on a deleted row, 3021 without a row
    void RequireNoEdit() const;     ///< raises 3219
    void RequireScrolling() const;  ///< raises 3219 for a forward-only cursor
    void RequireUpdatable() const;  ///< raises 3704, 3251, 3709
    const Row& Current() const {
        if (!columns_ || bof_ || eof_ || onDeleted_) RequireCurrent();
        return rows_.all[static_cast<std::size_t>(position_)];
    }
    Long RowCount() const noexcept { return static_cast<Long>(rows_.all.size()); }
    /// Returns a value of the current row. Raises as `RequireCurrent`.
    Cell CurrentCell(Long ordinal) const { return reader_ ? reader_->At(ordinal) : Current().At(ordinal); }
    /// Returns the same for a field, nothing while an edit is pending. Raises in addition 3704 and 3265, because the
    /// recordset may have been closed or opened again since the field was created.
    std::optional<Cell> StoredCell(Long ordinal) const {
        if (rowsElsewhere_) return {};
        if (!columns_ || ordinal < 0 || ordinal >= columns_->Count()) ColumnAt(ordinal);
        if (edit_) return {};
        return CurrentCell(ordinal);
    }
    /// Sets the position, from 0. Sets BOF below 0 and EOF at the number of rows or above.
    void GoTo(Long position);

    /// Returns the column of a field; the recordset may have been closed or opened again since the field was created.
    const Column& ColumnAt(Long ordinal) const {
        return rowsElsewhere_ ? rowsElsewhere_->ColumnAt(ordinal) : Result().At(OrdinalOf(ordinal));
    }
    bool IsAdding() const noexcept { return edit_ && edit_->mode == adEditAdd; }
    Variant ValueAt(Long ordinal) const;
    Variant OriginalAt(Long ordinal) const;
    void Assign(Long ordinal, const Variant& value);
    void Insert();
    void Change();
    Row EditedRow(Long counter, std::int64_t counterValue);
    /// Returns the table that all columns with a table come from. Raises 3251 if there are several or none.
    const String& BaseTable() const;
    /// Returns true if the pending edit assigns a value to the column that differs from that of the row.
    bool IsChanged(Long ordinal) const;
    /// Returns the condition that finds the current row, and appends its values to `values`. Raises 0x80004005 if no
    /// column belongs to the key.
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

    std::unique_ptr<Cursor> rowsElsewhere_;   // in place of all that follows
    std::shared_ptr<const Columns> columns_;  // null while closed
    Rows rows_;
    std::unique_ptr<RowReader> reader_;  // at the current row, while the statement is running; `rows_` is empty then
    bool unbuffered_ = false;            // opened by `OpenUnbuffered`
    std::exception_ptr cutShort_;        // why the rows after the last of `rows_` could not be copied
    Long position_ = 0;                  // of the current row, from 0; of the next row if the current one is deleted
    bool bof_ = true;
    bool eof_ = true;
    bool onDeleted_ = false;
    std::optional<Edit> edit_;
};

inline bool Field::IsNull() const {
    const std::optional<Cell> cell = recordset_->StoredCell(ordinal_);
    return cell ? cell->kind == Cell::Kind::Null : Value().Is<Null>();
}

inline bool Field::IsText() const {
    const std::optional<Cell> cell = recordset_->StoredCell(ordinal_);
    return cell ? cell->kind == Cell::Kind::Text : Value().Is<String>();
}

inline std::optional<Long> Field::StoredWhole() const {
    const std::optional<Cell> cell = recordset_->StoredCell(ordinal_);
    return cell ? WholeOf(*cell) : std::nullopt;
}

inline std::optional<Long> Field::WholeOf(const Cell& cell) const {
    if (cell.kind != Cell::Kind::Whole || !std::in_range<Long>(cell.whole)) return {};
    if (recordset_->columns_->At(ordinal_).Type == adBoolean) return cell.whole != 0 ? -1 : 0;
    return static_cast<Long>(cell.whole);
}

template <class T>
T Field::From(const Cell& cell) const {
    const Column& column = recordset_->columns_->At(ordinal_);
    if constexpr (std::is_same_v<T, Long> || std::is_enum_v<T>) {
        if (const std::optional<Long> whole = WholeOf(cell)) return static_cast<T>(*whole);
    } else if constexpr (std::is_same_v<T, String>) {
        if (cell.kind == Cell::Kind::Text && column.Type != adDate) return String(cell.Text());
    } else if constexpr (std::is_same_v<T, Date>) {
        if (cell.kind == Cell::Kind::Text && column.Type == adDate)
            if (const std::optional<Date> date = Platform::ParseDate(cell.Text())) return *date;
    }
    return To<T>(ValueOf(cell, column));
}

template <class T>
T Field::As() const {
    if (const std::optional<Cell> cell = recordset_->StoredCell(ordinal_)) return From<T>(*cell);
    return To<T>(Value());
}

template <class T>
T Field::Or(const T& otherwise) const {
    const std::optional<Cell> cell = recordset_->StoredCell(ordinal_);
    if (!cell) return Value().Is<Null>() ? otherwise : As<T>();
    if (cell->kind == Cell::Kind::Null) return otherwise;
    return From<T>(*cell);
}

}  // namespace ADODB

#pragma once

#include "platform/adodb/Connection.h"
#include "platform/runtime/Convert.h"

#include <optional>

namespace ADODB {

class Recordset;

/// A column of a recordset, seen at its current row. A light value: it may be copied, and must not outlive
/// its recordset. On a closed recordset every member raises 3704; on one that was opened anew it stands for
/// the column at the same place, or raises 3265 where there is none.
class Field {
public:
    Field(Recordset& recordset, Long ordinal) : recordset_(&recordset), ordinal_(ordinal) {}

    const String& Name() const;
    DataTypeEnum Type() const;
    Long DefinedSize() const;

    /// The value at the current row, an unposted one if there is any. Raises 3021 without a current
    /// row, 0x80040E23 on a deleted one.
    Variant Value() const;

    /// True if the value is null, or a text. Raise as `Value`.
    bool IsNull() const;
    bool IsText() const;

    /// `To<T>(Value())`, without the detour where the value is stored as a `T` already. Raises as both.
    template <class T>
    T As() const;

    /// The value that the row had before it was edited. Raises as `Value`.
    Variant OriginalValue() const;

    /// Assigns a value, which starts an edit; `Recordset::Update` posts it. Raises 3251 on a read-only
    /// recordset, 3021 without a current row, 3421 or 0x80040E21 for a value that the column can't take.
    void SetValue(const Variant& value);

private:
    Recordset* recordset_;
    Long ordinal_;
};

/// The rows of a statement, a snapshot of them, and the way to change them.
///
/// Rows are copied when the recordset opens: later changes, also by statements on the same connection,
/// are not seen. With `adUseClient` the result is static and scrolls both ways. A recordset on one
/// table whose key is among its columns can be edited when opened with another lock than
/// `adLockReadOnly`; an update names only the columns that changed, and finds its row by key and by the
/// old values of those columns. One thread; dropping the last reference closes it.
class Recordset final : public Object {
public:
    static constexpr const char* ClassName = "Recordset";

    Recordset() = default;
    ~Recordset() override;

    // ---- opening and closing --------------------------------------------------------------------

    /// Runs a statement; the first row is current. A statement that yields no rows leaves the recordset
    /// closed. Raises 3705 if open, 3709 without an open connection, 3712 if a handler cancelled it, and
    /// what the engine raises.
    void Open(const String& Source, const Ref<Connection>& ActiveConnection,
              CursorTypeEnum CursorType = adOpenForwardOnly, LockTypeEnum LockType = adLockReadOnly,
              Long Options = adCmdUnspecified);

    /// Raises 3704 if closed, 3219 while an edit is pending.
    void Close();

    /// Runs the statement again. Raises 3704 if closed, 3219 while an edit is pending, 3709 when
    /// disconnected.
    void Requery();

    Long State() const noexcept { return columns_ ? adStateOpen : adStateClosed; }
    const String& Source() const noexcept { return source_; }
    CursorTypeEnum CursorType() const noexcept { return columns_ ? actualCursor_ : cursor_; }
    LockTypeEnum LockType() const noexcept { return columns_ ? actualLock_ : lock_; }

    /// What an `Open` by name takes where its argument is left out. Raise 3705 while open, 3001 for a number
    /// that the enumeration doesn't have.
    void SetSource(const String& source);
    void SetCursorType(CursorTypeEnum type);
    void SetLockType(LockTypeEnum type);

    CursorLocationEnum CursorLocation() const noexcept { return location_.value_or(adUseServer); }

    /// Where the rows are kept; wins over the connection's setting. Raises 3705 while open.
    void SetCursorLocation(CursorLocationEnum location);

    const Ref<Connection>& ActiveConnection() const noexcept { return connection_; }

    /// Nothing disconnects an open client recordset, which stays readable; another connection attaches
    /// it again. Raises 3705 for an open server recordset, 3709 for a closed connection.
    void SetActiveConnection(const Ref<Connection>& connection);

    // ---- where it stands ------------------------------------------------------------------------
    // All of these raise 3704 on a closed recordset.

    bool Eof() const;
    bool Bof() const;

    /// The number of rows; -1 for a forward-only server cursor, which can't know.
    Long RecordCount() const;

    /// The position of the current row from 1, or a `PositionEnum`.
    Long AbsolutePosition() const;

    // Moving posts a pending edit first; if that fails, its failure is raised and nothing moves.

    /// Raise 3021 on an empty recordset.
    void MoveFirst();
    void MoveLast();
    /// Raises 3021 at EOF.
    void MoveNext();
    /// Raises 3021 at BOF, 3219 on a forward-only server cursor.
    void MovePrevious();
    /// Moves by so many rows, forward or back; beyond either end sets EOF or BOF. Raises 3021.
    void Move(Long rows);

    // ---- columns --------------------------------------------------------------------------------

    /// The column of this name, without regard to case, or at an ordinal from 0. Raises 3265.
    Field Fields(std::string_view name) { return {*this, OrdinalOf(name)}; }
    Field Fields(Long ordinal) { return {*this, OrdinalOf(ordinal)}; }
    Long FieldCount() const { return Result().Count(); }

    /// True if there is a column of this name.
    bool HasField(std::string_view name) const { return Result().Find(name) != Columns::Missing; }

    /// `Fields(name).Value()` and its assignment in one.
    Variant Collect(std::string_view name) { return Fields(name).Value(); }
    void Collect(std::string_view name, const Variant& value) { Fields(name).SetValue(value); }

    // ---- changing rows --------------------------------------------------------------------------

    /// Starts a new row, which becomes the current one. Raises 3251 if read-only.
    void AddNew();

    /// Writes the pending edit; the row stays current, a new one too, with the counter that the
    /// database gave it. Without an edit nothing happens. Raises 0x80040E38 if somebody else changed or
    /// removed the row, and what the engine raises; the edit stays pending then.
    void Update();

    /// Drops the pending edit; after `AddNew` the row that was current before is current again.
    void CancelUpdate();

    /// Deletes the current row at once. The position doesn't move: reading the row raises 0x80040E23
    /// until the next move. Raises 3001 for anything but `adAffectCurrent`, 3021, 3251, 0x80040E38.
    void Delete(AffectEnum AffectRecords = adAffectCurrent);

    /// Raises 3021 without a current row.
    EditModeEnum EditMode() const;

    const Interface& Describe() const override;

private:
    friend class Connection;
    friend class Field;

    /// An edit that isn't posted: per column the stored form that was assigned, if any.
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

    /// The cell at the current row; nothing while an edit stands before it.
    const Cell* CellAt(Long ordinal) const {
        ColumnAt(ordinal);
        return edit_ ? nullptr : &Current().At(ordinal);
    }
    /// The column that a field stands for; the recordset may have been closed or opened anew since.
    const Column& ColumnAt(Long ordinal) const { return Result().At(OrdinalOf(ordinal)); }
    bool IsAdding() const noexcept { return edit_ && edit_->mode == adEditAdd; }
    Variant ValueAt(Long ordinal) const;
    Variant OriginalAt(Long ordinal) const;
    void Assign(Long ordinal, const Variant& value);
    void Insert();
    void Change();
    Row EditedRow(Long counter, std::int64_t counterValue);
    const String& BaseTable() const;
    /// True if the pending edit gives the column another value than the row has.
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

    std::shared_ptr<const Columns> columns_;  // nothing while closed
    std::vector<Row> rows_;
    RowStore store_;
    Long position_ = 0;  // of the current row from 0; of the row behind it when the current one is deleted
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
            if (cell && cell->kind == Cell::Kind::Whole && type != adBoolean &&
                std::in_range<Long>(cell->whole))
                return static_cast<T>(cell->whole);
        } else {
            if (cell && cell->kind == Cell::Kind::Text && type != adDate) return String(cell->Text());
        }
    }
    return To<T>(Value());
}

}  // namespace ADODB

#include "platform/adodb/Recordset.h"

#include "platform/runtime/Convert.h"

#include <algorithm>

namespace ADODB {

using namespace Platform;

namespace {

/// Returns the cursor type that a request actually gets, as its properties report it.
CursorTypeEnum ActualCursor(CursorLocationEnum location, CursorTypeEnum asked, LockTypeEnum lock) {
    if (location == adUseClient) return adOpenStatic;
    if (lock != adLockReadOnly || asked == adOpenDynamic) return adOpenKeyset;
    return asked == adOpenUnspecified ? adOpenForwardOnly : asked;
}

LockTypeEnum ActualLock(CursorLocationEnum location, LockTypeEnum asked) {
    if (asked == adLockUnspecified) return adLockReadOnly;
    return location == adUseClient && asked == adLockPessimistic ? adLockOptimistic : asked;
}

}  // namespace

const String& Field::Name() const { return recordset_->ColumnAt(ordinal_).Name; }
DataTypeEnum Field::Type() const { return recordset_->ColumnAt(ordinal_).Type; }
Long Field::DefinedSize() const { return recordset_->ColumnAt(ordinal_).DefinedSize; }
Variant Field::Value() const { return recordset_->ValueAt(ordinal_); }
Variant Field::OriginalValue() const { return recordset_->OriginalAt(ordinal_); }
void Field::SetValue(const Variant& value) { recordset_->Assign(ordinal_, value); }

Recordset::~Recordset() { Release(); }

void Recordset::Release() {
    if (IsOpen() && connection_) std::erase(connection_->open_, this);
    rowsElsewhere_.reset();
    StopReading();
    columns_.reset();
    rows_ = {};
    cutShort_ = nullptr;
    unbuffered_ = false;
    edit_.reset();
    onDeleted_ = false;
}

void Recordset::ConnectionClosed() {
    Release();
    connection_ = nullptr;
}

void Recordset::RaiseClosed() { RaiseAdo(adErrObjectClosed, RecordsetSource); }

void Recordset::RaiseNoColumn() { RaiseAdo(adErrItemNotFound, RecordsetSource); }

void Recordset::Open(const String& Source, const Ref<Connection>& ActiveConnection, CursorTypeEnum CursorType,
                     LockTypeEnum LockType, Long Options) {
    RequireOpenable(ActiveConnection);
    if (Options > 0 && (Options & adExecuteNoRecords) != 0) RaiseAdo(adErrInvalidArgument, RecordsetSource);
    cursor_ = CursorType;
    lock_ = LockType;
    ExecuteRequest request{.Source = Source, .CursorType = CursorType, .LockType = LockType, .Options = Options};
    Connection::Result result = Run(*ActiveConnection, request);
    TakeResult(ActiveConnection, std::move(request), std::move(result));
}

CursorTypeEnum Recordset::CursorType() const {
    if (rowsElsewhere_) return rowsElsewhere_->CursorType();
    return columns_ ? actualCursor_ : cursor_;
}

LockTypeEnum Recordset::LockType() const {
    if (rowsElsewhere_) return rowsElsewhere_->LockType();
    return columns_ ? actualLock_ : lock_;
}

Connection::Result Recordset::Run(Connection& connection, ExecuteRequest& request) const {
    return connection.Run(request, [&](Session& session, const String& statement) {
        return session.Open(statement, {request.CursorType, request.LockType, request.Options, location_});
    });
}

Ref<Object> Recordset::Adapted() const { return rowsElsewhere_ ? rowsElsewhere_->Adapted() : nullptr; }

void Recordset::RequireOpenable(const Ref<Connection>& connection) const {
    if (IsOpen()) RaiseAdo(adErrObjectOpen, RecordsetSource);
    if (!connection || connection->State() == adStateClosed) RaiseAdo(adErrInvalidConnection, RecordsetSource);
}

void Recordset::OpenUnbuffered(const String& Source, const Ref<Connection>& ActiveConnection) {
    RequireOpenable(ActiveConnection);
    if (ActiveConnection->Handlers().empty())
        Read(Source, ActiveConnection);
    else
        Open(Source, ActiveConnection, adOpenForwardOnly, adLockReadOnly, adCmdText);
    unbuffered_ = true;
    actualCursor_ = adOpenForwardOnly;
}

void Recordset::Read(const String& statement, const Ref<Connection>& connection) {
    cursor_ = adOpenForwardOnly;
    lock_ = adLockReadOnly;
    const String before = std::exchange(source_, statement);  // the running statement refers to this text
    try {
        Outcome outcome = connection->RunUnbuffered(source_, {cursor_, lock_, adCmdText, location_});
        if (outcome.cursor) return TakeCursor(connection, std::move(outcome.cursor));
        const bool any = outcome.reader && connection->ReadNext(*outcome.reader);
        options_ = adCmdText;
        TakeColumns(connection, adOpenForwardOnly, adLockReadOnly, std::move(outcome.columns));
        bof_ = eof_ = !any;
        if (any) {
            reader_ = std::move(outcome.reader);
            connection_->reading_ = this;
        }
    } catch (...) {
        source_ = before;
        throw;
    }
}

void Recordset::TakeResult(const Ref<Connection>& connection, ExecuteRequest&& request, Connection::Result&& result) {
    source_ = std::move(request.Source);
    options_ = request.Options;
    if (result.cursor) return TakeCursor(connection, std::move(result.cursor));
    TakeColumns(connection, request.CursorType, request.LockType, std::move(result.columns));
    rows_ = std::move(result.rows);
    bof_ = eof_ = rows_.all.empty();
}

void Recordset::TakeCursor(const Ref<Connection>& connection, std::unique_ptr<Cursor> cursor) {
    connection_ = connection;
    rowsElsewhere_ = std::move(cursor);
    if (connection_) connection_->open_.push_back(this);
}

void Recordset::TakeColumns(const Ref<Connection>& connection, CursorTypeEnum cursor, LockTypeEnum lock,
                            std::shared_ptr<const Columns>&& columns) {
    connection_ = connection;
    const CursorLocationEnum location = location_.value_or(connection_->CursorLocation);
    location_ = location;
    actualCursor_ = ActualCursor(location, cursor, lock);
    actualLock_ = ActualLock(location, lock);
    columns_ = std::move(columns);
    position_ = 0;
    if (columns_) connection_->open_.push_back(this);
}

void Recordset::StopReading() {
    if (!reader_) return;
    connection_->reading_ = nullptr;
    reader_.reset();
}

void Recordset::CopyUnread() {
    try {
        do rows_.Append(*reader_, columns_->Count());
        while (reader_->Next());
    } catch (...) {
        cutShort_ = std::current_exception();
    }
    StopReading();
    eof_ = rows_.all.empty();
    if (eof_) RaiseCutShort();  // the current row is lost
}

void Recordset::RaiseCutShort() {
    eof_ = true;
    if (connection_) connection_->RaiseKept(cutShort_);
    std::rethrow_exception(cutShort_);
}

void Recordset::ReadOn(Long rows) {
    try {
        for (; rows > 0 && !eof_; --rows) eof_ = !connection_->ReadNext(*reader_);
    } catch (...) {
        eof_ = true;
        StopReading();
        throw;
    }
    if (eof_) StopReading();
}

void Recordset::Close() {
    if (rowsElsewhere_) {
        rowsElsewhere_->Close();
        return Release();
    }
    Result();
    RequireNoEdit();
    Release();
}

void Recordset::Requery() {
    if (rowsElsewhere_) return rowsElsewhere_->Requery();
    Result();
    RequireNoEdit();
    if (!connection_) RaiseAdo(adErrInvalidConnection, RecordsetSource);
    const Ref<Connection> connection = connection_;
    const String source = source_;
    // The text is already whole: a table name has become its select.
    ExecuteRequest request{.Source = source, .CursorType = cursor_, .LockType = lock_};
    Connection::Result result = Run(*connection, request);
    Release();
    TakeResult(connection, std::move(request), std::move(result));
}

void Recordset::SetSource(const String& source) {
    if (IsOpen()) RaiseAdo(adErrObjectOpen, RecordsetSource);
    source_ = source;
}

void Recordset::SetCursorType(CursorTypeEnum type) {
    if (IsOpen()) RaiseAdo(adErrObjectOpen, RecordsetSource);
    cursor_ = Known(type, RecordsetSource);
}

void Recordset::SetLockType(LockTypeEnum type) {
    if (IsOpen()) RaiseAdo(adErrObjectOpen, RecordsetSource);
    lock_ = Known(type, RecordsetSource);
}

void Recordset::SetCursorLocation(CursorLocationEnum location) {
    if (IsOpen()) RaiseAdo(adErrObjectOpen, RecordsetSource);
    location_ = location;
}

void Recordset::SetActiveConnection(const Ref<Connection>& connection) {
    if (rowsElsewhere_) return AttachElsewhere(connection);
    if (columns_ && CursorLocation() != adUseClient) RaiseAdo(adErrObjectOpen, RecordsetSource);
    if (connection && connection->State() == adStateClosed) RaiseAdo(adErrInvalidConnection, RecordsetSource);
    if (reader_) CopyUnread();
    if (columns_ && connection_) std::erase(connection_->open_, this);
    connection_ = connection;
    if (columns_ && connection_) connection_->open_.push_back(this);
}

void Recordset::AttachElsewhere(const Ref<Connection>& connection) {
    rowsElsewhere_->SetActiveConnection(connection);
    if (connection_) std::erase(connection_->open_, this);
    connection_ = connection;
    if (connection_) connection_->open_.push_back(this);
}

bool Recordset::Eof() const {
    if (rowsElsewhere_) return rowsElsewhere_->Eof();
    Result();
    return eof_ && !IsAdding();
}

bool Recordset::Bof() const {
    if (rowsElsewhere_) return rowsElsewhere_->Bof();
    Result();
    return bof_ && !IsAdding();
}

Long Recordset::RecordCount() const {
    if (rowsElsewhere_) return rowsElsewhere_->RecordCount();
    Result();
    if (actualCursor_ == adOpenForwardOnly) return -1;
    return RowCount() + (IsAdding() ? 1 : 0);
}

Long Recordset::AbsolutePosition() const {
    if (rowsElsewhere_) return rowsElsewhere_->AbsolutePosition();
    Result();
    if (unbuffered_) return adPosUnknown;
    if (IsAdding()) return RowCount() + 1;
    if (bof_ && eof_) return adPosUnknown;
    if (bof_) return adPosBOF;
    return eof_ ? adPosEOF : position_ + 1;
}

void Recordset::RequireNoEdit() const {
    if (edit_) RaiseAdo(adErrIllegalOperation, RecordsetSource);
}

void Recordset::RequireScrolling() const {
    if (actualCursor_ == adOpenForwardOnly) RaiseAdo(adErrIllegalOperation, RecordsetSource);
}

void Recordset::GoTo(Long position) {
    const Long count = RowCount();
    onDeleted_ = false;
    position_ = std::clamp(position, Long{0}, count);
    bof_ = position < 0 || count == 0;
    eof_ = position >= count;
}

void Recordset::MoveFirst() {
    if (rowsElsewhere_) return rowsElsewhere_->MoveFirst();
    Update();
    if (unbuffered_) RequireScrolling();
    if (bof_ && eof_) RaiseAdo(adErrNoCurrentRecord, RecordsetSource);
    GoTo(0);
}

void Recordset::MoveLast() {
    if (rowsElsewhere_) return rowsElsewhere_->MoveLast();
    Update();
    RequireScrolling();
    if (bof_ && eof_) RaiseAdo(adErrNoCurrentRecord, RecordsetSource);
    GoTo(RowCount() - 1);
    if (RowCount() == 0) eof_ = true;
}

void Recordset::MoveNext() {
    if (rowsElsewhere_) return rowsElsewhere_->MoveNext();
    Move(1);
}

void Recordset::MovePrevious() {
    if (rowsElsewhere_) return rowsElsewhere_->MovePrevious();
    Move(-1);
}

void Recordset::Move(Long rows) {
    if (rowsElsewhere_) return rowsElsewhere_->Move(rows);
    Update();
    if (rows < 0) RequireScrolling();
    const bool forward = rows > 0;
    if ((bof_ && eof_) || (forward && eof_) || (rows < 0 && bof_) || (rows == 0 && (bof_ || eof_)))
        RaiseAdo(adErrNoCurrentRecord, RecordsetSource);
    if (rows == 0) return;
    if (reader_) return ReadOn(rows);
    std::int64_t from = bof_ ? -1 : position_;
    if (onDeleted_ && forward) --from;  // the row behind the deleted one has moved into its place
    if (cutShort_ && from + rows >= RowCount()) RaiseCutShort();
    GoTo(static_cast<Long>(std::clamp<std::int64_t>(from + rows, -1, RowCount())));
}

Long Recordset::OrdinalOf(std::string_view name) const {
    if (rowsElsewhere_) return rowsElsewhere_->ColumnOf(name);
    const Long ordinal = Result().Find(name);
    if (ordinal == Columns::Missing) RaiseNoColumn();
    return ordinal;
}

void Recordset::RequireCurrent() const {
    Result();
    if (onDeleted_) RaiseAdo(DeletedRow, RecordsetSource);
    if (bof_ || eof_) RaiseAdo(adErrNoCurrentRecord, RecordsetSource);
}

Variant Recordset::ValueAt(Long ordinal) const {
    if (rowsElsewhere_) return rowsElsewhere_->Value(ordinal);
    const Column& column = ColumnAt(ordinal);
    if (!edit_) return ValueOf(CurrentCell(ordinal), column);
    if (const auto& assigned = edit_->assigned[static_cast<std::size_t>(ordinal)])
        return ValueOf(CellOf(*assigned), column);
    return edit_->mode == adEditAdd ? Variant(Null{}) : OriginalAt(ordinal);
}

Variant Recordset::OriginalAt(Long ordinal) const {
    if (rowsElsewhere_) return rowsElsewhere_->OriginalValue(ordinal);
    const Column& column = ColumnAt(ordinal);
    return IsAdding() ? Variant(Null{}) : ValueOf(CurrentCell(ordinal), column);
}

}  // namespace ADODB

#pragma once

#include "platform/component/dispatch/Member.h"

/// The enumerations and error numbers of the database layer, by their ADO names and values. A COM client may pass any
/// number for an enumeration; where this layer checks it, another number raises 3001.
namespace ADODB {

// The names that this layer takes from the runtime.
namespace err = Platform::err;
using Platform::Date, Platform::Integer, Platform::Long, Platform::String;
using Platform::Empty, Platform::Null, Platform::Object, Platform::Variant;
using Platform::EnumerationOf, Platform::EnumerationValue, Platform::Interface;
using Platform::Error, Platform::Raise;
using Platform::New, Platform::Ref;

/// Where a recordset keeps its rows. The rows are copied into memory in every case, so the location changes neither
/// speed nor memory, but what the recordset may do. With `adUseClient` it has a static cursor, scrolls in both
/// directions and can be disconnected from its connection. With `adUseServer` the requested cursor type applies.
/// `adUseNone` has the effect of `adUseServer`.
enum CursorLocationEnum : Long { adUseNone = 1, adUseServer = 2, adUseClient = 3 };

/// How a recordset may move. A forward-only cursor can't move backward and reports -1 as its number of rows; the other
/// types scroll in both directions. `Recordset::CursorType` returns the type that an open recordset has: static with
/// `adUseClient`; keyset if a dynamic cursor or a lock type other than `adLockReadOnly` was requested; otherwise the
/// requested type.
enum CursorTypeEnum : Long {
    adOpenUnspecified = -1,  ///< as `adOpenForwardOnly`; in an `Open` by name the property `CursorType`
    adOpenForwardOnly = 0,   ///< moves forward, and to the first row
    adOpenKeyset = 1,        ///< a snapshot that scrolls: like every type, it does not show the changes of others
    adOpenDynamic = 2,       ///< an open recordset has `adOpenKeyset` or `adOpenStatic` instead
    adOpenStatic = 3         ///< a snapshot that scrolls; what every recordset with `adUseClient` has
};

/// Whether a recordset can be edited: not with `adLockReadOnly` and `adLockUnspecified`. With every other type
/// `Recordset::Update` writes the edit at once, and raises 0x80040E38 if another client changed the row meanwhile. No
/// type locks a row before that.
enum LockTypeEnum : Long {
    adLockUnspecified = -1,    ///< as `adLockReadOnly`; in an `Open` by name the property `LockType`
    adLockReadOnly = 1,        ///< an assignment raises 3251
    adLockPessimistic = 2,     ///< as `adLockOptimistic`, which it becomes with `adUseClient`
    adLockOptimistic = 3,      ///< edits are posted one by one, by `Update` and by moves
    adLockBatchOptimistic = 4  ///< as `adLockOptimistic`: edits are not collected
};

/// How a command text is read, as the `Options` of `Connection::Execute` and `Recordset::Open`. `adExecuteNoRecords`
/// may be added to another value. Numbers that are not named here are not checked: the text is a statement unless the
/// number is positive and contains the bit of `adCmdTable`.
enum CommandTypeEnum : Long {
    adCmdUnspecified = -1,    ///< as `adCmdText`
    adCmdText = 1,            ///< one SQL statement
    adCmdTable = 2,           ///< a table name, which is appended to "select * from " without quotes
    adCmdUnknown = 8,         ///< as `adCmdText`
    adExecuteNoRecords = 128  ///< `Connection::Execute` returns null; `Recordset::Open` raises 3001
};

/// What `Recordset::Delete` deletes. Only `adAffectCurrent`, the current row, is supported; the others raise 3001, and
/// nothing is deleted. Several rows are deleted by a DELETE statement.
enum AffectEnum : Long { adAffectCurrent = 1, adAffectGroup = 2, adAffectAll = 3 };

/// The state of a connection or a recordset. Opening and executing are synchronous, so no other state occurs.
enum ObjectStateEnum : Long { adStateClosed = 0, adStateOpen = 1 };

/// The pending edit of a recordset: none; `adEditInProgress`, a row to which a value was assigned; `adEditAdd`, a row
/// that `AddNew` began.
enum EditModeEnum : Long { adEditNone = 0, adEditInProgress = 1, adEditAdd = 2 };

/// What `Recordset::AbsolutePosition` returns in place of a position: without rows, before the first row, and after the
/// last row.
enum PositionEnum : Long { adPosUnknown = -1, adPosBOF = -2, adPosEOF = -3 };

/// The status of an event. It is `adStatusOK` when the first handler of `WillExecute` is called. A handler sets
/// `adStatusCancel` to cancel the statement; with every other value after the last handler the statement runs.
enum EventStatusEnum : Long { adStatusOK = 1, adStatusErrorsOccurred = 2, adStatusCantDeny = 3, adStatusCancel = 4 };

/// The type of a column, and the type of its values as a `Variant`. A stored value that can't be converted to the type
/// is returned as it is stored. The SQLite provider derives the type from the declared type of the column: for example
/// `adInteger` from INTEGER, `adDate` from DATETIME, `adVarWChar` from NVARCHAR(64), `adLongVarWChar` from TEXT.
enum DataTypeEnum : Long {
    adSmallInt = 2,    ///< `Integer`
    adInteger = 3,     ///< `Long`
    adSingle = 4,      ///< `float`
    adDouble = 5,      ///< `double`
    adDate = 7,        ///< `Date`
    adBoolean = 11,    ///< `bool`
    adVariant = 12,    ///< the type in which each value is stored; the type of an expression
    adBigInt = 20,     ///< `Long`, or `std::int64_t` for a number beyond its range
    adVarWChar = 202,  ///< `String`; an assigned text may have at most `Column::DefinedSize` units, unless that is 0
    adLongVarWChar = 203,  ///< `String`
    adLongVarBinary = 205  ///< as `adVariant`
};

/// The sources of the failures of this layer, in `Error::Source`. A failure of an engine has the name of its provider.
inline constexpr const char* ConnectionSource = "ADODB.Connection";
inline constexpr const char* RecordsetSource = "ADODB.Recordset";

// Numbers of failures. A short number is a failure of this layer. A provider maps each failure of its engine to one
// of the long numbers below; this layer raises some of them too (0x80004005, 0x80040E21, 0x80040E23, 0x80040E38,
// 0x8004D00E, 0x8004D013). Only failures of an engine are added to `Connection::Errors`.

/// An argument out of range or contradictory: a number that its enumeration lacks, `adExecuteNoRecords` for a
/// recordset.
constexpr Long adErrInvalidArgument = 3001;
/// BOF or EOF, where a row is needed. On a row that `Delete` deleted, a read raises `DeletedRow` instead.
constexpr Long adErrNoCurrentRecord = 3021;
/// Not allowed while an edit is pending (`Update` or `CancelUpdate` ends it), or for a forward-only cursor.
constexpr Long adErrIllegalOperation = 3219;
/// Closing a connection with a transaction open. The connection stays open.
constexpr Long adErrInTransaction = 3246;
/// The recordset is read-only, its rows come from several tables or none, or the column is computed.
constexpr Long adErrFeatureNotAvailable = 3251;
/// No column of this name or ordinal, or no failure at this position of the `Errors` of a connection.
constexpr Long adErrItemNotFound = 3265;
/// An assigned value that a column's type can't take. A number out of range or a long text is `MultipleStepFailed`.
constexpr Long adErrDataConversion = 3421;
/// The connection or recordset must be open. A recordset is closed after a statement that does not return
/// rows, and with its connection.
constexpr Long adErrObjectClosed = 3704;
/// The connection or recordset must be closed: it is already open, or a property can't be set while it is open.
constexpr Long adErrObjectOpen = 3705;
/// No provider of this name is registered, or the connection string names none.
constexpr Long adErrProviderNotFound = 3706;
/// A recordset without a connection, or with a closed one. An operation of a closed connection itself raises 3704.
constexpr Long adErrInvalidConnection = 3709;
/// An operation started inside `WillExecute` on the same connection. It has no effect.
constexpr Long adErrNotReentrant = 3710;
/// A handler cancelled the statement, which did not run. A program that installed the handler knows the reason.
constexpr Long adErrOperationCancelled = 3712;

/// Any other failure; the description names it. It includes a full disk, a damaged file, a server that can't be
/// reached, and a change of a recordset's row whose columns do not contain the key.
constexpr Long Failed = static_cast<Long>(0x80004005);
/// The engine rejects a value of another type than the column's. A value that is assigned to a field is checked before,
/// and raises `adErrDataConversion`.
constexpr Long CantConvertValue = static_cast<Long>(0x80040E07);
/// The database or file is read-only, or the engine does not allow the operation.
constexpr Long NoPermission = static_cast<Long>(0x80040E09);
/// A column that the database lacks, or a parameter in the statement, which has no value. A table is `NoTable`.
constexpr Long UnknownName = static_cast<Long>(0x80040E10);
/// The statement can't be parsed, or contains a second one; `OXClass::sql` raises it for a text with a single quote.
constexpr Long ErrorsInCommand = static_cast<Long>(0x80040E14);
/// An assigned text that is too long or a number out of range; a setting that `Connection::Open` rejects.
constexpr Long MultipleStepFailed = static_cast<Long>(0x80040E21);
/// The current row was deleted by `Recordset::Delete`, until the next move.
constexpr Long DeletedRow = static_cast<Long>(0x80040E23);
/// A duplicate key (unique index), a null that is not allowed, or another constraint of the table.
constexpr Long IntegrityViolation = static_cast<Long>(0x80040E2F);
/// The statement, or the opening of a connection, took longer than the connection allows (`CommandTimeout`,
/// `ConnectionTimeout`). The statement had no effect.
constexpr Long TimedOut = static_cast<Long>(0x80040E31);
/// A table that the database lacks.
constexpr Long NoTable = static_cast<Long>(0x80040E37);
/// The row that `Update` or `Delete` should change no longer has the key and the old values: another client changed or
/// deleted it. A program calls `CancelUpdate` and `Requery`, and decides again.
constexpr Long ConcurrencyViolation = static_cast<Long>(0x80040E38);
/// The server rejects the user or the password.
constexpr Long LoginFailed = static_cast<Long>(0x80040E4D);
/// The engine was interrupted.
constexpr Long Cancelled = static_cast<Long>(0x80040E4E);
/// A text, a row or a statement is too large for the engine.
constexpr Long DataOverflow = static_cast<Long>(0x80040E57);
/// No transaction is open; or the engine has rolled it back after a failure: then every operation raises this number
/// until `Connection::RollbackTrans` was called for each level.
constexpr Long NoTransaction = static_cast<Long>(0x8004D00E);
/// A level of nested transactions that the engine does not support.
constexpr Long TooManyTransactions = static_cast<Long>(0x8004D013);
/// Another connection has a lock that was not released in time, or changed the same rows at the same time. The
/// statement had no effect; a program rolls its transaction back and may run it again.
constexpr Long LockConflict = static_cast<Long>(0x8004D019);
/// The connection to the server is lost. An open transaction is rolled back; whether one that was just being committed
/// is stored is not known. Every operation raises this number until the connection is closed and opened again.
constexpr Long ConnectionLost = static_cast<Long>(0x8004D01C);

/// Throws an `Error` of this layer with ADO's English text for the number, "Unspecified error" for a number without a
/// text. `source` must not be null; it is copied. The fields of an engine's failure remain empty. Any thread may call.
[[noreturn]] void RaiseAdo(Long number, const char* source);

/// Throws an `Error` of this layer with this description, for a failure whose cause the general text does not name. Any
/// thread may call.
[[noreturn]] void RaiseAdo(Long number, const char* source, const String& description);

/// Returns `value` if its enumeration has it. Raises 3001 with this source otherwise: a COM client may pass any number.
/// Any thread may call.
template <class E>
E Known(E value, const char* source) {
    for (const EnumerationValue& known : EnumerationOf<E>::Values)
        if (known.Value == value) return value;
    RaiseAdo(adErrInvalidArgument, source);
}

}  // namespace ADODB

// The names and numbers of the enumerations above, for `ADODB::Known`, the type library and the Python client. They are
// constant data, which any thread may read. `ADODB::DataTypeEnum` is only returned, never an argument.

template <>
struct Platform::EnumerationOf<ADODB::CursorLocationEnum> {
    static constexpr const char* Name = "CursorLocationEnum";
    static constexpr EnumerationValue Values[] = {
        {"adUseNone", ADODB::adUseNone},
        {"adUseServer", ADODB::adUseServer},
        {"adUseClient", ADODB::adUseClient},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::CursorTypeEnum> {
    static constexpr const char* Name = "CursorTypeEnum";
    static constexpr EnumerationValue Values[] = {
        {"adOpenUnspecified", ADODB::adOpenUnspecified}, {"adOpenForwardOnly", ADODB::adOpenForwardOnly},
        {"adOpenKeyset", ADODB::adOpenKeyset},           {"adOpenDynamic", ADODB::adOpenDynamic},
        {"adOpenStatic", ADODB::adOpenStatic},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::LockTypeEnum> {
    static constexpr const char* Name = "LockTypeEnum";
    static constexpr EnumerationValue Values[] = {
        {"adLockUnspecified", ADODB::adLockUnspecified},         {"adLockReadOnly", ADODB::adLockReadOnly},
        {"adLockPessimistic", ADODB::adLockPessimistic},         {"adLockOptimistic", ADODB::adLockOptimistic},
        {"adLockBatchOptimistic", ADODB::adLockBatchOptimistic},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::CommandTypeEnum> {
    static constexpr const char* Name = "CommandTypeEnum";
    static constexpr EnumerationValue Values[] = {
        {"adCmdUnspecified", ADODB::adCmdUnspecified},
        {"adCmdText", ADODB::adCmdText},
        {"adCmdTable", ADODB::adCmdTable},
        {"adCmdUnknown", ADODB::adCmdUnknown},
        {"adExecuteNoRecords", ADODB::adExecuteNoRecords},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::AffectEnum> {
    static constexpr const char* Name = "AffectEnum";
    static constexpr EnumerationValue Values[] = {
        {"adAffectCurrent", ADODB::adAffectCurrent},
        {"adAffectGroup", ADODB::adAffectGroup},
        {"adAffectAll", ADODB::adAffectAll},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::ObjectStateEnum> {
    static constexpr const char* Name = "ObjectStateEnum";
    static constexpr EnumerationValue Values[] = {
        {"adStateClosed", ADODB::adStateClosed},
        {"adStateOpen", ADODB::adStateOpen},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::EditModeEnum> {
    static constexpr const char* Name = "EditModeEnum";
    static constexpr EnumerationValue Values[] = {
        {"adEditNone", ADODB::adEditNone},
        {"adEditInProgress", ADODB::adEditInProgress},
        {"adEditAdd", ADODB::adEditAdd},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::PositionEnum> {
    static constexpr const char* Name = "PositionEnum";
    static constexpr EnumerationValue Values[] = {
        {"adPosUnknown", ADODB::adPosUnknown},
        {"adPosBOF", ADODB::adPosBOF},
        {"adPosEOF", ADODB::adPosEOF},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::EventStatusEnum> {
    static constexpr const char* Name = "EventStatusEnum";
    static constexpr EnumerationValue Values[] = {
        {"adStatusOK", ADODB::adStatusOK},
        {"adStatusErrorsOccurred", ADODB::adStatusErrorsOccurred},
        {"adStatusCantDeny", ADODB::adStatusCantDeny},
        {"adStatusCancel", ADODB::adStatusCancel},
    };
};

template <>
struct Platform::EnumerationOf<ADODB::DataTypeEnum> {
    static constexpr const char* Name = "DataTypeEnum";
    static constexpr EnumerationValue Values[] = {
        {"adSmallInt", ADODB::adSmallInt},
        {"adInteger", ADODB::adInteger},
        {"adSingle", ADODB::adSingle},
        {"adDouble", ADODB::adDouble},
        {"adDate", ADODB::adDate},
        {"adBoolean", ADODB::adBoolean},
        {"adVariant", ADODB::adVariant},
        {"adBigInt", ADODB::adBigInt},
        {"adVarWChar", ADODB::adVarWChar},
        {"adLongVarWChar", ADODB::adLongVarWChar},
        {"adLongVarBinary", ADODB::adLongVarBinary},
    };
};

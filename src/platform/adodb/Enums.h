#pragma once

#include "platform/component/dispatch/Member.h"

/// The enumerations and error numbers of the database layer, by their ADO names and values.
namespace ADODB {

// The names that this layer takes from the runtime.
namespace err = Platform::err;
using Platform::Date, Platform::Integer, Platform::Long, Platform::String;
using Platform::Empty, Platform::Null, Platform::Object, Platform::Variant;
using Platform::EnumerationOf, Platform::EnumerationValue, Platform::Interface;
using Platform::Error, Platform::Raise;
using Platform::New, Platform::Ref;

enum CursorLocationEnum : Long { adUseNone = 1, adUseServer = 2, adUseClient = 3 };
enum CursorTypeEnum : Long {
    adOpenUnspecified = -1,
    adOpenForwardOnly = 0,
    adOpenKeyset = 1,
    adOpenDynamic = 2,
    adOpenStatic = 3
};
enum LockTypeEnum : Long {
    adLockUnspecified = -1,
    adLockReadOnly = 1,
    adLockPessimistic = 2,
    adLockOptimistic = 3,
    adLockBatchOptimistic = 4
};
/// How a command text is to be understood; combined with the execute options below.
enum CommandTypeEnum : Long {
    adCmdUnspecified = -1,
    adCmdText = 1,
    adCmdTable = 2,
    adCmdUnknown = 8,
    adExecuteNoRecords = 128
};
enum AffectEnum : Long { adAffectCurrent = 1, adAffectGroup = 2, adAffectAll = 3 };
enum ObjectStateEnum : Long { adStateClosed = 0, adStateOpen = 1 };
enum EditModeEnum : Long { adEditNone = 0, adEditInProgress = 1, adEditAdd = 2 };
enum PositionEnum : Long { adPosUnknown = -1, adPosBOF = -2, adPosEOF = -3 };
enum EventStatusEnum : Long { adStatusOK = 1, adStatusErrorsOccurred = 2, adStatusCantDeny = 3, adStatusCancel = 4 };
enum DataTypeEnum : Long {
    adSmallInt = 2,
    adInteger = 3,
    adSingle = 4,
    adDouble = 5,
    adDate = 7,
    adBoolean = 11,
    adVariant = 12,
    adBigInt = 20,
    adVarWChar = 202,
    adLongVarWChar = 203,
    adLongVarBinary = 205
};

/// Numbers of failures. The small ones are the layer's own, the large ones what an engine's failure is
/// mapped to.
constexpr Long adErrInvalidArgument = 3001;      ///< an argument out of range or contradictory
constexpr Long adErrNoCurrentRecord = 3021;      ///< BOF or EOF, where a row is needed
constexpr Long adErrIllegalOperation = 3219;     ///< not now: an edit is pending, the cursor can't
constexpr Long adErrInTransaction = 3246;        ///< closing a connection with a transaction open
constexpr Long adErrFeatureNotAvailable = 3251;  ///< the recordset is read-only
constexpr Long adErrItemNotFound = 3265;         ///< no column of this name or ordinal
constexpr Long adErrDataConversion = 3421;       ///< a value that a column's type can't take
constexpr Long adErrObjectClosed = 3704;
constexpr Long adErrObjectOpen = 3705;
constexpr Long adErrProviderNotFound = 3706;
constexpr Long adErrInvalidConnection = 3709;  ///< a closed connection, or none
constexpr Long adErrNotReentrant = 3710;       ///< an operation started inside a Will event
constexpr Long adErrOperationCancelled = 3712;

constexpr Long Failed = static_cast<Long>(0x80004005);  ///< unspecified; the text says what
constexpr Long CantConvertValue = static_cast<Long>(0x80040E07);
constexpr Long NoPermission = static_cast<Long>(0x80040E09);        ///< read-only or not allowed
constexpr Long UnknownName = static_cast<Long>(0x80040E10);         ///< a name that the database lacks
constexpr Long ErrorsInCommand = static_cast<Long>(0x80040E14);     ///< syntax; a second statement
constexpr Long MultipleStepFailed = static_cast<Long>(0x80040E21);  ///< a value too long; a bad key at Open
constexpr Long DeletedRow = static_cast<Long>(0x80040E23);
constexpr Long IntegrityViolation = static_cast<Long>(0x80040E2F);
constexpr Long NoTable = static_cast<Long>(0x80040E37);
constexpr Long ConcurrencyViolation = static_cast<Long>(0x80040E38);  ///< the row was changed or removed
constexpr Long Cancelled = static_cast<Long>(0x80040E4E);
constexpr Long DataOverflow = static_cast<Long>(0x80040E57);
constexpr Long NoTransaction = static_cast<Long>(0x8004D00E);
constexpr Long TooManyTransactions = static_cast<Long>(0x8004D013);

/// Throws an `Error` of the layer itself, with ADO's English text for the number.
[[noreturn]] void RaiseAdo(Long number, const char* source);

/// As above with a text that says more.
[[noreturn]] void RaiseAdo(Long number, const char* source, const String& description);

/// `value`, which clients may have made of any number; raises 3001 where its enumeration doesn't have it.
template <class E>
E Known(E value, const char* source) {
    for (const EnumerationValue& known : EnumerationOf<E>::Values)
        if (known.Value == value) return value;
    RaiseAdo(adErrInvalidArgument, source);
}

}  // namespace ADODB

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

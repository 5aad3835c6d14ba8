#include "platform/adodb/Enums.h"

namespace ADODB {

using namespace Platform;

namespace {

const char* TextOf(Long number) {
    switch (number) {
        case adErrInvalidArgument:
            return "Arguments are of the wrong type, are out of acceptable range, or are in conflict with "
                   "one "
                   "another.";
        case adErrNoCurrentRecord:
            return "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
                   "requires a current record.";
        case adErrIllegalOperation: return "Operation is not allowed in this context.";
        case adErrInTransaction: return "Connection object cannot be explicitly closed while in a transaction.";
        case adErrFeatureNotAvailable:
            return "Current Recordset does not support updating. This may be a limitation of the provider, "
                   "or of "
                   "the selected locktype.";
        case adErrItemNotFound:
            return "Item cannot be found in the collection corresponding to the requested name or ordinal.";
        case adErrDataConversion: return "Application uses a value of the wrong type for the current operation.";
        case adErrObjectClosed: return "Operation is not allowed when the object is closed.";
        case adErrObjectOpen: return "Operation is not allowed when the object is open.";
        case adErrProviderNotFound: return "Provider cannot be found. It may not be properly installed.";
        case adErrInvalidConnection:
            return "The connection cannot be used to perform this operation. It is either closed or invalid "
                   "in "
                   "this context.";
        case adErrNotReentrant: return "Operation cannot be performed while processing event.";
        case adErrOperationCancelled: return "Operation has been cancelled by the user.";
        case MultipleStepFailed: return "Multiple-step operation generated errors. Check each status value.";
        case DeletedRow: return "The row has been deleted.";
        case ConcurrencyViolation:
            return "Row cannot be located for updating. Some values may have been changed since it was last "
                   "read.";
        case NoTransaction: return "No transaction is active.";
        case TooManyTransactions: return "No more transactions may be nested on this connection.";
        default: return "Unspecified error";
    }
}

}  // namespace

void RaiseAdo(Long number, const char* source) { throw Error(number, source, TextOf(number)); }

void RaiseAdo(Long number, const char* source, const String& description) { throw Error(number, source, description); }

}  // namespace ADODB

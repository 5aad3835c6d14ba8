#pragma once

#include "platform/adodb/providers/odbc/OdbcDialect.h"

namespace ADODB {

/// A failure as a driver describes it.
struct OdbcFailure {
    String state;  ///< the SQLSTATE
    Long native = 0;
    String text;  ///< without the names of the components that passed it on
};

/// Returns the first failure of a handle; `type` is the handle's type in the interface of the driver manager.
OdbcFailure FailureOfHandle(short type, void* handle);

/// The number that this layer raises for a failure: by the engine's own code, if its dialect lists it, otherwise by the
/// SQLSTATE.
Long NumberOfOdbc(const OdbcFailure& failure, const OdbcDialect& dialect);

/// Throws a failure with this number; `source` is the name of the engine, `statement` what the failure is about.
[[noreturn]] void RaiseOdbc(Long number, const OdbcFailure& failure, const String& source, std::string_view statement);

}  // namespace ADODB

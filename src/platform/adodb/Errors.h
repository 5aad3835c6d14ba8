#pragma once

#include "platform/adodb/Connection.h"
#include "platform/runtime/Collection.h"

namespace ADODB {

/// A failure of an engine as a COM object: a copy of what was reported. It belongs to the thread that created it.
class ErrorObject final : public Object {
public:
    static constexpr const char* ClassName = "Error";

    explicit ErrorObject(const Error& failure) { failure_ = failure; }

    // The members of `Platform::Error` of the same names. They describe the copy, also after the connection has cleared
    // its list. None raises.
    Long Number() const { return failure_.Number; }
    const String& Source() const { return failure_.Source; }
    const String& Description() const { return failure_.Description; }
    Long NativeError() const { return failure_.NativeError; }
    const String& SQLState() const { return failure_.SQLState; }

    const Interface& Describe() const override;

private:
    Error failure_;
};

/// The `Errors` of a connection as a COM object: always the failures that the connection has now. It holds a reference
/// to the connection and belongs to the connection's thread.
class ErrorsObject final : public Object {
public:
    static constexpr const char* ClassName = "Errors";

    explicit ErrorsObject(Connection& connection) : connection_(&connection) {}

    /// Returns the number of failures: 0 until the engine has failed or after `Clear`, otherwise 1.
    Long Count() const { return static_cast<Long>(connection_->Errors().size()); }

    /// Returns a new object for the failure at a position, counted from 0. Raises 3265 for a position that does not
    /// exist.
    Ref<ErrorObject> Item(Long index) const;

    /// Empties the connection's list. Objects that `Item` has returned are unchanged.
    void Clear() { connection_->ClearErrors(); }

    /// Returns an enumerator over the failures that the connection has now; it does not see later failures.
    Ref<Platform::Enumerator> NewEnum() const;

    const Interface& Describe() const override;

private:
    const Ref<Connection> connection_;
};

}  // namespace ADODB

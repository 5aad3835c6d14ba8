#pragma once

#include "platform/adodb/Connection.h"
#include "platform/runtime/Collection.h"

namespace ADODB {

/// A failure of an engine as a COM object: a copy of what was reported. Nothing can be changed in it. It belongs to the
/// thread that created it. C++ programs read `Connection::Errors` instead, without an object.
class ErrorObject final : public Object {
public:
    static constexpr const char* ClassName = "Error";

    /// Copies the failure, also the fields that have no member here. `ErrorsObject::Item` calls it.
    explicit ErrorObject(const Error& failure) { failure_ = failure; }

    // The members of `Platform::Error` of the same names. They describe the copy, also after the connection has cleared
    // its list or was deleted. None raises. A reference is valid as long as the object.
    Long Number() const { return failure_.Number; }                     ///< to which the provider mapped the failure
    const String& Source() const { return failure_.Source; }            ///< what failed
    const String& Description() const { return failure_.Description; }  ///< the engine's own text
    Long NativeError() const { return failure_.NativeError; }           ///< the engine's own code
    const String& SQLState() const { return failure_.SQLState; }        ///< 5 characters, or empty

    /// Returns the interface table. `Description` is the default member.
    const Interface& Describe() const override;

private:
    Error failure_;
};

/// The `Errors` of a connection as a COM object: always the failures that the connection has now. It holds a reference
/// to the connection and belongs to the connection's thread. All members may be called on a closed connection.
///
/// A failure of the engine replaces the list by one entry. A later success does not clear it, so a client that looks
/// for the failure of one operation calls `Clear` before that operation.
class ErrorsObject final : public Object {
public:
    static constexpr const char* ClassName = "Errors";

    /// `connection` must have been created by `New`; it may be closed.
    explicit ErrorsObject(Connection& connection) : connection_(&connection) {}

    /// Returns the number of failures: 0 until the engine has failed or after `Clear`, otherwise 1.
    Long Count() const { return static_cast<Long>(connection_->Errors().size()); }

    /// Returns a new object for the failure at a position, counted from 0. Raises 3265 with the source "ADODB.Errors"
    /// for a position that does not exist.
    Ref<ErrorObject> Item(Long index) const;

    /// Empties the connection's list. Objects that `Item` has returned, and enumerators, are unchanged.
    void Clear() { connection_->ClearErrors(); }

    /// Returns an enumerator over the failures that the connection has now; it does not see later failures.
    Ref<Platform::Enumerator> NewEnum() const;

    /// Returns the interface table. `Item` is the default member.
    const Interface& Describe() const override;

private:
    const Ref<Connection> connection_;
};

}  // namespace ADODB

#pragma once

#include "platform/adodb/Connection.h"
#include "platform/runtime/Collection.h"

namespace ADODB {

/// One failure of an engine as component clients hold it: what was reported, kept unchanged.
class ErrorObject final : public Object {
public:
    static constexpr const char* ClassName = "Error";

    explicit ErrorObject(const Error& failure) { failure_ = failure; }

    Long Number() const { return failure_.Number; }
    const String& Source() const { return failure_.Source; }
    const String& Description() const { return failure_.Description; }
    Long NativeError() const { return failure_.NativeError; }
    const String& SQLState() const { return failure_.SQLState; }

    const Interface& Describe() const override;

private:
    Error failure_;
};

/// A connection's `Errors` as component clients hold them: always those that the connection has now. Keeps
/// its connection.
class ErrorsObject final : public Object {
public:
    static constexpr const char* ClassName = "Errors";

    explicit ErrorsObject(Connection& connection) : connection_(&connection) {}

    Long Count() const { return static_cast<Long>(connection_->Errors().size()); }

    /// The failure at a position from 0. Raises 3265.
    Ref<ErrorObject> Item(Long index) const;

    void Clear() { connection_->ClearErrors(); }

    /// A walk over the failures that are there now.
    Ref<Platform::Enumerator> NewEnum() const;

    const Interface& Describe() const override;

private:
    const Ref<Connection> connection_;
};

}  // namespace ADODB

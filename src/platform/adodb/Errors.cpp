#include "platform/adodb/Errors.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace ADODB {

using namespace Platform;

Ref<ErrorObject> ErrorsObject::Item(Long index) const {
    if (index < 0 || index >= Count()) RaiseAdo(adErrItemNotFound, "ADODB.Errors");
    return New<ErrorObject>(connection_->Errors()[static_cast<std::size_t>(index)]);
}

Ref<Enumerator> ErrorsObject::NewEnum() const {
    const Ref<Collection> failures = New<Collection>();
    for (Long i = 0; i < Count(); ++i) failures->Add(Item(i));
    return failures->NewEnum();
}

const Interface& ErrorObject::Describe() const {
    static const Interface& self = InterfaceOf<ErrorObject>(
        "A failure that a database engine reported.",
        {
            ReadOnly<&ErrorObject::Number>(
                "Number", "The number of the error, such as 0x80040E14 for a statement that can't be parsed."),
            ReadOnly<&ErrorObject::Source>("Source", "The name of the component that failed."),
            ReadOnly<&ErrorObject::Description>("Description", "The message of the failure.", {}, DefaultMember),
            ReadOnly<&ErrorObject::NativeError>("NativeError",
                                                "The number of the error in the database engine's own numbering."),
            ReadOnly<&ErrorObject::SQLState>(
                "SQLState", "The SQLSTATE of the failure, 5 characters; empty if the engine reports none."),
        });
    return self;
}

const Interface& ErrorsObject::Describe() const {
    static const Interface& self = InterfaceOf<ErrorsObject>(
        "The failures that the database engine reported last, counted from 0.",
        {
            ReadOnly<&ErrorsObject::Count>("Count", "The number of failures; 0 if the engine has not failed."),
            ReadOnly<&ErrorsObject::Item>("Item", "Returns a failure; raises 3265 for a position that doesn't exist.",
                                          {{"Index", "The position of the failure, from 0."}}, DefaultMember),
            Operation<&ErrorsObject::Clear>("Clear", "Removes all failures from the connection's list."),
            Operation<&ErrorsObject::NewEnum>(
                "_NewEnum", "Returns an enumerator over the failures, for a For Each loop.", {}, EnumeratorMember),
        });
    return self;
}

}  // namespace ADODB

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
    static const Interface& self = InterfaceOf<ErrorObject>({
        ReadOnly<&ErrorObject::Number>("Number"),
        ReadOnly<&ErrorObject::Source>("Source"),
        ReadOnly<&ErrorObject::Description>("Description", {}, DefaultMember),
        ReadOnly<&ErrorObject::NativeError>("NativeError"),
        ReadOnly<&ErrorObject::SQLState>("SQLState"),
    });
    return self;
}

const Interface& ErrorsObject::Describe() const {
    static const Interface& self = InterfaceOf<ErrorsObject>({
        ReadOnly<&ErrorsObject::Count>("Count"),
        ReadOnly<&ErrorsObject::Item>("Item", {"Index"}, DefaultMember),
        Operation<&ErrorsObject::Clear>("Clear"),
        Operation<&ErrorsObject::NewEnum>("_NewEnum", {}, EnumeratorMember),
    });
    return self;
}

}  // namespace ADODB

#include "platform/adodb/Fields.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace ADODB {

using namespace Platform;

Field FieldAt(Recordset& recordset, const Variant& index) {
    if (index.Is<String>()) return recordset.Fields(index.As<String>());
    return recordset.Fields(CLng(index));
}

Ref<FieldObject> FieldsObject::Item(const Variant& index) const {
    return New<FieldObject>(recordset_, FieldAt(*recordset_, index));
}

Ref<Enumerator> FieldsObject::NewEnum() const {
    const Ref<Collection> fields = New<Collection>();
    for (Long i = 0; i < Count(); ++i) fields->Add(Item(i));
    return fields->NewEnum();
}

const Interface& FieldObject::Describe() const {
    static const Interface& self = InterfaceOf<FieldObject>({
        ReadOnly<&FieldObject::Name>("Name"),
        ReadOnly<&FieldObject::Type>("Type"),
        ReadOnly<&FieldObject::DefinedSize>("DefinedSize"),
        ValueProperty<&FieldObject::Value, &FieldObject::SetValue>("Value", DefaultMember),
        ReadOnly<&FieldObject::OriginalValue>("OriginalValue"),
    });
    return self;
}

const Interface& FieldsObject::Describe() const {
    static const Interface& self = InterfaceOf<FieldsObject>({
        ReadOnly<&FieldsObject::Count>("Count"),
        ReadOnly<&FieldsObject::Item>("Item", {"Index"}, DefaultMember),
        Operation<&FieldsObject::NewEnum>("_NewEnum", {}, EnumeratorMember),
    });
    return self;
}

}  // namespace ADODB

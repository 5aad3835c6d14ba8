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
    static const Interface& self = InterfaceOf<FieldObject>(
        "A column of a recordset, at the current row.",
        {
            ReadOnly<&FieldObject::Name>("Name", "The name of the column, as the database returns it."),
            ReadOnly<&FieldObject::Type>("Type", "The data type of the column, the same for all rows."),
            ReadOnly<&FieldObject::DefinedSize>("DefinedSize",
                                                "The number of characters that a text may have; 0 without a limit."),
            ValueProperty<&FieldObject::Value, &FieldObject::SetValue>(
                "Value", "The value in the current row; a put begins an edit, which Update of the recordset writes.",
                DefaultMember),
            ReadOnly<&FieldObject::OriginalValue>("OriginalValue",
                                                  "The value that the current row had before it was edited."),
        });
    return self;
}

const Interface& FieldsObject::Describe() const {
    static const Interface& self = InterfaceOf<FieldsObject>(
        "The columns of a recordset, counted from 0.",
        {
            ReadOnly<&FieldsObject::Count>("Count",
                                           "The number of columns; raises 3704 while the recordset is closed."),
            ReadOnly<&FieldsObject::Item>("Item", "Returns a column; raises 3265 if there is none.",
                                          {{"Index", "The name of the column in any case, or its position from 0."}},
                                          DefaultMember),
            Operation<&FieldsObject::NewEnum>(
                "_NewEnum", "Returns an enumerator over the columns, for a For Each loop.", {}, EnumeratorMember),
        });
    return self;
}

}  // namespace ADODB

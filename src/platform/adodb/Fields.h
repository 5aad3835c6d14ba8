#pragma once

#include "platform/adodb/Recordset.h"
#include "platform/runtime/Collection.h"

namespace ADODB {

/// Returns the column that a client names: a text is the name of a column, also if it consists of digits; any other
/// value is converted to an ordinal, counted from 0. Raises 3704 on a closed recordset, 3265 for a column that does not
/// exist, 6, 13, 91, 94 or 438 for a value that can't be an index.
Field FieldAt(Recordset& recordset, const Variant& index);

/// A column as a COM object: a `Field` with a reference to its recordset. It belongs to the recordset's thread, and
/// raises as `Field`.
class FieldObject final : public Object {
public:
    static constexpr const char* ClassName = "Field";

    FieldObject(Ref<Recordset> recordset, const Field& field) : recordset_(std::move(recordset)), field_(field) {}

    // The members of `Field` of the same names, with the same results and failures. They refer to the row that is
    // current when they are called, not when the object was created.
    const String& Name() const { return field_.Name(); }
    DataTypeEnum Type() const { return field_.Type(); }
    Long DefinedSize() const { return field_.DefinedSize(); }
    Variant Value() const { return field_.Value(); }
    void SetValue(const Variant& value) { field_.SetValue(value); }
    Variant OriginalValue() const { return field_.OriginalValue(); }

    const Interface& Describe() const override;

private:
    const Ref<Recordset> recordset_;
    Field field_;
};

/// The columns of a recordset as a COM object: always those that the recordset has now. It holds a reference to the
/// recordset and belongs to the recordset's thread. Every member raises 3704 while the recordset is closed.
class FieldsObject final : public Object {
public:
    static constexpr const char* ClassName = "Fields";

    explicit FieldsObject(Recordset& recordset) : recordset_(&recordset) {}

    /// Returns the number of columns.
    Long Count() const { return recordset_->FieldCount(); }

    /// Returns a new object for the column that `FieldAt` finds. Raises as `FieldAt`.
    Ref<FieldObject> Item(const Variant& index) const;

    /// Returns an enumerator over the columns that the recordset has now, in the order of the statement. The enumerator
    /// stays valid after the recordset is closed; its members then raise 3704.
    Ref<Platform::Enumerator> NewEnum() const;

    const Interface& Describe() const override;

private:
    const Ref<Recordset> recordset_;
};

}  // namespace ADODB

#pragma once

#include "platform/adodb/Recordset.h"
#include "platform/runtime/Collection.h"

namespace ADODB {

/// The column that a client names: a text is a column's name, digits or not, anything else converts to an
/// ordinal from 0. Raises 3704 on a closed recordset, 3265 where there is no such column, 6, 13, 91, 94 and
/// 438 for what is no index.
Field FieldAt(Recordset& recordset, const Variant& index);

/// A column as component clients hold it: a `Field` that keeps its recordset. Raises as `Field`.
class FieldObject final : public Object {
public:
    static constexpr const char* ClassName = "Field";

    FieldObject(Ref<Recordset> recordset, const Field& field)
        : recordset_(std::move(recordset)), field_(field) {}

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

/// A recordset's columns as component clients hold them: always those that the recordset has now. Keeps its
/// recordset; every member raises 3704 while that is closed.
class FieldsObject final : public Object {
public:
    static constexpr const char* ClassName = "Fields";

    explicit FieldsObject(Recordset& recordset) : recordset_(&recordset) {}

    Long Count() const { return recordset_->FieldCount(); }

    /// The column that `FieldAt` finds; raises as that.
    Ref<FieldObject> Item(const Variant& index) const;

    /// A walk over the columns that are there now.
    Ref<Platform::Enumerator> NewEnum() const;

    const Interface& Describe() const override;

private:
    const Ref<Recordset> recordset_;
};

}  // namespace ADODB

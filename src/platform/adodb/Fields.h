#pragma once

#include "platform/adodb/Recordset.h"
#include "platform/runtime/Collection.h"

/// The columns of a recordset as COM clients see them. C++ programs call `Recordset::Fields`.
namespace ADODB {

/// Returns the column that a client names: a text is the name of a column, without regard to case, also if it consists
/// of digits; any other value is converted to an ordinal, counted from 0, by `CLng`, so `Empty` is the first column.
/// The field is valid as long as the recordset.
///
/// Raises 3704 on a closed recordset, 3265 for a column that does not exist, 6, 13, 91, 94 or 438 for a value that
/// can't be an index. Called on the recordset's thread.
Field FieldAt(Recordset& recordset, const Variant& index);

/// A column as a COM object: a `Field` with a reference to its recordset, so that the recordset lives as long as the
/// object. It belongs to the recordset's thread, and raises as `Field`.
///
/// `FieldsObject::Item` creates a new object for each call; two objects of the same column are different objects with
/// the same values. C++ programs use `Field` itself, which needs no allocation.
class FieldObject final : public Object {
public:
    static constexpr const char* ClassName = "Field";

    /// `recordset` must be the recordset of `field`, and not null. `FieldsObject::Item` calls it.
    FieldObject(Ref<Recordset> recordset, const Field& field) : recordset_(std::move(recordset)), field_(field) {}

    // The members of `Field` of the same names, with the same results and failures. They refer to the row that is
    // current when they are called, not when the object was created.
    const String& Name() const { return field_.Name(); }
    DataTypeEnum Type() const { return field_.Type(); }
    Long DefinedSize() const { return field_.DefinedSize(); }
    Variant Value() const { return field_.Value(); }
    void SetValue(const Variant& value) { field_.SetValue(value); }   ///< begins an edit; `Update` posts it
    Variant OriginalValue() const { return field_.OriginalValue(); }  ///< before the edit

    /// Returns the interface table. `Value` is the default member.
    const Interface& Describe() const override;

private:
    const Ref<Recordset> recordset_;
    Field field_;
};

/// The columns of a recordset as a COM object: always those that the recordset has now. After the recordset was opened
/// again, the object contains the columns of the new result. It holds a reference to the recordset and belongs to the
/// recordset's thread. Every member raises 3704 while the recordset is closed.
class FieldsObject final : public Object {
public:
    static constexpr const char* ClassName = "Fields";

    /// `recordset` must have been created by `New`; it may be closed.
    explicit FieldsObject(Recordset& recordset) : recordset_(&recordset) {}

    /// Returns the number of columns.
    Long Count() const { return recordset_->FieldCount(); }

    /// Returns a new object for the column that `FieldAt` finds. Raises as `FieldAt`.
    Ref<FieldObject> Item(const Variant& index) const;

    /// Returns an enumerator over the columns that the recordset has now, in the order of the statement. It visits one
    /// `FieldObject` for each column. The enumerator stays valid after the recordset is closed; the members of these
    /// objects then raise 3704.
    Ref<Platform::Enumerator> NewEnum() const;

    /// Returns the interface table. `Item` is the default member.
    const Interface& Describe() const override;

private:
    const Ref<Recordset> recordset_;
};

}  // namespace ADODB

#pragma once

#include "frame/Failures.h"
#include "frame/Statement.h"

/// How all classes read: the modes in which they open a statement, and the forms in which they take a
/// column.
namespace OXClass {

/// Opens the plain read, forward-only and read-only, with the rows kept where the connection keeps them.
Ref<Recordset> OpenPlain(const Ref<Connection>& con, const String& statement,
                         Long options = ADODB::adCmdText);

/// The same with a client cursor, so that the rows are counted and the connection isn't needed to read
/// them.
Ref<Recordset> OpenClient(const Ref<Connection>& con, const String& statement,
                          Long options = ADODB::adCmdText);

/// Opens one row to change it or to add one: client cursor, keyset, optimistic locks.
Ref<Recordset> OpenUpdatable(const Ref<Connection>& con, const String& statement);

/// The same with the rows kept where the connection keeps them.
Ref<Recordset> OpenKeyset(const Ref<Connection>& con, const String& statement);

/// Runs `take`; what it raises names the column, so that a person learns where a reading ended.
template <class Take>
auto WithColumnName(std::string_view column, Take take) -> decltype(take()) {
    try {
        return take();
    } catch (Error& failure) {
        if (failure.Column.empty()) failure.Column = column;
        throw;
    }
}

/// `take(field)` of a column of the current row. Raises 3265 for a missing column, and what `take` raises.
template <class Take>
auto OfColumn(const Ref<Recordset>& rs, std::string_view column, Take take) {
    return WithColumnName(column, [&] { return take(rs->Fields(column)); });
}

/// A column as it stands. Raises 94 for a null (unless `T` is `Variant`), 13 and 6 for a value that the
/// member can't take, 3265 for a missing column; so do the two below, nulls excepted.
template <class T>
T Required(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) { return field.As<T>(); });
}

/// A column as text, a null as the empty text.
inline String TextOrEmpty(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column,
                    [](const ADODB::Field& field) { return field.IsNull() ? String() : field.As<String>(); });
}

/// A column through `NzValue`: a null or a blank as 0.
template <class T>
T Nz(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        return field.IsNull() || field.IsText() ? To<T>(NzValue(field.Value())) : field.As<T>();
    });
}

/// A column as a whole number, `otherwise` for a null.
inline Long ValueOr(const Ref<Recordset>& rs, std::string_view column, Long otherwise) {
    return OfColumn(rs, column, [otherwise](const ADODB::Field& field) {
        return field.IsNull() ? otherwise : field.As<Long>();
    });
}

/// A column as a date of whole seconds; what is no date raises 13, a null too.
inline Date WholeSeconds(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        return CDate(Format(field.Value(), "yyyy-mm-dd hh:nn:ss"));
    });
}

/// The same through `NzValue`: a null or a blank as the zero date.
inline Date NzWholeSeconds(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        return CDate(Format(NzValue(field.Value()), "yyyy-mm-dd hh:nn:ss"));
    });
}

/// The number at the head of a column's text with a "0" in front: 0 for a null, and for a negative
/// value, whose sign ends the number.
inline double HeadNumber(const Ref<Recordset>& rs, std::string_view column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) -> double {
        const Variant value = field.Value();
        if (value.Is<Long>() && value.As<Long>() >= 0) return value.As<Long>();
        return value.Is<Null>() ? 0 : Val("0" + CStr(value));
    });
}

}  // namespace OXClass

#pragma once

#include "frame/Failures.h"
#include "frame/Statement.h"

/// How all classes read: the modes in which they open a statement, and the forms in which they read a column.
///
/// A function here may be called from the thread that its connection or recordset belongs to.
namespace OXClass {

using ADODB::ColumnName;

// ---- opening a statement -------------------------------------------------------------------------------
// All five raise 3709 for a null or closed connection, and what the database raises.

/// Opens a statement for a plain read: forward-only, read-only, the rows where the connection keeps them.
Ref<Recordset> OpenPlain(const Ref<Connection>& con, const String& statement, Long options = ADODB::adCmdText);

/// Opens a statement for a read with a client cursor: the rows are counted, and can be read without the
/// connection.
Ref<Recordset> OpenClient(const Ref<Connection>& con, const String& statement, Long options = ADODB::adCmdText);

/// Opens a statement whose rows are read once, in their order, with a client cursor: as `OpenClient`, but each row is
/// read from the engine when it is reached (`Recordset::OpenUnbuffered`). `MoveNext` raises what the database raises at
/// a later row.
Ref<Recordset> OpenUnbuffered(const Ref<Connection>& con, const String& statement);

/// Opens a statement to change its rows or to add one: client cursor, keyset, optimistic locks.
Ref<Recordset> OpenUpdatable(const Ref<Connection>& con, const String& statement);

/// Returns the same as `OpenUpdatable`, with the rows where the connection keeps them.
Ref<Recordset> OpenKeyset(const Ref<Connection>& con, const String& statement);

// ---- reading a column of the current row ---------------------------------------------------------------
// All of these raise 3265 if the column is missing, and 13 or 6 for a value that doesn't convert. A failure
// carries the column's name, so that a message can say where a reading ended.

/// Runs `take` and returns its result. A failure that names no column yet gets the name `column`.
template <class Take>
auto WithColumnName(std::string_view column, Take take) -> decltype(take()) {
    try {
        return take();
    } catch (Error& failure) {
        if (failure.Column.empty()) failure.Column = column;
        throw;
    }
}

/// Returns `take(field)` for the column. Raises 3265 if the column is missing, and what `take` raises.
template <class Take>
auto OfColumn(const Ref<Recordset>& rs, const ColumnName& column, Take take) {
    return WithColumnName(column.Text(), [&] { return take(rs->FieldOf(column)); });
}

/// Returns the column's value as a `T`. Raises 94 for a null, unless `T` is `Variant`.
template <class T>
T Required(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) { return field.As<T>(); });
}

/// Returns the column as text; the empty text for a null.
inline String TextOrEmpty(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) { return field.Or<String>({}); });
}

/// Returns the same without blanks at its ends.
inline String TrimmedText(const Ref<Recordset>& rs, const ColumnName& column) {
    String text = TextOrEmpty(rs, column);
    const bool trimmed = text.empty() || (text.front() != ' ' && text.back() != ' ');
    return trimmed ? text : Trim(text);
}

/// Returns the column's value as a `T` after `NzValue`: 0 for a null and for a text of blanks.
template <class T>
T Nz(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        if constexpr (std::is_integral_v<T>)
            if (const auto whole = field.StoredWhole(); whole && std::in_range<T>(*whole))
                return static_cast<T>(*whole);
        return field.IsNull() || field.IsText() ? To<T>(NzValue(field.Value())) : field.As<T>();
    });
}

/// Returns the column as a whole number, rounded half to even; `otherwise` for a null.
inline Long ValueOr(const Ref<Recordset>& rs, const ColumnName& column, Long otherwise) {
    return OfColumn(rs, column, [otherwise](const ADODB::Field& field) { return field.Or(otherwise); });
}

/// Returns the column as a date of whole seconds. Raises 13 for a null and for a text that isn't a date.
inline Date WholeSeconds(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column,
                    [](const ADODB::Field& field) { return CDate(Format(field.Value(), "yyyy-mm-dd hh:nn:ss")); });
}

/// Returns the same after `NzValue`: the zero date for a null and for a text of blanks.
inline Date NzWholeSeconds(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) {
        return CDate(Format(NzValue(field.Value()), "yyyy-mm-dd hh:nn:ss"));
    });
}

/// Returns the number at the start of the column's text, after a "0" is put in front of it: 0 for a null, and
/// 0 for a negative value, because its sign ends the number.
inline double HeadNumber(const Ref<Recordset>& rs, const ColumnName& column) {
    return OfColumn(rs, column, [](const ADODB::Field& field) -> double {
        const Variant value = field.Value();
        if (value.Is<Long>() && value.As<Long>() >= 0) return value.As<Long>();
        return value.Is<Null>() ? 0 : Val("0" + CStr(value));
    });
}

}  // namespace OXClass

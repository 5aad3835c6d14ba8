#pragma once

#include "frame/Reading.h"

namespace OXClass {

/// Returns one side of a canvas in pixels: the column `fullView`, or the column `preview` if that is null,
/// empty or 0. Raises 13 for a negative number or a text that isn't a number, and 3265 for a missing column.
inline double CanvasSide(const Ref<Recordset>& rs, const ColumnName& fullView, const ColumnName& preview) {
    const auto read = [&](const ColumnName& column) {
        return WithColumnName(column.Text(), [&] { return CDbl("0" + TextOrEmpty(rs, column)); });
    };
    const double side = read(fullView);
    return side != 0 ? side : read(preview);
}

}  // namespace OXClass

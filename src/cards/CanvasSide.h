#pragma once

#include "frame/Reading.h"

namespace OXClass {

/// A side of a canvas: the full view's, or the preview's where that is null, empty or 0. Raises 13 for a
/// negative one.
inline double CanvasSide(const Ref<Recordset>& rs, std::string_view fullView, std::string_view preview) {
    const auto read = [&](std::string_view column) {
        return WithColumnName(column, [&] { return CDbl("0" + TextOrEmpty(rs, column)); });
    };
    const double side = read(fullView);
    return side != 0 ? side : read(preview);
}

}  // namespace OXClass

#pragma once

#include "frame/Reading.h"

namespace OXClass {

/// A side of a canvas: the full view's, or the preview's where that is null, empty or 0. Raises 13 for a
/// negative one.
inline double CanvasSide(const Ref<Recordset>& rs, std::string_view fullView, std::string_view preview) {
    const double side = CDbl("0" + Joined(rs, fullView));
    return side != 0 ? side : CDbl("0" + Joined(rs, preview));
}

}  // namespace OXClass

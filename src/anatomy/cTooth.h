#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One tooth, by its two-digit FDI number, with the mark that it is selected. An object belongs to one
/// thread.
class cTooth final : public Object {
public:
    static constexpr const char* ClassName = "cTooth";

    Integer TNumber = 0;
    bool Selected = false;

    const Interface& Describe() const override;
};

}  // namespace OXClass

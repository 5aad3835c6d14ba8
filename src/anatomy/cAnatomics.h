#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// A class without members, which programs that create it still find.
class cAnatomics final : public Object {
public:
    static constexpr const char* ClassName = "cAnatomics";

    const Interface& Describe() const override;
};

}  // namespace OXClass

#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// A class without members. It remains so that programs that create it by name or by identifier still can. An
/// object belongs to the thread that created it.
class cAnatomics final : public Object {
public:
    static constexpr const char* ClassName = "cAnatomics";

    /// Describes an interface with no member of its own: any call by name raises an unknown name.
    const Interface& Describe() const override;
};

}  // namespace OXClass

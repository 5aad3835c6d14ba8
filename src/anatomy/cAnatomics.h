#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// A class without members.
///
/// The class remains so that programs that create it by name or by identifier continue to run. An object
/// belongs to the thread that created it.
class cAnatomics final : public Object {
public:
    static constexpr const char* ClassName = "cAnatomics";

    /// Describes an interface without members of its own. A call by name raises 438, whatever the name.
    const Interface& Describe() const override;
};

}  // namespace OXClass

#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// A class without members.
///
/// The class remains so that programs that create it by name or by identifier continue to run. An object has no state
/// and no relation to the anatomic groups, which are objects of `cAnatomicDescription`. It belongs to the thread that
/// created it.
class cAnatomics final : public Object {
public:
    static constexpr const char* ClassName = "cAnatomics";

    /// Returns an interface table without members. A call by name raises 438, whatever the name; a COM client receives
    /// a dual interface that has only the members of `IUnknown` and `IDispatch`.
    const Interface& Describe() const override;
};

}  // namespace OXClass

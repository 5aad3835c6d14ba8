#include "anatomy/cTooth.h"

namespace OXClass {

const Interface& cTooth::Describe() const {
    static const Interface& self = InterfaceOf<cTooth>({
        Property<&cTooth::TNumber>("TNumber"),
        Property<&cTooth::Selected>("Selected"),
    });
    return self;
}

}  // namespace OXClass

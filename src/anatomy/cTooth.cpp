#include "anatomy/cTooth.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cTooth::Describe() const {
    static const Interface& self = InterfaceOf<cTooth>({
        Property<&cTooth::TNumber>("TNumber"),
        Property<&cTooth::Selected>("Selected"),
    });
    return self;
}

}  // namespace OXClass

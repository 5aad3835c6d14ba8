#include "anatomy/cAnatomics.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cAnatomics::Describe() const {
    static const Interface& self = InterfaceOf<cAnatomics>({});
    return self;
}

}  // namespace OXClass

#include "anatomy/cAnatomics.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cAnatomics::Describe() const {
    static const Interface& self =
        InterfaceOf<cAnatomics>("A class without members, kept for programs that create it.", {});
    return self;
}

}  // namespace OXClass

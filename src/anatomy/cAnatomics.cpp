#include "anatomy/cAnatomics.h"

namespace OXClass {

const Interface& cAnatomics::Describe() const {
    static const Interface& self = InterfaceOf<cAnatomics>({});
    return self;
}

}  // namespace OXClass

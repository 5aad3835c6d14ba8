#include "people/cStringItem.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cStringItem::Describe() const {
    static const Interface& self = InterfaceOf<cStringItem>({
        Property<&cStringItem::ID>("ID"),
        Property<&cStringItem::str>("str"),
        Property<&cStringItem::bSaved>("bSaved"),
        Property<&cStringItem::Signature>("Signature"),
        Property<&cStringItem::DateStamp>("DateStamp"),
    });
    return self;
}

}  // namespace OXClass

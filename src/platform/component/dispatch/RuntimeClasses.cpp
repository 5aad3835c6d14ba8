// The interface tables of the runtime's own classes, and what the runtime asks this layer about an object.

#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/InterfaceTable.h"
#include "platform/runtime/Collection.h"

namespace Platform {
namespace {

const Interface& TableOfCollection() {
    static const Interface& self = InterfaceOf<Collection>({
        Operation<&Collection::Item>("Item", {"Index"}, DefaultMember),
        Operation<&Collection::Add>("Add", {"Item", Optional("Key"), Optional("Before"), Optional("After")}),
        ReadOnly<&Collection::Count>("Count"),
        Operation<&Collection::Remove>("Remove", {"Index"}),
        Operation<&Collection::NewEnum>("_NewEnum", {}, EnumeratorMember),
    });
    return self;
}

const Interface& TableOfEnumerator() {
    static const Interface& self =
        *new Interface(Enumerator::ClassName, IID_IEnumVARIANT, typeid(IEnumVARIANT), EnumeratorSlots());
    return self;
}

/// For an object without members of its own, such as one that another component passed in.
const Interface& TableOfObject() {
    static const Interface& self = *new Interface(Object::ClassName, std::vector<Member>(), DispatchSlots());
    return self;
}

const Interface& TableOf(const Object& object) {
    if (dynamic_cast<const Collection*>(&object)) return TableOfCollection();
    if (dynamic_cast<const Enumerator*>(&object)) return TableOfEnumerator();
    return TableOfObject();
}

ObjectCounter* CounterOf(const Object& object) noexcept { return object.Describe().Owner(); }

[[maybe_unused]] const bool installed = [] {
    InstallObjectHooks({TableOf, CounterOf});
    return true;
}();

}  // namespace
}  // namespace Platform

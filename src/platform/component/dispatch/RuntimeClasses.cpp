// The interface tables of the runtime's own classes, and the hooks by which the runtime calls this layer.

#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/InterfaceTable.h"
#include "platform/runtime/Collection.h"

namespace Platform {
namespace {

const Interface& TableOfCollection() {
    static const Interface& self = InterfaceOf<Collection>(
        "A list of values with optional keys, counted from 1.",
        {
            Operation<&Collection::Item>(
                "Item", "Returns a member; raises 9 for a position and 5 for a key that doesn't exist.",
                {{"Index", "The position in the collection, from 1, or the key, in any case."}}, DefaultMember),
            Operation<&Collection::Add>(
                "Add", "Adds a member at the end, or before or after another one; raises 457 if the key exists.",
                {{"Item", "The new member, a value or an object."},
                 Optional("Key", "The key of the new member, a text; left out for none."),
                 Optional("Before", "The position or key of the member before which to insert."),
                 Optional("After", "The position or key of the member after which to insert.")}),
            ReadOnly<&Collection::Count>("Count", "The number of members."),
            Operation<&Collection::Remove>(
                "Remove", "Removes a member; the positions of those after it decrease by one.",
                {{"Index", "The position in the collection, from 1, or the key, in any case."}}),
            Operation<&Collection::NewEnum>("_NewEnum", "Returns an enumerator over the members, for a For Each loop.",
                                            {}, EnumeratorMember),
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
    static const Interface& self = *new Interface(Object::ClassName, "An object without members of its own.",
                                                  std::vector<Member>(), DispatchSlots());
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

// A program that links the runtime and the component layer, without the database layer: a collection is called by name.

#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Collection.h"

#include <cstdio>

using namespace Platform;

int main() {
    const Ref<Collection> list = New<Collection>();
    std::vector<Variant> arguments{Variant(Long{7})};
    Invoke(*list, "Add", MemberKind::Operation, arguments);
    IUnknown* pointer = Boundary::ToPointer(list);
    const bool holds = Invoke(*list, "Count", MemberKind::Operation, {}) == Variant(Long{1}) &&
                       Boundary::OwnObject(pointer) == list.Get();
    pointer->Release();
    if (!holds) std::fputs("FAILED: a collection is called by name and by its interface pointer\n", stderr);
    return holds ? 0 : 1;
}

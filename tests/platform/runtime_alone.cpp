// A program that links the runtime alone: its objects, collections and enumerators are complete without the layers
// above.

#include "platform/runtime/Collection.h"

#include <cstdio>

using namespace Platform;

namespace {

bool failed = false;

void Expect(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "FAILED: %s\n", what);
    failed = true;
}

struct Noted final : Object {
    explicit Noted(int& alive) : alive_(alive) { ++alive_; }
    ~Noted() override { --alive_; }
    int& alive_;
};

}  // namespace

int main() {
    int alive = 0;
    {
        const Ref<Collection> list = New<Collection>();
        list->Add(Ref<Object>(New<Noted>(alive)), String("first"));
        list->Add(Long{7}, {}, String("FIRST"));
        Expect(list->Count() == 2 && list->Item(Long{1}) == Variant(Long{7}), "a collection keeps its order");
        const Ref<Enumerator> enumerator = list->NewEnum();
        Variant item;
        Expect(enumerator->Next(item) && enumerator->Next(item) && !enumerator->Next(item),
               "an enumerator visits each member");
        Expect(alive == 1, "a collection holds its objects");
        try {
            list->Describe();
            Expect(false, "an interface table without the component layer raises");
        } catch (const Error& error) {
            Expect(error.Number == err::NoSuchMember, "the number of a missing interface table");
        }
    }
    Expect(alive == 0, "the last reference deletes the object");
    return failed ? 1 : 0;
}

// A collection of another component, where a `Collection` is required.

#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/ByName.h"
#include "platform/runtime/Collection.h"

#include <array>
#include <map>

namespace Platform {
namespace {

ByName::Argument Given(const Variant& value) {
    return value.Is<Empty>() ? ByName::Argument() : ByName::Argument(value);
}

class ForeignMembers final : public MemberSource {
public:
    explicit ForeignMembers(const Ref<Object>& collection) : object_(collection), collection_(collection) {}

    Long Count() const override { return CLng(collection_.Call("Count")); }

    const Variant& Item(const Variant& indexOrKey) const override {
        std::array arguments{ByName::Argument(indexOrKey)};
        Variant item = collection_.Call("Item", arguments);
        // The last one for each index is kept, because the caller receives a reference.
        Variant& kept = indexOrKey.Is<String>() ? byKey_[indexOrKey.As<String>()] : byPosition_[CLng(indexOrKey)];
        kept = std::move(item);
        return kept;
    }

    void Add(const Variant& item, const Variant& key, const Variant& before, const Variant& after) override {
        std::vector arguments{ByName::Argument(item), Given(key), Given(before), Given(after)};
        while (!arguments.back()) arguments.pop_back();
        collection_.Call("Add", arguments);
        Forget();
    }

    void Remove(const Variant& indexOrKey) override {
        std::array arguments{ByName::Argument(indexOrKey)};
        collection_.Call("Remove", arguments);
        Forget();
    }

    Ref<Object> Adapted() const override { return object_; }

private:
    void Forget() {
        byPosition_.clear();
        byKey_.clear();
    }

    Ref<Object> object_;
    ByName collection_;
    mutable std::map<Long, Variant> byPosition_;
    mutable std::map<String, Variant> byKey_;
};

[[maybe_unused]] const bool collectionRegistered = [] {
    RegisterAdapter(Collection::ClassName, [](const Ref<Object>& foreign) -> Ref<Object> {
        if (!ByName(foreign).Has("Item")) return nullptr;
        return New<Collection>(std::make_unique<ForeignMembers>(foreign));
    });
    return true;
}();

}  // namespace
}  // namespace Platform

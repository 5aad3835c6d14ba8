#include "platform/runtime/Collection.h"

#include <algorithm>
#include <tsl/robin_set.h>

namespace Platform {

struct Collection::KeyIndex {
    static std::string_view KeyOf(std::string_view key) { return key; }
    static std::string_view KeyOf(const Node* node) { return node->key; }

    // Both accept a node and a text, so that a text can be searched.
    struct Hash {
        using is_transparent = void;
        template <class T>
        std::size_t operator()(const T& a) const {
            return std::hash<std::string_view>()(KeyOf(a));
        }
    };
    struct Equal {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            return KeyOf(a) == KeyOf(b);
        }
    };

    // The set stores the hash of a key beside the pointer: a search reads only the node that it finds.
    tsl::robin_set<Node*, Hash, Equal, std::allocator<Node*>, true> nodes;
};

Collection::Collection() = default;
Collection::Collection(std::unique_ptr<MemberSource> source) : source_(std::move(source)) {}
Collection::~Collection() = default;

Ref<Object> Collection::Adapted() const { return source_ ? source_->Adapted() : nullptr; }

bool Collection::HasKey(const String& key) const {
    if (!source_) return FindKey(key) != nullptr;
    try {
        source_->Item(key);
        return true;
    } catch (const Error&) {
        return false;
    }
}

const Collection::Node* Collection::FindKey(const String& key) const {
    if (!keys_) return nullptr;
    const auto found = keys_->nodes.find(std::string_view(LCase(key)));
    return found == keys_->nodes.end() ? nullptr : *found;
}

Long Collection::PositionOf(const Variant& indexOrKey) const {
    if (!indexOrKey.Is<String>()) {
        const Long position = CLng(indexOrKey);
        if (position < 1 || position > Count()) Raise(err::OutOfBounds);
        return position;
    }
    const Node* const found = FindKey(indexOrKey.As<String>());
    if (!found) Raise(err::InvalidCall);
    const auto at = std::find_if(nodes_.begin(), nodes_.end(), [&](const auto& node) { return node.get() == found; });
    return static_cast<Long>(at - nodes_.begin()) + 1;
}

Long Collection::PlaceFor(const Variant& before, const Variant& after) const {
    if (before.Is<Empty>() && after.Is<Empty>()) return Count() + 1;
    if (!before.Is<Empty>() && !after.Is<Empty>()) Raise(err::InvalidCall);
    return before.Is<Empty>() ? PositionOf(after) + 1 : PositionOf(before);
}

void Collection::Shift(Long from, Long by) const {
    for (Enumerator* walk : walks_)
        if (walk->next_ > from) walk->next_ += by;
}

void Collection::Add(const Variant& item, const Variant& key, const Variant& before, const Variant& after) {
    if (!key.Is<Empty>() && !key.Is<String>()) Raise(err::TypeMismatch);
    if (source_) return source_->Add(item, key, before, after);
    const Long place = PlaceFor(before, after);
    const bool keyed = key.Is<String>();
    auto node = std::make_unique<Node>(Node{item, keyed, keyed ? LCase(key.As<String>()) : String()});
    if (nodes_.size() == nodes_.capacity()) nodes_.reserve(2 * nodes_.size() + 4);  // so that nothing raises at the end
    if (keyed && !keys_) keys_ = std::make_unique<KeyIndex>();
    if (keyed && !keys_->nodes.insert(node.get()).second) Raise(err::DuplicateKey);
    nodes_.insert(nodes_.begin() + (place - 1), std::move(node));
    if (place < Count()) Shift(place - 1, 1);
}

const Variant& Collection::At(Long position) const {
    if (source_) return source_->Item(position);
    if (position < 1 || position > Count()) Raise(err::OutOfBounds);
    return nodes_[static_cast<std::size_t>(position - 1)]->item;
}

const Variant& Collection::Item(const Variant& indexOrKey) const {
    if (source_) return source_->Item(indexOrKey);
    if (!indexOrKey.Is<String>()) return At(CLng(indexOrKey));
    const Node* const found = FindKey(indexOrKey.As<String>());
    if (!found) Raise(err::InvalidCall);
    return found->item;
}

void Collection::Remove(const Variant& indexOrKey) {
    if (source_) return source_->Remove(indexOrKey);
    const Long position = PositionOf(indexOrKey);
    const auto at = nodes_.begin() + (position - 1);
    const std::unique_ptr<Node> gone = std::move(*at);  // ends behind us, when the list is in order again
    if (gone->keyed) keys_->nodes.erase(std::string_view(gone->key));
    nodes_.erase(at);
    Shift(position, -1);
}

Ref<Enumerator> Collection::NewEnum() const { return New<Enumerator>(*this); }

Enumerable::~Enumerable() = default;

Enumerator::Enumerator(const Collection& collection) : collection_(&collection) { collection.walks_.push_back(this); }

Enumerator::~Enumerator() { std::erase(collection_->walks_, this); }

bool Enumerator::Next(Variant& item) {
    if (next_ > collection_->Count()) return false;
    item = collection_->At(next_++);
    return true;
}

Ref<Enumerator> Enumerator::Copy() const {
    Ref<Enumerator> copy = New<Enumerator>(*collection_);
    copy->next_ = next_;
    return copy;
}

}  // namespace Platform

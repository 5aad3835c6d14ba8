#pragma once

#include "platform/runtime/Convert.h"

#include <memory>
#include <unordered_map>

namespace Platform {

class Collection;
class Enumerator;

/// Anything whose members can be walked in order: a `Collection`, and every class that wraps one.
class Enumerable : public Object {
public:
    static constexpr const char* ClassName = "Collection";

    ~Enumerable() override;

    /// The collection that holds the members.
    virtual const Collection& Members() const = 0;
};

/// A keyed list of values, counted from 1.
///
/// Members are any values, objects by reference. A key is an optional text, compared without regard to
/// case; it can't be read back or changed. A text argument is always a key and a number always a
/// position (rounded half to even). Lookup by key or position takes constant time, an insert or a
/// removal in the middle moves pointers only. One thread.
class Collection final : public Enumerable {
public:
    Collection();
    ~Collection() override;

    /// Appends `item`, or puts it before or behind the named member. Raises 457 for a key that is
    /// present, 13 for a key that is no text, 5 for both `before` and `after` or an unknown key in
    /// them, 9 for a position that isn't there. On a failure the collection stays as it was.
    void Add(const Variant& item, const Variant& key = {}, const Variant& before = {},
             const Variant& after = {});

    /// The member at a position or under a key. Raises 9 for a position below 1 or above `Count`, 5 for
    /// an unknown key, 13 for an index that is neither.
    const Variant& Item(const Variant& indexOrKey) const;

    /// The member at a position from 1 to `Count`; raises 9 for any other.
    const Variant& At(Long position) const;

    Long Count() const noexcept { return static_cast<Long>(nodes_.size()); }

    /// True if a member has this key.
    bool HasKey(const String& key) const { return keys_.contains(LCase(key)); }

    /// Takes a member out; those behind it close up. Raises as `Item`.
    void Remove(const Variant& indexOrKey);

    /// An enumerator over the members. Removing members during a walk is safe: one that is gone isn't
    /// visited, and none is visited twice.
    Ref<Enumerator> NewEnum() const;

    const Collection& Members() const override { return *this; }

private:
    friend class Enumerator;
    struct Node {
        Variant item;
        bool keyed;
        String key;  // in lower case
    };

    Long PositionOf(const Variant& indexOrKey) const;
    Long PlaceFor(const Variant& before, const Variant& after) const;
    void Shift(Long from, Long by) const;

    std::vector<std::unique_ptr<Node>> nodes_;
    std::unordered_map<std::string_view, Node*> keys_;  // views into the nodes
    mutable std::vector<Enumerator*> walks_;
};

/// A walk over the members of a collection, from the first to the last.
class Enumerator final : public Object {
public:
    static constexpr const char* ClassName = "Enumerator";

    explicit Enumerator(const Collection& collection);
    ~Enumerator() override;

    /// Puts the next member into `item` and gives true, or gives false at the end.
    bool Next(Variant& item);

    /// Starts again at the first member.
    void Reset() { next_ = 1; }

    /// Another walk over the same collection, which stands where this one does.
    Ref<Enumerator> Copy() const;

private:
    friend class Collection;
    Ref<const Collection> collection_;
    Long next_ = 1;
};

namespace detail {

/// Walks a collection as objects of one class, by position, so that it stands removals.
template <class T>
class Each {
public:
    explicit Each(const Collection& collection) : collection_(collection) {}
    class Iterator {
    public:
        Iterator(const Collection& collection, Long position)
            : collection_(collection), position_(position) {}
        T& operator*() const {
            const Variant& item = collection_.At(position_);
            auto* object = item.Is<Ref<Object>>() ? dynamic_cast<T*>(item.As<Ref<Object>>().Get()) : nullptr;
            if (!object) Raise(err::TypeMismatch);
            return *object;
        }
        Iterator& operator++() {
            ++position_;
            return *this;
        }
        bool operator!=(const Iterator&) const { return position_ <= collection_.Count(); }

    private:
        const Collection& collection_;
        Long position_;
    };
    Iterator begin() const { return {collection_, 1}; }
    Iterator end() const { return {collection_, 0}; }

private:
    const Collection& collection_;
};

}  // namespace detail

/// The members of a collection as objects of class `T`, for a range-for. A member of another class
/// raises 13 when the walk reaches it. `members` must outlive the walk.
template <class T>
detail::Each<T> Each(const Enumerable& members) {
    return detail::Each<T>(members.Members());
}

/// The base that all collection classes share: a private collection of objects of class `T`.
///
/// Each class adds its own `Add`. `Item` raises on a missing member; a class whose `Item` gives nothing
/// there uses `Find` for it.
template <class T>
class Keyed : public Enumerable {
public:
    /// The member at a position or under a key; raises 5 or 9 as `Collection::Item`.
    Ref<T> Item(const Variant& vntIndexKey) const {
        return Ref<T>(static_cast<T*>(detail::ObjectOf(members_->Item(vntIndexKey)).Get()));
    }
    Long Count() const { return members_->Count(); }
    void Remove(const Variant& vntIndexKey) { members_->Remove(vntIndexKey); }
    Ref<Enumerator> NewEnum() const { return members_->NewEnum(); }
    const Collection& Members() const override { return *members_; }

    auto begin() const { return detail::Each<T>(*members_).begin(); }
    auto end() const { return detail::Each<T>(*members_).end(); }

protected:
    /// Adds under `key` if that is not empty, without a key otherwise, and gives the member back.
    Ref<T> AddMember(Ref<T> member, const String& key, const Variant& before = {}) {
        members_->Add(member, key.empty() ? Variant() : Variant(key), before);
        return member;
    }

    /// `Item`, but nothing where it would raise.
    Ref<T> Find(const Variant& indexOrKey) const {
        try {
            return Item(indexOrKey);
        } catch (const Error&) {
            return nullptr;
        }
    }

    /// Lets all members go.
    void Clear() { members_ = New<Collection>(); }

private:
    Ref<Collection> members_ = New<Collection>();
};

}  // namespace Platform

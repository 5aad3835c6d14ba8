#pragma once

#include "platform/runtime/Convert.h"

#include <memory>

namespace Platform {

class Collection;
class Enumerator;

/// The base class of everything whose members can be visited in order: `Collection`, and every class that contains one.
/// `Each` visits the members of either kind.
class Enumerable : public Object {
public:
    static constexpr const char* ClassName = "Collection";

    ~Enumerable() override;

    /// Returns the collection that contains the members. The reference is valid as long as this object, unless the
    /// class replaces its collection (`Keyed::Clear`). Raises nothing.
    virtual const Collection& Members() const = 0;
};

/// The members of a collection that is kept elsewhere: an object of another component. The functions have the contracts
/// of the functions of `Collection` with the same names, except that the other component decides what it raises.
class MemberSource {
public:
    MemberSource() = default;
    MemberSource(const MemberSource&) = delete;
    virtual ~MemberSource() = default;

    virtual Long Count() const = 0;
    /// Returns a member; the reference is valid until `Add` or `Remove` is called.
    virtual const Variant& Item(const Variant& indexOrKey) const = 0;
    virtual void Add(const Variant& item, const Variant& key, const Variant& before, const Variant& after) = 0;
    virtual void Remove(const Variant& indexOrKey) = 0;
    /// Returns the object of the other component.
    virtual Ref<Object> Adapted() const = 0;
};

/// A list of values with optional keys; positions start at 1.
///
/// Members are values of any type; objects are held by reference. A key is a text that is compared without regard to
/// case; it can't be read back or changed. A text as index is always a key, also if it consists of digits; any other
/// value is converted to a position by `CLng` (rounded half to even). A member may be contained several times, under
/// different keys or without one.
///
/// `Item` and appending take constant time; inserting in the middle and removing take linear time. A collection may
/// contain itself, directly or by its members, but is then never deleted, because references are counted. A collection
/// belongs to the thread that created it.
class Collection final : public Enumerable {
public:
    /// An empty collection. `New<Collection>()` creates it, because enumerators hold references to it.
    Collection();
    /// A collection whose members are kept by `source`, to which it passes all calls on.
    explicit Collection(std::unique_ptr<MemberSource> source);
    /// Releases the members.
    ~Collection() override;

    /// Appends `item`, or inserts it before or after the member that `before` or `after` names by key or position. An
    /// argument that is `Empty` is left out; the empty text is a key. A copy of `item` is stored, an object as a
    /// reference. Enumerators that are in use visit an appended member, and
    /// an inserted one unless they have visited the member in front of it.
    ///
    /// Raises 457 for a key that exists, 13 for a key that is not a text, 5 for both `before` and `after` or an unknown
    /// key in them, 9 for a position that does not exist, and as `CLng` for one that can't be converted to a number.
    /// The collection is unchanged on failure.
    void Add(const Variant& item, const Variant& key = {}, const Variant& before = {}, const Variant& after = {});

    /// Returns the member at a position or with a key; the reference is valid until the collection changes. Raises 9
    /// for a position below 1 or above `Count`, 5 for an unknown key, and as `CLng` for an index that can't be
    /// converted to a number (6, 13, 91, 94 or 438).
    const Variant& Item(const Variant& indexOrKey) const;

    /// Returns the member at a position from 1 to `Count`, without conversion of an index; the reference is valid as
    /// that of `Item`. Raises 9 for any other position.
    const Variant& At(Long position) const;

    /// Returns the number of members.
    Long Count() const { return source_ ? source_->Count() : static_cast<Long>(nodes_.size()); }

    /// Returns true if a member has this key, without regard to case.
    bool HasKey(const String& key) const;

    /// Removes a member; the positions of those after it decrease by one, and its key may be used again. An object
    /// whose last reference it was is deleted after the collection is changed, so its destructor may use the
    /// collection. Raises as `Item`; the collection is then unchanged.
    void Remove(const Variant& indexOrKey);

    /// Returns an enumerator over the members. Members may be added and removed while it is used: a removed member is
    /// not visited, and no member is visited twice.
    Ref<Enumerator> NewEnum() const;

    /// Returns this collection.
    const Collection& Members() const override { return *this; }

    Ref<Object> Adapted() const override;

private:
    friend class Enumerator;
    /// A member. Its address does not change while the collection changes.
    struct Node {
        Variant item;
        bool keyed;
        String key;  // in lower case
    };
    /// The members with a key, by their keys.
    struct KeyIndex;

    /// Returns the member with a key, or null.
    const Node* FindKey(const String& key) const;
    /// Returns the position of a member, from 1. Raises as `Item`.
    Long PositionOf(const Variant& indexOrKey) const;
    /// Returns the position that a new member will have. Raises 5, 9 or as `CLng`.
    Long PlaceFor(const Variant& before, const Variant& after) const;
    /// Moves the enumerators whose next position is after `from`.
    void Shift(Long from, Long by) const;

    std::unique_ptr<MemberSource> source_;  // null if the members are in `nodes_`
    std::vector<std::unique_ptr<Node>> nodes_;
    std::unique_ptr<KeyIndex> keys_;          // null until a member has a key
    mutable std::vector<Enumerator*> walks_;  // the enumerators of this collection
};

/// An enumerator visits the members of a collection from the first to the last. It holds a reference to the collection,
/// which therefore lives as long, and belongs to the thread of the collection. Several enumerators of one collection
/// are independent of each other. A COM client receives an enumerator as `IEnumVARIANT`.
class Enumerator final : public Object {
public:
    static constexpr const char* ClassName = "Enumerator";

    /// Starts at the first member. `Collection::NewEnum` creates enumerators. The collection must have been created by
    /// `New`.
    explicit Enumerator(const Collection& collection);
    /// The collection no longer updates the position of this enumerator.
    ~Enumerator() override;

    /// Assigns the next member to `item` and returns true. Returns false at the end; `item` is then unchanged. After
    /// members were appended at the end, the next call returns true again.
    bool Next(Variant& item);

    /// Makes the first member the next one: of the members that the collection has at the next call of `Next`.
    void Reset() { next_ = 1; }

    /// Returns another enumerator of the same collection, at the same position. The two move independently.
    Ref<Enumerator> Copy() const;

private:
    friend class Collection;
    Ref<const Collection> collection_;
    Long next_ = 1;  // the position of the next member; the collection changes it when members are added or removed
};

namespace detail {

/// Visits the members of a collection as objects of one class, by position, so that members may be removed meanwhile.
/// It holds no reference to the collection, which must outlive it.
template <class T>
class Each {
public:
    explicit Each(const Collection& collection) : collection_(collection) {}
    class Iterator {
    public:
        Iterator(const Collection& collection, Long position) : collection_(collection), position_(position) {}
        /// Returns the member at the position. Raises 13 if it is not an object of class `T`, or is a null reference; 9
        /// if the position no longer exists.
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
        /// Returns true while there is a member at the position. The argument is not used.
        bool operator!=(const Iterator&) const { return position_ <= collection_.Count(); }

    private:
        const Collection& collection_;
        Long position_;
    };
    // A loop ends when the iterator is past the last member; the position in `end` is not used.
    Iterator begin() const { return {collection_, 1}; }
    Iterator end() const { return {collection_, 0}; }

private:
    const Collection& collection_;
};

}  // namespace detail

/// Returns the members of a collection as objects of class `T`, for a range-based `for`. A member of another class, a
/// null reference, or a value that is not an object raises 13 when it is reached; the members before it were visited.
/// `members` must outlive the loop. Members that are appended during the loop are visited; after the removal of the
/// current or an earlier member, the loop skips one.
template <class T>
detail::Each<T> Each(const Enumerable& members) {
    return detail::Each<T>(members.Members());
}

/// The base class of all collection classes: a private collection of objects of class `T`. Only `AddMember` adds to it,
/// so that every member is a `T`.
///
/// Each class adds its own `Add`. `Item` raises for a missing member; a class whose `Item` returns null instead
/// uses `Find`. An object belongs to the thread that created it.
///
/// Beside the members below, such a class is visited by a range-based `for` and by `Each`, and by COM clients through
/// the member with the dispatch identifier `EnumeratorMember`. A loop that must remove members runs over `NewEnum`,
/// which skips none.
template <class T>
class Keyed : public Enumerable {
public:
    /// Returns the member at a position or with a key, as a reference of the caller's own. Raises as
    /// `Collection::Item`.
    Ref<T> Item(Variant vntIndexKey) const {
        return Ref<T>(static_cast<T*>(detail::ObjectOf(members_->Item(vntIndexKey)).Get()));
    }
    /// Returns the number of members.
    Long Count() const { return members_->Count(); }
    /// Removes a member from this collection; nothing is deleted from the database. Raises as `Item`; nothing changes
    /// then.
    void Remove(Variant vntIndexKey) { members_->Remove(vntIndexKey); }
    /// Returns an enumerator over the members. After `Clear` it continues with the old ones.
    Ref<Enumerator> NewEnum() const { return members_->NewEnum(); }
    /// Returns the private collection. The reference is valid until `Clear`.
    const Collection& Members() const override { return *members_; }

    /// For a range-based `for` over the members as `T&`, by position: after the removal of the current or an earlier
    /// member, the loop skips one. The object must outlive the loop.
    auto begin() const { return detail::Each<T>(*members_).begin(); }
    auto end() const { return detail::Each<T>(*members_).end(); }

protected:
    /// Appends the member, or inserts it before the member `before`, with `key` unless that is empty, and returns it.
    /// Raises as `Collection::Add`; the collection is then unchanged.
    Ref<T> AddMember(Ref<T> member, const String& key, const Variant& before = {}) {
        members_->Add(member, key.empty() ? Variant() : Variant(key), before);
        return member;
    }

    /// Returns the member as `Item` does, or null where that raises, whatever the failure. Raises nothing itself.
    Ref<T> Find(const Variant& indexOrKey) const {
        try {
            return Item(indexOrKey);
        } catch (const Error&) {
            return nullptr;
        }
    }

    /// Replaces the private collection by an empty one. Enumerators that exist keep the old one and its members; a loop
    /// over `begin` and `end` that is running must not continue.
    void Clear() { members_ = New<Collection>(); }

private:
    Ref<Collection> members_ = New<Collection>();
};

}  // namespace Platform

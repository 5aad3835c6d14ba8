#include "platform/component/dispatch/Interface.h"

#include "platform/runtime/Convert.h"

#include <algorithm>
#include <iterator>

namespace Platform {
namespace {

/// Identities for members that have none of their own: a put and a get of one name share theirs.
void NumberMembers(std::vector<Member>& members) {
    constexpr Long first = 0x60030000;
    Long next = first;
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (members[i].DispId != ByPosition) continue;
        const bool second = i > 0 && members[i - 1].Name == members[i].Name;
        members[i].DispId = second ? members[i - 1].DispId : next++;
    }
}

/// Returns true if a call of this kind may mean the member: a late-bound client can't always distinguish a get from a
/// call, nor a put from a put by reference.
bool Answers(const Member& member, MemberKind kind) {
    return member.IsPut() == (kind == MemberKind::Put || kind == MemberKind::PutRef);
}

template <class Members, class Matches>
const Member* FirstOf(const Members& members, Matches matches) {
    const auto found = std::ranges::find_if(members, matches);
    return found == members.end() ? nullptr : &*found;
}

}  // namespace

Interface::Interface(String className, const char* help, std::vector<Member> members,
                     std::span<const void* const> dispatchSlots)
    : className_(std::move(className)), help_(help), members_(std::move(members)) {
    NumberMembers(members_);
    FillTable(typeid(IDispatch), dispatchSlots);
    for (const Member& member : members_) table_.push_back(member.Slot);
}

Interface::Interface(String className, const IID& identity, const std::type_info& type,
                     std::span<const void* const> slots)
    : className_(std::move(className)), isDispatch_(false), identity_(identity) {
    FillTable(type, slots);
}

void Interface::FillTable(const std::type_info& type, std::span<const void* const> slots) {
    table_ = {nullptr, &type};
    table_.insert(table_.end(), slots.begin(), slots.end());
}

const Member* Interface::Find(std::string_view name, MemberKind kind) const {
    return FirstOf(
        members_, [&](const Member& member) { return Answers(member, kind) && EqualsIgnoringCase(member.Name, name); });
}

const Member* Interface::Find(std::string_view name) const {
    return FirstOf(members_, [&](const Member& member) { return EqualsIgnoringCase(member.Name, name); });
}

const Member* Interface::Find(DISPID id, MemberKind kind) const {
    return FirstOf(members_, [&](const Member& member) { return member.DispId == id && Answers(member, kind); });
}

const Member* Interface::FindSlot(const void* slot) const {
    return FirstOf(members_, [&](const Member& member) { return member.Slot == slot; });
}

void Interface::Publish(const IID& identity, ObjectCounter& owner) const {
    identity_ = identity;
    owner_.store(&owner, std::memory_order_release);
}

Variant Invoke(Object& object, std::string_view name, MemberKind kind, std::span<Variant> arguments) {
    const Member* member = object.Describe().Find(name, kind);
    if (!member) Raise(err::NoSuchMember);
    if (arguments.size() > member->Arguments.size()) Raise(err::WrongArguments);
    if (arguments.size() == member->Arguments.size()) return member->Call(object, arguments);
    std::vector<Variant> all(arguments.begin(), arguments.end());
    for (std::size_t i = all.size(); i < member->Arguments.size(); ++i) {
        if (!member->Arguments[i].Optional) Raise(err::ArgumentNotOptional);
        all.push_back(member->Arguments[i].Default);
    }
    struct CopyBack {
        ~CopyBack() { std::copy_n(std::make_move_iterator(from.begin()), to.size(), to.begin()); }
        std::vector<Variant>& from;
        std::span<Variant> to;
    } const copyBack{all, arguments};
    return member->Call(object, all);
}

}  // namespace Platform

#include "platform/component/Interface.h"

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

bool SamePut(MemberKind a, MemberKind b) {
    const auto put = [](MemberKind kind) { return kind == MemberKind::Put || kind == MemberKind::PutRef; };
    return a == b || (put(a) && put(b));
}

/// A late-bound client can't always tell a get from a call; a property with arguments answers to both.
bool Answers(const Member& member, MemberKind kind) {
    if (SamePut(member.Kind, kind)) return true;
    const auto reads = [](MemberKind k) { return k == MemberKind::Get || k == MemberKind::Operation; };
    return reads(member.Kind) && reads(kind);
}

}  // namespace

const Interface& Object::Describe() const {
    static const Interface none("Object", {});
    return none;
}

const Interface& Collection::Describe() const {
    static const Interface self = InterfaceOf<Collection>({
        Operation<&Collection::Item>("Item", {"Index"}, DefaultMember),
        Operation<&Collection::Add>("Add", {"Item", Optional("Key"), Optional("Before"), Optional("After")}),
        Operation<&Collection::Count>("Count"),
        Operation<&Collection::Remove>("Remove", {"Index"}),
        Operation<&Collection::NewEnum>("_NewEnum", {}, EnumeratorMember),
    });
    return self;
}

Interface::Interface(String className, std::vector<Member> members)
    : className_(std::move(className)), members_(std::move(members)) {
    NumberMembers(members_);
}

const Member* Interface::Find(std::string_view name, MemberKind kind) const {
    for (const Member& member : members_)
        if (Answers(member, kind) && EqualsIgnoringCase(member.Name, name)) return &member;
    return nullptr;
}

const Member* Interface::Find(std::string_view name) const {
    for (const Member& member : members_)
        if (EqualsIgnoringCase(member.Name, name)) return &member;
    return nullptr;
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
    Variant result = member->Call(object, all);
    std::copy_n(all.begin(), arguments.size(), arguments.begin());
    return result;
}

}  // namespace Platform

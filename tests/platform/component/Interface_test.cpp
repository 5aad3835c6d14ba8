#include "platform/component/dispatch/InterfaceTable.h"

#include "kit/Database.h"
#include "platform/runtime/Collection.h"

namespace {

using namespace Platform;
using TestKit::FailureOf;

/// A class with one member of each kind.
class Sample final : public Object {
public:
    static constexpr const char* ClassName = "Sample";

    Long Number = 0;
    String Text;
    Ref<Collection> Members;
    bool Flag = false;

    String Join(const String& a, Long b, const String& c) { return a + CStr(b) + c; }
    void Change(String& text, const Long& by) { text += CStr(by); }
    Long Twice() const { return Number * 2; }
    Variant Item(const Variant& index) const { return index; }

    const Interface& Describe() const override {
        static const Interface& self = InterfaceOf<Sample>(
            "A sample.",
            {
                Property<&Sample::Number>("Number", "A number."),
                Property<&Sample::Text>("Text", "A text."),
                Property<&Sample::Members>("Members", "A collection."),
                PropertyGetFirst<&Sample::Flag>("Flag", "A flag."),
                Operation<&Sample::Join>("Join", "Joins its arguments.",
                                         {{"a", "A text."}, {"b", "A number."}, Optional("c", "A text.", "!")}),
                Operation<&Sample::Change>("Change", "Appends a number to a text.",
                                           {{"text", "A text."}, {"by", "A number."}}),
                ReadOnly<&Sample::Twice>("Twice", "A number."),
                ReadOnly<&Sample::Item>("Item", "Returns its argument.", {{"index", "A value."}}, DefaultMember),
            });
        return self;
    }
};

Variant Call(const Ref<Sample>& object, const char* name, MemberKind kind, std::vector<Variant> arguments = {}) {
    return Invoke(*object, name, kind, arguments);
}

TEST(Interface, DescribesItsMembersInTheirOrder) {
    EXPECT_EQ(TestKit::MembersOf(*New<Sample>()),
              (std::vector<String>{"put Number(int32)", "get Number -> int32", "put Text(string)", "get Text -> string",
                                   "putref Members(Collection&)", "get Members -> Collection", "get Flag -> boolean",
                                   "put Flag(boolean)", "Join(a: string&, b: int32, [c: string&]) -> string",
                                   "Change(text: string&, by: int32&)", "get Twice -> int32",
                                   "get Item(index: variant&) -> variant"}));
}

TEST(Interface, PropertiesArePutAndGotByNameWithoutCase) {
    const Ref<Sample> object = New<Sample>();
    Call(object, "NUMBER", MemberKind::Put, {"42"});
    EXPECT_EQ(object->Number, 42) << "the value is converted to the member's type";
    EXPECT_EQ(Call(object, "number", MemberKind::Get), Variant(Long{42}));
    EXPECT_EQ(Call(object, "Twice", MemberKind::Get), Variant(Long{84}));
    const Ref<Collection> members = New<Collection>();
    Call(object, "Members", MemberKind::PutRef, {members});
    EXPECT_EQ(object->Members, members) << "an object put is the same object";
}

TEST(Interface, OperationsUseTheDefaultsOfOmittedArguments) {
    const Ref<Sample> object = New<Sample>();
    EXPECT_EQ(Call(object, "Join", MemberKind::Operation, {"x", 7.0}), Variant("x7!"));
    EXPECT_EQ(Call(object, "Join", MemberKind::Operation, {"x", 7.0, "y"}), Variant("x7y"));
}

TEST(Interface, ArgumentsByReferenceAreWrittenBack) {
    const Ref<Sample> object = New<Sample>();
    std::vector<Variant> arguments{"a", Long{5}};
    Invoke(*object, "Change", MemberKind::Operation, arguments);
    EXPECT_EQ(arguments[0], Variant("a5"));
    EXPECT_EQ(arguments[1], Variant(Long{5}));
}

TEST(Interface, WrongCallsRaiseTheirNumbers) {
    const Ref<Sample> object = New<Sample>();
    const auto number = [&](const char* name, MemberKind kind, std::vector<Variant> arguments) {
        return FailureOf([&] { Call(object, name, kind, arguments); }).Number;
    };
    EXPECT_EQ(number("Nope", MemberKind::Get, {}), err::NoSuchMember);
    EXPECT_EQ(number("Twice", MemberKind::Put, {Long{1}}), err::NoSuchMember);
    EXPECT_EQ(number("Join", MemberKind::Operation, {"a"}), err::ArgumentNotOptional);
    EXPECT_EQ(number("Join", MemberKind::Operation, {"a", Long{1}, "c", "d"}), err::WrongArguments);
    EXPECT_EQ(number("Number", MemberKind::Put, {"no number"}), err::TypeMismatch);
    EXPECT_EQ(number("Members", MemberKind::PutRef, {"no object"}), err::ObjectRequired);
    EXPECT_EQ(number("Members", MemberKind::PutRef, {New<Sample>()}), err::TypeMismatch);
}

TEST(Interface, IdentitiesAreSharedByPutAndGet) {
    const Ref<Sample> object = New<Sample>();
    const Interface& members = object->Describe();
    EXPECT_EQ(members.Find("Number", MemberKind::Put)->DispId, members.Find("Number", MemberKind::Get)->DispId);
    EXPECT_NE(members.Find("Number")->DispId, members.Find("Text")->DispId);
    EXPECT_EQ(members.Find("Item")->DispId, DefaultMember);
}

TEST(Interface, ACollectionIsCalledByName) {
    const Ref<Collection> collection = New<Collection>();
    std::vector<Variant> add{"one", "K1"};
    Invoke(*collection, "Add", MemberKind::Operation, add);
    std::vector<Variant> key{"k1"};
    EXPECT_EQ(Invoke(*collection, "Item", MemberKind::Operation, key), Variant("one"));
    EXPECT_EQ(collection->Describe().Find("_NewEnum")->DispId, EnumeratorMember);
}

}  // namespace

#include "platform/component/dispatch/Description.h"

#include "kit/Database.h"
#include "platform/component/dispatch/InterfaceTable.h"
#include "platform/runtime/Collection.h"

enum class Shade { Light, Dark };

template <>
struct Platform::EnumerationOf<Shade> {
    static constexpr const char* Name = "Shade";
    static constexpr EnumerationValue Values[] = {{"Light", 0}, {"Dark", 1}};
};

namespace {

using namespace Platform;

/// A class with a member of each kind and type.
class Described final : public Object {
public:
    static constexpr const char* ClassName = "Described";

    bool Flag = false;
    Ref<Collection> Members;

    void Change(Integer& small, const Long& number, float single, double& real, const Date& day) {
        real = small + single + static_cast<float>(number) + day.Days;
    }
    String Name(const String& text, Shade shade) const { return text + CStr(Long{shade == Shade::Dark}); }
    Variant Item(const Variant& index) const { return index; }
    Shade Tone() const { return Shade::Dark; }

    const Interface& Describe() const override {
        static const Interface& self = InterfaceOf<Described>({
            Property<&Described::Flag>("Flag"),
            Property<&Described::Members>("Members"),
            Operation<&Described::Change>("Change", {"small", "number", "single", "real", "day"}),
            Operation<&Described::Name>("Name", {"text", Optional("shade", Long{1})}),
            ReadOnly<&Described::Item>("Item", {"index"}, DefaultMember),
            ReadOnly<&Described::Tone>("Tone"),
        });
        return self;
    }
};

/// The identity of a member, as the text has it.
String Id(const char* name) { return CStr(New<Described>()->Describe().Find(name)->DispId); }

/// An argument as the text has it; `of` is the name of its type.
String Argument(const String& name, const String& type, bool byReference, bool comesBack, bool optional,
                const String& of = "") {
    const auto word = [](bool value) { return String(value ? "true" : "false"); };
    return R"({"name":")" + name + R"(","type":")" + type + "\"" + (of.empty() ? "" : R"(,"of":")" + of + "\"") +
           R"(,"byReference":)" + word(byReference) + R"(,"comesBack":)" + word(comesBack) + R"(,"optional":)" +
           word(optional) + "}";
}

/// A member as the text has it.
String Member(const char* name, const String& kind, const String& arguments, const String& result,
              const String& of = "") {
    return String(R"({"name":")") + name + R"(","kind":")" + kind + R"(","id":)" + Id(name) + R"(,"arguments":[)" +
           arguments + R"(],"result":")" + result + "\"" + (of.empty() ? "" : R"(,"resultOf":")" + of + "\"") + "}";
}

TEST(Description, HasEachMemberWithItsTypesInTheirOrder) {
    const String members[] = {
        Member("Flag", "put", Argument("Value", "boolean", false, false, false), "none"),
        Member("Flag", "get", "", "boolean"),
        Member("Members", "putref", Argument("Value", "object", true, false, false, "Collection"), "none"),
        Member("Members", "get", "", "object", "Collection"),
        Member("Change", "operation",
               Argument("small", "short", true, true, false) + "," + Argument("number", "long", true, false, false) +
                   "," + Argument("single", "single", false, false, false) + "," +
                   Argument("real", "double", true, true, false) + "," + Argument("day", "date", true, false, false),
               "none"),
        Member("Name", "operation",
               Argument("text", "text", true, false, false) + "," +
                   Argument("shade", "enumeration", false, false, true, "Shade"),
               "text"),
        Member("Item", "get", Argument("index", "variant", true, false, false), "variant"),
        Member("Tone", "get", "", "enumeration", "Shade"),
    };
    String expected;
    for (const String& member : members) expected += (expected.empty() ? "" : ",") + member;
    EXPECT_EQ(DescriptionText(New<Described>()->Describe()), R"({"class":"Described","members":[)" + expected + "]}");
    EXPECT_EQ(Id("Item"), "0");
}

TEST(Description, OfAClassWithoutMembersHasAnEmptyList) {
    const Interface none("Empty", {}, {});
    EXPECT_EQ(DescriptionText(none), R"({"class":"Empty","members":[]})");
}

}  // namespace

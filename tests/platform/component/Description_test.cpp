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
        static const Interface& self = InterfaceOf<Described>(
            "A class.",
            {
                Property<&Described::Flag>("Flag", "A flag."),
                Property<&Described::Members>("Members", "A collection."),
                Operation<&Described::Change>("Change", "Changes its arguments.",
                                              {{"small", "A small number."},
                                               {"number", "A number."},
                                               {"single", "A single."},
                                               {"real", "A double."},
                                               {"day", "A date."}}),
                Operation<&Described::Name>("Name", "Returns a text.",
                                            {{"text", "A text."}, Optional("shade", "A shade.", Long{1})}),
                ReadOnly<&Described::Item>("Item", "Returns its argument.", {{"index", "A value."}}, DefaultMember),
                ReadOnly<&Described::Tone>("Tone", "A shade."),
            });
        return self;
    }
};

/// The identity of a member, as the text has it.
String Id(const char* name) { return CStr(New<Described>()->Describe().Find(name)->DispId); }

/// An argument as the text has it; `of` is the name of its type.
String Argument(const String& name, const String& help, const String& type, bool byReference, bool comesBack,
                bool optional, const String& of = "") {
    const auto word = [](bool value) { return String(value ? "true" : "false"); };
    return R"({"name":")" + name + R"(","help":")" + help + R"(","type":")" + type + "\"" +
           (of.empty() ? "" : R"(,"of":")" + of + "\"") + R"(,"byReference":)" + word(byReference) +
           R"(,"comesBack":)" + word(comesBack) + R"(,"optional":)" + word(optional) + "}";
}

/// A member as the text has it.
String Member(const char* name, const String& help, const String& kind, const String& arguments, const String& result,
              const String& of = "") {
    return String(R"({"name":")") + name + R"(","help":")" + help + R"(","kind":")" + kind + R"(","id":)" + Id(name) +
           R"(,"arguments":[)" + arguments + R"(],"result":")" + result + "\"" +
           (of.empty() ? "" : R"(,"resultOf":")" + of + "\"") + "}";
}

TEST(Description, HasEachMemberWithItsTypesInTheirOrder) {
    const String members[] = {
        Member("Flag", "A flag.", "put", Argument("Value", "The new value.", "boolean", false, false, false), "none"),
        Member("Flag", "A flag.", "get", "", "boolean"),
        Member("Members", "A collection.", "putref",
               Argument("Value", "The new value.", "object", true, false, false, "Collection"), "none"),
        Member("Members", "A collection.", "get", "", "object", "Collection"),
        Member("Change", "Changes its arguments.", "operation",
               Argument("small", "A small number.", "short", true, true, false) + "," +
                   Argument("number", "A number.", "long", true, false, false) + "," +
                   Argument("single", "A single.", "single", false, false, false) + "," +
                   Argument("real", "A double.", "double", true, true, false) + "," +
                   Argument("day", "A date.", "date", true, false, false),
               "none"),
        Member("Name", "Returns a text.", "operation",
               Argument("text", "A text.", "text", true, false, false) + "," +
                   Argument("shade", "A shade.", "enumeration", false, false, true, "Shade"),
               "text"),
        Member("Item", "Returns its argument.", "get", Argument("index", "A value.", "variant", true, false, false),
               "variant"),
        Member("Tone", "A shade.", "get", "", "enumeration", "Shade"),
    };
    String expected;
    for (const String& member : members) expected += (expected.empty() ? "" : ",") + member;
    EXPECT_EQ(DescriptionText(New<Described>()->Describe()),
              R"({"class":"Described","help":"A class.","members":[)" + expected + "]}");
    EXPECT_EQ(Id("Item"), "0");
}

TEST(Description, OfAClassWithoutMembersHasAnEmptyList) {
    const Interface none("Empty", "A class without members.", {}, {});
    EXPECT_EQ(DescriptionText(none), R"({"class":"Empty","help":"A class without members.","members":[]})");
}

}  // namespace

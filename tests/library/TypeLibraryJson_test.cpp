#include "library/ClassTable.h"
#include "library/TypeLibrary.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

/// The type library as JSON.
namespace OXClass {
namespace {

using Json = nlohmann::ordered_json;

class TypeLibraryAsJson : public ::testing::Test {
protected:
    const Json json = Json::parse(TypeLibraryJson());

    std::set<std::string> NamesOf(const Json& list, const char* key) const {
        std::set<std::string> names;
        for (const Json& entry : list) names.insert(entry[key].get<std::string>());
        return names;
    }
};

TEST_F(TypeLibraryAsJson, NamesTheLibrary) {
    EXPECT_EQ(json["library"].dump(),
              R"({"name":"OXClass","identifier":"e17bece6-abf0-53ff-aa05-e9ee705256da","version":"1.30",)"
              R"("fileVersion":"1.00.0088","locale":1033,"help":"OX Classes"})");
}

TEST_F(TypeLibraryAsJson, HasEachClassWithTheMembersOfItsTable) {
    ASSERT_EQ(json["classes"].size(), ClassTable().size());
    for (std::size_t i = 0; i < ClassTable().size(); ++i) {
        const ClassEntry& entry = ClassTable()[i];
        const Json& found = json["classes"][i];
        EXPECT_EQ(found["name"], std::string("OXClass.") + entry.Name);
        EXPECT_EQ(found["identifier"], entry.ClassID);
        EXPECT_EQ(found["interface"], entry.InterfaceID);
        EXPECT_EQ(found["global"], entry.IsGlobal);
        const auto& members = entry.Make()->Describe().Members();
        ASSERT_EQ(found["members"].size(), members.size()) << entry.Name;
        for (std::size_t m = 0; m < members.size(); ++m) {
            EXPECT_EQ(found["members"][m]["name"], members[m].Name);
            EXPECT_EQ(found["members"][m]["id"], members[m].DispId);
            EXPECT_EQ(found["members"][m]["arguments"].size(), members[m].Arguments.size());
        }
    }
}

TEST_F(TypeLibraryAsJson, HasTheEnumerationsOfTheLibraryAndOfTheHost) {
    EXPECT_EQ(json["enumerations"].size(), 10U);
    EXPECT_EQ(json["enumerations"][6].dump(),
              R"({"name":"CardTypes","values":[{"name":"ctUnknown","value":0},{"name":"ctImagecard","value":1},)"
              R"({"name":"ctseries","value":2}]})");
    EXPECT_TRUE(NamesOf(json["host"]["enumerations"], "name").contains("LockTypeEnum"));
}

TEST_F(TypeLibraryAsJson, EveryObjectAndEnumerationOfAMemberIsDeclared) {
    std::set<std::string> classes = NamesOf(json["classes"], "class"), enumerations;
    classes.merge(NamesOf(json["host"]["classes"], "class"));
    enumerations.merge(NamesOf(json["enumerations"], "name"));
    enumerations.merge(NamesOf(json["host"]["enumerations"], "name"));
    classes.insert({"Object", "Enumerator"});
    const auto expectKnown = [&](const Json& owner, const char* key, const char* name) {
        if (!owner.contains(name)) return;
        const std::string of = owner[name];
        EXPECT_TRUE((owner[key] == "object" ? classes : enumerations).contains(of)) << of;
    };
    for (const Json* list : {&json["classes"], &json["host"]["classes"]})
        for (const Json& entry : *list)
            for (const Json& member : entry["members"]) {
                expectKnown(member, "result", "resultOf");
                for (const Json& argument : member["arguments"]) expectKnown(argument, "type", "of");
            }
}

}  // namespace
}  // namespace OXClass

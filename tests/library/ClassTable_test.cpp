#include "library/ClassTable.h"

#include "platform/component/dispatch/Interface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

/// The table of public classes.
namespace OXClass {
namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;

std::vector<std::string> Names(bool globalOnly) {
    std::vector<std::string> names;
    for (const ClassEntry& entry : ClassTable())
        if (entry.IsGlobal || !globalOnly) names.emplace_back(entry.Name);
    return names;
}

TEST(ClassTable, HasTheTwentyEightClassesInTheirOrder) {
    EXPECT_THAT(Names(false),
                ElementsAre("Class1", "cComments", "cAnatomics", "cDoctor", "cDoctors", "cGlobalList", "cGlobalLists",
                            "cImagecard", "cImagecardAttribute", "cMWLItem", "cPatient", "cStringItem", "cStudy",
                            "cTeeth", "cTemplate", "cTemplateAttribute", "cTooth", "IntendedRecipients", "OtherPatIDs",
                            "cAnatomicDescription", "cImageManipulation", "cUniCard", "cImages", "cUniCards", "cImage",
                            "cSerie", "cClinic", "cClinics"));
}

TEST(ClassTable, SevenClassesAreGlobal) {
    EXPECT_THAT(Names(true), ElementsAre("cGlobalList", "cGlobalLists", "cImagecardAttribute", "cStudy", "OtherPatIDs",
                                         "cImageManipulation", "cSerie"));
}

TEST(ClassTable, EachIdentifierIsOneAndItsOwn) {
    std::set<std::string> seen;
    for (const ClassEntry& entry : ClassTable())
        for (const char* identifier : {entry.ClassID, entry.InterfaceID}) {
            EXPECT_THAT(identifier,
                        MatchesRegex("[0-9a-f]{8}-[0-9a-f]{4}-5[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
            EXPECT_TRUE(seen.insert(identifier).second) << identifier;
        }
    EXPECT_EQ(seen.size(), 56U);
}

TEST(ClassTable, IdentifiersStayWhatTheyWere) {
    EXPECT_STREQ(ClassTable()[10].ClassID, "4b7f6647-8a1a-58a2-a42e-8a831cf71482");
    EXPECT_STREQ(ClassTable()[10].InterfaceID, "3dc52b67-ccee-53fe-9017-dbfb547bb273");
}

TEST(ClassTable, EachEntryMakesObjectsOfItsClass) {
    for (const ClassEntry& entry : ClassTable()) {
        const Platform::Ref<Platform::Object> first = entry.Make(), second = entry.Make();
        EXPECT_EQ(first->Describe().ClassName(), entry.Name);
        EXPECT_FALSE(first == second) << entry.Name;
    }
}

}  // namespace
}  // namespace OXClass

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

TEST(ClassTable, IdentifiersNeverChange) {
    // The class, its identifier and the identifier of its interface. Compiled clients contain them.
    const std::vector<std::vector<std::string>> expected{
        {"Class1", "0fa498cd-39e4-5e6c-815b-0bf333f07944", "8444b496-1c39-535d-b3e9-7c383696a987"},
        {"cComments", "4af264b2-8be0-560e-b27a-b99f64aacb53", "a8a6c897-2b04-5a18-84a5-cbd5a7b8e9db"},
        {"cAnatomics", "90565d3e-3d81-528e-a4e0-5820cae3431c", "83e5934e-cbb5-5c3f-92a2-95f1d46d0f4f"},
        {"cDoctor", "ec9c906b-b84b-53f0-9d88-29ea3d9a0d7d", "a7161c39-7daa-54e9-8b94-2aa45f909c78"},
        {"cDoctors", "b6afecb3-bff1-56d2-894b-d81bb2d3d8bd", "80b553c2-358f-5205-835f-4ea6fd28a565"},
        {"cGlobalList", "eb2814a7-97f9-5d26-a38e-9a86ce6b534a", "9a81f5df-240a-5c49-af09-d5aa7482c954"},
        {"cGlobalLists", "3284b281-1ba4-5785-ac54-62322f9306f3", "081eb53d-202c-5284-abb1-b27408da0950"},
        {"cImagecard", "da3e5bff-3665-5383-ab9e-076e6b741985", "1432c740-966a-5e33-876d-ed604452686d"},
        {"cImagecardAttribute", "c04690ae-a064-5e16-9023-58e77989dc74", "32a47da5-2a00-5a6d-8051-7c868f4563e7"},
        {"cMWLItem", "09d3086a-8788-53db-8d2a-1fdd1cea08bc", "e87763e5-75e9-5cf0-a610-0ebad2edc426"},
        {"cPatient", "4b7f6647-8a1a-58a2-a42e-8a831cf71482", "3dc52b67-ccee-53fe-9017-dbfb547bb273"},
        {"cStringItem", "b7fb2b2c-9ce7-5028-8a61-e3e8a166d734", "bbca17cf-7d28-530e-b705-5fb0839c4ecf"},
        {"cStudy", "df592779-2610-5b08-a19c-dc415e0a0f56", "509b5ff7-c019-5c77-a9e1-8ffe8188b7a1"},
        {"cTeeth", "79ea52d0-0a2a-5e2b-abbd-10920cd37959", "2a704f19-f7d7-5faa-b978-a82db84fe0b7"},
        {"cTemplate", "ce6154d1-4118-54ea-8d2c-d223b920f33e", "97c84e46-6980-52ec-abc6-db1f2c9dc515"},
        {"cTemplateAttribute", "f3d28f38-6e0d-5eb6-acf2-f02ea90a2d35", "84b7d351-d663-501e-b0e4-f86e4aec2a0e"},
        {"cTooth", "8268d3af-f672-522a-8924-e6dd3301cf43", "98bc8a69-42d4-5f6f-878b-11ce11c99abb"},
        {"IntendedRecipients", "e48f7785-3573-584a-b4d6-4f579a83cfd3", "70c9bfa8-c1ed-5be4-8c73-b30bc088fc96"},
        {"OtherPatIDs", "4110c06f-a87b-5170-8674-2587efc4018f", "a8bc84b5-a4ac-5e3e-8922-ab4d2a81def5"},
        {"cAnatomicDescription", "02d7f335-3e92-5b0f-a591-e3ab7798e0e5", "49af43c1-a791-58c6-b661-b6e2a11b5cf0"},
        {"cImageManipulation", "8636fea0-eafc-5a2d-85b9-2b3e87f648c6", "c33b058a-d568-5456-a3a9-18b9f2cce3dd"},
        {"cUniCard", "f31a703c-1802-5df0-b4b3-0e2b54043599", "8dc83d0d-cfcf-5502-917f-909267a741a0"},
        {"cImages", "00d00d3f-ae71-576d-918a-17bf1c219bc0", "9902b454-9578-5787-874f-b8a8f24d8c5e"},
        {"cUniCards", "5b527eb9-3c6c-5947-819d-8431f20a659b", "833623af-cb83-5cea-b024-f794d2487494"},
        {"cImage", "45b72e97-ba61-50ca-ae25-dc6d2c2c84ec", "456e0384-b3d3-507a-979f-78364e32484b"},
        {"cSerie", "b3771ca0-93eb-5bab-9b36-af88b5a7ac05", "dbdea135-0ad1-5dfd-a8d3-a4bf062dcdc8"},
        {"cClinic", "a9fba3e1-5a71-5a0b-ac03-a1db91591fe1", "75c70ad0-7a0e-549c-afd6-962769b20add"},
        {"cClinics", "ef936f48-f3a9-50ca-8b34-832dcd9bb0e4", "f66c76a2-ca1f-5163-b923-9f9496ddb25b"},
    };
    std::vector<std::vector<std::string>> found;
    for (const ClassEntry& entry : ClassTable()) found.push_back({entry.Name, entry.ClassID, entry.InterfaceID});
    EXPECT_EQ(found, expected);
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

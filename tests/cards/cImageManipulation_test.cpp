#include "cards/cImageManipulation.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// One recorded manipulation of a placed image.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

TEST(Manipulation, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(cImageManipulation()),
                ElementsAre("put ManipulationType(ManipulationType)", "get ManipulationType -> ManipulationType",
                            "put LongParameter(int32)", "get LongParameter -> int32", "put StringParameter(string)",
                            "get StringParameter -> string", "put ImageManipulationID(int32)",
                            "get ImageManipulationID -> int32", "put UndoImageHandle(int32)",
                            "get UndoImageHandle -> int32", "put IAID(int32)", "get IAID -> int32"));
}

TEST(Manipulation, StartsEmpty) {
    const cImageManipulation step;
    EXPECT_EQ(static_cast<Long>(step.ManipulationType), 0);
    EXPECT_EQ(step.LongParameter, 0);
    EXPECT_EQ(step.StringParameter, "");
    EXPECT_EQ(step.ImageManipulationID, 0);
    EXPECT_EQ(step.UndoImageHandle, 0);
    EXPECT_EQ(step.IAID, 0);
}

TEST(Manipulation, TypesHaveTheirNamesAndNumbers) {
    std::vector<String> values;
    for (const EnumerationValue& value : EnumerationOf<ManipulationType>::Values)
        values.push_back(String(value.Name) + "=" + CStr(value.Value));
    EXPECT_STREQ(EnumerationOf<ManipulationType>::Name, "ManipulationType");
    EXPECT_THAT(values, ElementsAre("ManCosmetic=1", "Manbrightness=2", "ManContrast=3", "ManInvert=4", "ManColorize=5",
                                    "ManRotate=6", "ManMirror=7", "ManSharpen=8", "ManBitmap=9", "ManPosResize=10",
                                    "UndoStop=11", "ManLeftFocus=12", "ManGotfocus=13", "ManICResize=14", "Delete=15",
                                    "ManAttCorr=16", "ManMedian=17", "ManEmboss=18", "ManEdgeEnhance=19",
                                    "ManAnnBurn=20", "ManEnhanceFilter=21", "ManCrop=22"));
}

TEST(Manipulation, TheNumbersAreThoseOfTheEnumerationItself) {
    const ManipulationType all[] = {
        ManCosmetic, Manbrightness, ManContrast,    ManInvert,    ManColorize,      ManRotate,   ManMirror, ManSharpen,
        ManBitmap,   ManPosResize,  UndoStop,       ManLeftFocus, ManGotfocus,      ManICResize, Delete,    ManAttCorr,
        ManMedian,   ManEmboss,     ManEdgeEnhance, ManAnnBurn,   ManEnhanceFilter, ManCrop};
    Long number = 0;
    for (const ManipulationType type : all) EXPECT_EQ(static_cast<Long>(type), ++number);
    EXPECT_EQ(number, 22);
}

TEST(Manipulation, ALateBoundTypeWithoutANameIsHeldAsItIs) {
    cImageManipulation step;
    std::vector<Variant> arguments{Variant(Long{99})};
    Invoke(step, "ManipulationType", MemberKind::Put, arguments);
    EXPECT_EQ(static_cast<Long>(step.ManipulationType), 99);
}

}  // namespace
}  // namespace OXClass

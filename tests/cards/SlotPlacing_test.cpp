#include "cards/SlotPlacing.h"

#include "kit/Database.h"

/// The places that a layout and the grid define.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

class Placing : public ::testing::Test {
protected:
    void AddSlot(Long number, double measure) {
        const Ref<cTemplateAttribute> slot = New<cTemplateAttribute>();
        slot->TANumberInTemplate = number;
        slot->TAPosX = measure;
        slot->TAPosY = measure + 0.25;
        slot->TAWidth = measure + 0.5;
        slot->TAHeight = measure + 0.75;
        layout->TemplateAttributes->Add(slot);
    }

    /// Left, top, width and height of the place of an image of this frame.
    static std::vector<double> PlaceOf(SlotPlacing& placing, Long frame) {
        const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
        placing.Place(*placed, frame);
        return {placed->IAPosX, placed->IAPosY, placed->IAWidth, placed->IAHeight};
    }

    Ref<cTemplate> layout = New<cTemplate>();
};

TEST_F(Placing, AFrameTakesTheSlotOfItsNumber) {
    AddSlot(4, 1);
    AddSlot(2, 2);
    SlotPlacing placing(*layout);
    EXPECT_THAT(PlaceOf(placing, 2), ElementsAre(2, 2.25, 2.5, 2.75));
    EXPECT_THAT(PlaceOf(placing, 4), ElementsAre(1, 1.25, 1.5, 1.75));
}

TEST_F(Placing, OfSlotsOfOneNumberTheFirstCounts) {
    AddSlot(4, 1);
    AddSlot(4, 2);
    SlotPlacing placing(*layout);
    EXPECT_THAT(PlaceOf(placing, 4), ElementsAre(1, 1.25, 1.5, 1.75));
}

TEST_F(Placing, ImagesOfOneFrameShareItsSlot) {
    AddSlot(4, 1);
    SlotPlacing placing(*layout);
    EXPECT_EQ(PlaceOf(placing, 4), PlaceOf(placing, 4));
}

TEST_F(Placing, FrameZeroLandsInTheGrid) {
    AddSlot(4, 1);
    SlotPlacing placing(*layout);
    EXPECT_THAT(PlaceOf(placing, 0), ElementsAre(0, 0, 0.19, 0.19));
}

TEST_F(Placing, FrameZeroTakesASlotOfNumberZero) {
    AddSlot(0, 1);
    SlotPlacing placing(*layout);
    EXPECT_THAT(PlaceOf(placing, 0), ElementsAre(1, 1.25, 1.5, 1.75));
}

TEST_F(Placing, FramesWithoutASlotFillTheGridByRows) {
    SlotPlacing placing(*layout);
    for (int cell = 0; cell < 12; ++cell)
        EXPECT_THAT(PlaceOf(placing, cell - 6), ElementsAre(cell % 5 * 0.2, cell / 5 * 0.2, 0.19, 0.19)) << cell;
}

TEST_F(Placing, ImagesInSlotsLeaveTheGridAsItIs) {
    AddSlot(4, 1);
    SlotPlacing placing(*layout);
    PlaceOf(placing, 1);
    PlaceOf(placing, 4);
    EXPECT_THAT(PlaceOf(placing, 1), ElementsAre(0.2, 0, 0.19, 0.19));
}

TEST_F(Placing, EachCardHasAGridOfItsOwn) {
    SlotPlacing first(*layout);
    PlaceOf(first, 1);
    SlotPlacing second(*layout);
    EXPECT_THAT(PlaceOf(second, 1), ElementsAre(0, 0, 0.19, 0.19));
}

TEST_F(Placing, OnlyTheFourMeasuresChange) {
    AddSlot(4, 1);
    SlotPlacing placing(*layout);
    const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
    for (const Long frame : {4, 5}) placing.Place(*placed, frame);
    EXPECT_EQ(placed->ID, 0);
    EXPECT_EQ(placed->ImageID, 0);
    EXPECT_EQ(placed->IASequence, 0);
    EXPECT_EQ(placed->IAMirrRotStatus, 0);
}

TEST_F(Placing, AMemberOfTheLayoutThatIsNotASlotRaises) {
    layout->TemplateAttributes->Add(New<cTemplate>());
    EXPECT_EQ(FailureOf([&] { SlotPlacing placing(*layout); }).Number, 13);
}

}  // namespace
}  // namespace OXClass

#include "images/cImages.h"
#include "kit/Database.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <algorithm>

/// Hanging: the choice of a layout, and the frame that each image gets. Deriving the anatomy from tooth
/// strings is tested with the images.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* Upper = "T-11170";
constexpr const char* Lower = "T-11180";
constexpr const char* Both = "T-D1213";
constexpr const char* BothOld = "T-D1217";
constexpr const char* Skull = "T-11100";

String Modifier(char last) { return String("T-5100") + last; }

class Hanging : public WithDatabase {
protected:
    /// Adds an image of this anatomy, an hour younger than the one before.
    Ref<cImage> Add(const String& laterality = {}, const String& region = {}, const String& modifier = {},
                    const String& teeth = {}) {
        const Ref<cImage> image = New<cImage>();
        image->Laterality = laterality;
        image->AnaRegion = region;
        image->AnaRegionMod = modifier;
        image->sTeeth = teeth;
        image->FrameNumber = 99;
        image->dateTime =
            DateFrom({2024, 3, 1 + static_cast<int>(images.size() / 24), static_cast<int>(images.size() % 24), 0, 0});
        images.push_back(image);
        return image;
    }
    void AddTeeth(const std::vector<String>& teeth) {
        for (const String& text : teeth) Add({}, {}, {}, text);
    }
    void AddPlain(Long count) {
        for (Long i = 0; i < count; ++i) Add();
    }

    Ref<Collection> Images() const {
        const Ref<Collection> collection = New<Collection>();
        for (const Ref<cImage>& image : images) collection->Add(image);
        return collection;
    }

    /// Hangs the images as a series of `count`, by default of as many as there are.
    Long Hang(Long count) {
        series->ImgCount = count;
        return series->HangSeries(Images(), con);
    }
    Long Hang() { return Hang(static_cast<Long>(images.size())); }

    std::vector<Long> Frames() const {
        std::vector<Long> frames;
        for (const Ref<cImage>& image : images) frames.push_back(image->FrameNumber);
        return frames;
    }

    /// The frame of a single image of this anatomy in a layout chosen by its count.
    Long FrameOf(Long count, const String& laterality, const String& region, const String& modifier,
                 const String& teeth = {}) {
        images.clear();
        Add(laterality, region, modifier, teeth);
        Hang(count);
        return images.front()->FrameNumber;
    }

    Ref<cSerie> series = New<cSerie>();
    std::vector<Ref<cImage>> images;
};

// ---- the choice of a layout ---------------------------------------------------------------------------

TEST_F(Hanging, ACountOfZeroDoesNothing) {
    AddTeeth({"16,", "26,"});
    series->TemplateID = 42;
    EXPECT_EQ(Hang(0), 0);
    EXPECT_EQ(series->TemplateID, 42);
    EXPECT_THAT(Frames(), Each(99));
    EXPECT_EQ(images.front()->Laterality, "");
}

TEST_F(Hanging, TheLayoutFollowsTheCountOfTheSeries) {
    AddPlain(2);
    const std::vector<std::pair<Long, Long>> layouts{{-32768, 10}, {-1, 10}, {1, 9},   {2, 10},   {3, 10}, {4, 11},
                                                     {5, 11},      {6, 12},  {9, 12},  {10, 6},   {18, 6}, {19, 5},
                                                     {20, 5},      {21, 0},  {300, 0}, {32767, 0}};
    for (const auto& [count, layout] : layouts) {
        EXPECT_EQ(Hang(count), layout) << count;
        EXPECT_EQ(series->TemplateID, layout) << count;
    }
}

TEST_F(Hanging, BitewingsAloneHaveLayoutsOfTheirOwn) {
    for (const char* region : {Both, BothOld}) {
        images.clear();
        Add("R", region, Modifier('9'));
        Add("L", region, Modifier('9'));
        for (const auto& [count, layout] :
             {std::pair{1, 8}, std::pair{2, 8}, std::pair{3, 7}, std::pair{4, 7}, std::pair{5, 11}, std::pair{-1, 10}})
            EXPECT_EQ(Hang(count), layout) << region << count;
    }
}

TEST_F(Hanging, AnEmptyCollectionCountsAsBitewings) {
    for (const auto& [count, layout] :
         {std::pair{1, 8}, std::pair{2, 8}, std::pair{3, 7}, std::pair{4, 7}, std::pair{5, 11}, std::pair{-1, 10}})
        EXPECT_EQ(Hang(count), layout) << count;
}

TEST_F(Hanging, OneImageThatIsNotABitewingChangesTheLayout) {
    for (const auto& [laterality, region] : {std::pair{"B", Both}, std::pair{"R", Upper}, std::pair{"L", ""}}) {
        images.clear();
        Add("R", Both, Modifier('9'));
        Add(laterality, region, Modifier('9'));
        EXPECT_EQ(Hang(), 10) << laterality << region;
    }
}

TEST_F(Hanging, AnImageOfBothSidesIsNotABitewing) {
    AddTeeth({"16,26,", "15,45,"});
    EXPECT_EQ(Hang(), 10);
    EXPECT_EQ(images[0]->Laterality, "B");
    EXPECT_EQ(images[0]->AnaRegion, Upper);
}

TEST_F(Hanging, APanoramicImageHangsInItsLayout) {
    series->Modality = "PX";
    Add("R", Both);
    EXPECT_EQ(Hang(), 1);
    EXPECT_THAT(Frames(), ElementsAre(1));
    Add("L", Both);
    EXPECT_EQ(Hang(), 10) << "of two, no bitewings though their regions say so";
    series->Modality = "px";
    EXPECT_EQ(Hang(), 8) << "modalities compare exactly";
}

TEST_F(Hanging, HeadsHangByTheirSide) {
    struct Row {
        const char *modality, *region, *laterality, *description;
        Long layout;
    };
    for (const auto& [modality, region, laterality, description, layout] :
         {Row{"DX", Skull, "L", "", 2}, Row{"DX", Skull, "R", "", 2}, Row{"DX", Skull, "B", "", 14},
          Row{"DX", Skull, "", "", 9}, Row{"DX", Skull, "U", "", 9}, Row{"CR", Skull, "L", "", 9},
          Row{"PX", Skull, "B", "CEPH", 1}, Row{"IO", Skull, "B", "CEPH", 9}, Row{"DX", "", "", "ceph", 2},
          Row{"DX", Upper, "L", "A Ceph of today", 2}, Row{"DX", Upper, "B", "CEPH", 14},
          Row{"DX", Skull, "", "Ceph", 2}, Row{"DX", Both, "R", "cephalogram", 2}, Row{"DX", Both, "R", "", 8},
          Row{"DX", Upper, "R", "C E P H", 9}, Row{"dx", Skull, "L", "CEPH", 9}}) {
        images.clear();
        series->Modality = modality;
        series->SeriesDescription = description;
        Add(laterality, region);
        EXPECT_EQ(Hang(), layout) << modality << ' ' << region << ' ' << laterality << ' ' << description;
    }
}

TEST_F(Hanging, AFrontalHeadBeatsALateralOne) {
    series->Modality = "DX";
    Add("B", Skull);
    Add("L", Skull);
    EXPECT_EQ(Hang(1), 14);
    EXPECT_EQ(Hang(2), 10) << "heads have layouts of one image";
    EXPECT_EQ(Hang(4), 11);
}

TEST_F(Hanging, FiveImagesAreNotExaminedForTheLayout) {
    for (int i = 0; i < 5; ++i) Add("R", Both, Modifier('9'));
    std::swap(images[0]->dateTime, images[4]->dateTime);
    EXPECT_EQ(Hang(), 11);
    EXPECT_THAT(Frames(), ElementsAre(5, 2, 3, 4, 1));
}

TEST_F(Hanging, TheCountIsTheSeriesAndNeverTheCollections) {
    AddPlain(5);
    EXPECT_EQ(Hang(3), 10);
    EXPECT_THAT(Frames(), ElementsAre(1, 2, 3, 4, 5));
}

// ---- deriving -------------------------------------------------------------------------------------------

TEST_F(Hanging, OnlyEmptyFieldsAreDerived) {
    Add("L", {}, {}, "16,17,");
    Add({}, Lower, {}, "16,17,");
    Add({}, {}, "other", "16,17,");
    Add({}, {}, {}, {});
    Hang();
    EXPECT_EQ(images[0]->Laterality + images[0]->AnaRegion + images[0]->AnaRegionMod, "LT-11170T-5100B");
    EXPECT_EQ(images[1]->Laterality + images[1]->AnaRegion + images[1]->AnaRegionMod, "RT-11180T-5100B");
    EXPECT_EQ(images[2]->Laterality + images[2]->AnaRegion + images[2]->AnaRegionMod, "RT-11170other");
    EXPECT_EQ(images[3]->Laterality + images[3]->AnaRegion + images[3]->AnaRegionMod, "");
}

TEST_F(Hanging, ASecondCallHangsAgainAndDerivesNothing) {
    AddTeeth({"16,17,46,47,", "26,27,36,37,"});
    EXPECT_EQ(Hang(), 8);
    EXPECT_THAT(Frames(), ElementsAre(1, 2));
    images[0]->sTeeth = "26,";
    std::swap(images[0], images[1]);
    images[0]->FrameNumber = images[1]->FrameNumber = 7;
    EXPECT_EQ(Hang(), 8);
    EXPECT_THAT(Frames(), ElementsAre(2, 1));
    EXPECT_EQ(images[1]->Laterality, "R");
}

TEST_F(Hanging, TheOldCodeOfBothJawsIsRewritten) {
    for (const char* side : {"R", "R", "L", "L"}) Add(side, BothOld, Modifier('9'));
    Add("R", "other", {})->AnaRegion = BothOld;
    EXPECT_EQ(Hang(4), 7);
    for (const Ref<cImage>& image : images) EXPECT_EQ(image->AnaRegion, Both);
}

// ---- by time --------------------------------------------------------------------------------------------

TEST_F(Hanging, ByTimeTheOldestIsFirstAndEqualTimesInTheirOrder) {
    AddPlain(6);
    const Date noon = DateFrom({2024, 3, 9, 12, 0, 0}), morning = DateFrom({2024, 3, 9, 8, 0, 0});
    for (const std::size_t i : {0U, 2U, 5U}) images[i]->dateTime = noon;
    for (const std::size_t i : {1U, 4U}) images[i]->dateTime = morning;
    images[3]->dateTime = Date{};
    EXPECT_EQ(Hang(), 12);
    EXPECT_THAT(Frames(), ElementsAre(4, 2, 5, 1, 3, 6));
}

TEST_F(Hanging, ByTimeAnImageAtTheEndOfTheCalendarIsNotPlaced) {
    AddPlain(6);
    images[1]->dateTime = DateFrom({9999, 12, 31, 23, 59, 0});
    images[2]->dateTime = DateFrom({9999, 12, 31, 23, 58, 59});
    images[4]->dateTime = DateFrom({9999, 12, 31, 23, 59, 59});
    Hang();
    EXPECT_THAT(Frames(), ElementsAre(1, 0, 4, 2, 0, 3));
}

TEST_F(Hanging, TwentyOneImagesAreNumberedWithoutALayout) {
    AddPlain(21);
    std::reverse(images.begin(), images.end());
    EXPECT_EQ(Hang(), 0);
    EXPECT_EQ(series->TemplateID, 0);
    for (std::size_t i = 0; i < 21; ++i) EXPECT_EQ(images[i]->FrameNumber, static_cast<Long>(21 - i));
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(Hanging, AnImageThatOccursTwiceOccupiesOneFrame) {
    AddPlain(2);
    images.push_back(images[0]);
    Hang();
    EXPECT_EQ(images[1]->FrameNumber, 2) << "an image that has a frame is not looked at again";
    EXPECT_EQ(images[0]->FrameNumber, 0) << "and then it is met twice in its frame";
}

// ---- the rows of the layouts ----------------------------------------------------------------------------

struct Row {
    Long frame;
    const char* laterality;
    const char* region;
    const char* modifiers;
};

const Row RowsOf18[] = {
    {1, "R", Upper, "CBA"}, {2, "R", Upper, "98"},   {3, "R", Upper, "765"},  {4, "B", Upper, "567"},
    {5, "L", Upper, "765"}, {6, "L", Upper, "98"},   {7, "L", Upper, "CBA"},  {8, "R", Both, "CBA"},
    {9, "R", Both, "98"},   {10, "L", Both, "98"},   {11, "L", Both, "CBA"},  {12, "R", Lower, "CBA"},
    {13, "R", Lower, "98"}, {14, "R", Lower, "765"}, {15, "B", Lower, "567"}, {16, "L", Lower, "765"},
    {17, "L", Lower, "98"}, {18, "L", Lower, "CBA"},
};

const Row RowsOf20[] = {
    {1, "R", Upper, "CBA"}, {2, "R", Upper, "98"},   {3, "R", Upper, "765"},  {5, "B", Upper, "765"},
    {7, "L", Upper, "765"}, {8, "L", Upper, "98"},   {9, "L", Upper, "CBA"},  {11, "R", Both, "98"},
    {10, "R", Both, "CBA"}, {12, "L", Both, "98"},   {13, "L", Both, "CBA"},  {14, "R", Lower, "CBA"},
    {15, "R", Lower, "98"}, {16, "R", Lower, "765"}, {17, "B", Lower, "567"}, {18, "L", Lower, "765"},
    {19, "L", Lower, "98"}, {20, "L", Lower, "CBA"},
};

TEST_F(Hanging, EachRowOf18TakesItsImage) {
    for (const Row& row : RowsOf18)
        for (const char last : String("CBA98765")) {
            const bool fits = String(row.modifiers).find(last) != String::npos;
            const Long frame = FrameOf(18, row.laterality, row.region, Modifier(last));
            EXPECT_EQ(frame == row.frame, fits) << row.frame << last;
        }
    EXPECT_EQ(series->TemplateID, 6);
}

TEST_F(Hanging, EachRowOf20TakesItsImage) {
    for (const Row& row : RowsOf20)
        for (const char last : String("CBA98765")) {
            const bool fits = String(row.modifiers).find(last) != String::npos;
            const Long frame = FrameOf(20, row.laterality, row.region, Modifier(last));
            EXPECT_EQ(frame == row.frame, fits) << row.frame << last;
        }
    EXPECT_EQ(series->TemplateID, 5);
}

TEST_F(Hanging, SideAndRegionMustMatchExactly) {
    for (const auto& [laterality, region] :
         {std::pair{"r", Upper}, std::pair{"", Upper}, std::pair{"R ", Upper}, std::pair{"R", "t-11170"},
          std::pair{"R", Skull}, std::pair{"R", ""}, std::pair{"U", Lower}, std::pair{"B", Both}})
        EXPECT_EQ(FrameOf(18, laterality, region, Modifier('B')), 0) << laterality << region;
}

TEST_F(Hanging, AnEarlierModifierBeatsAnEarlierImage) {
    const auto priority = [&](const Row& row, Long count) {
        images.clear();
        const String modifiers = row.modifiers;
        for (auto last = modifiers.rbegin(); last != modifiers.rend(); ++last)
            Add(row.laterality, row.region, Modifier(*last));
        Hang(count);
        EXPECT_EQ(images.back()->FrameNumber, row.frame) << row.frame << " of " << count;
        for (std::size_t i = 0; i + 1 < images.size(); ++i) EXPECT_NE(images[i]->FrameNumber, row.frame);
    };
    for (const Row& row : RowsOf18) priority(row, 18);
    for (const Row& row : RowsOf20) priority(row, 20);
}

TEST_F(Hanging, OfTwoImagesForOneFrameTheFirstGetsIt) {
    for (const Row& row : RowsOf18) {
        images.clear();
        for (int i = 0; i < 2; ++i) Add(row.laterality, row.region, Modifier(row.modifiers[1]));
        Hang(18);
        EXPECT_THAT(Frames(), ElementsAre(row.frame, 0));
    }
}

TEST_F(Hanging, ASecondFrontImageOfAnUpperSideHangsByTheFirstOne) {
    struct Case {
        const char* modifiers;
        std::vector<Long> right, left;
    };
    for (const auto& [modifiers, right, left] :
         {Case{"76", {3, 4}, {7, 6}}, Case{"75", {3, 4}, {7, 6}}, Case{"756", {3, 0, 4}, {7, 0, 6}},
          Case{"77", {3, 0}, {7, 0}}, Case{"66", {3, 0}, {7, 0}}, Case{"65", {3, 4}, {7, 6}},
          Case{"665", {3, 0, 4}, {7, 0, 6}}, Case{"55", {3, 4}, {7, 6}}})
        for (const auto& [side, frames] : {std::pair{"R", right}, std::pair{"L", left}}) {
            images.clear();
            for (const char last : String(modifiers)) Add(side, Upper, Modifier(last));
            Hang(20);
            EXPECT_EQ(Frames(), frames) << modifiers << side;
        }
}

TEST_F(Hanging, ASecondFrontImageAfterOneThatFitByItsTeethMayBe6Or5) {
    Add("R", Upper, "other", "13,");
    Add("R", Upper, Modifier('5'));
    Add("R", Upper, Modifier('6'));
    Hang(20);
    EXPECT_THAT(Frames(), ElementsAre(3, 0, 4));
}

TEST_F(Hanging, TheLowerJawOf20HasNoSecondFrontImage) {
    for (const auto& [side, frame] : {std::pair{"R", 16}, std::pair{"L", 18}}) {
        images.clear();
        Add(side, Lower, Modifier('7'));
        Add(side, Lower, Modifier('6'));
        Hang(20);
        EXPECT_THAT(Frames(), ElementsAre(frame, 0));
    }
}

TEST_F(Hanging, InTwentyTheRightPremolarBitewingIsSoughtFirst) {
    // A premolar image that shows two molars as well fits both frames of its side.
    EXPECT_EQ(FrameOf(20, "R", Both, Modifier('9'), "15,16,17,46,"), 11);
    EXPECT_EQ(FrameOf(20, "L", Both, Modifier('9'), "25,26,27,36,"), 12);
    EXPECT_EQ(FrameOf(18, "R", Both, Modifier('9'), "15,16,17,46,"), 8);
    EXPECT_EQ(FrameOf(18, "L", Both, Modifier('9'), "25,26,27,36,"), 10);
    EXPECT_EQ(FrameOf(20, "R", Upper, Modifier('9'), "15,16,17,"), 1);
    EXPECT_EQ(FrameOf(20, "L", Upper, Modifier('9'), "25,26,27,"), 8);
    EXPECT_EQ(FrameOf(20, "R", Lower, Modifier('9'), "45,46,47,"), 14);
    EXPECT_EQ(FrameOf(20, "L", Lower, Modifier('9'), "35,36,37,"), 19);
}

TEST_F(Hanging, LeftMolarsThatComeFirstTakeTheFrameOfThePremolars) {
    AddTeeth({"26,27,", "24,25,"});
    Hang(18);
    EXPECT_THAT(Frames(), ElementsAre(6, 0));
    images.clear();
    AddTeeth({"16,17,", "14,15,"});
    Hang(18);
    EXPECT_THAT(Frames(), ElementsAre(1, 2)) << "on the right the molars' frame is filled first";
}

TEST_F(Hanging, ADerivedMolarImageWithPremolarsHangsWithTheMolars) {
    Add("R", Upper, {}, "14,15,17,");
    Hang(18);
    EXPECT_EQ(images[0]->AnaRegionMod, Modifier('B'));
    EXPECT_THAT(Frames(), ElementsAre(1));
}

// ---- teeth that fit a modifier --------------------------------------------------------------------------

class TeethFitModifier : public Hanging {
protected:
    /// True if an image of these teeth, whose own modifier fits nothing, takes the frame of a modifier
    /// ahead of an image that carries the row's next one.
    bool Fits(char modifier, const String& teeth) {
        struct Probe {
            char modifier;
            const char *laterality, *region;
            char next;
            Long frame;
        };
        for (const Probe& probe :
             {Probe{'C', "R", Upper, 'B', 1}, Probe{'9', "R", Upper, '8', 2}, Probe{'7', "R", Upper, '6', 3},
              Probe{'6', "R", Upper, '5', 3}, Probe{'5', "B", Upper, '6', 4}}) {
            if (probe.modifier != modifier) continue;
            images.clear();
            Add(probe.laterality, probe.region, Modifier(probe.next));
            Add(probe.laterality, probe.region, "other", teeth);
            Hang(18);
            return images.back()->FrameNumber == probe.frame;
        }
        return false;
    }
};

TEST_F(TeethFitModifier, TwoMolarsOfOneQuadrantFitC) {
    for (const char* teeth : {"16,17,", "16,18,", "17,18,", "26,28,", "36,37,", "37,38,", "46,47,", "46,47,48,"})
        EXPECT_TRUE(Fits('C', teeth)) << teeth;
    for (const char* teeth : {"", "16,", "16,26,", "16,27,38,48,", "14,15,", "55,54,"})
        EXPECT_FALSE(Fits('C', teeth)) << teeth;
}

TEST_F(TeethFitModifier, CaninesKeepOnlyTheLowerRightMolarsFromC) {
    for (const char* canine : {"13,", "23,", "33,", "43,"}) {
        for (const char* molars : {"16,17,", "26,27,", "36,37,"})
            EXPECT_TRUE(Fits('C', String(molars) + canine)) << canine;
        EXPECT_FALSE(Fits('C', String("46,47,") + canine)) << canine;
        EXPECT_TRUE(Fits('C', String("46,47,16,18,") + canine)) << canine;
    }
}

TEST_F(TeethFitModifier, PremolarsAndFirstMolarsFit9) {
    for (const char* tooth : {"14", "15", "16", "24", "25", "26", "34", "35", "36", "44", "45", "46"}) {
        EXPECT_TRUE(Fits('9', String(tooth) + ",")) << tooth;
        for (const char* other : {"12", "22", "32", "42", "18", "28", "38", "48"})
            EXPECT_FALSE(Fits('9', String(tooth) + "," + other + ",")) << tooth << other;
    }
    EXPECT_TRUE(Fits('9', "11,13,14,"));
    EXPECT_FALSE(Fits('9', "13,17,"));
}

TEST_F(TeethFitModifier, CaninesFit7) {
    for (const char* tooth : {"13", "23", "33", "43"}) {
        EXPECT_TRUE(Fits('7', String(tooth) + ",")) << tooth;
        EXPECT_TRUE(Fits('7', "12,14," + String(tooth) + ",")) << tooth;
        for (const char* other : {"11", "21", "31", "41", "15", "25", "35", "45"})
            EXPECT_FALSE(Fits('7', String(tooth) + "," + other + ",")) << tooth << other;
    }
    EXPECT_FALSE(Fits('7', "12,"));
}

TEST_F(TeethFitModifier, LateralIncisorsFit6) {
    for (const char* tooth : {"12", "22", "32", "42"}) {
        EXPECT_TRUE(Fits('6', String(tooth) + ",")) << tooth;
        EXPECT_TRUE(Fits('6', "11,14," + String(tooth) + ",")) << tooth;
        for (const char* other : {"15", "25", "35", "45"})
            EXPECT_FALSE(Fits('6', String(tooth) + "," + other + ",")) << tooth << other;
    }
    EXPECT_FALSE(Fits('6', "11,"));
}

TEST_F(TeethFitModifier, CentralIncisorsFit5) {
    for (const char* tooth : {"11", "21", "31", "41"}) {
        EXPECT_TRUE(Fits('5', String(tooth) + ",")) << tooth;
        EXPECT_TRUE(Fits('5', "12,15," + String(tooth) + ",")) << tooth;
        for (const char* other : {"14", "24", "34", "44"})
            EXPECT_FALSE(Fits('5', String(tooth) + "," + other + ",")) << tooth << other;
    }
    EXPECT_FALSE(Fits('5', "12,"));
}

TEST_F(TeethFitModifier, TheOtherModifiersMatchByTheirCodeOnly) {
    EXPECT_EQ(FrameOf(18, "R", Upper, "other", "17,"), 0) << "a molar alone is neither C nor, by its teeth, B or A";
    EXPECT_EQ(FrameOf(18, "R", Upper, "other", "14,12,15,"), 0) << "8 by derivation, and by no test of the teeth";
    EXPECT_EQ(FrameOf(18, "R", Upper, Modifier('A'), "11,"), 1);
}

TEST_F(TeethFitModifier, PrimaryTeethFitNothing) { EXPECT_EQ(FrameOf(18, "R", Upper, "other", "51,52,53,54,55,"), 0); }

TEST_F(TeethFitModifier, AnInvalidToothStringRaisesWhenItIsReached) {
    Add("R", Upper, Modifier('C'), "no teeth");
    Add("R", Upper, Modifier('8'), "1112");
    Add("L", "other", "other", "1112");
    EXPECT_EQ(FailureOf([&] { Hang(18); }).Number, 91) << "9 is sought ahead of 8, and by the teeth too";
    EXPECT_EQ(series->TemplateID, 6) << "stored by then";
    EXPECT_THAT(Frames(), ElementsAre(1, 0, 0));
    images.erase(images.begin() + 1);
    EXPECT_EQ(Hang(18), 6) << "where the code matches or side and region don't, teeth are not read";
    EXPECT_THAT(Frames(), ElementsAre(1, 0));
}

// ---- bitewings --------------------------------------------------------------------------------------------

TEST_F(Hanging, FourBitewingsFirstPass) {
    struct Case {
        const char* side;
        char modifier;
        Long frame;
    };
    for (const auto& [side, modifier, frame] :
         {Case{"R", 'B', 1}, Case{"R", 'C', 1}, Case{"R", '8', 2}, Case{"R", '9', 2}, Case{"L", '8', 3},
          Case{"L", '9', 3}, Case{"L", 'B', 4}, Case{"L", 'C', 4}, Case{"R", '7', 0}, Case{"L", '5', 0}})
        EXPECT_EQ(FrameOf(4, side, Both, Modifier(modifier)), frame) << side << modifier;
    EXPECT_EQ(series->TemplateID, 7);
}

TEST_F(Hanging, FourBitewingsSecondPassUsesTheRemainingImages) {
    struct Case {
        const char* side;
        const char* modifiers;
        std::vector<Long> frames;
    };
    for (const auto& [side, modifiers, frames] :
         {Case{"R", "A", {1}}, Case{"R", "AA", {1, 2}}, Case{"R", "99", {2, 1}}, Case{"R", "88", {2, 0}},
          Case{"R", "BB", {1, 0}}, Case{"R", "BA", {1, 2}}, Case{"R", "9A", {2, 1}}, Case{"R", "99B", {2, 0, 1}},
          Case{"R", "899", {2, 1, 0}}, Case{"L", "A", {3}}, Case{"L", "AA", {3, 4}}, Case{"L", "99", {3, 4}},
          Case{"L", "88", {3, 0}}, Case{"L", "CC", {4, 0}}, Case{"L", "CA", {4, 3}}, Case{"L", "9A", {3, 4}},
          Case{"L", "899", {3, 4, 0}}}) {
        images.clear();
        for (const char last : String(modifiers)) Add(side, Both, Modifier(last));
        Hang(4);
        EXPECT_EQ(Frames(), frames) << side << modifiers;
    }
}

TEST_F(Hanging, FourBitewingsIgnoreTheTeeth) {
    Add("R", Both, "other", "16,17,46,47,");
    Add("L", Both, "other", "no teeth");
    EXPECT_EQ(Hang(4), 7);
    EXPECT_THAT(Frames(), ElementsAre(0, 0));
}

TEST_F(Hanging, TwoBitewingsArePlacedByTheirSideOnly) {
    Add("L", Both, "other", "no teeth");
    Add("R", Both);
    EXPECT_EQ(Hang(), 8);
    EXPECT_THAT(Frames(), ElementsAre(2, 1));
    images.clear();
    for (const char* side : {"R", "R", "L", "L"}) Add(side, Both);
    EXPECT_EQ(Hang(2), 8);
    EXPECT_THAT(Frames(), ElementsAre(1, 0, 2, 0));
}

// ---- the template's own order -----------------------------------------------------------------------------

class TemplateOrder : public Hanging {
protected:
    /// A template of layout 6, under another key, with slots of (number, sequence).
    void StoreTemplate(const std::vector<std::pair<Long, Long>>& slots) {
        Run("DELETE FROM TemplateCard_T");
        Run("DELETE FROM TemplateAttribute_T");
        Run("INSERT INTO TemplateCard_T (TemplateID, TCName, TCDicomId) VALUES (77, 'wanted', 6), (6, "
            "'other', 99)");
        for (const auto& [number, sequence] : slots)
            Run("INSERT INTO TemplateAttribute_T (TemplateID, TAGroupName, TARotation, TANumberInTemplate, "
                "TASequence) "
                "VALUES (77, '', 0, " +
                CStr(number) + ", " + CStr(sequence) + ")");
        Run("INSERT INTO TemplateAttribute_T (TemplateID, TAGroupName, TARotation, TANumberInTemplate, "
            "TASequence) "
            "VALUES (6, '', 0, 50, 1)");
    }
};

TEST_F(TemplateOrder, IsReadByTheLayoutsNumberWhereNoImageFoundAFrame) {
    StoreTemplate({{3, 1}, {1, 2}, {2, 3}});
    AddPlain(3);
    std::swap(images[0], images[2]);
    EXPECT_EQ(Hang(10), 6);
    EXPECT_THAT(Frames(), ElementsAre(2, 1, 3)) << "the oldest image takes the slot of the first sequence";
    constexpr const char* slots =
        "SELECT TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation, TAFullViewWidth, "
        "TAFullViewHeight, "
        "TAFullViewPosX, TAFullViewPosY,TAPreviewWidth, TAPreviewHeight, TAPreviewPosX, TAPreviewPosY, "
        "TANumberInTemplate , TAProportions, TAComments, TATGId FROM TemplateAttribute_T WHERE TemplateID = "
        "77 "
        "ORDER BY TANumberInTemplate";
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM TemplateCard_T WHERE TCDicomId = 6", slots, slots));
}

TEST_F(TemplateOrder, IsNotReadOnceOneImageFoundAFrame) {
    StoreTemplate({{3, 1}});
    AddPlain(3);
    Add("R", Upper, Modifier('B'));
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(0, 0, 0, 1));
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(TemplateOrder, PassesOverSequencesWithoutASlot) {
    StoreTemplate({{5, 2}, {9, 4}});
    AddPlain(4);
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(5, 9, 0, 0));
}

TEST_F(TemplateOrder, EndsWithTheLastImage) {
    StoreTemplate({{5, 2}, {9, 4}});
    AddPlain(3);
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(5, 0, 0));
    images.resize(1);
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(0));
}

TEST_F(TemplateOrder, OfTwoSlotsOfOneSequenceTheLowerNumberCounts) {
    StoreTemplate({{8, 1}, {4, 1}, {6, 2}});
    AddPlain(2);
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(4, 6));
}

TEST_F(TemplateOrder, AssignsOneSlotToAnImageThatOccursTwice) {
    StoreTemplate({{4, 1}, {5, 2}, {6, 3}});
    AddPlain(2);
    images.push_back(images[0]);
    Hang(10);
    EXPECT_EQ(images[0]->FrameNumber, 4) << "an image that has a frame is not looked at again";
    EXPECT_EQ(images[1]->FrameNumber, 5);
}

TEST_F(TemplateOrder, WithoutTheTemplateNoImageIsHung) {
    AddPlain(2);
    EXPECT_EQ(Hang(10), 6);
    EXPECT_THAT(Frames(), ElementsAre(0, 0));
    EXPECT_EQ(Sent().size(), 2U) << "the template, and slots of no template";
}

TEST_F(TemplateOrder, PlacesNoImageOfTheEndOfTheCalendar) {
    LoadLayouts();
    AddPlain(2);
    for (const Ref<cImage>& image : images) image->dateTime = DateFrom({9999, 12, 31, 23, 59, 0});
    EXPECT_EQ(Hang(), 10);
    EXPECT_THAT(Frames(), ElementsAre(0, 0));
    EXPECT_EQ(Sent().size(), 3U);
    log.statements.clear();
    EXPECT_EQ(Hang(21), 0);
    EXPECT_THAT(Sent(), IsEmpty()) << "without a layout there is nothing to fall back on";
}

TEST_F(TemplateOrder, OfTheStandardLayoutsFillsEachFrameOnce) {
    LoadLayouts();
    for (const Long count : {18, 20}) {
        images.clear();
        AddPlain(count);
        Hang();
        std::vector<Long> frames = Frames();
        EXPECT_EQ(images[0]->FrameNumber, count == 18 ? 8 : 10) << "bitewings first, the right molars ahead";
        std::sort(frames.begin(), frames.end());
        for (Long i = 1; i <= count; ++i) EXPECT_EQ(frames[static_cast<std::size_t>(i) - 1], i);
    }
}

TEST_F(TemplateOrder, ADoubleFrameEmptiesItsSecondImageAndAllAfterIt) {
    StoreTemplate({{1, 1}, {3, 2}, {3, 3}, {2, 4}});
    AddPlain(4);
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(1, 3, 0, 0));
    std::rotate(images.begin(), images.begin() + 1, images.end());
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(3, 0, 0, 0)) << "the walk goes by the collection, not by time";
}

TEST_F(TemplateOrder, ADoubleFrameBeyondTheCountOfImagesIsNotSeen) {
    StoreTemplate({{3, 1}, {3, 2}});
    AddPlain(2);
    Hang(10);
    EXPECT_THAT(Frames(), ElementsAre(3, 3));
}

// ---- failures ---------------------------------------------------------------------------------------------

TEST_F(Hanging, AnImageCountBeyond16BitsRaisesAndChangesNothing) {
    AddTeeth({"16,"});
    series->TemplateID = 42;
    for (const Long count : {32768, -32769}) EXPECT_EQ(FailureOf([&] { Hang(count); }).Number, 6) << count;
    EXPECT_EQ(series->TemplateID, 42);
    EXPECT_EQ(images[0]->FrameNumber, 99);
    EXPECT_EQ(images[0]->Laterality, "");
}

TEST_F(Hanging, AFrameSumBeyond16BitsRaisesAfterThePlacing) {
    AddPlain(255);
    EXPECT_EQ(Hang(), 0);
    EXPECT_EQ(images.back()->FrameNumber, 255);
    Add();
    EXPECT_EQ(FailureOf([&] { Hang(); }).Number, 6);
    EXPECT_EQ(images.back()->FrameNumber, 256);
    EXPECT_EQ(images.front()->FrameNumber, 1);
}

TEST_F(Hanging, MoreImagesThan16BitsCountRaise) {
    for (Long i = 0; i < 32768; ++i) {
        images.push_back(New<cImage>());
        images.back()->dateTime = Date{40000.0 + i};
        images.back()->FrameNumber = 99;
    }
    EXPECT_EQ(FailureOf([&] { Hang(21); }).Number, 6);
    EXPECT_THAT(Frames(), Each(0)) << "none is placed by its time";
    EXPECT_EQ(FailureOf([&] { Hang(10); }).Number, 6);
    EXPECT_THAT(Frames(), Each(0));
    images.pop_back();
    for (const Ref<cImage>& image : images) image->dateTime = DateFrom({9999, 12, 31, 23, 59, 0});
    EXPECT_EQ(Hang(21), 0) << "the greatest number of images that are counted";
}

TEST_F(Hanging, AMemberThatIsNotAnImageRaisesDuringTheIteration) {
    AddTeeth({"16,", "26,"});
    const Ref<Collection> members = New<Collection>();
    members->Add(images[0]);
    members->Add(New<cStudy>());
    members->Add(images[1]);
    series->ImgCount = 2;
    series->TemplateID = 42;
    EXPECT_EQ(FailureOf([&] { series->HangSeries(members, con); }).Number, 13);
    EXPECT_EQ(images[0]->Laterality, "R") << "walked by then";
    EXPECT_EQ(images[1]->Laterality, "");
    EXPECT_EQ(series->TemplateID, 42);
    EXPECT_THAT(Frames(), Each(99));
}

TEST_F(TemplateOrder, AFailureOfTheDatabasePassesUnchanged) {
    Run("DROP TABLE TemplateCard_T");
    AddTeeth({"55,", "65,"});
    const Error plain = FailureOf([&] { con->Execute("SELECT * FROM TemplateCard_T WHERE TCDicomId = 6"); });
    const Error failure = FailureOf([&] { Hang(10); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, plain.Source);
    EXPECT_EQ(failure.Description, plain.Description);
    EXPECT_THAT(Frames(), Each(0));
    EXPECT_EQ(images[0]->Laterality, "R");
    EXPECT_EQ(series->TemplateID, 6);
}

TEST_F(Hanging, ACollectionOfTheImagesClassHangsToo) {
    const Ref<cImages> collection = New<cImages>();
    for (const char* teeth : {"26,27,36,37,", "16,17,46,47,"}) {
        Ref<cImage> image = Add({}, {}, {}, teeth);
        collection->AddObject(image);
    }
    series->ImgCount = 2;
    EXPECT_EQ(series->HangSeries(collection, nullptr), 8) << "frames found need no connection";
    EXPECT_THAT(Frames(), ElementsAre(2, 1));
}

}  // namespace
}  // namespace OXClass

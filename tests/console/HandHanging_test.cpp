#include "AnyEngine.h"

#include <gmock/gmock.h>

/// Hanging a series by hand.
namespace {

using AnyEngine::FullMouth18;
using AnyEngine::json;
using ::testing::HasSubstr;

using Arguments = std::vector<std::string>;

/// Series 1 has two bitewings, images 1 and 2, in layout 8.
class OnServerHandHanging : public AnyEngine::Clinic {
protected:
    void SetUp() override {
        Clinic::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[10]});
        Ok({"import", Films()});
    }
    /// Returns frame and orientation of the images, and the layout.
    std::string Hung() const {
        return All("SELECT FrameNumber_INT, MirrRotStatus FROM ImageBild_T ORDER BY ImageBildID") +
               All("SELECT template_ID FROM Series_T");
    }
};

TEST_F(OnServerHandHanging, ImagesAreSwappedPlacedTurnedAndMirrored) {
    EXPECT_EQ(Hung(), "1 1\n2 1\n8\n");
    EXPECT_EQ(OkJson({"hang", "1", "--swap", "1,2"}), json({{"series", 1}, {"layout", 8}, {"changed", 2}}));
    EXPECT_EQ(Hung(), "2 1\n1 1\n8\n");
    Ok({"hang", "1", "--turn", "1=90", "--mirror", "2"});
    EXPECT_EQ(Hung(), "2 6\n1 2\n8\n") << "the numbers of TIFF";
    Ok({"hang", "--turn", "1=-90", "--mirror", "2", "1"});
    EXPECT_EQ(Hung(), "2 1\n1 1\n8\n");
    Ok({"hang", "1", "--layout", "6", "--place", "1=18", "--place", "2=0"});
    EXPECT_EQ(Hung(), "18 1\n0 1\n6\n");
    const json series = OkJson({"series", "1"});
    EXPECT_EQ(series["layout"], 6);
    Ok({"hang", "1", "--layout", "8"});
    EXPECT_EQ(Hung(), "0 1\n0 1\n8\n") << "the layout has no frame 18";
    EXPECT_EQ(OkJson({"hang", "1"})["changed"], 2) << "the rules decide again";
    EXPECT_EQ(Hung(), "1 1\n2 1\n8\n");
}

TEST_F(OnServerHandHanging, WhatCannotHangThereIsRefused) {
    const std::string before = Hung();
    const std::pair<Arguments, const char*> wrong[] = {
        {{"--place", "1=2"},
         "frame 2 would show the images 1 and 2, and nothing was changed; exchange two images with "
         "--swap 1,2"},
        {{"--place", "1=3"}, "layout 8 has no frame 3"},
        {{"--place", "1"}, "\"1\" is not a place (write IMAGE=FRAME, as 12=3)"},
        {{"--place", "x=1"}, "\"x\" is not the number of an image"},
        {{"--swap", "1,9"}, "series 1 has no image 9; see: oxclass images --series 1"},
        {{"--turn", "1=45"}, "an image turns by 90, 180 or 270 degrees"},
        {{"--layout", "99"}, "there is no layout 99"},
        {{"--layout", "6", "--mirror", "9"}, "series 1 has no image 9"},
    };
    for (const auto& [options, reason] : wrong) {
        Arguments command{"hang", "1"};
        command.insert(command.end(), options.begin(), options.end());
        EXPECT_THAT(Refused(command), HasSubstr(reason));
    }
    EXPECT_THAT(Refused({"hang", "9", "--mirror", "1"}), HasSubstr("there is no series 9"));
    EXPECT_EQ(Hung(), before);
}

TEST_F(OnServerHandHanging, TheReasonsOfThePlacesAreTold) {
    Ok({"hang", "1", "--place", "2=0", "--turn", "1=180"});
    Execute(
        "UPDATE ImageBild_T SET PriStructure = '', AnaRegion = '', AnaRegionMod = '', Laterality = '' WHERE "
        "ImageBildID = 1");
    const std::string before = Hung();
    const json why = OkJson({"hang", "1", "--explain"});
    ASSERT_EQ(why.size(), 2U);
    EXPECT_EQ(why[0]["frame"], 1);
    EXPECT_EQ(why[0]["turned"], 180);
    EXPECT_EQ(why[0]["why"], "placed by its time only: nothing of its anatomy is known");
    EXPECT_EQ(why[1]["frame"], 0);
    EXPECT_THAT(why[1]["why"].get<std::string>(), HasSubstr("no free frame of layout 8 fits: "));
    EXPECT_EQ(Hung(), before) << "nothing is changed";
}

}  // namespace

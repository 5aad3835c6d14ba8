#include "images/cImage.h"
#include "kit/Database.h"
#include "kit/Random.h"
#include "series/cSerie.h"

#include <algorithm>

/// Whole examinations: the films of the usual mounts, of which only the teeth are known, land in their
/// frames.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::IsEmpty;

class Examination : public WithDatabase {
protected:
    /// Hangs images of which only the teeth are known; returns the layout.
    Long Hang(const std::vector<String>& teeth) {
        const Ref<cSerie> series = New<cSerie>();
        const Ref<Collection> collection = New<Collection>();
        images.clear();
        for (const String& text : teeth) {
            images.push_back(New<cImage>());
            images.back()->sTeeth = text;
            collection->Add(images.back());
        }
        series->ImgCount = static_cast<Long>(teeth.size());
        return series->HangSeries(collection, con);
    }

    /// Hangs films whose place in the list is their frame, in many orders. Of each pair of films in
    /// `ahead`, by their frames, the first comes ahead of the second.
    void HangInAnyOrder(const std::vector<String>& films, Long layout,
                        const std::vector<std::pair<std::size_t, std::size_t>>& ahead = {}) {
        Random random;
        std::vector<std::size_t> order(films.size());
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = i + 1;
        for (int round = 0; round < 300; ++round) {
            std::shuffle(order.begin(), order.end(), random);
            for (const auto& [first, second] : ahead) {
                const auto a = std::find(order.begin(), order.end(), first);
                const auto b = std::find(order.begin(), order.end(), second);
                if (b < a) std::iter_swap(a, b);
            }
            std::vector<String> teeth;
            for (const std::size_t film : order) teeth.push_back(films[film - 1]);
            ASSERT_EQ(Hang(teeth), layout);
            for (std::size_t i = 0; i < order.size(); ++i)
                ASSERT_EQ(images[i]->FrameNumber, static_cast<Long>(order[i])) << images[i]->sTeeth << round;
        }
        EXPECT_THAT(Sent(), IsEmpty()) << "tables of frames need no database";
    }

    std::vector<Ref<cImage>> images;
};

TEST_F(Examination, EighteenFilmsWithWisdomTeethLandInTheirFramesInAnyOrder) {
    HangInAnyOrder({"18,17,16,", "15,14,", "13,12,", "11,21,", "22,23,", "24,25,", "26,27,28,", "18,17,16,48,47,46,",
                    "15,14,45,44,", "24,25,34,35,", "26,27,28,36,37,38,", "48,47,46,", "45,44,", "43,42,", "41,31,",
                    "32,33,", "34,35,", "36,37,38,"},
                   6);
}

// Molars of which no wisdom tooth is seen fit the premolars' modifier as well. So where the premolars'
// frame is filled first, on the left, the premolars have to come ahead.
TEST_F(Examination, EighteenFilmsLandInTheirFrames) {
    HangInAnyOrder(
        {"17,16,", "15,14,", "13,12,", "11,21,", "22,23,", "24,25,", "26,27,", "17,16,47,46,", "15,14,45,44,",
         "24,25,34,35,", "26,27,36,37,", "47,46,", "45,44,", "43,42,", "41,31,", "32,33,", "34,35,", "36,37,"},
        6, {{6, 7}, {10, 11}, {17, 18}});
}

TEST_F(Examination, TwentyFilmsWithWisdomTeethLandInTheirFramesInAnyOrder) {
    HangInAnyOrder({"18,17,16,",
                    "15,14,",
                    "13,",
                    "12,",
                    "11,21,",
                    "22,",
                    "23,",
                    "24,25,",
                    "26,27,28,",
                    "18,17,16,48,47,46,",
                    "15,14,45,44,",
                    "24,25,34,35,",
                    "26,27,28,36,37,38,",
                    "48,47,46,",
                    "45,44,",
                    "43,42,",
                    "41,31,",
                    "32,33,",
                    "34,35,",
                    "36,37,38,"},
                   5);
}

TEST_F(Examination, TwentyFilmsLandInTheirFrames) {
    HangInAnyOrder({"17,16,", "15,14,", "13,",          "12,",          "11,21,",       "22,",          "23,",
                    "24,25,", "26,27,", "17,16,47,46,", "15,14,45,44,", "24,25,34,35,", "26,27,36,37,", "47,46,",
                    "45,44,", "43,42,", "41,31,",       "32,33,",       "34,35,",       "36,37,"},
                   5, {{8, 9}, {11, 10}, {12, 13}, {19, 20}});
}

TEST_F(Examination, FourBitewingsLandInTheirFrames) {
    HangInAnyOrder({"17,16,47,46,", "15,14,45,44,", "24,25,34,35,", "26,27,36,37,"}, 7);
}

TEST_F(Examination, TwoBitewingsLandInTheirFrames) {
    HangInAnyOrder({"14,15,16,17,44,45,46,47,", "24,25,26,27,34,35,36,37,"}, 8);
}

}  // namespace
}  // namespace OXClass

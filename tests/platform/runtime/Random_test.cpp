#include "platform/runtime/Random.h"

#include "kit/Database.h"

#include <thread>

namespace {

using namespace Platform;

/// Each test draws on a thread of its own, which starts at the generator's first state.
void OnNewThread(const std::function<void()>& body) { std::thread(body).join(); }

TEST(Random, TheFirstDrawsAreThoseOfEveryThread) {
    OnNewThread([] {
        for (const float expected : {.7055475F, .533424F, .5795186F, .2895625F, .301948F, .7747401F})
            EXPECT_NEAR(Rnd(), expected, 1e-7);
    });
}

TEST(Random, ANegativeArgumentNamesItsOwnSequence) {
    OnNewThread([] {
        EXPECT_NEAR(Rnd(-1), .224007F, 1e-7);
        EXPECT_NEAR(Rnd(), .03584582F, 1e-7);
        EXPECT_NEAR(Rnd(-2), .7133257F, 1e-7);
        EXPECT_NEAR(Rnd(-0.5F), .724007F, 1e-7);
        EXPECT_NEAR(Rnd(0), .724007F, 1e-7) << "0 gives the last one again";
    });
}

TEST(Random, RandomizeKeepsTheLowByte) {
    OnNewThread([] {
        Randomize(1.0);
        EXPECT_NEAR(Rnd(), .7648737F, 1e-7);
    });
    OnNewThread([] {
        Rnd(-1);
        Randomize(42.0);
        EXPECT_NEAR(Rnd(), .9078093F, 1e-7);
    });
}

}  // namespace

#include "frame/Global.h"

#include "kit/Database.h"

#include "cards/cImagecard.h"
#include "frame/cGlobalLists.h"
#include "images/cImage.h"
#include "people/OtherPatIDs.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <thread>

namespace {

using namespace OXClass;

template <class T>
concept HasSharedInstance = requires {
    Global<T>();
};

TEST(Global, MembersKeepTheirValuesBetweenCalls) {
    Global<cStudy>()->description = "kept";
    EXPECT_EQ(Global<cStudy>()->description, "kept");
    EXPECT_EQ(Global<cStudy>(), Global<cStudy>());
    EXPECT_NE(Global<cStudy>(), New<cStudy>());
}

TEST(Global, EachThreadHasAnInstanceOfItsOwn) {
    Global<cSerie>()->Modality = "IO";
    String elsewhere = "unset";
    std::thread([&] { elsewhere = Global<cSerie>()->Modality; }).join();
    EXPECT_EQ(elsewhere, "");
    EXPECT_EQ(Global<cSerie>()->Modality, "IO");
}

TEST(Global, OnlyGlobalClassesAreShared) {
    EXPECT_TRUE(HasSharedInstance<cGlobalList>);
    EXPECT_TRUE(HasSharedInstance<cGlobalLists>);
    EXPECT_TRUE(HasSharedInstance<OtherPatIDs>);
    EXPECT_TRUE(HasSharedInstance<cStudy>);
    EXPECT_TRUE(HasSharedInstance<cSerie>);
    EXPECT_TRUE(HasSharedInstance<cImagecardAttribute>);
    EXPECT_TRUE(HasSharedInstance<cImageManipulation>);
    EXPECT_FALSE(HasSharedInstance<cImagecard>);
    EXPECT_FALSE(HasSharedInstance<cImage>);
}

}  // namespace

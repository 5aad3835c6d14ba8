#include "console/page/Orientation.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using Console::Orientation;

/// A picture of two rows, "ab" above "cd", as the orientation shows it.
std::string Shown(const Orientation& form) {
    std::string picture = "abcd";
    if (form.Mirrored()) picture = {picture[1], picture[0], picture[3], picture[2]};
    for (int turned = 0; turned < form.Degrees(); turned += 90)
        picture = {picture[2], picture[0], picture[3], picture[1]};
    return picture;
}

TEST(Orientation, EachNumberShowsThePictureAsImageFilesMeanIt) {
    EXPECT_EQ(Shown(Orientation(1)), "abcd");
    EXPECT_EQ(Shown(Orientation(2)), "badc");  // rows from the right
    EXPECT_EQ(Shown(Orientation(3)), "dcba");  // from the lower right
    EXPECT_EQ(Shown(Orientation(4)), "cdab");  // from below
    EXPECT_EQ(Shown(Orientation(5)), "acbd");  // the rows are shown as columns, from the left
    EXPECT_EQ(Shown(Orientation(6)), "cadb");  // as columns from the right
    EXPECT_EQ(Shown(Orientation(7)), "dbca");  // as columns from the right, upwards
    EXPECT_EQ(Shown(Orientation(8)), "bdac");  // as columns from the left, upwards
}

TEST(Orientation, AnyOtherNumberShowsThePictureAsItIs) {
    for (const Platform::Long number : {-1, 0, 9, 32767}) {
        EXPECT_EQ(Shown(Orientation(number)), "abcd") << number;
        EXPECT_EQ(Orientation(number).Number(), 1) << number;
    }
}

TEST(Orientation, KeepsItsNumber) {
    for (Platform::Long number = 1; number <= 8; ++number) EXPECT_EQ(Orientation(number).Number(), number);
}

TEST(Orientation, TurningAndMirroringApplyToTheShownPicture) {
    for (Platform::Long number = 1; number <= 8; ++number) {
        const Orientation form(number);
        const std::string seen = Shown(form);
        EXPECT_EQ(Shown(form.Turned(90)), (std::string{seen[2], seen[0], seen[3], seen[1]})) << number;
        EXPECT_EQ(Shown(form.Turned(-90)), (std::string{seen[1], seen[3], seen[0], seen[2]})) << number;
        EXPECT_EQ(Shown(form.Turned(180)), (std::string{seen[3], seen[2], seen[1], seen[0]})) << number;
        EXPECT_EQ(Shown(form.Turned(360)), seen) << number;
        EXPECT_EQ(Shown(form.MirroredAsSeen()), (std::string{seen[1], seen[0], seen[3], seen[2]})) << number;
    }
}

}  // namespace

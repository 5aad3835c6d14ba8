#include "platform/runtime/Services.h"

#include "kit/Database.h"

#include <fstream>
#include <set>

namespace {

using namespace Platform;
using TestKit::FailureOf;
using TestKit::TemporaryFolder;

TEST(Services, NoTwoFileTimesAreEqual) {
    std::set<std::uint64_t> times;
    for (int i = 0; i < 10000; ++i) times.insert(SystemFileTime());
    EXPECT_EQ(times.size(), 10000U);
    constexpr std::uint64_t of2024 = 133'480'000'000'000'000, of2100 = 157'470'000'000'000'000;
    EXPECT_GT(*times.begin(), of2024);
    EXPECT_LT(*times.begin(), of2100);
}

TEST(Services, GuidsAreRandomOnesOfVersionFour) {
    Guid first, second;
    ASSERT_EQ(CreateGuid(first), 0);
    ASSERT_EQ(CreateGuid(second), 0);
    EXPECT_EQ(first.Data3 >> 12, 4);
    EXPECT_EQ(first.Data4[0] & 0xC0, 0x80);
    EXPECT_TRUE(first.Data1 != second.Data1 || first.Data4 != second.Data4);
}

TEST(Services, ClockAndTimerReturnTheSameTime) {
    const DateParts now = PartsOf(Now());
    const double seconds = now.Hour * 3600 + now.Minute * 60 + now.Second;
    const double apart = std::abs(static_cast<double>(Timer()) - seconds);
    EXPECT_TRUE(apart < 5 || apart > 86390) << apart;
}

TEST(Services, DeletingSaysWhyItCouldNot) {
    const TemporaryFolder folder;
    const String path = (folder.Path() / "file").string();
    EXPECT_EQ(FailureOf([&] { DeleteFile(path); }).Number, err::FileNotFound);
    EXPECT_FALSE(FileExists(path));
    std::ofstream(path) << "x";
    EXPECT_TRUE(FileExists(path));
    EXPECT_FALSE(FileExists(folder.Path().string())) << "a folder is not a file";
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    EXPECT_EQ(FailureOf([&] { DeleteFile(path); }).Number, err::PermissionDenied);
    EXPECT_TRUE(FileExists(path));
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    DeleteFile(path);
    EXPECT_FALSE(FileExists(path));
}

TEST(Services, AClientSeesTheTextBoxes) {
    TestKit::TextBoxes boxes;
    MsgBox("fel", 0);
    EXPECT_EQ(boxes.shown, std::vector<String>{"fel"});
}

TEST(Services, TheInstalledMessageHandlerIsCalled) {
    int pumped = 0;
    const auto before = TheHost().DoEvents;
    TheHost().DoEvents = [&] { ++pumped; };
    DoEvents();
    TheHost().DoEvents = before;
    DoEvents();
    EXPECT_EQ(pumped, 1);
}

}  // namespace

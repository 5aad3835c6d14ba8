#include "console/WholeFile.h"
#include "console/Database.h"
#include "kit/Database.h"

#include <fstream>
#include <gmock/gmock.h>

namespace {

namespace fs = std::filesystem;
using namespace Console;

class WholeFileTest : public ::testing::Test {
protected:
    static std::string ContentOf(const fs::path& path) {
        std::ifstream in(path);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    TestKit::TemporaryFolder folder;
    fs::path file = folder.Path() / "file";
};

TEST_F(WholeFileTest, ItReplacesTheEarlierFileAndLeavesNoOtherFile) {
    WriteWholeFile(file, "first");
    WriteWholeFile(file, "second");
    EXPECT_EQ(ContentOf(file), "second");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644));
}

TEST_F(WholeFileTest, AnUnfinishedFileOfAnotherProgramIsUnchanged) {
    const fs::path other = file.string() + ".part" + std::to_string(getpid());
    std::ofstream(other) << "theirs";
    WriteWholeFile(file, "mine");
    EXPECT_EQ(ContentOf(file), "mine");
    EXPECT_EQ(ContentOf(other), "theirs");
}

TEST_F(WholeFileTest, AFolderIsNotReplaced) {
    fs::create_directory(file);
    EXPECT_THROW(WriteWholeFile(file, "text"), UserError);
    EXPECT_TRUE(fs::is_directory(file));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1);
}

TEST(StoredPath, NamesThatLeadOutOfTheRootAreRejected) {
    EXPECT_EQ(StoredPath("/root", "0_\\x.dcm"), fs::path("/root/0_/x.dcm"));
    for (const char* bad : {"..\\x", "0_\\..\\..\\x", "/etc/passwd", "\\x", "0_\\\\x", "0_/../x"})
        EXPECT_THROW(StoredPath("/root", bad), UserError) << bad;
}

}  // namespace

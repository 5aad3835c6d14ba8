#include "console/Clinic.h"
#include "console/StoredFile.h"
#include "kit/Database.h"

#include <fstream>

namespace {

namespace fs = std::filesystem;
using namespace Console;

class StoredFileTest : public ::testing::Test {
protected:
    StoredFileTest() { std::ofstream(from) << "film"; }
    TestKit::TemporaryFolder folder;
    fs::path from = folder.Path() / "from", to = folder.Path() / "a" / "b" / "to";
};

TEST_F(StoredFileTest, ACopyThatIsNotKeptGoesAgain) {
    {
        const StoredFile copy(from, to);
        EXPECT_EQ(fs::file_size(to), 4U);
    }
    EXPECT_FALSE(fs::exists(to));
    {
        StoredFile copy(from, to);
        copy.Keep();
    }
    EXPECT_TRUE(fs::exists(to));
}

TEST_F(StoredFileTest, AnEqualFileIsTakenForTheCopyAndStays) {
    fs::create_directories(to.parent_path());
    std::ofstream(to) << "film";
    { const StoredFile copy(from, to); }
    EXPECT_TRUE(fs::exists(to));
}

TEST_F(StoredFileTest, ADifferentFileIsLeftAlone) {
    fs::create_directories(to.parent_path());
    std::ofstream(to) << "FILM";
    EXPECT_THROW(StoredFile(from, to), Complaint);
    EXPECT_EQ(std::distance(fs::directory_iterator(to.parent_path()), {}), 1);
}

TEST_F(StoredFileTest, ASourceThatIsGoneLeavesNothing) {
    EXPECT_THROW(StoredFile(folder.Path() / "none", to), Complaint);
    EXPECT_TRUE(fs::is_empty(to.parent_path()));
}

TEST(StoredPath, NamesThatLeadOutOfTheRootAreRefused) {
    EXPECT_EQ(StoredPath("/root", "0_\\x.dcm"), fs::path("/root/0_/x.dcm"));
    for (const char* bad : {"..\\x", "0_\\..\\..\\x", "/etc/passwd", "\\x", "0_\\\\x", "0_/../x"})
        EXPECT_THROW(StoredPath("/root", bad), Complaint) << bad;
}

}  // namespace

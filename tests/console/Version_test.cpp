#include "ProgramTest.h"

/// The version of the program.
namespace {

class Version : public ProgramTest::Program {};

TEST_F(Version, IsThatOfTheLibraryFileAndOfTheTypeLibrary) {
    EXPECT_EQ(Ok({"--version"}), "OXClass 1.00.0088 (type library 1.30)\n");
}

}  // namespace

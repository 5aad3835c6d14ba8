#include "ProgramTest.h"

/// The version of the program.
namespace {

class Version : public ProgramTest::Program {};

TEST_F(Version, IsThatOfTheLibraryFileAndOfTheTypeLibraryWithTheEnginesAndTheBuild) {
    EXPECT_THAT(Ok({"--version"}),
                testing::MatchesRegex("OXClass 1\\.00\\.0088 \\(type library 1\\.30\\)\n"
                                      "engines: SQLite 3\\.[0-9.]+, PostgreSQL \\(libpq [0-9]+\\.[0-9]+\\), "
                                      "MSDASQL \\(ODBC [0-9.]+\\)\n"
                                      "build: (debug|release), (clang|gcc) [0-9.]+\n"));
}

}  // namespace

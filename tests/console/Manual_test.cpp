#include "ProgramTest.h"
#include "kit/Files.h"

#include <cstdio>
#include <fstream>
#include <gmock/gmock.h>

/// The completion of shells and the man page.
namespace {

using namespace ProgramTest;
using ::testing::HasSubstr;

class Manual : public Program {
protected:
    /// Returns the output of a shell command.
    static std::string Shell(const std::string& command) {
        std::string text;
        FILE* const pipe = popen(command.c_str(), "r");
        char buffer[4096];
        for (std::size_t size = 0; (size = fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, size);
        EXPECT_EQ(pclose(pipe), 0) << command;
        return text;
    }
    /// Returns what bash offers behind words of a command line; the last one is begun.
    std::string Completed(const std::string& words) {
        const fs::path script = folder.Path() / "completion";
        std::ofstream(script) << Try({"completion"}).out;
        return Shell("bash -c 'source " + script.string() + "; COMP_WORDS=(" + words +
                     "); COMP_CWORD=$((${#COMP_WORDS[@]}-1)); _oxclass; echo ${COMPREPLY[@]}'");
    }
};

TEST_F(Manual, TheShellCompletesCommandsAndOptions) {
    EXPECT_EQ(Completed("oxclass undel"), "undelete\n");
    EXPECT_EQ(Completed("oxclass card mo"), "move\n");
    EXPECT_EQ(Completed("oxclass card move --mir"), "--mirror\n");
    EXPECT_EQ(Completed("oxclass --db x.db move series 1 --dr"), "--dry-run\n");
    EXPECT_THAT(Completed("oxclass images --t"), HasSubstr("--tooth --type"));
    EXPECT_EQ(Completed("oxclass nonsense"), "\n");
}

TEST_F(Manual, TheManPageHasAllCommandsWithTheirOptions) {
    const std::string page = (folder.Path() / "oxclass.1").string();
    ASSERT_EQ(Try({"man", "-o", page}).code, 0);
    EXPECT_EQ(TestKit::Content(page), Try({"man"}).out);
    const std::string text = TestKit::Content(page);
    for (const char* part : {".SS \\&oxclass card move [CARD] [PLACED]", ".SS \\&oxclass delete image [IMAGE]",
                             ".B \\&\\-\\-dry\\-run", ".SH EXIT STATUS", "Example: oxclass undelete T1"})
        EXPECT_THAT(text, HasSubstr(part));
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; ++at)
        EXPECT_NE(text.compare(at, 2, "\n'"), 0)
            << "a line that begins with a quote is a request: " << text.substr(at, 80);
}

}  // namespace

#pragma once

namespace Console {

/// Exit codes that scripts can use.
enum ExitCode : int {
    Done = 0,
    Failed = 1,      ///< nothing was done; one line on standard error says why and what to do
    WrongUsage = 2,  ///< the command line is not understood
    PartlyDone = 3,  ///< the command was completed, but skipped files or rows that could not be read
};

/// Runs the program `oxclass` with its command line and returns its exit code. Never throws.
int RunProgram(int argc, const char* const* argv);

}  // namespace Console

#include "console/Program.h"

#include <csignal>

int main(int argc, char** argv) {
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may grow no further is a failed write, told like any other
    return Console::RunProgram(argc, argv);
}

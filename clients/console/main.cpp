#include "console/Program.h"

#include <csignal>

int main(int argc, char** argv) {
    std::signal(SIGXFSZ, SIG_IGN);  // a write beyond the limit of a file's size then fails and is reported
    return Console::RunProgram(argc, argv);
}

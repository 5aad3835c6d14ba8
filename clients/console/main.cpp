#include "console/Program.h"

int main(int argc, char** argv) { return Console::RunProgram(argc, argv); }

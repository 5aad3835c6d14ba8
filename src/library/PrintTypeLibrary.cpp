#include "library/TypeLibrary.h"

#include <fstream>

/// Writes the type library as interface-definition text to the file that the argument names. Returns 1 if that fails.
int main(int count, char** arguments) {
    if (count != 2) return 1;
    std::ofstream out(arguments[1], std::ios::binary);
    out << OXClass::TypeLibraryText() << std::flush;
    return out ? 0 : 1;
}

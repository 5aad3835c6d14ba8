#pragma once

// The functions that the tests use and that Windows has under other names. It is included in front of each of their
// files.

#include <cstdlib>
#include <direct.h>
#include <io.h>
#include <string>

inline char* mkdtemp(char* pattern) { return _mktemp(pattern) && _mkdir(pattern) == 0 ? pattern : nullptr; }

inline int setenv(const char* name, const char* value, int) {
    return _putenv((std::string(name) + "=" + value).c_str());
}
inline int unsetenv(const char* name) { return _putenv((std::string(name) + "=").c_str()); }

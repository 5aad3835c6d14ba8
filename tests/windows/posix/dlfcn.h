#pragma once

// What the tests use of <dlfcn.h>, by the functions of Windows. It does not include the headers of the system, because
// the tests of the boundary are compiled with the platform's own declarations of the same types.

extern "C" __declspec(dllimport) void* __stdcall LoadLibraryA(const char* path);
extern "C" __declspec(dllimport) void (*__stdcall GetProcAddress(void* library, const char* name))();

constexpr int RTLD_NOW = 0, RTLD_LOCAL = 0;

inline void* dlopen(const char* path, int) { return LoadLibraryA(path); }
inline void* dlsym(void* library, const char* name) { return reinterpret_cast<void*>(GetProcAddress(library, name)); }

#pragma once

/// The functions of Windows, without the macros that rename functions of the platform.

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#undef DeleteFile
#undef GetClassInfo
#undef Yield

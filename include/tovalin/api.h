#pragma once

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 202002L
#error "Tovalin needs C++20: compile with -std=c++20 or later"
#endif

// TOVALIN_API marks what a host may call: everything else stays hidden inside
// the shared library. A macro, because no other C++ construct reaches the linker.
#if defined(_WIN32)
#if defined(TOVALIN_BUILDING_SHARED)
#define TOVALIN_API __declspec(dllexport)
#elif defined(TOVALIN_USING_SHARED)
#define TOVALIN_API __declspec(dllimport)
#else
#define TOVALIN_API
#endif
#else
#define TOVALIN_API __attribute__((visibility("default")))
#endif

#pragma once

/// @file
/// Marks what a shared libvelhls hands out: everything else stays hidden.
///
/// A static library needs no mark. A build of velhls as a shared library defines VELHLS_SHARED for itself and
/// for its users (the CMake target and the pkg-config file do so), and VELHLS_BUILDING for itself alone.

/// @def VELHLS_API
/// Marks what users of a shared libvelhls may call.

#if defined(VELHLS_SHARED) && defined(_WIN32)
#if defined(VELHLS_BUILDING)
#define VELHLS_API __declspec(dllexport)
#else
#define VELHLS_API __declspec(dllimport)
#endif
#elif defined(VELHLS_SHARED)
#define VELHLS_API __attribute__((visibility("default")))
#else
#define VELHLS_API
#endif

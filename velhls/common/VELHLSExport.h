#pragma once

/// @file
/// Marks what the shared libraries hand out: everything else stays hidden.
///
/// A static library needs no mark. A build of velhls as shared libraries defines VELHLS_SHARED for itself and
/// for its users (the CMake targets and the pkg-config files do so), and for each library alone VELHLS_BUILDING, or
/// VELHLS_BUILDING_CHECK.

/// @def VELHLS_API
/// Marks what users of a shared libvelhls may call.

/// @def VELHLS_CHECK_API
/// Marks what users of a shared libvelhls-check may call.

/// @def VELHLS_HIDDEN
/// Marks a private member of a class that is handed out: it stays inside the shared library.

#if defined(VELHLS_SHARED) && defined(_WIN32)
#if defined(VELHLS_BUILDING)
#define VELHLS_API __declspec(dllexport)
#else
#define VELHLS_API __declspec(dllimport)
#endif
#if defined(VELHLS_BUILDING_CHECK)
#define VELHLS_CHECK_API __declspec(dllexport)
#else
#define VELHLS_CHECK_API __declspec(dllimport)
#endif
#elif defined(VELHLS_SHARED)
#define VELHLS_API __attribute__((visibility("default")))
#define VELHLS_CHECK_API __attribute__((visibility("default")))
#else
#define VELHLS_API
#define VELHLS_CHECK_API
#endif

#if defined(VELHLS_SHARED) && !defined(_WIN32)
#define VELHLS_HIDDEN __attribute__((visibility("hidden")))
#else
#define VELHLS_HIDDEN
#endif

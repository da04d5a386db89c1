#include "velhls/common/VELHLSVersion.h"

// The build hands in the two facts that only it knows: the project's version and the build type.
#ifndef VELHLS_VERSION
#error "VELHLS_VERSION must be defined by the build, for example as \"1.0.0\""
#endif
#ifndef VELHLS_BUILD_TYPE
#define VELHLS_BUILD_TYPE "unspecified build type"
#endif

#define VELHLS_TEXT_OF(value) #value
#define VELHLS_DOTTED(major, minor, patch) \
    VELHLS_TEXT_OF(major) "." VELHLS_TEXT_OF(minor) "." VELHLS_TEXT_OF(patch)
#if defined(__clang__)
#define VELHLS_COMPILER "Clang " VELHLS_DOTTED(__clang_major__, __clang_minor__, __clang_patchlevel__)
#elif defined(__GNUC__)
#define VELHLS_COMPILER "GNU " VELHLS_DOTTED(__GNUC__, __GNUC_MINOR__, __GNUC_PATCHLEVEL__)
#elif defined(_MSC_VER)
#define VELHLS_COMPILER "MSVC " VELHLS_TEXT_OF(_MSC_VER)
#else
#define VELHLS_COMPILER "unknown compiler"
#endif

const double ZORHLSManifestLibVersionNumber = 1.0;
const char* const ZORHLSManifestLibVersionString =
    "velhls " VELHLS_VERSION " (" VELHLS_COMPILER ", " VELHLS_BUILD_TYPE ")";

#pragma once

#include "velhls/common/VELHLSExport.h"

extern "C" {

/// The version of the library's interface as a number: 1.0.
VELHLS_API extern const double ZORHLSManifestLibVersionNumber;

/// Names the library, its semantic version and the build: the compiler and the build type, for example
/// "velhls 1.0.0 (GNU 12.2.0, Release)". Two builds of the same source with the same compiler and build type
/// hold the same text: it says nothing of when or where.
VELHLS_API extern const char* const ZORHLSManifestLibVersionString;
}

// Internal to the libraries, not installed: marks what libvelhls hands out to libvelhls-check alone.
//
// In a shared libvelhls these names have a symbol version of their own, which carries the exact release (velhls.map.in):
// they may change with every release. tests/project/private_symbols.txt lists them.
#pragma once

#include "velhls/common/VELHLSExport.h"

#define VELHLS_PRIVATE_API VELHLS_API

// WARM: the allocator keeps what it was given back, as it does in a service that has run for a while. Without this
// glibc may give a freed model back to the kernel and fault it in again, which costs more than all the parsing.
#pragma once

#include <malloc.h>

/// For the programs that measure, never for the library. To be called before anything is measured.
inline void keepFreedMemory() {
    constexpr int gibibyte = 1 << 30;
    mallopt(M_TRIM_THRESHOLD, gibibyte);
    mallopt(M_TOP_PAD, gibibyte / 8);
    mallopt(M_MMAP_THRESHOLD, gibibyte);
}

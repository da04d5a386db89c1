// How much memory is allocated with operator new, counted by replacing it.
#pragma once

#include <cstddef>

namespace memory {

/// Begins to look for the peak; returns what is allocated now.
std::size_t startPeak();

/// The most that was allocated at once since then, less what was allocated at the start.
std::size_t peakSince(std::size_t start);

}  // namespace memory

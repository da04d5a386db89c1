// Replaces the program's operator new and delete by ones that count what the heap holds.
#pragma once

#include <cstddef>

namespace heap {

/// Bytes in blocks that are in use, with what malloc adds to each.
std::size_t bytesHeld();

/// The most of that since the last call of forgetTheMost().
std::size_t mostBytesHeld();
void forgetTheMost();

}  // namespace heap

// Replaces the program's operator new and delete, in all their forms, by ones that count and that can fail: the one
// heap of the tests, the fuzz targets and the benchmarks that measure memory.
#pragma once

#include <cstddef>

namespace heap {

/// Blocks that are in use, and the bytes that they take from the heap: those that can be used, and malloc's own word.
std::size_t blocksInUse();
std::size_t bytesInUse();

/// The most bytes that were in use since the last call of forgetTheMost().
std::size_t mostBytesInUse();
void forgetTheMost();

enum class Failure {
    once,         ///< that allocation fails, the ones after it do not
    fromThereOn,  ///< and all after it
};

/// Memory runs out for as long as this lives: `granted` allocations are made, then the next one fails.
class RunsOut {
  public:
    RunsOut(std::size_t granted, Failure failure);
    ~RunsOut();
    RunsOut(const RunsOut&) = delete;
    RunsOut& operator=(const RunsOut&) = delete;

    /// An allocation has failed.
    [[nodiscard]] bool happened() const;
};

}  // namespace heap

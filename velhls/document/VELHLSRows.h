#pragma once

#include <cstddef>

/// Some neighbouring entries of a table or a list that lies elsewhere. A view: it owns nothing.
template <typename Row>
class VELHLSRows {
  public:
    /// None.
    constexpr VELHLSRows() = default;

    /// So many entries from the first one on.
    constexpr VELHLSRows(const Row* first, std::size_t count) : first_(first), count_(count) {}

    /// The first entry.
    [[nodiscard]] constexpr const Row* begin() const { return first_; }
    /// The place after the last entry.
    [[nodiscard]] constexpr const Row* end() const { return first_ + count_; }
    /// The number of entries.
    [[nodiscard]] constexpr std::size_t size() const { return count_; }
    /// True when there is none.
    [[nodiscard]] constexpr bool empty() const { return count_ == 0; }
    /// By its position, counted from 0, which must be below size().
    [[nodiscard]] constexpr const Row& operator[](std::size_t position) const { return first_[position]; }

  private:
    const Row* first_ = nullptr;
    std::size_t count_ = 0;
};

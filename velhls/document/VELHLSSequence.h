#pragma once

#include <cstddef>
#include <iterator>

/// What `for` walks over where the owner makes each item when it is asked for: the items are values, and none is stored.
template <typename Owner, typename Item, Item (Owner::*item)(std::size_t) const>
class VELHLSSequence {
  public:
    /// Goes from one number to the next.
    class Iterator {
      public:
        /// @cond
        using iterator_category = std::input_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = const Item*;
        using reference = Item;
        /// @endcond

        /// At the item of this number.
        Iterator(const Owner& owner, std::size_t number) : owner_(&owner), number_(number) {}

        /// The item.
        [[nodiscard]] Item operator*() const { return (owner_->*item)(number_); }
        /// Goes on to the next one.
        Iterator& operator++() {
            ++number_;
            return *this;
        }
        /// True at the same item.
        [[nodiscard]] bool operator==(const Iterator& other) const { return number_ == other.number_; }
        /// True at another item.
        [[nodiscard]] bool operator!=(const Iterator& other) const { return number_ != other.number_; }

      private:
        const Owner* owner_;
        std::size_t number_;
    };

    /// The owner's items from `first` up to, and without, `end`. The owner must outlive the sequence.
    VELHLSSequence(const Owner& owner, std::size_t first, std::size_t end)
        : owner_(owner), first_(first), end_(end) {}

    /// At the first item.
    [[nodiscard]] Iterator begin() const { return {owner_, first_}; }
    /// After the last item.
    [[nodiscard]] Iterator end() const { return {owner_, end_}; }
    /// The number of items.
    [[nodiscard]] std::size_t size() const { return end_ - first_; }
    /// True when there is none.
    [[nodiscard]] bool empty() const { return end_ == first_; }

  private:
    const Owner& owner_;
    std::size_t first_;
    std::size_t end_;
};

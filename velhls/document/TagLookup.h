// Internal to the library, not installed: how a tag's name is found among those that are known.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velhls/document/FormatTables.h"

namespace velhls {

/// What findTag returns for a name that is not known.
inline constexpr std::size_t noTag = tagTable.size();

inline constexpr std::size_t slotCount = 512;

/// The slot of a name: a number that tells most names from each other by their length and three of their characters. The name must
/// have six characters, as all have.
constexpr std::size_t slotOf(std::string_view name, std::size_t factor) {
    const auto at = [name](std::size_t place) {
        return static_cast<std::size_t>(static_cast<unsigned char>(name[place]));
    };
    return (((name.size() * factor + at(name.size() - 1)) * factor + at(name.size() - 3)) * factor +
            at(name.size() / 2)) %
           slotCount;
}

struct TagSlots {
    std::size_t factor;
    /// The tag that each slot has; noTag for none.
    std::array<std::uint8_t, slotCount> tags;
};

/// The slots for a factor under which no two tags have one; the compiler looks for it.
constexpr TagSlots makeTagSlots() {
    for (std::size_t factor = 1; factor < 300; ++factor) {
        TagSlots slots = {factor, {}};
        for (std::uint8_t& slot : slots.tags)
            slot = static_cast<std::uint8_t>(noTag);
        bool isFree = true;
        for (std::size_t index = 0; isFree && index < tagTable.size(); ++index) {
            std::uint8_t& slot = slots.tags.at(slotOf(tagTable.at(index).name, factor));
            isFree = slot == noTag;
            slot = static_cast<std::uint8_t>(index);
        }
        if (isFree) return slots;
    }
    return {0, {}};
}

inline constexpr TagSlots tagSlots = makeTagSlots();
static_assert(tagSlots.factor != 0, "slotOf must tell all tags from each other");

/// The place of the tag in tagTable, or noTag.
[[nodiscard]] inline std::size_t findTag(std::string_view name) {
    constexpr std::size_t shortest = 6;
    if (name.size() < shortest) return noTag;
    const std::size_t index = tagSlots.tags[slotOf(name, tagSlots.factor)];
    return index != noTag && tagTable[index].name == name ? index : noTag;
}

}  // namespace velhls

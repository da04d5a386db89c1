#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// Which variants of a master playlist are to go.
struct VariantFilter {
    std::optional<std::uint64_t> leastBandwidth;
    std::optional<std::uint64_t> mostBandwidth;
    /// What begins an entry of CODECS.
    std::vector<std::string> droppedCodecs;

    [[nodiscard]] bool dropsNone() const {
        return !leastBandwidth && !mostBandwidth && droppedCodecs.empty();
    }
};

/// A line that the filter cannot judge, and why.
struct UnjudgedVariant {
    std::size_t line;
    std::string reason;
};

/// The lines that go: those of the variants and I-frame variants that the filter drops, of the renditions of groups that
/// variants named and no remaining one does, and of the stream information (vendor extension) of dropped variants.
///
/// Throws an UnjudgedVariant.
[[nodiscard]] std::set<std::size_t> linesToDrop(const VELHLSStructure& structure,
                                                const VariantFilter& filter);

}  // namespace tool

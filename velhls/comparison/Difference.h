// Internal to the library, not installed: a change, and what the rules of updates want to know of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velhls/comparison/VELHLSChange.h"
#include "velhls/document/VELHLSLine.h"

namespace velhls {

/// A piece of a line.
struct Spot {
    /// 0 where there is none.
    std::size_t line = 0;
    /// Without data where what is looked for is not there.
    std::string_view text;

    [[nodiscard]] bool isThere() const { return text.data() != nullptr; }
};

[[nodiscard]] inline Spot spotOf(const VELHLSLine& line, std::string_view text) {
    return {line.number, text};
}

/// What a change is one of.
enum class Aspect : std::uint8_t {
    headerTag,    ///< a tag of the playlist that RFC 8216 or its successor has, and that must stay
    numberedTag,  ///< one of those that have rules of their own: EXT-X-MEDIA-SEQUENCE, EXT-X-TARGETDURATION…
    foreignTag,   ///< what RFC 8216 says nothing of, or lets change
    segment,      ///< a whole segment
    segmentUri,   ///< its URI
    segmentDuration,  ///< its duration
    segmentTag,       ///< its title, byte range, or another tag of RFC 8216
    discontinuity,    ///< the number of its EXT-X-DISCONTINUITY tags
    key,              ///< the keys in force from it on
    map,              ///< the map in force from it on
    date,             ///< its date
    dateRange,        ///< a whole date range
    dateRangeValue,   ///< an attribute of one
    dateRangeReused,  ///< the START-DATE of one
    masterPart,       ///< what only a master playlist has
};

struct Difference {
    Aspect aspect;
    VELHLSChange change;
    Spot before;
    Spot now;
    /// Of a date range its whole ID.
    std::string_view id = {};
};

/// The changes as they are found.
class Differences {
  public:
    Difference& add(Aspect aspect, std::string path, std::string_view what, Spot before, Spot now) {
        return add(aspect, std::move(path), what, before, now, std::string(before.text),
                   std::string(now.text));
    }

    /// With other texts than those of the places.
    Difference& add(Aspect aspect, std::string path, std::string_view what, Spot before, Spot now,
                    std::string oldText, std::string newText) {
        const auto kind = !before.isThere() ? VELHLSChange::Added
                          : !now.isThere()  ? VELHLSChange::Removed
                                            : VELHLSChange::Changed;
        all_.push_back({aspect,
                        {kind, std::move(path), std::string(what), std::move(oldText), std::move(newText),
                         before.line, now.line},
                        before,
                        now});
        return all_.back();
    }

    [[nodiscard]] const std::vector<Difference>& all() const { return all_; }

    /// The changes alone. None are left.
    [[nodiscard]] std::vector<VELHLSChange> takeChanges() {
        std::vector<VELHLSChange> changes;
        changes.reserve(all_.size());
        for (Difference& difference : all_)
            changes.push_back(std::move(difference.change));
        all_.clear();
        return changes;
    }

  private:
    std::vector<Difference> all_;
};

}  // namespace velhls

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

/// The successor's versions are for what only it knows, some of which a playlist need not show.
constexpr std::uint64_t lastOfRfc8216 = 7;

/// Below it durations are whole numbers (section 4.3.2.1).
constexpr std::uint64_t firstWithDecimals = 3;

/// The first place that needs a version, of each kind.
struct Feature {
    VELHLSLine line;
    std::string_view piece;
    std::uint64_t version;
};

/// What the playlist has that version 1 has not.
class FeatureFinder {
  public:
    explicit FeatureFinder(const CheckedPlaylist& playlist) : playlist_(playlist) {}

    std::vector<Feature> find() {
        for (const VELHLSTagDefinition& tag : tagTable) {
            if (!isOfPlaylist(tag) || !playlist_.has(indexOf(tag))) continue;
            if (tag.firstVersion > 1) addTag(tag);
            addAttributes(tag);
        }
        if (playlist_.isMaster()) addChannels();
        if (playlist_.isMedia()) addDecimals();
        return std::move(features_);
    }

  private:
    static std::size_t indexOf(const VELHLSTagDefinition& tag) {
        return static_cast<std::size_t>(&tag - tagTable.data());
    }

    [[nodiscard]] bool isOfPlaylist(const VELHLSTagDefinition& tag) const {
        const auto other = playlist_.isMaster() ? VELHLSTagDefinition::Media : VELHLSTagDefinition::Master;
        return playlist_.knows(tag) && tag.playlist != other;
    }

    void addTag(const VELHLSTagDefinition& tag) {
        const VELHLSLine line = playlist_.firstLine(indexOf(tag));
        const bool isMapOfAll = tag.name == tag::map && !playlist_.has(tagIndexOf<tag::iFramesOnly>);
        features_.push_back({line, line.name, isMapOfAll ? 6U : tag.firstVersion});
    }

    void addAttributes(const VELHLSTagDefinition& tag) {
        for (const VELHLSAttributeDefinition& row : tag.attributes) {
            if (row.firstVersion > 1 && playlist_.knows(row)) addAttribute(tag, row);
        }
    }

    void addAttribute(const VELHLSTagDefinition& tag, const VELHLSAttributeDefinition& row) {
        for (const std::uint32_t number : playlist_.lines(indexOf(tag))) {
            if (!playlist_.valueOf(number, row.name)) continue;
            const VELHLSLine line = playlist_.document().line(number);
            const auto attribute = line.attributes().find(row.name);
            features_.push_back({line, attribute->name, row.firstVersion});
            return;
        }
    }

    /// Captions of CEA-708; and those that only the successor knows, of other media.
    void addChannels() {
        bool hasService = false;
        bool isOfOthers = playlist_.profile() != StandardProfile::rfc8216bis;
        for (const std::uint32_t number : playlist_.lines(tagIndexOf<tag::media>)) {
            const VELHLSLine line = playlist_.document().line(number);
            const auto channel = line.attributes().find(attribute::instreamId);
            if (!channel) continue;
            if (!hasService && startsWith(channel->value, "SERVICE")) {
                features_.push_back({line, channel->value, 7});
                hasService = true;
            }
            if (!isOfOthers && playlist_.valueOf(line, attribute::type) != "CLOSED-CAPTIONS") {
                features_.push_back({line, channel->name, 13});
                isOfOthers = true;
            }
        }
    }

    void addDecimals() {
        if (playlist_.firstDecimals() == 0) return;
        const VELHLSLine line = playlist_.document().line(playlist_.firstDecimals());
        features_.push_back({line, durationIn(line), firstWithDecimals});
    }

    const CheckedPlaylist& playlist_;
    std::vector<Feature> features_;
};

void findTooLow(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.version()) return;
    for (const Feature& feature : FeatureFinder(playlist).find()) {
        if (feature.version <= *playlist.version()) continue;
        const std::string expected =
            "EXT-X-VERSION:" + std::to_string(feature.version) + " or higher for this";
        const std::string seen =
            playlist.has(tagIndexOf<tag::version>) ? std::to_string(*playlist.version()) : "none";
        tell(feature.line, feature.piece, {expected, seen, {}});
    }
}

/// What needs a version that RFC 8216 does not know is not known to it either. A master playlist with renditions may state 4
/// (section 7).
void findTooHigh(const CheckedPlaylist& playlist, const Tell& tell) {
    const std::uint64_t version = playlist.version().value_or(1);
    if (version <= 1 || version > lastOfRfc8216) return;
    const bool mayBe4 = playlist.isMaster() && playlist.has(tagIndexOf<tag::media>);
    const std::uint64_t needed = std::max<std::uint64_t>(neededVersion(playlist), mayBe4 ? 4 : 1);
    if (version <= needed) return;
    const VELHLSLine line = playlist.firstLine(tagIndexOf<tag::version>);
    const std::string expected =
        needed == 1 ? "no EXT-X-VERSION above 1, since nothing needs more"
                    : "no more than " + std::to_string(needed) + ", which all tags and attributes need";
    tell(line, trimmed(line.value), {expected, {}, {}});
}

void findRemoved(const CheckedPlaylist& playlist, const Tell& tell) {
    const std::uint64_t version = playlist.version().value_or(1);
    const auto expected = [](std::uint8_t removed) {
        return "nothing that version " + std::to_string(removed) + " removed";
    };
    constexpr std::size_t allowCache = tagIndex("EXT-X-ALLOW-CACHE");
    if (version >= tagTable[allowCache].removedVersion) {
        for (const std::uint32_t number : playlist.lines(allowCache)) {
            const VELHLSLine line = playlist.document().line(number);
            tell(line, line.name, {expected(tagTable[allowCache].removedVersion), {}, {}});
        }
    }
    constexpr std::uint8_t removed = 6;
    if (version < removed) return;
    for (const std::size_t tag : {tagIndexOf<tag::streamInf>, tagIndexOf<tag::iFrameStreamInf>}) {
        for (const std::uint32_t number : playlist.lines(tag)) {
            if (!playlist.valueOf(number, attribute::programId)) continue;
            const VELHLSLine line = playlist.document().line(number);
            tell(line, line.attributes().find(attribute::programId)->name, {expected(removed), {}, {}});
        }
    }
}

/// A whole number in a playlist that says it may have others, where its version is, or is not, needed for something else.
void findWhole(const CheckedPlaylist& playlist, const Tell& tell, bool isVersionNeeded) {
    const std::uint64_t version = playlist.version().value_or(1);
    const bool mayHaveDecimals = version >= firstWithDecimals && version <= lastOfRfc8216;
    if (!playlist.isMedia() || !mayHaveDecimals || playlist.firstWholeDuration() == 0) return;
    if ((neededVersion(playlist) >= firstWithDecimals) != isVersionNeeded) return;
    const VELHLSLine line = playlist.document().line(playlist.firstWholeDuration());
    tell(line, durationIn(line));
}

void findWholeDurations(const CheckedPlaylist& playlist, const Tell& tell) {
    findWhole(playlist, tell, false);
}

void findWholeDuration(const CheckedPlaylist& playlist, const Tell& tell) {
    findWhole(playlist, tell, true);
}

// clang-format off
constexpr PlaylistEntry rules[] = {
    {{{"version-too-low", error, "The playlist uses what its version does not have.",
       "a higher EXT-X-VERSION", "RFC 8216, section 7", false}, "MUST"}, findTooLow},
    {{{"version-too-high", warning, "EXT-X-VERSION is higher than the tags and attributes need.",
       "the lowest version that will do", "RFC 8216, section 6.2.1", false}, "SHOULD NOT"}, findTooHigh},
    {{{"removed-by-version", error, "The playlist has a tag or an attribute that its version removed.",
       "nothing that its version removed", "RFC 8216, section 7", false}, "SYN"}, findRemoved},
    {{{"durations-whole", warning, "All durations are whole numbers, though the version allows decimals.",
       "durations with decimals, as exact as they are known", "RFC 8216, section 4.3.2.1", false}, "SHOULD"}, findWholeDurations},
    {{{"duration-whole", note, "A duration is a whole number, though the version allows decimals.",
       "a duration with decimals, as exact as it is known", "RFC 8216, section 4.3.2.1", false}, "SHOULD"}, findWholeDuration},
};
// clang-format on

}  // namespace

std::uint64_t neededVersion(const CheckedPlaylist& playlist) {
    std::uint64_t needed = 1;
    for (const Feature& feature : FeatureFinder(playlist).find())
        needed = std::max(needed, feature.version);
    return needed;
}

StandardTable<CheckedPlaylist> versionRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls

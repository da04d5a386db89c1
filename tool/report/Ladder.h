#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLSCheck.h"

namespace tool::report {

/// What came of a URI of a master playlist.
struct Link {
    std::string uri;
    /// The path of the playlist that it leads to; empty where that was not read.
    std::string path;
    /// Why it was not: "not there", "not followed"; empty where it was.
    std::string whyNot;
};

/// A variant: a rung of the ladder.
struct Rung {
    std::size_t line = 0;
    bool isIFrames = false;
    /// Bits per second: BANDWIDTH, AVERAGE-BANDWIDTH, and what was measured.
    std::optional<double> peak;
    std::optional<double> average;
    std::optional<VELHLSPresentation::MeasuredRates> measured;
    /// As they are written; nothing where an attribute is missing.
    std::optional<std::string> resolution;
    std::optional<std::string> frameRate;
    std::optional<std::string> codecs;
    std::optional<std::string> videoRange;
    /// The groups that it names, by TYPE: "AUDIO" and "aac".
    std::map<std::string, std::string> groups;
    Link link;
    /// Pixels; 0 where there is no resolution.
    double height = 0.0;
    /// The codecs without their profiles, "avc1 + mp4a", or what there is in their place.
    std::string family;
};

/// A rendition.
struct Rendition {
    std::size_t line = 0;
    std::string type;
    std::string group;
    std::optional<std::string> name;
    std::optional<std::string> language;
    std::optional<std::string> channels;
    /// "DEFAULT, AUTOSELECT"
    std::string flags;
    std::string characteristics;
    /// Without a URI it is in the variants.
    std::optional<Link> link;
};

/// A group of renditions.
struct Group {
    std::string type;
    std::string id;
    std::size_t members = 0;
    /// How many variants name it.
    std::size_t users = 0;
    std::vector<std::string> languages;
};

/// What a master playlist says.
struct Ladder {
    /// The master playlist, as messages name it.
    std::string path;
    /// By codecs, in the order in which these first stand there; of one family the highest first; I-frame variants last.
    std::vector<Rung> rungs;
    std::vector<Rendition> renditions;
    /// Those that variants name and that have no member among them.
    std::vector<Group> groups;
};

/// What is known of the URIs of a master playlist.
struct FollowedLinks {
    std::map<std::string_view, Link> byUri;
    std::vector<VELHLSPresentation::MeasuredRates> measured;
    /// What to say of URIs that are not among them.
    std::string whyNoOther;
};

[[nodiscard]] Ladder readLadder(const std::string& path, const VELHLSDocument& document,
                                const FollowedLinks& links);

/// "1280x720 29.97 fps", or what there is in its place: how a person tells variants apart.
[[nodiscard]] std::string labelOf(const Rung& rung);

/// How many times the rate the next lower rung of the same family takes; nothing where that cannot be told.
[[nodiscard]] std::optional<double> ratioToNext(const std::vector<Rung>& rungs, std::size_t place);

}  // namespace tool::report

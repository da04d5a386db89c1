#include "tool/PlaylistKind.h"

#include <algorithm>
#include <array>

namespace tool {
namespace {

constexpr std::array<std::string_view, 2> variantTags = {"EXT-X-STREAM-INF", "EXT-X-I-FRAME-STREAM-INF"};

constexpr std::array<std::string_view, 5> otherMasterTags = {
    "EXT-X-MEDIA", "EXT-X-SESSION-DATA", "EXT-X-SESSION-KEY", "EXT-X-CONTENT-STEERING", "ZOR-STREAM-INF"};

constexpr std::array<std::string_view, 27> mediaTags = {"EXTINF",
                                                        "EXT-X-TARGETDURATION",
                                                        "EXT-X-MEDIA-SEQUENCE",
                                                        "EXT-X-DISCONTINUITY-SEQUENCE",
                                                        "EXT-X-ENDLIST",
                                                        "EXT-X-PLAYLIST-TYPE",
                                                        "EXT-X-I-FRAMES-ONLY",
                                                        "EXT-X-BYTERANGE",
                                                        "EXT-X-DISCONTINUITY",
                                                        "EXT-X-KEY",
                                                        "EXT-X-MAP",
                                                        "EXT-X-PROGRAM-DATE-TIME",
                                                        "EXT-X-DATERANGE",
                                                        "EXT-X-GAP",
                                                        "EXT-X-BITRATE",
                                                        "EXT-X-PART",
                                                        "EXT-X-PART-INF",
                                                        "EXT-X-SERVER-CONTROL",
                                                        "EXT-X-SKIP",
                                                        "EXT-X-CUE-IN",
                                                        "EXT-X-CUE-OUT",
                                                        "EXT-X-CUE-OUT-CONT",
                                                        "EXT-X-ALLOW-CACHE",
                                                        "ZOR-PATTERN_START",
                                                        "ZOR-PATTERN_END",
                                                        "ZOR-PATTERN_REPEAT",
                                                        "ZOR-DEFINE_INCREMENT"};

template <std::size_t size>
bool holds(const std::array<std::string_view, size>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The text between "#" and the first colon or line end; empty for a line that is no tag.
std::string_view tagName(std::string_view line) {
    if (line.empty() || line.front() != '#') return {};
    const std::string_view name = line.substr(1, line.find(':') - 1);
    return name.substr(0, name.find('\r'));
}

KindDecision decision(PlaylistKind kind, std::string_view name, std::size_t lineNumber) {
    return {kind, "because of " + std::string(name) + " in line " + std::to_string(lineNumber)};
}

}  // namespace

std::string_view nameOf(PlaylistKind kind) {
    return kind == PlaylistKind::master ? "master" : "media";
}

std::optional<KindDecision> detectKind(std::string_view text) {
    std::optional<KindDecision> first;
    for (std::size_t lineNumber = 1; !text.empty(); ++lineNumber) {
        const std::size_t lineFeed = text.find('\n');
        const std::string_view name = tagName(text.substr(0, lineFeed));
        if (holds(variantTags, name)) return decision(PlaylistKind::master, name, lineNumber);
        if (!first && holds(otherMasterTags, name)) first = decision(PlaylistKind::master, name, lineNumber);
        if (!first && holds(mediaTags, name)) first = decision(PlaylistKind::media, name, lineNumber);
        text.remove_prefix(lineFeed == std::string_view::npos ? text.size() : lineFeed + 1);
    }
    return first;
}

}  // namespace tool

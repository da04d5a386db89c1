#include "velhls/diagnostics/KindDetection.h"

#include <algorithm>
#include <cstddef>

#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// Takes one line after another from the front of a text.
class LineCutter {
  public:
    explicit LineCutter(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool ended() const { return rest_.empty(); }

    /// The next line without its line end.
    std::string_view next() {
        ++number_;
        const std::size_t feed = rest_.find('\n');
        const std::string_view line = rest_.substr(0, feed);
        rest_.remove_prefix(feed == std::string_view::npos ? rest_.size() : feed + 1);
        return withoutTrailing(line, lineEnds);
    }

    /// The number of the line that was taken last.
    [[nodiscard]] std::size_t number() const { return number_; }

  private:
    std::string_view rest_;
    std::size_t number_ = 0;
};

/// A duration below 0, or attributes after the duration: what IPTV lists write, and no media playlist.
bool isIptvDuration(std::string_view value) {
    const std::string_view duration = value.substr(0, value.find(','));
    const std::string_view trimmed = withoutTrailing(duration, blanks);
    return startsWith(trimmed, "-") || trimmed.find('=') != std::string_view::npos;
}

bool isIptvTag(const TagLine& tagLine) {
    if (tagLine.name == "EXTGRP" || tagLine.name == "EXTVLCOPT" || tagLine.name == "KODIPROP") return true;
    return tagLine.name == tag::extInf && isIptvDuration(tagLine.value);
}

/// IPTV lists use the header and EXTINF of the older format that playlists come from, and none of its
/// extensions for streaming.
bool isIptvList(std::string_view text) {
    bool isIptv = false;
    for (LineCutter lines(text); !lines.ended();) {
        const std::string_view line = lines.next();
        if (startsWith(line, "#EXT-X-") || startsWith(line, "#ZOR-")) return false;
        if (isTagOrComment(line)) isIptv = isIptv || isIptvTag(TagLine(line));
    }
    return isIptv;
}

VELHLSDiagnostics::Detection detection(VELHLSDiagnostics::PlaylistKind kind, std::string_view tagName,
                                       std::size_t line) {
    return {kind, std::string(tagName), line};
}

bool startsWithAnyCase(std::string_view text, std::string_view start) {
    if (text.size() < start.size()) return false;
    return std::equal(start.begin(), start.end(), text.begin(), [](char wanted, char character) {
        const bool isUpper = character >= 'A' && character <= 'Z';
        return wanted == (isUpper ? static_cast<char>(character - 'A' + 'a') : character);
    });
}

bool looksBinary(std::string_view text) {
    constexpr std::size_t looked = 4096;
    const std::string_view start = text.substr(0, looked);
    return start.find('\0') != std::string_view::npos;
}

/// A byte order mark of UTF-16, or the start of a header in it.
bool isUtf16(std::string_view text) {
    constexpr std::string_view littleEndianHeader("#\0E\0X\0T\0", 8);
    constexpr std::string_view bigEndianHeader("\0#\0E\0X\0T", 8);
    return startsWith(text, "\xFF\xFE") || startsWith(text, "\xFE\xFF") ||
           startsWith(text, littleEndianHeader) || startsWith(text, bigEndianHeader);
}

}  // namespace

std::optional<VELHLSDiagnostics::Detection> detectKind(std::string_view text) {
    std::optional<VELHLSDiagnostics::Detection> first;
    for (LineCutter lines(text); !lines.ended();) {
        const std::string_view line = lines.next();
        if (!isTagOrComment(line)) continue;
        const std::string_view name = TagLine(line).name;
        if (hasUse<ofVariant>(name)) return detection(VELHLSDiagnostics::Master, name, lines.number());
        if (first) continue;
        if (hasUse<ofMasterPlaylist>(name))
            first = detection(VELHLSDiagnostics::Master, name, lines.number());
        if (hasUse<ofMediaPlaylist>(name)) first = detection(VELHLSDiagnostics::Media, name, lines.number());
    }
    if (first && first->tag == tag::extInf && isIptvList(text)) return std::nullopt;
    return first;
}

std::string describeNoPlaylist(std::string_view text) {
    if (text.empty()) return "an empty text";
    if (startsWith(text, "\x1F\x8B")) return "data compressed with gzip (gzip -dc unpacks it)";
    if (isUtf16(text)) return "text in UTF-16 (iconv -f UTF-16 -t UTF-8 converts it)";
    if (isIptvList(text)) return "an IPTV list";
    if (looksBinary(text)) return "binary data";
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    const std::string_view content = text.substr(std::min(start, text.size()));
    if (startsWithAnyCase(content, "<!doctype html") || startsWithAnyCase(content, "<html")) return "HTML";
    if (startsWith(content, "<")) return "markup";
    if (startsWith(content, "{") || startsWith(content, "[")) return "JSON";
    if (text.find("#EXTM3U") != std::string_view::npos) {
        return "no tag that only a master or only a media playlist has";
    }
    return "no tag";
}

}  // namespace velhls

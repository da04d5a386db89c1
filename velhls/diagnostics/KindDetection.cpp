#include "velhls/diagnostics/KindDetection.h"

#include <algorithm>
#include <cstddef>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/KindCount.h"
#include "velhls/document/LineCodes.h"
#include "velhls/document/TagSpelling.h"
#include "velhls/document/VELHLSTagDefinition.h"
#include "velhls/standard/TextCharacters.h"

namespace velhls {
namespace {

/// A duration below 0, or attributes after the duration: what IPTV lists write, and no media playlist.
bool isIptvDuration(std::string_view value) {
    const std::string_view duration = value.substr(0, value.find(','));
    const std::string_view trimmed = withoutTrailing(duration, blanks);
    return startsWith(trimmed, "-") || trimmed.find('=') != std::string_view::npos;
}

bool isIptvTag(const VELHLSLine& line) {
    if (line.name == "EXTGRP" || line.name == "EXTVLCOPT" || line.name == "KODIPROP") return true;
    return line.name == tag::extInf && isIptvDuration(line.value);
}

/// True of the extensions for streaming.
bool isStreamingTag(std::string_view name) {
    return startsWith(name, "EXT-X-") || startsWith(name, "ZOR-");
}

/// IPTV lists use the header and EXTINF of the older format that playlists come from, and none of its
/// extensions for streaming.
bool isIptvList(const VELHLSDocument& document) {
    bool isIptv = false;
    for (const VELHLSLine line : document.lines()) {
        if (isStreamingTag(line.name)) return false;
        isIptv = isIptv || isIptvTag(line);
    }
    return isIptv;
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

}  // namespace

VELHLSDiagnostics::PlaylistKind kindOf(const VELHLSDocument& document) {
    if (document.kind() == VELHLSDocument::Master) return VELHLSDiagnostics::Master;
    const bool isMedia = document.kind() == VELHLSDocument::Media && !isIptvList(document);
    return isMedia ? VELHLSDiagnostics::Media : VELHLSDiagnostics::Detect;
}

// Looks at each line once and keeps none of them: to detect the kind costs a fraction of what the parse after it does.
std::optional<VELHLSDiagnostics::Detection> detectKind(std::string_view text) {
    KindCount kinds;
    bool isForStreaming = false;
    forEachLineCode(text, [&](std::size_t line, std::size_t, LineCode code) {
        kinds.add(line, code);
        isForStreaming =
            isForStreaming || (code.definition() != nullptr && isStreamingTag(code.definition()->name));
    });
    if (kinds.kind() == VELHLSDocument::Neither) return std::nullopt;
    const bool isMaster = kinds.kind() == VELHLSDocument::Master;
    if (!isMaster && !isForStreaming && isIptvList(VELHLSDocument(std::string(text)))) return std::nullopt;
    const KindCount::Place deciding = kinds.deciding();
    return VELHLSDiagnostics::Detection{isMaster ? VELHLSDiagnostics::Master : VELHLSDiagnostics::Media,
                                        std::string(deciding.code.definition()->name), deciding.line};
}

bool isNoPlaylist(const VELHLSDocument& document) {
    if (isUtf16(document.text())) return false;
    return document.kind() != VELHLSDocument::Neither || document.linesNamed(tag::extM3U).empty();
}

std::string describeNoPlaylist(std::string_view text) {
    if (text.empty()) return "an empty text";
    if (startsWith(text, "\x1F\x8B")) return "data compressed with gzip (gzip -dc unpacks it)";
    if (isUtf16(text)) return "text in UTF-16 (iconv -f UTF-16 -t UTF-8 converts it)";
    if (isIptvList(VELHLSDocument(std::string(text)))) return "an IPTV list";
    if (looksBinary(text)) return "binary data";
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    const std::string_view content = text.substr(std::min(start, text.size()));
    if (startsWithAnyCase(content, "<!doctype html") || startsWithAnyCase(content, "<html")) return "HTML";
    if (startsWith(content, "<")) return "markup";
    if (startsWith(content, "{") || startsWith(content, "[")) return "JSON";
    if (text.find("#EXTM3U") != std::string_view::npos) {
        return "no tag that only a master or only a media playlist has";
    }
    const std::string_view firstLine = content.substr(0, content.find_first_of("\r\n"));
    const std::string hint = isTagOrComment(firstLine) ? didYouMean(TagLine(firstLine).name) : std::string();
    return hint.empty() ? "no tag" : quoted(firstLine) + hint;
}

}  // namespace velhls

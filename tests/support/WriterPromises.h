#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/MediaDescription.h"

/// What VELHLSPlaylistWriter promises of every model, for the tests and the fuzz target.
namespace writer {

/// The text of the playlist, or "refused: " and why.
template <typename Playlist>
std::string written(const Playlist& playlist, const VELHLSWriterOptions& options = {}) {
    std::ostringstream out;
    const std::optional<std::string> refusal = VELHLSPlaylistWriter::write(playlist, out, options);
    if (!refusal) return out.str();
    return "refused: " + *refusal + (out.str().empty() ? "" : ", after " + out.str());
}

inline bool isRefused(const std::string& text) {
    return text.compare(0, 9, "refused: ") == 0;
}

/// What is read of a text; null when it is rejected or throws.
template <typename Parse>
auto readBack(const std::string& text, Parse parse) -> decltype(parse(std::declval<std::istream&>())) {
    std::istringstream input(text);
    try {
        return parse(input);
    } catch (const std::invalid_argument&) {
        return nullptr;
    } catch (const std::out_of_range&) {
        return nullptr;
    }
}

inline std::shared_ptr<VELHLSMediaStream> readMedia(const std::string& text) {
    return readBack(text,
                    [](std::istream& input) { return VELHLSMediaStream::parseMediaStream(input, nullptr); });
}

inline std::shared_ptr<VELHLSParsedManifest> readMaster(const std::string& text) {
    return readBack(text,
                    [](std::istream& input) { return VELHLSParsedManifest::parseManifest(input, nullptr); });
}

/// Milliseconds, in which dates are compared.
inline double inMilliseconds(double seconds) {
    return std::round(seconds * 1000.0);
}

/// Whether the date stands for none: then what is read counts on from the segment before.
inline bool isNoDate(const VELHLSMediaSegment& segment) {
    return segment.programDateTime == 0.0 || segment.programDateTime == segment.startTime;
}

/// A parsed model as it is read from what is written of it, and no more than VELHLSPlaylistWriter.h says of the two.
/// The dates are those of the second model where they are of the same millisecond.
inline VELHLSMediaStream expectedMedia(const VELHLSMediaStream& original, const VELHLSMediaStream& reread) {
    VELHLSMediaStream expected = original;
    expected.hasExtM3U = true;
    // What is needed has tests of its own.
    expected.version = std::max(original.version, reread.version);
    double longest = std::round(original.targetDuration);
    double startTime = 0.0;
    double nextDate = 0.0;
    auto sequence = static_cast<std::uint64_t>(original.mediaSequence);
    auto discontinuities = static_cast<std::uint64_t>(original.discontinuitySequence);
    expected.discontinuitySeen = false;
    expected.segments.clear();
    for (std::size_t index = 0; index < original.segments.size(); ++index) {
        auto segment = std::make_shared<VELHLSMediaSegment>(*original.segments[index]);
        longest = std::max(longest, std::round(segment->duration));
        discontinuities += segment->discontinuity ? 1 : 0;
        expected.discontinuitySeen = expected.discontinuitySeen || segment->discontinuity;
        segment->startTime = startTime;
        segment->mediaSequenceNumber = sequence++;
        segment->discontinuitySequenceNumber = discontinuities;
        if (segment->title.empty()) segment->title = ",";
        startTime += segment->duration;
        const double date = original.segments[index]->programDateTime;
        if (isNoDate(*original.segments[index])) {
            segment->programDateTime = nextDate;
        } else if (index < reread.segments.size()) {
            const double read = reread.segments[index]->programDateTime;
            if (std::abs(read - date) < 0.001) segment->programDateTime = read;
        }
        nextDate = segment->programDateTime + segment->duration;
        expected.segments.push_back(segment);
    }
    expected.targetDuration = longest;
    expected.hlsDefineMap = std::make_shared<VELHLSDefineMap>();
    return expected;
}

/// Why the library does not read what is written of the model; empty when it must.
inline std::string reasonNotToBeRead(const VELHLSMediaStream& stream) {
    for (const auto& segment : stream.segments) {
        if (segment->uri.size() < 6 && segment->byteRange == nullptr) return "a short URI";
        if (segment->duration < std::numeric_limits<double>::min()) return "a subnormal duration";
    }
    return std::abs(stream.startTimeOffset) < std::numeric_limits<double>::min() &&
                   stream.startTimeOffset != 0.0
               ? "a subnormal offset"
               : "";
}

/// The manifest as it is read from what is written of it. Besides what VELHLSPlaylistWriter.h says, variants come in the
/// order of the text.
inline VELHLSParsedManifest expectedMaster(VELHLSParsedManifest manifest, std::int32_t version) {
    manifest.hasHeader = true;
    manifest.version = std::max(manifest.version, version);
    manifest.sessionData.clear();
    manifest.zorStreamInformation.clear();
    manifest.hasZORStreamInformation = false;
    std::vector<std::shared_ptr<VELHLSMediaVariant>> iFrames;
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (variant->isIFrame) iFrames.push_back(variant);
    }
    manifest.variants.clear();
    for (auto& variant : manifest.streamVariants) {
        variant = std::make_shared<VELHLSMediaVariant>(*variant);
        variant->nominalVideoBitrate = 0;
        variant->nominalAudioBitrate = 0;
        manifest.variants.emplace(variant->bandwidth, variant);
    }
    for (const auto& variant : iFrames)
        manifest.variants.emplace(variant->bandwidth, variant);
    return manifest;
}

inline std::string reasonNotToBeRead(const VELHLSParsedManifest& manifest) {
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (variant->bandwidth > most || variant->averageBandwidth > most) return "a bandwidth beyond";
        constexpr auto mostProgram = static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max());
        if (variant->programId > mostProgram) return "a program ID beyond";
    }
    return std::abs(manifest.startTimeOffset) < std::numeric_limits<double>::min() &&
                   manifest.startTimeOffset != 0.0
               ? "a subnormal offset"
               : "";
}

/// The rules of RFC 8216 that the text breaks. Bytes, URIs, dates, codecs, identifiers, channels and characteristics that may not
/// stand in a playlist are the model's own values, and of a line only the first fault is told.
inline std::set<std::string> faultsOf(const std::string& text, VELHLSDiagnostics::PlaylistKind kind) {
    std::set<std::string> ids;
    const VELHLSDiagnostics::Options options = {kind, {VELHLSDiagnostics::Profile::rfc8216}};
    for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text, options).findings) {
        static const std::set<std::string> ofValues = {"control-character",
                                                       "not-utf-8",
                                                       "white-space",
                                                       "uri-malformed",
                                                       "date-time-ambiguous",
                                                       "variant-codecs-malformed",
                                                       "stable-id-malformed",
                                                       "rendition-channels-malformed",
                                                       "rendition-characteristics-malformed"};
        if (ofValues.count(finding.ruleId) != 0) continue;
        if (finding.severity == VELHLSFinding::Error) ids.insert(finding.ruleId);
    }
    return ids;
}

/// Whether the standard stops before the end of a line or of the text, or stands before a pattern or a variable, so that it tells
/// nothing of what the models read there.
inline bool hidesFaults(const std::string& text, const std::set<std::string>& ids) {
    for (const char* id : {"encoded-as-utf-16", "attribute-list-malformed", "attribute-name-invalid"}) {
        if (ids.count(id) != 0) return true;
    }
    return text.find("#ZOR-PATTERN") != std::string::npos || text.find("{$") != std::string::npos;
}

/// What the text of the model has against the standard and the text that the model was read from has not; nothing for one of
/// which the standard cannot see all.
inline std::string addedFaults(const std::string& original, const std::string& text,
                               VELHLSDiagnostics::PlaylistKind kind) {
    const std::set<std::string> before = faultsOf(original, kind);
    if (hidesFaults(original, before)) return {};
    std::string added;
    for (const std::string& id : faultsOf(text, kind)) {
        if (before.count(id) == 0) added += id + "\n";
    }
    return added;
}

/// What of the promises does not hold for the playlist that the text holds; empty when all do, and for a text that is no
/// playlist.
inline std::string brokenMediaPromise(const std::string& original) {
    const auto stream = readMedia(original);
    if (stream == nullptr) return {};
    const std::string text = written(*stream);
    if (isRefused(text)) return text.find(", after ") == std::string::npos ? "" : "written in part: " + text;
    const std::string added = addedFaults(original, text, VELHLSDiagnostics::Media);
    const bool isReadable = reasonNotToBeRead(*stream).empty();
    if (isReadable && !added.empty()) return "faults that the model does not hold:\n" + added + "in " + text;
    const auto reread = readMedia(text);
    if (reread == nullptr) return isReadable ? "not read again:\n" + text : "";
    if (!isReadable) return {};
    const std::string expected = playlist::describe(expectedMedia(*stream, *reread));
    const std::string seen = playlist::describe(*reread);
    if (seen != expected) return "expected:\n" + expected + "\nseen:\n" + seen + "\nin\n" + text;
    for (std::size_t index = 0; index < reread->segments.size(); ++index) {
        const double date = stream->segments[index]->programDateTime;
        if (isNoDate(*stream->segments[index])) continue;
        const double read = reread->segments[index]->programDateTime;
        if (date < 1e11 && inMilliseconds(date) != inMilliseconds(read)) return "another date:\n" + text;
    }
    const std::string again = written(*reread);
    return again == text ? "" : "written differently the second time:\n" + text + "\n" + again;
}

inline std::string brokenMasterPromise(const std::string& original) {
    const auto manifest = readMaster(original);
    if (manifest == nullptr) return {};
    const std::string text = written(*manifest);
    if (isRefused(text)) return text.find(", after ") == std::string::npos ? "" : "written in part: " + text;
    // Without the session data the same must be read.
    const VELHLSParsedManifest whole = *manifest;
    manifest->sessionData.clear();
    const std::string readable = written(*manifest);
    if (!reasonNotToBeRead(*manifest).empty()) return {};
    const std::string added = addedFaults(original, readable, VELHLSDiagnostics::Master);
    if (!added.empty()) return "faults that the model does not hold:\n" + added + "in " + readable;
    const auto reread = readMaster(readable);
    if (reread == nullptr) return "not read again:\n" + readable;
    const std::string expected = playlist::describe(expectedMaster(*manifest, reread->version));
    const std::string seen = playlist::describe(*reread);
    if (seen != expected) return "expected:\n" + expected + "\nseen:\n" + seen + "\nin\n" + readable;
    const std::string again = written(*reread);
    return again == readable ? "" : "written differently the second time:\n" + readable + "\n" + again;
}

}  // namespace writer

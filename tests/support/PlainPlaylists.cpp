#include "tests/support/PlainPlaylists.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace plain {
namespace {

bool startsWith(const std::string& text, std::string_view start) {
    return text.compare(0, start.size(), start) == 0;
}

bool holdsOnly(const std::string& text, const char* characters) {
    return text.find_first_not_of(characters) == none;
}

std::string withoutTrailing(const std::string& text, const char* characters) {
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

/// The attributes of a tag that has to have some.
std::optional<VELHLSAttributeMap> attributesOfTag(const std::string& line) {
    const std::string kept = withoutTrailing(line, "\n\r");
    const std::size_t colon = kept.find(':');
    auto attributes = attributeMap(kept.substr(colon + 1));
    if (attributes && attributes->empty()) return std::nullopt;
    return attributes;
}

bool isValid(const VELHLSMediaStreamRendition& rendition) {
    const bool isCaptions = rendition.type == VELHLSMediaStreamRendition::ClosedCaptions;
    const bool isSubtitles = rendition.type == VELHLSMediaStreamRendition::Subtitles;
    if (rendition.type == VELHLSMediaStreamRendition::Unknown) return false;
    if (rendition.groupId.empty() || rendition.name.empty()) return false;
    if (isCaptions) return rendition.uri.empty() && !rendition.instreamId.empty() && !rendition.forced;
    return rendition.instreamId.empty() && (isSubtitles || !rendition.forced);
}

/// The next line without carriage returns; empty when there is none.
std::string nextLine(std::istream& input) {
    std::string line;
    std::getline(input, line);
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    return line;
}

/// The text between "#" and the first colon, and the text after that; without a colon all and nothing.
std::pair<std::string, std::string> nameAndValue(const std::string& line) {
    const std::size_t colon = line.find(':');
    if (colon == none) return {line.substr(1), ""};
    return {line.substr(1, colon - 1), line.substr(colon + 1)};
}

std::size_t bucketSizeOf(const VELHLSDefineMap& defines, const std::string& name) {
    return defines.bucket_count() == 0 ? 0 : defines.bucket_size(defines.bucket(name));
}

/// EXT-X-DEFINE; false when it is rejected.
bool define(const std::string& value, VELHLSDefineMap& defines) {
    const auto attributes = attributeMap(value);
    if (!attributes || attributes->count("NAME") == 0 || attributes->count("VALUE") == 0) return false;
    const std::string& name = attributes->at("NAME");
    if (defines.count(name) == 0 && bucketSizeOf(defines, name) >= VELHLSUtility::maximumCollidingNames)
        return false;
    defines[name] = attributes->at("VALUE");
    // More buckets may hold other names together.
    return std::all_of(defines.begin(), defines.end(), [&](const auto& variable) {
        return bucketSizeOf(defines, variable.first) <= VELHLSUtility::maximumCollidingNames;
    });
}

/// EXT-X-START; false when it is rejected.
bool start(const std::string& value, double& offset, bool& isPrecise) {
    const auto attributes = attributeMap(value);
    if (!attributes || attributes->count("TIME-OFFSET") == 0) return false;
    const std::string& seconds = attributes->at("TIME-OFFSET");
    if (seconds.empty() || !holdsOnly(seconds, "+-0123456789.")) return false;
    offset = std::stod(seconds);
    const auto precise = attributes->find("PRECISE");
    if (precise != attributes->end() && precise->second == "YES") isPrecise = true;
    return true;
}

}  // namespace

std::shared_ptr<VELHLSMediaVariant> variant(const std::string& tagLine, const std::string& uriLine) {
    auto variant = std::make_shared<VELHLSMediaVariant>(0, 0, "", "", "",
                                                        std::shared_ptr<VELHLSMediaStream>(), false, 0);
    std::size_t start = 1;
    if (startsWith(tagLine, "#EXT-X-STREAM-INF:")) {
        if (uriLine.empty()) return nullptr;
        variant->uri = uriLine;
        start = 18;
    } else if (startsWith(tagLine, "#EXT-X-I-FRAME-STREAM-INF:")) {
        if (!uriLine.empty()) return nullptr;
        variant->isIFrame = true;
        start = 26;
    }
    const auto attributes = attributeMap(tagLine.empty() ? "" : tagLine.substr(start));
    if (!attributes) return nullptr;
    for (const auto& [name, value] : *attributes) {
        if (name == "BANDWIDTH") variant->bandwidth = static_cast<std::uint64_t>(std::stoll(value));
        if (name == "AVERAGE-BANDWIDTH") {
            variant->averageBandwidth = static_cast<std::uint64_t>(std::stoll(value));
        }
        if (name == "CODECS") variant->codecs = value;
        if (name == "RESOLUTION") variant->resolution = value;
        if (name == "AUDIO") variant->groupIds[VELHLSMediaStreamRendition::Audio] = value;
        if (name == "VIDEO") variant->groupIds[VELHLSMediaStreamRendition::Video] = value;
        if (name == "SUBTITLES") variant->groupIds[VELHLSMediaStreamRendition::Subtitles] = value;
        if (name == "CLOSED-CAPTIONS" && value != "NONE") {
            variant->groupIds[VELHLSMediaStreamRendition::ClosedCaptions] = value;
        }
        if (name == "PROGRAM-ID") variant->programId = static_cast<std::uint32_t>(std::stoi(value));
        if (name == "URI" && variant->isIFrame) variant->uri = value;
    }
    return variant->uri.empty() || variant->bandwidth == 0 ? nullptr : variant;
}

std::shared_ptr<VELHLSMediaStreamRendition> rendition(const std::string& line) {
    if (!startsWith(line, "#EXT-X-MEDIA:")) return nullptr;
    const auto attributes = attributeMap(line.substr(13));
    if (!attributes) return nullptr;
    auto rendition = std::make_shared<VELHLSMediaStreamRendition>(
        VELHLSMediaStreamRendition::Unknown, "", nullptr, "", "", "", "", false, false, false, "", "");
    const std::map<std::string, VELHLSMediaStreamRendition::RenditionType> types = {
        {"AUDIO", VELHLSMediaStreamRendition::Audio},
        {"VIDEO", VELHLSMediaStreamRendition::Video},
        {"SUBTITLES", VELHLSMediaStreamRendition::Subtitles},
        {"CLOSED-CAPTIONS", VELHLSMediaStreamRendition::ClosedCaptions}};
    const std::map<std::string, std::string*> texts = {{"URI", &rendition->uri},
                                                       {"GROUP-ID", &rendition->groupId},
                                                       {"LANGUAGE", &rendition->language},
                                                       {"ASSOC-LANGUAGE", &rendition->assocLanguage},
                                                       {"NAME", &rendition->name},
                                                       {"INSTREAM-ID", &rendition->instreamId},
                                                       {"AUDIO-TRACK-TYPE", &rendition->audioTrackType}};
    const std::map<std::string, bool*> flags = {{"DEFAULT", &rendition->isDefault},
                                                {"AUTOSELECT", &rendition->autoSelect},
                                                {"FORCED", &rendition->forced}};
    for (const auto& [name, value] : *attributes) {
        if (name == "TYPE") {
            if (types.count(value) == 0) return nullptr;
            rendition->type = types.at(value);
        } else if (texts.count(name) != 0) {
            *texts.at(name) = value;
        } else if (flags.count(name) != 0) {
            if (value != "YES" && value != "NO") return nullptr;
            *flags.at(name) = value == "YES";
        } else if (name == "CHARACTERISTICS") {
            std::istringstream pieces(value + ",");
            for (std::string piece; std::getline(pieces, piece, ',');)
                rendition->characteristics.insert(piece);
        }
    }
    if (rendition->isDefault) rendition->autoSelect = true;
    return isValid(*rendition) ? rendition : nullptr;
}

std::shared_ptr<VELHLSManifestSessionData> sessionData(const std::string& line) {
    if (!startsWith(line, "#EXT-X-SESSION-DATA:")) return nullptr;
    // The colon is read as part of the first name.
    auto attributes = attributeMap(line.substr(19));
    if (!attributes) return nullptr;
    auto data = std::make_shared<VELHLSManifestSessionData>((*attributes)["DATA-ID"], (*attributes)["VALUE"],
                                                            (*attributes)["URI"], (*attributes)["LANGUAGE"]);
    return !data->dataId.empty() && data->value.empty() != data->uri.empty() ? data : nullptr;
}

std::shared_ptr<VELHLSZORStreamInformation> streamInformation(const std::string& line) {
    if (!startsWith(line, "#ZOR-STREAM-INF:")) return nullptr;
    const auto attributes = attributeMap(line.substr(16));
    if (!attributes) return nullptr;
    const auto bitrate = [&](const char* name) {
        const auto found = attributes->find(name);
        return found == attributes->end() ? 0 : static_cast<std::uint64_t>(std::stoll(found->second));
    };
    auto information = std::make_shared<VELHLSZORStreamInformation>();
    information->nominalAudioBitrate = bitrate("NOMINAL_AUDIO_BITRATE");
    information->nominalVideoBitrate = bitrate("NOMINAL_VIDEO_BITRATE");
    const bool isZero = information->nominalAudioBitrate == 0 && information->nominalVideoBitrate == 0;
    return isZero ? nullptr : information;
}

std::shared_ptr<VELHLSProtectionData> noKey() {
    return std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                  std::vector<std::int32_t>());
}

std::shared_ptr<VELHLSProtectionData> key(const std::string& line) {
    const bool isSessionKey = startsWith(line, "#EXT-X-SESSION-KEY:");
    if (!isSessionKey && !startsWith(line, "#EXT-X-KEY:")) return nullptr;
    const auto attributes = attributesOfTag(line);
    if (!attributes || attributes->count("METHOD") == 0) return nullptr;
    auto key = noKey();
    const std::string& method = attributes->at("METHOD");
    if (method == "NONE") return isSessionKey ? nullptr : key;
    if (method != "AES-128" && method != "SAMPLE-AES") return nullptr;
    key->method = method == "AES-128" ? VELHLSProtectionData::AES128 : VELHLSProtectionData::SampleAES;
    for (const auto& [name, value] : *attributes) {
        if (name == "URI") key->uri = value;
        if (name == "IV") {
            if (value.size() != 34 || !startsWith(value, "0x")) return nullptr;
            if (!holdsOnly(value.substr(2), "0123456789ABCDEFabcdef")) return nullptr;
            key->iv = value;
        }
        if (name == "KEYFORMAT") key->keyFormat = value;
        if (name == "KEYFORMATVERSIONS") {
            if (!holdsOnly(value, "0123456789/")) return nullptr;
            key->keyFormatVersions.clear();
            std::istringstream pieces(value + "/");
            for (std::string piece; std::getline(pieces, piece, '/');)
                key->keyFormatVersions.push_back(std::stoi(piece));
        }
    }
    return key->uri.empty() ? nullptr : key;
}

std::shared_ptr<VELHLSMISMap> map(const std::string& line) {
    if (!startsWith(line, "#EXT-X-MAP:")) return nullptr;
    const auto attributes = attributesOfTag(line);
    if (!attributes || attributes->count("URI") == 0) return nullptr;
    auto map = std::make_shared<VELHLSMISMap>();
    map->uri = attributes->at("URI");
    const auto range = attributes->find("BYTERANGE");
    if (range == attributes->end()) return map;
    const auto read = byteRange(range->second, '@', false);
    if (!read) return nullptr;
    map->byteRange = std::make_shared<VELHLSByteRange>(*read);
    return map;
}

std::shared_ptr<VELHLSMediaSegment> nextSegment(const std::shared_ptr<VELHLSMediaSegment>& previous,
                                                std::string line, std::istream& input,
                                                std::shared_ptr<VELHLSMediaPattern>& pattern,
                                                std::uint64_t mediaSequence,
                                                std::uint64_t discontinuitySequence,
                                                std::shared_ptr<VELHLSDefineMap> defines,
                                                VELHLSParsingStatus* status) {
    auto segment = std::make_shared<VELHLSMediaSegment>(0.0, 0.0, 0, 0, "", nullptr, false, 0.0, nullptr,
                                                        nullptr, "", false, "", "");
    std::optional<double> date;
    std::string consumed;
    if (!input.good()) return nullptr;
    while (true) {
        const auto [name, value] = line.empty() ? std::pair<std::string, std::string>() : nameAndValue(line);
        const bool hasColon = line.find(':') != none;
        if (!startsWith(line, "#")) {
            segment->uri = withoutTrailing(line, " \t\n\r");
        } else if (!startsWith(line, "#EXT")) {
            const bool isStart = startsWith(line, "#ZOR-PATTERN_START");
            if ((isStart || VELHLSUtility::isMediaPatternTag(line)) && status != nullptr) {
                status->hasMediaPatterns = true;
            }
            if (isStart && !hasColon) return nullptr;
            if (isStart) {
                std::string rejected;
                pattern = readPattern(line, consumed, input, rejected);
                if (pattern == nullptr) {
                    VELHLSUtility::updateParsingStatusWithError(status, VELHLSParsingErrorMediaPattern,
                                                                rejected);
                }
                return nullptr;
            }
            if (VELHLSUtility::isMediaPatternTag(line)) {
                VELHLSUtility::updateParsingStatusWithError(status, VELHLSParsingErrorMediaPattern, line);
                return nullptr;
            }
        } else if (!hasColon) {
            if (name == "EXT-X-DISCONTINUITY") {
                segment->discontinuity = true;
            } else if (name == "EXT-X-CUE-IN") {
                segment->cueIn = true;
            } else if (name != "EXTM3U") {
                return nullptr;
            }
        } else if (name == "EXTINF") {
            const std::size_t comma = value.find(',');
            if (comma == 0) return nullptr;
            segment->duration = std::stod(value.substr(0, comma));
            segment->title = comma == none ? "" : value.substr(comma);
        } else if (name == "EXT-X-BYTERANGE") {
            const auto range = byteRange(value, '@', false);
            if (!range) return nullptr;
            segment->byteRange = std::make_shared<VELHLSByteRange>(*range);
        } else if (name == "EXT-X-KEY") {
            segment->protectionData = key(line);
            if (segment->protectionData == nullptr) return nullptr;
        } else if (name == "EXT-X-MAP") {
            segment->misMap = map(line);
            if (segment->misMap == nullptr) return nullptr;
        } else if (name == "EXT-X-PROGRAM-DATE-TIME") {
            date = parsedTimestamp(value);
            if (*date < 0.0) return nullptr;
        } else if (name == "EXT-X-CUE-OUT") {
            segment->cueOut = value;
        } else if (name == "EXT-X-CUE-OUT-CONT") {
            segment->cueOutCont = value;
        } else if (name == "EXT-X-DEFINE") {
            if (defines == nullptr) defines = std::make_shared<VELHLSDefineMap>();
            if (!define(value, *defines)) return nullptr;
        } else {
            return nullptr;
        }
        consumed += line + "\n";
        if (!segment->uri.empty()) break;
        line = nextLine(input);
        if (!input.good()) break;
    }
    if (segment->duration == 0.0 || segment->uri.empty()) return nullptr;
    if (segment->byteRange == nullptr) {
        if (const auto range = byteRangeOfUri(segment->uri)) {
            segment->byteRange = std::make_shared<VELHLSByteRange>(*range);
        }
    }
    segment->mediaSequenceNumber = previous == nullptr ? mediaSequence : previous->mediaSequenceNumber + 1;
    segment->discontinuitySequenceNumber =
        (previous == nullptr ? discontinuitySequence : previous->discontinuitySequenceNumber) +
        (segment->discontinuity ? 1 : 0);
    segment->programDateTime = date.value_or(0.0);
    if (previous != nullptr) {
        segment->startTime = previous->startTime + previous->duration;
        if (!date) segment->programDateTime = previous->programDateTime + previous->duration;
        if (segment->protectionData == nullptr) segment->protectionData = previous->protectionData;
        if (segment->misMap == nullptr) segment->misMap = previous->misMap;
    }
    if (segment->byteRange != nullptr && segment->byteRange->length < 0) return nullptr;
    if (segment->misMap != nullptr && segment->misMap->uri.empty()) return nullptr;
    return segment;
}

std::shared_ptr<VELHLSMediaStream> mediaStream(std::istream& input, VELHLSParsingStatus* status) {
    auto stream = std::make_shared<VELHLSMediaStream>();
    /// False when the playlist is rejected.
    const auto takeSegment = [&](const std::string& line, bool isPatternWanted) {
        const auto sequence = static_cast<std::uint64_t>(stream->mediaSequence);
        const auto discontinuitySequence = static_cast<std::uint64_t>(stream->discontinuitySequence);
        const auto previous = stream->segments.empty() ? nullptr : stream->segments.back();
        std::shared_ptr<VELHLSMediaPattern> pattern;
        const auto segment = nextSegment(previous, line, input, pattern, sequence, discontinuitySequence,
                                         stream->hlsDefineMap, status);
        if (pattern == nullptr) {
            if (segment == nullptr || isPatternWanted) return false;
            stream->segments.push_back(segment);
            if (line == "#EXT-X-DISCONTINUITY") stream->discontinuitySeen = true;
            return true;
        }
        const auto segments = pattern->createMediaSegments(previous, sequence, discontinuitySequence,
                                                           stream->hlsDefineMap, status);
        if (segments == nullptr) return false;
        stream->segments.insert(stream->segments.end(), segments->begin(), segments->end());
        return true;
    };
    static const std::set<std::string> segmentTags = {
        "EXTINF",        "EXT-X-BYTERANGE",   "EXT-X-KEY", "EXT-X-MAP", "EXT-X-PROGRAM-DATE-TIME",
        "EXT-X-CUE-OUT", "EXT-X-CUE-OUT-CONT"};
    while (input.good() && !(stream->endList && stream->hasExtM3U)) {
        const std::string line = nextLine(input);
        if (!startsWith(line, "#")) {
            if (!holdsOnly(line, " \t\n\r")) return nullptr;
            continue;
        }
        if (!startsWith(line, "#EXT")) {
            if (startsWith(line, "#ZOR-PATTERN_START") && !takeSegment(line, true)) return nullptr;
            continue;
        }
        const auto [name, value] = nameAndValue(line);
        if (line.find(':') == none) {
            if (name == "EXTM3U") stream->hasExtM3U = true;
            if (name == "EXT-X-ENDLIST") stream->endList = true;
            if (name == "EXT-X-I-FRAMES-ONLY") stream->iFramesOnly = true;
            if (name == "EXT-X-INDEPENDENT-SEGMENTS") stream->independentSegments = true;
            if (name == "EXT-X-DISCONTINUITY" && !takeSegment(line, false)) return nullptr;
            continue;
        }
        if (name == "EXT-X-VERSION") stream->version = std::stoi(value);
        if (name == "EXT-X-TARGETDURATION") {
            if (value.empty() || !holdsOnly(value, "0123456789.")) return nullptr;
            stream->targetDuration = std::stod(value);
        }
        if (name == "EXT-X-MEDIA-SEQUENCE" || name == "EXT-X-DISCONTINUITY-SEQUENCE") {
            if (value.empty() || !holdsOnly(value, "0123456789")) return nullptr;
            (name == "EXT-X-MEDIA-SEQUENCE" ? stream->mediaSequence : stream->discontinuitySequence) =
                std::stoll(value);
        }
        if (name == "EXT-X-PLAYLIST-TYPE") {
            if (value != "EVENT" && value != "VOD") return nullptr;
            stream->playlistType = value == "VOD" ? VELHLSMediaStream::Vod : VELHLSMediaStream::Event;
        }
        if (name == "EXT-X-START" && !start(value, stream->startTimeOffset, stream->startPrecise)) {
            return nullptr;
        }
        if (name == "EXT-X-DEFINE" && !define(value, *stream->hlsDefineMap)) return nullptr;
        if (segmentTags.count(name) != 0 && !takeSegment(line, false)) return nullptr;
    }
    if (status != nullptr) status->error = VELHLSParsingErrorNone;
    return stream;
}

std::shared_ptr<VELHLSParsedManifest> manifest(std::istream& input, VELHLSParsingStatus* status) {
    auto manifest = std::make_shared<VELHLSParsedManifest>();
    while (input.good()) {
        const std::string line = nextLine(input);
        if (!startsWith(line, "#")) {
            if (!holdsOnly(line, " \t\n\r")) return nullptr;
            continue;
        }
        const auto [name, value] = nameAndValue(line);
        if (startsWith(line, "#ZOR")) {
            const auto read = name == "ZOR-STREAM-INF" ? streamInformation(line) : nullptr;
            if (read != nullptr) manifest->zorStreamInformation.push_back(read);
            continue;
        }
        if (!startsWith(line, "#EXT")) continue;
        if (line.find(':') == none) {
            if (name == "EXTM3U" && manifest->hasHeader) break;
            if (name == "EXTM3U") {
                manifest->hasHeader = true;
            } else if (name == "EXT-X-INDEPENDENT-SEGMENTS") {
                manifest->independentSegments = true;
            } else {
                return nullptr;
            }
            continue;
        }
        if (name == "EXT-X-VERSION") manifest->version = std::stoi(value);
        if (name == "EXT-X-MEDIA") {
            const auto read = rendition(line);
            if (read == nullptr) return nullptr;
            manifest->renditions[read->type][read->groupId].emplace(read->name, read);
        }
        if (name == "EXT-X-STREAM-INF" || name == "EXT-X-I-FRAME-STREAM-INF") {
            const bool isIFrame = name != "EXT-X-STREAM-INF";
            const auto read = variant(line, isIFrame ? "" : nextLine(input));
            if (read == nullptr) return nullptr;
            manifest->variants.emplace(read->bandwidth, read);
            if (!isIFrame) manifest->streamVariants.push_back(read);
        }
        if (name == "EXT-X-SESSION-DATA") {
            manifest->sessionData.push_back(sessionData(line));
            if (manifest->sessionData.back() == nullptr) return nullptr;
        }
        if (name == "EXT-X-SESSION-KEY") {
            manifest->sessionKeys.push_back(key(line));
            if (manifest->sessionKeys.back() == nullptr) return nullptr;
        }
        if (name == "EXT-X-START" && !start(value, manifest->startTimeOffset, manifest->startPrecise)) {
            return nullptr;
        }
    }
    manifest->sanitize();
    if (!manifest->validate()) return nullptr;
    manifest->populateMetaData();
    if (status != nullptr) status->error = VELHLSParsingErrorNone;
    return manifest;
}

}  // namespace plain

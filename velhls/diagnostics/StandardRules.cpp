#include "velhls/diagnostics/StandardRules.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/Utf8.h"
#include "velhls/diagnostics/AttributeTypes.h"
#include "velhls/losses/LossText.h"
#include "velhls/losses/TagSpelling.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace velhls {
namespace {

namespace rule {

// clang-format off
constexpr VELHLSRule headerMissing = {"header-missing", VELHLSFinding::Warning, "The playlist has no #EXTM3U line.",
    "#EXTM3U", "RFC 8216, section 4.3.1.1", false};
constexpr VELHLSRule headerNotFirst = {"header-not-first", VELHLSFinding::Warning, "#EXTM3U is not the first line.",
    "#EXTM3U as the first line", "RFC 8216, section 4.3.1.1", false};
constexpr VELHLSRule headerRepeated = {"header-repeated", VELHLSFinding::Warning, "A media playlist has a second #EXTM3U line.",
    "one #EXTM3U", "RFC 8216, section 4.3.1.1", true};
constexpr VELHLSRule tagIgnored = {"tag-ignored", VELHLSFinding::Warning, "A tag that the library does not know is ignored.",
    "a tag that the library knows", "library behaviour", true};
constexpr VELHLSRule tagOfMediaPlaylist = {"tag-of-media-playlist", VELHLSFinding::Warning, "A master playlist holds a tag that only media playlists have.",
    "no tag of a media playlist", "RFC 8216, section 4.1", true};
constexpr VELHLSRule tagOfMasterPlaylist = {"tag-of-master-playlist", VELHLSFinding::Warning, "A media playlist holds a tag that only master playlists have.",
    "no tag of a master playlist", "RFC 8216, section 4.1", true};
constexpr VELHLSRule tagRepeated = {"tag-repeated", VELHLSFinding::Warning, "A tag that may stand once stands a second time.",
    "the tag once", "RFC 8216, section 4.3", true};
constexpr VELHLSRule defaultNotWritten = {"default-not-written", VELHLSFinding::Note, "A value that is the default is not written back.",
    "a value that is written back, other than the default", "library behaviour", true};
constexpr VELHLSRule carriageReturnInsideLine = {"carriage-return-inside-line", VELHLSFinding::Warning, "A carriage return stands inside a line.",
    "carriage returns before line feeds only", "RFC 8216, section 4.1", false};
constexpr VELHLSRule controlCharacter = {"control-character", VELHLSFinding::Warning, "A line holds a control character.",
    "no control character", "RFC 8216, section 4.1", false};
constexpr VELHLSRule notUtf8 = {"not-utf-8", VELHLSFinding::Warning, "A line is not UTF-8.",
    "UTF-8", "RFC 8216, section 4.1", false};
constexpr VELHLSRule versionUnknown = {"version-unknown", VELHLSFinding::Warning, "EXT-X-VERSION is none that RFC 8216 defines.",
    "a version from 1 to 7", "RFC 8216, section 4.3.1.2", false};
constexpr VELHLSRule versionTooLow = {"version-too-low", VELHLSFinding::Warning, "The playlist uses what its version does not have.",
    "a higher EXT-X-VERSION", "RFC 8216, section 7", false};
constexpr VELHLSRule attributeNameInvalid = {"attribute-name-invalid", VELHLSFinding::Warning, "An attribute's name holds other characters than A to Z, 0 to 9 and the hyphen.",
    "a name of the characters A to Z, 0 to 9 and -", "RFC 8216, section 4.2", false};
constexpr VELHLSRule attributeWrongType = {"attribute-wrong-type", VELHLSFinding::Warning, "A value has not the type that RFC 8216 gives its attribute.",
    "a value of the attribute's type", "RFC 8216, section 4.2", false};
constexpr VELHLSRule attributeEmptyNotWritten = {"attribute-empty-not-written", VELHLSFinding::Note, "An attribute whose value is empty is not written back.",
    "a value that is not empty", "library behaviour", true};
constexpr VELHLSRule startAdded = {"start-added", VELHLSFinding::Note, "A master playlist without EXT-X-START is written with TIME-OFFSET=-1.",
    "EXT-X-START", "library behaviour", false};
constexpr VELHLSRule variantsReordered = {"variants-reordered", VELHLSFinding::Note, "Variants are written by bandwidth, not in the order of the playlist.",
    "variants by ascending BANDWIDTH", "library behaviour", false};
constexpr VELHLSRule renditionInstreamIdUnknown = {"rendition-instream-id-unknown", VELHLSFinding::Warning, "INSTREAM-ID is none that RFC 8216 defines.",
    "CC1 to CC4, or SERVICE1 to SERVICE63", "RFC 8216, section 4.3.4.1", false};
constexpr VELHLSRule renditionSubtitlesUriMissing = {"rendition-subtitles-uri-missing", VELHLSFinding::Warning, "A subtitles rendition has no URI.",
    "URI", "RFC 8216, section 4.3.4.1", false};
constexpr VELHLSRule renditionsReordered = {"renditions-reordered", VELHLSFinding::Note, "Renditions are written by type, group and name, the forced ones of a group last.",
    "renditions by TYPE, GROUP-ID and NAME, those with FORCED=YES last", "library behaviour", false};
constexpr VELHLSRule targetDurationMissing = {"target-duration-missing", VELHLSFinding::Warning, "A media playlist has no EXT-X-TARGETDURATION.",
    "EXT-X-TARGETDURATION", "RFC 8216, section 4.3.3.1", false};
constexpr VELHLSRule targetDurationCut = {"target-duration-cut", VELHLSFinding::Warning, "A target duration that is no whole number is cut when it is written.",
    "whole seconds", "RFC 8216, section 4.3.3.1", false};
constexpr VELHLSRule targetDurationTooSmall = {"target-duration-too-small", VELHLSFinding::Warning, "A segment is longer than the target duration.",
    "a target duration that no segment's duration exceeds when rounded", "RFC 8216, section 4.3.3.1", false};
constexpr VELHLSRule sequenceAfterSegment = {"sequence-after-segment", VELHLSFinding::Warning, "EXT-X-MEDIA-SEQUENCE or EXT-X-DISCONTINUITY-SEQUENCE stands after a segment.",
    "the sequence number before the first segment", "RFC 8216, section 4.3.3.2", false};
// clang-format on

}  // namespace rule

constexpr std::array<std::string_view, 9> tagsThatStandOnce = {
    tag::version,        tag::independentSegments, tag::start,
    tag::targetDuration, tag::mediaSequence,       tag::discontinuitySequence,
    tag::endList,        tag::playlistType,        tag::iFramesOnly};

constexpr CharacterSet attributeNameCharacters("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-");

/// Control characters, those of U+0080 to U+009F too.
constexpr bool isControl(std::uint32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

bool isServiceId(std::string_view id) {
    constexpr std::string_view service = "SERVICE";
    if (!startsWith(id, service)) return false;
    const std::string_view number = id.substr(service.size());
    if (number.empty() || number.size() > 2 || !holdsOnly(number, digits) || number[0] == '0') return false;
    return number.size() == 1 || number <= "63";
}

bool isInstreamId(std::string_view id) {
    return id == "CC1" || id == "CC2" || id == "CC3" || id == "CC4" || isServiceId(id);
}

/// A value that the renderers leave out, since it is the default.
bool isDefaultValue(std::string_view name, std::string_view value) {
    if (name == attribute::defaultFlag || name == attribute::autoSelect || name == attribute::forced ||
        name == attribute::precise) {
        return value == fixed::no;
    }
    if (name == attribute::keyFormatVersions) return value == "1";
    const bool zeroIsAbsent = name == attribute::averageBandwidth || name == attribute::programId;
    return zeroIsAbsent && !value.empty() && holdsOnly(value, CharacterSet("0"));
}

constexpr std::array bareTagsOfMedia = {tag::extM3U, tag::endList, tag::iFramesOnly, tag::independentSegments,
                                        tag::cueIn,  tag::cueOut};
constexpr std::array tagsOfMedia = {tag::targetDuration, tag::mediaSequence, tag::discontinuitySequence,
                                    tag::playlistType,   tag::start,         tag::define,
                                    tag::version,        tag::cueIn};
constexpr std::array tagsOfMaster = {tag::start, tag::version, tag::zorStreamInf};

template <typename Names>
bool holds(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Whether the models pass over the tag.
bool isIgnored(const LossLine& line, VELHLSDiagnostics::PlaylistKind kind) {
    const bool isVendor = isVendorTag(line.text);
    const std::string_view name = line.tag.name;
    if (kind == VELHLSDiagnostics::Master) {
        return line.role == LineRole::alone && (isVendor || line.tag.hasColon) && !holds(tagsOfMaster, name);
    }
    if (line.role != LineRole::alone) {
        return isVendor && line.role == LineRole::record;
    }
    return line.tag.hasColon ? !holds(tagsOfMedia, name) : !holds(bareTagsOfMedia, name);
}

Place placeOf(const LossLine& line, std::string_view piece) {
    return placeIn(line.number, line.lineOfText, line.text, piece);
}

std::unordered_map<const void*, std::size_t> linesOf(const Reading& reading) {
    std::unordered_map<const void*, std::size_t> lines;
    for (const RecordLines& record : reading.records())
        lines[record.record] = record.firstLine;
    return lines;
}

}  // namespace

void StandardRules::lineRead(const LossLine& line) {
    checkCharacters(line);
    if (!line.isTag) return;
    if (kind_ == VELHLSDiagnostics::Master || !isVendorTag(line.text)) tagRead(line);
    if (isIgnored(line, kind_)) tagIgnored(line);
    if (line.attributes != nullptr) attributesRead(line);
}

void StandardRules::checkCharacters(const LossLine& read) {
    const std::string_view line = withoutTrailing(read.lineOfText, lineEnds);
    std::size_t position = 0;
    while (position < line.size()) {
        const utf8::Character character = utf8::firstCharacter(line.substr(position));
        const std::size_t length = character.length;
        if (length == 0) {
            findings_.add(rule::notUtf8, {read.number, position + 1, 1});
            return;
        }
        if (isControl(character.number)) {
            const bool isCarriageReturn = character.number == '\r';
            findings_.add(isCarriageReturn ? rule::carriageReturnInsideLine : rule::controlCharacter,
                          {read.number, position + 1, length}, isCarriageReturn ? "one" : "");
            return;
        }
        position += length;
    }
}

void StandardRules::tagRead(const LossLine& line) {
    const TagLine& tagLine = line.tag;
    const Place name = placeOf(line, tagLine.name);
    const Place value = tagLine.hasColon ? placeOf(line, tagLine.value) : name;
    countTag(line);
    if (tagLine.name == tag::extM3U && !tagLine.hasColon) headerRead(name);
    if (tagLine.name == tag::start) startSeen_ = true;
    if (tagLine.name == tag::version) version_ = value;
    if (kind_ != VELHLSDiagnostics::Media) return;
    if (tagLine.name == tag::targetDuration) {
        targetDuration_ = value;
        targetDurationIsKnown_ = !tagLine.value.empty() && holdsOnly(tagLine.value, digitsAndPoint);
    }
    const bool isZero = !tagLine.value.empty() && holdsOnly(tagLine.value, CharacterSet("0"));
    if (tagLine.name == tag::mediaSequence && isZero) mediaSequence_ = value;
    if (tagLine.name == tag::discontinuitySequence && isZero) discontinuitySequence_ = value;
    const bool isSequence = tagLine.name == tag::mediaSequence || tagLine.name == tag::discontinuitySequence;
    if (isSequence && segmentSeen_) findings_.add(rule::sequenceAfterSegment, name);
    if (tagLine.name == tag::extInf) {
        segmentSeen_ = true;
        checkDuration(line);
    }
    if (tagLine.name == tag::byteRange) needVersion(4, tag::byteRange, name);
    if (tagLine.name == tag::map && !map_) map_ = name;
    if (tagLine.name == tag::iFramesOnly) {
        iFramesOnly_ = true;
        needVersion(4, tag::iFramesOnly, name);
    }
}

void StandardRules::headerRead(const Place& name) {
    if (headerSeen_) {
        // In a master playlist the reader says what becomes of it.
        if (kind_ == VELHLSDiagnostics::Media) findings_.add(rule::headerRepeated, name);
        return;
    }
    headerSeen_ = true;
    if (name.line != 1) findings_.add(rule::headerNotFirst, name);
}

void StandardRules::countTag(const LossLine& line) {
    const auto found = std::find(tagsThatStandOnce.begin(), tagsThatStandOnce.end(), line.tag.name);
    if (found == tagsThatStandOnce.end()) return;
    const auto index = static_cast<std::size_t>(found - tagsThatStandOnce.begin());
    if (seenTags_.test(index)) findings_.add(rule::tagRepeated, placeOf(line, line.tag.name));
    seenTags_.set(index);
}

void StandardRules::tagIgnored(const LossLine& line) {
    const Place name = placeOf(line, line.tag.name);
    if (kind_ == VELHLSDiagnostics::Master && hasUse<ofMediaPlaylist>(line.tag.name)) {
        findings_.add(rule::tagOfMediaPlaylist, name);
    } else if (kind_ == VELHLSDiagnostics::Media && hasUse<ofMasterPlaylist>(line.tag.name)) {
        findings_.add(rule::tagOfMasterPlaylist, name);
    } else {
        findings_.add(rule::tagIgnored, name, quoted(line.tag.name) + didYouMean(line.tag.name));
    }
}

void StandardRules::attributesRead(const LossLine& line) {
    const bool isVendor = isVendorTag(line.text);
    line.forEachAttribute([&](const Attribute& attribute) {
        if (isVendor) return;
        // The first attribute of session data comes with the tag's colon.
        const bool hasColon = line.isTagNamed(tag::sessionData) && startsWith(attribute.name, ":");
        const std::string_view name = attribute.name.substr(hasColon ? 1 : 0);
        if (name.empty() || !holdsOnly(name, attributeNameCharacters)) {
            findings_.add(rule::attributeNameInvalid, placeOf(line, attribute.name));
        }
        checkType(line, attribute, name);
        checkDefault(line, attribute, name);
        needVersionForAttribute(line, attribute, name);
    });
    if (!line.isTagNamed(tag::media)) return;
    const auto valueOf = [&line](std::string_view name) {
        const Attribute* const attribute = line.find(name);
        return attribute == nullptr ? std::string_view() : attribute->value;
    };
    const bool isSubtitles = valueOf(attribute::type) == attribute::subtitles;
    if (isSubtitles && valueOf(attribute::uri).empty()) {
        findings_.add(rule::renditionSubtitlesUriMissing, placeOf(line, line.tag.name), "none");
    }
    const std::string_view id = valueOf(attribute::instreamId);
    const bool isCaptions = valueOf(attribute::type) == attribute::closedCaptions;
    if (id.empty() || !isCaptions || isInstreamId(id)) return;
    findings_.add(rule::renditionInstreamIdUnknown, placeOf(line, line.tag.name), quoted(id));
}

void StandardRules::checkType(const LossLine& line, const Attribute& attribute, std::string_view name) {
    const std::optional<AttributeType> type = typeOfAttribute(name);
    if (!type || hasType(attribute.value, attribute.isQuoted, *type)) return;
    findings_.add(rule::attributeWrongType, placeOf(line, attribute.value),
                  quoted(attribute.value) + (attribute.isQuoted ? " in quotes" : " without quotes") +
                      " where " + std::string(describe(*type)) + " must stand");
}

void StandardRules::checkDefault(const LossLine& line, const Attribute& attribute, std::string_view name) {
    if (attribute.value.empty() && typeOfAttribute(name)) {
        findings_.add(rule::attributeEmptyNotWritten, placeOf(line, attribute.name));
    } else if (isDefaultValue(name, attribute.value)) {
        findings_.add(rule::defaultNotWritten, placeOf(line, attribute.name),
                      std::string(name) + "=" + std::string(attribute.value));
    }
}

void StandardRules::needVersionForAttribute(const LossLine& line, const Attribute& attribute,
                                            std::string_view name) {
    // The place is worked out for those alone: in a line with carriage returns it takes a walk over the line.
    const auto need = [&](int version, std::string_view feature) {
        needVersion(version, feature, placeOf(line, attribute.name));
    };
    if (name == attribute::iv) need(2, name);
    if (name == attribute::keyFormat || name == attribute::keyFormatVersions) need(5, name);
    const bool isService = name == attribute::instreamId && isServiceId(attribute.value);
    if (isService) need(7, "INSTREAM-ID of a SERVICE");
}

void StandardRules::checkDuration(const LossLine& line) {
    const std::string_view duration = line.tag.value.substr(0, line.tag.value.find(','));
    const bool isFloat = duration.find('.') != std::string_view::npos;
    if (isFloat) needVersion(3, "a duration with decimals", placeOf(line, duration));
}

void StandardRules::needVersion(int version, std::string_view feature, const Place& place) {
    if (version <= need_.version) return;
    need_ = {version, std::string(feature), place};
}

void StandardRules::checkHeader() {
    const std::string_view firstLine = lines_.line(1);
    const bool isMarked = startsWith(firstLine, "\xEF\xBB\xBF#EXTM3U");
    if (!headerSeen_ && !isMarked) findings_.add(rule::headerMissing, {}, "none");
}

void StandardRules::checkVersion(int version) {
    constexpr int newest = 7;
    if (version_) {
        if (version < 1 || version > newest) findings_.add(rule::versionUnknown, *version_);
        if (version == 1) findings_.add(rule::defaultNotWritten, *version_);
    }
    if (need_.version <= std::max(version, 1)) return;
    const std::string why = need_.feature + " in line " + std::to_string(need_.place.line) + " needs " +
                            std::to_string(need_.version);
    findings_.add(rule::versionTooLow, version_ ? *version_ : need_.place,
                  (version_ ? std::to_string(version) : "none") + ", and " + why);
}

void StandardRules::masterRead(const VELHLSParsedManifest& manifest, const Reading& reading) {
    const auto lines = linesOf(reading);
    checkHeader();
    checkVersion(manifest.version);
    if (!startSeen_) findings_.add(rule::startAdded, {}, "none");

    std::size_t lastLine = 0;
    for (const auto& [bandwidth, variant] : manifest.variants) {
        const std::size_t line = lines.at(variant.get());
        if (line < lastLine) {
            findings_.add(rule::variantsReordered, placeOfAttribute(line, lines_.line(line), {}),
                          "a variant that is written after a later one");
            break;
        }
        lastLine = line;
    }
    checkOrderOfRenditions(manifest, reading);
}

void StandardRules::checkOrderOfRenditions(const VELHLSParsedManifest& manifest, const Reading& reading) {
    const auto lines = linesOf(reading);
    std::size_t lastLine = 0;
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const bool forced : {false, true}) {
                for (const auto& [name, rendition] : group) {
                    if (rendition->forced != forced) continue;
                    const std::size_t line = lines.at(rendition.get());
                    if (line < lastLine) {
                        findings_.add(rule::renditionsReordered,
                                      placeOfAttribute(line, lines_.line(line), {}),
                                      "a rendition that is written after a later one");
                        return;
                    }
                    lastLine = line;
                }
            }
        }
    }
}

void StandardRules::mediaRead(const VELHLSMediaStream& stream, const Reading& reading) {
    checkHeader();
    if (map_) needVersion(iFramesOnly_ ? 5 : 6, tag::map, *map_);
    checkVersion(stream.version);
    if (mediaSequence_ && stream.mediaSequence == 0) findings_.add(rule::defaultNotWritten, *mediaSequence_);
    if (discontinuitySequence_ && stream.discontinuitySequence == 0) {
        findings_.add(rule::defaultNotWritten, *discontinuitySequence_);
    }
    checkTargetDuration(stream, reading);
}

void StandardRules::checkTargetDuration(const VELHLSMediaStream& stream, const Reading& reading) {
    if (!targetDuration_) {
        findings_.add(rule::targetDurationMissing, {}, "none");
        return;
    }
    if (!targetDurationIsKnown_) return;
    if (stream.targetDuration != std::trunc(stream.targetDuration)) {
        findings_.add(rule::targetDurationCut, *targetDuration_);
    }
    auto segment = stream.segments.begin();
    std::size_t lastLine = 0;
    for (const RecordLines& record : reading.records()) {
        if (record.kind != RecordLines::Kind::record) continue;
        const double duration = (*segment++)->duration;
        // A pattern repeats its lines.
        if (record.firstLine <= lastLine) continue;
        lastLine = record.lastLine;
        // RFC 8216, section 4.3.3.1: rounded to the nearest integer.
        const bool isLonger = std::floor(duration + 0.5) > stream.targetDuration;
        if (!isLonger || findings_.isFull(rule::targetDurationTooSmall)) continue;
        findings_.add(
            rule::targetDurationTooSmall, placeOfDuration(record),
            inSeconds(duration) + " against a target duration of " + inSeconds(stream.targetDuration));
    }
}

/// The duration in the last EXTINF of a segment.
Place StandardRules::placeOfDuration(const RecordLines& record) const {
    for (std::size_t number = record.lastLine; number >= record.firstLine; --number) {
        std::string line(lines_.line(number));
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        if (!isTagLine(line, tag::extInf)) continue;
        const std::string_view value = TagLine(line).value;
        return placeIn(number, lines_.line(number), line, value.substr(0, value.find(',')));
    }
    return {record.firstLine, 1, 0};
}

std::vector<VELHLSRule> StandardRules::rules() {
    return {rule::headerMissing,
            rule::headerNotFirst,
            rule::headerRepeated,
            rule::tagIgnored,
            rule::tagOfMediaPlaylist,
            rule::tagOfMasterPlaylist,
            rule::tagRepeated,
            rule::defaultNotWritten,
            rule::carriageReturnInsideLine,
            rule::controlCharacter,
            rule::notUtf8,
            rule::versionUnknown,
            rule::versionTooLow,
            rule::attributeNameInvalid,
            rule::attributeWrongType,
            rule::attributeEmptyNotWritten,
            rule::startAdded,
            rule::variantsReordered,
            rule::renditionInstreamIdUnknown,
            rule::renditionSubtitlesUriMissing,
            rule::renditionsReordered,
            rule::targetDurationMissing,
            rule::targetDurationCut,
            rule::targetDurationTooSmall,
            rule::sequenceAfterSegment};
}

}  // namespace velhls

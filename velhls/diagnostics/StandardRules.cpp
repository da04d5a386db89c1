#include "velhls/diagnostics/StandardRules.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/Recorder.h"
#include "velhls/common/TextScan.h"
#include "velhls/diagnostics/AttributeTypes.h"
#include "velhls/diagnostics/FindingRecorder.h"
#include "velhls/diagnostics/TagKinds.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace velhls {
namespace {

constexpr std::array<std::string_view, 9> tagsThatStandOnce = {
    tag::version,        tag::independentSegments, tag::start,
    tag::targetDuration, tag::mediaSequence,       tag::discontinuitySequence,
    tag::endList,        tag::playlistType,        tag::iFramesOnly};

constexpr CharacterSet attributeNameCharacters("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-");

/// The length of the UTF-8 character at the start of the text; 0 when there is none.
std::size_t lengthOfCharacter(std::string_view text) {
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    if (byte(0) < 0x80) return 1;
    const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < length) return 0;
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80) return 0;
    }
    const bool overlong = (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90);
    const bool surrogate = byte(0) == 0xED && byte(1) >= 0xA0;
    const bool beyond = byte(0) == 0xF4 && byte(1) >= 0x90;
    return overlong || surrogate || beyond ? 0 : length;
}

/// Control characters but for line ends; those of U+0080 to U+009F are two bytes long.
bool isControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return first < 0x20 || first == 0x7F;
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

bool isQuoted(std::string_view value) {
    // Every value stands behind an equals sign or a quote.
    return value.data()[-1] == '"';
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

}  // namespace

void StandardRules::lineRead(std::size_t lineNumber) {
    const std::string_view line = withoutTrailing(lines_.line(lineNumber), lineEnds);
    std::size_t position = 0;
    while (position < line.size()) {
        const std::size_t length = lengthOfCharacter(line.substr(position));
        if (length == 0) {
            findings_.add(Rule::notUtf8, {lineNumber, position + 1, 1});
            return;
        }
        const std::string_view character = line.substr(position, length);
        if (isControl(character)) {
            const bool isCarriageReturn = character == "\r";
            findings_.add(isCarriageReturn ? Rule::carriageReturnInsideLine : Rule::controlCharacter,
                          {lineNumber, position + 1, length}, isCarriageReturn ? "one" : "");
            return;
        }
        position += length;
    }
}

void StandardRules::tagRead(const TagLine& tagLine, const Place& name, const Place& value) {
    countTag(tagLine, name);
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
    if (isSequence && segmentSeen_) findings_.add(Rule::sequenceAfterSegment, name);
    if (tagLine.name == tag::extInf) {
        segmentSeen_ = true;
        checkDuration(tagLine.value, value);
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
        if (kind_ == VELHLSDiagnostics::Media) findings_.add(Rule::headerRepeated, name);
        return;
    }
    headerSeen_ = true;
    if (name.line != 1) findings_.add(Rule::headerNotFirst, name);
}

void StandardRules::countTag(const TagLine& tagLine, const Place& name) {
    const auto found = std::find(tagsThatStandOnce.begin(), tagsThatStandOnce.end(), tagLine.name);
    if (found == tagsThatStandOnce.end()) return;
    const auto index = static_cast<std::size_t>(found - tagsThatStandOnce.begin());
    if (seenTags_.test(index)) findings_.add(Rule::tagRepeated, name);
    seenTags_.set(index);
}

void StandardRules::tagIgnored(const TagLine& tagLine, const Place& name) {
    if (kind_ == VELHLSDiagnostics::Master && isMediaTag(tagLine.name)) {
        findings_.add(Rule::tagOfMediaPlaylist, name);
    } else if (kind_ == VELHLSDiagnostics::Media && isMasterTag(tagLine.name)) {
        findings_.add(Rule::tagOfMasterPlaylist, name);
    } else {
        findings_.add(Rule::tagIgnored, name);
    }
}

void StandardRules::attributeRead(std::string_view tagName, const Attribute& attribute, const Place& name,
                                  const Place& value) {
    // The first attribute of session data comes with the tag's colon.
    const bool hasColon = tagName == tag::sessionData && startsWith(attribute.name, ":");
    const std::string_view attributeName = attribute.name.substr(hasColon ? 1 : 0);
    if (startsWith(tagName, "ZOR")) return;
    if (attributeName.empty() || !holdsOnly(attributeName, attributeNameCharacters)) {
        findings_.add(Rule::attributeNameInvalid, name);
    }
    checkType(attribute, attributeName, value);
    checkDefault(attribute, attributeName, name);
    needVersionForAttribute(attributeName, attribute.value, name);
}

void StandardRules::checkType(const Attribute& attribute, std::string_view name, const Place& value) {
    const std::optional<AttributeType> type = typeOfAttribute(name);
    if (!type || hasType(attribute.value, isQuoted(attribute.value), *type)) return;
    findings_.add(Rule::attributeWrongType, value,
                  quoted(attribute.value) + (isQuoted(attribute.value) ? " in quotes" : " without quotes") +
                      " where " + std::string(describe(*type)) + " must stand");
}

void StandardRules::checkDefault(const Attribute& attribute, std::string_view name, const Place& place) {
    if (attribute.value.empty() && typeOfAttribute(name)) {
        findings_.add(Rule::attributeEmptyNotWritten, place);
    } else if (isDefaultValue(name, attribute.value)) {
        findings_.add(Rule::defaultNotWritten, place, std::string(name) + "=" + std::string(attribute.value));
    }
}

void StandardRules::attributesRead(std::string_view tagName, const AttributeList& attributes,
                                   const Place& name) {
    if (tagName != tag::media) return;
    const bool isSubtitles = attributes.find(attribute::type) == attribute::subtitles;
    if (isSubtitles && attributes.find(attribute::uri).value_or("").empty()) {
        findings_.add(Rule::renditionSubtitlesUriMissing, name, "none");
    }
    const std::optional<std::string_view> id = attributes.find(attribute::instreamId);
    const bool isCaptions = attributes.find(attribute::type) == attribute::closedCaptions;
    if (!id || id->empty() || !isCaptions || isInstreamId(*id)) return;
    findings_.add(Rule::renditionInstreamIdUnknown, name, quoted(*id));
}

void StandardRules::needVersionForAttribute(std::string_view name, std::string_view text,
                                            const Place& place) {
    if (name == attribute::iv) needVersion(2, name, place);
    if (name == attribute::keyFormat || name == attribute::keyFormatVersions) needVersion(5, name, place);
    if (name == attribute::instreamId && isServiceId(text)) needVersion(7, "INSTREAM-ID of a SERVICE", place);
}

void StandardRules::checkDuration(std::string_view value, const Place& place) {
    const std::string_view duration = value.substr(0, value.find(','));
    const bool isFloat = duration.find('.') != std::string_view::npos;
    if (isFloat) needVersion(3, "a duration with decimals", {place.line, place.column, duration.size()});
}

void StandardRules::needVersion(int version, std::string_view feature, const Place& place) {
    if (version <= need_.version) return;
    need_ = {version, std::string(feature), place};
}

void StandardRules::checkHeader() {
    const std::string_view firstLine = lines_.line(1);
    const bool isMarked = startsWith(firstLine, "\xEF\xBB\xBF#EXTM3U");
    if (!headerSeen_ && !isMarked) findings_.add(Rule::headerMissing, {}, "none");
}

void StandardRules::checkVersion(int version) {
    constexpr int newest = 7;
    if (version_) {
        if (version < 1 || version > newest) findings_.add(Rule::versionUnknown, *version_);
        if (version == 1) findings_.add(Rule::defaultNotWritten, *version_);
    }
    if (need_.version <= std::max(version, 1)) return;
    const std::string why = need_.feature + " in line " + std::to_string(need_.place.line) + " needs " +
                            std::to_string(need_.version);
    findings_.add(Rule::versionTooLow, version_ ? *version_ : need_.place,
                  (version_ ? std::to_string(version) : "none") + ", and " + why);
}

void StandardRules::masterRead(const VELHLSParsedManifest& manifest, const FindingRecorder& places) {
    checkHeader();
    checkVersion(manifest.version);
    if (!startSeen_) findings_.add(Rule::startAdded, {}, "none");

    std::size_t lastLine = 0;
    for (const auto& [bandwidth, variant] : manifest.variants) {
        const Place place = places.placeOfRecord(variant.get()).value_or(Place());
        if (place.line < lastLine) {
            findings_.add(Rule::variantsReordered, place, "a variant that is written behind a later one");
            break;
        }
        lastLine = place.line;
    }
    checkOrderOfRenditions(manifest, places);
}

void StandardRules::checkOrderOfRenditions(const VELHLSParsedManifest& manifest,
                                           const FindingRecorder& places) {
    std::size_t lastLine = 0;
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const bool forced : {false, true}) {
                for (const auto& [name, rendition] : group) {
                    if (rendition->forced != forced) continue;
                    const Place place = places.placeOfRecord(rendition.get()).value_or(Place());
                    if (place.line < lastLine) {
                        findings_.add(Rule::renditionsReordered, place,
                                      "a rendition that is written behind a later one");
                        return;
                    }
                    lastLine = place.line;
                }
            }
        }
    }
}

void StandardRules::mediaRead(const VELHLSMediaStream& stream, const FindingRecorder& places) {
    checkHeader();
    if (map_) needVersion(iFramesOnly_ ? 5 : 6, tag::map, *map_);
    checkVersion(stream.version);
    if (mediaSequence_ && stream.mediaSequence == 0) findings_.add(Rule::defaultNotWritten, *mediaSequence_);
    if (discontinuitySequence_ && stream.discontinuitySequence == 0) {
        findings_.add(Rule::defaultNotWritten, *discontinuitySequence_);
    }
    checkTargetDuration(stream, places);
}

void StandardRules::checkTargetDuration(const VELHLSMediaStream& stream, const FindingRecorder& places) {
    if (!targetDuration_) {
        findings_.add(Rule::targetDurationMissing, {}, "none");
        return;
    }
    if (!targetDurationIsKnown_) return;
    if (stream.targetDuration != std::trunc(stream.targetDuration)) {
        findings_.add(Rule::targetDurationCut, *targetDuration_);
    }
    for (const auto& segment : stream.segments) {
        // RFC 8216, section 4.3.3.1: rounded to the nearest integer.
        if (!(std::floor(segment->duration + 0.5) > stream.targetDuration)) continue;
        const std::optional<Place> place = places.placeOfRecord(segment.get());
        if (!place) continue;
        findings_.add(Rule::targetDurationTooSmall, *place,
                      inSeconds(segment->duration) + " against a target duration of " +
                          inSeconds(stream.targetDuration));
    }
}

}  // namespace velhls

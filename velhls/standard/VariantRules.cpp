#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/Codecs.h"

namespace velhls {
namespace {

bool isStreamInf(const CheckedLine& checked) {
    return checked.is(tagIndexOf<tag::streamInf>);
}

std::string_view valueIn(const CheckedLine& checked, std::string_view name) {
    const VELHLSAttribute* const attribute = checked.find(name);
    return attribute == nullptr ? std::string_view() : attribute->value;
}

void findUriMissing(const CheckedLine& checked, const Tell& tell) {
    if (!isStreamInf(checked)) return;
    if (checked.variant != nullptr && checked.variant->uriLine == 0)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

void findAverageAbovePeak(const CheckedLine& checked, const Tell& tell) {
    const std::string_view text = valueIn(checked, attribute::averageBandwidth);
    if (text.empty()) return;
    const auto peak = VELHLSSyntax::readDecimalInteger(valueIn(checked, attribute::bandwidth));
    const auto average = VELHLSSyntax::readDecimalInteger(text);
    if (peak && average && *average > *peak) tell(checked.line, text);
}

/// Whether all of the list are identifiers, or may be.
bool areCodecs(std::string_view codecs) {
    bool areAll = true;
    forEachPart(codecs, ',',
                [&areAll](std::string_view codec) { areAll = areAll && isCodec(trimmed(codec)); });
    return areAll;
}

/// A blank after a comma is what RFC 6381 itself writes.
void findOddCodec(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const codecs = checked.find(attribute::codecs);
    if (codecs == nullptr || !codecs->quoted) return;
    forEachPart(codecs->value, ',', [&](std::string_view part) {
        const std::string_view codec =
            startsWith(part, " ") && part.data() != codecs->value.data() ? part.substr(1) : part;
        if (!isCodec(codec)) tell(checked.line, codec);
    });
}

/// The group of audio or video that a variant names; null for none.
const VELHLSAttribute* groupNamed(const CheckedLine& checked) {
    const VELHLSAttribute* const audio = checked.find(attribute::audio);
    return audio == nullptr ? checked.find(attribute::video) : audio;
}

void findCodecsMissing(const CheckedLine& checked, const Tell& tell) {
    const bool lacksCodecs = !checked.value.empty() && checked.find(attribute::codecs) == nullptr;
    if (isStreamInf(checked) && lacksCodecs && groupNamed(checked) == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

void findCodecsMissingOfGroup(const CheckedLine& checked, const Tell& tell) {
    if (checked.find(attribute::codecs) != nullptr) return;
    const VELHLSAttribute* const group = groupNamed(checked);
    if (group != nullptr) tell(checked.line, group->text, {{}, "none", {}});
}

void findAudioCodecMissing(const CheckedLine& checked, const Tell& tell) {
    if (checked.find(attribute::audio) == nullptr) return;
    const std::string_view codecs = valueIn(checked, attribute::codecs);
    if (codecs.empty()) return;
    if (areCodecs(codecs) && areAllKnown(codecs) && !hasCodec(codecs, CodecKind::audio))
        tell(checked.line, codecs);
}

bool hasVideo(const CheckedLine& checked) {
    return hasCodec(valueIn(checked, attribute::codecs), CodecKind::video);
}

void findResolutionMissing(const CheckedLine& checked, const Tell& tell) {
    if (isStreamInf(checked) && checked.find(attribute::resolution) == nullptr && hasVideo(checked))
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

void findFrameRateMissing(const CheckedLine& checked, const Tell& tell) {
    if (isStreamInf(checked) && checked.find("FRAME-RATE") == nullptr && hasVideo(checked))
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

void findLongFrameRate(const CheckedLine& checked, const Tell& tell) {
    const std::string_view rate = valueIn(checked, "FRAME-RATE");
    const std::size_t point = rate.find('.');
    constexpr std::size_t mostDecimals = 3;
    if (point != std::string_view::npos && rate.size() - point - 1 > mostDecimals) tell(checked.line, rate);
}

void findAttributeOfVariants(const CheckedLine& checked, const Tell& tell) {
    if (isStreamInf(checked)) return;
    constexpr std::array names = {std::string_view("FRAME-RATE"), attribute::audio, attribute::subtitles,
                                  attribute::closedCaptions};
    for (const VELHLSAttribute& attribute : checked.attributes) {
        if (std::find(names.begin(), names.end(), attribute.name) != names.end())
            tell(checked.line, attribute.name);
    }
}

/// The groups that there are, by TYPE and GROUP-ID.
std::set<std::pair<std::string_view, std::string_view>> groupsOf(const CheckedPlaylist& playlist) {
    std::set<std::pair<std::string_view, std::string_view>> groups;
    for (const std::uint32_t line : playlist.lines(tagIndexOf<tag::media>))
        groups.emplace(playlist.valueOf(line, attribute::type).value_or(""),
                       playlist.valueOf(line, attribute::groupId).value_or(""));
    return groups;
}

/// Goes through the lines of variants and of I-frame variants.
template <typename Visit>
void forEachVariant(const CheckedPlaylist& playlist, Visit visit) {
    for (const std::size_t tag : {tagIndexOf<tag::streamInf>, tagIndexOf<tag::iFrameStreamInf>}) {
        for (const std::uint32_t number : playlist.lines(tag))
            visit(number);
    }
}

void findGroupMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster()) return;
    const auto groups = groupsOf(playlist);
    constexpr std::array types = {attribute::audio, attribute::video, attribute::subtitles,
                                  attribute::closedCaptions};
    forEachVariant(playlist, [&](std::uint32_t number) {
        const bool namesOther = std::any_of(types.begin(), types.end(), [&](std::string_view type) {
            const auto name = playlist.valueOf(number, type);
            return name && groups.count({type, *name}) == 0;
        });
        if (!namesOther) return;
        const VELHLSLine line = playlist.document().line(number);
        for (const VELHLSAttribute& attribute : line.attributes()) {
            const bool isNone = attribute.name == attribute::closedCaptions && !attribute.quoted;
            if (isNone || std::find(types.begin(), types.end(), attribute.name) == types.end()) continue;
            if (groups.count({attribute.name, attribute.value}) != 0) continue;
            const std::string expected =
                "the GROUP-ID of an EXT-X-MEDIA with TYPE=" + std::string(attribute.name);
            tell(line, attribute.value, {expected, {}, {}});
        }
    });
}

bool hasNoCaptions(const CheckedPlaylist& playlist, std::uint32_t number) {
    if (playlist.valueOf(number, attribute::closedCaptions) != fixed::none) return false;
    const auto captions = playlist.document().line(number).attributes().find(attribute::closedCaptions);
    return captions && !captions->quoted && captions->value == fixed::none;
}

void findCaptionsElsewhere(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster()) return;
    std::size_t first = 0;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::streamInf>)) {
        if (first == 0 && hasNoCaptions(playlist, number)) first = number;
    }
    if (first == 0) return;
    const std::string expected = "CLOSED-CAPTIONS=NONE, as line " + std::to_string(first) + " has it";
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::streamInf>)) {
        if (hasNoCaptions(playlist, number)) continue;
        const VELHLSLine line = playlist.document().line(number);
        const auto captions = line.attributes().find(attribute::closedCaptions);
        tell(line, captions ? captions->text : line.name, {expected, captions ? "" : "none", {}});
    }
}

/// What an I-frame variant offers of the renditions of video.
void findIFrameRenditionMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster() || !playlist.has(tagIndexOf<tag::iFrameStreamInf>) ||
        !playlist.has(tagIndexOf<tag::media>))
        return;
    std::set<std::string_view> ofVariants;
    std::set<std::string_view> ofIFrames;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::streamInf>))
        ofVariants.insert(playlist.valueOf(playlist.document().line(number), attribute::video).value_or(""));
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::iFrameStreamInf>))
        ofIFrames.insert(playlist.valueOf(playlist.document().line(number), attribute::video).value_or(""));
    using Name = std::pair<std::string_view, std::string_view>;
    std::set<Name> names;
    const auto nameOf = [&playlist](const VELHLSLine& line) {
        return Name(playlist.valueOf(line, attribute::name).value_or(""),
                    playlist.valueOf(line, attribute::language).value_or(""));
    };
    std::vector<VELHLSLine> regular;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::media>)) {
        const VELHLSLine line = playlist.document().line(number);
        if (playlist.valueOf(line, attribute::type) != "VIDEO") continue;
        const std::string_view group = playlist.valueOf(line, attribute::groupId).value_or("");
        if (ofIFrames.count(group) != 0)
            names.insert(nameOf(line));
        else if (ofVariants.count(group) != 0)
            regular.push_back(line);
    }
    for (const VELHLSLine& line : regular) {
        if (names.count(nameOf(line)) == 0) tell(line, line.name, {{}, "none", {}});
    }
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"variant-without-uri", error, "No URI line follows EXT-X-STREAM-INF.",
       "a URI line after EXT-X-STREAM-INF", "RFC 8216, section 4.3.4.2", false}, "REQUIRED"}, findUriMissing},
    {{{"variant-average-above-bandwidth", warning, "AVERAGE-BANDWIDTH is higher than BANDWIDTH.",
       "no more than BANDWIDTH", "RFC 8216, section 4.3.4.2", false}, "MUST"}, findAverageAbovePeak},
    {{{"variant-codecs-malformed", error, "CODECS holds what is no identifier of RFC 6381.",
       "identifiers of RFC 6381 with commas between them", "RFC 8216, section 4.3.4.2", false}, "SYN"}, findOddCodec},
    {{{"variant-codecs-missing", warning, "A variant has no CODECS.",
       "CODECS", "RFC 8216, section 4.3.4.2", false}, "SHOULD"}, findCodecsMissing},
    {{{"variant-codecs-missing-for-group", error, "A variant that names a group of renditions has no CODECS.",
       "CODECS in a variant that names a group", "RFC 8216, section 4.3.4.1.1", false}, "MUST"}, findCodecsMissingOfGroup},
    {{{"variant-codecs-without-audio", warning, "A variant names a group of audio, and its CODECS names no audio.",
       "the formats of the group among the codecs", "RFC 8216, section 4.3.4.1.1", false}, "MUST"}, findAudioCodecMissing},
    {{{"variant-resolution-missing", note, "A variant with video has no RESOLUTION.",
       "RESOLUTION in a variant with video", "RFC 8216, section 4.3.4.2", false}, "REC"}, findResolutionMissing},
    {{{"variant-frame-rate-missing", note, "A variant with video has no FRAME-RATE.",
       "FRAME-RATE in a variant with video", "RFC 8216, section 4.3.4.2", false}, "REC"}, findFrameRateMissing},
    {{{"variant-frame-rate-too-long", error, "FRAME-RATE has more than three decimals.",
       "a number rounded to three decimals", "RFC 8216, section 4.3.4.2", false}, "SYN"}, findLongFrameRate},
    {{{"i-frame-variant-attribute-unexpected", error, "An I-frame variant has an attribute that only other variants have.",
       "no FRAME-RATE, AUDIO, SUBTITLES or CLOSED-CAPTIONS", "RFC 8216, section 4.3.4.3", false}, "SYN"}, findAttributeOfVariants},
};

constexpr PlaylistEntry relations[] = {
    {{{"variant-group-undefined", error, "A variant names a group that no EXT-X-MEDIA defines.",
       "a group that is there", "RFC 8216, section 4.3.4.2", false}, "MUST"}, findGroupMissing},
    {{{"variant-captions-none-not-everywhere", error, "One variant has CLOSED-CAPTIONS=NONE, and another has not.",
       "CLOSED-CAPTIONS=NONE in all variants", "RFC 8216, section 4.3.4.2", false}, "MUST"}, findCaptionsElsewhere},
    {{{"i-frame-rendition-missing", warning, "A rendition of video has no I-frame rendition with its NAME and LANGUAGE.",
       "an I-frame rendition with the same NAME and LANGUAGE", "RFC 8216, section 4.3.4.3", false}, "SHOULD"}, findIFrameRenditionMissing},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> variantRules() {
    return {rules, std::size(rules)};
}

StandardTable<CheckedPlaylist> variantRelationRules() {
    return {relations, std::size(relations)};
}

}  // namespace velhls

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/Codecs.h"

// Apple's authoring rules that one tag of attributes keeps or breaks.

namespace velhls {
namespace {

constexpr std::string_view describesVideo = "public.accessibility.describes-video";
constexpr std::string_view transcribes = "public.accessibility.transcribes-spoken-dialog";
constexpr std::string_view describesSound = "public.accessibility.describes-music-and-sound";
constexpr std::string_view fairPlay = "com.apple.streamingkeydelivery";

bool isStreamInf(const CheckedLine& checked) {
    return checked.is(tagIndexOf<tag::streamInf>);
}

bool isVariant(const CheckedLine& checked) {
    return isStreamInf(checked) || checked.is(tagIndexOf<tag::iFrameStreamInf>);
}

bool isRendition(const CheckedLine& checked, std::string_view type) {
    const VELHLSAttribute* const attribute = checked.find(attribute::type);
    return checked.is(tagIndexOf<tag::media>) && attribute != nullptr && attribute->value == type;
}

bool isKey(const CheckedLine& checked) {
    return checked.is(tagIndexOf<tag::key>) || checked.is(tagIndexOf<tag::sessionKey>);
}

std::string_view valueIn(const CheckedLine& checked, std::string_view name) {
    const VELHLSAttribute* const attribute = checked.find(name);
    return attribute == nullptr ? std::string_view() : attribute->value;
}

bool hasCharacteristic(const CheckedLine& checked, std::string_view wanted) {
    bool has = false;
    forEachPart(valueIn(checked, attribute::characteristics), ',',
                [&](std::string_view characteristic) { has = has || trimmed(characteristic) == wanted; });
    return has;
}

/// Goes through the codecs of a variant.
template <typename Visit>
void forEachCodec(const CheckedLine& checked, Visit visit) {
    if (!isVariant(checked) || checked.find(attribute::codecs) == nullptr) return;
    forEachPart(valueIn(checked, attribute::codecs), ',',
                [&](std::string_view codec) { visit(trimmed(codec)); });
}

template <std::size_t count>
bool isNamed(std::string_view codec, const std::array<std::string_view, count>& names) {
    return std::find(names.begin(), names.end(), codec.substr(0, codec.find('.'))) != names.end();
}

constexpr std::array<std::string_view, 9> allowedVideo = {"avc1", "avc3", "hvc1", "hev1", "dvh1",
                                                          "dvhe", "av01", "dav1", "dvav"};
constexpr std::array<std::string_view, 3> inBandNames = {"avc3", "hev1", "dvhe"};

void findOtherVideo(const CheckedLine& checked, const Tell& tell) {
    forEachCodec(checked, [&](std::string_view codec) {
        if (kindOfCodec(codec) == CodecKind::video && !isNamed(codec, allowedVideo))
            tell(checked.line, codec);
    });
}

void findInBandName(const CheckedLine& checked, const Tell& tell) {
    forEachCodec(checked, [&](std::string_view codec) {
        if (isNamed(codec, inBandNames)) tell(checked.line, codec);
    });
}

/// The number of two digits of base 16, whatever their case; nothing where they are none.
std::optional<unsigned> hexadecimalAt(std::string_view text, std::size_t place) {
    unsigned number = 0;
    if (place + 2 > text.size()) return std::nullopt;
    for (const char digit : text.substr(place, 2)) {
        const bool isLetter = (digit >= 'A' && digit <= 'F') || (digit >= 'a' && digit <= 'f');
        if (!isLetter && !isDigit(digit)) return std::nullopt;
        number = number * 16U + static_cast<unsigned>(isLetter ? (digit | 0x20) - 'a' + 10 : digit - '0');
    }
    return number;
}

/// "avc1.64001F": the profile, its constraints and the level, in two digits each.
void findHighAvc(const CheckedLine& checked, const Tell& tell) {
    forEachCodec(checked, [&](std::string_view codec) {
        if (!startsWith(codec, "avc1.") && !startsWith(codec, "avc3.")) return;
        constexpr unsigned high = 100;
        constexpr unsigned level52 = 52;
        const auto profile = hexadecimalAt(codec, 5);
        const auto level = hexadecimalAt(codec, 9);
        if (profile && level && (*profile > high || *level > level52)) tell(checked.line, codec);
    });
}

/// "hvc1.2.4.L153.B0": the profile, what it is compatible with, and the tier with thirty times the level.
void findHighHevc(const CheckedLine& checked, const Tell& tell) {
    forEachCodec(checked, [&](std::string_view codec) {
        if (!startsWith(codec, "hvc1.") && !startsWith(codec, "hev1.")) return;
        constexpr std::uint64_t main10 = 2;
        constexpr std::uint64_t level51 = 153;
        const std::string_view profileText = codec.substr(5, codec.find('.', 5) - 5);
        const auto profile = VELHLSSyntax::readDecimalInteger(profileText);
        const std::size_t tier = codec.find_first_of("LH", 5);
        const std::string_view levelText =
            tier == std::string_view::npos ? std::string_view() : codec.substr(tier + 1);
        const auto level = VELHLSSyntax::readDecimalInteger(levelText.substr(0, levelText.find('.')));
        if (profile.value_or(0) > main10 || level.value_or(0) > level51) tell(checked.line, codec);
    });
}

void findFastVideo(const CheckedLine& checked, const Tell& tell) {
    constexpr double most = 60.0;
    const auto rate = VELHLSSyntax::readDecimalFloatingPoint(valueIn(checked, "FRAME-RATE"));
    if (isVariant(checked) && rate && *rate > most) tell(checked.line, valueIn(checked, "FRAME-RATE"));
}

void findHighPeak(const CheckedLine& checked, const Tell& tell) {
    const auto peak = VELHLSSyntax::readDecimalInteger(valueIn(checked, attribute::bandwidth));
    const auto average = VELHLSSyntax::readDecimalInteger(valueIn(checked, attribute::averageBandwidth));
    if (isStreamInf(checked) && peak && average && *average > 0 && *peak / 2 > *average)
        tell(checked.line, valueIn(checked, attribute::bandwidth));
}

bool isDescribedVideo(const CheckedLine& checked) {
    return isRendition(checked, attribute::audio) && hasCharacteristic(checked, describesVideo);
}

/// Subtitles for the deaf and hard of hearing say both of what they hold.
bool isForDeaf(const CheckedLine& checked) {
    return isRendition(checked, attribute::subtitles) &&
           (hasCharacteristic(checked, transcribes) || hasCharacteristic(checked, describesSound));
}

void findNotSelected(const CheckedLine& checked, const Tell& tell, bool isAsked, std::string_view clause) {
    if (!isAsked || valueIn(checked, attribute::autoSelect) == fixed::yes) return;
    const VELHLSAttribute* const select = checked.find(attribute::autoSelect);
    tell(checked.line, select == nullptr ? checked.line.name : select->text,
         {{}, select == nullptr ? "none" : "", clause});
}

void findAccessibleNotSelected(const CheckedLine& checked, const Tell& tell) {
    findNotSelected(checked, tell, isDescribedVideo(checked), "Apple's authoring rules, 2.13");
    findNotSelected(checked, tell, isForDeaf(checked), "Apple's authoring rules, 4.6");
}

void findForcedNotSelected(const CheckedLine& checked, const Tell& tell) {
    const bool isForced =
        isRendition(checked, attribute::subtitles) && valueIn(checked, attribute::forced) == fixed::yes;
    findNotSelected(checked, tell, isForced, {});
}

void findHalfCharacteristics(const CheckedLine& checked, const Tell& tell) {
    if (isForDeaf(checked) &&
        hasCharacteristic(checked, transcribes) != hasCharacteristic(checked, describesSound))
        tell(checked.line, valueIn(checked, attribute::characteristics));
}

void findLanguageMissing(const CheckedLine& checked, const Tell& tell) {
    const bool isAsked = checked.is(tagIndexOf<tag::media>) && !isRendition(checked, attribute::video);
    if (!isAsked || checked.find(attribute::language) != nullptr) return;
    const std::string_view source =
        isDescribedVideo(checked)                         ? "Apple's authoring rules, 2.27"
        : isRendition(checked, attribute::closedCaptions) ? "Apple's authoring rules, 4.4"
        : isRendition(checked, attribute::subtitles)      ? "Apple's authoring rules, 4.7"
                                                          : "Apple's authoring rules, 8.10";
    tell(checked.line, checked.line.name, {{}, "none", source});
}

/// Of variants with video, as far as CODECS tells.
bool hasVideo(const CheckedLine& checked) {
    return checked.find(attribute::codecs) == nullptr ||
           hasCodec(valueIn(checked, attribute::codecs), CodecKind::video);
}

void findCodecsMissing(const CheckedLine& checked, const Tell& tell) {
    if (isVariant(checked) && checked.find(attribute::codecs) == nullptr)
        tell(checked.line, checked.line.name,
             {{}, "none", isStreamInf(checked) ? "" : "Apple's authoring rules, 9.3"});
}

void findResolutionMissing(const CheckedLine& checked, const Tell& tell) {
    if (isVariant(checked) && hasVideo(checked) && checked.find(attribute::resolution) == nullptr)
        tell(checked.line, checked.line.name,
             {{}, "none", isStreamInf(checked) ? "" : "Apple's authoring rules, 9.4"});
}

void findAverageMissing(const CheckedLine& checked, const Tell& tell) {
    if (isStreamInf(checked) && checked.find(attribute::averageBandwidth) == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

void findFrameRateMissing(const CheckedLine& checked, const Tell& tell) {
    if (isStreamInf(checked) && hasVideo(checked) && checked.find("FRAME-RATE") == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

void findAudioOnly(const CheckedLine& checked, const Tell& tell) {
    const std::string_view codecs = valueIn(checked, attribute::codecs);
    if (isStreamInf(checked) && !codecs.empty() && areAllKnown(codecs) && !hasCodec(codecs, CodecKind::video))
        tell(checked.line, codecs);
}

void findPathwayMissing(const CheckedLine& checked, const Tell& tell) {
    if (checked.is(tagIndex("EXT-X-CONTENT-STEERING")) && checked.find("PATHWAY-ID") == nullptr)
        tell(checked.line, checked.line.name, {{}, "none", {}});
}

bool isFairPlay(const CheckedLine& checked) {
    return isKey(checked) && (valueIn(checked, attribute::keyFormat) == fairPlay ||
                              startsWith(valueIn(checked, attribute::uri), "skd:"));
}

void findOtherMethod(const CheckedLine& checked, const Tell& tell) {
    if (isFairPlay(checked) && valueIn(checked, attribute::method) != fixed::sampleAes)
        tell(checked.line, checked.find(attribute::method) == nullptr ? checked.line.name
                                                                      : valueIn(checked, attribute::method));
}

void findOtherFormat(const CheckedLine& checked, const Tell& tell) {
    if (isFairPlay(checked) && valueIn(checked, attribute::keyFormat) != fairPlay)
        tell(checked.line, checked.find(attribute::keyFormat) == nullptr
                               ? checked.line.name
                               : valueIn(checked, attribute::keyFormat));
}

void findVector(const CheckedLine& checked, const Tell& tell) {
    if (isFairPlay(checked) && checked.find(attribute::iv) != nullptr)
        tell(checked.line, checked.find(attribute::iv)->text);
}

void findCounterMode(const CheckedLine& checked, const Tell& tell) {
    if (isKey(checked) && valueIn(checked, attribute::method) == "SAMPLE-AES-CTR")
        tell(checked.line, valueIn(checked, attribute::method));
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"authoring-video-codec", error, "Video is none of H.264, HEVC, Dolby Vision and AV1.",
       "H.264, HEVC, Dolby Vision or AV1", "Apple's authoring rules, 1.1", false}, "MUST"}, findOtherVideo},
    {{{"authoring-h264-level", error, "H.264 is above High Profile, level 5.2.",
       "no more than High Profile, level 5.2", "Apple's authoring rules, 1.3b", false}, "MUST"}, findHighAvc},
    {{{"authoring-hevc-level", error, "HEVC is above Main 10, level 5.1.",
       "no more than Main 10, level 5.1", "Apple's authoring rules, 1.6b", false}, "MUST"}, findHighHevc},
    {{{"authoring-codec-in-band", warning, "A codec has the name of streams whose parameters are in band.",
       "avc1, hvc1 or dvh1", "Apple's authoring rules, 1.10", false}, "SHOULD"}, findInBandName},
    {{{"authoring-frame-rate", error, "A frame rate is above 60.",
       "no more than 60", "Apple's authoring rules, 1.19", false}, "SHALL NOT"}, findFastVideo},
    {{{"authoring-peak-above-average", warning, "BANDWIDTH is more than twice AVERAGE-BANDWIDTH.",
       "no more than 200 % of AVERAGE-BANDWIDTH", "Apple's authoring rules, 1.30", false}, "SHOULD"}, findHighPeak},
    {{{"authoring-accessible-not-selected", error, "Described audio or subtitles for the deaf have no AUTOSELECT=YES.",
       "AUTOSELECT=YES", "Apple's authoring rules, 2.13", false}, "MUST"}, findAccessibleNotSelected},
    {{{"authoring-forced-not-selected", warning, "Forced subtitles have no AUTOSELECT=YES.",
       "AUTOSELECT=YES", "Apple's authoring rules, 5.11", false}, "SHOULD"}, findForcedNotSelected},
    {{{"authoring-characteristics", error, "Subtitles for the deaf name one of their two characteristics only.",
       "public.accessibility.transcribes-spoken-dialog and public.accessibility.describes-music-and-sound", "Apple's authoring rules, 4.5", false}, "MUST"}, findHalfCharacteristics},
    {{{"authoring-language-missing", error, "A rendition has no LANGUAGE.",
       "LANGUAGE", "Apple's authoring rules, 8.10", false}, "MUST"}, findLanguageMissing},
    {{{"authoring-codecs-missing", error, "A variant has no CODECS.",
       "CODECS", "Apple's authoring rules, 9.1", false}, "MUST"}, findCodecsMissing},
    {{{"authoring-resolution-missing", error, "A variant with video has no RESOLUTION.",
       "RESOLUTION", "Apple's authoring rules, 9.2", false}, "MUST"}, findResolutionMissing},
    {{{"authoring-average-bandwidth-missing", error, "A variant has no AVERAGE-BANDWIDTH.",
       "AVERAGE-BANDWIDTH", "Apple's authoring rules, 9.14", false}, "MUST"}, findAverageMissing},
    {{{"authoring-frame-rate-missing", error, "A variant with video has no FRAME-RATE.",
       "FRAME-RATE", "Apple's authoring rules, 9.15", false}, "MUST"}, findFrameRateMissing},
    {{{"authoring-audio-only", error, "A variant has audio only, which tvOS does not want.",
       "video in every variant", "Apple's authoring rules, 9.20", false}, "MUST"}, findAudioOnly},
    {{{"authoring-pathway-missing", warning, "EXT-X-CONTENT-STEERING has no PATHWAY-ID.",
       "PATHWAY-ID", "Apple's authoring rules, 9.18", false}, "SHOULD"}, findPathwayMissing},
    {{{"authoring-fairplay-method", error, "A FairPlay key has another METHOD than SAMPLE-AES.",
       "SAMPLE-AES", "Apple's authoring rules, 13.2", false}, "MUST"}, findOtherMethod},
    {{{"authoring-fairplay-format", error, "A FairPlay key has not its KEYFORMAT.",
       "KEYFORMAT=\"com.apple.streamingkeydelivery\"", "Apple's authoring rules, 13.3", false}, "MUST"}, findOtherFormat},
    {{{"authoring-fairplay-iv", warning, "A FairPlay key has an IV.",
       "no IV", "Apple's authoring rules, 13.4", false}, "SHOULD NOT"}, findVector},
    {{{"authoring-counter-mode", error, "METHOD is SAMPLE-AES-CTR.",
       "another METHOD than SAMPLE-AES-CTR", "Apple's authoring rules, 13.11", false}, "SHALL NOT"}, findCounterMode},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> authoringLineRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls

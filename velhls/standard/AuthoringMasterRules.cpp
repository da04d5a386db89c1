#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/Codecs.h"

// Apple's authoring rules for master playlists as a whole.

namespace velhls {
namespace {

constexpr std::size_t streamInf = tagIndexOf<tag::streamInf>;
constexpr std::size_t iFrameStreamInf = tagIndexOf<tag::iFrameStreamInf>;

/// What a variant says.
struct Variant {
    VELHLSLine line;
    std::string_view codecs;
    std::string_view resolution;
    std::string_view videoRange;
    std::uint64_t bandwidth = 0;

    [[nodiscard]] bool hasVideo() const { return codecs.empty() || hasCodec(codecs, CodecKind::video); }
    [[nodiscard]] bool isSdr() const { return videoRange.empty() || videoRange == "SDR"; }
    [[nodiscard]] bool names(std::string_view codec) const {
        bool has = false;
        forEachPart(codecs, ',',
                    [&](std::string_view each) { has = has || startsWith(trimmed(each), codec); });
        return has;
    }
    [[nodiscard]] bool isH264() const { return names("avc1") || names("avc3"); }
};

std::vector<Variant> variantsOf(const CheckedPlaylist& playlist, std::size_t tag) {
    std::vector<Variant> variants;
    if (!playlist.isMaster()) return variants;
    for (const std::uint32_t number : playlist.lines(tag)) {
        Variant variant;
        variant.line = playlist.document().line(number);
        variant.codecs = valueOf(variant.line, attribute::codecs).value_or("");
        variant.resolution = valueOf(variant.line, attribute::resolution).value_or("");
        variant.videoRange = valueOf(variant.line, "VIDEO-RANGE").value_or("");
        variant.bandwidth =
            VELHLSSyntax::readDecimalInteger(valueOf(variant.line, attribute::bandwidth).value_or(""))
                .value_or(0);
        variants.push_back(variant);
    }
    return variants;
}

std::vector<Variant> videoOf(const CheckedPlaylist& playlist, std::size_t tag = streamInf) {
    std::vector<Variant> variants = variantsOf(playlist, tag);
    variants.erase(std::remove_if(variants.begin(), variants.end(),
                                  [](const Variant& variant) { return !variant.hasVideo(); }),
                   variants.end());
    return variants;
}

/// Tells of the whole playlist, at the first variant.
void tellOfAll(const std::vector<Variant>& variants, const Tell& tell, std::string_view seen = "none") {
    tell(variants.front().line, variants.front().line.name, {{}, seen, {}});
}

template <typename Claim>
bool noneIs(const std::vector<Variant>& variants, Claim claim) {
    return !variants.empty() && std::none_of(variants.begin(), variants.end(), claim);
}

bool areCodecsTold(const std::vector<Variant>& variants) {
    return std::all_of(variants.begin(), variants.end(),
                       [](const Variant& variant) { return !variant.codecs.empty(); });
}

void findNoH264(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist);
    if (areCodecsTold(variants) && noneIs(variants, [](const Variant& variant) { return variant.isH264(); }))
        tellOfAll(variants, tell);
}

void findNoSdr(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist);
    if (noneIs(variants, [](const Variant& variant) { return variant.isSdr(); })) tellOfAll(variants, tell);
}

/// How far a variant is from the one that most should start with.
std::uint64_t distanceFromDefault(const Variant& variant) {
    constexpr std::uint64_t bitsPerSecond = 2000000;
    return variant.bandwidth > bitsPerSecond ? variant.bandwidth - bitsPerSecond
                                             : bitsPerSecond - variant.bandwidth;
}

void findOtherFirst(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist);
    if (variants.empty()) return;
    const auto nearest =
        std::min_element(variants.begin(), variants.end(), [](const Variant& left, const Variant& right) {
            return distanceFromDefault(left) < distanceFromDefault(right);
        });
    if (distanceFromDefault(*nearest) == distanceFromDefault(variants.front())) return;
    const std::string expected = "the variant of 2000 kbit/s first, or the one nearest to it, of line " +
                                 std::to_string(nearest->line.number);
    const std::string seen = std::to_string(variants.front().bandwidth / 1000) + " kbit/s";
    tell(variants.front().line, variants.front().line.name, {expected, seen, {}});
}

std::optional<double> aspectOf(const Variant& variant) {
    const auto resolution = VELHLSSyntax::readDecimalResolution(variant.resolution);
    if (!resolution || resolution->height == 0) return std::nullopt;
    return static_cast<double>(resolution->width) / static_cast<double>(resolution->height);
}

void findOtherAspect(const CheckedPlaylist& playlist, const Tell& tell) {
    std::optional<double> first;
    for (const Variant& variant : videoOf(playlist)) {
        const auto aspect = aspectOf(variant);
        if (!first) first = aspect;
        // Widths are rounded to what codecs can hold.
        constexpr double tolerance = 0.02;
        if (aspect && std::fabs(*aspect - *first) > tolerance * *first)
            tell(variant.line, variant.resolution);
    }
}

/// The groups of audio that have a rendition in stereo, as far as CHANNELS tells.
std::map<std::string_view, bool> stereoGroups(const CheckedPlaylist& playlist) {
    std::map<std::string_view, bool> groups;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::media>)) {
        const VELHLSLine line = playlist.document().line(number);
        if (valueOf(line, attribute::type) != attribute::audio) continue;
        const std::string_view channels = valueOf(line, "CHANNELS").value_or("2");
        groups[valueOf(line, attribute::groupId).value_or("")] |=
            channels.substr(0, channels.find('/')) == "2";
    }
    return groups;
}

void findNoStereo(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = variantsOf(playlist, streamInf);
    const auto groups = stereoGroups(playlist);
    const bool hasAudio = std::any_of(variants.begin(), variants.end(), [](const Variant& variant) {
        return hasCodec(variant.codecs, CodecKind::audio);
    });
    const bool hasStereo = std::any_of(variants.begin(), variants.end(), [&groups](const Variant& variant) {
        const auto group = groups.find(valueOf(variant.line, attribute::audio).value_or(""));
        return variant.names("mp4a.40") && (group == groups.end() || group->second);
    });
    if (hasAudio && !hasStereo) tellOfAll(variants, tell);
}

void findNoAc3(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = variantsOf(playlist, streamInf);
    const auto enhanced = std::find_if(variants.begin(), variants.end(),
                                       [](const Variant& variant) { return variant.names("ec-3"); });
    if (enhanced == variants.end() ||
        std::any_of(variants.begin(), variants.end(),
                    [](const Variant& variant) { return variant.names("ac-3"); }))
        return;
    tell(enhanced->line, enhanced->codecs);
}

void findNoText(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist);
    if (variants.empty()) return;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::media>)) {
        const std::string_view type = valueOf(playlist.document().line(number), attribute::type).value_or("");
        if (type == attribute::subtitles || type == attribute::closedCaptions) return;
    }
    tellOfAll(variants, tell);
}

void findNoIFrames(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist);
    if (!variants.empty() && !playlist.has(iFrameStreamInf)) tellOfAll(variants, tell);
}

void findOneIFrameRate(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = variantsOf(playlist, iFrameStreamInf);
    const bool differ = std::any_of(variants.begin(), variants.end(), [&](const Variant& variant) {
        return variant.bandwidth != variants.front().bandwidth;
    });
    if (!variants.empty() && !differ) tellOfAll(variants, tell, "one bit rate");
}

void findNoH264IFrames(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist, iFrameStreamInf);
    if (areCodecsTold(variants) && noneIs(variants, [](const Variant& variant) { return variant.isH264(); }))
        tellOfAll(variants, tell);
}

void findNoSdrIFrames(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist, iFrameStreamInf);
    if (noneIs(variants, [](const Variant& variant) { return variant.isSdr(); })) tellOfAll(variants, tell);
}

void findOneRate(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist);
    const bool differ = std::any_of(variants.begin(), variants.end(), [&](const Variant& variant) {
        return variant.bandwidth != variants.front().bandwidth;
    });
    if (!variants.empty() && !differ) tellOfAll(variants, tell, "one bit rate");
}

void findOneHighest(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::uint64_t highDefinition = 720;
    std::uint64_t highest = 0;
    std::vector<Variant> best;
    for (const Variant& variant : videoOf(playlist)) {
        const auto resolution = VELHLSSyntax::readDecimalResolution(variant.resolution);
        if (!resolution || resolution->height < std::max(highest, highDefinition)) continue;
        if (resolution->height > highest) best.clear();
        highest = resolution->height;
        best.push_back(variant);
    }
    if (best.size() == 1) tell(best.front().line, best.front().resolution, {{}, "one", {}});
}

void findDependentSegments(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = videoOf(playlist);
    if (!variants.empty() && !playlist.has(tagIndexOf<tag::independentSegments>)) tellOfAll(variants, tell);
}

void findRangeMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    std::vector<Variant> variants = videoOf(playlist);
    const auto iFrames = videoOf(playlist, iFrameStreamInf);
    variants.insert(variants.end(), iFrames.begin(), iFrames.end());
    const bool areAllSdr = std::all_of(variants.begin(), variants.end(), [](const Variant& variant) {
        return variant.isSdr() && !variant.names("dvh1") && !variant.names("dvhe");
    });
    if (areAllSdr) return;
    for (const Variant& variant : variants) {
        if (variant.videoRange.empty()) tell(variant.line, variant.line.name, {{}, "none", {}});
    }
}

/// "en" before "en-GB", in each group.
void findSpecificFirst(const CheckedPlaylist& playlist, const Tell& tell) {
    using Key = std::pair<std::string_view, std::string_view>;
    std::map<Key, std::map<std::string_view, std::uint32_t>> specific;
    if (!playlist.isMaster()) return;
    for (const std::uint32_t number : playlist.lines(tagIndexOf<tag::media>)) {
        const VELHLSLine line = playlist.document().line(number);
        const auto language = line.attributes().find(attribute::language);
        if (!language) continue;
        const Key group(valueOf(line, attribute::type).value_or(""),
                        valueOf(line, attribute::groupId).value_or(""));
        const std::size_t hyphen = language->value.find('-');
        auto& ofGroup = specific[group];
        if (hyphen != std::string_view::npos) {
            ofGroup.emplace(language->value.substr(0, hyphen), number);
            continue;
        }
        const auto before = ofGroup.find(language->value);
        if (before == ofGroup.end()) continue;
        const std::string seen = "it after the more specific one of line " + std::to_string(before->second);
        tell(line, language->value, {{}, seen, {}});
    }
}

void findScoreMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto variants = variantsOf(playlist, streamInf);
    const auto hasScore = [](const Variant& variant) { return valueOf(variant.line, "SCORE").has_value(); };
    if (std::none_of(variants.begin(), variants.end(), hasScore)) return;
    for (const Variant& variant : variants) {
        if (!hasScore(variant)) tell(variant.line, variant.line.name, {{}, "none", {}});
    }
}

void findNoSlowVariant(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::uint64_t cellular = 192000;
    const auto variants = variantsOf(playlist, streamInf);
    if (noneIs(variants, [](const Variant& variant) { return variant.bandwidth <= cellular; }))
        tellOfAll(variants, tell);
}

void findPlainHttp(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster()) return;
    for (const VELHLSUri& uri : playlist.document().uris()) {
        const VELHLSLine line = playlist.document().line(uri.line);
        const bool isPlaylist =
            uri.attribute.empty() || line.name == tag::media || line.name == tag::iFrameStreamInf;
        if (isPlaylist && startsWith(uri.text, "http://")) tell(line, uri.text);
    }
}

// clang-format off
constexpr PlaylistEntry rules[] = {
    {{{"authoring-h264-missing", warning, "No variant has H.264.",
       "some video in H.264", "Apple's authoring rules, 1.12", false}, "SHOULD"}, findNoH264},
    {{{"authoring-sdr-missing", error, "No variant is of standard dynamic range.",
       "a variant in SDR", "Apple's authoring rules, 1.24", false}, "MUST"}, findNoSdr},
    {{{"authoring-first-variant", warning, "The first variant is not the one of 2000 kbit/s.",
       "the variant of 2000 kbit/s first", "Apple's authoring rules, 1.32", false}, "SHOULD"}, findOtherFirst},
    {{{"authoring-aspect-ratio", warning, "Variants have other aspect ratios.",
       "the aspect ratio of the first variant", "Apple's authoring rules, 1.33", false}, "SHOULD"}, findOtherAspect},
    {{{"authoring-stereo-missing", error, "There is no stereo audio in AAC.",
       "a variant with stereo audio in AAC", "Apple's authoring rules, 2.3", false}, "MUST"}, findNoStereo},
    {{{"authoring-ac3-missing", error, "There is E-AC-3, and no AC-3.",
       "AC-3 where there is E-AC-3", "Apple's authoring rules, 2.6", false}, "MUST"}, findNoAc3},
    {{{"authoring-text-missing", warning, "There are neither captions nor subtitles.",
       "closed captions or subtitles", "Apple's authoring rules, 4.1", false}, "SHOULD"}, findNoText},
    {{{"authoring-i-frames-missing", error, "There is no I-frame playlist.",
       "EXT-X-I-FRAME-STREAM-INF", "Apple's authoring rules, 6.1", false}, "MUST"}, findNoIFrames},
    {{{"authoring-i-frame-rates", warning, "The I-frame playlists have one bit rate.",
       "I-frame playlists of several bit rates", "Apple's authoring rules, 6.6", false}, "SHOULD"}, findOneIFrameRate},
    {{{"authoring-i-frame-h264-missing", warning, "No I-frame playlist has H.264.",
       "an I-frame playlist in H.264", "Apple's authoring rules, 6.14", false}, "SHOULD"}, findNoH264IFrames},
    {{{"authoring-i-frame-sdr-missing", error, "No I-frame playlist is of standard dynamic range.",
       "an I-frame playlist in SDR", "Apple's authoring rules, 6.16", false}, "MUST"}, findNoSdrIFrames},
    {{{"authoring-bit-rates", error, "All variants have one bit rate.",
       "variants of several bit rates", "Apple's authoring rules, 9.9", false}, "MUST"}, findOneRate},
    {{{"authoring-highest-resolution", warning, "One variant alone has the highest resolution.",
       "two variants of the highest resolution", "Apple's authoring rules, 9.10", false}, "SHOULD"}, findOneHighest},
    {{{"authoring-independent-segments-missing", warning, "The master playlist has no EXT-X-INDEPENDENT-SEGMENTS.",
       "EXT-X-INDEPENDENT-SEGMENTS", "Apple's authoring rules, 9.11", false}, "SHOULD"}, findDependentSegments},
    {{{"authoring-video-range-missing", error, "A variant has no VIDEO-RANGE, and not all are of standard dynamic range.",
       "VIDEO-RANGE, unless all variants are in SDR", "Apple's authoring rules, 9.16", false}, "MUST"}, findRangeMissing},
    {{{"authoring-language-order", warning, "A language stands after a more specific form of it.",
       "renditions from the general language to the specific", "Apple's authoring rules, 9.17", false}, "SHOULD"}, findSpecificFirst},
    {{{"authoring-score-missing", error, "A variant has no SCORE, and another one has.",
       "SCORE in every variant or in none", "Apple's authoring rules, 9.19", false}, "MUST"}, findScoreMissing},
    {{{"authoring-slow-variant-missing", error, "No variant is slow enough for cellular networks.",
       "a variant of at most 192 kbit/s", "Apple's authoring rules, 9.21", false}, "MUST"}, findNoSlowVariant},
    {{{"authoring-playlist-not-https", warning, "A media playlist is fetched by http.",
       "https", "Apple's authoring rules, 11.2", false}, "SHOULD"}, findPlainHttp},
};
// clang-format on

}  // namespace

StandardTable<CheckedPlaylist> authoringMasterRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls

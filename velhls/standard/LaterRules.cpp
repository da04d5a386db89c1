#include <array>
#include <iterator>
#include <optional>
#include <set>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"

// What the successor of RFC 8216 adds, as far as its plain rules between tags and attributes go. Their syntax is that of the
// tables, and found with all other syntax.

namespace velhls {
namespace {

constexpr std::size_t part = tagIndex("EXT-X-PART");
constexpr std::size_t partInf = tagIndex("EXT-X-PART-INF");
constexpr std::size_t serverControl = tagIndex("EXT-X-SERVER-CONTROL");
constexpr std::size_t preloadHint = tagIndex("EXT-X-PRELOAD-HINT");
constexpr std::size_t renditionReport = tagIndex("EXT-X-RENDITION-REPORT");
constexpr std::size_t define = tagIndexOf<tag::define>;

std::optional<double> secondsOf(std::optional<std::string_view> text) {
    return text ? VELHLSSyntax::readDecimalFloatingPoint(*text) : std::nullopt;
}

/// The longest part, in seconds.
std::optional<double> partTarget(const CheckedPlaylist& playlist) {
    return playlist.has(partInf) ? secondsOf(valueOf(playlist.firstLine(partInf), "PART-TARGET"))
                                 : std::nullopt;
}

void findOtherDefinition(const CheckedLine& checked, const Tell& tell) {
    if (!checked.is(define)) return;
    std::size_t count = 0;
    for (const std::string_view name :
         {attribute::name, std::string_view("IMPORT"), std::string_view("QUERYPARAM")})
        count += checked.find(name) == nullptr ? 0 : 1;
    if (count != 1) tell(checked.line, checked.line.name, {{}, count == 0 ? "none" : "several", {}});
}

void findDefinitionWithoutValue(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const name = checked.find(attribute::name);
    if (checked.is(define) && name != nullptr && checked.find(attribute::value) == nullptr)
        tell(checked.line, name->text, {{}, "none", {}});
}

void findImportInMaster(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const imported = checked.find("IMPORT");
    if (checked.is(define) && checked.playlist.isMaster() && imported != nullptr)
        tell(checked.line, imported->text);
}

void findInterstitialWithoutAsset(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const category = checked.find("CLASS");
    if (category == nullptr || category->value != "com.apple.hls.interstitial") return;
    const bool hasUri = checked.find("X-ASSET-URI") != nullptr;
    const bool hasList = checked.find("X-ASSET-LIST") != nullptr;
    if (hasUri == hasList) tell(checked.line, category->text, {{}, hasUri ? "both" : "neither", {}});
}

void findSkippedDateRanges(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const ranges = checked.find("CAN-SKIP-DATERANGES");
    if (checked.is(serverControl) && ranges != nullptr && checked.find("CAN-SKIP-UNTIL") == nullptr)
        tell(checked.line, ranges->text, {{}, "none", {}});
}

/// Tells of seconds of EXT-X-SERVER-CONTROL that are fewer than they must be.
void findTooFew(const CheckedPlaylist& playlist, const Tell& tell, std::string_view name,
                std::optional<double> unit, double times) {
    if (!playlist.has(serverControl) || !unit) return;
    const VELHLSLine line = playlist.firstLine(serverControl);
    const auto attribute = line.attributes().find(name);
    const auto seconds = attribute ? secondsOf(attribute->value) : std::nullopt;
    // A product of decimals is not exact.
    constexpr double rounding = 1e-6;
    if (seconds && *seconds + rounding < times * *unit) tell(line, attribute->value);
}

std::optional<double> targetOf(const CheckedPlaylist& playlist) {
    const auto target = playlist.targetDuration();
    if (!target) return std::nullopt;
    return static_cast<double>(*target);
}

void findShortSkipBoundary(const CheckedPlaylist& playlist, const Tell& tell) {
    findTooFew(playlist, tell, "CAN-SKIP-UNTIL", targetOf(playlist), 6.0);
}

void findShortHoldBack(const CheckedPlaylist& playlist, const Tell& tell) {
    findTooFew(playlist, tell, "HOLD-BACK", targetOf(playlist), 3.0);
}

void findShortPartHoldBack(const CheckedPlaylist& playlist, const Tell& tell) {
    findTooFew(playlist, tell, "PART-HOLD-BACK", partTarget(playlist), 2.0);
}

void findAbsoluteReport(const CheckedLine& checked, const Tell& tell) {
    const VELHLSAttribute* const uri = checked.find(attribute::uri);
    if (checked.is(renditionReport) && uri != nullptr && uri->value.find("://") != std::string_view::npos)
        tell(checked.line, uri->value);
}

constexpr CharacterSet ofStableIds("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=.-_");

void findOddStableId(const CheckedLine& checked, const Tell& tell) {
    for (const std::string_view name : {"STABLE-VARIANT-ID", "STABLE-RENDITION-ID"}) {
        const VELHLSAttribute* const id = checked.find(name);
        const bool isOdd = id != nullptr && (id->value.empty() || !holdsOnly(id->value, ofStableIds));
        if (isOdd && checked.line.definition->findAttribute(name) != nullptr) tell(checked.line, id->value);
    }
}

void findNameDefinedTwice(const CheckedPlaylist& playlist, const Tell& tell) {
    std::set<std::string_view> names;
    for (const std::uint32_t number : playlist.lines(define)) {
        const VELHLSLine line = playlist.document().line(number);
        for (const VELHLSAttribute& attribute : line.attributes()) {
            const bool isName = attribute.name == attribute::name || attribute.name == "IMPORT" ||
                                attribute.name == "QUERYPARAM";
            if (isName && !names.insert(attribute.value).second) tell(line, attribute.value);
        }
    }
}

void findPartsWithoutTarget(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.has(part) || playlist.has(partInf)) return;
    const VELHLSLine line = playlist.firstLine(part);
    tell(line, line.name, {{}, "none", {}});
}

void findPartsWithoutHoldBack(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.has(partInf)) return;
    const bool isTold =
        playlist.has(serverControl) && valueOf(playlist.firstLine(serverControl), "PART-HOLD-BACK");
    const VELHLSLine line = playlist.firstLine(partInf);
    if (!isTold) tell(line, line.name, {{}, "none", {}});
}

void findLongPart(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto target = partTarget(playlist);
    if (!target) return;
    for (const std::uint32_t number : playlist.lines(part)) {
        const VELHLSLine line = playlist.document().line(number);
        const auto duration = line.attributes().find("DURATION");
        const auto seconds = duration ? secondsOf(duration->value) : std::nullopt;
        constexpr double rounding = 1e-6;
        if (seconds && *seconds > *target + rounding) tell(line, duration->value);
    }
}

void findHintTwice(const CheckedPlaylist& playlist, const Tell& tell) {
    std::set<std::string_view> types;
    for (const std::uint32_t number : playlist.lines(preloadHint)) {
        const VELHLSLine line = playlist.document().line(number);
        const auto type = line.attributes().find(attribute::type);
        if (type && !types.insert(type->value).second) tell(line, type->text);
    }
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"define-ambiguous", error, "EXT-X-DEFINE has not exactly one of NAME, IMPORT and QUERYPARAM.",
       "one of NAME, IMPORT and QUERYPARAM", "draft-pantos-hls-rfc8216bis, section 4.4.2.3", false}, "MUST"}, findOtherDefinition},
    {{{"define-without-value", error, "EXT-X-DEFINE has a NAME and no VALUE.",
       "VALUE with NAME", "draft-pantos-hls-rfc8216bis, section 4.4.2.3", false}, "REQUIRED"}, findDefinitionWithoutValue},
    {{{"define-import-in-master", error, "A master playlist imports a variable, which only media playlists can.",
       "no IMPORT in a master playlist", "draft-pantos-hls-rfc8216bis, section 4.4.2.3", false}, "MUST NOT"}, findImportInMaster},
    {{{"interstitial-asset-ambiguous", error, "An interstitial has not exactly one of X-ASSET-URI and X-ASSET-LIST.",
       "X-ASSET-URI or X-ASSET-LIST", "draft-pantos-hls-rfc8216bis, appendix D.2", false}, "MUST"}, findInterstitialWithoutAsset},
    {{{"skip-date-ranges-without-boundary", error, "CAN-SKIP-DATERANGES stands without CAN-SKIP-UNTIL.",
       "CAN-SKIP-UNTIL with CAN-SKIP-DATERANGES", "draft-pantos-hls-rfc8216bis, section 4.4.3.8", false}, "REQUIRED"}, findSkippedDateRanges},
    {{{"rendition-report-absolute", error, "The URI of EXT-X-RENDITION-REPORT is not relative.",
       "a URI relative to the playlist", "draft-pantos-hls-rfc8216bis, section 4.4.5.4", false}, "MUST"}, findAbsoluteReport},
    {{{"stable-id-malformed", error, "A stable identifier holds other characters than it may.",
       "letters, digits and + / = . - _", "draft-pantos-hls-rfc8216bis, section 4.4.6.2", false}, "SYN"}, findOddStableId},
};

constexpr PlaylistEntry relations[] = {
    {{{"skip-boundary-short", error, "CAN-SKIP-UNTIL is less than six target durations.",
       "at least six target durations", "draft-pantos-hls-rfc8216bis, section 4.4.3.8", false}, "MUST"}, findShortSkipBoundary},
    {{{"hold-back-short", error, "HOLD-BACK is less than three target durations.",
       "at least three target durations", "draft-pantos-hls-rfc8216bis, section 4.4.3.8", false}, "MUST"}, findShortHoldBack},
    {{{"part-hold-back-short", error, "PART-HOLD-BACK is less than two part target durations.",
       "at least two part target durations", "draft-pantos-hls-rfc8216bis, section 4.4.3.8", false}, "MUST"}, findShortPartHoldBack},
    {{{"define-name-repeated", error, "A variable is defined twice.",
       "another name", "draft-pantos-hls-rfc8216bis, section 4.4.2.3", false}, "MUST NOT"}, findNameDefinedTwice},
    {{{"parts-without-target", warning, "A playlist has EXT-X-PART, and no EXT-X-PART-INF.",
       "EXT-X-PART-INF in a playlist with EXT-X-PART", "draft-pantos-hls-rfc8216bis, section 4.4.3.7", false}, "REQUIRED"}, findPartsWithoutTarget},
    {{{"parts-without-hold-back", warning, "A playlist has EXT-X-PART-INF, and no PART-HOLD-BACK.",
       "EXT-X-SERVER-CONTROL with PART-HOLD-BACK", "draft-pantos-hls-rfc8216bis, section 4.4.3.8", false}, "REQUIRED"}, findPartsWithoutHoldBack},
    {{{"part-too-long", error, "A part is longer than PART-TARGET.",
       "no more than PART-TARGET", "draft-pantos-hls-rfc8216bis, section 4.4.4.9", false}, "MUST"}, findLongPart},
    {{{"preload-hint-twice", error, "Two EXT-X-PRELOAD-HINT have one TYPE.",
       "one EXT-X-PRELOAD-HINT of each TYPE", "draft-pantos-hls-rfc8216bis, section 4.4.5.3", false}, "MUST NOT"}, findHintTwice},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> laterLineRules() {
    return {rules, std::size(rules)};
}

StandardTable<CheckedPlaylist> laterPlaylistRules() {
    return {relations, std::size(relations)};
}

}  // namespace velhls

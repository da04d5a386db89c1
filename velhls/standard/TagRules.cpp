#include <algorithm>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/TagSpelling.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/TextCharacters.h"

namespace velhls {
namespace {

bool isKnown(const CheckedLine& checked) {
    return checked.line.definition != nullptr && checked.playlist.knows(*checked.line.definition);
}

/// The section that says of all tags of one kind where they may stand, and how often: 4.3.3 of 4.3.3.1.
std::string sourceOfKind(const VELHLSTagDefinition& tag) {
    std::string source = sourceOf(tag);
    const bool isBasic = tag.section == "4.3.1.1" || tag.section == "4.3.1.2";
    return isBasic ? source : source.substr(0, source.find_last_of('.'));
}

/// What a tag's line has after its name, and after the colon if there is one.
std::string_view afterName(const VELHLSLine& line) {
    const auto start = static_cast<std::size_t>(line.name.data() - line.text.data()) + line.name.size();
    return line.text.substr(start + (line.hasColon ? 1 : 0));
}

void findKindUnknown(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMaster() && !playlist.isMedia())
        tell(playlist.top(), playlist.top().text.substr(0, 0), {{}, "none", {}});
}

void findHeaderMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.has(tagIndexOf<tag::extM3U>)) tell(playlist.top(), playlist.top().text);
}

void findHeaderNotFirst(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.has(tagIndexOf<tag::extM3U>)) return;
    const VELHLSLine header = playlist.firstLine(tagIndexOf<tag::extM3U>);
    if (header.number == 1) return;
    const std::string seen = "it in line " + std::to_string(header.number);
    tell(header, header.text, {{}, seen, {}});
}

void findRepeatedTag(const CheckedLine& checked, const Tell& tell) {
    const VELHLSTagDefinition* const tag = checked.line.definition;
    if (checked.earlierLine == 0 || tag->reach == VELHLSTagDefinition::Segment ||
        checked.is(tagIndex("EXT-X-ALLOW-CACHE")))
        return;
    const std::string seen = "another one in line " + std::to_string(checked.earlierLine);
    const std::string source = sourceOfKind(*tag);
    tell(checked.line, checked.line.name, {{}, seen, source});
}

void findRepeatedTagOfSegment(const CheckedLine& checked, const Tell& tell) {
    const VELHLSTagDefinition* const tag = checked.line.definition;
    if (checked.earlierLine == 0 || tag->reach != VELHLSTagDefinition::Segment) return;
    const std::string seen = "another one in line " + std::to_string(checked.earlierLine);
    const bool isDate = checked.is(tagIndexOf<tag::programDateTime>);
    const std::string source = isDate ? "RFC 8216, section 6.2.1" : sourceOf(*tag);
    tell(checked.line, checked.line.name, {{}, seen, source, nullptr, isDate ? "MUST NOT" : ""});
}

void findStray(const CheckedLine& checked, const Tell& tell, bool inMaster) {
    const auto stray = inMaster ? VELHLSTagDefinition::Media : VELHLSTagDefinition::Master;
    const bool isThere = inMaster ? checked.playlist.isMaster() : checked.playlist.isMedia();
    if (!isThere || !isKnown(checked) || checked.line.definition->playlist != stray) return;
    const std::string source = sourceOfKind(*checked.line.definition);
    tell(checked.line, checked.line.name, {{}, {}, source});
}

void findMediaTag(const CheckedLine& checked, const Tell& tell) {
    findStray(checked, tell, true);
}

void findMasterTag(const CheckedLine& checked, const Tell& tell) {
    findStray(checked, tell, false);
}

void findUriWithoutTag(const CheckedLine& checked, const Tell& tell) {
    const bool isUri = checked.line.kind == VELHLSLine::Uri;
    if (isUri && checked.playlist.isMaster() && checked.variant == nullptr)
        tell(checked.line, checked.line.value);
}

void findOddUri(const CheckedLine& checked, const Tell& tell) {
    const bool hasVariables = checked.playlist.has(tagIndexOf<tag::define>);
    const auto tellOfOddPart = [&](std::string_view uri) {
        const std::string_view odd = oddPartOfUri(uri, hasVariables);
        // White space inside of a line is told as that.
        const bool isToldElsewhere =
            checked.line.kind == VELHLSLine::Uri && !odd.empty() && !holdsNone(uri, CharacterSet(" \t"));
        if (!odd.empty() && !isToldElsewhere) tell(checked.line, odd);
    };
    if (checked.line.kind == VELHLSLine::Uri) return tellOfOddPart(checked.value);
    for (std::size_t place = 0; place < checked.attributes.size(); ++place) {
        const VELHLSAttribute& attribute = checked.attributes[place];
        const VELHLSAttributeDefinition* const row = checked.rows[place];
        if (row != nullptr && row->isUri() && attribute.quoted) tellOfOddPart(attribute.value);
    }
}

/// What is a comment or an unknown tag because of its spelling. A blank after "#" makes a comment on purpose.
void findMisspelledTag(const CheckedLine& checked, const Tell& tell) {
    const std::string_view content = trimmed(checked.line.text);
    const bool mayBeTag = content.size() > 1 && (content[1] == 'E' || content[1] == 'e');
    if (!mayBeTag) return;
    const std::string_view name = withoutTrailing(TagLine(content).name, blanks);
    const VELHLSTagDefinition* const meant = tagSpelledLike(name);
    if (meant == nullptr || !checked.playlist.knows(*meant)) return;
    tell(checked.line, name, {{}, quoted(name) + didYouMean(name), {}});
}

void findUnexpectedValue(const CheckedLine& checked, const Tell& tell) {
    if (!isKnown(checked) || checked.line.definition->form != VELHLSTagDefinition::Nothing) return;
    const std::string_view rest = afterName(checked.line);
    if (trimmed(rest).empty() && !checked.line.hasColon) return;
    const std::string source = sourceOf(*checked.line.definition);
    tell(checked.line, trimmed(rest).empty() ? nothingAfter(checked.line.name) : trimmed(rest),
         {{}, trimmed(rest).empty() ? "a colon" : "", source});
}

/// What the value should be, or nothing when it is that.
std::string expectedInstead(const VELHLSTagDefinition& tag, std::string_view value) {
    switch (tag.form) {
        case VELHLSTagDefinition::DecimalInteger:
            return VELHLSSyntax::readDecimalInteger(value) ? "" : "a decimal-integer";
        case VELHLSTagDefinition::ByteRange:
            return VELHLSSyntax::readByteRange(value) ? "" : "a length and, after \"@\", an offset";
        case VELHLSTagDefinition::DateTime: {
            const auto date = VELHLSSyntax::readDateTime(value);
            return date && date->hasTime ? "" : "a date and time like 2010-02-19T14:54:23.031Z";
        }
        case VELHLSTagDefinition::Word: {
            VELHLSAttributeDefinition words;
            words.values = tag.values;
            return words.allows(value) ? "" : asChoice(tag.values);
        }
        default:
            return "";
    }
}

void findMalformedValue(const CheckedLine& checked, const Tell& tell) {
    if (!isKnown(checked)) return;
    const VELHLSTagDefinition& tag = *checked.line.definition;
    const std::string expected = expectedInstead(tag, checked.value);
    if (expected.empty()) return;
    const std::string source = sourceOf(tag);
    const std::string_view rest = trimmed(afterName(checked.line));
    tell(checked.line, rest.empty() ? nothingAfter(checked.line.text) : rest, {expected, {}, source});
}

void findListMissing(const CheckedLine& checked, const Tell& tell) {
    if (!isKnown(checked) || checked.line.definition->form != VELHLSTagDefinition::AttributeList) return;
    if (checked.line.hasColon && !checked.value.empty()) return;
    const std::string source = sourceOf(*checked.line.definition);
    tell(checked.line, nothingAfter(checked.line.text), {{}, {}, source});
}

bool isDurationLine(const CheckedLine& checked) {
    return checked.line.definition != nullptr &&
           checked.line.definition->form == VELHLSTagDefinition::Duration;
}

void findMalformedDuration(const CheckedLine& checked, const Tell& tell) {
    if (!isDurationLine(checked)) return;
    const std::string_view written = checked.value.substr(0, checked.value.find(','));
    if (VELHLSSyntax::readDecimalFloatingPoint(written)) return;
    tell(checked.line, written.data() == nullptr ? nothingAfter(checked.line.text) : written);
}

void findMissingComma(const CheckedLine& checked, const Tell& tell) {
    if (!isDurationLine(checked) || checked.value.find(',') != std::string_view::npos) return;
    tell(checked.line, nothingAfter(checked.value.data() == nullptr ? checked.line.text : checked.value),
         {{}, "none", {}});
}

void findVersionUnknown(const CheckedLine& checked, const Tell& tell) {
    if (checked.is(tagIndexOf<tag::version>) && VELHLSSyntax::readDecimalInteger(checked.value) == 0)
        tell(checked.line, checked.value);
}

// clang-format off
constexpr PlaylistEntry ofHeader[] = {
    {{{"playlist-kind-unknown", error, "No tag tells whether the text is a master or a media playlist.",
       "a tag of a master or of a media playlist", "RFC 8216, section 4.1", false}, "MUST"}, findKindUnknown},
    {{{"header-missing", error, "The playlist has no #EXTM3U line.",
       "#EXTM3U", "RFC 8216, section 4.3.1.1", false}, "MUST"}, findHeaderMissing},
    {{{"header-not-first", error, "#EXTM3U is not the first line.",
       "#EXTM3U in the first line", "RFC 8216, section 4.3.1.1", false}, "MUST"}, findHeaderNotFirst},
};

constexpr LineEntry ofPlaces[] = {
    {{{"tag-of-media-playlist", error, "A master playlist holds a tag that only media playlists have.",
       "no tag of media playlists in a master playlist", "RFC 8216, section 4.3.3", false}, "MUST NOT"}, findMediaTag},
    {{{"tag-of-master-playlist", error, "A media playlist holds a tag that only master playlists have.",
       "no tag of master playlists in a media playlist", "RFC 8216, section 4.3.4", false}, "MUST NOT"}, findMasterTag},
    {{{"tag-repeated", error, "A tag that may stand once stands a second time.",
       "the tag once", "RFC 8216, section 4.3.3", false}, "MUST NOT"}, findRepeatedTag},
    {{{"tag-repeated-in-segment", error, "A tag that a segment may have once stands a second time before one URI.",
       "the tag once for a segment", "RFC 8216, section 4.3.2", false}, "SYN"}, findRepeatedTagOfSegment},
};

constexpr LineEntry ofUris[] = {
    {{{"master-uri-without-variant", error, "A master playlist has a URI line that no EXT-X-STREAM-INF takes.",
       "EXT-X-STREAM-INF before the URI", "RFC 8216, section 4.1", false}, "MUST"}, findUriWithoutTag},
    {{{"uri-malformed", error, "A URI line or an attribute holds what is no URI.",
       "a URI as RFC 3986 writes it", "RFC 8216, section 4.1", false}, "SYN"}, findOddUri},
};

constexpr LineEntry ofUnknownTags[] = {
    {{{"tag-misspelled", warning, "A name is a tag's but for its case, hyphens, underscores or blanks.",
       "a tag as RFC 8216 spells it", "RFC 8216, section 4.1", false}, "SYN"}, findMisspelledTag},
};

constexpr LineEntry ofValues[] = {
    {{{"tag-value-unexpected", error, "A tag that has no value has one.",
       "nothing after the tag", "RFC 8216, section 4.3", false}, "SYN"}, findUnexpectedValue},
    {{{"tag-value-malformed", error, "The value of a tag is not written as the standard wants it.",
       "another value", "RFC 8216, section 4.3", false}, "SYN"}, findMalformedValue},
    {{{"tag-list-missing", error, "A tag that has an attribute list has none.",
       "a colon and an attribute list", "RFC 8216, section 4.3", false}, "SYN"}, findListMissing},
    {{{"version-unknown", warning, "EXT-X-VERSION is 0, which is no version.",
       "a version of 1 or more", "RFC 8216, section 4.3.1.2", false}, "SYN"}, findVersionUnknown},
};

constexpr LineEntry ofDurations[] = {
    {{{"extinf-duration-malformed", error, "The duration of EXTINF is no decimal number.",
       "a duration of digits and at most one point", "RFC 8216, section 4.3.2.1", false}, "SYN"}, findMalformedDuration},
    {{{"extinf-comma-missing", error, "EXTINF has no comma after its duration.",
       "a comma after the duration", "RFC 8216, section 4.3.2.1", false}, "SYN"}, findMissingComma},
};
// clang-format on

}  // namespace

StandardTable<CheckedPlaylist> headerRules() {
    return {ofHeader, std::size(ofHeader)};
}

StandardTable<CheckedLine> uriRules() {
    return {ofUris, std::size(ofUris)};
}

StandardTable<CheckedLine> unknownTagRules() {
    return {ofUnknownTags, std::size(ofUnknownTags)};
}

StandardTable<CheckedLine> placeRules() {
    return {ofPlaces, std::size(ofPlaces)};
}

StandardTable<CheckedLine> valueRules() {
    return {ofValues, std::size(ofValues)};
}

StandardTable<CheckedLine> durationRules() {
    return {ofDurations, std::size(ofDurations)};
}

}  // namespace velhls

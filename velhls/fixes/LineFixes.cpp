// Lines that are none of a playlist, and tags with one value.
#include <algorithm>
#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/fixes/FaultyText.h"
#include "velhls/standard/CheckStandard.h"

namespace velhls {
namespace {

void fixByteOrderMark(const Fault& fault) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (startsWith(fault.line.text, mark))
        fault.safe("removes the byte order mark",
                   {fault.replace(fault.line.text.substr(0, mark.size()), "")});
}

/// White space before a line and after it.
std::vector<VELHLSEdit> tidyLine(const Fault& fault, const VELHLSLine& line) {
    const std::string_view tidied = bare(line.text);
    const auto before = static_cast<std::size_t>(tidied.data() - line.text.data());
    std::vector<VELHLSEdit> edits;
    if (before > 0) edits.push_back(fault.replace(line.text.substr(0, before), ""));
    if (before + tidied.size() < line.text.size())
        edits.push_back(fault.replace(line.text.substr(before + tidied.size()), ""));
    return edits;
}

std::vector<VELHLSEdit> tidyTag(const Fault& fault) {
    return tidyLine(fault, fault.line);
}

/// A text that is indented is so as a whole: the first fault stands for all lines.
std::vector<VELHLSEdit> tidyLines(const Fault& fault) {
    if (!fault.text.isFirstToTidy()) return tidyTag(fault);
    std::vector<VELHLSEdit> edits;
    for (const VELHLSLine line : fault.document().lines()) {
        if (line.kind == VELHLSLine::Blank) continue;
        const std::vector<VELHLSEdit> own = tidyLine(fault, line);
        edits.insert(edits.end(), own.begin(), own.end());
    }
    return edits;
}

/// White space around a value.
std::vector<VELHLSEdit> tidyValue(const Fault& fault) {
    const std::string_view written = fault.line.value;
    const std::string_view value = bare(written);
    if (value.empty() || value.size() == written.size()) return {};
    return {fault.replace(written, std::string(value))};
}

/// A URI whose tag stands before other lines: the tag goes to it.
bool joinVariant(const Fault& fault) {
    if (fault.text.kind() != VELHLSDocument::Master) return false;
    const auto variant = fault.text.structure().variantOf(fault.line.number);
    if (!variant) return false;
    const VELHLSStructure::Variant lines = fault.text.structure().variants()[*variant];
    if (lines.uriLine != fault.line.number || !mayMoveToUri(fault.document(), lines)) return false;
    fault.safe("moves EXT-X-STREAM-INF to its URI",
               moveBefore(fault.document(), lines.tagLine, lines.uriLine));
    return true;
}

bool repeatsUriBefore(const Fault& fault) {
    if (fault.line.number < 2) return false;
    const auto uri = fault.document().line(fault.line.number - 1).attributes().find(attribute::uri);
    return uri && uri->value == fault.line.value;
}

bool looksLikeUri(std::string_view text) {
    constexpr std::string_view never = " \t<>\"{}|\\^`";
    return text.find_first_of(never) == std::string_view::npos &&
           text.find_first_of("./") != std::string_view::npos;
}

void fixUriWithoutTag(const Fault& fault) {
    if (fault.line.kind != VELHLSLine::Uri)
        return fault.safe("removes the white space around lines", tidyLines(fault));
    if (joinVariant(fault)) return;
    if (repeatsUriBefore(fault))
        return fault.lossy("removes the line, which repeats the URI of the tag before it",
                           {fault.document().removeLine(fault.line.number)});
    const std::string_view text = fault.line.value;
    if (startsWith(text, "EXTM3U") || startsWith(text, "EXT-X-") || startsWith(text, "EXTINF:"))
        return fault.guess("makes a tag of the line", {fault.replace(text.substr(0, 0), "#")});
    const bool isSegment = fault.text.kind() == VELHLSDocument::Media && looksLikeUri(text);
    if (!isSegment)
        return fault.guess("removes the line " + quoted(text),
                           {fault.document().removeLine(fault.line.number)});
    const std::string duration = "#EXTINF:" + std::to_string(fault.text.usualDuration()) + ",";
    fault.guess("gives the URI a duration: " + duration,
                {fault.document().insertBefore(fault.line.number, duration)});
}

/// A variant without attributes.
void fixBareVariant(const Fault& fault, std::size_t uriLine) {
    const std::string_view name = fault.line.name;
    const std::string list = std::string(name) + ":BANDWIDTH=1000000";
    const auto start = static_cast<std::size_t>(name.data() - fault.line.text.data());
    fault.guess("writes " + list + ", since nothing tells",
                {fault.replace(fault.line.text.substr(start), list)});
    fault.lossy("removes the variant, of which nothing is told but its URI",
                {fault.document().removeLine(fault.line.number), fault.document().removeLine(uriLine)});
}

void fixMasterBareTag(const Fault& fault) {
    const std::vector<VELHLSEdit> edits = tidyTag(fault);
    const std::string_view tag = bare(fault.line.text);
    if (!edits.empty() && (tag == "#EXTM3U" || tag == "#EXT-X-INDEPENDENT-SEGMENTS"))
        return fault.safe("removes the white space around the tag", edits);
    if (fault.line.name == tag::streamInf) {
        const auto variant = fault.text.structure().variantOf(fault.line.number);
        if (variant && fault.text.structure().variants()[*variant].uriLine != 0)
            return fixBareVariant(fault, fault.text.structure().variants()[*variant].uriLine);
    }
    fault.removeLine("it says nothing that a master playlist has");
}

void fixTargetDuration(const Fault& fault) {
    const std::vector<VELHLSEdit> tidied = tidyValue(fault);
    if (!tidied.empty()) return fault.safe("removes the white space around the value", tidied);
    const std::uint64_t longest = fault.text.longestSegment();
    const std::string duration = std::to_string(std::max<std::uint64_t>(longest, 1));
    fault.guess("writes " + duration + ", which the longest segment wants",
                replaceValue(fault.document(), fault.line.number, duration));
}

void fixSequence(const Fault& fault) {
    const std::vector<VELHLSEdit> tidied = tidyValue(fault);
    if (!tidied.empty()) return fault.safe("removes the white space around the value", tidied);
    fault.removeLine("the numbers begin at 0");
}

void fixPlaylistType(const Fault& fault) {
    const std::vector<VELHLSEdit> tidied = tidyValue(fault);
    if (!tidied.empty()) return fault.safe("removes the white space around the value", tidied);
    const std::string upper = inUpperCase(fault.line.value);
    if (upper == fixed::event || upper == fixed::vod)
        fault.guess("writes " + upper, replaceValue(fault.document(), fault.line.number, upper));
    fault.removeLine("what it says is no type");
}

void fixStart(const Fault& fault) {
    fault.removeLine("where to start is lost");
}

/// A variable of another playlist or of the URL, whose value no text tells.
void fixDefine(const Fault& fault) {
    for (const std::string_view from : {"IMPORT", "QUERYPARAM"}) {
        const auto name = fault.line.attributes().find(from);
        if (!name || name->value.empty()) continue;
        fault.guess("says that the variable " + quoted(name->value) + " is empty",
                    replaceValue(fault.document(), fault.line.number,
                                 "NAME=\"" + std::string(name->value) + "\",VALUE=\"\""));
    }
    fault.removeLine("the variable is lost");
}

void fixDefineValue(const Fault& fault) {
    fault.guess("gives the variable an empty value", fault.setAttribute(attribute::value, ""));
    fault.removeLine("the variable is lost");
}

void fixVersion(const Fault& fault) {
    const std::string version =
        std::to_string(neededVersion(fault.document(), fault.text.kind(), StandardProfile::rfc8216));
    fault.guess("writes " + version + ", which the tags need",
                replaceValue(fault.document(), fault.line.number, version));
}

void fixDuration(const Fault& fault) {
    const std::string_view value = fault.line.value;
    const std::string_view written = value.substr(0, value.find(','));
    const std::string duration = std::to_string(fault.text.usualDuration());
    fault.guess("writes the duration " + duration, {fault.replace(written, duration)});
}

/// A number that is none, or that does not fit.
void fixNumber(const Fault& fault) {
    const std::string_view tag = fault.line.name;
    if (tag == tag::extInf) return fixDuration(fault);
    if (tag == tag::version) return fixVersion(fault);
    if (tag == tag::targetDuration) return fixTargetDuration(fault);
    if (tag == tag::mediaSequence || tag == tag::discontinuitySequence) return fixSequence(fault);
    if (tag == tag::programDateTime) return fault.removeLine("the date is lost");
    if (tag == tag::byteRange) return fault.removeLine("the range is lost");
    if (tag == tag::start) return fixStart(fault);
    const auto attribute = fault.attribute();
    if (!attribute) return;
    if (attribute->name == attribute::bandwidth) return fixBandwidth(fault);
    const bool mayGo =
        attribute->name == attribute::averageBandwidth || attribute->name == attribute::programId ||
        attribute->name == attribute::keyFormatVersions || attribute->name == attribute::byteRange;
    if (mayGo) fault.removeAttribute(attribute->name);
}

/// Whether the models would no longer read URIs: with a header they stop at EXT-X-ENDLIST.
bool cutsReading(const Fault& fault) {
    const std::vector<VELHLSUri> uris = fault.document().uris();
    const std::size_t end = fault.text.placesOf(tag::endList).firstLine;
    return end != 0 && !uris.empty() && uris.back().line > end;
}

void fixHeaderMissing(const Fault& fault) {
    if (fault.document().lineCount() > 0 && cutsReading(fault)) return;
    fault.safe("writes #EXTM3U in the first line", {fault.document().insertBefore(1, "#EXTM3U")});
}

void fixHeaderPlace(const Fault& fault) {
    fault.safe("moves #EXTM3U to the first line", moveBefore(fault.document(), fault.line.number, 1));
}

void fixWhiteSpace(const Fault& fault) {
    fault.safe("removes the white space around lines", tidyLines(fault));
}

void fixOtherCase(const Fault& fault) {
    const std::string upper = inUpperCase(fault.line.name);
    fault.guess("writes " + upper, {fault.replace(fault.line.name, upper)});
}

void fixUnexpectedValue(const Fault& fault) {
    const auto start =
        static_cast<std::size_t>(fault.line.name.data() + fault.line.name.size() - fault.line.text.data());
    const std::string_view rest = fault.line.text.substr(start);
    if (isBlank(fault.line.value)) {
        fault.safe("removes the colon", {fault.replace(rest, "")});
    } else {
        fault.lossy("removes " + quoted(rest), {fault.replace(rest, "")});
    }
}

void fixComma(const Fault& fault) {
    const std::string_view value = withoutTrailing(fault.line.value, blanks);
    if (value.empty()) return;
    fault.safe("puts a comma after the duration", {fault.replace(value.substr(value.size()), ",")});
}

void fixDurationMalformed(const Fault& fault) {
    const std::string_view value = fault.line.value;
    const std::string_view written = value.substr(0, value.find(','));
    const std::string_view duration = bare(written);
    if (VELHLSSyntax::readDecimalFloatingPoint(duration))
        return fault.safe("removes the white space around the duration",
                          {fault.replace(written, std::string(duration))});
    if (fault.line.hasColon) fixDuration(fault);
}

void raiseVersion(const Fault& fault) {
    const auto standard =
        fault.finding.profile == "rfc8216bis" ? StandardProfile::rfc8216bis : StandardProfile::rfc8216;
    const std::string version = std::to_string(neededVersion(fault.document(), fault.text.kind(), standard));
    const std::string sentence = "writes EXT-X-VERSION:" + version + ", which the tags need";
    const std::size_t line = fault.text.placesOf(tag::version).firstLine;
    if (line != 0) return fault.safe(sentence, replaceValue(fault.document(), line, version));
    const std::size_t header = fault.text.placesOf(tag::extM3U).firstLine;
    fault.safe(sentence, {fault.document().insertAfter(header, "#EXT-X-VERSION:" + version)});
}

void removeWhatVersionRemoved(const Fault& fault) {
    if (fault.line.name == "EXT-X-ALLOW-CACHE") return fault.removeLine("no client heeds it");
    const auto attribute = fault.attribute();
    if (attribute) fault.removeAttribute(attribute->name);
}

void raiseTargetDuration(const Fault& fault) {
    const FaultyText::Places places = fault.text.placesOf(tag::targetDuration);
    const std::uint64_t seconds = fault.text.longestSegment();
    if (places.count != 1 || seconds <= fault.text.numberOf(tag::targetDuration).value_or(seconds)) return;
    const std::string longest = std::to_string(seconds);
    fault.safe("writes EXT-X-TARGETDURATION:" + longest + ", which the longest segment wants",
               replaceValue(fault.document(), places.firstLine, longest));
}

void addTargetDuration(const Fault& fault) {
    const std::size_t header = fault.text.placesOf(tag::extM3U).firstLine;
    const std::string duration = std::to_string(std::max<std::uint64_t>(fault.text.longestSegment(), 1));
    fault.guess("writes EXT-X-TARGETDURATION:" + duration + ", which the longest segment wants",
                {fault.document().insertAfter(header, "#EXT-X-TARGETDURATION:" + duration)});
}

void addEnd(const Fault& fault) {
    fault.guess("writes EXT-X-ENDLIST at the end",
                {fault.document().insertAfter(fault.document().lineCount(), "#EXT-X-ENDLIST")});
}

/// The same again says nothing more.
void removeRepeatedTag(const Fault& fault) {
    const FaultyText::Places places = fault.text.placesOf(fault.line.name);
    if (!places.areAlike || places.firstLine >= fault.line.number) return;
    fault.safe("removes the tag, which repeats line " + std::to_string(places.firstLine),
               {fault.document().removeLine(fault.line.number)});
}

// clang-format off
constexpr FixEntry entries[] = {
    {"byte-order-mark", fixByteOrderMark, "safe: removes the byte order mark"},
    {"uri-without-tag", fixUriWithoutTag,
     "safe: removes white space before a tag, or moves EXT-X-STREAM-INF to the URI that follows it after other lines; "
     "lossy: removes a line that repeats the URI of the tag before it; guess: makes a tag of a line that lacks its #, gives a URI of a "
     "media playlist an EXTINF, or removes the line"},
    {"number-missing", fixNumber,
     "guess: writes a duration, a BANDWIDTH, a target duration or an EXT-X-VERSION; lossy: removes what else is no number"},
    {"number-out-of-range", fixNumber,
     "guess: writes a duration, a BANDWIDTH, a target duration or an EXT-X-VERSION; lossy: removes what else does not fit"},
    {"start-time-offset-missing", fixStart, "lossy: removes EXT-X-START"},
    {"start-time-offset-malformed", fixStart, "lossy: removes EXT-X-START"},
    {"master-bare-tag-unknown", fixMasterBareTag, "safe: removes white space around the tag; guess: writes BANDWIDTH=1000000 after EXT-X-STREAM-INF; lossy: removes the tag"},
    {"target-duration-malformed", fixTargetDuration,
     "safe: removes white space around the value; guess: writes the duration of the longest segment, rounded"},
    {"media-sequence-malformed", fixSequence, "safe: removes white space around the value; lossy: removes the tag"},
    {"discontinuity-sequence-malformed", fixSequence, "safe: removes white space around the value; lossy: removes the tag"},
    {"playlist-type-unknown", fixPlaylistType,
     "safe: removes white space around the value; guess: writes it in upper case; lossy: removes the tag"},
    {"begins-with-byte-order-mark", fixByteOrderMark, "safe: removes the byte order mark"},
    {"white-space", fixWhiteSpace, "safe: removes white space before and after a tag or a URI"},
    {"header-missing", fixHeaderMissing, "safe: writes #EXTM3U in the first line"},
    {"header-not-first", fixHeaderPlace, "safe: moves #EXTM3U to the first line"},
    {"tag-in-other-case", fixOtherCase, "guess: writes the name in upper case"},
    {"tag-value-unexpected", fixUnexpectedValue, "safe: removes a colon that nothing follows; lossy: removes what follows the name"},
    {"tag-repeated", removeRepeatedTag, "safe: removes a tag that is the same as one before"},
    {"extinf-comma-missing", fixComma, "safe: puts a comma after the duration"},
    {"extinf-duration-malformed", fixDurationMalformed,
     "safe: removes white space around the duration; guess: writes the target duration, or else the mean of the others"},
    {"version-too-low", raiseVersion, "safe: writes the lowest version that the tags need"},
    {"removed-by-version", removeWhatVersionRemoved, "lossy: removes the tag or the attribute"},
    {"target-duration-too-small", raiseTargetDuration, "safe: writes the duration of the longest segment, rounded"},
    {"target-duration-missing", addTargetDuration, "guess: writes the duration of the longest segment, rounded"},
    {"vod-without-end", addEnd, "guess: writes EXT-X-ENDLIST at the end"},
    {"define-name-missing", fixDefine,
     "guess: says that a variable of IMPORT or QUERYPARAM is empty; lossy: removes the tag"},
    {"define-value-missing", fixDefineValue, "guess: gives the variable an empty value; lossy: removes the tag"},
};
// clang-format on

}  // namespace

FixTable lineFixes() {
    return {entries, std::size(entries)};
}

}  // namespace velhls

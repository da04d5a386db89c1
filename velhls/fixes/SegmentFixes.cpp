// Segments: their tags, durations, ranges and dates.
#include <algorithm>
#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/fixes/FaultyText.h"

namespace velhls {
namespace {

void fixMissingLineFeed(const Fault& fault) {
    const VELHLSDocument& document = fault.document();
    const std::size_t count = document.lineCount();
    const std::string_view before = count > 1 ? document.line(count - 1).ending : "\n";
    fault.safe("puts a line feed after the last line", {{document.text().size(), 0, std::string(before)}});
}

/// What the models take for a tag of segments where it has no colon and nothing after it.
bool isBareTagOfSegment(std::string_view name) {
    return name == tag::discontinuity || name == tag::cueIn;
}

/// Tags that the models would read but for what follows the name.
bool cutAfterName(const Fault& fault) {
    const VELHLSLine& line = fault.line;
    if (!isBareTagOfSegment(line.name)) return false;
    const auto start = static_cast<std::size_t>(line.name.data() + line.name.size() - line.text.data());
    const std::string_view rest = line.text.substr(start);
    if (isBlank(line.value)) {
        fault.safe("removes what follows the tag's name", {fault.replace(rest, "")});
    } else {
        fault.lossy("removes " + quoted(rest) + " after the tag's name", {fault.replace(rest, "")});
    }
    return true;
}

/// A tag that the models know as none of a segment's goes before them all. Where it would end the reading it goes to the end.
void moveOut(const Fault& fault) {
    // It would take the URI of another line.
    if (fault.line.name == tag::streamInf) return;
    const FaultyText::ModelSegment& segment = fault.text.segmentAt(fault.line.number);
    const std::string name(fault.line.name);
    const bool endsReading = fault.line.name == tag::endList && segment.uriLine != 0;
    if (endsReading) {
        if (fault.line.number < fault.document().lineCount())
            fault.safe("moves " + name + " to the end", moveToEnd(fault.document(), fault.line.number));
        return;
    }
    if (segment.openingLine == 0 || segment.openingLine >= fault.line.number) return;
    fault.safe("moves " + name + " before the segment's first tag",
               moveBefore(fault.document(), fault.line.number, segment.openingLine));
}

void fixSegmentTag(const Fault& fault) {
    if (cutAfterName(fault)) return;
    moveOut(fault);
}

void insertDuration(const Fault& fault) {
    const FaultyText::ModelSegment& segment = fault.text.segmentAt(fault.line.number);
    if (segment.uriLine == 0) return;
    const std::string duration = "#EXTINF:" + std::to_string(fault.text.usualDuration()) + ",";
    fault.guess("gives the segment a duration: " + duration,
                {fault.document().insertBefore(segment.uriLine, duration)});
}

void fixBareSegmentTag(const Fault& fault) {
    const std::vector<VELHLSEdit> tidied = [&fault]() -> std::vector<VELHLSEdit> {
        const std::string_view tag = bare(fault.line.text);
        if (tag.size() == fault.line.text.size()) return {};
        return {fault.replace(fault.line.text.substr(tag.size()), "")};
    }();
    if (isBareTagOfSegment(fault.line.name) && !tidied.empty())
        return fault.safe("removes the white space after the tag", tidied);
    if (fault.line.name == tag::extInf) {
        const std::string duration = std::to_string(fault.text.usualDuration());
        return fault.guess("writes the duration " + duration,
                           {fault.replace(fault.line.text, "#EXTINF:" + duration + ",")});
    }
    fixSegmentTag(fault);
}

void fixDurationEmpty(const Fault& fault) {
    const std::string duration = std::to_string(fault.text.usualDuration());
    const std::string_view value = fault.line.value;
    fault.guess("writes the duration " + duration,
                {fault.replace(value.substr(0, value.find(',')), duration)});
}

/// The least that a segment may have: a millisecond, or a second where the version has no decimals.
void fixDurationZero(const Fault& fault) {
    const FaultyText::ModelSegment& segment = fault.text.segmentAt(fault.line.number);
    const std::size_t end = segment.uriLine == 0 ? segment.end : segment.uriLine;
    constexpr std::uint64_t firstWithDecimals = 3;
    const bool hasDecimals = fault.text.numberOf(tag::version).value_or(1) >= firstWithDecimals;
    const std::string duration = hasDecimals ? "0.001" : "1";
    for (std::size_t number = end; number-- > segment.start;) {
        const VELHLSLine line = fault.document().line(number);
        if (line.name != tag::extInf || !line.hasColon) continue;
        return fault.guess("writes the duration " + duration,
                           {fault.replace(line.value.substr(0, line.value.find(',')), duration)});
    }
}

/// Tags of a segment that never comes.
void fixUriMissing(const Fault& fault) {
    const FaultyText::ModelSegment& segment = fault.text.segmentAt(fault.line.number);
    if (segment.uriLine != 0 || segment.openingLine == 0) return;
    std::vector<VELHLSEdit> edits;
    std::string names;
    constexpr std::size_t mostNamed = 5;
    for (std::size_t number = segment.openingLine; number < segment.end; ++number) {
        const VELHLSLine line = fault.document().line(number);
        const bool isOfSegment = line.name == tag::extInf || isBareTagOfSegment(line.name) ||
                                 line.name == tag::define || hasUse<opensSegment>(line.name);
        if (line.kind != VELHLSLine::Tag || !isOfSegment) continue;
        edits.push_back(fault.document().removeLine(number));
        if (edits.size() <= mostNamed) names += (names.empty() ? "" : ", ") + std::string(line.name);
    }
    if (edits.size() > mostNamed) names += ", ...";
    fault.lossy("removes the tags at the end, which no URI follows: " + names + " are lost",
                std::move(edits));
}

/// Where "./" may be put into a reference without a change of what it refers to (RFC 3986, section 5.2.4): before a relative
/// path, or after the slash that begins an absolute one. Nothing for a query alone, another scheme, another host, and a
/// variable, of which nobody knows what it stands for.
std::optional<std::size_t> placeForDot(std::string_view uri) {
    if (uri.find_first_of(":{$") != std::string_view::npos) return std::nullopt;
    if (startsWith(uri, "//") || startsWith(uri, "?")) return std::nullopt;
    return startsWith(uri, "/") ? 1 : 0;
}

/// The models look for a byte range from the 7th character on: there must be one, and no number.
bool isLongEnough(const std::string& uri) {
    constexpr std::size_t skipped = 6;
    if (uri.size() < skipped) return false;
    return uri.size() == skipped || !isDigit(uri[skipped]);
}

void fixShortUri(const Fault& fault) {
    const std::string_view uri = fault.line.value;
    const auto place = placeForDot(uri);
    if (!place || fault.line.kind != VELHLSLine::Uri) return;
    std::string dots;
    std::string mended(uri);
    do {
        dots += "./";
        mended.insert(*place, "./");
    } while (!isLongEnough(mended));
    fault.safe("writes " + quoted(mended) + ", the same resource",
               {fault.replace(uri.substr(*place, 0), dots)});
}

/// "100@", "\"100@0\"" and the like.
std::string readableRange(std::string_view written) {
    while (!written.empty() && (written.front() == '"' || blanks.holds(written.front())))
        written.remove_prefix(1);
    while (!written.empty() &&
           (written.back() == '"' || written.back() == '@' || blanks.holds(written.back())))
        written.remove_suffix(1);
    return VELHLSSyntax::readByteRange(written) ? std::string(written) : std::string();
}

void fixByteRange(const Fault& fault) {
    if (fault.line.name == tag::byteRange) {
        const std::string_view value = fault.line.value;
        const std::string range = readableRange(value);
        if (!range.empty()) {
            const std::vector<VELHLSEdit> edits = replaceValue(fault.document(), fault.line.number, range);
            if (range == bare(value)) return fault.safe("removes the white space around the range", edits);
            fault.guess("writes " + range, edits);
        }
        return fault.removeLine("the range is lost");
    }
    fault.removeAttribute(attribute::byteRange);
}

void fixMap(const Fault& fault) {
    fault.removeLine("it names no resource");
}

/// The numbers of a date in the form that the models read; empty where these are not all there.
std::string readableDate(std::string_view date) {
    const std::size_t mark = date.find_first_of("Tt ");
    if (mark == std::string_view::npos) return {};
    std::string day(date.substr(0, mark));
    std::string time(bare(date.substr(mark + 1)));
    std::string zone;
    const std::size_t sign = time.find_first_of("Zz+-");
    if (sign != std::string::npos) {
        zone = time.substr(sign);
        time.resize(withoutTrailing(std::string_view(time).substr(0, sign), blanks).size());
    }
    constexpr std::size_t digitsOfDay = 8;
    if (day.size() == digitsOfDay && holdsOnly(day, digits)) {
        day.insert(6, "-");
        day.insert(4, "-");
    }
    if (time.size() >= 6 && holdsOnly(std::string_view(time).substr(0, 6), digits)) {
        time.insert(4, ":");
        time.insert(2, ":");
    }
    constexpr std::size_t sizeOfMinutes = 5;
    if (time.size() == sizeOfMinutes) time += ":00";
    std::replace(time.begin(), time.end(), ',', '.');
    if (zone == "z") zone = "Z";
    constexpr std::size_t sizeOfHours = 3;
    if (zone.size() == sizeOfHours && zone.front() != 'Z') zone += ":00";
    if (zone.size() == 5 && zone.find(':') == std::string::npos) zone.insert(3, ":");
    return day + "T" + time + zone;
}

/// Without what divides the numbers of a date.
std::string digitsOf(std::string_view date) {
    std::string all = inUpperCase(date);
    const auto divides = [](char character) { return character == '-' || character == ':'; };
    all.erase(std::remove_if(all.begin(), all.end(), divides), all.end());
    return all;
}

void fixDate(const Fault& fault) {
    const std::string_view written = fault.line.value;
    const std::string_view value = bare(written);
    std::string date = readableDate(value);
    const auto readable = VELHLSSyntax::readDateTime(date);
    if (readable && readable->hasTime && readable->microseconds >= 0) {
        const auto before = VELHLSSyntax::readDateTime(value);
        const bool isSame =
            readable->hasZone && (before ? before->hasZone && before->microseconds == readable->microseconds
                                         : digitsOf(value) == digitsOf(date));
        if (!readable->hasZone) date += "Z";
        const std::vector<VELHLSEdit> edits = replaceValue(fault.document(), fault.line.number, date);
        if (isSame) {
            fault.safe("writes " + date + ", the same time", edits);
        } else {
            fault.guess("writes " + date, edits);
        }
    }
    fault.removeLine("the date is lost");
}

void fixDateBefore1970(const Fault& fault) {
    fault.removeLine("the date is lost");
}

/// A blank line says nothing.
void fixPatternUri(const Fault& fault) {
    if (fault.line.kind == VELHLSLine::Blank)
        fault.safe("removes the blank line", {fault.document().removeLine(fault.line.number)});
}

void fixPatternLine(const Fault& fault) {
    if (fault.line.kind != VELHLSLine::Comment || !fault.line.name.empty()) return;
    fault.safe("removes the comment", {fault.document().removeLine(fault.line.number)});
}

// clang-format off
constexpr FixEntry entries[] = {
    {"segment-uri-without-line-feed", fixMissingLineFeed, "safe: puts a line feed after the last line"},
    {"segment-uri-missing", fixUriMissing, "lossy: removes the tags at the end that no URI follows"},
    {"segment-uri-too-short", fixShortUri,
     "safe: puts \"./\" before a relative path, or after the slash that begins an absolute one, as often as it takes"},
    {"segment-duration-missing", insertDuration, "guess: inserts an EXTINF of the target duration, or else of the mean of the others"},
    {"extinf-missing", insertDuration, "guess: inserts an EXTINF of the target duration, or else of the mean of the others"},
    {"segment-without-uri", fixUriMissing, "lossy: removes the tags at the end that no URI follows"},
    {"date-time-without-zone", fixDate, "guess: takes the time for UTC"},
    {"segment-duration-empty", fixDurationEmpty, "guess: writes the target duration, or else the mean of the others"},
    {"segment-duration-zero", fixDurationZero, "guess: writes 0.001 seconds, or 1 where the version has no decimals"},
    {"segment-tag-unknown", fixSegmentTag,
     "safe: moves the tag before the segment's first one, and EXT-X-ENDLIST to the end; removes an empty value that the tag must not "
     "have; lossy: removes another one"},
    {"segment-bare-tag-unknown", fixBareSegmentTag,
     "safe: removes white space after the tag, or moves the tag before the segment's first one, and EXT-X-ENDLIST to the end; guess: "
     "writes a duration after EXTINF"},
    {"byte-range-malformed", fixByteRange,
     "safe: removes white space around the range; guess: writes the range without other characters; lossy: removes the range"},
    {"map-uri-missing", fixMap, "lossy: removes EXT-X-MAP"},
    {"map-uri-empty", fixMap, "lossy: removes EXT-X-MAP"},
    {"date-time-malformed", fixDate,
     "safe: writes the same time in the form that is read; guess: takes a time without a zone for UTC; lossy: removes the date"},
    {"date-time-before-1970", fixDateBefore1970, "lossy: removes the date"},
    {"pattern-uri-empty", fixPatternUri, "safe: removes the blank line"},
    {"pattern-line-not-allowed", fixPatternLine, "safe: removes a comment"},
};
// clang-format on

}  // namespace

FixTable segmentFixes() {
    return {entries, std::size(entries)};
}

}  // namespace velhls

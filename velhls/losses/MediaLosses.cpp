#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/losses/Loss.h"
#include "velhls/media/VELHLSByteRange.h"

namespace velhls {
namespace {

constexpr bool lost = true;
constexpr bool kept = false;

bool isCueMarker(const LossLine& line) {
    if (line.tag.name == tag::cueIn) return !line.tag.hasColon;
    return line.tag.hasColon && (line.tag.name == tag::cueOut || line.tag.name == tag::cueOutCont);
}

void findDroppedCueIn(const LossLine& line, const TellLoss& tell) {
    if (line.isTagNamed(tag::cueIn) && line.role == LineRole::alone) tell(line, line.tag.name);
}

void findIgnoredCueOut(const LossLine& line, const TellLoss& tell) {
    const bool isAlone = line.role == LineRole::alone && !line.tag.hasColon;
    if (line.isTagNamed(tag::cueOut) && isAlone) tell(line, line.tag.name);
}

void findCueMarker(const LossLine& line, const TellLoss& tell) {
    if (line.isTag && line.role != LineRole::alone && isCueMarker(line)) tell(line, line.tag.name);
}

/// The duration and the title of EXTINF.
struct Duration {
    std::string_view text;
    std::string_view title;
    double seconds;
};

/// Nothing for a line that is no EXTINF, or whose duration is not read.
std::optional<Duration> durationOf(const LossLine& line) {
    if (!line.isTagNamed(tag::extInf) || !line.tag.hasColon) return std::nullopt;
    const std::string_view text = line.tag.value.substr(0, line.tag.value.find(','));
    if (text.empty() && !line.tag.value.empty()) return std::nullopt;
    try {
        return Duration{text, line.tag.value.substr(text.size()), toDouble(text)};
    } catch (const std::logic_error&) {
        // Rejected.
        return std::nullopt;
    }
}

bool isKeptByRendering(double duration) {
    constexpr int decimals = 6;
    std::array<char, mostFixedBytes> text;
    const char* const end = writeFixed(text.data(), duration, decimals);
    return toDouble({text.data(), static_cast<std::size_t>(end - text.data())}) == duration;
}

void findNegativeDuration(const LossLine& line, const TellLoss& tell) {
    const std::optional<Duration> duration = durationOf(line);
    if (duration && duration->seconds < 0.0) tell(line, duration->text);
}

void findRoundedDuration(const LossLine& line, const TellLoss& tell) {
    const std::optional<Duration> duration = durationOf(line);
    if (!duration || !std::isfinite(duration->seconds)) return;
    if (!isKeptByRendering(duration->seconds)) tell(line, duration->text);
}

void findMissingComma(const LossLine& line, const TellLoss& tell) {
    const std::optional<Duration> duration = durationOf(line);
    if (duration && duration->title.empty()) tell(line, duration->text);
}

void findEmptyTitle(const LossLine& line, const TellLoss& tell) {
    const std::optional<Duration> duration = durationOf(line);
    if (duration && duration->title == ",") tell(line, duration->title, "\",\" written as \",,\"");
}

void findTitle(const LossLine& line, const TellLoss& tell) {
    const std::optional<Duration> duration = durationOf(line);
    if (duration && duration->title.size() > 1) tell(line, duration->title.substr(1));
}

bool isEmptyRange(std::string_view text) {
    VELHLSByteRange range;
    try {
        return range.parse(std::string(text), '@', false) == 0 && range.length == 0;
    } catch (const std::logic_error&) {
        // Rejected.
        return false;
    }
}

void findEmptyRange(const LossLine& line, const TellLoss& tell) {
    if (line.isTagNamed(tag::byteRange) && isEmptyRange(line.tag.value)) tell(line, line.tag.value);
    const Attribute* const range = line.isTagNamed(tag::map) ? line.find(attribute::byteRange) : nullptr;
    if (range != nullptr && isEmptyRange(range->value)) tell(line, range->value);
}

void findIgnoredByNone(const LossLine& line, const TellLoss& tell) {
    const Attribute* const method = line.isTagNamed(tag::key) ? line.find(attribute::method) : nullptr;
    if (method == nullptr || method->value != fixed::none) return;
    line.forEachAttribute([&](const Attribute& attribute) {
        if (attribute.name != attribute::method) tell(line, attribute.name);
    });
}

/// A date and time, and what rendering makes of it.
struct Timestamp {
    std::string_view text;
    double seconds;
    std::string written;
};

constexpr std::size_t minuteLength = std::string_view("2026-11-21T10:00").size();

/// Nothing for a line that is no EXT-X-PROGRAM-DATE-TIME, or whose value is not read.
std::optional<Timestamp> timestampOf(const LossLine& line) {
    if (!line.isTagNamed(tag::programDateTime) || !line.tag.hasColon) return std::nullopt;
    try {
        const double seconds = VELHLSUtility::parseTimestamp(std::string(line.tag.value));
        if (seconds < 0.0) return std::nullopt;
        std::string written;
        VELHLSUtility::renderTimestamp(seconds, written);
        return Timestamp{line.tag.value, seconds, written};
    } catch (const std::logic_error&) {
        // Rejected.
        return std::nullopt;
    }
}

/// "Z", "+02:00" or "-02:00"
bool isZone(std::string_view text) {
    if (text == "Z") return true;
    const bool isSigned = text.size() == 6 && (text[0] == '+' || text[0] == '-') && text[3] == ':';
    return isSigned && holdsOnly(text.substr(1, 2), digits) && holdsOnly(text.substr(4), digits);
}

/// Two digits, and a fraction or none.
bool areSeconds(std::string_view text) {
    if (text.size() < 2 || !holdsOnly(text.substr(0, 2), digits)) return false;
    if (text.size() == 2) return true;
    return text[2] == '.' && text.size() > 3 && holdsOnly(text.substr(3), digits);
}

/// The UTC offset of a date and time that is written as ISO 8601 says, and is read as it is written.
std::optional<std::string_view> zoneOf(const Timestamp& timestamp) {
    const std::string_view text = timestamp.text;
    if (text.substr(0, minuteLength) != timestamp.written.substr(0, minuteLength)) return std::nullopt;
    const std::size_t zone = text.find_first_of("Z+-", minuteLength);
    if (zone == std::string_view::npos || text[minuteLength] != ':') return std::nullopt;
    const std::string_view seconds = text.substr(minuteLength + 1, zone - minuteLength - 1);
    if (!areSeconds(seconds) || !isZone(text.substr(zone))) return std::nullopt;
    return text.substr(zone);
}

void findOtherDate(const LossLine& line, const TellLoss& tell) {
    const std::optional<Timestamp> timestamp = timestampOf(line);
    if (!timestamp || zoneOf(*timestamp)) return;
    tell(line, timestamp->text, quoted(timestamp->text) + ", read as " + timestamp->written);
}

void findUnappliedOffset(const LossLine& line, const TellLoss& tell) {
    const std::optional<Timestamp> timestamp = timestampOf(line);
    const auto zone = timestamp ? zoneOf(*timestamp) : std::nullopt;
    if (zone && !holdsNone(*zone, CharacterSet("123456789"))) tell(line, *zone);
}

void findRoundedDate(const LossLine& line, const TellLoss& tell) {
    const std::optional<Timestamp> timestamp = timestampOf(line);
    if (!timestamp || !zoneOf(*timestamp)) return;
    constexpr double millisecond = 0.001;
    const double lostSeconds =
        std::abs(VELHLSUtility::parseTimestamp(timestamp->written) - timestamp->seconds);
    if (lostSeconds > millisecond / 100) tell(line, timestamp->text);
}

void findShortenedSeconds(const LossLine& line, const TellLoss& tell) {
    const std::optional<Timestamp> timestamp = timestampOf(line);
    if (!timestamp || !zoneOf(*timestamp)) return;
    // The first digit of the seconds stands two after the minute.
    if (timestamp->written[minuteLength + 2] == '.') tell(line, timestamp->text);
}

void findFirstSecond(const LossLine& line, const TellLoss& tell) {
    const std::optional<Timestamp> timestamp = timestampOf(line);
    if (timestamp && timestamp->seconds == 0.0) tell(line, timestamp->text);
}

bool definesVariable(const LossLine& line) {
    return line.isTagNamed(tag::define) && line.role != LineRole::rejected &&
           line.find(attribute::name) != nullptr && line.find(attribute::value) != nullptr;
}

void findDefinition(const LossLine& line, const TellLoss& tell) {
    if (definesVariable(line)) tell(line, line.tag.name);
}

void findReplacedVariable(const LossLine& line, const TellLoss& tell) {
    if (!definesVariable(line)) return;
    const std::string_view name = line.find(attribute::name)->value;
    if (line.playlist->variables.count(name) != 0) tell(line, name);
}

/// The first pass has the text that was defined, the next ones have numbers.
void findDroppedZeros(const LossLine& line, const TellLoss& tell) {
    if (!line.isTagNamed(tag::zorDefineIncrement) || line.role != LineRole::pattern) return;
    const auto variable = line.playlist->variables.find(line.tag.value.substr(0, line.tag.value.find(',')));
    if (variable == line.playlist->variables.end()) return;
    const std::optional<std::string> read = countedOn(variable->second, "0");
    const std::optional<std::string> next = countedOn(variable->second, line.tag.value);
    if (read && next && *read != variable->second)
        tell(line, line.tag.value, quoted(variable->second) + ", counted on as " + *next);
}

/// Blank lines and comments are nothing that could be lost.
bool isContent(std::string line) {
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    const bool isComment = isTagOrComment(line) && !isStandardTag(line) && !isVendorTag(line);
    return !isComment && !isBlank(line);
}

void findContent(const LossRest& rest, const TellLoss& tell) {
    for (std::size_t number = rest.firstLine; number <= rest.lines.count(); ++number) {
        const std::string_view line = rest.lines.line(number);
        if (!isContent(std::string(line))) continue;
        return tell(Place{number, 1, withoutTrailing(line, lineEnds).size()});
    }
}

// clang-format off
constexpr LineLoss losses[] = {
    {{"cue-in-dropped", VELHLSFinding::Warning, "EXT-X-CUE-IN before a segment's first tag is dropped.",
      "EXT-X-CUE-IN after another tag of the segment", vendorExtension, lost},
     findDroppedCueIn},
    {{"cue-not-written", VELHLSFinding::Warning, "Cue markers are read and not written.",
      "a tag that is written back", vendorExtension, lost},
     findCueMarker},
    {{"cue-out-ignored", VELHLSFinding::Warning, "EXT-X-CUE-OUT without a colon is ignored before a segment's first tag.",
      "EXT-X-CUE-OUT with a colon and a duration", vendorExtension, lost},
     findIgnoredCueOut},
    {{"segment-duration-negative", VELHLSFinding::Warning, "A segment's duration is below 0.",
      "a duration above 0", libraryBehaviour, kept},
     findNegativeDuration},
    {{"segment-duration-rounded", VELHLSFinding::Warning, "A segment's duration is written with six decimals.",
      "at most six decimals", libraryBehaviour, kept},
     findRoundedDuration},
    {{"segment-comma-missing", VELHLSFinding::Warning, "EXTINF has no comma after its duration.",
      "a comma after the duration", libraryBehaviour, kept},
     findMissingComma},
    {{"segment-title-gains-comma", VELHLSFinding::Warning, "A title keeps its comma and is written with two.",
      "a title that is written as it was read", libraryBehaviour, kept},
     findTitle},
    {{"segment-empty-title-gains-comma", VELHLSFinding::Note, "An empty title is written with two commas.",
      "a title that is written as it was read", libraryBehaviour, kept},
     findEmptyTitle},
    {{"byte-range-empty-not-written", VELHLSFinding::Warning, "A byte range of length 0 is not written.",
      "a length of at least 1", libraryBehaviour, lost},
     findEmptyRange},
    {{"key-attributes-ignored", VELHLSFinding::Warning, "A key with METHOD=NONE has other attributes, which are ignored.",
      "no other attribute beside METHOD=NONE", libraryBehaviour, lost},
     findIgnoredByNone},
    {{"date-time-not-iso-8601", VELHLSFinding::Warning, "EXT-X-PROGRAM-DATE-TIME is read otherwise than it is written.",
      "YYYY-MM-DDThh:mm:ss with a fraction and Z or +hh:mm, and each part in its range", libraryBehaviour, kept},
     findOtherDate},
    {{"date-time-offset-not-applied", VELHLSFinding::Warning, "The UTC offset of EXT-X-PROGRAM-DATE-TIME is read and not applied.",
      "Z or +00:00", libraryBehaviour, lost},
     findUnappliedOffset},
    {{"date-time-rounded", VELHLSFinding::Warning, "EXT-X-PROGRAM-DATE-TIME is written in milliseconds.",
      "at most three decimals", libraryBehaviour, kept},
     findRoundedDate},
    {{"date-time-seconds-shortened", VELHLSFinding::Warning, "Seconds below 10 are written with one digit.",
      "seconds of two digits", libraryBehaviour, kept},
     findShortenedSeconds},
    {{"date-time-zero-not-written", VELHLSFinding::Warning, "The time 1970-01-01T00:00:00Z is taken for none, and not written.",
      "a time other than 1970-01-01T00:00:00Z", libraryBehaviour, lost},
     findFirstSecond},
    {{"define-not-written", VELHLSFinding::Warning, "EXT-X-DEFINE is read and not written.",
      "a tag that is written back", libraryBehaviour, lost},
     findDefinition},
    {{"define-replaced", VELHLSFinding::Warning, "A variable is defined a second time.",
      "a NAME that is not defined yet", libraryBehaviour, kept},
     findReplacedVariable},
    {{"pattern-leading-zeros-dropped", VELHLSFinding::Warning, "A variable is counted on as a plain number, without the leading zeros that it has.",
      "a variable without leading zeros", vendorExtension, kept},
     findDroppedZeros},
};

constexpr RestLoss lossesOfRest[] = {
    {{"content-after-end", VELHLSFinding::Warning, "Lines after #EXT-X-ENDLIST are not read.",
      "nothing after #EXT-X-ENDLIST", libraryBehaviour, lost},
     findContent},
};
// clang-format on

}  // namespace

LossTable<LineLoss> mediaLosses() {
    return {losses, std::size(losses)};
}

LossTable<RestLoss> restLosses() {
    return {lossesOfRest, std::size(lossesOfRest)};
}

}  // namespace velhls

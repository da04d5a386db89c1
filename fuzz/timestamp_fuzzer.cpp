#include <cmath>
#include <cstring>
#include <memory>
#include <sstream>

#include "fuzz/FuzzTarget.h"
#include "tests/support/PlainForms.h"

namespace {

std::string bits(double number) {
    char text[64];
    static_cast<void>(std::snprintf(text, sizeof text, "%a", number));
    return text;
}

std::string rendered(double seconds) {
    std::string text;
    VELHLSUtility::renderTimestamp(seconds, text);
    return text;
}

/// Every year of the calendar has a plain form.
bool isInCalendar(double seconds) {
    return seconds > -67768040609740800.0 && seconds < 67768036191676800.0;
}

/// What was written is read to the same time, but for a second of 60.000, a fraction that is taken off before the
/// epoch, and years so long that the text is cut off.
void expectReadBack(double seconds) {
    const std::string text = rendered(seconds);
    const bool isUsual = seconds >= 0.0 && seconds < 253402300800.0 && text.find(":60.") == std::string::npos;
    if (!isUsual) return;
    const double reread = VELHLSUtility::parseTimestamp(text);
    fuzz::expect(std::abs(reread - seconds) < 0.000501 + seconds * 3e-16,
                 "it is read back to the millisecond", text);
    fuzz::expectEqual(rendered(reread), text, "the same text is written the second time");
}

/// Dates that a playlist writes one after the other, as each is written by itself: also around the midnights next to it.
void expectSequence(double seconds) {
    const double midnight = std::floor(seconds / 86400.0) * 86400.0;
    VELHLSMediaStream stream;
    std::string expected = "#EXTM3U\n#EXT-X-TARGETDURATION:0\n";
    for (const double date : {seconds, midnight, midnight + 86400.0, midnight + 86399.5, midnight, seconds}) {
        if (!(date > 0.0)) return;
        stream.segments.push_back(std::make_shared<VELHLSMediaSegment>(
            1.0, 0.0, 0, 0, "", nullptr, false, date, nullptr, nullptr, "segment.ts", false, "", ""));
        expected += "#EXT-X-PROGRAM-DATE-TIME:" + rendered(date) + "\n#EXTINF:1.000000\nsegment.ts\n";
    }
    std::ostringstream out;
    fuzz::expect(stream.render(out) == 0, "dated segments render");
    fuzz::expectEqual(out.str(), expected, "dates one after the other as each by itself");
}

void expectPlainRendering(double seconds) {
    const std::string text = rendered(seconds);
    fuzz::expect(text.size() <= 31, "at most 31 characters", text);
    if (isInCalendar(seconds)) {
        fuzz::expectEqual(text, plain::renderedTimestamp(seconds), "the text as its plain form");
    }
    expectReadBack(seconds);
    expectSequence(seconds);
}

}  // namespace

/// The text is read as a date and time, and its first eight bytes as a number of seconds.
VELHLS_FUZZ_TARGET(timestamp) {
    const std::string outcome = playlist::outcomeOf([&] {
        const double seconds =
            fuzz::bounded(text.size(), {4}, [&] { return VELHLSUtility::parseTimestamp(text); });
        expectPlainRendering(seconds);
        return bits(seconds);
    });
    fuzz::expectEqual(outcome, playlist::outcomeOf([&] { return bits(plain::parsedTimestamp(text)); }),
                      "the time as its plain form");
    double seconds = 0.0;
    if (text.size() < sizeof seconds) return;
    std::memcpy(&seconds, text.data(), sizeof seconds);
    expectPlainRendering(seconds);
}

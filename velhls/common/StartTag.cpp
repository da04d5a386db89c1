#include "velhls/common/StartTag.h"

#include <locale>
#include <sstream>
#include <string>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/LineWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// The number as the stream would print it, but for the stream's locale and field width.
std::string inFormatOf(const std::ostream& out, double number) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.flags(out.flags());
    text.precision(out.precision());
    text << number;
    return text.str();
}

/// What writing does not keep of an offset, for a stream with the default format.
void tellOfWriting(Recorder& recorder, std::string_view text, double offset) {
    if (offset == 0.0) {
        recorder.report(Rule::startZeroNotWritten, text, {});
        return;
    }
    const std::string written = inFormatOf(std::ostringstream(), offset);
    if (toDouble(written) == offset && holdsOnly(written, digitsPointAndSigns)) return;
    recorder.report(Rule::startOffsetRounded, text, quoted(text) + ", written as " + written);
}

void tellOfPrecise(Recorder& recorder, std::string_view text) {
    if (text != fixed::yes && text != fixed::no) recorder.report(Rule::startPreciseInvalid, text, {});
}

}  // namespace

std::optional<StartTag> parseStartTag(const TagLine& tagLine, Recorder* recorder) {
    AttributeList list;
    if (!list.parse(tagLine.value, recorder)) return std::nullopt;
    if (recorder != nullptr) recorder->attributesRead(tagLine.name, list);
    const std::optional<std::string_view> offset = list.find(attribute::timeOffset);
    if (!offset) {
        tellMissing(recorder, Rule::startTimeOffsetMissing, tagLine.name);
        return std::nullopt;
    }
    if (offset->empty() || !holdsOnly(*offset, digitsPointAndSigns)) {
        tell(recorder, Rule::startTimeOffsetMalformed, *offset);
        return std::nullopt;
    }
    const double seconds = toDouble(number(recorder, *offset, NumberForm::signedDecimal));
    const std::optional<std::string_view> precise = list.find(attribute::precise);
    if (recorder != nullptr) {
        tellOfWriting(*recorder, *offset, seconds);
        if (precise) tellOfPrecise(*recorder, *precise);
    }
    return StartTag{seconds, precise == fixed::yes};
}

void writeStartTag(std::ostream& out, const StartTag& start) {
    if (start.timeOffset == 0.0) return;
    std::string line;
    appendTag(line, tag::start);
    appendAttribute(line, attribute::timeOffset, inFormatOf(out, start.timeOffset));
    if (start.precise) {
        line += ',';
        appendAttribute(line, attribute::precise, fixed::yes);
    }
    writeLine(out, line);
}

}  // namespace velhls

#include "velhls/common/StartTag.h"

#include <locale>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/LineWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {
bool readStartTag(const TagLine& tagLine, double& timeOffset, bool& precise, Reason& why) {
    AttributeList attributes;
    if (!attributes.read(tagLine.value, why)) return false;
    const std::optional<std::string_view> offset = attributes.find(attribute::timeOffset);
    if (!offset) return why.missing(Rule::startTimeOffsetMissing, tagLine.name);
    if (offset->empty() || !holdsOnly(*offset, digitsPointAndSigns)) {
        return why(Rule::startTimeOffsetMalformed, *offset);
    }
    timeOffset = toDouble(*offset, why);
    // A later tag does not take PRECISE=YES back.
    if (attributes.find(attribute::precise) == fixed::yes) precise = true;
    return true;
}

std::string startOffsetText(const std::ostream& out, double timeOffset) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.flags(out.flags());
    text.precision(out.precision());
    text << timeOffset;
    return text.str();
}

void writeStartTag(std::ostream& out, double timeOffset, bool precise) {
    if (timeOffset == 0.0) return;
    std::string line;
    AttributeWriter(line, tag::start)
        .append(attribute::timeOffset, startOffsetText(out, timeOffset))
        .appendIfSet(attribute::precise, precise)
        .endText();
    writeLine(out, line);
}

}  // namespace velhls

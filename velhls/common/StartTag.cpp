#include "velhls/common/StartTag.h"

#include <locale>
#include <sstream>
#include <string>

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

}  // namespace

std::optional<StartTag> parseStartTag(std::string_view attributes) {
    const std::optional<AttributeList> list = AttributeList::parse(attributes);
    if (!list) return std::nullopt;
    const std::optional<std::string_view> offset = list->find(attribute::timeOffset);
    if (!offset || offset->empty() || !holdsOnly(*offset, digitsPointAndSigns)) return std::nullopt;
    return StartTag{toDouble(*offset), list->find(attribute::precise) == fixed::yes};
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

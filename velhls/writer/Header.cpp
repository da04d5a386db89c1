#include "velhls/writer/Header.h"

#include <array>

#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TagLine.h"

namespace velhls {

void appendTag(std::string& out, std::string_view tag) {
    out += '#';
    out += tag;
    out += '\n';
}

void appendTag(std::string& out, std::string_view tag, std::int64_t number) {
    appendTagStart(out, tag);
    appendDecimal(out, number);
    out += '\n';
}

void appendHeader(std::string& out, std::int32_t version, const NeededVersion& needed) {
    appendTag(out, tag::extM3U);
    const std::int32_t written = std::max(version, needed.version());
    if (written != 1) appendTag(out, tag::version, written);
}

void appendStart(std::string& out, double timeOffset, bool precise) {
    std::array<char, mostShortestBytes> digits;
    const char* const end = writeShortest(digits.data(), timeOffset);
    AttributeWriter(out, tag::start)
        .append(attribute::timeOffset, {digits.data(), static_cast<std::size_t>(end - digits.data())})
        .appendIfSet(attribute::precise, precise)
        .endLine();
}

}  // namespace velhls

#include "velhls/common/LineWriter.h"

#include "velhls/common/NumberWriting.h"
#include "velhls/common/TagLine.h"

namespace velhls {

void writeText(std::ostream& out, std::string_view text) {
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void writeLine(std::ostream& out, std::string_view line) {
    writeText(out, line);
    out.put(out.widen('\n'));
    out.flush();
}

void writeTag(std::ostream& out, std::string_view tag) {
    std::string line = "#";
    line += tag;
    writeLine(out, line);
}

void writeTag(std::ostream& out, std::string_view tag, std::string_view value) {
    std::string line;
    appendTagStart(line, tag);
    line += value;
    writeLine(out, line);
}

void writeTag(std::ostream& out, std::string_view tag, std::int64_t value) {
    std::string text;
    appendDecimal(text, value);
    writeTag(out, tag, text);
}

}  // namespace velhls
